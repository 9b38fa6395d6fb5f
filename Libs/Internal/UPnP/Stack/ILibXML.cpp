#include <UPnP/Stack/ILibXML.h>

#include <initializer_list>
#include <limits.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

// ---- The memory of a document: a few blocks from which nodes and attributes are cut ----

struct ILibXMLDocument
{
    int mError; // a kILibProcessXML_*: where there is one, the reader stopped
    struct ILibXMLBlock* mBlocks;
    char* mFree; // mFree to mFreeEnd: the rest of the newest block
    char* mFreeEnd;
    size_t mSize; // of all blocks
};

struct ILibXMLBlock
{
    ILibXMLBlock* mNext;
};

// Small blocks are what allocators give out fastest; from the fourth on they grow with the document.
static const size_t kMinBlockSize = 1008;

static ILibXMLDocument* NewDocument()
{
    ILibXMLDocument* theDocument = static_cast<ILibXMLDocument*>(zoMalloc(kMinBlockSize));
    char* theMemory = reinterpret_cast<char*>(theDocument);
    *theDocument = { kILibProcessXML_NoError, nullptr, theMemory + sizeof(ILibXMLDocument), theMemory + kMinBlockSize,
                     kMinBlockSize };
    return theDocument;
}

static void ReleaseDocument(ILibXMLDocument* aDocument)
{
    for (ILibXMLBlock* theBlock = aDocument->mBlocks; theBlock;)
    {
        ILibXMLBlock* theNext = theBlock->mNext;
        free(theBlock);
        theBlock = theNext;
    }
    free(aDocument);
}

__attribute__((noinline)) static void AddBlock(ILibXMLDocument* aDocument)
{
    const size_t theSize = aDocument->mSize / 4 > kMinBlockSize ? aDocument->mSize / 4 : kMinBlockSize;
    ILibXMLBlock* theBlock = static_cast<ILibXMLBlock*>(zoMalloc(theSize));
    theBlock->mNext = aDocument->mBlocks;
    aDocument->mBlocks = theBlock;
    aDocument->mSize += theSize;
    aDocument->mFree = reinterpret_cast<char*>(theBlock + 1);
    aDocument->mFreeEnd = reinterpret_cast<char*>(theBlock) + theSize;
}

// Uninitialised memory for one record; records are multiples of a pointer's size, so that each is aligned.
template <typename Record>
static Record* Cut(ILibXMLDocument* aDocument)
{
    static_assert(sizeof(Record) % alignof(void*) == 0 && alignof(Record) <= alignof(void*), "records stay aligned");
    if (static_cast<size_t>(aDocument->mFreeEnd - aDocument->mFree) < sizeof(Record)) { AddBlock(aDocument); }
    char* theMemory = aDocument->mFree;
    aDocument->mFree += sizeof(Record);
    return reinterpret_cast<Record*>(theMemory);
}

static_assert(sizeof(ILibXMLDocument) % alignof(void*) == 0 && sizeof(ILibXMLBlock) % alignof(void*) == 0,
              "what follows them is aligned");

// ---- Reading tags ----

// What reads a tag is put into one function when compiling, so that the reader's position stays in a register.

namespace
{

// Reads the text from mPosition to mEnd and appends nodes. The byte before mEnd is a ">": what skips or reads a name
// ends there without counting. Nodes are linked as they are read: what is found out about a tag is used at once. A
// function that returns false has met something malformed, or an end tag out of place, which is then in the document.
struct Reader
{
    ILibXMLDocument* mDocument;
    char* mPosition;
    char* mEnd;
    ILibXMLNode* mFirst;
    ILibXMLNode* mLast;
    ILibXMLNode* mParent;   // the innermost element that is open; NULL at the top
    ILibXMLNode* mPrevious; // the element before, with that parent; NULL when there is none
};

struct QName
{
    char* mBegin;
    char* mColon; // NULL without a prefix
    char* mEnd;
};

enum : uint8
{
    kBlank = 1,
    kEndsName = 2,
    kColon = 4,
    kEscaped = 8
};

struct ByteClasses
{
    uint8 mClass[256];
    constexpr ByteClasses() : mClass()
    {
        for (const char theBlank : { ' ', '\t', '\r', '\n' })
            mClass[static_cast<uint8>(theBlank)] = kBlank | kEndsName;
        for (const char theMark : { '\0', '<', '>', '/', '=', '"', '\'' })
            mClass[static_cast<uint8>(theMark)] = kEndsName;
        mClass[static_cast<uint8>(':')] = kColon;
        for (const char theCharacter : { '<', '>', '&', '"', '\'' })
            mClass[static_cast<uint8>(theCharacter)] |= kEscaped;
    }
};

constexpr ByteClasses kBytes;

} // namespace

