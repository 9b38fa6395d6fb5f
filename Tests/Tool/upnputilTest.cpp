#include "RunTool.h"
#include "Support/Texts.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <utility>

namespace
{

std::string Item(const std::string& aContent) { return "<item id=\"1\">" + aContent + "</item>"; }

void AddFacts(std::set<std::string>& aFacts, const std::string& aSubject, const Words& anArguments)
{
    const Result theResult = RunTool(anArguments);
    for (const std::string& theLine : Lines(theResult.mOutput))
        aFacts.insert(aSubject + theLine);
    aFacts.insert(aSubject + "exit: " + std::to_string(theResult.mStatus));
}

// What show and, for three renderers, select say about a document; "exit" is the exit status.
std::set<std::string> FactsOf(const std::string& aDocument)
{
    const std::string theSinks = std::string(TEST_DATA) + "/sinks/";
    std::set<std::string> theFacts;
    AddFacts(theFacts, "show ", { "show", aDocument });
    AddFacts(theFacts, "television ", { "select", aDocument, "--sink-file", theSinks + "handmade-dlna-tv.txt" });
    AddFacts(theFacts, "player ", { "select", aDocument, "--sink-file", theSinks + "gmediarender.txt" });
    AddFacts(theFacts, "streamer ", { "select", aDocument, "--sink-file", theSinks + "handmade-audio-streamer.txt" });
    return theFacts;
}

} // namespace

TEST(ToolTest, PrintsTheExpectedFactsOfEachDocument)
{
    for (const char* theFolder : { "didl", "didl-odd", "didl-multi" })
    {
        int theCount = 0;
        for (const auto& theEntry : std::filesystem::directory_iterator(std::string(TEST_DATA) + "/" + theFolder))
        {
            if (theEntry.path().extension() != ".xml") { continue; }
            const std::string theName = std::string(theFolder) + "/" + theEntry.path().filename().string();
            const Words theExpected = Lines(ReadTestFile(theName + ".expected"));
            EXPECT_FALSE(theExpected.empty()) << theName << " has no expected facts";
            const std::set<std::string> theFacts = FactsOf(theEntry.path());
            for (const std::string& theFact : theExpected)
                EXPECT_TRUE(theFacts.count(theFact)) << theName << " lacks: " << theFact;
            ++theCount;
        }
        EXPECT_GT(theCount, 0) << theFolder;
    }
}

TEST(ToolTest, RefusesInOneLine)
{
    ExpectRefusals({
        { {}, "a subcommand is missing" },
        { { "sing" }, "no subcommand is called \"sing\"; see upnputil --help" },
        { { "shwo" }, "\"shwo\", did you mean \"show\"? See upnputil --help" },
        { { "help", "create", "itme" }, "\"itme\", did you mean \"item\"? See upnputil create --help" },
        { { "show", "-", "--Bas=x" }, "\"--Bas\", did you mean \"--base\"?" },
        { { "show", "show" }, "show: No such file" },
        { { "show" }, "FILE is missing" },
        { { "show", "-", "x" }, "\"x\" is one argument too many" },
        { { "show", "--", "--help" }, "--help: No such file" },
        { { "show", "/a\nb" }, "/a\\nb: No such file" },
        { { "show", "/" }, "/: Is a directory" },
        { { "show", "-", "--base" }, "--base needs a value (URL)" },
        { { "show", "-", "--base=media/" }, "absolute" },
        { { "show", "-", "--b", "x" }, "\"--b\"" },
        { { "select", "-" }, "one of --sink and --sink-file" },
        { { "select", "-", "--sink=x", "--sink-file=y" }, "one of --sink and --sink-file" },
        { { "select", "-", "--sink", "x", "--sink", "y" }, "--sink is given twice" },
        { { "select", "-", "--sink-file", "-" }, "both FILE and the sink file" },
        { { "select", "-", "--sink", "x", "--target", "10.0.0.256" }, "10.0.0.256" },
        { { "unlock", "http://h/p?lock=" }, "--pin is needed" },
        { { "unlock", "http://h/p?block=", "--pin", "1" }, "no lock argument", "", 1 },
        { { "show", "-" }, "no object", "", 1 },
        { { "show", "-" }, "no object", "<DIDL-Lite><desc><item/></desc></DIDL-Lite>", 1 },
        { { "show", "-" }, "standard input: a NUL byte at offset 7", std::string("<item/>\0", 8) },
        { { "show", "-" }, "input:3:1: end tag </b> where </a> was expected", "<item>\n<a>\n</b></item>" },
        { { "show", "-" }, "standard input:2:1: the element <a> is not closed", "<item>\n<a>" },
        { { "show", "-" }, "standard input:1:", "<" },
        { { "show", "-" }, "standard input, Result:1:", "<R>\n<Result>&lt;item></Result></R>" },
        { { "select", "-", "--sink", "x" }, "no object", "", 1 },
        { { "select", "-", "--sink", "x" }, "input:1:7: end tag </itm>", "<item></itm>" },
        { { "select", "-", "--sink", "x", "--object", "1" }, "no object \"1\"", "<item id='1'/>", 1 },
        { { "select", "-", "--sink", "x", "--object", "b" }, "no object \"b\"", "<item id='a'/>", 1 },
    });
    const int theFull = open("/dev/full", O_WRONLY);
    EXPECT_NE(std::string::npos, RunTool({ "show", "--help" }, "", theFull).mError.find("standard output: No space"));
    EXPECT_EQ(2, RunTool({ "show", "-" }, Item(""), theFull).mStatus);
    close(theFull);
}

