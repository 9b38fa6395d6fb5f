#pragma once

#include "JSON.h"

#include <optional>
#include <string>
#include <string_view>

/* Standard output, written in large pieces. Facts are lines "name: value" or members of JSON objects. Whatever a value
 * holds, it can't look like the end of its line or like another line. */
class Output
{
public:
    class Part;
    class List;

    Output();

    /** From now on facts are members of one JSON object, or of an object a line for each element of the list that is
     *  made for that. */
    void UseJSON(bool afLines) { mJSON.emplace(mBuffer, afLines); }

    void Fact(std::string_view aName, std::string_view aValue) { Fact(aName, aValue, aValue); }
    /** A fact whose value in JSON is not the text. */
    void Fact(std::string_view aName, std::string_view aText, const JSONValue& aValue);
    /** As Fact; nothing for "". */
    void FactIfAny(std::string_view aName, std::string_view aValue);
    void Number(std::string_view aName, uint64 aValue) { Fact(aName, std::to_string(aValue), aValue); }
    void YesOrNo(std::string_view aName, bool afValue) { Fact(aName, afValue ? "yes" : "no", afValue); }
    /** A word of a fixed list; its number is a member of its own in JSON ("kind", "kindNumber"). */
    void Word(std::string_view aName, std::string_view aWord, uint64 aNumber) { Word(aName, aWord, aWord, aNumber); }
    void Word(std::string_view aName, std::string_view aText, std::string_view aWord, uint64 aNumber);
    /** What only JSON tells apart. */
    void InJSON(std::string_view aName, const JSONValue& aValue);
    /** What only text tells: in JSON it is the length of a list, for instance. */
    void InText(std::string_view aName, std::string_view aText);

    /** Prints a text as it is. */
    void Text(std::string_view aText);
    /** Prints a line of a help text's table. */
    void Row(std::string_view aName, std::string_view aHelp);

    /** Writes what there is so far. @return as Finish. */
    int Flush();
    /** Writes what is left. @return 0, or the error number of the first write that failed. */
    int Finish();

private:
    void WriteWhenFull();

    std::string mBuffer;
    std::string mSubject; // the words before the names of facts
    std::optional<JSONWriter> mJSON;
    const bool mfColours;
    int mError = 0; // once it is set nothing is written any more
};

/* Facts that belong together, for as long as it lives: in text, all begin with its name ("master udn"); in JSON they
 * are an object. */
class Output::Part
{
public:
    Part(Output& anOutput, std::string_view aName) : Part(anOutput, aName, JSONKey(aName)) {}
    /** @param aName "" for none in text. */
    Part(Output& anOutput, std::string_view aName, std::string_view aKey);
    ~Part();
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

private:
    Output& mOutput;
    const size_t mOuterLength; // of the subject
};

/* Facts about several things of a kind, for as long as it lives: in text, all begin with its name and a number
 * ("resource 0 uri"); in JSON they are the elements of an array. */
class Output::List
{
public:
    enum Form
    {
        kForm_Array,
        kForm_Lines // each element is an outermost object when there is one a line
    };

    /** @param aName of one element; "" for none in text.
     *  @param aKey  of the array in JSON. */
    List(Output& anOutput, std::string_view aName, std::string_view aKey, Form aForm = kForm_Array);
    ~List();
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    /** The facts that follow are those of one more element. */
    void Next();
    /** The facts that follow belong to no element. */
    void End();
    /** Adds an element that is one text; in JSON only, when it has no name. */
    void Add(std::string_view aText);
    /** Adds an element that has a name and a value: "extra 0 upnp:artist: Ella". */
    void AddPair(std::string_view aName, std::string_view aValue);
    /** @return how many elements there are so far. */
    size_t GetCount() const { return mCount; }

private:
    Output& mOutput;
    const std::string mName;
    const size_t mOuterLength; // of the subject
    const bool mfLines;
    bool mfElementOpen = false;
    size_t mCount = 0;
};

/** @return aText with line ends, other control characters, invisible ones that change a line's look, bytes that are not
 *          UTF-8, and the backslash written as "\n", "\r", "\t", "\\" or "\xHH". */
std::string Escaped(std::string_view aText);

/** Says something on standard error, in one line. */
void Say(const std::string& aMessage);
/** Says on standard error, in one line, why the program can't do what it was asked for. @return kExit_Bad. */
int Fail(const std::string& aMessage);
/** Says on standard error, in one line, what there is not. @return kExit_NotFound. */
int FailToFind(const std::string& aMessage);
