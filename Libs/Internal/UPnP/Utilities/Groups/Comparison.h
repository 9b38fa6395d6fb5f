#pragma once

/* Comparing groups. */

#include <UPnP/Utilities/UPnPGroupCapabilities.h>

namespace Groups
{

/** Compares valid groups with the same number of slaves. @return true if each slave of the first is like some slave of
 *  the second; several may be like the same one. Linear when their slaves are in the same order, else n log n. */
bool HaveSameSlaves(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo);

} // namespace Groups
