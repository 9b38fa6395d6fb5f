#pragma once

/* The record of zoDLNAProtocolInfoList.h. */

#include <atomic>
#include <zoltTools/Private/zoDLNAProtocolInfo.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>

namespace ProtocolInfo
{

struct MatchIndex;

struct Slot
{
    zoDLNAProtocolInfo_t* mInfo; // owned
    uint32 mRank; // while there is a cursor: the first item of the order that covers the element; else meaningless
};

// How far draining is: no element before mPosition has rank mRank, and none at all has a smaller one.
struct Cursor
{
    char* mOrder; // NULL while there is no cursor
    char* mSupported;
    uint32* mRemaining; // for each rank the number of elements
    uint32 mRankCount;
    uint32 mRank;
    size_t mPosition;
};

} // namespace ProtocolInfo

// A gap buffer: elements at [0, mGapBegin) and [mGapEnd, mEnd), room in the gap between them and at [mEnd, mCapacity).
// Insertions go to the gap, which moves to where they happen, and appending goes to the end, so that a mix of the two
// moves nothing.
struct zoDLNAProtocolInfoList_t
{
    ProtocolInfo::Slot* mSlots;
    size_t mGapBegin;
    size_t mGapEnd;
    size_t mEnd;
    size_t mCapacity;
    void* mBlock; // the elements that the list was made with, and their text; owned
    ProtocolInfo::Cursor mCursor;
    std::atomic<ProtocolInfo::MatchIndex*> mMatchIndex; // owned; NULL until a match asks for it
};

namespace ProtocolInfo
{

inline size_t CountOf(const zoDLNAProtocolInfoList_t* aList)
{
    return aList ? aList->mEnd - (aList->mGapEnd - aList->mGapBegin) : 0;
}

inline Slot* SlotAt(const zoDLNAProtocolInfoList_t* aList, size_t aPosition)
{
    const size_t theGap = aList->mGapEnd - aList->mGapBegin;
    return aList->mSlots + (aPosition < aList->mGapBegin ? aPosition : aPosition + theGap);
}

/** Forgets how far draining is. */
void DropCursor(zoDLNAProtocolInfoList_t* aList);
/** Releases the index, which the next match makes anew. */
void DropMatchIndex(zoDLNAProtocolInfoList_t* aList);

} // namespace ProtocolInfo
