#pragma once

/* The device hook: the switches and texts by which a device decides how the stack presents it and how it treats a
 * particular client. A hook is made and configured before the stack runs, and only read afterwards; nothing is locked.
 * It is carried by pointer in the records of the web server and the control point. */

#include <UPnP/Utilities/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Features: each a switch, off in a new hook. A feature with a part name switches the parts of descriptions that carry
 * that name. */
enum
{
    kUPnPHookFeature_Upload = 0,
    kUPnPHookFeature_TimeSeek = 1,
    kUPnPHookFeature_Search = 2,
    kUPnPHookFeature_SortSpec = 3,
    kUPnPHookFeature_ByteSeek = 4,
    kUPnPHookFeature_GetFeatureList = 5,
    kUPnPHookFeature_FreeFormQuery = 6,
    kUPnPHookFeature_SRS = 7,
    kUPnPHookFeature_SRSConflictResolution = 8,
    kUPnPHookFeature_MSRegistrar = 9,
    kUPnPHookFeature_UseALLIP = 10,
    kUPnPHookFeature_NoHTTPContentLength = 11,
    kUPnPHookFeature_ForceStreamAtBitRate = 12,
    kUPnPHookFeature_UpdateObject = 13,
    kUPnPHookFeature_GroupServiceActive = 14,
    kUPnPHookFeature_ContainerUpdateIDs = 15,
    kUPnPHookFeature_UploadDTCPIP = 16,
    kUPnPHookFeature_SupportRVU = 17,
    kUPnPHookFeature_NoHTTPEXTHeader = 18,
    kUPnPHookFeature_NoSetNextURI = 19,
    kUPnPHookFeature_SRSExt = 20,
    kUPnPHookFeature_HDLnk = 21,
    kUPnPHookFeature_JLabs = 22,
    kUPnPHookFeature_EnergyManagement = 23,
    kUPnPHookFeature_SetUILifeTime = 24,
    kUPnPHookFeature_BasicManagement = 25,
    kUPnPHookFeature_DLNABasicManagement = 26,
    kUPnPHookFeature_ConfigurationManagement = 27,
    kUPnPHookFeature_X_ColorLight = 28,
    kUPnPHookFeature_X_WhiteLight = 29,
    kUPnPHookFeature_Authentication = 30,
    kUPnPHookFeature_FriendlyInfoUpdate = 31,
    kUPnPHookFeature_FriendlyInfoIconUpdate = 32,
    kUPnPHookFeature_DimmingRamp = 33,
    kUPnPHookFeature_DimmingStep = 34,
    kUPnPHookFeature_X_AnimatedLight = 35,
    kUPnPHookFeature_UIListingUpdate = 36,
    kUPnPHookFeature_CVP2Server = 37,
    kUPnPHookFeature_BCSControl = 38,
    kUPnPHookFeature_VideoAlbumArtURI = 39,
    kUPnPHookFeature_Count = 40
};

/* Properties: each a text, not set in a new hook but for the user agent. */
enum
{
    kUPnPHookProperty_UserAgent = 0,               /* the device's product token */
    kUPnPHookProperty_PlaySpeedList = 1,           /* all play speeds, comma-separated */
    kUPnPHookProperty_TransportStatusList = 2,     /* further transport status values, comma-separated */
    kUPnPHookProperty_PlayModeList = 3,            /* further play modes, comma-separated */
    kUPnPHookProperty_DoNotChunkUserAgentList = 4, /* user-agent tokens of clients that get no chunked transfers */
    kUPnPHookProperty_Count = 5
};

typedef struct UPnPHook_t
{
    int32 mfSupportFeature[kUPnPHookFeature_Count]; /* the hook's own switches; any value but 0 means on */
    char* mProperty[kUPnPHookProperty_Count];       /* owned; NULL when not set */
    struct UPnPHook_t* mParentHook;                 /* owned; NULL for none */
} UPnPHook;

#ifdef __cplusplus
}
#endif
