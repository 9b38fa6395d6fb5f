#include <zoltTools/zoPackedData.h>

#include <zoltTools/Private/zoPackedData.h>

// The serialized block: giving it out, checking it, taking it over.

using namespace PackedData;

uint32 zoPackedData_GetMemoryUsage(const zoPackedData_t* aRecord)
{
    return aRecord ? static_cast<uint32>(BlockSize(aRecord)) : 0;
}

// The block at its final size, owned.
static char* TakeBlock(zoPackedData_t* aRecord, size_t aSize)
{
    if (!aRecord->mBlock) { return Shared::NewArray<char>(aSize); }
    return Moved(aRecord, aRecord->mBlock, aRecord->mUsed, aSize);
}

char* zoPackedData_TakeData(zoPackedData_t* aRecord)
{
    if (!aRecord) { return nullptr; }
    CloseEntry(aRecord);
    char* theBlock = aRecord->mBlock;
    if (!aRecord->mfSerialized)
    {
        const size_t theSize = static_cast<size_t>(BlockSize(aRecord));
        const size_t theTableSize = size_t{ aRecord->mEntryCount } * sizeof(uint32);
        theBlock = TakeBlock(aRecord, theSize);
        WriteHeader(theBlock, theSize, aRecord->mEntryCount);
        if (theTableSize > 0) { memcpy(theBlock + aRecord->mUsed, aRecord->mEntryEnds, theTableSize); }
        theBlock[theSize - kTrailerSize] = 0;
    }
    FreeArrays(aRecord);
    Clear(aRecord);
    return theBlock;
}

// Whether no tag comes twice in a small entry.
static bool AreUnique(const Entry& anEntry)
{
    uint64 theSeen = 0; // low tags, nearly all
    for (uint32 i = 0; i < anEntry.mCount; ++i)
    {
        const uint16 theTag = TagAt(anEntry, i);
        const uint64 theBit = theTag < kLowTags ? uint64{ 1 } << theTag : 0;
        if (theSeen & theBit) { return false; }
        theSeen |= theBit;
        if (theBit == 0 && ScanTags(anEntry, theTag) < i) { return false; }
    }
    return true;
}

// Whether a large entry's order has each position once, by growing tags.
static bool AreInOrder(const Entry& anEntry)
{
    int32 theLast = -1;
    for (uint32 i = 0; i < anEntry.mCount; ++i)
    {
        const uint32 thePosition = Load<uint16>(anEntry.mOrder + size_t{ i } * sizeof(uint16));
        if (thePosition >= anEntry.mCount || TagAt(anEntry, thePosition) <= theLast) { return false; }
        theLast = TagAt(anEntry, thePosition);
    }
    return true;
}

template <typename End>
static bool AreEndsValid(const Entry& anEntry)
{
    size_t theLast = 0;
    for (uint32 i = 0; i < anEntry.mCount; ++i)
    {
        const size_t theEnd = Load<End>(anEntry.mEnds + size_t{ i } * sizeof(End));
        if (theEnd < theLast) { return false; }
        theLast = theEnd;
    }
    return theLast == anEntry.mValuesSize;
}

// Whether the bytes from aBegin to anEnd are an entry.
static bool IsEntryValid(const char* aBlock, size_t aBegin, size_t anEnd)
{
    if (anEnd < aBegin || anEnd - aBegin < sizeof(uint16)) { return false; }
    const size_t theSize = anEnd - aBegin;
    const uint32 theCount = Load<uint16>(aBlock + anEnd - sizeof(uint16));
    if (theSize < DirectorySize(theCount, false)) { return false; }
    const bool fIsWide = theSize - DirectorySize(theCount, false) > kMaxNarrowSize;
    if (fIsWide && theSize - DirectorySize(theCount, false) <= kMaxNarrowSize + theCount * sizeof(uint16))
    {
        return false; // too large for narrow ends, and not for wide ones
    }
    const Entry theEntry = ClosedEntry(aBlock + aBegin, theSize, theCount);
    return (fIsWide ? AreEndsValid<uint32>(theEntry) : AreEndsValid<uint16>(theEntry)) &&
           (theCount <= kSmallCount ? AreUnique(theEntry) : AreInOrder(theEntry));
}

// Takes the block over when its header vouches for it and its sizes add up to the total; else false.
static bool AdoptBlock(zoPackedData_t* aRecord, char* aBlock)
{
    const Header theHeader = Load<Header>(aBlock);
    if (theHeader.mMagic != MagicOf(theHeader.mSize, theHeader.mEntryCount)) { return false; }
    const size_t kLeastSize = sizeof(Header) + kTrailerSize;
    if (theHeader.mSize < kLeastSize) { return false; }
    if (theHeader.mEntryCount > (theHeader.mSize - kLeastSize) / sizeof(uint32)) { return false; }

    const size_t theTable = theHeader.mSize - kTrailerSize - size_t{ theHeader.mEntryCount } * sizeof(uint32);
    size_t theEnd = sizeof(Header);
    for (uint32 i = 0; i < theHeader.mEntryCount; ++i)
    {
        const size_t theBegin = theEnd;
        theEnd = Load<uint32>(aBlock + theTable + size_t{ i } * sizeof(uint32));
        if (theEnd > theTable || !IsEntryValid(aBlock, theBegin, theEnd)) { return false; }
    }
    if (theEnd != theTable || aBlock[theHeader.mSize - kTrailerSize] != 0) { return false; }
    aRecord->mBlock = aBlock;
    aRecord->mUsed = theTable;
    aRecord->mCapacity = theHeader.mSize;
    aRecord->mfSerialized = true;
    aRecord->mEntryCount = theHeader.mEntryCount;
    return true;
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

zoPackedData_t* zoPackedData_NewDataSized(char* aBlock, size_t aSize)
{
    if (aBlock && aSize >= sizeof(Header) && Load<Header>(aBlock).mSize == aSize)
    {
        return zoPackedData_NewData(aBlock);
    }
    free(aBlock);
    return zoPackedData_New(0);
}

zoPackedData_t* zoPackedData_Duplicate(const zoPackedData_t* aRecord)
{
    if (aRecord && aRecord->mfSerialized)
    {
        return zoPackedData_NewData(
            static_cast<char*>(memcpy(zoMalloc(aRecord->mCapacity), aRecord->mBlock, aRecord->mCapacity)));
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
