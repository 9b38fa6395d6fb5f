#pragma once

/* The configuration of the stack's HTTP client. */

#include <UPnP/Stack/Export.h>
#include <UPnP/Stack/ILibAsyncSocket.h>
#include <UPnP/Stack/ILibConfigBounds.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

#define kKey_WebClient_SessionIdleTimeOut "SessionIdleTimeOut"
#define kKey_WebClient_MaxIdleSessions "MaxIdleSessions"
#define kKey_WebClient_SessionPoolSize "SessionPoolSize"
#define kKey_WebClient_ConnectRetryCount "ConnectRetryCount"
#define kKey_WebClient_AllowSingleConnection "AllowSingleConnection"
#define kKey_WebClient_DoNotChunk "DoNotChunk"
#define kKey_WebClient_HandleReject "HandleReject"

enum
{
    kILibWebClient_MaxIdleSessions_Default = 20,
    kILibWebClient_MaxIdleSessions_Min = 5,
    kILibWebClient_MaxIdleSessions_Max = 100,
    kILibWebClient_ConnectRetryCount_Default = 2,
    kILibWebClient_ConnectRetryCount_Min = 1,
    kILibWebClient_ConnectRetryCount_Max = 10,
    kILibWebClient_SessionPoolSize_Default = 30,
    kILibWebClient_SessionPoolSize_Min = 1,
    kILibWebClient_SessionPoolSize_Max = 100,
    kILibWebClient_SessionIdleTimeOut_Default = 20,
    kILibWebClient_SessionIdleTimeOut_Min = 3,
    kILibWebClient_SessionIdleTimeOut_Max = 600
};

/* What the HTTP client is configured with. */
typedef struct ILibWebClientConfig
{
    uint32 mSessionIdleTimeOut;
    uint32 mMaxIdleSessions;
    uint32 mSessionPoolSize;
    uint32 mConnectRetryCount;
    ILibAsyncSocketConfig mAsyncSocketConfig;
    int32 mfAllowSingleConnection;
    int32 mfDoNotChunk;
    int32 mfHandleReject;
    uint32 mSingleConnectionSessionIdleTimeOut;
} ILibWebClientConfig;

/** Clamps the record's own numbers other than 0 to their bounds, with a warning; the embedded record has its own
 *  validator. NULL is ignored. */
UPNPSTACK_API void ILibWebClient_ValidateConfiguration(ILibWebClientConfig* aWebClientConfig);
/** @return the record's table of defaults and bounds. */
UPNPSTACK_API const ILibConfigBounds_t* ILibWebClient_GetBounds(void);

#ifdef __cplusplus
}
#endif
