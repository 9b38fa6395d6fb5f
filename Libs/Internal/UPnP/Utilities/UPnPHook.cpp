#include <UPnP/Utilities/UPnPHook.h>

#include <UPnP/Stack/ILibHTTP.h>
#include <UPnP/Stack/ILibString.h>
#include <UPnP/Stack/ILibWebLinkData.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <tuple>
#include <utility>
#include <zoLog/Log.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoMemory.h>

struct UPnPHook_t UPnPHook_t = {};

// ---- The hook object ----

UPnPHook* UPnPHook_New()
{
    UPnPHook* theHook = UPnPHook_New_WithParent(nullptr);
    UPnPHook_SetProperty(theHook, kUPnPHookProperty_UserAgent, "Zolt/1.1, UPnP/1.0");
    return theHook;
}

UPnPHook* UPnPHook_New_WithParent(UPnPHook* aParentHook)
{
    UPnPHook* theHook = static_cast<UPnPHook*>(zoMallocZeroed(sizeof(UPnPHook)));
    theHook->mParentHook = aParentHook;
    return theHook;
}

void UPnPHook_Delete(UPnPHook* aUPnPHook)
{
    for (UPnPHook* theHook = aUPnPHook; theHook;)
    {
        UPnPHook* theParentHook = theHook->mParentHook;
        for (char* theProperty : theHook->mProperty)
            free(theProperty);
        free(theHook);
        theHook = theParentHook;
    }
}

void UPnPHook_SetProperty(UPnPHook* aUPnPHook, int aPropertyID, const char* aValue)
{
    if (!zoAssert(aUPnPHook != NULL)) { return; }
    if (!zoAssert((aPropertyID >= 0) && (aPropertyID < kUPnPHookProperty_Count))) { return; }
    char* theValue = zoStrdup(aValue);
    free(aUPnPHook->mProperty[aPropertyID]);
    aUPnPHook->mProperty[aPropertyID] = theValue;
}

const char* UPnPHook_GetProperty(UPnPHook* aUPnPHook, int aPropertyID)
{
    if (!zoAssert(aUPnPHook != NULL)) { return nullptr; }
    if (!zoAssert((aPropertyID >= 0) && (aPropertyID < kUPnPHookProperty_Count))) { return nullptr; }
    return aUPnPHook->mProperty[aPropertyID];
}

void UPnPHook_SetSupportFeature(UPnPHook* aUPnPHook, int aFeatureID, int afSupport)
{
    if (!zoAssert(aUPnPHook != NULL)) { return; }
    if (!zoAssert((aFeatureID >= 0) && (aFeatureID < kUPnPHookFeature_Count))) { return; }
    aUPnPHook->mfSupportFeature[aFeatureID] = afSupport;
}

int UPnPHook_SupportFeature(UPnPHook* aUPnPHook, int aFeatureID)
{
    if (!zoAssert(aUPnPHook != NULL)) { return 0; }
    if (!zoAssert((aFeatureID >= 0) && (aFeatureID < kUPnPHookFeature_Count))) { return 0; }
    for (const UPnPHook* theHook = aUPnPHook->mParentHook; theHook; theHook = theHook->mParentHook)
    {
        if (theHook->mfSupportFeature[aFeatureID] != 0) { return 1; }
    }
    return aUPnPHook->mfSupportFeature[aFeatureID];
}

// ---- Descriptions: the features' parts ----

