#include <UPnP/Utilities/UPnPDIDL.h>

#include <UPnP/Stack/ILibString.h>
#include <UPnP/Utilities/Private/UPnPUTF8.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <zoLog/Log.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoCustomHashTable.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoURI.h>

// ---- Texts of DIDL-Lite ----

static const char kMiniDIDL_Header[] = "<DIDL-Lite";
static const char kDIDL_Header[] = "<DIDL-Lite"
                                   " xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
                                   " xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\""
                                   " xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\""
                                   " xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\">";
static const char kDIDL_Footer[] = "</DIDL-Lite>";
static const char kDIDL_Quote[] = "\"";
static const char kDIDL_Item_Start_Part[] = "<item";
static const char kDIDL_Item_Start[] = "<item>";
static const char kDIDL_Item_End[] = "</item>";
static const char kDIDL_Container_Start_Part[] = "<container";
static const char kDIDL_Container_End[] = "</container>";

static const char kDIDL_Tag_Title_Start[] = "<dc:title>";
static const char kDIDL_Tag_Title_End[] = "</dc:title>";
static const char kDIDL_Tag_Class_Start[] = "<upnp:class>";
static const char kDIDL_Tag_Class_End[] = "</upnp:class>";
static const char kDIDL_Tag_CreateClass_Start[] = "<upnp:createClass>";
static const char kDIDL_Tag_CreateClass_Derived_Start[] = "<upnp:createClass includeDerived=\"1\">";
static const char kDIDL_Tag_CreateClass_End[] = "</upnp:createClass>";

static const char kDIDL_Tag_ChannelNr_Start[] = "<upnp:channelNr>";
static const char kDIDL_Tag_ChannelNr_End[] = "</upnp:channelNr>";
static const char kDIDL_Tag_AlbumArtURI_Start[] = "<upnp:albumArtURI";
static const char kDIDL_Tag_AlbumArtURI_End[] = "</upnp:albumArtURI>";
static const char kDIDL_Tag_BGMURI_Start[] = "<av:bgmURI";
static const char kDIDL_Tag_BGMURI_End[] = "</av:bgmURI>";

static const char kDIDL_Res_Start[] = "<res";
static const char kDIDL_Res_End[] = "</res>";
static const char kDIDL_ResAttribute_ProtocolInfo_Start[] = " protocolInfo=\"";
static const char kDIDL_ResAttribute_BitRate_Start[] = " bitrate=\"";
static const char kDIDL_ResAttribute_ColorDepth_Start[] = " colorDepth=\"";
static const char kDIDL_ResAttribute_Duration_Start[] = " duration=\"";
static const char kDIDL_ResAttribute_Resolution_Start[] = " resolution=\"";
static const char kDIDL_ResAttribute_Size_Start[] = " size=\"";
static const char kDIDL_ResAttribute_AudioChannelCount_Start[] = " nrAudioChannels=\"";
static const char kDIDL_ResAttribute_IFOURI_Start[] = " dlna:ifoFileURI=\"";

// The elements that are written from a text of the entry record, in this order.
static const struct
{
    uint16 mTag;
    const char* mStart;
    const char* mEnd;
} kDIDL_TextElements[] = {
    { kCDSEntryInfo_Title, kDIDL_Tag_Title_Start, kDIDL_Tag_Title_End },
    { kCDSEntryInfo_ItemClassName, kDIDL_Tag_Class_Start, kDIDL_Tag_Class_End },
    { kCDSEntryInfo_Creator, "<dc:creator>", "</dc:creator>" },
    { kCDSEntryInfo_Date, "<dc:date>", "</dc:date>" },
    { kCDSEntryInfo_Genre, "<upnp:genre>", "</upnp:genre>" },
    { kCDSEntryInfo_Album, "<upnp:album>", "</upnp:album>" },
};

static const size_t kMaxSize = 10240;                 // no value takes more input once it has this many bytes
static const size_t kLimitResourceBufferSize = 15360; // no further resource is written past this
static const size_t kFirstBufferSize = 1024;
static const uint32 kFewResources = 32; // so many are noted without memory from the heap
static const int kMaxSize_Text = 255;
static const int kMaxSize_URI = 1024; // also IDs, protocol infos and extra elements

static const uint32 kBitRate_NotSet = 0xFFFFFFFF;

// ---- Appending ----

static void AppendBytes(zoBuffer* aBuffer, const char* aBytes, size_t aCount)
{
    if (aCount > aBuffer->mSize - aBuffer->mPos) { zoBuffer_Reserve(aBuffer, aCount); }
    memcpy(aBuffer->mPtr + aBuffer->mPos, aBytes, aCount);
    aBuffer->mPos += aCount;
}

// A text whose length is known when compiling.
template <size_t Size>
static void AppendLiteral(zoBuffer* aBuffer, const char (&aLiteral)[Size])
{
    AppendBytes(aBuffer, aLiteral, Size - 1);
}

namespace
{

struct Replacement
{
    char mCharacter;
    uint8 mLength;
    uint8 mDoubleLength;
    const char* mText;
    const char* mDoubleText;
};

constexpr Replacement kReplacements[] = {
    { '"', 6, 10, "&quot;", "&amp;quot;" }, { '\'', 6, 10, "&apos;", "&amp;apos;" }, { '<', 4, 8, "&lt;", "&amp;lt;" },
    { '>', 4, 8, "&gt;", "&amp;gt;" },      { '&', 5, 9, "&amp;", "&amp;amp;" },
};

// For each byte, 1 plus the index of its replacement, 0 when it is copied; the NUL is none of both.
struct ReplacementIndex
{
    uint8 mIndex[256];
    constexpr ReplacementIndex() : mIndex()
    {
        for (size_t i = 0; i < sizeof(kReplacements) / sizeof(kReplacements[0]); ++i)
            mIndex[static_cast<uint8>(kReplacements[i].mCharacter)] = static_cast<uint8>(i + 1);
        mIndex[0] = 0xFF;
    }
};

constexpr ReplacementIndex kReplacementIndex;

} // namespace

// Appends the text escaped, once or twice over, and cut to aMaxSize bytes (0: to kMaxSize only). A cut falls between
// characters, and between entities.
static void AppendStr(zoBuffer* aBuffer, const char* aStr, int afDoubleEscape, size_t aMaxSize)
{
    const size_t theLimit = aMaxSize > 0 ? std::min(aMaxSize, kMaxSize) : kMaxSize;
    const char* thePosition = aStr;
    size_t theCount = 0;
    for (;;)
    {
        const char* theRun = thePosition;
        const size_t theRoom = theCount < theLimit ? theLimit - theCount : 0;
        size_t theLength = 0;
        while (theLength < theRoom && kReplacementIndex.mIndex[static_cast<uint8>(theRun[theLength])] == 0)
            ++theLength;
        AppendBytes(aBuffer, theRun, theLength);
        thePosition += theLength;
        theCount += theLength;

        const uint8 theIndex = kReplacementIndex.mIndex[static_cast<uint8>(*thePosition)];
        if (*thePosition == 0) { return; }
        if (theIndex == 0)
        {
            aBuffer->mPos -= UPnPUTF8_BrokenSequenceLength(theRun, thePosition);
            return;
        }
        const Replacement& theReplacement = kReplacements[theIndex - 1];
        theLength = afDoubleEscape ? theReplacement.mDoubleLength : theReplacement.mLength;
        if (theCount >= kMaxSize || (aMaxSize > 0 && theCount + theLength > aMaxSize)) { return; }
        AppendBytes(aBuffer, afDoubleEscape ? theReplacement.mDoubleText : theReplacement.mText, theLength);
        theCount += theLength;
        ++thePosition;
    }
}

static void AppendStrIfNotEmpty(zoBuffer* aBuffer, const char* aStartStr, const char* aStr, const char* aEndStr,
                                int aMaxSize, int afDoubleEscape)
{
    if (zoStrEmpty(aStr)) { return; }
    zoBuffer_AppendStr(aBuffer, aStartStr);
    AppendStr(aBuffer, aStr, afDoubleEscape, static_cast<size_t>(aMaxSize));
    zoBuffer_AppendStr(aBuffer, aEndStr);
}

// At least aMinDigits digits, of at most 20.
static void AppendDecimal(zoBuffer* aBuffer, uint64 aValue, size_t aMinDigits)
{
    char theDigits[20];
    size_t theBegin = sizeof(theDigits);
    while (aValue > 0 || sizeof(theDigits) - theBegin < aMinDigits)
    {
        theDigits[--theBegin] = static_cast<char>('0' + aValue % 10);
        aValue /= 10;
    }
    AppendBytes(aBuffer, theDigits + theBegin, sizeof(theDigits) - theBegin);
}

static void AppendValue64IfNotZero(zoBuffer* aBuffer, const char* aStartStr, uint64 aValue, const char* aEndStr)
{
    if (aValue == 0) { return; }
    zoBuffer_AppendStr(aBuffer, aStartStr);
    AppendDecimal(aBuffer, aValue, 1);
    zoBuffer_AppendStr(aBuffer, aEndStr);
}

static void AppendValueIfNotZero(zoBuffer* aBuffer, const char* aStartStr, uint32 aValue, const char* aEndStr)
{
    AppendValue64IfNotZero(aBuffer, aStartStr, aValue, aEndStr);
}

// Eight digits.
static void AppendHexValue(zoBuffer* aBuffer, uint32 aValue)
{
    char theDigits[8];
    for (size_t i = sizeof(theDigits); i-- > 0; aValue >>= 4)
        theDigits[i] = "0123456789ABCDEF"[aValue & 15];
    AppendBytes(aBuffer, theDigits, sizeof(theDigits));
}

