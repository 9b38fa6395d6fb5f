#include <UPnP/Utilities/CDSResourceInfo.h>

#include <UPnP/Utilities/CDS/CDSRecord.h>
#include <algorithm>
#include <iterator>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <string_view>
#include <zo/CStringTokenizer.h>
#include <zoOS/zoSocket.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoURI.h>

// ---- The object ----

CDSResourceInfo::CDSResourceInfo() : mPackedData(zoPackedData_New(0)), mAlbumArtURIArray(nullptr) {}

CDSResourceInfo::CDSResourceInfo(char* aResourceInfoData, zoPackedData_t* aPackedData) : mAlbumArtURIArray(nullptr)
{
    zoAssert(aResourceInfoData != NULL);
    mPackedData = zoPackedData_NewData(aResourceInfoData);
    if (aPackedData) { InitUsingPackedData(aPackedData); }
}

CDSResourceInfo::CDSResourceInfo(zoPackedData_t* aResourceInfoData, zoPackedData_t* aPackedData)
    : mPackedData(aResourceInfoData), mAlbumArtURIArray(nullptr)
{
    zoAssert(aResourceInfoData != NULL);
    if (aPackedData) { InitUsingPackedData(aPackedData); }
}

CDSResourceInfo::~CDSResourceInfo()
{
    zoPackedData_Free(mPackedData);
    zoArray_Delete(mAlbumArtURIArray);
}

void CDSResourceInfo::InitUsingPackedData(zoPackedData_t* aPackedData)
{
    zoArray_Delete(mAlbumArtURIArray);
    mAlbumArtURIArray =
        zoPackedData_GetDataArray(aPackedData, 0, kCDSEntryInfo_AlbumArtURI, zoStringArray_UnFlattenerFunc);
    zoArray_SetFreeFunc(mAlbumArtURIArray, zoStringArray_FreeFunc);
}

CDSResourceInfo* CDSResourceInfo::Clone() const
{
    CDSResourceInfo* theClone = new CDSResourceInfo(zoPackedData_Duplicate(mPackedData), nullptr);
    if (!mAlbumArtURIArray) { return theClone; }
    theClone->mAlbumArtURIArray = zoArray_New();
    zoArray_SetFreeFunc(theClone->mAlbumArtURIArray, zoStringArray_FreeFunc);
    for (size_t i = 0; i < zoArray_GetCount(mAlbumArtURIArray); ++i)
    {
        const char* theText = static_cast<const char*>(zoArray_At(mAlbumArtURIArray, i));
        zoArray_Append(theClone->mAlbumArtURIArray, zoStrdup(theText));
    }
    return theClone;
}

// ---- Fields and extra info ----

uint32 CDSResourceInfo::GetResourceCount() { return zoPackedData_GetEntryCount(mPackedData); }

zoCString CDSResourceInfo::GetInfoAsCString(uint32 aResourceIndex, uint16 aResourceInfoID)
{
    return CDSRecord_GetText(mPackedData, aResourceIndex, aResourceInfoID);
}

unsigned long CDSResourceInfo::GetInfoAsULong(uint32 aResourceIndex, uint16 aResourceInfoID)
{
    return zoPackedData_GetDataAsUInt32(mPackedData, aResourceIndex, aResourceInfoID);
}

zouint64_t CDSResourceInfo::GetInfoAsUInt64(uint32 aResourceIndex, uint16 aResourceInfoID)
{
    return zoPackedData_GetDataAsUInt64(mPackedData, aResourceIndex, aResourceInfoID);
}

uint16 CDSResourceInfo::GetExtraInfoCount(uint32 aResourceIndex)
{
    return CDSRecord_CountPairs(mPackedData, aResourceIndex, kCDSResourceInfo_Count);
}

// The tag of a pair's name, the pairs being counted in the order in which they were stored; 0 when there are not that
// many. A record made by the parser begins with its pairs, in the order of their tags, so the first look finds it.
static uint16 FindNameTag(const zoPackedData_t* aRecord, uint32 anEntry, int anIndex)
{
    const uint32 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    if (anIndex < 0 || static_cast<uint32>(anIndex) >= theTagCount / 2) { return 0; }
    const auto theHasOwnTag = [=](uint32 aPosition)
    {
        const uint16 thePosition = static_cast<uint16>(aPosition);
        return zoPackedData_GetTagAt(aRecord, anEntry, thePosition) == kCDSResourceInfo_Count + aPosition;
    };
    const uint32 theGuess = 2 * static_cast<uint32>(anIndex);
    if (theHasOwnTag(0) && theHasOwnTag(theGuess) && (theGuess == 0 || theHasOwnTag(theGuess - 1)))
    {
        return static_cast<uint16>(kCDSResourceInfo_Count + theGuess);
    }

    int theIndex = 0;
    for (uint32 thePosition = 0; thePosition < theTagCount; ++thePosition)
    {
        const uint16 theTagHere = zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(thePosition));
        if (theTagHere < kCDSResourceInfo_Count) { continue; }
        if (theIndex == anIndex) { return theTagHere; }
        ++theIndex;
        ++thePosition; // past the value
    }
    return 0;
}

