#include "Support/Catchers.h"
#include "Support/ParsedObject.h"
#include <UPnP/Stack/ILibString.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <vector>
#include <zoLog/Log.h>

namespace
{

const char kUPnPNamespace[] = "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\"";

void AddResource(zoPackedData_t* aRecord, const std::string& aURI, const std::string& aProtocolInfo)
{
    zoPackedData_AddNewEntry(aRecord);
    AddText(aRecord, kCDSResourceInfo_URI, aURI);
    AddText(aRecord, kCDSResourceInfo_ProtocolInfo, aProtocolInfo);
}

// Writes an entry record and a resource record, each may be NULL, and releases them.
std::string Write(PackedData anEntry, PackedData aResources, int afHeader, int afExtra, const char* anURI)
{
    return Taken(UPnPDIDL_Get(anEntry, aResources, afHeader, afExtra, anURI));
}

// The URIs of a written text's resources, in their order, each with a blank after it.
std::string OrderOf(const std::string& aText)
{
    std::string theOrder;
    for (size_t theEnd = aText.find("</res>"); theEnd != std::string::npos; theEnd = aText.find("</res>", theEnd + 1))
    {
        const size_t theBegin = aText.rfind('>', theEnd) + 1;
        theOrder += aText.substr(theBegin, theEnd - theBegin) + " ";
    }
    return theOrder;
}

std::string Tags(const zoPackedData_t* aRecord)
{
    std::string theTags;
    for (uint16 i = 0; i < zoPackedData_GetTagCount(aRecord, 0); ++i)
        theTags += std::to_string(zoPackedData_GetTagAt(aRecord, 0, i)) + " ";
    return theTags;
}

std::string Item(const std::string& anAttributes, const std::string& aContent)
{
    return "<item" + anAttributes + ">" + aContent + "</item>";
}

} // namespace

TEST(UPnPDIDLWriteTest, WritesAnObjectToTheByte)
{
    const std::string theClass = "object.item.audioItem.musicTrack";
    zoPackedData_t* theEntry = NewEntry();
    AddTexts(theEntry, { { kCDSEntryInfo_ItemID, "42" },
                         { kCDSEntryInfo_ParentID, "7" },
                         { kCDSEntryInfo_Title, "Rock & Roll" },
                         { kCDSEntryInfo_ItemClassName, theClass.c_str() },
                         { kCDSEntryInfo_Album, "Hits" },
                         { kCDSEntryInfo_XMLNS, kUPnPNamespace } });
    AddTextArray(theEntry, kCDSEntryInfo_AlbumArtURI, { "ART", "JPEG_TN" });
    zoPackedData_t* theResources = zoPackedData_New(2);
    AddResource(theResources, "URI1", "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3");
    AddNumber(theResources, kCDSResourceInfo_Duration, uint32{ 215 });
    AddNumber(theResources, kCDSResourceInfo_BitRate, uint32{ 1024000 });
    AddNumber(theResources, kCDSResourceInfo_Size, uint64{ 3440000 });
    AddResource(theResources, "URI2", "http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_TN");
    EXPECT_EQ("<DIDL-Lite xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\">"
              "<item id=\"42\" parentID=\"7\" restricted=\"1\">"
              "<upnp:albumArtURI dlna:profileID=\"JPEG_TN\">ART</upnp:albumArtURI>"
              "<dc:title>Rock &amp; Roll</dc:title><upnp:class>" +
                  theClass +
                  "</upnp:class><upnp:album>Hits</upnp:album>"
                  "<res protocolInfo=\"http-get:*:audio/mpeg:DLNA.ORG_PN=MP3\" bitrate=\"128000\" duration=\"00:03:35\""
                  " size=\"3440000\">URI1</res>"
                  "<res protocolInfo=\"http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_TN\">URI2</res></item></DIDL-Lite>",
              Write(theEntry, theResources, 1, 0, "URI1"));
}

// Texts without a NUL, each followed by another one in the record, in entries of many pairs; the last has no value.
TEST(UPnPDIDLWriteTest, EndsEachTextAtItsValue)
{
    zoPackedData_t* theEntry = NewEntry();
    zoPackedData_t* theResources = zoPackedData_New(1);
    zoPackedData_AddNewEntry(theResources);
    std::string theElements, theAttributes;
    for (int i = 0; i <= 40; ++i)
    {
        const std::string theName = "x:" + std::to_string(i);
        const size_t theValueSize = i < 40 ? 1 : 0;
        for (const auto& [theRecord, theFirstTag] : { std::pair(theEntry, 21), std::pair(theResources, 15) })
        {
            const uint16 theTag = static_cast<uint16>(theFirstTag + 2 * i);
            zoPackedData_AddData(theRecord, theTag, theName.data(), theName.size());
            zoPackedData_AddData(theRecord, static_cast<uint16>(theTag + 1), theValueSize ? "v" : nullptr,
                                 theValueSize);
        }
        theElements += "<" + theName + ">" + (theValueSize ? "v" : "") + "</" + theName + ">";
        theAttributes += " " + theName + (theValueSize ? "=\"v\"" : "");
    }
    for (const uint16 theTag : { kCDSEntryInfo_XMLNS, kCDSEntryInfo_Title, kCDSEntryInfo_ItemID })
        zoPackedData_AddData(theEntry, theTag, "t", 1);
    for (const uint16 theTag : { kCDSResourceInfo_URI, kCDSResourceInfo_ProtocolInfo, kCDSResourceInfo_Resolution })
        zoPackedData_AddData(theResources, theTag, "r", 1);
    EXPECT_EQ("<DIDL-Lite t><item id=\"t\" restricted=\"1\"><dc:title>t</dc:title>" + theElements +
                  "<res protocolInfo=\"r\" resolution=\"r\"" + theAttributes + ">r</res></item></DIDL-Lite>",
              Write(theEntry, theResources, 1, 1, "r"));
}

