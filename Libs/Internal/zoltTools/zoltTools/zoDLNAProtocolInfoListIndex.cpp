// How the index of a list of protocol infos is made.

#include <zoltTools/Private/zoDLNAProtocolInfoListIndex.h>

#include <Shared/ASCII.h>
#include <Shared/Sizes.h>
#include <Shared/Split.h>
#include <algorithm>
#include <stdlib.h>

using namespace ProtocolInfo;
using std::string_view;

// Lists of more elements, or whose MIME types have parameters, get an index.
static const size_t kMostWithoutIndex = 16;

// ---- Parameters of MIME types ----

// Takes the next parameter that is not empty off the rest.
static bool NextParameter(string_view* aRest, string_view* aParameter)
{
    while (Shared::NextItem(aRest, ';', aParameter))
    {
        *aParameter = Shared::Trim(*aParameter, Shared::IsSpace);
        if (!aParameter->empty()) { return true; }
    }
    return false;
}

uint32 ProtocolInfo::CountParameters(string_view aParameters)
{
    uint32 theCount = 0;
    for (string_view theParameter; NextParameter(&aParameters, &theParameter);)
        ++theCount;
    return theCount;
}

// Keeps each of the sorted hashes once, and numbers the parameters: the fewer elements have one, the lower its number.
// A set is compared in that order, and a protocol info mostly lacks what few elements have.
static void NumberParameters(MatchIndex* anIndex, uint32 aHashCount)
{
    uint64* theHashes = anIndex->mParameterHashes;
    uint32* theCounts = Shared::NewZeroedArray<uint32>(aHashCount);
    uint32* theOrder = Shared::NewArray<uint32>(aHashCount);
    uint32 theCount = 0;
    for (uint32 i = 0; i < aHashCount; ++i)
    {
        if (theCount == 0 || theHashes[i] != theHashes[theCount - 1])
        {
            theHashes[theCount] = theHashes[i];
            theOrder[theCount] = theCount;
            ++theCount;
        }
        ++theCounts[theCount - 1];
    }
    std::sort(theOrder, theOrder + theCount,
              [theCounts](uint32 aLeft, uint32 aRight) {
        return theCounts[aLeft] != theCounts[aRight] ? theCounts[aLeft] < theCounts[aRight] : aLeft < aRight;
    });
    anIndex->mParameterHashCount = theCount;
    anIndex->mParameterNumbers = theCounts; // which are not needed any more
    for (uint32 i = 0; i < theCount; ++i)
        anIndex->mParameterNumbers[theOrder[i]] = i;
    free(theOrder);
}

// Collects the hashes of all parameters.
static void CollectParameters(MatchIndex* anIndex, uint32 aParameterCount)
{
    anIndex->mParameterHashes = Shared::NewArray<uint64>(aParameterCount);
    uint64* theEnd = anIndex->mParameterHashes;
    for (uint32 i = 0; i < anIndex->mCount; ++i)
    {
        string_view theRest = anIndex->mEntries[i].mInfo->mMimeParameters;
        for (string_view theParameter; NextParameter(&theRest, &theParameter);)
            *theEnd++ = KeyedHash::Hash(anIndex->mKey, theParameter);
    }
    std::sort(anIndex->mParameterHashes, theEnd);
    NumberParameters(anIndex, aParameterCount);
}

ParameterSet ProtocolInfo::ReadSet(const MatchIndex* anIndex, string_view aParameters, uint32* aNumbers)
{
    const uint64* theBegin = anIndex->mParameterHashes;
    const uint64* theEnd = theBegin + anIndex->mParameterHashCount;
    ParameterSet theSet = {};
    uint32* theNumbersEnd = aNumbers;
    for (string_view theParameter; NextParameter(&aParameters, &theParameter);)
    {
        const uint64 theHash = KeyedHash::Hash(anIndex->mKey, theParameter);
        const uint64* theFound = std::lower_bound(theBegin, theEnd, theHash);
        if (theFound == theEnd || *theFound != theHash) { continue; }
        *theNumbersEnd = anIndex->mParameterNumbers[theFound - theBegin];
        theSet.mFingerprint.Add(*theNumbersEnd++);
    }
    std::sort(aNumbers, theNumbersEnd);
    theSet.mNumbers = aNumbers;
    theSet.mCount = static_cast<uint32>(std::unique(aNumbers, theNumbersEnd) - aNumbers);
    return theSet;
}

