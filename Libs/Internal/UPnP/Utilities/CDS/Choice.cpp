#include <UPnP/Utilities/CDS/Choice.h>

#include <UPnP/Utilities/CDS/Best.h>
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

// A resource without protocol info matches everything, and everything matches without a list.
static bool Matches(const Resource& aResource, const zoDLNAProtocolInfoList_t* aSinkList, int aMatchFlags)
{
    return !aResource.mfHasProtocolInfo || !aSinkList ||
           zoDLNAProtocolInfoList_Match(aSinkList, aResource.mInfo, aMatchFlags) != 0;
}

static bool IsConsidered(const Resource& aResource, bool afSearchingThumbnail)
{
    if (!aResource.mfHasProtocolInfo) { return aResource.mInfo != nullptr; }
    return afSearchingThumbnail || !zoDLNAProtocolInfo_IsThumbnail(aResource.mInfo);
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
        if (!IsConsidered(aResources.At(i), aRenderer.mfSearchingThumbnail)) { continue; }
        zoDLNAProtocolInfo_t* theInfo = aResources.At(i).mInfo;
        const bool fComesLast = afUnconvertedFirst && zoDLNAProtocolInfo_GetConversionIndicator(theInfo) != 0;
        *(fComesLast ? --theLast : anArray + theCount++) = theInfo;
    }
    std::reverse(theLast, theEnd);
    if (theLast != anArray + theCount) { std::copy(theLast, theEnd, anArray + theCount); }
    theCount += static_cast<size_t>(theEnd - theLast);
    if (theCount == 0) { return 0; }
    const bool fHasOrder = *aRenderer.mSchemeOrder != '\0';
    return zoDLNAProtocolInfoList_RankByScheme(aRenderer.mSinkList,
                                               fHasOrder ? aRenderer.mSchemeOrder : kzoPreferredSchemeOrder_Default,
                                               aRenderer.mSupportedProtocols, anArray, theCount);
}

// @return the index of the first of the ranked resources that match in a stage and that no other outweighs; -1 when
//         none matches.
static int ChooseInStage(const Stage& aStage, const Resources& aResources, const Renderer& aRenderer,
                         zoDLNAProtocolInfo_t* const* aRanked, size_t aCount)
{
    const zoDLNAProtocolInfoList_t* theSinkList = aStage.mfUsesSinkList ? aRenderer.mSinkList : nullptr;
    Best theBest(
        [&](uint32 anIndex)
        {
        const bool fHasProfile = aStage.mConfidence == kRendererPlayConfidence_Should && aResources.GetProfile(anIndex);
        return (fHasProfile ? kHasProfileWeight : 0) + aResources.WeighHost(anIndex, aRenderer.mTargets);
    });
    for (size_t i = 0; i < aCount; ++i)
    {
        const uint32 theIndex = static_cast<uint32>(zoDLNAProtocolInfo_GetUserData(aRanked[i]));
        if (Matches(aResources.At(theIndex), theSinkList, aStage.mMatchFlags)) { theBest.Add(theIndex); }
    }
    return theBest.GetIndex();
}

Choice Choose(Resources* aResources, const Renderer& aRenderer)
{
    zoDLNAProtocolInfo_t** theRanked = aResources->GetRoom();
    bool fUnconvertedFirst = zoDLNAProtocolInfoList_GetCount(aRenderer.mSinkList) > 0;
    size_t theCount = PutResourceIndexInArray(*aResources, aRenderer, fUnconvertedFirst, theRanked);
    for (const Stage& theStage : kStages)
    {
        if (fUnconvertedFirst && !theStage.mfUsesSinkList)
        {
            fUnconvertedFirst = false;
            theCount = PutResourceIndexInArray(*aResources, aRenderer, fUnconvertedFirst, theRanked);
        }
        const int theBest = ChooseInStage(theStage, *aResources, aRenderer, theRanked, theCount);
        if (theBest >= 0) { return { theBest, theStage.mConfidence }; }
    }
    return { -1, kRendererPlayConfidence_WillNot };
}

} // namespace CDS
