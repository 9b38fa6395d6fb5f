#include <UPnP/Stack/ILibXML.h>

#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <string_view>
#include <zoltTools/zoMemory.h>

// ---- Bytes ----

static bool IsBlank(char aByte) { return aByte == ' ' || aByte == '\t' || aByte == '\r' || aByte == '\n'; }

static bool StartsName(char aByte)
{
    const char theLetter = static_cast<char>(aByte | 0x20);
    return (theLetter >= 'a' && theLetter <= 'z') || aByte == '_' || aByte == ':' || (aByte & 0x80) != 0;
}

static bool IsInName(char aByte)
{
    return StartsName(aByte) || (aByte >= '0' && aByte <= '9') || aByte == '-' || aByte == '.';
}

static char* SkipBlanks(char* aPosition, const char* anEnd)
{
    while (aPosition < anEnd && IsBlank(*aPosition))
        ++aPosition;
    return aPosition;
}

// The position after the next aMark; NULL when there is none.
static char* FindPast(char* aPosition, char* anEnd, std::string_view aMark)
{
    const std::string_view theText(aPosition, static_cast<size_t>(anEnd - aPosition));
    const size_t theFound = theText.find(aMark);
    return theFound != theText.npos ? aPosition + theFound + aMark.size() : nullptr;
}

static bool StartsWith(const char* aPosition, const char* anEnd, std::string_view aMark)
{
    return std::string_view(aPosition, static_cast<size_t>(anEnd - aPosition)).substr(0, aMark.size()) == aMark;
}

namespace
{

struct Name
{
    char* mPrefix; // NULL without one
    char* mLocal;
    int mPrefixLength;
    int mLocalLength;
};

} // namespace

// Reads a name. The result is the position after it; NULL when there is none.
static char* ReadName(char* aPosition, const char* anEnd, Name* aName)
{
    if (aPosition == anEnd || !StartsName(*aPosition)) { return nullptr; }
    char* theEnd = aPosition;
    while (theEnd < anEnd && IsInName(*theEnd))
        ++theEnd;
    char* theColon = static_cast<char*>(memchr(aPosition, ':', static_cast<size_t>(theEnd - aPosition)));
    const bool fHasPrefix = theColon && theColon > aPosition && theColon + 1 < theEnd;
    aName->mPrefix = fHasPrefix ? aPosition : nullptr;
    aName->mPrefixLength = fHasPrefix ? static_cast<int>(theColon - aPosition) : 0;
    aName->mLocal = fHasPrefix ? theColon + 1 : aPosition;
    aName->mLocalLength = static_cast<int>(theEnd - aName->mLocal);
    return theEnd;
}

// ---- Attributes ----

// Attributes are read when they are asked for, each time anew. In between the library may have replaced a closing quote
// with a NUL (UPnPUtil_GetTimeAttribute), which then ends the value as well.

// Reads the attribute at *aPosition, which moves past it. The result is 1; 0 at the end of the tag; -1 for what is not
// well-formed.
static int ReadAttribute(char** aPosition, const char* anEnd, ILibXMLAttribute* anAttribute)
{
    char* thePosition = SkipBlanks(*aPosition, anEnd);
    if (thePosition == anEnd) { return 0; }
    Name theName;
    thePosition = ReadName(thePosition, anEnd, &theName);
    if (!thePosition) { return -1; }
    thePosition = SkipBlanks(thePosition, anEnd);
    if (thePosition == anEnd || *thePosition != '=') { return -1; }
    thePosition = SkipBlanks(thePosition + 1, anEnd);
    if (thePosition == anEnd || (*thePosition != '"' && *thePosition != '\'')) { return -1; }
    char* theValue = thePosition + 1;
    char* theQuote = theValue;
    while (theQuote < anEnd && *theQuote != *thePosition && *theQuote != '\0') // a NUL that replaced the quote
        ++theQuote;
    if (theQuote == anEnd) { return -1; }
    *anAttribute = { nullptr,
                     nullptr,
                     theName.mPrefix,
                     theName.mLocal,
                     theValue,
                     theName.mPrefixLength,
                     theName.mLocalLength,
                     static_cast<int>(theQuote - theValue) };
    *aPosition = theQuote + 1;
    return 1;
}

// Where a start tag's attributes end: at its ">" or "/>".
static const char* AttributesEnd(const ILibXMLNode* aNode) { return aNode->TagEnd - (aNode->EmptyTag ? 2 : 1); }

