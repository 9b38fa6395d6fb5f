#include <zoltTools/Private/zoConfigFileText.h>

#include <string.h>
#include <zoltTools/zoMemory.h>

static bool IsBlank(char aByte) { return aByte == ' ' || aByte == '\t'; }

void zoConfigFileText_Trim(const char** aText, size_t* aLength)
{
    for (; *aLength > 0 && IsBlank(**aText); --*aLength)
        ++*aText;
    while (*aLength > 0 && IsBlank((*aText)[*aLength - 1]))
        --*aLength;
}

static int HexValue(char aDigit)
{
    if (aDigit >= '0' && aDigit <= '9') { return aDigit - '0'; }
    const char theLetter = static_cast<char>(aDigit | 0x20);
    return theLetter >= 'a' && theLetter <= 'f' ? theLetter - 'a' + 10 : -1;
}

namespace
{

// Letters behind a backslash, and what they stand for.
struct Escape
{
    char mLetter;
    char mByte;
};

const Escape kEscapes[] = { { '\\', '\\' }, { 'n', '\n' }, { 'r', '\r' }, { 't', '\t' }, { 's', ' ' } };

} // namespace

// The length of the escape that aLength bytes begin with, and the byte that it stands for; 0 when it is none.
static size_t ReadEscape(const char* aText, size_t aLength, int afIsName, char* aByte)
{
    if (aLength < 2 || aText[0] != '\\') { return 0; }
    for (const Escape& theEscape : kEscapes)
    {
        if (aText[1] != theEscape.mLetter) { continue; }
        *aByte = theEscape.mByte;
        return 2;
    }
    if (!afIsName || aLength < 4 || aText[1] != 'x') { return 0; }
    const int theHigh = HexValue(aText[2]);
    const int theLow = HexValue(aText[3]);
    if (theHigh < 0 || theLow < 0 || (theHigh | theLow) == 0) { return 0; } // a name has no NUL
    *aByte = static_cast<char>(theHigh * 16 + theLow);
    return 4;
}

char* zoConfigFileText_NewUnescaped(const char* aText, size_t aLength, int afIsName)
{
    char* theText = static_cast<char*>(zoMalloc(aLength + 1));
    char* theTarget = theText;
    for (size_t i = 0; i < aLength; ++theTarget)
    {
        const size_t theEscapeLength = ReadEscape(aText + i, aLength - i, afIsName, theTarget);
        if (theEscapeLength == 0) { *theTarget = aText[i]; }
        i += theEscapeLength > 0 ? theEscapeLength : 1;
    }
    *theTarget = '\0';
    return theText;
}

static bool NeedsHex(const char* aName, const char* aByte)
{
    return *aByte == '=' || *aByte == ']' || (aByte == aName && strchr("[#;\xEF", *aByte));
}

static void AppendHex(zoBuffer* aBuffer, char aByte)
{
    static const char kDigits[] = "0123456789ABCDEF";
    const uint8 theByte = static_cast<uint8>(aByte);
    const char theEscape[] = { '\\', 'x', kDigits[theByte >> 4], kDigits[theByte & 15] };
    zoBuffer_Append(aBuffer, theEscape, sizeof(theEscape));
}

void zoConfigFileText_AppendEscaped(zoBuffer* aBuffer, const char* aText, int afIsName)
{
    for (const char* theByte = aText; *theByte; ++theByte)
    {
        const Escape* theEscape = nullptr;
        const bool fIsAtEnd = theByte == aText || theByte[1] == '\0';
        for (const Escape& theCandidate : kEscapes)
        {
            if (*theByte == theCandidate.mByte && (*theByte != ' ' || fIsAtEnd)) { theEscape = &theCandidate; }
        }
        const char thePair[] = { '\\', theEscape ? theEscape->mLetter : '\0' };
        if (theEscape) { zoBuffer_Append(aBuffer, thePair, sizeof(thePair)); }
        else if (afIsName && NeedsHex(aText, theByte)) { AppendHex(aBuffer, *theByte); }
        else { zoBuffer_Append(aBuffer, theByte, 1); }
    }
}
