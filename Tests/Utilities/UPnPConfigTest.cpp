#include "Support/Catchers.h"
#include "Support/Config.h"
#include "Support/Records.h"
#include "Support/Texts.h"
#include <UPnP/Utilities/UPnPConfig.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <gtest/gtest.h>
#include <zoltTools/zoMemory.h>

namespace
{

// A configuration with one section, "s".
ConfigFile File(const std::string& aKeys) { return NewConfig("[s]\n" + aKeys + "\n"); }

int sPolicyObject, sHookObject, sModule;
zoSocketPolicy* const kPolicy = reinterpret_cast<zoSocketPolicy*>(&sPolicyObject);
UPnPHook* const kHook = reinterpret_cast<UPnPHook*>(&sHookObject);
int OnPresentation(ILibWebServer_Session*, struct packetheader*, const char*) { return 0; }
const std::tuple<zoSocketPolicy*, UPnPHook*, void*, ILibWebServer_OnPresentation> kLent(kPolicy, kHook, &sModule,
                                                                                        OnPresentation);

// " name=value"; nothing for 0 and for what the test has lent.
template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
std::string Named(const char* aName, Number aValue)
{
    return aValue != 0 ? std::string(" ") + aName + "=" + std::to_string(aValue) : "";
}
std::string Named(const char* aName, const char* aText) { return std::string(" ") + aName + "=" + aText; }
std::string NamedAddress(const char* aName, uint32 anAddress)
{
    if (anAddress == 0) { return ""; }
    return std::string(" ") + aName + "=" + Taken(zo_mnprintf("%u.%u.%u.%u", UPnPUtil_IPPrintf(anAddress)));
}
template <typename Pointer>
std::string NamedUnlessLent(const char* aName, Pointer aPointer)
{
    return aPointer != std::get<Pointer>(kLent) ? std::string(" ") + aName + " is not what was lent" : "";
}

#define FIELD(aField) Named(#aField, aRecord.aField)
#define LENT(aField) NamedUnlessLent(#aField, aRecord.aField)

std::string TextOf(const ILibAsyncSocketConfig& aRecord)
{
    return FIELD(mInitialBufferSize) + FIELD(mMaxReadAHeadSize) + FIELD(mConnectTimeOut) +
           FIELD(mDisconnectLingerDuration) + FIELD(mDestroyLingerDuration) + LENT(mSocketPolicy);
}

std::string TextOf(const ILibAsyncServerSocketConfig& aRecord)
{
    return FIELD(mMaxConnections) + FIELD(mPortNumber) + FIELD(mfAllowChangePortNumber) + FIELD(mBacklogSize) +
           TextOf(aRecord.mAsyncSocketConfig);
}

std::string TextOf(const ILibSSDPConfig& aRecord)
{
    return LENT(mSocketPolicy) + NamedAddress("mSSDPMask", aRecord.mSSDPMask) + FIELD(mSSDPPort) + FIELD(mSSDPTTL) +
           FIELD(mSSDPSearchRequestCount) + FIELD(mSSDPByeByeMessageCount) + FIELD(mSSDPNotifyCycleSeconds) +
           FIELD(mMSEARCHInfoCacheDuration) + FIELD(mfEnableMSEARCHInfoAny) + FIELD(mSSDPMaxDevices) +
           FIELD(mfSSDPMSEARCHResponseMulti) + FIELD(mUDPSendDelay) + FIELD(mfSSDPMSEARCHPortStrict) +
           FIELD(mSSDPDeviceMX) + FIELD(mSSDPMX) + FIELD(mfHandleMSEARCHAsNOTIFY) + FIELD(mUserAgent);
}

std::string TextOf(const ILibNoSSDPConfig& aRecord) { return LENT(mSocketPolicy); }

std::string TextOf(const ILibWebServerConfig& aRecord)
{
    return FIELD(mSessionIdleTimeOut) + LENT(mUPnPHook) + LENT(mUPnPPresentationModule) +
           LENT(mUPnPPresentationCallback) + TextOf(aRecord.mAsyncServerSocketConfig) + FIELD(mUserAgent) +
           FIELD(mfSupportHTTPStalling) + FIELD(mfHandleReject) + FIELD(mfSupportHTTP10KeepALive) + FIELD(mfDoNotChunk);
}

std::string TextOf(const ILibWebClientConfig& aRecord)
{
    return FIELD(mSessionIdleTimeOut) + FIELD(mMaxIdleSessions) + FIELD(mSessionPoolSize) + FIELD(mConnectRetryCount) +
           TextOf(aRecord.mAsyncSocketConfig) + FIELD(mfAllowSingleConnection) + FIELD(mfDoNotChunk) +
           FIELD(mfHandleReject) + FIELD(mSingleConnectionSessionIdleTimeOut);
}

std::string TextOf(const UPnPControlPointConfig& aRecord)
{
    return LENT(mSocketPolicy) + LENT(mUPnPHook) + FIELD(mUserAgent) + FIELD(mfDisableSSDP) +
           FIELD(mfEnableMSEARCHInfo) + FIELD(mfDisableNoSSDP) + FIELD(mfDetectOnly);
}

template <typename Record, typename... Lent>
void Fetch(Record* aRecord, zoConfigFile* aFile, void (*aFetch)(Record*, zoConfigFile*, const char*, Lent...))
{
    aFetch(aRecord, aFile, "s", std::get<Lent>(kLent)...);
}

// What a fetch makes of a record that was full of something else.
template <auto kCreate, auto kFetch, auto... kFree>
std::string Fetched(zoConfigFile* aFile)
{
    auto* theRecord = kCreate();
    memset(theRecord, 0xA5, sizeof(*theRecord));
    Fetch(theRecord, aFile, kFetch);
    const std::string theText = TextOf(*theRecord);
    (kFree(theRecord), ...);
    free(theRecord);
    return theText;
}

typedef std::string (*Fetcher)(zoConfigFile* aFile);

const Fetcher AsyncSocket = Fetched<UPnPConfig_CreateAsyncSocketConfig, UPnPConfig_FetchAsyncSocketConfig>;
const Fetcher ServerSocket = Fetched<UPnPConfig_CreateAsyncServerSocketConfig, UPnPConfig_FetchAsyncServerSocketConfig>;
const Fetcher SSDP = Fetched<UPnPConfig_CreateSSDPConfig, UPnPConfig_FetchSSDPConfig, UPnPConfig_FreeSSDPConfig>;
const Fetcher NoSSDP = Fetched<UPnPConfig_CreateNoSSDPConfig, UPnPConfig_FetchNoSSDPConfig>;
const Fetcher WebServer =
    Fetched<UPnPConfig_CreateWebServerConfig, UPnPConfig_FetchWebServerConfig, UPnPConfig_FreeWebServerConfig>;
const Fetcher WebClient = Fetched<UPnPConfig_CreateWebClientConfig, UPnPConfig_FetchWebClientConfig>;
const Fetcher ControlPoint =
    Fetched<UPnPConfig_CreateControlPointConfig, UPnPConfig_FetchControlPointConfig, UPnPConfig_FreeControlPointConfig>;

} // namespace

