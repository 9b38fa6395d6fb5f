#pragma once

/* Reading the values of a record. */

#include <Shared/Integers.h>
#include <Shared/Text.h>
#include <algorithm>
#include <string.h>
#include <string_view>
#include <zoltTools/zoPackedData.h>

namespace DIDL
{

using Shared::TextOf;

/** @return the bytes without a NUL at their end; empty also when the first is a NUL. */
inline std::string_view BytesOf(const zoPackedData_Value& aValue)
{
    if (aValue.mSize == 0 || *aValue.mData == 0) { return {}; }
    return { aValue.mData, aValue.mSize - (aValue.mData[aValue.mSize - 1] == 0) };
}

inline std::string_view TextOf(const char* aText) { return aText ? std::string_view(aText) : std::string_view(); }

inline std::string_view GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    size_t theSize;
    const char* theData = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return TextOf(theData, theSize);
}

/** The values of an entry, read in one pass. Those of the fixed tags, which are below Count, are kept. From Count on
 * the tags are those of pairs: a name, and under the next tag its value. */
template <uint16 Count>
class EntryValues
{
public:
    EntryValues(const zoPackedData_t* aRecord, uint32 anEntry) : mRecord(aRecord), mEntry(anEntry)
    {
        zoPackedData_Value theValues[kValuesPerCall];
        uint32 theCount = kValuesPerCall;
        for (uint32 theFirst = 0; theCount == kValuesPerCall; theFirst += theCount)
        {
            theCount = zoPackedData_GetValues(aRecord, anEntry, theFirst, theValues, kValuesPerCall);
            for (uint32 i = 0; i < theCount; ++i)
            {
                if (theValues[i].mTag < Count) { mFixed[theValues[i].mTag] = theValues[i]; }
                else { mPairsEnd = theFirst + i + 1; }
            }
        }
    }

    bool HasBytes(uint16 aTag) const { return mFixed[aTag].mData != nullptr; }
    std::string_view GetText(uint16 aTag) const { return TextOf(mFixed[aTag].mData, mFixed[aTag].mSize); }
    /** The text for AppendStr, which stops at a NUL: only that at the end, where a text has one, is left out here. */
    std::string_view GetBytes(uint16 aTag) const { return BytesOf(mFixed[aTag]); }

    /** @return the number, stored in 2, 4 or 8 bytes, converted; 0 for anything else. */
    template <typename Number>
    Number GetNumber(uint16 aTag) const
    {
        switch (mFixed[aTag].mSize)
        {
        case sizeof(uint16): return static_cast<Number>(Shared::Load<uint16>(mFixed[aTag].mData));
        case sizeof(uint32): return static_cast<Number>(Shared::Load<uint32>(mFixed[aTag].mData));
        case sizeof(uint64): return static_cast<Number>(Shared::Load<uint64>(mFixed[aTag].mData));
        default: return 0;
        }
    }

    /** Calls aUse with the name and the bytes of the value (NULL when it is absent) of each pair, in the order of
     *  storage. What is stored right after a name is passed over; a name without bytes is not used. */
    template <typename Use>
    void ForEachPair(Use aUse) const
    {
        zoPackedData_Value theValues[kPairValuesPerCall];
        for (uint32 theFirst = 0; theFirst < mPairsEnd;)
        {
            const uint32 theMaxCount = std::min(kPairValuesPerCall, mPairsEnd - theFirst);
            const uint32 theCount = zoPackedData_GetValues(mRecord, mEntry, theFirst, theValues, theMaxCount);
            const bool fIsLastCall = theFirst + theCount == mPairsEnd;
            uint32 i = 0;
            while (i < theCount)
            {
                const zoPackedData_Value* theName = &theValues[i];
                const bool fIsName = theName->mTag >= Count;
                if (fIsName && i + 1 == theCount && !fIsLastCall) { break; } // its value is in the next call
                if (fIsName && theName->mData) { UsePair(*theName, i + 1 < theCount ? theName + 1 : nullptr, aUse); }
                i += fIsName ? 2 : 1;
            }
            theFirst += i;
        }
    }

private:
    static constexpr uint32 kValuesPerCall = 32; // nearly every entry has fewer
    static constexpr uint32 kPairValuesPerCall = 16;

    // aNext: what is stored after the name, mostly its value.
    template <typename Use>
    void UsePair(const zoPackedData_Value& aName, const zoPackedData_Value* aNext, Use aUse) const
    {
        zoPackedData_Value theValue = {};
        if (aNext && aNext->mTag == aName.mTag + 1) { theValue = *aNext; }
        else if (aName.mTag < 0xFFFF)
        {
            const uint16 theTag = static_cast<uint16>(aName.mTag + 1);
            theValue.mData = zoPackedData_GetData(mRecord, mEntry, theTag, &theValue.mSize);
        }
        const std::string_view theBytes = BytesOf(theValue);
        aUse(TextOf(aName.mData, aName.mSize), theValue.mData ? &theBytes : nullptr);
    }

    const zoPackedData_t* mRecord;
    uint32 mEntry;
    uint32 mPairsEnd = 0; // the position after the last tag of a pair
    zoPackedData_Value mFixed[Count] = {};
};

} // namespace DIDL
