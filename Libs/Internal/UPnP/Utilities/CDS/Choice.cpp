#include <UPnP/Utilities/CDS/Choice.h>

#include <UPnP/Utilities/CDS/Best.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <algorithm>

namespace CDS
{

const Stage kStages[kStageCount] = {
    { true, kzoDLNAProtocolInfoMatch_NoMimeTypeCheck | kzoDLNAProtocolInfoMatch_ProfileNotNULL,
      kRendererPlayConfidence_Should },
    { true, kzoDLNAProtocolInfoMatch_AnyProfile, kRendererPlayConfidence_May },
    { true, kzoDLNAProtocolInfoMatch_AnyProfile | kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck,
      kRendererPlayConfidence_May },
    { true, kzoDLNAProtocolInfoMatch_NoProfileCheck, kRendererPlayConfidence_ShouldNot },
    { false, kzoDLNAProtocolInfoMatch_Default, kRendererPlayConfidence_ShouldNot },
};

// A resource without protocol info matches everything, and everything matches without a list.
bool Matches(const Stage& aStage, const Resource& aResource, const Renderer& aRenderer)
{
    return !aResource.mfHasProtocolInfo || !aStage.mfUsesSinkList || !aRenderer.mSinkList ||
           zoDLNAProtocolInfoList_Match(aRenderer.mSinkList, aResource.mInfo, aStage.mMatchFlags) != 0;
}

uint32 Weigh(const Stage& aStage, const Resources& aResources, uint32 anIndex, Targets aTargets)
{
    const bool fHasProfile = aStage.mConfidence == kRendererPlayConfidence_Should && aResources.GetProfile(anIndex);
    return (fHasProfile ? kHasProfileWeight : 0) + aResources.WeighHost(anIndex, aTargets);
}

bool IsConsidered(const Resource& aResource, const Renderer& aRenderer)
{
    if (!aResource.mfHasProtocolInfo) { return aResource.mInfo != nullptr; }
    if (aRenderer.mfLeavingOutConverted && aResource.IsConverted()) { return false; }
    return aRenderer.mfSearchingThumbnail || !zoDLNAProtocolInfo_IsThumbnail(aResource.mInfo);
}

bool PutsUnconvertedFirst(const Stage& aStage, const Renderer& aRenderer)
{
    return aStage.mfUsesSinkList && zoDLNAProtocolInfoList_GetCount(aRenderer.mSinkList) > 0;
}

size_t RankByTransport(const Renderer& aRenderer, zoDLNAProtocolInfo_t** anInfos, size_t aCount)
{
    const char* theOrder = aRenderer.mSchemeOrder;
    return zoDLNAProtocolInfoList_RankByScheme(aRenderer.mSinkList,
                                               theOrder && *theOrder ? theOrder : kzoPreferredSchemeOrder_Default,
                                               aRenderer.mSupportedProtocols, anInfos, aCount);
}

// Puts the resources whose transport protocol suits in an array, the best transport protocol first, and of equally good
// ones, if asked for, what is not converted. @return their number.
static size_t PutResourceIndexInArray(const Resources& aResources, const Renderer& aRenderer, bool afUnconvertedFirst,
                                      zoDLNAProtocolInfo_t** anArray)
{
    zoDLNAProtocolInfo_t** const theEnd = anArray + aResources.GetCount();
    zoDLNAProtocolInfo_t** theLast = theEnd; // from here on, last first, what is converted
    size_t theCount = 0;
    for (uint32 i = 0; i < aResources.GetCount(); ++i)
    {
        const Resource& theResource = aResources.At(i);
        if (!IsConsidered(theResource, aRenderer)) { continue; }
        const bool fComesLast = afUnconvertedFirst && theResource.IsConverted();
        *(fComesLast ? --theLast : anArray + theCount++) = theResource.mInfo;
    }
    std::reverse(theLast, theEnd);
    if (theLast != anArray + theCount) { std::copy(theLast, theEnd, anArray + theCount); }
    theCount += static_cast<size_t>(theEnd - theLast);
    return theCount > 0 ? RankByTransport(aRenderer, anArray, theCount) : 0;
}

// @return the index of the first of the ranked resources that match in a stage and that no other outweighs; -1 when
//         none matches.
static int ChooseInStage(const Stage& aStage, const Resources& aResources, const Renderer& aRenderer,
                         zoDLNAProtocolInfo_t* const* aRanked, size_t aCount)
{
    Best theBest([&](uint32 anIndex) { return Weigh(aStage, aResources, anIndex, aRenderer.mTargets); });
    for (size_t i = 0; i < aCount; ++i)
    {
        const uint32 theIndex = static_cast<uint32>(zoDLNAProtocolInfo_GetUserData(aRanked[i]));
        if (Matches(aStage, aResources.At(theIndex), aRenderer)) { theBest.Add(theIndex); }
    }
    return theBest.GetIndex();
}

Choice Choose(Resources* aResources, const Renderer& aRenderer)
{
    zoDLNAProtocolInfo_t** theRanked = aResources->GetRoom();
    bool fUnconvertedFirst = PutsUnconvertedFirst(kStages[0], aRenderer);
    size_t theCount = PutResourceIndexInArray(*aResources, aRenderer, fUnconvertedFirst, theRanked);
    for (const Stage& theStage : kStages)
    {
        if (fUnconvertedFirst && !PutsUnconvertedFirst(theStage, aRenderer))
        {
            fUnconvertedFirst = false;
            theCount = PutResourceIndexInArray(*aResources, aRenderer, fUnconvertedFirst, theRanked);
        }
        const int theBest = ChooseInStage(theStage, *aResources, aRenderer, theRanked, theCount);
        if (theBest >= 0) { return { theBest, theStage.mConfidence }; }
    }
    return { -1, kRendererPlayConfidence_WillNot };
}

Choice ChooseOriginal(Resources* aResources, Renderer* aRenderer)
{
    aRenderer->mfLeavingOutConverted = true;
    const Choice theOriginal = Choose(aResources, *aRenderer);
    if (theOriginal.mConfidence >= kRendererPlayConfidence_May) { return theOriginal; }
    aRenderer->mfLeavingOutConverted = false;
    const Choice theChoice = Choose(aResources, *aRenderer);
    if (theChoice.mConfidence > theOriginal.mConfidence) { return theChoice; }
    aRenderer->mfLeavingOutConverted = true;
    return theOriginal;
}

} // namespace CDS