// Every field at once, in its order, with what only some records have.
TEST(UPnPDIDLWriteTest, WritesEveryField)
{
    zoPackedData_t* theEntry = NewEntry();
    AddTexts(theEntry, { { 21, "ext:rating" },
                         { 22, "5 < 6" },
                         { 23, "ext:none" },
                         { 0, "T" },
                         { 1, "C" },
                         { 2, "2001-02-03" },
                         { 3, "G" },
                         { 4, "A" },
                         { 10, "K" },
                         { 17, "bgm" },
                         { 18, "PI" },
                         { 20, "a=\"x\\,y\\\\,z\",b=\"\"" } });
    AddNumber(theEntry, kCDSEntryInfo_ChannelNr, uint32{ 12 });
    zoPackedData_t* theResources = zoPackedData_New(0);
    AddResource(theResources, "u", " http-get : * : a/b : c ; d ");
    AddTexts(theResources, { { 15, "codec" },
                             { 16, "x" },
                             { 17, "x:y" },
                             { 18, "'1'" },
                             { 19, "microsoft" },
                             { 20, "m" },
                             { 21, "bare" },
                             { kCDSResourceInfo_Resolution, "1x2" },
                             { kCDSResourceInfo_IFOFileURI, "ifo" } });
    AddNumber(theResources, kCDSResourceInfo_Duration, uint32{ 216000 + 61 });
    AddNumber(theResources, kCDSResourceInfo_BitRate, uint32{ 7 });
    AddNumber(theResources, kCDSResourceInfo_ColorDepth, uint32{ 24 });
    AddNumber(theResources, kCDSResourceInfo_Size, ~uint64{ 0 });
    AddNumber(theResources, kCDSResourceInfo_AudioChannelCount, uint32{ 6 });
    AddResource(theResources, "v", "");
    AddNumber(theResources, kCDSResourceInfo_BitRate, uint32{ 0xFFFFFFFF });
    AddNumber(theResources, kCDSResourceInfo_Duration, uint32{ kUPnP_UnknownTime });
    EXPECT_EQ(
        " a=\"x,y\\,z\" b=\"\"><item restricted=\"1\"><dc:title>T</dc:title><upnp:class>K</upnp:class>"
        "<dc:creator>C</dc:creator><dc:date>2001-02-03</dc:date><upnp:genre>G</upnp:genre>"
        "<upnp:album>A</upnp:album><upnp:channelNr>12</upnp:channelNr>"
        "<av:bgmURI av:profileID=\"PI\">bgm</av:bgmURI><ext:rating>5 &lt; 6</ext:rating><ext:none></ext:none>"
        "<res protocolInfo=\"http-get:*:a/b:c;d\" colorDepth=\"24\" duration=\"60:01:01\" resolution=\"1x2\""
        " size=\"18446744073709551615\" nrAudioChannels=\"6\" dlna:ifoFileURI=\"ifo\" x:y=\"&apos;1&apos;\" bare>u"
        "</res><res>v</res></item>",
        Write(theEntry, theResources, 0, 1, nullptr));
    EXPECT_EQ("<DIDL-Lite><item></item></DIDL-Lite>", Write(nullptr, nullptr, 1, 0, nullptr));
    EXPECT_EQ("<item></item>", Write(nullptr, nullptr, 0, 0, nullptr));
}

TEST(UPnPDIDLWriteTest, CutsBetweenCharacters)
{
    const std::string theLong(254, 'x');
    static const std::pair<std::string, std::string> kCases[] = {
        { theLong + "yzz", theLong + "y" },
        { theLong + "&", theLong },
        { theLong.substr(0, 250) + "&", theLong.substr(0, 250) + "&amp;" },
        { theLong + "\xC3\xA9", theLong },
        { theLong.substr(0, 252) + "\xF0\x9F\x98\x80", theLong.substr(0, 252) },
        { theLong.substr(0, 251) + "\xF0\x9F\x98\x80!", theLong.substr(0, 251) + "\xF0\x9F\x98\x80" },
        { theLong + "\xA9\xA9", theLong + "\xA9" }, // no character begins here that could be kept whole
        { theLong.substr(0, 250) + "\xC3\xA9\xA9\xA9\xA9\xA9", theLong.substr(0, 250) + "\xC3\xA9\xA9\xA9\xA9" },
    };
    for (const auto& [theTitle, theWritten] : kCases)
    {
        zoPackedData_t* theEntry = NewEntry();
        AddText(theEntry, kCDSEntryInfo_Title, theTitle);
        AddText(theEntry, kCDSEntryInfo_XMLNS, "");
        EXPECT_EQ(" ><item restricted=\"1\"><dc:title>" + theWritten + "</dc:title></item>",
                  Write(theEntry, nullptr, 0, 0, nullptr));
    }
}

TEST(UPnPDIDLWriteTest, OrdersResources)
{
    static const char* const kCases[][2] = {
        { nullptr, "converted plain png jpeg whole converted2 " },
        { "whole", "whole jpeg png plain converted converted2 " },
        { "nowhere", "jpeg png plain whole converted converted2 " },
        { "converted2", "converted2 jpeg png plain whole converted " },
    };
    for (const auto& [theSelected, theOrder] : kCases)
    {
        zoPackedData_t* theEntry = NewEntry();
        AddText(theEntry, kCDSEntryInfo_XMLNS, kUPnPNamespace);
        zoPackedData_t* theResources = zoPackedData_New(0);
        AddResource(theResources, "converted", "http-get:*:a/b:DLNA.ORG_CI=1");
        AddResource(theResources, "", "http-get:*:a/b:DLNA.ORG_PN=JPEG_TN");
        AddResource(theResources, "plain", "");
        AddResource(theResources, "png", "http-get:*:image/png:DLNA.ORG_PN=PNG_TN;DLNA.ORG_CI=1");
        AddResource(theResources, "jpeg", "http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_TN;DLNA.ORG_CI=1");
        AddResource(theResources, "whole", "http-get:*:a/b:DLNA.ORG_CI=0");
        AddResource(theResources, "converted2", "http-get:*:a/b:DLNA.ORG_PN=X;DLNA.ORG_CI=1");
        EXPECT_EQ(theOrder, OrderOf(Write(theEntry, theResources, 1, 0, theSelected)));
    }
}

