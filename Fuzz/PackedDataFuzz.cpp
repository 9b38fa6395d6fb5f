#include "FuzzSupport.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>
#include <zoltTools/Private/zoPackedData.h>
#include <zoltTools/zoPackedData.h>

// The bytes are taken twice: as a serialized block, and as values to add to a record, whose block is then damaged.

namespace
{

const size_t kHeaderSize = 12;
const size_t kTrailerSize = 1;

// The values of each entry, a tag with its bytes, in their order.
typedef std::vector<std::vector<std::pair<uint16, std::string>>> Entries;

Entries Read(const zoPackedData_t* aRecord)
{
    Entries theEntries(zoPackedData_GetEntryCount(aRecord));
    for (uint32 i = 0; i < theEntries.size(); ++i)
    {
        for (uint16 k = 0; k < zoPackedData_GetTagCount(aRecord, i); ++k)
        {
            size_t theSize = 1;
            const uint16 theTag = zoPackedData_GetTagAt(aRecord, i, k);
            const char* theBytes = zoPackedData_GetData(aRecord, i, theTag, &theSize);
            Require((theSize > 0) == (theBytes != nullptr), "a value has bytes, or no size");
            theEntries[i].emplace_back(theTag, std::string(theBytes ? theBytes : "", theSize));
        }
    }
    return theEntries;
}

// Reads the values as numbers and as lists of texts, too.
void CheckReaders(const zoPackedData_t* aRecord, const Entries& anEntries)
{
    for (uint32 i = 0; i < anEntries.size(); ++i)
    {
        for (const auto& [theTag, theValue] : anEntries[i])
        {
            const size_t theSize = theValue.size();
            const bool fIsNumber = theSize == 2 || theSize == 4 || theSize == 8;
            Require(fIsNumber || zoPackedData_GetDataAsUInt64(aRecord, i, theTag) == 0, "a number has 2, 4 or 8 bytes");
            zoArray_t* theTexts = zoPackedData_GetDataArray(aRecord, i, theTag, zoStringArray_UnFlattenerFunc);
            zoArray_SetFreeFunc(theTexts, zoStringArray_FreeFunc);
            const size_t theEnds = static_cast<size_t>(std::count(theValue.begin(), theValue.end(), '\0'));
            const bool fIsLastOpen = theSize > 0 && theValue.back() != '\0';
            Require(zoArray_GetCount(theTexts) == theEnds + fIsLastOpen, "each text ends with its NUL, or the bytes");
            zoArray_Delete(theTexts);
        }
    }
}

bool HasValue(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, const std::string& aValue)
{
    size_t theSize = 1;
    const char* theBytes = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return theSize == aValue.size() && (theSize == 0 || memcmp(theBytes, aValue.data(), theSize) == 0);
}

bool Holds(const zoPackedData_t* aRecord, const Entries& anEntries)
{
    if (zoPackedData_GetEntryCount(aRecord) != anEntries.size()) { return false; }
    for (uint32 i = 0; i < anEntries.size(); ++i)
    {
        if (zoPackedData_GetTagCount(aRecord, i) != anEntries[i].size()) { return false; }
        for (uint16 k = 0; k < anEntries[i].size(); ++k)
        {
            const auto& [theTag, theValue] = anEntries[i][k];
            if (zoPackedData_GetTagAt(aRecord, i, k) != theTag) { return false; }
            if (!HasValue(aRecord, i, theTag, theValue)) { return false; }
        }
    }
    return true;
}

size_t BlockSize(const Entries& anEntries)
{
    size_t theSize = kHeaderSize + kTrailerSize;
    for (const auto& theEntry : anEntries)
    {
        theSize += 4 + 2 + theEntry.size() * (theEntry.size() > 48 ? 6 : 4); // values of an entry are small here
        for (const auto& theValue : theEntry)
            theSize += theValue.second.size();
    }
    return theSize;
}

void Add(zoPackedData_t* aRecord, Entries& anEntries, uint16 aTag, const std::string& aValue)
{
    zoPackedData_AddData(aRecord, aTag, aValue.data(), aValue.size());
    if (anEntries.empty()) { return; }
    auto& theEntry = anEntries.back();
    const bool fIsThere =
        std::any_of(theEntry.begin(), theEntry.end(), [=](const auto& aKnown) { return aKnown.first == aTag; });
    if (!fIsThere) { theEntry.emplace_back(aTag, aValue); }
}

void AddEntry(zoPackedData_t* aRecord, Entries& anEntries)
{
    zoPackedData_AddNewEntry(aRecord);
    anEntries.emplace_back();
}

// Takes the record over. @return the block of a copy of what its own block reads as.
char* TakeCopiedBlock(zoPackedData_t* aRecord, const Entries& anEntries)
{
    Require(Holds(aRecord, anEntries), "what was added is there");
    const size_t theSize = BlockSize(anEntries);
    Require(zoPackedData_GetMemoryUsage(aRecord) == theSize, "sizes add up");
    char* theOwnBlock = zoPackedData_TakeData(aRecord);
    const std::string theBytes(theOwnBlock, theSize);
    zoPackedData_t* theAgain = zoPackedData_NewData(theOwnBlock);
    Require(zoPackedData_GetEntryCount(aRecord) == 0, "a record whose block was taken is empty");
    zoPackedData_Free(aRecord);
    Require(Holds(theAgain, anEntries), "a block gives back what was added");
    zoPackedData_t* theCopy = zoPackedData_Duplicate(theAgain);
    zoPackedData_Free(theAgain);
    char* theBlock = zoPackedData_TakeData(theCopy);
    zoPackedData_Free(theCopy);
    Require(memcmp(theBlock, theBytes.data(), theSize) == 0, "a copy has the same block");
    return theBlock;
}

// Adds to a record over a copy of the block whatever the block has, and a value in its last entry.
void CheckHeap(const char* aBlock, size_t aSize)
{
    const HeapPeak thePeak;
    char* theBlock = static_cast<char*>(memcpy(malloc(aSize), aBlock, aSize));
    zoPackedData_t* theRecord = zoPackedData_NewDataSized(theBlock, aSize);
    const uint32 theCount = zoPackedData_GetEntryCount(theRecord);
    for (uint32 i = 0; i < theCount; ++i)
        zoPackedData_CopyEntry(theRecord, i, theRecord);
    zoPackedData_AddData(theRecord, 0xFFFF, "", 1);
    free(zoPackedData_TakeData(theRecord));
    zoPackedData_Free(theRecord);
    RequireHeap(thePeak.Bytes(), aSize, 64);
}

// Reads a block of aSize bytes, which it takes over, and adds to it.
void CheckBlock(char* aBlock, size_t aSize)
{
    CheckHeap(aBlock, aSize);
    zoPackedData_t* theRecord = zoPackedData_NewDataSized(aBlock, aSize);
    Entries theEntries = Read(theRecord);
    CheckReaders(theRecord, theEntries);
    Require(theEntries.empty() || BlockSize(theEntries) == aSize, "the values of a block fill it");
    Add(theRecord, theEntries, 0x0101, "value");
    AddEntry(theRecord, theEntries);
    Add(theRecord, theEntries, 0x0101, "");
    free(TakeCopiedBlock(theRecord, theEntries));
}

// Adds values, each a tag of two bytes and a size of one before its bytes; 0xFF as size begins an entry.
char* NewBlockOf(const uint8_t* aBytes, size_t aSize, size_t* aBlockSize)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    Entries theEntries;
    for (size_t i = 0; i + 3 <= aSize;)
    {
        const uint16 theTag = static_cast<uint16>(aBytes[i] << 8 | aBytes[i + 1]);
        const size_t theValueSize = std::min<size_t>(aBytes[i + 2], aSize - i - 3);
        if (aBytes[i + 2] == 0xFF) { AddEntry(theRecord, theEntries); }
        else { Add(theRecord, theEntries, theTag, std::string(aBytes + i + 3, aBytes + i + 3 + theValueSize)); }
        i += aBytes[i + 2] == 0xFF ? 3 : 3 + theValueSize;
    }
    *aBlockSize = BlockSize(theEntries);
    char* theBlock = TakeCopiedBlock(theRecord, theEntries);
    return static_cast<char*>(realloc(theBlock, *aBlockSize)); // so that a byte too far is seen
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    if (aSize < kHeaderSize || aSize > 1024) { return 0; }
    PackedData::Header theHeader;
    memcpy(&theHeader, aBytes, sizeof(theHeader));
    theHeader.mSize = static_cast<uint32>(aSize);
    theHeader.mEntryCount %= 64;
    theHeader.mMagic = PackedData::MagicOf(aSize, theHeader.mEntryCount);
    char* theBlock = static_cast<char*>(malloc(aSize));
    memcpy(theBlock, aBytes, aSize);
    memcpy(theBlock, &theHeader, sizeof(theHeader));
    CheckBlock(theBlock, aSize);

    size_t theSize = 0;
    char* theDamaged = NewBlockOf(aBytes + 3, aSize - 3, &theSize);
    const size_t thePosition = static_cast<size_t>(aBytes[0] << 8 | aBytes[1]) % theSize;
    theDamaged[thePosition] ^= static_cast<char>(aBytes[2]);
    CheckBlock(theDamaged, theSize);
    return 0;
}
