#include <UPnP/Utilities/CDSResourceInfo.h>

#include <UPnP/Utilities/CDS/Choice.h>
#include <UPnP/Utilities/CDS/Pictures.h>
#include <UPnP/Utilities/CDS/Record.h>
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
    const bool fIsPair = theTag != 0 && CDS::HasTag(mPackedData, aResourceIndex, theTag + 1u);
    aName = fIsPair ? GetInfoAsCString(aResourceIndex, theTag) : zoCString();
    aData = fIsPair ? GetInfoAsCString(aResourceIndex, static_cast<uint16>(theTag + 1)) : zoCString();
}

zoCString CDSResourceInfo::GetExtraInfoName(uint32 aResourceIndex, int anExtraInfoIndex)
{
    return CDS::GetPairName(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex);
}

zoCString CDSResourceInfo::GetExtraInfoData(uint32 aResourceIndex, int anExtraInfoIndex)
{
    return CDS::GetPairValue(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex);
}

zoCString CDSResourceInfo::GetExtraInfoDataByName(uint32 aResourceIndex, const char* aName)
{
    if (!aName) { return zoCString(); }
    const int theCount = GetExtraInfoCount(aResourceIndex);
    for (int i = 0; i < theCount; ++i)
    {
        const uint32 theTag = kCDSResourceInfo_Count + 2 * static_cast<uint32>(i);
        if (theTag >= UINT16_MAX) { break; }
        if (CDS::HasText(mPackedData, aResourceIndex, static_cast<uint16>(theTag), aName))
        {
            return GetExtraInfoData(aResourceIndex, i);
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

static bool IsThumbnail(const zoPackedData_t* aRecord, uint32 aResource)
{
    const std::string_view theText = CDS::FindText(aRecord, aResource, kCDSResourceInfo_ProtocolInfo);
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
                       afSearchingThumbnail },
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
                                    afSearchForThumbnail },
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
    const int theBest = ChooseFor({ theList, nullptr, "http", aTargets, true }, aResourceInfo, &theConfidence);
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
            if (aProfileID) { *aProfileID = theResources.GetProfile(static_cast<uint32>(theIndex)); }
            return GetInfoAsCString(static_cast<uint32>(theIndex), kCDSResourceInfo_URI);
        }
    }
    const bool fTakesAlbumArt = fHasAlbumArt && CDS::HasListedFamily(theAlbumArt, theProfiles);
    if (aProfileID) { *aProfileID = fTakesAlbumArt ? theAlbumArt.mProfile : ""; }
    return fTakesAlbumArt ? theAlbumArt.mURI : "";
}
