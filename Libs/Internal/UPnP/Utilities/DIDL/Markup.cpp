#include <UPnP/Utilities/DIDL/Markup.h>

#include <Shared/ASCII.h>
#include <Shared/Digits.h>
#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

void* GrowList(void* anItems, const void* anInline, size_t aCount, size_t aItemSize)
{
    const size_t theSize = Shared::MultiplySizes(aCount, aItemSize);
    void* theItems = zoRealloc(anItems == anInline ? nullptr : anItems, Shared::MultiplySizes(theSize, 2));
    if (anItems == anInline) { memcpy(theItems, anInline, theSize); }
    return theItems;
}

bool Read(std::string_view* aText, std::string_view aLiteral)
{
    const bool fBegins =
        aText->size() >= aLiteral.size() && memcmp(aText->data(), aLiteral.data(), aLiteral.size()) == 0;
    if (fBegins) { aText->remove_prefix(aLiteral.size()); }
    return fBegins;
}

size_t ReadSpaces(std::string_view* aText)
{
    size_t theCount = 0;
    while (theCount < aText->size() && Shared::IsSpace((*aText)[theCount]))
        ++theCount;
    aText->remove_prefix(theCount);
    return theCount;
}

static bool IsAllowedCode(uint32 aCode)
{
    if (aCode < ' ') { return aCode == '\t' || aCode == '\n' || aCode == '\r'; }
    return aCode <= 0xD7FF || (aCode >= 0xE000 && aCode <= 0xFFFD) || (aCode >= 0x10000 && aCode <= 0x10FFFF);
}

// After "&#".
static bool ReadNumber(std::string_view* aText)
{
    const uint32 theBase = Read(aText, "x") ? 16 : 10;
    uint32 theCode = 0;
    while (!aText->empty() && Shared::DigitValue(aText->front()) < theBase && theCode <= 0x10FFFF)
    {
        theCode = theCode * theBase + Shared::DigitValue(aText->front());
        aText->remove_prefix(1);
    }
    return IsAllowedCode(theCode) && Read(aText, ";"); // 0 without a digit
}

static bool ReadReference(std::string_view* aText)
{
    if (Read(aText, "&#")) { return ReadNumber(aText); }
    for (const std::string_view theName : { "&amp;", "&lt;", "&gt;", "&quot;", "&apos;" })
        if (Read(aText, theName)) { return true; }
    return false;
}

bool ReadCharacters(std::string_view* aText, char aStop)
{
    const char* theBegin = aText->data();
    for (;;)
    {
        aText->remove_prefix(AllowedLength(*aText));
        if (aText->empty()) { return aStop == '<'; }
        const char* thePosition = aText->data();
        if (*thePosition == aStop) { return true; }
        if (*thePosition == '<') { return false; }
        if (*thePosition == '&')
        {
            if (!ReadReference(aText)) { return false; }
            continue;
        }
        const bool fEndsCDATA = aStop == '<' && *thePosition == '>' && thePosition - theBegin >= 2 &&
                                thePosition[-1] == ']' && thePosition[-2] == ']';
        const bool fIsAllowed = (kByteClasses[*thePosition] & ByteClasses::kEscapedMask) != 0;
        if (fEndsCDATA || !fIsAllowed) { return false; }
        aText->remove_prefix(1);
    }
}

static bool ReadAttribute(std::string_view* aText, Attribute* anAttribute)
{
    if (!ReadQName(aText, &anAttribute->mName)) { return false; }
    ReadSpaces(aText);
    if (!Read(aText, "=")) { return false; }
    ReadSpaces(aText);
    if (aText->empty()) { return false; }
    const char theQuote = aText->front();
    if (theQuote != '"' && theQuote != '\'') { return false; }
    aText->remove_prefix(1);
    const char* theBegin = aText->data();
    if (!ReadCharacters(aText, theQuote)) { return false; }
    anAttribute->mValue = { theBegin, static_cast<size_t>(aText->data() - theBegin) };
    aText->remove_prefix(1);
    return true;
}

bool ReadAttributes(std::string_view* aText, List<Attribute>* anAttributes)
{
    for (;;)
    {
        const char* theBegin = aText->data();
        const bool fHasSpaces = ReadSpaces(aText) > 0;
        const char theNext = aText->empty() ? '>' : aText->front();
        if (theNext == '>' || theNext == '/' || theNext == '?') { return true; }
        Attribute theAttribute;
        if (!fHasSpaces || !ReadAttribute(aText, &theAttribute)) { return false; }
        theAttribute.mText = { theBegin, static_cast<size_t>(aText->data() - theBegin) };
        anAttributes->Add(theAttribute);
    }
}

// With the port, up to the path.
static bool ReadHost(std::string_view* aText)
{
    aText->remove_prefix(LengthOf(ByteClasses::kInName, *aText));
    if (Read(aText, ":"))
    {
        size_t theCount = 0;
        for (; !aText->empty() && Shared::IsDigit(aText->front()); ++theCount)
            aText->remove_prefix(1);
        if (theCount == 0 || theCount > 5) { return false; }
    }
    return aText->empty() || strchr("/?#", aText->front());
}

bool IsURI(std::string_view aText)
{
    std::string_view theRest = aText;
    theRest.remove_prefix(LengthOf(ByteClasses::kInScheme, theRest));
    const bool fHasScheme = !aText.empty() && Shared::IsLetter(aText[0]) && Read(&theRest, ":");
    if (!fHasScheme)
    {
        if (aText.find(':') != aText.npos) { return false; }
        theRest = aText;
    }
    if (Read(&theRest, "//") && !ReadHost(&theRest)) { return false; }
    theRest.remove_prefix(LengthOf(ByteClasses::kInURI, theRest));
    if (Read(&theRest, "#")) { theRest.remove_prefix(LengthOf(ByteClasses::kInURI, theRest)); }
    return theRest.empty();
}

bool IsAllowed(std::string_view aText)
{
    while (!aText.empty())
    {
        const Character theCharacter = CharacterAt(aText);
        if (!theCharacter.mfIsAllowed) { return false; }
        aText.remove_prefix(theCharacter.mLength);
    }
    return true;
}

} // namespace DIDL
