#include <zoltTools/zoCustomHashTable.h>

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoUUID.h>

// The entries are in one array in their order. A table of more than a few has an index: open addressing with linear
// probing over a keyed hash, so that nobody who chooses the keys can make them collide. In such a table an entry that
// is removed between others leaves a hole, so that neither array nor index moves; a Fenwick tree over the holes finds
// the entry of an index.

namespace
{

struct Entry
{
    char* mKey; // NULL: a hole
    char* mValue;
    uint32 mHash; // valid while the table has an index
};

const size_t kMaxScanned = 8;    // up to this many entries are searched without an index
const size_t kFirstCapacity = 1; // a configuration has a table a section: a small file may have many
const uint32 kFreeSlot = UINT32_MAX;
const size_t kMaxCapacity = UINT32_MAX; // positions fit a slot

} // namespace

struct zoCustomHashTable
{
    Entry* mEntries; // positions mBegin to mEnd - 1 of mCapacity: mCount entries and holes; the first and the last are
    size_t mBegin;   // entries
    size_t mEnd;
    size_t mCapacity;
    size_t mCount;
    uint32* mHoles;    // Fenwick tree of mCapacity + 1 sums: of holes per position; NULL: there are no holes
    uint32* mSlots;    // positions of entries, or kFreeSlot; NULL: no index, and no holes
    size_t mSlotCount; // a power of two, at least twice mCount
    uint64 mSecret[2]; // the hash's key, drawn when the index is made
};

// ---- Hash ----

static uint64 RotateLeft(uint64 aValue, int aCount) { return aValue << aCount | aValue >> (64 - aCount); }

static void SipRound(uint64 aState[4])
{
    aState[0] += aState[1];
    aState[2] += aState[3];
    aState[1] = RotateLeft(aState[1], 13) ^ aState[0];
    aState[3] = RotateLeft(aState[3], 16) ^ aState[2];
    aState[0] = RotateLeft(aState[0], 32) + aState[3];
    aState[2] += aState[1];
    aState[3] = RotateLeft(aState[3], 21) ^ aState[0];
    aState[1] = RotateLeft(aState[1], 17) ^ aState[2];
    aState[2] = RotateLeft(aState[2], 32);
}

static void SipWord(uint64 aState[4], uint64 aWord)
{
    aState[3] ^= aWord;
    SipRound(aState);
    aState[0] ^= aWord;
}

// SipHash-1-3, its words in the machine's byte order.
static uint32 HashOf(const char* aKey, const uint64 aSecret[2])
{
    uint64 theState[4] = { aSecret[0] ^ 0x736F6D6570736575u, aSecret[1] ^ 0x646F72616E646F6Du,
                           aSecret[0] ^ 0x6C7967656E657261u, aSecret[1] ^ 0x7465646279746573u };
    const size_t theLength = strlen(aKey);
    uint64 theWord = 0;
    size_t thePosition = 0;
    for (; theLength - thePosition >= sizeof(theWord); thePosition += sizeof(theWord))
    {
        memcpy(&theWord, aKey + thePosition, sizeof(theWord));
        SipWord(theState, theWord);
    }
    theWord = 0;
    memcpy(&theWord, aKey + thePosition, theLength - thePosition);
    SipWord(theState, theWord ^ RotateLeft(theLength, 56));
    theState[2] ^= 0xFF;
    for (int i = 0; i < 3; ++i)
        SipRound(theState);
    const uint64 theHash = theState[0] ^ theState[1] ^ theState[2] ^ theState[3];
    return static_cast<uint32>(theHash ^ theHash >> 32);
}

// ---- Holes ----

// Adds to the number of holes at a position: 1, or -1 as an unsigned number.
static void AddHoles(zoCustomHashTable* aTable, size_t aPosition, uint32 aNumber)
{
    for (size_t i = aPosition + 1; i <= aTable->mCapacity; i += i & (~i + 1))
        aTable->mHoles[i] += aNumber;
}

static void MakeHole(zoCustomHashTable* aTable, size_t aPosition)
{
    if (!aTable->mHoles) { aTable->mHoles = Shared::NewZeroedArray<uint32>(aTable->mCapacity + 1); }
    AddHoles(aTable, aPosition, 1);
}

