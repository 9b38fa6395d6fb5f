#include "Support/ParsedObject.h"
#include <gtest/gtest.h>

// Metadata that strict readers take. What they take themselves is tested where texts are made at random (Fuzz).

namespace
{

const std::string kDefault = "xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\"";
const std::string kDC = "xmlns:dc=\"http://purl.org/dc/elements/1.1/\"";
const std::string kUPnP = "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\"";
const std::string kDLNA = "xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\"";
const std::string kBad = "\xEF\xBF\xBD"; // U+FFFD

struct Written
{
    Written(zoPackedData_t* anEntry, zoPackedData_t* aResources, int afHeader = 1)
        : mText(Taken(UPnPDIDL_GetSendable(anEntry, aResources, afHeader, 1, nullptr, &mRepairs)))
    {}
    // Replaced, pairs and declarations left out, declarations added.
    std::string Repairs() const
    {
        return std::to_string(mRepairs.mReplaced) + " " + std::to_string(mRepairs.mPairsLeftOut) + " " +
               std::to_string(mRepairs.mDeclarationsLeftOut) + " " + std::to_string(mRepairs.mDeclarationsAdded);
    }
    bool IsSendable() const { return UPnPDIDL_IsSendable(mText.data(), mText.size()) != 0; }

    UPnPDIDLRepairs_t mRepairs = { 9, 9, 9, 9 };
    std::string mText;
};

std::string Titled(const std::string& aTitle)
{
    return "<DIDL-Lite " + kDefault + " " + kDC + "><item restricted=\"1\"><dc:title>" + aTitle +
           "</dc:title></item></DIDL-Lite>";
}

} // namespace

TEST(UPnPDIDLSendableTest, ReplacesWhatIsNotXMLInUTF8)
{
    const std::string theLong(252, 'x');
    const struct
    {
        std::string mTitle;
        std::string mWritten;
        uint32 mReplaced;
    } kCases[] = {
        { "a<\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\t\n\r\x7F", "a&lt;\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\t\n\r\x7F",
          0 },
        { "\xE4 \xFF\x80", kBad + " " + kBad + kBad, 3 },                       // Latin-1, and what begins nothing
        { "\xE2\x82x\xF0\x9F\x98", kBad + "x" + kBad, 2 },                      // cut short: one for each beginning
        { "\xC0\xAF\xE0\x9F\xBF", kBad + kBad + kBad + kBad + kBad, 5 },        // longer forms than needed
        { "\xED\xA0\x80\xED\x9F\xBF", kBad + kBad + kBad + "\xED\x9F\xBF", 3 }, // a surrogate; the last before them
        { "\xF4\x90\x80\x80\xF5", kBad + kBad + kBad + kBad + kBad, 5 },        // past U+10FFFF
        { "\x01\x1F\x0B\xEF\xBF\xBE\xEF\xBF\xBF" + kBad, kBad + kBad + kBad + kBad + kBad + kBad, 5 },
        { theLong + "\xFF!", theLong + kBad, 1 }, // three bytes of 255
        { theLong + "y\xFF", theLong + "y", 0 },  // no room, not even counted
        { theLong + "yz\xC3\xA9", theLong + "yz", 0 },
        { theLong + "yz\xC3", theLong + "yz", 0 },
        { theLong + "&", theLong, 0 },
    };
    for (const auto& [theTitle, theText, theReplaced] : kCases)
    {
        const PackedData theEntry = NewEntry();
        AddText(theEntry, kCDSEntryInfo_Title, theTitle);
        AddText(theEntry, kCDSEntryInfo_XMLNS, kDefault + "," + kDC);
        const Written theWritten(theEntry, nullptr);
        EXPECT_EQ(Titled(theText), theWritten.mText);
        EXPECT_EQ(std::to_string(theReplaced) + " 0 0 0", theWritten.Repairs()) << theTitle;
        EXPECT_TRUE(theWritten.IsSendable()) << theTitle;
    }
}

