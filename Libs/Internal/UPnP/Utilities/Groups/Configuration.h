#pragma once

/* Groups as keys of the configuration file, in the section of their capability. */

#include <UPnP/Utilities/UPnPGroupCapabilities.h>

namespace Groups
{

void Store(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile);

/** Reads the section of the group's capability into a new group. */
void Load(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile);

} // namespace Groups
