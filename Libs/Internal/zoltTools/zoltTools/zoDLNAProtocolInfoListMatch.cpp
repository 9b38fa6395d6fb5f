// Whether a list plays what a protocol info describes: element by element in short lists, by an index in long ones.

#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <Shared/ASCII.h>
#include <Shared/Sizes.h>
#include <algorithm>
#include <stdlib.h>
#include <zoltTools/Private/zoDLNAProtocolInfoListIndex.h>

using namespace ProtocolInfo;
using std::string_view;

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

// ---- Asking the index ----

namespace
{

// A protocol info that is compared with the elements of an index, in several ways one after the other. What is asked of
// it for few elements is made at the first question.
class Query
{
public:
    Query(const MatchIndex* anIndex, const zoDLNAProtocolInfo_t* anInfo);
    ~Query() { free(mAllocatedNumbers); }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    bool MatchesTransport() const;
    bool MatchesAny(int aFlags);

private:
    bool Matches(const Entry& anEntry);
    bool ProfileMayMatch(const Entry& anEntry);
    bool TransportMayMatch(const Entry& anEntry);
    uint64 FindTransport(const Entry& anEntry) const;
    template <typename IsOfRun>
    bool MatchesRun(Order anOrder, uint32 aFirst, IsOfRun afIsOfRun);
    const ParameterSet& GetSet();
    bool HasParametersOf(const Entry& anEntry);
    uint32 GetProfile();
    bool MatchesProfiles();
    bool MatchesAmong(uint32 aMimeType);
    bool MatchesAmong(uint32 aMimeType, bool afAnyProfile, uint32 aProfile);
    bool MatchesHash(uint32 aMimeType, bool afAnyProfile, uint32 aProfile);
    bool MatchesMimeType();
    bool MatchesWildCardsOf(uint32 aType);
    bool MatchesWildCards();

    const MatchIndex* mIndex;
    const zoDLNAProtocolInfo_t* mInfo;
    const uint32* mNetworkFirst; // of the index; NULL unless any protocol matches, and not any network
    int mFlags = 0;

    int mMismatchFlags = -1; // those for which no element of the MIME type matches, without WildCardMimeTypeCheck
    uint32 mMimeType = 0;    // hashes; 0 until they are asked for
    uint32 mProfile = 0;
    bool mfHasTransport = false;
    uint32 mFirstField = 0; // hashes of protocol and network, or the other way round
    uint32 mSecondField = 0;
    bool mfHasSet = false;
    ParameterSet mSet = {};
    uint32 mMissingNumber = kNone; // of a parameter that an element has and the protocol info lacks
    uint32 mFewNumbers[16];
    uint32* mAllocatedNumbers = nullptr;
};

} // namespace

Query::Query(const MatchIndex* anIndex, const zoDLNAProtocolInfo_t* anInfo) : mIndex(anIndex), mInfo(anInfo)
{
    const bool fNetworkDecides = !anIndex->mfHasOneTransport && IsAny(anInfo->mProtocol) && !IsAny(anInfo->mNetwork);
    mNetworkFirst = fNetworkDecides ? FindNetworkFirst(anIndex) : nullptr;
}

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
    if (mIndex->mfHasOneTransport) { return true; }
    if (!mfHasTransport)
    {
        if (HaveCommonTransport(anEntry.mInfo, mInfo)) { return true; }
        mfHasTransport = true;
        mFirstField = HashOfField(mIndex->mKey, mNetworkFirst ? mInfo->mNetwork : mInfo->mProtocol);
        mSecondField = HashOfField(mIndex->mKey, mNetworkFirst ? mInfo->mProtocol : mInfo->mNetwork);
    }
    return FindTransport(anEntry) == anEntry.GetTransport(mNetworkFirst != nullptr);
}

// @return the least hash, equal to that of an element's field or above, that may match a field; above all others when
// there is none.
static uint64 FindField(uint32 anElement, uint32 aField)
{
    if (anElement == 0 || aField == 0) { return anElement; }
    return anElement <= aField ? aField : uint64{ 1 } << 32;
}

