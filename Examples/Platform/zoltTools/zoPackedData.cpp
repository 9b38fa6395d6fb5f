#include <zoltTools/zoPackedData.h>

#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

// Each value that is added is a block of exactly its size: no NUL follows it. A record over a serialized block keeps
// the block, and its values point into it.

namespace
{

const uint32 kMagic = 0x54414C50; // "PLAT"
const size_t kHeaderSize = 3 * sizeof(uint32);
const size_t kValueHeaderSize = sizeof(uint16) + sizeof(uint32);
const uint32 kMaxValues = 0xFFFF;

struct Value
{
    char* mBytes; // NULL when there are none
    uint32 mSize;
    uint16 mTag;
    bool mfOwned;
};

struct Entry
{
    Value* mValues;  // in the order of coming
    uint16* mSorted; // positions in the order of tags, which is mostly the order of coming
    uint32 mCount;
    uint32 mCapacity; // of both
};

} // namespace

struct zoPackedData_t
{
    Entry* mEntries;
    uint32 mCount;
    uint32 mCapacity;
    char* mBlock; // what values point into; NULL when all are owned
};

// ---- Entries ----

static Entry* EntryAt(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return aRecord && anEntry < aRecord->mCount ? &aRecord->mEntries[anEntry] : nullptr;
}

// The first place in the order of tags whose tag is not below aTag.
static uint32 PlaceOfTag(const Entry* anEntry, uint16 aTag)
{
    uint32 theBegin = 0;
    for (uint32 theEnd = anEntry->mCount; theBegin < theEnd;)
    {
        const uint32 theMiddle = theBegin + (theEnd - theBegin) / 2;
        if (anEntry->mValues[anEntry->mSorted[theMiddle]].mTag < aTag) { theBegin = theMiddle + 1; }
        else { theEnd = theMiddle; }
    }
    return theBegin;
}

static const Value* FindValue(const Entry* anEntry, uint16 aTag)
{
    if (!anEntry) { return nullptr; }
    const uint32 thePlace = PlaceOfTag(anEntry, aTag);
    if (thePlace == anEntry->mCount) { return nullptr; }
    const Value* theValue = &anEntry->mValues[anEntry->mSorted[thePlace]];
    return theValue->mTag == aTag ? theValue : nullptr;
}

// Returns false when the tag is there already, or there is no room for more.
static bool AddValue(Entry* anEntry, const Value& aValue)
{
    if (anEntry->mCount == kMaxValues || FindValue(anEntry, aValue.mTag)) { return false; }
    if (anEntry->mCount == anEntry->mCapacity)
    {
        anEntry->mCapacity = anEntry->mCapacity * 2 + 4;
        anEntry->mValues = static_cast<Value*>(zoRealloc(anEntry->mValues, anEntry->mCapacity * sizeof(Value)));
        anEntry->mSorted = static_cast<uint16*>(zoRealloc(anEntry->mSorted, anEntry->mCapacity * sizeof(uint16)));
    }
    uint16* thePlace = anEntry->mSorted + PlaceOfTag(anEntry, aValue.mTag);
    memmove(thePlace + 1, thePlace,
            static_cast<size_t>(anEntry->mSorted + anEntry->mCount - thePlace) * sizeof(uint16));
    *thePlace = static_cast<uint16>(anEntry->mCount);
    anEntry->mValues[anEntry->mCount++] = aValue;
    return true;
}

static void Clear(zoPackedData_t* aRecord)
{
    for (uint32 i = 0; i < aRecord->mCount; ++i)
    {
        const Entry& theEntry = aRecord->mEntries[i];
        for (uint32 k = 0; k < theEntry.mCount; ++k)
        {
            if (theEntry.mValues[k].mfOwned) { free(theEntry.mValues[k].mBytes); }
        }
        free(theEntry.mValues);
        free(theEntry.mSorted);
    }
    free(aRecord->mEntries);
    free(aRecord->mBlock);
    *aRecord = {};
}

// ---- Making records ----

zoPackedData_t* zoPackedData_New(uint32 /*aCount*/)
{
    return static_cast<zoPackedData_t*>(zoMallocZeroed(sizeof(zoPackedData_t)));
}

