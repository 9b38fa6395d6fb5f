#pragma once

#include <UPnP/Utilities/DIDL/DocumentText.h>

namespace DIDL
{

// Finds the rows of a table by their mIdentifier, ignoring case. An empty one ends the table. Built at compile time.
template <typename Row, size_t Size>
class NameIndex
{
public:
    constexpr explicit NameIndex(const Row (&aTable)[Size]) : mTable(aTable), mRows()
    {
        for (size_t i = 0; i < Size && !aTable[i].mIdentifier.empty(); ++i)
        {
            size_t theSlot = SlotOf(aTable[i].mIdentifier);
            for (; mRows[theSlot] != 0; theSlot = (theSlot + 1) % kSlots) {}
            mRows[theSlot] = static_cast<uint8>(i + 1);
        }
    }

    // NULL without a row of that name, which is not empty.
    const Row* Find(std::string_view aName) const
    {
        for (size_t theSlot = SlotOf(aName); mRows[theSlot] != 0; theSlot = (theSlot + 1) % kSlots)
        {
            const Row* theRow = mTable + (mRows[theSlot] - 1);
            const std::string_view theName = theRow->mIdentifier; // of a length that IsSameName would call memcmp for
            if (theName.size() == aName.size() && (Shared::EqualNames(theName.data(), aName.data(), aName.size()) ||
                                                   IsSameButForCase(theName.data(), aName.data(), aName.size())))
            {
                return theRow;
            }
        }
        return nullptr;
    }

private:
    static const size_t kSlots = 64;
    static_assert(Size < kSlots, "a search ends at a free slot");

    // Length and last letter, without its case, differ for nearly all names of a table.
    static constexpr size_t SlotOf(std::string_view aName)
    {
        return (aName.size() * 5 + (static_cast<uint8>(aName[aName.size() - 1]) & 0x1Fu)) % kSlots;
    }

    const Row* mTable;
    uint8 mRows[kSlots]; // 1 plus the row's index; 0 is free
};

} // namespace DIDL
