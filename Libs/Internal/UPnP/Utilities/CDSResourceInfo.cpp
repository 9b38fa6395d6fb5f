#include <UPnP/Utilities/CDSResourceInfo.h>

#include <UPnP/Utilities/CDS/Choice.h>
#include <UPnP/Utilities/CDS/Pictures.h>
#include <UPnP/Utilities/CDS/Record.h>
#include <algorithm>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <string_view>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoMemory.h>

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

void* CDSResourceInfo::operator new(size_t aSize) { return zoMalloc(aSize); }

void CDSResourceInfo::operator delete(void* anObject) { free(anObject); }

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
    return CDS::GetText(mPackedData, aResourceIndex, aResourceInfoID);
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
    return CDS::CountPairs(mPackedData, aResourceIndex, kCDSResourceInfo_Count);
}

void CDSResourceInfo::GetExtraInfo(uint32 aResourceIndex, int anExtraInfoIndex, zoCString& aName, zoCString& aData)
{
    uint16 theTag = 0;
    const bool fIsPair =
        CDS::FindStoredPair(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex, &theTag);
    aName = fIsPair ? GetInfoAsCString(aResourceIndex, theTag) : zoCString();
    aData = fIsPair ? CDS::GetPairValue(mPackedData, aResourceIndex, theTag) : zoCString();
}

zoCString CDSResourceInfo::GetExtraInfoName(uint32 aResourceIndex, int anExtraInfoIndex)
{
    uint16 theTag;
    const bool fIsPair = CDS::FindPair(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex, &theTag);
    return fIsPair ? GetInfoAsCString(aResourceIndex, theTag) : zoCString();
}

zoCString CDSResourceInfo::GetExtraInfoData(uint32 aResourceIndex, int anExtraInfoIndex)
{
    uint16 theTag;
    const bool fIsPair = CDS::FindPair(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex, &theTag);
    return fIsPair ? CDS::GetPairValue(mPackedData, aResourceIndex, theTag) : zoCString();
}

zoCString CDSResourceInfo::GetExtraInfoDataByName(uint32 aResourceIndex, const char* aName)
{
    const std::string_view theName(aName ? aName : "");
    const uint32 theCount = aName ? GetExtraInfoCount(aResourceIndex) : 0;
    const uint32 theEnd = std::min<uint32>(kCDSResourceInfo_Count + 2 * theCount, UINT16_MAX);
    for (uint32 theTag = kCDSResourceInfo_Count; theTag < theEnd; theTag += 2)
    {
        if (CDS::FindText(mPackedData, aResourceIndex, static_cast<uint16>(theTag)) == theName)
        {
            return CDS::GetPairValue(mPackedData, aResourceIndex, static_cast<uint16>(theTag));
        }
    }
    return zoCString();
}

// ---- Subtitles ----

bool CDSResourceInfo::IsSubtitle(int aResourceIndex)
{
    const std::string_view theInfo =
        CDS::FindText(mPackedData, static_cast<uint32>(aResourceIndex), kCDSResourceInfo_ProtocolInfo);
    return theInfo.find(kSubtitleMarker) != theInfo.npos;
}

int CDSResourceInfo::GetSubtitleCount()
{
    uint32 theCount = 0;
    zoPackedData_FindEntryWithText(mPackedData, kCDSResourceInfo_ProtocolInfo, kSubtitleMarker, 0, &theCount);
    return static_cast<int>(theCount);
}

