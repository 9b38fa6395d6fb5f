#pragma once

/* The configuration of the stack's listening TCP sockets and of the connections that they accept. */

#include <UPnP/Stack/Export.h>
#include <UPnP/Stack/ILibAsyncSocket.h>
#include <UPnP/Stack/ILibConfigBounds.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

#define kKey_AsyncServerSocket_MaxConnections "MaxConnections"
#define kKey_AsyncServerSocket_PortNumber "PortNumber"
#define kKey_AsyncServerSocket_AllowChangePortNumber "AllowChangePortNumber"
#define kKey_AsyncServerSocket_BacklogSize "BacklogSize"

enum
{
    kILibAsyncSocket_MaxConnections_Default = 30,
    kILibAsyncSocket_MaxConnections_Min = 1,
    kILibAsyncSocket_MaxConnections_Max = 100,
    kILibAsyncSocket_PortNumber_Default = 0 /* the system chooses one */
};

/* What listening sockets are configured with. */
typedef struct ILibAsyncServerSocketConfig
{
    uint32 mMaxConnections;
    uint16 mPortNumber;
    uint16 mfAllowChangePortNumber;
    uint32 mBacklogSize;
    ILibAsyncSocketConfig mAsyncSocketConfig;
} ILibAsyncServerSocketConfig;

/** Clamps the record's own numbers other than 0 to their bounds, with a warning; the embedded record has its own
 *  validator. NULL is ignored. */
UPNPSTACK_API void ILibAsyncServerSocket_ValidateConfiguration(ILibAsyncServerSocketConfig* anAsyncServerSocketConfig);
/** @return the record's table of defaults and bounds. */
UPNPSTACK_API const ILibConfigBounds_t* ILibAsyncServerSocket_GetBounds(void);

#ifdef __cplusplus
}
#endif
