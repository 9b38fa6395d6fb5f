#include <zoltTools/zoCustomHashTable.h>

#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoUUID.h>

// The entries stand in their order in one array. A table of more than a few has an index beside it: open addressing
// with linear probing over a keyed hash, so that nobody who chooses the keys can make them collide.

namespace
{

struct Entry
{
    char* mKey;
    char* mValue;
    uint32 mHash; // valid while the table has an index
};

const size_t kMaxScanned = 8; // so many entries are looked through without an index
const size_t kFirstCapacity = 4;
const uint32 kFreeSlot = UINT32_MAX;

} // namespace

struct zoCustomHashTable
{
    Entry* mEntries; // mCount of mCapacity are in use
    size_t mCount;
    size_t mCapacity;
    uint32* mSlots;    // positions of entries, or kFreeSlot; NULL: no index
    size_t mSlotCount; // a power of two, at least twice mCount
    uint64 mSecret[2]; // the hash's key, drawn when the index is made
};

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

// A new index with room for aCount entries, over those that are there.
static void MakeIndex(zoCustomHashTable* aTable, size_t aCount)
{
    if (!aTable->mSlots)
    {
        zoUUID theRandomBytes;
        zoUUID_Generate(theRandomBytes);
        static_assert(sizeof(theRandomBytes) == sizeof(aTable->mSecret), "one identifier is one key");
        memcpy(aTable->mSecret, theRandomBytes, sizeof(theRandomBytes));
        for (size_t i = 0; i < aTable->mCount; ++i)
            aTable->mEntries[i].mHash = HashOf(aTable->mEntries[i].mKey, aTable->mSecret);
    }
    size_t theSlotCount = 4 * kMaxScanned;
    while (theSlotCount / 2 < aCount)
        theSlotCount *= 2;
    if (theSlotCount > SIZE_MAX / sizeof(uint32)) { abort(); } // more than memory can hold

    free(aTable->mSlots);
    aTable->mSlots = static_cast<uint32*>(zoMalloc(theSlotCount * sizeof(uint32)));
    aTable->mSlotCount = theSlotCount;
    memset(aTable->mSlots, 0xFF, theSlotCount * sizeof(uint32));
    for (uint32 i = 0; i < aTable->mCount; ++i)
        aTable->mSlots[SlotOfContent(aTable, aTable->mEntries[i].mHash, kFreeSlot)] = i;
}

static void Reserve(zoCustomHashTable* aTable, size_t aCount)
{
    if (aCount > aTable->mCapacity)
    {
        const size_t theDoubled = aTable->mCapacity > 0 ? aTable->mCapacity * 2 : kFirstCapacity;
        aTable->mCapacity = aCount > theDoubled ? aCount : theDoubled;
        if (aTable->mCapacity > SIZE_MAX / sizeof(Entry) || aCount >= kFreeSlot) { abort(); } // more than is addressed
        aTable->mEntries = static_cast<Entry*>(zoRealloc(aTable->mEntries, aTable->mCapacity * sizeof(Entry)));
    }
    if (aCount > kMaxScanned && (!aTable->mSlots || aCount > aTable->mSlotCount / 2)) { MakeIndex(aTable, aCount); }
}

static Entry* FindEntry(const zoCustomHashTable* aTable, const char* aKey)
{
    if (!aTable || !aKey) { return nullptr; }
    if (aTable->mSlots)
    {
        const uint32 thePosition = aTable->mSlots[SlotOfKey(aTable, aKey, HashOf(aKey, aTable->mSecret))];
        return thePosition != kFreeSlot ? &aTable->mEntries[thePosition] : nullptr;
    }
    for (size_t i = 0; i < aTable->mCount; ++i)
    {
        if (strcmp(aTable->mEntries[i].mKey, aKey) == 0) { return &aTable->mEntries[i]; }
    }
    return nullptr;
}

// Takes both texts over.
static void AppendEntry(zoCustomHashTable* aTable, char* aKey, char* aValue)
{
    Reserve(aTable, aTable->mCount + 1);
    Entry* theEntry = &aTable->mEntries[aTable->mCount];
    *theEntry = { aKey, aValue, 0 };
    if (aTable->mSlots)
    {
        theEntry->mHash = HashOf(aKey, aTable->mSecret);
        aTable->mSlots[SlotOfContent(aTable, theEntry->mHash, kFreeSlot)] = static_cast<uint32>(aTable->mCount);
    }
    ++aTable->mCount;
}

// Frees a slot and moves up those behind it that would no longer be found.
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

static void RemoveFromIndex(zoCustomHashTable* aTable, size_t aPosition)
{
    const uint32 theRemoved = static_cast<uint32>(aPosition);
    FreeSlot(aTable, SlotOfContent(aTable, aTable->mEntries[aPosition].mHash, theRemoved));
    for (uint32 i = theRemoved + 1; i < aTable->mCount; ++i)
        aTable->mSlots[SlotOfContent(aTable, aTable->mEntries[i].mHash, i)] = i - 1;
}

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
    if (aTable->mSlots) { RemoveFromIndex(aTable, thePosition); }
    free(theEntry->mKey);
    free(theEntry->mValue);
    --aTable->mCount;
    memmove(theEntry, theEntry + 1, (aTable->mCount - thePosition) * sizeof(Entry));
}

size_t zoCustomHashTable_GetTupleCount(const zoCustomHashTable* aTable) { return aTable ? aTable->mCount : 0; }

const char* zoCustomHashTable_GetKeyAtIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    return anIndex < zoCustomHashTable_GetTupleCount(aTable) ? aTable->mEntries[anIndex].mKey : nullptr;
}

const char* zoCustomHashTable_GetValueAtIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    return anIndex < zoCustomHashTable_GetTupleCount(aTable) ? aTable->mEntries[anIndex].mValue : nullptr;
}

zoCustomHashTable* zoCustomHashTable_Duplicate(const zoCustomHashTable* aTable)
{
    if (!aTable) { return nullptr; }
    zoCustomHashTable* theTable = zoCustomHashTable_New_String_String();
    if (aTable->mCount > 0) { Reserve(theTable, aTable->mCount); }
    for (size_t i = 0; i < aTable->mCount; ++i)
        AppendEntry(theTable, zoStrdup(aTable->mEntries[i].mKey), zoStrdup(aTable->mEntries[i].mValue));
    return theTable;
}

void zoCustomHashTable_Delete(zoCustomHashTable* aTable)
{
    if (!aTable) { return; }
    for (size_t i = 0; i < aTable->mCount; ++i)
    {
        free(aTable->mEntries[i].mKey);
        free(aTable->mEntries[i].mValue);
    }
    free(aTable->mEntries);
    free(aTable->mSlots);
    free(aTable);
}
