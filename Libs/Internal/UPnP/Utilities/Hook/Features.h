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
    const char* mName; // the end of its constant's name; the tool calls it so
    const char* mPartName;
    int mUse; // FeatureUse, added up
};

/* By feature ID. */
inline constexpr Feature kFeatures[] = {
    { kUPnPHookFeature_Upload, "Upload", ":upload", kUse_Service },
    { kUPnPHookFeature_TimeSeek, "TimeSeek", ":timeseek", kUse_Service },
    { kUPnPHookFeature_Search, "Search", nullptr, kUse_None }, // and the client decide about ":search"
    { kUPnPHookFeature_SortSpec, "SortSpec", nullptr, kUse_None },
    { kUPnPHookFeature_ByteSeek, "ByteSeek", ":byteseek", kUse_Service },
    { kUPnPHookFeature_GetFeatureList, "GetFeatureList", ":featurelist", kUse_Service },
    { kUPnPHookFeature_FreeFormQuery, "FreeFormQuery", ":ffq", kUse_Service },
    { kUPnPHookFeature_SRS, "SRS", ":srs", kUse_Device },
    { kUPnPHookFeature_SRSConflictResolution, "SRSConflictResolution", nullptr, kUse_None },
    { kUPnPHookFeature_MSRegistrar, "MSRegistrar", ":msregistrar", kUse_Device },
    { kUPnPHookFeature_UseALLIP, "UseALLIP", nullptr, kUse_None },
    { kUPnPHookFeature_NoHTTPContentLength, "NoHTTPContentLength", nullptr, kUse_WhileOff },
    { kUPnPHookFeature_ForceStreamAtBitRate, "ForceStreamAtBitRate", nullptr, kUse_None },
    { kUPnPHookFeature_UpdateObject, "UpdateObject", ":updateobject", kUse_Service },
    { kUPnPHookFeature_GroupServiceActive, "GroupServiceActive", ":groupservice", kUse_Device },
    { kUPnPHookFeature_ContainerUpdateIDs, "ContainerUpdateIDs", ":containerupdateids", kUse_Service | kUse_Event },
    { kUPnPHookFeature_UploadDTCPIP, "UploadDTCPIP", nullptr, kUse_None },
    { kUPnPHookFeature_SupportRVU, "SupportRVU", nullptr, kUse_None }, // has two part names: kRVUPartNames
    { kUPnPHookFeature_NoHTTPEXTHeader, "NoHTTPEXTHeader", nullptr, kUse_WhileOff },
    { kUPnPHookFeature_NoSetNextURI, "NoSetNextURI", ":nexturi", kUse_Service | kUse_WhileOff },
    { kUPnPHookFeature_SRSExt, "SRSExt", ":srsext", kUse_Device },
    { kUPnPHookFeature_HDLnk, "HDLnk", ":hdlnk", kUse_Service | kUse_Event },
    { kUPnPHookFeature_JLabs, "JLabs", nullptr, kUse_None },
    { kUPnPHookFeature_EnergyManagement, "EnergyManagement", ":energymanagement", kUse_Device },
    { kUPnPHookFeature_SetUILifeTime, "SetUILifeTime", ":uilifetime", kUse_Service },
    { kUPnPHookFeature_BasicManagement, "BasicManagement", ":basicmanagement", kUse_Service | kUse_Device },
    { kUPnPHookFeature_DLNABasicManagement, "DLNABasicManagement", ":dlnabm", kUse_Service },
    { kUPnPHookFeature_ConfigurationManagement, "ConfigurationManagement", ":configurationmanagement",
      kUse_Service | kUse_Device },
    { kUPnPHookFeature_X_ColorLight, "X_ColorLight", ":colorlight", kUse_Service | kUse_Device },
    { kUPnPHookFeature_X_WhiteLight, "X_WhiteLight", ":whitelight", kUse_Service | kUse_Device },
    { kUPnPHookFeature_Authentication, "Authentication", nullptr, kUse_None },
    { kUPnPHookFeature_FriendlyInfoUpdate, "FriendlyInfoUpdate", ":friendlyinfoupdate", kUse_Service | kUse_Device },
    { kUPnPHookFeature_FriendlyInfoIconUpdate, "FriendlyInfoIconUpdate", ":friendlyinfoiconupdate",
      kUse_Service | kUse_Event },
    { kUPnPHookFeature_DimmingRamp, "DimmingRamp", ":dimmingramp", kUse_Service | kUse_Event },
    { kUPnPHookFeature_DimmingStep, "DimmingStep", ":dimmingstep", kUse_Service | kUse_Event },
    { kUPnPHookFeature_X_AnimatedLight, "X_AnimatedLight", ":animatedlight", kUse_Service | kUse_Device },
    { kUPnPHookFeature_UIListingUpdate, "UIListingUpdate", ":uilistingupdate", kUse_Service | kUse_Event },
    { kUPnPHookFeature_CVP2Server, "CVP2Server", ":cvp2server", kUse_Service },
    { kUPnPHookFeature_BCSControl, "BCSControl", ":bcscontrol", kUse_Service },
    { kUPnPHookFeature_VideoAlbumArtURI, "VideoAlbumArtURI", nullptr, kUse_None },
};

constexpr bool HasRowForEachFeature()
{
    int theID = 0;
    for (const Feature& theFeature : kFeatures)
    {
        const bool fNeedsPartName = (theFeature.mUse & (kUse_Service | kUse_Device | kUse_Event)) != 0;
        if (theFeature.mID != theID++ || fNeedsPartName != (theFeature.mPartName != nullptr)) { return false; }
        if (fNeedsPartName && *theFeature.mPartName != ':')
        {
            return false;
        } // ContainsOneOf looks for names only there
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
