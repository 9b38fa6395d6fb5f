#pragma once

/* The configuration of a control point. */

#include <zoOS/zoSocketPolicy.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* See UPnPHook.h. */
typedef struct UPnPHook_t UPnPHook;

#define kKey_ControlPoint_UserAgent "UserAgent"
#define kKey_ControlPoint_DLNAVersion "DLNAVersion"
#define kKey_ControlPoint_DisableSSDP "DisableSSDP"
#define kKey_ControlPoint_EnableMSEARCHInfo "MSEARCHInfo"
#define kKey_ControlPoint_EnableNoSSDP "EnableNoSSDP"
#define kKey_ControlPoint_DetectDeviceOnly "DetectDeviceOnly"

/* The first part of a user agent; the DLNA version follows it. */
#define kControlPointStandardUserAgentString "UPnP/1.0"

/* What a control point is configured with. */
typedef struct UPnPControlPointConfig
{
    zoSocketPolicy* mSocketPolicy; /* borrowed */
    UPnPHook* mUPnPHook;           /* borrowed */
    char* mUserAgent;              /* owned */
    int mfDisableSSDP;
    int mfEnableMSEARCHInfo;
    int mfDisableNoSSDP;
    int mfDetectOnly;
} UPnPControlPointConfig;

#ifdef __cplusplus
}
#endif
