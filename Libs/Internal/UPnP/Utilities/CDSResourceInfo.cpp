#include <UPnP/Utilities/CDSResourceInfo.h>

#include <UPnP/Utilities/CDS/Choice.h>
#include <UPnP/Utilities/CDS/Pictures.h>
#include <UPnP/Utilities/CDS/Record.h>
#include <algorithm>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <string_view>
#include <utility>
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

static zoArray_t* NewAlbumArt(const zoPackedData_t* anEntryInfo)
{
    zoArray_t* theTexts =
        zoPackedData_GetDataArray(anEntryInfo, 0, kCDSEntryInfo_AlbumArtURI, zoStringArray_UnFlattenerFunc);
    zoArray_SetFreeFunc(theTexts, zoStringArray_FreeFunc);
    return theTexts;
}

void CDSResourceInfo::InitUsingPackedData(zoPackedData_t* aPackedData)
{
    zoArray_Delete(mAlbumArtURIArray);
    mAlbumArtURIArray = NewAlbumArt(aPackedData);
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

uint32 CDSResourceInfo_GetResourceCount(const zoPackedData_t* aResourceInfo)
{
    return zoPackedData_GetEntryCount(aResourceInfo);
}

uint32 CDSResourceInfo::GetResourceCount() { return CDSResourceInfo_GetResourceCount(mPackedData); }

const char* CDSResourceInfo_GetInfoAsStr(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                         uint16 aResourceInfoID)
{
    return CDS::GetStr(aResourceInfo, aResourceIndex, aResourceInfoID);
}

zoCString CDSResourceInfo::GetInfoAsCString(uint32 aResourceIndex, uint16 aResourceInfoID)
{
    return CDS::GetText(mPackedData, aResourceIndex, aResourceInfoID);
}

uint32 CDSResourceInfo_GetInfoAsUInt32(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                       uint16 aResourceInfoID)
{
    return zoPackedData_GetDataAsUInt32(aResourceInfo, aResourceIndex, aResourceInfoID);
}

unsigned long CDSResourceInfo::GetInfoAsULong(uint32 aResourceIndex, uint16 aResourceInfoID)
{
    return CDSResourceInfo_GetInfoAsUInt32(mPackedData, aResourceIndex, aResourceInfoID);
}

uint64 CDSResourceInfo_GetInfoAsUInt64(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                       uint16 aResourceInfoID)
{
    return zoPackedData_GetDataAsUInt64(aResourceInfo, aResourceIndex, aResourceInfoID);
}

zouint64_t CDSResourceInfo::GetInfoAsUInt64(uint32 aResourceIndex, uint16 aResourceInfoID)
{
    return CDSResourceInfo_GetInfoAsUInt64(mPackedData, aResourceIndex, aResourceInfoID);
}

uint16 CDSResourceInfo_GetExtraInfoCount(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex)
{
    return CDS::CountPairs(aResourceInfo, aResourceIndex, kCDSResourceInfo_Count);
}

uint16 CDSResourceInfo::GetExtraInfoCount(uint32 aResourceIndex)
{
    return CDSResourceInfo_GetExtraInfoCount(mPackedData, aResourceIndex);
}

void CDSResourceInfo::GetExtraInfo(uint32 aResourceIndex, int anExtraInfoIndex, zoCString& aName, zoCString& aData)
{
    const uint32 theTag = CDS::FindStoredPair(mPackedData, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex);
    aName = CDS::GetText(mPackedData, aResourceIndex, theTag);
    aData = CDS::GetText(mPackedData, aResourceIndex, theTag + 1);
}

// @return the tag of a pair's name.
static uint32 FindPair(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex, int anExtraInfoIndex)
{
    return CDS::FindPair(aResourceInfo, aResourceIndex, kCDSResourceInfo_Count, anExtraInfoIndex);
}

const char* CDSResourceInfo_GetExtraInfoName(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                             int anExtraInfoIndex)
{
    return CDS::GetStr(aResourceInfo, aResourceIndex, FindPair(aResourceInfo, aResourceIndex, anExtraInfoIndex));
}

zoCString CDSResourceInfo::GetExtraInfoName(uint32 aResourceIndex, int anExtraInfoIndex)
{
    return CDS::GetText(mPackedData, aResourceIndex, FindPair(mPackedData, aResourceIndex, anExtraInfoIndex));
}

const char* CDSResourceInfo_GetExtraInfoData(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                             int anExtraInfoIndex)
{
    return CDS::GetStr(aResourceInfo, aResourceIndex, FindPair(aResourceInfo, aResourceIndex, anExtraInfoIndex) + 1);
}

zoCString CDSResourceInfo::GetExtraInfoData(uint32 aResourceIndex, int anExtraInfoIndex)
{
    return CDS::GetText(mPackedData, aResourceIndex, FindPair(mPackedData, aResourceIndex, anExtraInfoIndex) + 1);
}

// @return the tag of the value of the first pair of that name.
static uint32 FindValue(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex, const char* aName)
{
    return aName ? CDS::FindPairNamed(aResourceInfo, aResourceIndex, kCDSResourceInfo_Count, aName) + 1 : CDS::kNoTag;
}

const char* CDSResourceInfo_GetExtraInfoDataByName(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                                   const char* aName)
{
    return CDS::GetStr(aResourceInfo, aResourceIndex, FindValue(aResourceInfo, aResourceIndex, aName));
}

zoCString CDSResourceInfo::GetExtraInfoDataByName(uint32 aResourceIndex, const char* aName)
{
    return CDS::GetText(mPackedData, aResourceIndex, FindValue(mPackedData, aResourceIndex, aName));
}

// ---- Subtitles ----

static const char kSubtitleLabel[] = "subtitleLabel";
static const char kSubtitleType[] = "subtitleType";

// @return the index of the aNumber-th subtitle.
static uint32 FindSubtitle(const zoPackedData_t* aResourceInfo, uint32 aNumber, uint32* aCount)
{
    return zoPackedData_FindEntryWithText(aResourceInfo, kCDSResourceInfo_ProtocolInfo, kSubtitleMarker, aNumber,
                                          aCount);
}

int CDSResourceInfo_IsSubtitle(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex)
{
    const std::string_view theInfo = CDS::FindText(aResourceInfo, aResourceIndex, kCDSResourceInfo_ProtocolInfo);
    return theInfo.find(kSubtitleMarker) != theInfo.npos;
}

bool CDSResourceInfo::IsSubtitle(int aResourceIndex)
{
    return CDSResourceInfo_IsSubtitle(mPackedData, static_cast<uint32>(aResourceIndex)) != 0;
}

uint32 CDSResourceInfo_GetSubtitleCount(const zoPackedData_t* aResourceInfo)
{
    uint32 theCount = 0;
    FindSubtitle(aResourceInfo, 0, &theCount);
    return theCount;
}

int CDSResourceInfo::GetSubtitleCount() { return static_cast<int>(CDSResourceInfo_GetSubtitleCount(mPackedData)); }

int CDSResourceInfo_GetResourceIndexForSubtitle(const zoPackedData_t* aResourceInfo, uint32 aSubtitleIndex)
{
    return static_cast<int>(FindSubtitle(aResourceInfo, aSubtitleIndex, nullptr)); // kzoPackedData_NoEntry gives -1
}

int CDSResourceInfo::GetResourceIndexForSubtitle(int aSubtitleIndex)
{
    return CDSResourceInfo_GetResourceIndexForSubtitle(mPackedData, static_cast<uint32>(aSubtitleIndex));
}

const char* CDSResourceInfo_GetSubtitleLabel(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex)
{
    return CDSResourceInfo_GetExtraInfoDataByName(aResourceInfo, aResourceIndex, kSubtitleLabel);
}

zoCString CDSResourceInfo::GetSubtitleLabel(int aResourceIndex)
{
    return GetExtraInfoDataByName(static_cast<uint32>(aResourceIndex), kSubtitleLabel);
}

const char* CDSResourceInfo_GetSubtitleType(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex)
{
    return CDSResourceInfo_GetExtraInfoDataByName(aResourceInfo, aResourceIndex, kSubtitleType);
}

zoCString CDSResourceInfo::GetSubtitleType(int aResourceIndex)
{
    return GetExtraInfoDataByName(static_cast<uint32>(aResourceIndex), kSubtitleType);
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

// @return what follows a number of colons; "" when there are fewer.
static const char* AfterColons(const char* aText, int aCount)
{
    for (; aCount > 0 && aText; --aCount)
    {
        aText = strchr(aText, ':');
        if (aText) { ++aText; }
    }
    return aText ? aText : "";
}

static char* NewMimeType(const char* aProtocolInfo)
{
    const char* theType = AfterColons(aProtocolInfo, 2);
    const size_t theLength = strcspn(theType, ":");
    return zoStrndup(theType, theLength == 1 && *theType == '*' ? 0 : theLength);
}

char* CDSResourceInfo_FetchMimeType(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex)
{
    return NewMimeType(CDS::GetStr(aResourceInfo, aResourceIndex, kCDSResourceInfo_ProtocolInfo));
}

zoCString CDSResourceInfo::GetMimeTypeForResourceIndex(uint32 aResourceIndex)
{
    zoCString theType;
    theType.FromAllocatedString(NewMimeType(GetInfoAsCString(aResourceIndex, kCDSResourceInfo_ProtocolInfo).c_str()));
    return theType;
}

const char* CDSResourceInfo_GetAdditionalInfo(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex)
{
    return AfterColons(CDS::GetStr(aResourceInfo, aResourceIndex, kCDSResourceInfo_ProtocolInfo), 3);
}

zoCString CDSResourceInfo::GetProtocolInfoForResourceIndex(uint32 aResourceIndex)
{
    return AfterColons(GetInfoAsCString(aResourceIndex, kCDSResourceInfo_ProtocolInfo).c_str(), 3);
}

int CDSResourceInfo_GetResourceIndexOfURI(const zoPackedData_t* aResourceInfo, const char* anURI)
{
    if (!anURI) { return -1; }
    const std::string_view theURI = anURI;
    for (uint32 i = 0; i < zoPackedData_GetEntryCount(aResourceInfo); ++i)
    {
        if (CDS::HasText(aResourceInfo, i, kCDSResourceInfo_URI, theURI)) { return static_cast<int>(i); }
    }
    return -1;
}

int CDSResourceInfo::GetResourceIndexOfURI(const zoCString& anURI)
{
    return CDSResourceInfo_GetResourceIndexOfURI(mPackedData, anURI.c_str());
}

// ---- Memory ----

size_t CDSResourceInfo::GetMemoryUsage() { return zoPackedData_GetMemoryUsage(mPackedData); }

zoPackedData_t* CDSResourceInfo_ReduceSize(zoPackedData_t* aResourceInfo, size_t aTargetSize, const char* anURIToKeep,
                                           int afKeepThumbnails)
{
    if (!aResourceInfo || zoPackedData_GetMemoryUsage(aResourceInfo) <= aTargetSize) { return aResourceInfo; }
    const uint32 theCount = zoPackedData_GetEntryCount(aResourceInfo);
    const std::string_view theURIToKeep = anURIToKeep ? anURIToKeep : "";
    zoPackedData_t* theRecord = zoPackedData_New(0);
    size_t theSize = 0;
    for (int fMustKeep = 1; fMustKeep >= 0; --fMustKeep) // first what must be kept, then the others
    {
        for (uint32 i = 0; i < theCount && (fMustKeep || theSize < aTargetSize); ++i)
        {
            const bool fIsKept = (anURIToKeep && CDS::HasText(aResourceInfo, i, kCDSResourceInfo_URI, theURIToKeep)) ||
                                 (afKeepThumbnails && IsThumbnail(aResourceInfo, i));
            if (fIsKept != (fMustKeep != 0)) { continue; }
            zoPackedData_CopyEntry(aResourceInfo, i, theRecord);
            theSize = zoPackedData_GetMemoryUsage(theRecord);
        }
    }
    zoPackedData_Free(aResourceInfo);
    aResourceInfo = zoPackedData_NewData(zoPackedData_TakeData(theRecord)); // as a block it holds no more than it says
    zoPackedData_Free(theRecord);
    return aResourceInfo;
}

void CDSResourceInfo::ReduceSize(size_t aTargetSize, const zoCString& anURIToKeep, bool afKeepThumbnails)
{
    mPackedData = CDSResourceInfo_ReduceSize(mPackedData, aTargetSize, anURIToKeep.c_str(), afKeepThumbnails);
}

// ---- The choice ----

int CDSResourceInfo::GetBestResourceIndexEx(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                            const zoCString& aSupportedProtocolSchemeList,
                                            zoPackedData_t* aResourceInfo, int* aConfidence,
                                            const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                            uint32 aTargetIpCount, bool afSearchingThumbnail)
{
    const CDS::Choice theChoice = CDS::Choose(CDS::Resources(aResourceInfo), { aSinkProtocolInfoList,
                                                                               aSupportedProtocolSchemeList.c_str(),
                                                                               aPreferredSchemeOrder.c_str(),
                                                                               { aTargetIPAddresses, aTargetIpCount },
                                                                               afSearchingThumbnail,
                                                                               false });
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

int CDSResourceInfo::GetBestResourceIndex(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                          zoPackedData_t* aResourceInfo, int* aConfidence,
                                          const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                          uint32 aTargetIPCount)
{
    return CDSResourceInfo_ChooseResource(aResourceInfo, aSinkProtocolInfoList, kCDSResourceChoice_Default,
                                          aPreferredSchemeOrder.c_str(), aTargetIPAddresses, aTargetIPCount,
                                          aConfidence);
}

// Chooses for a renderer that plays a list in text form.
static int ChooseFromStr(const zoCString& aSinkProtocolInfo, const zoPackedData_t* aResourceInfo, int aFlags,
                         const char* aPreferredSchemeOrder, CDS::Targets aTargets, int* aConfidence)
{
    zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New(aSinkProtocolInfo.c_str(), 0);
    const int theBest = CDSResourceInfo_ChooseResource(aResourceInfo, theList, aFlags, aPreferredSchemeOrder,
                                                       aTargets.mAddresses, aTargets.mCount, aConfidence);
    zoDLNAProtocolInfoList_Delete(theList);
    return theBest;
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
    return ChooseFromStr(aSinkProtocolInfo, aResourceInfo,
                         afSearchForThumbnail ? kCDSResourceChoice_WithThumbnails : kCDSResourceChoice_Default,
                         aPreferredSchemeOrder.c_str(), { aTargetIPAddresses, aTargetIPCount }, aConfidence);
}

// ---- Pictures ----

// A type with commas makes a list of several protocol infos.
static int ChooseThumbnailFromStr(const zoPackedData_t* aResourceInfo, const char* aThumbnailType,
                                  CDS::Targets aTargets)
{
    zoCString theSink;
    theSink.Format("http-get:*:%s:DLNA.ORG_PN=%s", strncmp(aThumbnailType, "PNG_", 4) == 0 ? "image/png" : "image/jpeg",
                   aThumbnailType);
    int theConfidence;
    const int theBest =
        ChooseFromStr(theSink, aResourceInfo, kCDSResourceChoice_WithThumbnails, "http", aTargets, &theConfidence);
    return theConfidence >= kRendererPlayConfidence_May ? theBest : -1;
}

int CDSResourceInfo_GetResourceIndexForThumbnail(const zoPackedData_t* aResourceInfo, const char* aThumbnailType,
                                                 const uint32* aTargetIPAddresses, uint32 aTargetIPCount)
{
    if (!aThumbnailType) { return -1; }
    const CDS::Targets theTargets(aTargetIPAddresses, aTargetIPCount);
    if (strchr(aThumbnailType, ',')) { return ChooseThumbnailFromStr(aResourceInfo, aThumbnailType, theTargets); }
    return CDS::ChooseThumbnailOfType(CDS::Resources(aResourceInfo), aThumbnailType, theTargets);
}

int CDSResourceInfo::GetResourceIndexForThumbnail(const char* aThumbnailType, uint32* aTargetIPAddresses,
                                                  uint32 aTargetIPCount)
{
    return CDSResourceInfo_GetResourceIndexForThumbnail(mPackedData, aThumbnailType, aTargetIPAddresses,
                                                        aTargetIPCount);
}

namespace
{

// A picture that was chosen, borrowed; "" and NULL or "" when there is none.
struct Picture
{
    std::string_view mURI;
    const char* mProfile;
};

// Where a picture is looked for.
struct Pictures
{
    const zoArray_t* mAlbumArt;
    const zoPackedData_t* mResourceInfo;
    bool mfWithThumbnails; // false: among the album art only
};

} // namespace

// Chooses among an object's pictures. @param aTake  called with the result, and with aTarget.
static void ChoosePicture(const Pictures& aPictures, const char* aProfileList, CDS::Targets aTargets,
                          void (*aTake)(const Picture& aPicture, void* aTarget), void* aTarget)
{
    const std::string_view theProfiles = CDS::ProfilesOrDefault(aProfileList);
    CDS::AlbumArt theAlbumArt = CDS::ChooseAlbumArt(aPictures.mAlbumArt, theProfiles, aTargets);
    if (!aPictures.mfWithThumbnails) { return aTake({ theAlbumArt.mURI, theAlbumArt.mProfile }, aTarget); }

    const bool fHasAlbumArt = *theAlbumArt.mURI != '\0';
    if (!fHasAlbumArt || !CDS::HasListedProfile(theAlbumArt, theProfiles))
    {
        const CDS::Resources theResources(aPictures.mResourceInfo);
        const int theIndex = CDS::ChooseThumbnail(theResources, theProfiles, aTargets);
        if (theIndex >= 0)
        {
            const uint32 theResource = static_cast<uint32>(theIndex);
            return aTake({ CDS::FindText(aPictures.mResourceInfo, theResource, kCDSResourceInfo_URI),
                           theResources.GetProfile(theResource) },
                         aTarget);
        }
    }
    if (!fHasAlbumArt || !CDS::HasListedFamily(theAlbumArt, theProfiles)) { theAlbumArt = { "", "" }; }
    aTake({ theAlbumArt.mURI, theAlbumArt.mProfile }, aTarget);
}

static zoCString GetPicture(const Pictures& aPictures, const zoCString& aProfileList, CDS::Targets aTargets,
                            zoCString* aProfileID)
{
    struct Texts
    {
        zoCString mURI;
        zoCString* mProfile;
    } theTexts = { zoCString(), aProfileID };
    const auto theTake = [](const Picture& aPicture, void* aTarget)
    {
        Texts* theTarget = static_cast<Texts*>(aTarget);
        if (!aPicture.mURI.empty()) { theTarget->mURI = zoCString(aPicture.mURI.data(), aPicture.mURI.size()); }
        if (theTarget->mProfile) { *theTarget->mProfile = aPicture.mProfile; }
    };
    ChoosePicture(aPictures, aProfileList.c_str(), aTargets, theTake, &theTexts);
    return std::move(theTexts.mURI); // a member is not moved by itself
}

zoCString CDSResourceInfo::GetAlbumArtURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                                          uint32* aTargetIPAddresses, uint32 aTargetIPCount)
{
    return GetPicture({ mAlbumArtURIArray, nullptr, false }, aPreferedProfileIDList,
                      { aTargetIPAddresses, aTargetIPCount }, aProfileID);
}

zoCString CDSResourceInfo::GetThumbnailURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                                           uint32* aTargetIPAddresses, uint32 aTargetIPCount)
{
    return GetPicture({ mAlbumArtURIArray, mPackedData, true }, aPreferedProfileIDList,
                      { aTargetIPAddresses, aTargetIPCount }, aProfileID);
}

// As GetPicture, with the album art of an entry record. The texts are new. @param aProfileID  may be NULL.
static char* FetchPicture(bool afWithThumbnails, const zoPackedData_t* aResourceInfo, const zoPackedData_t* anEntryInfo,
                          const char* aProfileList, CDS::Targets aTargets, char** aProfileID)
{
    struct Texts
    {
        char* mURI;
        char** mProfile;
    } theTexts = { nullptr, aProfileID };
    const auto theTake = [](const Picture& aPicture, void* aTarget)
    {
        Texts* theTarget = static_cast<Texts*>(aTarget);
        theTarget->mURI = zoStrndup(aPicture.mURI.data() ? aPicture.mURI.data() : "", aPicture.mURI.size());
        if (theTarget->mProfile) { *theTarget->mProfile = zoStrdup(aPicture.mProfile ? aPicture.mProfile : ""); }
    };
    zoArray_t* theAlbumArt = NewAlbumArt(anEntryInfo);
    ChoosePicture({ theAlbumArt, aResourceInfo, afWithThumbnails }, aProfileList, aTargets, theTake, &theTexts);
    zoArray_Delete(theAlbumArt);
    return theTexts.mURI;
}

char* CDSResourceInfo_FetchAlbumArtURI(const zoPackedData_t* anEntryInfo, const char* aPreferedProfileIDList,
                                       const uint32* aTargetIPAddresses, uint32 aTargetIPCount, char** aProfileID)
{
    return FetchPicture(false, nullptr, anEntryInfo, aPreferedProfileIDList, { aTargetIPAddresses, aTargetIPCount },
                        aProfileID);
}

char* CDSResourceInfo_FetchThumbnailURI(const zoPackedData_t* aResourceInfo, const zoPackedData_t* anEntryInfo,
                                        const char* aPreferedProfileIDList, const uint32* aTargetIPAddresses,
                                        uint32 aTargetIPCount, char** aProfileID)
{
    return FetchPicture(true, aResourceInfo, anEntryInfo, aPreferedProfileIDList,
                        { aTargetIPAddresses, aTargetIPCount }, aProfileID);
}
