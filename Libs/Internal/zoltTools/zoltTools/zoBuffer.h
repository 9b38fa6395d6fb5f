#pragma once

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes that grow at their end: mPtr[0] to mPtr[mPos - 1] are written, mSize are allocated; mPos <= mSize.
 * The capacity at least doubles when it must grow, so appending is amortised O(1) a byte. */
typedef struct zoBuffer
{
    char* mPtr;
    size_t mSize;
    size_t mPos;
} zoBuffer;

/** @return a new empty buffer with room for aCapacity bytes (0 allowed), released with zoBuffer_Delete. */
ZOLTTOOLS_API zoBuffer* zoBuffer_New(size_t aCapacity);
/** Makes room for aCount further bytes; nothing is written. */
ZOLTTOOLS_API void zoBuffer_Reserve(zoBuffer* aBuffer, size_t aCount);
/** Appends aCount bytes, which must not lie in the buffer. */
ZOLTTOOLS_API void zoBuffer_Append(zoBuffer* aBuffer, const char* aBytes, size_t aCount);
/** Appends a text without its NUL; NULL appends nothing. */
ZOLTTOOLS_API void zoBuffer_AppendStr(zoBuffer* aBuffer, const char* aText);
/**
 * Hands over the written bytes; the buffer is then empty and can be used again.
 * @param aLength, aCapacity out, either may be NULL: bytes written and bytes allocated.
 * @return the bytes as one block that the caller releases with free; it is not NUL-terminated unless a NUL was
 *         written. NULL when nothing was ever allocated.
 */
ZOLTTOOLS_API char* zoBuffer_TakeOwnership(zoBuffer* aBuffer, size_t* aLength, size_t* aCapacity);
/** Releases the buffer and the bytes in it; NULL is ignored. */
ZOLTTOOLS_API void zoBuffer_Delete(zoBuffer* aBuffer);

#ifdef __cplusplus
}
#endif
