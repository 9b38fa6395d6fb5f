#pragma once

/* What the library uses of the stack's web server. */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ILibWebServer_Session ILibWebServer_Session;

/** @param aServerUserAgent  the user agent of the client at the other end; the session keeps a copy. NULL: none known.
 *  @return a new session, released with ILibWebServerSession_Delete. */
UPNPSTACK_API ILibWebServer_Session* ILibWebServerSession_New(const char* aServerUserAgent);
/** Releases the session; NULL is ignored. */
UPNPSTACK_API void ILibWebServerSession_Delete(ILibWebServer_Session* aSession);
/** @return the user agent that the web server holds for the session, owned by the session; NULL when none is known, and
 *          for a NULL session. */
UPNPSTACK_API const char* ILibWebServerSession_GetServerUserAgent(const ILibWebServer_Session* aSession);

#ifdef __cplusplus
}
#endif
