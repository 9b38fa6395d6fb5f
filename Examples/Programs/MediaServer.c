/* MediaServer: what a media server asks its device hook while it serves clients, and the documents of an upload. */

#include <UPnP/Utilities/UPnPConst.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPHook.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* A service description with a place for the Search action, and the line end that an editor leaves. */
static char kTemplate[] = "<scpd><actionList><action><name>Browse</name></action>%@</actionList></scpd>\n";
static char kSearchName[] = ":search";
static char kSearch[] = "<action><name>Search</name></action>";

/* A template ends in ">". */
static size_t LengthWithoutLineEnds(const char* aText)
{
    size_t theLength = strlen(aText);
    while (theLength > 0 && (aText[theLength - 1] == '\n' || aText[theLength - 1] == '\r'))
        --theLength;
    return theLength;
}

static void Serve(UPnPHook* aHook, const char* aUserAgent)
{
    char theUserAgent[128];
    char* theParts[] = { kSearch, NULL };
    char* theNames[] = { kSearchName };
    size_t theLengths[] = { sizeof(kSearch) - 1 };
    char theServiceName[] = "ContentDirectory";
    char* theDescription = NULL;
    size_t theLength = 0;
    unsigned int theCount = 0;
    char theObjectID[] = "0";
    ILibWebServer_Session* theSession = ILibWebServerSession_New(aUserAgent);

    snprintf(theUserAgent, sizeof(theUserAgent), "%s", aUserAgent);
    UPnPHook_Hook(aHook, kUPnPHook_GetServiceDescription, theSession, theServiceName, kTemplate,
                  LengthWithoutLineEnds(kTemplate), theParts, theNames, theLengths, &theDescription, &theLength);
    UPnPHook_Hook(aHook, kUPnPHook_GetRequestedCount, theUserAgent, &theCount, theObjectID);
    printf("%s\n  gets %s\n  and %u objects at a time\n", aUserAgent, theDescription, theCount);
    free(theDescription);
    ILibWebServerSession_Delete(theSession);
}

/* A control point asks for a new song, and the server tells it where to upload. */
static void Upload(void)
{
    static const char kTitle[] = "Song";
    static const char kClass[] = "object.item.audioItem.musicTrack";
    zoPackedData_t* theRequested = zoPackedData_New(1);
    char* theRequest = UPnPDIDL_GetForCreateItemRequest("12", kTitle, kDLNAManaged_None, kClass,
                                                        "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3", 3440000, 0xFFFFFFFF);
    char* theResponse;
    zoPackedData_AddNewEntry(theRequested);
    zoPackedData_AddData(theRequested, kCDSEntryInfo_Title, kTitle, sizeof(kTitle));
    zoPackedData_AddData(theRequested, kCDSEntryInfo_ItemClassName, kClass, sizeof(kClass));
    theResponse = UPnPDIDL_GetForCreateObjectResponse(theRequested, "http://192.0.2.20/upload/99", NULL, NULL, "99",
                                                      "12", 1, 0xFFFFFFFF);
    printf("asked for %s\nanswered with %s\n", theRequest, theResponse);
    free(theRequest);
    free(theResponse);
    zoPackedData_Free(theRequested);
}

int main(void)
{
    UPnPHook* theHook = UPnPHook_New();
    Serve(theHook, "Xbox/2.0.4552.0 UPnP/1.0 Xbox/2.0.4552.0");
    Serve(theHook, "VLC/3.0.20 LibVLC/3.0.20");
    UPnPHook_Delete(theHook);
    Upload();
    return 0;
}
