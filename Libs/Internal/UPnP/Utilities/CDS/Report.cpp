// The choice of a resource explained (CDSResourceReport.h).

#include <UPnP/Utilities/CDSResourceReport.h>

#include <Shared/Sizes.h>
#include <UPnP/Utilities/CDS/Choice.h>
#include <iterator>

using CDS::Renderer;
using CDS::Resource;
using CDS::Resources;

static_assert(kCDSResourceStage_Any == CDS::kLastStage + 1, "stages are counted from 1 here");

namespace
{

// A choice that was made.
struct Decision
{
    const Resources* mResources;
    Renderer mRenderer; // of the choice that counts
    int mChosen;        // -1: nothing was
};

} // namespace

// ---- Resources that do not take part ----

static int WhyNotConsidered(const Resource& aResource, const Renderer& aRenderer)
{
    if (!aResource.mInfo) { return kCDSResourceReason_NoURI; }
    const bool fIsThumbnail = aResource.mfHasProtocolInfo && zoDLNAProtocolInfo_IsThumbnail(aResource.mInfo);
    return fIsThumbnail && !aRenderer.mfSearchingThumbnail ? kCDSResourceReason_Thumbnail
                                                           : kCDSResourceReason_ConvertedLeftOut;
}

// Tells what does not depend on other resources.
static void Describe(const Decision& aDecision, uint32 anIndex, CDS::Localities* aLocalities,
                     CDSResourceReport_t* aReport)
{
    const Resource& theResource = aDecision.mResources->At(anIndex);
    const uint32 theHost = aDecision.mResources->WeighHost(anIndex, aLocalities);
    aReport->mReason = CDS::IsConsidered(theResource, aDecision.mRenderer)
                           ? kCDSResourceReason_TransportMissing
                           : WhyNotConsidered(theResource, aDecision.mRenderer);
    aReport->mLocality = theHost != 0 ? static_cast<int>(theHost - CDS::kIsAddressWeight) : -1;
    aReport->mfIsConverted = theResource.IsConverted();
    aReport->mfHasProtocolInfo = theResource.mfHasProtocolInfo;
}

// Puts those that are considered in the room, ranked as for the choice, but of equally good ones the chosen one last.
// @return the number of those whose transport protocol suits a scheme order.
static size_t Rank(const Decision& aDecision, const char* aSchemeOrder)
{
    zoDLNAProtocolInfo_t** const theRanked = aDecision.mResources->GetRoom();
    size_t theCount = 0;
    for (uint32 i = 0; i < aDecision.mResources->GetCount(); ++i)
    {
        const Resource& theResource = aDecision.mResources->At(i);
        const bool fIsChosen = static_cast<int>(i) == aDecision.mChosen;
        if (!fIsChosen && CDS::IsConsidered(theResource, aDecision.mRenderer))
        {
            theRanked[theCount++] = theResource.mInfo;
        }
    }
    if (aDecision.mChosen >= 0)
    {
        theRanked[theCount++] = aDecision.mResources->At(static_cast<uint32>(aDecision.mChosen)).mInfo;
    }
    Renderer theRenderer = aDecision.mRenderer;
    theRenderer.mSchemeOrder = aSchemeOrder;
    return theCount > 0 ? CDS::RankByTransport(theRenderer, theRanked, theCount) : 0;
}

// ---- Resources that lost ----

// Compares a resource with the chosen one, as the choice did.
static int WhyNot(const Decision& aDecision, uint32 anIndex, bool afIsTransportWorse,
                  const CDSResourceReport_t* aReports)
{
    const uint32 theChosenIndex = static_cast<uint32>(aDecision.mChosen);
    const CDSResourceReport_t& theReport = aReports[anIndex];
    const CDSResourceReport_t& theChosen = aReports[theChosenIndex];
    if (anIndex == theChosenIndex) { return kCDSResourceReason_Chosen; }
    if (theReport.mStage > theChosen.mStage) { return kCDSResourceReason_LaterStage; }
    const uint32 theStage = static_cast<uint32>(theChosen.mStage - 1);
    if (CDS::HasProfileWeight(theStage, *aDecision.mResources, theChosenIndex) &&
        !CDS::HasProfileWeight(theStage, *aDecision.mResources, anIndex))
    {
        return kCDSResourceReason_NoProfile;
    }
    if (theReport.mLocality < theChosen.mLocality)
    {
        return theReport.mLocality < 0 ? kCDSResourceReason_HostName : kCDSResourceReason_HostFarther;
    }
    if (afIsTransportWorse) { return kCDSResourceReason_TransportWorse; }
    const bool fIsConverted =
        theReport.mfIsConverted && !theChosen.mfIsConverted && CDS::PutsUnconvertedFirst(theStage, aDecision.mRenderer);
    return fIsConverted ? kCDSResourceReason_Converted : kCDSResourceReason_LaterInDocument;
}

