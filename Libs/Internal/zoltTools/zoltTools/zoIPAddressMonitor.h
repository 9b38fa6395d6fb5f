#pragma once

/* Watches the host's IP addresses: the set of IPv4 and IPv6 addresses of the interfaces that are up and that a socket
 * policy admits. An interface without an address adds nothing, and one that goes down takes its addresses away. */

#include <zoOS/zoSocketPolicy.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoArray.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The addresses that were there at the last look. */
typedef struct zoIPAddressMonitor zoIPAddressMonitor;

/** @return a new array of address texts, in any order, which owns them; NULL when they can't be found out. */
typedef zoArray_t* (*zoIPAddressMonitor_Source_t)(const zoSocketPolicy* aSocketPolicy);

/** Replaces, for all monitors, where addresses come from; NULL: the host's interfaces. */
ZOLTTOOLS_API void zoIPAddressMonitor_SetSource(zoIPAddressMonitor_Source_t aSource);
/** @param aSocketPolicy  NULL admits all addresses.
 *  @return the addresses now, sorted as texts and without repeats, a new array released with zoArray_Delete; NULL when
 *          they can't be found out. */
ZOLTTOOLS_API zoArray_t* zoIPAddressMonitor_GetAddresses(const zoSocketPolicy* aSocketPolicy);

/** @param aSocketPolicy  outlives the monitor; NULL admits all addresses.
 *  @return a new monitor that remembers the addresses of now, none when they can't be found out; released with
 *          zoIPAddressMonitor_Delete. */
ZOLTTOOLS_API zoIPAddressMonitor* zoIPAddressMonitor_New(const zoSocketPolicy* aSocketPolicy);
/** @return whether the addresses differ from those remembered; those of now are remembered then. 0 when they can't be
 *          found out, and nothing is forgotten. */
ZOLTTOOLS_API int zoIPAddressMonitor_IPAddressChanged(zoIPAddressMonitor* aMonitor);
/** Releases the monitor; NULL is ignored. */
ZOLTTOOLS_API void zoIPAddressMonitor_Delete(zoIPAddressMonitor* aMonitor);

#ifdef __cplusplus
}
#endif