TEST(UPnPConfigTest, FillsRecordsFromKeysOrDefaults)
{
    static const std::tuple<Fetcher, const char*, const char*> kCases[] = {
        { AsyncSocket, "", "" },
        { AsyncSocket,
          "InitialBufferSize=1024\nMaxReadAHeadSize=0x4000\nConnectTimeOut=11\nDisconnectLingerDuration=61\n"
          "DestroyLingerDuration=6",
          " mInitialBufferSize=1024 mMaxReadAHeadSize=16384 mConnectTimeOut=11 mDisconnectLingerDuration=61"
          " mDestroyLingerDuration=6" },
        { AsyncSocket, // just outside the bounds, and texts that are not numbers
          "InitialBufferSize=255\nMaxReadAHeadSize=262145\nConnectTimeOut=601\nDisconnectLingerDuration=-1\n"
          "DestroyLingerDuration=5s",
          " mInitialBufferSize=256 mMaxReadAHeadSize=262144 mConnectTimeOut=600" },
        { AsyncSocket, // 2^32 neither wraps nor counts
          "InitialBufferSize=4294967295\nMaxReadAHeadSize=4294967296\nConnectTimeOut=\nDisconnectLingerDuration=601\n"
          "DestroyLingerDuration=601",
          " mInitialBufferSize=262144 mDisconnectLingerDuration=600 mDestroyLingerDuration=600" },
        { ServerSocket, "", "" },
        { ServerSocket, "MaxConnections=31\nPortNumber=8080\nAllowChangePortNumber=2\nBacklogSize=65535",
          " mMaxConnections=31 mPortNumber=8080 mfAllowChangePortNumber=2 mBacklogSize=65535" },
        { ServerSocket, "MaxConnections=101\nPortNumber=65536\nAllowChangePortNumber=yes\nBacklogSize=65536",
          " mMaxConnections=100" },
        { SSDP, "",
          " mfSSDPMSEARCHPortStrict=1 mSSDPDeviceMX=10 mSSDPMX=3 mfHandleMSEARCHAsNOTIFY=1"
          " mUserAgent=UPnP/1.0 Zolt/1.1" },
        { SSDP,
          "Mask=239.255.0.1\nPort=1901\nTTL=5\nSearchRequestCount=6\nByeByeMessageCount=7\nNotifyCycleSeconds=1801\n"
          "MSEARCHInfoCacheDuration=99\nMSEARCHInfoAny=on\nMaxDevices=1000\nMSEARCHResponseMulti=True\nUDPSendDelay=21\n"
          "MSEARCHPortStrict=off\nDeviceMX=9\nMX=4\nHandleMSEARCHAsNOTIFY=no\nUserAgent=Box/2.0",
          " mSSDPMask=239.255.0.1 mSSDPPort=1901 mSSDPTTL=5 mSSDPSearchRequestCount=6"
          " mSSDPByeByeMessageCount=7 mSSDPNotifyCycleSeconds=1801 mfEnableMSEARCHInfoAny=1"
          " mSSDPMaxDevices=1000 mfSSDPMSEARCHResponseMulti=1 mUDPSendDelay=21 mSSDPDeviceMX=9 mSSDPMX=4"
          " mUserAgent=UPnP/1.0 Box/2.0" },
        { SSDP,
          "Mask=239.255.0\nPort=65536\nTTL=101\nSearchRequestCount=11\nByeByeMessageCount=11\nNotifyCycleSeconds=119\n"
          "MSEARCHInfoAny=2\nMaxDevices=-1\nUDPSendDelay=9\nMSEARCHPortStrict=maybe\nDeviceMX=11\nMX=101\n"
          "HandleMSEARCHAsNOTIFY=01\nUserAgent=",
          " mSSDPTTL=100 mSSDPSearchRequestCount=10 mSSDPByeByeMessageCount=10 mSSDPNotifyCycleSeconds=120"
          " mUDPSendDelay=10 mfSSDPMSEARCHPortStrict=1 mSSDPDeviceMX=10 mSSDPMX=100 mfHandleMSEARCHAsNOTIFY=1"
          " mUserAgent=UPnP/1.0 Zolt/1.1" },
        { SSDP, "Mask=\nTTL=256\nNotifyCycleSeconds=86401\nUDPSendDelay=501\nDeviceMX=0\nMX=0\nMSEARCHPortStrict=",
          " mSSDPNotifyCycleSeconds=86400 mUDPSendDelay=500 mfHandleMSEARCHAsNOTIFY=1 mUserAgent=UPnP/1.0 Zolt/1.1" },
        { NoSSDP, "Port=1", "" },
        { WebServer, "", " mUserAgent=UPnP/1.0 Zolt/1.1 mfSupportHTTPStalling=1 mfSupportHTTP10KeepALive=1" },
        { WebServer,
          "SessionIdleTimeOut=21\nPortNumber=8080\nInitialBufferSize=512\nUserAgent=Box/2.0 (x)\n"
          "SupportHTTPStalling=0\nHandleReject=5\nSupportHTTP10KeepALive=0\nDoNotChunk=-1",
          " mSessionIdleTimeOut=21 mPortNumber=8080 mInitialBufferSize=512 mUserAgent=UPnP/1.0 Box/2.0 (x)"
          " mfHandleReject=1 mfDoNotChunk=1" },
        { WebServer, "SupportHTTPStalling=5\nSupportHTTP10KeepALive=7\nDoNotChunk=-2147483648",
          " mUserAgent=UPnP/1.0 Zolt/1.1 mfSupportHTTPStalling=1 mfSupportHTTP10KeepALive=1 mfDoNotChunk=1" },
        { WebServer, // numbers that only readers with a sign read, or only those without
          "SessionIdleTimeOut=2\nMaxConnections=1000\nConnectTimeOut=1000\nSupportHTTPStalling=-0\nHandleReject=-1\n"
          "SupportHTTP10KeepALive=-0\nDoNotChunk=2147483648",
          " mSessionIdleTimeOut=3 mMaxConnections=100 mConnectTimeOut=600 mUserAgent=UPnP/1.0 Zolt/1.1"
          " mfSupportHTTPStalling=1 mfSupportHTTP10KeepALive=1" },
        { WebServer, // words that only options are
          "SupportHTTPStalling=no\nHandleReject=yes\nSupportHTTP10KeepALive=off\nDoNotChunk=on",
          " mUserAgent=UPnP/1.0 Zolt/1.1 mfSupportHTTPStalling=1 mfSupportHTTP10KeepALive=1" },
        { WebClient, "", "" },
        { WebClient,
          "SessionIdleTimeOut=21\nMaxIdleSessions=22\nSessionPoolSize=23\nConnectRetryCount=3\nConnectTimeOut=12\n"
          "AllowSingleConnection=-1\nDoNotChunk=2\nHandleReject=1\nSingleConnectionSessionIdleTimeOut=9\nUserAgent=x",
          " mSessionIdleTimeOut=21 mMaxIdleSessions=22 mSessionPoolSize=23 mConnectRetryCount=3"
          " mConnectTimeOut=12 mfAllowSingleConnection=1 mfDoNotChunk=1 mfHandleReject=1" },
        { WebClient,
          "SessionIdleTimeOut=601\nMaxIdleSessions=4\nSessionPoolSize=101\nConnectRetryCount=11\n"
          "AllowSingleConnection=on\nDoNotChunk=-0\nHandleReject=-2147483649",
          " mSessionIdleTimeOut=600 mMaxIdleSessions=5 mSessionPoolSize=100 mConnectRetryCount=10" },
        { ControlPoint, "", " mUserAgent=UPnP/1.0 DLNADOC/1.50 Zolt/1.1 mfEnableMSEARCHInfo=1 mfDisableNoSSDP=1" },
        { ControlPoint,
          "UserAgent=Box/2.0\nDLNAVersion=2.0\nDisableSSDP=3\nMSEARCHInfo=0\nEnableNoSSDP=1\nDetectDeviceOnly=1",
          " mUserAgent=UPnP/1.0 DLNADOC/2.0 Box/2.0 mfDisableSSDP=1 mfDetectOnly=1" },
        { ControlPoint,
          "UserAgent=\nDLNAVersion=%s\nDisableSSDP=-1\nMSEARCHInfo=-0\nEnableNoSSDP=-1\nDetectDeviceOnly=-1",
          " mUserAgent=UPnP/1.0 DLNADOC/%s Zolt/1.1 mfEnableMSEARCHInfo=1 mfDisableNoSSDP=1" },
        { ControlPoint, "DisableSSDP=on\nMSEARCHInfo=off\nEnableNoSSDP=on\nDetectDeviceOnly=yes",
          " mUserAgent=UPnP/1.0 DLNADOC/1.50 Zolt/1.1 mfEnableMSEARCHInfo=1 mfDisableNoSSDP=1" },
    };
    LogCatcher theLog;
    for (const auto& [theFetch, theKeys, theRecord] : kCases)
        EXPECT_EQ(theRecord, theFetch(File(theKeys))) << theKeys;
    for (const Fetcher theFetch : { AsyncSocket, ServerSocket, SSDP, NoSSDP, WebServer, WebClient, ControlPoint })
        EXPECT_EQ(theFetch(File("")), theFetch(nullptr));
}