// As cat does: by SIGPIPE, without a word.
TEST(ToolTest, EndsWithItsReader)
{
    for (const Words& theArguments : { Words{ "--help" }, Words{ "show", "-" }, Words{ "monitor" } })
    {
        int theEnds[2];
        ASSERT_EQ(0, pipe(theEnds));
        close(theEnds[0]);
        const Result theResult = RunTool(theArguments, Item(""), theEnds[1]);
        close(theEnds[1]);
        EXPECT_EQ(-1, theResult.mStatus) << theArguments[0];
        EXPECT_EQ("", theResult.mError);
    }
}

TEST(ToolTest, HelpNamesWhatThereIs)
{
    for (const std::string theCommand :
         { "show x", "select", "unlock", "describe", "hook", "create", "create item", "group", "group load" })
    {
        std::istringstream theWords(theCommand + " --help");
        const Result theResult = RunTool({ std::istream_iterator<std::string>(theWords), {} });
        EXPECT_EQ(0, theResult.mStatus) << theCommand;
        EXPECT_EQ(0u, theResult.mOutput.find("Usage: upnputil " + theCommand.substr(0, theCommand.find(' ')) + " "));
    }
    EXPECT_EQ(0u, RunTool({ "--help" }).mOutput.find("Usage: upnputil "));
    EXPECT_EQ(0u, RunTool({ "--version" }).mOutput.find("upnputil "));
    EXPECT_EQ(RunTool({ "--version" }).mOutput, RunTool({ "-V" }).mOutput);
    EXPECT_EQ(RunTool({ "create", "item", "--help" }).mOutput, RunTool({ "help", "create", "item" }).mOutput);
    EXPECT_EQ(RunTool({ "--help" }).mOutput, RunTool({ "-h" }).mOutput);
}

TEST(ToolTest, ValuesStayInTheirLines)
{
    static const char* const kCases[][2] = {
        { "a&#10;objects: 9&#13;&#9;", "a\\nobjects: 9\\r\\t" },
        { "back\\slash", "back\\\\slash" },
        { "\x1B[2J&#127;", "\\x1B[2J\\x7F" },
        { "&#x85;&#x9B;&#xA0;", "\\xC2\\x85\\xC2\\x9B\xC2\xA0" }, // C1 controls, then a mere blank
        { "&#x2027;&#x2028;&#x2029;", "\xE2\x80\xA7\\xE2\\x80\\xA8\\xE2\\x80\\xA9" },
        { "\x9B \xC3", "\\x9B \\xC3" },                            // no UTF-8
        { "\xC0\x8A \xE0\x80\x8A", "\\xC0\\x8A \\xE0\\x80\\x8A" }, // line ends, too long
        { "\xED\xA0\x80 \xF4\x90\x80\x80", "\\xED\\xA0\\x80 \\xF4\\x90\\x80\\x80" },
        { "\u200B\u202A\u202E \u2066\u2069", // invisible, or what changes the direction of what follows
          "\\xE2\\x80\\x8B\\xE2\\x80\\xAA\\xE2\\x80\\xAE \\xE2\\x81\\xA6\\xE2\\x81\\xA9" },
        { "\u200A\u200E\u2027\u202F\u2065\u206A", "\u200A\u200E\u2027\u202F\u2065\u206A" },
        { "\xF0\x9F\x8E\xB5\xC3\xA9", "\xF0\x9F\x8E\xB5\xC3\xA9" },
    };
    for (const auto& [theTitle, theShown] : kCases)
    {
        const Result theResult = RunTool({ "show", "-" }, Item("<dc:title>" + std::string(theTitle) + "</dc:title>"));
        ExpectLines({ std::string("object 0 title: ") + theShown, "objects: 1" }, theResult);
    }
}

