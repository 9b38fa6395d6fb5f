#pragma once

#include <string>
#include <string_view>
#include <vector>

/* Facts as one JSON object. A name like "object 0 resource 1 uri" is the path to a member: a word with a number is an
 * element of an array, so that this one is {"object": [{"resource": [ ..., {"uri": ...}]}]}. A fact whose name ends in
 * a number is a text of its array; a name that comes twice has an array of its texts. */
class JSONFacts
{
public:
    void Add(std::string_view aName, std::string_view aValue);
    /** @return the object and a line end. Bytes that are not UTF-8 are written as U+FFFD. */
    std::string Text() const;

private:
    enum class Kind
    {
        Text,
        Array,
        Object
    };
    // The members and elements of a node follow its own number, so that its number alone identifies a node.
    struct Node
    {
        Kind mKind = Kind::Object;
        std::string mName; // in an object
        std::string mText;
        std::vector<size_t> mChildren;
    };

    size_t NewChild(size_t aParent, Kind aKind, std::string_view aName);
    size_t Member(size_t anObject, std::string_view aName) const;
    size_t ArrayOf(size_t anObject, std::string_view aName);
    size_t ObjectAt(size_t anArray, size_t anIndex);
    void AddText(size_t anObject, std::string_view aName, std::string_view aValue);
    void AppendOpening(std::string& aText, size_t aNode) const;

    std::vector<Node> mNodes = std::vector<Node>(1); // the first is the outermost object
};
