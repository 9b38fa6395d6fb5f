#include <zoltTools/zoPackedData.h>

#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

// The block is laid out as the header says. While entries are added, mBlock holds header and values only and rows and
// entries stand in arrays of their own; serializing appends them behind the values.

namespace
{

struct Header
{
    uint32 mMagic;
    uint32 mSize;
    uint32 mEntryCount;
    uint32 mRowCount;
};

struct Row
{
    uint32 mOffset; // where the value's bytes begin, counted from the block's begin
    uint16 mTag;
    uint16 mSorted; // in row k of an entry of more than kFewRows rows: the position, in the entry, of the row with the
                    // k-th smallest tag; else 0
};

const uint32 kMagic = 0x7A6F5044; // "zoPD"
const size_t kTrailerSize = 4;
const size_t kMaxBlockSize = 0xFFFFFFFF;
const uint32 kMaxRowsPerEntry = 0xFFFF;
const uint16 kNoPosition = 0xFFFF; // a position is below kMaxRowsPerEntry
const size_t kFirstBlockSize = 1000;
const size_t kFewBytes = 512; // with these and the few others a record is as large as allocators are quick to give out
const uint32 kFewRows = 48;   // of an entry: so many are looked through about as fast as found by their order
const uint16 kLowTags = 64;   // tags below have a bit in mSeen
const uint32 kFewEntries = 4;

static_assert(sizeof(Header) == 16 && sizeof(Row) == 8, "the block's layout has no gaps");

// What a new record begins with, in one allocation with it, so that a small one needs no other.
struct Room
{
    Row mRows[kFewRows];
    uint32 mEntryEnds[kFewEntries];
    char mBytes[kFewBytes];
};

} // namespace

struct zoPackedData_t
{
    Room* mRoom;       // behind the record; NULL in a record over a serialized block
    char* mBlock;      // the room's bytes, or owned
    size_t mValuesEnd; // header and values are mBlock[0] to mBlock[mValuesEnd - 1]; then comes at least one 0
    size_t mBlockCapacity;

    // Rows and entries: in a serialized block they lie behind the values, else in these arrays. Each is the room's or
    // owned, and NULL while there is neither.
    bool mfSerialized;
    uint32 mRowCount;
    uint32 mRowCapacity;
    uint32 mEntryCount;
    uint32 mEntryCapacity;
    Row* mRows;
    uint32* mEntryEnds; // for each entry the index of the row after its last

    // The open entry, the last one while mfOpen. Of few rows with low tags mSeen has the tags' bits; once there are
    // more or others, mfMany, mSeen has all bits, mPositions[tag] is the tag's position in it, or kNoPosition, and
    // closing the entry sorts it.
    bool mfOpen;
    bool mfMany;
    uint16 mMaxTag;
    uint32 mOpenBegin; // the index of its first row
    uint32 mRowLimit;  // the open entry takes rows up to this count without anything else to be looked at; else 0
    uint64 mSeen;
    uint32 mPositionCapacity;
    uint16* mPositions; // owned; NULL while no entry was of many
};

// ---- Reading rows and entries, wherever they are ----

// The rows as bytes: in a block they are not aligned.
static const char* RowBytes(const zoPackedData_t* aRecord)
{
    return aRecord->mfSerialized ? aRecord->mBlock + aRecord->mValuesEnd
                                 : reinterpret_cast<const char*>(aRecord->mRows);
}

static Row RowAt(const zoPackedData_t* aRecord, uint32 anIndex)
{
    Row theRow;
    memcpy(&theRow, RowBytes(aRecord) + size_t{ anIndex } * sizeof(Row), sizeof(Row));
    return theRow;
}

static uint32 EntryEndAt(const zoPackedData_t* aRecord, uint32 anEntry)
{
    if (!aRecord->mfSerialized) { return aRecord->mEntryEnds[anEntry]; }
    uint32 theEnd;
    memcpy(&theEnd,
           aRecord->mBlock + aRecord->mValuesEnd + size_t{ aRecord->mRowCount } * sizeof(Row) +
               size_t{ anEntry } * sizeof(uint32),
           sizeof(theEnd));
    return theEnd;
}

