#include "HookOptions.h"
#include "Subcommand.h"

#include <UPnP/Stack/ILibWebLinkData.h>
#include <UPnP/Utilities/Hook/Features.h>
#include <stdlib.h>
#include <zoltTools/zoConvert.h>

static const Usage kUsage = {
    "[OPTION...]",
    nullptr,
    "Prints how the stack treats a client: the device hook's answers to its questions. Those on descriptions are answered\n"
    "by upnputil describe.\n\n" +
        HookNamesHelp(),
    HookOptionsAnd({
        { "--manufacturer", "NAME", false, "manufacturer of a renderer that is sent metadata (default: none)" },
        { "--web-link", "ID", false, "the device's web-link identifier (default: none)" },
        { "--count", "NUMBER", false, "how many objects it asks for at once (default: 0, no limit)" },
        { "--object-id", "ID", true, "an object that it asks for (default: 1); may repeat" },
        { "--filter", "LIST", false, "the properties that it wants of the object (default: none)" },
        { "--class", "NAME", true, "an object's class (default: container and item.imageItem); may repeat" },
        { "--play-mode", "MODE", true, "a play mode that it sets (default: those of AVTransport); may repeat" },
        { "--seek-mode", "MODE", true, "a seek mode that it uses (default: TRACK_NR and optional ones); may repeat" },
        { "--event", "NAME", true, "an event by its part name (default: all optional ones); may repeat" },
    }),
};

typedef std::vector<const char*> Texts;

static const Texts kObjectIDs = { "1" };
static const Texts kClasses = { "container", "item.imageItem" };
static const Texts kPlayModes = { "NORMAL", "SHUFFLE", "REPEAT_ONE", "REPEAT_ALL", "RANDOM", "DIRECT_1", "INTRO" };

static Texts SeekModes()
{
    Texts theModes;
    for (const DeviceHook::SeekMode& theMode : DeviceHook::kSeekModes)
        theModes.push_back(theMode.mName);
    return theModes;
}

static Texts Events()
{
    Texts theEvents;
    for (const char* theName : DeviceHook::kEventNames)
    {
        if (theName) { theEvents.push_back(theName); }
    }
    return theEvents;
}

static Texts GivenOr(const Arguments& anArguments, const char* anOption, const Texts& aDefault)
{
    Texts theTexts = anArguments.GetAll(anOption);
    return theTexts.empty() ? aDefault : theTexts;
}

static const char* YesOrNo(int afAnswer) { return afAnswer ? "yes" : "no"; }

// Names the fact that there is for each of several texts.
static std::string FactName(const char* aKind, const char* aText) { return std::string(aKind) + " \"" + aText + "\""; }

// Asks a question about one text, a user agent for instance, that is answered by a flag.
static const char* Ask(UPnPHook* aHook, int aHookID, const char* aText)
{
    int fAnswer = 0;
    UPnPHook_Hook(aHook, aHookID, AsInput(aText), &fAnswer);
    return YesOrNo(fAnswer);
}

// As Ask, for an answer in a byte.
static const char* AskByte(UPnPHook* aHook, int aHookID, const char* aText)
{
    char fAnswer = 0;
    UPnPHook_Hook(aHook, aHookID, AsInput(aText), &fAnswer);
    return YesOrNo(fAnswer);
}

static void PrintClient(UPnPHook* aHook, const char* aUserAgent, Output& anOutput)
{
    static const struct
    {
        int mHookID;
        const char* mName;
    } kQuestions[] = {
        { kUPnPHook_GetSupportSearch, "search" },
        { kUPnPHook_NeedToCheckSortCriteria, "sort criteria checked" },
        { kUPnPHook_CDSProvideResSize, "resource sizes" },
        { kUPnPHook_ByteRateIsBitRate, "bit rate for byte rate" },
        { kUPnPHook_CheckHTTPChunk, "chunked transfer" },
    };
    for (const auto& theQuestion : kQuestions)
        anOutput.Fact(theQuestion.mName, Ask(aHook, theQuestion.mHookID, aUserAgent));
    char* theDescription = nullptr;
    UPnPHook_Hook(aHook, kUPnPHook_GetInfoDescription, AsInput(aUserAgent), &theDescription);
    anOutput.Fact("info description", theDescription);
    free(theDescription);
}

