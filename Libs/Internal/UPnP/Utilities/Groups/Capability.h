#pragma once

/* What a device description says about one thing that the device can do in groups. */

#include <UPnP/Utilities/UPnPGroupCapabilities.h>

namespace Groups
{

enum CapabilityError
{
    kCapability_Good, // also for a document without a capability
    kCapability_NotWellFormed,
    kCapability_Incomplete // without one of its attributes
};

/** Reads the first groupCapability of a groupCapabilities document.
 *  @param aCapability out: new, released with DeleteCapability; NULL when there is none and after an error. */
CapabilityError ReadCapability(const char* aText, UPnPGroupCapability** aCapability);

/** @param aCapability a UPnPGroupCapability. */
void DeleteCapability(void* aCapability);

} // namespace Groups