// Hours, minutes and seconds; as many digits of hours as it takes, two at least.
static void AppendTime(zoBuffer* aBuffer, uint32 aTime)
{
    AppendDecimal(aBuffer, aTime / 3600, 2);
    AppendLiteral(aBuffer, ":");
    AppendDecimal(aBuffer, aTime / 60 % 60, 2);
    AppendLiteral(aBuffer, ":");
    AppendDecimal(aBuffer, aTime % 60, 2);
}

// The text form of a protocol info, new.
static char* NewTextForm(const char* aProtocolInfo, size_t aLength)
{
    zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(aProtocolInfo, aLength, 0);
    char* theText = zoDLNAProtocolInfo_GetStr(theInfo);
    zoDLNAProtocolInfo_Delete(theInfo);
    return theText;
}

static void AppendProtocolInfo(zoBuffer* aBuffer, const char* aProtocolInfo)
{
    if (!aProtocolInfo) { return; }
    const size_t theLength = strlen(aProtocolInfo);
    const bool fIsNormal = zoDLNAProtocolInfo_IsNormal(aProtocolInfo, theLength) != 0;
    char* theText = fIsNormal ? nullptr : NewTextForm(aProtocolInfo, theLength);
    AppendStrIfNotEmpty(aBuffer, kDIDL_ResAttribute_ProtocolInfo_Start, fIsNormal ? aProtocolInfo : theText,
                        kDIDL_Quote, kMaxSize_URI, 0);
    free(theText);
}

// ---- Writing ----

static const char* GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    return zoPackedData_GetData(aRecord, anEntry, aTag, nullptr);
}

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

static void Log_Info(const char* aFormat, ...) __attribute__((format(printf, 1, 2)));
static void Log_Info(const char* aFormat, ...)
{
    zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_INFO, ZOLOG_M_DEFAULT);
    if (!theRecord) { return; }
    va_list theArguments;
    va_start(theArguments, aFormat);
    zoLog_SetLocation(theRecord, __FILE__, __LINE__);
    zoLog_Append_V(theRecord, aFormat, theArguments);
    va_end(theArguments);
    zoLog_End(theRecord);
}

static void AppendResources(zoBuffer* aBuffer, int afIncludeResExtraInfo, zoPackedData_t* aResourceInfo,
                            const char* aSelectedURI)
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
    if (theCount == 0) { return; }
    uint32 theFewAdded[kFewResources] = {};
    const bool fAreFew = theCount <= kFewResources;
    uint32* theAdded =
        fAreFew ? theFewAdded : static_cast<uint32*>(zoMallocZeroed(size_t{ theCount } * sizeof(uint32)));
    for (const auto& thePass : kPasses)
    {
        if (UPnPDIDL_BuildResource(aBuffer, afIncludeResExtraInfo, aResourceInfo, theCount, thePass.mURI,
                                   thePass.mProfile, thePass.mConversionIndicator, theAdded))
        {
            const auto theLeft = std::count(theAdded, theAdded + theCount, 0u);
            Log_Info("UPnPDIDL_Get: %lu resource(s) not added", static_cast<unsigned long>(theLeft));
            break;
        }
    }
    if (!fAreFew) { free(theAdded); }
}

static void LogNoNamespaces()
{
    zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_WARNING, ZOLOG_M_DEFAULT);
    if (!theRecord) { return; }
    zoLog_SetLocation(theRecord, __FILE__, __LINE__);
    zoLog_Append_F(theRecord, "No XML name space specified\n");
    zoLog_End(theRecord);
}

// The list of declarations, each after a blank, and without the backslashes that protect the commas in it.
static void AppendDeclarations(zoBuffer* aBuffer, const char* aList)
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