// The position of the entry with the index; there is one. What is before mBegin counts as entries.
static size_t PositionOfIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    if (!aTable->mHoles) { return aTable->mBegin + anIndex; }
    size_t thePosition = 0;
    size_t theEntriesLeft = aTable->mBegin + anIndex;
    size_t theStep = 1;
    while (theStep <= aTable->mCapacity / 2)
        theStep *= 2;
    for (; theStep > 0; theStep /= 2)
    {
        if (theStep > aTable->mCapacity - thePosition) { continue; }
        const size_t theEntries = theStep - aTable->mHoles[thePosition + theStep];
        if (theEntries > theEntriesLeft) { continue; }
        theEntriesLeft -= theEntries;
        thePosition += theStep;
    }
    return thePosition;
}

// ---- Index ----

// The slot of the key, or the free one where it would go.
static size_t SlotOfKey(const zoCustomHashTable* aTable, const char* aKey, uint32 aHash)
{
    const size_t theMask = aTable->mSlotCount - 1;
    size_t theSlot = aHash & theMask;
    for (; aTable->mSlots[theSlot] != kFreeSlot; theSlot = (theSlot + 1) & theMask)
    {
        const Entry& theEntry = aTable->mEntries[aTable->mSlots[theSlot]];
        if (theEntry.mHash == aHash && strcmp(theEntry.mKey, aKey) == 0) { break; }
    }
    return theSlot;
}

// The slot that holds aContent, searched from the place of aHash on: an entry's position, or kFreeSlot.
static size_t SlotOfContent(const zoCustomHashTable* aTable, uint32 aHash, uint32 aContent)
{
    const size_t theMask = aTable->mSlotCount - 1;
    size_t theSlot = aHash & theMask;
    while (aTable->mSlots[theSlot] != aContent)
        theSlot = (theSlot + 1) & theMask;
    return theSlot;
}

static void FillIndex(zoCustomHashTable* aTable)
{
    memset(aTable->mSlots, 0xFF, aTable->mSlotCount * sizeof(uint32));
    for (size_t i = aTable->mBegin; i < aTable->mEnd; ++i)
        aTable->mSlots[SlotOfContent(aTable, aTable->mEntries[i].mHash, kFreeSlot)] = static_cast<uint32>(i);
}

static void DrawSecret(zoCustomHashTable* aTable)
{
    zoUUID theRandomBytes;
    zoUUID_Generate(theRandomBytes);
    static_assert(sizeof(theRandomBytes) == sizeof(aTable->mSecret), "one identifier is one key");
    memcpy(aTable->mSecret, theRandomBytes, sizeof(theRandomBytes));
}

// A new index with room for aCount entries, over those that are there; the table has no holes.
static void MakeIndex(zoCustomHashTable* aTable, size_t aCount)
{
    if (!aTable->mSlots)
    {
        DrawSecret(aTable);
        for (size_t i = aTable->mBegin; i < aTable->mEnd; ++i)
            aTable->mEntries[i].mHash = HashOf(aTable->mEntries[i].mKey, aTable->mSecret);
    }
    aTable->mSlotCount = 4 * kMaxScanned;
    while (aTable->mSlotCount / 2 < aCount)
        aTable->mSlotCount *= 2;
    free(aTable->mSlots);
    aTable->mSlots = Shared::NewArray<uint32>(aTable->mSlotCount);
    FillIndex(aTable);
}

// Frees a slot and moves up those after it that would no longer be found.
static void FreeSlot(zoCustomHashTable* aTable, size_t aSlot)
{
    const size_t theMask = aTable->mSlotCount - 1;
    size_t theFree = aSlot;
    for (size_t i = (aSlot + 1) & theMask; aTable->mSlots[i] != kFreeSlot; i = (i + 1) & theMask)
    {
        const size_t theHome = aTable->mEntries[aTable->mSlots[i]].mHash & theMask;
        if (((i - theHome) & theMask) < ((i - theFree) & theMask)) { continue; }
        aTable->mSlots[theFree] = aTable->mSlots[i];
        theFree = i;
    }
    aTable->mSlots[theFree] = kFreeSlot;
}

