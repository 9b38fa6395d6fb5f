#pragma once

/* The device hook: the switches and texts by which a device decides how the stack presents it and how it treats a
 * particular client. A hook is made and configured before the stack runs, and only read afterwards; nothing is locked.
 * It is carried by pointer in the records of the web server and the control point. */

#include <UPnP/Stack/ILibWebServer.h>
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

/* A hook, to be read and written by its operations. */
typedef struct UPnPHook_t
{
    int32 mfSupportFeature[kUPnPHookFeature_Count]; /* the hook's own switches; any value but 0 means on */
    char* mProperty[kUPnPHookProperty_Count];       /* owned; NULL when not set */
    struct UPnPHook_t* mParentHook;                 /* owned; NULL for none */
} UPnPHook;

/* A hook in which nothing is set. */
extern UPNPUTILITIES_API struct UPnPHook_t UPnPHook_t;

/* A NULL hook, where it isn't said to be allowed, and the ID of a feature or a property that is none are programming
 * errors: they are reported as assertions, after which an operation that still runs changes nothing and answers 0 or
 * NULL. */

/** @return a new hook without a parent, every feature off, its user agent "Zolt/1.1, UPnP/1.0" and no other property;
 *          released with UPnPHook_Delete. */
UPNPUTILITIES_API UPnPHook* UPnPHook_New(void);
/** @param aParentHook  belongs to the new hook from now on; NULL for none.
 *  @return a new hook, every feature off by itself and no property set; released with UPnPHook_Delete. */
UPNPUTILITIES_API UPnPHook* UPnPHook_New_WithParent(UPnPHook* aParentHook);
/** Releases the hook and its parents; NULL is ignored. */
UPNPUTILITIES_API void UPnPHook_Delete(UPnPHook* aUPnPHook);

/** Sets a property to a copy of aValue, which may be the value that it replaces; NULL clears it. */
UPNPUTILITIES_API void UPnPHook_SetProperty(UPnPHook* aUPnPHook, int aPropertyID, const char* aValue);
/** @return the hook's own value, never a parent's, borrowed until it is set again; NULL when it is not set. */
UPNPUTILITIES_API const char* UPnPHook_GetProperty(UPnPHook* aUPnPHook, int aPropertyID);
/** Sets the hook's own switch to afSupport, which is kept as it is. */
UPNPUTILITIES_API void UPnPHook_SetSupportFeature(UPnPHook* aUPnPHook, int aFeatureID, int afSupport);
/** @return 1 when a parent, at any distance, has the feature on; else the hook's own switch, as it was set. A hook
 * can't switch off what a parent has on. */
UPNPUTILITIES_API int UPnPHook_SupportFeature(UPnPHook* aUPnPHook, int aFeatureID);

/* What the stack's modules ask. Each question has further arguments, told behind its ID: inputs first, then where the
 * answers go. Clients are told apart by their user agents: an Xbox has "Xbox/"; a Windows Media Player has "Windows"
 * and one of "9x)", "NT/5.1)", "Windows-Media-Player/". A NULL user agent is that of any other client. */
