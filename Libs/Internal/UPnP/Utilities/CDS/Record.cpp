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

// True if aCount tags from a position on are below aFirstTag. They are different, so there are no more than aFirstTag.
static bool AreLow(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, uint32 aPosition, uint32 aCount)
{
    for (uint32 i = aPosition; i < aPosition + aCount; ++i)
    {
        if (zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(i)) >= aFirstTag) { return false; }
    }
    return true;
}

// @return the position of the entry's low tags if they are stored one after the other: after the extra tags, or among
// them when those before are in their order; else kNoTag.
static uint32 FindLowTags(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, uint32 anExtraCount,
                          uint32 aLowCount)
{
    if (AreLow(aRecord, anEntry, aFirstTag, anExtraCount, aLowCount)) { return anExtraCount; }
    uint32 theLow = 0;
    for (uint32 theHigh = anExtraCount; theLow < theHigh;)
    {
        const uint32 theMiddle = (theLow + theHigh) / 2;
        const uint32 theTag = zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(theMiddle));
        if (theTag == aFirstTag + theMiddle) { theLow = theMiddle + 1; }
        else { theHigh = theMiddle; }
    }
    return AreLow(aRecord, anEntry, aFirstTag, theLow, aLowCount) ? theLow : kNoTag;
}

uint32 FindStoredPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex)
{
    const uint32 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    const uint32 theExtraCount = zoPackedData_CountTagsFrom(aRecord, anEntry, aFirstTag);
    if (static_cast<uint32>(anIndex) >= theExtraCount / 2) { return kNoTag; }
    const uint32 theLowCount = theTagCount - theExtraCount;
    const uint32 theLowBegin = FindLowTags(aRecord, anEntry, aFirstTag, theExtraCount, theLowCount);
    if (theLowBegin != kNoTag)
    {
        const uint32 thePosition = 2 * static_cast<uint32>(anIndex);
        const uint32 thePassedOver = // one fewer when it is the value of the name before
            thePosition < theLowBegin ? 0 : theLowCount - theLowBegin % 2;
        return zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(thePosition + thePassedOver));
    }

    int theIndex = 0;
    for (uint32 i = 0; i < theTagCount; ++i)
    {
        const uint32 theTag = zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(i));
        if (theTag < aFirstTag) { continue; }
        if (theIndex == anIndex) { return theTag; }
        ++theIndex;
        ++i; // past the value
    }
    return kNoTag;
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
