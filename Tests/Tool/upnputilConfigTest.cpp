#include "RunTool.h"

#include <gtest/gtest.h>
#include <map>

namespace
{

// What the tool says about a section "s" with these keys.
Result RunConfig(const std::string& aKeys, const Words& aRecords)
{
    Words theArguments = { "config", "-", "s" };
    for (const std::string& theRecord : aRecords)
        theArguments.insert(theArguments.end(), { "--record", theRecord });
    return RunTool(theArguments, "[s]\n" + aKeys + "\n");
}

std::map<std::string, std::string> FactsOf(const Result& aResult)
{
    std::map<std::string, std::string> theFacts;
    for (const std::string& theLine : Lines(aResult.mOutput))
    {
        const size_t theColon = theLine.find(": ");
        theFacts[theLine.substr(0, theColon)] = theLine.substr(theColon + 2);
    }
    return theFacts;
}

} // namespace

TEST(ToolConfigTest, SaysWhereValuesComeFrom)
{
    static const char* const kCases[][5] = {
        // keys, a field, its value, where that comes from, a warning
        { "TTL=5", "SSDP mSSDPTTL", "5", "key TTL", "" },
        { "", "SSDP mSSDPTTL", "0", "default, the stack takes 4", "" },
        { "TTL=0", "SSDP mSSDPTTL", "0", "key TTL, the stack takes 4", "" },
        { "TTL=200", "SSDP mSSDPTTL", "100", "key TTL, held within 1 to 100", "mSSDPTTL 200 is not within 1 to 100" },
        { "TTL=256", "SSDP mSSDPTTL", "0", "default, the stack takes 4", "TTL=256 can't be read" },
        { "TTL=", "SSDP mSSDPTTL", "0", "default, the stack takes 4", "TTL= can't be read" },
        { "", "SSDP mSSDPMX", "3", "default", "" },
        { "MSEARCHInfoCacheDuration=9", "SSDP mMSEARCHInfoCacheDuration", "0", "not read, the stack takes 60",
          "MSEARCHInfoCacheDuration is not read" },
        { "MSEARCHPortStrict=maybe", "SSDP mfSSDPMSEARCHPortStrict", "1", "default", "MSEARCHPortStrict=maybe" },
        { "Mask=10.0.0.255", "SSDP mSSDPMask", "10.0.0.255", "key Mask", "" },
        { "Mask=0.0.0.0", "SSDP mSSDPMask", "0.0.0.0", "key Mask", "" },
        { "Mask=", "SSDP mSSDPMask", "0.0.0.0", "default", "" },
        { "Mask=10.0.0.256", "SSDP mSSDPMask", "0.0.0.0", "default", "Mask=10.0.0.256 can't be read" },
        { "UserAgent=", "SSDP mUserAgent", "UPnP/1.0 Zolt/1.1", "default", "" },
        { "UserAgent=a\\nb", "SSDP mUserAgent", "UPnP/1.0 a\\nb", "key UserAgent", "" },
        { "DLNAVersion=2.0", "ControlPoint mUserAgent", "UPnP/1.0 DLNADOC/2.0 Zolt/1.1",
          "default, DLNA version: key DLNAVersion", "" },
        { "EnableNoSSDP=0", "ControlPoint mfDisableNoSSDP", "1", "key EnableNoSSDP", "" },
        { "DoNotChunk=-1", "WebServer mfDoNotChunk", "1", "key DoNotChunk", "" },
        { "SupportHTTPStalling=-1", "WebServer mfSupportHTTPStalling", "1", "default", "SupportHTTPStalling=-1" },
        { "InitialBufferSize=1", "WebServer mAsyncServerSocketConfig.mAsyncSocketConfig.mInitialBufferSize", "256",
          "key InitialBufferSize, held within 256 to 262144", "mInitialBufferSize 1 is not within" },
        { "", "WebServer mUPnPHook", "none", "argument", "" },
        { "ConnectTimeOut=9", "WebClient mAsyncSocketConfig.mConnectTimeOut", "9", "key ConnectTimeOut", "" },
        { "UPnPLocal=2", "NoSSDP mSocketPolicy", "all but the local host", "SocketPolicy", "" },
        { "UPnPLocal=1", "SocketPolicy mode", "local host only", "key UPnPLocal", "" },
        { "UPnPLocal=7", "SocketPolicy mode", "all addresses", "key UPnPLocal", "" },
        { "QOSDisabled=1", "SocketPolicy QOS disabled", "1", "key QOSDisabled", "" },
        { "exclude-if=eth0", "SocketPolicy excluded interfaces", "eth0", "key exclude-if", "" },
    };
    for (const auto& [theKeys, theField, theValue, theOrigin, theWarning] : kCases)
    {
        const Result theResult = RunConfig(theKeys, {});
        const std::string theName = theField;
        ExpectLines({ theName + ": " + theValue, theName + " from: " + theOrigin }, theResult);
        EXPECT_EQ(*theWarning ? 1u : 0u, Lines(theResult.mError).size()) << theResult.mError;
        EXPECT_NE(std::string::npos, theResult.mError.find(theWarning)) << theResult.mError;
        EXPECT_EQ(0, theResult.mStatus) << theKeys;
    }
}