namespace
{

// The name of the parts of descriptions that a feature switches, NULL when it has none, and whether they are there
// while it is off.
struct SupportedFeature
{
    int mID;
    int mfInverted;
    const char* mPartName;
};

// By feature ID.
constexpr SupportedFeature kSupportedFeatures[] = {
    { kUPnPHookFeature_Upload, 0, ":upload" },
    { kUPnPHookFeature_TimeSeek, 0, ":timeseek" },
    { kUPnPHookFeature_Search, 0, nullptr },
    { kUPnPHookFeature_SortSpec, 0, nullptr },
    { kUPnPHookFeature_ByteSeek, 0, ":byteseek" },
    { kUPnPHookFeature_GetFeatureList, 0, ":featurelist" },
    { kUPnPHookFeature_FreeFormQuery, 0, ":ffq" },
    { kUPnPHookFeature_SRS, 0, nullptr },
    { kUPnPHookFeature_SRSConflictResolution, 0, nullptr },
    { kUPnPHookFeature_MSRegistrar, 0, nullptr },
    { kUPnPHookFeature_UseALLIP, 0, nullptr },
    { kUPnPHookFeature_NoHTTPContentLength, 1, nullptr },
    { kUPnPHookFeature_ForceStreamAtBitRate, 0, nullptr },
    { kUPnPHookFeature_UpdateObject, 0, ":updateobject" },
    { kUPnPHookFeature_GroupServiceActive, 0, nullptr },
    { kUPnPHookFeature_ContainerUpdateIDs, 0, ":containerupdateids" },
    { kUPnPHookFeature_UploadDTCPIP, 0, nullptr },
    { kUPnPHookFeature_SupportRVU, 0, nullptr },
    { kUPnPHookFeature_NoHTTPEXTHeader, 1, nullptr },
    { kUPnPHookFeature_NoSetNextURI, 1, ":nexturi" },
    { kUPnPHookFeature_SRSExt, 0, nullptr },
    { kUPnPHookFeature_HDLnk, 0, ":hdlnk" },
    { kUPnPHookFeature_JLabs, 0, nullptr },
    { kUPnPHookFeature_EnergyManagement, 0, nullptr },
    { kUPnPHookFeature_SetUILifeTime, 0, ":uilifetime" },
    { kUPnPHookFeature_BasicManagement, 0, ":basicmanagement" },
    { kUPnPHookFeature_DLNABasicManagement, 0, ":dlnabm" },
    { kUPnPHookFeature_ConfigurationManagement, 0, ":configurationmanagement" },
    { kUPnPHookFeature_X_ColorLight, 0, ":colorlight" },
    { kUPnPHookFeature_X_WhiteLight, 0, ":whitelight" },
    { kUPnPHookFeature_Authentication, 0, nullptr },
    { kUPnPHookFeature_FriendlyInfoUpdate, 0, ":friendlyinfoupdate" },
    { kUPnPHookFeature_FriendlyInfoIconUpdate, 0, ":friendlyinfoiconupdate" },
    { kUPnPHookFeature_DimmingRamp, 0, ":dimmingramp" },
    { kUPnPHookFeature_DimmingStep, 0, ":dimmingstep" },
    { kUPnPHookFeature_X_AnimatedLight, 0, ":animatedlight" },
    { kUPnPHookFeature_UIListingUpdate, 0, ":uilistingupdate" },
    { kUPnPHookFeature_CVP2Server, 0, ":cvp2server" },
    { kUPnPHookFeature_BCSControl, 0, ":bcscontrol" },
    { kUPnPHookFeature_VideoAlbumArtURI, 0, nullptr },
};

constexpr bool IsInOrder()
{
    int theID = 0;
    for (const SupportedFeature& theFeature : kSupportedFeatures)
    {
        if (theFeature.mID != theID++ || (theFeature.mPartName && *theFeature.mPartName != ':')) { return false; }
    }
    return theID == kUPnPHookFeature_Count;
}
static_assert(IsInOrder(), "a row for each feature, at its ID; part names begin with ':'");

// The parts that device descriptions have, in this order.
struct DevicePart
{
    int mFeatureID;
    const char* mPartName;
};

const DevicePart kDeviceParts[] = {
    { kUPnPHookFeature_SRS, ":srs" },
    { kUPnPHookFeature_MSRegistrar, ":msregistrar" },
    { kUPnPHookFeature_GroupServiceActive, ":groupservice" },
    { kUPnPHookFeature_EnergyManagement, ":energymanagement" },
    { kUPnPHookFeature_ConfigurationManagement, ":configurationmanagement" },
    { kUPnPHookFeature_BasicManagement, ":basicmanagement" },
    { kUPnPHookFeature_X_ColorLight, ":colorlight" },
    { kUPnPHookFeature_X_WhiteLight, ":whitelight" },
    { kUPnPHookFeature_X_AnimatedLight, ":animatedlight" },
    { kUPnPHookFeature_FriendlyInfoUpdate, ":friendlyinfoupdate" },
    { kUPnPHookFeature_SRSExt, ":srsext" },
};

// The names of the parts that a description has as they are.
struct PartNames
{
    const char* mNames[kUPnPHookFeature_Count + 3];
    size_t mCount;
};

} // namespace

static void AddName(PartNames* aNames, const char* aName) { aNames->mNames[aNames->mCount++] = aName; }

static bool BeginsWith(const char* aText, const char* aBeginning)
{
    for (; *aBeginning; ++aText, ++aBeginning)
    {
        if (*aText != *aBeginning) { return false; }
    }
    return true;
}

