#pragma once

#include <UPnP/Utilities/Export.h>
#include <zo/CString.h>

/**
 * For control points: resource URIs under parental control. Such a URI has an empty query argument "lock"
 * (http://server/film.mp4?lock=, also without the "=") and is opened with the Base64 text of the MD5 digest of its
 * path, as it is written in the URI, followed by the user's code. The digest shows that the code is known without
 * carrying it. Keeps no state; any thread may call.
 */
class UPNPUTILITIES_API UPnPCPUtility
{
public:
    /** @return true if the URI has an empty argument "lock"; "?lock" without "=" is empty; false for an invalid URI. */
    static bool IsURIParentalLocked(const zoCString& anURI);
    /**
     * Replaces the arguments "lock" of a URI, empty or not, with one that holds the digest for a code. A wrong code is
     * not noticed here: it gives another digest, which the server refuses.
     * @return the URI with that single "lock", escaped; anURI unchanged when it has no "lock" or is invalid.
     */
    static zoCString GetURIUnlocked(const zoCString& anURI, const zoCString& aPinCode);
};
