#include "RunTool.h"

#include <fstream>
#include <gtest/gtest.h>

static const char kGroup[] =
    "<groupInfo friendlyName=\"Living room\" UDN=\"uuid:1\" label=\"Tom &amp; Ann\n=\">\n"
    "    <master groupedFriendlyName=\"Kitchen\" groupedUDN=\"uuid:2\"/>\n"
    "    <slave groupedFriendlyName=\"Bedroom\" groupedUDN=\"uuid:3\" volume=\"20\"/>\n</groupInfo>\n";
static const char kCapability[] = "<groupCapabilities><groupCapability capability='a' groupedUDN='b' UDN='c' "
                                  "mode='slave'/></groupCapabilities>";

TEST(ToolGroupTest, ShowsAGroup)
{
    const Result theGroup = RunTool({ "group", "show", "-" }, kGroup);
    EXPECT_EQ(0, theGroup.mStatus);
    ExpectLines({ "metadata 0 label: Tom & Ann\\n=", "master udn: uuid:2", "slave 0 metadata 0 volume: 20", "slaves: 1",
                  "valid: yes" },
                theGroup);
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
    ExpectRefusals({
        { { "group" }, "an action is missing" },
        { { "group", "sing" }, "\"sing\"" },
        { { "group", "store", "-", "M" }, "CONFIG is missing" },
        { { "group", "store", "-", "M", "-" }, "CONFIG has to be a file", kGroup },
        { { "group", "store", "-", "M", "/dev/null/a" }, "/dev/null/a: ", kGroup },
        { { "group", "store", "-", "M", "/dev/null" }, "standard input: no groupInfo", kCapability, 1 },
        { { "group", "load", "-", "M" }, "no complete group in section \"M\"", "[M]\nGroup.UDN=a\n", 1 },
        { { "group", "load", "/dev/null/a", "M" }, "/dev/null/a: " },
        { { "group", "show", "-" }, "standard input:2:1: end tag </b> where </a> was expected", "<a>\n</b>" },
        { { "group", "store", "-", "M", "/dev/null" }, "standard input:1:4: ", "<a></b>" },
        { { "group", "show", "-" }, "neither groupInfo nor groupCapabilities", "<a/>", 1 },
        { { "group", "show", "-" }, "no groupCapability", "<groupCapabilities/>", 1 },
        { { "group", "show", "-" }, "Found an invalid", "<groupCapabilities><groupCapability/></groupCapabilities>" },
        { { "group", "show", "-" }, "Invalid group description", "<groupInfo/>" },
    });
}
