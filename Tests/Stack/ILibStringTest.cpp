#include <UPnP/Stack/ILibString.h>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(ILibStringTest, ParsesTimes)
{
    static const std::pair<const char*, uint32> kCases[] = {
        { "0:03:35", 215 },
        { "0:03:35.000", 215 },
        { "215", 215 },
        { "61:01", 3661 }, // no hours: minutes may pass 59
        { "0:1:2", 62 },
        { "000000000000000000000001:00:00", 3600 },
        { "1:00:00.5/10", 3600 }, // dropped, not read as seconds
        { "1:00:00.99999999999999999999/100000000000000000000", 3600 },
        { "1193046:28:14", 4294967294u }, // the largest that is known
    };
    for (const auto& [theTime, theSeconds] : kCases)
        EXPECT_EQ(theSeconds, ILibString_ParseTimeString(theTime)) << theTime;

    static const char* const kNoTimes[] = { "0:60:00", "0:00:60", "0:001:02", "0:0:0:0", ":03:35", "0::35",
                                            "0:03:", "-0:03:35", " 0:03:35", "0:03:35 ", "1:00:00.", "1:00:00.5/",
                                            "1:00:00./5", "1:00:00.9/09", "1:00:00.0/0", "1:00.5:00", "",
                                            "NOT_IMPLEMENTED",
                                            // 2^32 - 1 and 2^32 seconds, and 2^64 + 1 hours
                                            "1193046:28:15", "1193046:28:16", "18446744073709551617:00:00" };
    for (const char* theText : kNoTimes)
        EXPECT_EQ(kUPnP_UnknownTime, ILibString_ParseTimeString(theText)) << theText;
    EXPECT_EQ(kUPnP_UnknownTime, ILibString_ParseTimeString(nullptr));
}

TEST(ILibStringTest, FindsWords)
{
    const char* theWords[] = { "1", "true", "", "[T", nullptr };
    EXPECT_EQ(1, ILibString_FindStringInArray("tRUE", theWords));
    EXPECT_EQ(-1, ILibString_FindStringInArray("tru", theWords));
    EXPECT_EQ(-1, ILibString_FindStringInArray("trueX", theWords));
    EXPECT_EQ(2, ILibString_FindStringInArray("", theWords));
    EXPECT_EQ(-1, ILibString_FindStringInArray("{t", theWords)); // "{" and "[" differ as "a" and "A" do
    EXPECT_EQ(-1, ILibString_FindStringInArray(nullptr, theWords));
    EXPECT_EQ(-1, ILibString_FindStringInArray("1", nullptr));
    EXPECT_EQ(1, ILibString_FindSubStringInArray("TrueX", 4, theWords));
    EXPECT_EQ(-1, ILibString_FindSubStringInArray("1", 2, theWords)); // stops at the NUL
    EXPECT_EQ(1, ILibFindEntryInTable("true", theWords));
    EXPECT_EQ(-1, ILibFindEntryInTable("True", theWords));
}

TEST(ILibStringTest, ReadsLongs)
{
    static const int32 kNone = 77;
    static const std::pair<int32, std::vector<const char*>> kCases[] = {
        { 0, { "0", "-0" } },
        { 12, { "00000000000000000012" } },
        { INT32_MAX, { "2147483647" } },
        { INT32_MIN, { "-2147483648" } },
        { kNone, { "2147483648", "-2147483649", "18446744073709551617", "12x", "+1", " 1", "-", "" } },
    };
    for (const auto& [theExpected, theTexts] : kCases)
    {
        for (const char* theText : theTexts)
        {
            const std::string theLonger = std::string(theText) + "9"; // the length counts, not what follows
            int32 theValue = kNone;
            const int theResult = ILibGetLong(theLonger.c_str(), strlen(theText), &theValue);
            EXPECT_EQ(theExpected == kNone ? -1 : 0, theResult) << theText;
            EXPECT_EQ(theExpected, theValue) << theText;
        }
    }
}
