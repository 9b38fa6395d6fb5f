#pragma once

/* The end of a process without memory. */

#include <stddef.h>
#include <stdlib.h>

/* Tells the handler of zoMemory.h, which need not be there: a device has its own libraries, and libzoltTools is above
 * some that allocate. */
extern "C" __attribute__((weak)) void _zoMemory_Failed(size_t aSize);

namespace Shared
{

/** Reports that aSize bytes can't be had, and aborts. */
[[noreturn]] inline void EndWithoutMemory(size_t aSize)
{
    if (_zoMemory_Failed) { _zoMemory_Failed(aSize); }
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
