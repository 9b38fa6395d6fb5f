#pragma once

/* The MD5 message digest of RFC 1321. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The state of a digest to which bytes are being added. */
typedef struct zoMD5Context
{
    uint32 mTotal[2]; /* bytes added so far, low word first */
    uint32 mState[4];
    uint8 mBuffer[64]; /* the bytes of the block that is not full yet */
} zoMD5Context;

/** Begins a digest. */
ZOLTTOOLS_API void zoMD5_Init(zoMD5Context* aContext);
/** Adds aLength bytes; aBytes may be NULL when aLength is 0. */
ZOLTTOOLS_API void zoMD5_Add(zoMD5Context* aContext, const void* aBytes, size_t aLength);
/** Ends the digest; the context must be initialized before it is used again. */
ZOLTTOOLS_API void zoMD5_Get(zoMD5Context* aContext, uint8 aDigest[16]);

#ifdef __cplusplus
}
#endif
