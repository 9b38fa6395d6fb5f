// ControlPoint FILE: what a control point does with the answer to a Browse action before it has a renderer play what
// the user picks. FILE holds the DIDL-Lite text of the answer (its Result, unescaped); the renderer is a television
// that plays JPEG pictures, MP3 and MPEG-2.

#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPCPUtility.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <zoltTools/zoDLNAProtocolInfoList.h>

// What the renderer's GetProtocolInfo action answers as its sinks.
static const char kSinks[] = "http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_LRG,http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_SM,"
                             "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3,http-get:*:video/mpeg:DLNA.ORG_PN=MPEG_PS_PAL";

static void PlayOn(zoDLNAProtocolInfoList_t* aSinks, char* anEntryBlock, char* aResourceBlock)
{
    zoPackedData_t* theEntryRecord = zoPackedData_NewData(anEntryBlock);
    CDSResourceInfo theResources(aResourceBlock, theEntryRecord); // takes the resources over
    CDSEntryInfo theEntry(theEntryRecord);                        // and this one the entry
    int theConfidence = 0;
    const int theIndex = theResources.GetBestResourceIndex(aSinks, &theConfidence, "*", nullptr, 0);
    std::printf("%s: ", theEntry.GetInfoAsCString(kCDSEntryInfo_Title).c_str());
    if (theIndex < 0)
    {
        std::printf("can't be played here\n");
        return;
    }
    const zoCString theURI = theResources.GetInfoAsCString(static_cast<uint32>(theIndex), kCDSResourceInfo_URI);
    const zoCString theUnlockedURI = UPnPCPUtility::GetURIUnlocked(theURI, "1234"); // itself, unless it is locked
    char* theMetadata =
        UPnPDIDL_GetSendable(theEntry.mPackedData, theResources.mPackedData, 1, 0, theURI.c_str(), nullptr);
    std::printf("%s, with %zu bytes of metadata\n", theUnlockedURI.c_str(), std::string(theMetadata).size());
    std::free(theMetadata);
}

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "usage: %s FILE\n", argv[0]);
        return 2;
    }
    std::ifstream theFile(argv[1], std::ios::binary);
    if (!theFile) { std::fprintf(stderr, "%s can't be read\n", argv[1]); }
    std::string theText{ std::istreambuf_iterator<char>(theFile), {} };
    zoDLNAProtocolInfoList_t* theSinks = zoDLNAProtocolInfoList_New(kSinks, 0);
    UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(theText.data(), nullptr);
    for (;;)
    {
        char *theEntryBlock, *theResourceBlock;
        int theType;
        const int theResult = UPnPDIDLDocument_NextObject(theDocument, &theEntryBlock, &theResourceBlock, &theType);
        if (theType == kDIDLItemType_None) { break; }
        if (theResult == kUPnPError_None) { PlayOn(theSinks, theEntryBlock, theResourceBlock); }
    }
    const bool fIsRead = theFile && theDocument;
    if (!theDocument) { std::fprintf(stderr, "the tags of %s don't match\n", argv[1]); }
    UPnPDIDLDocument_Delete(theDocument);
    zoDLNAProtocolInfoList_Delete(theSinks);
    return fIsRead ? 0 : 1;
}
