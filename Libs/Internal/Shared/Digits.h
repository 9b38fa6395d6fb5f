#pragma once

/* Digits of numbers, from bytes to values and back. */

#include <stddef.h>
#include <stdint.h>

namespace Shared
{

/** What DigitValue gives for a byte that is not a digit; no base is as large. */
constexpr uint32_t kNoDigit = 36;

/** @return the value of a digit, 0 to 9, or of a letter of either case, 10 to 35; kNoDigit for other bytes. A byte is a
 *          digit of a base when its value is below it. */
inline uint32_t DigitValue(char aByte)
{
    const uint32_t theByte = static_cast<unsigned char>(aByte);
    const uint32_t theDecimal = theByte - '0';
    if (theDecimal < 10) { return theDecimal; }
    const uint32_t theLetter = (theByte | 0x20) - 'a';
    return theLetter < 26 ? theLetter + 10 : kNoDigit;
}

inline bool IsHexDigit(char aByte) { return DigitValue(aByte) < 16; }

/** @return the value of the byte that two hexadecimal digits stand for; -1 when one of them is not a digit. Reads
 *          the second only when the first is a digit, so the first may be a NUL. */
inline int HexByteValue(const char* aDigits)
{
    if (!IsHexDigit(aDigits[0]) || !IsHexDigit(aDigits[1])) { return -1; }
    return static_cast<int>(DigitValue(aDigits[0]) << 4 | DigitValue(aDigits[1]));
}

/** The digits that are written, in upper case. */
constexpr char kHexDigits[] = "0123456789ABCDEF";

/** @return the digit of a value below 16. */
inline char HexDigit(uint32_t aValue) { return kHexDigits[aValue & 15]; }

/** Writes a byte as two upper-case digits. @return the position after them. */
inline char* WriteHexByte(char* anEnd, char aByte)
{
    *anEnd++ = HexDigit(static_cast<unsigned char>(aByte) >> 4);
    *anEnd++ = HexDigit(static_cast<unsigned char>(aByte));
    return anEnd;
}

/** The most digits that a 64-bit number has. */
constexpr size_t kMaxDecimalDigits = 20;

/** Writes the number in front of anEnd, with zeros up to aMinDigits. @return the position of its first digit, at most
 *  kMaxDecimalDigits or aMinDigits before anEnd. */
inline char* WriteDecimalBefore(char* anEnd, uint64_t aValue, size_t aMinDigits)
{
    char* theBegin = anEnd;
    for (; aValue > 0xFFFFFFFF; aValue /= 10)
        *--theBegin = static_cast<char>('0' + aValue % 10);
    for (uint32_t theValue = static_cast<uint32_t>(aValue); theValue > 0; theValue /= 10)
        *--theBegin = static_cast<char>('0' + theValue % 10); // 64-bit division is a function call on the devices
    while (static_cast<size_t>(anEnd - theBegin) < aMinDigits)
        *--theBegin = '0';
    return theBegin;
}

} // namespace Shared
