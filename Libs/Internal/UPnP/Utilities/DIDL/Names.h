#pragma once

/* The texts of DIDL-Lite that are written, and their limits. */

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

inline constexpr char kDIDL_Tag_Title_Start[] = "<dc:title>";
inline constexpr char kDIDL_Tag_Title_End[] = "</dc:title>";
inline constexpr char kDIDL_Tag_Class_Start[] = "<upnp:class>";
inline constexpr char kDIDL_Tag_Class_End[] = "</upnp:class>";
inline constexpr char kDIDL_Tag_CreateClass_Start[] = "<upnp:createClass>";
inline constexpr char kDIDL_Tag_CreateClass_Derived_Start[] = "<upnp:createClass includeDerived=\"1\">";
inline constexpr char kDIDL_Tag_CreateClass_End[] = "</upnp:createClass>";

inline constexpr char kDIDL_Tag_ChannelNr_Start[] = "<upnp:channelNr>";
inline constexpr char kDIDL_Tag_ChannelNr_End[] = "</upnp:channelNr>";
inline constexpr char kDIDL_Tag_AlbumArtURI_Start[] = "<upnp:albumArtURI";
inline constexpr char kDIDL_Tag_AlbumArtURI_End[] = "</upnp:albumArtURI>";
inline constexpr char kDIDL_Tag_BGMURI_Start[] = "<av:bgmURI";
inline constexpr char kDIDL_Tag_BGMURI_End[] = "</av:bgmURI>";

inline constexpr char kDIDL_Res_Start[] = "<res";
inline constexpr char kDIDL_Res_End[] = "</res>";
inline constexpr char kDIDL_ResAttribute_ProtocolInfo_Start[] = " protocolInfo=\"";
inline constexpr char kDIDL_ResAttribute_BitRate_Start[] = " bitrate=\"";
inline constexpr char kDIDL_ResAttribute_ColorDepth_Start[] = " colorDepth=\"";
inline constexpr char kDIDL_ResAttribute_Duration_Start[] = " duration=\"";
inline constexpr char kDIDL_ResAttribute_Resolution_Start[] = " resolution=\"";
inline constexpr char kDIDL_ResAttribute_Size_Start[] = " size=\"";
inline constexpr char kDIDL_ResAttribute_AudioChannelCount_Start[] = " nrAudioChannels=\"";
inline constexpr char kDIDL_ResAttribute_IFOURI_Start[] = " dlna:ifoFileURI=\"";

// The elements that are written from a text of the entry record, in this order.
inline constexpr struct
{
    uint16 mTag;
    std::string_view mStart;
    std::string_view mEnd;
} kDIDL_TextElements[] = {
    { kCDSEntryInfo_Title, kDIDL_Tag_Title_Start, kDIDL_Tag_Title_End },
    { kCDSEntryInfo_ItemClassName, kDIDL_Tag_Class_Start, kDIDL_Tag_Class_End },
    { kCDSEntryInfo_Creator, "<dc:creator>", "</dc:creator>" },
    { kCDSEntryInfo_Date, "<dc:date>", "</dc:date>" },
    { kCDSEntryInfo_Genre, "<upnp:genre>", "</upnp:genre>" },
    { kCDSEntryInfo_Album, "<upnp:album>", "</upnp:album>" },
};

inline constexpr size_t kMaxSize = 10240;                 // no value takes more input once it has this many bytes
inline constexpr size_t kLimitResourceBufferSize = 15360; // no further resource is written past this
inline constexpr size_t kFirstBufferSize = 1024;
inline constexpr uint32 kInlineResources = 32; // up to this many are noted without memory from the heap
inline constexpr int kMaxSize_Text = 255;
inline constexpr int kMaxSize_URI = 1024; // also IDs, protocol infos and extra elements

inline constexpr uint32 kBitRate_NotSet = 0xFFFFFFFF;

} // namespace DIDL
