#pragma once

#include <UPnP/Utilities/Export.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zo/CString.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoArray.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoPackedData.h>

/* A resource whose protocol info has this parameter is a subtitle; its extra info "subtitleLabel" and "subtitleType"
 * describe it. */
#define kSubtitleMarker "ZOLT.COM_SUB"

/**
 * A view of the resources (res elements) of one content-directory object (UPnPConst.h), and the choice among them: the
 * resource that suits a renderer best, the thumbnail, the album art. Made from what UPnPDIDL_ParseElements returns:
 *
 *     CDSEntryInfo theEntry(zoPackedData_NewData(theData));
 *     CDSResourceInfo theResources(theRes, theEntry.mPackedData);
 *     int theIndex = theResources.GetBestResourceIndex(theSinkList, &theConfidence, "", nullptr, 0);
 *
 * Resources are counted from 0 in document order. An absent value, also of an absent resource, reads as "" or 0. Texts
 * are returned as copies. Only ReduceSize changes an object; nobody else may use the object then. Clones are
 * independent of each other.
 *
 * Arguments that the choosing operations have in common:
 * - A confidence is one of kRendererPlayConfidence_*.
 * - A scheme order lists transport protocols separated by commas, best first: "http-get,rtsp". "*" and "" take any.
 * - Target addresses are the IPv4 addresses, in network byte order, of the devices that will fetch the resource: a host
 *   that shares the first three, two or one octets with a target is nearer. May be NULL when the count is 0.
 *
 * A choice takes time linear in the resources, and for each up to the length of a list of at most 2048 elements or the
 * number of targets.
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
     * logarithmic time when pairs are stored before the fields, as the parser does, else time linear in the resource's
     * tags.
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
     *          number of resources, further ones take constant time. */
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
     * already, with the transport protocol of its URI: the MIME type that the URI suggests is not compared. Thumbnails
     * are not considered.
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
     * Chooses the picture that is shown for the object: album art of a listed profile, else the resource that
     * GetResourceIndexForThumbnail finds for the first listed profile for which there is one, else album art whose
     * family is in the list: its profile's text up to the first "_", with a "_" after it; "_" when it has no profile.
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
