#pragma once

/* The names and texts of DIDL-Lite, and the limits of what is written. */

#include <UPnP/Utilities/UPnPConst.h>
#include <stddef.h>
#include <string_view>
#include <zoOS/zoTypes.h>

namespace DIDL
{

inline constexpr char kMiniDIDL_Header[] = "<DIDL-Lite";
inline constexpr char kDIDL_Header[] = "<DIDL-Lite"
                                       " xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
                                       " xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\""
                                       " xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\""
                                       " xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\">";
inline constexpr char kDIDL_Footer[] = "</DIDL-Lite>";
inline constexpr char kDIDL_Quote[] = "\"";
inline constexpr char kDIDL_Item_Start_Part[] = "<item";
inline constexpr char kDIDL_Item_Start[] = "<item>";
inline constexpr char kDIDL_Item_End[] = "</item>";
inline constexpr char kDIDL_Container_Start_Part[] = "<container";
inline constexpr char kDIDL_Container_End[] = "</container>";

// ---- Elements ----

inline constexpr std::string_view kDIDL_Tag_Title = "dc:title";
inline constexpr char kDIDL_Tag_Title_Start[] = "<dc:title>";
inline constexpr char kDIDL_Tag_Title_End[] = "</dc:title>";
inline constexpr std::string_view kDIDL_Tag_Creator = "dc:creator";
inline constexpr char kDIDL_Tag_Creator_Start[] = "<dc:creator>";
inline constexpr char kDIDL_Tag_Creator_End[] = "</dc:creator>";
inline constexpr std::string_view kDIDL_Tag_Date = "dc:date";
inline constexpr char kDIDL_Tag_Date_Start[] = "<dc:date>";
inline constexpr char kDIDL_Tag_Date_End[] = "</dc:date>";
inline constexpr std::string_view kDIDL_Tag_Genre = "upnp:genre";
inline constexpr char kDIDL_Tag_Genre_Start[] = "<upnp:genre>";
inline constexpr char kDIDL_Tag_Genre_End[] = "</upnp:genre>";
inline constexpr std::string_view kDIDL_Tag_Album = "upnp:album";
inline constexpr char kDIDL_Tag_Album_Start[] = "<upnp:album>";
inline constexpr char kDIDL_Tag_Album_End[] = "</upnp:album>";
inline constexpr std::string_view kDIDL_Tag_Class = "upnp:class";
inline constexpr char kDIDL_Tag_Class_Start[] = "<upnp:class>";
inline constexpr char kDIDL_Tag_Class_End[] = "</upnp:class>";
inline constexpr std::string_view kDIDL_Tag_ChannelNr = "upnp:channelNr";
inline constexpr char kDIDL_Tag_ChannelNr_Start[] = "<upnp:channelNr>";
inline constexpr char kDIDL_Tag_ChannelNr_End[] = "</upnp:channelNr>";
inline constexpr std::string_view kDIDL_Tag_StorageMedium = "upnp:storageMedium";
inline constexpr char kDIDL_Tag_StorageMedium_Start[] = "<upnp:storageMedium>";
inline constexpr char kDIDL_Tag_StorageMedium_End[] = "</upnp:storageMedium>";
inline constexpr std::string_view kDIDL_Tag_CreateClass = "upnp:createClass";
inline constexpr char kDIDL_Tag_CreateClass_Start[] = "<upnp:createClass>";
inline constexpr char kDIDL_Tag_CreateClass_Derived_Start[] = "<upnp:createClass includeDerived=\"1\">";
inline constexpr char kDIDL_Tag_CreateClass_End[] = "</upnp:createClass>";

// Their start tags are written open: attributes follow.
inline constexpr std::string_view kDIDL_Tag_AlbumArtURI = "upnp:albumArtURI";
inline constexpr char kDIDL_Tag_AlbumArtURI_Start[] = "<upnp:albumArtURI";
inline constexpr char kDIDL_Tag_AlbumArtURI_End[] = "</upnp:albumArtURI>";
inline constexpr std::string_view kDIDL_Tag_BGMURI = "av:bgmURI";
inline constexpr char kDIDL_Tag_BGMURI_Start[] = "<av:bgmURI";
inline constexpr char kDIDL_Tag_BGMURI_End[] = "</av:bgmURI>";
inline constexpr std::string_view kDIDL_Res = "res";
inline constexpr char kDIDL_Res_Start[] = "<res";
inline constexpr char kDIDL_Res_End[] = "</res>";

// ---- Attributes of objects and elements ----

inline constexpr std::string_view kDIDL_Attribute_ID = "id";
inline constexpr std::string_view kDIDL_Attribute_ParentID = "parentID";
inline constexpr std::string_view kDIDL_Attribute_RefID = "refID";
inline constexpr std::string_view kDIDL_Attribute_ChildCount = "childCount";
inline constexpr std::string_view kDIDL_Attribute_DLNAManaged = "dlnaManaged";
inline constexpr std::string_view kDIDL_Attribute_Restricted = "restricted";
inline constexpr std::string_view kDIDL_Attribute_Searchable = "searchable";
inline constexpr std::string_view kDIDL_Attribute_IncludeDerived = "includeDerived";
inline constexpr std::string_view kDIDL_Attribute_DLNAProfileID = "profileID";
inline constexpr std::string_view kDIDL_Attribute_DLNAProtocolInfo = "protocolInfo";

// ---- Attributes of resources ----

inline constexpr std::string_view kDIDL_ResAttribute_ProtocolInfo = "protocolInfo";
inline constexpr char kDIDL_ResAttribute_ProtocolInfo_Start[] = " protocolInfo=\"";
inline constexpr std::string_view kDIDL_ResAttribute_Resolution = "resolution";
inline constexpr char kDIDL_ResAttribute_Resolution_Start[] = " resolution=\"";
inline constexpr std::string_view kDIDL_ResAttribute_Duration = "duration";
inline constexpr char kDIDL_ResAttribute_Duration_Start[] = " duration=\"";
inline constexpr std::string_view kDIDL_ResAttribute_BitRate = "bitrate";
inline constexpr char kDIDL_ResAttribute_BitRate_Start[] = " bitrate=\"";
inline constexpr std::string_view kDIDL_ResAttribute_ColorDepth = "colorDepth";
inline constexpr char kDIDL_ResAttribute_ColorDepth_Start[] = " colorDepth=\"";
inline constexpr std::string_view kDIDL_ResAttribute_Size = "size";
inline constexpr char kDIDL_ResAttribute_Size_Start[] = " size=\"";
inline constexpr std::string_view kDIDL_ResAttribute_AudioChannelCount = "nrAudioChannels";
inline constexpr char kDIDL_ResAttribute_AudioChannelCount_Start[] = " nrAudioChannels=\"";
inline constexpr std::string_view kDIDL_ResAttribute_ResumeUploadPrefix = "dlna";
inline constexpr std::string_view kDIDL_ResAttribute_ResumeUpload = "resumeUpload";
inline constexpr std::string_view kDIDL_ResAttribute_UploadedSizePrefix = "dlna";
inline constexpr std::string_view kDIDL_ResAttribute_UploadedSize = "uploadedSize";
inline constexpr std::string_view kDIDL_ResAttribute_TrackTotalPrefix = "dlna";
inline constexpr std::string_view kDIDL_ResAttribute_TrackTotal = "trackTotal";
inline constexpr std::string_view kDIDL_ResAttribute_LifetimePrefix = "dlna";
inline constexpr std::string_view kDIDL_ResAttribute_Lifetime = "lifetime";
inline constexpr std::string_view kDIDL_ResAttribute_IFOFileURIPrefix = "dlna";
inline constexpr std::string_view kDIDL_ResAttribute_IFOFileURI = "ifoFileURI";
inline constexpr char kDIDL_ResAttribute_IFOURI_Start[] = " dlna:ifoFileURI=\"";
inline constexpr std::string_view kDIDL_ResAttribute_ImportURI = "importURI";
inline constexpr std::string_view kDIDL_ResAttribute_DTCPUploadInfoPrefix = "dtcp";
inline constexpr std::string_view kDIDL_ResAttribute_DTCPUploadInfo = "uploadInfo";

// ---- Tables and limits ----

// The elements that are written from a text of the entry record, in this order.
inline constexpr struct
{
    uint16 mTag;
    std::string_view mStart;
    std::string_view mEnd;
} kDIDL_TextElements[] = {
    { kCDSEntryInfo_Title, kDIDL_Tag_Title_Start, kDIDL_Tag_Title_End },
    { kCDSEntryInfo_ItemClassName, kDIDL_Tag_Class_Start, kDIDL_Tag_Class_End },
    { kCDSEntryInfo_Creator, kDIDL_Tag_Creator_Start, kDIDL_Tag_Creator_End },
    { kCDSEntryInfo_Date, kDIDL_Tag_Date_Start, kDIDL_Tag_Date_End },
    { kCDSEntryInfo_Genre, kDIDL_Tag_Genre_Start, kDIDL_Tag_Genre_End },
    { kCDSEntryInfo_Album, kDIDL_Tag_Album_Start, kDIDL_Tag_Album_End },
};

inline constexpr size_t kMaxSize = 10240;                 // no value takes more input once it has this many bytes
inline constexpr size_t kLimitResourceBufferSize = 15360; // no further resource is written past this
inline constexpr size_t kFirstBufferSize = 1024;
inline constexpr uint32 kInlineResources = 32; // up to this many are noted without memory from the heap
inline constexpr int kMaxSize_Text = 255;
inline constexpr int kMaxSize_URI = 1024; // also IDs, protocol infos and extra elements

inline constexpr uint32 kBitRate_NotSet = 0xFFFFFFFF;

} // namespace DIDL