// @return an element's transport if it may match; else one above it, and none from the element's up to there may match.
// The hashes of the protocol info's fields are known.
uint64 Query::FindTransport(const Entry& anEntry) const
{
    const uint64 theTransport = anEntry.GetTransport(mNetworkFirst != nullptr);
    const uint64 theFirst = FindField(static_cast<uint32>(theTransport >> 32), mFirstField);
    if (theFirst > UINT32_MAX) { return UINT64_MAX; }
    if (theFirst > theTransport >> 32) { return theFirst << 32; }
    // Or where the next first field begins.
    return (theFirst << 32) + FindField(static_cast<uint32>(theTransport), mSecondField);
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

// Looks at a run of elements in an order, and passes over those whose transport does not match. afIsOfRun tells where
// the run ends.
template <typename IsOfRun>
bool Query::MatchesRun(Order anOrder, uint32 aFirst, IsOfRun afIsOfRun)
{
    const uint32* theOrder =
        mNetworkFirst ? mNetworkFirst + size_t{ anOrder } * mIndex->mCount : mIndex->mOrders[anOrder];
    const auto theEntryAt = [theEntries = mIndex->mEntries, theOrder](uint32 aPosition) -> const Entry&
    { return theEntries[theOrder ? theOrder[aPosition] : aPosition]; };
    for (uint32 i = aFirst; i < mIndex->mCount && afIsOfRun(theEntryAt(i)); ++i)
    {
        if (Matches(theEntryAt(i))) { return true; }
        if (TransportMayMatch(theEntryAt(i))) { continue; }
        const auto fIsPassedOver = [&, theTransport = FindTransport(theEntryAt(i))](uint32 aPosition)
        {
            return aPosition < mIndex->mCount && afIsOfRun(theEntryAt(aPosition)) &&
                   theEntryAt(aPosition).GetTransport(mNetworkFirst != nullptr) < theTransport;
        };
        uint32 theStep = 1;
        for (; fIsPassedOver(i + theStep); theStep *= 2)
            i += theStep;
        for (; theStep > 0; theStep /= 2)
            i += fIsPassedOver(i + theStep) ? theStep : 0;
    }
    return false;
}

// Looks at the elements of the protocol info's profile, or at those without one.
bool Query::MatchesProfiles()
{
    const uint32 theProfile = GetProfile();
    return MatchesRun(kByProfile, mIndex->mProfiles.Find(theProfile, ProfileAt(mIndex)),
                      [theProfile](const Entry& anEntry) { return anEntry.mProfile == theProfile; });
}

// Looks at the elements of one hash of the MIME type: at all of them or at those of one profile, of 0 at those without
// one. All orders by MIME type or format begin a MIME type at one position, those by format a profile of it, too.
bool Query::MatchesHash(uint32 aMimeType, bool afAnyProfile, uint32 aProfile)
{
    uint32 theFirst = mIndex->mMimeTypes.Find(aMimeType, MimeTypeAt(mIndex));
    if (theFirst == kNone) { return false; }
    if (afAnyProfile)
    {
        return MatchesRun(kByMimeType, theFirst, [=](const Entry& anEntry) { return anEntry.mMimeType == aMimeType; });
    }
    const Entry* theEntries = mIndex->mEntries;
    if (aProfile != theEntries[theFirst].mProfile)
    {
        const Entry* theFound = std::lower_bound(theEntries + theFirst, theEntries + mIndex->mCount, aProfile,
                                                 [aMimeType](const Entry& anEntry, uint32 aLeast) {
            return anEntry.mMimeType == aMimeType && anEntry.mProfile < aLeast;
        });
        theFirst = static_cast<uint32>(theFound - theEntries);
    }
    return MatchesRun(kByFormat, theFirst,
                      [=](const Entry& anEntry)
                      { return anEntry.mMimeType == aMimeType && anEntry.mProfile == aProfile; });
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

// Looks at the wild cards that cover what begins so: one by one, or by profile when that takes fewer steps.
bool Query::MatchesWildCardsOf(uint32 aType)
{
    const auto [theFirst, theEnd] = std::equal_range(mIndex->mWildCards, mIndex->mWildCards + mIndex->mWildCardCount,
                                                     WildCard{ aType, 0 }, IsTypeBefore);
    const uint32 theCount = static_cast<uint32>(theEnd - theFirst);
    if (theCount == 0) { return false; }
    if (theCount > (mIndex->mSets ? GetSet().mCount : 0)) { return MatchesAmong(aType); }
    return std::any_of(theFirst, theEnd,
                       [this](const WildCard& aWildCard) { return Matches(mIndex->mEntries[aWildCard.mEntry]); });
}

// Looks at the wild cards that cover all, and at those of each beginning of the MIME type up to a slash.
bool Query::MatchesWildCards()
{
    if (mIndex->mWildCardCount == 0) { return false; }
    string_view theRest = mInfo->mMimeType;
    uint64 theBeginning = 0;
    do
    {
        if (MatchesWildCardsOf(Shorten(theBeginning))) { return true; }
    } while (AddToBeginning(mIndex->mKey, &theRest, &theBeginning));
    return false;
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
