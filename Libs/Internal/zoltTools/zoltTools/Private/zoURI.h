#pragma once

/* What the sources of zoURI share: the components of a text, and the bytes that may be in each. */

#include <Shared/Digits.h>
#include <Shared/Sizes.h>
#include <string.h>
#include <zoltTools/zoURI.h>

namespace URI
{

using Shared::AddSizes;

// A run of a text; mText is NULL when there is none at all.
struct Slice
{
    const char* mText;
    size_t mLength;
};

// The components of a text as they are written.
struct Parts
{
    Slice mScheme;
    Slice mUserInfo;
    Slice mHostName;
    Slice mPort; // digits, or none
    Slice mPath; // always there
    Slice mQuery;
    Slice mFragment;
    uint16 mPortNumber;
};

// What zoURI_NewFromEscapedStr gives out: this record and its components' texts in one block. A component that was
// changed since is a block of its own.
struct ParsedURI : zoURI
{
    size_t mTextSize;       // of the texts that follow the record
    const char* mPortText;  // the port as it was written; NULL: none
    uint16 mPortTextNumber; // the number that it stands for
};

// Which components a byte may stand in without an escape: a bit each.
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

inline char* AppendBytes(char* anEnd, const char* aBytes, size_t aCount)
{
    if (aCount > 0) { memcpy(anEnd, aBytes, aCount); }
    return anEnd + aCount;
}

inline char* AppendSlice(char* anEnd, const Slice& aSlice) { return AppendBytes(anEnd, aSlice.mText, aSlice.mLength); }

inline Slice Between(const char* aBegin, const char* anEnd) { return { aBegin, static_cast<size_t>(anEnd - aBegin) }; }

inline Slice SliceOf(const char* aText) { return { aText, aText ? strlen(aText) : 0 }; }

/** Takes a text apart. @return false for a text that is not a URI. */
bool Parse(const char* aText, Parts& aParts);

/** @return the most bytes that the text of the components takes, its NUL included. */
size_t TextSize(const Parts& aParts);
/** Writes the text up to the path, without it. @return the position after it. */
char* AppendUpToPath(char* anEnd, const Parts& aParts);
/** Writes query, fragment and NUL. */
void AppendFromQuery(char* anEnd, const Parts& aParts);

/** Gives a component of the URI another text, which it takes over. */
void ReplaceComponent(const zoURI* aURI, char** aComponent, char* aText);

} // namespace URI
