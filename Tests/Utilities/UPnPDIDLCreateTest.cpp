#include "Support/Records.h"
#include "Support/Texts.h"
#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <gtest/gtest.h>

namespace
{

const std::string kHeader = "<DIDL-Lite xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
                            " xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\""
                            " xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\""
                            " xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\">";
const char kInfo[] = "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3;DLNA.ORG_OP=01";
const uint32 kNoUploadInfo = 0xFFFFFFFF;

} // namespace

TEST(UPnPDIDLCreateTest, ContainerRequestSplitsItsCreateClasses)
{
    const std::string kDerived = "<upnp:createClass includeDerived=\"1\">";
    const std::string kStart = "<upnp:createClass>";
    const std::string kEnd = "</upnp:createClass>";
    const std::pair<const char*, std::string> kCases[] = {
        { "object.item.imageItem.photo,1;object.container,0",
          kDerived + "object.item.imageItem.photo" + kEnd + kStart + "object.container" + kEnd },
        { ",1;a;;b,x;,0;1,", kStart + "a" + kEnd + kDerived + "b" + kEnd + kStart + "1," + kEnd },
        { "a&b", kStart + "a&b" + kEnd },
        { "", "" },
        { nullptr, "" },
    };
    for (const auto& [theList, theElements] : kCases)
    {
        EXPECT_EQ(kHeader +
                      "<container id=\"\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"00000003\">"
                      "<dc:title>My Photos</dc:title><upnp:class>album</upnp:class>" +
                      theElements + "</container></DIDL-Lite>",
                  Taken(UPnPDIDL_GetForCreateContainerRequest("12", "My Photos", 0x3, "album", theList)));
    }
    EXPECT_EQ(kHeader + "<container id=\"\" parentID=\"\" restricted=\"0\" dlna:dlnaManaged=\"FEDCBA98\">"
                        "</container></DIDL-Lite>",
              Taken(UPnPDIDL_GetForCreateContainerRequest(nullptr, nullptr, 0xFEDCBA98, nullptr, nullptr)));
}

TEST(UPnPDIDLCreateTest, ItemRequestDescribesTheContent)
{
    const std::string kInfoAttribute = std::string(" protocolInfo=\"") + kInfo + "\"";
    const std::tuple<const char*, zoFileOffset, uint32, std::string> kCases[] = {
        { kInfo, 3440000, kNoUploadInfo, kInfoAttribute + " dlna:resumeUpload=\"1\" size = \"3440000\"" },
        { "", 0, 0, " dlna:resumeUpload=\"1\" dtcp:uploadInfo=\"00000000\"" },
        { nullptr, -1, kDTCPUploadInfo_Movable, " dlna:resumeUpload=\"1\" size = \"0\" dtcp:uploadInfo=\"80000000\"" },
        { " http-get : * : audio/mpeg : * ", INT64_MAX, kNoUploadInfo,
          " protocolInfo=\"http-get:*:audio/mpeg:*\" dlna:resumeUpload=\"1\" size = \"9223372036854775807\"" },
    };
    for (const auto& [theInfo, theLength, theUploadInfo, theAttributes] : kCases)
    {
        EXPECT_EQ(kHeader +
                      "<item id=\"\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"00000000\">"
                      "<dc:title>Song</dc:title><upnp:class>music</upnp:class><res" +
                      theAttributes + "></res></item></DIDL-Lite>",
                  Taken(UPnPDIDL_GetForCreateItemRequest("12", "Song", 0, "music", theInfo, theLength, theUploadInfo)));
    }
}

TEST(UPnPDIDLCreateTest, ResponseTellsWhereToUpload)
{
    const PackedData theSong = NewEntry(), theAlbum = NewEntry();
    AddTexts(theSong, { { kCDSEntryInfo_Title, "Song" }, { kCDSEntryInfo_ItemClassName, "music" } });
    AddText(theAlbum, kCDSEntryInfo_CreateClass, "object.item,1;object.container&");
    zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(kInfo, strlen(kInfo), 0);
    const std::string kStart = kHeader +
                               "<item id=\"99\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"00000004\">"
                               "<dc:title>Song</dc:title><upnp:class>music</upnp:class>";
    EXPECT_EQ(
        kStart +
            "<res dlna:resumeUpload=\"1\" dlna:uploadedSize=\"0\" importUri=\"http://192.0.2.1/u\" protocolInfo=\"" +
            kInfo + "\" dtcp:uploadInfo=\"80000000\"/></item></DIDL-Lite>",
        Taken(UPnPDIDL_GetForCreateObjectResponse(theSong, "http://192.0.2.1/u", nullptr, theInfo, "99", "12", 1,
                                                  kDTCPUploadInfo_Movable)));
    EXPECT_EQ(
        kStart +
            "<res importUri=\"u?a&amp;b\" dlna:ifoFileURI=\"\" dlna:importIfoFileURI=\"i&lt;\"/></item></DIDL-Lite>",
        Taken(UPnPDIDL_GetForCreateObjectResponse(theSong, "u?a&b", "i<", nullptr, "99", "12", 0, kNoUploadInfo)));

    // A container has no resource, whatever else is given, and its create classes are one text.
    EXPECT_EQ(kHeader + "<container id=\"\" parentID=\"\" restricted=\"0\" dlna:dlnaManaged=\"00000003\">"
                        "<upnp:createClass includeDerived=\"1\">object.item,1;object.container&amp;</upnp:createClass>"
                        "</container></DIDL-Lite>",
              Taken(UPnPDIDL_GetForCreateObjectResponse(theAlbum, nullptr, "i", theInfo, nullptr, nullptr, 1, 0)));
    zoDLNAProtocolInfo_Delete(theInfo);
}
