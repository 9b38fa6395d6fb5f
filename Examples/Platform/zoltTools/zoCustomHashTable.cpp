#include <zoltTools/zoCustomHashTable.h>

#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

// Two arrays of pointers to the entries, one sorted by key, one in the order of coming, in which an entry is found by
// its number. Finding a key takes O(log n); adding and removing move pointers, which is fast for tables of thousands. A
// platform whose tables are larger, or come from strangers, needs something better.

namespace
{

struct Entry
{
    char* mKey;
    char* mValue;
    size_t mNumber; // grows from entry to entry
};

typedef int (*Comparison_t)(const Entry* anEntry, const void* aWanted);

} // namespace

struct zoCustomHashTable
{
    Entry** mByKey;
    Entry** mByNumber;
    size_t mCount;
    size_t mCapacity;
    size_t mNextNumber;
};

static int CompareKey(const Entry* anEntry, const void* aKey)
{
    return strcmp(anEntry->mKey, static_cast<const char*>(aKey));
}

static int CompareNumber(const Entry* anEntry, const void* aNumber)
{
    const size_t theNumber = *static_cast<const size_t*>(aNumber);
    return (anEntry->mNumber > theNumber) - (anEntry->mNumber < theNumber);
}

// The position of the first entry that is not below what is wanted.
static size_t Find(Entry** anEntries, size_t aCount, Comparison_t aComparison, const void* aWanted)
{
    size_t theBegin = 0;
    for (size_t theEnd = aCount; theBegin < theEnd;)
    {
        const size_t theMiddle = theBegin + (theEnd - theBegin) / 2;
        if (aComparison(anEntries[theMiddle], aWanted) < 0) { theBegin = theMiddle + 1; }
        else { theEnd = theMiddle; }
    }
    return theBegin;
}

static bool HasKeyAt(const zoCustomHashTable* aTable, size_t aPosition, const char* aKey)
{
    return aPosition < aTable->mCount && strcmp(aTable->mByKey[aPosition]->mKey, aKey) == 0;
}

zoCustomHashTable* zoCustomHashTable_New_String_String(void)
{
    return static_cast<zoCustomHashTable*>(zoMallocZeroed(sizeof(zoCustomHashTable)));
}

void zoCustomHashTable_Add(zoCustomHashTable* aTable, const char* aKey, const char* aValue)
{
    zoCustomHashTable_AddValueAllocated(aTable, aKey, zoStrdup(aValue));
}

static void InsertEntry(zoCustomHashTable* aTable, size_t aPosition, const char* aKey, char* aValue)
{
    if (aTable->mCount == aTable->mCapacity)
    {
        aTable->mCapacity = aTable->mCapacity * 2 + 4;
        aTable->mByKey = static_cast<Entry**>(zoRealloc(aTable->mByKey, aTable->mCapacity * sizeof(Entry*)));
        aTable->mByNumber = static_cast<Entry**>(zoRealloc(aTable->mByNumber, aTable->mCapacity * sizeof(Entry*)));
    }
    Entry* theEntry = static_cast<Entry*>(zoMalloc(sizeof(Entry)));
    *theEntry = { zoStrdup(aKey), aValue, aTable->mNextNumber++ };
    Entry** thePlace = aTable->mByKey + aPosition;
    memmove(thePlace + 1, thePlace, (aTable->mCount - aPosition) * sizeof(Entry*));
    *thePlace = theEntry;
    aTable->mByNumber[aTable->mCount++] = theEntry;
}

void zoCustomHashTable_AddValueAllocated(zoCustomHashTable* aTable, const char* aKey, char* aValue)
{
    if (!aTable || !aKey || !aValue)
    {
        free(aValue);
        return;
    }
    const size_t thePosition = Find(aTable->mByKey, aTable->mCount, CompareKey, aKey);
    if (!HasKeyAt(aTable, thePosition, aKey)) { return InsertEntry(aTable, thePosition, aKey, aValue); }
    char** theValue = &aTable->mByKey[thePosition]->mValue;
    if (*theValue != aValue) { free(*theValue); }
    *theValue = aValue;
}

const char* zoCustomHashTable_Get(const zoCustomHashTable* aTable, const char* aKey)
{
    if (!aTable || !aKey) { return nullptr; }
    const size_t thePosition = Find(aTable->mByKey, aTable->mCount, CompareKey, aKey);
    return HasKeyAt(aTable, thePosition, aKey) ? aTable->mByKey[thePosition]->mValue : nullptr;
}

static void RemovePointer(Entry** anEntries, size_t aCount, size_t aPosition)
{
    memmove(anEntries + aPosition, anEntries + aPosition + 1, (aCount - aPosition - 1) * sizeof(Entry*));
}

static void DeleteEntry(Entry* anEntry)
{
    free(anEntry->mKey);
    free(anEntry->mValue);
    free(anEntry);
}

void zoCustomHashTable_Remove(zoCustomHashTable* aTable, const char* aKey)
{
    if (!aTable || !aKey) { return; }
    const size_t thePosition = Find(aTable->mByKey, aTable->mCount, CompareKey, aKey);
    if (!HasKeyAt(aTable, thePosition, aKey)) { return; }
    Entry* theEntry = aTable->mByKey[thePosition];
    RemovePointer(aTable->mByNumber, aTable->mCount,
                  Find(aTable->mByNumber, aTable->mCount, CompareNumber, &theEntry->mNumber));
    RemovePointer(aTable->mByKey, aTable->mCount, thePosition);
    --aTable->mCount;
    DeleteEntry(theEntry);
}

size_t zoCustomHashTable_GetTupleCount(const zoCustomHashTable* aTable) { return aTable ? aTable->mCount : 0; }

const char* zoCustomHashTable_GetKeyAtIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    return anIndex < zoCustomHashTable_GetTupleCount(aTable) ? aTable->mByNumber[anIndex]->mKey : nullptr;
}

const char* zoCustomHashTable_GetValueAtIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    return anIndex < zoCustomHashTable_GetTupleCount(aTable) ? aTable->mByNumber[anIndex]->mValue : nullptr;
}

zoCustomHashTable* zoCustomHashTable_Duplicate(const zoCustomHashTable* aTable)
{
    if (!aTable) { return nullptr; }
    zoCustomHashTable* theCopy = zoCustomHashTable_New_String_String();
    for (size_t i = 0; i < aTable->mCount; ++i)
        zoCustomHashTable_Add(theCopy, aTable->mByNumber[i]->mKey, aTable->mByNumber[i]->mValue);
    return theCopy;
}

void zoCustomHashTable_Delete(zoCustomHashTable* aTable)
{
    if (!aTable) { return; }
    for (size_t i = 0; i < aTable->mCount; ++i)
        DeleteEntry(aTable->mByNumber[i]);
    free(aTable->mByKey);
    free(aTable->mByNumber);
    free(aTable);
}
