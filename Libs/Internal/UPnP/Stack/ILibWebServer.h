#pragma once

/* What the library uses of the stack's web server: its sessions and its configuration. */

#include <UPnP/Stack/Export.h>
#include <UPnP/Stack/ILibAsyncServerSocket.h>
#include <UPnP/Stack/ILibConfigBounds.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

struct packetheader;
/* See UPnPHook.h. */
typedef struct UPnPHook_t UPnPHook;
/* A client's connection to the web server. */
typedef struct ILibWebServer_Session ILibWebServer_Session;

/** @param aServerUserAgent  the user agent of the client at the other end; the session keeps a copy. NULL: unknown.
 *  @return a new session, released with ILibWebServerSession_Delete. */
UPNPSTACK_API ILibWebServer_Session* ILibWebServerSession_New(const char* aServerUserAgent);
/** Releases the session; NULL is ignored. */
UPNPSTACK_API void ILibWebServerSession_Delete(ILibWebServer_Session* aSession);
/** @return the user agent of the session, owned by the session; NULL when it is unknown, and for a NULL session. */
UPNPSTACK_API const char* ILibWebServerSession_GetServerUserAgent(const ILibWebServer_Session* aSession);

/* Answers a request for a device's presentation page. */
typedef int (*ILibWebServer_OnPresentation)(ILibWebServer_Session* aSession, struct packetheader* aHeader,
                                            const char* aPath);

#define kKey_WebServer_SessionIdleTimeOut "SessionIdleTimeOut"
#define kKey_WebServer_UserAgent "UserAgent"
#define kKey_WebServer_SupportHTTPStalling "SupportHTTPStalling"
#define kKey_WebServer_HandleReject "HandleReject"
#define kKey_WebServer_SupportHTTP10KeepALive "SupportHTTP10KeepALive"
#define kKey_WebServer_DoNotChunk "DoNotChunk"

/* The first part of a user agent. */
#define kWebServerStandardUserAgentString "UPnP/1.0"

enum
{
    kILibWebServer_SessionIdleTimeOut_Default = 20,
    kILibWebServer_SessionIdleTimeOut_Min = 3,
    kILibWebServer_SessionIdleTimeOut_Max = 600
};

/* What the web server is configured with. */
typedef struct ILibWebServerConfig
{
    uint32 mSessionIdleTimeOut;
    UPnPHook* mUPnPHook;           /* borrowed */
    void* mUPnPPresentationModule; /* borrowed */
    ILibWebServer_OnPresentation mUPnPPresentationCallback;
    ILibAsyncServerSocketConfig mAsyncServerSocketConfig;
    const char* mUserAgent; /* owned */
    int mfSupportHTTPStalling;
    int mfHandleReject;
    int mfSupportHTTP10KeepALive;
    int mfDoNotChunk;
} ILibWebServerConfig;

/** Clamps the record's own numbers other than 0 to their bounds, with a warning; the embedded record has its own
 *  validator. NULL is ignored. */
UPNPSTACK_API void ILibWebServer_ValidateConfiguration(ILibWebServerConfig* aWebServerConfig);
/** @return the record's table of defaults and bounds. */
UPNPSTACK_API const ILibConfigBounds_t* ILibWebServer_GetBounds(void);

#ifdef __cplusplus
}
#endif