void zoPackedData_AddNewEntry(zoPackedData_t* aRecord)
{
    if (!aRecord) { return; }
    if (aRecord->mCount == aRecord->mCapacity)
    {
        aRecord->mCapacity = aRecord->mCapacity * 2 + 1;
        aRecord->mEntries = static_cast<Entry*>(zoRealloc(aRecord->mEntries, aRecord->mCapacity * sizeof(Entry)));
    }
    aRecord->mEntries[aRecord->mCount++] = {};
}

void zoPackedData_AddData(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize)
{
    if (!aRecord || aRecord->mCount == 0 || aSize > UINT32_MAX) { return; }
    Value theValue = { nullptr, static_cast<uint32>(aSize), aTag, true };
    if (aSize > 0) { theValue.mBytes = static_cast<char*>(memcpy(zoMalloc(aSize), aData, aSize)); }
    if (!AddValue(&aRecord->mEntries[aRecord->mCount - 1], theValue)) { free(theValue.mBytes); }
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
    if (!EntryAt(aSource, anEntry)) { return; }
    zoPackedData_AddNewEntry(aDestination); // the entries move when both are one record
    const Entry theEntry = *EntryAt(aSource, anEntry);
    for (uint32 i = 0; i < theEntry.mCount; ++i)
        zoPackedData_AddData(aDestination, theEntry.mValues[i].mTag, theEntry.mValues[i].mBytes,
                             theEntry.mValues[i].mSize);
}

zoPackedData_t* zoPackedData_Duplicate(const zoPackedData_t* aRecord)
{
    zoPackedData_t* theCopy = zoPackedData_New(0);
    for (uint32 i = 0; i < zoPackedData_GetEntryCount(aRecord); ++i)
        zoPackedData_CopyEntry(aRecord, i, theCopy);
    return theCopy;
}

void zoPackedData_Free(zoPackedData_t* aRecord)
{
    if (aRecord) { Clear(aRecord); }
    free(aRecord);
}

// ---- Reading ----

const char* zoPackedData_GetData(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, size_t* aSize)
{
    const Value* theValue = FindValue(EntryAt(aRecord, anEntry), aTag);
    if (aSize) { *aSize = theValue ? theValue->mSize : 0; }
    return theValue ? theValue->mBytes : nullptr;
}