static uint32 EntryBegin(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return anEntry > 0 ? EntryEndAt(aRecord, anEntry - 1) : 0;
}

static bool IsOpen(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return aRecord->mfOpen && anEntry + 1 == aRecord->mEntryCount;
}

static uint32 EntryEnd(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return IsOpen(aRecord, anEntry) ? aRecord->mRowCount : EntryEndAt(aRecord, anEntry);
}

static size_t ValueEnd(const zoPackedData_t* aRecord, uint32 aRow)
{
    return aRow + 1 < aRecord->mRowCount ? RowAt(aRecord, aRow + 1).mOffset : aRecord->mValuesEnd;
}

static bool HasEntry(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return aRecord && anEntry < aRecord->mEntryCount;
}

// The position in the entry of the row with the tag; the number of its rows when there is none.
static uint32 FindAmongFew(const zoPackedData_t* aRecord, uint32 aBegin, uint32 aCount, uint16 aTag)
{
    const char* theTags = RowBytes(aRecord) + size_t{ aBegin } * sizeof(Row) + offsetof(Row, mTag);
    for (uint32 thePosition = 0; thePosition < aCount; ++thePosition)
    {
        uint16 theTag;
        memcpy(&theTag, theTags + thePosition * sizeof(Row), sizeof(theTag));
        if (theTag == aTag) { return thePosition; }
    }
    return aCount;
}

// As FindAmongFew, by the rows' order of tags.
static uint32 FindAmongMany(const zoPackedData_t* aRecord, uint32 aBegin, uint32 aCount, uint16 aTag)
{
    uint32 theLow = 0;
    uint32 theHigh = aCount;
    while (theLow < theHigh)
    {
        const uint32 theMiddle = theLow + (theHigh - theLow) / 2;
        const uint32 thePosition = RowAt(aRecord, aBegin + theMiddle).mSorted;
        const uint16 theTag = RowAt(aRecord, aBegin + thePosition).mTag;
        if (theTag == aTag) { return thePosition; }
        if (theTag < aTag) { theLow = theMiddle + 1; }
        else { theHigh = theMiddle; }
    }
    return aCount;
}

// The index of the entry's row with the tag; the row count when there is none.
static uint32 FindRow(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    const uint32 theBegin = EntryBegin(aRecord, anEntry);
    if (IsOpen(aRecord, anEntry) && aRecord->mfMany)
    {
        const uint16 thePosition = aTag < aRecord->mPositionCapacity ? aRecord->mPositions[aTag] : kNoPosition;
        return thePosition != kNoPosition ? theBegin + thePosition : aRecord->mRowCount;
    }
    const uint32 theCount = EntryEnd(aRecord, anEntry) - theBegin;
    const uint32 thePosition = theCount <= kFewRows ? FindAmongFew(aRecord, theBegin, theCount, aTag)
                                                    : FindAmongMany(aRecord, theBegin, theCount, aTag);
    return thePosition < theCount ? theBegin + thePosition : aRecord->mRowCount;
}

const char* zoPackedData_GetData(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, size_t* aSize)
{
    if (aSize) { *aSize = 0; }
    if (!HasEntry(aRecord, anEntry)) { return nullptr; }
    const uint32 theRow = FindRow(aRecord, anEntry, aTag);
    if (theRow == aRecord->mRowCount) { return nullptr; }
    const size_t theBegin = RowAt(aRecord, theRow).mOffset;
    const size_t theSize = ValueEnd(aRecord, theRow) - theBegin;
    if (aSize) { *aSize = theSize; }
    return theSize > 0 ? aRecord->mBlock + theBegin : nullptr;
}

template <typename Number>
static uint64 ReadNumber(const char* aBytes)
{
    Number theNumber;
    memcpy(&theNumber, aBytes, sizeof(theNumber));
    return theNumber;
}

uint64 zoPackedData_GetDataAsUInt64(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    size_t theSize;
    const char* theBytes = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    switch (theSize)
    {
    case 2: return ReadNumber<uint16>(theBytes);
    case 4: return ReadNumber<uint32>(theBytes);
    case 8: return ReadNumber<uint64>(theBytes);
    default: return 0;
    }
}

