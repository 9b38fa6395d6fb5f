// Whether a list plays what a protocol info describes: element by element in short lists, by an index in long ones.

#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <Shared/ASCII.h>
#include <Shared/Sizes.h>
#include <Shared/Split.h>
#include <algorithm>
#include <stdlib.h>
#include <zoltTools/Private/zoDLNAProtocolInfoList.h>
#include <zoltTools/Private/zoKeyedHash.h>

using ProtocolInfo::CountOf;
using ProtocolInfo::IsAny;
using ProtocolInfo::IsSame;
using ProtocolInfo::SlotAt;
using std::string_view;

namespace
{

// Lists of more elements, or whose MIME types have parameters, get an index.
const size_t kMostWithoutIndex = 16;
const uint32 kNone = 0xFFFFFFFF;

// An element, told apart from most others without a look at its texts.
struct Entry
{
    const zoDLNAProtocolInfo_t* mInfo;
    uint32 mMimeType;   // hashes; this one is of what a wild card covers, and of the rarest parameter if there are any
    uint32 mProfile;    // 0 without a profile, and only then
    uint32 mProtocol;   // 0 for "*", and only then
    uint32 mNetwork;    // as mProtocol
    uint32 mParameters; // position of the set; kNone without one
};

// An element whose MIME type is a wild card with more than one slash.
struct DeepWildCard
{
    uint32 mEntry;      // a position
    uint32 mTypeLength; // of what stands before the "*", the "/" at its end included
    uint32 mType;       // the hash of that
};

// A bit each for the parameters of a MIME type, some of which share one.
struct Fingerprint
{
    static const uint32 kBits = 256;
    uint64 mBits[kBits / 64];

    void Add(uint32 aParameter) { mBits[aParameter % kBits / 64] |= uint64(1) << (aParameter % 64); }
    bool IsCoveredBy(const Fingerprint& anOther) const
    {
        uint64 theMissing = 0;
        for (size_t i = 0; i < kBits / 64; ++i)
            theMissing |= mBits[i] & ~anOther.mBits[i];
        return theMissing == 0;
    }
};

// The parameters of an element's MIME type by their numbers, in ascending order.
struct ParameterSet
{
    Fingerprint mFingerprint;
    const uint32* mNumbers; // in the array of the index
    uint32 mCount;

    bool Has(uint32 aNumber) const { return std::binary_search(mNumbers, mNumbers + mCount, aNumber); }

    // @return a number that the other one lacks; kNone when it has all. Takes little time when one set is much larger
    // than the other, too.
    uint32 FindMissing(const ParameterSet& anOther) const
    {
        const uint32* theEnd = anOther.mNumbers + anOther.mCount;
        const uint32* thePosition = anOther.mNumbers;
        const uint32* theMissing = std::find_if(mNumbers, mNumbers + mCount,
                                                [&](uint32 aNumber)
                                                {
            thePosition = std::lower_bound(thePosition, theEnd, aNumber);
            return thePosition == theEnd || *thePosition != aNumber;
        });
        return theMissing == mNumbers + mCount ? kNone : *theMissing;
    }
};

// Finds the first element of each hash in an array that is sorted by it. The slots are at most half full.
struct HashTable
{
    uint32* mSlots; // positions; kNone is free
    uint32 mMask;

    // aHashAt tells the hash at a position. @return a position; kNone when no element has the hash.
    template <typename HashAt>
    uint32 Find(uint32 aHash, HashAt aHashAt) const
    {
        uint32 theSlot = aHash & mMask;
        while (mSlots[theSlot] != kNone && aHashAt(mSlots[theSlot]) != aHash)
            theSlot = (theSlot + 1) & mMask;
        return mSlots[theSlot];
    }
};

} // namespace

// The elements of a list in two orders of their hashes, and the parameters of their MIME types numbered in the order of
// theirs. Parameters are compared by hash alone: all 61 bits of it. Everything else that has one hash is compared, too.
struct ProtocolInfo::MatchIndex
{
    uint64 mKey;
    Entry* mEntries; // in the order of MIME types and profiles
    uint32 mCount;
    HashTable mMimeTypes;
    uint32* mByProfile;  // positions in mEntries
    HashTable mProfiles; // of positions in mByProfile
    bool mfHasWildCards;
    DeepWildCard* mDeepWildCards;
    uint32 mDeepWildCardCount;
    bool mfHasOneTransport; // protocol and network are the same in all elements

