#include <UPnP/Utilities/DIDL/ObjectWriter.h>

#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <stdlib.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

namespace DIDL
{

// Calls aWrite with the name and the value, NULL when there is none, of each extra-info pair of an entry.
template <typename Write>
static void ForEachExtraInfo(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, Write aWrite)
{
    const uint32 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    for (uint32 i = 0; i < theTagCount; ++i)
    {
        const uint16 theTag = zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(i));
        if (theTag < aFirstTag) { continue; }
        const char* theName = GetText(aRecord, anEntry, theTag);
        const char* theValue = theTag < 0xFFFF ? GetText(aRecord, anEntry, static_cast<uint16>(theTag + 1)) : nullptr;
        if (theName) { aWrite(theName, theValue); }
        ++i; // the value comes right behind its name
    }
}

static void AppendResExtraInfo(zoBuffer* aBuffer, uint32 aResourceIndex, zoPackedData_t* aResourceInfo)
{
    ForEachExtraInfo(aResourceInfo, aResourceIndex, kCDSResourceInfo_Count,
                     [aBuffer](const char* aName, const char* aValue)
                     {
        if (strcmp(aName, "microsoft") == 0 || strcmp(aName, "codec") == 0) { return; }
        AppendLiteral(aBuffer, " ");
        zoBuffer_AppendStr(aBuffer, aName);
        if (!aValue) { return; }
        AppendLiteral(aBuffer, "=\"");
        AppendStr(aBuffer, aValue, 0, kMaxSize_Text);
        AppendLiteral(aBuffer, kDIDL_Quote);
    });
}

static void AppendMediaExtraInfo(zoBuffer* aBuffer, zoPackedData_t* aMediaData)
{
    ForEachExtraInfo(aMediaData, 0, kCDSEntryInfo_Count,
                     [aBuffer](const char* aName, const char* aValue)
                     {
        AppendLiteral(aBuffer, "<");
        zoBuffer_AppendStr(aBuffer, aName);
        AppendLiteral(aBuffer, ">");
        if (aValue) { AppendStr(aBuffer, aValue, 0, kMaxSize_URI); }
        AppendLiteral(aBuffer, "</");
        zoBuffer_AppendStr(aBuffer, aName);
        AppendLiteral(aBuffer, ">");
    });
}

static void AppendResource(zoBuffer* aBuffer, int afIncludeResExtraInfo, zoPackedData_t* aResourceInfo, uint32 anIndex,
                           const char* aURI, const char* aProtocolInfo)
{
    const auto GetNumber = [aResourceInfo, anIndex](uint16 aTag)
    { return zoPackedData_GetDataAsUInt32(aResourceInfo, anIndex, aTag); };
    const uint32 theBitRate = GetNumber(kCDSResourceInfo_BitRate);
    const uint32 theDuration = GetNumber(kCDSResourceInfo_Duration);

    AppendLiteral(aBuffer, kDIDL_Res_Start);
    AppendProtocolInfo(aBuffer, aProtocolInfo);
    if (theBitRate != kBitRate_NotSet)
    {
        AppendValueIfNotZero(aBuffer, kDIDL_ResAttribute_BitRate_Start, theBitRate / 8, kDIDL_Quote);
    }
    AppendValueIfNotZero(aBuffer, kDIDL_ResAttribute_ColorDepth_Start, GetNumber(kCDSResourceInfo_ColorDepth),
                         kDIDL_Quote);
    if (theDuration != 0 && theDuration != kUPnP_UnknownTime)
    {
        AppendLiteral(aBuffer, kDIDL_ResAttribute_Duration_Start);
        AppendTime(aBuffer, theDuration);
        AppendLiteral(aBuffer, kDIDL_Quote);
    }
    AppendStrIfNotEmpty(aBuffer, kDIDL_ResAttribute_Resolution_Start,
                        GetText(aResourceInfo, anIndex, kCDSResourceInfo_Resolution), kDIDL_Quote, kMaxSize_Text, 0);
    AppendValue64IfNotZero(aBuffer, kDIDL_ResAttribute_Size_Start,
                           zoPackedData_GetDataAsUInt64(aResourceInfo, anIndex, kCDSResourceInfo_Size), kDIDL_Quote);
    AppendValueIfNotZero(aBuffer, kDIDL_ResAttribute_AudioChannelCount_Start,
                         GetNumber(kCDSResourceInfo_AudioChannelCount), kDIDL_Quote);
    AppendStrIfNotEmpty(aBuffer, kDIDL_ResAttribute_IFOURI_Start,
                        GetText(aResourceInfo, anIndex, kCDSResourceInfo_IFOFileURI), kDIDL_Quote, kMaxSize_URI, 0);
    if (afIncludeResExtraInfo) { AppendResExtraInfo(aBuffer, anIndex, aResourceInfo); }
    AppendLiteral(aBuffer, ">");
    AppendStr(aBuffer, aURI, 0, kMaxSize_URI);
    AppendLiteral(aBuffer, kDIDL_Res_End);
}

