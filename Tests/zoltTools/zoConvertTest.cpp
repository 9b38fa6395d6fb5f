#include "Support/Texts.h"
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <utility>
#include <vector>
#include <zoltTools/zoConvert.h>

namespace
{

const int kShort = 0; // decimal in 16 bits
const int kLong = 64; // decimal in 64 bits; any other number is the base of one in 32 bits

// "=" with the number, or what went wrong; "changed" when a failure touched the target.
template <typename Number>
std::string Outcome(int aResult, Number aNumber)
{
    static const char* const kErrors[] = { "", "high", "low", "invalid" };
    if (aResult == kzoConvertError_None) { return "=" + std::to_string(aNumber); }
    return aNumber == 77 ? kErrors[-aResult] : "changed";
}

// Converts by each operation for such a target; texts with a length are given in a copy of that size.
std::string Convert(const char* aText, int aKind)
{
    const std::vector<char> theBytes(aText, aText + strlen(aText));
    const char* theExact = theBytes.empty() ? "" : theBytes.data();
    uint16 theShort = 77;
    uint32 theNumber = 77;
    zoULongLong theLong = { 77, 0 };
    int theResult = 0;
    if (aKind == kShort)
    {
        theResult = zoConvert_strtouint16(aText, &theShort);
        return Outcome(theResult, theShort);
    }
    if (aKind == kLong)
    {
        theResult = zoConvert_strntoULongLong(theExact, theBytes.size(), &theLong);
        return Outcome(theResult, zoULongLong_ToUInt64(&theLong));
    }
    theResult = zoConvert_strtouint32_base(aText, &theNumber, aKind);
    if (aKind == 10)
    {
        uint32 theOthers[] = { 77, 77 };
        EXPECT_EQ(theResult, zoConvert_strtouint32(aText, &theOthers[0])) << aText;
        EXPECT_EQ(theResult, zoConvert_strntouint32(theExact, theBytes.size(), &theOthers[1])) << aText;
        EXPECT_TRUE(theOthers[0] == theNumber && theOthers[1] == theNumber) << aText;
    }
    return Outcome(theResult, theNumber);
}

} // namespace

TEST(zoConvertTest, ReadsWholeNumbersThatFit)
{
    struct Case
    {
        int mKind;
        const char* mExpected;
        std::vector<const char*> mTexts;
    };
    static const Case kCases[] = {
        { 10, "=4294967295", { "4294967295", "0000000000000004294967295" } },
        { 10, "=0", { "0", "00" } },
        { 10, "high", { "4294967296", "4294967300", "42949672960", "99999999999999999999999" } },
        { 10, "low", { "-1", "-99999999999" } },
        { 10, "invalid", { "", "-", "--1", "+1", " 1", "1 ", "12x", "99999999999x", "1:", "/1", "0x1", "\xB2" } },
        { kShort, "=65535", { "65535" } },
        { kShort, "high", { "65536", "65540", "4294967297" } },
        { kLong, "=18446744073709551615", { "18446744073709551615" } },
        { kLong, "high", { "18446744073709551616", "18446744073709551620", "99999999999999999999" } },
        { kLong, "low", { "-5" } },
        { kLong, "invalid", { "", "5a" } },
        { 16, "=4294967295", { "fFfFfFfF" } },
        { 16, "high", { "100000000" } },
        { 16, "invalid", { "0x10", "1g", "1@", "1`" } }, // the bytes beside the letters, too
        { 36, "=1295", { "zZ" } },
        { 36, "invalid", { "1[", "1{" } },
        { 37, "invalid", { "1" } },
        { 1, "invalid", { "0" } },
    };
    for (const Case& theCase : kCases)
    {
        for (const char* theText : theCase.mTexts)
            EXPECT_EQ(theCase.mExpected, Convert(theText, theCase.mKind)) << theText << " / " << theCase.mKind;
    }
    uint32 theNumber = 0;
    EXPECT_EQ(kzoConvertError_Invalid, zoConvert_strtouint32(nullptr, &theNumber));
    EXPECT_EQ(kzoConvertError_Invalid, zoConvert_strntouint32("1\0", 2, &theNumber));
    for (const zoFileOffset theOffset : { INT64_MIN, INT64_C(0), INT64_C(4294967297), INT64_MAX })
    {
        zoULongLong theValue = { 1, 1 };
        zoULongLong_SetFileOffset(&theValue, theOffset);
        EXPECT_EQ(std::to_string(theOffset < 0 ? 0 : theOffset), Taken(zoULongLong_ToString(&theValue)));
    }
}

TEST(zoConvertTest, ReadsDatesOfTheCalendar)
{
    typedef std::vector<int32> Parts;
    static const std::pair<const char*, Parts> kDates[] = {
        { "2009-11-30", { 2009, 11, 30, 0, 0, 0, 0, 0, 0 } },
        { "2009-12-31T23:59:58", { 2009, 12, 31, 23, 59, 58, 0, 0, 0 } },
        { "2000-02-29T00:00:00Z", { 2000, 2, 29, 0, 0, 0, 0, 0, 0 } },
        { "2008-02-29T01:02:03.5+05:45", { 2008, 2, 29, 1, 2, 3, 500, 5, 45 } },
        { "2008-01-01T01:02:03.0429999999999999999Z", { 2008, 1, 1, 1, 2, 3, 42, 0, 0 } },
        { "2008-01-01T01:02:03-00:30", { 2008, 1, 1, 1, 2, 3, 0, 0, -30 } },
    };
    for (const auto& [theText, theExpected] : kDates)
    {
        Parts theParts(kzoDLNADatePart_Count);
        EXPECT_EQ(kzoConvertError_None, zoConvert_dlnadatestrtodate(theText, theParts.data())) << theText;
        EXPECT_EQ(theExpected, theParts) << theText;
        EXPECT_EQ(kzoConvertError_None, zoConvert_dlnadatestrtodate(theText, nullptr));
    }
    EXPECT_EQ(kzoConvertError_Invalid, zoConvert_dlnadatestrtodate("", nullptr));
    EXPECT_EQ(kzoConvertError_Invalid, zoConvert_dlnadatestrtodate(nullptr, nullptr));
    std::istringstream theTexts("1900-02-29 2009-02-29 2009-04-31 2009-00-10 2009-13-10 2009-10-00 2009-1-1 09-10-10 "
                                "2009/10/10 2009-10-10x 2009-10-10Z 2009-10-10T 2009-10-10T10:00 2009-10-10T24:00:00 "
                                "2009-10-10T10:60:00 2009-10-10T10:00:60 2009-10-10T10:00:00. 2009-10-10T10:00:00.Z "
                                "2009-10-10T10:00:00+0100 2009-10-10T10:00:00+24:00 2009-10-10T10:00:00+01:60 x");
    for (std::string theText; theTexts >> theText;)
    {
        Parts theParts(kzoDLNADatePart_Count, 4711);
        EXPECT_EQ(kzoConvertError_Invalid, zoConvert_dlnadatestrtodate(theText.c_str(), theParts.data())) << theText;
        EXPECT_EQ(Parts(kzoDLNADatePart_Count, 4711), theParts) << theText;
    }
}
