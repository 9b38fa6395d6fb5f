#include "RunTool.h"

#include <UPnP/Stack/ILibXML.h>
#include <gtest/gtest.h>
#include <utility>

namespace
{

const char* const kConsole = "Xbox/2.0.4552.0 UPnP/1.0 Xbox/2.0.4552.0";

// A template of Examples/ with its parts, in the order of the markers.
struct Example
{
    const char* mFolder;
    bool mfIsDevice;
    Words mParts;
    Words mFeatures; // those that its parts depend on
};

const Example kAVTransport = {
    "AVTransport",
    false,
    { ":nexturi=SetNextAVTransportURI", ":byteseek=GetBytePositionInfo",
      ":transportstatuslist=", ":playspeedlist=", ":playmodelist=", ":byteseek=BytePositions", ":seekmodelist=" },
    { "TimeSeek", "ByteSeek", "SupportRVU" },
};
const Example kContentDirectory = {
    "ContentDirectory",
    false,
    { ":featurelist=GetFeatureList", ":search=Search", ":upload=CreateObject", ":updateobject=UpdateObject",
      ":featurelist=FeatureList", ":containerupdateids=ContainerUpdateIDs", ":search=SearchCriteria",
      ":updateobject=TagValueList" },
    { "GetFeatureList", "Search", "Upload", "UpdateObject", "ContainerUpdateIDs" },
};
const Example kMediaServer = {
    "MediaServer",
    true,
    { ":srs=ScheduledRecording", ":energymanagement=EnergyManagement", ":basicmanagement=BasicManagement",
      ":configurationmanagement=ConfigurationManagement", ":msregistrar=MediaReceiverRegistrar" },
    { "SRS", "EnergyManagement", "BasicManagement", "ConfigurationManagement", "MSRegistrar" },
};

std::string DescribeExample(const Example& anExample, const Words& anOptions)
{
    const std::string theFolder = std::string(TEST_DATA) + "/../../Examples/" + anExample.mFolder + "/";
    Words theArguments = { "describe", theFolder + "template.xml" };
    if (anExample.mfIsDevice) { theArguments.push_back("--device"); }
    for (const std::string& thePart : anExample.mParts)
    {
        const size_t theFile = thePart.find('=') + 1;
        const bool fHasText = theFile < thePart.size();
        theArguments.push_back("--part=" + thePart.substr(0, theFile) +
                               (fHasText ? theFolder + thePart.substr(theFile) + ".xml" : ""));
    }
    const Result theResult = RunTool(Joined(theArguments, anOptions));
    EXPECT_EQ(0, theResult.mStatus) << theResult.mError;
    return theResult.mOutput;
}

bool Has(const std::string& aText, const std::string& aPiece) { return aText.find(aPiece) != std::string::npos; }

// Whether a description is XML in which no action refers to a state variable that isn't there.
void ExpectSound(const std::string& aDescription)
{
    static const std::string kTag = "<relatedStateVariable>";
    std::string theText = aDescription;
    ILibXMLNode* theNodes = ILibParseXML(theText.data(), 0, theText.size());
    EXPECT_TRUE(theNodes && ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError) << aDescription;
    for (size_t theTag = theText.find(kTag); theTag != theText.npos; theTag = theText.find(kTag, theTag + 1))
    {
        const size_t theBegin = theTag + kTag.size();
        const std::string theVariable = theText.substr(theBegin, theText.find('<', theBegin) - theBegin);
        EXPECT_TRUE(Has(aDescription, "\"><name>" + theVariable + "</name><dataType>")) << theVariable;
    }
    ILibDestructXMLNodeList(theNodes);
}

} // namespace

TEST(HookToolTest, DescribesEachFeature)
{
    for (const Example* theExample : { &kAVTransport, &kContentDirectory, &kMediaServer })
    {
        const std::string theBare = DescribeExample(*theExample, {});
        ExpectSound(theBare);
        for (const std::string& theFeature : theExample->mFeatures)
        {
            const std::string theText = DescribeExample(*theExample, { "--feature", theFeature });
            ExpectSound(theText);
            EXPECT_GT(theText.size(), theBare.size()) << theFeature;
        }
    }
    EXPECT_EQ(DescribeExample(kContentDirectory, { "--feature", "Search" }),
              DescribeExample(kContentDirectory, { "--user-agent", kConsole }));
    const std::string theTransport = DescribeExample(kAVTransport, { "--feature=ByteSeek" });
    for (const char* thePiece :
         { "<defaultValue>TRACK_NR</defaultValue><allowedValueList><allowedValue>TRACK_NR</allow",
           ">X_DLNA_GetBytePositionInfo<", "<name>SetNextAVTransportURI</name>",
           "<defaultValue>1</defaultValue></stateVariable>" })
        EXPECT_TRUE(Has(theTransport, thePiece)) << thePiece;
    EXPECT_FALSE(Has(DescribeExample(kAVTransport, { "--feature=NoSetNextURI" }), "<name>SetNextAVTransportURI"));
}

