#include <UPnP/Utilities/UPnPGroupCapabilities.h>

#include <Shared/ASCII.h>
#include <Shared/Append.h>
#include <Shared/LogMessage.h>
#include <UPnP/Utilities/Groups/Capability.h>
#include <UPnP/Utilities/Groups/Comparison.h>
#include <UPnP/Utilities/Groups/Configuration.h>
#include <UPnP/Utilities/Groups/Slave.h>
#include <UPnP/Utilities/Groups/XML.h>
#include <initializer_list>
#include <stdlib.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoMemory.h>

using Shared::AreEqual;

static void LogWarning(int aLine, const char* aText)
{
    Shared::LogMessage(ZOLOGLEVEL_WARNING, ZOLOG_M_UPNPGROUP, __FILE__, aLine, "%s\n", aText);
}

// ---- Group capabilities ----

struct UPnPGroupCapabilities
{
    zoArray_t* mArray; // of UPnPGroupCapability*, which it owns
};

static void LogCapabilityError(Groups::CapabilityError anError)
{
    switch (anError)
    {
    case Groups::kCapability_Good: return;
    case Groups::kCapability_NotWellFormed:
        LogWarning(__LINE__, "UPnPGroupCapabilities: Unable to parse XML for 'groupCapabilities' in a device");
        return;
    case Groups::kCapability_Incomplete:
        LogWarning(__LINE__, "UPnPGroupCapabilities: Found an invalid 'groupCapability' description in a device");
        return;
    }
}

UPnPGroupCapabilities* UPnPGroupCapabilities_New(const char* anXMLGroupCapability)
{
    UPnPGroupCapabilities* theCapabilities =
        static_cast<UPnPGroupCapabilities*>(zoMallocZeroed(sizeof(UPnPGroupCapabilities)));
    theCapabilities->mArray = zoArray_New();
    zoArray_SetFreeFunc(theCapabilities->mArray, Groups::DeleteCapability);
    UPnPGroupCapability* theCapability = nullptr;
    LogCapabilityError(Groups::ReadCapability(anXMLGroupCapability, &theCapability));
    if (theCapability) { zoArray_Append(theCapabilities->mArray, theCapability); }
    return theCapabilities;
}

void UPnPGroupCapabilities_Delete(UPnPGroupCapabilities* aCapabilities)
{
    if (!aCapabilities) { return; }
    zoArray_Delete(aCapabilities->mArray);
    free(aCapabilities);
}

static UPnPGroupCapability* FindCapability(UPnPGroupCapabilities* aCapabilities, const char* aName)
{
    const size_t theCount = UPnPGroupCapabilities_GetCount(aCapabilities);
    for (size_t i = 0; i < theCount; ++i)
    {
        UPnPGroupCapability* theCapability = UPnPGroupCapabilities_GetAt(aCapabilities, i);
        if (AreEqual(theCapability->mName, aName)) { return theCapability; }
    }
    return nullptr;
}

UPnPGroupCapability* UPnPGroupCapabilities_GetGroup(UPnPGroupCapabilities* aCapabilities, const char* aCapability)
{
    if (!aCapabilities) { return nullptr; }
    UPnPGroupCapability* theCapability = FindCapability(aCapabilities, aCapability);
    if (!theCapability)
    {
        Shared::LogMessage(ZOLOGLEVEL_WARNING, ZOLOG_M_UPNPGROUP, __FILE__, __LINE__,
                           "UPnPGroupCapabilities: Group for capability '%s' non found\n",
                           aCapability ? aCapability : "NULL");
    }
    return theCapability;
}

const char* UPnPGroupCapabilities_GetActive(UPnPGroupCapabilities* aCapabilities)
{
    const size_t theCount = UPnPGroupCapabilities_GetCount(aCapabilities);
    for (size_t i = 0; i < theCount; ++i)
    {
        const UPnPGroupCapability* theCapability = UPnPGroupCapabilities_GetAt(aCapabilities, i);
        if (theCapability->mMode != kUPnPGroupMode_None) { return theCapability->mName; }
    }
    return "";
}