    uint64* mParameterHashes; // of all elements, each once
    uint32 mParameterHashCount;
    ParameterSet* mSets;
    uint32 mSetCount;
    uint32* mNumbers; // of all sets
};

using ProtocolInfo::MatchIndex;

// ---- Comparing texts ----

static bool IsSameView(string_view aLeft, string_view aRight)
{
    return aLeft.data() == aRight.data() && aLeft.size() == aRight.size();
}

// True if both are the most common transport, which is a view of a constant.
static bool HaveCommonTransport(const zoDLNAProtocolInfo_t* aLeft, const zoDLNAProtocolInfo_t* aRight)
{
    return IsSameView(aLeft->mProtocol, aRight->mProtocol) && IsSameView(aLeft->mNetwork, aRight->mNetwork);
}

static bool IsSameOrAny(string_view anElement, string_view aField)
{
    return IsSame(anElement, aField) || IsAny(anElement) || IsAny(aField);
}

static bool TransportMatches(const zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo)
{
    return HaveCommonTransport(anElement, anInfo) ||
           (IsSameOrAny(anElement->mProtocol, anInfo->mProtocol) && IsSameOrAny(anElement->mNetwork, anInfo->mNetwork));
}

static bool IsWildCard(string_view aMimeType)
{
    const size_t theLength = aMimeType.size();
    if (theLength == 0 || aMimeType[theLength - 1] != '*') { return false; }
    return theLength == 1 || aMimeType[theLength - 2] == '/';
}

// @return what a MIME type that the wild card covers begins with, a "/" at its end included; "" when it covers all.
static string_view TypeOf(string_view aWildCard)
{
    const string_view theType = aWildCard.substr(0, aWildCard.size() - 1);
    return theType == "*/" ? string_view() : theType;
}

// True if a MIME type that is a wild card covers another.
static bool CoversMimeType(string_view aWildCard, string_view aMimeType)
{
    const string_view theType = TypeOf(aWildCard);
    return Shared::EqualsIgnoringCase(theType, aMimeType.substr(0, theType.size()));
}

// Compares the MIME types without their parameters.
static bool MimeTypeMatches(const zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    if (aFlags & kzoDLNAProtocolInfoMatch_NoMimeTypeCheck) { return true; }
    if ((aFlags & kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck) && IsWildCard(anElement->mMimeType))
    {
        return CoversMimeType(anElement->mMimeType, anInfo->mMimeType);
    }
    return IsSame(anElement->mMimeType, anInfo->mMimeType);
}

static bool ProfileMatches(string_view anElement, string_view aProfile, int aFlags)
{
    if (aFlags & kzoDLNAProtocolInfoMatch_NoProfileCheck) { return true; }
    if (!anElement.empty() && !aProfile.empty()) { return Shared::Equals(anElement, aProfile); }
    if (aFlags & kzoDLNAProtocolInfoMatch_ProfileNotNULL) { return false; }
    return (aFlags & kzoDLNAProtocolInfoMatch_AnyProfile) || anElement.empty() == aProfile.empty();
}

// Compares all but transport and the parameters of the MIME types.
static bool FormatMatches(const zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    return ProfileMatches(anElement->mProfile, anInfo->mProfile, aFlags) && MimeTypeMatches(anElement, anInfo, aFlags);
}

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

// ---- Making the index ----

template <bool afIsExact = false>
static uint32 HashOf(uint64 aKey, string_view aText)
{
    const uint32 theHash = static_cast<uint32>(KeyedHash::Hash<afIsExact>(aKey, aText));
    return theHash != 0 ? theHash : 1;
}

// Wild cards are found by what they cover.
static uint32 HashOfMimeType(uint64 aKey, string_view aMimeType)
{
    return HashOf(aKey, IsWildCard(aMimeType) ? TypeOf(aMimeType) : aMimeType);
}

static uint32 HashOfField(uint64 aKey, string_view aField) { return IsAny(aField) ? 0 : HashOf(aKey, aField); }

