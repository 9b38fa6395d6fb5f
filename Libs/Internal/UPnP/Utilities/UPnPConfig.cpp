#include <UPnP/Utilities/UPnPConfig.h>

#include <UPnP/Utilities/Private/UPnPUTF8.h>
#include <stdlib.h>
#include <string.h>
#include <zoOS/zoSocket.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoSocketPolicyConfig.h>

static const char kProductToken[] = "Zolt/1.1";
static const char kDLNAVersion[] = "1.50";

// ---- Single values ----

char* UPnPConfig_GetStringWithSubstitution(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                           const char* aDefaultValue)
{
    return zoConfigFile_GetStringWithSubstitution(aConfigFile, aSection, aKey, aDefaultValue,
                                                  zoStringSubstitution_Replace_HostName);
}

char* UPnPConfig_GetString(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, const char* aDefaultValue)
{
    return zoStrdup(zoConfigFile_GetString(aConfigFile, aSection, aKey, aDefaultValue));
}

char* UPnPConfig_GetStringNotEmpty(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                   const char* aDefaultValue)
{
    zoAssert(aDefaultValue != NULL);
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    return zoStrdup(zoStrEmpty(theValue) ? aDefaultValue : theValue);
}

uint32 UPnPConfig_GetUInt32(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32 aDefaultValue)
{
    return zoConfigFile_GetUInt32(aConfigFile, aSection, aKey, aDefaultValue);
}

uint32 UPnPConfig_GetBoolAsUInt32(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                  uint32 aDefaultValue)
{
    return zoConfigFile_GetUInt32(aConfigFile, aSection, aKey, aDefaultValue) != 0 ? 1 : 0;
}

// The length of aText cut to aMaxLength bytes, between characters.
static size_t CutLength(const char* aText, size_t aMaxLength)
{
    const size_t theLength = strnlen(aText, aMaxLength);
    return theLength - UPnPUTF8_BrokenSequenceLength(aText, aText + theLength);
}

static void AddValue(zoCustomHashTable* anHashTable, const char* aHashTableKey, const char* aValue, size_t aMaxLength)
{
    if (!anHashTable || !aHashTableKey || !aValue) { return; }
    if (aMaxLength == 0) { zoCustomHashTable_Add(anHashTable, aHashTableKey, aValue); }
    else
    {
        zoCustomHashTable_AddValueAllocated(anHashTable, aHashTableKey,
                                            zoStrndup(aValue, CutLength(aValue, aMaxLength)));
    }
}

void UPnPConfig_AddToHashTable(zoCustomHashTable* anHashTable, const char* aHashTableKey, zoConfigFile* aConfigFile,
                               const char* aSection, const char* aKey, const char* aDefaultValue, size_t aMaxLength)
{
    AddValue(anHashTable, aHashTableKey, zoConfigFile_GetString(aConfigFile, aSection, aKey, aDefaultValue),
             aMaxLength);
}

void UPnPConfig_AddToHashTableIfUnspecified(zoCustomHashTable* anHashTable, const char* aHashTableKey,
                                            zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                            const char* aDefaultValue, size_t aMaxLength)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    AddValue(anHashTable, aHashTableKey, theValue ? theValue : aDefaultValue, aMaxLength);
}

static int SocketPolicyMode(uint32 aUPnPLocal)
{
    switch (aUPnPLocal)
    {
    case 1: return kzoSocketPolicy_IP_LocalHostOnly;
    case 2: return kzoSocketPolicy_IP_AllExceptLocalHost;
    default: return kzoSocketPolicy_IP_All;
    }
}

zoSocketPolicy* UPnPConfig_CreateSocketPolicy(zoConfigFile* aConfigFile, const char* aSection)
{
    const uint32 theUPnPLocal = zoConfigFile_GetUInt32(aConfigFile, aSection, kKey_Stack_UPnPLocal, 0);
    zoSocketPolicy* thePolicy = zoSocketPolicy_New(SocketPolicyMode(theUPnPLocal), 0);
    zoSocketPolicy_Configure(thePolicy, aConfigFile, aSection);
    return thePolicy;
}

