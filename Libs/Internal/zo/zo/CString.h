#pragma once

#include <stddef.h>
#include <zo/Export.h>

/* The position that Find gives when there is nothing to find. */
enum
{
    zoNotFound = -1
};

/**
 * A text of bytes that ends with a NUL. Up to 15 bytes are copied into the object itself and cost no memory from the
 * heap; a text that is formatted, joined or taken over is on the heap. Copies are independent. Comparisons look at
 * bytes, so they are case-sensitive. A NULL text counts as "".
 */
class ZO_API zoCString
{
public:
    zoCString() = default;
    /** A copy of aText. */
    zoCString(const char* aText); // NOLINT(google-explicit-constructor): texts are given where a zoCString is asked for
    /** The first aLength bytes of aText, cut at a NUL among them. */
    zoCString(const char* aText, size_t aLength);
    /** A copy. */
    zoCString(const zoCString& aString);
    /** Takes the text over; aString is empty afterwards. */
    zoCString(zoCString&& aString) noexcept;
    ~zoCString();

    /** Assignment from the string's own text or a part of it is allowed. */
    zoCString& operator=(const char* aText);
    /** As for a plain text. */
    zoCString& operator=(const zoCString& aString);
    /** Takes the text over. */
    zoCString& operator=(zoCString&& aString) noexcept;

    /** @return the text, borrowed until the string changes; "" when empty, never NULL. */
    const char* c_str() const { return mText ? mText : mShort; }
    /** @return the number of bytes. */
    size_t length() const { return mLength; }
    /** True if the text is "". */
    bool IsEmpty() const { return mLength == 0; }

    /** @return 0 when equal, below 0 when this text sorts before aString by its bytes, else above 0. */
    int Compare(const zoCString& aString) const;

    /** @return the position of the first aNeedle at aStart or after it; zoNotFound when there is none or it is "". */
    int Find(const zoCString& aNeedle, size_t aStart = 0) const;
    /** True if Find finds it. */
    bool Contains(const zoCString& aNeedle) const { return Find(aNeedle) != zoNotFound; }

    /** @return the text before the first aCharacter; the whole text when there is none. */
    zoCString BeforeFirst(char aCharacter) const;
    /** @return the text after the first aCharacter; "" when there is none. */
    zoCString AfterFirst(char aCharacter) const;

    /** Replaces the text by one formatted as by printf, of any length. Arguments may point into the old text. */
    void Format(const char* aFormat, ...) __attribute__((format(printf, 2, 3)));

    /** Replaces the text by aText, which came from malloc and from now on belongs to the string; NULL empties it. */
    void FromAllocatedString(char* aText);

private:
    char* mText = nullptr; // owned; NULL when the text is in mShort
    size_t mLength = 0;
    char mShort[16] = {};
};

/** True if the texts have the same bytes. */
ZO_API bool operator==(const zoCString& aLeft, const zoCString& aRight);
/** True if the texts differ. */
ZO_API bool operator!=(const zoCString& aLeft, const zoCString& aRight);
/** The text with a character after it. */
ZO_API zoCString operator+(const zoCString& aString, char aCharacter);
/** The two texts, one after the other. */
ZO_API zoCString operator+(const zoCString& aLeft, const zoCString& aRight);