// Whether a protocol info has the profile, unless that is NULL, and the conversion indicator, unless that is -1.
static bool MatchProtocolInfo(const char* aProtocolInfo, const char* aDLNAPN_Match, int afDLNACI_Match)
{
    if (!aDLNAPN_Match && afDLNACI_Match == -1) { return true; }
    return zoDLNAProtocolInfo_MatchText(aProtocolInfo, strlen(aProtocolInfo), aDLNAPN_Match, afDLNACI_Match) != 0;
}

// One pass over the resources that writes those which match and are not yet written. The result is 1 when the text has
// passed its limit: then nothing more is to be written.
static int UPnPDIDL_BuildResource(zoBuffer* aBuffer, int afIncludeResExtraInfo, zoPackedData_t* aResourceInfo,
                                  uint32 aCount, const char* anURI_Match, const char* aDLNAPN_Match, int afDLNACI_Match,
                                  uint32* aResourcesAlreadyAdded)
{
    for (uint32 i = 0; i < aCount; ++i)
    {
        if (aResourcesAlreadyAdded[i]) { continue; }
        const char* theURI = GetText(aResourceInfo, i, kCDSResourceInfo_URI);
        if (!zoStrEmpty(theURI))
        {
            const char* theProtocolInfo = GetText(aResourceInfo, i, kCDSResourceInfo_ProtocolInfo);
            if (!theProtocolInfo) { theProtocolInfo = ""; }
            if (anURI_Match && strcmp(anURI_Match, theURI) != 0) { continue; }
            if (!MatchProtocolInfo(theProtocolInfo, aDLNAPN_Match, afDLNACI_Match)) { continue; }
            aResourcesAlreadyAdded[i] = 1;
            AppendResource(aBuffer, afIncludeResExtraInfo, aResourceInfo, i, theURI, theProtocolInfo);
        }
        if (aBuffer->mPos > kLimitResourceBufferSize) { return 1; }
    }
    return 0;
}

bool AppendResources(zoBuffer* aBuffer, int afIncludeResExtraInfo, zoPackedData_t* aResourceInfo,
                     const char* aSelectedURI, uint32* aLeftCount)
{
    const struct
    {
        const char* mURI;
        const char* mProfile;
        int mConversionIndicator;
    } kPasses[] = {
        { aSelectedURI, nullptr, -1 }, { nullptr, "JPEG_TN", -1 }, { nullptr, "PNG_TN", -1 },
        { nullptr, nullptr, 0 },       { nullptr, nullptr, -1 },
    };
    const uint32 theCount = zoPackedData_GetEntryCount(aResourceInfo);
    if (theCount == 0) { return true; }
    uint32 theFewAdded[kFewResources] = {};
    const bool fAreFew = theCount <= kFewResources;
    uint32* theAdded =
        fAreFew ? theFewAdded : static_cast<uint32*>(zoMallocZeroed(size_t{ theCount } * sizeof(uint32)));
    bool fIsComplete = true;
    for (const auto& thePass : kPasses)
    {
        if (UPnPDIDL_BuildResource(aBuffer, afIncludeResExtraInfo, aResourceInfo, theCount, thePass.mURI,
                                   thePass.mProfile, thePass.mConversionIndicator, theAdded))
        {
            *aLeftCount = static_cast<uint32>(std::count(theAdded, theAdded + theCount, 0u));
            fIsComplete = false;
            break;
        }
    }
    if (!fAreFew) { free(theAdded); }
    return fIsComplete;
}

// The list of declarations, each after a blank, and without the backslashes that protect the commas in it.
void AppendDeclarations(zoBuffer* aBuffer, const char* aList)
{
    AppendLiteral(aBuffer, " ");
    const char* theComma;
    for (; (theComma = strchr(aList, ',')) != nullptr; aList = theComma + 1)
    {
        const bool fIsProtected = theComma > aList && theComma[-1] == '\\';
        AppendBytes(aBuffer, aList, static_cast<size_t>(theComma - aList) - fIsProtected);
        AppendBytes(aBuffer, fIsProtected ? "," : " ", 1);
    }
    zoBuffer_AppendStr(aBuffer, aList);
}

