#pragma once

/* The device hook: switches and texts that decide how the stack presents the device and how it treats each client.
 * A hook is configured before the stack runs and only read afterwards; nothing is locked. The configuration records of
 * the web server and the control point carry a pointer to it. */

#include <UPnP/Stack/ILibWebServer.h>
#include <UPnP/Utilities/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Features: each a switch, off in a new hook. Many switch the parts of descriptions that carry their part name; see
 * UPnPHook_Hook. */
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

/* Properties: each a text, NULL in a new hook except for the user agent. */
enum
{
    kUPnPHookProperty_UserAgent = 0,               /* the device's product token */
    kUPnPHookProperty_PlaySpeedList = 1,           /* all play speeds, comma-separated */
    kUPnPHookProperty_TransportStatusList = 2,     /* further transport status values, comma-separated */
    kUPnPHookProperty_PlayModeList = 3,            /* further play modes, comma-separated */
    kUPnPHookProperty_DoNotChunkUserAgentList = 4, /* user-agent tokens of clients that get no chunked transfers */
    kUPnPHookProperty_Count = 5
};

/* A hook; use the operations below to read and write it. */
typedef struct UPnPHook_t
{
    int32 mfSupportFeature[kUPnPHookFeature_Count]; /* the hook's own switches; any value but 0 means on */
    char* mProperty[kUPnPHookProperty_Count];       /* owned; NULL when not set */
    struct UPnPHook_t* mParentHook;                 /* owned; NULL for none */
} UPnPHook;

/* A hook in which nothing is set. The library does not use it. */
extern UPNPUTILITIES_API struct UPnPHook_t UPnPHook_t;

/* Operations. An invalid feature or property ID is a programming error, and so is a NULL hook for every operation
 * except UPnPHook_Delete. They are reported as assertions; if the handler returns, the operation changes nothing and
 * returns 0 or NULL. */

/** @return a new hook without a parent, with every feature off and one property, the user agent "Zolt/1.1, UPnP/1.0";
 *          released with UPnPHook_Delete. */
UPNPUTILITIES_API UPnPHook* UPnPHook_New(void);
/** @param aParentHook  owned by the new hook, which has every feature that the parent has; NULL for none.
 *  @return a new hook without a feature or a property of its own; released with UPnPHook_Delete. */
UPNPUTILITIES_API UPnPHook* UPnPHook_New_WithParent(UPnPHook* aParentHook);
/** Releases the hook, its parent, the parent's parent and so on; NULL is ignored. */
UPNPUTILITIES_API void UPnPHook_Delete(UPnPHook* aUPnPHook);

/** Sets a property to a copy of aValue, which may be the value that it replaces; NULL clears the property. */
UPNPUTILITIES_API void UPnPHook_SetProperty(UPnPHook* aUPnPHook, int aPropertyID, const char* aValue);
/** @return the hook's own value, never a parent's, borrowed until the property is set again; NULL when it is not set.
 */
UPNPUTILITIES_API const char* UPnPHook_GetProperty(UPnPHook* aUPnPHook, int aPropertyID);
/** Sets the hook's own switch to afSupport, unchanged: any value except 0 means on. */
UPNPUTILITIES_API void UPnPHook_SetSupportFeature(UPnPHook* aUPnPHook, int aFeatureID, int afSupport);
/** @return 1 when a parent, at any distance, has the feature on; else the hook's own switch, as it was set. A hook
 *          can't switch off a feature of a parent. */
UPNPUTILITIES_API int UPnPHook_SupportFeature(UPnPHook* aUPnPHook, int aFeatureID);

/* The questions of the stack's modules, with the further arguments of each: inputs, then the places for the answers.
 * A client's user agent tells its kind: an Xbox has "Xbox/"; a Windows Media Player has "Windows" and one of "9x)",
 * "NT/5.1)", "Windows-Media-Player/". A NULL user agent is of neither kind. Texts are compared exactly. */