TEST(HookToolTest, DescribesToTheByte)
{
    const ScratchFile theText("1%@\n"), theOther("2\n");
    const std::string theFile = theText.Path(), theOtherFile = theOther.Path();
    const std::tuple<const char*, Words, const char*> kCases[] = {
        { "<a>%\r\n@%%</a>\r\n\n", {}, "<a>%\r\n@%%</a>" },
        { "%@<a>%%@@%@</a>",
          { "--part", ":x=", "--part=a:y:timeseek=" + theFile, "--part", ":upload=" + theOtherFile, "--feature=Upload",
            "--feature", "TimeSeek", "--feature", "TimeSeek" },
          "<a>%1%@\n@2\n</a>" },
        { "%@%@<a>", { "--part=:timeseek=" + theFile, "--part=:nexturi=" + theOtherFile }, "2\n<a>" },
        { "%@<a>",
          { "--part=:playmodelist=", "--property=PlayModeList=A=B,,C" },
          "<allowedValueList><allowedValue>NORMAL</allowedValue><allowedValue>A=B</allowedValue>"
          "<allowedValue>C</allowedValue></allowedValueList><a>" },
        { "%@<a>", { "--part=:playspeedlist=" + theFile, "--property", "PlaySpeedList=," }, "<a>" },
        { "%@<a>", { "--part=:playmodelist=" + theFile, "--device" }, "<a>" },
        { "%@<a>", { "--part=:srsext=" + theOtherFile, "--device", "--feature=SRS" }, "2\n<a>" },
    };
    for (const auto& [theTemplate, theOptions, theExpected] : kCases)
    {
        const Result theResult = RunTool(Joined({ "describe", "-" }, theOptions), theTemplate);
        EXPECT_EQ(theExpected, theResult.mOutput) << theResult.mError;
    }
}

TEST(HookToolTest, CreatesDocuments)
{
    static const std::pair<Words, const char*> kCases[] = {
        { { "container", "--parent=1&2", "--title", "My Photos", "--class=c", "--flags",
            "UploadContent,0X2,ChangeMetaData", "--create-classes", "a,1;b,0" },
          "<container id=\"\" parentID=\"1&amp;2\" restricted=\"0\" dlna:dlnaManaged=\"00000013\">"
          "<dc:title>My Photos</dc:title><upnp:class>c</upnp:class>"
          "<upnp:createClass includeDerived=\"1\">a</upnp:createClass><upnp:createClass>b</upnp:createClass>"
          "</container>" },
        { { "container" },
          "<container id=\"\" parentID=\"\" restricted=\"0\" dlna:dlnaManaged=\"00000000\"></container>" },
        { { "item", "--parent", "12", "--title=Song", "--class", "c", "--flags=80000000", "--protocol-info",
            "http-get:*:audio/mpeg:*", "--length", "9223372036854775807", "--dtcp", "Movable,CMI" },
          "<item id=\"\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"80000000\"><dc:title>Song</dc:title>"
          "<upnp:class>c</upnp:class><res protocolInfo=\"http-get:*:audio/mpeg:*\" dlna:resumeUpload=\"1\" "
          "size = \"9223372036854775807\" dtcp:uploadInfo=\"A0000000\"></res></item>" },
        { { "response", "--id=99", "--parent", "12", "--title", "Song", "--class", "c", "--import-uri", "http://h/u",
            "--import-ifo-uri", "http://h/i", "--protocol-info", "http-get:*:audio/mpeg:*", "--resume", "--dtcp=None" },
          "<item id=\"99\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"00000004\"><dc:title>Song</dc:title>"
          "<upnp:class>c</upnp:class><res dlna:resumeUpload=\"1\" dlna:uploadedSize=\"0\" importUri=\"http://h/u\" "
          "protocolInfo=\"http-get:*:audio/mpeg:*\" dlna:ifoFileURI=\"\" dlna:importIfoFileURI=\"http://h/i\" "
          "dtcp:uploadInfo=\"00000000\"/></item>" },
        { { "response", "--create-classes", "a,1;b", "--resume" },
          "<container id=\"\" parentID=\"\" restricted=\"0\" dlna:dlnaManaged=\"00000003\">"
          "<upnp:createClass includeDerived=\"1\">a,1;b</upnp:createClass></container>" },
    };
    for (const auto& [theArguments, theObject] : kCases)
    {
        const std::string theText = RunTool(Joined({ "create" }, theArguments)).mOutput;
        EXPECT_EQ(std::string(theObject) + "</DIDL-Lite>\n", theText.substr(theText.find('>') + 1));
    }
}

