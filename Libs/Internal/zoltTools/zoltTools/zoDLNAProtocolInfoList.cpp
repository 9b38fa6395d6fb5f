#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <algorithm>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfo.h>
#include <zoltTools/zoMemory.h>

namespace
{

using Run = zoDLNARun_t;

const uint32 kNoRank = 0xFFFFFFFF;
const size_t kFewDistinct = 16;
const size_t kMinRoom = 8;
const int kMostElements = 2048; // of a text

// An element, with what most comparisons need beside it, so that a scan stays in one array.
struct Slot
{
    zoDLNAProtocolInfo_t* mInfo; // owned
    uint32 mMimeTypeHash;
    uint32 mProfileHash;
    uint32 mRank; // while there is a cursor: the first item of the order that covers the element; else meaningless
};

// Where draining stands: no element before mPosition has rank mRank, and none at all has a smaller one.
struct Cursor
{
    char* mOrder; // NULL while there is no cursor
    char* mSupported;
    uint32* mRemaining; // for each rank the number of elements
    uint32 mRankCount;
    uint32 mRank;
    size_t mPosition;
};

// A word of a comma-separated text and its place there.
struct Word
{
    Run mText;
    uint32 mHash;
    uint32 mRank;
};

// The words of a text, sorted by hash, text and rank.
struct WordTable
{
    Word* mWords;
    uint32 mCount;   // also the number of ranks
    uint32 mAnyRank; // of the first "*"; kNoRank without one
};

} // namespace

// A gap buffer: elements at [0, mGapBegin) and [mGapEnd, mEnd), room in the gap between them and at [mEnd, mCapacity).
// Insertions go to the gap, which moves to where they happen, and appending goes to the end, so that a mix of the two
// moves nothing.
struct zoDLNAProtocolInfoList_t
{
    Slot* mSlots;
    size_t mGapBegin;
    size_t mGapEnd;
    size_t mEnd;
    size_t mCapacity;
    size_t mWildCardCount; // of elements whose MIME type is a wild card
    Cursor mCursor;
};

template <typename T>
static T* NewItems(size_t aCount)
{
    if (aCount > SIZE_MAX / 2 / sizeof(T)) { abort(); } // more than memory can hold
    return static_cast<T*>(zoMalloc(aCount * sizeof(T)));
}

static bool IsAny(Run aRun) { return aRun.mLength == 1 && aRun.mData[0] == '*'; }

// ---- The gap buffer ----

static size_t CountOf(const zoDLNAProtocolInfoList_t* aList)
{
    return aList ? aList->mEnd - (aList->mGapEnd - aList->mGapBegin) : 0;
}

static Slot* SlotAt(const zoDLNAProtocolInfoList_t* aList, size_t aPosition)
{
    const size_t theGap = aList->mGapEnd - aList->mGapBegin;
    return aList->mSlots + (aPosition < aList->mGapBegin ? aPosition : aPosition + theGap);
}

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
    Slot* theSlots = NewItems<Slot>(theCapacity);
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

static void DropCursor(zoDLNAProtocolInfoList_t* aList)
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

    char* theCopy = NewItems<char>(theText.mLength);
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
    DropCursor(aList);
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
    DropCursor(aList);
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

// ---- Matching ----

static bool IsSameOrAny(Run anElement, Run aField)
{
    return zoDLNARun_Equal(anElement, aField) || IsAny(anElement) || IsAny(aField);
}

static bool HasParameter(const zoDLNAProtocolInfo_t* anInfo, Run aParameter)
{
    const Run* theEnd = anInfo->mMimeParameters + anInfo->mMimeParameterCount;
    return std::binary_search(anInfo->mMimeParameters, theEnd, aParameter,
                              [](Run aLeft, Run aRight) { return zoDLNARun_Compare(aLeft, aRight) < 0; });
}

// Whether a MIME type that ends in "*" covers another.
static bool CoversMimeType(Run aWildCard, Run aMimeType)
{
    const Run theType = { aWildCard.mData, aWildCard.mLength - 1 };
    if (theType.mLength == 0 || (theType.mLength == 2 && theType.mData[0] == '*')) { return true; }
    return aMimeType.mLength >= theType.mLength && zoDLNARun_Equal(theType, { aMimeType.mData, theType.mLength });
}

