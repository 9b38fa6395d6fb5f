// The transport protocols of a list, and the order of protocol infos by transport protocol.

#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <Shared/ASCII.h>
#include <Shared/Append.h>
#include <Shared/Sizes.h>
#include <Shared/Split.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfoList.h>
#include <zoltTools/Private/zoKeyedHash.h>
#include <zoltTools/zoMemory.h>

using ProtocolInfo::CountOf;
using ProtocolInfo::Cursor;
using ProtocolInfo::IsAny;
using ProtocolInfo::IsSame;
using ProtocolInfo::Slot;
using ProtocolInfo::SlotAt;
using std::string_view;

namespace
{

const uint32 kNoRank = 0xFFFFFFFF;

// The words of a comma-separated text, each found by its hash in a table that is at most half full.
struct WordTable
{
    uint64 mKey;
    string_view* mWords; // owned; a word's position is its rank
    uint32 mCount;
    uint32* mSlots; // owned; ranks, of equal words the first; kNoRank is free
    uint32 mSlotMask;
    uint32 mAnyRank; // of the first "*"; kNoRank without one
};

struct RankedInfo
{
    zoDLNAProtocolInfo_t* mInfo;
    uint32 mRank;
    uint32 mPosition;
};

} // namespace

// ---- The transport protocols of the list ----

static string_view ProtocolAt(const zoDLNAProtocolInfoList_t* aList, size_t aPosition)
{
    return SlotAt(aList, aPosition)->mInfo->mProtocol;
}

// Collects the position of an element for each protocol, in the list's order. The first kFew protocols are told apart
// as they come; if there are more, sorting removes what appears twice.
static size_t CollectDistinct(const zoDLNAProtocolInfoList_t* aList, uint32* aPositions)
{
    const size_t kFew = 16;
    const auto fIsSame = [aList](uint32 aLeft, uint32 aRight)
    { return Shared::EqualsIgnoringCase(ProtocolAt(aList, aLeft), ProtocolAt(aList, aRight)); };
    const uint32 theElementCount = static_cast<uint32>(CountOf(aList));
    size_t theCount = 0;
    string_view thePrevious;
    for (uint32 i = 0; i < theElementCount; ++i)
    {
        const string_view theProtocol = ProtocolAt(aList, i);
        if (theProtocol.empty() || Shared::Equals(theProtocol, thePrevious)) { continue; }
        thePrevious = theProtocol;
        const bool fIsKnown = std::any_of(aPositions, aPositions + std::min(theCount, kFew),
                                          [=](uint32 aPosition) { return fIsSame(aPosition, i); });
        if (!fIsKnown) { aPositions[theCount++] = i; }
    }
    if (theCount <= kFew) { return theCount; }

    std::sort(aPositions, aPositions + theCount,
              [aList](uint32 aLeft, uint32 aRight)
              {
        const int theOrder = Shared::CompareIgnoringCase(ProtocolAt(aList, aLeft), ProtocolAt(aList, aRight));
        return theOrder != 0 ? theOrder < 0 : aLeft < aRight;
    });
    uint32* theEnd = std::unique(aPositions, aPositions + theCount, fIsSame);
    std::sort(aPositions, theEnd);
    return static_cast<size_t>(theEnd - aPositions);
}

char* zoDLNAProtocolInfoList_GetSupportedProtocolList(const zoDLNAProtocolInfoList_t* aList)
{
    uint32* thePositions = Shared::NewArray<uint32>(CountOf(aList));
    const size_t theCount = CollectDistinct(aList, thePositions);
    size_t theSize = 1;
    for (size_t i = 0; i < theCount; ++i)
        theSize = Shared::AddSizes(theSize, ProtocolAt(aList, thePositions[i]).size() + 1);

    char* theText = Shared::NewArray<char>(theSize);
    char* theEnd = theText;
    for (size_t i = 0; i < theCount; ++i)
    {
        if (i > 0) { *theEnd++ = ','; }
        theEnd = Shared::Append(theEnd, ProtocolAt(aList, thePositions[i]));
    }
    *theEnd = '\0';
    free(thePositions);
    return theText;
}

// ---- Words ----

// Takes the next word that is not empty off the rest.
static bool NextWord(string_view* aRest, string_view* aWord)
{
    while (Shared::NextItem(aRest, ',', aWord))
    {
        *aWord = Shared::Trim(*aWord, Shared::IsSpace);
        if (!aWord->empty()) { return true; }
    }
    return false;
}