// Whether one of the names is in that of a part. They begin with ':', so that they are looked for only there.
static bool ContainsOneOf(const char* aPartName, const char* const* aNames, size_t aCount)
{
    for (const char* theText = aPartName; theText && (theText = strchr(theText, ':')); ++theText)
    {
        for (size_t i = 0; i < aCount; ++i)
        {
            if (BeginsWith(theText, aNames[i])) { return true; }
        }
    }
    return false;
}

// ---- Descriptions: lists of allowed values ----

namespace
{

// The state variables whose allowed values are the hook's to say.
enum ValueList
{
    kValueList_SeekModes,
    kValueList_PlaySpeeds,
    kValueList_TransportStatus,
    kValueList_PlayModes,
    kValueList_Count
};

// By ValueList.
const char* const kValueListPartNames[kValueList_Count] = { ":seekmodelist", ":playspeedlist", ":transportstatuslist",
                                                            ":playmodelist" };

} // namespace

static void AppendElement(zoBuffer* aBuffer, const zoCStringParser_Token* aValue)
{
    zoBuffer_AppendStr(aBuffer, "<allowedValue>");
    zoBuffer_Append(aBuffer, aValue->mData, aValue->mDataLength);
    zoBuffer_AppendStr(aBuffer, "</allowedValue>");
}

// The values of a list separated by commas as XML, a new text; NULL when there is none.
static char* UPnPHook_GetAllowedValueListStr(const char* anAllowedValueListStr)
{
    zoCStringParser_TokenList* theValues =
        zoCStringParser_Tokenize(anAllowedValueListStr, 0, strlen(anAllowedValueListStr), ",", 1);
    zoBuffer* theBuffer = nullptr;
    for (const zoCStringParser_Token* theValue = theValues->mFirstToken; theValue; theValue = theValue->mNextToken)
    {
        if (theValue->mDataLength == 0) { continue; }
        if (!theBuffer)
        {
            theBuffer = zoBuffer_New(strlen(anAllowedValueListStr) + 256);
            zoBuffer_AppendStr(theBuffer, "<allowedValueList>");
        }
        AppendElement(theBuffer, theValue);
    }
    zoCStringParser_Delete(theValues);
    if (!theBuffer) { return nullptr; }
    const char kEnd[] = "</allowedValueList>";
    zoBuffer_Append(theBuffer, kEnd, sizeof(kEnd));
    char* theList = zoBuffer_TakeOwnership(theBuffer, nullptr, nullptr);
    zoBuffer_Delete(theBuffer);
    return theList;
}

// The list that the values which are always there and those of a property make.
static char* ListWithProperty(UPnPHook* aUPnPHook, const char* aValues, int aPropertyID)
{
    const char* theProperty = UPnPHook_GetProperty(aUPnPHook, aPropertyID);
    const bool fIsSet = !zoStrEmpty(theProperty);
    char* theValues = zo_mnprintf("%s%s%s", aValues, fIsSet ? "," : "", fIsSet ? theProperty : "");
    char* theList = UPnPHook_GetAllowedValueListStr(theValues);
    free(theValues);
    return theList;
}

static char* SeekModeList(UPnPHook* aUPnPHook)
{
    const auto fIsOn = [aUPnPHook](int aFeatureID) { return UPnPHook_SupportFeature(aUPnPHook, aFeatureID) != 0; };
    char* theModes = zo_mnprintf("TRACK_NR,%s%s%s", fIsOn(kUPnPHookFeature_SupportRVU) ? "ABS_TIME,FRAME," : "",
                                 fIsOn(kUPnPHookFeature_ByteSeek) ? "X_DLNA_REL_BYTE," : "",
                                 fIsOn(kUPnPHookFeature_TimeSeek) ? "REL_TIME" : "");
    char* theList = UPnPHook_GetAllowedValueListStr(theModes);
    free(theModes);
    return theList;
}

static char* PlaySpeedList(UPnPHook* aUPnPHook)
{
    const char* theSpeeds = UPnPHook_GetProperty(aUPnPHook, kUPnPHookProperty_PlaySpeedList);
    return zoStrEmpty(theSpeeds) ? nullptr : UPnPHook_GetAllowedValueListStr(theSpeeds);
}

// ---- Descriptions: splicing ----

namespace
{

// The optional parts of a description as its caller has them.
struct OptionalParts
{
    char** mTexts;
    char** mNames;
    size_t* mLengths;
};

// What is put in the place of a part; a dropped one has no bytes.
struct Insertion
{
    const char* mText;
    size_t mLength;
    const char* mMarker; // its place in the template, once that has been looked through
};

} // namespace

