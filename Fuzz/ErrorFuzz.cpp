#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <string>
#include <strings.h>
#include <zoLog/Log.h>

// The bytes are a document, well-formed or not.

namespace
{

struct Error
{
    bool mfIsOne;
    std::string mReason;
    uint32 mLine;
    uint32 mColumn;
};

typedef char* (*Finder_t)(const char* aText, size_t aLength, uint32* aLine, uint32* aColumn);

// Looks into bytes without a NUL after them.
Error Find(Finder_t aFinder, const uint8_t* aBytes, size_t aSize)
{
    char* theBytes = static_cast<char*>(malloc(aSize));
    memcpy(theBytes, aBytes, aSize);
    Error theError = {};
    const HeapPeak thePeak;
    char* theReason = aFinder(theBytes, aSize, &theError.mLine, &theError.mColumn);
    RequireHeap(thePeak.Bytes(), aSize, 64);
    Require(memcmp(theBytes, aBytes, aSize) == 0, "the text is only read");
    free(theBytes);
    theError.mfIsOne = theReason != nullptr;
    theError.mReason = theReason ? theReason : "";
    free(theReason);
    return theError;
}

// A line ends at LF, CR LF or CR.
size_t CountLines(const std::string& aText)
{
    size_t theCount = 1;
    for (size_t i = 0; i < aText.size(); ++i)
        theCount += aText[i] == '\n' ? i == 0 || aText[i - 1] != '\r' : aText[i] == '\r';
    return theCount;
}

void CheckPlace(const Error& anError, const std::string& aText)
{
    Require(anError.mfIsOne == (anError.mLine > 0) && anError.mfIsOne == (anError.mColumn > 0),
            "an error is somewhere, no error nowhere");
    Require(anError.mfIsOne != anError.mReason.empty(), "an error has a reason");
    Require(anError.mLine <= CountLines(aText) && anError.mColumn <= aText.size() + 1, "an error is in the text");
}

bool IsRefused(std::string aText)
{
    ILibXMLNode* theNodes = ILibParseXML(aText.data(), 0, aText.size());
    const bool fIsRefused = ILibProcessXMLNodeList(theNodes) != kILibProcessXML_NoError;
    ILibDestructXMLNodeList(theNodes);
    return fIsRefused;
}

int ResultOfParsing(const std::string& aText)
{
    char* theData = nullptr;
    char* theRes = nullptr;
    int theType = 0;
    const int theResult = UPnPDIDL_ParseElements(aText.c_str(), &theData, &theRes, &theType);
    free(theData);
    free(theRes);
    return theResult;
}

// UPnPDIDL_ParseElements also finds a second one in a root that UPnPDIDLDocument passes over.
bool HasSeveralObjects(std::string aText)
{
    ILibXMLNode* theNodes = ILibParseXML(aText.data(), 0, aText.size());
    ILibProcessXMLNodeList(theNodes);
    int theCount = 0;
    for (const ILibXMLNode* theNode = theNodes; theNode; theNode = theNode->Next)
    {
        const std::string theName(theNode->Name, static_cast<size_t>(theNode->NameLength));
        const bool fIsObject =
            strcasecmp(theName.c_str(), "item") == 0 || strcasecmp(theName.c_str(), "container") == 0;
        theCount += theNode->StartTag && fIsObject;
    }
    ILibDestructXMLNodeList(theNodes);
    return theCount > 1;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    _zoLog_Level = ZOLOGLEVEL_NONE;
    const std::string theText(reinterpret_cast<const char*>(aBytes),
                              strnlen(reinterpret_cast<const char*>(aBytes), aSize));
    const Error theError = Find(UPnPUtil_FindXMLError, aBytes, aSize);
    CheckPlace(theError, theText);
    Require(theError.mfIsOne == IsRefused(theText), "the error is why the reader refuses the text");

    const Error theMeaning = Find(UPnPDIDL_FindError, aBytes, aSize);
    CheckPlace(theMeaning, theText);
    Require(!theError.mfIsOne || theMeaning.mReason == theError.mReason, "what is wrong with the tags comes first");
    const int theResult = ResultOfParsing(theText);
    Require((theResult == kUPnPError_InvalidXML) == theError.mfIsOne, "parsing refuses the same");
    Require(theResult != kUPnPError_None || theMeaning.mReason != "there is no item and no container",
            "there is an object in what is accepted");
    Require(theResult != kUPnPError_InvalidDIDL || theMeaning.mfIsOne || HasSeveralObjects(theText),
            "what is refused has a reason, unless it is a second object");
    return 0;
}
