#include <UPnP/Utilities/CDS/Record.h>

#include <Shared/Text.h>

namespace CDS
{

static const uint32 kMaxTag = 0xFFFF;

std::string_view FindText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    size_t theSize = 0;
    const char* theText = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return Shared::TextOf(theText, theSize);
}

zoCString GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    const std::string_view theText = FindText(aRecord, anEntry, aTag);
    return zoCString(theText.data() ? theText.data() : "", theText.size());
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

bool FindPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex, uint16* aNameTag)
{
    if (anIndex < 0 || anIndex >= CountPairs(aRecord, anEntry, aFirstTag)) { return false; }
    const uint32 theTag = aFirstTag + 2 * static_cast<uint32>(anIndex);
    *aNameTag = static_cast<uint16>(theTag);
    return theTag <= kMaxTag;
}

// True if the entry's last aCount tags are below aFirstTag. They are different, so there are no more than aFirstTag.
static bool EndsInLowTags(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, uint32 aCount)
{
    const uint32 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    for (uint32 i = theTagCount - aCount; i < theTagCount; ++i)
    {
        if (zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(i)) >= aFirstTag) { return false; }
    }
    return true;
}

bool FindStoredPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex, uint16* aNameTag)
{
    const uint32 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    const uint32 theExtraCount = zoPackedData_CountTagsFrom(aRecord, anEntry, aFirstTag);
    if (anIndex < 0 || static_cast<uint32>(anIndex) >= theExtraCount / 2) { return false; }
    const uint32 thePosition = 2 * static_cast<uint32>(anIndex);
    if (EndsInLowTags(aRecord, anEntry, aFirstTag, theTagCount - theExtraCount))
    {
        *aNameTag = zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(thePosition));
        return true;
    }

    int theIndex = 0;
    for (uint32 i = 0; i < theTagCount; ++i)
    {
        *aNameTag = zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(i));
        if (*aNameTag < aFirstTag) { continue; }
        if (theIndex == anIndex) { return true; }
        ++theIndex;
        ++i; // past the value
    }
    return false;
}

zoCString GetPairValue(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aNameTag)
{
    return aNameTag < kMaxTag ? GetText(aRecord, anEntry, static_cast<uint16>(aNameTag + 1)) : zoCString();
}

} // namespace CDS
