#include <UPnP/Stack/ILibXML.h>

#include <Shared/Append.h>
#include <Shared/Digits.h>
#include <Shared/Sizes.h>
#include <UPnP/Stack/XML/Bytes.h>
#include <stdint.h>
#include <string.h>

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

// @return the number of bytes.
static size_t WriteUTF8(uint32 aCharacter, char* aTarget)
{
    const size_t theLength = aCharacter < 0x80 ? 1 : aCharacter < 0x800 ? 2 : aCharacter < 0x10000 ? 3 : 4;
    static const uint8_t kFirstBits[] = { 0, 0x00, 0xC0, 0xE0, 0xF0 };
    for (size_t i = theLength - 1; i > 0; --i, aCharacter >>= 6)
        aTarget[i] = static_cast<char>(0x80 | (aCharacter & 0x3F));
    aTarget[0] = static_cast<char>(kFirstBits[theLength] | aCharacter);
    return theLength;
}

// Reads the character reference at "&#". @return its length; 0 when it cannot be resolved.
static size_t ReadCharacterReference(const char* aText, uint32* aCharacter)
{
    const uint32 theBase = aText[2] == 'x' ? 16 : 10;
    const char* theFirst = aText + (theBase == 16 ? 3 : 2);
    const char* thePosition = theFirst;
    uint32 theCharacter = 0;
    for (uint32 theDigit; (theDigit = Shared::DigitValue(*thePosition)) < theBase; ++thePosition)
    {
        if (theCharacter <= 0x10FFFF) { theCharacter = theCharacter * theBase + theDigit; }
    }
    const bool fIsSurrogate = theCharacter >= 0xD800 && theCharacter <= 0xDFFF;
    if (*thePosition != ';' || theCharacter == 0 || theCharacter > 0x10FFFF || fIsSurrogate) { return 0; }
    *aCharacter = theCharacter;
    return static_cast<size_t>(thePosition + 1 - aText);
}

// Resolves the reference at aText into aTarget. @return the length of the reference; 0 when it stays as it is.
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

// Text that is resolved in place: writing never overtakes reading.
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

// At "<". Unwraps a CDATA section; other markup is kept as text. @return false when a section has no end: then no later
// one has.
static bool UnescapeSection(Unescaper* aText)
{
    if (!XML::StartsWith(aText->mRead, aText->mEnd, "<![CDATA["))
    {
        aText->Keep(1);
        return true;
    }
    char* theContent = aText->mRead + 9;
    const char* thePast = XML::FindPast(theContent, aText->mEnd, "]]>");
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
    const auto FindOrEnd = [&theText](char aByte)
    {
        char* theByte = XML::Find(theText.mRead, theText.mEnd, aByte);
        return theByte ? theByte : theText.mEnd;
    };
    char* theReference = FindOrEnd('&');
    char* theSection = FindOrEnd('<');
    while (theReference < theText.mEnd || theSection < theText.mEnd)
    {
        theText.KeepTo(theReference < theSection ? theReference : theSection);
        if (theReference < theSection) { UnescapeReference(&theText); }
        else if (!UnescapeSection(&theText)) { theSection = theText.mEnd; }
        if (theReference < theText.mRead) { theReference = FindOrEnd('&'); }
        if (theSection < theText.mRead) { theSection = FindOrEnd('<'); }
    }
    theText.KeepTo(theText.mEnd);
    *theText.mWrite = 0;
    return static_cast<int>(theText.mWrite - aText);
}

// NULL when the character is written as it is.
static const Entity* EntityOf(char aCharacter)
{
    if (aCharacter > '>') { return nullptr; } // the largest of the five
    for (const Entity& theEntity : kEntities)
    {
        if (theEntity.mCharacter == aCharacter) { return &theEntity; }
    }
    return nullptr;
}

size_t ILibXmlEscapeLength(const char* aText)
{
    size_t theLength = 0;
    for (const char* thePosition = aText ? aText : ""; *thePosition; ++thePosition)
    {
        const Entity* theEntity = EntityOf(*thePosition);
        theLength = Shared::AddSizes(theLength, theEntity ? theEntity->mLength : 1);
    }
    return theLength;
}

size_t ILibXmlEscape(char* aTarget, const char* aText)
{
    char* theEnd = aTarget;
    for (const char* thePosition = aText ? aText : ""; *thePosition; ++thePosition)
    {
        const Entity* theEntity = EntityOf(*thePosition);
        if (!theEntity) { *theEnd++ = *thePosition; }
        else { theEnd = Shared::Append(theEnd, { theEntity->mName, theEntity->mLength }); }
    }
    *theEnd = '\0';
    return static_cast<size_t>(theEnd - aTarget);
}
