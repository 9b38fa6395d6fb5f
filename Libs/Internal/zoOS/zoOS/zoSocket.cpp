#include <zoOS/zoSocket.h>

#include <Shared/ASCII.h>
#include <Shared/Digits.h>
#include <string.h>

uint32 zoSocket_htonl(uint32 aValue)
{
    const uint8 theBytes[] = { static_cast<uint8>(aValue >> 24), static_cast<uint8>(aValue >> 16),
                               static_cast<uint8>(aValue >> 8), static_cast<uint8>(aValue) };
    uint32 theValue = 0;
    memcpy(&theValue, theBytes, sizeof(theValue));
    return theValue;
}

// Reads a number of one to three digits, 0 to 255. The result is the position after it; NULL when there is none.
static const char* ReadOctet(const char* aText, uint32* anOctet)
{
    const char* theEnd = aText;
    *anOctet = 0;
    for (; Shared::IsDigit(*theEnd) && theEnd < aText + 3; ++theEnd)
        *anOctet = *anOctet * 10 + Shared::DigitValue(*theEnd);
    return theEnd != aText && *anOctet <= 255 ? theEnd : nullptr;
}

uint32 zoSocketGetAddressFromDotForm(const char* aText)
{
    if (!aText) { return 0; }
    uint32 theAddress = 0;
    for (int i = 0; i < 4; ++i)
    {
        uint32 theOctet = 0;
        if (i > 0 && *aText++ != '.') { return 0; }
        aText = ReadOctet(aText, &theOctet);
        if (!aText) { return 0; }
        theAddress = theAddress << 8 | theOctet;
    }
    return *aText == '\0' ? zoSocket_htonl(theAddress) : 0;
}