TEST(HookToolTest, AnswersForClients)
{
    const char* const kPlayer = "Windows-Media-Player/11.0.5721.5145";
    static const std::pair<Words, Words> kCases[] = {
        { {},
          { "search: no", "sort criteria checked: yes", "resource sizes: yes", "bit rate for byte rate: no",
            "chunked transfer: yes", "info description: <state value=\"nok\"/>", "SortSpec: no",
            "extra resource info: yes", "objects at once: 100", "object id \"1\": 1",
            "class \"container\": container.storageFolder", "class \"item.imageItem\": item.imageItem",
            "play mode \"NORMAL\": yes", "play mode \"SHUFFLE\": no", "seek mode \"TRACK_NR\": yes",
            "seek mode \"REL_TIME\": no", "event \":hdlnk\": no" } },
        { { "--user-agent", kConsole, "--web-link", "7", "--count=1000" },
          { "search: yes", "sort criteria checked: no", "resource sizes: no", "bit rate for byte rate: yes",
            "info description: <state value=\"nok\"/>", "objects at once: 1000", "class \"container\": container",
            "class \"item.imageItem\": item.imageItem.photo" } },
        { { "--user-agent", kConsole }, { "objects at once: no limit" } },
        { { "--user-agent", kPlayer, "--count", "500", "--web-link=7", "--object-id=64", "--object-id=1", "--filter",
            "dc:title", "--property", "DoNotChunkUserAgentList=Else, Player/11" },
          { "objects at once: 200", "object id \"64\": 64", "object id \"64\" filter: dc:title",
            "object id \"1\": -musicartist", "object id \"1\" filter: dc:title,res", "chunked transfer: no",
            "info description: <state value=\"ok\">7</state>", "bit rate for byte rate: no" } },
        { { "--manufacturer=ROKU", "--feature=SortSpec", "--feature=HDLnk", "--feature=TimeSeek", "--property",
            "PlayModeList=SHUFFLE,REPEAT_ALL", "--class=x", "--event=:hdlnk", "--event=:extra", "--seek-mode=REL_TIME",
            "--play-mode", "SHUFFLE", "--play-mode", "REPEAT" },
          { "extra resource info: no", "SortSpec: yes", "class \"x\": x", "event \":hdlnk\": yes",
            "event \":extra\": no", "seek mode \"REL_TIME\": yes", "play mode \"SHUFFLE\": yes",
            "play mode \"REPEAT\": no" } },
    };
    for (const auto& [theOptions, theFacts] : kCases)
        ExpectLines(theFacts, RunTool(Joined({ "hook" }, theOptions)));
}

TEST(HookToolTest, RefusesInOneLine)
{
    ExpectRefusals({
        { { "describe", "-" }, "standard input: its end is not \">\"" },
        { { "describe", "-" }, "1 \"%@\" in the template, but 0 --part", "<a>%@</a>" },
        { { "describe", "-", "--part=:x=" }, "0 \"%@\" in the template, but 1 --part", "<a>% @</a>" },
        { { "describe", "-", "--part=:x=-" }, "standard input can't be more than one", "%@<a>" },
        { { "describe", "-", "--part=:x" }, "has no \"=\"", "%@<a>" },
        { { "describe", "-", "--part=x=" }, "no \":\" in its name", "%@<a>" },
        { { "describe", "-", "--device=yes" }, "--device has no value", "<a>" },
        { { "describe", "-", "--feature=timeseek" },
          "no feature is called \"timeseek\"; known: Upload, TimeSeek, ",
          "<a>" },
        { { "hook", "--property=PlayMode=" }, "\"PlayMode\"; known: UserAgent, PlaySpeedList, " },
        { { "hook", "--property=PlayModeList=", "--property=PlayModeList=" }, "PlayModeList is given twice" },
        { { "hook", "--count=4294967296" }, "\"4294967296\" is not a number" },
        { { "create" }, "container, item or response" },
        { { "create", "item", "--length=-1" }, "\"-1\" is not a number" },
        { { "create", "item", "--length", "9223372036854775808" }, "not a number from 0 to 9223372036854775807" },
        { { "create", "item", "--flags=1,Movable" }, "--flags: \"Movable\"" },
        { { "create", "item", "--flags=1," }, "--flags: \"\"" },
        { { "create", "item", "--dtcp=0x100000000" }, "nor one of None, Movable, V1SE104, CMI" },
        { { "create", "container", "--dtcp=0" }, "create container: no option is called \"--dtcp\"" },
    });
}
