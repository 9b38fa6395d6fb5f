#pragma once

/* For control points: resource URIs under parental control. Such a URI has an empty query argument "lock"
 * (http://server/film.mp4?lock=, also without the "=") and is opened with the Base64 text of the MD5 digest of its
 * path, as it is written in the URI, followed by the user's code. The digest shows that the code is known without
 * carrying it. Keeps no state; any thread may call. */

#include <UPnP/Utilities/Export.h>

#ifdef __cplusplus
#include <zo/CString.h>

extern "C" {
#endif

/** @return 1 if the URI has an empty argument "lock"; "?lock" without "=" is empty; 0 for an invalid URI and for NULL.
 */
UPNPUTILITIES_API int UPnPCPUtility_IsURIParentalLocked(const char* anURI);
/**
 * Replaces the arguments "lock" of a URI, empty or not, with one that holds the digest for a code. A wrong code is not
 * noticed here: it gives another digest, which the server refuses.
 * @param anURI, aPinCode  NULL counts as "".
 * @return the URI with that single "lock", escaped; a copy of anURI when it has no "lock" or is invalid. A new text,
 *         released with free.
 */
UPNPUTILITIES_API char* UPnPCPUtility_FetchURIUnlocked(const char* anURI, const char* aPinCode);

#ifdef __cplusplus
} /* extern "C" */

/** The same for strings. */
class UPNPUTILITIES_API UPnPCPUtility
{
public:
    /** @return UPnPCPUtility_IsURIParentalLocked. */
    static bool IsURIParentalLocked(const zoCString& anURI);
    /** @return UPnPCPUtility_FetchURIUnlocked. */
    static zoCString GetURIUnlocked(const zoCString& anURI, const zoCString& aPinCode);
};
#endif
