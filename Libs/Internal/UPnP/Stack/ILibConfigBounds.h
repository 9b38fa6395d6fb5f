#pragma once

/* What the stack takes for a number of one of its configuration records that is 0, and the bounds of any other. Each
 * module publishes the constants and has one table of them, which its validator goes by. The defaults are applied when
 * a module starts: until then 0 stays 0. */

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
    uint32 mMax; /* 0: there are no bounds */
} ILibConfigBounds_t;

#ifdef __cplusplus
}
#endif