void CDSResourceInfo::GetExtraInfo(uint32 aResourceIndex, int anExtraInfoIndex, zoCString& aName, zoCString& aData)
{
    const uint16 theTag = FindNameTag(mPackedData, aResourceIndex, anExtraInfoIndex);
    const bool fIsPair = theTag != 0 && CDSRecord_HasTag(mPackedData, aResourceIndex, theTag + 1u);
    aName = fIsPair ? GetInfoAsCString(aResourceIndex, theTag) : zoCString();
    aData = fIsPair ? GetInfoAsCString(aResourceIndex, static_cast<uint16>(theTag + 1)) : zoCString();
}

zoCString CDSResourceInfo::GetExtraInfoName(uint32 aResourceIndex, int anExtraInfoIndex)
{
    return CDSRecord_GetPairName(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex);
}

zoCString CDSResourceInfo::GetExtraInfoData(uint32 aResourceIndex, int anExtraInfoIndex)
{
    return CDSRecord_GetPairValue(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex);
}

zoCString CDSResourceInfo::GetExtraInfoDataByName(uint32 aResourceIndex, const char* aName)
{
    if (!aName) { return zoCString(); }
    const size_t theLength = strlen(aName);
    const int theCount = GetExtraInfoCount(aResourceIndex);
    for (int i = 0; i < theCount; ++i)
    {
        const uint32 theTag = kCDSResourceInfo_Count + 2 * static_cast<uint32>(i);
        if (theTag >= UINT16_MAX) { break; }
        if (CDSRecord_HasText(mPackedData, aResourceIndex, static_cast<uint16>(theTag), aName, theLength))
        {
            return GetExtraInfoData(aResourceIndex, i);
        }
    }
    return zoCString();
}

// ---- Subtitles ----

bool CDSResourceInfo::IsSubtitle(int aResourceIndex)
{
    size_t theLength;
    const char* theInfo =
        CDSRecord_FindText(mPackedData, static_cast<uint32>(aResourceIndex), kCDSResourceInfo_ProtocolInfo, &theLength);
    return theInfo && std::string_view(theInfo, theLength).find(kSubtitleMarker) != std::string_view::npos;
}

int CDSResourceInfo::GetSubtitleCount()
{
    int theCount = 0;
    for (uint32 i = 0; i < GetResourceCount(); ++i)
        theCount += IsSubtitle(static_cast<int>(i));
    return theCount;
}

int CDSResourceInfo::GetResourceIndexForSubtitle(int aSubtitleIndex)
{
    int theSubtitle = 0;
    for (uint32 i = 0; i < GetResourceCount(); ++i)
    {
        if (!IsSubtitle(static_cast<int>(i))) { continue; }
        if (theSubtitle == aSubtitleIndex) { return static_cast<int>(i); }
        ++theSubtitle;
    }
    return -1;
}

zoCString CDSResourceInfo::GetSubtitleLabel(int aResourceIndex)
{
    return GetExtraInfoDataByName(static_cast<uint32>(aResourceIndex), "subtitleLabel");
}

zoCString CDSResourceInfo::GetSubtitleType(int aResourceIndex)
{
    return GetExtraInfoDataByName(static_cast<uint32>(aResourceIndex), "subtitleType");
}

zoCString CDSResourceInfo::GetSubtitleURI(int aResourceIndex)
{
    return GetInfoAsCString(static_cast<uint32>(aResourceIndex), kCDSResourceInfo_URI);
}

// ---- Protocol infos ----

// The resource's protocol info, new; NULL when it has none.
static zoDLNAProtocolInfo_t* NewProtocolInfo(const zoPackedData_t* aRecord, uint32 aResource)
{
    size_t theLength;
    const char* theText = CDSRecord_FindText(aRecord, aResource, kCDSResourceInfo_ProtocolInfo, &theLength);
    return theLength > 0 ? zoDLNAProtocolInfo_New(theText, theLength, 0) : nullptr;
}