static bool Is(char aByte, uint8 aClass) { return (kBytes.mClass[static_cast<uint8>(aByte)] & aClass) != 0; }

// Ends at the last ">" of the text at the latest.
[[gnu::always_inline]] static inline char* SkipBlanks(char* aPosition)
{
    while (Is(*aPosition, kBlank))
        ++aPosition;
    return aPosition;
}

static bool StartsWith(const char* aPosition, const char* anEnd, const char* aText, size_t aLength)
{
    return static_cast<size_t>(anEnd - aPosition) >= aLength && memcmp(aPosition, aText, aLength) == 0;
}

// The position past the first aTerminator, two bytes and then ">", that begins at aPosition or later; NULL without one.
static char* FindPast(char* aPosition, const char* anEnd, const char* aTerminator, size_t aLength)
{
    for (char* theSearch = aPosition; theSearch < anEnd;)
    {
        char* theEnd = static_cast<char*>(memchr(theSearch, '>', static_cast<size_t>(anEnd - theSearch)));
        if (!theEnd) { return nullptr; }
        theSearch = theEnd + 1;
        if (static_cast<size_t>(theSearch - aPosition) >= aLength &&
            memcmp(theSearch - aLength, aTerminator, aLength) == 0)
        {
            return theSearch;
        }
    }
    return nullptr;
}

// The place of the first byte whose top bit is set in the mask, counted in memory's order; the mask is not 0.
static inline unsigned FirstByte(uint64 aMask)
{
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return static_cast<unsigned>(__builtin_ctzll(aMask)) / 8;
#else
    return static_cast<unsigned>(__builtin_clzll(aMask)) / 8;
#endif
}

// The first byte of the classes. They are all below 0x40, and so are few of the others in a name: eight bytes are
// looked at together for what is that low.
[[gnu::always_inline]] static inline char* FindMark(char* aPosition, const char* anEnd, uint8 aClasses)
{
    const uint64 kTopBits = 0x8080808080808080u;
    uint64 theWord;
    while (static_cast<size_t>(anEnd - aPosition) >= sizeof(theWord))
    {
        memcpy(&theWord, aPosition, sizeof(theWord));
        const uint64 theLowBytes = ~(theWord | theWord << 1) & kTopBits;
        if (theLowBytes == 0)
        {
            aPosition += sizeof(theWord);
            continue;
        }
        aPosition += FirstByte(theLowBytes);
        if (Is(*aPosition, aClasses)) { return aPosition; }
        ++aPosition; // a digit, a hyphen or a dot
    }
    while (!Is(*aPosition, aClasses))
        ++aPosition;
    return aPosition;
}

// A prefix counts when there is something on both sides of the first colon.
[[gnu::always_inline]] static inline bool ReadName(Reader* aReader, QName* aName)
{
    char* theBegin = aReader->mPosition;
    char* thePosition = FindMark(theBegin, aReader->mEnd, kEndsName | kColon);
    char* theColon = nullptr;
    if (*thePosition == ':')
    {
        theColon = thePosition;
        thePosition = FindMark(theColon + 1, aReader->mEnd, kEndsName);
        if (theColon == theBegin || theColon + 1 == thePosition) { theColon = nullptr; }
    }
    *aName = { theBegin, theColon, thePosition };
    aReader->mPosition = thePosition;
    return thePosition > theBegin;
}