uint64 zoPackedData_GetDataAsUInt64(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    uint16 theShort = 0;
    uint32 theWord = 0;
    uint64 theNumber = 0;
    size_t theSize;
    const char* theBytes = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    if (theSize == sizeof(theShort)) { theNumber = *static_cast<uint16*>(memcpy(&theShort, theBytes, theSize)); }
    if (theSize == sizeof(theWord)) { theNumber = *static_cast<uint32*>(memcpy(&theWord, theBytes, theSize)); }
    if (theSize == sizeof(theNumber)) { memcpy(&theNumber, theBytes, theSize); }
    return theNumber;
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

uint32 zoPackedData_GetEntryCount(const zoPackedData_t* aRecord) { return aRecord ? aRecord->mCount : 0; }

uint16 zoPackedData_GetTagCount(const zoPackedData_t* aRecord, uint32 anEntry)
{
    const Entry* theEntry = EntryAt(aRecord, anEntry);
    return theEntry ? static_cast<uint16>(theEntry->mCount) : uint16{ 0 };
}

uint16 zoPackedData_GetTagAt(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aPosition)
{
    const Entry* theEntry = EntryAt(aRecord, anEntry);
    return theEntry && aPosition < theEntry->mCount ? theEntry->mValues[aPosition].mTag : uint16{ 0 };
}

// ---- Blocks ----

uint32 zoPackedData_GetMemoryUsage(const zoPackedData_t* aRecord)
{
    size_t theSize = kHeaderSize;
    for (uint32 i = 0; i < zoPackedData_GetEntryCount(aRecord); ++i)
    {
        const Entry& theEntry = aRecord->mEntries[i];
        theSize += sizeof(uint32) + theEntry.mCount * kValueHeaderSize;
        for (uint32 k = 0; k < theEntry.mCount; ++k)
            theSize += theEntry.mValues[k].mSize;
    }
    return static_cast<uint32>(theSize);
}

template <typename Number>
static char* Write(char* anEnd, Number aNumber)
{
    return static_cast<char*>(memcpy(anEnd, &aNumber, sizeof(aNumber))) + sizeof(aNumber);
}

static char* WriteEntry(char* anEnd, const Entry& anEntry)
{
    anEnd = Write(anEnd, anEntry.mCount);
    for (uint32 i = 0; i < anEntry.mCount; ++i)
    {
        const Value& theValue = anEntry.mValues[i];
        anEnd = Write(Write(anEnd, theValue.mTag), theValue.mSize);
        if (theValue.mSize > 0) { memcpy(anEnd, theValue.mBytes, theValue.mSize); }
        anEnd += theValue.mSize;
    }
    return anEnd;
}

// One that no damage of a single byte keeps.
static uint32 MagicOf(uint32 aSize, uint32 aCount) { return kMagic ^ (aSize * 3 + aCount * 5); }

char* zoPackedData_TakeData(zoPackedData_t* aRecord)
{
    if (!aRecord) { return nullptr; }
    const uint32 theSize = zoPackedData_GetMemoryUsage(aRecord);
    char* theBlock = static_cast<char*>(zoMalloc(theSize));
    char* theEnd = Write(Write(Write(theBlock, MagicOf(theSize, aRecord->mCount)), theSize), aRecord->mCount);
    for (uint32 i = 0; i < aRecord->mCount; ++i)
        theEnd = WriteEntry(theEnd, aRecord->mEntries[i]);
    Clear(aRecord);
    return theBlock;
}

namespace
{

// A position in a block, and its end.
struct Reader
{
    char* mPosition;
    char* mEnd;

    size_t GetLeft() const { return static_cast<size_t>(mEnd - mPosition); }

    template <typename Number>
    bool Read(Number* aNumber)
    {
        if (GetLeft() < sizeof(*aNumber)) { return false; }
        memcpy(aNumber, mPosition, sizeof(*aNumber));
        mPosition += sizeof(*aNumber);
        return true;
    }
};

} // namespace

static bool ReadEntry(Reader* aReader, Entry* anEntry)
{
    uint32 theCount = 0;
    if (!aReader->Read(&theCount)) { return false; }
    for (; theCount > 0; --theCount)
    {
        Value theValue = {};
        if (!aReader->Read(&theValue.mTag) || !aReader->Read(&theValue.mSize)) { return false; }
        if (theValue.mSize > aReader->GetLeft()) { return false; }
        theValue.mBytes = theValue.mSize > 0 ? aReader->mPosition : nullptr;
        if (!AddValue(anEntry, theValue)) { return false; }
        aReader->mPosition += theValue.mSize;
    }
    return true;
}

// Makes the entries of the record's block; false when they don't fill it exactly.
static bool ReadBlock(zoPackedData_t* aRecord)
{
    Reader theReader = { aRecord->mBlock, aRecord->mBlock + kHeaderSize };
    uint32 theMagic = 0;
    uint32 theSize = 0;
    uint32 theCount = 0;
    theReader.Read(&theMagic);
    theReader.Read(&theSize);
    theReader.Read(&theCount);
    if (theMagic != MagicOf(theSize, theCount) || theSize < kHeaderSize) { return false; }
    theReader.mEnd = aRecord->mBlock + theSize;
    for (; theCount > 0; --theCount)
    {
        zoPackedData_AddNewEntry(aRecord);
        if (!ReadEntry(&theReader, &aRecord->mEntries[aRecord->mCount - 1])) { return false; }
    }
    return theReader.GetLeft() == 0;
}

zoPackedData_t* zoPackedData_NewData(char* aBlock)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    theRecord->mBlock = aBlock;
    if (aBlock && !ReadBlock(theRecord)) { Clear(theRecord); }
    return theRecord;
}

zoPackedData_t* zoPackedData_NewDataSized(char* aBlock, size_t aSize)
{
    uint32 theSize = 0;
    if (aBlock && aSize >= kHeaderSize) { memcpy(&theSize, aBlock + sizeof(uint32), sizeof(theSize)); }
    if (theSize == aSize && theSize > 0) { return zoPackedData_NewData(aBlock); }
    free(aBlock);
    return zoPackedData_New(0);
}
