#include "Support/Texts.h"
#include <UPnP/Stack/ILibXML.h>
#include <UPnP/Utilities/UPnPTool.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <cstring>
#include <gtest/gtest.h>
#include <utility>

namespace
{

// A writable document and the first tag in it.
struct Element
{
    explicit Element(const char* aText) : mText(strdup(aText)), mNode(ILibParseXML(mText, 0, strlen(mText))) {}
    ~Element()
    {
        ILibDestructXMLNodeList(mNode);
        free(mText);
    }
    Element& operator=(Element&&) = delete;

    char* mText;
    struct ILibXMLNode* mNode;
};

} // namespace

TEST(UPnPUtilTest, WritesTimes)
{
    static const std::pair<uint32, const char*> kCases[] = {
        { 0, "00:00:00.000" },          { 3661, "01:01:01.000" },       { 99 * 3600 - 1, "98:59:59.000" },
        { 359999, "00:59:59.000" }, // 99 hours wrap to 0
        { 100 * 3600, "01:00:00.000" }, { 0xFFFFFFFE, "96:28:14.000" }, { kUPnP_UnknownTime, "NOT_IMPLEMENTED" },
    };
    for (const auto& [theTime, theExpected] : kCases)
    {
        const std::unique_ptr<char[]> theText(new char[sizeof(kUPnP_UnknownTimeString)]);
        UPnPUtil_SetTimeString(theText.get(), theTime);
        EXPECT_STREQ(theExpected, theText.get());
        const bool fWraps = theTime >= 99 * 3600 && theTime != kUPnP_UnknownTime;
        if (!fWraps) { EXPECT_EQ(theTime, UPnPUtil_ParseTimeString(theText.get())); }
    }
}

TEST(UPnPUtilTest, KnowsTrueAndFalse)
{
    for (const char* theText : { "1", "True", "YES" })
        EXPECT_TRUE(UPnPUtil_IsStrTrue(theText) && !UPnPUtil_IsStrFalse(theText)) << theText;
    for (const char* theText : { "0", "false", "No", "" })
        EXPECT_TRUE(!UPnPUtil_IsStrTrue(theText) && UPnPUtil_IsStrFalse(theText)) << theText;
    for (const char* theText : { "on", " 1", "10", static_cast<const char*>(nullptr) })
        EXPECT_FALSE(UPnPUtil_IsStrTrue(theText) || UPnPUtil_IsStrFalse(theText));
}

TEST(UPnPUtilTest, ChecksLists)
{
    const char* theWords[] = { "a", "b", "c,d", nullptr };
    static const std::tuple<const char*, size_t, int> kCases[] = {
        { "x", 0, 0 },    { "a", 1, 0 },     { "a;;b", 4, 0 }, { ";", 1, 0 },      { "a,b", 3, -1 }, { "c,d;B", 5, 0 },
        { "a;bx", 3, 0 }, { "a;bx", 4, -1 }, { "x;a", 3, -1 }, { "a;b;x", 5, -1 }, { nullptr, 0, 0 }
    };
    for (const auto& [theText, theLength, theResult] : kCases)
    {
        EXPECT_EQ(theResult, UPnPUtil_FindAllCommaSeparatedSubStringInArray(theText, theLength, theWords))
            << (theText ? theText : "NULL") << theLength;
    }
}

TEST(UPnPUtilTest, BuildsUUIDs)
{
    const std::string theFirst = Taken(UPnPUtil_BuildUUID());
    ASSERT_EQ(static_cast<size_t>(kUPnP_UUIDSize) - 1, theFirst.size());
    for (size_t i = 0; i < theFirst.size(); ++i)
    {
        const bool fIsHyphen = i == 8 || i == 13 || i == 18 || i == 23;
        EXPECT_TRUE(fIsHyphen ? theFirst[i] == '-' : strchr("0123456789abcdef", theFirst[i]) != nullptr) << theFirst;
    }
    EXPECT_NE(theFirst, Taken(UPnPUtil_BuildUUID()));
}

TEST(UPnPUtilDeathTest, ExitsThroughTheCallBack)
{
    EXPECT_EXIT(UPnPUtil_Exit(3), testing::ExitedWithCode(3), "^$");
    UPnPUtil_SetExitCallBack([](int aCode) { fprintf(stderr, "leaving with %d", aCode); });
    EXPECT_EXIT(UPnPUtil_Exit(4), testing::ExitedWithCode(4), "leaving with 4");
    UPnPUtil_SetExitCallBack(nullptr);
    EXPECT_EXIT(UPnPUtil_Exit(5), testing::ExitedWithCode(5), "^$");
}