static size_t CountParts(const OptionalParts& aParts)
{
    size_t theCount = 0;
    while (aParts.mTexts && aParts.mTexts[theCount])
        ++theCount;
    return theCount;
}

// The insertions for the parts, to be filled in; released with free.
static Insertion* NewInsertions(size_t aCount)
{
    if (aCount > SIZE_MAX / sizeof(Insertion)) { abort(); } // more than memory can hold
    return static_cast<Insertion*>(zoMallocZeroed(aCount * sizeof(Insertion)));
}

// The next marker, "%@"; the end when there is none.
static const char* FindMarker(const char* aPosition, const char* anEnd)
{
    for (; aPosition < anEnd; ++aPosition)
    {
        aPosition = static_cast<const char*>(memchr(aPosition, '%', static_cast<size_t>(anEnd - aPosition)));
        if (!aPosition || anEnd - aPosition < 2) { return anEnd; }
        if (aPosition[1] == '@') { return aPosition; }
    }
    return anEnd;
}

// Gives the insertions their places. Returns the number of markers, which may be another.
static size_t PlaceAtMarkers(const char* aTemplate, size_t aLength, Insertion* anInsertions, size_t aCount)
{
    const char* theEnd = aTemplate + aLength;
    size_t theCount = 0;
    for (const char* theMarker = aTemplate; (theMarker = FindMarker(theMarker, theEnd)) != theEnd; theMarker += 2)
    {
        if (theCount < aCount) { anInsertions[theCount].mMarker = theMarker; }
        ++theCount;
    }
    return theCount;
}

static char* Append(char* anEnd, const char* aBytes, size_t aCount)
{
    if (aCount > 0) { memcpy(anEnd, aBytes, aCount); }
    return anEnd + aCount;
}

// The template with the insertions in their places, which are all of its markers: a new text of exactly that length and
// a NUL.
static char* Splice(const char* aTemplate, size_t aTemplateLength, const Insertion* anInsertions, size_t aCount,
                    size_t* aLength)
{
    size_t theLength = aTemplateLength - aCount * 2;
    for (size_t i = 0; i < aCount; ++i)
    {
        if (anInsertions[i].mLength >= SIZE_MAX - theLength) { abort(); } // more than memory can hold
        theLength += anInsertions[i].mLength;
    }
    char* theBuffer = static_cast<char*>(zoMalloc(theLength + 1));
    char* theTarget = theBuffer;
    const char* thePosition = aTemplate;
    const char* theTemplateEnd = aTemplate + aTemplateLength;
    for (size_t i = 0; i < aCount; ++i)
    {
        theTarget = Append(theTarget, thePosition, static_cast<size_t>(anInsertions[i].mMarker - thePosition));
        theTarget = Append(theTarget, anInsertions[i].mText, anInsertions[i].mLength);
        thePosition = anInsertions[i].mMarker + 2;
    }
    theTarget = Append(theTarget, thePosition, static_cast<size_t>(theTemplateEnd - thePosition));
    *theTarget = '\0';
    *aLength = theLength;
    return theBuffer;
}

// Whether there is a part for each marker.
static bool HasPartForEachMarker(size_t aMarkerCount, size_t anOptionalCount)
{
    const size_t theOptionalIndex = aMarkerCount - 1; // the last marker's
    const size_t theOptionalCount = anOptionalCount;
    return aMarkerCount == 0 || zoAssert(theOptionalIndex < theOptionalCount);
}

// As Splice, but reports a template that doesn't fit its parts, with a NULL result, and one that doesn't end an
// element.
static char* SpliceChecked(const char* aTemplate, size_t aTemplateLength, Insertion* anInsertions, size_t aCount,
                           size_t* aLength, const char* anEndCondition, int aLine)
{
    *aLength = 0;
    const size_t theMarkerCount = PlaceAtMarkers(aTemplate, aTemplateLength, anInsertions, aCount);
    if (!HasPartForEachMarker(theMarkerCount, aCount)) { return nullptr; }
    char* theBuffer =
        theMarkerCount == aCount ? Splice(aTemplate, aTemplateLength, anInsertions, aCount, aLength) : nullptr;
    const bool fEndsElement = *aLength > 0 && theBuffer[*aLength - 1] == '>';
    if (!fEndsElement) { _zoAssert(anEndCondition, __FILE__, aLine); }
    return theBuffer;
}

