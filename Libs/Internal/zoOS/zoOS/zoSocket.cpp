#include <zoOS/zoSocket.h>

#include <string.h>

uint32 zoSocket_htonl(uint32 aValue)
{
    const uint8 theBytes[] = { static_cast<uint8>(aValue >> 24), static_cast<uint8>(aValue >> 16),
                               static_cast<uint8>(aValue >> 8), static_cast<uint8>(aValue) };
    uint32 theValue = 0;
    memcpy(&theValue, theBytes, sizeof(theValue));
    return theValue;
}

// Moves aText past a number of one to three digits, 0 to 255.
static bool ReadOctet(const char*& aText, uint32* anOctet)
{
    const char* const theBegin = aText;
    *anOctet = 0;
    for (; *aText >= '0' && *aText <= '9' && aText < theBegin + 3; ++aText)
        *anOctet = *anOctet * 10 + static_cast<uint32>(*aText - '0');
    return aText != theBegin && *anOctet <= 255;
}

uint32 zoSocketGetAddressFromDotForm(const char* aText)
{
    if (!aText) { return 0; }
    uint32 theAddress = 0;
    for (int i = 0; i < 4; ++i)
    {
        uint32 theOctet = 0;
        if (i > 0 && *aText++ != '.') { return 0; }
        if (!ReadOctet(aText, &theOctet)) { return 0; }
        theAddress = theAddress << 8 | theOctet;
    }
    return *aText == '\0' ? zoSocket_htonl(theAddress) : 0;
}
