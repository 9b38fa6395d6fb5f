#pragma once

/* How a configuration gets from the disk and onto it. */

#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads a whole file; only regular ones are read.
 * @param aLength out: its length.
 * @return a new block with a NUL behind the bytes, released with free; empty for a file that is not there. NULL when it
 *         could not be read, which is logged.
 */
char* zoConfigFileStorage_Read(const char* aPath, size_t* aLength);
/** Puts a new file in the place of the one at aPath, atomically and durably. @return 1; 0 when that failed, which is
 *  logged. */
int zoConfigFileStorage_Replace(const char* aPath, const char* aBytes, size_t aLength);

#ifdef __cplusplus
}
#endif
