#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <Shared/ASCII.h>
#include <Shared/Sizes.h>
#include <Shared/Split.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfoList.h>

using ProtocolInfo::CountOf;
using ProtocolInfo::Slot;
using ProtocolInfo::SlotAt;
using std::string_view;

static const size_t kMinRoom = 8;
static const size_t kMostElements = 2048; // of a text

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

void ProtocolInfo::DropCursor(zoDLNAProtocolInfoList_t* aList)
{
    free(aList->mCursor.mOrder);
    free(aList->mCursor.mSupported);
    free(aList->mCursor.mRemaining);
    aList->mCursor = {};
}

// Removes in place the backslashes before commas. @return the new length.
static size_t RemoveEscapes(char* aText, size_t aLength)
{
    size_t theLength = 0;
    for (size_t i = 0; i < aLength; ++i)
    {
        const bool fIsEscape = aText[i] == '\\' && i + 1 < aLength && aText[i + 1] == ',';
        if (!fIsEscape) { aText[theLength++] = aText[i]; }
    }
    return theLength;
}

// Makes the elements of a text, which they keep and change. The byte after the text is theirs, too.
static size_t InitElements(zoDLNAProtocolInfo_t* anElements, size_t aCapacity, char* aText, size_t aLength)
{
    const bool fMayHaveEscapes = memchr(aText, '\\', aLength) != nullptr;
    const bool fMayHaveBlanks = ProtocolInfo::HasBlanks({ aText, aLength });
    string_view theRest(aText, aLength);
    string_view theItem;
    size_t theCount = 0;
    while (theCount < aCapacity)
    {
        const bool fIsItem = fMayHaveEscapes ? Shared::NextEscapedItem(&theRest, ',', '\\', &theItem)
                                             : Shared::NextItem(&theRest, ',', &theItem);
        if (!fIsItem) { break; }
        if (fMayHaveBlanks) { theItem = Shared::Trim(theItem, Shared::IsSpace); }
        if (theItem.empty()) { continue; }
        char* theText = aText + (theItem.data() - aText);
        const size_t theLength = fMayHaveEscapes ? RemoveEscapes(theText, theItem.size()) : theItem.size();
        ProtocolInfo::Init(&anElements[theCount++], theText, theLength, fMayHaveBlanks);
    }
    return theCount;
}

// @return the most elements that a text can have. Bytes count bytes, so that the compiler takes many at once.
static size_t CountItems(const char* aText, size_t aLength)
{
    const size_t kBlock = 240; // fits a byte
    size_t theCount = 1;
    for (size_t i = 0; i < aLength && theCount < kMostElements; i += kBlock)
    {
        uint8 theCommas = 0;
        for (size_t k = i; k < std::min(aLength, i + kBlock); ++k)
            theCommas = static_cast<uint8>(theCommas + (aText[k] == ','));
        theCount += theCommas;
    }
    return std::min(theCount, kMostElements);
}

static void AddElementsOfText(zoDLNAProtocolInfoList_t* aList, const char* aText)
{
    const size_t theLength = strlen(aText);
    const size_t theCapacity = CountItems(aText, theLength);
    zoDLNAProtocolInfo_t* theElements = static_cast<zoDLNAProtocolInfo_t*>(
        zoMalloc(Shared::AddSizes(theCapacity * sizeof(zoDLNAProtocolInfo_t) + 1, theLength)));
    char* theText = static_cast<char*>(memcpy(theElements + theCapacity, aText, theLength));
    aList->mBlock = theElements;
    aList->mEnd = InitElements(theElements, theCapacity, theText, theLength);
    aList->mCapacity = aList->mEnd;
    aList->mSlots = Shared::NewArray<Slot>(aList->mEnd);
    for (size_t i = 0; i < aList->mEnd; ++i)
        aList->mSlots[i] = { &theElements[i], 0 };
}

zoDLNAProtocolInfoList_t* zoDLNAProtocolInfoList_New(const char* aText, int /*aFlags*/)
{
    zoDLNAProtocolInfoList_t* theList = new (zoMalloc(sizeof(zoDLNAProtocolInfoList_t))) zoDLNAProtocolInfoList_t{};
    if (aText && *aText != '\0') { AddElementsOfText(theList, aText); }
    return theList;
}

void zoDLNAProtocolInfoList_Delete(zoDLNAProtocolInfoList_t* aList)
{
    if (!aList) { return; }
    for (size_t i = 0; i < CountOf(aList); ++i)
        zoDLNAProtocolInfo_Delete(SlotAt(aList, i)->mInfo);
    ProtocolInfo::DropCursor(aList);
    ProtocolInfo::DropMatchIndex(aList);
    free(aList->mBlock);
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
    ProtocolInfo::DropCursor(aList);
    ProtocolInfo::DropMatchIndex(aList);
    const size_t thePosition = HasPosition(aList, aPosition) ? static_cast<size_t>(aPosition) : CountOf(aList);
    *InsertSlot(aList, thePosition) = { anInfo, 0 };
}

void zoDLNAProtocolInfoList_Remove(zoDLNAProtocolInfoList_t* aList, int aPosition)
{
    if (!HasPosition(aList, aPosition)) { return; }
    const size_t thePosition = static_cast<size_t>(aPosition);
    const Slot* theSlot = SlotAt(aList, thePosition);
    ProtocolInfo::Cursor* theCursor = &aList->mCursor;
    if (theCursor->mOrder)
    {
        if (theSlot->mRank < theCursor->mRankCount) { --theCursor->mRemaining[theSlot->mRank]; }
        if (thePosition < theCursor->mPosition) { --theCursor->mPosition; }
    }
    ProtocolInfo::DropMatchIndex(aList);
    zoDLNAProtocolInfo_Delete(theSlot->mInfo);
    RemoveSlot(aList, thePosition);
}