TEST(UPnPDIDLSendableTest, RepairsDeclarations)
{
    const std::string theBase = kDefault + " " + kUPnP + " " + kDC;
    const struct
    {
        std::string mList;
        std::string mWritten;
        const char* mRepairs;
    } kCases[] = {
        { kDefault + "," + kUPnP + "," + kDC + ",lang=\"en\",xml:lang='a\\,b'", theBase + " lang=\"en\" xml:lang='a,b'",
          "0 0 0 0" },
        { kDefault + "," + kUPnP + "," + kDC + ", ,", theBase + "   ", "0 0 0 0" }, // as it is
        { "", theBase, "0 0 0 3" },
        { kDefault + ",xmlns:dc=\"\"," + kUPnP, kDefault + " " + kUPnP + " " + kDC, "0 0 1 1" },
        { "xmlns=\"\",xmlns:dc=\"d\",xmlns:upnp=\"u\"", "xmlns:dc=\"d\" xmlns:upnp=\"u\" " + kDefault, "0 0 1 1" },
        { kDefault + "," + kUPnP + "," + kDC + "," + kDC + ",xmlns:dc=\"x\"", theBase, "0 0 2 0" },
        { kDefault + ",xmlns:xml=\"x\",xmlns:a=\"http://www.w3.org/XML/1998/namespac&#101;\",xmlns:xmlns=\"y\"," + kDC +
              ",xmlns:xml=\"http://www.w3.org/XML/1998/namespace\"," + kUPnP,
          kDefault + " " + kDC + " xmlns:xml=\"http://www.w3.org/XML/1998/namespace\" " + kUPnP, "0 0 3 0" },
        { "xmlns:a=\"&x;\",xmlns:b=\"<\",xmlns:c=\"&#97;\\,\",xmlns:g=\"\xFF\",1=\"\",no,XMLNS:d=\"e\",f:g=\"h\"",
          "xmlns:c=\"&#97;,\" " + kDefault + " " + kUPnP + " " + kDC, "0 0 7 3" },
        // Nothing of what can't be read counts.
        { kDefault + "," + kUPnP + "," + kDC + ",xmlns:a=\"x\" no,xmlns:a=\"y\"", theBase + " xmlns:a=\"y\"",
          "0 0 1 0" },
    };
    for (const auto& [theList, theDeclarations, theRepairs] : kCases)
    {
        const PackedData theEntry = NewEntry();
        AddTexts(theEntry, { { kCDSEntryInfo_Title, "T" }, { kCDSEntryInfo_ItemClassName, "C" } });
        AddText(theEntry, kCDSEntryInfo_XMLNS, theList);
        const Written theWritten(theEntry, nullptr);
        EXPECT_TRUE(theWritten.IsSendable()) << theWritten.mText;
        EXPECT_EQ(theRepairs, theWritten.Repairs()) << theList;
        EXPECT_EQ("<DIDL-Lite " + theDeclarations, theWritten.mText.substr(0, theWritten.mText.find("><item")));
    }
}

TEST(UPnPDIDLSendableTest, LeavesOutPairsThatCantBeWritten)
{
    const PackedData theEntry = NewEntry();
    AddTexts(theEntry, { { 21, "a:ok" },        { 22, "1&2" }, { 23, "b:undeclared" }, { 24, "x" },
                         { 25, "a:b:c" },       { 26, "x" },   { 27, "1a" },           { 28, "x" },
                         { 29, "xmlns:d" },     { 30, "x" },   { 31, "a:\xC3\xA9" },   { 32, "\x02" },
                         { 33, "dc:language" }, { 34, "en" },  { 35, "plain" },        { 36, "p" },
                         { 37, "xml:base" },    { 38, "u" },   { 39, "a:" },           { 40, "x" } });
    AddText(theEntry, kCDSEntryInfo_XMLNS, kDefault + ",xmlns:a=\"urn:a\",xmlns:aa=\"urn&#58;a\"");
    const PackedData theResources = zoPackedData_New(0);
    zoPackedData_AddNewEntry(theResources);
    AddTexts(theResources, { { kCDSResourceInfo_URI, "u" },
                             { kCDSResourceInfo_Resolution, "1x2" },
                             { kCDSResourceInfo_IFOFileURI, "i" },
                             { 15, "a:k" },
                             { 16, "1" },
                             { 17, "aa:k" },
                             { 18, "2" }, // the same namespace
                             { 19, "k" },
                             { 20, "3" },
                             { 21, "resolution" },
                             { 22, "4" }, // a field
                             { 23, "size" },
                             { 24, "5" }, // one that is not written
                             { 25, "xmlns:a" },
                             { 26, "x" },
                             { 27, "x='1' y" },
                             { 28, "x" },
                             { 29, "dlna:ifoFileURI" },
                             { 30, "x" },
                             { 31, "xml:id" },
                             { 32, "x" },
                             { 33, "bare" } });
    const Written theWritten(theEntry, theResources);
    EXPECT_EQ(
        "<DIDL-Lite " + kDefault + " xmlns:a=\"urn:a\" xmlns:aa=\"urn&#58;a\" " + kDC + " " + kDLNA +
            "><item restricted=\"1\"><a:ok>1&amp;2</a:ok><a:\xC3\xA9>" + kBad +
            "</a:\xC3\xA9>"
            "<dc:language>en</dc:language><plain>p</plain><xml:base>u</xml:base>"
            "<res resolution=\"1x2\" dlna:ifoFileURI=\"i\" a:k=\"1\" k=\"3\" size=\"5\">u</res></item></DIDL-Lite>",
        theWritten.mText);
    EXPECT_EQ("1 12 0 2", theWritten.Repairs());
    EXPECT_TRUE(theWritten.IsSendable());
}

