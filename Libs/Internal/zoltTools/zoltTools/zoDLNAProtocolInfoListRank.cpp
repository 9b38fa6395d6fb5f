// The transports of a list, and the order of its elements by transport.

#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <Shared/Sizes.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfoList.h>

namespace
{

using Run = zoDLNARun_t;

const size_t kFewDistinct = 16;

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
    const Slot** theDistinct = Shared::NewArray<const Slot*>(CountOf(aList));
    const size_t theCount = CollectDistinct(aList, theDistinct);
    size_t theSize = 1;
    for (size_t i = 0; i < theCount; ++i)
        theSize += theDistinct[i]->mInfo->mProtocol.mLength + 1;

    char* theText = Shared::NewArray<char>(theSize);
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
    theTable.mWords = Shared::NewArray<Word>(static_cast<size_t>(std::count(aText, aText + theLength, ',')) + 1);
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
    zoDLNAProtocolInfoList_DropCursor(aList);
    const WordTable theOrder = NewWordTable(anOrder);
    const WordTable theSupported = NewWordTable(aSupported);
    Cursor* theCursor = &aList->mCursor;
    theCursor->mOrder = zoStrdup(anOrder);
    theCursor->mSupported = zoStrdup(aSupported);
    theCursor->mRankCount = theOrder.mCount;
    theCursor->mRemaining = Shared::NewArray<uint32>(theOrder.mCount);
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