TEST(UPnPUtilTest, ReadsValues)
{
    static const std::tuple<const char*, uint32, uint32, int32, int> kCases[] = {
        // text, as a time (77: left alone), as numbers without and with a sign, its index
        { "<a val=\"12\"/>", 12, 12, 12, 0 },
        { "<a x:val='0:01:00'/>", 60, 77, 77, 1 }, // the prefix doesn't matter
        { "<a value='1' Val='2' VAL='3'/>", 77, 77, 77, -1 },
        { "<a val='-5' val='12'/>", 99, 77, -5, -1 }, // only the first counts
        { "<a val='4294967295' b='c'/>", 99, 0xFFFFFFFF, 77, -1 },
        { "<a val='4294967296'/>", 99, 77, 77, -1 },
        { "<a val=''/>", 99, 77, 77, 2 },
        { "<a/>", 77, 77, 77, -1 },
    };
    const char* theTable[] = { "12", "0:01:00", "", nullptr };
    for (const auto& [theText, theTimeRead, theUnsigned, theSigned, theIndex] : kCases)
    {
        SCOPED_TRACE(theText);
        const Element theElement(theText);
        uint32 theTime = 77, theUInt32 = 77;
        int32 theInt32 = 77;
        EXPECT_EQ(theUnsigned != 77, UPnPUtil_GetUInt32Attribute(theElement.mNode, &theUInt32));
        EXPECT_EQ(theSigned != 77, UPnPUtil_GetInt32Attribute(theElement.mNode, &theInt32));
        EXPECT_STREQ(theText, theElement.mText); // these leave the document alone
        EXPECT_EQ(theIndex, UPnPUtil_GetTableAttributeIndex(theElement.mNode, theTable));
        EXPECT_EQ(theTimeRead != 77, UPnPUtil_GetTimeAttribute(theElement.mNode, &theTime, 99));
        EXPECT_EQ(theTimeRead, theTime);
        EXPECT_EQ(theUnsigned, theUInt32);
        EXPECT_EQ(theSigned, theInt32);
    }
}

TEST(UPnPUtilTest, ReadsTexts)
{
    char* theText = nullptr;
    EXPECT_EQ(1, UPnPUtil_GetStrAttribute(Element("<a val=\"a&amp;b\"/>").mNode, &theText));
    EXPECT_STREQ("a&b", theText);
    EXPECT_EQ(0, UPnPUtil_GetStrAttribute(Element("<a b='c'/>").mNode, &theText));
    EXPECT_STREQ("a&b", theText);
    EXPECT_EQ(1, UPnPUtil_GetStrAttribute(Element("<a val=''/>").mNode, &theText));
    EXPECT_EQ("", Taken(theText));
}

TEST(UPnPUtilTest, ReadsAndLimitsNumbers)
{
    EXPECT_EQ(4294967295u, UPnPUtil_GetUInt32("4294967295", 7));
    EXPECT_EQ(65535, UPnPUtil_GetUInt16("65535", 7));
    EXPECT_EQ(7, UPnPUtil_GetUInt16("65536", 7));
    for (const char* theText : { "4294967296", "-1", "", static_cast<const char*>(nullptr) })
        EXPECT_EQ(7u, UPnPUtil_GetUInt32(theText, 7));

    static const uint32 kCases[][5] = {
        // value, default, minimum, maximum, result
        { 0, 50, 10, 100, 50 }, { 0, 5, 10, 100, 10 },     { 0, 500, 10, 100, 100 }, { 0, 50, 0, 100, 0 },
        { 0, 50, 10, 0, 10 },   { 200, 50, 10, 100, 100 }, { 9, 50, 10, 100, 10 },   { 7, 50, 0, 0, 0 },
    };
    for (const auto& [theValue, theDefault, theMin, theMax, theResult] : kCases)
        EXPECT_EQ(theResult, UPnPUtil_CheckRange(theValue, theDefault, theMin, theMax))
            << theValue << ' ' << theDefault;
}

TEST(UPnPUtilTest, TellsAddressesFromNames)
{
    for (const char* theText : { "192.168.1.10", "1..2.3", "..." })
        EXPECT_TRUE(UPnPTool::HostNameIsIPAddress(theText)) << theText;
    for (const char* theText : { "", "10.0.0", "10.0.0.1.2", "myhost", "1.2.3.a", "1.2.3.4 " })
        EXPECT_FALSE(UPnPTool::HostNameIsIPAddress(theText)) << theText;

    const unsigned char theBytes[] = { 192, 168, 1, 255 };
    uint32 theAddress;
    memcpy(&theAddress, theBytes, sizeof(theAddress));
    char theText[16];
    snprintf(theText, sizeof(theText), "%u.%u.%u.%u", UPnPUtil_IPPrintf(theAddress));
    EXPECT_STREQ("192.168.1.255", theText);
}

TEST(UPnPUtilTest, CountsLinesAndColumnsOfAnXMLError)
{
    static const struct
    {
        const char* mText;
        uint32 mLine;
        uint32 mColumn;
    } kCases[] = {
        { "<a/></a>", 1, 5 },
        { "\xEF\xBB\xBF</a>", 1, 1 },
        { "<\xC3\xA9>\xE2\x82\xAC\t</a>", 1, 6 }, // characters, not bytes
        { "<a/>\n\r\n\r\r x</a>", 5, 3 },         // each way of ending a line
        { "<a/>", 0, 0 },
    };
    for (const auto& [theText, theLine, theColumn] : kCases)
    {
        uint32 thePlace[2] = { 99, 99 };
        char* theReason = UPnPUtil_FindXMLError(theText, strlen(theText) + 5, &thePlace[0], &thePlace[1]);
        EXPECT_EQ(theLine > 0, theReason != nullptr) << theText;
        free(theReason);
#ifndef UPNP_LACKS_ILibFindXMLError
        EXPECT_EQ(theLine, thePlace[0]) << theText;
        EXPECT_EQ(theColumn, thePlace[1]) << theText;
#endif
    }
    uint32 thePlace[2];
    EXPECT_EQ(nullptr, UPnPUtil_FindXMLError(nullptr, 3, &thePlace[0], &thePlace[1]));
}