// More names than are compared one by one.
TEST(UPnPDIDLSendableTest, KeepsManyNamesApart)
{
    const PackedData theEntry = NewEntry();
    const PackedData theResources = zoPackedData_New(0);
    zoPackedData_AddNewEntry(theResources);
    std::string theList = kDefault;
    for (uint16 i = 0; i < 100; ++i)
    {
        const std::string theNumber = std::to_string(i % 50);
        theList += ",xmlns:p" + theNumber + "=\"urn:n" + std::to_string(i % 25) + "\"";
        AddText(theResources, static_cast<uint16>(15 + 2 * i), "p" + theNumber + ":k");
        AddText(theResources, static_cast<uint16>(16 + 2 * i), theNumber);
    }
    AddText(theResources, kCDSResourceInfo_URI, "u");
    AddText(theEntry, kCDSEntryInfo_XMLNS, theList);
    const Written theWritten(theEntry, theResources);
    EXPECT_EQ("0 75 50 0", theWritten.Repairs());
    EXPECT_TRUE(theWritten.IsSendable()) << theWritten.mText;
}

TEST(UPnPDIDLSendableTest, WritesWithoutARecordOrAHeader)
{
    const Written theEmpty(nullptr, nullptr);
    EXPECT_EQ("<DIDL-Lite " + kDefault + "><item></item></DIDL-Lite>", theEmpty.mText);
    EXPECT_EQ("0 0 0 1", theEmpty.Repairs());
    const PackedData theEntry = NewEntry();
    EXPECT_EQ(" " + kDefault + "><item restricted=\"1\"></item>", Written(theEntry, nullptr, 0).mText);
    EXPECT_EQ(" " + kDefault + "><item></item>", Written(nullptr, nullptr, 0).mText);
}

