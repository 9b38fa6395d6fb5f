#pragma once

/* The identifier under which the maker's web site knows the device, one for the process. */

#include <UPnP/Stack/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @return a copy of the identifier, released with free; NULL when there is none. Any thread may call it once the stack
 *          runs. */
UPNPSTACK_API char* ILibWebLinkData_GetID(void);
/** Sets the identifier, of which a copy is kept. Not thread-safe: it must be called before the stack runs, as another
 *  thread may be reading the copy that it releases.
 *  @param anID  NULL: none. */
UPNPSTACK_API void ILibWebLinkData_SetID(const char* anID);

#ifdef __cplusplus
}
#endif