static void AppendNamespaces(zoBuffer* aBuffer, const char* aNamespaces)
{
    if (aNamespaces) { AppendDeclarations(aBuffer, aNamespaces); }
    else { LogNoNamespaces(); }
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
static void AppendMetadata(zoBuffer* aBuffer, zoPackedData_t* aMediaData)
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
static size_t GuessTextSize(const zoPackedData_t* aMediaData, const zoPackedData_t* aResourceInfo)
{
    const uint64 theSize =
        uint64{ zoPackedData_GetMemoryUsage(aMediaData) } + zoPackedData_GetMemoryUsage(aResourceInfo);
    return kFirstBufferSize + static_cast<size_t>(std::min<uint64>(theSize, 2 * kLimitResourceBufferSize));
}

char* UPnPDIDL_Get(zoPackedData_t* aMediaData, zoPackedData_t* aResourceInfo, int afIncludeHeaderFooter,
                   int afIncludeResExtraInfo, const char* aSelectedURI)
{
    zoBuffer* theBuffer = zoBuffer_New(GuessTextSize(aMediaData, aResourceInfo));
    if (afIncludeHeaderFooter) { AppendLiteral(theBuffer, kMiniDIDL_Header); }
    if (aMediaData)
    {
        AppendNamespaces(theBuffer, GetText(aMediaData, 0, kCDSEntryInfo_XMLNS));
        AppendLiteral(theBuffer, ">");
        AppendMetadata(theBuffer, aMediaData);
        AppendResources(theBuffer, afIncludeResExtraInfo, aResourceInfo, aSelectedURI);
    }
    else
    {
        if (afIncludeHeaderFooter) { AppendLiteral(theBuffer, ">"); }
        AppendLiteral(theBuffer, kDIDL_Item_Start);
    }
    AppendLiteral(theBuffer, kDIDL_Item_End);
    if (afIncludeHeaderFooter) { AppendLiteral(theBuffer, kDIDL_Footer); }
    AppendBytes(theBuffer, "", 1);
    char* theText = zoBuffer_TakeOwnership(theBuffer, nullptr, nullptr);
    zoBuffer_Delete(theBuffer);
    return theText;
}

// ---- Writing: the documents of an upload ----

static const uint32 kNoDTCPUploadInfo = 0xFFFFFFFF;

static void AppendText(zoBuffer* aBuffer, const char* aText, size_t aMaxSize)
{
    if (aText) { AppendStr(aBuffer, aText, 0, aMaxSize); }
}

// The document's header and the object's start tag.
static void AppendCreatedObject(zoBuffer* aBuffer, bool afIsItem, const char* anID, const char* aParentID,
                                uint32 aDLNAManagedFlags)
{
    AppendLiteral(aBuffer, kDIDL_Header);
    zoBuffer_AppendStr(aBuffer, afIsItem ? kDIDL_Item_Start_Part : kDIDL_Container_Start_Part);
    AppendLiteral(aBuffer, " id=\"");
    AppendText(aBuffer, anID, kMaxSize_URI);
    AppendLiteral(aBuffer, "\" parentID=\"");
    AppendText(aBuffer, aParentID, kMaxSize_URI);
    AppendLiteral(aBuffer, "\" restricted=\"0\"");
    AppendLiteral(aBuffer, " dlna:dlnaManaged=\"");
    AppendHexValue(aBuffer, aDLNAManagedFlags);
    AppendLiteral(aBuffer, "\">");
}

static void AppendTitleAndClass(zoBuffer* aBuffer, const char* aTitle, const char* aClassName)
{
    AppendStrIfNotEmpty(aBuffer, kDIDL_Tag_Title_Start, aTitle, kDIDL_Tag_Title_End, kMaxSize_Text, 0);
    AppendStrIfNotEmpty(aBuffer, kDIDL_Tag_Class_Start, aClassName, kDIDL_Tag_Class_End, kMaxSize_Text, 0);
}

// "object.item,1" is a class with those derived from it.
static void AppendCreateClass(zoBuffer* aBuffer, const char* aName, size_t aLength)
{
    const bool fHasSuffix = aLength >= 2 && aName[aLength - 2] == ',';
    const bool fIncludesDerived = fHasSuffix && aName[aLength - 1] != '0';
    const size_t theLength = fHasSuffix ? aLength - 2 : aLength;
    if (theLength == 0) { return; }
    zoBuffer_AppendStr(aBuffer, fIncludesDerived ? kDIDL_Tag_CreateClass_Derived_Start : kDIDL_Tag_CreateClass_Start);
    AppendBytes(aBuffer, aName, theLength);
    AppendLiteral(aBuffer, kDIDL_Tag_CreateClass_End);
}

static void AppendCreateClasses(zoBuffer* aBuffer, const char* aCreateClassNameList)
{
    if (zoStrEmpty(aCreateClassNameList)) { return; }
    zoCStringParser_TokenList* theNames =
        zoCStringParser_Tokenize(aCreateClassNameList, 0, strlen(aCreateClassNameList), ";", 1);
    for (const zoCStringParser_Token* theName = theNames->mFirstToken; theName; theName = theName->mNextToken)
        AppendCreateClass(aBuffer, theName->mData, theName->mDataLength);
    zoCStringParser_Delete(theNames);
}

static void AppendDTCPUploadInfo(zoBuffer* aBuffer, uint32 aDTCPUploadInfo)
{
    if (aDTCPUploadInfo == kNoDTCPUploadInfo) { return; }
    AppendLiteral(aBuffer, " dtcp:uploadInfo=\"");
    AppendHexValue(aBuffer, aDTCPUploadInfo);
    AppendLiteral(aBuffer, kDIDL_Quote);
}

static char* TakeDocument(zoBuffer* aBuffer)
{
    zoBuffer_Append(aBuffer, kDIDL_Footer, sizeof(kDIDL_Footer));
    char* theText = zoBuffer_TakeOwnership(aBuffer, nullptr, nullptr);
    zoBuffer_Delete(aBuffer);
    return theText;
}

char* UPnPDIDL_GetForCreateContainerRequest(const char* aParentID, const char* aTitle, uint32 aDLNAManagedFlags,
                                            const char* aClassName, const char* aCreateClassNameList)
{
    zoBuffer* theBuffer = zoBuffer_New(kFirstBufferSize);
    AppendCreatedObject(theBuffer, false, nullptr, aParentID, aDLNAManagedFlags);
    AppendTitleAndClass(theBuffer, aTitle, aClassName);
    AppendCreateClasses(theBuffer, aCreateClassNameList);
    AppendLiteral(theBuffer, kDIDL_Container_End);
    return TakeDocument(theBuffer);
}

static void AppendFileLength(zoBuffer* aBuffer, zoFileOffset aFileLength)
{
    if (aFileLength == 0) { return; }
    zoULongLong theLength;
    zoULongLong_SetFileOffset(&theLength, aFileLength);
    char* theText = zoULongLong_ToString(&theLength);
    AppendLiteral(aBuffer, " size = \"");
    zoBuffer_AppendStr(aBuffer, theText);
    AppendLiteral(aBuffer, kDIDL_Quote);
    free(theText);
}

char* UPnPDIDL_GetForCreateItemRequest(const char* aParentID, const char* aTitle, uint32 aDLNAManagedFlags,
                                       const char* aClassName, const char* aDLNAInfo, zoFileOffset aFileLength,
                                       uint32 aDTCPUploadInfo)
{
    zoBuffer* theBuffer = zoBuffer_New(kFirstBufferSize);
    AppendCreatedObject(theBuffer, true, nullptr, aParentID, aDLNAManagedFlags);
    AppendTitleAndClass(theBuffer, aTitle, aClassName);
    AppendLiteral(theBuffer, kDIDL_Res_Start);
    AppendProtocolInfo(theBuffer, aDLNAInfo);
    AppendLiteral(theBuffer, " dlna:resumeUpload=\"1\"");
    AppendFileLength(theBuffer, aFileLength);
    AppendDTCPUploadInfo(theBuffer, aDTCPUploadInfo);
    AppendLiteral(theBuffer, ">");
    AppendLiteral(theBuffer, kDIDL_Res_End);
    AppendLiteral(theBuffer, kDIDL_Item_End);
    return TakeDocument(theBuffer);
}

// The resource to which the content is uploaded.
static void AppendImportResource(zoBuffer* aBuffer, const char* anImportURI, const char* anImportIFOURI,
                                 const char* aProtocolInfo, int afEnableResumeUpload, uint32 aDTCPUploadInfo)
{
    AppendLiteral(aBuffer, kDIDL_Res_Start);
    if (afEnableResumeUpload) { AppendLiteral(aBuffer, " dlna:resumeUpload=\"1\" dlna:uploadedSize=\"0\""); }
    AppendLiteral(aBuffer, " importUri=\"");
    AppendText(aBuffer, anImportURI, kMaxSize_URI);
    AppendLiteral(aBuffer, kDIDL_Quote);
    AppendProtocolInfo(aBuffer, aProtocolInfo);
    if (anImportIFOURI)
    {
        AppendLiteral(aBuffer, " dlna:ifoFileURI=\"\" dlna:importIfoFileURI=\"");
        AppendText(aBuffer, anImportIFOURI, kMaxSize_URI);
        AppendLiteral(aBuffer, kDIDL_Quote);
    }
    AppendDTCPUploadInfo(aBuffer, aDTCPUploadInfo);
    AppendLiteral(aBuffer, "/>");
}

char* UPnPDIDL_GetForCreateObjectResponse(zoPackedData_t* aMediaData, const char* anImportURI,
                                          const char* anImportIFOURI, zoDLNAProtocolInfo_t* aDLNAProtocolInfo,
                                          const char* anID, const char* aParentID, int afEnableResumeUpload,
                                          uint32 aDTCPUploadInfo)
{
    const bool fIsItem = anImportURI != nullptr;
    const uint32 theFlags =
        fIsItem ? kDLNAManaged_DestroyItem : kDLNAManaged_UploadContent | kDLNAManaged_CreateChildContainer;
    zoBuffer* theBuffer = zoBuffer_New(kFirstBufferSize);
    AppendCreatedObject(theBuffer, fIsItem, anID, aParentID, theFlags);
    AppendTitleAndClass(theBuffer, GetText(aMediaData, 0, kCDSEntryInfo_Title),
                        GetText(aMediaData, 0, kCDSEntryInfo_ItemClassName));
    AppendStrIfNotEmpty(theBuffer, kDIDL_Tag_CreateClass_Derived_Start,
                        GetText(aMediaData, 0, kCDSEntryInfo_CreateClass), kDIDL_Tag_CreateClass_End, kMaxSize_Text, 0);
    if (fIsItem)
    {
        char* theProtocolInfo = aDLNAProtocolInfo ? zoDLNAProtocolInfo_GetStr(aDLNAProtocolInfo) : nullptr;
        AppendImportResource(theBuffer, anImportURI, anImportIFOURI, theProtocolInfo, afEnableResumeUpload,
                             aDTCPUploadInfo);
        free(theProtocolInfo);
    }
    zoBuffer_AppendStr(theBuffer, fIsItem ? kDIDL_Item_End : kDIDL_Container_End);
    return TakeDocument(theBuffer);
}

// ---- Parsing: pieces of the document ----

static const size_t kFirstBuilderSize = 512;

namespace
{

// Bytes of the document, or of a copy. When mLength is above 0 the byte behind them may be written.
struct Slice
{
    char* mBegin;
    size_t mLength;
};

// Ends a slice with a NUL while it lives: what stands there in the document comes back.
class NulTerminated
{
public:
    explicit NulTerminated(const Slice& aSlice) : mEnd(aSlice.mLength > 0 ? aSlice.mBegin + aSlice.mLength : nullptr)
    {
        mText = mEnd ? aSlice.mBegin : "";
        if (mEnd)
        {
            mSaved = *mEnd;
            *mEnd = 0;
        }
    }
    ~NulTerminated()
    {
        if (mEnd) { *mEnd = mSaved; }
    }
    NulTerminated(const NulTerminated&) = delete;
    NulTerminated& operator=(const NulTerminated&) = delete;
    const char* c_str() const { return mText; }

private:
    char* mEnd;
    const char* mText;
    char mSaved = 0;
};

// Where the object's text has nothing to resolve: most of it, or all.
struct PlainText
{
    const char* mBegin; // the object's first byte
    const char* mFirst; // "&" and "!" are met from here on
    const char* mLast;  // up to here
    const char* mEnd;   // past the object's last byte

    bool Holds(const char* aBegin, const char* anEnd) const
    {
        return (aBegin >= mBegin && anEnd <= mFirst) || (aBegin >= mLast && anEnd <= mEnd);
    }
};

// Memory for a text whose entities are resolved: the document itself stays as it is, since an element's text is also
// part of the text of the elements around it.
struct Scratch
{
    char* mText;
    size_t mSize;
    PlainText mPlain; // what needs no copy
};

// A text that grows: mLength of mSize bytes are written.
struct TextBuilder
{
    char* mText;
    size_t mLength;
    size_t mSize;
};

} // namespace

template <typename Word>
static inline bool HaveSameEnds(const char* aLeft, const char* aRight, size_t aLength)
{
    Word theWords[4];
    memcpy(&theWords[0], aLeft, sizeof(Word));
    memcpy(&theWords[1], aRight, sizeof(Word));
    memcpy(&theWords[2], aLeft + aLength - sizeof(Word), sizeof(Word));
    memcpy(&theWords[3], aRight + aLength - sizeof(Word), sizeof(Word));
    return theWords[0] == theWords[1] && theWords[2] == theWords[3];
}

// ASCII letters alone have a case. Names of up to 16 bytes that are written as they should be take two comparisons.
static inline bool EqualsIgnoringCase(const char* aLeft, const char* aRight, size_t aLength)
{
    if (aLength >= 8 && aLength <= 16 && HaveSameEnds<uint64>(aLeft, aRight, aLength)) { return true; }
    if (aLength >= 4 && aLength < 8 && HaveSameEnds<uint32>(aLeft, aRight, aLength)) { return true; }
    for (size_t i = 0; i < aLength; ++i)
    {
        const int theDifference = aLeft[i] ^ aRight[i];
        if (theDifference == 0) { continue; }
        const char theLetter = static_cast<char>(aLeft[i] | 0x20);
        if (theDifference != 0x20 || theLetter < 'a' || theLetter > 'z') { return false; }
    }
    return true;
}

// Whether aLength bytes are the name, a text whose length is known when compiling.
template <size_t Size>
static bool IsName(const char* aBytes, int aLength, const char (&aName)[Size])
{
    return aLength == static_cast<int>(Size - 1) && EqualsIgnoringCase(aBytes, aName, Size - 1);
}

// Prefix, colon and local name, or the local name alone.
static inline Slice QualifiedName(const ILibXMLNode* aNode)
{
    char* theBegin = aNode->NSTag ? aNode->NSTag : aNode->Name;
    return { theBegin, static_cast<size_t>(aNode->Name + aNode->NameLength - theBegin) };
}

static inline Slice QualifiedName(const ILibXMLAttribute* anAttribute)
{
    char* theBegin = anAttribute->Prefix ? anAttribute->Prefix : anAttribute->Name;
    return { theBegin, static_cast<size_t>(anAttribute->Name + anAttribute->NameLength - theBegin) };
}

static inline Slice RemoveQuotesFromAttributeValue(const ILibXMLAttribute* anAttribute)
{
    Slice theValue = { anAttribute->Value, static_cast<size_t>(anAttribute->ValueLength) };
    const bool fIsQuoted = theValue.mLength >= 2 && (*theValue.mBegin == '"' || *theValue.mBegin == '\'');
    return fIsQuoted ? Slice{ theValue.mBegin + 1, theValue.mLength - 2 } : theValue;
}

// The text between an element's tags as it is written, child elements and all; none for NULL.
static inline Slice GetInnerXML(ILibXMLNode* aNode)
{
    if (!aNode) { return { nullptr, 0 }; }
    char* theBegin = nullptr;
    const int theLength = ILibReadInnerXML(aNode, &theBegin);
    return { theBegin, static_cast<size_t>(theLength) };
}

// The value as written of the first attribute with the prefix and the name; false when there is none.
template <size_t PrefixSize, size_t NameSize>
static bool GetXMLAttribute(const ILibXMLAttribute* anAttributes, const char (&aPrefixStr)[PrefixSize],
                            const char (&anAttributeStr)[NameSize], Slice* aValue)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!IsName(theAttribute->Prefix, theAttribute->PrefixLength, aPrefixStr)) { continue; }
        if (!IsName(theAttribute->Name, theAttribute->NameLength, anAttributeStr)) { continue; }
        *aValue = { theAttribute->Value, static_cast<size_t>(theAttribute->ValueLength) };
        return true;
    }
    return false;
}

