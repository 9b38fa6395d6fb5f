#pragma once

/* Comparing groups. */

#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <string.h>

namespace Groups
{

/** NULL equals nothing, not even NULL. */
inline bool AreEqual(const char* aText1, const char* aText2) { return aText1 && aText2 && strcmp(aText1, aText2) == 0; }

/** Compares valid groups with the same number of slaves. @return true if each slave of the first is like some slave of
 *  the second; several may be like the same one. Linear when their slaves are in the same order, else n log n. */
bool HaveSameSlaves(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo);

} // namespace Groups