TEST(ToolTest, SelectsForARenderer)
{
    const auto theRes = [](const std::string& anInfo, const std::string& aURI)
    { return "<res protocolInfo=\"http-get:*:" + anInfo + "\">" + aURI + "</res>"; };
    const std::string theObject =
        Item(theRes("audio/mpeg:*", "http://10.0.0.5/a?lock=") + theRes("audio/mpeg:*", "http://192.168.1.20/b") +
             theRes("image/png:DLNA.ORG_PN=PNG_TN", "http://h/c.png") +
             "<res protocolInfo=\"http-get:*:text/srt:ZOLT.COM_SUB=1\" subtitleLabel=\"English\" "
             "subtitleType=\"srt\">http://h/d.srt</res>");
    static const std::pair<Words, Words> kCases[] = {
        { { "http-get:*:audio/mpeg:*" }, { "choice: 0", "thumbnail profile: PNG_TN", "parental lock: yes" } },
        { { "http-get:*:audio/mpeg:*", "--target", "10.0.0.9", "--target", "192.168.1.9" }, { "choice: 0" } },
        { { "http-get:*:audio/mpeg:*", "--target", "192.168.1.9" }, { "choice: 1" } },
        { { "http-get:*:text/srt:*" }, { "choice: 3" } },
        { { "rtsp-rtp-udp:*:audio/mpeg:*" }, { "confidence: will not (0)" } },
        { { "http-get:*:audio/mpeg:*", "--scheme", "rtsp" }, { "choice: none" } },
        { { "x", "--profiles", "JPEG_TN" }, { "kind: item" } },
        { { "http-get:*:audio/mpeg:*", "--pin", "1234" },
          { "unlocked uri: http://10.0.0.5/a?lock=GBK0YxkR687Z7%2FnjnDQy%2BA%3D%3D" } },
        { { "x" },
          { "subtitle 0 from: ZOLT.COM_SUB", "subtitle 0 label: English", "subtitle 0 type: srt",
            "subtitle 0 resource: 3", "subtitle 0 uri: http://h/d.srt" } },
        { { "http-get:*:audio/mpeg:*", "--all", "--target", "192.168.9.9" },
          { "resource 0: matches by MIME type, may (2), original, far host; not chosen: host is farther",
            "resource 1: matches by MIME type, may (2), original, near host (2 of 4 octets); chosen",
            "resource 2: not chosen: thumbnail",
            "resource 3: matches by anything, should not (1), original, host is a name; not chosen: matches at a later "
            "stage" } },
    };
    for (const auto& [theSinkAndOptions, theFacts] : kCases)
    {
        const Result theResult = RunTool(Joined({ "select", "-", "--sink" }, theSinkAndOptions), theObject);
        ExpectLines(theFacts, theResult);
        EXPECT_EQ(HasLine(theResult, "choice: none") ? 1 : 0, theResult.mStatus) << theFacts[0];
    }
    EXPECT_FALSE(HasLine(RunTool({ "select", "-", "--sink", "x", "--profiles", "JPEG_TN" }, theObject),
                         "thumbnail: http://h/c.png"));
    const ScratchFile theSinks("http-get:*:text/plain:*\r\nhttp-get:*:text/srt:*\n");
    EXPECT_TRUE(HasLine(RunTool({ "select", "-", "--sink-file", theSinks.Path() }, theObject), "choice: 3"));
    EXPECT_TRUE(HasLine(RunTool({ "unlock", "--pin=1234", "http://h:1/a?x=1&lock=old" }),
                        "unlocked uri: http://h:1/a?x=1&lock=GBK0YxkR687Z7%2FnjnDQy%2BA%3D%3D"));
}