static uint32 UPnPConfig_GetIPAddress(const char* anIPAddress)
{
    return zoStrEmpty(anIPAddress) ? 0 : zoSocketGetAddressFromDotForm(anIPAddress);
}

static char* UPnPConfig_GetUserAgent(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                     const char* aStandardUserAgentString)
{
    char* theProduct = UPnPConfig_GetStringNotEmpty(aConfigFile, aSection, aKey, kProductToken);
    char* theUserAgent = zo_mnprintf("%s %s", aStandardUserAgentString, theProduct);
    free(theProduct);
    return theUserAgent;
}

static char* GetDLNAUserAgent(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              const char* aStandardUserAgentString)
{
    const char* theVersion = zoConfigFile_GetString(aConfigFile, aSection, kKey_ControlPoint_DLNAVersion, kDLNAVersion);
    char* theStandardPart = zo_mnprintf("%s DLNADOC/%s", aStandardUserAgentString, theVersion);
    char* theUserAgent = UPnPConfig_GetUserAgent(aConfigFile, aSection, aKey, theStandardPart);
    free(theStandardPart);
    return theUserAgent;
}

// ---- What the fetches read ----

// The rows of a record's table: field, reader, key, default, standard part.
#define ROW(aField, ...) Row(#aField, offsetof(Record, aField), sizeof(Record::aField), __VA_ARGS__)

static constexpr UPnPConfigField_t Row(const char* aName, size_t anOffset, size_t aSize, uint8 aReader,
                                       const char* aKey = nullptr, uint32 aDefault = 0,
                                       const char* aStandardPart = nullptr)
{
    const uint16 theOffset = static_cast<uint16>(anOffset);
    return { aName, theOffset, static_cast<uint8>(aSize), aReader, aDefault, aKey, aStandardPart };
}

namespace AsyncSocket
{
using Record = ILibAsyncSocketConfig;
static constexpr UPnPConfigField_t kFields[] = {
    ROW(mInitialBufferSize, kUPnPConfigReader_UInt32, kKey_AsyncSocket_InitialBufferSize),
    ROW(mMaxReadAHeadSize, kUPnPConfigReader_UInt32, kKey_AsyncSocket_MaxReadAHeadSize),
    ROW(mConnectTimeOut, kUPnPConfigReader_UInt32, kKey_AsyncSocket_ConnectTimeOut),
    ROW(mDisconnectLingerDuration, kUPnPConfigReader_UInt32, kKey_AsyncSocket_DisconnectLingerDuration),
    ROW(mDestroyLingerDuration, kUPnPConfigReader_UInt32, kKey_AsyncSocket_DestroyLingerDuration),
    ROW(mSocketPolicy, kUPnPConfigReader_Policy),
};
} // namespace AsyncSocket

namespace AsyncServerSocket
{
using Record = ILibAsyncServerSocketConfig;
static constexpr UPnPConfigField_t kFields[] = {
    ROW(mMaxConnections, kUPnPConfigReader_UInt32, kKey_AsyncServerSocket_MaxConnections),
    ROW(mPortNumber, kUPnPConfigReader_UInt16, kKey_AsyncServerSocket_PortNumber),
    ROW(mfAllowChangePortNumber, kUPnPConfigReader_UInt16, kKey_AsyncServerSocket_AllowChangePortNumber),
    ROW(mBacklogSize, kUPnPConfigReader_UInt16, kKey_AsyncServerSocket_BacklogSize),
    ROW(mAsyncSocketConfig, kUPnPConfigReader_AsyncSocket),
};
} // namespace AsyncServerSocket