static bool HasGoodAttributes(const ILibXMLNode* aNode)
{
    ILibXMLAttribute theAttribute;
    int theResult = 1;
    for (char* thePosition = aNode->Attributes; theResult > 0;)
        theResult = ReadAttribute(&thePosition, AttributesEnd(aNode), &theAttribute);
    return theResult == 0;
}

ILibXMLAttribute* ILibGetXMLAttributes(ILibXMLNode* aNode)
{
    if (!aNode || !aNode->StartTag) { return nullptr; }
    ILibXMLAttribute* theFirst = nullptr;
    ILibXMLAttribute** theNext = &theFirst;
    ILibXMLAttribute theAttribute;
    for (char* thePosition = aNode->Attributes; ReadAttribute(&thePosition, AttributesEnd(aNode), &theAttribute) > 0;)
    {
        *theNext = static_cast<ILibXMLAttribute*>(zoMalloc(sizeof(ILibXMLAttribute)));
        **theNext = theAttribute;
        (*theNext)->Parent = aNode;
        theNext = &(*theNext)->Next;
    }
    return theFirst;
}

void ILibDestructXMLAttributeList(ILibXMLAttribute* aList)
{
    while (aList)
    {
        ILibXMLAttribute* theNext = aList->Next;
        free(aList);
        aList = theNext;
    }
}

// ---- Tags ----

// The position after the ">" that ends the tag at aPosition; NULL when the text ends before it.
static char* FindTagEnd(char* aPosition, const char* anEnd)
{
    char theQuote = '\0';
    for (; aPosition < anEnd; ++aPosition)
    {
        if (theQuote) { theQuote = *aPosition == theQuote ? '\0' : theQuote; }
        else if (*aPosition == '"' || *aPosition == '\'') { theQuote = *aPosition; }
        else if (*aPosition == '>') { return aPosition + 1; }
    }
    return nullptr;
}

// The position after a document type declaration, with what is between its brackets.
static char* SkipDeclaration(char* aPosition, char* anEnd)
{
    size_t theOpenTags = 0;
    while (aPosition && aPosition < anEnd)
    {
        if (StartsWith(aPosition, anEnd, "<!--")) { aPosition = FindPast(aPosition + 4, anEnd, "-->"); }
        else if (StartsWith(aPosition, anEnd, "<?")) { aPosition = FindPast(aPosition + 2, anEnd, "?>"); }
        else if (*aPosition == '"') { aPosition = FindPast(aPosition + 1, anEnd, "\""); }
        else if (*aPosition == '\'') { aPosition = FindPast(aPosition + 1, anEnd, "'"); }
        else
        {
            theOpenTags += *aPosition == '<';
            theOpenTags -= *aPosition == '>';
            ++aPosition;
            if (theOpenTags == 0) { return aPosition; }
        }
    }
    return nullptr;
}

static char* SkipMarkup(char* aPosition, char* anEnd)
{
    if (StartsWith(aPosition, anEnd, "<?")) { return FindPast(aPosition + 2, anEnd, "?>"); }
    if (StartsWith(aPosition, anEnd, "<!--")) { return FindPast(aPosition + 4, anEnd, "-->"); }
    if (StartsWith(aPosition, anEnd, "<![CDATA[")) { return FindPast(aPosition + 9, anEnd, "]]>"); }
    return SkipDeclaration(aPosition, anEnd);
}

static ILibXMLNode* NewNode(const Name& aName)
{
    ILibXMLNode* theNode = static_cast<ILibXMLNode*>(zoMallocZeroed(sizeof(ILibXMLNode)));
    theNode->NSTag = aName.mPrefix;
    theNode->NSLength = aName.mPrefixLength;
    theNode->Name = aName.mLocal;
    theNode->NameLength = aName.mLocalLength;
    return theNode;
}

// The node of the tag from "<" to aTagEnd; one with an error when it is not well-formed.
static ILibXMLNode* ReadTag(char* aTag, char* aTagEnd)
{
    const bool fIsEndTag = aTag[1] == '/';
    Name theName = { nullptr, aTag, 0, 0 };
    char* thePosition = aTagEnd ? ReadName(aTag + (fIsEndTag ? 2 : 1), aTagEnd - 1, &theName) : nullptr;
    ILibXMLNode* theNode = NewNode(theName);
    theNode->StartTag = !fIsEndTag;
    theNode->TagBegin = aTag;
    theNode->TagEnd = aTagEnd;
    theNode->Attributes = thePosition;
    theNode->EmptyTag = thePosition && !fIsEndTag && aTagEnd[-2] == '/';
    const bool fIsGood =
        thePosition && (fIsEndTag ? SkipBlanks(thePosition, aTagEnd) == aTagEnd - 1 : HasGoodAttributes(theNode));
    if (!fIsGood) { theNode->Error = kILibProcessXML_IncompleteXML; }
    return theNode;
}

