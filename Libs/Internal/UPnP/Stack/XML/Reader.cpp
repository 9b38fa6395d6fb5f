#include <UPnP/Stack/XML/Reader.h>

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
 * of the text is a ">", where names and blanks end without a count. */
struct Reader
{
    Memory mMemory;
    const char* mEnd;
    ILibXMLNode* mFirst;
    ILibXMLNode** mNext;    // where the next node is to be linked
    ILibXMLNode* mParent;   // the innermost element that is open; NULL at the top
    ILibXMLNode* mPrevious; // the last element before with the same parent; NULL when there is none
};

struct QName
{
    char* mBegin;
    char* mColon; // NULL without a prefix
    char* mEnd;
};

} // namespace

// A prefix counts when there is something on both sides of the first colon.
static char* ReadName(char* aPosition, QName* aName)
{
    if (!Is(*aPosition, kStartsName)) { return nullptr; }
    char* theEnd = SkipAll(aPosition, kInName);
    char* theColon = nullptr;
    if (*theEnd == ':')
    {
        theColon = theEnd;
        theEnd = SkipAll(theColon + 1, kInName | kColon);
        if (theColon == aPosition || theColon + 1 == theEnd) { theColon = nullptr; }
    }
    *aName = { aPosition, theColon, theEnd };
    return theEnd;
}

static void Link(Reader* aReader, ILibXMLNode* aNode)
{
    aNode->Next = nullptr;
    aNode->Peer = nullptr;
    *aReader->mNext = aNode;
    aReader->mNext = &aNode->Next;
}

