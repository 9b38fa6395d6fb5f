#include <UPnP/Utilities/CDS/Choice.h>

#include <UPnP/Utilities/CDS/Record.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <algorithm>
#include <stdint.h>
#include <zoltTools/zoArray.h>

namespace CDS
{

zoDLNAProtocolInfo_t* NewProtocolInfo(const zoPackedData_t* aRecord, uint32 aResource)
{
    const std::string_view theText = FindText(aRecord, aResource, kCDSResourceInfo_ProtocolInfo);
    return theText.empty() ? nullptr : zoDLNAProtocolInfo_New(theText.data(), theText.size(), 0);
}

namespace
{

// How close a match is looked for, from the closest on.
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

} // namespace

const Resource* Resources::Read(uint32 aResource)
{
    Resource* theResource = &mResources[aResource];
    if (!theResource->mInfo)
    {
        theResource->mInfo = NewProtocolInfo(mRecord, aResource);
        theResource->mfHasProtocolInfo = theResource->mInfo != nullptr;
        theResource->mfHasProfile = zoDLNAProtocolInfo_GetProfile(theResource->mInfo) != nullptr;
    }
    if (!theResource->mInfo)
    {
        const zoCString theURI = GetText(mRecord, aResource, kCDSResourceInfo_URI);
        if (!theURI.IsEmpty()) { theResource->mInfo = zoDLNAProtocolInfo_NewFromURI(theURI.c_str()); }
    }
    return theResource->mInfo ? theResource : nullptr;
}

static bool IsCandidate(const Resource* aResource, const zoDLNAProtocolInfoList_t* aList, bool afSearchingThumbnail,
                        int aProtocolInfoMatchMode)
{
    if (!aResource) { return false; }
    if (!aResource->mfHasProtocolInfo) { return true; }
    if (!afSearchingThumbnail && zoDLNAProtocolInfo_IsThumbnail(aResource->mInfo)) { return false; }
    return !aList || zoDLNAProtocolInfoList_Match(aList, aResource->mInfo, aProtocolInfoMatchMode);
}

// The resources that match the sink's list, or all without one, each with its index as user data. When the sink's
// protocol infos are known, what is not converted comes first. The list is new; NULL when there would be nothing in it.
static zoDLNAProtocolInfoList_t* GetMatchingResourceList(Resources* aResources, const zoDLNAProtocolInfoList_t* aList,
                                                         bool afSearchingThumbnail, int aProtocolInfoMatchMode)
{
    zoDLNAProtocolInfoList_t* theCandidates = nullptr;
    const bool fSinkHasProtocolInfo = zoDLNAProtocolInfoList_GetCount(aList) > 0;
    int theUnconvertedCount = 0;
    for (uint32 i = 0; i < aResources->GetCount(); ++i)
    {
        if (!IsCandidate(aResources->Read(i), aList, afSearchingThumbnail, aProtocolInfoMatchMode)) { continue; }
        if (!theCandidates) { theCandidates = zoDLNAProtocolInfoList_New("", 0); }
        zoDLNAProtocolInfo_t* theInfo = aResources->TakeInfo(i);
        zoDLNAProtocolInfo_SetUserData(theInfo, static_cast<int>(i));
        const bool fGoesFirst = fSinkHasProtocolInfo && zoDLNAProtocolInfo_GetConversionIndicator(theInfo) == 0;
        zoDLNAProtocolInfoList_Add(theCandidates, theInfo, fGoesFirst ? theUnconvertedCount++ : -1);
    }
    return theCandidates;
}

// Moves the candidates of a fitting transport to the array, as resource indices, the best transport first.
static void PutResourceIndexInArray(zoDLNAProtocolInfoList_t* aList, const zoCString& aPreferredSchemeOrder,
                                    const zoCString& aSupportedSchemeList, zoArray_t* anArray)
{
    const char* theOrder =
        aPreferredSchemeOrder.IsEmpty() ? kzoPreferredSchemeOrder_Default : aPreferredSchemeOrder.c_str();
    for (;;)
    {
        const int thePosition =
            zoDLNAProtocolInfoList_GetBestIndexForScheme(aList, theOrder, aSupportedSchemeList.c_str());
        if (thePosition < 0) { return; }
        const zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfoList_GetProtocolInfoAt(aList, thePosition);
        const intptr_t theResource = zoDLNAProtocolInfo_GetUserData(theInfo);
        zoArray_Append(anArray, reinterpret_cast<void*>(theResource));
        zoDLNAProtocolInfoList_Remove(aList, thePosition);
    }
}

static uint32 WeighResource(const Resources& aResources, uint32 aResource, int aConfidence, Targets aTargets)
{
    const bool fHasProfile = aConfidence == kRendererPlayConfidence_Should && aResources.HasProfile(aResource);
    uint32 theWeight = fHasProfile ? 0x8000 : 0;
    const zoCString theURI = GetText(aResources.GetRecord(), aResource, kCDSResourceInfo_URI);
    const uint32 theAddress = FindHostAddress(theURI.c_str());
    if (theAddress == kNoAddress) { return theWeight; }
    theWeight |= kIsAddressWeight;
    uint32 theNearest = 0;
    for (uint32 i = 0; i < aTargets.mCount; ++i)
        theNearest = std::max(theNearest, GetLocality(theAddress, aTargets.mAddresses[i]));
    return theWeight + theNearest;
}

// The first resource of the array, which is not empty, that no other outweighs.
static int FindHeaviest(const Resources& aResources, const zoArray_t* anArray, int aConfidence, Targets aTargets)
{
    const auto theResourceAt = [anArray](size_t aPosition)
    { return static_cast<uint32>(reinterpret_cast<intptr_t>(zoArray_At(anArray, aPosition))); };
    const size_t theCount = zoArray_GetCount(anArray);
    uint32 theBest = theResourceAt(0);
    if (theCount == 1) { return static_cast<int>(theBest); }
    uint32 theBestWeight = WeighResource(aResources, theBest, aConfidence, aTargets);
    for (size_t i = 1; i < theCount; ++i)
    {
        const uint32 theWeight = WeighResource(aResources, theResourceAt(i), aConfidence, aTargets);
        if (theWeight <= theBestWeight) { continue; }
        theBest = theResourceAt(i);
        theBestWeight = theWeight;
    }
    return static_cast<int>(theBest);
}

// The choice among the candidates of one stage, which are released; -1 when no transport fits.
static int ChooseCandidate(const Resources& aResources, zoDLNAProtocolInfoList_t* aCandidates,
                           const Renderer& aRenderer, int aConfidence)
{
    zoArray_t* theArray = zoArray_New();
    PutResourceIndexInArray(aCandidates, aRenderer.mSchemeOrder, aRenderer.mSupportedProtocols, theArray);
    const int theBest =
        zoArray_GetCount(theArray) > 0 ? FindHeaviest(aResources, theArray, aConfidence, aRenderer.mTargets) : -1;
    zoArray_Delete(theArray);
    zoDLNAProtocolInfoList_Delete(aCandidates);
    return theBest;
}

// The choice of the first stage that makes one with the least confidence or more.
Choice Choose(Resources* aResources, const Renderer& aRenderer, int aLeastConfidence)
{
    for (const Stage& theStage : kStages)
    {
        if (theStage.mConfidence < aLeastConfidence) { break; }
        zoDLNAProtocolInfoList_t* theCandidates =
            GetMatchingResourceList(aResources, theStage.mfUsesSinkList ? aRenderer.mSinkList : nullptr,
                                    aRenderer.mfSearchingThumbnail, theStage.mMatchFlags);
        if (!theCandidates) { continue; }
        const int theBest = ChooseCandidate(*aResources, theCandidates, aRenderer, theStage.mConfidence);
        if (theBest >= 0) { return { theBest, theStage.mConfidence }; }
    }
    return { -1, kRendererPlayConfidence_WillNot };
}

zoCString GetSupportedProtocols(const zoDLNAProtocolInfoList_t* aList)
{
    zoCString theProtocols;
    theProtocols.FromAllocatedString(zoDLNAProtocolInfoList_GetSupportedProtocolList(aList));
    return theProtocols;
}

} // namespace CDS
