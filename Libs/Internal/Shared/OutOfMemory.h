#pragma once

/* The end of a process without memory. */

#include <stddef.h>
#include <stdlib.h>

namespace Shared
{

/* zoMemory.h's report of a failure; NULL where it is not there: a device has its own libraries, and libzoltTools is
 * above some that allocate. */
static void ReportFailure(size_t aSize) __attribute__((weakref("_zoMemory_Failed")));

/** Reports that aSize bytes can't be had, and aborts. */
[[noreturn]] inline void EndWithoutMemory(size_t aSize)
{
    if (&ReportFailure) { ReportFailure(aSize); }
    abort();
}

/** @return aBlock, which a function of the C library gave for aSize bytes; doesn't return when it is NULL. */
template <typename T>
inline T* NotNull(T* aBlock, size_t aSize)
{
    if (!aBlock) { EndWithoutMemory(aSize); }
    return aBlock;
}

} // namespace Shared