// ---- Descriptions: services ----

namespace
{

// What a service description of a hook has for a client.
struct ServiceOffer
{
    PartNames mIncluded;
    bool mfHasList[kValueList_Count]; // whether the list replaces parts, which are dropped when it has no values
    char* mList[kValueList_Count];    // owned
    size_t mListLength[kValueList_Count];
};

} // namespace

static void SetList(ServiceOffer* anOffer, ValueList aList, char* aText)
{
    anOffer->mfHasList[aList] = true;
    anOffer->mList[aList] = aText;
    anOffer->mListLength[aList] = aText ? strlen(aText) : 0;
}

static void IncludeParts(PartNames* aNames, UPnPHook* aUPnPHook, ILibWebServer_Session* aSession)
{
    for (const SupportedFeature& theFeature : kSupportedFeatures)
    {
        if (!theFeature.mPartName) { continue; }
        const bool fIsOn = UPnPHook_SupportFeature(aUPnPHook, theFeature.mID) != 0;
        if (fIsOn != (theFeature.mfInverted != 0)) { AddName(aNames, theFeature.mPartName); }
    }
    int fSupportSearch = 0;
    UPnPHook_Hook(aUPnPHook, kUPnPHook_GetSupportSearch,
                  const_cast<char*>(ILibWebServerSession_GetServerUserAgent(aSession)), &fSupportSearch);
    if (fSupportSearch != 0) { AddName(aNames, ":search"); }
    if (UPnPHook_SupportFeature(aUPnPHook, kUPnPHookFeature_SupportRVU) != 0)
    {
        AddName(aNames, ":rvu");
        AddName(aNames, ":pfc");
    }
}

static void InitOffer(ServiceOffer* anOffer, UPnPHook* aUPnPHook, ILibWebServer_Session* aSession)
{
    *anOffer = {};
    IncludeParts(&anOffer->mIncluded, aUPnPHook, aSession);
    SetList(anOffer, kValueList_SeekModes, SeekModeList(aUPnPHook));
    SetList(anOffer, kValueList_PlaySpeeds, PlaySpeedList(aUPnPHook));
    anOffer->mfHasList[kValueList_PlaySpeeds] =
        !zoStrEmpty(UPnPHook_GetProperty(aUPnPHook, kUPnPHookProperty_PlaySpeedList));
    SetList(anOffer, kValueList_TransportStatus,
            ListWithProperty(aUPnPHook, "OK,ERROR_OCCURRED", kUPnPHookProperty_TransportStatusList));
    SetList(anOffer, kValueList_PlayModes, ListWithProperty(aUPnPHook, "NORMAL", kUPnPHookProperty_PlayModeList));
}

// What becomes of a part: itself, a list instead, or nothing. The first rule that applies decides.
static Insertion ChooseServicePart(const ServiceOffer& anOffer, const char* aName, const Insertion& aPart)
{
    if (ContainsOneOf(aName, anOffer.mIncluded.mNames, anOffer.mIncluded.mCount)) { return aPart; }
    for (int i = 0; i < kValueList_Count; ++i)
    {
        if (anOffer.mfHasList[i] && ContainsOneOf(aName, &kValueListPartNames[i], 1))
        {
            return { anOffer.mList[i], anOffer.mListLength[i], nullptr };
        }
    }
    return {};
}

static char* UPnPHook_GetServiceDescription(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession,
                                            char* /*aServiceName*/, char* aServiceDescription,
                                            size_t aServiceDescriptionLength, char** anOptional, char** anOptionalName,
                                            size_t* anOptionalLength, size_t* aBufferLength)
{
    const OptionalParts theParts = { anOptional, anOptionalName, anOptionalLength };
    const size_t theCount = CountParts(theParts);
    Insertion* theInsertions = NewInsertions(theCount);
    ServiceOffer theOffer;
    InitOffer(&theOffer, aUPnPHook, aSession);
    for (size_t i = 0; i < theCount; ++i)
    {
        theInsertions[i] =
            ChooseServicePart(theOffer, theParts.mNames[i], { theParts.mTexts[i], theParts.mLengths[i], nullptr });
    }
    char* theBuffer = SpliceChecked(aServiceDescription, aServiceDescriptionLength, theInsertions, theCount,
                                    aBufferLength, "theBuffer[theBufferLength - 1] == '>'", __LINE__);
    for (char* theList : theOffer.mList)
        free(theList);
    free(theInsertions);
    return theBuffer;
}

// ---- Descriptions: devices ----

