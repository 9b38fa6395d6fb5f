#include "Document.h"

#include "Input.h"
#include "Subcommand.h"

#include <Shared/ASCII.h>
#include <stdlib.h>
#include <string_view>
#include <utility>

static const char kInvalidObject[] = "\"restricted\" or \"searchable\" is neither true nor false";

Document::Document(std::vector<char> aText, std::string aName, const char* aBaseURL)
    : mText(std::move(aText)), mName(std::move(aName)), mBaseURL(aBaseURL), mDocument(nullptr, &UPnPDIDLDocument_Delete)
{
    Open();
    if (mfIsWellFormed && !HasNext() && TakeResult()) { Open(); }
}

std::string Document::DescribeError() const
{
    uint32 theLine = 0, theColumn = 0;
    const std::unique_ptr<char, decltype(&free)> theReason(
        UPnPDIDL_FindError(mText.data(), mText.size() - 1, &theLine, &theColumn), free);
    return PlaceText(mName, theLine, theColumn) + (theReason ? theReason.get() : "");
}

std::string Document::DescribeInvalid(size_t anIndex) const
{
    return mFirstInvalid == anIndex ? DescribeError() : mName + ": " + kInvalidObject;
}

void Document::Open()
{
    mDocument.reset(UPnPDIDLDocument_New(mText.data(), mBaseURL));
    mfIsWellFormed = mDocument != nullptr;
    ReadNext();
}

void Document::ReadNext()
{
    char *theEntry = nullptr, *theResources = nullptr;
    const int theResult = UPnPDIDLDocument_NextObject(mDocument.get(), &theEntry, &theResources, &mNext.mType);
    const bool fHasRecords = HasNext() && theResult == kUPnPError_None;
    if (HasNext() && !fHasRecords && !mFirstInvalid) { mFirstInvalid = mNext.mIndex; }
    mNext.mRecords = fHasRecords ? std::make_unique<MediaObject>(theEntry, theResources) : nullptr;
}

DocumentObject Document::TakeNext()
{
    DocumentObject theObject = std::move(mNext);
    mNext.mIndex = theObject.mIndex + 1;
    ReadNext();
    return theObject;
}

static ILibXMLNode* FindResult(ILibXMLNode* aNodes)
{
    for (ILibXMLNode* theNode = aNodes; theNode; theNode = theNode->Next)
    {
        const bool fIsTextOnly = theNode->StartTag && theNode->Next == theNode->ClosingTag;
        const std::string_view theName(theNode->Name, static_cast<size_t>(theNode->NameLength));
        if (fIsTextOnly && Shared::EqualsIgnoringCase(theName, "Result")) { return theNode; }
    }
    return nullptr;
}

// Goes on with the text in the Result element, if there is one; it takes the place of the whole text.
bool Document::TakeResult()
{
    mDocument.reset();
    ILibXMLNode* theNodes = ILibParseXML(mText.data(), 0, mText.size() - 1);
    ILibProcessXMLNodeList(theNodes);
    ILibXMLNode* theResult = FindResult(theNodes);
    char* theStart = nullptr;
    const int theLength = ILibReadInnerXML(theResult, &theStart);
    ILibDestructXMLNodeList(theNodes);
    if (!theStart) { return false; }
    theStart[theLength] = '\0';
    const int theNewLength = ILibInPlaceXmlUnEscape(theStart);
    mText.erase(mText.begin(), mText.begin() + (theStart - mText.data()));
    mText.resize(static_cast<size_t>(theNewLength) + 1);
    mName += ", Result";
    return true;
}

// ---- Objects ----

void InvalidObjects::PrintHead(const DocumentObject& anObject, Output& anOutput)
{
    anOutput.InJSON("index", anObject.mIndex);
    anOutput.Word("kind", anObject.IsContainer() ? "container" : "item", static_cast<uint64>(anObject.mType));
    if (anObject.mRecords) { return; }
    anOutput.Fact("invalid", kInvalidObject);
    if (mCount++ == 0) { mFirst = anObject.mIndex; }
}

int InvalidObjects::Report(const Document& aDocument, int aStatus) const
{
    if (mCount == 0) { return aStatus; }
    const std::string theOthers = mCount == 1   ? ""
                                  : mCount == 2 ? "; so is one more"
                                                : "; so are " + std::to_string(mCount - 1) + " more";
    return Fail(aDocument.DescribeInvalid(mFirst) + "; object " + std::to_string(mFirst) + " is invalid" + theOthers);
}