uint32 zoPackedData_GetDataAsUInt32(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    return static_cast<uint32>(zoPackedData_GetDataAsUInt64(aRecord, anEntry, aTag));
}

uint16 zoPackedData_GetDataAsUInt16(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    return static_cast<uint16>(zoPackedData_GetDataAsUInt64(aRecord, anEntry, aTag));
}

zoArray_t* zoPackedData_GetDataArray(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag,
                                     zoArray_UnFlattenerFunc_t anUnFlattener)
{
    size_t theSize;
    const char* theBytes = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return theBytes ? anUnFlattener(theBytes, theSize) : zoArray_New();
}

uint32 zoPackedData_GetEntryCount(const zoPackedData_t* aRecord) { return aRecord ? aRecord->mEntryCount : 0; }

uint16 zoPackedData_GetTagCount(const zoPackedData_t* aRecord, uint32 anEntry)
{
    if (!HasEntry(aRecord, anEntry)) { return 0; }
    return static_cast<uint16>(EntryEnd(aRecord, anEntry) - EntryBegin(aRecord, anEntry));
}

uint16 zoPackedData_GetTagAt(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aPosition)
{
    if (aPosition >= zoPackedData_GetTagCount(aRecord, anEntry)) { return 0; }
    return RowAt(aRecord, EntryBegin(aRecord, anEntry) + aPosition).mTag;
}

uint32 zoPackedData_GetValues(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aFirst, zoPackedData_Value* aValues,
                              uint32 aMaxCount)
{
    const uint32 theTotal = zoPackedData_GetTagCount(aRecord, anEntry);
    if (aFirst >= theTotal) { return 0; }
    const uint32 theCount = std::min(aMaxCount, theTotal - aFirst);
    const uint32 theFirstRow = EntryBegin(aRecord, anEntry) + aFirst;
    for (uint32 i = 0; i < theCount; ++i)
    {
        const Row theRow = RowAt(aRecord, theFirstRow + i);
        const size_t theSize = ValueEnd(aRecord, theFirstRow + i) - theRow.mOffset;
        aValues[i] = { theSize > 0 ? aRecord->mBlock + theRow.mOffset : nullptr, theSize, theRow.mTag };
    }
    return theCount;
}

// ---- Adding ----

// Leaves a record without entries; what it held is the caller's business.
static void Clear(zoPackedData_t* aRecord)
{
    Room* theRoom = aRecord->mRoom;
    *aRecord = {};
    aRecord->mValuesEnd = sizeof(Header);
    if (!theRoom) { return; }
    aRecord->mRoom = theRoom;
    aRecord->mBlock = theRoom->mBytes;
    aRecord->mBlockCapacity = kFewBytes;
    aRecord->mRows = theRoom->mRows;
    aRecord->mRowCapacity = kFewRows;
    aRecord->mEntryEnds = theRoom->mEntryEnds;
    aRecord->mEntryCapacity = kFewEntries;
    theRoom->mBytes[sizeof(Header)] = 0;
}

template <typename Element>
static bool IsInRoom(const zoPackedData_t* aRecord, const Element* anArray)
{
    const uintptr_t theRoom = reinterpret_cast<uintptr_t>(aRecord->mRoom);
    return theRoom != 0 && reinterpret_cast<uintptr_t>(anArray) - theRoom < sizeof(Room);
}

template <typename Element>
static void FreeArray(const zoPackedData_t* aRecord, Element* anArray)
{
    if (!IsInRoom(aRecord, anArray)) { free(anArray); }
}

// The array, aUsed elements of it, moved to where there is place for aCapacity elements.
template <typename Element>
static Element* Moved(const zoPackedData_t* aRecord, Element* anArray, size_t aUsed, size_t aCapacity)
{
    if (!IsInRoom(aRecord, anArray)) { return static_cast<Element*>(zoRealloc(anArray, aCapacity * sizeof(Element))); }
    return static_cast<Element*>(memcpy(zoMalloc(aCapacity * sizeof(Element)), anArray, aUsed * sizeof(Element)));
}

