#include <zoltTools/Private/zoConfigFileLines.h>

#include <Shared/Append.h>
#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

namespace ConfigFile
{

static const std::string_view kByteOrderMark = "\xEF\xBB\xBF";

static bool BeginsWithMark(std::string_view aText) { return aText.substr(0, kByteOrderMark.size()) == kByteOrderMark; }

std::string_view BeginLines(Lines* aLines, char* aText, size_t aLength)
{
    std::string_view theText(aText, aLength);
    const size_t theLineFeed = theText.find('\n');
    const bool fIsCRLF = theLineFeed != theText.npos && theLineFeed > 0 && theText[theLineFeed - 1] == '\r';
    *aLines = { aText, BeginsWithMark(theText), fIsCRLF ? "\r\n" : "\n", nullptr, nullptr };
    if (aLines->mfHasByteOrderMark) { theText.remove_prefix(kByteOrderMark.size()); }
    return theText;
}

void FreeLines(Lines* aLines)
{
    for (Line* theLine = aLines->mFirst; theLine;)
    {
        Line* theNext = theLine->mNext;
        free(theLine);
        theLine = theNext;
    }
    free(aLines->mText);
}

// ---- Reading ----

std::string_view TakeLine(std::string_view* aText)
{
    const size_t theLineFeed = aText->find('\n');
    const std::string_view theLine = aText->substr(0, theLineFeed != aText->npos ? theLineFeed + 1 : aText->size());
    aText->remove_prefix(theLine.size());
    return theLine;
}

std::string_view ContentOf(std::string_view aLine)
{
    if (!aLine.empty() && aLine.back() == '\n') { aLine.remove_suffix(1); }
    if (!aLine.empty() && aLine.back() == '\r') { aLine.remove_suffix(1); }
    return aLine;
}

bool EndsWithEmptyLine(const Lines* aLines)
{
    const std::string_view theContent = aLines->mLast ? ContentOf(aLines->mLast) : std::string_view();
    return theContent.empty() || theContent.back() == '\n';
}

// ---- Changing ----

static void Link(Lines* aLines, Line* aPrevious, Line* aLine)
{
    Line* theNext = aPrevious ? aPrevious->mNext : aLines->mFirst;
    aLine->mPrevious = aPrevious;
    aLine->mNext = theNext;
    (aPrevious ? aPrevious->mNext : aLines->mFirst) = aLine;
    (theNext ? theNext->mPrevious : aLines->mLast) = aLine;
}

Line* AppendLoadedLine(Lines* aLines, std::string_view aLine)
{
    Line* theLine = static_cast<Line*>(zoMalloc(sizeof(Line)));
    *theLine = { nullptr, nullptr, aLine.data(), aLine.size(), nullptr };
    Link(aLines, aLines->mLast, theLine);
    return theLine;
}

static Line* InsertWithEnd(Lines* aLines, Line* aPrevious, std::string_view aContent, std::string_view anEnd)
{
    const size_t theLength = Shared::AddSizes(aContent.size(), anEnd.size());
    Line* theLine = static_cast<Line*>(zoMalloc(Shared::AddSizes(sizeof(Line), theLength)));
    char* theText = reinterpret_cast<char*>(theLine + 1);
    Shared::Append(Shared::Append(theText, aContent), anEnd);
    *theLine = { nullptr, nullptr, theText, theLength, nullptr };
    Link(aLines, aPrevious, theLine);
    return theLine;
}

Line* InsertLine(Lines* aLines, Line* aPrevious, std::string_view aContent)
{
    return InsertWithEnd(aLines, aPrevious, aContent, aLines->mLineEnd);
}

Line* ReplaceLine(Lines* aLines, Line* aLine, std::string_view aContent)
{
    const size_t theLength = ContentOf(aLine).size();
    const std::string_view theEnd(aLine->mText + theLength, aLine->mLength - theLength);
    Line* theLine = InsertWithEnd(aLines, aLine, aContent, theEnd);
    theLine->mSameKey = aLine->mSameKey;
    RemoveLine(aLines, aLine);
    return theLine;
}

void RemoveLine(Lines* aLines, Line* aLine)
{
    (aLine->mPrevious ? aLine->mPrevious->mNext : aLines->mFirst) = aLine->mNext;
    (aLine->mNext ? aLine->mNext->mPrevious : aLines->mLast) = aLine->mPrevious;
    free(aLine);
}

// ---- Writing ----

// What a line lacks when another one follows it that used to be the last.
static std::string_view MissingEnd(const Lines* aLines, const Line* aLine)
{
    const char theLast = aLine->mLength > 0 ? aLine->mText[aLine->mLength - 1] : '\0';
    if (!aLine->mNext || theLast == '\n') { return {}; }
    return theLast == '\r' ? "\n" : aLines->mLineEnd;
}

// A mark at the beginning of a line that has become the first belongs to the line: reading skips the one before it.
static bool NeedsByteOrderMark(const Lines* aLines)
{
    const Line* theFirst = aLines->mFirst;
    return aLines->mfHasByteOrderMark || (theFirst && BeginsWithMark({ theFirst->mText, theFirst->mLength }));
}

char* NewTextOf(const Lines* aLines, size_t* aLength)
{
    size_t theLength = kByteOrderMark.size();
    for (const Line* theLine = aLines->mFirst; theLine; theLine = theLine->mNext)
        theLength = Shared::AddSizes(theLength, theLine->mLength + MissingEnd(aLines, theLine).size());
    char* theText = static_cast<char*>(zoMalloc(Shared::AddSizes(theLength, 1)));
    char* theEnd = Shared::Append(theText, NeedsByteOrderMark(aLines) ? kByteOrderMark : "");
    for (const Line* theLine = aLines->mFirst; theLine; theLine = theLine->mNext)
    {
        theEnd = Shared::Append(theEnd, { theLine->mText, theLine->mLength });
        theEnd = Shared::Append(theEnd, MissingEnd(aLines, theLine));
    }
    *theEnd = '\0';
    *aLength = static_cast<size_t>(theEnd - theText);
    return theText;
}

} // namespace ConfigFile
