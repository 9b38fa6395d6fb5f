#include <zoltTools/zoMD5.h>

#include <string.h>

static const size_t kBlockSize = sizeof(zoMD5Context::mBuffer);

// The integer part of 2^32 times the absolute value of sin(i + 1).
static const uint32 kSines[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391,
};

static const uint8 kShifts[4][4] = { { 7, 12, 17, 22 }, { 5, 9, 14, 20 }, { 4, 11, 16, 23 }, { 6, 10, 15, 21 } };

static uint32 ReadWord(const uint8* aBytes)
{
    return aBytes[0] | static_cast<uint32>(aBytes[1]) << 8 | static_cast<uint32>(aBytes[2]) << 16 |
           static_cast<uint32>(aBytes[3]) << 24;
}

static void WriteWord(uint8* aBytes, uint32 aWord)
{
    for (int i = 0; i < 4; ++i)
        aBytes[i] = static_cast<uint8>(aWord >> (8 * i));
}

static uint32 Mix(uint32 aRound, uint32 aB, uint32 aC, uint32 aD)
{
    switch (aRound)
    {
    case 0: return (aB & aC) | (~aB & aD);
    case 1: return (aB & aD) | (aC & ~aD);
    case 2: return aB ^ aC ^ aD;
    default: return aC ^ (aB | ~aD);
    }
}

// The index of the word that is added in step aStep.
static uint32 WordOfStep(uint32 aRound, uint32 aStep)
{
    static const uint8 kFactors[4] = { 1, 5, 3, 7 };
    static const uint8 kOffsets[4] = { 0, 1, 5, 0 };
    return (kFactors[aRound] * aStep + kOffsets[aRound]) % 16;
}

static void AddBlock(uint32 aState[4], const uint8* aBlock)
{
    uint32 theWords[16];
    for (size_t i = 0; i < 16; ++i)
        theWords[i] = ReadWord(aBlock + 4 * i);

    uint32 theA = aState[0];
    uint32 theB = aState[1];
    uint32 theC = aState[2];
    uint32 theD = aState[3];
    for (uint32 i = 0; i < 64; ++i)
    {
        const uint32 theRound = i / 16;
        const uint32 theSum = theA + Mix(theRound, theB, theC, theD) + theWords[WordOfStep(theRound, i)] + kSines[i];
        const uint32 theShift = kShifts[theRound][i % 4];
        theA = theD;
        theD = theC;
        theC = theB;
        theB += theSum << theShift | theSum >> (32 - theShift);
    }
    aState[0] += theA;
    aState[1] += theB;
    aState[2] += theC;
    aState[3] += theD;
}

void zoMD5_Init(zoMD5Context* aContext)
{
    *aContext = { { 0, 0 }, { 0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476 }, {} };
}

static void CountBytes(zoMD5Context* aContext, uint64 aLength)
{
    const uint64 theTotal = (static_cast<uint64>(aContext->mTotal[1]) << 32 | aContext->mTotal[0]) + aLength;
    aContext->mTotal[0] = static_cast<uint32>(theTotal);
    aContext->mTotal[1] = static_cast<uint32>(theTotal >> 32);
}

void zoMD5_Add(zoMD5Context* aContext, const void* aBytes, size_t aLength)
{
    if (aLength == 0) { return; }
    const uint8* theBytes = static_cast<const uint8*>(aBytes);
    const size_t theUsed = aContext->mTotal[0] % kBlockSize;
    CountBytes(aContext, aLength);
    if (theUsed > 0)
    {
        const size_t theRoom = kBlockSize - theUsed;
        const size_t theCount = aLength < theRoom ? aLength : theRoom;
        memcpy(aContext->mBuffer + theUsed, theBytes, theCount);
        if (theCount < theRoom) { return; }
        AddBlock(aContext->mState, aContext->mBuffer);
        theBytes += theCount;
        aLength -= theCount;
    }
    for (; aLength >= kBlockSize; theBytes += kBlockSize, aLength -= kBlockSize)
        AddBlock(aContext->mState, theBytes);
    memcpy(aContext->mBuffer, theBytes, aLength);
}

void zoMD5_Get(zoMD5Context* aContext, uint8 aDigest[16])
{
    static const uint8 kPadding[kBlockSize] = { 0x80 };
    uint8 theBitCount[8];
    WriteWord(theBitCount, aContext->mTotal[0] << 3);
    WriteWord(theBitCount + 4, aContext->mTotal[1] << 3 | aContext->mTotal[0] >> 29);

    const size_t theUsed = aContext->mTotal[0] % kBlockSize;
    const size_t theEnd = kBlockSize - sizeof(theBitCount);
    zoMD5_Add(aContext, kPadding, theUsed < theEnd ? theEnd - theUsed : kBlockSize + theEnd - theUsed);
    zoMD5_Add(aContext, theBitCount, sizeof(theBitCount));
    for (size_t i = 0; i < 4; ++i)
        WriteWord(aDigest + 4 * i, aContext->mState[i]);
}
