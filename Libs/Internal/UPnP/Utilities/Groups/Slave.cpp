#include <UPnP/Utilities/Groups/Slave.h>

#include <Shared/ASCII.h>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

UPnPGroupSlave* UPnPGroupSlave_S_New(const char* aGroupedFriendlyName, const char* aGroupedUDN, const char* aUDN)
{
    UPnPGroupSlave* theSlave = static_cast<UPnPGroupSlave*>(zoMallocZeroed(sizeof(UPnPGroupSlave)));
    theSlave->mGroupedFriendlyName = zoStrdup(aGroupedFriendlyName);
    theSlave->mGroupedUDN = zoStrdup(aGroupedUDN);
    theSlave->mUDN = zoStrdup(aUDN);
    theSlave->mMetaData = zoCustomHashTable_New_String_String();
    return theSlave;
}

void UPnPGroupSlave_S_Delete(void* aSlave)
{
    UPnPGroupSlave* theSlave = static_cast<UPnPGroupSlave*>(aSlave);
    free(theSlave->mGroupedFriendlyName);
    free(theSlave->mGroupedUDN);
    free(theSlave->mUDN);
    zoCustomHashTable_Delete(theSlave->mMetaData);
    free(theSlave);
}

UPnPGroupSlave* UPnPGroupSlave_S_Duplicate(const UPnPGroupSlave* aSlave)
{
    UPnPGroupSlave* theSlave = static_cast<UPnPGroupSlave*>(zoMallocZeroed(sizeof(UPnPGroupSlave)));
    theSlave->mGroupedFriendlyName = zoStrdup(aSlave->mGroupedFriendlyName);
    theSlave->mGroupedUDN = zoStrdup(aSlave->mGroupedUDN);
    theSlave->mMetaData = zoCustomHashTable_Duplicate(aSlave->mMetaData);
    return theSlave;
}

bool UPnPGroupSlave_S_IsValid(const UPnPGroupSlave* aSlave)
{
    return !zoStrEmpty(aSlave->mGroupedFriendlyName) && !zoStrEmpty(aSlave->mGroupedUDN);
}

bool UPnPGroupSlave_S_SameAs(const UPnPGroupSlave* aSlave, const UPnPGroupSlave* aCompareSlave)
{
    return UPnPGroupSlave_S_IsValid(aSlave) && UPnPGroupSlave_S_IsValid(aCompareSlave) &&
           Shared::AreEqual(aSlave->mGroupedFriendlyName, aCompareSlave->mGroupedFriendlyName) &&
           Shared::AreEqual(aSlave->mGroupedUDN, aCompareSlave->mGroupedUDN) &&
           UPnPGroupMetaData_SameAs(aSlave->mMetaData, aCompareSlave->mMetaData);
}