// Makes room for so many elements.
template <typename Element>
static void ReserveElements(const zoPackedData_t* aRecord, Element** anArray, uint32 aWanted, uint32* aCapacity)
{
    if (aWanted <= *aCapacity) { return; }
    const uint32 theBefore = *aCapacity;
    *aCapacity = std::max(aWanted, theBefore * 2);
    *anArray = Moved(aRecord, *anArray, theBefore, *aCapacity);
}

static void ReserveRows(zoPackedData_t* aRecord, uint32 aWanted)
{
    ReserveElements(aRecord, &aRecord->mRows, aWanted, &aRecord->mRowCapacity);
}

static void ReserveEntries(zoPackedData_t* aRecord, uint32 aWanted)
{
    ReserveElements(aRecord, &aRecord->mEntryEnds, aWanted, &aRecord->mEntryCapacity);
}

zoPackedData_t* zoPackedData_New(uint32 aCount)
{
    const uint32 kMostExpected = 0x10000; // a hint is no reason to run out of memory
    zoPackedData_t* theRecord = static_cast<zoPackedData_t*>(zoMalloc(sizeof(zoPackedData_t) + sizeof(Room)));
    theRecord->mRoom = reinterpret_cast<Room*>(theRecord + 1);
    Clear(theRecord);
    ReserveEntries(theRecord, std::min(aCount, kMostExpected));
    return theRecord;
}

static uint64 BlockSize(const zoPackedData_t* aRecord)
{
    return uint64{ aRecord->mValuesEnd } + uint64{ aRecord->mRowCount } * sizeof(Row) +
           uint64{ aRecord->mEntryCount } * sizeof(uint32) + kTrailerSize;
}

// Whether the serialized block could still be told its size with so many bytes more in its directory and its values.
static bool HasRoom(const zoPackedData_t* aRecord, size_t aDirectorySize, size_t aSize)
{
    return aSize < kMaxBlockSize && BlockSize(aRecord) + aDirectorySize + aSize <= kMaxBlockSize;
}

// Room for aSize bytes behind the values and the 0 that ends them.
static void ReserveValue(zoPackedData_t* aRecord, size_t aSize)
{
    const size_t theNeeded = aRecord->mValuesEnd + aSize + 1;
    if (theNeeded <= aRecord->mBlockCapacity) { return; }
    const size_t theDoubled =
        aRecord->mBlockCapacity <= kMaxBlockSize / 2 ? aRecord->mBlockCapacity * 2 : kMaxBlockSize;
    aRecord->mBlockCapacity = std::max(theNeeded, std::max(theDoubled, kFirstBlockSize));
    aRecord->mBlock = Moved(aRecord, aRecord->mBlock, aRecord->mValuesEnd, aRecord->mBlockCapacity);
}

// A record over a serialized block gets its rows and entries back into arrays, so that more can be added.
static void Unserialize(zoPackedData_t* aRecord)
{
    const size_t theRowBytes = size_t{ aRecord->mRowCount } * sizeof(Row);
    const char* theDirectory = aRecord->mBlock + aRecord->mValuesEnd;
    ReserveRows(aRecord, aRecord->mRowCount);
    ReserveEntries(aRecord, aRecord->mEntryCount);
    if (theRowBytes > 0) { memcpy(aRecord->mRows, theDirectory, theRowBytes); }
    if (aRecord->mEntryCount > 0)
    {
        memcpy(aRecord->mEntryEnds, theDirectory + theRowBytes, size_t{ aRecord->mEntryCount } * sizeof(uint32));
    }
    aRecord->mBlock[aRecord->mValuesEnd] = 0; // the directory was here: the trailer alone is long enough for it
    aRecord->mfSerialized = false;
}

