#pragma once

/* A table of strings by string, in the order in which the keys came. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct zoCustomHashTable zoCustomHashTable;

ZOLTTOOLS_API zoCustomHashTable* zoCustomHashTable_New_String_String(void);
ZOLTTOOLS_API void zoCustomHashTable_Add(zoCustomHashTable* aTable, const char* aKey, const char* aValue);
ZOLTTOOLS_API void zoCustomHashTable_AddValueAllocated(zoCustomHashTable* aTable, const char* aKey, char* aValue);
ZOLTTOOLS_API const char* zoCustomHashTable_Get(const zoCustomHashTable* aTable, const char* aKey);
ZOLTTOOLS_API void zoCustomHashTable_Remove(zoCustomHashTable* aTable, const char* aKey);
ZOLTTOOLS_API size_t zoCustomHashTable_GetTupleCount(const zoCustomHashTable* aTable);
ZOLTTOOLS_API const char* zoCustomHashTable_GetKeyAtIndex(const zoCustomHashTable* aTable, size_t anIndex);
/* The library doesn't call this one; the project's own zoConfigFile.cpp does. */
ZOLTTOOLS_API const char* zoCustomHashTable_GetValueAtIndex(const zoCustomHashTable* aTable, size_t anIndex);
ZOLTTOOLS_API zoCustomHashTable* zoCustomHashTable_Duplicate(const zoCustomHashTable* aTable);
ZOLTTOOLS_API void zoCustomHashTable_Delete(zoCustomHashTable* aTable);

#ifdef __cplusplus
}
#endif
