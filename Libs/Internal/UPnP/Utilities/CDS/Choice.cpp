#include <UPnP/Utilities/CDS/Choice.h>

#include <UPnP/Utilities/UPnPConst.h>
#include <algorithm>

namespace CDS
{

namespace
{

// How close a match has to be, from the closest on.
struct Stage
{
    bool mfUsesSinkList;
    int mMatchFlags;
    int mConfidence;
};

const Stage kStages[] = {
    { true, kzoDLNAProtocolInfoMatch_NoMimeTypeCheck | kzoDLNAProtocolInfoMatch_ProfileNotNULL,
      kRendererPlayConfidence_Should },
    { true, kzoDLNAProtocolInfoMatch_AnyProfile, kRendererPlayConfidence_May },
    { true, kzoDLNAProtocolInfoMatch_AnyProfile | kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck,
      kRendererPlayConfidence_May },
    { true, kzoDLNAProtocolInfoMatch_NoProfileCheck, kRendererPlayConfidence_ShouldNot },
    { false, kzoDLNAProtocolInfoMatch_Default, kRendererPlayConfidence_ShouldNot },
};

// The weight of a resource, a number:
//
//     bit 15    it has a DLNA profile that the renderer plays
//     bit 4     its host is an IPv4 address
//     bits 0-1  the highest locality of its host, 0 to 3
const uint32 kHasProfileWeight = 0x8000;

} // namespace

static bool IsCandidate(const Resource& aResource, const zoDLNAProtocolInfoList_t* aSinkList, bool afSearchingThumbnail,
                        int aMatchFlags)
{
    if (!aResource.mfHasProtocolInfo) { return aResource.mInfo != nullptr; }
    if (!afSearchingThumbnail && zoDLNAProtocolInfo_IsThumbnail(aResource.mInfo)) { return false; }
    return !aSinkList || zoDLNAProtocolInfoList_Match(aSinkList, aResource.mInfo, aMatchFlags) != 0;
}

// Collects in the resources' room those that match the sink list, or all without one. With a sink list that is not
// empty, resources that are not converted come first. @return their number.
static size_t GetMatchingResourceList(Resources* aResources, const zoDLNAProtocolInfoList_t* aSinkList,
                                      bool afSearchingThumbnail, int aMatchFlags)
{
    const bool fSinkHasProtocolInfo = zoDLNAProtocolInfoList_GetCount(aSinkList) > 0;
    zoDLNAProtocolInfo_t** theCandidates = aResources->GetRoom();
    zoDLNAProtocolInfo_t** const theRoomEnd = theCandidates + aResources->GetCount();
    zoDLNAProtocolInfo_t** theLast = theRoomEnd; // from here on, last first, those that come last
    size_t theCount = 0;
    for (uint32 i = 0; i < aResources->GetCount(); ++i)
    {
        const Resource& theResource = aResources->At(i);
        if (!IsCandidate(theResource, aSinkList, afSearchingThumbnail, aMatchFlags)) { continue; }
        const bool fComesLast =
            fSinkHasProtocolInfo && zoDLNAProtocolInfo_GetConversionIndicator(theResource.mInfo) != 0;
        *(fComesLast ? --theLast : theCandidates + theCount++) = theResource.mInfo;
    }
    std::reverse(theLast, theRoomEnd);
    std::copy(theLast, theRoomEnd, theCandidates + theCount);
    return theCount + static_cast<size_t>(theRoomEnd - theLast);
}

// Moves the candidates whose transport protocol suits to the front, the best first. @return their number.
static size_t PutResourceIndexInArray(zoDLNAProtocolInfo_t** aCandidates, size_t aCount, const Renderer& aRenderer)
{
    const bool fHasOrder = *aRenderer.mSchemeOrder != '\0';
    return zoDLNAProtocolInfoList_RankByScheme(aRenderer.mSinkList,
                                               fHasOrder ? aRenderer.mSchemeOrder : kzoPreferredSchemeOrder_Default,
                                               aRenderer.mSupportedProtocols, aCandidates, aCount);
}

static uint32 Weigh(const Resources& aResources, uint32 anIndex, int aConfidence, Targets aTargets)
{
    const bool fHasProfile = aConfidence == kRendererPlayConfidence_Should && aResources.GetProfile(anIndex);
    return (fHasProfile ? kHasProfileWeight : 0) + aResources.WeighHost(anIndex, aTargets);
}

// @return the first of the candidates, of which there is one at least, that no other outweighs.
static uint32 FindHeaviest(const Resources& aResources, zoDLNAProtocolInfo_t* const* aCandidates, size_t aCount,
                           int aConfidence, Targets aTargets)
{
    const auto theIndexAt = [aCandidates](size_t aPosition)
    { return static_cast<uint32>(zoDLNAProtocolInfo_GetUserData(aCandidates[aPosition])); };
    uint32 theBest = theIndexAt(0);
    if (aCount == 1) { return theBest; }
    uint32 theBestWeight = Weigh(aResources, theBest, aConfidence, aTargets);
    for (size_t i = 1; i < aCount; ++i)
    {
        const uint32 theWeight = Weigh(aResources, theIndexAt(i), aConfidence, aTargets);
        if (theWeight <= theBestWeight) { continue; }
        theBest = theIndexAt(i);
        theBestWeight = theWeight;
    }
    return theBest;
}

Choice Choose(Resources* aResources, const Renderer& aRenderer)
{
    for (const Stage& theStage : kStages)
    {
        zoDLNAProtocolInfo_t** theCandidates = aResources->GetRoom();
        size_t theCount = GetMatchingResourceList(aResources, theStage.mfUsesSinkList ? aRenderer.mSinkList : nullptr,
                                                  aRenderer.mfSearchingThumbnail, theStage.mMatchFlags);
        if (theCount > 0) { theCount = PutResourceIndexInArray(theCandidates, theCount, aRenderer); }
        if (theCount == 0) { continue; }
        const uint32 theBest =
            FindHeaviest(*aResources, theCandidates, theCount, theStage.mConfidence, aRenderer.mTargets);
        return { static_cast<int>(theBest), theStage.mConfidence };
    }
    return { -1, kRendererPlayConfidence_WillNot };
}

} // namespace CDS
