#include "HookOptions.h"
#include "Input.h"
#include "Subcommand.h"

#include <UPnP/Stack/ILibWebServer.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>

static const char kMarker[] = "%@";

static const Usage kUsage = {
    "[--part NAME=FILE]... [OPTION...]",
    "TEMPLATE",
    "Rewrites a service description, or with --device a device description, for a client and prints it as it is, without\n"
    "a line end after it. TEMPLATE is a file with a marker \"%@\" for each optional part; \"-\" is standard input. The\n"
    "first --part belongs to the first marker, the second to the second, and so on. Line ends at the end of TEMPLATE are\n"
    "not part of it; parts are taken as they are.\n\n"
    "A part replaces its marker when the device has a feature that its NAME tells, and is left out otherwise.\n"
    "A NAME may tell several (\":timeseek:byteseek\"). Most are called like their feature (\":timeseek\" for TimeSeek).\n"
    "Of a service, \":featurelist\", \":ffq\", \":uilifetime\" and \":dlnabm\" stand for GetFeatureList, FreeFormQuery,\n"
    "SetUILifeTime and DLNABasicManagement, \":rvu\" and \":pfc\" for SupportRVU, \":nexturi\" for a device without\n"
    "NoSetNextURI; of a device, \":groupservice\" for GroupServiceActive; of both, \":colorlight\", \":whitelight\" and\n"
    "\":animatedlight\" for the features with \"X_\". Whether \":search\" is there depends on the client, too.\n"
    "Allowed value lists, made of features and properties, replace the parts \":seekmodelist\", \":playspeedlist\",\n"
    "\":playmodelist\" and \":transportstatuslist\" of a service.\n\n" +
        HookNamesHelp(),
    HookOptionsAnd({
        { "--part", "NAME=FILE", true, "an optional part's name and text; no FILE: no text; may repeat" },
        { "--device", nullptr, false, "TEMPLATE is a device description" },
    }),
    false,
};

namespace
{

typedef std::vector<char> Text; // with its NUL

struct Part
{
    std::string mName;
    std::string mPath; // "": it has no text
    Text mText;
};

} // namespace

static size_t LengthOf(const Text& aText) { return aText.size() - 1; }

static int ReadPartNames(const Arguments& anArguments, std::vector<Part>& aParts)
{
    for (const char* theText : anArguments.GetAll("--part"))
    {
        const char* theEqualSign = strchr(theText, '=');
        if (!theEqualSign) { return anArguments.BadUsage("--part " + std::string(theText) + " has no \"=\""); }
        const std::string theName(theText, theEqualSign);
        if (theName.find(':') == std::string::npos)
        {
            return anArguments.BadUsage("--part " + std::string(theText) +
                                        ": no \":\" in its name, as in \":timeseek\"");
        }
        aParts.push_back({ theName, theEqualSign + 1, Text(1) });
    }
    return kExit_Done;
}

static bool WantsInputTwice(const Arguments& anArguments, const std::vector<Part>& aParts)
{
    const auto theCount =
        std::count_if(aParts.begin(), aParts.end(), [](const Part& aPart) { return aPart.mPath == "-"; });
    return theCount + (strcmp(anArguments.Operand(), "-") == 0) > 1;
}

static bool ReadTexts(const Arguments& anArguments, Text& aTemplate, std::vector<Part>& aParts)
{
    if (!ReadInput(anArguments.Operand(), aTemplate)) { return false; }
    for (Part& thePart : aParts)
    {
        if (!thePart.mPath.empty() && !ReadInput(thePart.mPath, thePart.mText)) { return false; }
    }
    return true;
}

static void CutLineEnds(Text& aText)
{
    size_t theLength = LengthOf(aText);
    while (theLength > 0 && (aText[theLength - 1] == '\n' || aText[theLength - 1] == '\r'))
        --theLength;
    aText.resize(theLength);
    aText.push_back('\0');
}

static size_t CountMarkers(const Text& aTemplate)
{
    size_t theCount = 0;
    for (const char* theText = aTemplate.data(); (theText = strstr(theText, kMarker)) != nullptr; ++theCount)
        theText += strlen(kMarker);
    return theCount;
}

// Checks what the library only asserts.
static int CheckTemplate(const Arguments& anArguments, const Text& aTemplate, size_t aPartCount)
{
    const std::string theName = InputName(anArguments.Operand());
    const size_t theLength = LengthOf(aTemplate);
    if (theLength == 0 || aTemplate[theLength - 1] != '>') { return Fail(theName + ": its end is not \">\""); }
    const size_t theCount = CountMarkers(aTemplate);
    if (theCount == aPartCount) { return kExit_Done; }
    return Fail(theName + ": " + std::to_string(theCount) + " \"" + kMarker + "\" in the template, but " +
                std::to_string(aPartCount) + " --part");
}

// Returns the rewritten description, released with free.
static char* Rewrite(UPnPHook* aHook, const Arguments& anArguments, Text& aTemplate, std::vector<Part>& aParts)
{
    std::vector<char*> theNames, theTexts;
    std::vector<size_t> theLengths;
    for (Part& thePart : aParts)
    {
        theNames.push_back(thePart.mName.data());
        theTexts.push_back(thePart.mText.data());
        theLengths.push_back(LengthOf(thePart.mText));
    }
    theTexts.push_back(nullptr);

    const char* theUserAgent = UserAgent(anArguments);
    char* theDescription = nullptr;
    if (anArguments.Get("--device"))
    {
        UPnPHook_Hook(aHook, kUPnPHook_GetDeviceDescription, AsInput(theUserAgent), theTexts.data(), theNames.data(),
                      theLengths.data(), aTemplate.data(), &theDescription);
        return theDescription;
    }
    ILibWebServer_Session* theSession = ILibWebServerSession_New(theUserAgent);
    size_t theLength = 0;
    UPnPHook_Hook(aHook, kUPnPHook_GetServiceDescription, theSession, AsInput(""), aTemplate.data(),
                  LengthOf(aTemplate), theTexts.data(), theNames.data(), theLengths.data(), &theDescription,
                  &theLength);
    ILibWebServerSession_Delete(theSession);
    return theDescription;
}

static int Describe(const Arguments& anArguments, Output& anOutput)
{
    const HookPtr theHook = NewHook(anArguments);
    if (!theHook) { return kExit_Bad; }
    std::vector<Part> theParts;
    if (ReadPartNames(anArguments, theParts) != kExit_Done) { return kExit_Bad; }
    if (WantsInputTwice(anArguments, theParts))
    {
        return anArguments.BadUsage("standard input can't be more than one file");
    }
    Text theTemplate;
    if (!ReadTexts(anArguments, theTemplate, theParts)) { return kExit_Bad; }
    CutLineEnds(theTemplate);
    if (CheckTemplate(anArguments, theTemplate, theParts.size()) != kExit_Done) { return kExit_Bad; }

    char* theDescription = Rewrite(theHook.get(), anArguments, theTemplate, theParts);
    anOutput.Text(theDescription);
    free(theDescription);
    return kExit_Done;
}

const Subcommand kDescribe = { "describe", "rewrite a device or service description for a client", &kUsage, Describe };
