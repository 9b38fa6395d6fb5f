#include <UPnP/Utilities/CDS/Pictures.h>

#include <Shared/ASCII.h>
#include <Shared/Sizes.h>
#include <Shared/Split.h>
#include <UPnP/Utilities/CDS/Best.h>
#include <algorithm>
#include <iterator>
#include <stdlib.h>
#include <string.h>
#include <zo/CString.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>

namespace CDS
{

using std::string_view;

// Takes the next profile off a list.
static bool NextProfile(string_view* aProfiles, string_view* aProfile)
{
    while (Shared::NextItem(aProfiles, ',', aProfile))
    {
        if (!aProfile->empty()) { return true; }
    }
    return false;
}

string_view ProfilesOrDefault(const char* aProfiles)
{
    return aProfiles && *aProfiles != '\0' ? aProfiles : "JPEG_TN,PNG_TN";
}

// ---- Album art ----

namespace
{

// The weight of album art, a number. Item k of the profile list is one of the first eight.
//
//     bit 31 - k  item k is the profile
//     bit 19 - k  item k is a profile of the same family
//     bit 4       its host is an IPv4 address
//     below       the sum of the localities of its host to all targets
const uint32 kIsProfileWeight = 0x80000000;
const uint32 kIsFamilyWeight = 0x80000;

struct ListedProfile
{
    string_view mText;
    string_view mFamily;
};

// The profiles of a list that count for album art.
struct ListedProfiles
{
    ListedProfile mProfiles[8];
    uint32 mCount;
};

} // namespace

// @return the profile up to its first "_".
static string_view FamilyOf(string_view aProfile) { return aProfile.substr(0, aProfile.find('_')); }

static ListedProfiles SplitProfiles(string_view aProfiles)
{
    ListedProfiles theList = {};
    for (string_view theProfile; theList.mCount < std::size(theList.mProfiles) && NextProfile(&aProfiles, &theProfile);)
        theList.mProfiles[theList.mCount++] = { theProfile, FamilyOf(theProfile) };
    return theList;
}

static uint32 WeighProfile(const ListedProfiles& aList, string_view aProfile)
{
    const string_view theFamily = FamilyOf(aProfile);
    uint32 theWeight = 0;
    for (uint32 i = 0; i < aList.mCount; ++i)
    {
        const ListedProfile& theListed = aList.mProfiles[i];
        if (theListed.mText == aProfile) { theWeight = std::max(theWeight, kIsProfileWeight >> i); }
        else if (theListed.mFamily == theFamily) { theWeight = std::max(theWeight, kIsFamilyWeight >> i); }
    }
    return theWeight;
}

static uint32 WeighAlbumArtHost(const char* anURI, Localities* aLocalities)
{
    const uint32 theAddress = FindHostAddress(anURI);
    return theAddress != kNoAddress ? kIsAddressWeight + aLocalities->GetSum(theAddress) : 0;
}

AlbumArt ChooseAlbumArt(const zoArray_t* aPairs, string_view aProfiles, Targets aTargets)
{
    AlbumArt theBest = { "", "" };
    const size_t theCount = zoArray_GetCount(aPairs);
    if (theCount < 2) { return theBest; }
    const ListedProfiles theProfiles = SplitProfiles(aProfiles);
    Localities theLocalities(aTargets);
    uint32 theBestWeight = 0;
    for (size_t i = 0; i + 1 < theCount; i += 2)
    {
        const char* theURI = static_cast<const char*>(zoArray_At(aPairs, i));
        const char* theProfile = static_cast<const char*>(zoArray_At(aPairs, i + 1));
        const uint32 theWeight = WeighAlbumArtHost(theURI, &theLocalities) + WeighProfile(theProfiles, theProfile);
        if (theBestWeight == 0) { theBest.mURI = theURI; } // better than nothing
        if (theWeight <= theBestWeight) { continue; }
        theBest = { theURI, theProfile };
        theBestWeight = theWeight;
    }
    return theBest;
}

// True if a part of the text is aPart; false for "". Takes linear time, which string_view's search does not.
static bool Contains(string_view aText, string_view aPart)
{
    return !aPart.empty() && memmem(aText.data(), aText.size(), aPart.data(), aPart.size()) != nullptr;
}

bool HasListedProfile(const AlbumArt& anAlbumArt, string_view aProfiles)
{
    return Contains(aProfiles, anAlbumArt.mProfile);
}

bool HasListedFamily(const AlbumArt& anAlbumArt, string_view aProfiles)
{
    const zoCString theFamily = zoCString(anAlbumArt.mProfile).BeforeFirst('_') + '_';
    return Contains(aProfiles, { theFamily.c_str(), theFamily.length() });
}

// ---- Thumbnails ----
//
// A thumbnail of the profile P is chosen for a renderer that plays "http-get:*:image/jpeg:DLNA.ORG_PN=P" (image/png
// when P begins with "PNG_"), as any resource is, with a confidence of May at least. What that comes to:
//
// - Resources over another protocol than http-get are not considered.
// - The first stage finds the resources of exactly that profile. If there are none, it finds those without protocol
//   info, whatever P is.
// - The second stage finds, if there are neither, the resources of that MIME type without a profile; with any profile
//   when P is empty. The third stage finds the same.
// - Of these the one on the nearest host is chosen, of equally near ones one that is not converted, of several
//   the first.

namespace
{

// A search over resources whose transport protocol is known to suit, by their protocol infos.
class ThumbnailSearch
{
public:
    ThumbnailSearch(const Resources& aResources, Targets aTargets);
    ~ThumbnailSearch() { free(mByProfile); }
    ThumbnailSearch(const ThumbnailSearch&) = delete;
    ThumbnailSearch& operator=(const ThumbnailSearch&) = delete;