static void AppendNode(Reader* aReader, ILibXMLNode* aNode, const QName& aName, int afStartTag)
{
    aNode->Name = aName.mColon ? aName.mColon + 1 : aName.mBegin;
    aNode->NSTag = aName.mColon ? aName.mBegin : nullptr;
    aNode->NameLength = static_cast<int>(aName.mEnd - aNode->Name);
    aNode->NSLength = aName.mColon ? static_cast<int>(aName.mColon - aName.mBegin) : 0;
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
static void CloseElement(Reader* aReader, ptrdiff_t aDistance)
{
    ILibXMLNode* theStartTag = aReader->mParent;
    aReader->mParent = theStartTag->Parent;
    aReader->mPrevious = theStartTag;
    ILibXMLNode* theEndTag = aReader->mMemory.Allocate<ILibXMLNode>();
    *theEndTag = *theStartTag;
    theEndTag->Name += aDistance;
    if (theEndTag->NSTag) { theEndTag->NSTag += aDistance; }
    theEndTag->StartTag = 0;
    theEndTag->StartingTag = theStartTag;
    theStartTag->ClosingTag = theEndTag;
    Link(aReader, theEndTag);
}

// From the name to the closing quote.
static char* ReadAttribute(Reader* aReader, char* aPosition, ILibXMLNode* aNode, ILibXMLAttribute*** aNext)
{
    QName theName;
    char* thePosition = ReadName(aPosition, &theName);
    if (!thePosition) { return nullptr; }
    if (*thePosition != '=') { thePosition = SkipAll(thePosition, kBlank); }
    if (*thePosition != '=') { return nullptr; }
    ++thePosition;
    if (*thePosition != '"') { thePosition = SkipAll(thePosition, kBlank); }
    if (*thePosition != '"' && *thePosition != '\'') { return nullptr; }
    char* theValue = thePosition + 1;
    char* theQuote = Find(theValue, aReader->mEnd, *thePosition);
    if (!theQuote) { return nullptr; }

    ILibXMLAttribute* theAttribute = aReader->mMemory.Allocate<ILibXMLAttribute>();
    theAttribute->Name = theName.mColon ? theName.mColon + 1 : theName.mBegin;
    theAttribute->Prefix = theName.mColon ? theName.mBegin : nullptr;
    theAttribute->NameLength = static_cast<int>(theName.mEnd - theAttribute->Name);
    theAttribute->PrefixLength = theName.mColon ? static_cast<int>(theName.mColon - theName.mBegin) : 0;
    theAttribute->Parent = aNode;
    theAttribute->Value = theValue;
    theAttribute->ValueLength = static_cast<int>(theQuote - theValue);
    **aNext = theAttribute;
    *aNext = &theAttribute->Next;
    return theQuote + 1;
}

// From the name or the quote before it on. @return the position of the ">" or "/" after the last attribute.
static char* ReadAttributes(Reader* aReader, char* aPosition, StartTag* aTag)
{
    ILibXMLAttribute** theNext = &aTag->mAttributes;
    char* thePosition = aPosition;
    size_t theCount = 0;
    while (thePosition)
    {
        if (*thePosition == ' ') { ++thePosition; } // mostly there is one, and a name after it
        if (!Is(*thePosition, kStartsName)) { thePosition = SkipAll(thePosition, kBlank); }
        if (*thePosition == '>' || *thePosition == '/') { break; }
        thePosition = ReadAttribute(aReader, thePosition, &aTag->mNode, &theNext);
        ++theCount;
    }
    *theNext = nullptr;
    if (theCount > kMaxUnindexed && thePosition) { IndexAttributes(&aReader->mMemory, aTag, theCount); }
    return thePosition;
}

static char* ReadStartTag(Reader* aReader, char* aPosition)
{
    QName theName;
    char* thePosition = ReadName(aPosition + 1, &theName);
    if (!thePosition) { return nullptr; }
    StartTag* theTag = OpenElement(aReader, theName);
    thePosition = ReadAttributes(aReader, thePosition, theTag);
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

// An end tag out of place is the last node of the list, without a start tag of its own.
__attribute__((noinline)) static char* Refuse(Reader* aReader, char* aName)
{
    QName theName;
    char* thePosition = ReadName(aName, &theName);
    if (!thePosition || *SkipAll(thePosition, kBlank) != '>') { return nullptr; }
    Document* theDocument = aReader->mMemory.GetDocument();
    theDocument->mError = aReader->mParent ? kILibProcessXML_IllegalCloseTagOrder : kILibProcessXML_IllegalCloseTag;
    AppendNode(aReader, &aReader->mMemory.Allocate<StartTag>()->mNode, theName, 0);
    return nullptr;
}

// The name of an end tag is that of the innermost open element, so it is compared, not read.
static char* ReadEndTag(Reader* aReader, char* aPosition)
{
    const ILibXMLNode* theParent = aReader->mParent;
    char* theName = aPosition + 2;
    if (!theParent) { return Refuse(aReader, theName); }
    const char* theParentName = theParent->NSTag ? theParent->NSTag : theParent->Name;
    const size_t theLength = static_cast<size_t>(theParent->Name + theParent->NameLength - theParentName);
    const bool fFits = static_cast<size_t>(aReader->mEnd - theName) > theLength;
    if (!fFits || memcmp(theName, theParentName, theLength) != 0) { return Refuse(aReader, theName); }
    char* thePosition = SkipAll(theName + theLength, kBlank);
    if (*thePosition != '>') { return Refuse(aReader, theName); }
    CloseElement(aReader, theName - theParentName);
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

// A comment, a CDATA section, a processing instruction or a declaration; no node stands for them.
__attribute__((noinline)) static char* SkipMarkup(char* aPosition, const char* anEnd)
{
    if (aPosition[1] == '?') { return FindPast(aPosition + 2, anEnd, "?>"); }
    if (StartsWith(aPosition, anEnd, "<!--")) { return FindPast(aPosition + 4, anEnd, "-->"); }
    if (StartsWith(aPosition, anEnd, "<![CDATA[")) { return FindPast(aPosition + 9, anEnd, "]]>"); }
    return SkipDeclaration(aPosition, anEnd);
}

static bool ReadTags(Reader* aReader, char* aPosition)
{
    char* thePosition = aPosition;
    while (thePosition < aReader->mEnd)
    {
        if (*thePosition != '<') { thePosition = Find(thePosition, aReader->mEnd, '<'); }
        if (!thePosition) { return true; }
        switch (thePosition[1]) // at the last ">" at the latest
        {
        case '/': thePosition = ReadEndTag(aReader, thePosition); break;
        case '!':
        case '?': thePosition = SkipMarkup(thePosition, aReader->mEnd); break;
        default: thePosition = ReadStartTag(aReader, thePosition); break;
        }
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

ILibXMLNode* Read(char* aText, size_t aLength)
{
    Reader theReader = { Memory(aLength), aText, nullptr, nullptr, nullptr, nullptr };
    theReader.mNext = &theReader.mFirst;
    Document* theDocument = theReader.mMemory.GetDocument();
    const bool fIsRead = ReadText(&theReader, aText, aLength);
    if (!fIsRead && theDocument->mError == kILibProcessXML_NoError)
    {
        theDocument->mError = kILibProcessXML_IncompleteXML;
    }
    if (theReader.mFirst) { return theReader.mFirst; }
    if (fIsRead) { Delete(theDocument); }
    else { AppendNode(&theReader, &theReader.mMemory.Allocate<StartTag>()->mNode, { aText, nullptr, aText }, 0); }
    return theReader.mFirst;
}

} // namespace XML
