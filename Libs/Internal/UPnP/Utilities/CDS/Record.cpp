#include <UPnP/Utilities/CDS/Record.h>

#include <Shared/Text.h>
#include <algorithm>

namespace CDS
{

// The bytes of a text, its NUL and what follows that included; NULL when it is absent.
static const char* FindBytes(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag, size_t* aSize)
{
    *aSize = 0;
    return aTag < kNoTag ? zoPackedData_GetData(aRecord, anEntry, static_cast<uint16>(aTag), aSize) : nullptr;
}

std::string_view FindText(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag)
{
    size_t theSize;
    const char* theText = FindBytes(aRecord, anEntry, aTag, &theSize);
    return Shared::TextOf(theText, theSize);
}

zoCString GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag)
{
    const std::string_view theText = FindText(aRecord, anEntry, aTag);
    return zoCString(theText.data() ? theText.data() : "", theText.size());
}

const char* GetStr(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag)
{
    size_t theSize;
    const char* theText = FindBytes(aRecord, anEntry, aTag, &theSize);
    return theText && memchr(theText, '\0', theSize) ? theText : "";
}

bool HasText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, std::string_view aText)
{
    const std::string_view theText = FindText(aRecord, anEntry, aTag);
    return theText.data() && theText == aText;
}

uint16 CountPairs(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag)
{
    return static_cast<uint16>(zoPackedData_CountTagsFrom(aRecord, anEntry, aFirstTag) / 2);
}

uint32 FindPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex)
{
    const uint32 theIndex = static_cast<uint32>(anIndex);
    return theIndex < CountPairs(aRecord, anEntry, aFirstTag) ? aFirstTag + 2 * theIndex : kNoTag;
}

static const uint16 kMostFields = 32; // more than a record has

// Finds the positions of an entry's fields, whose tags are below that of the first pair, in their order.
static uint32 FindFields(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, uint32 aTagCount,
                         uint32 (&aPositions)[kMostFields])
{
    uint32 theCount = 0;
    for (uint16 theTag = 0; theTag < std::min(aFirstTag, kMostFields); ++theTag)
    {
        const uint32 thePosition = zoPackedData_FindTag(aRecord, anEntry, theTag);
        if (thePosition == aTagCount) { continue; }
        uint32 i = theCount++;
        for (; i > 0 && aPositions[i - 1] > thePosition; --i)
            aPositions[i] = aPositions[i - 1];
        aPositions[i] = thePosition;
    }
    return theCount;
}

uint32 FindStoredPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex)
{
    uint32 theLeft = static_cast<uint32>(anIndex);
    if (theLeft >= CountPairs(aRecord, anEntry, aFirstTag)) { return kNoTag; }
    uint32 theFields[kMostFields];
    const uint32 theCount =
        FindFields(aRecord, anEntry, aFirstTag, zoPackedData_GetTagCount(aRecord, anEntry), theFields);
    uint32 thePosition = 0; // of the first pair after a field
    for (uint32 i = 0; i < theCount; ++i)
    {
        const uint32 thePairs = (theFields[i] - thePosition + 1) / 2; // a field may be passed over as a value
        if (theLeft < thePairs) { break; }
        theLeft -= thePairs;
        thePosition = theFields[i] + 1;
    }
    return zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(thePosition + 2 * theLeft));
}

uint32 FindPairNamed(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, std::string_view aName)
{
    const uint32 theEnd = std::min<uint32>(aFirstTag + 2u * CountPairs(aRecord, anEntry, aFirstTag), kNoTag);
    for (uint32 theTag = aFirstTag; theTag < theEnd; theTag += 2)
    {
        if (FindText(aRecord, anEntry, theTag) == aName) { return theTag; }
    }
    return kNoTag;
}

} // namespace CDS