// Whether there is anything to resolve: a reference, or perhaps a CDATA section.
static bool HasMarkup(const Slice& aText)
{
    return memchr(aText.mBegin, '&', aText.mLength) != nullptr || memchr(aText.mBegin, '!', aText.mLength) != nullptr;
}

// Looks once at the object's text for what texts would otherwise be looked through for one by one. Not at all of a long
// one: it may hold other objects, which are looked at themselves.
static PlainText FindPlainText(const char* aBegin, const char* anEnd)
{
    const size_t kMostLookedAt = 16384;
    const size_t theLength = std::min(static_cast<size_t>(anEnd - aBegin), kMostLookedAt);
    const char* theLookedAt = aBegin + theLength;
    PlainText thePlain = { aBegin, theLookedAt, theLookedAt == anEnd ? aBegin : anEnd, anEnd };
    for (const char theMark : { '&', '!' })
    {
        const void* theFirst = memchr(aBegin, theMark, theLength);
        if (!theFirst) { continue; }
        const void* theLast = memrchr(aBegin, theMark, theLength);
        thePlain.mFirst = std::min(thePlain.mFirst, static_cast<const char*>(theFirst));
        thePlain.mLast = std::max(thePlain.mLast, static_cast<const char*>(theLast) + 1);
    }
    return thePlain;
}

static Slice ResolveCopy(Scratch* aScratch, const Slice& aText)
{
    if (aText.mLength == 0 || !HasMarkup(aText)) { return aText; }
    if (aScratch->mSize <= aText.mLength)
    {
        aScratch->mSize = std::max(aText.mLength + 1, aScratch->mSize * 2);
        free(aScratch->mText);
        aScratch->mText = static_cast<char*>(zoMalloc(aScratch->mSize));
    }
    memcpy(aScratch->mText, aText.mBegin, aText.mLength);
    aScratch->mText[aText.mLength] = 0;
    return { aScratch->mText, static_cast<size_t>(ILibInPlaceXmlUnEscape(aScratch->mText)) };
}

// The text with its entities resolved: itself when it has none, else a copy that lasts until the next one.
static inline Slice Resolve(Scratch* aScratch, const Slice& aText)
{
    const bool fIsPlain = aScratch->mPlain.Holds(aText.mBegin, aText.mBegin + aText.mLength);
    return fIsPlain ? aText : ResolveCopy(aScratch, aText);
}

// Makes room for aCount further bytes and gives their place.
static inline char* Extend(TextBuilder* aBuilder, size_t aCount)
{
    if (aCount > aBuilder->mSize - aBuilder->mLength)
    {
        aBuilder->mSize = std::max(aBuilder->mSize * 2, aBuilder->mLength + aCount + kFirstBuilderSize);
        aBuilder->mText = static_cast<char*>(zoRealloc(aBuilder->mText, aBuilder->mSize));
    }
    char* thePlace = aBuilder->mText + aBuilder->mLength;
    aBuilder->mLength += aCount;
    return thePlace;
}

static inline void Append(TextBuilder* aBuilder, const char* aBytes, size_t aCount)
{
    memcpy(Extend(aBuilder, aCount), aBytes, aCount);
}

// Stores the text as it is, with a NUL.
static inline void AddText(zoPackedData_t* aRecord, uint16 aTag, const Slice& aText)
{
    if (aText.mLength == 0)
    {
        zoPackedData_AddData(aRecord, aTag, "", 1);
        return;
    }
    const NulTerminated theText(aText);
    zoPackedData_AddData(aRecord, aTag, aText.mBegin, aText.mLength + 1);
}

namespace
{

// Finds rows of a table by their mIdentifier, of mLength bytes, ignoring case. Built when compiling: length and last
// letter tell the names of a table apart, most of them at the first look.
template <typename Row, size_t Size>
class NameIndex
{
public:
    constexpr explicit NameIndex(const Row (&aTable)[Size]) : mTable(aTable), mRows()
    {
        for (size_t i = 0; i < Size; ++i)
        {
            size_t theSlot = SlotOf(aTable[i].mIdentifier, aTable[i].mLength);
            for (; mRows[theSlot] != 0; theSlot = (theSlot + 1) % kSlots) {}
            mRows[theSlot] = static_cast<uint8>(i + 1);
        }
    }

    // NULL when there is none. A name has a byte at least.
    const Row* Find(const char* aName, size_t aLength) const
    {
        for (size_t theSlot = SlotOf(aName, aLength); mRows[theSlot] != 0; theSlot = (theSlot + 1) % kSlots)
        {
            const Row* theRow = mTable + (mRows[theSlot] - 1);
            if (theRow->mLength == aLength && EqualsIgnoringCase(theRow->mIdentifier, aName, aLength))
            {
                return theRow;
            }
        }
        return nullptr;
    }

private:
    static const size_t kSlots = 64;
    static_assert(Size < kSlots, "a search ends");

    static constexpr size_t SlotOf(const char* aName, size_t aLength)
    {
        return (aLength * 5 + (static_cast<uint8>(aName[aLength - 1]) & 0x1Fu)) % kSlots;
    }

    const Row* mTable;
    uint8 mRows[kSlots]; // 1 plus the row's number; 0 is free
};

} // namespace

template <typename Number>
static void AddNumber(zoPackedData_t* aRecord, uint16 aTag, Number aNumber)
{
    zoPackedData_AddData(aRecord, aTag, &aNumber, sizeof(aNumber));
}

// ---- Parsing: namespace declarations ----

namespace
{

// The declarations met so far, in the form of kCDSEntryInfo_XMLNS, and their names: the first ones in an array, once
// there are more than that in a table.
struct NamespaceList
{
    enum : size_t
    {
        kFew = 16
    };
    TextBuilder mText = { nullptr, 0, 0 };
    size_t mCount = 0;
    zoCustomHashTable* mTable = nullptr; // NULL while there are few
    Slice mNames[kFew];                  // the first mCount of them, or all, are set
};

} // namespace

static bool TakeNameFromTable(NamespaceList* aNamespaces, const Slice& aName)
{
    if (!aNamespaces->mTable)
    {
        aNamespaces->mTable = zoCustomHashTable_New_String_String();
        for (const Slice& theName : aNamespaces->mNames)
            zoCustomHashTable_Add(aNamespaces->mTable, NulTerminated(theName).c_str(), "");
    }
    const NulTerminated theName(aName);
    if (zoCustomHashTable_Get(aNamespaces->mTable, theName.c_str())) { return false; }
    zoCustomHashTable_Add(aNamespaces->mTable, theName.c_str(), "");
    return true;
}

// Notes a name; false when it was there already.
static bool TakeName(NamespaceList* aNamespaces, const Slice& aName)
{
    for (size_t i = 0; i < aNamespaces->mCount && i < NamespaceList::kFew; ++i)
    {
        const Slice& theName = aNamespaces->mNames[i];
        if (theName.mLength == aName.mLength && memcmp(theName.mBegin, aName.mBegin, aName.mLength) == 0)
        {
            return false;
        }
    }
    if (aNamespaces->mCount < NamespaceList::kFew) { aNamespaces->mNames[aNamespaces->mCount] = aName; }
    else if (!TakeNameFromTable(aNamespaces, aName)) { return false; }
    ++aNamespaces->mCount;
    return true;
}

static bool Contains(const Slice& aText, char aCharacter)
{
    return aText.mLength > 0 && memchr(aText.mBegin, aCharacter, aText.mLength) != nullptr;
}

// Appends a piece of a declaration: a comma protected, and what would end the value or is no well-formed value escaped.
static void AppendToList(TextBuilder* aBuilder, const Slice& aText)
{
    for (size_t i = 0; i < aText.mLength; ++i)
    {
        switch (aText.mBegin[i])
        {
        case ',': Append(aBuilder, "\\,", 2); break;
        case '"': Append(aBuilder, "&quot;", 6); break;
        case '<': Append(aBuilder, "&lt;", 4); break;
        default: Append(aBuilder, aText.mBegin + i, 1); break;
        }
    }
}

