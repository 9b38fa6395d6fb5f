#pragma once

#include <UPnP/Utilities/Export.h>
#include <zo/CString.h>

/**
 * For control points: resource URIs under parental control. Such a URI has an empty query argument "lock"
 * (http://server/film.mp4?lock=) and is opened with the Base64 text of the MD5 digest of its path, as it is written in
 * the URI, followed by the user's code. The digest shows that the code is known without carrying it.
 * Nothing is kept; any thread may call.
 */
class UPNPUTILITIES_API UPnPCPUtility
{
public:
    /** @return whether the URI has an empty argument "lock"; false for a text that is no URI. */
    static bool IsURIParentalLocked(const zoCString& anURI);
    /**
     * Gives a URI with an argument "lock", empty or not, the digest for a code in its place. A wrong code isn't noticed
     * here: it gives another digest, which the server refuses.
     * @return the URI with that single "lock", escaped; anURI as it is when it has no "lock" or is no URI.
     */
    static zoCString GetURIUnlocked(const zoCString& anURI, const zoCString& aPinCode);
};