namespace SSDP
{
using Record = ILibSSDPConfig;
static constexpr UPnPConfigField_t kFields[] = {
    ROW(mSocketPolicy, kUPnPConfigReader_Policy),
    ROW(mSSDPMask, kUPnPConfigReader_Address, kKey_SSDP_Mask),
    ROW(mSSDPPort, kUPnPConfigReader_UInt16, kKey_SSDP_Port),
    ROW(mSSDPTTL, kUPnPConfigReader_UInt8, kKey_SSDP_TTL),
    ROW(mSSDPSearchRequestCount, kUPnPConfigReader_UInt32, kKey_SSDP_SearchRequestCount),
    ROW(mSSDPByeByeMessageCount, kUPnPConfigReader_UInt32, kKey_SSDP_ByeByeMessageCount),
    ROW(mSSDPNotifyCycleSeconds, kUPnPConfigReader_UInt32, kKey_SSDP_NotifyCycleSeconds),
    ROW(mMSEARCHInfoCacheDuration, kUPnPConfigReader_None),
    ROW(mfEnableMSEARCHInfoAny, kUPnPConfigReader_Option, kKey_SSDP_MSEARCHInfoAny),
    ROW(mSSDPMaxDevices, kUPnPConfigReader_UInt32, kKey_SSDP_MaxDevices),
    ROW(mfSSDPMSEARCHResponseMulti, kUPnPConfigReader_Option, kKey_SSDP_MSEARCHResponseMulti),
    ROW(mUDPSendDelay, kUPnPConfigReader_UInt32, kKey_SSDP_UDPSendDelay),
    ROW(mfSSDPMSEARCHPortStrict, kUPnPConfigReader_Option, kKey_SSDP_MSEARCHPortStrict, 1),
    ROW(mSSDPDeviceMX, kUPnPConfigReader_UInt32, kKey_SSDP_DeviceMX, kILibSSDP_DeviceMX_Default),
    ROW(mSSDPMX, kUPnPConfigReader_UInt32, kKey_SSDP_MX, kILibSSDP_MX_Default),
    ROW(mfHandleMSEARCHAsNOTIFY, kUPnPConfigReader_Option, kKey_SSDP_HandleMSEARCHAsNOTIFY, 1),
    ROW(mUserAgent, kUPnPConfigReader_UserAgent, kKey_SSDP_UserAgent, 0, kSSDPStandardUserAgentString),
};
} // namespace SSDP

namespace NoSSDP
{
using Record = ILibNoSSDPConfig;
static constexpr UPnPConfigField_t kFields[] = {
    ROW(mSocketPolicy, kUPnPConfigReader_Policy),
};
} // namespace NoSSDP

namespace WebServer
{
using Record = ILibWebServerConfig;
static constexpr UPnPConfigField_t kFields[] = {
    ROW(mSessionIdleTimeOut, kUPnPConfigReader_UInt32, kKey_WebServer_SessionIdleTimeOut),
    ROW(mUPnPHook, kUPnPConfigReader_Hook),
    ROW(mUPnPPresentationModule, kUPnPConfigReader_PresentationModule),
    ROW(mUPnPPresentationCallback, kUPnPConfigReader_PresentationCallback),
    ROW(mAsyncServerSocketConfig, kUPnPConfigReader_AsyncServerSocket),
    ROW(mUserAgent, kUPnPConfigReader_UserAgent, kKey_WebServer_UserAgent, 0, kWebServerStandardUserAgentString),
    ROW(mfSupportHTTPStalling, kUPnPConfigReader_Flag, kKey_WebServer_SupportHTTPStalling, 1),
    ROW(mfHandleReject, kUPnPConfigReader_Flag, kKey_WebServer_HandleReject),
    ROW(mfSupportHTTP10KeepALive, kUPnPConfigReader_Flag, kKey_WebServer_SupportHTTP10KeepALive, 1),
    ROW(mfDoNotChunk, kUPnPConfigReader_SignedFlag, kKey_WebServer_DoNotChunk),
};
} // namespace WebServer