int CDSResourceInfo::GetResourceIndexForSubtitle(int aSubtitleIndex)
{
    if (aSubtitleIndex < 0) { return -1; }
    uint32 theCount = 0;
    const uint32 theNumber = static_cast<uint32>(aSubtitleIndex);
    const uint32 theIndex = zoPackedData_FindEntryWithText(mPackedData, kCDSResourceInfo_ProtocolInfo, kSubtitleMarker,
                                                           theNumber, &theCount);
    return theNumber < theCount ? static_cast<int>(theIndex) : -1;
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

static bool IsThumbnail(const zoPackedData_t* aRecord, uint32 aResource)
{
    const std::string_view theText = CDS::FindText(aRecord, aResource, kCDSResourceInfo_ProtocolInfo);
    if (!theText.data()) { return false; }
    return zoDLNAProtocolInfo_MatchText(theText.data(), theText.size(), "JPEG_TN", -1) ||
           zoDLNAProtocolInfo_MatchText(theText.data(), theText.size(), "PNG_TN", -1);
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
        if (CDS::HasText(mPackedData, i, kCDSResourceInfo_URI, { anURI.c_str(), anURI.length() }))
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
            CDS::HasText(mPackedData, i, kCDSResourceInfo_URI, { anURIToKeep.c_str(), anURIToKeep.length() }) ||
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

// ---- The choice ----

static int ChooseFor(const CDS::Renderer& aRenderer, const zoPackedData_t* aResourceInfo, int* aConfidence)
{
    CDS::Resources theResources(aResourceInfo);
    const CDS::Choice theChoice = CDS::Choose(&theResources, aRenderer);
    if (aConfidence) { *aConfidence = theChoice.mConfidence; }
    return theChoice.mResource;
}

int CDSResourceInfo::GetBestResourceIndexEx(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                            const zoCString& aSupportedProtocolSchemeList,
                                            zoPackedData_t* aResourceInfo, int* aConfidence,
                                            const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                            uint32 aTargetIpCount, bool afSearchingThumbnail)
{
    return ChooseFor({ aSinkProtocolInfoList,
                       aSupportedProtocolSchemeList.c_str(),
                       aPreferredSchemeOrder.c_str(),
                       { aTargetIPAddresses, aTargetIpCount },
                       afSearchingThumbnail,
                       false },
                     aResourceInfo, aConfidence);
}

int CDSResourceInfo::GetBestResourceIndex(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, int* aConfidence,
                                          const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                          uint32 aTargetIPCount)
{
    return GetBestResourceIndex(aSinkProtocolInfoList, mPackedData, aConfidence, aPreferredSchemeOrder,
                                aTargetIPAddresses, aTargetIPCount);
}

int CDSResourceInfo::GetBestResourceIndex(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                          zoPackedData_t* aResourceInfo, int* aConfidence,
                                          const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                          uint32 aTargetIPCount)
{
    return ChooseFor({ aSinkProtocolInfoList,
                       nullptr,
                       aPreferredSchemeOrder.c_str(),
                       { aTargetIPAddresses, aTargetIPCount },
                       false,
                       false },
                     aResourceInfo, aConfidence);
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
    const int theBest = ChooseFor({ theList,
                                    nullptr,
                                    aPreferredSchemeOrder.c_str(),
                                    { aTargetIPAddresses, aTargetIPCount },
                                    afSearchForThumbnail,
                                    false },
                                  aResourceInfo, aConfidence);
    zoDLNAProtocolInfoList_Delete(theList);
    return theBest;
}

// ---- Pictures ----

// A type with commas makes a list of several protocol infos.
static int ChooseThumbnailFromStr(zoPackedData_t* aResourceInfo, const char* aThumbnailType, CDS::Targets aTargets)
{
    zoCString theSink;
    theSink.Format("http-get:*:%s:DLNA.ORG_PN=%s", strncmp(aThumbnailType, "PNG_", 4) == 0 ? "image/png" : "image/jpeg",
                   aThumbnailType);
    zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New(theSink.c_str(), 0);
    int theConfidence = kRendererPlayConfidence_WillNot;
    const int theBest = ChooseFor({ theList, nullptr, "http", aTargets, true, false }, aResourceInfo, &theConfidence);
    zoDLNAProtocolInfoList_Delete(theList);
    return theConfidence >= kRendererPlayConfidence_May ? theBest : -1;
}

int CDSResourceInfo::GetResourceIndexForThumbnail(const char* aThumbnailType, uint32* aTargetIPAddresses,
                                                  uint32 aTargetIPCount)
{
    if (!aThumbnailType) { return -1; }
    const CDS::Targets theTargets(aTargetIPAddresses, aTargetIPCount);
    if (strchr(aThumbnailType, ',')) { return ChooseThumbnailFromStr(mPackedData, aThumbnailType, theTargets); }
    CDS::Resources theResources(mPackedData);
    return CDS::ChooseThumbnailOfType(&theResources, aThumbnailType, theTargets);
}

zoCString CDSResourceInfo::GetAlbumArtURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                                          uint32* aTargetIPAddresses, uint32 aTargetIPCount)
{
    const CDS::AlbumArt theAlbumArt = CDS::ChooseAlbumArt(
        mAlbumArtURIArray, CDS::ProfilesOrDefault(aPreferedProfileIDList), { aTargetIPAddresses, aTargetIPCount });
    if (aProfileID) { *aProfileID = theAlbumArt.mProfile; }
    return theAlbumArt.mURI;
}

zoCString CDSResourceInfo::GetThumbnailURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                                           uint32* aTargetIPAddresses, uint32 aTargetIPCount)
{
    const std::string_view theProfiles = CDS::ProfilesOrDefault(aPreferedProfileIDList);
    const CDS::Targets theTargets(aTargetIPAddresses, aTargetIPCount);
    const CDS::AlbumArt theAlbumArt = CDS::ChooseAlbumArt(mAlbumArtURIArray, theProfiles, theTargets);
    const bool fHasAlbumArt = *theAlbumArt.mURI != '\0';
    if (!fHasAlbumArt || !CDS::HasListedProfile(theAlbumArt, theProfiles))
    {
        CDS::Resources theResources(mPackedData);
        const int theIndex = CDS::ChooseThumbnail(&theResources, theProfiles, theTargets);
        if (theIndex >= 0)
        {
            const char* theProfile = theResources.GetProfile(static_cast<uint32>(theIndex));
            if (aProfileID) { *aProfileID = theProfile ? theProfile : ""; }
            return GetInfoAsCString(static_cast<uint32>(theIndex), kCDSResourceInfo_URI);
        }
    }
    const bool fTakesAlbumArt = fHasAlbumArt && CDS::HasListedFamily(theAlbumArt, theProfiles);
    if (aProfileID) { *aProfileID = fTakesAlbumArt ? theAlbumArt.mProfile : ""; }
    return fTakesAlbumArt ? theAlbumArt.mURI : "";
}
