#pragma once

/* The IP addresses of the host's interfaces, as the kernel tells them. */

#include <zoOS/zoSocketPolicy.h>
#include <zoltTools/zoArray.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @param aSocketPolicy  NULL admits all addresses.
 *  @return a new array of the texts of the addresses of the interfaces that are up and admitted, which owns them; NULL
 *          when they can't be found out. */
zoArray_t* zoHostAddresses_Read(const zoSocketPolicy* aSocketPolicy);

#ifdef __cplusplus
}
#endif