static char* UPnPHook_GetDeviceDescription(UPnPHook* aUPnPHook, char* /*aUserAgent*/, char** anOptional,
                                           char** anOptionalName, size_t* anOptionalLength, char* aDeviceDescription)
{
    const OptionalParts theParts = { anOptional, anOptionalName, anOptionalLength };
    const size_t theCount = CountParts(theParts);
    Insertion* theInsertions = NewInsertions(theCount);
    PartNames theIncluded = {};
    for (const DevicePart& thePart : kDeviceParts)
    {
        if (UPnPHook_SupportFeature(aUPnPHook, thePart.mFeatureID) != 0) { AddName(&theIncluded, thePart.mPartName); }
    }
    for (size_t i = 0; i < theCount; ++i)
    {
        if (!ContainsOneOf(theParts.mNames[i], theIncluded.mNames, theIncluded.mCount)) { continue; }
        theInsertions[i] = { theParts.mTexts[i], theParts.mLengths[i], nullptr };
    }
    size_t theLength = 0;
    const size_t theTemplateLength = aDeviceDescription ? strlen(aDeviceDescription) : 0;
    char* theBuffer = SpliceChecked(aDeviceDescription, theTemplateLength, theInsertions, theCount, &theLength,
                                    "theBuffer[theTotalDeviceDescriptionLength - 1] == '>'", __LINE__);
    free(theInsertions);
    return theBuffer;
}

// ---- Clients ----

template <size_t Size>
static bool UserAgentHas(const char* aUserAgent, const char (&aToken)[Size])
{
    return ILibUserAgentHas(aUserAgent, aToken, Size - 1) != 0;
}

static bool NeedToEmulateXBox(const char* aUserAgent) { return UserAgentHas(aUserAgent, "Xbox/"); }

static bool NeedToEmulateWMPOnly(const char* aUserAgent)
{
    return UserAgentHas(aUserAgent, "Windows") &&
           (UserAgentHas(aUserAgent, "9x)") || UserAgentHas(aUserAgent, "NT/5.1)") ||
            UserAgentHas(aUserAgent, "Windows-Media-Player/"));
}

static bool NeedToEmulateWMP(const char* aUserAgent)
{
    return NeedToEmulateXBox(aUserAgent) || NeedToEmulateWMPOnly(aUserAgent);
}

// ---- Answers, one function a question; the arguments are those that the header tells ----

static bool IsText(const char* aText, const char* aConstant) { return aText && strcmp(aText, aConstant) == 0; }

// The device's container that stands for one of the containers of a Windows Media Player or an Xbox; NULL when the ID
// is none of theirs.
static const char* ContainerOf(const char* anObjectID)
{
    static const struct
    {
        const char* mRequestedID;
        const char* mNewID;
    } kContainers[] = {
        { "F", "-playlist" },     { "10", "-playlist" },      { "11", "-playlist" },   { "13", "-playlist" },
        { "15", "-videofolder" }, { "16", "-picturefolder" }, { "7", "-musicalbum" },  { "6", "-musicartist" },
        { "4", "-musicall" },     { "5", "-musicgenre" },     { "1", "-musicartist" },
    };
    for (const auto& theContainer : kContainers)
    {
        if (IsText(anObjectID, theContainer.mRequestedID)) { return theContainer.mNewID; }
    }
    return nullptr;
}

static void ConvertObjectID(UPnPHook*, char* aUserAgent, char** anObjectIDPtr, char** aFilterPtr)
{
    const bool fIsEmulated = NeedToEmulateWMP(aUserAgent);
    const bool fIsExtended = fIsEmulated && IsText(*anObjectIDPtr, "1") && aFilterPtr && *aFilterPtr;
    const char* theNewID = fIsEmulated ? ContainerOf(*anObjectIDPtr) : nullptr;
    *anObjectIDPtr = zoStrdup(theNewID ? theNewID : *anObjectIDPtr);
    if (aFilterPtr) { *aFilterPtr = fIsExtended ? zo_mnprintf("%s,res", *aFilterPtr) : zoStrdup(*aFilterPtr); }
}

static void NeedToCheckSortCriteria(UPnPHook*, char* aUserAgent, int* afNeedToCheck)
{
    *afNeedToCheck = !NeedToEmulateWMP(aUserAgent);
}

static void ByteRateIsBitRate(UPnPHook*, char* aUserAgent, int* aFlag) { *aFlag = NeedToEmulateXBox(aUserAgent); }