TEST(UPnPConfigTest, WarnsOfNumbersOutOfBounds)
{
    static const char kSource[] = "2/1 Libs/Internal/UPnP/Stack/ILibConfigBounds.cpp: ";
    LogCatcher theLog;
    EXPECT_EQ(" mSSDPTTL=100 mSSDPSearchRequestCount=10 mfSSDPMSEARCHPortStrict=1 mSSDPDeviceMX=10 mSSDPMX=1"
              " mfHandleMSEARCHAsNOTIFY=1 mUserAgent=UPnP/1.0 Zolt/1.1",
              SSDP(File("TTL=255\nSearchRequestCount=10\nMX=1")));
    EXPECT_EQ(std::string(kSource) + "ILibSSDPConfig: mSSDPTTL 255 is not within 1 to 100, 100 is taken\n",
              theLog.mText);
    theLog.mText.clear();
    WebServer(File("ConnectTimeOut=4000000000"));
    EXPECT_EQ(std::string(kSource) +
                  "ILibAsyncSocketConfig: mConnectTimeOut 4000000000 is not within 1 to 600, 600 is taken\n",
              theLog.mText);
}

TEST(UPnPConfigTest, ClonesOwnTheirTexts)
{
    const ConfigFile theFile = File("SessionIdleTimeOut=21\nPortNumber=8080\nInitialBufferSize=512\nUserAgent=Box/2.0");
    ILibWebServerConfig* theServer = UPnPConfig_CreateWebServerConfig();
    UPnPConfig_FetchWebServerConfig(theServer, theFile, "s", kPolicy, kHook, &sModule, OnPresentation);
    ILibWebServerConfig* theServerClone = UPnPConfig_CloneWebServerConfig(theServer);
    ILibAsyncServerSocketConfig* theSocketClone =
        UPnPConfig_CloneAsyncServerSocketConfig(&theServer->mAsyncServerSocketConfig);
    ILibAsyncSocketConfig* theInnerClone = UPnPConfig_CloneAsyncSocketConfig(&theSocketClone->mAsyncSocketConfig);
    UPnPConfig_FreeWebServerConfig(theServer);
    EXPECT_EQ(nullptr, theServer->mUserAgent);
    UPnPConfig_FreeWebServerConfig(theServer);
    free(theServer);
    EXPECT_EQ(" mSessionIdleTimeOut=21 mPortNumber=8080 mInitialBufferSize=512 mUserAgent=UPnP/1.0 Box/2.0"
              " mfSupportHTTPStalling=1 mfSupportHTTP10KeepALive=1",
              TextOf(*theServerClone));
    EXPECT_EQ(" mPortNumber=8080 mInitialBufferSize=512", TextOf(*theSocketClone));
    EXPECT_EQ(" mInitialBufferSize=512", TextOf(*theInnerClone));
    UPnPConfig_FreeWebServerConfig(theServerClone);
    free(theServerClone);
    free(theSocketClone);
    free(theInnerClone);

    ILibWebServerConfig theBare = {};
    theServerClone = UPnPConfig_CloneWebServerConfig(&theBare);
    EXPECT_EQ(nullptr, theServerClone->mUserAgent);
    free(theServerClone);
    ILibWebClientConfig theClient = {};
    theClient.mSingleConnectionSessionIdleTimeOut = 7;
    ILibWebClientConfig* theClientClone = UPnPConfig_CloneWebClientConfig(&theClient);
    EXPECT_EQ(" mSocketPolicy is not what was lent mSingleConnectionSessionIdleTimeOut=7", TextOf(*theClientClone));
    free(theClientClone);
}