TEST(UPnPDIDLWriteTest, StopsAtTheLimitAndLogs)
{
    LogCatcher theLog(ZOLOGLEVEL_DEBUG);
    zoPackedData_t* theResources = zoPackedData_New(0);
    for (int i = 0; i < 40; ++i)
        AddResource(theResources, std::string(1000, 'u') + std::to_string(i), "");
    const std::string theText = Write(NewEntry(), theResources, 1, 0, nullptr);
    EXPECT_GT(theText.size(), 15360u);
    EXPECT_LT(theText.size(), 15360u + 1100);
    const std::string kSource = LoggedFrom("Libs/Internal/UPnP/Utilities/UPnPDIDL.cpp");
    EXPECT_EQ("2/0 " + kSource + "No XML name space specified\n3/0 " + kSource +
                  "UPnPDIDL_Get: 24 resource(s) not added",
              theLog.mText);
}

TEST(UPnPDIDLParseTest, ParsesAnObjectToItsTags)
{
    const ParsedObject theObject(
        "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" xmlns:dc=\"DC\" "
        "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\"><item id=\"42\" parentID=\"7\" restricted=\"1\">"
        "<dc:title>Rock &amp; Roll</dc:title><upnp:class>object.item.audioItem.musicTrack</upnp:class>"
        "<upnp:albumArtURI xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\" dlna:profileID=\"JPEG_TN\">ART"
        "</upnp:albumArtURI><xyz:mood>calm</xyz:mood><res protocolInfo=\"http-get:*:audio/mpeg:*\" "
        "duration=\"00:03:35.000\" bitrate=\"128000\" size=\"3440000\" xyz:codec=\"mp3\">URI1</res></item></DIDL-Lite>");
    ASSERT_EQ(kUPnPError_None, theObject.mResult);
    EXPECT_EQ(kDIDLItemType_Item, theObject.mType);
    EXPECT_EQ("21 22 0 1 2 3 4 14 5 6 7 8 10 9 11 12 17 18 13 15 19 20 16 ", Tags(theObject.mEntry));
    static const char* const kTexts[] = { "Rock & Roll", "", "(none)", "", "", "7" };
    for (uint16 i = 0; i < 6; ++i)
        EXPECT_EQ(kTexts[i], TextOf(theObject.mEntry, 0, i)) << i;
    EXPECT_EQ("42", TextOf(theObject.mEntry, 0, kCDSEntryInfo_ItemID));
    EXPECT_EQ("object.item.audioItem.musicTrack", TextOf(theObject.mEntry, 0, kCDSEntryInfo_ItemClassName));
    EXPECT_EQ("(none)", TextOf(theObject.mEntry, 0, kCDSEntryInfo_StorageMedium));
    EXPECT_EQ("xyz:mood=calm", TextOf(theObject.mEntry, 0, 21) + "=" + TextOf(theObject.mEntry, 0, 22));
    EXPECT_EQ(
        "xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\",xmlns:dc=\"DC\","
        "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\",xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\"",
        TextOf(theObject.mEntry, 0, kCDSEntryInfo_XMLNS));
    EXPECT_EQ(0xFFFFFFFFu, zoPackedData_GetDataAsUInt32(theObject.mEntry, 0, kCDSEntryInfo_ChildCount));
    EXPECT_EQ(1u, zoPackedData_GetDataAsUInt32(theObject.mEntry, 0, kCDSEntryInfo_Flags));
    EXPECT_EQ("ART|JPEG_TN|", TextsOf(theObject.mEntry, 0, kCDSEntryInfo_AlbumArtURI));

    EXPECT_EQ(1u, zoPackedData_GetEntryCount(theObject.mResources));
    EXPECT_EQ("15 16 0 1 2 3 4 5 6 7 9 14 10 11 ", Tags(theObject.mResources));
    EXPECT_EQ("URI1", TextOf(theObject.mResources, 0, kCDSResourceInfo_URI));
}

TEST(UPnPDIDLParseTest, JudgesDocuments)
{
    static const std::tuple<const char*, int, int> kCases[] = {
        { "", kUPnPError_InvalidDIDL, kDIDLItemType_None },
        { "no tag", kUPnPError_InvalidDIDL, kDIDLItemType_None },
        { "<DIDL-Lite></DIDL-Lite>", kUPnPError_InvalidDIDL, kDIDLItemType_None },
        { "<DIDL-Lite><item>", kUPnPError_InvalidXML, kDIDLItemType_None },
        { "<item></item><", kUPnPError_InvalidXML, kDIDLItemType_None },
        { "<item/>", kUPnPError_None, kDIDLItemType_Item },
        { "<didl-lite><x:ITEM></x:ITEM></didl-lite>", kUPnPError_None, kDIDLItemType_Item },
        { "<other/><DIDL-Lite><other><a/></other><container/></DIDL-Lite>", kUPnPError_None, kDIDLItemType_Container },
        { "<DIDL-Lite><other><item/></other></DIDL-Lite>", kUPnPError_InvalidDIDL, kDIDLItemType_None },
        { "<DIDL-Lite><item/><item/></DIDL-Lite>", kUPnPError_InvalidDIDL, kDIDLItemType_Item },
        { "<container><dc:title/><item/></container>", kUPnPError_InvalidDIDL, kDIDLItemType_Container },
        { "<item><desc><item/></desc></item>", kUPnPError_None, kDIDLItemType_Item },
        { "<item restricted=\"maybe\"/>", kUPnPError_InvalidDIDL, kDIDLItemType_None },
        { "<item searchable=\"2\" restricted=\"YES\"/>", kUPnPError_InvalidDIDL, kDIDLItemType_None },
    };
    for (const auto& [theText, theResult, theType] : kCases)
    {
        const ParsedObject theObject(theText);
        EXPECT_EQ(theResult, theObject.mResult) << theText;
        EXPECT_EQ(theType, theObject.mType) << theText;
        EXPECT_EQ(theResult == kUPnPError_None, theObject.mData && theObject.mRes) << theText;
        EXPECT_STREQ(theText, theObject.mText); // the text is as it was
    }
    char *theData = nullptr, *theRes = nullptr;
    int theType = -1;
    EXPECT_EQ(kUPnPError_InvalidDIDL, UPnPDIDL_ParseElements(nullptr, &theData, &theRes, &theType));
}

