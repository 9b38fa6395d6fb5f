#include <UPnP/Utilities/DIDL/ObjectWriter.h>

#include <Shared/Sizes.h>
#include <UPnP/Utilities/DIDL/Repairer.h>
#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

namespace DIDL
{

size_t GuessTextSize(const zoPackedData_t* aMediaData, const zoPackedData_t* aResourceInfo)
{
    // The tags around a value take about as much as its row in the record.
    const uint64 theSize =
        uint64{ zoPackedData_GetMemoryUsage(aMediaData) } + zoPackedData_GetMemoryUsage(aResourceInfo);
    return kFirstBufferSize + static_cast<size_t>(std::min<uint64>(theSize, 2 * kLimitResourceBufferSize));
}

// As AppendStrIfNotEmpty.
[[gnu::always_inline]] static inline void AppendTextIfNotEmpty(Output anOutput, std::string_view aStartStr,
                                                               std::string_view aStr, std::string_view anEndStr,
                                                               size_t aMaxSize)
{
    if (aStr.empty()) { return; }
    Shared::Append(anOutput.mBuffer, aStartStr);
    AppendText(anOutput, aStr, aMaxSize);
    Shared::Append(anOutput.mBuffer, anEndStr);
}

// For what few objects have: made for size.
[[gnu::cold]] static void AppendRareNumber(Output anOutput, std::string_view aStartStr, uint32 aValue,
                                           std::string_view anEndStr)
{
    AppendValueIfNotZero(anOutput.mBuffer, aStartStr, aValue, anEndStr);
}

// ---- The object ----

void AppendDeclarations(zoBuffer* aBuffer, std::string_view aList)
{
    AppendLiteral(aBuffer, " ");
    std::string_view theRest = aList;
    size_t theLength;
    while ((theLength = theRest.find(',')) != theRest.npos)
    {
        const bool fIsEscaped = theLength > 0 && theRest[theLength - 1] == '\\';
        Shared::Append(aBuffer, theRest.substr(0, theLength - fIsEscaped));
        Shared::Append(aBuffer, fIsEscaped ? "," : " ", 1);
        theRest.remove_prefix(theLength + 1);
    }
    Shared::Append(aBuffer, theRest);
}

static void AppendAlbumArtURI(Output anOutput, std::string_view aURI, std::string_view aProfile)
{
    if (aURI.empty()) { return; }
    AppendLiteral(anOutput.mBuffer, kDIDL_Tag_AlbumArtURI_Start);
    if (anOutput.mRepairer) { anOutput.mRepairer->Use(aProfile.empty() ? Repairer::kUPnP : Repairer::kUPnPAndDLNA); }
    AppendTextIfNotEmpty(anOutput, " dlna:profileID=\"", aProfile, kDIDL_Quote, kMaxSize_Text);
    AppendLiteral(anOutput.mBuffer, ">");
    AppendText(anOutput, aURI, kMaxSize_URI);
    AppendLiteral(anOutput.mBuffer, kDIDL_Tag_AlbumArtURI_End);
}

static void AppendAlbumArt(Output anOutput, const zoPackedData_t* aMediaData)
{
    zoArray_t* thePairs =
        zoPackedData_GetDataArray(aMediaData, 0, kCDSEntryInfo_AlbumArtURI, zoStringArray_UnFlattenerFunc);
    zoArray_SetFreeFunc(thePairs, zoStringArray_FreeFunc);
    const size_t theCount = zoArray_GetCount(thePairs);
    for (size_t i = 0; i < theCount; i += 2)
    {
        AppendAlbumArtURI(anOutput, TextOf(static_cast<const char*>(zoArray_At(thePairs, i))),
                          TextOf(static_cast<const char*>(zoArray_At(thePairs, i + 1))));
    }
    zoArray_Delete(thePairs);
}

// Few objects have one.
[[gnu::cold]] static void AppendBackgroundMusic(Output anOutput, std::string_view aURI, std::string_view aProtocolInfo)
{
    if (anOutput.mRepairer) { anOutput.mRepairer->Use(Repairer::kAV); }
    AppendLiteral(anOutput.mBuffer, kDIDL_Tag_BGMURI_Start);
    AppendTextIfNotEmpty(anOutput, " av:profileID=\"", aProtocolInfo, kDIDL_Quote, kMaxSize_Text);
    AppendLiteral(anOutput.mBuffer, ">");
    AppendText(anOutput, aURI, kMaxSize_URI);
    AppendLiteral(anOutput.mBuffer, kDIDL_Tag_BGMURI_End);
}

static void AppendMediaExtraInfo(Output anOutput, const MediaValues& anEntry)
{
    anEntry.ForEachPair(
        [anOutput](std::string_view aName, const std::string_view* aValue)
        {
        if (anOutput.mRepairer && !anOutput.mRepairer->CanWriteElement(aName)) { return; }
        AppendLiteral(anOutput.mBuffer, "<");
        Shared::Append(anOutput.mBuffer, aName);
        AppendLiteral(anOutput.mBuffer, ">");
        if (aValue) { AppendText(anOutput, *aValue, kMaxSize_URI); }
        AppendLiteral(anOutput.mBuffer, "</");
        Shared::Append(anOutput.mBuffer, aName);
        AppendLiteral(anOutput.mBuffer, ">");
    });
}

// Notes the namespaces of the elements that the entry's values are written in.
[[gnu::cold]] static void UseNamespaces(Repairer* aRepairer, const MediaValues& aValues)
{
    for (const auto& theElement : kDIDL_TextElements)
    {
        if (aValues.GetBytes(theElement.mTag).empty()) { continue; }
        aRepairer->Use(theElement.mStart.substr(0, 4) == "<dc:" ? Repairer::kDC : Repairer::kUPnP);
    }
    if (aValues.GetNumber<uint32>(kCDSEntryInfo_ChannelNr) != 0) { aRepairer->Use(Repairer::kUPnP); }
}

void AppendMetadata(Output anOutput, const zoPackedData_t* aMediaData, const MediaValues& aValues)
{
    AppendLiteral(anOutput.mBuffer, kDIDL_Item_Start_Part);
    AppendTextIfNotEmpty(anOutput, " id=\"", aValues.GetBytes(kCDSEntryInfo_ItemID), kDIDL_Quote, kMaxSize_URI);
    AppendTextIfNotEmpty(anOutput, " parentID=\"", aValues.GetBytes(kCDSEntryInfo_ParentID), kDIDL_Quote, kMaxSize_URI);
    AppendLiteral(anOutput.mBuffer, " restricted=\"1\">");
    if (aValues.HasBytes(kCDSEntryInfo_AlbumArtURI)) { AppendAlbumArt(anOutput, aMediaData); }
    for (const auto& theElement : kDIDL_TextElements)
    {
        AppendTextIfNotEmpty(anOutput, theElement.mStart, aValues.GetBytes(theElement.mTag), theElement.mEnd,
                             kMaxSize_Text);
    }
    const uint32 theChannel = aValues.GetNumber<uint32>(kCDSEntryInfo_ChannelNr);
    if (theChannel != 0) { AppendRareNumber(anOutput, kDIDL_Tag_ChannelNr_Start, theChannel, kDIDL_Tag_ChannelNr_End); }
    const bool fMayLack = anOutput.mRepairer && !anOutput.mRepairer->HasDeclared(Repairer::kDC | Repairer::kUPnP);
    if (fMayLack) { UseNamespaces(anOutput.mRepairer, aValues); }
    const std::string_view theMusic = aValues.GetBytes(kCDSEntryInfo_BGMURI);
    if (!theMusic.empty())
    {
        AppendBackgroundMusic(anOutput, theMusic, aValues.GetBytes(kCDSEntryInfo_BGMURIProtocolInfo));
    }
    AppendMediaExtraInfo(anOutput, aValues);
}

// ---- Resources ----

static void AppendResExtraInfo(Output anOutput, const ResourceValues& aResource)
{
    aResource.ForEachPair(
        [anOutput](std::string_view aName, const std::string_view* aValue)
        {
        if (aName == "microsoft" || aName == "codec") { return; }
        if (anOutput.mRepairer && !anOutput.mRepairer->CanWriteAttribute(aName, aValue != nullptr)) { return; }
        AppendLiteral(anOutput.mBuffer, " ");
        Shared::Append(anOutput.mBuffer, aName);
        if (!aValue) { return; }
        AppendLiteral(anOutput.mBuffer, "=\"");
        AppendText(anOutput, *aValue, kMaxSize_Text);
        AppendLiteral(anOutput.mBuffer, kDIDL_Quote);
    });
}

static void AppendDuration(Output anOutput, uint32 aDuration)
{
    if (aDuration == 0 || aDuration == kUPnP_UnknownTime) { return; }
    AppendLiteral(anOutput.mBuffer, kDIDL_ResAttribute_Duration_Start);
    AppendTime(anOutput.mBuffer, aDuration);
    AppendLiteral(anOutput.mBuffer, kDIDL_Quote);
}

// Few resources have one.
[[gnu::cold]] static void AppendIFOFileURI(Output anOutput, std::string_view aURI)
{
    if (anOutput.mRepairer) { anOutput.mRepairer->Use(Repairer::kDLNA); }
    AppendLiteral(anOutput.mBuffer, kDIDL_ResAttribute_IFOURI_Start);
    AppendText(anOutput, aURI, kMaxSize_URI);
    AppendLiteral(anOutput.mBuffer, kDIDL_Quote);
}

static void AppendResource(Output anOutput, int afIncludeResExtraInfo, const ResourceValues& aValues)
{
    const std::string_view theProtocolInfo = aValues.GetText(kCDSResourceInfo_ProtocolInfo);
    const uint32 theBitRate = aValues.GetNumber<uint32>(kCDSResourceInfo_BitRate);
    const uint32 theDepth = aValues.GetNumber<uint32>(kCDSResourceInfo_ColorDepth);

    AppendLiteral(anOutput.mBuffer, kDIDL_Res_Start);
    if (anOutput.mRepairer) { anOutput.mRepairer->StartAttributes(); }
    AppendProtocolInfo(anOutput, theProtocolInfo.data() ? theProtocolInfo : "");
    AppendValueIfNotZero(anOutput.mBuffer, kDIDL_ResAttribute_BitRate_Start,
                         theBitRate == kBitRate_NotSet ? 0 : theBitRate / 8, kDIDL_Quote);
    if (theDepth != 0) { AppendRareNumber(anOutput, kDIDL_ResAttribute_ColorDepth_Start, theDepth, kDIDL_Quote); }
    AppendDuration(anOutput, aValues.GetNumber<uint32>(kCDSResourceInfo_Duration));
    AppendTextIfNotEmpty(anOutput, kDIDL_ResAttribute_Resolution_Start, aValues.GetBytes(kCDSResourceInfo_Resolution),
                         kDIDL_Quote, kMaxSize_Text);
    AppendValue64IfNotZero(anOutput.mBuffer, kDIDL_ResAttribute_Size_Start,
                           aValues.GetNumber<uint64>(kCDSResourceInfo_Size), kDIDL_Quote);
    AppendValueIfNotZero(anOutput.mBuffer, kDIDL_ResAttribute_AudioChannelCount_Start,
                         aValues.GetNumber<uint32>(kCDSResourceInfo_AudioChannelCount), kDIDL_Quote);
    const std::string_view theIFO = aValues.GetBytes(kCDSResourceInfo_IFOFileURI);
    if (!theIFO.empty()) { AppendIFOFileURI(anOutput, theIFO); }
    if (afIncludeResExtraInfo) { AppendResExtraInfo(anOutput, aValues); }
    AppendLiteral(anOutput.mBuffer, ">");
    AppendText(anOutput, aValues.GetBytes(kCDSResourceInfo_URI), kMaxSize_URI);
    AppendLiteral(anOutput.mBuffer, kDIDL_Res_End);
}

// Compares without reading aText further than to where it differs: a long one is compared with every resource.
static bool IsText(std::string_view aBytes, const char* aText)
{
    return strncmp(aText, aBytes.data(), aBytes.size()) == 0 && aText[aBytes.size()] == '\0';
}

// True if the resource has a URI, but not the one, not the profile, or not the conversion indicator of a pass. NULL
// and -1 stand for any.
static bool IsPassedOver(const zoPackedData_t* aResourceInfo, uint32 anIndex, const char* anURI_Match,
                         const char* aDLNAPN_Match, int afDLNACI_Match)
{
    const std::string_view theURI = GetText(aResourceInfo, anIndex, kCDSResourceInfo_URI);
    if (theURI.empty()) { return false; }
    if (anURI_Match && !IsText(theURI, anURI_Match)) { return true; }
    if (!aDLNAPN_Match && afDLNACI_Match == -1) { return false; }
    const std::string_view theProtocolInfo = GetText(aResourceInfo, anIndex, kCDSResourceInfo_ProtocolInfo);
    return !zoDLNAProtocolInfo_MatchText(theProtocolInfo.data() ? theProtocolInfo.data() : "", theProtocolInfo.size(),
                                         aDLNAPN_Match, afDLNACI_Match);
}

// One pass over the resources that writes those which match and are not yet written. @return 1 when the text has passed
// its limit: then no further resource is written.
static int UPnPDIDL_BuildResource(Output anOutput, int afIncludeResExtraInfo, const zoPackedData_t* aResourceInfo,
                                  uint32 aCount, const char* anURI_Match, const char* aDLNAPN_Match, int afDLNACI_Match,
                                  uint32* aResourcesAlreadyAdded)
{
    const bool fIsFiltered = anURI_Match || aDLNAPN_Match || afDLNACI_Match != -1;
    for (uint32 i = 0; i < aCount; ++i)
    {
        if (aResourcesAlreadyAdded[i]) { continue; }
        if (fIsFiltered && IsPassedOver(aResourceInfo, i, anURI_Match, aDLNAPN_Match, afDLNACI_Match)) { continue; }
        const ResourceValues theValues(aResourceInfo, i);
        if (!theValues.GetBytes(kCDSResourceInfo_URI).empty())
        {
            aResourcesAlreadyAdded[i] = 1;
            AppendResource(anOutput, afIncludeResExtraInfo, theValues);
        }
        if (anOutput.mBuffer->mPos > kLimitResourceBufferSize) { return 1; }
    }
    return 0;
}

bool AppendResources(Output anOutput, int afIncludeResExtraInfo, const zoPackedData_t* aResourceInfo,
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
    uint32 theInlineFlags[kInlineResources] = {};
    const bool fAreInline = theCount <= kInlineResources;
    uint32* theAdded = fAreInline ? theInlineFlags : Shared::NewZeroedArray<uint32>(theCount);
    bool fIsComplete = true;
    for (const auto& thePass : kPasses)
    {
        fIsComplete = UPnPDIDL_BuildResource(anOutput, afIncludeResExtraInfo, aResourceInfo, theCount, thePass.mURI,
                                             thePass.mProfile, thePass.mConversionIndicator, theAdded) == 0;
        *aLeftCount = static_cast<uint32>(std::count(theAdded, theAdded + theCount, 0u));
        if (!fIsComplete || *aLeftCount == 0) { break; }
    }
    if (!fAreInline) { free(theAdded); }
    return fIsComplete;
}

} // namespace DIDL