// The profile of what is converted is the renderer's, the original's only MIME type is.
TEST(ToolTest, SelectsOriginals)
{
    const std::string theObject = Item("<res protocolInfo='http-get:*:audio/mpeg:DLNA.ORG_PN=MP3;DLNA.ORG_CI=1'>a</res>"
                                       "<res protocolInfo='http-get:*:audio/flac:*'>b</res>");
    const Words theCommand = { "select", "-", "--sink", "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3,http-get:*:audio/flac:*",
                               "--all" };
    ExpectLines({ "choice: 0" }, RunTool(theCommand, theObject));
    ExpectLines({ "choice: 1", "resource 0: not chosen: converted, originals are preferred" },
                RunTool(Joined(theCommand, { "--prefer-original" }), theObject));
}

TEST(ToolTest, SelectsWhatCanBeSent)
{
    const std::string theObject = Item("<dc:title>\xFF\x01</dc:title><x:y>1</x:y>"
                                       "<res protocolInfo='http-get:*:a/b:*'>u</res>");
    const Words theCommand = { "select", "-", "--sink", "http-get:*:a/b:*", "--raw" };
    const Result theResult = RunTool(theCommand, theObject);
    ExpectLines({ "sendable: no, 2 characters replaced, 1 pair left out, 2 declarations added" }, theResult);
    const Words theLines = Lines(theResult.mOutput);
    ASSERT_LE(2u, theLines.size());
    const std::string& theSendable = theLines[theLines.size() - 2];
    EXPECT_NE(std::string::npos, theSendable.find("<dc:title>\uFFFD\uFFFD</dc:title><res"));
    EXPECT_NE(std::string::npos, theLines.back().find("<dc:title>\\xFF\\x01</dc:title><x:y>1</x:y>"));
    ExpectLines({ "sendable: yes" }, RunTool(theCommand, theSendable.substr(theSendable.find('<'))));
}

// What tells of one URI makes one subtitle.
TEST(ToolTest, FindsSubtitlesThatDevicesWrite)
{
    const std::string theObject =
        Item("<sec:CaptionInfoEx sec:type='srt'>a.srt</sec:CaptionInfoEx><sec:CaptionInfo>a.srt</sec:CaptionInfo>"
             "<sec:CaptionInfo>b</sec:CaptionInfo><res protocolInfo='http-get:*:TEXT/srt:*'>a.srt</res>"
             "<res pv:subtitleFileType='SMI' pv:subtitleFileUri='b'>c</res><res pv:subtitleFileType='SRT'>d</res>");
    const Words theFacts = { "subtitle 0 from: TEXT/srt, sec:CaptionInfoEx, sec:CaptionInfo",
                             "subtitle 0 resource: 0",
                             "subtitle 0 type: srt",
                             "subtitle 0 uri: a.srt",
                             "subtitle 1 from: sec:CaptionInfo, pv:subtitleFileUri",
                             "subtitle 1 type: SMI",
                             "subtitle 1 uri: b" };
    const Result theResult = RunTool({ "select", "-", "--sink", "x" }, theObject);
    ExpectLines(theFacts, theResult);
    EXPECT_EQ(std::string::npos, theResult.mOutput.find("subtitle 2"));
    for (const std::string& theFact : theFacts)
        ExpectLines({ "object 0 " + theFact }, RunTool({ "show", "-" }, theObject));
}

