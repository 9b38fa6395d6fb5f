#include "RunTool.h"

#include <fstream>
#include <gtest/gtest.h>

static const char kGroup[] =
    "<groupInfo friendlyName=\"Living room\" UDN=\"uuid:1\" label=\"Tom &amp; Ann\n=\">\n"
    "    <master groupedFriendlyName=\"Kitchen\" groupedUDN=\"uuid:2\"/>\n"
    "    <slave groupedFriendlyName=\"Bedroom\" groupedUDN=\"uuid:3\" volume=\"20\"/>\n</groupInfo>\n";
static const char kCapability[] = "<groupCapabilities><groupCapability capability='a' groupedUDN='b' UDN='c' "
                                  "mode='slave'/></groupCapabilities>";

TEST(ToolGroupTest, Shows)
{
    const Result theGroup = RunTool({ "group", "show", "-" }, kGroup);
    EXPECT_EQ(0, theGroup.mStatus);
    for (const char* theFact : { "metadata 0 label: Tom & Ann\\n=", "master udn: uuid:2",
                                 "slave 0 metadata 0 volume: 20", "slaves: 1", "valid: yes" })
        EXPECT_TRUE(HasLine(theGroup, theFact)) << theFact;
    EXPECT_EQ(
        "capability 0 name: a\ncapability 0 grouped udn: b\ncapability 0 mode: slave\nactive: a\ncapabilities: 1\n",
        RunTool({ "group", "show", "-" }, kCapability).mOutput);
}

TEST(ToolGroupTest, StoresAndLoads)
{
    const std::string thePath = testing::TempDir() + "upnputilGroupTest." + std::to_string(getpid());
    std::ofstream(thePath) << "[M]\nSlave1.GroupedUDN=a\nSlave1.GroupedFriendlyName=a\nSlavery=kept\nother=kept\n";
    const Result theStored = RunTool({ "group", "store", "-", "M", thePath }, kGroup);
    EXPECT_EQ("section: M\nslaves: 1\nkeys removed: 2\n", theStored.mOutput) << theStored.mError;
    EXPECT_EQ(kGroup, RunTool({ "group", "load", thePath, "M" }).mOutput);
    std::string theFirstLines(39, '\0');
    std::ifstream(thePath).read(theFirstLines.data(), 39);
    EXPECT_EQ("[M]\nSlavery=kept\nother=kept\nGroup.UDN=u", theFirstLines);
    remove(thePath.c_str());
}

TEST(ToolGroupTest, RefusesInOneLine)
{
    static const struct
    {
        Words mArguments;
        const char* mInput;
        int mStatus;
        const char* mReason;
    } kCases[] = {
        { {}, "", 2, "an action is missing" },
        { { "sing" }, "", 2, "\"sing\"" },
        { { "store", "-", "M" }, "", 2, "CONFIG is missing" },
        { { "store", "-", "M", "-" }, kGroup, 2, "CONFIG has to be a file" },
        { { "store", "-", "M", "/dev/null/a" }, kGroup, 2, "/dev/null/a: " },
        { { "store", "-", "M", "/dev/null" }, kCapability, 2, "standard input: no well-formed groupInfo" },
        { { "load", "-", "M" }, "[M]\nGroup.UDN=a\n", 1, "no complete group in section \"M\"" },
        { { "load", "/dev/null/a", "M" }, "", 2, "/dev/null/a: " },
        { { "show", "-" }, "<a>", 2, "not well-formed" },
        { { "show", "-" }, "<a/>", 1, "neither groupInfo nor groupCapabilities" },
        { { "show", "-" }, "<groupCapabilities/>", 1, "no groupCapability" },
        { { "show", "-" }, "<groupCapabilities><groupCapability/></groupCapabilities>", 2, "Found an invalid" },
        { { "show", "-" }, "<groupInfo/>", 2, "Invalid group description" },
    };
    for (const auto& theCase : kCases)
    {
        Words theArguments = theCase.mArguments;
        theArguments.insert(theArguments.begin(), "group");
        const Result theResult = RunTool(theArguments, theCase.mInput);
        EXPECT_EQ(theCase.mStatus, theResult.mStatus) << theCase.mReason;
        EXPECT_NE(std::string::npos, theResult.mError.find(theCase.mReason)) << theResult.mError;
        EXPECT_EQ("1", theResult.mOutput + std::to_string(Lines(theResult.mError).size())) << theResult.mError;
    }
    for (const Words& theArguments : { Words{ "group", "--help" }, Words{ "group", "load", "--help" } })
        EXPECT_EQ(0u, RunTool(theArguments).mOutput.find("Usage: upnputil group ")) << theArguments.back();
}
