#pragma once

/* The characters of XML 1.0 in UTF-8, and the names that they make. */

#include <stddef.h>
#include <string_view>
#include <zoOS/zoTypes.h>

namespace DIDL
{

// What a text begins with: a character that XML allows, or bytes that one U+FFFD replaces.
struct Character
{
    size_t mLength;
    uint32 mCode; // when it is allowed
    bool mfIsAllowed;
};

// Of bytes that are not UTF-8, those which begin a character and do not end it are replaced together.
Character CharacterAt(std::string_view aText);

// What a byte is to the functions that go through a text byte by byte; an ASCII one may be several.
struct ByteClasses
{
    enum : uint8
    {
        kEscapedMask = 7, // 1 to 5: the place in kEscaped of one that is escaped
        kInName = 8,
        kInScheme = 16,
        kNotPrintable = 32, // and every byte that is not ASCII
        kNUL = 64,
        kInURI = 128 // in its path, and after that but for the first "#"; escapes and "&" aside
    };
    static constexpr std::string_view kEscaped = "\"'<>&";

    uint8 mClasses[256];
    constexpr ByteClasses() : mClasses()
    {
        for (size_t i = 0; i < 256; ++i)
            mClasses[i] = i < ' ' || i >= 0x80 ? kNotPrintable : 0;
        mClasses[0] |= kNUL;
        Add("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-.", kInName | kInScheme | kInURI);
        Add("_", kInName | kInURI);
        Add("+", kInScheme | kInURI);
        Add("~:/?@!$'()*,;=", kInURI);
        for (size_t i = 0; i < kEscaped.size(); ++i)
            mClasses[static_cast<uint8>(kEscaped[i])] |= static_cast<uint8>(i + 1);
    }
    constexpr void Add(std::string_view aBytes, uint8 aClasses)
    {
        for (const char theByte : aBytes)
            mClasses[static_cast<uint8>(theByte)] |= aClasses;
    }
    constexpr uint8 operator[](char aByte) const { return mClasses[static_cast<uint8>(aByte)]; }
};

inline constexpr ByteClasses kByteClasses;

// The number of bytes at the beginning of the text that are of the class.
size_t LengthOf(uint8 aClass, std::string_view aText);

// Bytes that are looked at together.
typedef size_t Word;
inline constexpr Word kEveryByte = ~Word{ 0 } / 0xFF; // times a byte: that byte in every place

inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD"; // U+FFFD

// ---- Names ----

inline constexpr size_t kMaxNameLength = 1024; // readers have limits; no real name is as long

// The number of bytes of the NCName (a name without a colon) that a text begins with, at most kMaxNameLength; 0 without
// one. Its characters beyond ASCII are letters that every edition of XML 1.0 has in names.
size_t NameLength(std::string_view aText);

struct QName
{
    std::string_view mPrefix; // empty without one
    std::string_view mLocal;

    // Where both come from one text.
    std::string_view Whole() const
    {
        const char* theBegin = mPrefix.empty() ? mLocal.data() : mPrefix.data();
        return { theBegin, static_cast<size_t>(mLocal.data() + mLocal.size() - theBegin) };
    }
};

// Takes a name from the front of the text; false where there is none, and then what is left does not count.
bool ReadQName(std::string_view* aText, QName* aName);

} // namespace DIDL