static void PrintDevice(UPnPHook* aHook, const char* aManufacturer, Output& anOutput)
{
    int fSortSpec = 0;
    UPnPHook_Hook(aHook, kUPnPHook_GetSupportSortSpec, &fSortSpec);
    anOutput.Fact("SortSpec", YesOrNo(fSortSpec));
    anOutput.Fact("extra resource info", Ask(aHook, kUPnPHook_SetResExtraInfoInMetadata, aManufacturer));
}

static void PrintCount(UPnPHook* aHook, const char* aUserAgent, uint32 aCount, Output& anOutput)
{
    unsigned int theCount = aCount;
    UPnPHook_Hook(aHook, kUPnPHook_GetRequestedCount, AsInput(aUserAgent), &theCount, AsInput("0"));
    anOutput.Fact("objects at once", theCount == 0 ? "no limit" : std::to_string(theCount));
}

static void PrintObjectID(UPnPHook* aHook, const char* aUserAgent, const char* anObjectID, const char* aFilter,
                          Output& anOutput)
{
    char* theObjectID = AsInput(anObjectID);
    char* theFilter = AsInput(aFilter);
    UPnPHook_Hook(aHook, kUPnPHook_ConvertObjectID, AsInput(aUserAgent), &theObjectID, &theFilter);
    const std::string theName = FactName("object id", anObjectID);
    anOutput.Fact(theName, theObjectID);
    if (aFilter) { anOutput.Fact(theName + " filter", theFilter); }
    free(theObjectID);
    free(theFilter);
}

static void PrintClass(UPnPHook* aHook, const char* aUserAgent, const char* aClass, Output& anOutput)
{
    char* theClass = nullptr;
    UPnPHook_Hook(aHook, kUPnPHook_AdjustMediaClassName, AsInput(aUserAgent), AsInput(aClass), &theClass);
    anOutput.Fact(FactName("class", aClass), theClass ? theClass : aClass);
}

static void PrintAnswers(UPnPHook* aHook, const Arguments& anArguments, uint32 aCount, Output& anOutput)
{
    const char* theUserAgent = UserAgent(anArguments);
    PrintClient(aHook, theUserAgent, anOutput);
    PrintDevice(aHook, anArguments.Get("--manufacturer"), anOutput);
    PrintCount(aHook, theUserAgent, aCount, anOutput);
    for (const char* theID : GivenOr(anArguments, "--object-id", kObjectIDs))
        PrintObjectID(aHook, theUserAgent, theID, anArguments.Get("--filter"), anOutput);
    for (const char* theClass : GivenOr(anArguments, "--class", kClasses))
        PrintClass(aHook, theUserAgent, theClass, anOutput);
    for (const char* theMode : GivenOr(anArguments, "--play-mode", kPlayModes))
        anOutput.Fact(FactName("play mode", theMode), AskByte(aHook, kUPnPHook_CheckPlayMode, theMode));
    for (const char* theMode : GivenOr(anArguments, "--seek-mode", SeekModes()))
        anOutput.Fact(FactName("seek mode", theMode), AskByte(aHook, kUPnPHook_CheckSeekMode, theMode));
    for (const char* theEvent : GivenOr(anArguments, "--event", Events()))
        anOutput.Fact(FactName("event", theEvent), Ask(aHook, kUPnPHook_GetSupportEvent, theEvent));
}

static int Hook(const Arguments& anArguments, Output& anOutput)
{
    const char* theCountText = anArguments.Get("--count");
    uint32 theCount = 0;
    if (theCountText && zoConvert_strtouint32(theCountText, &theCount) != kzoConvertError_None)
    {
        return anArguments.BadUsage("--count \"" + std::string(theCountText) + "\" is no number from 0 to 4294967295");
    }
    const HookPtr theHook = NewHook(anArguments);
    if (!theHook) { return kExit_Bad; }
    ILibWebLinkData_SetID(anArguments.Get("--web-link"));
    PrintAnswers(theHook.get(), anArguments, theCount, anOutput);
    return kExit_Done;
}

const Subcommand kHook = { "hook", "print how the stack treats a client", &kUsage, Hook };