TEST(ToolConfigTest, PrintsWhatIsAskedFor)
{
    const Result theResult = RunConfig("TTL=5\nPortNumber=1\nport=2", { "NoSSDP", "SSDP" });
    EXPECT_EQ(0u, theResult.mOutput.find("SSDP mSocketPolicy: all addresses\n"));
    EXPECT_EQ(std::string::npos, theResult.mOutput.find("WebServer"));
    EXPECT_TRUE(HasLine(theResult, "NoSSDP mSocketPolicy: all addresses"));
    EXPECT_EQ("upnputil: warning: PortNumber is not read by any of the records\n"
              "upnputil: warning: port is not read by any of the records\n",
              theResult.mError);
    EXPECT_EQ("upnputil: warning: port is not read by any of the records\n",
              RunConfig("TTL=5\nPortNumber=1\nport=2", {}).mError);
}

TEST(ToolConfigTest, RefusesBadUsage)
{
    const std::string kText = "[s]\nTTL=1\n";
    ExpectRefusals({
        { { "config" }, "FILE is missing" },
        { { "config", "-" }, "SECTION is missing" },
        { { "config", "-", "s", "x" }, "\"x\" is one argument too many" },
        { { "config", "-", "s", "--record", "ssdp" }, "\"ssdp\"; there are SocketPolicy, AsyncSocket, " },
        { { "config", "/", "s" }, "/: Is a directory" },
        { { "config", "-", "S" }, "standard input: no section \"S\"", kText, 1 },
        { { "config", "-", "" }, "no section \"\"", kText, 1 },
    });
    EXPECT_EQ(0, RunTool({ "config", "-", "" }, "TTL=1\n").mStatus);
}

// The example names every key, with the value that the stack works with when the key is left out.
TEST(ToolConfigTest, ExampleIsComplete)
{
    static const char* const kCases[][2] = {
        { "Stack", "SocketPolicy" },        { "SSDP", "SSDP" },
        { "WebServer", "WebServer" },       { "WebClient", "WebClient" },
        { "ControlPoint", "ControlPoint" },
    };
    static const std::string kTaken = ", the stack takes ";
    for (const auto& [theSection, theRecord] : kCases)
    {
        const Result theResult = RunTool(
            { "config", std::string(TEST_DATA) + "/../../Examples/device.conf", theSection, "--record", theRecord });
        EXPECT_EQ("", theResult.mError);
        std::map<std::string, std::string> theFacts = FactsOf(theResult);
        std::map<std::string, std::string> theDefaults = FactsOf(RunConfig("", { theRecord }));
        int theCount = 0;
        for (const auto& [theName, theOrigin] : theDefaults)
        {
            if (theOrigin.find("default") != 0) { continue; }
            const std::string theField = theName.substr(0, theName.rfind(" from"));
            const size_t theTaken = theOrigin.find(kTaken);
            const std::string theValue =
                theTaken != std::string::npos ? theOrigin.substr(theTaken + kTaken.size()) : theDefaults[theField];
            EXPECT_EQ(theValue, theFacts[theField]) << theField;
            EXPECT_EQ(0u, theFacts[theName].find("key ")) << theField << ' ' << theFacts[theName];
            ++theCount;
        }
        EXPECT_LE(3, theCount) << theSection;
    }
}
