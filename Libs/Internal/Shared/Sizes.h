#pragma once

/* Sizes of memory, and arrays. A size that memory can't hold ends the process, as running out of memory does. */

#include <Shared/OutOfMemory.h>
#include <stddef.h>
#include <stdint.h>
#include <type_traits>
#include <zoltTools/zoMemory.h>

namespace Shared
{

inline size_t AddSizes(size_t aSize, size_t anotherSize)
{
    if (aSize > SIZE_MAX - anotherSize) { EndWithoutMemory(SIZE_MAX); }
    return aSize + anotherSize;
}

inline size_t MultiplySizes(size_t aCount, size_t aSize)
{
    size_t theProduct;
    if (__builtin_mul_overflow(aCount, aSize, &theProduct)) { EndWithoutMemory(SIZE_MAX); }
    return theProduct;
}

/** @return a new array of aCount items, not initialized; released with free. */
template <typename T>
inline T* NewArray(size_t aCount)
{
    static_assert(std::is_trivial_v<T>, "no constructor runs");
    return static_cast<T*>(zoMalloc(MultiplySizes(aCount, sizeof(T))));
}

/** @return a new array of aCount items, all bytes 0; released with free. */
template <typename T>
inline T* NewZeroedArray(size_t aCount)
{
    static_assert(std::is_trivially_copyable_v<T>, "no constructor runs");
    return static_cast<T*>(zoMallocZeroed(MultiplySizes(aCount, sizeof(T))));
}

/** @return anArray, which may be NULL, moved to aCount items; new items are not initialized. */
template <typename T>
inline T* ResizeArray(T* anArray, size_t aCount)
{
    static_assert(std::is_trivially_copyable_v<T>, "items are moved as bytes");
    return static_cast<T*>(zoRealloc(anArray, MultiplySizes(aCount, sizeof(T))));
}

/** @return the capacity for aNeeded items of an array that has room for aCapacity: at least twice as many, so that
 *          appending is amortised O(1), and at least aFirst. */
inline size_t GrowCapacity(size_t aCapacity, size_t aNeeded, size_t aFirst)
{
    const size_t theDoubled = aCapacity <= SIZE_MAX / 2 ? aCapacity * 2 : SIZE_MAX;
    const size_t theCapacity = aNeeded > theDoubled ? aNeeded : theDoubled;
    return theCapacity > aFirst ? theCapacity : aFirst;
}

} // namespace Shared