size_t UPnPGroupCapabilities_GetCount(UPnPGroupCapabilities* aCapabilities)
{
    return aCapabilities ? zoArray_GetCount(aCapabilities->mArray) : 0;
}

UPnPGroupCapability* UPnPGroupCapabilities_GetAt(UPnPGroupCapabilities* aCapabilities, size_t anIndex)
{
    if (anIndex >= UPnPGroupCapabilities_GetCount(aCapabilities)) { return nullptr; }
    return static_cast<UPnPGroupCapability*>(zoArray_At(aCapabilities->mArray, anIndex));
}

int UPnPGroupCapabilities_Has(UPnPGroupCapabilities* aCapabilities, const char* aCapability)
{
    return FindCapability(aCapabilities, aCapability) != nullptr;
}

// ---- Groups ----

namespace
{

// What is allocated for each group.
struct GroupRecord
{
    UPnPGroupInfo mGroup; // first, so that a group's pointer is its record's too
    size_t mLastFound;    // the index of the slave that the last search found; 0, the first to be searched, before
};

} // namespace

static size_t& LastFound(UPnPGroupInfo* aGroupInfo) { return reinterpret_cast<GroupRecord*>(aGroupInfo)->mLastFound; }

UPnPGroupInfo* UPnPGroupInfo_NewEx(const char* aCapability)
{
    UPnPGroupInfo* theGroup = &static_cast<GroupRecord*>(zoMallocZeroed(sizeof(GroupRecord)))->mGroup;
    theGroup->mSlaves = zoArray_New();
    zoArray_SetFreeFunc(theGroup->mSlaves, UPnPGroupSlave_S_Delete);
    theGroup->mCapability = zoStrdup(aCapability);
    theGroup->mMasterMetaData = zoCustomHashTable_New_String_String();
    theGroup->mGroupMetaData = zoCustomHashTable_New_String_String();
    return theGroup;
}

static void ReplaceTable(zoCustomHashTable** aTarget, const zoCustomHashTable* aTable)
{
    zoCustomHashTable_Delete(*aTarget);
    *aTarget = zoCustomHashTable_Duplicate(aTable);
}

UPnPGroupInfo* UPnPGroupInfo_Duplicate(UPnPGroupInfo* aGroupInfo)
{
    if (!aGroupInfo) { return nullptr; }
    UPnPGroupInfo* theGroup = UPnPGroupInfo_NewEx(aGroupInfo->mCapability);
    theGroup->mGroupFriendlyName = zoStrdup(aGroupInfo->mGroupFriendlyName);
    theGroup->mOriginalGroupUDN =
        zoStrdup(aGroupInfo->mOriginalGroupUDN ? aGroupInfo->mOriginalGroupUDN : aGroupInfo->mGroupUDN);
    theGroup->mfHasMasterSet = aGroupInfo->mfHasMasterSet;
    theGroup->mMasterGroupedFriendlyName = zoStrdup(aGroupInfo->mMasterGroupedFriendlyName);
    theGroup->mMasterGroupedUDN = zoStrdup(aGroupInfo->mMasterGroupedUDN);
    ReplaceTable(&theGroup->mMasterMetaData, aGroupInfo->mMasterMetaData);
    ReplaceTable(&theGroup->mGroupMetaData, aGroupInfo->mGroupMetaData);
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
        zoArray_Append(theGroup->mSlaves, UPnPGroupSlave_S_Duplicate(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i)));
    return theGroup;
}

void UPnPGroupInfo_Delete(UPnPGroupInfo* aGroupInfo)
{
    if (!aGroupInfo) { return; }
    zoArray_Delete(aGroupInfo->mSlaves);
    free(aGroupInfo->mCapability);
    free(aGroupInfo->mGroupFriendlyName);
    free(aGroupInfo->mGroupUDN);
    free(aGroupInfo->mOriginalGroupUDN);
    free(aGroupInfo->mMasterGroupedFriendlyName);
    free(aGroupInfo->mMasterGroupedUDN);
    zoCustomHashTable_Delete(aGroupInfo->mMasterMetaData);
    zoCustomHashTable_Delete(aGroupInfo->mGroupMetaData);
    free(aGroupInfo);
}