// Writes the order of the open entry's tags into its rows.
static void SortOpenEntry(zoPackedData_t* aRecord)
{
    Row* theRows = aRecord->mRows + aRecord->mOpenBegin;
    const uint32 theCount = aRecord->mRowCount - aRecord->mOpenBegin;
    if (theCount <= kFewRows) { return; }
    if (aRecord->mMaxTag / 16 < theCount) // tags are dense: walk them in order
    {
        uint32 theSorted = 0;
        for (uint32 theTag = 0; theSorted < theCount; ++theTag)
        {
            const uint16 thePosition = aRecord->mPositions[theTag];
            if (thePosition != kNoPosition) { theRows[theSorted++].mSorted = thePosition; }
        }
        return;
    }
    uint16* theOrder = static_cast<uint16*>(zoMalloc(size_t{ theCount } * sizeof(uint16)));
    for (uint32 i = 0; i < theCount; ++i)
        theOrder[i] = static_cast<uint16>(i);
    std::sort(theOrder, theOrder + theCount,
              [theRows](uint16 aLeft, uint16 aRight) { return theRows[aLeft].mTag < theRows[aRight].mTag; });
    for (uint32 i = 0; i < theCount; ++i)
        theRows[i].mSorted = theOrder[i];
    free(theOrder);
}

static void CloseEntry(zoPackedData_t* aRecord)
{
    if (!aRecord->mfOpen) { return; }
    SortOpenEntry(aRecord);
    aRecord->mEntryEnds[aRecord->mEntryCount - 1] = aRecord->mRowCount;
    aRecord->mfOpen = false;
    aRecord->mRowLimit = 0;
}

// Rows are added at once while they fit their array and their entry; in a block that is near its greatest size, never.
static void SetRowLimit(zoPackedData_t* aRecord)
{
    const uint64 theMostFits = aRecord->mBlockCapacity + uint64{ aRecord->mRowCapacity } * sizeof(Row);
    const bool fHasRoom = HasRoom(aRecord, 0, static_cast<size_t>(std::min(theMostFits, uint64{ kMaxBlockSize })));
    const uint32 theEntryLimit = aRecord->mOpenBegin + (aRecord->mfMany ? kMaxRowsPerEntry : kFewRows);
    aRecord->mRowLimit = fHasRoom ? std::min(aRecord->mRowCapacity, theEntryLimit) : 0;
}

// Opens an entry whose first row is the next one.
static void OpenEntry(zoPackedData_t* aRecord)
{
    for (uint32 i = aRecord->mOpenBegin; aRecord->mfMany && i < aRecord->mRowCount; ++i) // the tags of the one before
        aRecord->mPositions[aRecord->mRows[i].mTag] = kNoPosition;
    ReserveEntries(aRecord, aRecord->mEntryCount + 1);
    ++aRecord->mEntryCount;
    aRecord->mfOpen = true;
    aRecord->mfMany = false;
    aRecord->mSeen = 0;
    aRecord->mMaxTag = 0;
    aRecord->mOpenBegin = aRecord->mRowCount;
    SetRowLimit(aRecord);
}

void zoPackedData_AddNewEntry(zoPackedData_t* aRecord)
{
    if (!aRecord || !HasRoom(aRecord, sizeof(uint32), 0)) { return; }
    if (aRecord->mfSerialized)
    {
        Unserialize(aRecord);
        aRecord->mOpenBegin = aRecord->mRowCount;
    }
    CloseEntry(aRecord);
    OpenEntry(aRecord);
}

static void ReservePositions(zoPackedData_t* aRecord, uint16 aTag)
{
    const uint32 theBefore = aRecord->mPositionCapacity;
    ReserveElements(aRecord, &aRecord->mPositions, uint32{ aTag } + 1, &aRecord->mPositionCapacity);
    memset(aRecord->mPositions + theBefore, 0xFF, (aRecord->mPositionCapacity - theBefore) * sizeof(uint16));
}

static void NotePosition(zoPackedData_t* aRecord, uint16 aTag, uint32 aRow)
{
    aRecord->mPositions[aTag] = static_cast<uint16>(aRow - aRecord->mOpenBegin);
    aRecord->mMaxTag = std::max(aRecord->mMaxTag, aTag);
}

// From now on the open entry's tags are found by their positions.
static void BecomeMany(zoPackedData_t* aRecord)
{
    aRecord->mfMany = true;
    aRecord->mSeen = ~uint64{ 0 };
    for (uint32 i = aRecord->mOpenBegin; i < aRecord->mRowCount; ++i)
    {
        ReservePositions(aRecord, aRecord->mRows[i].mTag);
        NotePosition(aRecord, aRecord->mRows[i].mTag, i);
    }
}