// Whether the document itself has the declaration in the form name="value".
static bool IsWrittenAsStored(const Slice& aName, const Slice& aValue)
{
    const char* theNameEnd = aName.mBegin + aName.mLength;
    return aValue.mBegin == theNameEnd + 2 && memcmp(theNameEnd, "=\"", 2) == 0;
}

// Adds a declaration, unless one of that name is there: the first one counts. Plain ones have no comma and no "<".
static void AppendXMLNS(NamespaceList* aNamespaces, const Slice& aName, const Slice& aValue, bool afIsPlain = false)
{
    if (!TakeName(aNamespaces, aName)) { return; }
    TextBuilder* theList = &aNamespaces->mText;
    if (theList->mLength > 0) { Append(theList, ",", 1); }
    if (afIsPlain && IsWrittenAsStored(aName, aValue))
    {
        Append(theList, aName.mBegin, aName.mLength + 2 + aValue.mLength + 1);
        return;
    }
    AppendToList(theList, aName);
    Append(theList, "=\"", 2);
    AppendToList(theList, aValue);
    Append(theList, "\"", 1);
}

static Slice ValueAsWritten(const ILibXMLAttribute* anAttribute)
{
    return { anAttribute->Value, static_cast<size_t>(anAttribute->ValueLength) };
}

// The xmlns: declarations of an element inside the object, or of the object itself.
static void AddXMLNameSpaces(const ILibXMLAttribute* anAttributes, NamespaceList* aNamespaces)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (theAttribute->PrefixLength == 5 && memcmp(theAttribute->Prefix, "xmlns", 5) == 0)
        {
            AppendXMLNS(aNamespaces, QualifiedName(theAttribute), ValueAsWritten(theAttribute));
        }
    }
}

// Whether all attributes of an element, which end where its text begins, are free of commas and "<".
static bool ArePlain(const ILibXMLAttribute* aFirst, const Slice& anInnerXML)
{
    char* theBegin = QualifiedName(aFirst).mBegin;
    const Slice theAttributes = { theBegin, static_cast<size_t>(anInnerXML.mBegin - theBegin) };
    return !Contains(theAttributes, ',') && !Contains(theAttributes, '<');
}

// Whether "xmlns" begins with the prefix; most are that, or none.
static bool IsPartOfXMLNS(const char* aPrefix, size_t aLength)
{
    if (aLength == 5) { return memcmp(aPrefix, "xmlns", 5) == 0; }
    return aLength == 0 || (aLength < 5 && memcmp(aPrefix, "xmlns", aLength) == 0);
}

// The declarations of the root: its attributes without a prefix, or with one that "xmlns" begins with.
static void AddRootNameSpaces(ILibXMLNode* aDIDLNode, NamespaceList* aNamespaces)
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aDIDLNode);
    const Slice theText = GetInnerXML(aDIDLNode);
    const bool fArePlain = theAttributes && theText.mBegin && ArePlain(theAttributes, theText);
    for (const ILibXMLAttribute* theAttribute = theAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!IsPartOfXMLNS(theAttribute->Prefix, static_cast<size_t>(theAttribute->PrefixLength))) { continue; }
        AppendXMLNS(aNamespaces, QualifiedName(theAttribute), ValueAsWritten(theAttribute), fArePlain);
    }
    ILibDestructXMLAttributeList(theAttributes);
}

static bool BeginsWithXMLNS(const Slice& aName)
{
    return aName.mLength >= 6 && EqualsIgnoringCase(aName.mBegin, "xmlns:", 6);
}

// ---- Parsing: the object's attributes ----

namespace
{

enum SOAPType
{
    kSOAPType_Str = 1,
    kSOAPType_UInt32 = 2,
    kSOAPType_BitField = 3,
    kSOAPType_UInt32Hex = 4
};

// An attribute of the object and what becomes of it.
struct DIDLParserInfo
{
    const char* mIdentifier;
    size_t mLength;
    SOAPType mItemType;
    uint32 mValue; // the bit of a kSOAPType_BitField
};

// Where the value of a row of the table goes; a text is a piece of the document, its entities not resolved yet.
union zoSOAPParserValue
{
    Slice* mStr;
    uint32* mUInt32;
    uint32* mBitField;
};

enum
{
    kDIDL_Attribute_ID_Index,
    kDIDL_Attribute_ParentID_Index,
    kDIDL_Attribute_RefID_Index,
    kDIDL_Attribute_ChildCount_Index,
    kDIDL_Attribute_Managed_Index,
    kDIDL_Attribute_Flags1_Index,
    kDIDL_Attribute_Flags2_Index,
    kDIDL_Attribute_Count
};

} // namespace

static constexpr DIDLParserInfo sInfo[kDIDL_Attribute_Count] = {
    { "id", 2, kSOAPType_Str, 0 },
    { "parentID", 8, kSOAPType_Str, 0 },
    { "refID", 5, kSOAPType_Str, 0 },
    { "childCount", 10, kSOAPType_UInt32, 0 },
    { "dlnaManaged", 11, kSOAPType_UInt32Hex, 0 },
    { "restricted", 10, kSOAPType_BitField, kDIDL_Flags_Restricted },
    { "searchable", 10, kSOAPType_BitField, kDIDL_Flags_Searchable },
};

static constexpr NameIndex kInfoIndex(sInfo);

static int ParseAttribute(const DIDLParserInfo& anInfo, const Slice& aValue, zoSOAPParserValue aTarget,
                          Scratch* aScratch)
{
    if (anInfo.mItemType == kSOAPType_Str)
    {
        *aTarget.mStr = aValue;
        return 1;
    }
    const Slice theResolved = Resolve(aScratch, aValue);
    const NulTerminated theValue(theResolved);
    switch (anInfo.mItemType)
    {
    case kSOAPType_UInt32: zoConvert_strntouint32(theValue.c_str(), theResolved.mLength, aTarget.mUInt32); return 1;
    case kSOAPType_UInt32Hex: zoConvert_strtouint32_base(theValue.c_str(), aTarget.mUInt32, 16); return 1;
    case kSOAPType_BitField:
        if (UPnPUtil_IsStrTrue(theValue.c_str())) { *aTarget.mBitField |= anInfo.mValue; }
        else if (UPnPUtil_IsStrFalse(theValue.c_str())) { *aTarget.mBitField &= ~anInfo.mValue; }
        else { return 0; }
        return 1;
    default: return 1;
    }
}

// Fills the targets, in the order of the table, from the attributes that the table knows under any prefix. The result
// is 0 when a flag is neither true nor false; the other attributes are read all the same.
static int ParseAttributes(const ILibXMLAttribute* anAttributes, const zoSOAPParserValue* aTargets, Scratch* aScratch)
{
    int theResult = 1;
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        const DIDLParserInfo* theRow =
            kInfoIndex.Find(theAttribute->Name, static_cast<size_t>(theAttribute->NameLength));
        if (!theRow) { continue; }
        const Slice theValue = RemoveQuotesFromAttributeValue(theAttribute);
        if (!ParseAttribute(*theRow, theValue, aTargets[theRow - sInfo], aScratch)) { theResult = 0; }
    }
    return theResult;
}

// ---- Parsing: the object's elements ----

namespace
{

// Elements of which the last one counts; read when all are known.
enum SingleText
{
    kSingleText_Title,
    kSingleText_Creator,
    kSingleText_Date,
    kSingleText_Genre,
    kSingleText_Album,
    kSingleText_Class,
    kSingleText_BGMURI,
    kSingleText_StorageMedium,
    kSingleText_Count
};

// Elements that all count.
enum ManyTexts
{
    kManyTexts_URI,
    kManyTexts_AlbumArt,
    kManyTexts_ChannelNr,
    kManyTexts_CreateClass,
    kManyTexts_ExtraInfo,
    kManyTexts_Count
};

// What is known of the object while its elements are walked.
struct ObjectParser
{
    const char* mBaseURL = nullptr;
    zoPackedData_t* mEntry = nullptr;
    zoPackedData_t* mResources = nullptr;
    Scratch mScratch = { nullptr, 0, { nullptr, nullptr, nullptr, nullptr } };
    NamespaceList mNamespaces;
    zoArray_t* mAlbumArt = nullptr; // NULL while there is none

    // Elements that can be many may stand inside each other, and the text of each holds those inside. What is stored of
    // a kind ends once it has passed a multiple of the object's text, which without nesting it never does.
    size_t mStored[kManyTexts_Count] = {};
    size_t mStoredLimit = 0;

    ILibXMLNode* mLast[kSingleText_Count] = {}; // NULL when there is none
    Slice mBGMProtocolInfo = { nullptr, 0 };
    TextBuilder mCreateClass = { nullptr, 0, 0 }; // the list, without a NUL
    uint32 mChannelNr = 0;
    uint32 mNextExtraTag = kCDSEntryInfo_Count;

    Slice mID = { nullptr, 0 };
    Slice mParentID = { nullptr, 0 };
    Slice mRefID = { nullptr, 0 };
    uint32 mChildCount = 0xFFFFFFFF;
    uint32 mManaged = 0;
    uint32 mFlags = kDIDL_Flags_Restricted;
};

typedef void (*ElementHandler_t)(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes,
                                 int aParameter);

struct Element
{
    const char* mIdentifier;
    size_t mLength;
    ElementHandler_t mHandler;
    int mParameter;
};

} // namespace

