#pragma once

/* Rows of a table by their names. */

#include <UPnP/Utilities/DIDL/Text.h>

namespace DIDL
{

// Finds rows of a table by their mIdentifier, of mLength bytes, ignoring case. Built when compiling: length and last
// letter tell the names of a table apart, most of them at the first look.
template <typename Row, size_t Size>
class NameIndex
{
public:
    constexpr explicit NameIndex(const Row (&aTable)[Size]) : mTable(aTable), mRows()
    {
        for (size_t i = 0; i < Size; ++i)
        {
            size_t theSlot = SlotOf(aTable[i].mIdentifier, aTable[i].mLength);
            for (; mRows[theSlot] != 0; theSlot = (theSlot + 1) % kSlots) {}
            mRows[theSlot] = static_cast<uint8>(i + 1);
        }
    }

    // NULL when there is none. A name has a byte at least.
    const Row* Find(const char* aName, size_t aLength) const
    {
        for (size_t theSlot = SlotOf(aName, aLength); mRows[theSlot] != 0; theSlot = (theSlot + 1) % kSlots)
        {
            const Row* theRow = mTable + (mRows[theSlot] - 1);
            if (theRow->mLength == aLength && EqualsIgnoringCase(theRow->mIdentifier, aName, aLength))
            {
                return theRow;
            }
        }
        return nullptr;
    }

private:
    static const size_t kSlots = 64;
    static_assert(Size < kSlots, "a search ends");

    static constexpr size_t SlotOf(const char* aName, size_t aLength)
    {
        return (aLength * 5 + (static_cast<uint8>(aName[aLength - 1]) & 0x1Fu)) % kSlots;
    }

    const Row* mTable;
    uint8 mRows[kSlots]; // 1 plus the row's number; 0 is free
};

} // namespace DIDL
