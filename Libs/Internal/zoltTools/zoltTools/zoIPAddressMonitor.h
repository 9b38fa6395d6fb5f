#pragma once

/* Watches the host's IP addresses: the set of IPv4 and IPv6 addresses of the interfaces that are up and that a socket
 * policy admits. An excluded interface is left out with all its addresses, whatever their labels; an excluded label
 * ("eth0:1") leaves out the addresses that carry it. An interface without an address adds nothing, and one that goes
 * down takes its addresses away. */

#include <zoOS/zoSocketPolicy.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoArray.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Remembers the addresses of its last look. */
typedef struct zoIPAddressMonitor zoIPAddressMonitor;

/** @return a new array of address texts, in any order; the array owns them. NULL when they can't be found out. */
typedef zoArray_t* (*zoIPAddressMonitor_Source_t)(const zoSocketPolicy* aSocketPolicy);

/** Replaces where all monitors get their addresses from; NULL: the host's interfaces. */
ZOLTTOOLS_API void zoIPAddressMonitor_SetSource(zoIPAddressMonitor_Source_t aSource);
/** @param aSocketPolicy  NULL admits all addresses.
 *  @return the addresses now, sorted as texts and without repeats, a new array released with zoArray_Delete; NULL when
 *          they can't be found out. */
ZOLTTOOLS_API zoArray_t* zoIPAddressMonitor_GetAddresses(const zoSocketPolicy* aSocketPolicy);

/** @param aSocketPolicy  outlives the monitor; NULL admits all addresses.
 *  @return a new monitor that remembers the addresses of now, released with zoIPAddressMonitor_Delete. When they can't
 *          be found out, as when no descriptor is free, it remembers those of the first look that succeeds. */
ZOLTTOOLS_API zoIPAddressMonitor* zoIPAddressMonitor_New(const zoSocketPolicy* aSocketPolicy);
/** True if the addresses differ from those remembered; those of now are remembered then. False when they can't be found
 *  out, which forgets nothing, and at the first look that succeeds. */
ZOLTTOOLS_API int zoIPAddressMonitor_IPAddressChanged(zoIPAddressMonitor* aMonitor);
/** Releases the monitor; NULL is ignored. */
ZOLTTOOLS_API void zoIPAddressMonitor_Delete(zoIPAddressMonitor* aMonitor);

#ifdef __cplusplus
}
#endif