static const size_t kStoredPerText = 4;
static const size_t kStoredAtLeast = size_t{ 64 } * 1024;
static const uint32 kLastExtraTag = 0xFFFE; // of a value: an entry has room for 65535 values

// The element's text as written; false when enough of its kind is stored.
static bool TakeInnerXML(ObjectParser* aParser, ILibXMLNode* aNode, ManyTexts aKind, Slice* aText)
{
    if (aParser->mStored[aKind] > aParser->mStoredLimit) { return false; }
    *aText = GetInnerXML(aNode);
    aParser->mStored[aKind] += aText->mLength;
    return true;
}

static void ParseSingleText(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute*, int aSingleText)
{
    aParser->mLast[aSingleText] = aNode;
}

static void ParseBGMURI(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes, int)
{
    aParser->mLast[kSingleText_BGMURI] = aNode;
    GetXMLAttribute(anAttributes, "av", "protocolInfo", &aParser->mBGMProtocolInfo);
}

static void ParseChannelNr(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute*, int)
{
    Slice theText;
    if (!TakeInnerXML(aParser, aNode, kManyTexts_ChannelNr, &theText)) { return; }
    theText = Resolve(&aParser->mScratch, theText);
    zoConvert_strntouint32(theText.mBegin, theText.mLength, &aParser->mChannelNr);
}

static zoArray_t* NewStringArray()
{
    zoArray_t* theArray = zoArray_New();
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    return theArray;
}

static void ParseAlbumArtURI(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes, int)
{
    Slice theText;
    if (!TakeInnerXML(aParser, aNode, kManyTexts_AlbumArt, &theText)) { return; }
    theText = Resolve(&aParser->mScratch, theText);
    if (theText.mLength == 0) { return; }
    Slice theProfile = { nullptr, 0 };
    GetXMLAttribute(anAttributes, "dlna", "profileID", &theProfile);
    if (!aParser->mAlbumArt) { aParser->mAlbumArt = NewStringArray(); }
    zoArray_Append(aParser->mAlbumArt, zoStrndup(theText.mBegin, theText.mLength));
    zoArray_Append(aParser->mAlbumArt, zoStrndup(theProfile.mBegin ? theProfile.mBegin : "", theProfile.mLength));
}

static bool IncludesDerived(const ILibXMLAttribute* anAttributes)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (IsName(theAttribute->Name, theAttribute->NameLength, "includeDerived"))
        {
            return theAttribute->ValueLength == 1 && *theAttribute->Value != '0';
        }
    }
    return false;
}

static void ParseCreateClass(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes, int)
{
    Slice theText;
    if (!TakeInnerXML(aParser, aNode, kManyTexts_CreateClass, &theText)) { return; }
    theText = Resolve(&aParser->mScratch, theText);
    if (theText.mLength == 0) { return; }
    TextBuilder* theList = &aParser->mCreateClass;
    if (theList->mLength > 0) { Append(theList, ";", 1); }
    Append(theList, theText.mBegin, theText.mLength);
    if (IncludesDerived(anAttributes)) { Append(theList, ",1", 2); }
}

static constexpr Element kElements[] = {
    { "dc:title", 8, ParseSingleText, kSingleText_Title },
    { "upnp:class", 10, ParseSingleText, kSingleText_Class },
    { "dc:creator", 10, ParseSingleText, kSingleText_Creator },
    { "dc:date", 7, ParseSingleText, kSingleText_Date },
    { "upnp:genre", 10, ParseSingleText, kSingleText_Genre },
    { "upnp:album", 10, ParseSingleText, kSingleText_Album },
    { "upnp:albumArtURI", 16, ParseAlbumArtURI, 0 },
    { "upnp:channelNr", 14, ParseChannelNr, 0 },
    { "upnp:createClass", 16, ParseCreateClass, 0 },
    { "upnp:storageMedium", 18, ParseSingleText, kSingleText_StorageMedium },
    { "av:bgmURI", 9, ParseBGMURI, 0 },
};

static constexpr NameIndex kElementIndex(kElements);

// An element that the object has no field for.
static void ParseExtraElement(ObjectParser* aParser, ILibXMLNode* aNode)
{
    const Slice theName = QualifiedName(aNode);
    const bool fIsDeclaration = BeginsWithXMLNS(theName);
    Slice theText;
    if (!fIsDeclaration && aParser->mNextExtraTag + 1 > kLastExtraTag) { return; }
    if (!TakeInnerXML(aParser, aNode, kManyTexts_ExtraInfo, &theText)) { return; }
    if (fIsDeclaration)
    {
        AppendXMLNS(&aParser->mNamespaces, theName, theText); // as written: it is written into a tag again
        return;
    }
    AddText(aParser->mEntry, static_cast<uint16>(aParser->mNextExtraTag), theName);
    AddText(aParser->mEntry, static_cast<uint16>(aParser->mNextExtraTag + 1), Resolve(&aParser->mScratch, theText));
    aParser->mNextExtraTag += 2;
}

static void ParseElement(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    if (aNode->NSTag)
    {
        const Slice theName = QualifiedName(aNode);
        const Element* theElement = kElementIndex.Find(theName.mBegin, theName.mLength);
        if (theElement) { theElement->mHandler(aParser, aNode, anAttributes, theElement->mParameter); }
        else { ParseExtraElement(aParser, aNode); }
    }
    AddXMLNameSpaces(anAttributes, &aParser->mNamespaces);
}

// ---- Parsing: resources ----

namespace
{

// A resource's fields as they come from its attributes.
struct Resource
{
    Slice mProtocolInfo;
    Slice mResolution;
    Slice mImportURI;
    Slice mDTCPUploadInfo;
    Slice mIFOFileURI;
    uint32 mDuration;
    uint32 mBitRate;
    uint32 mColorDepth;
    uint32 mAudioChannelCount;
    uint32 mResumeUpload;
    uint32 mTrackTotal;
    uint32 mLifeTime;
    uint64 mSize;
    uint64 mUploadedSize;
    bool mfHasIFOFileURI;
};

typedef void (*ResourceReader_t)(const Slice& aValue, Resource* aResource);

struct ResourceAttribute
{
    const char* mIdentifier;
    size_t mLength;
    const char* mPrefix; // what the attribute's prefix must be a beginning of, and not ""; NULL: any or none
    ResourceReader_t mReader;
};

} // namespace

template <Slice Resource::*Field>
static void ReadText(const Slice& aValue, Resource* aResource)
{
    aResource->*Field = aValue;
}

static void ReadIFOFileURI(const Slice& aValue, Resource* aResource)
{
    aResource->mIFOFileURI = aValue;
    aResource->mfHasIFOFileURI = true;
}

template <uint32 Resource::*Field>
static void ReadUInt32(const Slice& aValue, Resource* aResource)
{
    zoConvert_strntouint32(aValue.mBegin, aValue.mLength, &(aResource->*Field));
}

template <uint64 Resource::*Field>
static void ReadUInt64(const Slice& aValue, Resource* aResource)
{
    zoULongLong theValue = { 0, 0 };
    zoConvert_strntoULongLong(aValue.mBegin, aValue.mLength, &theValue);
    aResource->*Field = zoULongLong_ToUInt64(&theValue);
}

// From bytes per second to bits.
static void ReadBitRate(const Slice& aValue, Resource* aResource)
{
    uint32 theBytes = 0;
    if (zoConvert_strntouint32(aValue.mBegin, aValue.mLength, &theBytes) != kzoConvertError_None) { return; }
    aResource->mBitRate = theBytes <= kBitRate_NotSet / 8 ? theBytes * 8 : kBitRate_NotSet;
}

static void ReadDuration(const Slice& aValue, Resource* aResource)
{
    aResource->mDuration = ILibString_ParseTimeString(NulTerminated(aValue).c_str());
}

static void ReadLifeTime(const Slice& aValue, Resource* aResource)
{
    const uint32 theTime = ILibString_ParseTimeString(NulTerminated(aValue).c_str());
    aResource->mLifeTime = std::min(std::max(theTime, 5u), 15u);
}

static constexpr ResourceAttribute kResourceAttributes[] = {
    { "protocolInfo", 12, nullptr, ReadText<&Resource::mProtocolInfo> },
    { "resolution", 10, nullptr, ReadText<&Resource::mResolution> },
    { "duration", 8, nullptr, ReadDuration },
    { "bitrate", 7, nullptr, ReadBitRate },
    { "colorDepth", 10, nullptr, ReadUInt32<&Resource::mColorDepth> },
    { "nrAudioChannels", 15, nullptr, ReadUInt32<&Resource::mAudioChannelCount> },
    { "size", 4, nullptr, ReadUInt64<&Resource::mSize> },
    { "resumeUpload", 12, "dlna", ReadUInt32<&Resource::mResumeUpload> },
    { "uploadedSize", 12, "dlna", ReadUInt64<&Resource::mUploadedSize> },
    { "trackTotal", 10, "dlna", ReadUInt32<&Resource::mTrackTotal> },
    { "lifetime", 8, "dlna", ReadLifeTime },
    { "ifoFileURI", 10, "dlna", ReadIFOFileURI },
    { "importURI", 9, nullptr, ReadText<&Resource::mImportURI> },
    { "uploadInfo", 10, "dtcp", ReadText<&Resource::mDTCPUploadInfo> },
};

static constexpr NameIndex kResourceAttributeIndex(kResourceAttributes);

