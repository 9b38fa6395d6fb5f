#include <UPnP/Stack/XML/Reader.h>

#include <Shared/ASCII.h>
#include <Shared/QualifiedName.h>
#include <UPnP/Stack/XML/AttributeIndex.h>
#include <UPnP/Stack/XML/Bytes.h>
#include <UPnP/Stack/XML/Document.h>
#include <limits.h>

namespace XML
{

namespace
{

/* Nodes are linked as they are read: what is found out about a tag is used at once. Functions that read get the
 * position where they begin and return the one after what they read, or NULL for what is not well-formed. The last byte
 * of the text is a ">", where names and blanks end without a count. Every function that is given the reader is inlined
 * into Read, so that the compiler keeps its fields in registers. */
struct Reader
{
    Memory mMemory;
    const char* mEnd;
    ILibXMLNode** mNext;    // where the next node is to be linked
    ILibXMLNode* mParent;   // the innermost element that is open; NULL at the top
    ILibXMLNode* mPrevious; // the last element before with the same parent; NULL when there is none
    char* mMisplaced;       // the name of an end tag that is not that of mParent; NULL when there is none
};

struct QName
{
    char* mLocal;
    int mLength;
    int mPrefixLength;
    char* mPrefix; // NULL without one
};

} // namespace

// At the byte that begins the name. A prefix counts when there is something on both sides of the first colon.
static inline char* ReadName(char* aPosition, QName* aName)
{
    char* theColon = SkipAll(aPosition + 1, kInName);
    if (*theColon != ':')
    {
        *aName = { aPosition, static_cast<int>(theColon - aPosition), 0, nullptr };
        return theColon;
    }
    char* theEnd = SkipAll(theColon + 1, kInName | kColon);
    if (*aPosition != ':' && theColon + 1 < theEnd)
    {
        *aName = { theColon + 1, static_cast<int>(theEnd - theColon - 1), static_cast<int>(theColon - aPosition),
                   aPosition };
    }
    else { *aName = { aPosition, static_cast<int>(theEnd - aPosition), 0, nullptr }; }
    return theEnd;
}

static void Link(Reader* aReader, ILibXMLNode* aNode)
{
    aNode->Peer = nullptr;
    *aReader->mNext = aNode;
    aReader->mNext = &aNode->Next;
}

static void AppendNode(Reader* aReader, ILibXMLNode* aNode, const QName& aName, int afStartTag)
{
    aNode->Name = aName.mLocal;
    aNode->NameLength = aName.mLength;
    aNode->NSTag = aName.mPrefix;
    aNode->NSLength = aName.mPrefixLength;
    aNode->StartTag = afStartTag;
    aNode->EmptyTag = 0;
    aNode->Parent = aReader->mParent;
    aNode->ClosingTag = nullptr;
    Link(aReader, aNode);
}

static StartTag* OpenElement(Reader* aReader, const QName& aName)
{
    StartTag* theTag = aReader->mMemory.Allocate<StartTag>();
    AppendNode(aReader, &theTag->mNode, aName, 1);
    if (aReader->mPrevious) { aReader->mPrevious->Peer = &theTag->mNode; }
    aReader->mPrevious = nullptr;
    aReader->mParent = &theTag->mNode;
    return theTag;
}

// Appends the end tag of the innermost open element, whose name begins aDistance bytes after that of the start tag.
static inline void CloseElement(Reader* aReader, ptrdiff_t aDistance)
{
    ILibXMLNode* theStartTag = aReader->mParent;
    aReader->mParent = theStartTag->Parent;
    aReader->mPrevious = theStartTag;
    ILibXMLNode* theEndTag = aReader->mMemory.Allocate<ILibXMLNode>();
    theEndTag->Name = theStartTag->Name + aDistance;
    theEndTag->NSTag = theStartTag->NSTag ? theStartTag->NSTag + aDistance : nullptr;
    theEndTag->NameLength = theStartTag->NameLength;
    theEndTag->NSLength = theStartTag->NSLength;
    theEndTag->StartTag = 0;
    theEndTag->EmptyTag = theStartTag->EmptyTag;
    theEndTag->Parent = theStartTag->Parent;
    theEndTag->StartingTag = theStartTag;
    theStartTag->ClosingTag = theEndTag;
    Link(aReader, theEndTag);
}

// From the end of a name to the quote of the value; NULL without one.
static char* FindQuote(char* aPosition)
{
    char* thePosition = SkipAll(aPosition, kBlank);
    if (*thePosition != '=') { return nullptr; }
    thePosition = SkipAll(thePosition + 1, kBlank);
    return *thePosition == '"' || *thePosition == '\'' ? thePosition : nullptr;
}

// From the end of a name to the closing quote; NULL without a value.
static char* ReadValue(Reader* aReader, char* aPosition, char** aValue)
{
    const bool fHasRoom = static_cast<size_t>(aReader->mEnd - aPosition) >= 2 + kNear;
    if (fHasRoom && memcmp(aPosition, "=\"", 2) == 0) // as mostly
    {
        *aValue = aPosition + 2;
        return FindNear(*aValue, aReader->mEnd, '"');
    }
    char* theQuote = FindQuote(aPosition);
    if (!theQuote) { return nullptr; }
    *aValue = theQuote + 1;
    return Find(*aValue, aReader->mEnd, *theQuote);
}

// From the name to the closing quote.
static char* ReadAttribute(Reader* aReader, char* aPosition, ILibXMLNode* aNode, ILibXMLAttribute*** aNext)
{
    QName theName;
    char* thePosition = ReadName(aPosition, &theName);
    ILibXMLAttribute* theAttribute = aReader->mMemory.Allocate<ILibXMLAttribute>();
    theAttribute->Name = theName.mLocal;
    theAttribute->NameLength = theName.mLength;
    theAttribute->Prefix = theName.mPrefix;
    theAttribute->PrefixLength = theName.mPrefixLength;
    theAttribute->Parent = aNode;

    char* theValue;
    char* theQuote = ReadValue(aReader, thePosition, &theValue);
    if (!theQuote) { return nullptr; }
    theAttribute->Value = theValue;
    theAttribute->ValueLength = static_cast<int>(theQuote - theValue);
    **aNext = theAttribute;
    *aNext = &theAttribute->Next;
    return theQuote + 1;
}

// @return the position after the last attribute and the blanks that follow it.
static char* ReadAttributes(Reader* aReader, char* aPosition, StartTag* aTag)
{
    ILibXMLAttribute** theNext = &aTag->mAttributes;
    char* thePosition = aPosition;
    size_t theCount = 0;
    while (thePosition)
    {
        const bool fHasOneBlank = thePosition[0] == ' ' && Is(thePosition[1], kStartsName); // as mostly
        thePosition = fHasOneBlank ? thePosition + 1 : SkipAll(thePosition, kBlank);
        if (!fHasOneBlank && !Is(*thePosition, kStartsName)) { break; }
        thePosition = ReadAttribute(aReader, thePosition, &aTag->mNode, &theNext);
        ++theCount;
    }
    *theNext = nullptr;
    if (theCount > kMaxUnindexed && thePosition) { IndexAttributes(aReader->mMemory.GetDocument(), aTag, theCount); }
    return thePosition;
}

static char* ReadStartTag(Reader* aReader, char* aPosition)
{
    QName theName;
    char* thePosition = ReadName(aPosition + 1, &theName);
    StartTag* theTag = OpenElement(aReader, theName);
    theTag->mAttributes = nullptr;
    if (*thePosition != '>') { thePosition = ReadAttributes(aReader, thePosition, theTag); }
    if (!thePosition) { return nullptr; }

    const bool fIsEmpty = *thePosition == '/';
    thePosition += fIsEmpty;
    if (*thePosition != '>') { return nullptr; }
    theTag->mContent = ++thePosition;
    if (fIsEmpty)
    {
        theTag->mNode.EmptyTag = 1;
        CloseElement(aReader, 0);
    }
    return thePosition;
}

// @return NULL when there is another name.
static char* SkipName(char* aPosition, const char* anEnd, std::string_view aName)
{
    const bool fFits = static_cast<size_t>(anEnd - aPosition) > aName.size();
    if (!fFits || !Shared::EqualNames(aPosition, aName.data(), aName.size())) { return nullptr; }
    return aPosition + aName.size();
}

// The name of an end tag is that of the innermost open element, so it is compared, not read.
static char* ReadEndTag(Reader* aReader, char* aPosition)
{
    char* theName = aPosition + 2;
    const ILibXMLNode* theParent = aReader->mParent;
    char* thePosition = theParent ? SkipName(theName, aReader->mEnd, Shared::QualifiedName(theParent)) : nullptr;
    if (thePosition && *thePosition != '>') { thePosition = SkipAll(thePosition, kBlank); }
    if (!thePosition || *thePosition != '>')
    {
        aReader->mMisplaced = theName;
        return nullptr;
    }
    CloseElement(aReader, theName - Shared::QualifiedName(theParent).data());
    return thePosition + 1;
}

// A declaration with its quoted texts and, between brackets, its own declarations.
static char* SkipDeclaration(char* aPosition, const char* anEnd)
{
    size_t theOpenTags = 0;
    for (char* thePosition = aPosition; thePosition && thePosition < anEnd;)
    {
        if (StartsWith(thePosition, anEnd, "<!--")) { thePosition = FindPast(thePosition + 4, anEnd, "-->"); }
        else if (StartsWith(thePosition, anEnd, "<?")) { thePosition = FindPast(thePosition + 2, anEnd, "?>"); }
        else if (*thePosition == '"' || *thePosition == '\'')
        {
            char* theQuote = Find(thePosition + 1, anEnd, *thePosition);
            thePosition = theQuote ? theQuote + 1 : nullptr;
        }
        else
        {
            theOpenTags += *thePosition == '<';
            theOpenTags -= *thePosition == '>';
            ++thePosition;
            if (theOpenTags == 0) { return thePosition; }
        }
    }
    return nullptr;
}

// A comment, a CDATA section, a processing instruction or a declaration; they give no node.
__attribute__((noinline)) static char* SkipMarkup(char* aPosition, const char* anEnd)
{
    if (aPosition[1] == '?') { return FindPast(aPosition + 2, anEnd, "?>"); }
    if (StartsWith(aPosition, anEnd, "<!--")) { return FindPast(aPosition + 4, anEnd, "-->"); }
    if (StartsWith(aPosition, anEnd, "<![CDATA[")) { return FindPast(aPosition + 9, anEnd, "]]>"); }
    return SkipDeclaration(aPosition, anEnd);
}

// At a "<".
static char* ReadMarkup(Reader* aReader, char* aPosition)
{
    const char theByte = aPosition[1]; // at the last ">" at the latest
    if (theByte == '/') { return ReadEndTag(aReader, aPosition); }
    if (Is(theByte, kStartsName)) { return ReadStartTag(aReader, aPosition); }
    return theByte == '!' || theByte == '?' ? SkipMarkup(aPosition, aReader->mEnd) : nullptr;
}

static bool ReadTags(Reader* aReader, char* aPosition)
{
    char* thePosition = aPosition;
    while (thePosition < aReader->mEnd)
    {
        if (*thePosition != '<') { thePosition = Find(thePosition, aReader->mEnd, '<'); }
        if (!thePosition) { return true; }
        thePosition = ReadMarkup(aReader, thePosition);
        if (!thePosition) { return false; }
    }
    return true;
}

// Reads up to the last ">"; a "<" after it begins no tag.
static bool ReadText(Reader* aReader, char* aText, size_t aLength)
{
    if (aLength > INT_MAX) { return false; } // lengths of names and values are ints
    char* theLast = static_cast<char*>(memrchr(aText, '>', aLength));
    char* theEnd = theLast ? theLast + 1 : aText;
    const bool fIsCut = Find(theEnd, aText + aLength, '<') != nullptr;
    aReader->mEnd = theEnd;
    return ReadTags(aReader, aText) && !fIsCut && !aReader->mParent;
}

static bool IsEndTag(char* aName, QName* aQName)
{
    return Is(*aName, kStartsName) && *SkipAll(ReadName(aName, aQName), kBlank) == '>';
}

// An end tag out of place is the last node of the list, without a start tag of its own; a list without another node has
// one without a name.
static void Refuse(Reader* aReader, char* aText)
{
    Document* theDocument = aReader->mMemory.GetDocument();
    QName theName;
    const bool fIsMisplaced = aReader->mMisplaced && IsEndTag(aReader->mMisplaced, &theName);
    if (!fIsMisplaced)
    {
        theDocument->mError = kILibProcessXML_IncompleteXML;
        theName = { aText, 0, 0, nullptr };
    }
    else if (aReader->mParent) { theDocument->mError = kILibProcessXML_IllegalCloseTagOrder; }
    else { theDocument->mError = kILibProcessXML_IllegalCloseTag; }
    if (fIsMisplaced || !theDocument->mFirst)
    {
        AppendNode(aReader, &aReader->mMemory.Allocate<StartTag>()->mNode, theName, 0);
    }
}

ILibXMLNode* Read(char* aText, size_t aLength, void* aMemory, size_t aSize)
{
    Reader theReader = { Memory(aLength, aMemory, aSize), aText, nullptr, nullptr, nullptr, nullptr };
    Document* theDocument = theReader.mMemory.GetDocument();
    theReader.mNext = &theDocument->mFirst;
    if (!ReadText(&theReader, aText, aLength)) { Refuse(&theReader, aText); }
    *theReader.mNext = nullptr;
    ILibXMLNode* theFirst = theDocument->mFirst;
    if (!theFirst) { Delete(theDocument); }
    return theFirst;
}

} // namespace XML