// Tells of those whose transport protocol suits, which are ranked.
static void Compare(const Decision& aDecision, size_t aCount, CDSResourceReport_t* aReports)
{
    zoDLNAProtocolInfo_t* const* theRanked = aDecision.mResources->GetRoom();
    for (size_t i = 0; i < aCount; ++i)
    {
        const uint32 theIndex = CDS::IndexOf(theRanked[i]);
        const uint32 theStage =
            CDS::FindStage(aDecision.mResources->At(theIndex), aDecision.mRenderer, CDS::kLastStage);
        aReports[theIndex].mStage = static_cast<int>(theStage) + 1;
        aReports[theIndex].mConfidence = CDS::kConfidences[theStage];
    }
    bool fIsTransportWorse = false; // after the chosen one, which is the last of its transport protocol's rank
    for (size_t i = 0; i < aCount; ++i)
    {
        const uint32 theIndex = CDS::IndexOf(theRanked[i]);
        aReports[theIndex].mReason = WhyNot(aDecision, theIndex, fIsTransportWorse, aReports);
        if (static_cast<int>(theIndex) == aDecision.mChosen) { fIsTransportWorse = true; }
    }
}

static CDSResourceReport_t* NewReports(const Decision& aDecision)
{
    const uint32 theCount = aDecision.mResources->GetCount();
    CDSResourceReport_t* theReports = Shared::NewZeroedArray<CDSResourceReport_t>(theCount);
    CDS::Localities theLocalities(aDecision.mRenderer.mTargets);
    for (uint32 i = 0; i < theCount; ++i)
        Describe(aDecision, i, &theLocalities, &theReports[i]);
    const size_t theSupportedCount = Rank(aDecision, nullptr);
    for (size_t i = 0; i < theSupportedCount; ++i)
        theReports[CDS::IndexOf(aDecision.mResources->GetRoom()[i])].mReason = kCDSResourceReason_TransportNotListed;
    Compare(aDecision, Rank(aDecision, aDecision.mRenderer.mSchemeOrder), theReports);
    return theReports;
}

// ---- The functions ----

static Renderer RendererOf(const zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, int aFlags,
                           const char* aPreferredSchemeOrder, CDS::Targets aTargets)
{
    return { aSinkProtocolInfoList,
             nullptr,
             aPreferredSchemeOrder,
             aTargets,
             (aFlags & kCDSResourceChoice_WithThumbnails) != 0,
             false };
}

static CDS::Choice ChooseBy(int aFlags, const Resources& aResources, Renderer* aRenderer)
{
    return aFlags & kCDSResourceChoice_PreferOriginals ? CDS::ChooseOriginal(aResources, aRenderer)
                                                       : CDS::Choose(aResources, *aRenderer);
}

int CDSResourceInfo_ChooseResource(const zoPackedData_t* aResourceInfo,
                                   const zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, int aFlags,
                                   const char* aPreferredSchemeOrder, const uint32* aTargetIPAddresses,
                                   uint32 aTargetIPCount, int* aConfidence)
{
    Renderer theRenderer =
        RendererOf(aSinkProtocolInfoList, aFlags, aPreferredSchemeOrder, { aTargetIPAddresses, aTargetIPCount });
    Resources theResources(aResourceInfo);
    const CDS::Choice theChoice = ChooseBy(aFlags, theResources, &theRenderer);
    if (aConfidence) { *aConfidence = theChoice.mConfidence; }
    return theChoice.mResource;
}

CDSResourceReport_t* CDSResourceInfo_NewReport(const zoPackedData_t* aResourceInfo,
                                               const zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, int aFlags,
                                               const char* aPreferredSchemeOrder, const uint32* aTargetIPAddresses,
                                               uint32 aTargetIPCount, uint32* aCount)
{
    Renderer theRenderer =
        RendererOf(aSinkProtocolInfoList, aFlags, aPreferredSchemeOrder, { aTargetIPAddresses, aTargetIPCount });
    Resources theResources(aResourceInfo);
    if (aCount) { *aCount = theResources.GetCount(); }
    if (theResources.GetCount() == 0) { return nullptr; }
    const CDS::Choice theChoice = ChooseBy(aFlags, theResources, &theRenderer);
    return NewReports({ &theResources, theRenderer, theChoice.mResource });
}

// ---- Words ----

template <size_t kCount>
static const char* TextAt(const char* const (&aTexts)[kCount], int aPosition)
{
    return aPosition >= 0 && static_cast<size_t>(aPosition) < kCount ? aTexts[aPosition] : "";
}

const char* CDSResourceInfo_GetStageText(int aStage)
{
    static const char* const kTexts[] = {
        "none", "DLNA profile", "MIME type", "wild card", "another profile", "anything",
    };
    static_assert(std::size(kTexts) == kCDSResourceStage_Count, "a text for each");
    return TextAt(kTexts, aStage);
}

const char* CDSResourceInfo_GetReasonText(int aReason)
{
    static const char* const kTexts[] = {
        "chosen",
        "neither protocol info nor URI",
        "thumbnail",
        "converted, originals are preferred",
        "transport protocol not supported",
        "transport protocol not in the scheme order",
        "matches at a later stage",
        "no DLNA profile",
        "host is a name",
        "host is farther",
        "worse in the scheme order",
        "converted",
        "later in the document",
    };
    static_assert(std::size(kTexts) == kCDSResourceReason_Count, "a text for each");
    return TextAt(kTexts, aReason);
}
