#include <UPnP/Utilities/UPnPConfig.h>

#include <Shared/Integers.h>
#include <UPnP/Utilities/Config/Readers.h>
#include <UPnP/Utilities/Config/Records.h>
#include <UPnP/Utilities/Private/UPnPUTF8.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoSocketPolicyConfig.h>

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

// ---- What the fetches read ----

const UPnPConfigRecord_t* UPnPConfig_GetRecord(int aRecord)
{
    return aRecord >= 0 && aRecord < kUPnPConfigRecord_Count ? &Config::kRecords[aRecord] : nullptr;
}

uint32 UPnPConfig_ReadNumber(const UPnPConfigField_t* aField, zoConfigFile* aConfigFile, const char* aSection,
                             uint32 aDefaultValue)
{
    return aField && aField->mRead ? aField->mRead(aConfigFile, aSection, aField->mKey, aDefaultValue) : 0;
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
};

} // namespace

template <typename Value>
static void Store(void* aTarget, Value aValue)
{
    memcpy(aTarget, &aValue, sizeof(aValue));
}

static char* NewUserAgent(const UPnPConfigField_t& aField, const Source& aSource)
{
    zoConfigFile* theFile = aSource.mConfigFile;
    if (!aField.mVersionKey)
    {
        return UPnPConfig_GetUserAgent(theFile, aSource.mSection, aField.mKey, aField.mStandardPart);
    }
    return UPnPConfig_GetDLNAUserAgent(theFile, aSource.mSection, aField.mKey, aField.mStandardPart,
                                       aField.mVersionKey);
}

static void FetchEmbedded(int aRecord, void* aTarget, const Source& aSource)
{
    zoConfigFile* theFile = aSource.mConfigFile;
    if (aRecord == kUPnPConfigRecord_AsyncSocket)
    {
        UPnPConfig_FetchAsyncSocketConfig(static_cast<ILibAsyncSocketConfig*>(aTarget), theFile, aSource.mSection,
                                          aSource.mSocketPolicy);
        return;
    }
    UPnPConfig_FetchAsyncServerSocketConfig(static_cast<ILibAsyncServerSocketConfig*>(aTarget), theFile,
                                            aSource.mSection, aSource.mSocketPolicy);
}

static void FillField(const UPnPConfigField_t& aField, void* aTarget, const Source& aSource)
{
    switch (aField.mValue)
    {
    case kUPnPConfigValue_Number:
    case kUPnPConfigValue_Address:
        Shared::StoreUnsigned(aTarget, aField.mSize,
                              aField.mRead(aSource.mConfigFile, aSource.mSection, aField.mKey, aField.mDefault));
        break;
    case kUPnPConfigValue_UserAgent: Store(aTarget, NewUserAgent(aField, aSource)); break;
    case kUPnPConfigValue_Policy: Store(aTarget, aSource.mSocketPolicy); break;
    case kUPnPConfigValue_Record: FetchEmbedded(aField.mRecord, aTarget, aSource); break;
    default: break; // an argument of the fetch, or not read
    }
}

// The fields of a record that its own keys fill, or the others.
static void FillFields(const UPnPConfigRecord_t& aRecord, bool afKeys, char* aTarget, const Source& aSource)
{
    for (size_t i = 0; i < aRecord.mFieldCount; ++i)
    {
        const UPnPConfigField_t& theField = aRecord.mFields[i];
        if ((theField.mKey != nullptr) == afKeys) { FillField(theField, aTarget + theField.mOffset, aSource); }
    }
}

// Never inlined, for size: records are filled when the stack starts. False for a NULL record. An embedded record's keys
// are read before the record's own.
__attribute__((noinline)) static bool Fill(int aRecord, void* aTarget, const Source& aSource)
{
    if (!aTarget) { return false; }
    const UPnPConfigRecord_t& theRecord = Config::kRecords[aRecord];
    memset(aTarget, 0, theRecord.mSize);
    FillFields(theRecord, false, static_cast<char*>(aTarget), aSource);
    FillFields(theRecord, true, static_cast<char*>(aTarget), aSource);
    return true;
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
    if (!Fill(kUPnPConfigRecord_AsyncSocket, anAsyncSocketConfig, { aConfigFile, aSection, aSocketPolicy })) { return; }
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
    if (!Fill(kUPnPConfigRecord_AsyncServerSocket, anAsyncServerSocketConfig, { aConfigFile, aSection, aSocketPolicy }))
    {
        return;
    }
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
    if (!Fill(kUPnPConfigRecord_SSDP, aSSDPConfig, { aConfigFile, aSection, aSocketPolicy })) { return; }
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
    if (!Fill(kUPnPConfigRecord_NoSSDP, aNoSSDPConfig, { aConfigFile, aSection, aSocketPolicy })) { return; }
    ILibNoSSDPClient_ValidateConfiguration(aNoSSDPConfig);
}

ILibWebServerConfig* UPnPConfig_CreateWebServerConfig() { return Create<ILibWebServerConfig>(); }

void UPnPConfig_FetchWebServerConfig(ILibWebServerConfig* aWebServerConfig, zoConfigFile* aConfigFile,
                                     const char* aSection, zoSocketPolicy* aSocketPolicy, UPnPHook* aUPnPHook,
                                     void* aUPnPPresentationModule,
                                     ILibWebServer_OnPresentation aUPnPPresentationCallback)
{
    if (!Fill(kUPnPConfigRecord_WebServer, aWebServerConfig, { aConfigFile, aSection, aSocketPolicy })) { return; }
    aWebServerConfig->mUPnPHook = aUPnPHook;
    aWebServerConfig->mUPnPPresentationModule = aUPnPPresentationModule;
    aWebServerConfig->mUPnPPresentationCallback = aUPnPPresentationCallback;
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
    if (!Fill(kUPnPConfigRecord_WebClient, aWebClientConfig, { aConfigFile, aSection, aSocketPolicy })) { return; }
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
    if (!Fill(kUPnPConfigRecord_ControlPoint, aControlPointConfig, { aConfigFile, aSection, aSocketPolicy }))
    {
        return;
    }
    aControlPointConfig->mUPnPHook = aUPnPHook;
}

void UPnPConfig_FreeControlPointConfig(UPnPControlPointConfig* aControlPointConfig)
{
    if (!aControlPointConfig) { return; }
    free(aControlPointConfig->mUserAgent);
    aControlPointConfig->mUserAgent = nullptr;
}