[[gnu::always_inline]] static inline ILibXMLNode* AppendNode(Reader* aReader, const QName& aName, int afStartTag)
{
    ILibXMLNode* theNode = Cut<ILibXMLNode>(aReader->mDocument);
    theNode->Name = aName.mColon ? aName.mColon + 1 : aName.mBegin;
    theNode->NSTag = aName.mColon ? aName.mBegin : nullptr;
    theNode->NameLength = static_cast<int>(aName.mEnd - theNode->Name);
    theNode->NSLength = aName.mColon ? static_cast<int>(aName.mColon - aName.mBegin) : 0;
    theNode->StartTag = afStartTag;
    theNode->EmptyTag = 0;
    theNode->Next = nullptr;
    theNode->Parent = aReader->mParent;
    theNode->Peer = nullptr;
    theNode->ClosingTag = nullptr;
    theNode->StartingTag = nullptr;
    theNode->Attributes = nullptr;
    theNode->TagEnd = nullptr;
    if (aReader->mLast) { aReader->mLast->Next = theNode; }
    else { aReader->mFirst = theNode; }
    aReader->mLast = theNode;
    return theNode;
}

[[gnu::always_inline]] static inline void OpenElement(Reader* aReader, ILibXMLNode* aStartTag)
{
    if (aReader->mPrevious) { aReader->mPrevious->Peer = aStartTag; }
    aReader->mPrevious = nullptr;
    aReader->mParent = aStartTag;
}

// Appends the end tag of the innermost open element; the tag itself has been read.
[[gnu::always_inline]] static inline ILibXMLNode* CloseElement(Reader* aReader, const QName& aName)
{
    ILibXMLNode* theStartTag = aReader->mParent;
    aReader->mParent = theStartTag->Parent;
    aReader->mPrevious = theStartTag;
    ILibXMLNode* theEndTag = AppendNode(aReader, aName, 0);
    theEndTag->TagEnd = aReader->mPosition;
    theEndTag->StartingTag = theStartTag;
    theStartTag->ClosingTag = theEndTag;
    return theEndTag;
}

// From the name on, to past the closing quote.
[[gnu::always_inline]] static inline bool ReadAttribute(Reader* aReader, ILibXMLNode* aNode, ILibXMLAttribute*** aLink)
{
    QName theName;
    if (!ReadName(aReader, &theName)) { return false; }
    char* thePosition = aReader->mPosition;
    if (*thePosition != '=') { thePosition = SkipBlanks(thePosition); }
    if (*thePosition != '=') { return false; }
    ++thePosition;
    if (*thePosition != '"') { thePosition = SkipBlanks(thePosition); }
    if (*thePosition != '"' && *thePosition != '\'') { return false; }
    char* theValue = thePosition + 1;
    char* theQuote = static_cast<char*>(memchr(theValue, *thePosition, static_cast<size_t>(aReader->mEnd - theValue)));
    if (!theQuote) { return false; }
    aReader->mPosition = theQuote + 1;

    ILibXMLAttribute* theAttribute = Cut<ILibXMLAttribute>(aReader->mDocument);
    theAttribute->Name = theName.mColon ? theName.mColon + 1 : theName.mBegin;
    theAttribute->Prefix = theName.mColon ? theName.mBegin : nullptr;
    theAttribute->NameLength = static_cast<int>(theName.mEnd - theAttribute->Name);
    theAttribute->PrefixLength = theName.mColon ? static_cast<int>(theName.mColon - theName.mBegin) : 0;
    theAttribute->Parent = aNode;
    theAttribute->Value = theValue;
    theAttribute->ValueLength = static_cast<int>(theQuote - theValue);
    theAttribute->Next = nullptr;
    **aLink = theAttribute;
    *aLink = &theAttribute->Next;
    return true;
}