// Both tags of an empty element, or the one.
static ILibXMLNode** Append(ILibXMLNode** aNext, ILibXMLNode* aNode)
{
    *aNext = aNode;
    if (aNode->Error || !aNode->EmptyTag) { return &aNode->Next; }
    aNode->Next = NewNode({ aNode->NSTag, aNode->Name, aNode->NSLength, aNode->NameLength });
    aNode->Next->EmptyTag = 1;
    aNode->Next->TagBegin = aNode->TagEnd;
    aNode->Next->TagEnd = aNode->TagEnd;
    return &aNode->Next->Next;
}

static ILibXMLNode* NewErrorNode(char* aText)
{
    ILibXMLNode* theNode = NewNode({ nullptr, aText, 0, 0 });
    theNode->Error = kILibProcessXML_IncompleteXML;
    return theNode;
}

// The first error ends the list.
ILibXMLNode* ILibParseXML(char* aText, size_t anOffset, size_t aLength)
{
    if (!aText || aLength == 0) { return nullptr; }
    char* thePosition = aText + anOffset;
    char* theEnd = thePosition + aLength;
    if (aLength > INT_MAX) { return NewErrorNode(thePosition); }
    ILibXMLNode* theFirst = nullptr;
    ILibXMLNode** theNext = &theFirst;
    while ((thePosition = static_cast<char*>(memchr(thePosition, '<', static_cast<size_t>(theEnd - thePosition)))))
    {
        const char theKind = thePosition + 1 < theEnd ? thePosition[1] : '\0';
        const bool fIsTag = theKind != '!' && theKind != '?';
        char* theTagEnd = fIsTag ? FindTagEnd(thePosition, theEnd) : SkipMarkup(thePosition, theEnd);
        ILibXMLNode* theNode = fIsTag && theTagEnd ? ReadTag(thePosition, theTagEnd) : nullptr;
        if (!theTagEnd) { theNode = NewErrorNode(thePosition); }
        if (theNode) { theNext = Append(theNext, theNode); }
        if (theNode && theNode->Error) { break; }
        thePosition = theTagEnd;
    }
    return theFirst;
}

// ---- Elements ----

static std::string_view QualifiedName(const ILibXMLNode* aNode)
{
    const char* theBegin = aNode->NSTag ? aNode->NSTag : aNode->Name;
    return { theBegin, static_cast<size_t>(aNode->Name + aNode->NameLength - theBegin) };
}

int ILibProcessXMLNodeList(ILibXMLNode* aNodeList)
{
    ILibXMLNode* theParent = nullptr;
    ILibXMLNode* thePrevious = nullptr; // the last element before with the same parent
    for (ILibXMLNode* theNode = aNodeList; theNode; theNode = theNode->Next)
    {
        if (theNode->Error) { return theNode->Error; }
        if (theNode->StartTag)
        {
            theNode->Parent = theParent;
            if (thePrevious) { thePrevious->Peer = theNode; }
            theParent = theNode;
            thePrevious = nullptr;
            continue;
        }
        if (!theParent) { return kILibProcessXML_IllegalCloseTag; }
        if (QualifiedName(theNode) != QualifiedName(theParent)) { return kILibProcessXML_IllegalCloseTagOrder; }
        theNode->StartingTag = theParent;
        theNode->Parent = theParent->Parent;
        theParent->ClosingTag = theNode;
        thePrevious = theParent;
        theParent = theParent->Parent;
    }
    return theParent ? kILibProcessXML_IncompleteXML : kILibProcessXML_NoError;
}

void ILibDestructXMLNodeList(ILibXMLNode* aNodeList)
{
    while (aNodeList)
    {
        ILibXMLNode* theNext = aNodeList->Next;
        free(aNodeList);
        aNodeList = theNext;
    }
}

int ILibReadInnerXML(ILibXMLNode* aNode, char** aStart)
{
    *aStart = aNode && aNode->StartTag && aNode->ClosingTag ? aNode->TagEnd : nullptr;
    return *aStart ? static_cast<int>(aNode->ClosingTag->TagBegin - *aStart) : 0;
}
