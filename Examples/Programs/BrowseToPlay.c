/* BrowseToPlay FILE SINKS [ADDRESS]: what a control point does with the answer to a Browse action, in C. For each
 * object it prints what to play, and what to send along. FILE holds the DIDL-Lite text of the answer (its Result,
 * unescaped), SINKS the Sink of the renderer's answer to GetProtocolInfo; ADDRESS is the renderer's IPv4 address. */

#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPCPUtility.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <zoOS/zoSocket.h>

static const char* const kConfidences[] = { "will not", "should not", "may", "should" };

/* What is known of the renderer. */
typedef struct Renderer
{
    zoDLNAProtocolInfoList_t* mSinks;
    uint32 mAddress;
    uint32 mAddressCount; /* 0 or 1 */
} Renderer;

static void Play(const Renderer* aRenderer, zoPackedData_t* anEntry, zoPackedData_t* aResources, uint32 anIndex,
                 int aConfidence)
{
    const char* theURI = CDSResourceInfo_GetInfoAsStr(aResources, anIndex, kCDSResourceInfo_URI);
    char* theMetadata = UPnPDIDL_GetSendable(anEntry, aResources, 1, 1, theURI, NULL);
    char* thePicture = CDSResourceInfo_FetchThumbnailURI(aResources, anEntry, NULL, &aRenderer->mAddress,
                                                         aRenderer->mAddressCount, NULL);
    printf("  play %s%s\n", theURI, UPnPCPUtility_IsURIParentalLocked(theURI) ? ", once the user's code is known" : "");
    printf("  which the renderer %s play: %s\n", kConfidences[aConfidence],
           CDSResourceInfo_GetInfoAsStr(aResources, anIndex, kCDSResourceInfo_ProtocolInfo));
    printf("  picture %s\n", *thePicture ? thePicture : "none");
    printf("  send %s\n", theMetadata);
    free(thePicture);
    free(theMetadata);
}

static void ShowObject(const Renderer* aRenderer, zoPackedData_t* anEntry, zoPackedData_t* aResources)
{
    int theConfidence;
    const int theBest = CDSResourceInfo_ChooseResource(aResources, aRenderer->mSinks, kCDSResourceChoice_Default, "*",
                                                       &aRenderer->mAddress, aRenderer->mAddressCount, &theConfidence);
    printf("%s: %s\n", CDSEntryInfo_GetInfoAsStr(anEntry, kCDSEntryInfo_ItemID),
           CDSEntryInfo_GetInfoAsStr(anEntry, kCDSEntryInfo_Title));
    if (CDSEntryInfo_IsContainer(anEntry)) { printf("  is a container\n"); }
    if (theBest >= 0) { Play(aRenderer, anEntry, aResources, (uint32)theBest, theConfidence); }
    else { printf("  has nothing to play here\n"); }
}

/* Tells what is wrong with a document whose tags don't match. */
static void ShowError(const char* aText)
{
    uint32 theLine, theColumn;
    char* theReason = UPnPDIDL_FindError(aText, strlen(aText), &theLine, &theColumn);
    fprintf(stderr, "line %lu, column %lu: %s\n", (unsigned long)theLine, (unsigned long)theColumn, theReason);
    free(theReason);
}

/* @return whether the text's tags match. */
static int ShowObjects(const Renderer* aRenderer, const char* aText)
{
    UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(aText, NULL);
    if (!theDocument)
    {
        ShowError(aText);
        return 0;
    }
    for (;;)
    {
        char* theEntryBlock;
        char* theResourceBlock;
        int theType;
        const int theResult = UPnPDIDLDocument_NextObject(theDocument, &theEntryBlock, &theResourceBlock, &theType);
        zoPackedData_t* theEntry = zoPackedData_NewData(theEntryBlock); /* takes the block over; none is no entry */
        zoPackedData_t* theResources = zoPackedData_NewData(theResourceBlock);
        if (theType != kDIDLItemType_None && theResult == kUPnPError_None)
        {
            ShowObject(aRenderer, theEntry, theResources);
        }
        zoPackedData_Free(theResources);
        zoPackedData_Free(theEntry);
        if (theType == kDIDLItemType_None) { break; }
    }
    UPnPDIDLDocument_Delete(theDocument);
    return 1;
}

/* @return the file's text, released with free; NULL when it can't be read. */
static char* NewTextOfFile(const char* aPath)
{
    FILE* theFile = fopen(aPath, "rb");
    char* theText = NULL;
    long theSize;
    if (!theFile) { return NULL; }
    if (fseek(theFile, 0, SEEK_END) == 0 && (theSize = ftell(theFile)) >= 0 && fseek(theFile, 0, SEEK_SET) == 0)
    {
        theText = (char*)calloc((size_t)theSize + 1, 1);
        if (theText && fread(theText, 1, (size_t)theSize, theFile) != (size_t)theSize)
        {
            free(theText);
            theText = NULL;
        }
    }
    fclose(theFile);
    return theText;
}

int main(int argc, char** argv)
{
    char* theText = argc >= 3 ? NewTextOfFile(argv[1]) : NULL;
    char* theSinks = argc >= 3 ? NewTextOfFile(argv[2]) : NULL;
    Renderer theRenderer = { NULL, 0, 0 };
    int fIsWellFormed = 0;
    if (argc < 3) { fprintf(stderr, "usage: %s FILE SINKS [ADDRESS]\n", argv[0]); }
    else if (!theText || !theSinks) { fprintf(stderr, "%s can't be read\n", argv[theText ? 2 : 1]); }
    else
    {
        theSinks[strcspn(theSinks, "\r\n")] = '\0';
        theRenderer.mSinks = zoDLNAProtocolInfoList_New(theSinks, 0);
        if (argc > 3) { theRenderer.mAddress = zoSocketGetAddressFromDotForm(argv[3]); }
        theRenderer.mAddressCount = theRenderer.mAddress != 0;
        fIsWellFormed = ShowObjects(&theRenderer, theText);
        zoDLNAProtocolInfoList_Delete(theRenderer.mSinks);
    }
    free(theSinks);
    free(theText);
    return fIsWellFormed ? 0 : 1;
}
