#pragma once

/* Numbers that are read and written as bytes, wherever they are: not aligned, or of a size known at run time. */

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace Shared
{

template <typename Number>
inline Number Load(const void* aField)
{
    Number theNumber;
    memcpy(&theNumber, aField, sizeof(theNumber));
    return theNumber;
}

template <typename Number>
inline void StoreAs(void* aField, uint64_t aNumber)
{
    const Number theNumber = static_cast<Number>(aNumber);
    memcpy(aField, &theNumber, sizeof(theNumber));
}

/** @param aSize  1, 2, 4 or 8 bytes. */
inline uint64_t LoadUnsigned(const void* aField, size_t aSize)
{
    switch (aSize)
    {
    case 1: return Load<uint8_t>(aField);
    case 2: return Load<uint16_t>(aField);
    case 4: return Load<uint32_t>(aField);
    default: return Load<uint64_t>(aField);
    }
}

/** @param aSize    1, 2, 4 or 8 bytes.
 *  @param aNumber  cut to the size. */
inline void StoreUnsigned(void* aField, size_t aSize, uint64_t aNumber)
{
    switch (aSize)
    {
    case 1: StoreAs<uint8_t>(aField, aNumber); break;
    case 2: StoreAs<uint16_t>(aField, aNumber); break;
    case 4: StoreAs<uint32_t>(aField, aNumber); break;
    default: StoreAs<uint64_t>(aField, aNumber); break;
    }
}

} // namespace Shared
