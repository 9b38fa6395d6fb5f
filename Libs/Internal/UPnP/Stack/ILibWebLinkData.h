#pragma once

/* The identifier under which the device is known to the maker's web site, one for the process. It is set before the
 * stack runs, and only read afterwards. */

#include <UPnP/Stack/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @return a new copy of the identifier, released with free; NULL when there is none. */
UPNPSTACK_API char* ILibWebLinkData_GetID(void);
/** Keeps a copy of the identifier; NULL: there is none. */
UPNPSTACK_API void ILibWebLinkData_SetID(const char* anID);

#ifdef __cplusplus
}
#endif