// Makes the set of each element, and adds to its hash that one of its parameters which the fewest elements have: a
// protocol info without it is not compared with the element, however many elements have other parameters.
static void AddParameterSets(MatchIndex* anIndex)
{
    uint32 theParameterCount = 0;
    uint32 theSetCount = 0;
    for (uint32 i = 0; i < anIndex->mCount; ++i)
    {
        const uint32 theCount = CountParameters(anIndex->mEntries[i].mInfo->mMimeParameters);
        theParameterCount += theCount;
        anIndex->mEntries[i].mParameters = theCount > 0 ? theSetCount++ : kNone;
    }
    if (theSetCount == 0) { return; }
    anIndex->mSetCount = theSetCount;
    CollectParameters(anIndex, theParameterCount);
    anIndex->mSets = Shared::NewArray<ParameterSet>(theSetCount);
    anIndex->mNumbers = Shared::NewArray<uint32>(theParameterCount);
    uint32* theNumbers = anIndex->mNumbers;
    for (uint32 i = 0; i < anIndex->mCount; ++i)
    {
        Entry* theEntry = &anIndex->mEntries[i];
        if (theEntry->mParameters == kNone) { continue; }
        const ParameterSet theSet = ReadSet(anIndex, theEntry->mInfo->mMimeParameters, theNumbers);
        anIndex->mSets[theEntry->mParameters] = theSet;
        theEntry->mMimeType = WithParameter(theEntry->mMimeType, theSet.mNumbers[0]);
        theNumbers += theSet.mCount;
    }
}

// ---- Elements ----

uint32 ProtocolInfo::HashOfWildCard(uint64 aKey, string_view aMimeType)
{
    string_view theRest = TypeOf(aMimeType);
    uint64 theHash = 0;
    while (AddToBeginning(aKey, &theRest, &theHash))
        ;
    return Shorten(theHash);
}

static Entry EntryOf(uint64 aKey, const zoDLNAProtocolInfo_t* anInfo)
{
    return { anInfo,
             HashOfMimeType(aKey, anInfo->mMimeType),
             HashOfProfile(aKey, anInfo->mProfile),
             HashOfField(aKey, anInfo->mProtocol),
             HashOfField(aKey, anInfo->mNetwork),
             kNone };
}

// Equal elements become neighbours.
static bool IsBefore(const Entry& aLeft, const Entry& aRight)
{
    const uint32 theLeft[] = { aLeft.mMimeType, aLeft.mProfile, aLeft.mProtocol, aLeft.mNetwork };
    const uint32 theRight[] = { aRight.mMimeType, aRight.mProfile, aRight.mProtocol, aRight.mNetwork };
    for (size_t i = 0; i < std::size(theLeft); ++i)
    {
        if (theLeft[i] != theRight[i]) { return theLeft[i] < theRight[i]; }
    }
    const int theOrder = aLeft.mInfo->mProfile.compare(aRight.mInfo->mProfile);
    if (theOrder != 0) { return theOrder < 0; }
    const int theParameterOrder = aLeft.mInfo->mMimeParameters.compare(aRight.mInfo->mMimeParameters);
    if (theParameterOrder != 0) { return theParameterOrder < 0; }
    return aLeft.mInfo->mMimeType.size() < aRight.mInfo->mMimeType.size(); // wild cards of one hash: "*", "*/*"
}

