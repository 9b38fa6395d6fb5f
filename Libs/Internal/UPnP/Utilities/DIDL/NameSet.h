#pragma once

#include <Shared/ASCII.h>
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

    bool Contains(std::string_view aName) const { return (mSlots & SlotOf(aName)) != 0 && Find(aName); }

    // Adds a name that the set does not contain.
    void Add(std::string_view aName)
    {
        mSlots |= SlotOf(aName);
        if (mCount < kInline) { mInline[mCount++] = { aName.data(), aName.size() }; }
        else { AddToTable(aName); }
    }
    [[gnu::cold]] void Clear();

    // True if a set can be made equal by AssignInline.
    bool fIsInline() const { return !mTable; }

    // Makes a set without names equal to one that is inline.
    void AssignInline(const NameSet& aNames)
    {
        mSlots = aNames.mSlots;
        mCount = aNames.mCount;
        for (size_t i = 0; i < mCount; ++i)
            mInline[i] = aNames.mInline[i];
    }

private:
    // A bit that differs for most names: of the length and the last letter.
    static uint64 SlotOf(std::string_view aName)
    {
        const uint32 theLast = aName.empty() ? 0 : static_cast<uint8>(aName.back());
        return uint64{ 1 } << ((aName.size() * 5 + theLast) % 64);
    }
    bool Find(std::string_view aName) const;
    void AddToTable(std::string_view aName);

    enum : size_t
    {
        kInline = 16 // few documents declare more namespaces
    };
    uint64 mSlots = 0;                   // the bits of all names
    size_t mCount = 0;                   // in mInline
    zoCustomHashTable* mTable = nullptr; // NULL until mInline is full
    size_t mLongest = 0;                 // of the names in the table: a longer one is not looked up, which hashes it
    struct
    {
        const char* mData;
        size_t mSize;
    } mInline[kInline]; // std::string_view would be set to zero
};

} // namespace DIDL