// Attributes and elements of the object, one at a time: tag, and what it reads as (a number when the text is NULL).
TEST(UPnPDIDLParseTest, TellsWhatADocumentMeansWrongly)
{
    static const char kNoObject[] = "there is no item and no container";
    static const struct
    {
        const char* mText;
        const char* mReason; // NULL: nothing is wrong
        uint32 mLine;
        uint32 mColumn;
    } kCases[] = {
        { "", kNoObject, 1, 1 },
        { "<DIDL-Lite><x><item/></x></DIDL-Lite>", kNoObject, 1, 1 },
        { "<item>\n<item restricted='1' x:Searchable='so'/></item>", "a flag is neither true nor false", 2, 36 },
        { "<DIDL-Lite><item/><item restricted=''/></DIDL-Lite>", nullptr, 0, 0 },
        { "<Result><item/></Result>", nullptr, 0, 0 }, // a root of another name
        { "<Result><item restricted='2'/></Result>", "a flag is neither true nor false", 1, 27 },
    };
    for (const auto& [theText, theReason, theLine, theColumn] : kCases)
    {
        uint32 theFoundLine = 99;
        uint32 theFoundColumn = 99;
        char* theFound = UPnPDIDL_FindError(theText, strlen(theText), &theFoundLine, &theFoundColumn);
        EXPECT_STREQ(theReason, theFound) << theText;
        EXPECT_EQ(theLine, theFoundLine) << theText;
        EXPECT_EQ(theColumn, theFoundColumn) << theText;
        free(theFound);
    }
}

TEST(UPnPDIDLParseTest, ReadsEntryFields)
{
    static const std::tuple<const char*, const char*, uint16, const char*, uint32> kCases[] = {
        { " id='a&amp;b' id='\"q\"' REFID='r'", "", kCDSEntryInfo_ItemID, "q", 0 },
        { " refid='a&amp;b'", "", kCDSEntryInfo_RefID, "a&b", 0 },
        { " restricted='0'", "", kCDSEntryInfo_Flags, nullptr, 0 },
        { " restricted=''", "", kCDSEntryInfo_Flags, nullptr, 0 },
        { " restricted='No' searchable='True'", "", kCDSEntryInfo_Flags, nullptr, 2 },
        { " childCount='12'", "", kCDSEntryInfo_ChildCount, nullptr, 12 },
        { " childCount='12' childCount='abc'", "", kCDSEntryInfo_ChildCount, nullptr, 12 },
        { " dlna:dlnaManaged='00000014'", "", kCDSEntryInfo_DLNAManaged, nullptr, 0x14 },
        { " dlnamanaged='fFFFffff'", "", kCDSEntryInfo_DLNAManaged, nullptr, 0xFFFFFFFF },
        { "", "<dc:title>a</dc:title><DC:Title>b</DC:Title><title>c</title>", kCDSEntryInfo_Title, "b", 0 },
        { "", "<dc:title><![CDATA[<&amp;>]]></dc:title>", kCDSEntryInfo_Title, "<&amp;>", 0 },
        { "", "<dc:title>a<x:b>c&lt;</x:b></dc:title>", kCDSEntryInfo_Title, "a<x:b>c<</x:b>", 0 },
        { "", "<dc:title>a<x:b>c&lt;</x:b></dc:title>", 22, "c<", 0 },
        { "", "<desc><dc:title>deep</dc:title></desc>", kCDSEntryInfo_Title, "deep", 0 },
        { "", "<dc:date>2001-02-29</dc:date>", kCDSEntryInfo_Date, "", 0 },
        { "", "<dc:date>2000-02-29T01:02:03Z</dc:date>", kCDSEntryInfo_Date, "2000-02-29T01:02:03Z", 0 },
        { "", "<dc:date/>", kCDSEntryInfo_Date, "", 0 },
        { "", "<upnp:storageMedium/>", kCDSEntryInfo_StorageMedium, "", 0 },
        { "", "<upnp:channelNr>&#55;</upnp:channelNr><upnp:channelNr>x</upnp:channelNr>", kCDSEntryInfo_ChannelNr,
          nullptr, 7 },
        { "", "<av:bgmURI av:protocolInfo='a&amp;b'>x&amp;y</av:bgmURI><av:bgmURI>z</av:bgmURI>", kCDSEntryInfo_BGMURI,
          "z", 0 },
        { "", "<av:bgmURI av:protocolInfo='a&amp;b'>x&amp;y</av:bgmURI><av:bgmURI>z</av:bgmURI>",
          kCDSEntryInfo_BGMURIProtocolInfo, "a&amp;b", 0 },
        { "",
          "<upnp:createClass includeDerived='1'>object.item</upnp:createClass><upnp:createClass/>"
          "<upnp:createClass x:includederived='true'>b</upnp:createClass>"
          "<upnp:createClass includeDerived='0'>c</upnp:createClass>",
          kCDSEntryInfo_CreateClass, "object.item,1;b;c", 0 },
        { "", "<x:a/><x:b>&amp;</x:b><y>z</y>", 24, "&", 0 },
        { "", "<x:a/>", 22, "", 0 },
        { " xmlns:a='1'", "<res xmlns:b='&amp;,' xmlns='no'/><p xmlns:a='2' XMLNS:c='no'/><XMLNS:c>3</XMLNS:c>",
          kCDSEntryInfo_XMLNS, "xmlns:a=\"1\",xmlns:b=\"&amp;\\,\",XMLNS:c=\"3\"", 0 },
        { "", "<xmlns:a><![CDATA[x]]></xmlns:a><xmlns:b>&#65;&amp;\"<z/></xmlns:b>", kCDSEntryInfo_XMLNS,
          "xmlns:a=\"x\",xmlns:b=\"A&amp;&quot;&lt;z/>\"", 0 },
        { " xmlns:a='say \"x\"'", "", kCDSEntryInfo_XMLNS, "xmlns:a=\"say &quot;x&quot;\"", 0 },
        { "", "", kCDSEntryInfo_XMLNS, "(none)", 0 },
    };
    for (const auto& [theAttributes, theContent, theTag, theText, theNumber] : kCases)
    {
        SCOPED_TRACE(Item(theAttributes, theContent));
        const ParsedObject theObject(Item(theAttributes, theContent));
        if (theText) { EXPECT_EQ(theText, TextOf(theObject.mEntry, 0, theTag)); }
        else { EXPECT_EQ(theNumber, zoPackedData_GetDataAsUInt32(theObject.mEntry, 0, theTag)); }
    }
    const ParsedObject theContainer("<DIDL-Lite xmlns='d' xm:a='1' xmlnsx:b='2' lang='en'><container/></DIDL-Lite>");
    EXPECT_EQ(3u, zoPackedData_GetDataAsUInt32(theContainer.mEntry, 0, kCDSEntryInfo_Flags));
    EXPECT_EQ(1u, zoPackedData_GetDataAsUInt16(theContainer.mEntry, 0, kCDSEntryInfo_IsContainer));
    EXPECT_EQ("xmlns=\"d\",xm:a=\"1\",lang=\"en\"", TextOf(theContainer.mEntry, 0, kCDSEntryInfo_XMLNS));
}

