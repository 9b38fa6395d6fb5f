#include <UPnP/Utilities/CDS/Choice.h>

#include <UPnP/Utilities/CDS/Best.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <algorithm>

namespace CDS
{

static const int kMatchFlags[kLastStage] = {
    kzoDLNAProtocolInfoMatch_NoMimeTypeCheck | kzoDLNAProtocolInfoMatch_ProfileNotNULL,
    kzoDLNAProtocolInfoMatch_AnyProfile,
    kzoDLNAProtocolInfoMatch_AnyProfile | kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck,
    kzoDLNAProtocolInfoMatch_NoProfileCheck,
};

const int kConfidences[] = { kRendererPlayConfidence_Should, kRendererPlayConfidence_May, kRendererPlayConfidence_May,
                             kRendererPlayConfidence_ShouldNot, kRendererPlayConfidence_ShouldNot };

// A resource without protocol info matches everything, and everything matches without a list.
uint32 FindStage(const Resource& aResource, const Renderer& aRenderer, uint32 aLimit)
{
    if (!aResource.mfHasProtocolInfo || !aRenderer.mSinkList) { return 0; }
    return static_cast<uint32>(
        zoDLNAProtocolInfoList_FindMatch(aRenderer.mSinkList, aResource.mInfo, kMatchFlags, aLimit));
}

bool HasProfileWeight(uint32 aStage, const Resources& aResources, uint32 anIndex)
{
    return kConfidences[aStage] == kRendererPlayConfidence_Should && aResources.GetProfile(anIndex);
}

bool IsConsidered(const Resource& aResource, const Renderer& aRenderer)
{
    if (!aResource.mfHasProtocolInfo) { return aResource.mInfo != nullptr; }
    if (aRenderer.mfLeavingOutConverted && aResource.IsConverted()) { return false; }
    return aRenderer.mfSearchingThumbnail || !zoDLNAProtocolInfo_IsThumbnail(aResource.mInfo);
}

bool PutsUnconvertedFirst(uint32 aStage, const Renderer& aRenderer)
{
    return aStage < kLastStage && zoDLNAProtocolInfoList_GetCount(aRenderer.mSinkList) > 0;
}

size_t RankByTransport(const Renderer& aRenderer, zoDLNAProtocolInfo_t** anInfos, size_t aCount)
{
    const char* theOrder = aRenderer.mSchemeOrder;
    return zoDLNAProtocolInfoList_RankByScheme(aRenderer.mSinkList,
                                               theOrder && *theOrder ? theOrder : kzoPreferredSchemeOrder_Default,
                                               aRenderer.mSupportedProtocols, anInfos, aCount);
}

// Puts the resources whose transport protocol suits in the room, the best transport protocol first, and of equally good
// ones, if asked for, what is not converted. @return their number.
static size_t PutResourceIndexInArray(const Resources& aResources, const Renderer& aRenderer, bool afUnconvertedFirst)
{
    zoDLNAProtocolInfo_t** const theArray = aResources.GetRoom();
    zoDLNAProtocolInfo_t** const theEnd = theArray + aResources.GetCount();
    zoDLNAProtocolInfo_t** theLast = theEnd; // from here on, last first, what is converted
    size_t theCount = 0;
    for (uint32 i = 0; i < aResources.GetCount(); ++i)
    {
        const Resource& theResource = aResources.At(i);
        if (!IsConsidered(theResource, aRenderer)) { continue; }
        const bool fComesLast = afUnconvertedFirst && theResource.IsConverted();
        *(fComesLast ? --theLast : theArray + theCount++) = theResource.mInfo;
    }
    std::reverse(theLast, theEnd);
    if (theLast != theArray + theCount) { std::copy(theLast, theEnd, theArray + theCount); }
    theCount += static_cast<size_t>(theEnd - theLast);
    return theCount > 0 ? RankByTransport(aRenderer, theArray, theCount) : 0;
}

// @return the earliest stage at which one of the ranked resources matches.
// @param aBest out: the first one of those that match at that stage that no other outweighs.
static uint32 FindBest(const Resources& aResources, const Renderer& aRenderer, size_t aCount, Best* aBest)
{
    zoDLNAProtocolInfo_t* const* theRanked = aResources.GetRoom();
    uint32 theEarliest = kLastStage;
    for (size_t i = 0; i < aCount; ++i)
    {
        const uint32 theIndex = IndexOf(theRanked[i]);
        const uint32 theStage = FindStage(aResources.At(theIndex), aRenderer, std::min(theEarliest + 1, kLastStage));
        if (theStage > theEarliest) { continue; }
        if (theStage < theEarliest) { aBest->Clear(); }
        theEarliest = theStage;
        aBest->Add(theIndex, HasProfileWeight(theStage, aResources, theIndex), 0);
    }
    return theEarliest;
}

// Finds the best one of all, in document order.
static void FindBestOfAll(const Resources& aResources, const Renderer& aRenderer, Best* aBest)
{
    const size_t theCount = PutResourceIndexInArray(aResources, aRenderer, false);
    aBest->Clear();
    for (size_t i = 0; i < theCount; ++i)
        aBest->Add(IndexOf(aResources.GetRoom()[i]), 0, 0);
}

Choice Choose(const Resources& aResources, const Renderer& aRenderer)
{
    const bool fUnconvertedFirst = PutsUnconvertedFirst(0, aRenderer);
    const size_t theCount = PutResourceIndexInArray(aResources, aRenderer, fUnconvertedFirst);
    if (theCount == 0) { return { -1, kRendererPlayConfidence_WillNot }; }
    Best theBest(aResources, aRenderer.mTargets);
    const uint32 theStage = FindBest(aResources, aRenderer, theCount, &theBest);
    if (fUnconvertedFirst && !PutsUnconvertedFirst(theStage, aRenderer))
    {
        FindBestOfAll(aResources, aRenderer, &theBest);
    }
    return { theBest.GetIndex(), kConfidences[theStage] };
}

Choice ChooseOriginal(const Resources& aResources, Renderer* aRenderer)
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