// The attribute's row in the table, its prefix considered; NULL when it is none that a resource has a field for.
static const ResourceAttribute* FindResourceAttribute(const ILibXMLAttribute* anAttribute)
{
    const size_t theLength = static_cast<size_t>(anAttribute->NameLength);
    const ResourceAttribute* theRow = kResourceAttributeIndex.Find(anAttribute->Name, theLength);
    if (!theRow || !theRow->mPrefix) { return theRow; }
    const size_t thePrefixLength = static_cast<size_t>(anAttribute->PrefixLength);
    const bool fHasPrefix = thePrefixLength > 0 && thePrefixLength <= 4 &&
                            EqualsIgnoringCase(theRow->mPrefix, anAttribute->Prefix, thePrefixLength);
    return fHasPrefix ? theRow : nullptr;
}

static void ParseExtraAttribute(ObjectParser* aParser, const ILibXMLAttribute* anAttribute, uint32* aNextTag)
{
    const Slice theName = QualifiedName(anAttribute);
    const Slice theValue = RemoveQuotesFromAttributeValue(anAttribute);
    if (BeginsWithXMLNS(theName))
    {
        AppendXMLNS(&aParser->mNamespaces, theName, theValue);
        return;
    }
    if (*aNextTag + 1 > kLastExtraTag) { return; }
    AddText(aParser->mResources, static_cast<uint16>(*aNextTag), theName);
    AddText(aParser->mResources, static_cast<uint16>(*aNextTag + 1), theValue);
    *aNextTag += 2;
}

static void ParseResourceAttributes(ObjectParser* aParser, const ILibXMLAttribute* anAttributes, Resource* aResource)
{
    uint32 theNextTag = kCDSResourceInfo_Count;
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        const ResourceAttribute* theRow = FindResourceAttribute(theAttribute);
        if (theRow) { theRow->mReader(RemoveQuotesFromAttributeValue(theAttribute), aResource); }
        else { ParseExtraAttribute(aParser, theAttribute, &theNextTag); }
    }
}

// Stores the text with its entities resolved.
static void AddResolvedText(ObjectParser* aParser, zoPackedData_t* aRecord, uint16 aTag, const Slice& aText)
{
    AddText(aRecord, aTag, Resolve(&aParser->mScratch, aText));
}

// The absolute form of a URI without a scheme, new; NULL for one that has a scheme.
static char* MakeAbsolute(const char* aBaseURL, const char* aURI)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(aURI);
    const bool fIsRelative = !theURI || zoStrEmpty(theURI->mScheme);
    zoURI_Delete(theURI);
    return fIsRelative ? zoURI_S_Combine(aBaseURL, aURI) : nullptr;
}

static void AddURI(ObjectParser* aParser, ILibXMLNode* aNode)
{
    Slice theText = { nullptr, 0 };
    if (TakeInnerXML(aParser, aNode, kManyTexts_URI, &theText)) { theText = Resolve(&aParser->mScratch, theText); }
    char* theAbsolute = nullptr;
    if (aParser->mBaseURL && theText.mLength > 0)
    {
        theAbsolute = MakeAbsolute(aParser->mBaseURL, NulTerminated(theText).c_str());
    }
    if (theAbsolute)
    {
        theText = { theAbsolute, strlen(theAbsolute) };
        aParser->mStored[kManyTexts_URI] += theText.mLength;
    }
    AddText(aParser->mResources, kCDSResourceInfo_URI, theText);
    free(theAbsolute);
}

static void AddProtocolInfo(ObjectParser* aParser, const Slice& aProtocolInfo)
{
    const Slice theText = Resolve(&aParser->mScratch, aProtocolInfo);
    if (zoDLNAProtocolInfo_IsNormal(theText.mBegin, theText.mLength))
    {
        AddText(aParser->mResources, kCDSResourceInfo_ProtocolInfo, theText);
        return;
    }
    char* theTextForm = NewTextForm(theText.mBegin, theText.mLength);
    zoPackedData_AddData(aParser->mResources, kCDSResourceInfo_ProtocolInfo, theTextForm, strlen(theTextForm) + 1);
    free(theTextForm);
}

static void ParseResource(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    zoPackedData_t* theRecord = aParser->mResources;
    Resource theResource = {};
    zoPackedData_AddNewEntry(theRecord);
    ParseResourceAttributes(aParser, anAttributes, &theResource);

    AddURI(aParser, aNode);
    AddProtocolInfo(aParser, theResource.mProtocolInfo);
    AddText(theRecord, kCDSResourceInfo_Resolution, theResource.mResolution);
    AddNumber(theRecord, kCDSResourceInfo_Duration, theResource.mDuration);
    AddNumber(theRecord, kCDSResourceInfo_BitRate, theResource.mBitRate);
    AddNumber(theRecord, kCDSResourceInfo_ColorDepth, theResource.mColorDepth);
    AddNumber(theRecord, kCDSResourceInfo_Size, theResource.mSize);
    AddNumber(theRecord, kCDSResourceInfo_ResumeUpload, theResource.mResumeUpload);
    if (theResource.mfHasIFOFileURI)
    {
        AddResolvedText(aParser, theRecord, kCDSResourceInfo_IFOFileURI, theResource.mIFOFileURI);
    }
    AddResolvedText(aParser, theRecord, kCDSResourceInfo_ImportURI, theResource.mImportURI);
    AddResolvedText(aParser, theRecord, kCDSResourceInfo_DTCPUploadInfo, theResource.mDTCPUploadInfo);
    AddNumber(theRecord, kCDSResourceInfo_UploadedSize, theResource.mUploadedSize);
    AddNumber(theRecord, kCDSResourceInfo_AudioChannelCount, theResource.mAudioChannelCount);
    if (theResource.mTrackTotal != 0) { AddNumber(theRecord, kCDSResourceInfo_TrackTotal, theResource.mTrackTotal); }
    if (theResource.mLifeTime != 0) { AddNumber(theRecord, kCDSResourceInfo_LifeTime, theResource.mLifeTime); }
}

// ---- Parsing: the object ----

static bool IsResource(const ILibXMLNode* aNode) { return IsName(aNode->Name, aNode->NameLength, "res"); }

// The next start tag of the object that ends at anEnd; NULL when there is none left.
static ILibXMLNode* NextStartTag(ILibXMLNode* aNode, const ILibXMLNode* anEnd)
{
    do
    {
        aNode = aNode->Next;
        if (!zoAssert(aNode != NULL)) { return nullptr; }
        if (aNode == anEnd) { return nullptr; }
    } while (!aNode->StartTag);
    return aNode;
}

static void ParseElementsOf(ObjectParser* aParser, ILibXMLNode* anObject)
{
    for (ILibXMLNode* theNode = anObject; (theNode = NextStartTag(theNode, anObject->ClosingTag)) != nullptr;)
    {
        ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
        if (IsResource(theNode)) { ParseResource(aParser, theNode, theAttributes); }
        else { ParseElement(aParser, theNode, theAttributes); }
        ILibDestructXMLAttributeList(theAttributes);
    }
}

// Stores the text of the last element of its kind, "" when there was none.
static void AddLastText(ObjectParser* aParser, uint16 aTag, SingleText aSingleText)
{
    ILibXMLNode* theNode = aParser->mLast[aSingleText];
    if (theNode) { AddResolvedText(aParser, aParser->mEntry, aTag, GetInnerXML(theNode)); }
    else { AddText(aParser->mEntry, aTag, { nullptr, 0 }); }
}

// The same, but with no bytes when there was none.
static void AddLastTextIfAny(ObjectParser* aParser, uint16 aTag, SingleText aSingleText)
{
    if (aParser->mLast[aSingleText]) { AddLastText(aParser, aTag, aSingleText); }
    else { zoPackedData_AddData(aParser->mEntry, aTag, nullptr, 0); }
}

static void AddDate(ObjectParser* aParser)
{
    ILibXMLNode* theNode = aParser->mLast[kSingleText_Date];
    if (!theNode)
    {
        zoPackedData_AddData(aParser->mEntry, kCDSEntryInfo_Date, nullptr, 0);
        return;
    }
    Slice theText = Resolve(&aParser->mScratch, GetInnerXML(theNode));
    int32 theParts[kzoDLNADatePart_Count];
    if (zoConvert_dlnadatestrtodate(NulTerminated(theText).c_str(), theParts) != 0) { theText = { nullptr, 0 }; }
    AddText(aParser->mEntry, kCDSEntryInfo_Date, theText);
}

// Stores a text that was built here.
static void AddBuilt(zoPackedData_t* aRecord, uint16 aTag, TextBuilder* aBuilder)
{
    *Extend(aBuilder, 1) = 0;
    zoPackedData_AddData(aRecord, aTag, aBuilder->mText, aBuilder->mLength);
}

// An empty array has no bytes.
static void AddAlbumArt(zoPackedData_t* anEntry, const zoArray_t* anAlbumArt)
{
    if (anAlbumArt)
    {
        zoPackedData_AddArray(anEntry, kCDSEntryInfo_AlbumArtURI, anAlbumArt, zoStringArray_FlattenerFunc);
    }
    else { zoPackedData_AddData(anEntry, kCDSEntryInfo_AlbumArtURI, nullptr, 0); }
}

