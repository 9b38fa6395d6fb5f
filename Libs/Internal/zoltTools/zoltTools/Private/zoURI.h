#pragma once

/* What the sources of zoURI share: the components of a text, and the bytes that may be in each. */

#include <Shared/Digits.h>
#include <Shared/Sizes.h>
#include <string.h>
#include <string_view>
#include <zoltTools/zoURI.h>

namespace URI
{

using Shared::AddSizes;
using std::string_view;

// The components of a text as they are written, without data where the text has none.
struct Parts
{
    string_view mScheme;
    string_view mUserInfo;
    string_view mHostName;
    string_view mPort; // digits, perhaps no digit
    string_view mPath; // always has data
    string_view mQuery;
    string_view mFragment;
    uint16 mPortNumber;
};

// What zoURI_NewFromEscapedStr returns: this record and the texts of its components in one block. A component that has
// changed since is a block of its own.
struct ParsedURI : zoURI
{
    size_t mTextSize;       // of the texts that follow the record
    const char* mPortText;  // the port as it was written; NULL without one
    uint16 mPortTextNumber; // its number
};

// The components in which a byte is allowed without an escape: a bit each.
enum
{
    kIn_Scheme = 0x01,
    kIn_UserInfo = 0x02,
    kIn_HostName = 0x04,
    kIn_Address = 0x08, // a host name in brackets
    kIn_Path = 0x10,
    kIn_Query = 0x20, // the fragment, too
    kIn_Argument = 0x40
};

struct ByteTable
{
    uint8 mPlaces[256];

    constexpr ByteTable() : mPlaces()
    {
        Allow("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", 0x7F);
        Allow("-.", 0x7F);
        Allow("_~", 0x7F & ~kIn_Scheme);
        Allow("+", kIn_Scheme);
        Allow("!$&'()*+,;=", kIn_UserInfo | kIn_HostName | kIn_Address | kIn_Path | kIn_Query);
        Allow(":", kIn_UserInfo | kIn_Address | kIn_Path | kIn_Query);
        Allow("[]", kIn_Address);
        Allow("@/", kIn_Path | kIn_Query);
        Allow("?", kIn_Query);
    }
    constexpr void Allow(const char* aBytes, int aPlaces)
    {
        for (; *aBytes; ++aBytes)
        {
            uint8& thePlaces = mPlaces[static_cast<unsigned char>(*aBytes)];
            thePlaces = static_cast<uint8>(thePlaces | aPlaces);
        }
    }
    bool IsAllowed(char aByte, int aPlace) const { return (mPlaces[static_cast<unsigned char>(aByte)] & aPlace) != 0; }
};

inline constexpr ByteTable kBytes;

inline string_view ViewOf(const char* aText) { return { aText, aText ? strlen(aText) : 0 }; }

/** Takes a text apart; the components are views of it. @return false for an invalid text. */
bool Parse(string_view aText, Parts* aParts);

/** @return the most bytes that the text of the components takes, its NUL included. */
size_t TextSize(const Parts& aParts);
/** Writes the text up to the path, without it. @return the position after it. */
char* AppendUpToPath(char* anEnd, const Parts& aParts);
/** Writes query, fragment and NUL. */
void AppendFromQuery(char* anEnd, const Parts& aParts);

/** Gives a component of the URI another text, which it takes over. */
void ReplaceComponent(const zoURI* aURI, char** aComponent, char* aText);

} // namespace URI