TEST(UPnPDIDLParseTest, ReadsResourceFields)
{
    static const std::tuple<const char*, uint16, const char*, uint64> kCases[] = {
        { "protocolInfo=' http-get:*:a/b: x&amp;y '", kCDSResourceInfo_ProtocolInfo, "http-get:*:a/b:x&y", 0 },
        { "x:PROTOCOLINFO='a:b:c:d'", kCDSResourceInfo_ProtocolInfo, "a:b:c:d", 0 },
        { "resolution='1&amp;2'", kCDSResourceInfo_Resolution, "1&amp;2", 0 },
        { "duration='1:00:01.5'", kCDSResourceInfo_Duration, nullptr, 3601 },
        { "duration='soon'", kCDSResourceInfo_Duration, nullptr, kUPnP_UnknownTime },
        { "bitrate='16000'", kCDSResourceInfo_BitRate, nullptr, 128000 },
        { "bitrate='536870911'", kCDSResourceInfo_BitRate, nullptr, 4294967288u },
        { "bitrate='536870912'", kCDSResourceInfo_BitRate, nullptr, 0xFFFFFFFFu },
        { "bitrate='8' bitrate='x'", kCDSResourceInfo_BitRate, nullptr, 64 },
        { "size='18446744073709551615'", kCDSResourceInfo_Size, nullptr, ~uint64{ 0 } },
        { "size='5' size=' 6'", kCDSResourceInfo_Size, nullptr, 0 },
        { "dlna:uploadedSize='4294967296'", kCDSResourceInfo_UploadedSize, nullptr, 4294967296u },
        { "d:resumeUpload='1'", kCDSResourceInfo_ResumeUpload, nullptr, 1 },
        { "dlnax:resumeUpload='1'", 15, "dlnax:resumeUpload", 0 },
        { "resumeUpload='1'", 16, "1", 0 },
        { "dlna:lifetime='0:00:02'", kCDSResourceInfo_LifeTime, nullptr, 5 },
        { "dlna:lifetime='1:00'", kCDSResourceInfo_LifeTime, nullptr, 15 },
        { "dlna:lifetime='7'", kCDSResourceInfo_LifeTime, nullptr, 7 },
        { "dlna:trackTotal='0'", kCDSResourceInfo_TrackTotal, "(none)", 0 },
        { "dlna:trackTotal='1'", kCDSResourceInfo_TrackTotal, nullptr, 1 },
        { "dlna:ifoFileURI=''", kCDSResourceInfo_IFOFileURI, "", 0 },
        { "", kCDSResourceInfo_IFOFileURI, "(none)", 0 },
        { "importURI='a&#38;b'", kCDSResourceInfo_ImportURI, "a&b", 0 },
        { "dtcp:uploadInfo='80000000'", kCDSResourceInfo_DTCPUploadInfo, "80000000", 0 },
        { "dlna:uploadInfo='1'", kCDSResourceInfo_DTCPUploadInfo, "", 0 },
        { "xyz:codec='a&amp;b'", 16, "a&amp;b", 0 },
        { "plain='1' xmlns:q='u' second='2'", 17, "second", 0 },
    };
    for (const auto& [theAttributes, theTag, theText, theNumber] : kCases)
    {
        SCOPED_TRACE(theAttributes);
        const ParsedObject theObject(Item("", std::string("<res ") + theAttributes + ">u</res>"));
        if (theText) { EXPECT_EQ(theText, TextOf(theObject.mResources, 0, theTag)); }
        else { EXPECT_EQ(theNumber, zoPackedData_GetDataAsUInt64(theObject.mResources, 0, theTag)); }
    }
    const ParsedObject theTwo(Item("", "<res dlna:resumeUpload='1'/><a><r:RES> x&amp;y </r:RES></a>"));
    EXPECT_EQ(2u, zoPackedData_GetEntryCount(theTwo.mResources));
    EXPECT_EQ(0u, zoPackedData_GetDataAsUInt32(theTwo.mResources, 1, kCDSResourceInfo_ResumeUpload));
    EXPECT_EQ(" x&y ", TextOf(theTwo.mResources, 1, kCDSResourceInfo_URI));
}

