#include <zoltTools/zoBase64.h>

#include <zoltTools/zoMemory.h>

static const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Writes the four characters of one to three bytes.
static void EncodeGroup(const uint8* aBytes, size_t aCount, char* aText)
{
    const uint32 theBits = static_cast<uint32>(aBytes[0]) << 16 |
                           (aCount > 1 ? static_cast<uint32>(aBytes[1]) << 8 : 0) | (aCount > 2 ? aBytes[2] : 0);
    aText[0] = kAlphabet[theBits >> 18];
    aText[1] = kAlphabet[theBits >> 12 & 63];
    aText[2] = aCount > 1 ? kAlphabet[theBits >> 6 & 63] : '=';
    aText[3] = aCount > 2 ? kAlphabet[theBits & 63] : '=';
}

size_t zoBase64_Encode(const void* aBytes, size_t aLength, char** aText)
{
    *aText = nullptr;
    const size_t theGroupCount = aLength / 3 + (aLength % 3 != 0);
    if (theGroupCount > (SIZE_MAX - 1) / 4) { return 0; }

    const uint8* theBytes = static_cast<const uint8*>(aBytes);
    char* theText = static_cast<char*>(zoMalloc(theGroupCount * 4 + 1));
    for (size_t i = 0; i < theGroupCount; ++i)
    {
        const size_t theRest = aLength - i * 3;
        EncodeGroup(theBytes + i * 3, theRest < 3 ? theRest : 3, theText + i * 4);
    }
    theText[theGroupCount * 4] = '\0';
    *aText = theText;
    return theGroupCount * 4;
}
