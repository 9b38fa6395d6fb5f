#pragma once

/* What each feature switches. A new feature takes a constant in UPnPHook.h and a row here. */

#include <UPnP/Utilities/UPnPHook.h>
#include <array>
#include <stddef.h>

namespace DeviceHook
{

/* What a feature does with its part name. */
enum FeatureUse
{
    kUse_None = 0,
    kUse_Service = 1, // the parts of service descriptions with that name are included while it is on
    kUse_Device = 2,  // likewise in device descriptions
    kUse_Event = 4,   // the event with that name is sent while it is on
    kUse_WhileOff = 8 // a negative switch: service parts are included while it is off
};

struct Feature
{
    int mID;
    int mUse;          // FeatureUse, added up
    const char* mName; // the end of its constant's name; the tool calls it so
    const char* mPartName;
};

/* By feature ID. */
inline constexpr Feature kFeatures[] = {
    { kUPnPHookFeature_Upload, kUse_Service, "Upload", ":upload" },
    { kUPnPHookFeature_TimeSeek, kUse_Service, "TimeSeek", ":timeseek" },
    { kUPnPHookFeature_Search, kUse_None, "Search", nullptr }, // ":search": see kUPnPHook_GetSupportSearch
    { kUPnPHookFeature_SortSpec, kUse_None, "SortSpec", nullptr },
    { kUPnPHookFeature_ByteSeek, kUse_Service, "ByteSeek", ":byteseek" },
    { kUPnPHookFeature_GetFeatureList, kUse_Service, "GetFeatureList", ":featurelist" },
    { kUPnPHookFeature_FreeFormQuery, kUse_Service, "FreeFormQuery", ":ffq" },
    { kUPnPHookFeature_SRS, kUse_Device, "SRS", ":srs" },
    { kUPnPHookFeature_SRSConflictResolution, kUse_None, "SRSConflictResolution", nullptr },
    { kUPnPHookFeature_MSRegistrar, kUse_Device, "MSRegistrar", ":msregistrar" },
    { kUPnPHookFeature_UseALLIP, kUse_None, "UseALLIP", nullptr },
    { kUPnPHookFeature_NoHTTPContentLength, kUse_WhileOff, "NoHTTPContentLength", nullptr },
    { kUPnPHookFeature_ForceStreamAtBitRate, kUse_None, "ForceStreamAtBitRate", nullptr },
    { kUPnPHookFeature_UpdateObject, kUse_Service, "UpdateObject", ":updateobject" },
    { kUPnPHookFeature_GroupServiceActive, kUse_Device, "GroupServiceActive", ":groupservice" },
    { kUPnPHookFeature_ContainerUpdateIDs, kUse_Service | kUse_Event, "ContainerUpdateIDs", ":containerupdateids" },
    { kUPnPHookFeature_UploadDTCPIP, kUse_None, "UploadDTCPIP", nullptr },
    { kUPnPHookFeature_SupportRVU, kUse_None, "SupportRVU", nullptr }, // has two part names: kRVUPartNames
    { kUPnPHookFeature_NoHTTPEXTHeader, kUse_WhileOff, "NoHTTPEXTHeader", nullptr },
    { kUPnPHookFeature_NoSetNextURI, kUse_Service | kUse_WhileOff, "NoSetNextURI", ":nexturi" },
    { kUPnPHookFeature_SRSExt, kUse_Device, "SRSExt", ":srsext" },
    { kUPnPHookFeature_HDLnk, kUse_Service | kUse_Event, "HDLnk", ":hdlnk" },
    { kUPnPHookFeature_JLabs, kUse_None, "JLabs", nullptr },
    { kUPnPHookFeature_EnergyManagement, kUse_Device, "EnergyManagement", ":energymanagement" },
    { kUPnPHookFeature_SetUILifeTime, kUse_Service, "SetUILifeTime", ":uilifetime" },
    { kUPnPHookFeature_BasicManagement, kUse_Service | kUse_Device, "BasicManagement", ":basicmanagement" },
    { kUPnPHookFeature_DLNABasicManagement, kUse_Service, "DLNABasicManagement", ":dlnabm" },
    { kUPnPHookFeature_ConfigurationManagement, kUse_Service | kUse_Device, "ConfigurationManagement",
      ":configurationmanagement" },
    { kUPnPHookFeature_X_ColorLight, kUse_Service | kUse_Device, "X_ColorLight", ":colorlight" },
    { kUPnPHookFeature_X_WhiteLight, kUse_Service | kUse_Device, "X_WhiteLight", ":whitelight" },
    { kUPnPHookFeature_Authentication, kUse_None, "Authentication", nullptr },
    { kUPnPHookFeature_FriendlyInfoUpdate, kUse_Service | kUse_Device, "FriendlyInfoUpdate", ":friendlyinfoupdate" },
    { kUPnPHookFeature_FriendlyInfoIconUpdate, kUse_Service | kUse_Event, "FriendlyInfoIconUpdate",
      ":friendlyinfoiconupdate" },
    { kUPnPHookFeature_DimmingRamp, kUse_Service | kUse_Event, "DimmingRamp", ":dimmingramp" },
    { kUPnPHookFeature_DimmingStep, kUse_Service | kUse_Event, "DimmingStep", ":dimmingstep" },
    { kUPnPHookFeature_X_AnimatedLight, kUse_Service | kUse_Device, "X_AnimatedLight", ":animatedlight" },
    { kUPnPHookFeature_UIListingUpdate, kUse_Service | kUse_Event, "UIListingUpdate", ":uilistingupdate" },
    { kUPnPHookFeature_CVP2Server, kUse_Service, "CVP2Server", ":cvp2server" },
    { kUPnPHookFeature_BCSControl, kUse_Service, "BCSControl", ":bcscontrol" },
    { kUPnPHookFeature_VideoAlbumArtURI, kUse_None, "VideoAlbumArtURI", nullptr },
};

constexpr bool HasRowForEachFeature()
{
    int theID = 0;
    for (const Feature& theFeature : kFeatures)
    {
        const bool fNeedsPartName = (theFeature.mUse & (kUse_Service | kUse_Device | kUse_Event)) != 0;
        if (theFeature.mID != theID++ || fNeedsPartName != (theFeature.mPartName != nullptr)) { return false; }
        // ContainsOneOf looks for names only at a ':'.
        if (fNeedsPartName && *theFeature.mPartName != ':') { return false; }
    }
    return theID == kUPnPHookFeature_Count;
}
static_assert(HasRowForEachFeature(),
              "a row for each feature, at its ID; a part name, beginning with ':', if it has a use");

template <typename Column>
constexpr auto ByFeatureID(Column aColumn)
{
    std::array<decltype(aColumn(kFeatures[0])), kUPnPHookFeature_Count> theColumn{};
    for (const Feature& theFeature : kFeatures)
        theColumn[static_cast<size_t>(theFeature.mID)] = aColumn(theFeature);
    return theColumn;
}

/* By feature ID. The library reads these columns, so that the rows are there at compile time only. */

constexpr auto PartNamesFor(FeatureUse aUse)
{
    return ByFeatureID([aUse](const Feature& aFeature) -> const char*
                       { return aFeature.mUse & aUse ? aFeature.mPartName : nullptr; });
}

inline constexpr auto kSimpleSupportedFeatureNames = PartNamesFor(kUse_Service); // NULL for none
inline constexpr auto kDevicePartNames = PartNamesFor(kUse_Device);
inline constexpr auto kEventNames = PartNamesFor(kUse_Event);
inline constexpr auto kInvertedSupportedFeature =
    ByFeatureID([](const Feature& aFeature) -> int { return (aFeature.mUse & kUse_WhileOff) != 0; });

/* The names of the parts that the feature SupportRVU switches. */
inline constexpr const char* kRVUPartNames[] = { ":rvu", ":pfc" };

/* A seek mode of AVTransport, and the feature that allows it. */
struct SeekMode
{
    const char* mName;
    int mFeatureID; // kAlwaysAllowed for none
};
inline constexpr int kAlwaysAllowed = -1;

/* In the order in which descriptions list them. */
inline constexpr SeekMode kSeekModes[] = {
    { "TRACK_NR", kAlwaysAllowed },
    { "ABS_TIME", kUPnPHookFeature_SupportRVU },
    { "FRAME", kUPnPHookFeature_SupportRVU },
    { "X_DLNA_REL_BYTE", kUPnPHookFeature_ByteSeek },
    { "REL_TIME", kUPnPHookFeature_TimeSeek },
};

inline bool IsAllowed(const SeekMode& aMode, UPnPHook* aUPnPHook)
{
    return aMode.mFeatureID == kAlwaysAllowed || UPnPHook_SupportFeature(aUPnPHook, aMode.mFeatureID) != 0;
}

/* The play mode that is allowed and listed without being asked for. */
inline constexpr char kNormalPlayMode[] = "NORMAL";

} // namespace DeviceHook