static bool IsThumbnail(const zoPackedData_t* aRecord, uint32 aResource)
{
    size_t theLength;
    const char* theText = CDSRecord_FindText(aRecord, aResource, kCDSResourceInfo_ProtocolInfo, &theLength);
    return zoDLNAProtocolInfo_MatchText(theText, theLength, "JPEG_TN", -1) ||
           zoDLNAProtocolInfo_MatchText(theText, theLength, "PNG_TN", -1);
}

zoCString CDSResourceInfo::GetMimeTypeForResourceIndex(uint32 aResourceIndex)
{
    const zoCString theInfo = GetInfoAsCString(aResourceIndex, kCDSResourceInfo_ProtocolInfo);
    const zoCString theMimeType = theInfo.AfterFirst(':').AfterFirst(':').BeforeFirst(':');
    return theMimeType == "*" ? zoCString() : theMimeType;
}

zoCString CDSResourceInfo::GetProtocolInfoForResourceIndex(uint32 aResourceIndex)
{
    const zoCString theInfo = GetInfoAsCString(aResourceIndex, kCDSResourceInfo_ProtocolInfo);
    return theInfo.AfterFirst(':').AfterFirst(':').AfterFirst(':');
}

int CDSResourceInfo::GetResourceIndexOfURI(const zoCString& anURI)
{
    const uint32 theCount = GetResourceCount();
    for (uint32 i = 0; i < theCount; ++i)
    {
        if (CDSRecord_HasText(mPackedData, i, kCDSResourceInfo_URI, anURI.c_str(), anURI.length()))
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

// ---- Memory ----

size_t CDSResourceInfo::GetMemoryUsage() { return zoPackedData_GetMemoryUsage(mPackedData); }

void CDSResourceInfo::ReduceSize(size_t aTargetSize, const zoCString& anURIToKeep, bool afKeepThumbnails)
{
    if (GetMemoryUsage() <= aTargetSize) { return; }
    const uint32 theCount = GetResourceCount();
    bool* theMustKeep = static_cast<bool*>(zoMallocZeroed(theCount));
    zoPackedData_t* theRecord = zoPackedData_New(0);
    size_t theSize = 0;
    const auto theCopy = [&](uint32 aResource)
    {
        zoPackedData_CopyEntry(mPackedData, aResource, theRecord);
        theSize = zoPackedData_GetMemoryUsage(theRecord);
    };

    for (uint32 i = 0; i < theCount; ++i)
    {
        theMustKeep[i] =
            CDSRecord_HasText(mPackedData, i, kCDSResourceInfo_URI, anURIToKeep.c_str(), anURIToKeep.length()) ||
            (afKeepThumbnails && IsThumbnail(mPackedData, i));
        if (theMustKeep[i]) { theCopy(i); }
    }
    for (uint32 i = 0; i < theCount && theSize < aTargetSize; ++i)
    {
        if (!theMustKeep[i]) { theCopy(i); }
    }

    free(theMustKeep);
    zoPackedData_Free(mPackedData);
    mPackedData = zoPackedData_NewData(zoPackedData_TakeData(theRecord)); // as a block it holds no more than it says
    zoPackedData_Free(theRecord);
}

// ---- The hosts of URIs ----

namespace
{

struct Targets
{
    const uint32* mAddresses;
    uint32 mCount;
};

const uint32 kNoAddress = 0xFFFFFFFF;
const uint32 kIsAddressWeight = 0x10;
const uint32 sIPAddressMask[] = { 0xFFFFFF00, 0xFFFF0000, 0xFF000000 };

} // namespace

static Targets TargetsOf(const uint32* anAddresses, uint32 aCount) { return { anAddresses, anAddresses ? aCount : 0 }; }

static uint32 HostAddress(const char* anURI)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(anURI);
    const uint32 theAddress = theURI ? zoURI_GetHostIP(theURI) : kNoAddress;
    zoURI_Delete(theURI);
    return theAddress;
}

// How near two addresses are: 3, 2 or 1 for as many first octets that they share, else 0.
static uint32 Locality(uint32 anAddress, uint32 anOtherAddress)
{
    const uint32 theDifference = zoSocket_htonl(anAddress) ^ zoSocket_htonl(anOtherAddress);
    for (uint32 i = 0; i < 3; ++i)
    {
        if ((theDifference & sIPAddressMask[i]) == 0) { return 3 - i; }
    }
    return 0;
}

// ---- Choosing a resource ----

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

struct Resource
{
    zoDLNAProtocolInfo_t* mInfo; // owned; NULL while it is not read or belongs to a candidate list
    bool mfHasProtocolInfo;
    bool mfHasProfile;
};

// The resources of a record during one choice. Their protocol infos are read once, unless a stage used them up in vain.
class Resources
{
public:
    explicit Resources(const zoPackedData_t* aRecord) : mRecord(aRecord), mCount(zoPackedData_GetEntryCount(aRecord))
    {
        const size_t theCount = mCount;
        if (theCount > SIZE_MAX / sizeof(Resource)) { abort(); } // more than memory can hold
        mResources = static_cast<Resource*>(zoMallocZeroed(theCount * sizeof(Resource)));
    }
    ~Resources()
    {
        for (uint32 i = 0; i < mCount; ++i)
            zoDLNAProtocolInfo_Delete(mResources[i].mInfo);
        free(mResources);
    }
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;

    uint32 GetCount() const { return mCount; }
    const zoPackedData_t* GetRecord() const { return mRecord; }
    bool HasProfile(uint32 aResource) const { return mResources[aResource].mfHasProfile; }

    // The resource with its protocol info, for want of one that of its URI; NULL when it has neither.
    const Resource* Read(uint32 aResource);
    zoDLNAProtocolInfo_t* TakeInfo(uint32 aResource)
    {
        zoDLNAProtocolInfo_t* theInfo = mResources[aResource].mInfo;
        mResources[aResource].mInfo = nullptr;
        return theInfo;
    }

private:
    const zoPackedData_t* mRecord;
    uint32 mCount;
    Resource* mResources;
};

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
        const zoCString theURI = CDSRecord_GetText(mRecord, aResource, kCDSResourceInfo_URI);
        if (!theURI.IsEmpty()) { theResource->mInfo = zoDLNAProtocolInfo_NewFromURI(theURI.c_str()); }
    }
    return theResource->mInfo ? theResource : nullptr;
}

} // namespace

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
    const zoCString theURI = CDSRecord_GetText(aResources.GetRecord(), aResource, kCDSResourceInfo_URI);
    const uint32 theAddress = HostAddress(theURI.c_str());
    if (theAddress == kNoAddress) { return theWeight; }
    theWeight |= kIsAddressWeight;
    uint32 theNearest = 0;
    for (uint32 i = 0; i < aTargets.mCount; ++i)
        theNearest = std::max(theNearest, Locality(theAddress, aTargets.mAddresses[i]));
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

