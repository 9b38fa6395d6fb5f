#pragma once

/* Views of the resources (res elements) of one content-directory object (UPnPConst.h), and the choice among them: the
 * resource that suits a renderer best, the thumbnail, the album art. For C as functions over the resource record; for
 * C++ also as a class that owns it. Resources are counted from 0 in document order. An absent value, also of an absent
 * resource, reads as "" or 0.
 *
 * Arguments that the choosing operations have in common:
 * - A confidence is one of kRendererPlayConfidence_*.
 * - A scheme order lists transport protocols separated by commas, best first: "http-get,rtsp". "*" and "" take any.
 * - Target addresses are the IPv4 addresses, in network byte order, of the devices that will fetch the resource: a host
 *   that shares the first three, two or one octets with a target is nearer. May be NULL when the count is 0.
 *
 * A choice takes time linear in the resources. For each it takes at most as long as it takes to go through the list,
 * the parameters of its MIME types included; a list made of a text has at most 2048 elements. Targets are sorted once.
 */

#include <UPnP/Utilities/Export.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoPackedData.h>

#ifdef __cplusplus
#include <zo/CString.h>
#include <zoltTools/zoArray.h>
#endif

/* A resource whose protocol info has this parameter is a subtitle; its extra info "subtitleLabel" and "subtitleType"
 * describe it. */
#define kSubtitleMarker "ZOLT.COM_SUB"

