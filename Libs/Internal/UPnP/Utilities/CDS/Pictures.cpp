#include <UPnP/Utilities/CDS/Pictures.h>

#include <UPnP/Utilities/UPnPConst.h>
#include <algorithm>
#include <iterator>
#include <string.h>
#include <zo/CStringTokenizer.h>

namespace CDS
{

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

zoCString ProfilesOrDefault(const zoCString& aProfiles) { return aProfiles.IsEmpty() ? kDefaultProfiles : aProfiles; }

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
    const uint32 theAddress = FindHostAddress(anURI);
    if (theAddress == kNoAddress) { return 0; }
    uint32 theWeight = kIsAddressWeight;
    for (uint32 i = 0; i < aTargets.mCount; ++i)
        theWeight += GetLocality(theAddress, aTargets.mAddresses[i]);
    return theWeight;
}

AlbumArt ChooseAlbumArt(const zoArray_t* aPairs, const zoCString& aProfiles, Targets aTargets)
{
    ProfileList theProfiles;
    SplitProfiles(aProfiles, &theProfiles);
    AlbumArt theBest = { "", "" };
    uint32 theBestWeight = 0;
    for (size_t i = 0; i + 1 < zoArray_GetCount(aPairs); i += 2)
    {
        const char* theURI = static_cast<const char*>(zoArray_At(aPairs, i));
        const char* theProfile = static_cast<const char*>(zoArray_At(aPairs, i + 1));
        const uint32 theWeight = WeighAlbumArtHost(theURI, aTargets) + WeighProfile(theProfiles, theProfile);
        if (theBestWeight == 0) { theBest.mURI = theURI; } // better than nothing
        if (theWeight <= theBestWeight) { continue; }
        theBest = { theURI, theProfile };
        theBestWeight = theWeight;
    }
    return theBest;
}

int ChooseThumbnail(Resources* aResources, const char* aThumbnailType, Targets aTargets)
{
    const char* theMimeType = strncmp(aThumbnailType, "PNG_", 4) == 0 ? "image/png" : "image/jpeg";
    zoCString theSink;
    theSink.Format("http-get:*:%s:DLNA.ORG_PN=%s", theMimeType, aThumbnailType);
    zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New(theSink.c_str(), 0);
    const zoCString theSupportedProtocols = GetSupportedProtocols(theList);
    const zoCString theSchemeOrder = "http";
    const Renderer theRenderer = { theList, theSupportedProtocols, theSchemeOrder, aTargets, true };
    const Choice theChoice = Choose(aResources, theRenderer, kRendererPlayConfidence_May);
    zoDLNAProtocolInfoList_Delete(theList);
    return theChoice.mResource;
}

int ChooseThumbnailOfProfiles(const zoPackedData_t* aRecord, const zoCString& aProfiles, Targets aTargets)
{
    Resources theResources(aRecord);
    zoCStringTokenizer theTokenizer;
    theTokenizer.SetString(aProfiles, ",", kTokenizerMode_Default);
    int theIndex = -1;
    while (theIndex < 0 && theTokenizer.HasMoreTokens())
        theIndex = ChooseThumbnail(&theResources, theTokenizer.GetNextToken().c_str(), aTargets);
    return theIndex;
}

} // namespace CDS