namespace
{

// What a choice is made for.
struct Renderer
{
    const zoDLNAProtocolInfoList_t* mSinkList; // NULL when it isn't known
    const zoCString& mSupportedProtocols;
    const zoCString& mSchemeOrder;
    Targets mTargets;
    bool mfSearchingThumbnail;
};

struct Choice
{
    int mResource; // -1 for none
    int mConfidence;
};

} // namespace

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
static Choice Choose(Resources* aResources, const Renderer& aRenderer, int aLeastConfidence)
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

int CDSResourceInfo::GetBestResourceIndexEx(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                            const zoCString& aSupportedProtocolSchemeList,
                                            zoPackedData_t* aResourceInfo, int* aConfidence,
                                            const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                            uint32 aTargetIpCount, bool afSearchingThumbnail)
{
    Resources theResources(aResourceInfo);
    const Renderer theRenderer = { aSinkProtocolInfoList, aSupportedProtocolSchemeList, aPreferredSchemeOrder,
                                   TargetsOf(aTargetIPAddresses, aTargetIpCount), afSearchingThumbnail };
    const Choice theChoice = Choose(&theResources, theRenderer, kRendererPlayConfidence_ShouldNot);
    if (aConfidence) { *aConfidence = theChoice.mConfidence; }
    return theChoice.mResource;
}

int CDSResourceInfo::GetBestResourceIndex(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, int* aConfidence,
                                          const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                          uint32 aTargetIPCount)
{
    return GetBestResourceIndex(aSinkProtocolInfoList, mPackedData, aConfidence, aPreferredSchemeOrder,
                                aTargetIPAddresses, aTargetIPCount);
}

