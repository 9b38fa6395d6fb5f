#include "Support/Texts.h"
#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>
#include <vector>
#include <zoltTools/zoMemory.h>

TEST(zoMemoryTest, HeapTextsAreMadeOfTheirOwnParts)
{
    char* theText = nullptr;
    zoStrcatReplace(&theText, nullptr);
    zoStrcatReplace(&theText, "abc");
    zoStrcatReplace(&theText, theText + 1);
    EXPECT_STREQ("abcbc", theText);
    zoStrcatReplace(&theText, theText);
    EXPECT_STREQ("abcbcabcbc", theText);
    zoStrnReplace(&theText, theText + 3, 4);
    EXPECT_STREQ("bcab", theText);
    zoStrnReplace(&theText, nullptr, 1);
    EXPECT_EQ(nullptr, theText);
    const char kUnended[] = { 'a', 'b' };
    EXPECT_EQ("ab", Taken(zoStrndup(kUnended, 2)));
    EXPECT_EQ("ab", Taken(zoStrndup("ab", SIZE_MAX)));
    EXPECT_EQ(std::string(5000, 'x') + "7", Taken(zo_mnprintf("%s%d", std::string(5000, 'x').c_str(), 7)));

    for (size_t theSize = 0; theSize < 8; ++theSize)
    {
        std::vector<char> theBuffer(theSize + 1, '#');
        const std::string theExpected = std::string("1234").substr(0, theSize > 0 ? theSize - 1 : 0);
        EXPECT_EQ(static_cast<int>(theExpected.size()), zo_snprintf(theBuffer.data(), theSize, "%d", 1234));
        if (theSize > 0) { EXPECT_STREQ(theExpected.c_str(), theBuffer.data()); }
        EXPECT_EQ('#', theBuffer[theSize]);
    }
}

TEST(zoMemoryTest, WithoutMemoryTheProcessEndsAfterAWord)
{
    EXPECT_DEATH(_zoMemory_Failed(12345), "^zoMemory: no memory left for 12345 bytes\n$");
    const auto theHandler = [](size_t) { (void)!write(STDERR_FILENO, "told", 4); };
    EXPECT_EQ(nullptr, zoMemory_SetFailureHandler(theHandler));
    EXPECT_DEATH(_zoMemory_Failed(1), "^told$"); // and ends also when the handler returns
    EXPECT_EQ(theHandler, zoMemory_SetFailureHandler(nullptr));
}