    int FindOfType(string_view aThumbnailType);

private:
    static const uint32 kFew = 8; // resources whose profiles are compared one by one
    static const int kUnknown = -2;

    void Add(const zoDLNAProtocolInfo_t* anInfo);
    template <typename Predicate>
    int FindBest(Predicate afIsMeant);
    int FindOfProfile(string_view aProfile);
    int FindWithoutInfo();
    int FindOfMimeType(bool afIsPNG, bool afWithAnyProfile);
    void SortByProfile();

    const Resources& mResources;
    Best mBest;                    // of what is looked for
    zoDLNAProtocolInfo_t** mInfos; // in the order of the resources
    uint32 mCount;
    const zoDLNAProtocolInfo_t** mByProfile = nullptr; // in the order of their profiles; NULL until they are asked for
    int mWithoutInfo = -1;
    int mOfMimeType[2][2] = { { kUnknown, kUnknown }, { kUnknown, kUnknown } };
};

} // namespace

ThumbnailSearch::ThumbnailSearch(const Resources& aResources, Targets aTargets)
    : mResources(aResources), mBest(aResources, aTargets), mInfos(aResources.GetRoom()), mCount(0)
{
    for (uint32 i = 0; i < aResources.GetCount(); ++i)
    {
        const Resource& theResource = aResources.At(i);
        if (!theResource.mInfo) { continue; }
        mInfos[mCount++] = theResource.mInfo;
        if (!theResource.mfHasProtocolInfo) { mWithoutInfo = kUnknown; }
    }
    if (mCount == 0) { return; }
    mCount = static_cast<uint32>(zoDLNAProtocolInfoList_RankByScheme(nullptr, "http-get", "", mInfos, mCount));
}

// @return the profile; "" without one.
static const char* ProfileOf(const zoDLNAProtocolInfo_t* anInfo)
{
    const char* theProfile = zoDLNAProtocolInfo_GetProfile(anInfo);
    return theProfile ? theProfile : "";
}

// True if the protocol info has exactly this profile.
static bool HasProfile(const zoDLNAProtocolInfo_t* anInfo, string_view aProfile)
{
    const char* theProfile = ProfileOf(anInfo);
    return strncmp(theProfile, aProfile.data(), aProfile.size()) == 0 && theProfile[aProfile.size()] == '\0';
}

void ThumbnailSearch::Add(const zoDLNAProtocolInfo_t* anInfo)
{
    mBest.Add(IndexOf(anInfo), 0, zoDLNAProtocolInfo_GetConversionIndicator(anInfo) == 0);
}

template <typename Predicate>
int ThumbnailSearch::FindBest(Predicate afIsMeant)
{
    mBest.Clear();
    for (uint32 i = 0; i < mCount; ++i)
    {
        if (afIsMeant(mInfos[i])) { Add(mInfos[i]); }
    }
    return mBest.GetIndex();
}

// Orders by profile; those of one keep their order. No profile is read further than to where it differs: a long one may
// be compared with many.
static int CompareProfiles(const void* aLeft, const void* aRight)
{
    const zoDLNAProtocolInfo_t* theLeft = *static_cast<const zoDLNAProtocolInfo_t* const*>(aLeft);
    const zoDLNAProtocolInfo_t* theRight = *static_cast<const zoDLNAProtocolInfo_t* const*>(aRight);
    const int theOrder = strcmp(ProfileOf(theLeft), ProfileOf(theRight));
    return theOrder != 0 ? theOrder : static_cast<int>(IndexOf(theLeft) - IndexOf(theRight));
}

void ThumbnailSearch::SortByProfile()
{
    mByProfile = Shared::NewArray<const zoDLNAProtocolInfo_t*>(mCount);
    std::copy_n(mInfos, mCount, mByProfile);
    qsort(mByProfile, mCount, sizeof(*mByProfile), CompareProfiles);
}

// @return the best of those that have exactly this profile, which is not empty.
int ThumbnailSearch::FindOfProfile(string_view aProfile)
{
    if (mCount <= kFew)
    {
        return FindBest([=](const zoDLNAProtocolInfo_t* anInfo) { return HasProfile(anInfo, aProfile); });
    }
    if (!mByProfile) { SortByProfile(); }
    const zoDLNAProtocolInfo_t** theEnd = mByProfile + mCount;
    const zoDLNAProtocolInfo_t** thePosition =
        std::lower_bound(mByProfile, theEnd, aProfile,
                         [](const zoDLNAProtocolInfo_t* aLeft, string_view aRight)
                         { return strncmp(ProfileOf(aLeft), aRight.data(), aRight.size()) < 0; });
    mBest.Clear();
    for (; thePosition < theEnd && HasProfile(*thePosition, aProfile); ++thePosition)
        Add(*thePosition);
    return mBest.GetIndex();
}

int ThumbnailSearch::FindWithoutInfo()
{
    if (mWithoutInfo == kUnknown)
    {
        mWithoutInfo = FindBest([this](const zoDLNAProtocolInfo_t* anInfo)
                                { return !mResources.At(IndexOf(anInfo)).mfHasProtocolInfo; });
    }
    return mWithoutInfo;
}

int ThumbnailSearch::FindOfMimeType(bool afIsPNG, bool afWithAnyProfile)
{
    int* theFound = &mOfMimeType[afIsPNG][afWithAnyProfile];
    if (*theFound != kUnknown) { return *theFound; }
    alignas(void*) char theMemory[kInfoSize];
    zoDLNAProtocolInfo_t* theSink = nullptr; // most often not needed
    *theFound = FindBest(
        [&](const zoDLNAProtocolInfo_t* anInfo)
        {
        if (!afWithAnyProfile && zoDLNAProtocolInfo_GetProfile(anInfo)) { return false; }
        if (!theSink)
        {
            const string_view theText = afIsPNG ? "http-get:*:image/png:*" : "http-get:*:image/jpeg:*";
            theSink = zoDLNAProtocolInfo_NewInPlace(theMemory, sizeof(theMemory), theText.data(), theText.size());
        }
        return zoDLNAProtocolInfo_Match(theSink, anInfo, kzoDLNAProtocolInfoMatch_AnyProfile) != 0;
    });
    zoDLNAProtocolInfo_Delete(theSink);
    return *theFound;
}

// @return the profile that "DLNA.ORG_PN=" and a type stand for in a protocol info: the type up to a ";", without blanks
// at its end.
static string_view ProfileOfType(string_view aThumbnailType)
{
    string_view theProfile = aThumbnailType.substr(0, aThumbnailType.find(';'));
    while (!theProfile.empty() && Shared::IsSpace(theProfile.back()))
        theProfile.remove_suffix(1);
    return theProfile;
}

int ThumbnailSearch::FindOfType(string_view aThumbnailType)
{
    const string_view theProfile = ProfileOfType(aThumbnailType);
    int theFound = theProfile.empty() ? -1 : FindOfProfile(theProfile);
    if (theFound < 0) { theFound = FindWithoutInfo(); }
    const bool fIsPNG = aThumbnailType.size() >= 4 && memcmp(aThumbnailType.data(), "PNG_", 4) == 0;
    return theFound < 0 ? FindOfMimeType(fIsPNG, theProfile.empty()) : theFound;
}

int ChooseThumbnailOfType(const Resources& aResources, string_view aThumbnailType, Targets aTargets)
{
    return ThumbnailSearch(aResources, aTargets).FindOfType(aThumbnailType);
}

int ChooseThumbnail(const Resources& aResources, string_view aProfiles, Targets aTargets)
{
    ThumbnailSearch theSearch(aResources, aTargets);
    int theFound = -1;
    for (string_view theProfile; theFound < 0 && NextProfile(&aProfiles, &theProfile);)
        theFound = theSearch.FindOfType(theProfile);
    return theFound;
}

} // namespace CDS