static zoCString SupportedProtocols(const zoDLNAProtocolInfoList_t* aList)
{
    zoCString theProtocols;
    theProtocols.FromAllocatedString(zoDLNAProtocolInfoList_GetSupportedProtocolList(aList));
    return theProtocols;
}

int CDSResourceInfo::GetBestResourceIndex(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                          zoPackedData_t* aResourceInfo, int* aConfidence,
                                          const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                          uint32 aTargetIPCount)
{
    return GetBestResourceIndexEx(aSinkProtocolInfoList, SupportedProtocols(aSinkProtocolInfoList), aResourceInfo,
                                  aConfidence, aPreferredSchemeOrder, aTargetIPAddresses, aTargetIPCount, false);
}

int CDSResourceInfo::GetBestResourceIndexFromStr(const zoCString& aSinkProtocolInfo, int* aConfidence,
                                                 const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                                 uint32 aTargetIPCount, bool afSearchForThumbnail)
{
    return GetBestResourceIndexFromStr(aSinkProtocolInfo, mPackedData, aConfidence, aPreferredSchemeOrder,
                                       aTargetIPAddresses, aTargetIPCount, afSearchForThumbnail);
}

int CDSResourceInfo::GetBestResourceIndexFromStr(const zoCString& aSinkProtocolInfo, zoPackedData_t* aResourceInfo,
                                                 int* aConfidence, const zoCString& aPreferredSchemeOrder,
                                                 uint32* aTargetIPAddresses, uint32 aTargetIPCount,
                                                 bool afSearchForThumbnail)
{
    zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New(aSinkProtocolInfo.c_str(), 0);
    const int theBest =
        GetBestResourceIndexEx(theList, SupportedProtocols(theList), aResourceInfo, aConfidence, aPreferredSchemeOrder,
                               aTargetIPAddresses, aTargetIPCount, afSearchForThumbnail);
    zoDLNAProtocolInfoList_Delete(theList);
    return theBest;
}

// ---- Choosing a picture ----

namespace
{

const char kDefaultProfiles[] = "JPEG_TN,PNG_TN";

// The profiles of a list that count for album art, the best first.
struct ProfileList
{
    zoCString mProfiles[8];
    uint32 mCount;
};

} // namespace

static zoCString ProfilesOrDefault(const zoCString& aProfiles)
{
    return aProfiles.IsEmpty() ? kDefaultProfiles : aProfiles;
}

static void SplitProfiles(const zoCString& aProfiles, ProfileList* aList)
{
    aList->mCount = 0;
    zoCStringTokenizer theTokenizer;
    theTokenizer.SetString(aProfiles, ",", kTokenizerMode_Default);
    while (aList->mCount < std::size(aList->mProfiles) && theTokenizer.HasMoreTokens())
        aList->mProfiles[aList->mCount++] = theTokenizer.GetNextToken();
}

// Whether two profiles are equal up to their first "_".
static bool IsSameFamily(const char* aLeft, const char* aRight)
{
    const size_t theLength = strcspn(aLeft, "_");
    return theLength == strcspn(aRight, "_") && memcmp(aLeft, aRight, theLength) == 0;
}

static uint32 WeighProfile(const ProfileList& aList, const char* aProfile)
{
    uint32 theWeight = 0;
    for (uint32 i = 0; i < aList.mCount; ++i)
    {
        const char* theListed = aList.mProfiles[i].c_str();
        if (strcmp(theListed, aProfile) == 0) { theWeight = std::max(theWeight, 0x80000000u >> i); }
        else if (IsSameFamily(theListed, aProfile)) { theWeight = std::max(theWeight, 0x80000u >> i); }
    }
    return theWeight;
}

static uint32 WeighAlbumArtHost(const char* anURI, Targets aTargets)
{
    const uint32 theAddress = HostAddress(anURI);
    if (theAddress == kNoAddress) { return 0; }
    uint32 theWeight = kIsAddressWeight;
    for (uint32 i = 0; i < aTargets.mCount; ++i)
        theWeight += Locality(theAddress, aTargets.mAddresses[i]);
    return theWeight;
}

