#pragma once

/* A hash of texts that are compared ignoring the case of ASCII letters, under a key that is not known outside.
 *
 * The text's words are the coefficients of a polynomial over the field of 2^61 - 1 elements, and the key is the place
 * where it is evaluated: whoever does not know the key can't find texts with one hash, two texts of n words have one
 * with a probability of n in 2^60. */

#include <string.h>
#include <string_view>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoUUID.h>

namespace KeyedHash
{

inline constexpr uint64 kPrime = (uint64(1) << 61) - 1;

inline uint64 Reduce(uint64 aValue)
{
    const uint64 theValue = (aValue & kPrime) + (aValue >> 61);
    return theValue >= kPrime ? theValue - kPrime : theValue;
}

#ifdef __SIZEOF_INT128__

__extension__ typedef unsigned __int128 Product;

/** @return the product of two numbers, of which the first is below 2^62 and the second in the field. */
inline uint64 Multiply(uint64 aLeft, uint64 aRight)
{
    const Product theProduct = static_cast<Product>(aLeft) * aRight;
    return Reduce((static_cast<uint64>(theProduct) & kPrime) + static_cast<uint64>(theProduct >> 61));
}

#else

/** The same from products of their halves: 2^64 is 8 in the field. */
inline uint64 Multiply(uint64 aLeft, uint64 aRight)
{
    const uint64 theHigh = (aLeft >> 32) * (aRight >> 32);
    const uint64 theMiddle = (aLeft >> 32) * static_cast<uint32>(aRight) + (aRight >> 32) * static_cast<uint32>(aLeft);
    const uint64 theLow = static_cast<uint64>(static_cast<uint32>(aLeft)) * static_cast<uint32>(aRight);
    return Reduce(theHigh * 8 + (theMiddle >> 29) + ((theMiddle & 0x1FFFFFFF) << 32) + (theLow & kPrime) +
                  (theLow >> 61));
}

#endif

inline uint64 NewKey()
{
    zoUUID theRandom;
    uint64 theKey;
    zoUUID_Generate(theRandom);
    memcpy(&theKey, theRandom + sizeof(theRandom) - sizeof(theKey), sizeof(theKey)); // two bits of it are fixed
    return Reduce(theKey);
}

/** @return eight bytes with upper-case ASCII letters in lower case. */
inline uint64 ToLower(uint64 aBytes)
{
    const uint64 kOnes = 0x0101010101010101u;
    const uint64 theLow = aBytes & (0x7F * kOnes);
    const uint64 theFromA = theLow + (0x80 - 'A') * kOnes; // bit 7 of each byte says whether it is this large
    const uint64 theAboveZ = theLow + (0x7F - 'Z') * kOnes;
    return aBytes | ((theFromA & ~theAboveZ & ~aBytes & (0x80 * kOnes)) >> 2);
}

// Seven bytes at a time, so that each word is below the prime.
inline constexpr size_t kWordSize = 7;
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
inline constexpr bool kIsLittleEndian = true;
#else
inline constexpr bool kIsLittleEndian = false;
#endif

/** @return the first seven of eight bytes. */
inline uint64 LoadWord(const char* aBytes)
{
    uint64 theWord;
    memcpy(&theWord, aBytes, sizeof(theWord));
    return kIsLittleEndian ? theWord << 8 >> 8 : theWord >> 8;
}

inline uint32 Load32(const char* aBytes)
{
    uint32 theWord;
    memcpy(&theWord, aBytes, sizeof(theWord));
    return theWord;
}

/** @return one to seven bytes as one word of at most seven, some of them twice; words of as many bytes are equal when
 *          their bytes are. */
inline uint64 LoadTail(const char* aBytes, size_t aCount)
{
    if (aCount >= sizeof(uint32))
    {
        const uint32 theLast = Load32(aBytes + aCount - 4);
        const uint32 theLastThree = kIsLittleEndian ? theLast >> 8 : theLast & 0xFFFFFF;
        return static_cast<uint64>(theLastThree) << 32 | Load32(aBytes);
    }
    const auto theByteAt = [aBytes](size_t aPosition)
    { return static_cast<uint64>(static_cast<uint8>(aBytes[aPosition])); };
    return theByteAt(0) << 16 | theByteAt(aCount / 2) << 8 | theByteAt(aCount - 1);
}

/** @param aBefore  the hash of a list of texts, to get that of the list with this text at its end; 0 if it is empty.
 *  @return the hash of the text, below 2^61; with its letters in lower case unless afIsExact is true. */
template <bool afIsExact = false>
inline uint64 Hash(uint64 aKey, std::string_view aText, uint64 aBefore = 0)
{
    uint64 theHash = aBefore + aText.size() + 1;
    const auto theAdd = [&](uint64 aWord) { theHash = Multiply(theHash, aKey) + (afIsExact ? aWord : ToLower(aWord)); };
    for (; aText.size() > kWordSize; aText.remove_prefix(kWordSize))
        theAdd(LoadWord(aText.data()));
    if (!aText.empty()) { theAdd(LoadTail(aText.data(), aText.size())); }
    return Multiply(theHash, aKey);
}

} // namespace KeyedHash