static bool MimeTypeMatches(const zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    if (aFlags & kzoDLNAProtocolInfoMatch_NoMimeTypeCheck) { return true; }
    const bool fTakesWildCard = (aFlags & kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck) != 0;
    const bool fIsWildCard = fTakesWildCard && zoDLNARun_IsWildCard(anElement->mMimeType);
    if (fIsWildCard ? !CoversMimeType(anElement->mMimeType, anInfo->mMimeType)
                    : !zoDLNARun_Equal(anElement->mMimeType, anInfo->mMimeType))
    {
        return false;
    }
    return std::all_of(anElement->mMimeParameters, anElement->mMimeParameters + anElement->mMimeParameterCount,
                       [anInfo](Run aParameter) { return HasParameter(anInfo, aParameter); });
}

static bool ProfileMatches(const zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    if (aFlags & kzoDLNAProtocolInfoMatch_NoProfileCheck) { return true; }
    if (anElement->mProfile && anInfo->mProfile) { return strcmp(anElement->mProfile, anInfo->mProfile) == 0; }
    if (aFlags & kzoDLNAProtocolInfoMatch_ProfileNotNULL) { return false; }
    return (aFlags & kzoDLNAProtocolInfoMatch_AnyProfile) || anElement->mProfile == anInfo->mProfile;
}

static bool ElementMatches(const zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    return ProfileMatches(anElement, anInfo, aFlags) && IsSameOrAny(anElement->mProtocol, anInfo->mProtocol) &&
           IsSameOrAny(anElement->mNetwork, anInfo->mNetwork) && MimeTypeMatches(anElement, anInfo, aFlags);
}

// Whether an element that passes the test on its slot matches.
template <typename Test>
static bool AnyMatches(const zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo, int aFlags,
                       Test aTest)
{
    const auto theMatch = [&](const Slot& aSlot)
    { return aTest(aSlot) && ElementMatches(aSlot.mInfo, anInfo, aFlags); };
    return std::any_of(aList->mSlots, aList->mSlots + aList->mGapBegin, theMatch) ||
           std::any_of(aList->mSlots + aList->mGapEnd, aList->mSlots + aList->mEnd, theMatch);
}

int zoDLNAProtocolInfoList_Match(const zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    if (!aList || !anInfo) { return 0; }
    const uint32 theMimeType = zoDLNAProtocolInfo_HashMimeType(anInfo);
    const uint32 theProfile = zoDLNAProtocolInfo_HashProfile(anInfo);
    if (aFlags & kzoDLNAProtocolInfoMatch_NoMimeTypeCheck)
    {
        if (aFlags & (kzoDLNAProtocolInfoMatch_NoProfileCheck | kzoDLNAProtocolInfoMatch_AnyProfile))
        {
            return AnyMatches(aList, anInfo, aFlags, [](const Slot&) { return true; });
        }
        return AnyMatches(aList, anInfo, aFlags, [=](const Slot& aSlot) { return aSlot.mProfileHash == theProfile; });
    }
    if ((aFlags & kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck) && aList->mWildCardCount > 0)
    {
        return AnyMatches(aList, anInfo, aFlags,
                          [=](const Slot& aSlot)
                          { return aSlot.mMimeTypeHash == theMimeType || (aSlot.mMimeTypeHash & 1u); });
    }
    return AnyMatches(aList, anInfo, aFlags, [=](const Slot& aSlot) { return aSlot.mMimeTypeHash == theMimeType; });
}

// ---- The transports of the list ----

static bool IsBeforeAsText(const Slot* aLeft, const Slot* aRight)
{
    const zoDLNAProtocolInfo_t* theLeft = aLeft->mInfo;
    const zoDLNAProtocolInfo_t* theRight = aRight->mInfo;
    const int theOrder = zoDLNARun_Compare(theLeft->mProtocol, theRight->mProtocol);
    return theOrder != 0 ? theOrder < 0 : aLeft < aRight;
}