// The last entry of a record that was serialized takes values again.
static void ReopenEntry(zoPackedData_t* aRecord)
{
    Unserialize(aRecord);
    --aRecord->mEntryCount;
    const uint32 theEnd = aRecord->mRowCount;
    aRecord->mRowCount = aRecord->mOpenBegin = EntryBegin(aRecord, aRecord->mEntryCount);
    OpenEntry(aRecord);
    aRecord->mRowCount = theEnd;
    BecomeMany(aRecord);
}

// Whether the open entry can note the tag as it is and has not got it.
static inline bool IsNewTag(const zoPackedData_t* aRecord, uint16 aTag)
{
    if (!aRecord->mfMany) { return aTag < kLowTags && (aRecord->mSeen >> aTag & 1) == 0; }
    return aTag < aRecord->mPositionCapacity && aRecord->mPositions[aTag] == kNoPosition;
}

// Makes room for a value in the open entry; false when the tag is there already, or there can be no room.
static bool MakeRoom(zoPackedData_t* aRecord, uint16 aTag, size_t aSize)
{
    if (!aRecord || aRecord->mEntryCount == 0) { return false; }
    if (!aRecord->mfOpen) { ReopenEntry(aRecord); }
    const bool fIsFull = aRecord->mRowCount - aRecord->mOpenBegin == kMaxRowsPerEntry;
    if (fIsFull || !HasRoom(aRecord, sizeof(Row), aSize)) { return false; }
    const bool fIsOfFew = aTag < kLowTags && aRecord->mRowCount - aRecord->mOpenBegin < kFewRows;
    if (!aRecord->mfMany && !fIsOfFew) { BecomeMany(aRecord); }
    if (aRecord->mfMany) { ReservePositions(aRecord, aTag); }
    ReserveRows(aRecord, aRecord->mRowCount + 1);
    ReserveValue(aRecord, aSize);
    SetRowLimit(aRecord);
    return IsNewTag(aRecord, aTag);
}

// Whether a low tag is new to an entry of few, and there is room already.
static inline bool HasRoomAtOnce(const zoPackedData_t* aRecord, uint16 aTag, size_t aSize)
{
    return aRecord && aTag < kLowTags && (aRecord->mSeen >> aTag & 1) == 0 && aRecord->mRowCount < aRecord->mRowLimit &&
           aSize < aRecord->mBlockCapacity - aRecord->mValuesEnd;
}

// Stores a value for which there is room. Most are numbers or short texts.
static inline void AppendValue(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize)
{
    char* theTarget = aRecord->mBlock + aRecord->mValuesEnd;
    aRecord->mRows[aRecord->mRowCount++] = { static_cast<uint32>(aRecord->mValuesEnd), aTag, 0 };
    aRecord->mValuesEnd += aSize;
    theTarget[aSize] = 0;
    switch (aSize)
    {
    case 0: break;
    case 1: *theTarget = *static_cast<const char*>(aData); break;
    case 4: memcpy(theTarget, aData, 4); break;
    case 8: memcpy(theTarget, aData, 8); break;
    default: memcpy(theTarget, aData, aSize); break;
    }
}

__attribute__((noinline)) static void AddSlowly(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize)
{
    if (!MakeRoom(aRecord, aTag, aSize)) { return; }
    if (aRecord->mfMany) { NotePosition(aRecord, aTag, aRecord->mRowCount); }
    else { aRecord->mSeen |= uint64{ 1 } << aTag; }
    AppendValue(aRecord, aTag, aData, aSize);
}

void zoPackedData_AddData(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize)
{
    if (!HasRoomAtOnce(aRecord, aTag, aSize))
    {
        AddSlowly(aRecord, aTag, aData, aSize);
        return;
    }
    aRecord->mSeen |= uint64{ 1 } << aTag;
    AppendValue(aRecord, aTag, aData, aSize);
}

void zoPackedData_AddArray(zoPackedData_t* aRecord, uint16 aTag, const zoArray_t* anArray,
                           zoArray_FlattenerFunc_t aFlattener)
{
    size_t theSize = 0;
    char* theBytes = aFlattener(anArray, &theSize);
    zoPackedData_AddData(aRecord, aTag, theBytes, theSize);
    free(theBytes);
}