enum
{
    /* char* aUserAgent, char** anObjectID, char** aFilter (may be NULL): replaces the ID of a container that an Xbox or
     * a Windows Media Player asks for with the device's own. Both pointers receive new texts, released with free; a
     * NULL filter stays NULL. The texts before belong to the caller as before. */
    kUPnPHook_ConvertObjectID = 1,
    /* char* aUserAgent, int* afNeedToCheck: 0 for an Xbox and a Windows Media Player, else 1. */
    kUPnPHook_NeedToCheckSortCriteria = 2,
    /* char* aUserAgent, int* aFlag: 1 for an Xbox, else 0. */
    kUPnPHook_ByteRateIsBitRate = 3,
    /* char* aUserAgent, char* aMediaClassName, char** aNewMediaClassName: the class that the client expects instead, a
     * constant text; NULL when the class stays. */
    kUPnPHook_AdjustMediaClassName = 4,
    /* ILibWebServer_Session* aSession, char* aServiceName, char* aServiceDescription, size_t aServiceDescriptionLength,
     * char** anOptional, char** anOptionalName, size_t* anOptionalLength, char** aBuffer, size_t* aBufferLength: the
     * service description for the session's client; see below. */
    kUPnPHook_GetServiceDescription = 5,
    /* char* aDeviceManufacturerName (may be NULL), int* afSetResExtraInfoInMetadata: 0 for "Roku", ignoring case, else
     * 1. */
    kUPnPHook_SetResExtraInfoInMetadata = 6,
    /* char* aUserAgent, int* afSupportSearch: 1 with the feature Search, and for an Xbox or a Windows Media Player. */
    kUPnPHook_GetSupportSearch = 8,
    /* char* aUserAgent, char** aDescription: the state of the web link as XML, a new text, released with free: "ok"
     * with the identifier, "nok" without one and for an Xbox. */
    kUPnPHook_GetInfoDescription = 9,
    /* int* afSupportSortSpec: the feature SortSpec, as from UPnPHook_SupportFeature. */
    kUPnPHook_GetSupportSortSpec = 10,
    /* char* aUserAgent, unsigned int* aRequestedCount, char* anObjectID: limits the number of objects of one answer to
     * 200 for a Windows Media Player and to 100 for other clients; 0, which asks for no limit, becomes that number. An
     * Xbox gets what it asks for. The object ID is not used. */
    kUPnPHook_GetRequestedCount = 11,
    /* char* aUserAgent, char** anOptional, char** anOptionalName, size_t* anOptionalLength, char* aTemplate,
     * char** aBuffer: the device description; see below. The user agent is not used. */
    kUPnPHook_GetDeviceDescription = 12,
    /* char* aUserAgent, int* afEnableHTTPChunk: 0 when the first 1024 bytes of the user agent, more than any client
     * sends, have a token of the hook's own kUPnPHookProperty_DoNotChunkUserAgentList, else 1. */
    kUPnPHook_CheckHTTPChunk = 13,
    /* char* anEventName, int* afSupportEvent: 0 when the event has the part name of a feature that is off (":hdlnk"),
     * and for ":extra", else 1. The features with events: ContainerUpdateIDs, HDLnk, FriendlyInfoIconUpdate,
     * DimmingRamp, DimmingStep and UIListingUpdate. */
    kUPnPHook_GetSupportEvent = 14,
    /* char* aPlayMode, char* afOK: 1 for "NORMAL" and for the items of the hook's own kUPnPHookProperty_PlayModeList,
     * else 0. */
    kUPnPHook_CheckPlayMode = 15,
    /* char* aSeekMode, char* afOK: 1 for the seek modes that service descriptions list, else 0. */
    kUPnPHook_CheckSeekMode = 16,
    /* char* aUserAgent, int* afCDSProvideResSize: 0 for an Xbox and a Windows Media Player, else 1. */
    kUPnPHook_CDSProvideResSize = 17,
    kUPnPHook_Count = 18 /* IDs are below it */
};

/**
 * Answers a question. An unknown ID is logged as a warning, and nothing is written.
 *
 * A description is made from a template in which "%@" marks the place of each optional part. A service's template has a
 * length in bytes, a device's ends with a NUL. Three arrays describe the parts in the order of their markers:
 * anOptional holds their texts and ends with NULL, anOptionalLength their lengths in bytes, anOptionalName their names.
 * A name may hold several part names (":timeseek:byteseek"); the first rule that applies decides about the part:
 * - It is included when its name contains the part name of a feature that is on (":upload"), or ":nexturi" while the
 *   feature NoSetNextURI is off. In a service description ":search" follows kUPnPHook_GetSupportSearch, and the feature
 *   SupportRVU has the part names ":rvu" and ":pfc".
 * - In a service description, an allowedValueList replaces the parts named ":seekmodelist", ":playspeedlist",
 *   ":transportstatuslist" and ":playmodelist". It lists what the hook's features and own properties allow; a part
 *   whose list is empty is dropped.
 * - It is dropped.
 * Values are written as they are, not escaped.
 *
 * The result is a new text, NUL-terminated and released with free. A template whose markers are more or fewer than the
 * parts gives NULL and the length 0, after an assertion; one that does not end with ">" gives the text, after an
 * assertion. A template must not end with a line feed, which editors add. The cost is linear in template, parts and
 * properties, and in the result, in which one list may replace several parts.
 */
UPNPUTILITIES_API void UPnPHook_Hook(UPnPHook* aUPnPHook, int aHookID, ...);

#ifdef __cplusplus
}
#endif
