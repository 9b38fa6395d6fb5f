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
    static const struct
    {
        const char* mKeys;
        const char* mField;
        const char* mValue;
        const char* mOrigin;
        const char* mWarning; // "": none
    } kCases[] = {
        { "TTL=5", "SSDP mSSDPTTL", "5", "key TTL", "" },
        { "", "SSDP mSSDPTTL", "0", "default, the stack takes 4", "" },
        { "TTL=0", "SSDP mSSDPTTL", "0", "key TTL, the stack takes 4", "" },
        { "TTL=200", "SSDP mSSDPTTL", "100", "key TTL, held within 1 to 100", "mSSDPTTL 200 is not within 1 to 100" },
        { "TTL=256", "SSDP mSSDPTTL", "0", "default, the stack takes 4", "TTL=256 can't be read" },
        { "TTL=", "SSDP mSSDPTTL", "0", "default, the stack takes 4", "TTL= can't be read" },
        { "", "SSDP mSSDPPort", "0", "default, the stack takes 1900", "" },
        { "", "SSDP mSSDPMX", "3", "default", "" },
        { "MSEARCHInfoCacheDuration=9", "SSDP mMSEARCHInfoCacheDuration", "0", "not read, the stack takes 60",
          "MSEARCHInfoCacheDuration is not read" },
        { "MSEARCHPortStrict=maybe", "SSDP mfSSDPMSEARCHPortStrict", "1", "default", "MSEARCHPortStrict=maybe" },
        { "MSEARCHPortStrict=On", "SSDP mfSSDPMSEARCHPortStrict", "1", "key MSEARCHPortStrict", "" },
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
        { "PortNumber=8080", "WebServer mAsyncServerSocketConfig.mPortNumber", "8080", "key PortNumber", "" },
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
    for (const auto& theCase : kCases)
    {
        const Result theResult = RunConfig(theCase.mKeys, {});
        std::map<std::string, std::string> theFacts = FactsOf(theResult);
        const std::string theField = theCase.mField;
        EXPECT_EQ(theCase.mValue, theFacts[theField]) << theCase.mKeys << ' ' << theField;
        EXPECT_EQ(theCase.mOrigin, theFacts[theField + " from"]) << theCase.mKeys << ' ' << theField;
        EXPECT_EQ(*theCase.mWarning ? 1u : 0u, Lines(theResult.mError).size()) << theResult.mError;
        EXPECT_NE(std::string::npos, theResult.mError.find(theCase.mWarning)) << theResult.mError;
        EXPECT_EQ(0, theResult.mStatus) << theCase.mKeys;
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

TEST(ToolConfigTest, Refuses)
{
    static const struct
    {
        Words mArguments;
        int mStatus;
        const char* mReason;
    } kCases[] = {
        { { "config" }, 2, "FILE is missing" },
        { { "config", "-" }, 2, "SECTION is missing" },
        { { "config", "-", "s", "x" }, 2, "\"x\" is one argument too many" },
        { { "config", "-", "s", "--record", "ssdp" }, 2, "\"ssdp\"; there are SocketPolicy, AsyncSocket, " },
        { { "config", "/", "s" }, 2, "/: Is a directory" },
        { { "config", "-", "S" }, 1, "standard input: no section \"S\"" },
        { { "config", "-", "" }, 1, "no section \"\"" },
    };
    for (const auto& theCase : kCases)
    {
        const Result theResult = RunTool(theCase.mArguments, "[s]\nTTL=1\n");
        EXPECT_EQ(theCase.mStatus, theResult.mStatus) << theCase.mReason;
        EXPECT_EQ("", theResult.mOutput);
        EXPECT_NE(std::string::npos, theResult.mError.find(theCase.mReason)) << theResult.mError;
        EXPECT_EQ(1u, Lines(theResult.mError).size()) << theResult.mError;
    }
    EXPECT_EQ(0, RunTool({ "config", "-", "" }, "TTL=1\n").mStatus);
}

// The example names every key, with the value that the stack works with when the key is left out.
TEST(ToolConfigTest, ExampleIsComplete)
{
    static const struct
    {
        const char* mSection;
        const char* mRecord;
    } kCases[] = {
        { "Stack", "SocketPolicy" },        { "SSDP", "SSDP" },
        { "WebServer", "WebServer" },       { "WebClient", "WebClient" },
        { "ControlPoint", "ControlPoint" },
    };
    static const std::string kTaken = ", the stack takes ";
    for (const auto& theCase : kCases)
    {
        const Result theResult = RunTool({ "config", std::string(TEST_DATA) + "/../../Examples/device.conf",
                                           theCase.mSection, "--record", theCase.mRecord });
        EXPECT_EQ("", theResult.mError);
        std::map<std::string, std::string> theFacts = FactsOf(theResult);
        std::map<std::string, std::string> theDefaults = FactsOf(RunConfig("", { theCase.mRecord }));
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
        EXPECT_LE(3, theCount) << theCase.mSection;
    }
}