namespace WebClient
{
using Record = ILibWebClientConfig;
static constexpr UPnPConfigField_t kFields[] = {
    ROW(mSessionIdleTimeOut, kUPnPConfigReader_UInt32, kKey_WebClient_SessionIdleTimeOut),
    ROW(mMaxIdleSessions, kUPnPConfigReader_UInt32, kKey_WebClient_MaxIdleSessions),
    ROW(mSessionPoolSize, kUPnPConfigReader_UInt32, kKey_WebClient_SessionPoolSize),
    ROW(mConnectRetryCount, kUPnPConfigReader_UInt32, kKey_WebClient_ConnectRetryCount),
    ROW(mAsyncSocketConfig, kUPnPConfigReader_AsyncSocket),
    ROW(mfAllowSingleConnection, kUPnPConfigReader_SignedFlag, kKey_WebClient_AllowSingleConnection),
    ROW(mfDoNotChunk, kUPnPConfigReader_SignedFlag, kKey_WebClient_DoNotChunk),
    ROW(mfHandleReject, kUPnPConfigReader_SignedFlag, kKey_WebClient_HandleReject),
    ROW(mSingleConnectionSessionIdleTimeOut, kUPnPConfigReader_None),
};
} // namespace WebClient

namespace ControlPoint
{
using Record = UPnPControlPointConfig;
static constexpr UPnPConfigField_t kFields[] = {
    ROW(mSocketPolicy, kUPnPConfigReader_Policy),
    ROW(mUPnPHook, kUPnPConfigReader_Hook),
    ROW(mUserAgent, kUPnPConfigReader_DLNAUserAgent, kKey_ControlPoint_UserAgent, 0,
        kControlPointStandardUserAgentString),
    ROW(mfDisableSSDP, kUPnPConfigReader_Flag, kKey_ControlPoint_DisableSSDP),
    ROW(mfEnableMSEARCHInfo, kUPnPConfigReader_Flag, kKey_ControlPoint_EnableMSEARCHInfo, 1),
    ROW(mfDisableNoSSDP, kUPnPConfigReader_InvertedFlag, kKey_ControlPoint_EnableNoSSDP),
    ROW(mfDetectOnly, kUPnPConfigReader_Flag, kKey_ControlPoint_DetectDeviceOnly),
};
} // namespace ControlPoint

#undef ROW

template <typename Record, size_t kCount>
static constexpr UPnPConfigRecord_t Describe(const char* aName, const UPnPConfigField_t (&aFields)[kCount])
{
    return { aName, aFields, kCount, sizeof(Record) };
}

// By kUPnPConfigRecord_*.
static const UPnPConfigRecord_t kRecords[kUPnPConfigRecord_Count] = {
    Describe<ILibAsyncSocketConfig>("AsyncSocket", AsyncSocket::kFields),
    Describe<ILibAsyncServerSocketConfig>("AsyncServerSocket", AsyncServerSocket::kFields),
    Describe<ILibSSDPConfig>("SSDP", SSDP::kFields),
    Describe<ILibNoSSDPConfig>("NoSSDP", NoSSDP::kFields),
    Describe<ILibWebServerConfig>("WebServer", WebServer::kFields),
    Describe<ILibWebClientConfig>("WebClient", WebClient::kFields),
    Describe<UPnPControlPointConfig>("ControlPoint", ControlPoint::kFields),
};

const UPnPConfigRecord_t* UPnPConfig_GetRecord(int aRecord)
{
    return aRecord >= 0 && aRecord < kUPnPConfigRecord_Count ? &kRecords[aRecord] : nullptr;
}

