#pragma once

#include <UPnP/Utilities/Export.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zo/CString.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoArray.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoPackedData.h>

/* A resource whose protocol info has this parameter is a subtitle; its extra info "subtitleLabel" and "subtitleType"
 * say what it is. */
#define kSubtitleMarker "ZOLT.COM_SUB"

/**
 * A view of the resources (res elements) of one content-directory object (UPnPConst.h), and the choice among them: the
 * resource that a renderer plays best, the thumbnail, the album art. Made from what UPnPDIDL_ParseElements gives out:
 *
 *     CDSEntryInfo theEntry(zoPackedData_NewData(theData));
 *     CDSResourceInfo theResources(theRes, theEntry.mPackedData);
 *     int theIndex = theResources.GetBestResourceIndex(theSinkList, &theConfidence, "", nullptr, 0);
 *
 * Resources are counted from 0 in document order. An absent value, a resource that is not there included, reads as ""
 * or 0. Texts are given out as copies. Only ReduceSize changes an object; the caller sees to it that nobody else uses
 * the object then. Clones are independent of each other.
 *
 * Arguments that the choosing operations have in common:
 * - A confidence goes out as one of kRendererPlayConfidence_*.
 * - A scheme order lists transports separated by commas, best first ("http-get,rtsp"); "*" and "" take any.
 * - Target addresses are the IPv4 addresses, in network byte order, of the devices that will fetch the resource: one
 *   whose host shares the first three, two or one octets with a target is nearer. May be NULL when the count is 0.
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

    /** @return the number of pairs of extra info; a name without a value counts as none. */
    uint16 GetExtraInfoCount(uint32 aResourceIndex);
    /**
     * Reads a pair of extra info, in the order in which pairs were stored.
     * @param anExtraInfoIndex  from 0; outside 0 to GetExtraInfoCount() - 1 both come out as "".
     * @param aName, aData out: the qualified name of the attribute ("pv:subtitleFileUri") and its value.
     */
    void GetExtraInfo(uint32 aResourceIndex, int anExtraInfoIndex, zoCString& aName, zoCString& aData);
    /** The name of a pair; "" as for GetExtraInfo. */
    zoCString GetExtraInfoName(uint32 aResourceIndex, int anExtraInfoIndex);
    /** The value of a pair; "" as for GetExtraInfo. */
    zoCString GetExtraInfoData(uint32 aResourceIndex, int anExtraInfoIndex);
    /** @return the value of the first pair of exactly that name; "" when there is none. */
    zoCString GetExtraInfoDataByName(uint32 aResourceIndex, const char* aName);

    /** @return the number of resources that are subtitles. */
    int GetSubtitleCount();
    /** @return whether the resource is a subtitle: its protocol info has kSubtitleMarker. */
    bool IsSubtitle(int aResourceIndex);
    /** @return the resource index of a subtitle, counted from 0 among the subtitles; -1 when there is none. */
    int GetResourceIndexForSubtitle(int aSubtitleIndex);
    /** @param aResourceIndex  a resource index, not a subtitle index. @return what to show the user ("English"). */
    zoCString GetSubtitleLabel(int aResourceIndex);
    /** As GetSubtitleLabel. @return the format ("srt"). */
    zoCString GetSubtitleType(int aResourceIndex);
    /** As GetSubtitleLabel. */
    zoCString GetSubtitleURI(int aResourceIndex);

    /** @return an independent copy, album art included, released with delete. */
    CDSResourceInfo* Clone() const;
    /**
     * Drops resources so that the record comes down towards a size; does nothing when it is no larger. Kept are, in
     * this order and whatever the size, all resources with the URI to keep and, if asked for, all thumbnails; then the
     * others in their order while the record is below the size, so that the last one may pass it. Resources have new
     * indices afterwards.
     * @param aTargetSize       bytes, as GetMemoryUsage counts.
     * @param afKeepThumbnails  whether to keep resources of the DLNA profiles JPEG_TN and PNG_TN.
     */
    void ReduceSize(size_t aTargetSize, const zoCString& anURIToKeep, bool afKeepThumbnails);
    /** @return the resource record's size in bytes, without the album art. */
    size_t GetMemoryUsage();

    /**
     * Chooses the resource that a renderer plays best: what matches its protocol infos most closely, then what has a
     * DLNA profile, then what is on an IPv4 host, then the nearest, then the best transport, then what is not
     * converted, then the first. A resource without protocol info is taken for what its URI looks like; thumbnails are
     * not considered.
     * @param aSinkProtocolInfoList  what the renderer plays; NULL when that isn't known: everything then matches.
     * @param aConfidence out, may be NULL: how likely the renderer plays it: Should (a profile of the renderer's), May
     *                    (a MIME type), ShouldNot (anything else), WillNot with -1.
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
     * @param aSinkProtocolInfo     protocol infos separated by commas; "" matches nothing: confidence at most
     * ShouldNot.
     * @param afSearchForThumbnail  whether thumbnails are considered, too.
     */
    int GetBestResourceIndexFromStr(const zoCString& aSinkProtocolInfo, int* aConfidence,
                                    const zoCString& aPreferredSchemeOrder, uint32* aTargetIPAddresses,
                                    uint32 aTargetIPCount, bool afSearchForThumbnail);
    /** The same for a resource record, which is only read. */
    static int GetBestResourceIndexFromStr(const zoCString& aSinkProtocolInfo, zoPackedData_t* aResourceInfo,
                                           int* aConfidence, const zoCString& aPreferredSchemeOrder,
                                           uint32* aTargetIPAddresses, uint32 aTargetIPCount,
                                           bool afSearchForThumbnail);

    /** @param aThumbnailType  a DLNA profile ("JPEG_TN"). @return the index of the best picture of that profile, or of
     *                         its MIME type, over HTTP; -1 when there is none, and for NULL. */
    int GetResourceIndexForThumbnail(const char* aThumbnailType, uint32* aTargetIPAddresses, uint32 aTargetIPCount);
    /**
     * Chooses the picture that stands for the object: album art of a listed profile, else a thumbnail resource of a
     * listed profile, else album art of the family (what stands before "_") of a listed profile or of no profile.
     * @param aPreferedProfileIDList  DLNA profiles separated by commas, best first; "" stands for "JPEG_TN,PNG_TN".
     * @param aProfileID out, may be NULL: the picture's profile, "" when it has none.
     * @return its URI; "" when there is none.
     */
    zoCString GetThumbnailURI(const zoCString& aPreferedProfileIDList, zoCString* aProfileID,
                              uint32* aTargetIPAddresses, uint32 aTargetIPCount);
    /**
     * Chooses among the album art only, by the first eight listed profiles, then by the family of one, then by the
     * host: an IPv4 address, and the nearer to all targets the better. What nothing speaks for is better than nothing:
     * the last URI, with the profile "". The arguments and the result are those of GetThumbnailURI.
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
    /** GetBestResourceIndex for sinks that are taken apart already.
     *  @param aSupportedProtocolSchemeList  the sinks' transports, separated by commas. */
    static int GetBestResourceIndexEx(zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                      const zoCString& aSupportedProtocolSchemeList, zoPackedData_t* aResourceInfo,
                                      int* aConfidence, const zoCString& aPreferredSchemeOrder,
                                      uint32* aTargetIPAddresses, uint32 aTargetIpCount, bool afSearchingThumbnail);

    zoArray_t* mAlbumArtURIArray; // owned texts: for each album art its URI and its DLNA profile or ""; may be NULL
};
