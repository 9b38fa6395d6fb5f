#pragma once

/* The configuration of the stack's TCP connections. */

#include <UPnP/Stack/Export.h>
#include <UPnP/Stack/ILibConfigBounds.h>
#include <zoOS/zoSocketPolicy.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

#define kKey_AsyncSocket_InitialBufferSize "InitialBufferSize"
#define kKey_AsyncSocket_MaxReadAHeadSize "MaxReadAHeadSize"
#define kKey_AsyncSocket_ConnectTimeOut "ConnectTimeOut"
#define kKey_AsyncSocket_DisconnectLingerDuration "DisconnectLingerDuration"
#define kKey_AsyncSocket_DestroyLingerDuration "DestroyLingerDuration"

enum
{
    kILibAsyncSocket_InitialBufferSize_Default = 256,
    kILibAsyncSocket_InitialBufferSize_Min = 256,
    kILibAsyncSocket_InitialBufferSize_Max = 256 * 1024,
    kILibAsyncSocket_MaxReadAHeadSize_Default = 8 * 1024,
    kILibAsyncSocket_MaxReadAHeadSize_Min = 0,
    kILibAsyncSocket_MaxReadAHeadSize_Max = 256 * 1024,
    kILibAsyncSocket_ConnectTimeOut_Default = 10,
    kILibAsyncSocket_ConnectTimeOut_Min = 1,
    kILibAsyncSocket_ConnectTimeOut_Max = 600,
    kILibAsyncSocket_DisconnectLinger_Default = 60,
    kILibAsyncSocket_DisconnectLinger_Min = 0,
    kILibAsyncSocket_DisconnectLinger_Max = 600,
    kILibAsyncSocket_DestroyLinger_Default = 5,
    kILibAsyncSocket_DestroyLinger_Min = 0,
    kILibAsyncSocket_DestroyLinger_Max = 600
};

/* What connections are configured with. */
typedef struct ILibAsyncSocketConfig
{
    size_t mInitialBufferSize;
    size_t mMaxReadAHeadSize;
    uint32 mConnectTimeOut;
    uint32 mDisconnectLingerDuration;
    uint32 mDestroyLingerDuration;
    zoSocketPolicy* mSocketPolicy; /* borrowed */
} ILibAsyncSocketConfig;

/** Clamps the record's numbers other than 0 to their bounds, with a warning. NULL is ignored. */
UPNPSTACK_API void ILibAsyncSocket_ValidateConfiguration(ILibAsyncSocketConfig* anAsyncSocketConfig);
/** @return the record's table of defaults and bounds. */
UPNPSTACK_API const ILibConfigBounds_t* ILibAsyncSocket_GetBounds(void);

#ifdef __cplusplus
}
#endif