[[gnu::always_inline]] static inline bool ReadStartTag(Reader* aReader)
{
    QName theName;
    ++aReader->mPosition;
    if (!ReadName(aReader, &theName)) { return false; }
    ILibXMLNode* theNode = AppendNode(aReader, theName, 1);
    OpenElement(aReader, theNode);
    ILibXMLAttribute** theLink = &theNode->Attributes;
    for (;;)
    {
        if (*aReader->mPosition <= ' ')
        {
            aReader->mPosition = SkipBlanks(aReader->mPosition + (*aReader->mPosition == ' '));
        }
        if (*aReader->mPosition == '>')
        {
            theNode->TagEnd = ++aReader->mPosition;
            return true;
        }
        if (*aReader->mPosition == '/') { break; }
        if (!ReadAttribute(aReader, theNode, &theLink)) { return false; }
    }

    if (aReader->mPosition[1] != '>') { return false; }
    aReader->mPosition += 2;
    theNode->TagEnd = aReader->mPosition;
    theNode->EmptyTag = 1;
    CloseElement(aReader, theName)->EmptyTag = 1;
    return true;
}

static char* QualifiedName(const ILibXMLNode* aNode) { return aNode->NSTag ? aNode->NSTag : aNode->Name; }

static size_t QualifiedNameLength(const ILibXMLNode* aNode)
{
    return static_cast<size_t>(aNode->Name + aNode->NameLength - QualifiedName(aNode));
}

template <typename Word>
[[gnu::always_inline]] static inline bool HaveSameEnds(const char* aLeft, const char* aRight, size_t aLength)
{
    Word theWords[4];
    memcpy(&theWords[0], aLeft, sizeof(Word));
    memcpy(&theWords[1], aRight, sizeof(Word));
    memcpy(&theWords[2], aLeft + aLength - sizeof(Word), sizeof(Word));
    memcpy(&theWords[3], aRight + aLength - sizeof(Word), sizeof(Word));
    return theWords[0] == theWords[1] && theWords[2] == theWords[3];
}

// As memcmp, but only whether they are equal; names are short.
[[gnu::always_inline]] static inline bool AreEqual(const char* aLeft, const char* aRight, size_t aLength)
{
    if (aLength >= 8 && aLength <= 16) { return HaveSameEnds<uint64>(aLeft, aRight, aLength); }
    if (aLength >= 2 && aLength <= 4) { return HaveSameEnds<uint16>(aLeft, aRight, aLength); }
    return memcmp(aLeft, aRight, aLength) == 0;
}

// The name of an end tag is that of the innermost open element, so it need not be looked at byte by byte.
[[gnu::always_inline]] static inline bool TakeNameOfParent(Reader* aReader, QName* aName)
{
    const ILibXMLNode* theParent = aReader->mParent;
    const size_t theLength = QualifiedNameLength(theParent);
    char* theBegin = aReader->mPosition;
    const bool fIsSame = static_cast<size_t>(aReader->mEnd - theBegin) > theLength &&
                         Is(theBegin[theLength], kEndsName) && AreEqual(theBegin, QualifiedName(theParent), theLength);
    if (!fIsSame) { return false; }
    *aName = { theBegin, theParent->NSTag ? theBegin + theParent->NSLength : nullptr, theBegin + theLength };
    aReader->mPosition = aName->mEnd;
    return true;
}

// An end tag out of place is the last node of the list, without a start tag of its own.
static bool Refuse(Reader* aReader, const QName& aName, int anError)
{
    AppendNode(aReader, aName, 0)->TagEnd = aReader->mPosition;
    aReader->mDocument->mError = anError;
    return false;
}

[[gnu::always_inline]] static inline bool ReadEndTag(Reader* aReader)
{
    QName theName;
    aReader->mPosition += 2;
    const bool fIsOfParent = aReader->mParent && TakeNameOfParent(aReader, &theName);
    if (!fIsOfParent && !ReadName(aReader, &theName)) { return false; }
    if (*aReader->mPosition != '>') { aReader->mPosition = SkipBlanks(aReader->mPosition); }
    if (*aReader->mPosition != '>') { return false; }
    ++aReader->mPosition;
    if (!aReader->mParent) { return Refuse(aReader, theName, kILibProcessXML_IllegalCloseTag); }
    if (!fIsOfParent) { return Refuse(aReader, theName, kILibProcessXML_IllegalCloseTagOrder); }
    CloseElement(aReader, theName);
    return true;
}

