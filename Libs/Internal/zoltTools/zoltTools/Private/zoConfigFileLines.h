#pragma once

/* The lines of a configuration file as they are written, so that those that nobody changes keep their bytes. */

#include <string_view>
#include <zoOS/zoTypes.h>

namespace ConfigFile
{

// A section's header, a key with its value, or neighbouring lines that are neither.
struct Line
{
    Line* mPrevious;
    Line* mNext;
    const char* mText; // line end included; a piece of the text that was loaded, or what follows the record
    size_t mLength;
    Line* mSameKey; // of a key's line: the line before this one with the same key
};

struct Lines
{
    char* mText; // what was loaded
    bool mfHasByteOrderMark;
    const char* mLineEnd; // of new lines
    Line* mFirst;
    Line* mLast;
};

/** Makes an empty list for a text, which it takes over. @return the text without its byte-order mark. */
std::string_view BeginLines(Lines* aLines, char* aText, size_t aLength);
void FreeLines(Lines* aLines);

/** Takes the next line off the text. @return the line, with its line end. */
std::string_view TakeLine(std::string_view* aText);
/** @return a line without its line end: "\n" or "\r\n", or the half of one at the end of the file. */
std::string_view ContentOf(std::string_view aLine);
inline std::string_view ContentOf(const Line* aLine) { return ContentOf({ aLine->mText, aLine->mLength }); }
/** True if the last line is empty, or there is no line. */
bool EndsWithEmptyLine(const Lines* aLines);

/** Appends a line of the text that was loaded. */
Line* AppendLoadedLine(Lines* aLines, std::string_view aLine);
/** Inserts a copy of aContent, with a line end, as a line of its own after aPrevious; NULL: at the beginning. */
Line* InsertLine(Lines* aLines, Line* aPrevious, std::string_view aContent);
/** Replaces a line but for its line end. @return the line that is there now. */
Line* ReplaceLine(Lines* aLines, Line* aLine, std::string_view aContent);
void RemoveLine(Lines* aLines, Line* aLine);

/** @return the text of all lines with a NUL after it, released with free; its length is in *aLength. */
char* NewTextOf(const Lines* aLines, size_t* aLength);

} // namespace ConfigFile