uint32 UPnPConfig_ReadNumber(const UPnPConfigField_t* aField, const zoConfigFile* aConfigFile, const char* aSection,
                             uint32 aDefaultValue)
{
    const char* theKey = aField->mKey;
    switch (aField->mReader)
    {
    case kUPnPConfigReader_UInt32: return zoConfigFile_GetUInt32(aConfigFile, aSection, theKey, aDefaultValue);
    case kUPnPConfigReader_UInt16:
        return zoConfigFile_GetUInt16(aConfigFile, aSection, theKey, static_cast<uint16>(aDefaultValue));
    case kUPnPConfigReader_UInt8:
        return zoConfigFile_GetUInt8(aConfigFile, aSection, theKey, static_cast<uint8>(aDefaultValue));
    case kUPnPConfigReader_Option:
        return static_cast<uint32>(
            zoConfigFile_OptionIsSet(aConfigFile, aSection, theKey, static_cast<int>(aDefaultValue)));
    case kUPnPConfigReader_Flag: return zoConfigFile_GetUInt32(aConfigFile, aSection, theKey, aDefaultValue) != 0;
    case kUPnPConfigReader_SignedFlag:
        return zoConfigFile_GetInt32(aConfigFile, aSection, theKey, static_cast<int32>(aDefaultValue)) != 0;
    case kUPnPConfigReader_InvertedFlag:
        return zoConfigFile_GetUInt32(aConfigFile, aSection, theKey, aDefaultValue) == 0;
    case kUPnPConfigReader_Address:
        return UPnPConfig_GetIPAddress(zoConfigFile_GetString(aConfigFile, aSection, theKey, ""));
    default: return 0;
    }
}

// ---- The stack's records ----

namespace
{

// What a fetch fills a record from.
struct Source
{
    zoConfigFile* mConfigFile;
    const char* mSection;
    zoSocketPolicy* mSocketPolicy;
    UPnPHook* mUPnPHook;
    void* mUPnPPresentationModule;
    ILibWebServer_OnPresentation mUPnPPresentationCallback;
};

} // namespace

template <typename Value>
static void Store(void* aTarget, Value aValue)
{
    memcpy(aTarget, &aValue, sizeof(aValue));
}

static void StoreNumber(void* aTarget, size_t aSize, uint32 aNumber)
{
    switch (aSize)
    {
    case 1: Store(aTarget, static_cast<uint8>(aNumber)); break;
    case 2: Store(aTarget, static_cast<uint16>(aNumber)); break;
    case 4: Store(aTarget, aNumber); break;
    default: Store(aTarget, static_cast<uint64>(aNumber)); break;
    }
}

static void FillField(const UPnPConfigField_t& aField, void* aTarget, const Source& aSource)
{
    zoConfigFile* theFile = aSource.mConfigFile;
    const char* theSection = aSource.mSection;
    switch (aField.mReader)
    {
    case kUPnPConfigReader_None: break;
    case kUPnPConfigReader_UserAgent:
        Store(aTarget, UPnPConfig_GetUserAgent(theFile, theSection, aField.mKey, aField.mStandardPart));
        break;
    case kUPnPConfigReader_DLNAUserAgent:
        Store(aTarget, GetDLNAUserAgent(theFile, theSection, aField.mKey, aField.mStandardPart));
        break;
    case kUPnPConfigReader_Policy: Store(aTarget, aSource.mSocketPolicy); break;
    case kUPnPConfigReader_Hook: Store(aTarget, aSource.mUPnPHook); break;
    case kUPnPConfigReader_PresentationModule: Store(aTarget, aSource.mUPnPPresentationModule); break;
    case kUPnPConfigReader_PresentationCallback: Store(aTarget, aSource.mUPnPPresentationCallback); break;
    case kUPnPConfigReader_AsyncSocket:
        UPnPConfig_FetchAsyncSocketConfig(static_cast<ILibAsyncSocketConfig*>(aTarget), theFile, theSection,
                                          aSource.mSocketPolicy);
        break;
    case kUPnPConfigReader_AsyncServerSocket:
        UPnPConfig_FetchAsyncServerSocketConfig(static_cast<ILibAsyncServerSocketConfig*>(aTarget), theFile, theSection,
                                                aSource.mSocketPolicy);
        break;
    default:
        StoreNumber(aTarget, aField.mSize, UPnPConfig_ReadNumber(&aField, theFile, theSection, aField.mDefault));
        break;
    }
}