// The next string of an array in packed form, where it lies; NULL behind the last. What has no NUL is no string.
static const char* NextString(const char** aStrings, size_t* aSize)
{
    const char* theString = *aStrings;
    const char* theNul = static_cast<const char*>(*aSize > 0 ? memchr(theString, 0, *aSize) : nullptr);
    if (!theNul) { return nullptr; }
    *aSize -= static_cast<size_t>(theNul + 1 - theString);
    *aStrings = theNul + 1;
    return theString;
}

static void AppendAlbumArt(zoBuffer* aBuffer, zoPackedData_t* aMediaData)
{
    size_t theSize;
    const char* thePairs = zoPackedData_GetData(aMediaData, 0, kCDSEntryInfo_AlbumArtURI, &theSize);
    while (const char* theURI = NextString(&thePairs, &theSize))
    {
        const char* theProfile = NextString(&thePairs, &theSize);
        if (zoStrEmpty(theURI)) { continue; }
        AppendLiteral(aBuffer, kDIDL_Tag_AlbumArtURI_Start);
        AppendStrIfNotEmpty(aBuffer, " dlna:profileID=\"", theProfile, kDIDL_Quote, kMaxSize_Text, 0);
        AppendLiteral(aBuffer, ">");
        AppendStr(aBuffer, theURI, 0, kMaxSize_URI);
        AppendLiteral(aBuffer, kDIDL_Tag_AlbumArtURI_End);
    }
}

static void AppendBackgroundMusic(zoBuffer* aBuffer, zoPackedData_t* aMediaData)
{
    const char* theURI = GetText(aMediaData, 0, kCDSEntryInfo_BGMURI);
    if (zoStrEmpty(theURI)) { return; }
    AppendLiteral(aBuffer, kDIDL_Tag_BGMURI_Start);
    AppendStrIfNotEmpty(aBuffer, " av:profileID=\"", GetText(aMediaData, 0, kCDSEntryInfo_BGMURIProtocolInfo),
                        kDIDL_Quote, kMaxSize_Text, 0);
    AppendLiteral(aBuffer, ">");
    AppendStr(aBuffer, theURI, 0, kMaxSize_URI);
    AppendLiteral(aBuffer, kDIDL_Tag_BGMURI_End);
}

// From the item's start tag to its last metadata element.
void AppendMetadata(zoBuffer* aBuffer, zoPackedData_t* aMediaData)
{
    AppendLiteral(aBuffer, kDIDL_Item_Start_Part);
    AppendStrIfNotEmpty(aBuffer, " id=\"", GetText(aMediaData, 0, kCDSEntryInfo_ItemID), kDIDL_Quote, kMaxSize_URI, 0);
    AppendStrIfNotEmpty(aBuffer, " parentID=\"", GetText(aMediaData, 0, kCDSEntryInfo_ParentID), kDIDL_Quote,
                        kMaxSize_URI, 0);
    AppendLiteral(aBuffer, " restricted=\"1\">");
    AppendAlbumArt(aBuffer, aMediaData);
    for (const auto& theElement : kDIDL_TextElements)
    {
        AppendStrIfNotEmpty(aBuffer, theElement.mStart, GetText(aMediaData, 0, theElement.mTag), theElement.mEnd,
                            kMaxSize_Text, 0);
    }
    AppendValueIfNotZero(aBuffer, kDIDL_Tag_ChannelNr_Start,
                         zoPackedData_GetDataAsUInt32(aMediaData, 0, kCDSEntryInfo_ChannelNr), kDIDL_Tag_ChannelNr_End);
    AppendBackgroundMusic(aBuffer, aMediaData);
    AppendMediaExtraInfo(aBuffer, aMediaData);
}

// What nearly every object's text fits in: a value's tags and a record's rows are of about the same size.
size_t GuessTextSize(const zoPackedData_t* aMediaData, const zoPackedData_t* aResourceInfo)
{
    const uint64 theSize =
        uint64{ zoPackedData_GetMemoryUsage(aMediaData) } + zoPackedData_GetMemoryUsage(aResourceInfo);
    return kFirstBufferSize + static_cast<size_t>(std::min<uint64>(theSize, 2 * kLimitResourceBufferSize));
}

} // namespace DIDL