static std::string DescribeObject(const zoPackedData_t* anEntry, const zoPackedData_t* aResources)
{
    return TextOf(anEntry, 0, kCDSEntryInfo_ItemID) + "|" + TextOf(anEntry, 0, kCDSEntryInfo_Title) + "|" +
           TextOf(anEntry, 0, kCDSEntryInfo_XMLNS) + "|" + TextOf(aResources, 0, kCDSResourceInfo_URI) + "\n";
}

// A browse result: each object by itself, relative URIs against the base, and an object inside another one.
TEST(UPnPDIDLParseTest, ParsesObjectsOfABrowseResult)
{
    std::string theText = "<DIDL-Lite xmlns:r='1'><container id='c'><res>media/42</res><item id='i'>"
                          "<dc:title>A &amp; B</dc:title><res>http://h/x</res></item></container></DIDL-Lite>";
    ILibXMLNode* theNodes = ILibParseXML(theText.data(), 0, theText.size());
    ASSERT_EQ(kILibProcessXML_NoError, ILibProcessXMLNodeList(theNodes));
    std::string theFound;
    for (ILibXMLNode* theNode = theNodes->Next; theNode; theNode = theNode->Next)
    {
        const std::string theName(theNode->Name, static_cast<size_t>(theNode->NameLength));
        if (!theNode->StartTag || (theName != "item" && theName != "container")) { continue; }
        char *theData = nullptr, *theRes = nullptr;
        ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
        EXPECT_EQ(
            1, UPnPDIDL_Parse("http://h/a/b", theNodes, theNode, theAttributes, theName == "item", &theData, &theRes));
        ILibDestructXMLAttributeList(theAttributes);
        const PackedData theEntry = zoPackedData_NewData(theData), theResources = zoPackedData_NewData(theRes);
        theFound += DescribeObject(theEntry, theResources);
    }
    EXPECT_EQ("c|A & B|xmlns:r=\"1\"|http://h/a/media/42\ni|A & B|xmlns:r=\"1\"|http://h/x\n", theFound);
    ILibDestructXMLNodeList(theNodes);

    // An element without an end tag, which ILibProcessXMLNodeList would have told: a programming error.
    theText = "<item><dc:title>";
    theNodes = ILibParseXML(theText.data(), 0, theText.size());
    AssertionCatcher theCatcher;
    char *theData = nullptr, *theRes = nullptr;
    UPnPDIDL_Parse(nullptr, nullptr, theNodes, nullptr, 1, &theData, &theRes);
    EXPECT_EQ("Libs/Internal/UPnP/Utilities/UPnPDIDL.cpp: aNode != NULL", theCatcher.Text());
    free(theData);
    free(theRes);
    ILibDestructXMLNodeList(theNodes);
}

// Each object without those inside it, and an invalid one does not end the walk.
TEST(UPnPDIDLParseTest, ReadsADocumentObjectByObject)
{
    std::string theText = "<a/><DIDL-Lite xmlns:r='1'><container id='c'><res>media/42</res><item id='i'>"
                          "<dc:title>A &amp; B</dc:title><DIDL-Lite><item/></DIDL-Lite></item><item restricted='x'/>"
                          "</container><desc><item/></desc><item id='j'><res>http://h/x</res></item></DIDL-Lite>";
    UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(theText.c_str(), "http://h/a/b");
    std::string theFound;
    for (int theType = -1; theType != kDIDLItemType_None;)
    {
        char *theData, *theRes;
        const int theResult = UPnPDIDLDocument_NextObject(theDocument, &theData, &theRes, &theType);
        const PackedData theEntry = zoPackedData_NewData(theData), theResources = zoPackedData_NewData(theRes);
        theFound += std::to_string(theResult) + std::to_string(theType) + DescribeObject(theEntry, theResources);
    }
    EXPECT_EQ("02c||xmlns:r=\"1\"|http://h/a/media/42\n01i|A & B|xmlns:r=\"1\"|(none)\n"
              "-61(none)|(none)|(none)|(none)\n01j||xmlns:r=\"1\"|http://h/x\n00(none)|(none)|(none)|(none)\n",
              theFound);
    UPnPDIDLDocument_Delete(theDocument);
    theText = "<item>";
    EXPECT_EQ(nullptr, UPnPDIDLDocument_New(theText.c_str(), nullptr));
}

