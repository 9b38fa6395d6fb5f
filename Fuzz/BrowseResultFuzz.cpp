#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <string>

// Every element of a document parsed as an object, against a base URL, with the links between nodes checked on the way;
// and the document read object by object.

static void ReadObjectByObject(const char* aText)
{
    UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(aText, "http://192.0.2.1:80/a/b?c");
    char* theData = nullptr;
    char* theRes = nullptr;
    int theType = kDIDLItemType_Item;
    while (theType != kDIDLItemType_None)
    {
        const int theResult = UPnPDIDLDocument_NextObject(theDocument, &theData, &theRes, &theType);
        const bool fHasBlocks = theResult == kUPnPError_None && theType != kDIDLItemType_None;
        Require((theData != nullptr) == fHasBlocks && (theRes != nullptr) == fHasBlocks, "an object has both blocks");
        free(theData);
        free(theRes);
    }
    UPnPDIDLDocument_Delete(theDocument);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    if (aSize > 4096) { return 0; } // each element is parsed with all that it holds
    char* theText = NewText(aBytes, aSize);
    const size_t theLength = strlen(theText);
    ILibXMLNode* theNodes = ILibParseXML(theText, 0, theLength);
    if (ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError)
    {
        for (ILibXMLNode* theNode = theNodes; theNode; theNode = theNode->Next)
        {
            if (!theNode->StartTag) { continue; }
            char* theInner = nullptr;
            const int theInnerLength = ILibReadInnerXML(theNode, &theInner);
            Require(theInner >= theText && theInnerLength >= 0, "inner text lies in the text");
            Require(theInner + theInnerLength <= theText + theLength, "inner text ends in the text");
            Require(theNode->ClosingTag && theNode->ClosingTag->StartingTag == theNode, "tags come in pairs");

            char* theData = nullptr;
            char* theRes = nullptr;
            ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
            UPnPDIDL_Parse("http://192.0.2.1:80/a/b?c", theNodes, theNode, theAttributes, 1, &theData, &theRes);
            ILibDestructXMLAttributeList(theAttributes);
            Require(theData && theRes, "both blocks are there");
            zoPackedData_t* theEntry = zoPackedData_NewData(theData);
            Require(zoPackedData_GetEntryCount(theEntry) == 1, "a block that was made is valid");
            zoPackedData_Free(theEntry);
            free(theRes);
        }
    }
    ILibDestructXMLNodeList(theNodes);
    const std::string theBefore(theText);
    ReadObjectByObject(theText);
    Require(theBefore == theText, "the text is as it was");
    free(theText);
    return 0;
}