static bool HasSameProtocol(const Slot* aLeft, const Slot* aRight)
{
    return zoDLNARun_Equal(aLeft->mInfo->mProtocol, aRight->mInfo->mProtocol);
}

// Collects an element for each protocol, in the list's order. A few protocols are told apart as they come; what passes
// that is sorted, so that many take no longer than their number asks.
static size_t CollectDistinct(const zoDLNAProtocolInfoList_t* aList, const Slot** aDistinct)
{
    size_t theCount = 0;
    Run thePrevious = { "", 0 };
    const size_t theElementCount = CountOf(aList);
    for (size_t i = 0; i < theElementCount; ++i)
    {
        const Slot* theSlot = SlotAt(aList, i);
        const Run theProtocol = theSlot->mInfo->mProtocol;
        const bool fIsAsBefore = theProtocol.mLength == thePrevious.mLength &&
                                 memcmp(theProtocol.mData, thePrevious.mData, theProtocol.mLength) == 0;
        if (fIsAsBefore || theProtocol.mLength == 0) { continue; }
        thePrevious = theProtocol;
        const bool fIsKnown = std::any_of(aDistinct, aDistinct + std::min(theCount, kFewDistinct),
                                          [=](const Slot* aKnown) { return HasSameProtocol(aKnown, theSlot); });
        if (!fIsKnown) { aDistinct[theCount++] = theSlot; }
    }
    if (theCount <= kFewDistinct) { return theCount; }

    std::sort(aDistinct, aDistinct + theCount, IsBeforeAsText);
    const Slot** theEnd = std::unique(aDistinct, aDistinct + theCount, HasSameProtocol);
    std::sort(aDistinct, theEnd);
    return static_cast<size_t>(theEnd - aDistinct);
}

char* zoDLNAProtocolInfoList_GetSupportedProtocolList(const zoDLNAProtocolInfoList_t* aList)
{
    const Slot** theDistinct = NewItems<const Slot*>(CountOf(aList));
    const size_t theCount = CollectDistinct(aList, theDistinct);
    size_t theSize = 1;
    for (size_t i = 0; i < theCount; ++i)
        theSize += theDistinct[i]->mInfo->mProtocol.mLength + 1;

    char* theText = NewItems<char>(theSize);
    char* theEnd = theText;
    for (size_t i = 0; i < theCount; ++i)
    {
        const Run theProtocol = theDistinct[i]->mInfo->mProtocol;
        if (i > 0) { *theEnd++ = ','; }
        memcpy(theEnd, theProtocol.mData, theProtocol.mLength);
        theEnd += theProtocol.mLength;
    }
    *theEnd = '\0';
    free(theDistinct);
    return theText;
}

// ---- Ranking by transport ----

static bool IsWordBefore(const Word& aLeft, const Word& aRight)
{
    if (aLeft.mHash != aRight.mHash) { return aLeft.mHash < aRight.mHash; }
    const int theOrder = zoDLNARun_Compare(aLeft.mText, aRight.mText);
    return theOrder != 0 ? theOrder < 0 : aLeft.mRank < aRight.mRank;
}

static WordTable NewWordTable(const char* aText)
{
    const size_t theLength = strlen(aText);
    Run theRest = { aText, theLength };
    WordTable theTable = {};
    theTable.mWords = NewItems<Word>(static_cast<size_t>(std::count(aText, aText + theLength, ',')) + 1);
    theTable.mAnyRank = kNoRank;
    Run thePart;
    while (zoDLNARun_NextPart(&theRest, ',', &thePart))
    {
        if (thePart.mLength == 0) { continue; }
        const uint32 theRank = theTable.mCount++;
        theTable.mWords[theRank] = { thePart, zoDLNARun_Hash(thePart), theRank };
        if (IsAny(thePart) && theTable.mAnyRank == kNoRank) { theTable.mAnyRank = theRank; }
    }
    std::sort(theTable.mWords, theTable.mWords + theTable.mCount, IsWordBefore);
    return theTable;
}

