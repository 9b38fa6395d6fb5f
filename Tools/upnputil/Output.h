#pragma once

#include "JSON.h"

#include <optional>
#include <string>
#include <string_view>

/* Standard output, written in large pieces. Facts are lines "name: value": whatever a value holds, it can't look like
 * the end of its line or like another line. */
class Output
{
public:
    Output();

    /** Puts words before the names of the facts that follow ("object 0 "). */
    void SetSubject(std::string aSubject) { mSubject = std::move(aSubject); }
    /** From now on facts make up one JSON object, written at the end. */
    void UseJSON() { mJSON.emplace(); }
    void Fact(std::string_view aName, std::string_view aValue);
    /** As Fact; nothing for "". */
    void FactIfAny(std::string_view aName, std::string_view aValue);

    /** Prints a text as it is. */
    void Text(std::string_view aText);
    /** Prints a line of a help text's table. */
    void Row(std::string_view aName, std::string_view aHelp);

    /** Writes what there is so far, but facts as JSON at the end only. @return as Finish. */
    int Flush();
    /** Writes what is left. @return 0, or the error number of the first write that failed. */
    int Finish();

private:
    void WriteWhenFull();

    std::string mBuffer;
    std::string mSubject;
    std::optional<JSONFacts> mJSON;
    const bool mfColours;
    int mError = 0; // once it is set nothing is written any more
};

/** @return aText with line ends, other control characters, bytes that are not UTF-8, and the backslash written as "\n",
 *          "\r", "\t", "\\" or "\xHH". */
std::string Escaped(std::string_view aText);

/** Says something on standard error, in one line. */
void Say(const std::string& aMessage);
/** Says on standard error, in one line, why the program can't do what it was asked for. @return kExit_Bad. */
int Fail(const std::string& aMessage);
/** Says on standard error, in one line, what there is not. @return kExit_NotFound. */
int FailToFind(const std::string& aMessage);