TEST(UPnPConfigTest, IgnoresNULL)
{
    UPnPConfig_FetchSSDPConfig(nullptr, nullptr, nullptr, nullptr);
    UPnPConfig_FetchWebServerConfig(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    UPnPConfig_FetchNoSSDPConfig(nullptr, nullptr, nullptr, nullptr);
    UPnPConfig_FreeSSDPConfig(nullptr);
    UPnPConfig_FreeWebServerConfig(nullptr);
    UPnPConfig_FreeControlPointConfig(nullptr);
    EXPECT_EQ(nullptr, UPnPConfig_CloneWebServerConfig(nullptr));
    EXPECT_EQ(nullptr, UPnPConfig_CloneAsyncSocketConfig(nullptr));
    EXPECT_EQ(nullptr, UPnPConfig_GetRecord(-1));
    EXPECT_EQ(0u, UPnPConfig_ReadNumber(nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(nullptr, UPnPConfig_GetRecord(kUPnPConfigRecord_Count));
}

TEST(UPnPConfigTest, ReadsTextsOrTheirDefault)
{
    const ConfigFile theFile = File("empty=\nname=a b\nhost=box %HOSTNAME%");
    EXPECT_EQ("a b", Taken(UPnPConfig_GetString(theFile, "s", "name", "d")));
    EXPECT_EQ("", Taken(UPnPConfig_GetString(theFile, "s", "empty", "d")));
    EXPECT_EQ("d", Taken(UPnPConfig_GetString(theFile, "s", "none", "d")));
    EXPECT_EQ("(null)", Taken(UPnPConfig_GetString(theFile, "s", "none", nullptr)));
    EXPECT_EQ("d", Taken(UPnPConfig_GetString(nullptr, "s", "name", "d")));
    EXPECT_EQ("a b", Taken(UPnPConfig_GetStringNotEmpty(theFile, "s", "name", "d")));
    EXPECT_EQ("d", Taken(UPnPConfig_GetStringNotEmpty(theFile, "s", "empty", "d")));
    EXPECT_EQ("d", Taken(UPnPConfig_GetStringNotEmpty(theFile, "s", "none", "d")));
    {
        AssertionCatcher theCatcher;
        EXPECT_EQ("(null)", Taken(UPnPConfig_GetStringNotEmpty(theFile, "s", "empty", nullptr)));
        EXPECT_EQ("Libs/Internal/UPnP/Utilities/UPnPConfig.cpp: aDefaultValue != NULL", theCatcher.Text());
    }
    char* theHost = zoStringSubstitution_Replace_HostName("%HOSTNAME%");
    EXPECT_STRNE("%HOSTNAME%", theHost);
    EXPECT_EQ("box " + std::string(theHost),
              Taken(UPnPConfig_GetStringWithSubstitution(theFile, "s", "host", nullptr)));
    EXPECT_EQ(theHost, Taken(UPnPConfig_GetStringWithSubstitution(theFile, "s", "none", "%HOSTNAME%")));
    EXPECT_EQ("(null)", Taken(UPnPConfig_GetStringWithSubstitution(theFile, "s", "none", nullptr)));
    free(theHost);
}

TEST(UPnPConfigTest, ReadsNumbersOrTheirDefault)
{
    const ConfigFile theFile = File("seven=7\nzero=0\nword=x");
    EXPECT_EQ(7u, UPnPConfig_GetUInt32(theFile, "s", "seven", 1));
    EXPECT_EQ(9u, UPnPConfig_GetUInt32(theFile, "s", "word", 9));
    EXPECT_EQ(1u, UPnPConfig_GetBoolAsUInt32(theFile, "s", "seven", 0));
    EXPECT_EQ(0u, UPnPConfig_GetBoolAsUInt32(theFile, "s", "zero", 1));
    EXPECT_EQ(1u, UPnPConfig_GetBoolAsUInt32(theFile, "s", "none", 9));
}

TEST(UPnPConfigTest, AddsTextsCutAtACharacter)
{
    static const std::tuple<const char*, const char*, size_t, const char*> kCases[] = {
        // key, default, maximum length, what is stored (NULL: what was there stays)
        { "ascii", nullptr, 0, "abcdef" },
        { "ascii", nullptr, 4, "abcd" },
        { "ascii", nullptr, 6, "abcdef" },
        { "ascii", nullptr, static_cast<size_t>(-1), "abcdef" },
        { "empty", "d", 4, "" },
        { "none", "default", 4, "defa" },
        { "none", "default", 0, "default" },
        { "none", nullptr, 0, nullptr },
        { "none", nullptr, 4, nullptr },
        { "utf8", nullptr, 1, "" }, // \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xB5 take 2, 3 and 4 bytes
        { "utf8", nullptr, 2, "\xC3\xA9" },
        { "utf8", nullptr, 4, "\xC3\xA9" },
        { "utf8", nullptr, 5, "\xC3\xA9\xE2\x82\xAC" },
        { "utf8", nullptr, 8, "\xC3\xA9\xE2\x82\xAC" },
        { "utf8", nullptr, 9, "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5" },
        { "broken", nullptr, 5, "\x80\x80\x80\x80\x80" },
        { "latin", nullptr, 2, "21" },
    };
    const ConfigFile theFile =
        File("ascii=abcdef\nempty=\nutf8=\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5\nbroken=\x80\x80\x80\x80\x80\x80\n"
             "latin=21\xB0"
             "C");
    for (const auto& [theKey, theDefault, theMaxLength, theStored] : kCases)
    {
        for (const auto theAdd : { UPnPConfig_AddToHashTable, UPnPConfig_AddToHashTableIfUnspecified })
        {
            zoCustomHashTable* theTable = zoCustomHashTable_New_String_String();
            zoCustomHashTable_Add(theTable, "k", "before");
            theAdd(theTable, "k", theFile, "s", theKey, theDefault, theMaxLength);
            EXPECT_STREQ(theStored ? theStored : "before", zoCustomHashTable_Get(theTable, "k"))
                << theKey << ' ' << theMaxLength;
            theAdd(nullptr, "k", theFile, "s", theKey, theDefault, theMaxLength);
            zoCustomHashTable_Delete(theTable);
        }
    }
}

TEST(UPnPConfigTest, ReadsTheSocketPolicy)
{
    static const std::pair<const char*, int> kCases[] = {
        { "", kzoSocketPolicy_IP_All },
        { "UPnPLocal=0", kzoSocketPolicy_IP_All },
        { "UPnPLocal=1", kzoSocketPolicy_IP_LocalHostOnly },
        { "UPnPLocal=2", kzoSocketPolicy_IP_AllExceptLocalHost },
        { "UPnPLocal=3", kzoSocketPolicy_IP_All },
        { "UPnPLocal=-1", kzoSocketPolicy_IP_All },
        { "UPnPLocal=4294967297", kzoSocketPolicy_IP_All },
        { "QOSDisabled=yes\nexclude-if=eth0, wlan0", kzoSocketPolicy_IP_All },
    };
    for (const auto& [theKeys, theMode] : kCases)
    {
        zoSocketPolicy* thePolicy = UPnPConfig_CreateSocketPolicy(File(theKeys), "s");
        EXPECT_EQ(theMode, zoSocketPolicy_GetMode(thePolicy)) << theKeys;
        const bool fOwnKeys = strchr(theKeys, ',') != nullptr;
        EXPECT_EQ(fOwnKeys, zoSocketPolicy_IsQOSDisabled(thePolicy)) << theKeys;
        EXPECT_NE(fOwnKeys, zoSocketPolicy_Admits(thePolicy, "wlan0", theMode == kzoSocketPolicy_IP_LocalHostOnly))
            << theKeys;
        zoSocketPolicy_Delete(thePolicy);
    }
}
