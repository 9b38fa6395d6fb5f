#include "TestSupport.h"

#include <gtest/gtest.h>

namespace
{

const std::string kHeader = "<DIDL-Lite xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
                            " xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\""
                            " xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\""
                            " xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\">";
const char kInfo[] = "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3;DLNA.ORG_OP=01";
const uint32 kNoUploadInfo = 0xFFFFFFFF;

// An entry record of the title, the class and the create classes that are not "".
struct Requested
{
    Requested(const char* aTitle, const char* aClass, const char* aCreateClasses) : mRecord(zoPackedData_New(1))
    {
        zoPackedData_AddNewEntry(mRecord);
        if (*aTitle) { AddText(mRecord, kCDSEntryInfo_Title, aTitle); }
        if (*aClass) { AddText(mRecord, kCDSEntryInfo_ItemClassName, aClass); }
        if (*aCreateClasses) { AddText(mRecord, kCDSEntryInfo_CreateClass, aCreateClasses); }
    }
    ~Requested() { zoPackedData_Free(mRecord); }
    Requested(const Requested&) = delete;
    Requested& operator=(const Requested&) = delete;

    zoPackedData_t* mRecord;
};

std::string Container(const char* aCreateClasses)
{
    const std::string theStart =
        kHeader + "<container id=\"\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"00000003\">"
                  "<dc:title>My Photos</dc:title><upnp:class>object.container.album.photoAlbum</upnp:class>";
    const std::string theText = Taken(UPnPDIDL_GetForCreateContainerRequest(
        "12", "My Photos", 0x3, "object.container.album.photoAlbum", aCreateClasses));
    const std::string theEnd = "</container></DIDL-Lite>";
    if (theText.compare(0, theStart.size(), theStart) != 0) { return theText; }
    return theText.substr(theStart.size(), theText.size() - theStart.size() - theEnd.size());
}

std::string Item(const char* anInfo, zoFileOffset aLength, uint32 anUploadInfo)
{
    const std::string theStart = kHeader +
                                 "<item id=\"\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"00000000\">"
                                 "<dc:title>Song</dc:title><upnp:class>object.item.audioItem.musicTrack</upnp:class>";
    const std::string theText = Taken(UPnPDIDL_GetForCreateItemRequest(
        "12", "Song", 0, "object.item.audioItem.musicTrack", anInfo, aLength, anUploadInfo));
    return theText.compare(0, theStart.size(), theStart) == 0 ? theText.substr(theStart.size()) : theText;
}

} // namespace

TEST(UPnPDIDLCreateTest, ContainerRequestSplitsItsCreateClasses)
{
    const std::string kDerived = "<upnp:createClass includeDerived=\"1\">";
    const std::string kStart = "<upnp:createClass>";
    const std::string kEnd = "</upnp:createClass>";
    const struct
    {
        const char* mList;
        std::string mElements;
    } kCases[] = {
        { "object.item.imageItem.photo,1;object.container,0",
          kDerived + "object.item.imageItem.photo" + kEnd + kStart + "object.container" + kEnd },
        { ",1;a;;b,x;,0;1,", kStart + "a" + kEnd + kDerived + "b" + kEnd + kStart + "1," + kEnd },
        { "a&b", kStart + "a&b" + kEnd },
        { "", "" },
        { nullptr, "" },
    };
    for (const auto& theCase : kCases)
        EXPECT_EQ(theCase.mElements, Container(theCase.mList)) << (theCase.mList ? theCase.mList : "NULL");
    EXPECT_EQ(kHeader + "<container id=\"\" parentID=\"\" restricted=\"0\" dlna:dlnaManaged=\"FEDCBA98\">"
                        "</container></DIDL-Lite>",
              Taken(UPnPDIDL_GetForCreateContainerRequest(nullptr, nullptr, 0xFEDCBA98, nullptr, nullptr)));
}

TEST(UPnPDIDLCreateTest, ItemRequestDescribesTheContent)
{
    const std::string kInfoAttribute = std::string(" protocolInfo=\"") + kInfo + "\"";
    const struct
    {
        const char* mInfo;
        zoFileOffset mLength;
        uint32 mUploadInfo;
        std::string mAttributes;
    } kCases[] = {
        { kInfo, 3440000, kNoUploadInfo, kInfoAttribute + " dlna:resumeUpload=\"1\" size = \"3440000\"" },
        { "", 0, 0, " dlna:resumeUpload=\"1\" dtcp:uploadInfo=\"00000000\"" },
        { nullptr, -1, kDTCPUploadInfo_Movable, " dlna:resumeUpload=\"1\" size = \"0\" dtcp:uploadInfo=\"80000000\"" },
        { " http-get : * : audio/mpeg : * ", INT64_MAX, kNoUploadInfo,
          " protocolInfo=\"http-get:*:audio/mpeg:*\" dlna:resumeUpload=\"1\" size = \"9223372036854775807\"" },
    };
    for (const auto& theCase : kCases)
    {
        EXPECT_EQ("<res" + theCase.mAttributes + "></res></item></DIDL-Lite>",
                  Item(theCase.mInfo, theCase.mLength, theCase.mUploadInfo));
    }
}

TEST(UPnPDIDLCreateTest, ResponseTellsWhereToUpload)
{
    const Requested theSong("Song", "object.item.audioItem.musicTrack", "");
    zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(kInfo, strlen(kInfo), 0);
    const std::string kStart = kHeader +
                               "<item id=\"99\" parentID=\"12\" restricted=\"0\" dlna:dlnaManaged=\"00000004\">"
                               "<dc:title>Song</dc:title>"
                               "<upnp:class>object.item.audioItem.musicTrack</upnp:class>";
    EXPECT_EQ(
        kStart +
            "<res dlna:resumeUpload=\"1\" dlna:uploadedSize=\"0\" importUri=\"http://192.0.2.1/u\" protocolInfo=\"" +
            kInfo + "\" dtcp:uploadInfo=\"80000000\"/></item></DIDL-Lite>",
        Taken(UPnPDIDL_GetForCreateObjectResponse(theSong.mRecord, "http://192.0.2.1/u", nullptr, theInfo, "99", "12",
                                                  1, kDTCPUploadInfo_Movable)));
    EXPECT_EQ(
        kStart +
            "<res importUri=\"u?a&amp;b\" dlna:ifoFileURI=\"\" dlna:importIfoFileURI=\"i&lt;\"/></item></DIDL-Lite>",
        Taken(UPnPDIDL_GetForCreateObjectResponse(theSong.mRecord, "u?a&b", "i<", nullptr, "99", "12", 0,
                                                  kNoUploadInfo)));

    // A container has no resource, whatever else is given, and its create classes are one text.
    const Requested theAlbum("", "", "object.item,1;object.container&");
    EXPECT_EQ(
        kHeader + "<container id=\"\" parentID=\"\" restricted=\"0\" dlna:dlnaManaged=\"00000003\">"
                  "<upnp:createClass includeDerived=\"1\">object.item,1;object.container&amp;</upnp:createClass>"
                  "</container></DIDL-Lite>",
        Taken(UPnPDIDL_GetForCreateObjectResponse(theAlbum.mRecord, nullptr, "i", theInfo, nullptr, nullptr, 1, 0)));
    zoDLNAProtocolInfo_Delete(theInfo);
}