enum
{
    /* char* aUserAgent, char** anObjectID, char** aFilter (may be NULL): from the IDs that an Xbox or a Windows Media
     * Player asks for to the device's own. Both texts become new ones, released with free; a missing filter stays
     * missing. What they were before stays the caller's. */
    kUPnPHook_ConvertObjectID = 1,
    /* char* aUserAgent, int* afNeedToCheck: 0 for an Xbox and a Windows Media Player, else 1. */
    kUPnPHook_NeedToCheckSortCriteria = 2,
    /* char* aUserAgent, int* aFlag: 1 for an Xbox, else 0. */
    kUPnPHook_ByteRateIsBitRate = 3,
    /* char* aUserAgent, char* aMediaClassName, char** aNewMediaClassName: the class that the client expects instead, a
     * constant text; NULL keeps the class. */
    kUPnPHook_AdjustMediaClassName = 4,
    /* ILibWebServer_Session* aSession, char* aServiceName, char* aServiceDescription, size_t aServiceDescriptionLength,
     * char** anOptional, char** anOptionalName, size_t* anOptionalLength, char** aBuffer, size_t* aBufferLength: the
     * service description for the session's client; see below. */
    kUPnPHook_GetServiceDescription = 5,
    /* char* aDeviceManufacturerName (may be NULL), int* afSetResExtraInfoInMetadata: 0 for "Roku" in any case, else
     * 1. */
    kUPnPHook_SetResExtraInfoInMetadata = 6,
    /* char* aUserAgent, int* afSupportSearch: 1 with the feature Search, and for an Xbox and a Windows Media Player. */
    kUPnPHook_GetSupportSearch = 8,
    /* char* aUserAgent, char** aDescription: the state of the web link as XML, a new text released with free. */
    kUPnPHook_GetInfoDescription = 9,
    /* int* afSupportSortSpec: the feature SortSpec, as UPnPHook_SupportFeature tells it. */
    kUPnPHook_GetSupportSortSpec = 10,
    /* char* aUserAgent, unsigned int* aRequestedCount, char* anObjectID: brings the number of objects that one answer
     * may have, 0 for any, within what the client can take: at most 200 for a Windows Media Player, 100 for others; an
     * Xbox gets what it asks for. The object ID is not used. */
    kUPnPHook_GetRequestedCount = 11,
    /* char* aUserAgent, char** anOptional, char** anOptionalName, size_t* anOptionalLength, char* aTemplate,
     * char** aBuffer: the device description; see below. The user agent is not used. */
    kUPnPHook_GetDeviceDescription = 12,
    /* char* aUserAgent, int* afEnableHTTPChunk: 0 when the user agent has a token of the hook's own
     * kUPnPHookProperty_DoNotChunkUserAgentList, else 1. */
    kUPnPHook_CheckHTTPChunk = 13,
    /* char* anEventName, int* afSupportEvent: whether an event, named like the part of its feature (":hdlnk"), is
     * sent. */
    kUPnPHook_GetSupportEvent = 14,
    /* char* aPlayMode, char* afOK: 1 for "NORMAL" and for an item of the hook's own kUPnPHookProperty_PlayModeList. */
    kUPnPHook_CheckPlayMode = 15,
    /* char* aSeekMode, char* afOK: 1 for the seek modes that the service description lists. */
    kUPnPHook_CheckSeekMode = 16,
    /* char* aUserAgent, int* afCDSProvideResSize: 0 for an Xbox and a Windows Media Player, else 1. */
    kUPnPHook_CDSProvideResSize = 17,
    kUPnPHook_Count = 18 /* IDs are below it */
};

/**
 * Answers a question. An ID that is none is logged as a warning, and nothing is written.
 *
 * Descriptions are written from a template, a service's of a length in bytes, a device's NUL-terminated, in which "%@"
 * marks the place of each optional part in turn. anOptional holds the parts' texts, ended by NULL, anOptionalLength
 * their lengths in bytes, and anOptionalName their names. A part is included when its name contains the name of a
 * feature that is on (":upload"; a ":nexturi" part while NoSetNextURI is off), dropped otherwise. In a service
 * description the parts named ":search" follow the client as well, ":rvu" and ":pfc" the feature SupportRVU, and the
 * parts named ":playmodelist", ":transportstatuslist", ":seekmodelist" and ":playspeedlist" are replaced by an
 * allowedValueList made of the hook's own properties and features. The result is a new text, NUL-terminated and
 * released with free. A template that has not one marker for each part, or doesn't end with ">", is reported as an
 * assertion; after it the result is NULL and its length 0 where the markers don't fit the parts, else the text.
 */
UPNPUTILITIES_API void UPnPHook_Hook(UPnPHook* aUPnPHook, int aHookID, ...);

#ifdef __cplusplus
}
#endif