zoCString CDSResourceInfo::GetAlbumArtURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                                          uint32* aTargetIPAddresses, uint32 aTargetIPCount)
{
    ProfileList theProfiles;
    SplitProfiles(ProfilesOrDefault(aPreferedProfileIDList), &theProfiles);
    if (aProfileID) { *aProfileID = ""; }

    const Targets theTargets = TargetsOf(aTargetIPAddresses, aTargetIPCount);
    const char* theBest = "";
    const char* theBestProfile = "";
    uint32 theBestWeight = 0;
    for (size_t i = 0; i + 1 < zoArray_GetCount(mAlbumArtURIArray); i += 2)
    {
        const char* theURI = static_cast<const char*>(zoArray_At(mAlbumArtURIArray, i));
        const char* theProfile = static_cast<const char*>(zoArray_At(mAlbumArtURIArray, i + 1));
        const uint32 theWeight = WeighAlbumArtHost(theURI, theTargets) + WeighProfile(theProfiles, theProfile);
        if (theBestWeight == 0) { theBest = theURI; } // for want of anything better
        if (theWeight <= theBestWeight) { continue; }
        theBest = theURI;
        theBestProfile = theProfile;
        theBestWeight = theWeight;
    }
    if (aProfileID) { *aProfileID = theBestProfile; }
    return theBest;
}

// Chooses for a renderer that shows pictures of one profile, and perhaps others of its MIME type; -1 for no picture.
static int ChooseThumbnail(Resources* aResources, const char* aThumbnailType, Targets aTargets)
{
    const char* theMimeType = strncmp(aThumbnailType, "PNG_", 4) == 0 ? "image/png" : "image/jpeg";
    zoCString theSink;
    theSink.Format("http-get:*:%s:DLNA.ORG_PN=%s", theMimeType, aThumbnailType);
    zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New(theSink.c_str(), 0);
    const zoCString theSupportedProtocols = SupportedProtocols(theList);
    const zoCString theSchemeOrder = "http";
    const Renderer theRenderer = { theList, theSupportedProtocols, theSchemeOrder, aTargets, true };
    const Choice theChoice = Choose(aResources, theRenderer, kRendererPlayConfidence_May);
    zoDLNAProtocolInfoList_Delete(theList);
    return theChoice.mResource;
}

int CDSResourceInfo::GetResourceIndexForThumbnail(const char* aThumbnailType, uint32* aTargetIPAddresses,
                                                  uint32 aTargetIPCount)
{
    if (!aThumbnailType) { return -1; }
    Resources theResources(mPackedData);
    return ChooseThumbnail(&theResources, aThumbnailType, TargetsOf(aTargetIPAddresses, aTargetIPCount));
}

// The thumbnail of the first listed profile that has one; -1 when none has.
static int ChooseThumbnailOfProfiles(const zoPackedData_t* aRecord, const zoCString& aProfiles, Targets aTargets)
{
    Resources theResources(aRecord);
    zoCStringTokenizer theTokenizer;
    theTokenizer.SetString(aProfiles, ",", kTokenizerMode_Default);
    int theIndex = -1;
    while (theIndex < 0 && theTokenizer.HasMoreTokens())
        theIndex = ChooseThumbnail(&theResources, theTokenizer.GetNextToken().c_str(), aTargets);
    return theIndex;
}

zoCString CDSResourceInfo::GetThumbnailURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                                           uint32* aTargetIPAddresses, uint32 aTargetIPCount)
{
    const zoCString theProfiles = ProfilesOrDefault(aPreferedProfileIDList);
    zoCString theAlbumArtProfile;
    const zoCString theAlbumArt = GetAlbumArtURI(theProfiles, &theAlbumArtProfile, aTargetIPAddresses, aTargetIPCount);

    int theIndex = -1;
    if (theAlbumArt.IsEmpty() || !theProfiles.Contains(theAlbumArtProfile))
    {
        const Targets theTargets = TargetsOf(aTargetIPAddresses, aTargetIPCount);
        theIndex = ChooseThumbnailOfProfiles(mPackedData, theProfiles, theTargets);
    }

    zoCString theResult;
    zoCString theProfile;
    if (theIndex >= 0)
    {
        theResult = GetInfoAsCString(static_cast<uint32>(theIndex), kCDSResourceInfo_URI);
        zoDLNAProtocolInfo_t* theInfo = NewProtocolInfo(mPackedData, static_cast<uint32>(theIndex));
        theProfile = zoDLNAProtocolInfo_GetProfile(theInfo);
        zoDLNAProtocolInfo_Delete(theInfo);
    }
    else if (!theAlbumArt.IsEmpty() && theProfiles.Contains(theAlbumArtProfile.BeforeFirst('_') + '_'))
    {
        theResult = theAlbumArt;
        theProfile = theAlbumArtProfile;
    }
    if (aProfileID) { *aProfileID = theProfile; }
    return theResult;
}
