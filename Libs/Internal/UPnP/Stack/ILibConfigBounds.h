#pragma once

/* Defaults and bounds of the numbers in the stack's configuration records. Each module publishes them as constants and
 * as one table, which its validator goes by: it clamps a number other than 0 to its bounds. 0 stands for the default,
 * which the module applies when it starts. */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A field of a record, an unsigned number of 1, 2, 4 or 8 bytes. A table of them ends with a NULL field. */
typedef struct ILibConfigBounds_t
{
    const char* mField;
    uint16 mOffset;
    uint16 mSize;
    uint32 mDefault; /* what 0 stands for */
    uint32 mMin;
    uint32 mMax; /* 0: no bounds */
} ILibConfigBounds_t;

#ifdef __cplusplus
}
#endif
