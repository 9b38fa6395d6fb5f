#pragma once

/* The record behind zoPackedData.h, its entries, and what adding and serializing share.
 *
 * The block is laid out as the header says. While entries are added, mBlock holds the header, the closed entries in
 * their final form and the values of the open entry; the open entry's ends and tags and the table of entries are in
 * arrays. Closing an entry appends its directory to the block, serializing appends the table. */

#include <Shared/Integers.h>
#include <Shared/Sizes.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoPackedData.h>

namespace PackedData
{

struct Header
{
    uint32 mMagic;
    uint32 mSize;
    uint32 mEntryCount;
};

const uint32 kMagic = 0x7A6F5032; // "zoP2"
const size_t kTrailerSize = 1;
const size_t kMaxBlockSize = 0xFFFFFFFF;
const uint32 kMaxValuesPerEntry = 0xFFFF;
const size_t kMaxNarrowSize = 0xFFFF; // of an entry's values whose ends take two bytes
const uint16 kNoPosition = 0xFFFF;    // a position is below kMaxValuesPerEntry
const uint32 kPageSize = 16;          // tags whose positions are kept together
const uint32 kPageCount = 0x10000 / kPageSize;
const uint16 kNoPage = 0xFFFF;
const uint32 kFirstPages = 8;
const size_t kFirstBytes = 512; // at least; with these a record fits a fast malloc class
const uint32 kSmallCount = 48;  // up to this many tags are scanned about as fast as searched in order
const uint16 kLowTags = 64;     // tags below have a bit in mSeen
const uint32 kFirstEntries = 4;
const uint32 kFirstRows = 16; // of a record without room

static_assert(sizeof(Header) == 12, "the block's layout has no gaps");

// A magic number that depends on what follows it in the header: odd factors, so that no change of one byte keeps it.
inline uint32 MagicOf(size_t aSize, uint32 anEntryCount)
{
    return kMagic + static_cast<uint32>(aSize) * 0x9E3779B1u + anEntryCount * 0x85EBCA6Bu;
}

inline void WriteHeader(char* aBlock, size_t aSize, uint32 anEntryCount)
{
    Shared::StoreAs<uint32>(aBlock + offsetof(Header, mMagic), MagicOf(aSize, anEntryCount));
    Shared::StoreAs<uint32>(aBlock + offsetof(Header, mSize), aSize);
    Shared::StoreAs<uint32>(aBlock + offsetof(Header, mEntryCount), anEntryCount);
}

// What a new record begins with, in one piece with it, so that a small one needs no other memory.
struct Room
{
    uint32 mEnds[kSmallCount];
    uint32 mEntryEnds[kFirstEntries];
    uint16 mTags[kSmallCount];
    char mBytes[kFirstBytes];
};

struct Selection;

// An entry, wherever it is. Nothing in a block is aligned.
struct Entry
{
    const char* mValues;
    size_t mValuesSize;
    const char* mEnds; // of 4 bytes each when mfWide, else of 2
    const char* mTags;
    const char* mOrder; // in an entry of more than kSmallCount values in a block
    uint32 mCount;
    bool mfWide;
};

} // namespace PackedData

struct zoPackedData_t
{
    PackedData::Room* mRoom; // follows the record; NULL in a record over a serialized block
    char* mBlock;            // the room's bytes, or owned; NULL when the record is empty and has no room
    size_t mUsed; // bytes of header, closed entries and the open entry's values; unless mfSerialized, a 0 follows
    size_t mCapacity;
    bool mfSerialized;  // the table of entries follows in the block
    uint32 mEntryCount; // the open entry included
    uint32 mEntryCapacity;
    uint32* mEntryEnds; // unless mfSerialized the table, without the open entry: the room's or owned; or NULL

    // The open entry, the last one while mfOpen. Of a small one with low tags, mSeen has the tags' bits. Once it has
    // more values or other tags, mfIndexed, mSeen has all bits, and the positions of tags are in pages.
    bool mfOpen;
    bool mfIndexed;
    size_t mOpenBegin;  // offset of its first value in the block
    uint32 mCount;      // of its values
    uint32 mCountLimit; // up to this count it takes low tags without further checks; 0 while there is no open entry
    uint64 mSeen;
    uint32 mRowCapacity; // of mEnds and mTags
    uint32* mEnds;       // offsets past each value, from mOpenBegin; the room's or owned, or NULL; as mTags
    uint16* mTags;

    // A page has the positions of kPageSize tags that follow each other, kNoPosition for one that is absent. There is
    // one only where there are tags, so that a few tags far apart take little memory.
    uint32 mPageTableSize;
    uint16* mPages; // the page of tag / kPageSize, or kNoPage; owned, as mPositions; NULL while no entry was indexed
    uint32 mPageCapacity;
    uint32 mPageCount;
    uint16* mPositions; // of all pages, one after the other

    PackedData::Selection* mSelection; // owned; of zoPackedData_FindEntryWithText: NULL until it is asked, and when
                                       // something is added
};

