#include <UPnP/Stack/ILibXML.h>

#include <Shared/Append.h>
#include <Shared/Sizes.h>
#include <UPnP/Stack/XML/Bytes.h>
#include <algorithm>
#include <limits.h>
#include <stdlib.h>
#include <string_view>
#include <zoltTools/zoBuffer.h>

/* What is wrong with a text that the reader refused. It goes through the text by the reader's rules, but slowly, with
 * what a message needs; reading itself keeps nothing for it. */

namespace XML
{

namespace
{

class ErrorFinder
{
public:
    explicit ErrorFinder(std::string_view aText) : mText(aText) {}
    ~ErrorFinder() { free(mOpen); }
    ErrorFinder(const ErrorFinder&) = delete;
    ErrorFinder& operator=(const ErrorFinder&) = delete;

    // The reason, and where; NULL when nothing is found.
    char* Find(size_t* anOffset)
    {
        if (Read()) { return nullptr; }
        *anOffset = mErrorOffset;
        return Shared::TakeText(mReason);
    }

private:
    // Functions that read return false once there is an error.
    bool Read();
    bool ReadStartTag();
    bool ReadAttribute();
    bool ReadEndTag();
    bool SkipPast(size_t aSkipped, std::string_view aTerminator);
    bool SkipDeclaration();
    bool SkipMarkup();
    bool ReadName(std::string_view* aName);
    void SkipBlanks();
    bool Skip(std::string_view aLiteral);
    char Next() const { return mPosition < mEnd ? mText[mPosition] : '\0'; }
    bool StartsWith(std::string_view aLiteral) const { return mText.substr(mPosition, aLiteral.size()) == aLiteral; }
    void Open(std::string_view aName);
    bool Refuse(size_t anOffset, const char* aStart, std::string_view aName = {}, const char* aMiddle = "",
                std::string_view anotherName = {}, const char* anEnd = "");

