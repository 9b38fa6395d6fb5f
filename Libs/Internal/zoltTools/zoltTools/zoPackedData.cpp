#include <zoltTools/zoPackedData.h>

#include <algorithm>
#include <zoltTools/Private/zoPackedData.h>

using namespace PackedData;

// ---- Reading ----

// As ScanTags, in an entry that has its tags' order.
static uint32 SearchTags(const Entry& anEntry, uint16 aTag)
{
    uint32 theLow = 0;
    uint32 theHigh = anEntry.mCount;
    while (theLow < theHigh)
    {
        const uint32 theMiddle = theLow + (theHigh - theLow) / 2;
        const uint32 thePosition = Load<uint16>(anEntry.mOrder + size_t{ theMiddle } * sizeof(uint16));
        const uint16 theTag = TagAt(anEntry, thePosition);
        if (theTag == aTag) { return thePosition; }
        if (theTag < aTag) { theLow = theMiddle + 1; }
        else { theHigh = theMiddle; }
    }
    return anEntry.mCount;
}

static uint32 FindPosition(const zoPackedData_t* aRecord, uint32 anEntry, const Entry& aView, uint16 aTag)
{
    if (aView.mCount <= kSmallCount) { return ScanTags(aView, aTag); }
    if (!IsOpen(aRecord, anEntry)) { return SearchTags(aView, aTag); }
    const uint16 thePosition = IndexedPosition(aRecord, aTag);
    return thePosition != kNoPosition ? thePosition : aView.mCount;
}

const char* zoPackedData_GetData(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, size_t* aSize)
{
    if (aSize) { *aSize = 0; }
    if (!HasEntry(aRecord, anEntry)) { return nullptr; }
    const Entry theEntry = EntryAt(aRecord, anEntry);
    const uint32 thePosition = FindPosition(aRecord, anEntry, theEntry, aTag);
    if (thePosition == theEntry.mCount) { return nullptr; }
    const zoPackedData_Value theValue = ValueAt(theEntry, thePosition);
    if (aSize) { *aSize = theValue.mSize; }
    return theValue.mData;
}

