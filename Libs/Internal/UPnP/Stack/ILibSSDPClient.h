#pragma once

/* The configuration of SSDP: how the stack finds devices and announces its own. */

#include <UPnP/Stack/Export.h>
#include <UPnP/Stack/ILibConfigBounds.h>
#include <zoOS/zoSocketPolicy.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

#define kKey_SSDP_Mask "Mask"
#define kKey_SSDP_Port "Port"
#define kKey_SSDP_TTL "TTL"
#define kKey_SSDP_SearchRequestCount "SearchRequestCount"
#define kKey_SSDP_ByeByeMessageCount "ByeByeMessageCount"
#define kKey_SSDP_NotifyCycleSeconds "NotifyCycleSeconds"
#define kKey_SSDP_MSEARCHInfoCacheDuration "MSEARCHInfoCacheDuration" /* not read */
#define kKey_SSDP_MSEARCHInfoAny "MSEARCHInfoAny"
#define kKey_SSDP_MaxDevices "MaxDevices"
#define kKey_SSDP_MSEARCHResponseMulti "MSEARCHResponseMulti"
#define kKey_SSDP_UDPSendDelay "UDPSendDelay"
#define kKey_SSDP_MSEARCHPortStrict "MSEARCHPortStrict"
#define kKey_SSDP_DeviceMX "DeviceMX"
#define kKey_SSDP_MX "MX"
#define kKey_SSDP_HandleMSEARCHAsNOTIFY "HandleMSEARCHAsNOTIFY"
#define kKey_SSDP_UserAgent "UserAgent"

/* The first part of a user agent. */
#define kSSDPStandardUserAgentString "UPnP/1.0"

enum
{
    kILibSSDP_Port = 1900, /* what a port of 0 stands for */
    kILibSSDP_TTL_Default = 4,
    kILibSSDP_TTL_Min = 1,
    kILibSSDP_TTL_Max = 100,
    kILibSSDP_SearchRequestCount_Default = 4,
    kILibSSDP_SearchRequestCount_Min = 1,
    kILibSSDP_SearchRequestCount_Max = 10,
    kILibSSDP_ByeByeMessageCount_Default = 2,
    kILibSSDP_ByeByeMessageCount_Min = 1,
    kILibSSDP_ByeByeMessageCount_Max = 10,
    kILibSSDP_NotifyCycleSeconds_Default = 1800,
    kILibSSDP_NotifyCycleSeconds_Min = 120,
    kILibSSDP_NotifyCycleSeconds_Max = 24 * 3600,
    kILibSSDP_MSEARCHInfoCacheDuration_Default = 60,
    kILibSSDP_MSEARCHInfoCacheDuration_Min = 1,
    kILibSSDP_MSEARCHInfoCacheDuration_Max = 3600,
    kILibSSDP_UDPSendDelay_Default = 20,
    kILibSSDP_UDPSendDelay_Min = 10,
    kILibSSDP_UDPSendDelay_Max = 500,
    kILibSSDP_DeviceMX_Default = 10,
    kILibSSDP_DeviceMX_Min = 0,
    kILibSSDP_DeviceMX_Max = 10,
    kILibSSDP_MX_Default = 3,
    kILibSSDP_MX_Min = 1,
    kILibSSDP_MX_Max = 100
};

/* What SSDP is configured with. */
typedef struct ILibSSDPConfig
{
    zoSocketPolicy* mSocketPolicy; /* borrowed */
    uint32 mSSDPMask;              /* an IPv4 address in network byte order */
    uint16 mSSDPPort;
    uint8 mSSDPTTL;
    uint32 mSSDPSearchRequestCount;
    uint32 mSSDPByeByeMessageCount;
    uint32 mSSDPNotifyCycleSeconds;
    uint32 mMSEARCHInfoCacheDuration;
    int mfEnableMSEARCHInfoAny;
    uint32 mSSDPMaxDevices;
    int mfSSDPMSEARCHResponseMulti;
    uint32 mUDPSendDelay;
    int mfSSDPMSEARCHPortStrict;
    uint32 mSSDPDeviceMX;
    uint32 mSSDPMX;
    int mfHandleMSEARCHAsNOTIFY;
    char* mUserAgent; /* owned */
} ILibSSDPConfig;

/** Clamps the record's numbers other than 0 to their bounds, with a warning. NULL is ignored. */
UPNPSTACK_API void ILibSSDP_ValidateConfiguration(ILibSSDPConfig* aSSDPConfig);
/** @return the record's table of defaults and bounds. */
UPNPSTACK_API const ILibConfigBounds_t* ILibSSDP_GetBounds(void);

#ifdef __cplusplus
}
#endif