#ifdef __cplusplus
extern "C" {
#endif

/* Functions over a resource record, made by zoPackedData_NewData of what UPnPDIDL_ParseElements gives out; it stays the
 * caller's, and only CDSResourceInfo_ReduceSize changes it. NULL counts as a record without resources.
 *
 *     zoPackedData_t* theResources = zoPackedData_NewData(theRes);
 *     int theBest = CDSResourceInfo_ChooseResource(theResources, theSinkList, kCDSResourceChoice_Default, "*", NULL, 0,
 *                                                  &theConfidence);
 *     if (theBest >= 0) { puts(CDSResourceInfo_GetInfoAsStr(theResources, (uint32)theBest, kCDSResourceInfo_URI)); }
 *     zoPackedData_Free(theResources);
 *
 * A text that a function with Get in its name returns is borrowed: it is in the record, until that changes or is
 * released. It is "" when it has no NUL in the record, which can be so in a block that a stranger made; the class gives
 * that one, too. A text that a function with Fetch in its name gives out is new and released with free. Neither is ever
 * NULL. */

/* ---- Fields and extra info ---- */

/** @return the number of resources, subtitles and thumbnails among them. */
UPNPUTILITIES_API uint32 CDSResourceInfo_GetResourceCount(const zoPackedData_t* aResourceInfo);
/** @param aResourceInfoID  the kCDSResourceInfo_* tag of a text. */
UPNPUTILITIES_API const char* CDSResourceInfo_GetInfoAsStr(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                                           uint16 aResourceInfoID);
/** @param aResourceInfoID  the kCDSResourceInfo_* tag of a number. @return its lower 32 bits. */
UPNPUTILITIES_API uint32 CDSResourceInfo_GetInfoAsUInt32(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                                         uint16 aResourceInfoID);
/** @param aResourceInfoID  the kCDSResourceInfo_* tag of a number. */
UPNPUTILITIES_API uint64 CDSResourceInfo_GetInfoAsUInt64(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex,
                                                         uint16 aResourceInfoID);
/** @return the third field of the resource's protocol info, a new text; "" when that is "*". */
UPNPUTILITIES_API char* CDSResourceInfo_FetchMimeType(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex);
/** @return the fourth field of the resource's protocol info: what follows its third ":". */
UPNPUTILITIES_API const char* CDSResourceInfo_GetAdditionalInfo(const zoPackedData_t* aResourceInfo,
                                                                uint32 aResourceIndex);
/** @return the index of the first resource of exactly that URI; -1 when there is none, and for NULL. */
UPNPUTILITIES_API int CDSResourceInfo_GetResourceIndexOfURI(const zoPackedData_t* aResourceInfo, const char* anURI);

/** @return the number of pairs of extra info: half the number of its tags. Takes logarithmic time. */
UPNPUTILITIES_API uint16 CDSResourceInfo_GetExtraInfoCount(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex);
/**
 * @param anExtraInfoIndex  from 0, pairs being counted by their tags, which is the order of the attributes; outside 0
 * to CDSResourceInfo_GetExtraInfoCount() - 1 the text is "".
 * @return the qualified name of the pair's attribute ("pv:subtitleFileUri"). Takes no longer than the count and a
 *         look-up.
 */
UPNPUTILITIES_API const char* CDSResourceInfo_GetExtraInfoName(const zoPackedData_t* aResourceInfo,
                                                               uint32 aResourceIndex, int anExtraInfoIndex);
/** As CDSResourceInfo_GetExtraInfoName. @return the attribute's value. */
UPNPUTILITIES_API const char* CDSResourceInfo_GetExtraInfoData(const zoPackedData_t* aResourceInfo,
                                                               uint32 aResourceIndex, int anExtraInfoIndex);
/** @return the value of the first pair, counted by tags, of exactly that name; "" when there is none, and for NULL.
 *          Takes time linear in the number of pairs. */
UPNPUTILITIES_API const char* CDSResourceInfo_GetExtraInfoDataByName(const zoPackedData_t* aResourceInfo,
                                                                     uint32 aResourceIndex, const char* aName);

/**
 * Drops resources so that the record shrinks towards a size, as CDSResourceInfo::ReduceSize says below.
 * @param aResourceInfo     taken over; NULL gives NULL.
 * @param aTargetSize       bytes, as zoPackedData_GetMemoryUsage counts.
 * @param anURIToKeep       NULL for none.
 * @param afKeepThumbnails  1 to keep resources of the DLNA profiles JPEG_TN and PNG_TN.
 * @return the record, or a smaller one, released with zoPackedData_Free.
 */
UPNPUTILITIES_API zoPackedData_t* CDSResourceInfo_ReduceSize(zoPackedData_t* aResourceInfo, size_t aTargetSize,
                                                             const char* anURIToKeep, int afKeepThumbnails);

/* ---- Subtitles ---- */

/** @return the number of resources that are subtitles. The first question about subtitles takes time linear in the
 *          number of resources, further ones take constant time until something is added to the record. */
UPNPUTILITIES_API uint32 CDSResourceInfo_GetSubtitleCount(const zoPackedData_t* aResourceInfo);
/** @return 1 if the resource is a subtitle: its protocol info contains kSubtitleMarker; else 0. */
UPNPUTILITIES_API int CDSResourceInfo_IsSubtitle(const zoPackedData_t* aResourceInfo, uint32 aResourceIndex);
/** @return the resource index of a subtitle, counted from 0 among the subtitles; -1 when there is none. */
UPNPUTILITIES_API int CDSResourceInfo_GetResourceIndexForSubtitle(const zoPackedData_t* aResourceInfo,
                                                                  uint32 aSubtitleIndex);
/** @param aResourceIndex  a resource index, not a subtitle index. @return the text for the user ("English"). */
UPNPUTILITIES_API const char* CDSResourceInfo_GetSubtitleLabel(const zoPackedData_t* aResourceInfo,
                                                               uint32 aResourceIndex);
/** As CDSResourceInfo_GetSubtitleLabel. @return the format ("srt"). The URI is the resource's. */
UPNPUTILITIES_API const char* CDSResourceInfo_GetSubtitleType(const zoPackedData_t* aResourceInfo,
                                                              uint32 aResourceIndex);

/* ---- The choice ---- */

/* What a choice is to heed; a bit mask. */
enum
{
    kCDSResourceChoice_Default = 0x00,
    kCDSResourceChoice_PreferOriginals = 0x01, /* converted resources are left out while another may be played */
    kCDSResourceChoice_WithThumbnails = 0x02   /* thumbnails are considered, too */
};

/**
 * Chooses the resource that suits a renderer best, as CDSResourceInfo::GetBestResourceIndex says below. Why it is the
 * one, and why the others are not, CDSResourceReport.h tells.
 * @param aSinkProtocolInfoList  what the renderer plays; NULL when that is unknown: everything matches then.
 * @param aFlags                 kCDSResourceChoice_* bits. With PreferOriginals the choice is made among the resources
 *                               that are not converted; if the renderer may not play what that gives (its confidence is
 *                               below May), all are looked at, and a better confidence wins.
 * @param aPreferredSchemeOrder  transport protocols separated by commas, best first; "*", "" and NULL take any.
 * @param aTargetIPAddresses     IPv4 addresses, in network byte order, of the devices that will fetch the resource; may
 *                               be NULL.
 * @param aTargetIPCount         their number; ignored without addresses.
 * @param aConfidence out, may be NULL: one of kRendererPlayConfidence_*.
 * @return its index; -1 when there is none.
 */
UPNPUTILITIES_API int CDSResourceInfo_ChooseResource(const zoPackedData_t* aResourceInfo,
                                                     const zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, int aFlags,
                                                     const char* aPreferredSchemeOrder,
                                                     const uint32* aTargetIPAddresses, uint32 aTargetIPCount,
                                                     int* aConfidence);

/* ---- Pictures ---- */

/** @param aThumbnailType  a DLNA profile ("JPEG_TN"). @return the index of the best resource over HTTP that has this
 * profile, else of one without protocol info, else of one of its MIME type without a profile; -1 when there is none,
 * and for NULL. */
UPNPUTILITIES_API int CDSResourceInfo_GetResourceIndexForThumbnail(const zoPackedData_t* aResourceInfo,
                                                                   const char* aThumbnailType,
                                                                   const uint32* aTargetIPAddresses,
                                                                   uint32 aTargetIPCount);
/**
 * Chooses the picture that is shown for the object, as CDSResourceInfo::GetThumbnailURI says below.
 * @param anEntryInfo             the object's entry record, for its album art; NULL: no album art.
 * @param aPreferedProfileIDList  DLNA profiles separated by commas, best first; NULL and "" mean "JPEG_TN,PNG_TN".
 * @param aProfileID out, may be NULL: the picture's profile, a new text, "" when it has none.
 * @return its URI, a new text; "" when there is none.
 */
UPNPUTILITIES_API char* CDSResourceInfo_FetchThumbnailURI(const zoPackedData_t* aResourceInfo,
                                                          const zoPackedData_t* anEntryInfo,
                                                          const char* aPreferedProfileIDList,
                                                          const uint32* aTargetIPAddresses, uint32 aTargetIPCount,
                                                          char** aProfileID);
/** Chooses among the album art only, as CDSResourceInfo::GetAlbumArtURI says below. Arguments and result are those of
 *  CDSResourceInfo_FetchThumbnailURI. */
UPNPUTILITIES_API char* CDSResourceInfo_FetchAlbumArtURI(const zoPackedData_t* anEntryInfo,
                                                         const char* aPreferedProfileIDList,
                                                         const uint32* aTargetIPAddresses, uint32 aTargetIPCount,
                                                         char** aProfileID);

#ifdef __cplusplus
} /* extern "C" */

