#include "Document.h"

#include <Shared/ASCII.h>
#include <algorithm>
#include <string.h>
#include <string_view>

// Of a name in a message.
static const size_t kMaxNameLength = 64;

static bool IsCalled(const ILibXMLNode* aNode, std::string_view aName)
{
    return Shared::EqualsIgnoringCase({ aNode->Name, static_cast<size_t>(aNode->NameLength) }, aName);
}

Document::Document(std::vector<char> aText) : mText(std::move(aText))
{
    Parse();
    if (mFault.empty() && mObjects.empty() && TakeResult()) { Parse(); }
}

Document::~Document() { ILibDestructXMLNodeList(mNodes); }

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

void Document::Parse()
{
    ILibDestructXMLNodeList(mNodes);
    mNodes = ILibParseXML(mText.data(), 0, mText.size() - 1);
    const int theResult = ILibProcessXMLNodeList(mNodes);
    if (theResult != kILibProcessXML_NoError) { mFault = DescribeFault(mNodes, theResult, mText); }
    else { FindObjects(); }
}

bool Document::TakeResult()
{
    for (ILibXMLNode* theNode = mNodes; theNode; theNode = theNode->Next)
    {
        const bool fIsTextOnly = theNode->StartTag && theNode->Next == theNode->ClosingTag;
        if (!fIsTextOnly || !IsCalled(theNode, "Result")) { continue; }
        char* theStart = nullptr;
        const int theLength = ILibReadInnerXML(theNode, &theStart);
        std::vector<char> theText(theStart, theStart + theLength);
        theText.push_back('\0');
        theText.resize(static_cast<size_t>(ILibInPlaceXmlUnEscape(theText.data())) + 1);
        mText.swap(theText);
        return true;
    }
    return false;
}

namespace
{

// What holds between the tags of an open element.
struct Surroundings
{
    ILibXMLNode* mDIDL;
    bool mfHoldsObjects;
    bool mfInObject;
    bool mfIsObject;
};

// Gives each piece of a document's text to the innermost object around it.
class TextDivider
{
public:
    TextDivider(const char* aText, std::vector<DocumentObject>& aObjects) : mBegin(aText), mObjects(aObjects) {}

    void Open(const char* aStartTag, DocumentObject aObject)
    {
        GiveTo(aStartTag);
        mOpen.push_back(mObjects.size());
        mObjects.push_back(std::move(aObject));
    }
    void Close(const char* aEndOfTag)
    {
        GiveTo(aEndOfTag);
        mOpen.pop_back();
    }

private:
    void GiveTo(const char* aEnd)
    {
        if (!mOpen.empty()) { mObjects[mOpen.back()].mText.append(mBegin, aEnd); }
        mBegin = aEnd;
    }

    const char* mBegin; // of what nobody has yet
    std::vector<DocumentObject>& mObjects;
    std::vector<size_t> mOpen; // indices, the innermost last
};

} // namespace

static const char* BeginOf(const ILibXMLNode* aTag) { return (aTag->NSTag ? aTag->NSTag : aTag->Name) - 1; }

static const char* EndOf(const ILibXMLNode* anEndTag)
{
    if (!anEndTag->EmptyTag) { return strchr(anEndTag->Name + anEndTag->NameLength, '>') + 1; }
    char* theEnd = nullptr;
    ILibReadInnerXML(anEndTag->StartingTag, &theEnd);
    return theEnd;
}

void Document::FindObjects()
{
    std::vector<Surroundings> theOpen = { { nullptr, true, false, false } };
    TextDivider theDivider(mText.data(), mObjects);
    for (ILibXMLNode* theNode = mNodes; theNode; theNode = theNode->Next)
    {
        const Surroundings theOuter = theOpen.back();
        if (!theNode->StartTag)
        {
            if (theOuter.mfIsObject) { theDivider.Close(EndOf(theNode)); }
            theOpen.pop_back();
            continue;
        }
        Surroundings theInner = { theOuter.mDIDL, false, theOuter.mfInObject, false };
        const bool fIsContainer = IsCalled(theNode, "container");
        if (theOuter.mfHoldsObjects && (fIsContainer || IsCalled(theNode, "item")))
        {
            theDivider.Open(BeginOf(theNode), { "", theOuter.mDIDL, !fIsContainer });
            theInner = { theOuter.mDIDL, fIsContainer, true, true };
        }
        else if (!theOuter.mfInObject && IsCalled(theNode, "DIDL-Lite")) { theInner = { theNode, true, false, false }; }
        theOpen.push_back(theInner);
    }
}
