#pragma once

/* URIs of RFC 3986. Components are held as they are written (escapes not decoded), so the text of an untouched URI is
 * the text that it was parsed from. A NULL URI has no components, and changing it does nothing. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoArray.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The components, NULL where the text has none (a query without bytes is ""); all owned by the URI. */
typedef struct zoURI
{
    char* mScheme;
    char* mHostName; /* with its brackets when it is an IPv6 address */
    uint16 mPort;    /* 0 when the text names none */
    char* mPath;     /* from its leading "/" on; never NULL, "" when the text has none */
    char* mQuery;    /* without the "?" */
    char* mFragment; /* without the "#" */
    char* mUserInfo;
    zoArray_t* mQueryArgs; /* always NULL: arguments are read from mQuery; here for the layout of the record */
} zoURI;

/**
 * Parses a URI or a relative reference. Bytes that are not allowed in a URI (blanks, non-ASCII text) are kept as they
 * are: devices send them.
 * @return a new URI, released with zoURI_Delete; NULL for NULL and for an invalid text: one whose port is not a
 *         number up to 65535, or whose host begins with a bracket that is not closed.
 */
ZOLTTOOLS_API zoURI* zoURI_NewFromEscapedStr(const char* aText);
/** Releases the URI; NULL is ignored. */
ZOLTTOOLS_API void zoURI_Delete(zoURI* aURI);

/** @return the URI's text, new, released with free (zoFree); "" for NULL. */
ZOLTTOOLS_API char* zoURI_GetStr(const zoURI* aURI);
/** Percent-encodes in each component the bytes that are not allowed there; valid escapes stay as they are. */
ZOLTTOOLS_API void zoURI_Escape(zoURI* aURI);
/** @return the host as an IPv4 address in network byte order; 0xFFFFFFFF when it is not one. */
ZOLTTOOLS_API uint32 zoURI_GetHostIP(const zoURI* aURI);
/** @param aText  aLength bytes, of which a NUL ends the text. @return what zoURI_GetHostIP returns for a URI of the
 * text, also 0xFFFFFFFF when it is invalid; takes no memory from the heap. */
ZOLTTOOLS_API uint32 zoURI_S_GetHostIP(const char* aText, size_t aLength);

/* Query arguments: name=value joined by "&". Names and values are decoded when they are compared and returned; "+" is a
 * plus sign; an argument without "=" has the value "". */

/** @return the value of the first argument of that name, new, released with free; NULL when there is none, and for
 *          a NULL URI. */
ZOLTTOOLS_API char* zoURI_GetQueryPart(zoURI* aURI, const char* aName);
/** Sets the argument: the first of that name is replaced in its place, further ones are removed, a new one is appended.
 *  Name and value are percent-encoded, all but letters, digits and "-._~". Every other argument stays as written. */
ZOLTTOOLS_API void zoURI_AddQueryPart(zoURI* aURI, const char* aName, const char* aValue);

/**
 * Resolves a reference against a base as RFC 3986, section 5.2, says (strict).
 * @return the absolute URI, a new text released with free; a copy of aReference when either is invalid. NULL counts as
 *         "".
 */
ZOLTTOOLS_API char* zoURI_S_Combine(const char* aBase, const char* aReference);

#ifdef __cplusplus
}
#endif
