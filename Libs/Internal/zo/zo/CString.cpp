#include <zo/CString.h>

#include <Shared/Format.h>
#include <Shared/OutOfMemory.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

// A new text of aLength bytes and a NUL, the bytes still to be written.
static char* NewText(size_t aLength)
{
    char* theText = static_cast<char*>(Shared::NotNull(malloc(aLength + 1), aLength + 1));
    theText[aLength] = '\0';
    return theText;
}

// Copies bytes without a NUL to where they and one fit: into the room, or into a new text. @return the new text or
// NULL.
template <size_t kRoom>
static char* CopyText(const char* aText, size_t aLength, char (&aRoom)[kRoom])
{
    char* theText = aLength < kRoom ? nullptr : NewText(aLength);
    memcpy(theText ? theText : aRoom, aText, aLength);
    return theText;
}

zoCString::zoCString(const char* aText) : mLength(aText ? strlen(aText) : 0)
{
    mText = CopyText(aText ? aText : "", mLength, mShort);
}

zoCString::zoCString(const char* aText, size_t aLength) : mLength(aText ? strnlen(aText, aLength) : 0)
{
    mText = CopyText(aText ? aText : "", mLength, mShort);
}

zoCString::zoCString(const zoCString& aString) : mLength(aString.mLength)
{
    mText = CopyText(aString.c_str(), aString.mLength, mShort);
}

zoCString::zoCString(zoCString&& aString) noexcept { *this = static_cast<zoCString&&>(aString); }

zoCString::~zoCString() { free(mText); }

zoCString& zoCString::operator=(const char* aText) { return *this = zoCString(aText); }

zoCString& zoCString::operator=(const zoCString& aString)
{
    if (this == &aString) { return *this; }
    return *this = zoCString(aString);
}

zoCString& zoCString::operator=(zoCString&& aString) noexcept
{
    if (this == &aString) { return *this; }
    free(mText);
    mText = aString.mText;
    mLength = aString.mLength;
    memcpy(mShort, aString.mShort, sizeof(mShort));
    aString.mText = nullptr;
    aString.mLength = 0;
    aString.mShort[0] = '\0';
    return *this;
}

int zoCString::Compare(const zoCString& aString) const
{
    const size_t theCommonLength = mLength < aString.mLength ? mLength : aString.mLength;
    const int theOrder = memcmp(c_str(), aString.c_str(), theCommonLength);
    if (theOrder != 0) { return theOrder; }
    return (mLength > aString.mLength) - (mLength < aString.mLength);
}

int zoCString::Find(const zoCString& aNeedle, size_t aStart) const
{
    if (aNeedle.IsEmpty() || aStart >= mLength) { return zoNotFound; }
    const void* theFound = memmem(c_str() + aStart, mLength - aStart, aNeedle.c_str(), aNeedle.mLength);
    return theFound ? static_cast<int>(static_cast<const char*>(theFound) - c_str()) : static_cast<int>(zoNotFound);
}

zoCString zoCString::BeforeFirst(char aCharacter) const
{
    const void* theFound = memchr(c_str(), aCharacter, mLength);
    return theFound ? zoCString(c_str(), static_cast<size_t>(static_cast<const char*>(theFound) - c_str())) : *this;
}

zoCString zoCString::AfterFirst(char aCharacter) const
{
    const void* theFound = memchr(c_str(), aCharacter, mLength);
    return theFound ? zoCString(static_cast<const char*>(theFound) + 1) : zoCString();
}

void zoCString::Format(const char* aFormat, ...)
{
    va_list theArguments;
    va_start(theArguments, aFormat);
    char* theText = Shared::NewFormattedText(aFormat, theArguments);
    va_end(theArguments);
    FromAllocatedString(theText);
}

void zoCString::FromAllocatedString(char* aText)
{
    free(mText);
    mLength = aText ? strlen(aText) : 0;
    mText = aText;
    mShort[0] = '\0';
}

bool operator==(const zoCString& aLeft, const zoCString& aRight)
{
    return aLeft.length() == aRight.length() && memcmp(aLeft.c_str(), aRight.c_str(), aLeft.length()) == 0;
}

bool operator!=(const zoCString& aLeft, const zoCString& aRight) { return !(aLeft == aRight); }

static zoCString Joined(const zoCString& aString, const char* aText, size_t aLength)
{
    const size_t theLength = aString.length() + aLength;
    char theShort[16]; // what a string of its own has room for
    char* theText = theLength < sizeof(theShort) ? theShort : NewText(theLength);
    memcpy(theText, aString.c_str(), aString.length());
    memcpy(theText + aString.length(), aText, aLength);
    if (theText == theShort) { return { theShort, theLength }; }
    zoCString theString;
    theString.FromAllocatedString(theText);
    return theString;
}

zoCString operator+(const zoCString& aString, char aCharacter) { return Joined(aString, &aCharacter, 1); }

zoCString operator+(const zoCString& aLeft, const zoCString& aRight)
{
    return Joined(aLeft, aRight.c_str(), aRight.length());
}
