#include <UPnP/Utilities/DIDL/Characters.h>

#include <Shared/ASCII.h>
#include <string.h>

namespace DIDL
{

// True if the bytes begin neither an overlong form, nor a surrogate, nor anything past U+10FFFF.
static bool CanFollow(uint8 aFirst, uint8 aSecond)
{
    const uint8 theLeast = aFirst == 0xE0 ? 0xA0 : aFirst == 0xF0 ? 0x90 : 0x80;
    const uint8 theGreatest = aFirst == 0xED ? 0x9F : aFirst == 0xF4 ? 0x8F : 0xBF;
    return aSecond >= theLeast && aSecond <= theGreatest;
}

Character CharacterAt(std::string_view aText)
{
    const uint8 theFirst = static_cast<uint8>(aText[0]);
    if (theFirst < 0x80) { return { 1, theFirst, theFirst >= ' ' || Shared::IsSpace(aText[0]) }; }
    if (theFirst < 0xC2 || theFirst > 0xF4) { return { 1, 0, false }; }
    const size_t theLength = theFirst < 0xE0 ? 2 : theFirst < 0xF0 ? 3 : 4;
    uint32 theCode = theFirst & (0x7Fu >> theLength);
    for (size_t i = 1; i < theLength; ++i)
    {
        const uint8 theByte = i < aText.size() ? static_cast<uint8>(aText[i]) : 0;
        if (i == 1 ? !CanFollow(theFirst, theByte) : (theByte & 0xC0) != 0x80) { return { i, 0, false }; }
        theCode = theCode << 6 | (theByte & 0x3Fu);
    }
    return { theLength, theCode, theCode != 0xFFFE && theCode != 0xFFFF };
}

static bool IsNameLetter(uint32 aCode)
{
    static const uint16 kLetters[][2] = {
        { 0xC0, 0xD6 },     { 0xD8, 0xF6 },     { 0xF8, 0x131 },    { 0x134, 0x13E },   { 0x141, 0x148 },
        { 0x14A, 0x17E },   { 0x38E, 0x3A1 },   { 0x3A3, 0x3CE },   { 0x401, 0x40C },   { 0x40E, 0x44F },
        { 0x451, 0x45C },   { 0x5D0, 0x5EA },   { 0x621, 0x63A },   { 0x641, 0x64A },   { 0x905, 0x939 },
        { 0xE01, 0xE2E },   { 0x1EA0, 0x1EF9 }, { 0x3041, 0x3094 }, { 0x30A1, 0x30FA }, { 0x4E00, 0x9FA5 },
        { 0xAC00, 0xD7A3 },
    };
    for (const uint16(&theRange)[2] : kLetters)
        if (aCode >= theRange[0] && aCode <= theRange[1]) { return true; }
    return false;
}

size_t LengthOf(uint8 aClass, std::string_view aText)
{
    size_t theLength = 0;
    while (theLength < aText.size() && (kByteClasses[aText[theLength]] & aClass) != 0)
        ++theLength;
    return theLength;
}

// True if all bytes are ASCII letters. Adding sets the top bit of those from "a" on, and of those past "z".
static bool AreLetters(Word aWord)
{
    const Word theLower = aWord | (kEveryByte * 0x20);
    const Word theFrom = theLower + kEveryByte * (0x80 - 'a');
    const Word thePast = theLower + kEveryByte * (0x7F - 'z');
    return (theFrom & ~(thePast | aWord) & (kEveryByte * 0x80)) == kEveryByte * 0x80;
}

// Goes on at a byte that is not ASCII, after aLength bytes of a name.
[[gnu::cold, gnu::noinline]] static size_t LongNameLength(std::string_view aText, size_t aLength)
{
    size_t theLength = aLength;
    while (theLength < aText.size() && static_cast<uint8>(aText[theLength]) >= 0x80)
    {
        const Character theCharacter = CharacterAt(aText.substr(theLength));
        if (!theCharacter.mfIsAllowed || !IsNameLetter(theCharacter.mCode)) { break; }
        theLength += theCharacter.mLength;
        theLength += LengthOf(ByteClasses::kInName, aText.substr(theLength));
    }
    return theLength;
}

size_t NameLength(std::string_view aText)
{
    if (aText.empty() || Shared::IsDigit(aText[0]) || aText[0] == '-' || aText[0] == '.') { return 0; }
    size_t theLength = 0;
    for (Word theWord; aText.size() - theLength >= sizeof(theWord); theLength += sizeof(theWord))
    {
        memcpy(&theWord, aText.data() + theLength, sizeof(theWord));
        if (!AreLetters(theWord)) { break; }
    }
    theLength += LengthOf(ByteClasses::kInName, aText.substr(theLength));
    const bool fGoesOn = theLength < aText.size() && static_cast<uint8>(aText[theLength]) >= 0x80;
    if (fGoesOn) { theLength = LongNameLength(aText, theLength); }
    return theLength <= kMaxNameLength ? theLength : 0;
}

bool ReadQName(std::string_view* aText, QName* aName)
{
    std::string_view theRest = *aText;
    aName->mPrefix = {};
    for (;;)
    {
        const size_t theLength = NameLength(theRest);
        aName->mLocal = theRest.substr(0, theLength);
        theRest.remove_prefix(theLength);
        if (theLength == 0 || !aName->mPrefix.empty() || theRest.empty() || theRest[0] != ':') { break; }
        aName->mPrefix = aName->mLocal;
        theRest.remove_prefix(1);
    }
    *aText = theRest;
    return !aName->mLocal.empty();
}

} // namespace DIDL
