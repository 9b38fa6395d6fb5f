#include <UPnP/Utilities/DIDL/Characters.h>

#include <Shared/ASCII.h>

namespace DIDL
{

// The least and the greatest byte that may come second: no longer forms, no surrogates, nothing past U+10FFFF.
static bool CanFollow(uint8 aFirst, uint8 aSecond)
{
    const uint8 theLeast = aFirst == 0xE0 ? 0xA0 : aFirst == 0xF0 ? 0x90 : 0x80;
    const uint8 theGreatest = aFirst == 0xED ? 0x9F : aFirst == 0xF4 ? 0x8F : 0xBF;
    return aSecond >= theLeast && aSecond <= theGreatest;
}

Character CharacterAt(std::string_view aText)
{
    const uint8 theFirst = static_cast<uint8>(aText[0]);
    if (theFirst < 0x80) { return { theFirst, 1, theFirst >= ' ' || Shared::IsSpace(aText[0]) }; }
    if (theFirst < 0xC2 || theFirst > 0xF4) { return { 0, 1, false }; }
    const size_t theLength = theFirst < 0xE0 ? 2 : theFirst < 0xF0 ? 3 : 4;
    uint32 theCode = theFirst & (0x7Fu >> theLength);
    for (size_t i = 1; i < theLength; ++i)
    {
        const uint8 theByte = i < aText.size() ? static_cast<uint8>(aText[i]) : 0;
        if (i == 1 ? !CanFollow(theFirst, theByte) : (theByte & 0xC0) != 0x80) { return { 0, i, false }; }
        theCode = theCode << 6 | (theByte & 0x3Fu);
    }
    return { theCode, theLength, theCode != 0xFFFE && theCode != 0xFFFF };
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

// A bit for each byte that is an ASCII letter, a digit or one of the marks.
struct ByteSet
{
    uint64 mBits[4];
    constexpr explicit ByteSet(std::string_view aMarks) : mBits()
    {
        for (uint32 i = 0; i < 0x80; ++i)
        {
            const bool fIsLetter = (i >= 'a' && i <= 'z') || (i >= 'A' && i <= 'Z');
            if (fIsLetter || (i >= '0' && i <= '9')) { Add(i); }
        }
        for (const char theMark : aMarks)
            Add(static_cast<uint32>(theMark));
    }
    constexpr void Add(uint32 aByte) { mBits[aByte / 64] |= uint64{ 1 } << aByte % 64; }

    // The number of bytes at the beginning of the text that are in the set.
    size_t Length(std::string_view aText) const
    {
        size_t theLength = 0;
        for (const char theSigned : aText)
        {
            const uint8 theByte = static_cast<uint8>(theSigned);
            if ((mBits[theByte / 64] >> theByte % 64 & 1) == 0) { break; }
            ++theLength;
        }
        return theLength;
    }
};

size_t NameLength(std::string_view aText)
{
    static constexpr ByteSet kInNames("_-.");
    if (aText.empty() || Shared::IsDigit(aText[0]) || aText[0] == '-' || aText[0] == '.') { return 0; }
    size_t theLength = 0;
    for (;;)
    {
        theLength += kInNames.Length(aText.substr(theLength));
        if (theLength == aText.size() || static_cast<uint8>(aText[theLength]) < 0x80) { break; }
        const Character theCharacter = CharacterAt(aText.substr(theLength));
        if (!theCharacter.mfIsAllowed || !IsNameLetter(theCharacter.mCode)) { break; }
        theLength += theCharacter.mLength;
    }
    return theLength <= kMaxNameLength ? theLength : 0;
}

size_t URILength(std::string_view aText)
{
    static constexpr ByteSet kInURIs("-._~:/?#[]@!$&'()*+,;=%");
    return kInURIs.Length(aText);
}

} // namespace DIDL
