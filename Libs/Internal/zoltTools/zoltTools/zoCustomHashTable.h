#pragma once

/* A table of values by key. Entries keep the order in which their keys came first; a replaced value keeps its place;
 * removing one moves those after it up. Finding and adding take O(1), whatever the keys; access by index and removing
 * take O(log n), and amortised O(1) at either end. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A table of texts by text. */
typedef struct zoCustomHashTable zoCustomHashTable;

/** @return a new empty table of strings by string, compared byte by byte, which copies its keys and values; released
 *          with zoCustomHashTable_Delete. */
ZOLTTOOLS_API zoCustomHashTable* zoCustomHashTable_New_String_String(void);
/** Stores a copy of aValue under a copy of aKey, replacing the value of an entry with that key. Both not NULL; aValue
 *  may be the value that it replaces. */
ZOLTTOOLS_API void zoCustomHashTable_Add(zoCustomHashTable* aTable, const char* aKey, const char* aValue);
/** As zoCustomHashTable_Add, but takes over aValue, which came from malloc. */
ZOLTTOOLS_API void zoCustomHashTable_AddValueAllocated(zoCustomHashTable* aTable, const char* aKey, char* aValue);
/** @return the value, borrowed until it is replaced or removed; NULL when there is no such key. */
ZOLTTOOLS_API const char* zoCustomHashTable_Get(const zoCustomHashTable* aTable, const char* aKey);
/** Removes the entry; nothing when there is no such key. */
ZOLTTOOLS_API void zoCustomHashTable_Remove(zoCustomHashTable* aTable, const char* aKey);
/** @return the number of entries; 0 for NULL. */
ZOLTTOOLS_API size_t zoCustomHashTable_GetTupleCount(const zoCustomHashTable* aTable);
/** @return the key of the entry at anIndex in the table's order, borrowed; NULL past the end. */
ZOLTTOOLS_API const char* zoCustomHashTable_GetKeyAtIndex(const zoCustomHashTable* aTable, size_t anIndex);
/** @return the value of the entry at anIndex in the table's order, borrowed; NULL past the end. */
ZOLTTOOLS_API const char* zoCustomHashTable_GetValueAtIndex(const zoCustomHashTable* aTable, size_t anIndex);
/** @return an independent copy with the same order, released with zoCustomHashTable_Delete; NULL for NULL. */
ZOLTTOOLS_API zoCustomHashTable* zoCustomHashTable_Duplicate(const zoCustomHashTable* aTable);
/** Releases the table with its keys and values; NULL is ignored. */
ZOLTTOOLS_API void zoCustomHashTable_Delete(zoCustomHashTable* aTable);

#ifdef __cplusplus
}
#endif