    std::string_view mText; // up to the last ">", of the text that is given
    size_t mPosition = 0;
    size_t mEnd = 0;
    std::string_view* mOpen = nullptr; // the names of the elements that are open; owned
    size_t mOpenCount = 0;
    size_t mOpenSize = 0;
    size_t mErrorOffset = 0;
    zoBuffer* mReason = nullptr;
};

// The beginning of a name, between characters: names are up to anyone.
std::string_view Shortened(std::string_view aName)
{
    const size_t kMaxLength = 64;
    size_t theLength = aName.size();
    if (theLength > kMaxLength)
    {
        theLength = kMaxLength;
        while (theLength > kMaxLength - 4 && (static_cast<unsigned char>(aName[theLength]) & 0xC0) == 0x80)
            --theLength;
    }
    return aName.substr(0, theLength);
}

bool ErrorFinder::Refuse(size_t anOffset, const char* aStart, std::string_view aName, const char* aMiddle,
                         std::string_view anotherName, const char* anEnd)
{
    mErrorOffset = anOffset;
    mReason = zoBuffer_New(128);
    zoBuffer_AppendStr(mReason, aStart);
    Shared::Append(mReason, Shortened(aName));
    zoBuffer_AppendStr(mReason, aMiddle);
    Shared::Append(mReason, Shortened(anotherName));
    zoBuffer_AppendStr(mReason, anEnd);
    return false;
}

void ErrorFinder::SkipBlanks()
{
    while (Is(Next(), kBlank))
        ++mPosition;
}

bool ErrorFinder::Skip(std::string_view aLiteral)
{
    if (!StartsWith(aLiteral)) { return false; }
    mPosition += aLiteral.size();
    return true;
}

bool ErrorFinder::ReadName(std::string_view* aName)
{
    const size_t theBegin = mPosition;
    if (!Is(Next(), kStartsName)) { return false; }
    while (Is(Next(), kInName | kColon))
        ++mPosition;
    *aName = mText.substr(theBegin, mPosition - theBegin);
    return true;
}

void ErrorFinder::Open(std::string_view aName)
{
    if (mOpenCount == mOpenSize)
    {
        mOpenSize = Shared::GrowCapacity(mOpenSize, mOpenCount + 1, 16);
        mOpen = Shared::ResizeArray(mOpen, mOpenSize);
    }
    mOpen[mOpenCount++] = aName;
}

// From the name to the closing quote.
bool ErrorFinder::ReadAttribute()
{
    const size_t theBegin = mPosition;
    std::string_view theName;
    if (!ReadName(&theName)) { return Refuse(theBegin, "an attribute, \">\" or \"/>\" was expected"); }
    SkipBlanks();
    if (!Skip("=")) { return Refuse(mPosition, "\"=\" was expected after the attribute ", theName); }
    SkipBlanks();
    const char theQuote = Next();
    if (theQuote != '"' && theQuote != '\'')
    {
        return Refuse(mPosition, "the value of the attribute ", theName, " is not in quotes");
    }
    const size_t theEnd = mText.find(theQuote, mPosition + 1);
    if (theEnd == mText.npos)
    {
        return Refuse(mPosition, "the value of the attribute ", theName, " has no closing quote");
    }
    mPosition = theEnd + 1;
    return true;
}

bool ErrorFinder::ReadStartTag()
{
    std::string_view theName;
    ++mPosition;
    if (!ReadName(&theName)) { return Refuse(mPosition, "a name was expected after \"<\""); }
    for (SkipBlanks(); Next() != '>' && Next() != '/'; SkipBlanks())
        if (!ReadAttribute()) { return false; }
    const bool fIsEmpty = Skip("/");
    if (!Skip(">")) { return Refuse(mPosition, "\">\" was expected after \"/\""); }
    if (!fIsEmpty) { Open(theName); }
    return true;
}

bool ErrorFinder::ReadEndTag()
{
    const size_t theBegin = mPosition;
    std::string_view theName;
    mPosition += 2;
    if (!ReadName(&theName)) { return Refuse(mPosition, "a name was expected after \"</\""); }
    SkipBlanks();
    if (!Skip(">")) { return Refuse(mPosition, "\">\" was expected after \"</", theName, "\""); }
    if (mOpenCount == 0) { return Refuse(theBegin, "end tag </", theName, "> without a start tag"); }
    const std::string_view theOpen = mOpen[--mOpenCount];
    if (theName == theOpen) { return true; }
    return Refuse(theBegin, "end tag </", theName, "> where </", theOpen, "> was expected");
}

// Goes past the first terminator after the bytes that are skipped.
bool ErrorFinder::SkipPast(size_t aSkipped, std::string_view aTerminator)
{
    const size_t theEnd = mText.find(aTerminator, mPosition + aSkipped);
    if (theEnd == mText.npos) { return false; }
    mPosition = theEnd + aTerminator.size();
    return true;
}

// With its quoted texts and, between brackets, its own declarations.
bool ErrorFinder::SkipDeclaration()
{
    size_t theOpenTags = 0;
    while (mPosition < mEnd)
    {
        const char theByte = Next();
        bool fIsSkipped = true;
        if (StartsWith("<!--")) { fIsSkipped = SkipPast(4, "-->"); }
        else if (StartsWith("<?")) { fIsSkipped = SkipPast(2, "?>"); }
        else if (theByte == '"' || theByte == '\'') { fIsSkipped = SkipPast(1, mText.substr(mPosition, 1)); }
        else
        {
            theOpenTags += theByte == '<';
            theOpenTags -= theByte == '>';
            ++mPosition;
            if (theOpenTags == 0) { return true; }
        }
        if (!fIsSkipped) { return false; }
    }
    return false;
}

// A comment, a CDATA section, a processing instruction or a declaration.
bool ErrorFinder::SkipMarkup()
{
    const size_t theBegin = mPosition;
    if (StartsWith("<?")) { return SkipPast(2, "?>") || Refuse(theBegin, "a processing instruction does not end"); }
    if (StartsWith("<!--")) { return SkipPast(4, "-->") || Refuse(theBegin, "a comment does not end"); }
    if (StartsWith("<![CDATA[")) { return SkipPast(9, "]]>") || Refuse(theBegin, "a CDATA section does not end"); }
    return SkipDeclaration() || Refuse(theBegin, "a declaration does not end");
}

bool ErrorFinder::Read()
{
    if (mText.size() > INT_MAX) { return Refuse(0, "the text has 2 GiB or more"); }
    const size_t theLast = mText.rfind('>');
    mEnd = theLast == mText.npos ? 0 : theLast + 1;
    const size_t theCut = mText.find('<', mEnd);
    mText = mText.substr(0, mEnd);
    while ((mPosition = std::min(mText.find('<', mPosition), mEnd)) < mEnd)
    {
        const bool fIsMarkup = StartsWith("<?") || StartsWith("<!");
        if (!(StartsWith("</") ? ReadEndTag() : fIsMarkup ? SkipMarkup() : ReadStartTag())) { return false; }
    }
    if (theCut != mText.npos) { return Refuse(theCut, "the text ends inside a tag"); }
    if (mOpenCount == 0) { return true; }
    const std::string_view theOpen = mOpen[mOpenCount - 1];
    return Refuse(static_cast<size_t>(theOpen.data() - mText.data()) - 1, "the element <", theOpen, "> is not closed");
}

} // namespace

} // namespace XML

char* ILibFindXMLError(const char* aText, size_t aLength, size_t* anOffset)
{
    *anOffset = 0;
    return aText ? XML::ErrorFinder({ aText, aLength }).Find(anOffset) : nullptr;
}