TEST(UPnPDIDLSendableTest, JudgesTexts)
{
    static const std::pair<const char*, bool> kCases[] = {
        { "\xEF\xBB\xBF<?xml version='1.0' encoding = \"Utf-8\" standalone='no' ?>\n<!-- a - b --><?x y?>"
          "<a xmlns='u'><x:b xmlns:x=\"&#x41;&#66;\" x:c='>' c='\"'/>&lt;]]&gt;<![CDATA[<&]]><d xmlns='v'></d ></a>\n",
          true },
        { "", false },
        { "x", false },
        { "<a/>", false }, // in no namespace
        { "<a xmlns='u'><b xmlns=''/></a>", false },
        { "<a xmlns='u'/><b xmlns='u'/>", false },
        { "<a xmlns='u'/>x", false },
        { "<a xmlns='u'><b></a></b>", false },
        { "<a xmlns='u'>", false },
        { "<a xmlns='u' b='1'c='2'/>", false },
        { "<a xmlns='u' b='1' b='2'/>", false },
        { "<a xmlns='u' xmlns:x='v' xmlns:y='v' x:b='' y:b=''/>", false },
        { "<a xmlns='u' xmlns:x='v' xmlns:y='w' x:b='' y:b='' b=''/>", true },
        { "<a xmlns='u' xmlns:x='v'><b xmlns:x='w' xmlns:y='v' x:c='' y:c=''/><b x:c=''/></a>", true },
        { "<a xmlns='u'><b xmlns:x='v'/><x:c/></a>", false }, // declared elsewhere
        { "<a xmlns='u' b='<'/>", false },
        { "<a xmlns='u' b='&c;'/>", false },
        { "<a xmlns='u'>&#0;</a>", false },
        { "<a xmlns='u'>&#xD800;</a>", false },
        { "<a xmlns='u'>&#1114112;</a>", false },
        { "<a xmlns='u'>&#x10FFFF;&#9;</a>", true },
        { "<a xmlns='u'>& </a>", false },
        { "<a xmlns='u'>]]></a>", false },
        { "<a xmlns='u'>\xFF</a>", false },
        { "<a xmlns='u'><!-- -- --></a>", false },
        { "<a xmlns='u'><!-- --->-->", false },
        { "<a xmlns='u'><?xml y?></a>", false },
        { " <?xml version='1.0'?><a xmlns='u'/>", false },
        { "<?xml version='1.0' encoding='latin1'?><a xmlns='u'/>", false },
        { "<?xml version='1.1'?><a xmlns='u'/>", false },
        { "<!DOCTYPE a><a xmlns='u'/>", false },
        { "<a xmlns='u'><xmlns:b/></a>", false },
        { "<a xmlns='u'><:b/></a>", false },
        { "<a xmlns='u'><\xC3\x97/></a>", false }, // a sign, not a letter
        { "<a xmlns='http://www.w3.org/2000/xmlns/'/>", false },
        { "<a xmlns='u'><b xml:id='c'/></a>", false }, // some readers check it
        { "<a xmlns='u' xml:lang='c'><xml:id/></a>", true },
        { "<a xmlns='http://h_1.x:8080/p?q:r#f:?'/>", true },
        { "<a xmlns='urn:a:b//c' xmlns:x='http:/h' xmlns:y='p//='/>", true },
        { "<a xmlns='u&#10;'/>", false }, // not a URI, as the rest
        { "<a xmlns='http://h:80:8/'/>", false },
        { "<a xmlns='http://h:/'/>", false },
        { "<a xmlns='http://h:999999/'/>", false },
        { "<a xmlns='http://[h/'/>", false },
        { "<a xmlns='u:v#w&amp;x'/>", false }, // libxml2 sees a second "#", in "&#38;"
        { "<a xmlns='urn:%4'/>", false },
        { "<a xmlns='urn:a#b#c'/>", false },
        { "<a xmlns='1a:b'/>", false },
        { "<a xmlns=':b'/>", false },
    };
    for (const auto& [theText, fIsSendable] : kCases)
        EXPECT_EQ(fIsSendable, UPnPDIDL_IsSendable(theText, strlen(theText)) != 0) << theText;
    EXPECT_FALSE(UPnPDIDL_IsSendable(nullptr, 0));
    EXPECT_FALSE(UPnPDIDL_IsSendable("<a xmlns='u'/>", 15)); // with its NUL
}

// Documents of real servers: nearly all are sendable as they are, and come out the same.
TEST(UPnPDIDLSendableTest, KeepsWhatIsSendable)
{
    size_t theSame = 0;
    for (const char* theName : { "didl/gerbera-017.xml", "didl/minidlna-003.xml" })
    {
        const ParsedObject theObject(ReadTestFile(theName));
        const std::string theText = theObject.Write();
        const Written theWritten(theObject.mEntry, theObject.mResources);
        const bool fIsSendable = UPnPDIDL_IsSendable(theText.data(), theText.size()) != 0;
        EXPECT_EQ(fIsSendable, theWritten.Repairs() == "0 0 0 0") << theName;
        EXPECT_EQ(fIsSendable, theText == theWritten.mText) << theName;
        theSame += fIsSendable;
    }
    EXPECT_GT(theSame, 0u);
}
