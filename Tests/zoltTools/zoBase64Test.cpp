#include "Support/Texts.h"
#include <cstring>
#include <gtest/gtest.h>
#include <zoltTools/zoBase64.h>

TEST(zoBase64Test, PadsEveryLength)
{
    char theByte = 0;
    char* theText = &theByte;
    EXPECT_EQ(0u, zoBase64_Encode("", SIZE_MAX, &theText));
    EXPECT_EQ(nullptr, theText);
    const char* const kOfPrefixes[] = { "", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy" };
    for (size_t i = 0; i < std::size(kOfPrefixes); ++i)
    {
        EXPECT_EQ(strlen(kOfPrefixes[i]), zoBase64_Encode("foobar", i, &theText)) << i;
        EXPECT_EQ(kOfPrefixes[i], Taken(theText));
    }
    zoBase64_Encode("\xFB\xFF\xFE\xFF", 4, &theText);
    EXPECT_EQ("+//+/w==", Taken(theText));
}
