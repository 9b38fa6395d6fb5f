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

// True if a character of three bytes is a line end for some reader (U+2028, U+2029), is invisible (U+200B), or changes
// the direction of the text after it (U+202A to U+202E, U+2066 to U+2069): then a line may not look like what it is.
static bool IsMisleading(std::string_view aCharacter)
{
    if (aCharacter[0] != '\xE2') { return false; }
    const int theCode = (aCharacter[1] & 0x3F) << 6 | (aCharacter[2] & 0x3F); // its last 12 bits
    return theCode == 0x00B || (theCode >= 0x028 && theCode <= 0x02E) || (theCode >= 0x066 && theCode <= 0x069);
}

// True if a character can be printed as it is: it is not a control character, not taken for a line end (U+0085) and not
// misleading.
static bool IsPlain(std::string_view aCharacter)
{
    if (aCharacter.empty()) { return false; }
    const unsigned char theFirst = static_cast<unsigned char>(aCharacter[0]);
    if (aCharacter.size() == 1) { return theFirst >= 0x20 && theFirst != 0x7F && theFirst != '\\'; }
    if (aCharacter.size() == 2) { return theFirst != 0xC2 || static_cast<unsigned char>(aCharacter[1]) >= 0xA0; }
    return aCharacter.size() != 3 || !IsMisleading(aCharacter);
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

void Output::InText(std::string_view aName, std::string_view aText)
{
    if (mJSON) { return; }
    mBuffer += mfColours ? "\x1B[36m" : "";
    mBuffer += mSubject;
    AppendEscaped(mBuffer, aName);
    mBuffer += mfColours ? ":\x1B[0m " : ": ";
    AppendEscaped(mBuffer, aText);
    mBuffer += '\n';
    WriteWhenFull();
}

void Output::InJSON(std::string_view aName, const JSONValue& aValue)
{
    if (!mJSON) { return; }
    mJSON->Name(aName);
    mJSON->Value(aValue);
    WriteWhenFull();
}

void Output::Fact(std::string_view aName, std::string_view aText, const JSONValue& aValue)
{
    InText(aName, aText);
    InJSON(aName, aValue);
}

void Output::Word(std::string_view aName, std::string_view aText, std::string_view aWord, uint64 aNumber)
{
    Fact(aName, aText, aWord);
    InJSON(std::string(aName) + " number", aNumber);
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
    if (mJSON && mJSON->GetDepth() > 0) { mJSON->EndObject(); }
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

// ---- Parts and lists ----

Output::Part::Part(Output& anOutput, std::string_view aName, std::string_view aKey)
    : mOutput(anOutput), mOuterLength(anOutput.mSubject.size())
{
    if (!aName.empty()) { (mOutput.mSubject += aName) += ' '; }
    if (!mOutput.mJSON) { return; }
    mOutput.mJSON->Key(aKey);
    mOutput.mJSON->BeginObject();
}

Output::Part::~Part()
{
    mOutput.mSubject.resize(mOuterLength);
    if (mOutput.mJSON) { mOutput.mJSON->EndObject(); }
}

Output::List::List(Output& anOutput, std::string_view aName, std::string_view aKey, Form aForm)
    : mOutput(anOutput),
      mName(aName),
      mOuterLength(anOutput.mSubject.size()),
      mfLines(aForm == kForm_Lines && anOutput.mJSON && anOutput.mJSON->IsInLines())
{
    if (!mOutput.mJSON) { return; }
    if (mfLines)
    {
        if (mOutput.mJSON->GetDepth() > 0) { mOutput.mJSON->EndObject(); }
        return;
    }
    mOutput.mJSON->Key(aKey);
    mOutput.mJSON->BeginArray();
}

Output::List::~List()
{
    End();
    if (mOutput.mJSON && !mfLines) { mOutput.mJSON->EndArray(); }
}

void Output::List::End()
{
    mOutput.mSubject.resize(mOuterLength);
    if (mOutput.mJSON && mfElementOpen) { mOutput.mJSON->EndObject(); }
    mfElementOpen = false;
}

void Output::List::Next()
{
    End();
    if (mOutput.mJSON) { mOutput.mJSON->BeginObject(); }
    if (!mName.empty()) { (mOutput.mSubject += mName) += " " + std::to_string(mCount) + " "; }
    mfElementOpen = true;
    ++mCount;
}

void Output::List::Add(std::string_view aText)
{
    if (!mName.empty()) { mOutput.InText(mName + " " + std::to_string(mCount), aText); }
    ++mCount;
    if (mOutput.mJSON) { mOutput.mJSON->Value(aText); }
}

void Output::List::AddPair(std::string_view aName, std::string_view aValue)
{
    Next();
    mOutput.InText(aName, aValue);
    mOutput.InJSON("name", aName);
    mOutput.InJSON("value", aValue);
    End();
}

// ---- Standard error ----

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
