#pragma once

/* Constants that several families share, among them the media object record: one object of a content directory as two
 * packed-data records (zoPackedData.h).
 *
 * - The entry record has one entry, with the object's own metadata under the tags kCDSEntryInfo_*.
 * - The resource record has one entry per res element, in document order, under the tags kCDSResourceInfo_*.
 *
 * A text is stored with its NUL, its XML entities resolved unless said otherwise; a number in 2, 4 or 8 bytes of the
 * machine's byte order. The extra info follows the fixed tags, as pairs of texts: pair k has its name under tag
 * kCDS..._Count + 2k and its value under the next tag. Readers take a number of 0 as not set. */

/* Tags of the entry record, with their DIDL-Lite source. */
enum
{
    kCDSEntryInfo_Title = 0,               /* text: dc:title */
    kCDSEntryInfo_Creator = 1,             /* text: dc:creator */
    kCDSEntryInfo_Date = 2,                /* text: dc:date, "" when it is not a DLNA date; no bytes without one */
    kCDSEntryInfo_Genre = 3,               /* text: upnp:genre */
    kCDSEntryInfo_Album = 4,               /* text: upnp:album */
    kCDSEntryInfo_ParentID = 5,            /* text: parentID */
    kCDSEntryInfo_IsContainer = 6,         /* uint16: 1 for a container, 0 for an item */
    kCDSEntryInfo_UpdateID = 7,            /* uint32; 0 from the parser */
    kCDSEntryInfo_ChildCount = 8,          /* uint32: childCount, 0xFFFFFFFF without one */
    kCDSEntryInfo_ItemID = 9,              /* text: id */
    kCDSEntryInfo_ItemClassName = 10,      /* text: upnp:class */
    kCDSEntryInfo_ChannelNr = 11,          /* uint32: upnp:channelNr */
    kCDSEntryInfo_Flags = 12,              /* uint32: kDIDL_Flags_* */
    kCDSEntryInfo_DLNAManaged = 13,        /* uint32: dlna:dlnaManaged, kDLNAManaged_* */
    kCDSEntryInfo_CreateClass = 14,        /* text: upnp:createClass elements, joined by ";", ",1" after one whose
                                              includeDerived is true: "object.item.imageItem,1;object.container" */
    kCDSEntryInfo_RefID = 15,              /* text: refID */
    kCDSEntryInfo_AlbumArtURI = 16,        /* strings: for each upnp:albumArtURI its URI and dlna:profileID, or "" */
    kCDSEntryInfo_BGMURI = 17,             /* text: av:bgmURI (background music) */
    kCDSEntryInfo_BGMURIProtocolInfo = 18, /* text: av:protocolInfo of av:bgmURI, as written */
    kCDSEntryInfo_StorageMedium = 19,      /* text: upnp:storageMedium; no bytes without one */
    kCDSEntryInfo_XMLNS = 20,              /* text: namespace declarations name="value" joined by ",", a "," inside one
                                              written as "\,"; absent without any */
    kCDSEntryInfo_Count = 21               /* extra info from here on: other elements with a prefix, their qualified
                                              name and inner text */
};

/* Tags of the resource record, with the attributes of res that they come from. */
enum
{
    kCDSResourceInfo_URI = 0,                /* text of res */
    kCDSResourceInfo_ProtocolInfo = 1,       /* text: protocolInfo, normalised */
    kCDSResourceInfo_Resolution = 2,         /* text: resolution, as written */
    kCDSResourceInfo_Duration = 3,           /* uint32, seconds: duration; kUPnP_UnknownTime when it is not one */
    kCDSResourceInfo_BitRate = 4,            /* uint32, bits per second: 8 times bitrate; 0xFFFFFFFF is not set, too */
    kCDSResourceInfo_ColorDepth = 5,         /* uint32, bits: colorDepth */
    kCDSResourceInfo_Size = 6,               /* uint64, bytes: size */
    kCDSResourceInfo_ResumeUpload = 7,       /* uint32: dlna:resumeUpload */
    kCDSResourceInfo_IFOFileURI = 8,         /* text: dlna:ifoFileURI; absent without one */
    kCDSResourceInfo_ImportURI = 9,          /* text: importURI */
    kCDSResourceInfo_UploadedSize = 10,      /* uint64, bytes: dlna:uploadedSize */
    kCDSResourceInfo_AudioChannelCount = 11, /* uint32: nrAudioChannels */
    kCDSResourceInfo_TrackTotal = 12,        /* uint32: dlna:trackTotal; absent when 0 */
    kCDSResourceInfo_LifeTime = 13,          /* uint32, seconds, 5 to 15: dlna:lifetime; absent without one */
    kCDSResourceInfo_DTCPUploadInfo = 14,    /* text: dtcp:uploadInfo */
    kCDSResourceInfo_Count = 15              /* extra info from here on: other attributes, their qualified name and
                                                value as written */
};

/* Bits of kCDSEntryInfo_Flags. */
enum
{
    kDIDL_Flags_Restricted = 1,
    kDIDL_Flags_Searchable = 2
};

/* Bits of kCDSEntryInfo_DLNAManaged: what the server lets a control point do with the object. */
enum
{
    kDLNAManaged_None = 0,
    kDLNAManaged_UploadContent = 0x0001,
    kDLNAManaged_CreateChildContainer = 0x0002,
    kDLNAManaged_DestroyItem = 0x0004,
    kDLNAManaged_UploadWithDestroy = 0x0008,
    kDLNAManaged_ChangeMetaData = 0x0010
};

/* Bits of DTCP upload information where it is a number. Macros, since an enum of C has no room for the first. */
#define kDTCPUploadInfo_None 0u
#define kDTCPUploadInfo_Movable 0x80000000u
#define kDTCPUploadInfo_V1SE104 0x40000000u
#define kDTCPUploadInfo_CMI 0x20000000u

/* How likely it is that a renderer plays the chosen resource. */
enum
{
    kRendererPlayConfidence_WillNot = 0,
    kRendererPlayConfidence_ShouldNot = 1,
    kRendererPlayConfidence_May = 2,
    kRendererPlayConfidence_Should = 3
};