static void AdjustMediaClassName(UPnPHook*, char* aUserAgent, char* aMediaClassName, char** aNewMediaClassName)
{
    const char* theNewName = nullptr;
    if (NeedToEmulateWMP(aUserAgent))
    {
        if (IsText(aMediaClassName, "item.imageItem")) { theNewName = "item.imageItem.photo"; }
    }
    else if (IsText(aMediaClassName, "container")) { theNewName = "container.storageFolder"; }
    *aNewMediaClassName = const_cast<char*>(theNewName);
}

static void GetServiceDescription(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession, char* aServiceName,
                                  char* aServiceDescription, size_t aServiceDescriptionLength, char** anOptional,
                                  char** anOptionalName, size_t* anOptionalLength, char** aBuffer,
                                  size_t* aBufferLength)
{
    *aBuffer = UPnPHook_GetServiceDescription(aUPnPHook, aSession, aServiceName, aServiceDescription,
                                              aServiceDescriptionLength, anOptional, anOptionalName, anOptionalLength,
                                              aBufferLength);
}

static void SetResExtraInfoInMetadata(UPnPHook*, char* aDeviceManufacturerName, int* afSetResExtraInfoInMetadata)
{
    const char* kWithout[] = { "Roku", nullptr };
    *afSetResExtraInfoInMetadata = ILibString_FindStringInArray(aDeviceManufacturerName, kWithout) < 0;
}

static void GetSupportSearch(UPnPHook* aUPnPHook, char* aUserAgent, int* afSupportSearch)
{
    *afSupportSearch = UPnPHook_SupportFeature(aUPnPHook, kUPnPHookFeature_Search) != 0 || NeedToEmulateWMP(aUserAgent);
}

static void GetInfoDescription(UPnPHook*, char* aUserAgent, char** aDescriptionPtr)
{
    char* theID = ILibWebLinkData_GetID();
    const bool fIsOK = theID && !NeedToEmulateXBox(aUserAgent);
    *aDescriptionPtr =
        fIsOK ? zo_mnprintf("<state value=\"ok\">%s</state>", theID) : zoStrdup("<state value=\"nok\"/>");
    free(theID);
}

static void GetSupportSortSpec(UPnPHook* aUPnPHook, int* afSupportSortSpec)
{
    *afSupportSortSpec = UPnPHook_SupportFeature(aUPnPHook, kUPnPHookFeature_SortSpec);
}

static void GetRequestedCount(UPnPHook*, char* aUserAgent, unsigned int* aRequestedCount, char* /*anObjectID*/)
{
    if (NeedToEmulateXBox(aUserAgent)) { return; }
    const unsigned int theMost = NeedToEmulateWMPOnly(aUserAgent) ? 200 : 100;
    if (*aRequestedCount == 0 || *aRequestedCount > theMost) { *aRequestedCount = theMost; }
}

static void GetDeviceDescription(UPnPHook* aUPnPHook, char* aUserAgent, char** anOptional, char** anOptionalName,
                                 size_t* anOptionalLength, char* aTemplate, char** aBuffer)
{
    *aBuffer =
        UPnPHook_GetDeviceDescription(aUPnPHook, aUserAgent, anOptional, anOptionalName, anOptionalLength, aTemplate);
}

static void CheckHTTPChunk(UPnPHook* aUPnPHook, char* aUserAgent, int* afEnableHTTPChunk)
{
    const char* theList = UPnPHook_GetProperty(aUPnPHook, kUPnPHookProperty_DoNotChunkUserAgentList);
    *afEnableHTTPChunk = !(aUserAgent && theList && ILibUserAgentHasOneOfThem(aUserAgent, theList));
}

static void GetSupportEvent(UPnPHook* aUPnPHook, char* anEventName, int* afSupportEvent)
{
    static const int kFeatures[] = {
        kUPnPHookFeature_DimmingRamp,        kUPnPHookFeature_DimmingStep, kUPnPHookFeature_FriendlyInfoIconUpdate,
        kUPnPHookFeature_ContainerUpdateIDs, kUPnPHookFeature_HDLnk,       kUPnPHookFeature_UIListingUpdate
    };
    *afSupportEvent = !IsText(anEventName, ":extra");
    for (const int theFeatureID : kFeatures)
    {
        if (!IsText(anEventName, kSupportedFeatures[theFeatureID].mPartName)) { continue; }
        *afSupportEvent = UPnPHook_SupportFeature(aUPnPHook, theFeatureID) != 0;
        return;
    }
}