int UPnPGroupInfo_IsValid(UPnPGroupInfo* aGroupInfo)
{
    if (!aGroupInfo) { return 0; }
    for (const char* theText : { aGroupInfo->mGroupFriendlyName, aGroupInfo->mGroupUDN,
                                 aGroupInfo->mMasterGroupedFriendlyName, aGroupInfo->mMasterGroupedUDN })
    {
        if (zoStrEmpty(theText)) { return 0; }
    }
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        if (!UPnPGroupSlave_S_IsValid(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i))) { return 0; }
    }
    return 1;
}

int UPnPGroupInfo_SameAs(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo)
{
    return UPnPGroupInfo_GetSlaveCount(aGroupInfo) == UPnPGroupInfo_GetSlaveCount(aCompareGroupInfo) &&
           UPnPGroupInfo_IsValid(aGroupInfo) && UPnPGroupInfo_IsValid(aCompareGroupInfo) &&
           AreEqual(aGroupInfo->mGroupUDN, aCompareGroupInfo->mGroupUDN) &&
           AreEqual(aGroupInfo->mGroupFriendlyName, aCompareGroupInfo->mGroupFriendlyName) &&
           AreEqual(aGroupInfo->mMasterGroupedFriendlyName, aCompareGroupInfo->mMasterGroupedFriendlyName) &&
           AreEqual(aGroupInfo->mMasterGroupedUDN, aCompareGroupInfo->mMasterGroupedUDN) &&
           UPnPGroupMetaData_SameAs(aGroupInfo->mGroupMetaData, aCompareGroupInfo->mGroupMetaData) &&
           UPnPGroupMetaData_SameAs(aGroupInfo->mMasterMetaData, aCompareGroupInfo->mMasterMetaData) &&
           Groups::HaveSameSlaves(aGroupInfo, aCompareGroupInfo);
}

// ---- Members of a group ----

size_t UPnPGroupInfo_GetSlaveCount(UPnPGroupInfo* aGroupInfo)
{
    return aGroupInfo ? zoArray_GetCount(aGroupInfo->mSlaves) : 0;
}

UPnPGroupSlave* UPnPGroupInfo_GetSlaveAt(UPnPGroupInfo* aGroupInfo, size_t anIndex)
{
    if (anIndex >= UPnPGroupInfo_GetSlaveCount(aGroupInfo)) { return nullptr; }
    return static_cast<UPnPGroupSlave*>(zoArray_At(aGroupInfo->mSlaves, anIndex));
}

size_t UPnPGroupInfo_GetSlaveIndexByGroupedUDN(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN)
{
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        if (!AreEqual(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i)->mGroupedUDN, aSlaveGroupedUDN)) { continue; }
        LastFound(aGroupInfo) = i;
        return i;
    }
    return static_cast<size_t>(-1);
}

// Callers mostly ask several times in a row for the same slave, such as for each of its metadata.
static UPnPGroupSlave* FindSlave(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    UPnPGroupSlave* theLast = aGroupInfo ? UPnPGroupInfo_GetSlaveAt(aGroupInfo, LastFound(aGroupInfo)) : nullptr;
    if (theLast && AreEqual(theLast->mGroupedUDN, aGroupedUDN)) { return theLast; }
    return UPnPGroupInfo_GetSlaveAt(aGroupInfo, UPnPGroupInfo_GetSlaveIndexByGroupedUDN(aGroupInfo, aGroupedUDN));
}

static bool IsMaster(const UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    return aGroupInfo && AreEqual(aGroupInfo->mMasterGroupedUDN, aGroupedUDN);
}

int UPnPGroupInfo_HasDevice(UPnPGroupInfo* aGroupInfo, const char* aDeviceUDN)
{
    return IsMaster(aGroupInfo, aDeviceUDN) || FindSlave(aGroupInfo, aDeviceUDN) != nullptr;
}

