#pragma once

/* One slave of a group. */

#include <UPnP/Utilities/UPnPGroupCapabilities.h>

/** @return a new slave of copies, with an empty table; released with UPnPGroupSlave_S_Delete. */
UPnPGroupSlave* UPnPGroupSlave_S_New(const char* aGroupedFriendlyName, const char* aGroupedUDN, const char* aUDN);
/** @param aSlave a UPnPGroupSlave. */
void UPnPGroupSlave_S_Delete(void* aSlave);
/** @return a new slave with the same contents but for mUDN, which is NULL. */
UPnPGroupSlave* UPnPGroupSlave_S_Duplicate(const UPnPGroupSlave* aSlave);
bool UPnPGroupSlave_S_IsValid(const UPnPGroupSlave* aSlave);
/** @return true if both are valid and have the same name, grouped UDN and metadata. */
bool UPnPGroupSlave_S_SameAs(const UPnPGroupSlave* aSlave, const UPnPGroupSlave* aCompareSlave);