// @return the slot of a word that equals aWord, or the free one where it would be.
static uint32* FindSlot(const WordTable& aTable, string_view aWord)
{
    uint32 theSlot = static_cast<uint32>(KeyedHash::Hash(aTable.mKey, aWord)) & aTable.mSlotMask;
    while (aTable.mSlots[theSlot] != kNoRank &&
           !Shared::EqualsIgnoringCase(aTable.mWords[aTable.mSlots[theSlot]], aWord))
        theSlot = (theSlot + 1) & aTable.mSlotMask;
    return &aTable.mSlots[theSlot];
}

// @return the rank of the first word that equals aWord; kNoRank when there is none.
static uint32 FindRank(const WordTable& aTable, string_view aWord) { return *FindSlot(aTable, aWord); }

static WordTable NewWordTable(string_view aText)
{
    const size_t theCapacity = static_cast<size_t>(std::count(aText.begin(), aText.end(), ',')) + 1;
    size_t theSlotCount = 2;
    while (theSlotCount < 2 * theCapacity)
        theSlotCount *= 2;

    WordTable theTable = {};
    theTable.mKey = KeyedHash::NewKey();
    theTable.mWords = Shared::NewZeroedArray<string_view>(theCapacity);
    theTable.mSlots = Shared::NewArray<uint32>(theSlotCount);
    theTable.mSlotMask = static_cast<uint32>(theSlotCount - 1);
    theTable.mAnyRank = kNoRank;
    std::fill_n(theTable.mSlots, theSlotCount, kNoRank);
    for (string_view theWord; NextWord(&aText, &theWord); ++theTable.mCount)
    {
        if (IsAny(theWord)) { theTable.mAnyRank = std::min(theTable.mAnyRank, theTable.mCount); }
        theTable.mWords[theTable.mCount] = theWord;
        uint32* theSlot = FindSlot(theTable, theWord);
        if (*theSlot == kNoRank) { *theSlot = theTable.mCount; }
    }
    return theTable;
}

static void FreeWordTable(const WordTable& aTable)
{
    free(aTable.mWords);
    free(aTable.mSlots);
}

// ---- Ranks ----

// @return the protocol's first part, "http" of "http-get"; "" when it has one part.
static string_view FirstPartOf(string_view aProtocol)
{
    const size_t theHyphen = aProtocol.find('-');
    return theHyphen == aProtocol.npos ? string_view() : aProtocol.substr(0, theHyphen);
}

static bool TakesPart(string_view aProtocol, const WordTable& aSupported)
{
    return aSupported.mCount == 0 || aSupported.mAnyRank != kNoRank || FindRank(aSupported, aProtocol) != kNoRank;
}

static uint32 RankOf(string_view aProtocol, const WordTable& anOrder, const WordTable& aSupported)
{
    if (!TakesPart(aProtocol, aSupported)) { return kNoRank; }
    const uint32 theRank = std::min(anOrder.mAnyRank, FindRank(anOrder, aProtocol));
    return std::min(theRank, FindRank(anOrder, FirstPartOf(aProtocol)));
}

// ---- Draining a list ----

