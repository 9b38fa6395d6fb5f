#pragma once

#include <stddef.h>
#include <string_view>

/** @return the length of the UTF-8 character that a text, not empty, begins with; 0 when its first bytes are not one.
 */
inline size_t CharacterLength(std::string_view aText)
{
    const auto theByte = [aText](size_t anIndex) { return static_cast<unsigned char>(aText[anIndex]); };
    const unsigned char theFirst = theByte(0);
    if (theFirst < 0x80) { return 1; }
    const size_t theLength = theFirst >= 0xF0 ? 4 : theFirst >= 0xE0 ? 3 : 2;
    if (theFirst < 0xC2 || theFirst > 0xF4 || aText.size() < theLength) { return 0; }
    for (size_t i = 1; i < theLength; ++i)
    {
        if ((theByte(i) & 0xC0) != 0x80) { return 0; }
    }
    const unsigned char theSecond = theByte(1);
    const bool fIsOverlong = (theFirst == 0xE0 && theSecond < 0xA0) || (theFirst == 0xF0 && theSecond < 0x90);
    const bool fIsNoCharacter = (theFirst == 0xED && theSecond > 0x9F) || (theFirst == 0xF4 && theSecond > 0x8F);
    return fIsOverlong || fIsNoCharacter ? 0 : theLength;
}