// True if two elements match the same.
static bool AreEqual(const Entry& aLeft, const Entry& aRight)
{
    const zoDLNAProtocolInfo_t* theLeft = aLeft.mInfo;
    const zoDLNAProtocolInfo_t* theRight = aRight.mInfo;
    return IsSame(theLeft->mMimeType, theRight->mMimeType) && theLeft->mProfile == theRight->mProfile &&
           IsSame(theLeft->mProtocol, theRight->mProtocol) && IsSame(theLeft->mNetwork, theRight->mNetwork) &&
           theLeft->mMimeParameters == theRight->mMimeParameters;
}

// Of several elements that match the same, one is kept.
static void SortEntries(MatchIndex* anIndex)
{
    Entry* theEntries = anIndex->mEntries;
    std::sort(theEntries, theEntries + anIndex->mCount, IsBefore);
    const Entry* theEnd = std::unique(theEntries, theEntries + anIndex->mCount, AreEqual);
    anIndex->mCount = static_cast<uint32>(theEnd - theEntries);
    const zoDLNAProtocolInfo_t* theFirst = theEntries[0].mInfo;
    anIndex->mfHasOneTransport = std::all_of(theEntries, theEntries + anIndex->mCount,
                                             [theFirst](const Entry& anEntry)
                                             {
        return Shared::Equals(anEntry.mInfo->mProtocol, theFirst->mProtocol) &&
               Shared::Equals(anEntry.mInfo->mNetwork, theFirst->mNetwork);
    });
}

// Puts the positions of all entries in an order into an array of as many.
static void WriteOrder(const MatchIndex* anIndex, Order anOrder, bool afNetworkFirst, uint32* anArray)
{
    const auto theFormatOf = [=](const Entry& anEntry)
    {
        const uint64 theMimeType = anOrder != kByProfile ? anEntry.mMimeType : 0;
        return theMimeType << 32 | (anOrder != kByMimeType ? anEntry.mProfile : 0);
    };
    for (uint32 i = 0; i < anIndex->mCount; ++i)
        anArray[i] = i;
    std::sort(anArray, anArray + anIndex->mCount,
              [=](uint32 aLeft, uint32 aRight)
              {
        const Entry& theLeft = anIndex->mEntries[aLeft];
        const Entry& theRight = anIndex->mEntries[aRight];
        const uint64 theLeftFormat = theFormatOf(theLeft);
        const uint64 theRightFormat = theFormatOf(theRight);
        return theLeftFormat != theRightFormat
                   ? theLeftFormat < theRightFormat
                   : theLeft.GetTransport(afNetworkFirst) < theRight.GetTransport(afNetworkFirst);
    });
}

static uint32* NewOrder(const MatchIndex* anIndex, Order anOrder)
{
    uint32* theOrder = Shared::NewArray<uint32>(anIndex->mCount);
    WriteOrder(anIndex, anOrder, false, theOrder);
    return theOrder;
}

const uint32* ProtocolInfo::FindNetworkFirst(const MatchIndex* anIndex)
{
    uint32* theOrders = anIndex->mNetworkFirst.load(std::memory_order_acquire);
    if (theOrders) { return theOrders; }
    uint32* theNewOrders = Shared::NewArray<uint32>(Shared::MultiplySizes(kOrderCount, anIndex->mCount));
    for (const Order theOrder : { kByFormat, kByMimeType, kByProfile })
        WriteOrder(anIndex, theOrder, true, theNewOrders + size_t{ theOrder } * anIndex->mCount);
    auto* theKept = &anIndex->mNetworkFirst;
    if (theKept->compare_exchange_strong(theOrders, theNewOrders, std::memory_order_acq_rel)) { return theNewOrders; }
    free(theNewOrders); // another thread was faster
    return theOrders;
}

static void CollectWildCards(MatchIndex* anIndex)
{
    anIndex->mWildCards = Shared::NewArray<WildCard>(anIndex->mCount);
    for (uint32 i = 0; i < anIndex->mCount; ++i)
    {
        const string_view theMimeType = anIndex->mEntries[i].mInfo->mMimeType;
        if (!IsWildCard(theMimeType)) { continue; }
        anIndex->mWildCards[anIndex->mWildCardCount++] = { HashOfWildCard(anIndex->mKey, theMimeType), i };
    }
    std::sort(anIndex->mWildCards, anIndex->mWildCards + anIndex->mWildCardCount, IsTypeBefore);
}