static uint32 HashOfProfile(uint64 aKey, string_view aProfile)
{
    return aProfile.empty() ? 0 : HashOf<true>(aKey, aProfile);
}

static uint32 CountParameters(string_view aParameters)
{
    uint32 theCount = 0;
    for (string_view theParameter; NextParameter(&aParameters, &theParameter);)
        ++theCount;
    return theCount;
}

// Collects the hashes of all parameters, and of how many.
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
    theEnd = std::unique(anIndex->mParameterHashes, theEnd);
    anIndex->mParameterHashCount = static_cast<uint32>(theEnd - anIndex->mParameterHashes);
}

// Reads parameters into a set, for whose numbers there is room. Those that no element has are left out.
static ParameterSet ReadSet(const MatchIndex* anIndex, string_view aParameters, uint32* aNumbers)
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
        *theNumbersEnd = static_cast<uint32>(theFound - theBegin);
        theSet.mFingerprint.Add(*theNumbersEnd++);
    }
    std::sort(aNumbers, theNumbersEnd);
    theSet.mNumbers = aNumbers;
    theSet.mCount = static_cast<uint32>(std::unique(aNumbers, theNumbersEnd) - aNumbers);
    return theSet;
}

// The hash of a MIME type and a parameter by its number.
static uint32 WithParameter(uint32 aMimeType, uint32 aParameter) { return aMimeType ^ (aParameter + 1) * 0x9E3779B1u; }

// Adds to each element's hash that one of its parameters which the fewest elements have: a protocol info without it is
// not compared with the element, however many elements have other parameters.
static void AddRarestParameters(MatchIndex* anIndex)
{
    uint32* theCounts = Shared::NewZeroedArray<uint32>(anIndex->mParameterHashCount);
    for (uint32 i = 0; i < anIndex->mSetCount; ++i)
    {
        for (uint32 k = 0; k < anIndex->mSets[i].mCount; ++k)
            ++theCounts[anIndex->mSets[i].mNumbers[k]];
    }
    for (uint32 i = 0; i < anIndex->mCount; ++i)
    {
        Entry* theEntry = &anIndex->mEntries[i];
        if (theEntry->mParameters == kNone) { continue; }
        const ParameterSet& theSet = anIndex->mSets[theEntry->mParameters];
        const uint32* theRarest =
            std::min_element(theSet.mNumbers, theSet.mNumbers + theSet.mCount,
                             [=](uint32 aLeft, uint32 aRight) { return theCounts[aLeft] < theCounts[aRight]; });
        theEntry->mMimeType = WithParameter(theEntry->mMimeType, *theRarest);
    }
    free(theCounts);
}

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
        const Entry& theEntry = anIndex->mEntries[i];
        if (theEntry.mParameters == kNone) { continue; }
        const ParameterSet theSet = ReadSet(anIndex, theEntry.mInfo->mMimeParameters, theNumbers);
        anIndex->mSets[theEntry.mParameters] = theSet;
        theNumbers += theSet.mCount;
    }
    AddRarestParameters(anIndex);
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

