#include <UPnP/Stack/ILibXML.h>

#include <Shared/Append.h>
#include <Shared/Digits.h>
#include <Shared/Integers.h>
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

// The one of the five entities that the text begins with; NULL for any other text. All have four bytes or more, which
// are compared at once.
static const Entity* FindEntity(const char* aText, const char* anEnd)
{
    if (anEnd - aText < 4) { return nullptr; }
    const uint32 theBegin = Shared::Load<uint32>(aText);
    for (const Entity& theEntity : kEntities)
    {
        if (Shared::Load<uint32>(theEntity.mName) != theBegin) { continue; }
        size_t theLength = 4; // ends at the NUL after the text at the latest
        while (theLength < theEntity.mLength && aText[theLength] == theEntity.mName[theLength])
            ++theLength;
        if (theLength == theEntity.mLength) { return &theEntity; }
    }
    return nullptr;
}

namespace
{

struct Resolved
{
    size_t mLength; // of the reference
    size_t mWritten;
};

} // namespace

// Writes what the reference at aText stands for; the "&" alone of one that can't be resolved.
static Resolved ResolveReference(const char* aText, const char* anEnd, char* aTarget)
{
    if (const Entity* theEntity = FindEntity(aText, anEnd))
    {
        *aTarget = theEntity->mCharacter;
        return { theEntity->mLength, 1 };
    }
    uint32 theCharacter = 0;
    const size_t theLength = aText[1] == '#' ? ReadCharacterReference(aText, &theCharacter) : 0;
    if (theLength > 0) { return { theLength, WriteUTF8(theCharacter, aTarget) }; }
    *aTarget = '&';
    return { 1, 1 };
}

// Moves text to the left, or to where it is. @return the end of the moved text.
static char* Move(char* aTarget, const char* aText, const char* anEnd)
{
    const size_t theLength = static_cast<size_t>(anEnd - aText);
    if (aTarget != aText) { memmove(aTarget, aText, theLength); }
    return aTarget + theLength;
}

// Moves text to the left with its references resolved, which makes none longer. @return the end of the moved text.
static char* MoveResolved(char* aTarget, char* aText, const char* anEnd)
{
    while (char* theReference = XML::Find(aText, anEnd, '&'))
    {
        aTarget = Move(aTarget, aText, theReference);
        const Resolved theResolved = ResolveReference(theReference, anEnd, aTarget);
        aText = theReference + theResolved.mLength;
        aTarget += theResolved.mWritten;
    }
    return Move(aTarget, aText, anEnd);
}

static const char kSection[] = "<![CDATA[";
static const char kSectionEnd[] = "]]>";

// The next CDATA section; NULL when there is none. Other markup is text.
static char* FindSection(char* aText, const char* anEnd)
{
    char* theSection = aText;
    while ((theSection = XML::Find(theSection, anEnd, '<')) && !XML::StartsWith(theSection, anEnd, kSection))
        ++theSection;
    return theSection;
}

int ILibInPlaceXmlUnEscape(char* aText)
{
    if (!aText) { return 0; }
    char* theRead = aText;
    char* theWrite = aText; // never overtakes theRead
    const char* theEnd = aText + strlen(aText);
    while (char* theSection = FindSection(theRead, theEnd))
    {
        char* theContent = theSection + strlen(kSection);
        char* thePast = XML::FindPast(theContent, theEnd, kSectionEnd);
        if (!thePast) { break; } // nor has any later one an end
        theWrite = MoveResolved(theWrite, theRead, theSection);
        theWrite = Move(theWrite, theContent, thePast - strlen(kSectionEnd));
        theRead = thePast;
    }
    theWrite = MoveResolved(theWrite, theRead, theEnd);
    *theWrite = 0;
    return static_cast<int>(theWrite - aText);
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