// What was parsed and is written again is what was parsed, apart from what an item can't say.
TEST(UPnPDIDLTest, WritesWhatItParsed)
{
    const ParsedObject theObject(
        "<DIDL-Lite xmlns:dc=\"a,b\"><container id='1&amp;2' parentID=\"p\" restricted='0' refID='r' childCount='3'>"
        "<dc:title>T<b/></dc:title><upnp:class>c</upnp:class><dc:creator>&lt;C&gt;</dc:creator><dc:date>2001-01-01</dc:date>"
        "<upnp:genre>g</upnp:genre><upnp:album>a</upnp:album><upnp:channelNr>007</upnp:channelNr>"
        "<upnp:albumArtURI dlna:profileID='P'>x</upnp:albumArtURI><upnp:albumArtURI>y</upnp:albumArtURI>"
        "<av:bgmURI av:protocolInfo='q'>z</av:bgmURI><x:e k='v'><x:f>1&amp;2</x:f></x:e>"
        "<res bitrate='9' duration='0:00:01.900' resolution='1&amp;2' dlna:ifoFileURI='i' x:y='&lt;' size='08'>u</res>"
        "</container></DIDL-Lite>");
    ASSERT_EQ(kUPnPError_None, theObject.mResult);
    EXPECT_EQ("<DIDL-Lite xmlns:dc=\"a,b\"><item id=\"1&amp;2\" parentID=\"p\" restricted=\"1\">"
              "<upnp:albumArtURI dlna:profileID=\"P\">x</upnp:albumArtURI><upnp:albumArtURI>y</upnp:albumArtURI>"
              "<dc:title>T&lt;b/&gt;</dc:title><upnp:class>c</upnp:class><dc:creator>&lt;C&gt;</dc:creator>"
              "<dc:date>2001-01-01</dc:date><upnp:genre>g</upnp:genre><upnp:album>a</upnp:album>"
              "<upnp:channelNr>7</upnp:channelNr><av:bgmURI av:profileID=\"q\">z</av:bgmURI>"
              "<x:e>&lt;x:f&gt;1&amp;2&lt;/x:f&gt;</x:e><x:f>1&amp;2</x:f>"
              "<res bitrate=\"9\" duration=\"00:00:01\" resolution=\"1&amp;amp;2\" size=\"8\" dlna:ifoFileURI=\"i\""
              " x:y=\"&amp;lt;\">u</res></item></DIDL-Lite>",
              theObject.Write());
}

TEST(UPnPDIDLTest, SurvivesEveryCut)
{
    const std::string theDocument = ReadTestFile("didl/minidlna-001.xml");
    ASSERT_EQ(kUPnPError_None, ParsedObject(theDocument).mResult);
    for (size_t theSize = 0; theSize < theDocument.size(); ++theSize)
    {
        const ParsedObject theObject(std::string_view(theDocument).substr(0, theSize));
        EXPECT_EQ(theObject.mResult == kUPnPError_None, theObject.mData && theObject.mRes) << "cut at " << theSize;
    }
}

namespace
{

// An object that is parsed as one of many: the first element in its document's root.
struct ParsedMember
{
    ParsedMember(std::string aText, const char* aBaseURL) : mText(std::move(aText)), mBaseURL(aBaseURL) {}
    ~ParsedMember() { ILibDestructXMLNodeList(mNodes); }

    std::string mText;
    const char* mBaseURL;
    ILibXMLNode* mNodes = ILibParseXML(mText.data(), 0, mText.size());
    char* mData = nullptr; // belongs to mEntry
    char* mRes = nullptr;  // belongs to mResources
    int mFault = ILibProcessXMLNodeList(mNodes);
    int mResult = UPnPDIDL_Parse(mBaseURL, mNodes, mNodes->Next, nullptr, 1, &mData, &mRes);
    PackedData mEntry = zoPackedData_NewData(mData);
    PackedData mResources = zoPackedData_NewData(mRes);
};

std::string Declarations(const char* aPrefix, int aCount)
{
    std::string theText;
    for (int i = 0; i < aCount; ++i)
        theText += std::string(" xmlns:") + aPrefix + std::to_string(i) + "='" + std::to_string(i) + "'";
    return theText;
}

} // namespace

// A text that a caller reads by its length may have NULs; they don't make two strings of one.
TEST(UPnPDIDLTest, EndsAlbumArtAtANul)
{
    std::string theText =
        "<DIDL-Lite><item><upnp:albumArtURI dlna:profileID='P'>x_y</upnp:albumArtURI></item></DIDL-Lite>";
    std::replace(theText.begin(), theText.end(), '_', '\0');
    const ParsedMember theObject(theText, nullptr);
    EXPECT_EQ("x|P|", TextsOf(theObject.mEntry, 0, kCDSEntryInfo_AlbumArtURI));
}

TEST(UPnPDIDLTest, InheritsDeclarationsWithinBounds)
{
    const std::string theQuotes(200, '"');
    const std::string theLong(246, 'u'); // the longest that fits as the only one
    const struct
    {
        std::string mRoot, mItem, mStored;
    } kCases[] = {
        { " xmlns:a='" + theLong + "'", "", "xmlns:a=\"" + theLong + "\"" },
        { " xmlns:a='" + theLong + "u' xmlns:b=',' c='1' xmlns='d'", "", "xmlns=\"d\",xmlns:b=\"\\,\",c=\"1\"" },
        { " xmlns:q='" + theQuotes + "' xmlns:b='2' xmlns='d'", "<q:r xmlns:q='3'/>",
          "xmlns=\"d\",xmlns:b=\"2\",xmlns:q=\"3\"" },
        { Declarations("n", 40) + " xmlns:y='2' xmlns:x='1' xmlns:y='3'", "<p x:r='1'><y:r/></p>",
          "xmlns:y=\"2\",xmlns:x=\"1\",xmlns:n0=\"0\"" },
        { Declarations("n", 300) + Declarations("n", 300), "", "xmlns:n0=\"0\",xmlns:n1=\"1\"" },
        { " xmlns:a=\"1\" xmlns:b=\"2\"", "<p xmlns:b='3' xmlns:c='4'/>", "xmlns:a=\"1\",xmlns:b=\"2\",xmlns:c=\"4\"" },
        { " xmlns:ax=\"1\" xmlns:ix=\"2\" xmlns:ax=\"3\"", "", "xmlns:ax=\"1\",xmlns:ix=\"2\"" },
    };
    for (const auto& theCase : kCases)
    {
        const std::string theText = "<DIDL-Lite" + theCase.mRoot + "><item>" + theCase.mItem + "</item></DIDL-Lite>";
        const std::string theStored = TextOf(ParsedMember(theText, nullptr).mEntry, 0, kCDSEntryInfo_XMLNS);
        EXPECT_EQ(theCase.mStored, theStored.substr(0, theCase.mStored.size())) << theCase.mRoot;
        EXPECT_LE(theStored.size(), 256u);

        // Objects that are read one after the other inherit what they do alone, from their own root.
        const std::string theItem = "<item>" + theCase.mItem + "<p>" + std::string(200, 't') + "</p></item>";
        const std::string theRoot = "<DIDL-Lite" + theCase.mRoot + ">" + theItem;
        const std::string theAlone =
            TextOf(ParsedMember(theRoot + "</DIDL-Lite>", nullptr).mEntry, 0, kCDSEntryInfo_XMLNS);
        const std::string theMany = "<DIDL-Lite o=''><item/></DIDL-Lite>" + theRoot + theItem + "</DIDL-Lite>";
        UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(theMany.c_str(), nullptr);
        for (const std::string& theExpected : { std::string("o=\"\""), theAlone, theAlone })
        {
            char *theData, *theRes;
            int theType;
            EXPECT_EQ(kUPnPError_None, UPnPDIDLDocument_NextObject(theDocument, &theData, &theRes, &theType));
            EXPECT_EQ(theExpected, TextOf(PackedData(zoPackedData_NewData(theData)), 0, kCDSEntryInfo_XMLNS));
            free(theRes);
        }
        UPnPDIDLDocument_Delete(theDocument);
    }

    // The only object of a document has all, each once.
    const std::string theTwice =
        "<DIDL-Lite" + Declarations("n", 99) + "><item" + Declarations("n", 99) + "/></DIDL-Lite>";
    std::string theAll = Declarations("n", 99).substr(1);
    std::replace(theAll.begin(), theAll.end(), ' ', ',');
    std::replace(theAll.begin(), theAll.end(), '\'', '"');
    EXPECT_EQ(theAll, TextOf(ParsedObject(theTwice).mEntry, 0, kCDSEntryInfo_XMLNS));
}