// To past the declaration, with its quoted texts and, between brackets, its own declarations.
static char* SkipDeclaration(char* aPosition, const char* anEnd)
{
    size_t theOpenTags = 0;
    for (char* thePosition = aPosition; thePosition && thePosition < anEnd;)
    {
        if (StartsWith(thePosition, anEnd, "<!--", 4)) { thePosition = FindPast(thePosition + 4, anEnd, "-->", 3); }
        else if (StartsWith(thePosition, anEnd, "<?", 2)) { thePosition = FindPast(thePosition + 2, anEnd, "?>", 2); }
        else if (*thePosition == '"' || *thePosition == '\'')
        {
            char* theQuote =
                static_cast<char*>(memchr(thePosition + 1, *thePosition, static_cast<size_t>(anEnd - thePosition - 1)));
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

// Past a comment, a CDATA section, a processing instruction or a declaration; no node stands for them.
static bool SkipMarkup(Reader* aReader)
{
    char* theBegin = aReader->mPosition;
    const char* theEnd = aReader->mEnd;
    if (theBegin[1] == '?') { aReader->mPosition = FindPast(theBegin + 2, theEnd, "?>", 2); }
    else if (StartsWith(theBegin, theEnd, "<!--", 4)) { aReader->mPosition = FindPast(theBegin + 4, theEnd, "-->", 3); }
    else if (StartsWith(theBegin, theEnd, "<![CDATA[", 9))
    {
        aReader->mPosition = FindPast(theBegin + 9, theEnd, "]]>", 3);
    }
    else { aReader->mPosition = SkipDeclaration(theBegin, theEnd); }
    return aReader->mPosition != nullptr;
}

[[gnu::always_inline]] static inline bool ReadTags(Reader* aReader)
{
    while (aReader->mPosition < aReader->mEnd)
    {
        if (*aReader->mPosition != '<')
        {
            aReader->mPosition = static_cast<char*>(
                memchr(aReader->mPosition, '<', static_cast<size_t>(aReader->mEnd - aReader->mPosition)));
            if (!aReader->mPosition) { return true; }
        }
        bool fIsTag; // the byte behind the "<" is there, since the last one is a ">"
        switch (aReader->mPosition[1])
        {
        case '/': fIsTag = ReadEndTag(aReader); break;
        case '!':
        case '?': fIsTag = SkipMarkup(aReader); break;
        default: fIsTag = ReadStartTag(aReader); break;
        }
        if (!fIsTag) { return false; }
    }
    return true;
}

// Reads up to the last ">"; a "<" behind it begins no tag.
[[gnu::always_inline]] static inline bool ReadText(Reader* aReader)
{
    char* theBegin = aReader->mPosition;
    const size_t theLength = static_cast<size_t>(aReader->mEnd - theBegin);
    const void* theLast = memrchr(theBegin, '>', theLength);
    const size_t theTagsLength = theLast ? static_cast<size_t>(static_cast<const char*>(theLast) + 1 - theBegin) : 0;
    const bool fIsCut = memchr(theBegin + theTagsLength, '<', theLength - theTagsLength) != nullptr;
    aReader->mEnd = theBegin + theTagsLength;
    return ReadTags(aReader) && !fIsCut && !aReader->mParent;
}

ILibXMLNode* ILibParseXML(char* aText, size_t anOffset, size_t aLength)
{
    if (!aText || aLength == 0) { return nullptr; }
    char* theBegin = aText + anOffset;
    ILibXMLDocument* theDocument = NewDocument();
    Reader theReader = { theDocument, theBegin, theBegin + aLength, nullptr, nullptr, nullptr, nullptr };
    const bool fIsRead = aLength <= INT_MAX && ReadText(&theReader);
    if (!fIsRead && theDocument->mError == kILibProcessXML_NoError)
    {
        theDocument->mError = kILibProcessXML_IncompleteXML;
    }
    if (!theReader.mFirst && fIsRead) { ReleaseDocument(theDocument); }
    if (!theReader.mFirst && !fIsRead) { AppendNode(&theReader, { theBegin, nullptr, theBegin }, 0); }
    return theReader.mFirst;
}

// ---- Using the nodes ----

// The first node is the first record of its document.
static ILibXMLDocument* DocumentOf(ILibXMLNode* aFirst) { return reinterpret_cast<ILibXMLDocument*>(aFirst) - 1; }

int ILibProcessXMLNodeList(ILibXMLNode* aNodeList)
{
    return aNodeList ? DocumentOf(aNodeList)->mError : kILibProcessXML_NoError;
}

void ILibDestructXMLNodeList(ILibXMLNode* aNodeList)
{
    if (aNodeList) { ReleaseDocument(DocumentOf(aNodeList)); }
}

ILibXMLAttribute* ILibGetXMLAttributes(ILibXMLNode* aNode) { return aNode ? aNode->Attributes : nullptr; }

// The attributes are the document's.
void ILibDestructXMLAttributeList(ILibXMLAttribute* /*aList*/) {}

int ILibReadInnerXML(ILibXMLNode* aNode, char** aStart)
{
    *aStart = nullptr;
    if (!aNode || !aNode->StartTag || !aNode->ClosingTag) { return 0; }
    *aStart = aNode->TagEnd;
    return aNode->EmptyTag ? 0 : static_cast<int>(QualifiedName(aNode->ClosingTag) - 2 - aNode->TagEnd);
}

// ---- Entities ----

namespace
{

struct Entity
{
    const char* mName;
    size_t mLength;
    char mCharacter;
};

} // namespace

static const Entity kEntities[] = {
    { "&amp;", 5, '&' }, { "&lt;", 4, '<' }, { "&gt;", 4, '>' }, { "&quot;", 6, '"' }, { "&apos;", 6, '\'' },
};

static int DigitValue(char aDigit, uint32 aBase)
{
    if (aDigit >= '0' && aDigit <= '9') { return aDigit - '0'; }
    if (aBase != 16) { return -1; }
    if (aDigit >= 'a' && aDigit <= 'f') { return aDigit - 'a' + 10; }
    return aDigit >= 'A' && aDigit <= 'F' ? aDigit - 'A' + 10 : -1;
}

static size_t WriteUTF8(uint32 aCharacter, char* aTarget)
{
    const size_t theLength = aCharacter < 0x80 ? 1 : aCharacter < 0x800 ? 2 : aCharacter < 0x10000 ? 3 : 4;
    static const uint8 kFirstBits[] = { 0, 0x00, 0xC0, 0xE0, 0xF0 };
    for (size_t i = theLength - 1; i > 0; --i, aCharacter >>= 6)
        aTarget[i] = static_cast<char>(0x80 | (aCharacter & 0x3F));
    aTarget[0] = static_cast<char>(kFirstBits[theLength] | aCharacter);
    return theLength;
}

// Reads the reference to a character at "&#". The result is its length, 0 when it is none that can be resolved.
static size_t ReadCharacterReference(const char* aText, uint32* aCharacter)
{
    const uint32 theBase = aText[2] == 'x' || aText[2] == 'X' ? 16 : 10;
    const char* theFirst = aText + (theBase == 16 ? 3 : 2);
    const char* thePosition = theFirst;
    uint32 theCharacter = 0;
    for (int theDigit; (theDigit = DigitValue(*thePosition, theBase)) >= 0; ++thePosition)
    {
        if (theCharacter <= 0x10FFFF) { theCharacter = theCharacter * theBase + static_cast<uint32>(theDigit); }
    }
    const bool fIsSurrogate = theCharacter >= 0xD800 && theCharacter <= 0xDFFF;
    if (*thePosition != ';' || theCharacter == 0 || theCharacter > 0x10FFFF || fIsSurrogate) { return 0; }
    *aCharacter = theCharacter;
    return static_cast<size_t>(thePosition + 1 - aText);
}

// Resolves the reference at aText into aTarget. The result is the length of the reference, 0 when it stays as it is.
static size_t ResolveReference(const char* aText, char* aTarget, size_t* aTargetLength)
{
    uint32 theCharacter = 0;
    if (aText[1] == '#')
    {
        const size_t theLength = ReadCharacterReference(aText, &theCharacter);
        if (theLength > 0) { *aTargetLength = WriteUTF8(theCharacter, aTarget); }
        return theLength;
    }
    for (const Entity& theEntity : kEntities)
    {
        if (aText[1] != theEntity.mName[1] || strncmp(aText, theEntity.mName, theEntity.mLength) != 0) { continue; }
        *aTarget = theEntity.mCharacter;
        *aTargetLength = 1;
        return theEntity.mLength;
    }
    return 0;
}

namespace
{

// Text that is resolved in place: what is written never gets past what was read.
struct Unescaper
{
    char* mRead;
    char* mWrite;
    char* mEnd;

    void Keep(size_t aLength)
    {
        if (mRead != mWrite) { memmove(mWrite, mRead, aLength); }
        mRead += aLength;
        mWrite += aLength;
    }
    void KeepTo(const char* aPosition) { Keep(static_cast<size_t>(aPosition - mRead)); }
};

} // namespace

static char* FindByte(char* aPosition, char* anEnd, char aByte)
{
    void* theByte = memchr(aPosition, aByte, static_cast<size_t>(anEnd - aPosition));
    return theByte ? static_cast<char*>(theByte) : anEnd;
}

// At "<". The content of a CDATA section is kept as it is; anything else is text like other text. The result is false
// when a section has no end: then no later one has.
static bool UnescapeSection(Unescaper* aText)
{
    if (!StartsWith(aText->mRead, aText->mEnd, "<![CDATA[", 9))
    {
        aText->Keep(1);
        return true;
    }
    char* theContent = aText->mRead + 9;
    const char* thePast = FindPast(theContent, aText->mEnd, "]]>", 3);
    if (!thePast) { return false; }
    aText->mRead = theContent;
    aText->KeepTo(thePast - 3);
    aText->mRead += 3;
    return true;
}

static void UnescapeReference(Unescaper* aText)
{
    size_t theWritten = 0;
    const size_t theLength = ResolveReference(aText->mRead, aText->mWrite, &theWritten);
    if (theLength == 0)
    {
        aText->Keep(1);
        return;
    }
    aText->mRead += theLength;
    aText->mWrite += theWritten;
}

int ILibInPlaceXmlUnEscape(char* aText)
{
    if (!aText) { return 0; }
    Unescaper theText = { aText, aText, aText + strlen(aText) };
    char* theReference = FindByte(aText, theText.mEnd, '&');
    char* theSection = FindByte(aText, theText.mEnd, '<');
    while (theReference < theText.mEnd || theSection < theText.mEnd)
    {
        theText.KeepTo(theReference < theSection ? theReference : theSection);
        if (theReference < theSection) { UnescapeReference(&theText); }
        else if (!UnescapeSection(&theText)) { theSection = theText.mEnd; }
        if (theReference < theText.mRead) { theReference = FindByte(theText.mRead, theText.mEnd, '&'); }
        if (theSection < theText.mRead) { theSection = FindByte(theText.mRead, theText.mEnd, '<'); }
    }
    theText.KeepTo(theText.mEnd);
    *theText.mWrite = 0;
    return static_cast<int>(theText.mWrite - aText);
}

// One of the entities stands for the character.
static const Entity& EntityOf(char aCharacter)
{
    const Entity* theEntity = kEntities;
    while (theEntity->mCharacter != aCharacter)
        ++theEntity;
    return *theEntity;
}

size_t ILibXmlEscapeLength(const char* aText)
{
    size_t theLength = 0;
    for (const char* thePosition = aText ? aText : ""; *thePosition; ++thePosition)
    {
        const size_t theAdded = Is(*thePosition, kEscaped) ? EntityOf(*thePosition).mLength : 1;
        if (theAdded >= SIZE_MAX - theLength) { abort(); } // more than memory can hold
        theLength += theAdded;
    }
    return theLength;
}

size_t ILibXmlEscape(char* aTarget, const char* aText)
{
    char* theEnd = aTarget;
    for (const char* thePosition = aText ? aText : ""; *thePosition; ++thePosition)
    {
        if (!Is(*thePosition, kEscaped))
        {
            *theEnd++ = *thePosition;
            continue;
        }
        const Entity& theEntity = EntityOf(*thePosition);
        memcpy(theEnd, theEntity.mName, theEntity.mLength);
        theEnd += theEntity.mLength;
    }
    *theEnd = '\0';
    return static_cast<size_t>(theEnd - aTarget);
}