/**
 * A resource record and its view. Made from what UPnPDIDL_ParseElements returns:
 *
 *     CDSEntryInfo theEntry(zoPackedData_NewData(theData));
 *     CDSResourceInfo theResources(theRes, theEntry.mPackedData);
 *     int theIndex = theResources.GetBestResourceIndex(theSinkList, &theConfidence, "", nullptr, 0);
 *
 * Texts are returned as copies. Only ReduceSize changes an object; nobody else may use the object then. Clones are
 * independent of each other.
 */
class UPNPUTILITIES_API CDSResourceInfo
{
public:
    /** An object without resources and without album art. */
    CDSResourceInfo();
    /**
     * @param aResourceInfoData  the serialized resource record, which the object takes over. It is a programming error
     *                           (an assertion) when it is NULL; the object then has no resources.
     * @param aPackedData        the object's entry record, for its album art; stays the caller's. NULL: no album art.
     */
    CDSResourceInfo(char* aResourceInfoData, zoPackedData_t* aPackedData);
    /** The same with a resource record, which the object takes over. */
    CDSResourceInfo(zoPackedData_t* aResourceInfoData, zoPackedData_t* aPackedData);
    ~CDSResourceInfo();
    /** Memory as zoMemory.h gives it: a handler is told when there is none left. */
    static void* operator new(size_t aSize);
    /** Gives that memory back. */
    static void operator delete(void* anObject);
    CDSResourceInfo(const CDSResourceInfo&) = delete;
    CDSResourceInfo& operator=(const CDSResourceInfo&) = delete;

