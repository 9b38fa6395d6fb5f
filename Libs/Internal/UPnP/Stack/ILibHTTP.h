#pragma once

/* User agents: how HTTP clients name themselves (RFC 7231, section 5.5.3). A token is any part of a user agent:
 * "Player/" is in "Player/2.0.4552.0 UPnP/1.0". */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @param aUserAgent  NUL-terminated; NULL has no token.
 *  @param aToken      aTokenLength bytes; an empty one is in no user agent.
 *  @return 1 when the user agent contains the token, case-sensitive, else 0. */
UPNPSTACK_API int ILibUserAgentHas(const char* aUserAgent, const char* aToken, size_t aTokenLength);
/** Searches the first 1024 bytes of a user agent, more than any client sends, so that the cost is linear in the list.
 *  @param aTokenList  tokens separated by commas, blanks around them ignored, empty ones skipped; NULL has none.
 *  @return 1 when the user agent contains one of the tokens, else 0. */
UPNPSTACK_API int ILibUserAgentHasOneOfThem(const char* aUserAgent, const char* aTokenList);

#ifdef __cplusplus
}
#endif