void zoPackedData_CopyEntry(const zoPackedData_t* aSource, uint32 anEntry, zoPackedData_t* aDestination)
{
    if (!HasEntry(aSource, anEntry)) { return; }
    zoPackedData_AddNewEntry(aDestination);
    for (uint32 i = EntryBegin(aSource, anEntry); i < EntryEnd(aSource, anEntry); ++i)
    {
        const Row theRow = RowAt(aSource, i);
        zoPackedData_AddData(aDestination, theRow.mTag, aSource->mBlock + theRow.mOffset,
                             ValueEnd(aSource, i) - theRow.mOffset);
    }
}

// ---- The serialized block ----

uint32 zoPackedData_GetMemoryUsage(const zoPackedData_t* aRecord)
{
    return aRecord ? static_cast<uint32>(BlockSize(aRecord)) : 0;
}

static void FreeArrays(zoPackedData_t* aRecord)
{
    FreeArray(aRecord, aRecord->mRows);
    FreeArray(aRecord, aRecord->mEntryEnds);
    FreeArray(aRecord, aRecord->mPositions);
}

// The end of what was appended; aBytes may be NULL when there are none.
static char* Append(char* anEnd, const void* aBytes, size_t aCount)
{
    if (aCount > 0) { memcpy(anEnd, aBytes, aCount); }
    return anEnd + aCount;
}

// The block at its final size, owned. A first block is quicker given back and had again than cut down.
static char* TakeBlock(zoPackedData_t* aRecord, size_t aSize)
{
    if (aRecord->mBlockCapacity > kFirstBlockSize) { return static_cast<char*>(zoRealloc(aRecord->mBlock, aSize)); }
    char* theBlock = static_cast<char*>(zoMalloc(aSize));
    Append(theBlock, aRecord->mBlock, aRecord->mBlock ? aRecord->mValuesEnd : 0);
    FreeArray(aRecord, aRecord->mBlock);
    return theBlock;
}

char* zoPackedData_TakeData(zoPackedData_t* aRecord)
{
    if (!aRecord) { return nullptr; }
    CloseEntry(aRecord);
    char* theBlock = aRecord->mBlock;
    if (!aRecord->mfSerialized)
    {
        const size_t theSize = static_cast<size_t>(BlockSize(aRecord));
        const size_t theRowBytes = size_t{ aRecord->mRowCount } * sizeof(Row);
        const size_t theEntryBytes = size_t{ aRecord->mEntryCount } * sizeof(uint32);
        const size_t theValuesEnd = aRecord->mValuesEnd;
        const Header theHeader = { kMagic, static_cast<uint32>(theSize), aRecord->mEntryCount, aRecord->mRowCount };
        theBlock = TakeBlock(aRecord, theSize);
        memcpy(theBlock, &theHeader, sizeof(theHeader));
        char* theEnd = Append(theBlock + theValuesEnd, aRecord->mRows, theRowBytes);
        memset(Append(theEnd, aRecord->mEntryEnds, theEntryBytes), 0, kTrailerSize);
    }
    FreeArrays(aRecord);
    Clear(aRecord);
    return theBlock;
}

// Whether no tag comes twice among the few rows of an entry.
static bool AreUnique(const zoPackedData_t* aRecord, uint32 aBegin, uint32 anEnd)
{
    uint64 theSeen = 0; // low tags, nearly all
    for (uint32 i = aBegin; i < anEnd; ++i)
    {
        const uint16 theTag = RowAt(aRecord, i).mTag;
        const uint64 theBit = theTag < kLowTags ? uint64{ 1 } << theTag : 0;
        if (theSeen & theBit) { return false; }
        theSeen |= theBit;
        if (theBit == 0 && FindAmongFew(aRecord, aBegin, i - aBegin, theTag) < i - aBegin) { return false; }
    }
    return true;
}

// Whether the many rows of an entry hold each position once, in the order of tags that grow.
static bool AreSorted(const zoPackedData_t* aRecord, uint32 aBegin, uint32 anEnd)
{
    int32 theLast = -1;
    for (uint32 i = aBegin; i < anEnd; ++i)
    {
        const uint32 thePosition = RowAt(aRecord, i).mSorted;
        if (thePosition >= anEnd - aBegin) { return false; }
        const uint16 theTag = RowAt(aRecord, aBegin + thePosition).mTag;
        if (theTag <= theLast) { return false; }
        theLast = theTag;
    }
    return true;
}

