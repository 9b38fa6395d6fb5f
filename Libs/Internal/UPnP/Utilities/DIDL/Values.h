#pragma once

/* Reading the values of a record. */

#include <string.h>
#include <string_view>
#include <zoltTools/zoPackedData.h>

namespace DIDL
{

/** @return the bytes up to the first NUL or their end; empty for NULL. */
inline std::string_view TextOf(const char* aData, size_t aSize)
{
    if (!aData || aSize == 0 || *aData == 0) { return {}; }
    const void* theNul = memchr(aData, 0, aSize);
    return { aData, theNul ? static_cast<size_t>(static_cast<const char*>(theNul) - aData) : aSize };
}

inline std::string_view TextOf(const char* aText) { return aText ? std::string_view(aText) : std::string_view(); }

inline std::string_view GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    size_t theSize;
    const char* theData = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return TextOf(theData, theSize);
}

/** The values of an entry's fixed tags, those below Count, read in one pass. */
template <uint16 Count>
class FixedValues
{
public:
    FixedValues(const zoPackedData_t* aRecord, uint32 anEntry)
    {
        zoPackedData_Value theValues[kValuesPerCall];
        uint32 theCount = kValuesPerCall;
        for (uint32 theFirst = 0; theCount == kValuesPerCall; theFirst += theCount)
        {
            theCount = zoPackedData_GetValues(aRecord, anEntry, theFirst, theValues, kValuesPerCall);
            for (uint32 i = 0; i < theCount; ++i)
            {
                if (theValues[i].mTag < Count) { mValues[theValues[i].mTag] = theValues[i]; }
                else { mfHasPairs = true; }
            }
        }
    }

    bool HasPairs() const { return mfHasPairs; }
    bool HasBytes(uint16 aTag) const { return mValues[aTag].mData != nullptr; }
    std::string_view GetText(uint16 aTag) const { return TextOf(mValues[aTag].mData, mValues[aTag].mSize); }

    /** @return the number, stored in 2, 4 or 8 bytes, converted; 0 for anything else. */
    template <typename Number>
    Number GetNumber(uint16 aTag) const
    {
        switch (mValues[aTag].mSize)
        {
        case sizeof(uint16): return static_cast<Number>(Read<uint16>(aTag));
        case sizeof(uint32): return static_cast<Number>(Read<uint32>(aTag));
        case sizeof(uint64): return static_cast<Number>(Read<uint64>(aTag));
        default: return 0;
        }
    }

private:
    static constexpr uint32 kValuesPerCall = 32; // as many as nearly every entry has

    template <typename Stored>
    Stored Read(uint16 aTag) const
    {
        Stored theNumber;
        memcpy(&theNumber, mValues[aTag].mData, sizeof(theNumber));
        return theNumber;
    }

    zoPackedData_Value mValues[Count] = {};
    bool mfHasPairs = false;
};

/** Calls aUse with the name and the value (NULL when it is absent) of each pair of an entry, in the order of storage. A
 *  pair is a tag from aFirstTag on, its name, and the next tag, its value. The value that is stored after a name is
 *  passed over; a name without bytes is not used. */
template <typename Use>
void ForEachPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, Use aUse)
{
    const uint32 kValuesPerCall = 16;
    zoPackedData_Value theValues[kValuesPerCall];
    uint32 theCount = kValuesPerCall;
    for (uint32 theFirst = 0; theCount == kValuesPerCall;)
    {
        theCount = zoPackedData_GetValues(aRecord, anEntry, theFirst, theValues, kValuesPerCall);
        uint32 i = 0;
        while (i < theCount)
        {
            const zoPackedData_Value* theName = &theValues[i++];
            if (theName->mTag < aFirstTag) { continue; }
            if (i == kValuesPerCall) // the value is in the next call, and the name once more
            {
                --i;
                break;
            }
            const bool fIsNext = i < theCount && theValues[i].mTag == theName->mTag + 1;
            zoPackedData_Value theValue = fIsNext ? theValues[i] : zoPackedData_Value{};
            if (!fIsNext && theName->mTag < 0xFFFF)
            {
                const uint16 theTag = static_cast<uint16>(theName->mTag + 1);
                theValue.mData = zoPackedData_GetData(aRecord, anEntry, theTag, &theValue.mSize);
            }
            const std::string_view theText = TextOf(theValue.mData, theValue.mSize);
            if (theName->mData) { aUse(TextOf(theName->mData, theName->mSize), theValue.mData ? &theText : nullptr); }
            ++i;
        }
        theFirst += i;
    }
}

} // namespace DIDL
