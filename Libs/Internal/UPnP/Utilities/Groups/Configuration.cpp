#include <UPnP/Utilities/Groups/Configuration.h>

#include <UPnP/Utilities/Groups/Slave.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

namespace Groups
{

namespace
{

// The section of a group.
struct Section
{
    zoConfigFile* mFile;
    const char* mName;

    // Both take over the key. The result of Get belongs to the file.
    void Set(char* aKey, const char* aValue) const
    {
        zoConfigFile_SetString(mFile, mName, aKey, aValue);
        free(aKey);
    }
    const char* Get(char* aKey, const char* aDefaultValue) const
    {
        const char* theValue = zoConfigFile_GetString(mFile, mName, aKey, aDefaultValue);
        free(aKey);
        return theValue;
    }
};

} // namespace

static char* NewKey(const char* aMember, const char* aField) { return zo_mnprintf("%s.%s", aMember, aField); }

static char* NewMetaDataKey(const char* aMember, size_t anEntry)
{
    return zo_mnprintf("%s.MetaData%lu", aMember, static_cast<unsigned long>(anEntry));
}

static char* NewSlaveName(size_t anIndex) { return zo_mnprintf("Slave%lu", static_cast<unsigned long>(anIndex)); }

// ---- Storing ----

static void StoreMetaData(zoCustomHashTable* aTable, const Section& aSection, const char* aMember)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aTable);
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theName = zoCustomHashTable_GetKeyAtIndex(aTable, i);
        char* theEntry = zo_mnprintf("%s=%s", theName, zoCustomHashTable_Get(aTable, theName));
        aSection.Set(NewMetaDataKey(aMember, i), theEntry);
        free(theEntry);
    }
}

static void StoreMember(const Section& aSection, const char* aMember, const char* aGroupedFriendlyName,
                        const char* aGroupedUDN, zoCustomHashTable* aMetaData)
{
    aSection.Set(NewKey(aMember, "GroupedFriendlyName"), aGroupedFriendlyName);
    aSection.Set(NewKey(aMember, "GroupedUDN"), aGroupedUDN);
    StoreMetaData(aMetaData, aSection, aMember);
}

void Store(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile)
{
    const Section theSection = { aConfigFile, aGroupInfo->mCapability };
    theSection.Set(NewKey("Group", "UDN"), aGroupInfo->mGroupUDN);
    theSection.Set(NewKey("Group", "FriendlyName"), aGroupInfo->mGroupFriendlyName);
    StoreMetaData(aGroupInfo->mGroupMetaData, theSection, "Group");
    StoreMember(theSection, "Master", aGroupInfo->mMasterGroupedFriendlyName, aGroupInfo->mMasterGroupedUDN,
                aGroupInfo->mMasterMetaData);
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        const UPnPGroupSlave* theSlave = UPnPGroupInfo_GetSlaveAt(aGroupInfo, i);
        char* theName = NewSlaveName(i);
        StoreMember(theSection, theName, theSlave->mGroupedFriendlyName, theSlave->mGroupedUDN, theSlave->mMetaData);
        free(theName);
    }
}

// ---- Loading ----

// An entry without "=" or without a name is skipped.
static void AddStoredEntry(zoCustomHashTable* aTable, const char* anEntry)
{
    const char* theEqualSign = strchr(anEntry, '=');
    if (!theEqualSign) { return; }
    char* theName = zoStrndup(anEntry, static_cast<size_t>(theEqualSign - anEntry));
    UPnPGroupMetaData_Set(aTable, theName, theEqualSign + 1);
    free(theName);
}

static void LoadMetaData(zoCustomHashTable* aTable, const Section& aSection, const char* aMember)
{
    size_t theCount = 0;
    while (const char* theEntry = aSection.Get(NewMetaDataKey(aMember, theCount++), nullptr))
        AddStoredEntry(aTable, theEntry);
}

// NULL when the slave is not valid.
static UPnPGroupSlave* LoadSlave(const Section& aSection, const char* aName)
{
    UPnPGroupSlave* theSlave = UPnPGroupSlave_S_New(aSection.Get(NewKey(aName, "GroupedFriendlyName"), ""),
                                                    aSection.Get(NewKey(aName, "GroupedUDN"), ""), nullptr);
    if (UPnPGroupSlave_S_IsValid(theSlave))
    {
        LoadMetaData(theSlave->mMetaData, aSection, aName);
        return theSlave;
    }
    UPnPGroupSlave_S_Delete(theSlave);
    return nullptr;
}

// Up to the first one that is not valid.
static void LoadSlaves(UPnPGroupInfo* aGroupInfo, const Section& aSection)
{
    UPnPGroupSlave* theSlave = nullptr;
    do
    {
        char* theName = NewSlaveName(UPnPGroupInfo_GetSlaveCount(aGroupInfo));
        theSlave = LoadSlave(aSection, theName);
        free(theName);
        if (theSlave) { zoArray_Append(aGroupInfo->mSlaves, theSlave); }
    } while (theSlave);
}

void Load(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile)
{
    const Section theSection = { aConfigFile, aGroupInfo->mCapability };
    zoStrReplace(&aGroupInfo->mGroupUDN, theSection.Get(NewKey("Group", "UDN"), ""));
    zoStrReplace(&aGroupInfo->mGroupFriendlyName, theSection.Get(NewKey("Group", "FriendlyName"), ""));
    LoadMetaData(aGroupInfo->mGroupMetaData, theSection, "Group");
    zoStrReplace(&aGroupInfo->mMasterGroupedFriendlyName, theSection.Get(NewKey("Master", "GroupedFriendlyName"), ""));
    zoStrReplace(&aGroupInfo->mMasterGroupedUDN, theSection.Get(NewKey("Master", "GroupedUDN"), ""));
    LoadMetaData(aGroupInfo->mMasterMetaData, theSection, "Master");
    if (UPnPGroupInfo_IsValid(aGroupInfo)) { LoadSlaves(aGroupInfo, theSection); }
}

} // namespace Groups