// A URI becomes absolute or stays as it is; none is lost.
TEST(UPnPDIDLTest, MakesURIsAbsoluteWithinBounds)
{
    static const std::tuple<size_t, size_t> kCases[] = { { 411, 9 }, { 1024, 3 }, { 1025, 0 } };
    for (const auto& [theBaseLength, theExpected] : kCases)
    {
        const std::string theBase = "http://h/" + std::string(theBaseLength - 10, 'x') + "/";
        const ParsedMember theObject("<a>" + Item("", Repeated("<res>u</res>", 20)) + "</a>", theBase.c_str());
        size_t theCount = 0;
        for (uint32 i = 0; i < 20; ++i)
        {
            const std::string theURI = TextOf(theObject.mResources, i, kCDSResourceInfo_URI);
            theCount += theURI == theBase + "u";
            EXPECT_TRUE(theURI == "u" || theURI == theBase + "u") << theURI;
        }
        EXPECT_EQ(theExpected, theCount) << theBaseLength;
    }
}

TEST(UPnPDIDLTest, StoresNestedMarkupWithinBounds)
{
    for (const char* theName :
         { "x:stored", "dc:title", "upnp:albumArtURI", "upnp:createClass", "xmlns:n", "res", "plain" })
    {
        const size_t kLevels = 20000;
        const std::string theEnd = std::string(theName) + ">";
        const std::string theText = Repeated("<" + theEnd, kLevels) + "deep" + Repeated("</" + theEnd, kLevels);
        const ParsedObject theObject(Item("", theText));
        ASSERT_EQ(kUPnPError_None, theObject.mResult) << theName;
        EXPECT_LT(zoPackedData_GetMemoryUsage(theObject.mEntry), theText.size() * 7) << theName;
        EXPECT_LT(zoPackedData_GetMemoryUsage(theObject.mResources), theText.size() * 30) << theName;
        if (strcmp(theName, "dc:title") == 0) { EXPECT_EQ("deep", TextOf(theObject.mEntry, 0, kCDSEntryInfo_Title)); }
        if (strcmp(theName, "upnp:albumArtURI") == 0)
        {
            const size_t theTag = theEnd.size() + 1;
            const std::string theOuter = theText.substr(theTag, theText.size() - 2 * theTag - 1);
            EXPECT_EQ(0U, TextsOf(theObject.mEntry, 0, kCDSEntryInfo_AlbumArtURI).find(theOuter + "||"));
        }
        if (strcmp(theName, "x:stored") == 0) { EXPECT_GT(TextOf(theObject.mEntry, 0, 22).size(), kLevels); }
    }

    // What some elements store is not missing for others.
    const std::string theDeep = Repeated("<a:b>", 10) + std::string(20000, 'x') + Repeated("</a:b>", 10);
    const ParsedObject theOther(Item("", theDeep + "<res>u</res><upnp:albumArtURI>v</upnp:albumArtURI>"));
    EXPECT_EQ("u", TextOf(theOther.mResources, 0, kCDSResourceInfo_URI));
    EXPECT_EQ("v|", TextsOf(theOther.mEntry, 0, kCDSEntryInfo_AlbumArtURI).substr(0, 2));

    std::string theMany;
    for (int i = 0; i < 33000; ++i)
        theMany += "<x:e>" + std::to_string(i) + "</x:e>";
    const ParsedObject theObject(Item("", theMany + "<dc:title>t&amp;u</dc:title>"));
    EXPECT_EQ("t&u", TextOf(theObject.mEntry, 0, kCDSEntryInfo_Title));
    EXPECT_EQ("0", TextOf(theObject.mEntry, 0, 22));
    EXPECT_EQ("32756", TextOf(theObject.mEntry, 0, 0xFFFE));
    EXPECT_EQ("(none)", TextOf(theObject.mEntry, 0, 0xFFFF));
    EXPECT_EQ(0xFFFE, zoPackedData_GetTagCount(theObject.mEntry, 0)); // all tags but the namespace list's and the last
}
