#include "Output.h"

#include "Subcommand.h"
#include "UTF8.h"

#include <Shared/Digits.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <utility>

static const size_t kPieceSize = 65536;
static const size_t kHelpColumn = 26;

// True if a character can be printed as it is: it is not a control character, and no reader takes it for a line end
// (U+0085, U+2028, U+2029).
static bool IsPlain(std::string_view aCharacter)
{
    if (aCharacter.empty()) { return false; }
    const unsigned char theFirst = static_cast<unsigned char>(aCharacter[0]);
    if (aCharacter.size() == 1) { return theFirst >= 0x20 && theFirst != 0x7F && theFirst != '\\'; }
    if (aCharacter.size() == 2) { return theFirst != 0xC2 || static_cast<unsigned char>(aCharacter[1]) >= 0xA0; }
    return aCharacter != "\xE2\x80\xA8" && aCharacter != "\xE2\x80\xA9";
}

static void AppendByte(std::string& aTarget, char aByte)
{
    char theDigits[2];
    switch (aByte)
    {
    case '\n': aTarget += "\\n"; break;
    case '\r': aTarget += "\\r"; break;
    case '\t': aTarget += "\\t"; break;
    case '\\': aTarget += "\\\\"; break;
    default:
        Shared::WriteHexByte(theDigits, aByte);
        (aTarget += "\\x").append(theDigits, sizeof(theDigits));
        break;
    }
}

static void AppendEscaped(std::string& aTarget, std::string_view aText)
{
    while (!aText.empty())
    {
        const size_t theLength = CharacterLength(aText);
        const std::string_view theCharacter = aText.substr(0, theLength);
        if (IsPlain(theCharacter)) { aTarget += theCharacter; }
        else
        {
            for (const char theByte : aText.substr(0, theLength == 0 ? 1 : theLength))
                AppendByte(aTarget, theByte);
        }
        aText.remove_prefix(theLength == 0 ? 1 : theLength);
    }
}

std::string Escaped(std::string_view aText)
{
    std::string theText;
    theText.reserve(aText.size());
    AppendEscaped(theText, aText);
    return theText;
}

// True if names have a colour: on a terminal whose user has not said otherwise (https://no-color.org).
static bool WantsColours()
{
    const char* theNoColour = getenv("NO_COLOR");
    const char* theTerminal = getenv("TERM");
    return isatty(STDOUT_FILENO) && !(theNoColour && *theNoColour) && theTerminal && strcmp(theTerminal, "dumb") != 0;
}

Output::Output() : mfColours(WantsColours()) {}

void Output::Fact(std::string_view aName, std::string_view aValue)
{
    if (mJSON)
    {
        mJSON->Add(mSubject + std::string(aName), aValue);
        return;
    }
    mBuffer += mfColours ? "\x1B[36m" : "";
    mBuffer += mSubject;
    AppendEscaped(mBuffer, aName);
    mBuffer += mfColours ? ":\x1B[0m " : ": ";
    AppendEscaped(mBuffer, aValue);
    mBuffer += '\n';
    WriteWhenFull();
}

void Output::FactIfAny(std::string_view aName, std::string_view aValue)
{
    if (!aValue.empty()) { Fact(aName, aValue); }
}

void Output::Text(std::string_view aText)
{
    mBuffer += aText;
    WriteWhenFull();
}

void Output::Row(std::string_view aName, std::string_view aHelp)
{
    std::string theName = "  " + std::string(aName);
    theName.resize(theName.size() < kHelpColumn - 1 ? kHelpColumn : theName.size() + 1, ' ');
    Text(theName + std::string(aHelp) + "\n");
}

void Output::WriteWhenFull()
{
    if (mBuffer.size() >= kPieceSize) { Flush(); }
}

int Output::Finish()
{
    if (mJSON) { mBuffer += std::exchange(mJSON, std::nullopt)->Text(); }
    return Flush();
}

int Output::Flush()
{
    for (size_t theWritten = 0; mError == 0 && theWritten < mBuffer.size();)
    {
        const ssize_t theSize = write(STDOUT_FILENO, mBuffer.data() + theWritten, mBuffer.size() - theWritten);
        if (theSize >= 0) { theWritten += static_cast<size_t>(theSize); }
        else if (errno != EINTR) { mError = errno; }
    }
    mBuffer.clear();
    return mError;
}

void Say(const std::string& aMessage)
{
    const std::string theLine = "upnputil: " + Escaped(aMessage) + "\n";
    fwrite(theLine.data(), 1, theLine.size(), stderr);
}

int Fail(const std::string& aMessage)
{
    Say(aMessage);
    return kExit_Bad;
}

int FailToFind(const std::string& aMessage)
{
    Say(aMessage);
    return kExit_NotFound;
}