TEST(ToolTest, SelectsAmongObjects)
{
    const std::string theObjects = "<DIDL-Lite><item id='1'><res protocolInfo='http-get:*:a/b:*'>u</res></item>"
                                   "<container id='c'/><item id='0' searchable='x'/></DIDL-Lite>";
    static const struct
    {
        Words mOptions;
        Words mFacts;
        size_t mLineCount;
        int mStatus;
    } kCases[] = {
        { {}, { "object 0 choice: 0", "object 1 choice: none", "object 2 kind: item" }, 18, 2 },
        { { "--object", "0" }, { "choice: 0", "id: 1" }, 10, 0 },
        { { "--object", "id=1" }, { "choice: 0", "id: 1" }, 10, 0 },
        { { "--object", "c" }, { "kind: container", "choice: none", "confidence: will not (0)" }, 6, 0 },
        { { "--object", "2" }, { "invalid: \"restricted\" or \"searchable\" is neither true nor false" }, 2, 2 },
    };
    for (const auto& theCase : kCases)
    {
        const Result theResult =
            RunTool(Joined({ "select", "-", "--sink", "http-get:*:a/b:*" }, theCase.mOptions), theObjects);
        ExpectLines(theCase.mFacts, theResult);
        EXPECT_EQ(theCase.mLineCount, Lines(theResult.mOutput).size()) << theResult.mOutput;
        EXPECT_EQ(theCase.mStatus, theResult.mStatus);
        EXPECT_EQ(theCase.mStatus == 2, theResult.mError.find("object 2 is invalid") != std::string::npos);
    }
    EXPECT_EQ(2, RunTool({ "show", "-" }, theObjects).mStatus);
}

TEST(ToolTest, ShowFindsTheObjects)
{
    static const std::pair<const char*, Words> kCases[] = {
        { "<container id='1'><dc:title>a</dc:title><item id='2'><dc:title>b</dc:title><res>u</res></item>"
          "<container id='3'/><av:x>y</av:x></container>",
          { "object 0 title: a", "object 0 extra 0 av:x: y", "object 0 resources: 0", "object 1 title: b",
            "object 1 resources: 1", "object 2 id: 3", "objects: 3" } },
        { "<item id='1'><desc><DIDL-Lite><item id='2'/></DIDL-Lite></desc></item>", { "objects: 1" } },
        { "<e:Envelope><e:Body><u:BrowseResponse><Result>&lt;DIDL-Lite xmlns:a=\"b,c\">&lt;item id=\"&amp;lt;\"/>"
          "&lt;/DIDL-Lite></Result><TotalMatches>1</TotalMatches></u:BrowseResponse></e:Body></e:Envelope>",
          { "object 0 id: <", "object 0 namespace 0: xmlns:a=\"b,c\"", "objects: 1" } },
        { "<item restricted='maybe'><item id='1'/></item><ITEM restricted='0'/>",
          { "object 0 invalid: \"restricted\" or \"searchable\" is neither true nor false", "object 1 id: 1",
            "object 2 flags: none (0)" } },
        { "<item><res duration='100:00:01' bitrate='536870911' dlna:lifetime='0:01:00'>u/v</res></item>",
          { "object 0 resource 0 duration: 01:00:01.000 (360001 s)", "object 0 resource 0 bit rate: 4294967288",
            "object 0 resource 0 lifetime: 00:00:15.000 (15 s)", "object 0 resource 0 uri: http://h/d/u/v" } },
        { "<container childCount='0' dlna:dlnaManaged='101'/>",
          { "object 0 child count: 0", "object 0 dlna managed: upload content (0x00000101)" } },
    };
    for (const auto& [theDocument, theFacts] : kCases)
        ExpectLines(theFacts, RunTool({ "show", "-", "--base", "http://h/d/" }, theDocument));
    EXPECT_FALSE(HasLine(RunTool({ "show", "-" }, "<item><res bitrate='536870912'>u</res></item>"),
                         "object 0 resource 0 bit rate: 4294967295"));
}

// Time that grows with the square of the depth would take minutes here.
TEST(ToolTest, ShowGoesDeep)
{
    const std::string theText = Repeated("<container><dc:title>t</dc:title>", 50000) + Repeated("</container>", 50000);
    ExpectLines({ "object 49999 title: t", "objects: 50000" }, RunTool({ "show", "-" }, theText));
}

// Bytes that are not UTF-8, control characters and what JSON needs a backslash for.
TEST(ToolTest, PrintsFactsAsJSON)
{
    const Result theResult =
        RunTool({ "show", "-", "--json" },
                "<DIDL-Lite xmlns:a=\"b\" xmlns:c=\"d\"><item id=\"\xFF\x01\"><dc:title>\"q\" \\\n\xC3\xA9</dc:title>"
                "<x:y>1</x:y><x:y>2</x:y></item><container/></DIDL-Lite>");
    EXPECT_EQ(ReadTestFile("facts.json"), theResult.mOutput);
}
