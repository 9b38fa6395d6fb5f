#pragma once

/* ASCII letters, digits and blanks. Protocols compare ASCII alone, whatever the user's locale; bytes of 0x80 and above
 * belong to no class and have no case. */

#include <Shared/Integers.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <string_view>

namespace Shared
{

inline bool IsDigit(char aByte) { return aByte >= '0' && aByte <= '9'; }

inline bool IsLetter(char aByte)
{
    const unsigned char theLetter = static_cast<unsigned char>(aByte) | 0x20;
    return theLetter >= 'a' && theLetter <= 'z';
}

/** True for space and tab. */
inline bool IsBlank(char aByte) { return aByte == ' ' || aByte == '\t'; }

/** True for space, tab, carriage return and line feed: XML's white space. */
inline bool IsSpace(char aByte) { return IsBlank(aByte) || aByte == '\r' || aByte == '\n'; }

inline char ToLower(char aByte) { return static_cast<char>(aByte >= 'A' && aByte <= 'Z' ? aByte | 0x20 : aByte); }

/** Compares aLength bytes of each. */
inline bool EqualsIgnoringCase(const char* aLeft, const char* aRight, size_t aLength)
{
    for (size_t i = 0; i < aLength; ++i)
    {
        const int theDifference = aLeft[i] ^ aRight[i];
        if (theDifference == 0) { continue; }
        if (theDifference != 0x20 || !IsLetter(aLeft[i])) { return false; }
    }
    return true;
}

inline bool EqualsIgnoringCase(std::string_view aLeft, std::string_view aRight)
{
    return aLeft.size() == aRight.size() && EqualsIgnoringCase(aLeft.data(), aRight.data(), aLeft.size());
}

/** @return below 0, 0 or above 0, as strcmp. */
inline int CompareIgnoringCase(std::string_view aLeft, std::string_view aRight)
{
    const size_t theLength = aLeft.size() < aRight.size() ? aLeft.size() : aRight.size();
    for (size_t i = 0; i < theLength; ++i)
    {
        const int theLeft = static_cast<unsigned char>(ToLower(aLeft[i])); // char is signed on some processors
        const int theDifference = theLeft - static_cast<unsigned char>(ToLower(aRight[i]));
        if (theDifference != 0) { return theDifference; }
    }
    return (aLeft.size() > theLength) - (aRight.size() > theLength);
}

/** True if the words at the beginnings of two texts of aLength bytes and those at their ends, which may overlap, are
 *  the same. */
template <typename Word>
inline bool EqualEnds(const char* aLeft, const char* aRight, size_t aLength)
{
    const size_t theLast = aLength - sizeof(Word);
    return ((Load<Word>(aLeft) ^ Load<Word>(aRight)) | (Load<Word>(aLeft + theLast) ^ Load<Word>(aRight + theLast))) ==
           0;
}

/** Compares aLength bytes of each exactly, up to 16 without a call: names, most of which are shorter. */
inline bool EqualNames(const char* aLeft, const char* aRight, size_t aLength)
{
    if (aLength > 16) { return memcmp(aLeft, aRight, aLength) == 0; }
    if (aLength >= 8) { return EqualEnds<uint64_t>(aLeft, aRight, aLength); }
    if (aLength >= 4) { return EqualEnds<uint32_t>(aLeft, aRight, aLength); }
    if (aLength >= 2) { return EqualEnds<uint16_t>(aLeft, aRight, aLength); }
    return aLength == 0 || *aLeft == *aRight;
}

/** Compares exactly. Texts without bytes may have a NULL pointer, which memcmp must not get. */
inline bool Equals(std::string_view aLeft, std::string_view aRight)
{
    return aLeft.size() == aRight.size() && (aLeft.empty() || memcmp(aLeft.data(), aRight.data(), aLeft.size()) == 0);
}

/** Compares exactly. NULL equals nothing. */
inline bool AreEqual(const char* aText1, const char* aText2) { return aText1 && aText2 && strcmp(aText1, aText2) == 0; }

/** @return the text without the bytes at its ends for which afIsRemoved is true: IsBlank or IsSpace. */
template <typename Predicate>
inline std::string_view Trim(std::string_view aText, Predicate afIsRemoved)
{
    while (!aText.empty() && afIsRemoved(aText.front()))
        aText.remove_prefix(1);
    while (!aText.empty() && afIsRemoved(aText.back()))
        aText.remove_suffix(1);
    return aText;
}

} // namespace Shared
