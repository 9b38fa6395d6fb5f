#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <UPnP/Utilities/UPnPVersion.h>
#include <stdio.h>
#include <stdlib.h>

/* The title and the time of a song. */
int main(void)
{
    char theText[] =
        "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
        "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\"><item id=\"1\" parentID=\"0\" restricted=\"1\">"
        "<dc:title>Salt &amp; Honey</dc:title><upnp:class>object.item.audioItem</upnp:class>"
        "<res protocolInfo=\"http-get:*:audio/mpeg:*\" duration=\"0:03:35\">http://10.0.0.2/1.mp3</res></item></DIDL-Lite>";
    char* theEntryBlock;
    char* theResourceBlock;
    int theType;
    if (UPnPDIDL_ParseElements(theText, &theEntryBlock, &theResourceBlock, &theType) != kUPnPError_None) { return 1; }

    zoPackedData_t* theEntry = zoPackedData_NewData(theEntryBlock);
    zoPackedData_t* theResources = zoPackedData_NewData(theResourceBlock);
    char theTime[sizeof(kUPnP_UnknownTimeString)];
    UPnPUtil_SetTimeString(theTime, CDSResourceInfo_GetInfoAsUInt32(theResources, 0, kCDSResourceInfo_Duration));
    printf("%s: %s, %s\n", UPnPUtilities_GetVersion(), CDSEntryInfo_GetInfoAsStr(theEntry, kCDSEntryInfo_Title),
           theTime);
    zoPackedData_Free(theResources);
    zoPackedData_Free(theEntry);
    return 0;
}