static bool IsBefore(const Entry& aLeft, const Entry& aRight)
{
    const uint32 theLeft[] = { aLeft.mMimeType, aLeft.mProfile, aLeft.mProtocol, aLeft.mNetwork };
    const uint32 theRight[] = { aRight.mMimeType, aRight.mProfile, aRight.mProtocol, aRight.mNetwork };
    for (size_t i = 0; i < std::size(theLeft); ++i)
    {
        if (theLeft[i] != theRight[i]) { return theLeft[i] < theRight[i]; }
    }
    const int theOrder = aLeft.mInfo->mProfile.compare(aRight.mInfo->mProfile);
    return theOrder != 0 ? theOrder < 0 : aLeft.mInfo->mMimeParameters < aRight.mInfo->mMimeParameters;
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

static void AddWildCard(MatchIndex* anIndex, uint32 anEntry)
{
    const string_view theType = TypeOf(anIndex->mEntries[anEntry].mInfo->mMimeType);
    anIndex->mfHasWildCards = true;
    if (theType.empty() || theType.find('/') == theType.size() - 1) { return; }
    anIndex->mDeepWildCards[anIndex->mDeepWildCardCount++] = { anEntry, static_cast<uint32>(theType.size()),
                                                               HashOf(anIndex->mKey, theType) };
}

// Of several elements that match the same, one is kept.
static void SortEntries(MatchIndex* anIndex)
{
    Entry* theEntries = anIndex->mEntries;
    std::sort(theEntries, theEntries + anIndex->mCount, IsBefore);
    const Entry* theEnd = std::unique(theEntries, theEntries + anIndex->mCount, AreEqual);
    anIndex->mCount = static_cast<uint32>(theEnd - theEntries);
    anIndex->mByProfile = Shared::NewArray<uint32>(anIndex->mCount);
    anIndex->mDeepWildCards = Shared::NewArray<DeepWildCard>(anIndex->mCount);
    for (uint32 i = 0; i < anIndex->mCount; ++i)
    {
        anIndex->mByProfile[i] = i;
        if (IsWildCard(theEntries[i].mInfo->mMimeType)) { AddWildCard(anIndex, i); }
    }
    std::sort(anIndex->mByProfile, anIndex->mByProfile + anIndex->mCount,
              [theEntries](uint32 aLeft, uint32 aRight)
              { return theEntries[aLeft].mProfile < theEntries[aRight].mProfile; });
}

static auto MimeTypeAt(const MatchIndex* anIndex)
{
    return [theEntries = anIndex->mEntries](uint32 aPosition) { return theEntries[aPosition].mMimeType; };
}

static auto ProfileAt(const MatchIndex* anIndex)
{
    return [theEntries = anIndex->mEntries, theOrder = anIndex->mByProfile](uint32 aPosition)
    { return theEntries[theOrder[aPosition]].mProfile; };
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
    theIndex->mMimeTypes = NewHashTable(theIndex->mCount, MimeTypeAt(theIndex));
    theIndex->mProfiles = NewHashTable(theIndex->mCount, ProfileAt(theIndex));
    const zoDLNAProtocolInfo_t* theFirst = theIndex->mEntries[0].mInfo;
    theIndex->mfHasOneTransport = std::all_of(theIndex->mEntries, theIndex->mEntries + theIndex->mCount,
                                              [theFirst](const Entry& anEntry)
                                              {
        return Shared::Equals(anEntry.mInfo->mProtocol, theFirst->mProtocol) &&
               Shared::Equals(anEntry.mInfo->mNetwork, theFirst->mNetwork);
    });
    return theIndex;
}

static void DeleteMatchIndex(MatchIndex* anIndex)
{
    if (!anIndex) { return; }
    free(anIndex->mEntries);
    free(anIndex->mMimeTypes.mSlots);
    free(anIndex->mByProfile);
    free(anIndex->mProfiles.mSlots);
    free(anIndex->mDeepWildCards);
    free(anIndex->mParameterHashes);
    free(anIndex->mSets);
    free(anIndex->mNumbers);
    free(anIndex);
}

void ProtocolInfo::DropMatchIndex(zoDLNAProtocolInfoList_t* aList)
{
    DeleteMatchIndex(aList->mMatchIndex.exchange(nullptr, std::memory_order_relaxed));
}

// The index of a list, made by the first of the threads that ask for it and kept by the list. NULL when the list does
// not need one.
static const MatchIndex* FindMatchIndex(const zoDLNAProtocolInfoList_t* aList)
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

// ---- Asking the index ----

namespace
{

// A protocol info that is compared with the elements of an index, in several ways one after the other. What is asked of
// it for few elements is made at the first question.
class Query
{
public:
    Query(const MatchIndex* anIndex, const zoDLNAProtocolInfo_t* anInfo) : mIndex(anIndex), mInfo(anInfo) {}
    ~Query() { free(mAllocatedNumbers); }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    bool MatchesTransport() const;
    bool MatchesAny(int aFlags);

private:
    bool Matches(const Entry& anEntry);
    bool ProfileMayMatch(const Entry& anEntry);
    bool TransportMayMatch(const Entry& anEntry);
    const ParameterSet& GetSet();
    bool HasParametersOf(const Entry& anEntry);
    uint32 GetProfile();
    bool MatchesProfiles();
    bool MatchesAmong(uint32 aMimeType);
    bool MatchesAmong(uint32 aMimeType, bool afAnyProfile, uint32 aProfile);
    bool MatchesHash(uint32 aMimeType, bool afAnyProfile, uint32 aProfile);
    bool MatchesMimeType();
    bool MayBeCoveredBy(const DeepWildCard& aWildCard);
    bool MatchesWildCards();

    const MatchIndex* mIndex;
    const zoDLNAProtocolInfo_t* mInfo;
    int mFlags = 0;

    int mMismatchFlags = -1; // those for which no element of the MIME type matches, without WildCardMimeTypeCheck
    uint32 mMimeType = 0;    // hashes; 0 until they are asked for
    uint32 mProfile = 0;
    uint32 mTypeLength = 0; // of the beginning of the MIME type that was last compared with a wild card's
    uint32 mType = 0;       // its hash
    bool mfHasTransport = false;
    uint32 mProtocol = 0;
    uint32 mNetwork = 0;
    bool mfHasSet = false;
    ParameterSet mSet = {};
    uint32 mMissingNumber = kNone; // of a parameter that an element has and the protocol info lacks
    uint32 mFewNumbers[16];
    uint32* mAllocatedNumbers = nullptr;
};

} // namespace

// @return the hash of the protocol info's profile; 0 without one.
uint32 Query::GetProfile()
{
    if (mProfile == 0) { mProfile = HashOfProfile(mIndex->mKey, mInfo->mProfile); }
    return mProfile;
}

bool Query::ProfileMayMatch(const Entry& anEntry)
{
    if (mFlags & kzoDLNAProtocolInfoMatch_NoProfileCheck) { return true; }
    if (anEntry.mProfile != 0 && GetProfile() != 0) { return anEntry.mProfile == mProfile; }
    return ProfileMatches(anEntry.mInfo->mProfile, mInfo->mProfile, mFlags);
}

bool Query::TransportMayMatch(const Entry& anEntry)
{
    if (mIndex->mfHasOneTransport || HaveCommonTransport(anEntry.mInfo, mInfo)) { return true; }
    if (!mfHasTransport)
    {
        mfHasTransport = true;
        mProtocol = HashOfField(mIndex->mKey, mInfo->mProtocol);
        mNetwork = HashOfField(mIndex->mKey, mInfo->mNetwork);
    }
    const auto fMayMatch = [](uint32 anElement, uint32 aField)
    { return anElement == aField || anElement == 0 || aField == 0; };
    return fMayMatch(anEntry.mProtocol, mProtocol) && fMayMatch(anEntry.mNetwork, mNetwork);
}

const ParameterSet& Query::GetSet()
{
    if (!mfHasSet)
    {
        mfHasSet = true;
        const uint32 theCount = CountParameters(mInfo->mMimeParameters);
        if (theCount > std::size(mFewNumbers)) { mAllocatedNumbers = Shared::NewArray<uint32>(theCount); }
        mSet = ReadSet(mIndex, mInfo->mMimeParameters, mAllocatedNumbers ? mAllocatedNumbers : mFewNumbers);
    }
    return mSet;
}

// What is missing for one element is often missing for the next one, too.
bool Query::HasParametersOf(const Entry& anEntry)
{
    if (anEntry.mParameters == kNone || (mFlags & kzoDLNAProtocolInfoMatch_NoMimeTypeCheck)) { return true; }
    const ParameterSet& theSet = mIndex->mSets[anEntry.mParameters];
    if (theSet.mCount > GetSet().mCount || !theSet.mFingerprint.IsCoveredBy(mSet.mFingerprint)) { return false; }
    if (mMissingNumber != kNone && theSet.Has(mMissingNumber)) { return false; }
    mMissingNumber = theSet.FindMissing(mSet);
    return mMissingNumber == kNone;
}

bool Query::Matches(const Entry& anEntry)
{
    return ProfileMayMatch(anEntry) && TransportMayMatch(anEntry) && HasParametersOf(anEntry) &&
           FormatMatches(anEntry.mInfo, mInfo, mFlags) &&
           (mIndex->mfHasOneTransport || TransportMatches(anEntry.mInfo, mInfo));
}

// Looks at the elements of the protocol info's profile, or at those without one.
bool Query::MatchesProfiles()
{
    const uint32 theProfile = GetProfile();
    const Entry* theEntries = mIndex->mEntries;
    const uint32 theFirst = mIndex->mProfiles.Find(theProfile, ProfileAt(mIndex));
    for (uint32 i = theFirst; i < mIndex->mCount && theEntries[mIndex->mByProfile[i]].mProfile == theProfile; ++i)
    {
        if (Matches(theEntries[mIndex->mByProfile[i]])) { return true; }
    }
    return false;
}

// Looks at the elements of one hash of the MIME type: at all of them or at those of one profile, of 0 at those without
// one.
bool Query::MatchesHash(uint32 aMimeType, bool afAnyProfile, uint32 aProfile)
{
    const uint32 theFirst = mIndex->mMimeTypes.Find(aMimeType, MimeTypeAt(mIndex));
    if (theFirst == kNone) { return false; }
    const Entry* theEnd = mIndex->mEntries + mIndex->mCount;
    const Entry* theEntry = mIndex->mEntries + theFirst;
    if (!afAnyProfile && aProfile != theEntry->mProfile)
    {
        theEntry = std::lower_bound(theEntry, theEnd, aProfile,
                                    [aMimeType](const Entry& anEntry, uint32 aLeast)
                                    { return anEntry.mMimeType == aMimeType && anEntry.mProfile < aLeast; });
    }
    for (; theEntry < theEnd && theEntry->mMimeType == aMimeType; ++theEntry)
    {
        if (!afAnyProfile && theEntry->mProfile != aProfile) { return false; }
        if (Matches(*theEntry)) { return true; }
    }
    return false;
}

// Looks at the elements of a MIME type without parameters, and at those with one of the protocol info's.
bool Query::MatchesAmong(uint32 aMimeType, bool afAnyProfile, uint32 aProfile)
{
    if (MatchesHash(aMimeType, afAnyProfile, aProfile)) { return true; }
    if (!mIndex->mSets || !mInfo->mMimeParameters.data()) { return false; }
    const ParameterSet& theSet = GetSet();
    return std::any_of(theSet.mNumbers, theSet.mNumbers + theSet.mCount,
                       [=](uint32 aNumber)
                       { return MatchesHash(WithParameter(aMimeType, aNumber), afAnyProfile, aProfile); });
}

// Looks at the elements of a MIME type with the profiles that may match.
bool Query::MatchesAmong(uint32 aMimeType)
{
    const bool fLooksAtAll = mInfo->mProfile.empty() || (mFlags & kzoDLNAProtocolInfoMatch_NoProfileCheck);
    if (fLooksAtAll) { return MatchesAmong(aMimeType, true, 0); }
    return MatchesAmong(aMimeType, false, GetProfile()) ||
           ((mFlags & kzoDLNAProtocolInfoMatch_AnyProfile) && MatchesAmong(aMimeType, false, 0));
}

bool Query::MatchesMimeType()
{
    const int theFlags = mFlags & ~kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck;
    if (theFlags == mMismatchFlags) { return false; }
    if (mMimeType == 0) { mMimeType = HashOfMimeType(mIndex->mKey, mInfo->mMimeType); }
    const bool fMatches = MatchesAmong(mMimeType);
    if (!fMatches) { mMismatchFlags = theFlags; }
    return fMatches;
}

bool Query::MayBeCoveredBy(const DeepWildCard& aWildCard)
{
    const string_view theMimeType = mInfo->mMimeType;
    const uint32 theLength = aWildCard.mTypeLength;
    if (theLength > theMimeType.size() || theMimeType[theLength - 1] != '/') { return false; }
    if (theLength != mTypeLength)
    {
        mTypeLength = theLength;
        mType = HashOf(mIndex->mKey, theMimeType.substr(0, theLength));
    }
    return mType == aWildCard.mType;
}

// Looks at the wild cards that cover all, at those of the MIME type's type, and one by one at those with more slashes:
// a MIME type may have as many beginnings as it has slashes.
bool Query::MatchesWildCards()
{
    if (!mIndex->mfHasWildCards) { return false; }
    if (MatchesAmong(HashOf(mIndex->mKey, ""))) { return true; }
    const size_t theSlash = mInfo->mMimeType.find('/');
    if (theSlash == string_view::npos) { return false; }
    return MatchesAmong(HashOf(mIndex->mKey, mInfo->mMimeType.substr(0, theSlash + 1))) ||
           std::any_of(mIndex->mDeepWildCards, mIndex->mDeepWildCards + mIndex->mDeepWildCardCount,
                       [this](const DeepWildCard& aWildCard)
                       { return MayBeCoveredBy(aWildCard) && Matches(mIndex->mEntries[aWildCard.mEntry]); });
}

// True if the transport of all elements, when they have one, is that of the protocol info.
bool Query::MatchesTransport() const
{
    return !mIndex->mfHasOneTransport || TransportMatches(mIndex->mEntries[0].mInfo, mInfo);
}

static int FlagsOfProfile(int aFlags)
{
    return aFlags & (kzoDLNAProtocolInfoMatch_NoProfileCheck | kzoDLNAProtocolInfoMatch_AnyProfile |
                     kzoDLNAProtocolInfoMatch_ProfileNotNULL);
}

// True if an element matches, the transport of all elements, when they have one, aside.
bool Query::MatchesAny(int aFlags)
{
    const int kNoCheck = kzoDLNAProtocolInfoMatch_NoProfileCheck;
    const bool fTakesAnyProfile =
        mInfo->mProfile.empty() && FlagsOfProfile(aFlags) == kzoDLNAProtocolInfoMatch_AnyProfile;
    mFlags = fTakesAnyProfile ? (aFlags & ~kzoDLNAProtocolInfoMatch_AnyProfile) | kNoCheck : aFlags;
    if (!(aFlags & kzoDLNAProtocolInfoMatch_NoMimeTypeCheck))
    {
        return MatchesMimeType() || ((aFlags & kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck) && MatchesWildCards());
    }
    if (FlagsOfProfile(aFlags) == kzoDLNAProtocolInfoMatch_ProfileNotNULL)
    {
        return !mInfo->mProfile.empty() && MatchesProfiles();
    }
    return FlagsOfProfile(aFlags) == 0 ? MatchesProfiles()
                                       : std::any_of(mIndex->mEntries, mIndex->mEntries + mIndex->mCount,
                                                     [this](const Entry& anEntry) { return Matches(anEntry); });
}

// ---- Matching ----

// Compares all but the parameters of the MIME types.
static bool MatchesElement(const zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    return FormatMatches(anElement, anInfo, aFlags) && TransportMatches(anElement, anInfo);
}

static bool MatchesOneByOne(const zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    for (size_t i = 0; i < CountOf(aList); ++i)
    {
        if (MatchesElement(SlotAt(aList, i)->mInfo, anInfo, aFlags)) { return true; }
    }
    return false;
}

size_t zoDLNAProtocolInfoList_FindMatch(const zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo,
                                        const int* aFlags, size_t aCount)
{
    if (CountOf(aList) == 0 || !anInfo) { return aCount; }
    const MatchIndex* theIndex = FindMatchIndex(aList);
    const int* theEnd = aFlags + aCount;
    if (!theIndex)
    {
        return static_cast<size_t>(
            std::find_if(aFlags, theEnd, [=](int aMask) { return MatchesOneByOne(aList, anInfo, aMask); }) - aFlags);
    }
    Query theQuery(theIndex, anInfo);
    if (!theQuery.MatchesTransport()) { return aCount; }
    return static_cast<size_t>(
        std::find_if(aFlags, theEnd, [&theQuery](int aMask) { return theQuery.MatchesAny(aMask); }) - aFlags);
}

int zoDLNAProtocolInfoList_Match(const zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    return zoDLNAProtocolInfoList_FindMatch(aList, anInfo, &aFlags, 1) == 0;
}

int zoDLNAProtocolInfo_Match(zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    if (!anElement || !anInfo) { return 0; }
    if (!anElement->mMimeParameters.data()) { return MatchesElement(anElement, anInfo, aFlags); }
    ProtocolInfo::Slot theSlot = { anElement, 0 };
    zoDLNAProtocolInfoList_t theList = {};
    theList.mSlots = &theSlot;
    theList.mEnd = 1;
    const int fMatches = zoDLNAProtocolInfoList_Match(&theList, anInfo, aFlags);
    ProtocolInfo::DropMatchIndex(&theList);
    return fMatches;
}
