#pragma once

/* Appending to a zoBuffer, or to memory whose room was computed before. */

#include <Shared/Digits.h>
#include <string.h>
#include <string_view>
#include <zoltTools/zoBuffer.h>

namespace Shared
{

/** Makes room for aCount further bytes. @return where they go; mPos does not move. */
inline char* Reserve(zoBuffer* aBuffer, size_t aCount)
{
    if (aCount > aBuffer->mSize - aBuffer->mPos) { zoBuffer_Reserve(aBuffer, aCount); }
    return aBuffer->mPtr + aBuffer->mPos;
}

inline void Append(zoBuffer* aBuffer, const char* aBytes, size_t aCount)
{
    if (aCount == 0) { return; }
    memcpy(Reserve(aBuffer, aCount), aBytes, aCount);
    aBuffer->mPos += aCount;
}

inline void Append(zoBuffer* aBuffer, std::string_view aText) { Append(aBuffer, aText.data(), aText.size()); }

/** Appends a text whose length is known at compile time, without its NUL. */
template <size_t Size>
inline void AppendLiteral(zoBuffer* aBuffer, const char (&aLiteral)[Size])
{
    Append(aBuffer, aLiteral, Size - 1);
}

/** Appends a number with at least aMinDigits digits, of at most kMaxDecimalDigits. */
inline void AppendDecimal(zoBuffer* aBuffer, uint64_t aValue, size_t aMinDigits = 1)
{
    char theDigits[kMaxDecimalDigits];
    char* theEnd = theDigits + sizeof(theDigits);
    const char* theBegin = WriteDecimalBefore(theEnd, aValue, aMinDigits);
    Append(aBuffer, theBegin, static_cast<size_t>(theEnd - theBegin));
}

/** Appends a number as eight upper-case hexadecimal digits. */
inline void AppendHex32(zoBuffer* aBuffer, uint32_t aValue)
{
    char theDigits[8];
    for (size_t i = sizeof(theDigits); i-- > 0; aValue >>= 4)
        theDigits[i] = HexDigit(aValue);
    Append(aBuffer, theDigits, sizeof(theDigits));
}

/** Ends the text with a NUL and releases the buffer around it. @return the text, released with free. */
inline char* TakeText(zoBuffer* aBuffer)
{
    Append(aBuffer, "", 1);
    char* theText = zoBuffer_TakeOwnership(aBuffer, nullptr, nullptr);
    zoBuffer_Delete(aBuffer);
    return theText;
}

/** Copies the text to anEnd, where there is room for it. @return the position after it. */
inline char* Append(char* anEnd, std::string_view aText)
{
    if (!aText.empty()) { memcpy(anEnd, aText.data(), aText.size()); }
    return anEnd + aText.size();
}

} // namespace Shared