// ---- Entries ----

// Moves the entries to the front of the array, one after the other.
static void CloseHoles(zoCustomHashTable* aTable)
{
    size_t theEnd = 0;
    for (size_t i = aTable->mBegin; i < aTable->mEnd; ++i)
    {
        if (aTable->mEntries[i].mKey) { aTable->mEntries[theEnd++] = aTable->mEntries[i]; }
    }
    aTable->mBegin = 0;
    aTable->mEnd = theEnd;
    free(aTable->mHoles);
    aTable->mHoles = nullptr;
}

// Makes room for aCount entries in all. A quarter of the array is free afterwards, so that moving what is there is paid
// for by those that can now be added.
static void Reserve(zoCustomHashTable* aTable, size_t aCount)
{
    const bool fIsFull = aTable->mCapacity - aTable->mEnd < aCount - aTable->mCount;
    if (fIsFull) { CloseHoles(aTable); }
    if (fIsFull && aCount > aTable->mCapacity / 4 * 3)
    {
        aTable->mCapacity = Shared::GrowCapacity(aTable->mCapacity, aCount, kFirstCapacity);
        if (aTable->mCapacity > kMaxCapacity) { Shared::EndWithoutMemory(SIZE_MAX); }
        aTable->mEntries = Shared::ResizeArray(aTable->mEntries, aTable->mCapacity);
    }
    const bool fIsIndexFull = aTable->mSlots ? aCount > aTable->mSlotCount / 2 : aCount > kMaxScanned;
    if (fIsIndexFull) { CloseHoles(aTable); }
    if (fIsIndexFull) { MakeIndex(aTable, aCount); }
    else if (fIsFull && aTable->mSlots) { FillIndex(aTable); }
}

static Entry* FindEntry(const zoCustomHashTable* aTable, const char* aKey)
{
    if (!aTable || !aKey) { return nullptr; }
    if (aTable->mSlots)
    {
        const uint32 thePosition = aTable->mSlots[SlotOfKey(aTable, aKey, HashOf(aKey, aTable->mSecret))];
        return thePosition != kFreeSlot ? &aTable->mEntries[thePosition] : nullptr;
    }
    for (size_t i = aTable->mBegin; i < aTable->mEnd; ++i)
    {
        if (strcmp(aTable->mEntries[i].mKey, aKey) == 0) { return &aTable->mEntries[i]; }
    }
    return nullptr;
}

// Takes both texts over.
static void AppendEntry(zoCustomHashTable* aTable, char* aKey, char* aValue)
{
    Reserve(aTable, aTable->mCount + 1);
    Entry* theEntry = &aTable->mEntries[aTable->mEnd];
    *theEntry = { aKey, aValue, 0 };
    if (aTable->mSlots)
    {
        theEntry->mHash = HashOf(aKey, aTable->mSecret);
        aTable->mSlots[SlotOfContent(aTable, theEntry->mHash, kFreeSlot)] = static_cast<uint32>(aTable->mEnd);
    }
    ++aTable->mEnd;
    ++aTable->mCount;
}

// Takes holes off both ends; each was paid for when it was made.
static void TrimHoles(zoCustomHashTable* aTable)
{
    while (aTable->mBegin < aTable->mEnd && !aTable->mEntries[aTable->mBegin].mKey)
        AddHoles(aTable, aTable->mBegin++, UINT32_MAX);
    while (aTable->mBegin < aTable->mEnd && !aTable->mEntries[aTable->mEnd - 1].mKey)
        AddHoles(aTable, --aTable->mEnd, UINT32_MAX);
}

// Takes the position out of the array, whose texts are gone.
static void RemovePosition(zoCustomHashTable* aTable, size_t aPosition)
{
    Entry* theEntry = &aTable->mEntries[aPosition];
    --aTable->mCount;
    if (aPosition == aTable->mBegin) { ++aTable->mBegin; }
    else if (aPosition + 1 == aTable->mEnd) { --aTable->mEnd; }
    else if (!aTable->mSlots)
    {
        --aTable->mEnd;
        memmove(theEntry, theEntry + 1, (aTable->mEnd - aPosition) * sizeof(Entry));
    }
    else
    {
        theEntry->mKey = nullptr;
        MakeHole(aTable, aPosition);
        return;
    }
    if (aTable->mHoles) { TrimHoles(aTable); }
}

