#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPVersion.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// The resource of a song that a renderer plays, and the metadata that goes with it.
int main()
{
    char theText[] =
        "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
        "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\"><item id=\"1\" parentID=\"0\" restricted=\"1\">"
        "<dc:title>Salt &amp; Honey</dc:title><upnp:class>object.item.audioItem</upnp:class>"
        "<res protocolInfo=\"http-get:*:audio/flac:*\">http://10.0.0.2/1.flac</res>"
        "<res protocolInfo=\"http-get:*:audio/mpeg:DLNA.ORG_PN=MP3\">http://10.0.0.2/1.mp3</res></item></DIDL-Lite>";
    char* theEntryBlock;
    char* theResourceBlock;
    int theType;
    if (UPnPDIDL_ParseElements(theText, &theEntryBlock, &theResourceBlock, &theType) != kUPnPError_None) { return 1; }

    const CDSEntryInfo theEntry(zoPackedData_NewData(theEntryBlock));
    CDSResourceInfo theResources(theResourceBlock, theEntry.mPackedData);
    zoDLNAProtocolInfoList_t* theSinks = zoDLNAProtocolInfoList_New("http-get:*:audio/mpeg:DLNA.ORG_PN=MP3", 0);
    int theConfidence = 0;
    const int theChoice = theResources.GetBestResourceIndex(theSinks, &theConfidence, "*", nullptr, 0);
    zoDLNAProtocolInfoList_Delete(theSinks);
    if (theChoice < 0) { return 1; }

    const zoCString theURI = theResources.GetInfoAsCString(static_cast<uint32>(theChoice), kCDSResourceInfo_URI);
    char* theMetadata = UPnPDIDL_Get(theEntry.mPackedData, theResources.mPackedData, 1, 1, theURI.c_str());
    std::printf("%s: %s, %d, %s\n", kUPnPUtilities_Version, theURI.c_str(), theConfidence,
                std::strstr(theMetadata, "Salt &amp; Honey") ? "written" : "lost");
    std::free(theMetadata);
}