// Never inlined, for size: records are filled when the stack starts.
__attribute__((noinline)) static void Fill(int aRecord, void* aTarget, const Source& aSource)
{
    if (!aTarget) { return; }
    const UPnPConfigRecord_t& theRecord = kRecords[aRecord];
    memset(aTarget, 0, theRecord.mSize);
    for (size_t i = 0; i < theRecord.mFieldCount; ++i)
    {
        const UPnPConfigField_t& theField = theRecord.mFields[i];
        FillField(theField, static_cast<char*>(aTarget) + theField.mOffset, aSource);
    }
}

template <typename Record>
static Record* Create()
{
    return static_cast<Record*>(zoMallocZeroed(sizeof(Record)));
}

template <typename Record>
static Record* Clone(const Record* aRecord)
{
    if (!aRecord) { return nullptr; }
    Record* theClone = static_cast<Record*>(zoMalloc(sizeof(Record)));
    memcpy(theClone, aRecord, sizeof(Record));
    return theClone;
}

ILibAsyncSocketConfig* UPnPConfig_CreateAsyncSocketConfig() { return Create<ILibAsyncSocketConfig>(); }

void UPnPConfig_FetchAsyncSocketConfig(ILibAsyncSocketConfig* anAsyncSocketConfig, zoConfigFile* aConfigFile,
                                       const char* aSection, zoSocketPolicy* aSocketPolicy)
{
    Fill(kUPnPConfigRecord_AsyncSocket, anAsyncSocketConfig,
         { aConfigFile, aSection, aSocketPolicy, nullptr, nullptr, nullptr });
    ILibAsyncSocket_ValidateConfiguration(anAsyncSocketConfig);
}

ILibAsyncSocketConfig* UPnPConfig_CloneAsyncSocketConfig(const ILibAsyncSocketConfig* anAsyncSocketConfig)
{
    return Clone(anAsyncSocketConfig);
}

ILibAsyncServerSocketConfig* UPnPConfig_CreateAsyncServerSocketConfig()
{
    return Create<ILibAsyncServerSocketConfig>();
}

void UPnPConfig_FetchAsyncServerSocketConfig(ILibAsyncServerSocketConfig* anAsyncServerSocketConfig,
                                             zoConfigFile* aConfigFile, const char* aSection,
                                             zoSocketPolicy* aSocketPolicy)
{
    Fill(kUPnPConfigRecord_AsyncServerSocket, anAsyncServerSocketConfig,
         { aConfigFile, aSection, aSocketPolicy, nullptr, nullptr, nullptr });
    ILibAsyncServerSocket_ValidateConfiguration(anAsyncServerSocketConfig);
}

ILibAsyncServerSocketConfig* UPnPConfig_CloneAsyncServerSocketConfig(
    const ILibAsyncServerSocketConfig* anAsyncServerSocketConfig)
{
    return Clone(anAsyncServerSocketConfig);
}

ILibSSDPConfig* UPnPConfig_CreateSSDPConfig() { return Create<ILibSSDPConfig>(); }

void UPnPConfig_FetchSSDPConfig(ILibSSDPConfig* aSSDPConfig, zoConfigFile* aConfigFile, const char* aSection,
                                zoSocketPolicy* aSocketPolicy)
{
    Fill(kUPnPConfigRecord_SSDP, aSSDPConfig, { aConfigFile, aSection, aSocketPolicy, nullptr, nullptr, nullptr });
    ILibSSDP_ValidateConfiguration(aSSDPConfig);
}