    /** @return the number of resources, subtitles and thumbnails among them. */
    uint32 GetResourceCount();
    /** @param aResourceInfoID  the kCDSResourceInfo_* tag of a text. */
    zoCString GetInfoAsCString(uint32 aResourceIndex, uint16 aResourceInfoID);
    /** @param aResourceInfoID  the kCDSResourceInfo_* tag of a number. @return its lower 32 bits. */
    unsigned long GetInfoAsULong(uint32 aResourceIndex, uint16 aResourceInfoID);
    /** @param aResourceInfoID  the kCDSResourceInfo_* tag of a number. */
    zouint64_t GetInfoAsUInt64(uint32 aResourceIndex, uint16 aResourceInfoID);

    /** @return the number of pairs of extra info: half the number of its tags. Takes logarithmic time. */
    uint16 GetExtraInfoCount(uint32 aResourceIndex);
    /**
     * Reads a pair of extra info, pairs being counted in the order of storage; what is absent of it is "". Takes
     * logarithmic time.
     * @param anExtraInfoIndex  from 0; outside 0 to GetExtraInfoCount() - 1 both are "".
     * @param aName, aData out: the qualified name of the attribute ("pv:subtitleFileUri") and its value.
     */
    void GetExtraInfo(uint32 aResourceIndex, int anExtraInfoIndex, zoCString& aName, zoCString& aData);
    /** The name of a pair, pairs being counted by their tags: in the order of storage, too, as the parser stores them.
     *  "" as for GetExtraInfo. Takes no longer than GetExtraInfoCount and a look-up. */
    zoCString GetExtraInfoName(uint32 aResourceIndex, int anExtraInfoIndex);
    /** The value of the pair that has the name of GetExtraInfoName. */
    zoCString GetExtraInfoData(uint32 aResourceIndex, int anExtraInfoIndex);
    /** @return the value of the first pair, counted by tags, of exactly that name; "" when there is none. Takes time
     *          linear in the number of pairs. */
    zoCString GetExtraInfoDataByName(uint32 aResourceIndex, const char* aName);

    /** @return the number of resources that are subtitles. The first question about subtitles takes time linear in the
     *          number of resources, further ones take constant time until something is added to the record. */
    int GetSubtitleCount();
    /** True if the resource is a subtitle: its protocol info contains kSubtitleMarker. */
    bool IsSubtitle(int aResourceIndex);
    /** @return the resource index of a subtitle, counted from 0 among the subtitles; -1 when there is none. */
    int GetResourceIndexForSubtitle(int aSubtitleIndex);
    /** @param aResourceIndex  a resource index, not a subtitle index. @return the text for the user ("English"). */
    zoCString GetSubtitleLabel(int aResourceIndex);
    /** As GetSubtitleLabel. @return the format ("srt"). */
    zoCString GetSubtitleType(int aResourceIndex);
    /** As GetSubtitleLabel. */
    zoCString GetSubtitleURI(int aResourceIndex);

    /** @return an independent copy, album art included, released with delete. */
    CDSResourceInfo* Clone() const;
    /**
     * Drops resources so that the record shrinks towards a size; does nothing when it is not larger. Keeps all
     * resources with the URI to keep and, if asked for, all thumbnails, whatever the size; then the others in their
     * order while the record is below the size, so that the last one may pass it. Resources have new indices
     * afterwards.
     * @param aTargetSize       bytes, as GetMemoryUsage counts.
     * @param afKeepThumbnails  true to keep resources of the DLNA profiles JPEG_TN and PNG_TN.
     */
    void ReduceSize(size_t aTargetSize, const zoCString& anURIToKeep, bool afKeepThumbnails);
    /** @return the resource record's size in bytes, without the album art. */
    size_t GetMemoryUsage();