static bool AreEntriesValid(const zoPackedData_t* aRecord)
{
    uint32 theBegin = 0;
    for (uint32 i = 0; i < aRecord->mEntryCount; ++i)
    {
        const uint32 theEnd = EntryEndAt(aRecord, i);
        if (theEnd < theBegin || theEnd > aRecord->mRowCount || theEnd - theBegin > kMaxRowsPerEntry) { return false; }
        const bool fAreTagsValid =
            theEnd - theBegin <= kFewRows ? AreUnique(aRecord, theBegin, theEnd) : AreSorted(aRecord, theBegin, theEnd);
        if (!fAreTagsValid) { return false; }
        theBegin = theEnd;
    }
    return theBegin == aRecord->mRowCount;
}

static bool AreOffsetsValid(const zoPackedData_t* aRecord)
{
    size_t theOffset = sizeof(Header);
    for (uint32 i = 0; i < aRecord->mRowCount; ++i)
    {
        const size_t theNext = RowAt(aRecord, i).mOffset;
        if (theNext < theOffset || (i == 0 && theNext != theOffset)) { return false; }
        theOffset = theNext;
    }
    return theOffset <= aRecord->mValuesEnd && (aRecord->mRowCount > 0 || theOffset == aRecord->mValuesEnd);
}

// Takes the block's counts over; false when its sizes and offsets don't add up.
static bool AdoptBlock(zoPackedData_t* aRecord, char* aBlock)
{
    Header theHeader;
    memcpy(&theHeader, aBlock, sizeof(theHeader));
    const uint64 theDirectorySize =
        uint64{ theHeader.mRowCount } * sizeof(Row) + uint64{ theHeader.mEntryCount } * sizeof(uint32) + kTrailerSize;
    if (theHeader.mMagic != kMagic || theHeader.mSize < sizeof(Header) + theDirectorySize) { return false; }

    aRecord->mBlock = aBlock;
    aRecord->mfSerialized = true;
    aRecord->mRowCount = theHeader.mRowCount;
    aRecord->mEntryCount = theHeader.mEntryCount;
    aRecord->mValuesEnd = theHeader.mSize - static_cast<size_t>(theDirectorySize);
    aRecord->mBlockCapacity = theHeader.mSize;
    uint32 theTrailer;
    memcpy(&theTrailer, aBlock + theHeader.mSize - kTrailerSize, kTrailerSize);
    return theTrailer == 0 && AreOffsetsValid(aRecord) && AreEntriesValid(aRecord);
}

zoPackedData_t* zoPackedData_NewData(char* aBlock)
{
    if (!aBlock) { return zoPackedData_New(0); }
    zoPackedData_t* theRecord = static_cast<zoPackedData_t*>(zoMallocZeroed(sizeof(zoPackedData_t)));
    if (AdoptBlock(theRecord, aBlock)) { return theRecord; }
    free(aBlock);
    free(theRecord);
    return zoPackedData_New(0);
}

zoPackedData_t* zoPackedData_Duplicate(const zoPackedData_t* aRecord)
{
    if (aRecord && aRecord->mfSerialized)
    {
        const uint32 theSize = zoPackedData_GetMemoryUsage(aRecord);
        return zoPackedData_NewData(static_cast<char*>(memcpy(zoMalloc(theSize), aRecord->mBlock, theSize)));
    }
    zoPackedData_t* theCopy = zoPackedData_New(zoPackedData_GetEntryCount(aRecord));
    for (uint32 i = 0; i < zoPackedData_GetEntryCount(aRecord); ++i)
        zoPackedData_CopyEntry(aRecord, i, theCopy);
    return theCopy;
}

void zoPackedData_Free(zoPackedData_t* aRecord)
{
    if (!aRecord) { return; }
    FreeArrays(aRecord);
    FreeArray(aRecord, aRecord->mBlock);
    free(aRecord);
}