uint64 zoPackedData_GetDataAsUInt64(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    size_t theSize;
    const char* theBytes = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    switch (theSize)
    {
    case 2: return Load<uint16>(theBytes);
    case 4: return Load<uint32>(theBytes);
    case 8: return Load<uint64>(theBytes);
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
    return HasEntry(aRecord, anEntry) ? static_cast<uint16>(EntryAt(aRecord, anEntry).mCount) : uint16{ 0 };
}

uint32 zoPackedData_FindTag(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    return HasEntry(aRecord, anEntry) ? FindPosition(aRecord, anEntry, EntryAt(aRecord, anEntry), aTag) : 0;
}

uint16 zoPackedData_GetTagAt(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aPosition)
{
    if (!HasEntry(aRecord, anEntry)) { return 0; }
    const Entry theEntry = EntryAt(aRecord, anEntry);
    return aPosition < theEntry.mCount ? TagAt(theEntry, aPosition) : uint16{ 0 };
}

uint32 zoPackedData_CountTagsFrom(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    if (!HasEntry(aRecord, anEntry)) { return 0; }
    const Entry theEntry = EntryAt(aRecord, anEntry);
    uint32 theCountBelow = 0;
    if (theEntry.mCount > kSmallCount && theEntry.mCount > aTag)
    {
        for (uint16 theTag = 0; theTag < aTag; ++theTag)
            theCountBelow += FindPosition(aRecord, anEntry, theEntry, theTag) < theEntry.mCount;
    }
    else
    {
        for (uint32 i = 0; i < theEntry.mCount; ++i)
            theCountBelow += TagAt(theEntry, i) < aTag;
    }
    return theEntry.mCount - theCountBelow;
}

uint32 zoPackedData_GetValues(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aFirst, zoPackedData_Value* aValues,
                              uint32 aMaxCount)
{
    if (!HasEntry(aRecord, anEntry)) { return 0; }
    const Entry theEntry = EntryAt(aRecord, anEntry);
    if (aFirst >= theEntry.mCount) { return 0; }
    const uint32 theCount = std::min(aMaxCount, theEntry.mCount - aFirst);
    size_t theBegin = aFirst > 0 ? EndAt(theEntry, aFirst - 1) : 0;
    for (uint32 i = 0; i < theCount; ++i)
    {
        const size_t theEnd = EndAt(theEntry, aFirst + i);
        const char* theData = theEnd > theBegin ? theEntry.mValues + theBegin : nullptr;
        aValues[i] = { theData, theEnd - theBegin, TagAt(theEntry, aFirst + i) };
        theBegin = theEnd;
    }
    return theCount;
}

// ---- Memory ----

void PackedData::Clear(zoPackedData_t* aRecord)
{
    Room* theRoom = aRecord->mRoom;
    *aRecord = {};
    aRecord->mUsed = sizeof(Header);
    if (!theRoom) { return; }
    aRecord->mRoom = theRoom;
    aRecord->mBlock = theRoom->mBytes;
    aRecord->mCapacity = sizeof(theRoom->mBytes);
    aRecord->mEnds = theRoom->mEnds;
    aRecord->mTags = theRoom->mTags;
    aRecord->mRowCapacity = kSmallCount;
    aRecord->mEntryEnds = theRoom->mEntryEnds;
    aRecord->mEntryCapacity = kFirstEntries;
    theRoom->mBytes[sizeof(Header)] = 0;
}

void PackedData::FreeArrays(const zoPackedData_t* aRecord)
{
    FreeArray(aRecord, aRecord->mEnds);
    FreeArray(aRecord, aRecord->mTags);
    FreeArray(aRecord, aRecord->mEntryEnds);
    free(aRecord->mPages);
    free(aRecord->mPositions);
    free(aRecord->mSelection);
}

static void ReserveEntries(zoPackedData_t* aRecord, uint32 aCount)
{
    const uint32 theBefore = aRecord->mEntryCapacity;
    if (aCount <= theBefore) { return; }
    aRecord->mEntryCapacity = std::max(aCount, theBefore * 2);
    aRecord->mEntryEnds = Moved(aRecord, aRecord->mEntryEnds, theBefore, aRecord->mEntryCapacity);
}

static void ReserveRows(zoPackedData_t* aRecord, uint32 aCount)
{
    const uint32 theBefore = aRecord->mRowCapacity;
    if (aCount <= theBefore) { return; }
    aRecord->mRowCapacity = std::max({ aCount, theBefore * 2, kFirstRows });
    aRecord->mEnds = Moved(aRecord, aRecord->mEnds, theBefore, aRecord->mRowCapacity);
    aRecord->mTags = Moved(aRecord, aRecord->mTags, theBefore, aRecord->mRowCapacity);
}

// Makes room in the table for aRow, which is past its end.
[[gnu::noinline]] static void GrowPageTable(zoPackedData_t* aRecord, uint32 aRow)
{
    const uint32 theBefore = aRecord->mPageTableSize;
    aRecord->mPageTableSize = std::min(std::max(aRow + 1, theBefore * 2), kPageCount);
    aRecord->mPages = Shared::ResizeArray(aRecord->mPages, aRecord->mPageTableSize);
    memset(aRecord->mPages + theBefore, 0xFF, (aRecord->mPageTableSize - theBefore) * sizeof(uint16));
}

// @return a new page without positions.
[[gnu::noinline]] static uint16 AddPage(zoPackedData_t* aRecord)
{
    const uint32 thePage = aRecord->mPageCount++;
    if (thePage == aRecord->mPageCapacity)
    {
        aRecord->mPageCapacity = std::max(kFirstPages, thePage * 2);
        aRecord->mPositions = Shared::ResizeArray(aRecord->mPositions, size_t{ aRecord->mPageCapacity } * kPageSize);
    }
    memset(aRecord->mPositions + size_t{ thePage } * kPageSize, 0xFF, kPageSize * sizeof(uint16));
    return static_cast<uint16>(thePage);
}

// Makes room for aSize bytes and a 0 after what is used.
static void ReserveBytes(zoPackedData_t* aRecord, size_t aSize)
{
    const size_t theNeeded = aRecord->mUsed + aSize + 1;
    if (theNeeded <= aRecord->mCapacity) { return; }
    const size_t theGrown = Shared::GrowCapacity(aRecord->mCapacity, theNeeded, kFirstBytes);
    aRecord->mCapacity = std::min(theGrown, std::max(theNeeded, kMaxBlockSize));
    aRecord->mBlock = Moved(aRecord, aRecord->mBlock, aRecord->mUsed, aRecord->mCapacity);
}

uint64 PackedData::BlockSize(const zoPackedData_t* aRecord)
{
    const bool fIsWide = aRecord->mUsed - aRecord->mOpenBegin > kMaxNarrowSize;
    return uint64{ aRecord->mUsed } + (aRecord->mfOpen ? DirectorySize(aRecord->mCount, fIsWide) : 0) +
           uint64{ aRecord->mEntryCount } * sizeof(uint32) + kTrailerSize;
}

// Whether aSize bytes more fit the block, with a directory that becomes wide by them.
static bool HasRoom(const zoPackedData_t* aRecord, uint64 aSize)
{
    const uint64 theWidening = uint64{ aRecord->mCount } * sizeof(uint16);
    return aSize < kMaxBlockSize && BlockSize(aRecord) + theWidening + aSize <= kMaxBlockSize;
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

// ---- Opening and closing an entry ----

static bool IsFarFromFull(const zoPackedData_t* aRecord)
{
    return aRecord->mCapacity < kMaxBlockSize / 2 && aRecord->mEntryCount < kMaxBlockSize / 16;
}

// Values are added without further checks while they fit the arrays, in a block far below its greatest size.
static void SetCountLimit(zoPackedData_t* aRecord)
{
    aRecord->mCountLimit = IsFarFromFull(aRecord) ? std::min(aRecord->mRowCapacity, kSmallCount) : 0;
}

// The table of a record over a serialized block becomes an array, so that more can be added.
static void Unserialize(zoPackedData_t* aRecord)
{
    ReserveEntries(aRecord, aRecord->mEntryCount);
    if (aRecord->mEntryCount > 0)
    {
        memcpy(aRecord->mEntryEnds, aRecord->mBlock + aRecord->mUsed, size_t{ aRecord->mEntryCount } * sizeof(uint32));
    }
    aRecord->mBlock[aRecord->mUsed] = 0; // the table or the trailer was here
    aRecord->mfSerialized = false;
}

// What was selected may change.
static void DropSelection(zoPackedData_t* aRecord)
{
    free(aRecord->mSelection);
    aRecord->mSelection = nullptr;
}

static void OpenEntry(zoPackedData_t* aRecord)
{
    ReserveEntries(aRecord, aRecord->mEntryCount + 1);
    ++aRecord->mEntryCount;
    aRecord->mfOpen = true;
    aRecord->mfIndexed = false;
    aRecord->mOpenBegin = aRecord->mUsed;
    aRecord->mCount = 0;
    aRecord->mSeen = 0;
    SetCountLimit(aRecord);
}

// Sorts positions by one byte of their tags; those that have the same byte keep their order.
static void SortByByte(const uint16* aTags, const uint16* aPositions, uint32 aCount, unsigned aShift, uint16* aSorted)
{
    const uint32 kBytes = 256;
    uint32 theStarts[kBytes + 1] = {}; // where the positions of each byte begin
    for (uint32 i = 0; i < aCount; ++i)
        ++theStarts[(aTags[i] >> aShift) % kBytes + 1];
    for (uint32 theByte = 1; theByte < kBytes; ++theByte)
        theStarts[theByte] += theStarts[theByte - 1];
    for (uint32 i = 0; i < aCount; ++i)
        aSorted[theStarts[(aTags[aPositions[i]] >> aShift) % kBytes]++] = aPositions[i];
}

// Writes the positions of the open entry's values in the order of their tags. The time is linear, whatever that is.
static void WriteOrder(const zoPackedData_t* aRecord, char* aTarget)
{
    const uint32 theCount = aRecord->mCount;
    uint16* theOrder = Shared::NewArray<uint16>(2 * size_t{ theCount });
    uint16* theHalfSorted = theOrder + theCount;
    for (uint32 i = 0; i < theCount; ++i)
        theOrder[i] = static_cast<uint16>(i);
    SortByByte(aRecord->mTags, theOrder, theCount, 0, theHalfSorted);
    SortByByte(aRecord->mTags, theHalfSorted, theCount, 8, theOrder);
    memcpy(aTarget, theOrder, OrderSize(theCount));
    free(theOrder);
}

static void NarrowEnds(const uint32* __restrict anEnds, uint32 aCount, char* __restrict aTarget)
{
    for (uint32 i = 0; i < aCount; ++i)
    {
        const uint16 theEnd = static_cast<uint16>(anEnds[i]);
        memcpy(aTarget + i * sizeof(theEnd), &theEnd, sizeof(theEnd));
    }
}

// Writes narrow ends and tags. @return the position after them.
static char* WriteRows(const uint32* anEnds, const uint16* aTags, uint32 aCount, char* aTarget)
{
    NarrowEnds(anEnds, aCount, aTarget);
    const size_t theSize = size_t{ aCount } * sizeof(uint16);
    if (aCount > 0) { memcpy(aTarget + theSize, aTags, theSize); }
    return aTarget + 2 * theSize;
}

// Writes the ends, the tags, their order and their count.
static void WriteDirectory(const zoPackedData_t* aRecord, char* aTarget, bool afWide)
{
    const uint32 theCount = aRecord->mCount;
    if (!afWide) { aTarget = WriteRows(aRecord->mEnds, aRecord->mTags, theCount, aTarget); }
    else
    {
        const size_t theEndsSize = size_t{ theCount } * sizeof(uint32);
        const size_t theTagsSize = size_t{ theCount } * sizeof(uint16);
        memcpy(aTarget, aRecord->mEnds, theEndsSize);
        memcpy(aTarget + theEndsSize, aRecord->mTags, theTagsSize);
        aTarget += theEndsSize + theTagsSize;
    }
    if (OrderSize(theCount) > 0) { WriteOrder(aRecord, aTarget); }
    const uint16 theStoredCount = static_cast<uint16>(theCount);
    memcpy(aTarget + OrderSize(theCount), &theStoredCount, sizeof(theStoredCount));
}

void PackedData::CloseEntry(zoPackedData_t* aRecord)
{
    if (!aRecord->mfOpen) { return; }
    const bool fIsWide = aRecord->mUsed - aRecord->mOpenBegin > kMaxNarrowSize;
    const size_t theSize = DirectorySize(aRecord->mCount, fIsWide);
    ReserveBytes(aRecord, theSize);
    WriteDirectory(aRecord, aRecord->mBlock + aRecord->mUsed, fIsWide);
    aRecord->mUsed += theSize;
    aRecord->mBlock[aRecord->mUsed] = 0;
    aRecord->mEntryEnds[aRecord->mEntryCount - 1] = static_cast<uint32>(aRecord->mUsed);
    for (uint32 i = 0; aRecord->mfIndexed && i < aRecord->mCount; ++i) // for the next one
        aRecord->mPages[aRecord->mTags[i] / kPageSize] = kNoPage;
    aRecord->mPageCount = 0;
    aRecord->mfOpen = false;
    aRecord->mfIndexed = false;
    aRecord->mCount = 0;
    aRecord->mCountLimit = 0;
}

static bool AddNewEntry(zoPackedData_t* aRecord)
{
    if (!aRecord || !HasRoom(aRecord, sizeof(uint32) + DirectorySize(0, false))) { return false; }
    if (aRecord->mSelection) { DropSelection(aRecord); }
    if (aRecord->mfSerialized) { Unserialize(aRecord); }
    CloseEntry(aRecord);
    ReserveBytes(aRecord, 0);
    OpenEntry(aRecord);
    return true;
}

void zoPackedData_AddNewEntry(zoPackedData_t* aRecord) { AddNewEntry(aRecord); }

// ---- Adding values ----

static void NotePosition(zoPackedData_t* aRecord, uint16 aTag, uint32 aPosition)
{
    const uint32 theRow = aTag / kPageSize;
    if (theRow >= aRecord->mPageTableSize) { GrowPageTable(aRecord, theRow); }
    if (aRecord->mPages[theRow] == kNoPage) { aRecord->mPages[theRow] = AddPage(aRecord); }
    aRecord->mPositions[aRecord->mPages[theRow] * kPageSize + aTag % kPageSize] = static_cast<uint16>(aPosition);
}

// From now on the open entry's tags are found by their positions.
static void IndexTags(zoPackedData_t* aRecord)
{
    aRecord->mfIndexed = true;
    aRecord->mSeen = ~uint64{ 0 };
    for (uint32 i = 0; i < aRecord->mCount; ++i)
        NotePosition(aRecord, aRecord->mTags[i], i);
}

// The last entry takes values again: its directory goes back into the arrays.
static void ReopenEntry(zoPackedData_t* aRecord)
{
    if (aRecord->mfSerialized) { Unserialize(aRecord); }
    const Entry theEntry = EntryAt(aRecord, aRecord->mEntryCount - 1);
    --aRecord->mEntryCount;
    aRecord->mUsed = static_cast<size_t>(theEntry.mValues - aRecord->mBlock);
    OpenEntry(aRecord);
    ReserveRows(aRecord, theEntry.mCount);
    for (uint32 i = 0; i < theEntry.mCount; ++i)
    {
        aRecord->mEnds[i] = static_cast<uint32>(EndAt(theEntry, i));
        aRecord->mTags[i] = TagAt(theEntry, i);
    }
    aRecord->mUsed += theEntry.mValuesSize;
    aRecord->mCount = theEntry.mCount;
    aRecord->mBlock[aRecord->mUsed] = 0;
    IndexTags(aRecord);
}

static bool HasTag(const zoPackedData_t* aRecord, uint16 aTag)
{
    if (!aRecord->mfIndexed) { return aTag < kLowTags && (aRecord->mSeen >> aTag & 1) != 0; }
    return IndexedPosition(aRecord, aTag) != kNoPosition;
}

// Stores a value for which there is room. Most are numbers or short texts.
static inline void AppendValue(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize)
{
    char* theTarget = aRecord->mBlock + aRecord->mUsed;
    aRecord->mUsed += aSize;
    aRecord->mEnds[aRecord->mCount] = static_cast<uint32>(aRecord->mUsed - aRecord->mOpenBegin);
    aRecord->mTags[aRecord->mCount] = aTag;
    ++aRecord->mCount;
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
    if (!aRecord || aRecord->mEntryCount == 0) { return; }
    if (aRecord->mSelection) { DropSelection(aRecord); }
    if (!aRecord->mfOpen) { ReopenEntry(aRecord); }
    const size_t kRowSize = 4 * sizeof(uint16); // at most: end, tag and order
    if (aRecord->mCount == kMaxValuesPerEntry || HasTag(aRecord, aTag) || aSize >= kMaxBlockSize) { return; }
    if (!HasRoom(aRecord, uint64{ aSize } + kRowSize + OrderSize(kSmallCount + 1))) { return; }

    const size_t theOffset = reinterpret_cast<uintptr_t>(aData) - reinterpret_cast<uintptr_t>(aRecord->mBlock);
    const bool fIsOwn = theOffset < aRecord->mUsed; // such bytes move with the block
    ReserveRows(aRecord, aRecord->mCount + 1);
    ReserveBytes(aRecord, aSize);
    if (!aRecord->mfIndexed && (aTag >= kLowTags || aRecord->mCount >= kSmallCount)) { IndexTags(aRecord); }
    if (aRecord->mfIndexed) { NotePosition(aRecord, aTag, aRecord->mCount); }
    else { aRecord->mSeen |= uint64{ 1 } << aTag; }
    AppendValue(aRecord, aTag, fIsOwn ? aRecord->mBlock + theOffset : aData, aSize);
    SetCountLimit(aRecord);
}

void zoPackedData_AddData(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize)
{
    const bool fIsQuick = aRecord && aRecord->mCount < aRecord->mCountLimit && aTag < kLowTags &&
                          (aRecord->mSeen >> aTag & 1) == 0 && aSize < aRecord->mCapacity - aRecord->mUsed;
    if (!fIsQuick)
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
    if (!HasEntry(aSource, anEntry) || !AddNewEntry(aDestination)) { return; }
    const uint32 theCount = EntryAt(aSource, anEntry).mCount;
    for (uint32 i = 0; i < theCount; ++i)
    {
        const zoPackedData_Value theValue = ValueAt(EntryAt(aSource, anEntry), i); // which may have moved
        zoPackedData_AddData(aDestination, theValue.mTag, theValue.mData, theValue.mSize);
    }
}

// ---- Whole blocks ----

namespace
{

// Entries whose values are known all at once, one after the other.
struct WholeEntries
{
    const uint16* mTags;
    const uint32* mEnds;
    const uint16* mCounts;
    uint32 mEntryCount;
    const char* mValues;

    size_t ValuesSize() const { return *mCounts > 0 ? mEnds[*mCounts - 1] : 0; } // of the first one
    bool IsSmall() const { return *mCounts <= kSmallCount && ValuesSize() <= kMaxNarrowSize; }

    void SkipEntry()
    {
        mValues += ValuesSize();
        mTags += *mCounts;
        mEnds += *mCounts;
        ++mCounts;
        --mEntryCount;
    }
};

} // namespace

// The size of the block; 0 when it is too large, or an entry is not small.
static size_t SmallBlockSize(WholeEntries anEntries)
{
    uint64 theSize = sizeof(Header) + uint64{ anEntries.mEntryCount } * sizeof(uint32) + kTrailerSize;
    for (; anEntries.mEntryCount > 0; anEntries.SkipEntry())
    {
        if (!anEntries.IsSmall()) { return 0; }
        theSize += anEntries.ValuesSize() + DirectorySize(*anEntries.mCounts, false);
    }
    return theSize <= kMaxBlockSize ? static_cast<size_t>(theSize) : 0;
}

// Writes a small entry. Returns the position after it.
static char* WriteEntry(const WholeEntries& anEntries, char* aTarget)
{
    const size_t theSize = anEntries.ValuesSize();
    if (theSize > 0) { memcpy(aTarget, anEntries.mValues, theSize); }
    aTarget = WriteRows(anEntries.mEnds, anEntries.mTags, *anEntries.mCounts, aTarget + theSize);
    memcpy(aTarget, anEntries.mCounts, sizeof(uint16));
    return aTarget + sizeof(uint16);
}

static char* NewSmallBlock(WholeEntries anEntries, size_t aSize)
{
    char* theBlock = static_cast<char*>(zoMalloc(aSize));
    WriteHeader(theBlock, aSize, anEntries.mEntryCount);
    char* theTarget = theBlock + sizeof(Header);
    char* theTable = theBlock + aSize - kTrailerSize - size_t{ anEntries.mEntryCount } * sizeof(uint32);
    for (; anEntries.mEntryCount > 0; anEntries.SkipEntry(), theTable += sizeof(uint32))
    {
        theTarget = WriteEntry(anEntries, theTarget);
        const uint32 theEnd = static_cast<uint32>(theTarget - theBlock);
        memcpy(theTable, &theEnd, sizeof(theEnd));
    }
    *theTable = 0;
    return theBlock;
}

[[gnu::cold]] static char* NewLargeBlock(WholeEntries anEntries)
{
    zoPackedData_t* theRecord = zoPackedData_New(anEntries.mEntryCount);
    for (; anEntries.mEntryCount > 0; anEntries.SkipEntry())
    {
        zoPackedData_AddNewEntry(theRecord);
        uint32 theBegin = 0;
        for (uint32 i = 0; i < *anEntries.mCounts; ++i)
        {
            const uint32 theEnd = anEntries.mEnds[i];
            zoPackedData_AddData(theRecord, anEntries.mTags[i], anEntries.mValues + theBegin, theEnd - theBegin);
            theBegin = theEnd;
        }
    }
    char* theBlock = zoPackedData_TakeData(theRecord);
    zoPackedData_Free(theRecord);
    return theBlock;
}

char* zoPackedData_NewBlock(const uint16* aTags, const uint32* anEnds, const uint16* aCounts, uint32 anEntryCount,
                            const char* aValues)
{
    const WholeEntries theEntries = { aTags, anEnds, aCounts, anEntryCount, aValues };
    const size_t theSize = SmallBlockSize(theEntries);
    return theSize > 0 ? NewSmallBlock(theEntries, theSize) : NewLargeBlock(theEntries);
}
