#pragma once

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A universally unique identifier of RFC 4122: 16 bytes in the order in which they are written. */
typedef uint8 zoUUID[16];

/** Fills aUUID with a new random identifier (version 4). */
ZOLTTOOLS_API void zoUUID_Generate(zoUUID aUUID);

#ifdef __cplusplus
}
#endif
