#include "HookOptions.h"

#include "Names.h"
#include "Subcommand.h"

#include <iterator>
#include <string.h>

static const size_t kHelpWidth = 100;

static const Name kFeatures[] = {
    { "Upload", kUPnPHookFeature_Upload },
    { "TimeSeek", kUPnPHookFeature_TimeSeek },
    { "Search", kUPnPHookFeature_Search },
    { "SortSpec", kUPnPHookFeature_SortSpec },
    { "ByteSeek", kUPnPHookFeature_ByteSeek },
    { "GetFeatureList", kUPnPHookFeature_GetFeatureList },
    { "FreeFormQuery", kUPnPHookFeature_FreeFormQuery },
    { "SRS", kUPnPHookFeature_SRS },
    { "SRSConflictResolution", kUPnPHookFeature_SRSConflictResolution },
    { "MSRegistrar", kUPnPHookFeature_MSRegistrar },
    { "UseALLIP", kUPnPHookFeature_UseALLIP },
    { "NoHTTPContentLength", kUPnPHookFeature_NoHTTPContentLength },
    { "ForceStreamAtBitRate", kUPnPHookFeature_ForceStreamAtBitRate },
    { "UpdateObject", kUPnPHookFeature_UpdateObject },
    { "GroupServiceActive", kUPnPHookFeature_GroupServiceActive },
    { "ContainerUpdateIDs", kUPnPHookFeature_ContainerUpdateIDs },
    { "UploadDTCPIP", kUPnPHookFeature_UploadDTCPIP },
    { "SupportRVU", kUPnPHookFeature_SupportRVU },
    { "NoHTTPEXTHeader", kUPnPHookFeature_NoHTTPEXTHeader },
    { "NoSetNextURI", kUPnPHookFeature_NoSetNextURI },
    { "SRSExt", kUPnPHookFeature_SRSExt },
    { "HDLnk", kUPnPHookFeature_HDLnk },
    { "JLabs", kUPnPHookFeature_JLabs },
    { "EnergyManagement", kUPnPHookFeature_EnergyManagement },
    { "SetUILifeTime", kUPnPHookFeature_SetUILifeTime },
    { "BasicManagement", kUPnPHookFeature_BasicManagement },
    { "DLNABasicManagement", kUPnPHookFeature_DLNABasicManagement },
    { "ConfigurationManagement", kUPnPHookFeature_ConfigurationManagement },
    { "X_ColorLight", kUPnPHookFeature_X_ColorLight },
    { "X_WhiteLight", kUPnPHookFeature_X_WhiteLight },
    { "Authentication", kUPnPHookFeature_Authentication },
    { "FriendlyInfoUpdate", kUPnPHookFeature_FriendlyInfoUpdate },
    { "FriendlyInfoIconUpdate", kUPnPHookFeature_FriendlyInfoIconUpdate },
    { "DimmingRamp", kUPnPHookFeature_DimmingRamp },
    { "DimmingStep", kUPnPHookFeature_DimmingStep },
    { "X_AnimatedLight", kUPnPHookFeature_X_AnimatedLight },
    { "UIListingUpdate", kUPnPHookFeature_UIListingUpdate },
    { "CVP2Server", kUPnPHookFeature_CVP2Server },
    { "BCSControl", kUPnPHookFeature_BCSControl },
    { "VideoAlbumArtURI", kUPnPHookFeature_VideoAlbumArtURI },
};
static_assert(sizeof(kFeatures) / sizeof(kFeatures[0]) == kUPnPHookFeature_Count, "every feature has a name");

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
    return "Features:\n" + Names(kFeatures).List(kHelpWidth) + "\nProperties:\n" + Names(kProperties).List(kHelpWidth) +
           "\n";
}

// Without such a constant, says so. @return the constant, or NULL.
static const Name* FindOrSay(const Options& anOptions, const char* aKind, Names aNames, const std::string& aName)
{
    const Name* theName = aNames.Find(aName);
    if (!theName)
    {
        anOptions.BadUsage("no " + std::string(aKind) + " is called \"" + aName + "\"; known: " + aNames.List());
    }
    return theName;
}

static int SetFeature(const Options& anOptions, const char* aName, UPnPHook* aHook)
{
    const Name* theFeature = FindOrSay(anOptions, "feature", kFeatures, aName);
    if (!theFeature) { return kExit_Bad; }
    UPnPHook_SetSupportFeature(aHook, static_cast<int>(theFeature->mValue), 1);
    return kExit_Done;
}

static int SetProperty(const Options& anOptions, const char* aText, UPnPHook* aHook, bool* afIsSet)
{
    const char* theEqualSign = strchr(aText, '=');
    if (!theEqualSign) { return anOptions.BadUsage("--property " + std::string(aText) + " has no \"=\""); }
    const std::string theName(aText, theEqualSign);
    const Name* theProperty = FindOrSay(anOptions, "property", kProperties, theName);
    if (!theProperty) { return kExit_Bad; }
    if (afIsSet[theProperty->mValue]) { return anOptions.BadUsage("--property " + theName + " is given twice"); }
    afIsSet[theProperty->mValue] = true;
    UPnPHook_SetProperty(aHook, static_cast<int>(theProperty->mValue), theEqualSign + 1);
    return kExit_Done;
}

HookPtr NewHook(const Options& anOptions)
{
    HookPtr theHook(UPnPHook_New());
    bool fIsSet[kUPnPHookProperty_Count] = {};
    for (const char* theName : anOptions.GetAll("--feature"))
    {
        if (SetFeature(anOptions, theName, theHook.get()) != kExit_Done) { return nullptr; }
    }
    for (const char* theText : anOptions.GetAll("--property"))
    {
        if (SetProperty(anOptions, theText, theHook.get(), fIsSet) != kExit_Done) { return nullptr; }
    }
    return theHook;
}

const char* UserAgent(const Options& anOptions) { return anOptions.Get("--user-agent"); }