int UPnPGroupInfo_RemoveSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN)
{
    const size_t theIndex = UPnPGroupInfo_GetSlaveIndexByGroupedUDN(aGroupInfo, aSlaveGroupedUDN);
    if (theIndex == static_cast<size_t>(-1)) { return 0; }
    zoArray_RemoveAt(aGroupInfo->mSlaves, theIndex, 1);
    LastFound(aGroupInfo) = 0; // the slave that moved to theIndex need not be the first with its UDN
    return 1;
}

void UPnPGroupInfo_AddSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN, const char* aSlaveFriendlyName,
                            const char* aSlaveUDN)
{
    if (!aGroupInfo) { return; }
    UPnPGroupSlave* theSlave = UPnPGroupSlave_S_New(aSlaveFriendlyName, aSlaveGroupedUDN, aSlaveUDN);
    UPnPGroupInfo_RemoveSlave(aGroupInfo, theSlave->mGroupedUDN); // the texts given may be those of that slave
    zoArray_Append(aGroupInfo->mSlaves, theSlave);
}

char* UPnPGroupInfo_FetchGroupedInfo(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    if (IsMaster(aGroupInfo, aGroupedUDN)) { return zoStrdup(aGroupInfo->mMasterGroupedFriendlyName); }
    const UPnPGroupSlave* theSlave = FindSlave(aGroupInfo, aGroupedUDN);
    return theSlave ? zoStrdup(theSlave->mGroupedFriendlyName) : nullptr;
}

zoArray_t* UPnPGroupInfo_GetGroupedUDNs(UPnPGroupInfo* aGroupInfo)
{
    zoArray_t* theUDNs = zoArray_New();
    zoArray_SetFreeFunc(theUDNs, zoStringArray_FreeFunc);
    if (aGroupInfo && !zoStrEmpty(aGroupInfo->mMasterGroupedUDN))
    {
        zoArray_Append(theUDNs, zoStrdup(aGroupInfo->mMasterGroupedUDN));
    }
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theUDN = UPnPGroupInfo_GetSlaveAt(aGroupInfo, i)->mGroupedUDN;
        zoArray_Append(theUDNs, zoStrdup(theUDN ? theUDN : ""));
    }
    return theUDNs;
}

// ---- Metadata ----

int UPnPGroupMetaData_Set(zoCustomHashTable* aMetaDataHashTable, const char* aKey, const char* aValue)
{
    if (!aMetaDataHashTable || zoStrEmpty(aKey) || !aValue) { return 0; }
    zoCustomHashTable_Add(aMetaDataHashTable, aKey, aValue);
    return 1;
}

void UPnPGroupMetaData_Remove(zoCustomHashTable* aMetaDataHashTable, const char* aKey)
{
    if (!aMetaDataHashTable || zoStrEmpty(aKey)) { return; }
    zoCustomHashTable_Remove(aMetaDataHashTable, aKey);
}

int UPnPGroupMetaData_SameAs(zoCustomHashTable* aMetaDataHashTable1, zoCustomHashTable* aMetaDataHashTable2)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aMetaDataHashTable1);
    if (theCount != zoCustomHashTable_GetTupleCount(aMetaDataHashTable2)) { return 0; }
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theKey = zoCustomHashTable_GetKeyAtIndex(aMetaDataHashTable1, i);
        const char* theValue = zoCustomHashTable_Get(aMetaDataHashTable1, theKey);
        if (!AreEqual(theValue, zoCustomHashTable_Get(aMetaDataHashTable2, theKey))) { return 0; }
    }
    return 1;
}

char* UPnPGroupMetaData_GetXML(zoCustomHashTable* aMetaDataHashTable)
{
    zoBuffer* theBuffer = zoBuffer_New(0);
    Groups::AppendMetaData(theBuffer, aMetaDataHashTable);
    return Shared::TakeText(theBuffer);
}

// The table of the group (for NULL), the master or a slave; NULL when there is no such member.
static zoCustomHashTable* FindMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    if (!aGroupInfo) { return nullptr; }
    if (!aGroupedUDN) { return aGroupInfo->mGroupMetaData; }
    if (IsMaster(aGroupInfo, aGroupedUDN)) { return aGroupInfo->mMasterMetaData; }
    const UPnPGroupSlave* theSlave = FindSlave(aGroupInfo, aGroupedUDN);
    return theSlave ? theSlave->mMetaData : nullptr;
}

