#include "Document.h"

#include "Subcommand.h"

#include <Shared/ASCII.h>
#include <algorithm>
#include <string.h>
#include <string_view>
#include <utility>

// Of a name in a message.
static const size_t kMaxNameLength = 64;

static const char kInvalidObject[] = "\"restricted\" or \"searchable\" is neither true nor false";

// ---- Objects ----

void InvalidObjects::PrintHead(const DocumentObject& anObject, Output& anOutput)
{
    anOutput.InJSON("index", anObject.mIndex);
    anOutput.Word("kind", anObject.IsContainer() ? "container" : "item", static_cast<uint64>(anObject.mType));
    if (anObject.mRecords) { return; }
    anOutput.Fact("invalid", kInvalidObject);
    if (mCount++ == 0) { mFirst = anObject.mIndex; }
}

int InvalidObjects::Report(const std::string& aName, int aStatus) const
{
    if (mCount == 0) { return aStatus; }
    const std::string theOthers = mCount == 1 ? "" : "; so are " + std::to_string(mCount - 1) + " more";
    return Fail(aName + ": object " + std::to_string(mFirst) + " is invalid: " + kInvalidObject + theOthers);
}

// ---- Documents ----

Document::Document(std::vector<char> aText, const char* aBaseURL)
    : mText(std::move(aText)), mBaseURL(aBaseURL), mDocument(nullptr, &UPnPDIDLDocument_Delete)
{
    if (Open() && !HasNext() && TakeResult()) { Open(); }
}

// What is wrong, and in which line. Only end tags before the fault know their start tags.
static std::string DescribeFault(const ILibXMLNode* aNodes, int aResult, const std::vector<char>& aText)
{
    const ILibXMLNode* theNode = aNodes;
    while (theNode->Next && (theNode->StartTag || theNode->StartingTag))
        theNode = theNode->Next;
    const auto theLine = std::to_string(1 + std::count(aText.data(), static_cast<const char*>(theNode->Name), '\n'));
    if (aResult == kILibProcessXML_IncompleteXML)
    {
        return "not well-formed: an invalid tag, or an element without its end, in line " + theLine + " or later";
    }
    const std::string theName(theNode->Name, std::min(static_cast<size_t>(theNode->NameLength), kMaxNameLength));
    return "not well-formed: the end tag of \"" + theName + "\" in line " + theLine + " has no start tag to end";
}

static std::string FindFault(std::vector<char>& aText)
{
    ILibXMLNode* theNodes = ILibParseXML(aText.data(), 0, aText.size() - 1);
    const std::string theFault = DescribeFault(theNodes, ILibProcessXMLNodeList(theNodes), aText);
    ILibDestructXMLNodeList(theNodes);
    return theFault;
}

// Returns false, and notes what is wrong, when the text is not well-formed.
bool Document::Open()
{
    mDocument.reset(UPnPDIDLDocument_New(mText.data(), mBaseURL));
    if (mDocument) { ReadNext(); }
    else { mFault = FindFault(mText); }
    return mFault.empty();
}

void Document::ReadNext()
{
    char *theEntry = nullptr, *theResources = nullptr;
    const int theResult = UPnPDIDLDocument_NextObject(mDocument.get(), &theEntry, &theResources, &mNext.mType);
    const bool fHasRecords = HasNext() && theResult == kUPnPError_None;
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
    return true;
}
