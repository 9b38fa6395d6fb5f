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

// Names the fact that there is for each of several texts.
static std::string FactName(const char* aKind, const char* aText) { return std::string(aKind) + " \"" + aText + "\""; }

// Asks a question about one text, a user agent for instance, that is answered by a flag.
static bool Ask(UPnPHook* aHook, int aHookID, const char* aText)
{
    int fAnswer = 0;
    UPnPHook_Hook(aHook, aHookID, AsInput(aText), &fAnswer);
    return fAnswer != 0;
}

// As Ask, for an answer in a byte.
static bool AskByte(UPnPHook* aHook, int aHookID, const char* aText)
{
    char fAnswer = 0;
    UPnPHook_Hook(aHook, aHookID, AsInput(aText), &fAnswer);
    return fAnswer != 0;
}

// Prints the answers to a question about each of several texts.
static void PrintFlags(const char* aKind, const char* aKey, const Texts& aTexts, UPnPHook* aHook, int aHookID,
                       bool (*aAsk)(UPnPHook*, int, const char*), Output& anOutput)
{
    Output::List theList(anOutput, "", aKey);
    for (const char* theText : aTexts)
    {
        theList.Next();
        anOutput.InJSON("name", theText);
        const bool fAnswer = aAsk(aHook, aHookID, theText);
        anOutput.InText(FactName(aKind, theText), fAnswer ? "yes" : "no");
        anOutput.InJSON("supported", fAnswer);
    }
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
        anOutput.YesOrNo(theQuestion.mName, Ask(aHook, theQuestion.mHookID, aUserAgent));
    char* theDescription = nullptr;
    UPnPHook_Hook(aHook, kUPnPHook_GetInfoDescription, AsInput(aUserAgent), &theDescription);
    anOutput.Fact("info description", theDescription);
    free(theDescription);
}

static void PrintDevice(UPnPHook* aHook, const char* aManufacturer, Output& anOutput)
{
    int fSortSpec = 0;
    UPnPHook_Hook(aHook, kUPnPHook_GetSupportSortSpec, &fSortSpec);
    anOutput.YesOrNo("SortSpec", fSortSpec != 0);
    anOutput.YesOrNo("extra resource info", Ask(aHook, kUPnPHook_SetResExtraInfoInMetadata, aManufacturer));
}

static void PrintCount(UPnPHook* aHook, const char* aUserAgent, uint32 aCount, Output& anOutput)
{
    unsigned int theCount = aCount;
    UPnPHook_Hook(aHook, kUPnPHook_GetRequestedCount, AsInput(aUserAgent), &theCount, AsInput("0"));
    if (theCount == 0) { anOutput.Fact("objects at once", "no limit", nullptr); }
    else { anOutput.Number("objects at once", theCount); }
}

static void PrintObjectID(UPnPHook* aHook, const char* aUserAgent, const char* anObjectID, const char* aFilter,
                          Output& anOutput)
{
    char* theObjectID = AsInput(anObjectID);
    char* theFilter = AsInput(aFilter);
    UPnPHook_Hook(aHook, kUPnPHook_ConvertObjectID, AsInput(aUserAgent), &theObjectID, &theFilter);
    const std::string theName = FactName("object id", anObjectID);
    anOutput.InText(theName, theObjectID);
    anOutput.InJSON("id", anObjectID);
    anOutput.InJSON("converted", theObjectID);
    if (aFilter)
    {
        anOutput.InText(theName + " filter", theFilter);
        anOutput.InJSON("filter", theFilter);
    }
    free(theObjectID);
    free(theFilter);
}

static void PrintClass(UPnPHook* aHook, const char* aUserAgent, const char* aClass, Output& anOutput)
{
    char* theClass = nullptr;
    UPnPHook_Hook(aHook, kUPnPHook_AdjustMediaClassName, AsInput(aUserAgent), AsInput(aClass), &theClass);
    anOutput.InText(FactName("class", aClass), theClass ? theClass : aClass);
    anOutput.InJSON("class", aClass);
    anOutput.InJSON("adjusted", theClass ? theClass : aClass);
}

static void PrintObjectIDs(UPnPHook* aHook, const char* aUserAgent, const Arguments& anArguments, Output& anOutput)
{
    Output::List theList(anOutput, "", "objectIds");
    for (const char* theID : GivenOr(anArguments, "--object-id", kObjectIDs))
    {
        theList.Next();
        PrintObjectID(aHook, aUserAgent, theID, anArguments.Get("--filter"), anOutput);
    }
}

static void PrintClasses(UPnPHook* aHook, const char* aUserAgent, const Texts& aClasses, Output& anOutput)
{
    Output::List theList(anOutput, "", "classes");
    for (const char* theClass : aClasses)
    {
        theList.Next();
        PrintClass(aHook, aUserAgent, theClass, anOutput);
    }
}

static void PrintAnswers(UPnPHook* aHook, const Arguments& anArguments, uint32 aCount, Output& anOutput)
{
    const char* theUserAgent = UserAgent(anArguments);
    PrintClient(aHook, theUserAgent, anOutput);
    PrintDevice(aHook, anArguments.Get("--manufacturer"), anOutput);
    PrintCount(aHook, theUserAgent, aCount, anOutput);
    PrintObjectIDs(aHook, theUserAgent, anArguments, anOutput);
    PrintClasses(aHook, theUserAgent, GivenOr(anArguments, "--class", kClasses), anOutput);
    PrintFlags("play mode", "playModes", GivenOr(anArguments, "--play-mode", kPlayModes), aHook,
               kUPnPHook_CheckPlayMode, AskByte, anOutput);
    PrintFlags("seek mode", "seekModes", GivenOr(anArguments, "--seek-mode", SeekModes()), aHook,
               kUPnPHook_CheckSeekMode, AskByte, anOutput);
    PrintFlags("event", "events", GivenOr(anArguments, "--event", Events()), aHook, kUPnPHook_GetSupportEvent, Ask,
               anOutput);
}

static int Hook(const Arguments& anArguments, Output& anOutput)
{
    const char* theCountText = anArguments.Get("--count");
    uint32 theCount = 0;
    if (theCountText && zoConvert_strtouint32(theCountText, &theCount) != kzoConvertError_None)
    {
        return anArguments.BadUsage("--count \"" + std::string(theCountText) +
                                    "\" is not a number from 0 to 4294967295");
    }
    const HookPtr theHook = NewHook(anArguments);
    if (!theHook) { return kExit_Bad; }
    ILibWebLinkData_SetID(anArguments.Get("--web-link"));
    PrintAnswers(theHook.get(), anArguments, theCount, anOutput);
    return kExit_Done;
}

const Subcommand kHook = { "hook", "print how the stack treats a client", &kUsage, Hook };
