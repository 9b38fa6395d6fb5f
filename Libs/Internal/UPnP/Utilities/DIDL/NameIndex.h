#pragma once

#include <UPnP/Utilities/DIDL/DocumentText.h>

namespace DIDL
{

// Finds the rows of a table by their mIdentifier, ignoring case. An empty one ends the table. Built at compile time, so
// that each row has a slot of its own: a look-up is one comparison.
template <typename Row, size_t Size>
class NameIndex
{
public:
    constexpr explicit NameIndex(const Row (&aTable)[Size]) : mTable(aTable), mFactor(0), mSlots()
    {
        while (!FillSlots())
            ++mFactor;
    }

    // NULL without a row of that name. An empty name comes after a colon: the byte before a name is read then.
    const Row* Find(std::string_view aName) const
    {
        const Slot theSlot = mSlots[SlotOf(aName)];
        if (theSlot.mLength != static_cast<ptrdiff_t>(aName.size())) { return nullptr; }
        const Row* theRow = mTable + theSlot.mRow;
        const char* theName = theRow->mIdentifier.data();
        const bool fIsSame = Shared::EqualNames(theName, aName.data(), aName.size()) ||
                             IsSameButForCase(theName, aName.data(), aName.size());
        return fIsSame ? theRow : nullptr;
    }

private:
    struct Slot
    {
        uint8 mRow;
        int8 mLength; // of its name; kFree when the slot has no row
    };
    static const size_t kSlots = 64;
    static const int8 kFree = -1; // not even the length of an empty name

    // False when two rows have the same slot.
    constexpr bool FillSlots()
    {
        for (Slot& theSlot : mSlots)
            theSlot = { 0, kFree };
        for (size_t i = 0; i < Size && !mTable[i].mIdentifier.empty(); ++i)
        {
            Slot* theSlot = &mSlots[SlotOf(mTable[i].mIdentifier)];
            if (theSlot->mLength != kFree) { return false; }
            *theSlot = { static_cast<uint8>(i), static_cast<int8>(mTable[i].mIdentifier.size()) };
        }
        return true;
    }

    // By the length and the last letter, without its case.
    constexpr size_t SlotOf(std::string_view aName) const
    {
        return (aName.size() * mFactor + (static_cast<uint8>(*(aName.data() + aName.size() - 1)) & 0x1Fu)) % kSlots;
    }

    const Row* mTable;
    size_t mFactor;
    Slot mSlots[kSlots];
};

} // namespace DIDL
