#pragma once

/* A list of protocol-info objects: what a renderer plays, or the resources to choose from. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A sequence of protocol infos. */
typedef struct zoDLNAProtocolInfoList_t zoDLNAProtocolInfoList_t;

/* How zoDLNAProtocolInfoList_Match compares; a bit mask. */
enum
{
    kzoDLNAProtocolInfoMatch_Default = 0x00,
    kzoDLNAProtocolInfoMatch_AnyProfile = 0x01,           /* a side without a profile matches any */
    kzoDLNAProtocolInfoMatch_NoMimeTypeCheck = 0x02,      /* the MIME type is not looked at */
    kzoDLNAProtocolInfoMatch_NoProfileCheck = 0x04,       /* the profile is not looked at */
    kzoDLNAProtocolInfoMatch_ProfileNotNULL = 0x08,       /* both sides must have a profile */
    kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck = 0x10 /* *, * / * and type / * in the list match too */
};

/* The scheme order that takes any transport as it comes. */
#define kzoPreferredSchemeOrder_Default "*"

/**
 * @param aText   protocol infos separated by commas (a comma after a backslash belongs to the element, without the
 *                backslash); empty ones are skipped. What follows the 2048th is ignored, since a resource may have to
 *                be compared with every element. NULL and "" give an empty list.
 * @param aFlags  0.
 * @return a new list, released with zoDLNAProtocolInfoList_Delete.
 */
ZOLTTOOLS_API zoDLNAProtocolInfoList_t* zoDLNAProtocolInfoList_New(const char* aText, int aFlags);
/** Releases the list and the objects in it; NULL is ignored. */
ZOLTTOOLS_API void zoDLNAProtocolInfoList_Delete(zoDLNAProtocolInfoList_t* aList);
/** @return the number of objects; 0 for NULL. */
ZOLTTOOLS_API int zoDLNAProtocolInfoList_GetCount(const zoDLNAProtocolInfoList_t* aList);
/** @return the object at a position, borrowed; NULL outside the list. */
ZOLTTOOLS_API zoDLNAProtocolInfo_t* zoDLNAProtocolInfoList_GetProtocolInfoAt(const zoDLNAProtocolInfoList_t* aList,
                                                                             int aPosition);
/** Inserts the object, which the list takes over, at a position from 0; -1 or past the end: appends it. Runs of
 *  insertions at neighbouring positions, and appending, are amortised O(1). */
ZOLTTOOLS_API void zoDLNAProtocolInfoList_Add(zoDLNAProtocolInfoList_t* aList, zoDLNAProtocolInfo_t* anInfo,
                                              int aPosition);
/** Removes the object at a position and releases it; nothing outside the list. Runs of removals at neighbouring
 *  positions are amortised O(1). */
ZOLTTOOLS_API void zoDLNAProtocolInfoList_Remove(zoDLNAProtocolInfoList_t* aList, int aPosition);

/**
 * Tells if an element of the list plays what anInfo describes. An empty list matches nothing. An element matches when
 * - protocol and network are equal, ignoring case, or "*" on either side;
 * - the MIME type is not looked at, or type and subtype are equal, ignoring case, and each parameter of the element's
 *   (audio/L16;rate=44100) is among anInfo's;
 * - the profile is not looked at, or equal (two absent ones are equal), or AnyProfile ignores it.
 *
 * The first match against a list of more than 16 elements, or with parameters of MIME types, makes an index, which the
 * list keeps until it changes. A match then looks only at the elements of anInfo's profile or MIME type, and of those
 * only at the ones of its transport (of its network, when its protocol is "*"), however alike others are. Several
 * threads may match against one list while nobody changes it.
 * @param aFlags  kzoDLNAProtocolInfoMatch_* bits.
 * @return 1 or 0.
 */
ZOLTTOOLS_API int zoDLNAProtocolInfoList_Match(const zoDLNAProtocolInfoList_t* aList,
                                               const zoDLNAProtocolInfo_t* anInfo, int aFlags);
/**
 * Tries several ways of comparing one after the other; what they have in common is done once.
 * @param aFlags  aCount masks of kzoDLNAProtocolInfoMatch_* bits.
 * @return the position of the first mask for which zoDLNAProtocolInfoList_Match returns 1; aCount when there is none.
 */
ZOLTTOOLS_API size_t zoDLNAProtocolInfoList_FindMatch(const zoDLNAProtocolInfoList_t* aList,
                                                      const zoDLNAProtocolInfo_t* anInfo, const int* aFlags,
                                                      size_t aCount);
/** @return what zoDLNAProtocolInfoList_Match returns for a list of anElement alone; 0 when it is NULL. */
ZOLTTOOLS_API int zoDLNAProtocolInfo_Match(zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo,
                                           int aFlags);
/** @return the transport protocols of the list, separated by commas, each once (ignoring case), in the list's order; a
 *          new text released with free. */
ZOLTTOOLS_API char* zoDLNAProtocolInfoList_GetSupportedProtocolList(const zoDLNAProtocolInfoList_t* aList);
/**
 * Ranks the elements by transport.
 * @param anOrder      transports separated by commas, best first: a protocol ("http-get"), its first part ("http"
 *                     covers "http-get"), or "*" for all; case is ignored.
 * @param aSupported   protocols separated by commas: only elements with one of them take part; "" or one that contains
 *                     "*": all do.
 * @return the position of the first element that the earliest item of anOrder covers; -1 when no element takes part.
 *         Draining a list (ask, remove, ask again with the same texts) takes time linear in its length; the texts are
 *         compared with those of the question before.
 */
ZOLTTOOLS_API int zoDLNAProtocolInfoList_GetBestIndexForScheme(zoDLNAProtocolInfoList_t* aList, const char* anOrder,
                                                               const char* aSupported);

/**
 * Orders an array of protocol infos as draining a list of them would: those that take part first, best first.
 * @param aSinkList   the list whose protocols are the supported ones when aSupported is NULL; may be NULL.
 * @param anOrder, aSupported  as for zoDLNAProtocolInfoList_GetBestIndexForScheme.
 * @param anInfos     aCount objects, which stay the caller's.
 * @return how many take part; what the array has after them is undefined.
 */
ZOLTTOOLS_API size_t zoDLNAProtocolInfoList_RankByScheme(const zoDLNAProtocolInfoList_t* aSinkList, const char* anOrder,
                                                         const char* aSupported, zoDLNAProtocolInfo_t** anInfos,
                                                         size_t aCount);

#ifdef __cplusplus
}
#endif