namespace PackedData
{

// ---- Reading ----

using Shared::Load;

inline size_t EntryEnd(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return aRecord->mfSerialized ? Load<uint32>(aRecord->mBlock + aRecord->mUsed + size_t{ anEntry } * sizeof(uint32))
                                 : aRecord->mEntryEnds[anEntry];
}

// The sizes of a closed entry's directory.
inline size_t EndSize(bool afWide) { return afWide ? sizeof(uint32) : sizeof(uint16); }
inline size_t OrderSize(uint32 aCount) { return aCount > kSmallCount ? size_t{ aCount } * sizeof(uint16) : 0; }
inline size_t DirectorySize(uint32 aCount, bool afWide)
{
    return size_t{ aCount } * (EndSize(afWide) + sizeof(uint16)) + OrderSize(aCount) + sizeof(uint16);
}

// The entry of aSize bytes at aBegin, which has room for a directory with narrow ends. Its size tells whether the ends
// are wide: taken for narrow ones, they leave even more bytes to values that are larger than kMaxNarrowSize as it is.
inline Entry ClosedEntry(const char* aBegin, size_t aSize, uint32 aCount)
{
    Entry theEntry;
    theEntry.mValues = aBegin;
    theEntry.mCount = aCount;
    theEntry.mValuesSize = aSize - DirectorySize(aCount, false);
    theEntry.mfWide = theEntry.mValuesSize > kMaxNarrowSize;
    if (theEntry.mfWide) { theEntry.mValuesSize = aSize - DirectorySize(aCount, true); }
    theEntry.mEnds = aBegin + theEntry.mValuesSize;
    theEntry.mTags = theEntry.mEnds + size_t{ aCount } * EndSize(theEntry.mfWide);
    theEntry.mOrder = theEntry.mTags + size_t{ aCount } * sizeof(uint16);
    return theEntry;
}

inline bool IsOpen(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return aRecord->mfOpen && anEntry + 1 == aRecord->mEntryCount;
}

// A call of its own would be 2 % of a choice.
[[gnu::always_inline]] inline Entry EntryAt(const zoPackedData_t* aRecord, uint32 anEntry)
{
    if (IsOpen(aRecord, anEntry))
    {
        return { aRecord->mBlock + aRecord->mOpenBegin,
                 aRecord->mUsed - aRecord->mOpenBegin,
                 reinterpret_cast<const char*>(aRecord->mEnds),
                 reinterpret_cast<const char*>(aRecord->mTags),
                 nullptr,
                 aRecord->mCount,
                 true };
    }
    const size_t theBegin = anEntry > 0 ? EntryEnd(aRecord, anEntry - 1) : sizeof(Header);
    const size_t theEnd = EntryEnd(aRecord, anEntry);
    return ClosedEntry(aRecord->mBlock + theBegin, theEnd - theBegin,
                       Load<uint16>(aRecord->mBlock + theEnd - sizeof(uint16)));
}

inline size_t EndAt(const Entry& anEntry, uint32 aPosition)
{
    return anEntry.mfWide ? Load<uint32>(anEntry.mEnds + size_t{ aPosition } * sizeof(uint32))
                          : Load<uint16>(anEntry.mEnds + size_t{ aPosition } * sizeof(uint16));
}

inline uint16 TagAt(const Entry& anEntry, uint32 aPosition)
{
    return Load<uint16>(anEntry.mTags + size_t{ aPosition } * sizeof(uint16));
}

inline zoPackedData_Value ValueAt(const Entry& anEntry, uint32 aPosition)
{
    const size_t theBegin = aPosition > 0 ? EndAt(anEntry, aPosition - 1) : 0;
    const size_t theSize = EndAt(anEntry, aPosition) - theBegin;
    return { theSize > 0 ? anEntry.mValues + theBegin : nullptr, theSize, TagAt(anEntry, aPosition) };
}

inline bool HasEntry(const zoPackedData_t* aRecord, uint32 anEntry)
{
    return aRecord && anEntry < aRecord->mEntryCount;
}

// The position of the tag; the entry's count when there is none.
inline uint32 ScanTags(const Entry& anEntry, uint16 aTag)
{
    uint32 thePosition = 0;
    while (thePosition < anEntry.mCount && TagAt(anEntry, thePosition) != aTag)
        ++thePosition;
    return thePosition;
}

// The position of a tag of the open entry, which is indexed; kNoPosition when there is none.
inline uint16 IndexedPosition(const zoPackedData_t* aRecord, uint16 aTag)
{
    const uint32 theRow = aTag / kPageSize;
    if (theRow >= aRecord->mPageTableSize || aRecord->mPages[theRow] == kNoPage) { return kNoPosition; }
    return aRecord->mPositions[aRecord->mPages[theRow] * kPageSize + aTag % kPageSize];
}

// ---- Memory ----

template <typename Element>
bool IsInRoom(const zoPackedData_t* aRecord, const Element* anArray)
{
    const uintptr_t theRoom = reinterpret_cast<uintptr_t>(aRecord->mRoom);
    return theRoom && reinterpret_cast<uintptr_t>(anArray) - theRoom < sizeof(Room);
}

/* The array, aUsed elements of it, moved to where there is place for aCapacity elements. */
template <typename Element>
Element* Moved(const zoPackedData_t* aRecord, Element* anArray, size_t aUsed, size_t aCapacity)
{
    if (!IsInRoom(aRecord, anArray)) { return Shared::ResizeArray(anArray, aCapacity); }
    return static_cast<Element*>(memcpy(Shared::NewArray<Element>(aCapacity), anArray, aUsed * sizeof(Element)));
}

/* Releases an array unless it is in the record's room. */
template <typename Element>
void FreeArray(const zoPackedData_t* aRecord, Element* anArray)
{
    if (!IsInRoom(aRecord, anArray)) { free(anArray); }
}

/* Releases the record's arrays, but not its block. */
void FreeArrays(const zoPackedData_t* aRecord);

/* Leaves a record without entries; what it held is the caller's business. */
void Clear(zoPackedData_t* aRecord);

/* The size of the serialized block. It is computed with 64 bits: before a value is added it may pass what a block can
 * hold. */
uint64 BlockSize(const zoPackedData_t* aRecord);

/* Writes the open entry's directory into the block, if there is one. */
void CloseEntry(zoPackedData_t* aRecord);

} // namespace PackedData
