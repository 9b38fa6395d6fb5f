#pragma once

/* The protocolInfo of a resource (UPnP ConnectionManager, DLNA guidelines): four fields,
 *
 *     protocol:network:MIME type:additional info        http-get:*:audio/mpeg:DLNA.ORG_PN=MP3;DLNA.ORG_OP=01
 *
 * the fourth made of parameters name=value separated by ";". Everything after the third ":" is the fourth field.
 * Operations take a NULL object: it has no fields. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One protocol info. Only its user data changes. */
typedef struct zoDLNAProtocolInfo_t zoDLNAProtocolInfo_t;

/**
 * @param aText   aLength bytes, any: missing fields stay missing. NULL with 0 counts as "".
 * @param aFlags  0.
 * @return a new object, released with zoDLNAProtocolInfo_Delete.
 */
ZOLTTOOLS_API zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_New(const char* aText, size_t aLength, int aFlags);
/**
 * Makes a protocol info of what a URI's text tells: the protocol from its scheme (http and https: "http-get"; rtsp:
 * "rtsp-rtp-udp"; any other: the scheme itself; none: "*"), network "*", the MIME type from the extension of its path
 * ("*" when that is unknown), additional info "*".
 * @return a new object, released with zoDLNAProtocolInfo_Delete.
 */
ZOLTTOOLS_API zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewFromURI(const char* aURI);
/**
 * As zoDLNAProtocolInfo_New, in memory of the caller's when that is enough, so that a protocol info that is read once
 * costs no memory from the heap.
 * @param aMemory  aSize bytes, aligned for pointers; 160 are enough for ordinary texts. They and the text must live as
 *                 long as the object.
 * @return the object, in aMemory or from the heap; either is released with zoDLNAProtocolInfo_Delete.
 */
ZOLTTOOLS_API zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewInPlace(void* aMemory, size_t aSize, const char* aText,
                                                                  size_t aLength);
/** Releases the object; NULL is ignored. */
ZOLTTOOLS_API void zoDLNAProtocolInfo_Delete(zoDLNAProtocolInfo_t* anInfo);

/** @return 1 when aLength bytes are their own text form and need not be parsed for it, also for NULL and ""; 0 when
 * they may not be. */
ZOLTTOOLS_API int zoDLNAProtocolInfo_IsNormal(const char* aText, size_t aLength);
/**
 * Tells what zoDLNAProtocolInfo_MatchPN and zoDLNAProtocolInfo_GetConversionIndicator do, from the text, without memory
 * from the heap.
 * @param aText  aLength bytes, as for zoDLNAProtocolInfo_New.
 * @param aProfile  the expected profile, exactly; NULL: any, or none.
 * @param aConversionIndicator  the expected one, 0 or 1; -1: either.
 * @return 1 when both are so, else 0.
 */
ZOLTTOOLS_API int zoDLNAProtocolInfo_MatchText(const char* aText, size_t aLength, const char* aProfile,
                                               int aConversionIndicator);
/** @return the object's text, new, released with free: what it was parsed from, without the blanks around fields and
 *          parameters. Nothing is added, unknown parameters stay, "" gives "". */
ZOLTTOOLS_API char* zoDLNAProtocolInfo_GetStr(const zoDLNAProtocolInfo_t* anInfo);
/** @return the DLNA profile (DLNA.ORG_PN), borrowed; NULL when there is none or it is empty. */
ZOLTTOOLS_API const char* zoDLNAProtocolInfo_GetProfile(const zoDLNAProtocolInfo_t* anInfo);
/** @return 1 when the profile is exactly aProfile, else 0; 0 when there is no profile or aProfile is NULL. */
ZOLTTOOLS_API int zoDLNAProtocolInfo_MatchPN(const zoDLNAProtocolInfo_t* anInfo, const char* aProfile);
/** @return 1 when the profile is one of thumbnails: JPEG_TN or PNG_TN. */
ZOLTTOOLS_API int zoDLNAProtocolInfo_IsThumbnail(const zoDLNAProtocolInfo_t* anInfo);
/** @return the conversion indicator (DLNA.ORG_CI): 1 when the content is converted, 0 when not or not said. */
ZOLTTOOLS_API int zoDLNAProtocolInfo_GetConversionIndicator(const zoDLNAProtocolInfo_t* anInfo);

/** Sets the one number that is carried with the object, 0 at start. */
ZOLTTOOLS_API void zoDLNAProtocolInfo_SetUserData(zoDLNAProtocolInfo_t* anInfo, int aUserData);
/** @return the number carried with the object; 0 for NULL. */
ZOLTTOOLS_API int zoDLNAProtocolInfo_GetUserData(const zoDLNAProtocolInfo_t* anInfo);

#ifdef __cplusplus
}
#endif