// The entry at anIndex in the table's order; NULL past the end.
static const Entry* EntryAt(const zoCustomHashTable* aTable, size_t anIndex)
{
    return anIndex < zoCustomHashTable_GetTupleCount(aTable) ? &aTable->mEntries[PositionOfIndex(aTable, anIndex)]
                                                             : nullptr;
}

// ---- Operations ----

zoCustomHashTable* zoCustomHashTable_New_String_String(void)
{
    return static_cast<zoCustomHashTable*>(zoMallocZeroed(sizeof(zoCustomHashTable)));
}

void zoCustomHashTable_Add(zoCustomHashTable* aTable, const char* aKey, const char* aValue)
{
    zoCustomHashTable_AddValueAllocated(aTable, aKey, zoStrdup(aValue));
}

void zoCustomHashTable_AddValueAllocated(zoCustomHashTable* aTable, const char* aKey, char* aValue)
{
    if (!aTable || !aKey || !aValue)
    {
        free(aValue);
        return;
    }
    Entry* theEntry = FindEntry(aTable, aKey);
    if (!theEntry)
    {
        AppendEntry(aTable, zoStrdup(aKey), aValue);
        return;
    }
    if (theEntry->mValue != aValue) { free(theEntry->mValue); }
    theEntry->mValue = aValue;
}

const char* zoCustomHashTable_Get(const zoCustomHashTable* aTable, const char* aKey)
{
    const Entry* theEntry = FindEntry(aTable, aKey);
    return theEntry ? theEntry->mValue : nullptr;
}

void zoCustomHashTable_Remove(zoCustomHashTable* aTable, const char* aKey)
{
    Entry* theEntry = FindEntry(aTable, aKey);
    if (!theEntry) { return; }
    const size_t thePosition = static_cast<size_t>(theEntry - aTable->mEntries);
    if (aTable->mSlots) { FreeSlot(aTable, SlotOfContent(aTable, theEntry->mHash, static_cast<uint32>(thePosition))); }
    free(theEntry->mKey);
    free(theEntry->mValue);
    RemovePosition(aTable, thePosition);
}

size_t zoCustomHashTable_GetTupleCount(const zoCustomHashTable* aTable) { return aTable ? aTable->mCount : 0; }

const char* zoCustomHashTable_GetKeyAtIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    const Entry* theEntry = EntryAt(aTable, anIndex);
    return theEntry ? theEntry->mKey : nullptr;
}

const char* zoCustomHashTable_GetValueAtIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    const Entry* theEntry = EntryAt(aTable, anIndex);
    return theEntry ? theEntry->mValue : nullptr;
}

zoCustomHashTable* zoCustomHashTable_Duplicate(const zoCustomHashTable* aTable)
{
    if (!aTable) { return nullptr; }
    zoCustomHashTable* theTable = zoCustomHashTable_New_String_String();
    if (aTable->mCount > 0) { Reserve(theTable, aTable->mCount); }
    for (size_t i = aTable->mBegin; i < aTable->mEnd; ++i)
    {
        const Entry& theEntry = aTable->mEntries[i];
        if (theEntry.mKey) { AppendEntry(theTable, zoStrdup(theEntry.mKey), zoStrdup(theEntry.mValue)); }
    }
    return theTable;
}

void zoCustomHashTable_Delete(zoCustomHashTable* aTable)
{
    if (!aTable) { return; }
    for (size_t i = aTable->mBegin; i < aTable->mEnd; ++i)
    {
        if (!aTable->mEntries[i].mKey) { continue; }
        free(aTable->mEntries[i].mKey);
        free(aTable->mEntries[i].mValue);
    }
    free(aTable->mEntries);
    free(aTable->mHoles);
    free(aTable->mSlots);
    free(aTable);
}
