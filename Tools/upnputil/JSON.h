#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <zoOS/zoTypes.h>

/* A value of a fact in JSON. */
typedef std::variant<std::nullptr_t, bool, uint64, std::string_view> JSONValue;

/* Writes JSON piece by piece, by RapidJSON: nothing of it is kept. Outermost objects follow each other, each with a
 * line end. */
class JSONWriter
{
public:
    /** @param aTarget what is written is appended to it.
     *  @param afLines whether each outermost object is one line; otherwise its members have lines of their own. */
    JSONWriter(std::string& aTarget, bool afLines);
    ~JSONWriter();

    /** @return whether each outermost object is one line. */
    bool IsInLines() const { return mfLines; }
    /** @return how many objects and arrays are open. */
    size_t GetDepth() const { return mDepth; }

    /** Begins a member of the innermost object, or of a new outermost one, with the key that a fact's name makes. */
    void Name(std::string_view aName);
    /** Begins a member with this key. */
    void Key(std::string_view aKey);
    /** Writes the value of a member, or an element. Each byte of a text that is not UTF-8 becomes U+FFFD. */
    void Value(const JSONValue& aValue);
    void BeginObject();
    void EndObject();
    void BeginArray();
    void EndArray();

private:
    struct Writers;
    template <typename Call>
    void Write(Call aCall);

    std::string& mTarget;
    const bool mfLines;
    size_t mDepth = 0;
    std::unique_ptr<Writers> mWriters;
};

/** @return the key that a fact's name makes: of "parent id" it is "parentId". */
std::string JSONKey(std::string_view aName);
