#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <Shared/Sizes.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfoList.h>

namespace
{

using Run = zoDLNARun_t;

const size_t kMinRoom = 8;
const int kMostElements = 2048; // of a text

} // namespace

// ---- The gap buffer ----

static void MoveGap(zoDLNAProtocolInfoList_t* aList, size_t aPosition)
{
    Slot* theSlots = aList->mSlots;
    if (aPosition < aList->mGapBegin)
    {
        const size_t theCount = aList->mGapBegin - aPosition;
        memmove(theSlots + aList->mGapEnd - theCount, theSlots + aPosition, theCount * sizeof(Slot));
        aList->mGapBegin -= theCount;
        aList->mGapEnd -= theCount;
    }
    else if (aPosition > aList->mGapBegin)
    {
        const size_t theCount = aPosition - aList->mGapBegin;
        memmove(theSlots + aList->mGapBegin, theSlots + aList->mGapEnd, theCount * sizeof(Slot));
        aList->mGapBegin += theCount;
        aList->mGapEnd += theCount;
    }
}

// Gives the gap, or the end, room for half as many elements as there are; the other keeps what it has, up to as much.
static void MakeRoom(zoDLNAProtocolInfoList_t* aList, bool afAtEnd)
{
    const size_t theCount = CountOf(aList);
    const size_t theRoom = theCount / 2 + kMinRoom;
    const size_t theGap = afAtEnd ? std::min(theRoom, aList->mGapEnd - aList->mGapBegin) : theRoom;
    const size_t theEndRoom = afAtEnd ? theRoom : std::min(theRoom, aList->mCapacity - aList->mEnd);

    const size_t theCapacity = theCount + theGap + theEndRoom;
    Slot* theSlots = Shared::NewArray<Slot>(theCapacity);
    const size_t theTail = aList->mEnd - aList->mGapEnd;
    const size_t theGapEnd = aList->mGapBegin + theGap;
    std::copy_n(aList->mSlots, aList->mGapBegin, theSlots);
    std::copy_n(aList->mSlots + aList->mGapEnd, theTail, theSlots + theGapEnd);
    free(aList->mSlots);
    aList->mSlots = theSlots;
    aList->mGapEnd = theGapEnd;
    aList->mEnd = theGapEnd + theTail;
    aList->mCapacity = theCapacity;
}

static Slot* InsertSlot(zoDLNAProtocolInfoList_t* aList, size_t aPosition)
{
    if (aPosition == CountOf(aList))
    {
        if (aList->mEnd == aList->mCapacity) { MakeRoom(aList, true); }
        return aList->mSlots + aList->mEnd++;
    }
    if (aList->mGapBegin == aList->mGapEnd) { MakeRoom(aList, false); }
    MoveGap(aList, aPosition);
    return aList->mSlots + aList->mGapBegin++;
}

static void RemoveSlot(zoDLNAProtocolInfoList_t* aList, size_t aPosition)
{
    if (aPosition + 1 == aList->mGapBegin) { --aList->mGapBegin; }
    else if (aPosition + 1 == CountOf(aList)) { --aList->mEnd; }
    else
    {
        MoveGap(aList, aPosition);
        ++aList->mGapEnd;
    }
}

// ---- The list ----

void zoDLNAProtocolInfoList_DropCursor(zoDLNAProtocolInfoList_t* aList)
{
    free(aList->mCursor.mOrder);
    free(aList->mCursor.mSupported);
    free(aList->mCursor.mRemaining);
    aList->mCursor = {};
}

// Appends the element of that text, in which a backslash protects commas.
static void AppendElement(zoDLNAProtocolInfoList_t* aList, Run aText)
{
    const Run theText = zoDLNARun_Trim(aText);
    if (theText.mLength == 0) { return; }
    if (!memchr(theText.mData, ',', theText.mLength))
    {
        zoDLNAProtocolInfoList_Add(aList, zoDLNAProtocolInfo_New(theText.mData, theText.mLength, 0), -1);
        return;
    }

    char* theCopy = Shared::NewArray<char>(theText.mLength);
    size_t theLength = 0;
    for (size_t i = 0; i < theText.mLength; ++i)
    {
        const bool fProtects = theText.mData[i] == '\\' && i + 1 < theText.mLength && theText.mData[i + 1] == ',';
        if (!fProtects) { theCopy[theLength++] = theText.mData[i]; }
    }
    zoDLNAProtocolInfoList_Add(aList, zoDLNAProtocolInfo_New(theCopy, theLength, 0), -1);
    free(theCopy);
}