static void StartCursor(zoDLNAProtocolInfoList_t* aList, const char* anOrder, const char* aSupported)
{
    ProtocolInfo::DropCursor(aList);
    const WordTable theOrder = NewWordTable(anOrder);
    const WordTable theSupported = NewWordTable(aSupported);
    Cursor* theCursor = &aList->mCursor;
    theCursor->mOrder = zoStrdup(anOrder);
    theCursor->mSupported = zoStrdup(aSupported);
    theCursor->mRankCount = theOrder.mCount;
    theCursor->mRemaining = Shared::NewZeroedArray<uint32>(theOrder.mCount);
    for (size_t i = 0; i < CountOf(aList); ++i)
    {
        Slot* theSlot = SlotAt(aList, i);
        theSlot->mRank = RankOf(theSlot->mInfo->mProtocol, theOrder, theSupported);
        if (theSlot->mRank != kNoRank) { ++theCursor->mRemaining[theSlot->mRank]; }
    }
    FreeWordTable(theOrder);
    FreeWordTable(theSupported);
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

// ---- Ranking an array ----

static bool IsOneWord(string_view aText) { return aText.find(',') == aText.npos; }

// True if all protocol infos have the protocol of the sink's first, and so take part.
static bool HaveProtocolOfFirst(const zoDLNAProtocolInfoList_t* aSinkList, zoDLNAProtocolInfo_t* const* anInfos,
                                size_t aCount)
{
    const string_view theFirst = ProtocolAt(aSinkList, 0);
    return !theFirst.empty() && IsOneWord(theFirst) &&
           std::all_of(anInfos, anInfos + aCount,
                       [=](const zoDLNAProtocolInfo_t* anInfo) { return IsSame(anInfo->mProtocol, theFirst); });
}

// Moves those that the one item of an order covers to the front, of a supported protocol if that is not "".
static size_t RankByWord(string_view anItem, string_view aSupported, zoDLNAProtocolInfo_t** anInfos, size_t aCount)
{
    const string_view theItem = Shared::Trim(anItem, Shared::IsSpace);
    const string_view theSupported = Shared::Trim(aSupported, Shared::IsSpace);
    if (theItem.empty()) { return 0; }
    const bool fIsAnySupported = theSupported.empty() || IsAny(theSupported);
    const bool fMayBeFirstPart = theItem.find('-') == theItem.npos;
    const auto fIsLeftOut = [=](const zoDLNAProtocolInfo_t* anInfo)
    {
        const string_view theProtocol = anInfo->mProtocol;
        const bool fIsCovered =
            IsAny(theItem) || IsSame(theItem, theProtocol) ||
            (fMayBeFirstPart && theProtocol.size() > theItem.size() && theProtocol[theItem.size()] == '-' &&
             IsSame(theItem, theProtocol.substr(0, theItem.size())));
        return !fIsCovered || !(fIsAnySupported || IsSame(theSupported, theProtocol));
    };
    return static_cast<size_t>(std::remove_if(anInfos, anInfos + aCount, fIsLeftOut) - anInfos);
}

// Ranks by several words. Rare: not inlined, its memory costs the others nothing.
[[gnu::noinline]] static size_t RankByWords(string_view anOrder, const char* aSupported, zoDLNAProtocolInfo_t** anInfos,
                                            size_t aCount)
{
    const WordTable theOrder = NewWordTable(anOrder);
    const WordTable theSupported = NewWordTable(aSupported);
    RankedInfo* theRanked = Shared::NewArray<RankedInfo>(aCount);
    RankedInfo* theEnd = theRanked;
    for (size_t i = 0; i < aCount; ++i)
    {
        const uint32 theRank = RankOf(anInfos[i]->mProtocol, theOrder, theSupported);
        if (theRank != kNoRank) { *theEnd++ = { anInfos[i], theRank, static_cast<uint32>(i) }; }
    }
    FreeWordTable(theOrder);
    FreeWordTable(theSupported);
    std::sort(theRanked, theEnd,
              [](const RankedInfo& aLeft, const RankedInfo& aRight) {
        return aLeft.mRank != aRight.mRank ? aLeft.mRank < aRight.mRank : aLeft.mPosition < aRight.mPosition;
    });
    const size_t theCount = static_cast<size_t>(theEnd - theRanked);
    for (size_t i = 0; i < theCount; ++i)
        anInfos[i] = theRanked[i].mInfo;
    free(theRanked);
    return theCount;
}

size_t zoDLNAProtocolInfoList_RankByScheme(const zoDLNAProtocolInfoList_t* aSinkList, const char* anOrder,
                                           const char* aSupported, zoDLNAProtocolInfo_t** anInfos, size_t aCount)
{
    const string_view theOrder(anOrder ? anOrder : "");
    const bool fAllTakePart =
        !aSupported && (CountOf(aSinkList) == 0 || HaveProtocolOfFirst(aSinkList, anInfos, aCount));
    if (fAllTakePart && IsAny(theOrder)) { return aCount; }
    const char* theOnlySupported = fAllTakePart ? "*" : aSupported;
    if (theOnlySupported && IsOneWord(theOrder) && IsOneWord(theOnlySupported))
    {
        return RankByWord(theOrder, theOnlySupported, anInfos, aCount);
    }
    if (aSupported) { return RankByWords(theOrder, aSupported, anInfos, aCount); }
    char* theSupported = zoDLNAProtocolInfoList_GetSupportedProtocolList(aSinkList);
    const size_t theCount = RankByWords(theOrder, theSupported, anInfos, aCount);
    free(theSupported);
    return theCount;
}