static void AddFields(ObjectParser* aParser, int afIsItem)
{
    zoPackedData_t* theEntry = aParser->mEntry;
    AddLastText(aParser, kCDSEntryInfo_Title, kSingleText_Title);
    AddLastText(aParser, kCDSEntryInfo_Creator, kSingleText_Creator);
    AddDate(aParser);
    AddLastText(aParser, kCDSEntryInfo_Genre, kSingleText_Genre);
    AddLastText(aParser, kCDSEntryInfo_Album, kSingleText_Album);
    if (aParser->mCreateClass.mLength > 0) { AddBuilt(theEntry, kCDSEntryInfo_CreateClass, &aParser->mCreateClass); }
    else { AddText(theEntry, kCDSEntryInfo_CreateClass, { nullptr, 0 }); }
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_ParentID, aParser->mParentID);
    AddNumber(theEntry, kCDSEntryInfo_IsContainer, static_cast<uint16>(!afIsItem));
    AddNumber(theEntry, kCDSEntryInfo_UpdateID, uint32{ 0 });
    AddNumber(theEntry, kCDSEntryInfo_ChildCount, aParser->mChildCount);
    AddLastText(aParser, kCDSEntryInfo_ItemClassName, kSingleText_Class);
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_ItemID, aParser->mID);
    AddNumber(theEntry, kCDSEntryInfo_ChannelNr, aParser->mChannelNr);
    AddNumber(theEntry, kCDSEntryInfo_Flags, aParser->mFlags);
    AddLastText(aParser, kCDSEntryInfo_BGMURI, kSingleText_BGMURI);
    AddText(theEntry, kCDSEntryInfo_BGMURIProtocolInfo, aParser->mBGMProtocolInfo);
    AddNumber(theEntry, kCDSEntryInfo_DLNAManaged, aParser->mManaged);
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_RefID, aParser->mRefID);
    AddLastTextIfAny(aParser, kCDSEntryInfo_StorageMedium, kSingleText_StorageMedium);
    if (aParser->mNamespaces.mCount > 0) { AddBuilt(theEntry, kCDSEntryInfo_XMLNS, &aParser->mNamespaces.mText); }
    AddAlbumArt(theEntry, aParser->mAlbumArt);
}

static int ParseObjectAttributes(ObjectParser* aParser, const ILibXMLAttribute* anAttributes)
{
    zoSOAPParserValue theTargets[kDIDL_Attribute_Count];
    theTargets[kDIDL_Attribute_ID_Index].mStr = &aParser->mID;
    theTargets[kDIDL_Attribute_ParentID_Index].mStr = &aParser->mParentID;
    theTargets[kDIDL_Attribute_RefID_Index].mStr = &aParser->mRefID;
    theTargets[kDIDL_Attribute_ChildCount_Index].mUInt32 = &aParser->mChildCount;
    theTargets[kDIDL_Attribute_Managed_Index].mUInt32 = &aParser->mManaged;
    theTargets[kDIDL_Attribute_Flags1_Index].mBitField = &aParser->mFlags;
    theTargets[kDIDL_Attribute_Flags2_Index].mBitField = &aParser->mFlags;
    return ParseAttributes(anAttributes, theTargets, &aParser->mScratch);
}

static void StartObject(ObjectParser* aParser, const char* aBaseURL, ILibXMLNode* aNode, int afIsItem)
{
    const Slice theObject = GetInnerXML(aNode);
    aParser->mBaseURL = aBaseURL;
    if (theObject.mBegin)
    {
        aParser->mScratch.mPlain = FindPlainText(QualifiedName(aNode).mBegin, theObject.mBegin + theObject.mLength);
    }
    aParser->mStoredLimit = std::max(theObject.mLength * kStoredPerText, kStoredAtLeast);
    if (!afIsItem) { aParser->mFlags |= kDIDL_Flags_Searchable; }
    aParser->mEntry = zoPackedData_New(1);
    zoPackedData_AddNewEntry(aParser->mEntry);
    aParser->mResources = zoPackedData_New(0);
}

static void FinishObject(ObjectParser* aParser, char** aData, char** aRes)
{
    *aData = zoPackedData_TakeData(aParser->mEntry);
    *aRes = zoPackedData_TakeData(aParser->mResources);
    zoPackedData_Free(aParser->mEntry);
    zoPackedData_Free(aParser->mResources);
    zoArray_Delete(aParser->mAlbumArt);
    free(aParser->mCreateClass.mText);
    free(aParser->mNamespaces.mText.mText);
    zoCustomHashTable_Delete(aParser->mNamespaces.mTable);
    free(aParser->mScratch.mText);
}

// With all declarations of the root.
static int ParseWholly(const char* aBaseURL, ILibXMLNode* aDIDLNode, ILibXMLNode* aNode, ILibXMLAttribute* anAttributes,
                       int afIsItem, char** aData, char** aRes)
{
    ObjectParser theParser;
    StartObject(&theParser, aBaseURL, aNode, afIsItem);
    const int theResult = ParseObjectAttributes(&theParser, anAttributes);
    if (aDIDLNode) { AddRootNameSpaces(aDIDLNode, &theParser.mNamespaces); }
    AddXMLNameSpaces(anAttributes, &theParser.mNamespaces);
    if (aNode) { ParseElementsOf(&theParser, aNode); }
    AddFields(&theParser, afIsItem);
    FinishObject(&theParser, aData, aRes);
    return theResult;
}

// Whether the root's start tag is longer than each of many objects could afford to go through.
static bool IsTooLong(ILibXMLNode* aDIDLNode, ILibXMLNode* anObject)
{
    const size_t kMostInherited = 4096;
    const Slice theContent = GetInnerXML(aDIDLNode);
    const size_t theLength = theContent.mBegin ? static_cast<size_t>(theContent.mBegin - aDIDLNode->Name) : 0;
    return theLength > kMostInherited && theLength > (anObject ? GetInnerXML(anObject).mLength : 0);
}

int UPnPDIDL_Parse(const char* aBaseURL, ILibXMLNode* aDIDLNode, ILibXMLNode* aNode, ILibXMLAttribute* anAttributes,
                   int afIsItem, char** aData, char** aRes)
{
    ILibXMLNode* theRoot = aDIDLNode && !IsTooLong(aDIDLNode, aNode) ? aDIDLNode : nullptr;
    return ParseWholly(aBaseURL, theRoot, aNode, anAttributes, afIsItem, aData, aRes);
}

// ---- Parsing: the document ----

namespace
{

// The walk over a document's nodes in search of its one object.
struct DocumentWalk
{
    ILibXMLNode* mDIDLNode; // the DIDL-Lite element met last
    int mDIDLType;
    char* mData;
    char* mRes;
};

} // namespace

static int ParseObject(DocumentWalk* aWalk, ILibXMLNode* aNode, int aDIDLType)
{
    if (aWalk->mDIDLType != kDIDLItemType_None) { return kUPnPError_InvalidDIDL; }
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aNode);
    const int fIsValid = ParseWholly(nullptr, aWalk->mDIDLNode, aNode, theAttributes, aDIDLType == kDIDLItemType_Item,
                                     &aWalk->mData, &aWalk->mRes);
    ILibDestructXMLAttributeList(theAttributes);
    if (!fIsValid) { return kUPnPError_InvalidDIDL; }
    aWalk->mDIDLType = aDIDLType;
    return kUPnPError_None;
}

// Where the walk goes on behind an element that is not looked into.
static ILibXMLNode* NextBehind(const ILibXMLNode* aNode)
{
    if (aNode->Peer) { return aNode->Peer; }
    return aNode->Parent ? aNode->Parent->Peer : aNode->Next;
}

static int WalkDocument(DocumentWalk* aWalk, ILibXMLNode* aNodeList)
{
    int theResult = kUPnPError_None;
    for (ILibXMLNode* theNode = aNodeList; theNode && theResult == kUPnPError_None;)
    {
        ILibXMLNode* theNext = theNode->Next;
        if (!theNode->StartTag)
        {
            theNode = theNext;
            continue;
        }
        if (IsName(theNode->Name, theNode->NameLength, "item"))
        {
            theResult = ParseObject(aWalk, theNode, kDIDLItemType_Item);
        }
        else if (IsName(theNode->Name, theNode->NameLength, "container"))
        {
            theResult = ParseObject(aWalk, theNode, kDIDLItemType_Container);
        }
        else if (IsName(theNode->Name, theNode->NameLength, "DIDL-Lite")) { aWalk->mDIDLNode = theNode; }
        else { theNext = NextBehind(theNode); }
        theNode = theNext;
    }
    const bool fHasNone = theResult == kUPnPError_None && aWalk->mDIDLType == kDIDLItemType_None;
    return fHasNone ? kUPnPError_InvalidDIDL : theResult;
}

int UPnPDIDL_ParseElements(const char* anElements, char** aData, char** aRes, int* aDIDLType)
{
    *aData = nullptr;
    *aRes = nullptr;
    *aDIDLType = kDIDLItemType_None;
    if (zoStrEmpty(anElements)) { return kUPnPError_InvalidDIDL; }

    DocumentWalk theWalk = { nullptr, kDIDLItemType_None, nullptr, nullptr };
    ILibXMLNode* theNodes = ILibParseXML(const_cast<char*>(anElements), 0, strlen(anElements));
    const bool fIsWellFormed = ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError;
    const int theResult = fIsWellFormed ? WalkDocument(&theWalk, theNodes) : kUPnPError_InvalidXML;
    ILibDestructXMLNodeList(theNodes);

    *aDIDLType = theWalk.mDIDLType;
    if (theResult == kUPnPError_None)
    {
        *aData = theWalk.mData;
        *aRes = theWalk.mRes;
        return theResult;
    }
    free(theWalk.mData);
    free(theWalk.mRes);
    return theResult;
}