template <typename HashAt>
static HashTable NewHashTable(uint32 aCount, HashAt aHashAt)
{
    uint32 theSize = 2;
    while (theSize < 2 * aCount)
        theSize *= 2;
    const HashTable theTable = { Shared::NewArray<uint32>(theSize), theSize - 1 };
    std::fill_n(theTable.mSlots, theSize, kNone);
    for (uint32 i = 0; i < aCount; ++i)
    {
        if (i > 0 && aHashAt(i) == aHashAt(i - 1)) { continue; }
        uint32 theSlot = aHashAt(i) & theTable.mMask;
        while (theTable.mSlots[theSlot] != kNone)
            theSlot = (theSlot + 1) & theTable.mMask;
        theTable.mSlots[theSlot] = i;
    }
    return theTable;
}

// ---- The index ----

static MatchIndex* NewMatchIndex(const zoDLNAProtocolInfoList_t* aList)
{
    MatchIndex* theIndex = Shared::NewZeroedArray<MatchIndex>(1);
    theIndex->mKey = KeyedHash::NewKey();
    theIndex->mCount = static_cast<uint32>(CountOf(aList));
    theIndex->mEntries = Shared::NewArray<Entry>(theIndex->mCount);
    for (uint32 i = 0; i < theIndex->mCount; ++i)
        theIndex->mEntries[i] = EntryOf(theIndex->mKey, SlotAt(aList, i)->mInfo);
    AddParameterSets(theIndex);
    SortEntries(theIndex);
    CollectWildCards(theIndex);
    theIndex->mOrders[kByProfile] = NewOrder(theIndex, kByProfile);
    if (!theIndex->mfHasOneTransport) { theIndex->mOrders[kByMimeType] = NewOrder(theIndex, kByMimeType); }
    theIndex->mMimeTypes = NewHashTable(theIndex->mCount, MimeTypeAt(theIndex));
    theIndex->mProfiles = NewHashTable(theIndex->mCount, ProfileAt(theIndex));
    return theIndex;
}

static void DeleteMatchIndex(MatchIndex* anIndex)
{
    if (!anIndex) { return; }
    free(anIndex->mEntries);
    free(anIndex->mMimeTypes.mSlots);
    for (uint32* theOrder : anIndex->mOrders)
        free(theOrder);
    free(anIndex->mNetworkFirst);
    free(anIndex->mProfiles.mSlots);
    free(anIndex->mWildCards);
    free(anIndex->mParameterHashes);
    free(anIndex->mParameterNumbers);
    free(anIndex->mSets);
    free(anIndex->mNumbers);
    free(anIndex);
}

void ProtocolInfo::DropMatchIndex(zoDLNAProtocolInfoList_t* aList)
{
    DeleteMatchIndex(aList->mMatchIndex.exchange(nullptr, std::memory_order_relaxed));
}

const MatchIndex* ProtocolInfo::FindMatchIndex(const zoDLNAProtocolInfoList_t* aList)
{
    auto* theKept = &const_cast<zoDLNAProtocolInfoList_t*>(aList)->mMatchIndex;
    MatchIndex* theIndex = theKept->load(std::memory_order_acquire);
    if (theIndex) { return theIndex; }
    const size_t theCount = CountOf(aList);
    bool fNeedsIndex = theCount > kMostWithoutIndex;
    for (size_t i = 0; !fNeedsIndex && i < theCount; ++i)
        fNeedsIndex = SlotAt(aList, i)->mInfo->mMimeParameters.data() != nullptr;
    if (!fNeedsIndex) { return nullptr; }
    MatchIndex* theNewIndex = NewMatchIndex(aList);
    if (theKept->compare_exchange_strong(theIndex, theNewIndex, std::memory_order_acq_rel)) { return theNewIndex; }
    DeleteMatchIndex(theNewIndex); // another thread was faster
    return theIndex;
}
