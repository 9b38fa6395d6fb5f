#pragma once

/* The characters of XML 1.0 in UTF-8. */

#include <stddef.h>
#include <string_view>
#include <zoOS/zoTypes.h>

namespace DIDL
{

// What a text begins with: a character that XML allows, or bytes that one U+FFFD replaces.
struct Character
{
    uint32 mCode; // when it is allowed
    size_t mLength;
    bool mfIsAllowed;
};

// Of bytes that are not UTF-8, those which begin a character and do not end it are replaced together.
Character CharacterAt(std::string_view aText);

inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD"; // U+FFFD

// The number of bytes of the NCName (a name without a colon) that a text begins with, at most kMaxNameLength; 0 without
// one. Its characters beyond ASCII are letters that every edition of XML 1.0 has in names.
size_t NameLength(std::string_view aText);

// The number of bytes at the beginning of the text that are characters of URIs.
size_t URILength(std::string_view aText);

inline constexpr size_t kMaxNameLength = 1024; // readers have limits; no real name is as long

} // namespace DIDL
