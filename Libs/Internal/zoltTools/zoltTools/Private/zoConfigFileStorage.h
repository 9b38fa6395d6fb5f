#pragma once

/* How a configuration gets from the disk and onto it. */

#include <zoOS/zoTypes.h>

namespace ConfigFile
{

/**
 * Reads a whole file; only regular ones are read.
 * @param aLength out: its length.
 * @return a new block, released with free; empty for a file that is not there. NULL when it could not be read, which is
 *         logged.
 */
char* Read(const char* aPath, size_t* aLength);

/** Replaces the file at aPath, or makes it, atomically and durably. @return false when that failed, which is logged. */
bool Replace(const char* aPath, const char* aBytes, size_t aLength);

} // namespace ConfigFile