int UPnPGroupInfo_SetMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, const char* aMetaDataName,
                              const char* aMetaDataValue)
{
    zoCustomHashTable* theTable = FindMetaData(aGroupInfo, aGroupedUDN);
    if (!theTable) { return 0; }
    const bool fIsSlave = theTable != aGroupInfo->mGroupMetaData && theTable != aGroupInfo->mMasterMetaData;
    return UPnPGroupMetaData_Set(theTable, aMetaDataName, aMetaDataValue) || fIsSlave;
}

void UPnPGroupInfo_RemoveMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, const char* aMetaDataName)
{
    UPnPGroupMetaData_Remove(FindMetaData(aGroupInfo, aGroupedUDN), aMetaDataName);
}

size_t UPnPGroupInfo_GetMetaDataCount(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    return zoCustomHashTable_GetTupleCount(FindMetaData(aGroupInfo, aGroupedUDN));
}

static const char* FetchKeyAt(zoCustomHashTable* aMetaDataHashTable, size_t anIndex)
{
    if (!zoAssert(anIndex < zoCustomHashTable_GetTupleCount(aMetaDataHashTable))) { return nullptr; }
    return zoCustomHashTable_GetKeyAtIndex(aMetaDataHashTable, anIndex);
}

void UPnPGroupInfo_FetchMetaDataAt(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, size_t anIndex,
                                   const char** aMetaDataName, const char** aMetaDataValue)
{
    if (aMetaDataName) { *aMetaDataName = nullptr; }
    if (aMetaDataValue) { *aMetaDataValue = nullptr; }
    if (!aGroupInfo) { return; }
    zoCustomHashTable* theTable = FindMetaData(aGroupInfo, aGroupedUDN);
    if (!theTable)
    {
        _zoAssert("theIndex != (size_t) -1", __FILE__, __LINE__); // devices' logs are searched for this text
        return;
    }
    const char* theKey = FetchKeyAt(theTable, anIndex);
    if (!theKey) { return; }
    if (aMetaDataName) { *aMetaDataName = theKey; }
    if (aMetaDataValue) { *aMetaDataValue = zoCustomHashTable_Get(theTable, theKey); }
}

// ---- Groups as XML and in the configuration file ----

char* UPnPGroupInfo_GetXML(UPnPGroupInfo* aGroupInfo)
{
    return UPnPGroupInfo_IsValid(aGroupInfo) ? Groups::WriteGroup(aGroupInfo) : nullptr;
}

static void LogGroupError(Groups::GroupError anError)
{
    switch (anError)
    {
    case Groups::kGroup_Good:
    case Groups::kGroup_NotAGroup: return;
    case Groups::kGroup_Incomplete: LogWarning(__LINE__, "UPnPGroupSlave: Invalid group description in XML"); return;
    case Groups::kGroup_IncompleteSlave:
        LogWarning(__LINE__, "UPnPGroupSlave: Invalid slave description in XML attributes");
        return;
    }
}

UPnPGroupInfo* UPnPGroupInfo_New(const char* aCapability, const char* aGroupInfo)
{
    UPnPGroupInfo* theGroup = UPnPGroupInfo_NewEx(aCapability);
    const Groups::GroupError theError = Groups::ReadGroup(aGroupInfo, theGroup);
    if (theError == Groups::kGroup_Good) { return theGroup; }
    LogGroupError(theError);
    UPnPGroupInfo_Delete(theGroup);
    return nullptr;
}

void UPnPGroupInfo_Store(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile)
{
    if (aGroupInfo) { Groups::Store(aGroupInfo, aConfigFile); }
}

UPnPGroupInfo* UPnPGroupInfo_NewConfig(zoConfigFile* aConfigFile, const char* aCapability)
{
    UPnPGroupInfo* theGroup = UPnPGroupInfo_NewEx(aCapability);
    Groups::Load(theGroup, aConfigFile);
    return theGroup;
}