// The rank of the first word that equals aWord, ignoring case; kNoRank when there is none.
static uint32 FindRank(const WordTable& aTable, Run aWord)
{
    const uint32 theHash = zoDLNARun_Hash(aWord);
    const Word* theBegin = aTable.mWords;
    const Word* theEnd = theBegin + aTable.mCount;
    const Word* theFound = std::lower_bound(theBegin, theEnd, Word{ aWord, theHash, 0 }, IsWordBefore);
    const bool fIsThere = theFound != theEnd && theFound->mHash == theHash && zoDLNARun_Equal(theFound->mText, aWord);
    return fIsThere ? theFound->mRank : kNoRank;
}

static bool TakesPart(const zoDLNAProtocolInfo_t* anInfo, const WordTable& aSupported)
{
    if (aSupported.mCount == 0 || aSupported.mAnyRank != kNoRank) { return true; }
    return FindRank(aSupported, anInfo->mProtocol) != kNoRank;
}

static uint32 RankOf(const zoDLNAProtocolInfo_t* anInfo, const WordTable& anOrder, const WordTable& aSupported)
{
    if (!TakesPart(anInfo, aSupported)) { return kNoRank; }
    const Run theProtocol = anInfo->mProtocol;
    uint32 theRank = std::min(anOrder.mAnyRank, FindRank(anOrder, theProtocol));
    const void* theHyphen = memchr(theProtocol.mData, '-', theProtocol.mLength);
    if (theHyphen)
    {
        const size_t theLength = static_cast<size_t>(static_cast<const char*>(theHyphen) - theProtocol.mData);
        const Run theFirstPart = { theProtocol.mData, theLength };
        theRank = std::min(theRank, FindRank(anOrder, theFirstPart));
    }
    return theRank;
}

static void StartCursor(zoDLNAProtocolInfoList_t* aList, const char* anOrder, const char* aSupported)
{
    DropCursor(aList);
    const WordTable theOrder = NewWordTable(anOrder);
    const WordTable theSupported = NewWordTable(aSupported);
    Cursor* theCursor = &aList->mCursor;
    theCursor->mOrder = zoStrdup(anOrder);
    theCursor->mSupported = zoStrdup(aSupported);
    theCursor->mRankCount = theOrder.mCount;
    theCursor->mRemaining = NewItems<uint32>(theOrder.mCount);
    std::fill_n(theCursor->mRemaining, theOrder.mCount, 0u);
    for (size_t i = 0; i < CountOf(aList); ++i)
    {
        Slot* theSlot = SlotAt(aList, i);
        theSlot->mRank = RankOf(theSlot->mInfo, theOrder, theSupported);
        if (theSlot->mRank != kNoRank) { ++theCursor->mRemaining[theSlot->mRank]; }
    }
    free(theOrder.mWords);
    free(theSupported.mWords);
}

static bool HasCursorFor(const zoDLNAProtocolInfoList_t* aList, const char* anOrder, const char* aSupported)
{
    const Cursor* theCursor = &aList->mCursor;
    return theCursor->mOrder && strcmp(theCursor->mOrder, anOrder) == 0 &&
           strcmp(theCursor->mSupported, aSupported) == 0;
}

int zoDLNAProtocolInfoList_GetBestIndexForScheme(zoDLNAProtocolInfoList_t* aList, const char* anOrder,
                                                 const char* aSupported)
{
    if (CountOf(aList) == 0) { return -1; }
    const char* theOrder = anOrder ? anOrder : "";
    const char* theSupported = aSupported ? aSupported : "";
    if (!HasCursorFor(aList, theOrder, theSupported)) { StartCursor(aList, theOrder, theSupported); }

    Cursor* theCursor = &aList->mCursor;
    for (; theCursor->mRank < theCursor->mRankCount; ++theCursor->mRank, theCursor->mPosition = 0)
    {
        if (theCursor->mRemaining[theCursor->mRank] == 0) { continue; }
        while (SlotAt(aList, theCursor->mPosition)->mRank != theCursor->mRank)
            ++theCursor->mPosition;
        return static_cast<int>(theCursor->mPosition);
    }
    return -1;
}