zoDLNAProtocolInfoList_t* zoDLNAProtocolInfoList_New(const char* aText, int /*aFlags*/)
{
    zoDLNAProtocolInfoList_t* theList =
        static_cast<zoDLNAProtocolInfoList_t*>(zoMallocZeroed(sizeof(zoDLNAProtocolInfoList_t)));
    if (!aText) { return theList; }
    const char* theBegin = aText;
    for (const char* theEnd = aText;; ++theEnd)
    {
        theEnd += strcspn(theEnd, ",");
        if (*theEnd == ',' && theEnd > theBegin && theEnd[-1] == '\\') { continue; }
        AppendElement(theList, { theBegin, static_cast<size_t>(theEnd - theBegin) });
        if (*theEnd == '\0' || zoDLNAProtocolInfoList_GetCount(theList) == kMostElements) { return theList; }
        theBegin = theEnd + 1;
    }
}

void zoDLNAProtocolInfoList_Delete(zoDLNAProtocolInfoList_t* aList)
{
    if (!aList) { return; }
    for (size_t i = 0; i < CountOf(aList); ++i)
        zoDLNAProtocolInfo_Delete(SlotAt(aList, i)->mInfo);
    zoDLNAProtocolInfoList_DropCursor(aList);
    free(aList->mSlots);
    free(aList);
}

int zoDLNAProtocolInfoList_GetCount(const zoDLNAProtocolInfoList_t* aList) { return static_cast<int>(CountOf(aList)); }

static bool HasPosition(const zoDLNAProtocolInfoList_t* aList, int aPosition)
{
    return aPosition >= 0 && static_cast<size_t>(aPosition) < CountOf(aList);
}

zoDLNAProtocolInfo_t* zoDLNAProtocolInfoList_GetProtocolInfoAt(const zoDLNAProtocolInfoList_t* aList, int aPosition)
{
    return HasPosition(aList, aPosition) ? SlotAt(aList, static_cast<size_t>(aPosition))->mInfo : nullptr;
}

void zoDLNAProtocolInfoList_Add(zoDLNAProtocolInfoList_t* aList, zoDLNAProtocolInfo_t* anInfo, int aPosition)
{
    if (!aList || !anInfo)
    {
        zoDLNAProtocolInfo_Delete(anInfo);
        return;
    }
    zoDLNAProtocolInfoList_DropCursor(aList);
    const size_t thePosition = HasPosition(aList, aPosition) ? static_cast<size_t>(aPosition) : CountOf(aList);
    const uint32 theMimeTypeHash = zoDLNAProtocolInfo_HashMimeType(anInfo);
    aList->mWildCardCount += theMimeTypeHash & 1u;
    *InsertSlot(aList, thePosition) = { anInfo, theMimeTypeHash, zoDLNAProtocolInfo_HashProfile(anInfo), kNoRank };
}

void zoDLNAProtocolInfoList_Remove(zoDLNAProtocolInfoList_t* aList, int aPosition)
{
    if (!HasPosition(aList, aPosition)) { return; }
    const size_t thePosition = static_cast<size_t>(aPosition);
    const Slot* theSlot = SlotAt(aList, thePosition);
    Cursor* theCursor = &aList->mCursor;
    if (theCursor->mOrder)
    {
        if (theSlot->mRank != kNoRank) { --theCursor->mRemaining[theSlot->mRank]; }
        if (thePosition < theCursor->mPosition) { --theCursor->mPosition; }
    }
    aList->mWildCardCount -= theSlot->mMimeTypeHash & 1u;
    zoDLNAProtocolInfo_Delete(theSlot->mInfo);
    RemoveSlot(aList, thePosition);
}