    /**
     * Chooses the resource that suits a renderer best, among those whose transport protocol is in the renderer's list
     * and in the scheme order. Matching is tried in stages, each looser than the one before; the first stage in which a
     * resource matches decides, and gives the confidence:
     *
     *     Should     the DLNA profile is one of the renderer's
     *     May        the MIME type is, and no other profile is named; then also by a wild card of the renderer's
     *     ShouldNot  the MIME type is, whatever the profile; then whatever the MIME type
     *     WillNot    there is no resource: the result is -1
     *
     * Of several, one with a DLNA profile is taken (with Should only), then one on an IPv4 host, then the nearest, then
     * the best in the scheme order, then one that is not converted (not at the last stage, which takes them in document
     * order, and not without a list), then the first. A resource without protocol info matches at the first stage
     * already, with the transport protocol of its URI: the MIME type that the URI suggests is not compared. A resource
     * without URI is considered when it has a protocol info, so the URI of the result may be "". Thumbnails are not
     * considered.
     * @param aSinkProtocolInfoList  what the renderer plays. NULL when that is unknown: everything matches then, at the
     *                               first stage, so the confidence is Should.
     * @param aConfidence out, may be NULL: the confidence.
     * @return its index; -1 when there is none.
     */
    int GetBestResourceIndex(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, int* aConfidence,
                             const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses, uint32 aTargetIPCount);
    /** The same for a resource record, which is only read. */
    static int GetBestResourceIndex(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList, zoPackedData_t* aResourceInfo,
                                    int* aConfidence, const zoCString& aPreferredSchemeOrder,
                                    uint32* aTargetIPAddresses, uint32 aTargetIPCount);
    /**
     * As GetBestResourceIndex.
     * @param aSinkProtocolInfo     protocol infos separated by commas. "" matches nothing before the last stage, unless
     *                              a resource has no protocol info.
     * @param afSearchForThumbnail  true to consider thumbnails, too.
     */
    int GetBestResourceIndexFromStr(const zoCString& aSinkProtocolInfo, int* aConfidence,
                                    const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                    uint32 aTargetIPCount, bool afSearchForThumbnail);
    /** The same for a resource record, which is only read. */
    static int GetBestResourceIndexFromStr(const zoCString& aSinkProtocolInfo, zoPackedData_t* aResourceInfo,
                                           int* aConfidence, const zoCString& aPreferredSchemeOrder,
                                           uint32* aTargetIPAddresses, uint32 aTargetIPCount,
                                           bool afSearchForThumbnail);

    /** @param aThumbnailType  a DLNA profile ("JPEG_TN"). @return the index of the best resource over HTTP that has
     * this profile, else of one without protocol info, else of one of its MIME type without a profile; -1 when there is
     * none, and for NULL. */
    int GetResourceIndexForThumbnail(const char* aThumbnailType, uint32* aTargetIPAddresses, uint32 aTargetIPCount);
    /**
     * Chooses the picture that is shown for the object. Unless the list contains the profile of the album art, as a
     * part of its text, it is the resource that GetResourceIndexForThumbnail finds for the first listed profile for
     * which there is one. In all other cases it is the album art, if the list contains its family so: its profile's
     * text up to the first "_", with a "_" after it; "_" when it has no profile.
     * @param aPreferedProfileIDList  DLNA profiles separated by commas, best first; "" means "JPEG_TN,PNG_TN".
     * @param aProfileID out, may be NULL: the picture's profile, "" when it has none.
     * @return its URI; "" when there is none.
     */
    zoCString GetThumbnailURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                              uint32* aTargetIPAddresses, uint32 aTargetIPCount);
    /**
     * Chooses among the album art only, by the first eight listed profiles, then by the family of one, then by the
     * host: an IPv4 address, the nearer to all targets the better. If none has any of these, the last URI is returned,
     * with the profile "". Arguments and result are those of GetThumbnailURI.
     */
    zoCString GetAlbumArtURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID, uint32* aTargetIPAddresses,
                             uint32 aTargetIPCount);

    /** @return the third field of the resource's protocol info; "" when that is "*". */
    zoCString GetMimeTypeForResourceIndex(uint32 aResourceIndex);
    /** @return the fourth field of the resource's protocol info: what follows its third ":". */
    zoCString GetProtocolInfoForResourceIndex(uint32 aResourceIndex);
    /** @return the index of the first resource of exactly that URI; -1 when there is none. */
    int GetResourceIndexOfURI(const zoCString& anURI);

    zoPackedData_t* mPackedData; // owned

protected:
    /** Reads the album art from an object's entry record; NULL: there is none. */
    void InitUsingPackedData(zoPackedData_t* aPackedData);
    /** As GetBestResourceIndex.
     *  @param aSupportedProtocolSchemeList  the renderer's transport protocols, separated by commas; "" for any. */
    static int GetBestResourceIndexEx(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                      const zoCString& aSupportedProtocolSchemeList, zoPackedData_t* aResourceInfo,
                                      int* aConfidence, const zoCString& aPreferredSchemeOrder,
                                      uint32* aTargetIPAddresses, uint32 aTargetIpCount, bool afSearchingThumbnail);

    zoArray_t* mAlbumArtURIArray; // owned texts: for each album art its URI and its DLNA profile or ""; may be NULL
};
#endif