static void CheckPlayMode(UPnPHook* aUPnPHook, char* aPlayMode, char* afOK)
{
    const char* theList = UPnPHook_GetProperty(aUPnPHook, kUPnPHookProperty_PlayModeList);
    const bool fIsOK =
        IsText(aPlayMode, "NORMAL") || (theList && zoCStringParser_ListContains(theList, ",", aPlayMode));
    *afOK = fIsOK ? 1 : 0;
}

static void CheckSeekMode(UPnPHook* aUPnPHook, char* aSeekMode, char* afOK)
{
    const bool fTimeSeek = UPnPHook_SupportFeature(aUPnPHook, kUPnPHookFeature_TimeSeek) != 0;
    const bool fByteSeek = UPnPHook_SupportFeature(aUPnPHook, kUPnPHookFeature_ByteSeek) != 0;
    const bool fRVU = UPnPHook_SupportFeature(aUPnPHook, kUPnPHookFeature_SupportRVU) != 0;
    const bool fIsOK = IsText(aSeekMode, "TRACK_NR") || (fTimeSeek && IsText(aSeekMode, "REL_TIME")) ||
                       (fByteSeek && IsText(aSeekMode, "X_DLNA_REL_BYTE")) ||
                       (fRVU && (IsText(aSeekMode, "ABS_TIME") || IsText(aSeekMode, "FRAME")));
    *afOK = fIsOK ? 1 : 0;
}

static void CDSProvideResSize(UPnPHook*, char* aUserAgent, int* afCDSProvideResSize)
{
    *afCDSProvideResSize = !NeedToEmulateWMP(aUserAgent);
}

// ---- The dispatcher ----

namespace
{

struct VariableArguments
{
    va_list mList;
};

template <typename Argument>
Argument Next(VariableArguments* anArguments)
{
    return va_arg(anArguments->mList, Argument);
}

// Calls an answer with the further arguments of its question, which are read in the order of its parameters.
template <typename... Arguments>
void CallWith(void (*anAnswer)(UPnPHook*, Arguments...), UPnPHook* aUPnPHook, VariableArguments* anArguments)
{
    const std::tuple<Arguments...> theArguments{ Next<Arguments>(anArguments)... };
    std::apply([=](Arguments... aTaken) { anAnswer(aUPnPHook, aTaken...); }, theArguments);
}

template <auto Answer>
void Call(UPnPHook* aUPnPHook, VariableArguments* anArguments)
{
    CallWith(Answer, aUPnPHook, anArguments);
}

typedef void (*Caller_t)(UPnPHook* aUPnPHook, VariableArguments* anArguments);

// By hook ID; NULL where there is none.
constexpr Caller_t kAnswers[] = {
    nullptr,
    Call<ConvertObjectID>,
    Call<NeedToCheckSortCriteria>,
    Call<ByteRateIsBitRate>,
    Call<AdjustMediaClassName>,
    Call<GetServiceDescription>,
    Call<SetResExtraInfoInMetadata>,
    nullptr,
    Call<GetSupportSearch>,
    Call<GetInfoDescription>,
    Call<GetSupportSortSpec>,
    Call<GetRequestedCount>,
    Call<GetDeviceDescription>,
    Call<CheckHTTPChunk>,
    Call<GetSupportEvent>,
    Call<CheckPlayMode>,
    Call<CheckSeekMode>,
    Call<CDSProvideResSize>,
};
static_assert(sizeof(kAnswers) / sizeof(kAnswers[0]) == kUPnPHook_CDSProvideResSize + 1, "a row for each hook ID");

} // namespace

static void LogUnknownHookID(int aHookID)
{
    zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_WARNING, ZOLOG_M_UPNP);
    if (!theRecord) { return; }
    zoLog_SetLocation(theRecord, __FILE__, __LINE__);
    zoLog_Append_F(theRecord, "UPnPHook: unknown hook ID '%d'\n", aHookID);
    zoLog_End(theRecord);
}

void UPnPHook_Hook(UPnPHook* aUPnPHook, int aHookID, ...)
{
    if (!zoAssert(aUPnPHook != NULL)) { return; }
    const bool fIsKnown = aHookID > 0 && aHookID <= kUPnPHook_CDSProvideResSize && kAnswers[aHookID];
    if (!fIsKnown)
    {
        LogUnknownHookID(aHookID);
        return;
    }
    VariableArguments theArguments;
    va_start(theArguments.mList, aHookID);
    kAnswers[aHookID](aUPnPHook, &theArguments);
    va_end(theArguments.mList);
}
