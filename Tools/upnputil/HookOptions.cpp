#include "HookOptions.h"

#include "Names.h"
#include "Subcommand.h"
#include "Suggestion.h"

#include <UPnP/Utilities/Hook/Features.h>
#include <iterator>
#include <string.h>

static const size_t kHelpWidth = 100;

struct FeatureNames
{
    Name mNames[kUPnPHookFeature_Count];
};

static constexpr FeatureNames NamesOfFeatures()
{
    FeatureNames theNames{};
    for (const DeviceHook::Feature& theFeature : DeviceHook::kFeatures)
        theNames.mNames[theFeature.mID] = { theFeature.mName, static_cast<uint32>(theFeature.mID) };
    return theNames;
}

static constexpr FeatureNames kFeatures = NamesOfFeatures();

static const Name kProperties[] = {
    { "UserAgent", kUPnPHookProperty_UserAgent },
    { "PlaySpeedList", kUPnPHookProperty_PlaySpeedList },
    { "TransportStatusList", kUPnPHookProperty_TransportStatusList },
    { "PlayModeList", kUPnPHookProperty_PlayModeList },
    { "DoNotChunkUserAgentList", kUPnPHookProperty_DoNotChunkUserAgentList },
};
static_assert(sizeof(kProperties) / sizeof(kProperties[0]) == kUPnPHookProperty_Count, "every property has a name");

std::vector<Option> HookOptionsAnd(std::vector<Option> anOptions)
{
    static const Option kOptions[] = {
        { "--user-agent", "TEXT", false, "the client's HTTP user agent (default: none)" },
        { "--feature", "NAME", true, "a feature that the device has; may repeat" },
        { "--property", "NAME=VALUE", true, "a property of the device; may repeat" },
    };
    anOptions.insert(anOptions.begin(), std::begin(kOptions), std::end(kOptions));
    return anOptions;
}

std::string HookNamesHelp()
{
    return "Features:\n" + Names(kFeatures.mNames).List(kHelpWidth) + "\nProperties:\n" +
           Names(kProperties).List(kHelpWidth) + "\n";
}

// Returns the constant of that name; NULL, and says so, when there is none.
static const Name* FindOrSay(const Arguments& anArguments, const char* aKind, Names aNames, const std::string& aName)
{
    const Name* theName = aNames.Find(aName);
    if (!theName)
    {
        anArguments.BadUsage("no " + std::string(aKind) + " is called \"" + aName + "\"; known: " + aNames.List() +
                             Suggestion(aName, aNames.All()));
    }
    return theName;
}

static int SetFeature(const Arguments& anArguments, const char* aName, UPnPHook* aHook)
{
    const Name* theFeature = FindOrSay(anArguments, "feature", kFeatures.mNames, aName);
    if (!theFeature) { return kExit_Bad; }
    UPnPHook_SetSupportFeature(aHook, static_cast<int>(theFeature->mValue), 1);
    return kExit_Done;
}

static int SetProperty(const Arguments& anArguments, const char* aText, UPnPHook* aHook, bool* afIsSet)
{
    const char* theEqualSign = strchr(aText, '=');
    if (!theEqualSign) { return anArguments.BadUsage("--property " + std::string(aText) + " has no \"=\""); }
    const std::string theName(aText, theEqualSign);
    const Name* theProperty = FindOrSay(anArguments, "property", kProperties, theName);
    if (!theProperty) { return kExit_Bad; }
    if (afIsSet[theProperty->mValue]) { return anArguments.BadUsage("--property " + theName + " is given twice"); }
    afIsSet[theProperty->mValue] = true;
    UPnPHook_SetProperty(aHook, static_cast<int>(theProperty->mValue), theEqualSign + 1);
    return kExit_Done;
}

HookPtr NewHook(const Arguments& anArguments)
{
    HookPtr theHook(UPnPHook_New());
    bool fIsSet[kUPnPHookProperty_Count] = {};
    for (const char* theName : anArguments.GetAll("--feature"))
    {
        if (SetFeature(anArguments, theName, theHook.get()) != kExit_Done) { return nullptr; }
    }
    for (const char* theText : anArguments.GetAll("--property"))
    {
        if (SetProperty(anArguments, theText, theHook.get(), fIsSet) != kExit_Done) { return nullptr; }
    }
    return theHook;
}

const char* UserAgent(const Arguments& anArguments) { return anArguments.Get("--user-agent"); }
