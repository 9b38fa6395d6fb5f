#pragma once

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* An unsigned 64-bit number in two halves. */
typedef struct zoULongLong
{
    uint32 mLow;
    uint32 mHigh;
} zoULongLong;

/** Sets the number to a file's position or length, in bytes; a negative one counts as 0. */
ZOLTTOOLS_API void zoULongLong_SetFileOffset(zoULongLong* aValue, zoFileOffset anOffset);
/** @return the number in decimal: a new text, released with free. */
ZOLTTOOLS_API char* zoULongLong_ToString(const zoULongLong* aValue);
/** @return both halves as one number. */
static inline uint64 zoULongLong_ToUInt64(const zoULongLong* aValue)
{
    return ((uint64)aValue->mHigh << 32) | aValue->mLow;
}

#ifdef __cplusplus
}
#endif
