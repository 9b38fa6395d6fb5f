#include <zoltTools/Private/zoConfigFileText.h>

#include <Shared/Append.h>
#include <Shared/Digits.h>

namespace ConfigFile
{

namespace
{

// The letters after a backslash, and what they stand for.
struct Escape
{
    char mLetter;
    char mByte;
};

const Escape kEscapes[] = { { '\\', '\\' }, { 'n', '\n' }, { 'r', '\r' }, { 't', '\t' }, { 's', ' ' } };

} // namespace

// The length of the escape that a text begins with, and the byte that it stands for; 0 when it begins with none.
static size_t ReadEscape(std::string_view aText, bool afIsName, char* aByte)
{
    if (aText.size() < 2 || aText[0] != '\\') { return 0; }
    for (const Escape& theEscape : kEscapes)
    {
        if (aText[1] != theEscape.mLetter) { continue; }
        *aByte = theEscape.mByte;
        return 2;
    }
    const int theByte = afIsName && aText.size() >= 4 && aText[1] == 'x' ? Shared::HexByteValue(&aText[2]) : -1;
    if (theByte <= 0) { return 0; } // a name has no NUL
    *aByte = static_cast<char>(theByte);
    return 4;
}

void Unescape(std::string_view aText, bool afIsName, char* aTarget)
{
    for (; !aText.empty(); ++aTarget)
    {
        const size_t theEscapeLength = ReadEscape(aText, afIsName, aTarget);
        if (theEscapeLength == 0) { *aTarget = aText[0]; }
        aText.remove_prefix(theEscapeLength > 0 ? theEscapeLength : 1);
    }
    *aTarget = '\0';
}

// True if a byte of a name would end the name, or at its beginning change the line's kind.
static bool NeedsHex(char aByte, bool afIsFirst)
{
    const std::string_view theSpecial = afIsFirst ? "=][#;\xEF" : "=]";
    return theSpecial.find(aByte) != theSpecial.npos;
}

static void AppendHex(zoBuffer* aBuffer, char aByte)
{
    char theEscape[4] = { '\\', 'x' };
    Shared::WriteHexByte(theEscape + 2, aByte);
    Shared::Append(aBuffer, theEscape, sizeof(theEscape));
}

// The letter for a byte that needs one; 0 for others.
static char LetterFor(char aByte, bool afIsAtEnd)
{
    if (aByte == ' ' && !afIsAtEnd) { return 0; }
    for (const Escape& theEscape : kEscapes)
    {
        if (aByte == theEscape.mByte) { return theEscape.mLetter; }
    }
    return 0;
}

void AppendEscaped(zoBuffer* aBuffer, std::string_view aText, bool afIsName)
{
    for (size_t i = 0; i < aText.size(); ++i)
    {
        const char theLetter = LetterFor(aText[i], i == 0 || i + 1 == aText.size());
        const char thePair[] = { '\\', theLetter };
        if (theLetter) { Shared::Append(aBuffer, thePair, sizeof(thePair)); }
        else if (afIsName && NeedsHex(aText[i], i == 0)) { AppendHex(aBuffer, aText[i]); }
        else { Shared::Append(aBuffer, &aText[i], 1); }
    }
}

} // namespace ConfigFile
