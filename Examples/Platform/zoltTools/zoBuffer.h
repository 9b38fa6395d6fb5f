#pragma once

/* Bytes that grow at their end. The three fields are known to the library; it writes to mPtr up to mSize itself. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct zoBuffer
{
    char* mPtr;
    size_t mSize; /* allocated */
    size_t mPos;  /* written */
} zoBuffer;

ZOLTTOOLS_API zoBuffer* zoBuffer_New(size_t aCapacity);
ZOLTTOOLS_API void zoBuffer_Append(zoBuffer* aBuffer, const char* aBytes, size_t aCount);
ZOLTTOOLS_API void zoBuffer_AppendStr(zoBuffer* aBuffer, const char* aText);
ZOLTTOOLS_API char* zoBuffer_TakeOwnership(zoBuffer* aBuffer, size_t* aLength, size_t* aCapacity);
ZOLTTOOLS_API void zoBuffer_Delete(zoBuffer* aBuffer);

#ifdef __cplusplus
}
#endif
