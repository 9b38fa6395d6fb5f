#pragma once

#include <string_view>
#include <zoltTools/zoCustomHashTable.h>

namespace DIDL
{

// A set of names that are pieces of the document, compared exactly: the first kInline in an array, the rest in a table.
class NameSet
{
public:
    NameSet() {} // leaves mInline as it is
    ~NameSet() { zoCustomHashTable_Delete(mTable); }
    NameSet(const NameSet&) = delete;
    NameSet& operator=(const NameSet&) = delete;

    bool Contains(std::string_view aName) const;

    // Adds a name that the set does not contain.
    void Add(std::string_view aName);
    void Clear();

private:
    enum : size_t
    {
        kInline = 16 // few documents declare more namespaces
    };
    size_t mCount = 0;                   // in mInline
    zoCustomHashTable* mTable = nullptr; // NULL until mInline is full
    std::string_view mInline[kInline];
};

} // namespace DIDL
