#pragma once

/* The allowed values of state variables of AVTransport that depend on the hook. */

#include <UPnP/Utilities/UPnPHook.h>

/** @return the values of a comma-separated list as an allowedValueList, not escaped, without empty ones: a new text,
 *          released with free; NULL when the list has no value. */
char* UPnPHook_GetAllowedValueListStr(const char* anAllowedValueListStr);

namespace DeviceHook
{

/* The parts of descriptions with that name are replaced by a list. */
struct ValueList
{
    const char* mPartName;
    char* (*mNewValues)(UPnPHook* aUPnPHook); // new, comma-separated; NULL when the list replaces nothing
};

constexpr size_t kValueListCount = 4;

/* In the order in which their names are looked for in a part's. */
extern const ValueList kValueLists[kValueListCount];

} // namespace DeviceHook