void UPnPConfig_FreeSSDPConfig(ILibSSDPConfig* aSSDPConfig)
{
    if (!aSSDPConfig) { return; }
    free(aSSDPConfig->mUserAgent);
    aSSDPConfig->mUserAgent = nullptr;
}

ILibNoSSDPConfig* UPnPConfig_CreateNoSSDPConfig() { return Create<ILibNoSSDPConfig>(); }

void UPnPConfig_FetchNoSSDPConfig(ILibNoSSDPConfig* aNoSSDPConfig, zoConfigFile* aConfigFile, const char* aSection,
                                  zoSocketPolicy* aSocketPolicy)
{
    Fill(kUPnPConfigRecord_NoSSDP, aNoSSDPConfig, { aConfigFile, aSection, aSocketPolicy, nullptr, nullptr, nullptr });
    ILibNoSSDPClient_ValidateConfiguration(aNoSSDPConfig);
}

ILibWebServerConfig* UPnPConfig_CreateWebServerConfig() { return Create<ILibWebServerConfig>(); }

void UPnPConfig_FetchWebServerConfig(ILibWebServerConfig* aWebServerConfig, zoConfigFile* aConfigFile,
                                     const char* aSection, zoSocketPolicy* aSocketPolicy, UPnPHook* aUPnPHook,
                                     void* aUPnPPresentationModule,
                                     ILibWebServer_OnPresentation aUPnPPresentationCallback)
{
    Fill(kUPnPConfigRecord_WebServer, aWebServerConfig,
         { aConfigFile, aSection, aSocketPolicy, aUPnPHook, aUPnPPresentationModule, aUPnPPresentationCallback });
    ILibWebServer_ValidateConfiguration(aWebServerConfig);
}

ILibWebServerConfig* UPnPConfig_CloneWebServerConfig(const ILibWebServerConfig* anILibWebServerConfig)
{
    ILibWebServerConfig* theClone = Clone(anILibWebServerConfig);
    if (theClone) { theClone->mUserAgent = zoStrdup(theClone->mUserAgent); }
    return theClone;
}

void UPnPConfig_FreeWebServerConfig(ILibWebServerConfig* aWebServerConfig)
{
    if (!aWebServerConfig) { return; }
    free(const_cast<char*>(aWebServerConfig->mUserAgent));
    aWebServerConfig->mUserAgent = nullptr;
}

ILibWebClientConfig* UPnPConfig_CreateWebClientConfig() { return Create<ILibWebClientConfig>(); }

void UPnPConfig_FetchWebClientConfig(ILibWebClientConfig* aWebClientConfig, zoConfigFile* aConfigFile,
                                     const char* aSection, zoSocketPolicy* aSocketPolicy)
{
    Fill(kUPnPConfigRecord_WebClient, aWebClientConfig,
         { aConfigFile, aSection, aSocketPolicy, nullptr, nullptr, nullptr });
    ILibWebClient_ValidateConfiguration(aWebClientConfig);
}

ILibWebClientConfig* UPnPConfig_CloneWebClientConfig(const ILibWebClientConfig* aWebClientConfig)
{
    return Clone(aWebClientConfig);
}

UPnPControlPointConfig* UPnPConfig_CreateControlPointConfig() { return Create<UPnPControlPointConfig>(); }

void UPnPConfig_FetchControlPointConfig(UPnPControlPointConfig* aControlPointConfig, zoConfigFile* aConfigFile,
                                        const char* aSection, zoSocketPolicy* aSocketPolicy, UPnPHook* aUPnPHook)
{
    Fill(kUPnPConfigRecord_ControlPoint, aControlPointConfig,
         { aConfigFile, aSection, aSocketPolicy, aUPnPHook, nullptr, nullptr });
}

void UPnPConfig_FreeControlPointConfig(UPnPControlPointConfig* aControlPointConfig)
{
    if (!aControlPointConfig) { return; }
    free(aControlPointConfig->mUserAgent);
    aControlPointConfig->mUserAgent = nullptr;
}
