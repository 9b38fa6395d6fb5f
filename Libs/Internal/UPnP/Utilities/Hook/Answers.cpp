#include <UPnP/Utilities/Hook/Answers.h>

#include <Shared/ASCII.h>
#include <UPnP/Stack/ILibHTTP.h>
#include <UPnP/Stack/ILibString.h>
#include <UPnP/Stack/ILibWebLinkData.h>
#include <UPnP/Utilities/Hook/Description.h>
#include <UPnP/Utilities/Hook/Features.h>
#include <array>
#include <stdlib.h>
#include <tuple>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoMemory.h>

namespace DeviceHook
{

using Shared::AreEqual;

// ---- Kinds of clients ----

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

// ---- Answers: a function for each question, with its arguments in the header's order ----

// The device's container for the ID of a container of Windows Media Player and Xbox; NULL for another ID.
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
        if (AreEqual(anObjectID, theContainer.mRequestedID)) { return theContainer.mNewID; }
    }
    return nullptr;
}

static void ConvertObjectID(UPnPHook*, char* aUserAgent, char** anObjectIDPtr, char** aFilterPtr)
{
    const bool fIsEmulated = NeedToEmulateWMP(aUserAgent);
    const bool fIsExtended = fIsEmulated && AreEqual(*anObjectIDPtr, "1") && aFilterPtr && *aFilterPtr;
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
        if (AreEqual(aMediaClassName, "item.imageItem")) { theNewName = "item.imageItem.photo"; }
    }
    else if (AreEqual(aMediaClassName, "container")) { theNewName = "container.storageFolder"; }
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
    const char* theMakersWithout[] = { "Roku", nullptr };
    *afSetResExtraInfoInMetadata = ILibString_FindStringInArray(aDeviceManufacturerName, theMakersWithout) < 0;
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
    *afSupportEvent = !AreEqual(anEventName, ":extra");
    for (size_t i = 0; i < kUPnPHookFeature_Count; ++i)
    {
        if (!AreEqual(anEventName, kEventNames[i])) { continue; }
        *afSupportEvent = UPnPHook_SupportFeature(aUPnPHook, static_cast<int>(i)) != 0;
    }
}

static void CheckPlayMode(UPnPHook* aUPnPHook, char* aPlayMode, char* afOK)
{
    const char* theList = UPnPHook_GetProperty(aUPnPHook, kUPnPHookProperty_PlayModeList);
    const bool fIsOK =
        AreEqual(aPlayMode, kNormalPlayMode) || (theList && zoCStringParser_ListContains(theList, ",", aPlayMode));
    *afOK = fIsOK ? 1 : 0;
}

static void CheckSeekMode(UPnPHook* aUPnPHook, char* aSeekMode, char* afOK)
{
    bool fIsOK = false;
    for (const SeekMode& theMode : kSeekModes)
        fIsOK = fIsOK || (AreEqual(aSeekMode, theMode.mName) && IsAllowed(theMode, aUPnPHook));
    *afOK = fIsOK ? 1 : 0;
}

static void CDSProvideResSize(UPnPHook*, char* aUserAgent, int* afCDSProvideResSize)
{
    *afCDSProvideResSize = !NeedToEmulateWMP(aUserAgent);
}

// ---- The table of answers ----

namespace
{

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
    std::apply([=](Arguments... anArgument) { anAnswer(aUPnPHook, anArgument...); }, theArguments);
}

template <auto Answer>
void Call(UPnPHook* aUPnPHook, VariableArguments* anArguments)
{
    CallWith(Answer, aUPnPHook, anArguments);
}

typedef void (*Caller_t)(UPnPHook* aUPnPHook, VariableArguments* anArguments);

struct Question
{
    int mHookID;
    Caller_t mAnswer;
};

constexpr Question kQuestions[] = {
    { kUPnPHook_ConvertObjectID, Call<ConvertObjectID> },
    { kUPnPHook_NeedToCheckSortCriteria, Call<NeedToCheckSortCriteria> },
    { kUPnPHook_ByteRateIsBitRate, Call<ByteRateIsBitRate> },
    { kUPnPHook_AdjustMediaClassName, Call<AdjustMediaClassName> },
    { kUPnPHook_GetServiceDescription, Call<GetServiceDescription> },
    { kUPnPHook_SetResExtraInfoInMetadata, Call<SetResExtraInfoInMetadata> },
    { kUPnPHook_GetSupportSearch, Call<GetSupportSearch> },
    { kUPnPHook_GetInfoDescription, Call<GetInfoDescription> },
    { kUPnPHook_GetSupportSortSpec, Call<GetSupportSortSpec> },
    { kUPnPHook_GetRequestedCount, Call<GetRequestedCount> },
    { kUPnPHook_GetDeviceDescription, Call<GetDeviceDescription> },
    { kUPnPHook_CheckHTTPChunk, Call<CheckHTTPChunk> },
    { kUPnPHook_GetSupportEvent, Call<GetSupportEvent> },
    { kUPnPHook_CheckPlayMode, Call<CheckPlayMode> },
    { kUPnPHook_CheckSeekMode, Call<CheckSeekMode> },
    { kUPnPHook_CDSProvideResSize, Call<CDSProvideResSize> },
};

typedef std::array<Caller_t, kUPnPHook_Count> Callers;

// By hook ID. An ID past the table does not compile.
constexpr Callers ByHookID()
{
    Callers theCallers{};
    for (const Question& theQuestion : kQuestions)
        theCallers[static_cast<size_t>(theQuestion.mHookID)] = theQuestion.mAnswer;
    return theCallers;
}

constexpr Callers kAnswers = ByHookID();

// IDs are compared: with sanitizers a function's address is not constant.
constexpr bool IsComplete()
{
    bool fHasAnswer[kUPnPHook_Count] = {};
    for (const Question& theQuestion : kQuestions)
    {
        if (fHasAnswer[theQuestion.mHookID]) { return false; }
        fHasAnswer[theQuestion.mHookID] = true;
    }
    for (int i = 0; i < kUPnPHook_Count; ++i)
    {
        const bool fIsQuestion = i != 0 && i != 7; // there is no hook 7
        if (fIsQuestion != fHasAnswer[i]) { return false; }
    }
    return true;
}
static_assert(IsComplete(), "each question has one answer");

} // namespace

bool Answer(UPnPHook* aUPnPHook, int aHookID, VariableArguments* anArguments)
{
    if (aHookID <= 0 || aHookID >= kUPnPHook_Count) { return false; }
    const Caller_t theAnswer = kAnswers[static_cast<size_t>(aHookID)];
    if (!theAnswer) { return false; }
    theAnswer(aUPnPHook, anArguments);
    return true;
}

} // namespace DeviceHook
