#pragma once

/* The values that service descriptions allow state variables of AVTransport, as far as the hook says them. */

#include <UPnP/Utilities/UPnPHook.h>

/** @return the values of a list separated by commas as XML, as they stand, empty ones skipped: a new text, released
 *          with free; NULL when the list has no value. */
char* UPnPHook_GetAllowedValueListStr(const char* anAllowedValueListStr);

namespace DeviceHook
{

/* The parts of descriptions with that name are replaced by a list. */
struct ValueList
{
    const char* mPartName;
    char* (*mNewValues)(UPnPHook* aUPnPHook); // the hook's values, separated by commas; NULL when it has no say
};

constexpr size_t kValueListCount = 4;

/* In the order in which their names are looked for in a part's. */
extern const ValueList kValueLists[kValueListCount];

} // namespace DeviceHook
