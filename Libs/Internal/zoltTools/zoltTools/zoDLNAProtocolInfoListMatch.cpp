// Whether a list plays what a protocol info describes.

#include <zoltTools/zoDLNAProtocolInfoList.h>

#include <algorithm>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfoList.h>

using Run = zoDLNARun_t;

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
