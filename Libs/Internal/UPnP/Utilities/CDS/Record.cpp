#include <UPnP/Utilities/CDS/Record.h>

#include <string.h>

namespace CDS
{

static const uint32 kMaxTag = 0xFFFF;

std::string_view FindText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    size_t theSize = 0;
    const char* theText = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return { theText, theText ? strnlen(theText, theSize) : 0 };
}

zoCString GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    const std::string_view theText = FindText(aRecord, anEntry, aTag);
    return zoCString(theText.data(), theText.size());
}

bool HasText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, std::string_view aText)
{
    const std::string_view theText = FindText(aRecord, anEntry, aTag);
    return theText.data() && theText == aText;
}

uint16 CountPairs(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag)
{
    const uint16 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    uint32 theCount = 0;
    for (uint32 i = 0; i < theTagCount; ++i)
    {
        if (zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(i)) >= aFirstTag) { ++theCount; }
    }
    return static_cast<uint16>(theCount / 2);
}

bool HasTag(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag)
{
    if (aTag > kMaxTag) { return false; }
    if (zoPackedData_GetData(aRecord, anEntry, static_cast<uint16>(aTag), nullptr)) { return true; }
    const uint16 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    for (uint32 i = 0; i < theTagCount; ++i)
    {
        if (zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(i)) == aTag) { return true; }
    }
    return false;
}

// Whether an index is below the number of pairs. No more than aFirstTag tags belong to no pair, so the tags need to be
// counted for the last few indices only.
static bool IsBelowPairCount(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, uint32 anIndex)
{
    const uint32 theTagCount = zoPackedData_GetTagCount(aRecord, anEntry);
    if (anIndex >= theTagCount / 2) { return false; }
    if (theTagCount > aFirstTag && anIndex < (theTagCount - aFirstTag) / 2) { return true; }
    return anIndex < CountPairs(aRecord, anEntry, aFirstTag);
}

// The text under a pair's name tag (anOffset 0) or value tag (1).
static zoCString GetPairText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex,
                             uint32 anOffset)
{
    const uint32 theIndex = static_cast<uint32>(anIndex);
    if (anIndex < 0 || !IsBelowPairCount(aRecord, anEntry, aFirstTag, theIndex)) { return zoCString(); }
    const uint32 theNameTag = aFirstTag + 2 * theIndex;
    if (!HasTag(aRecord, anEntry, theNameTag + 1)) { return zoCString(); }
    return GetText(aRecord, anEntry, static_cast<uint16>(theNameTag + anOffset));
}

zoCString GetPairName(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex)
{
    return GetPairText(aRecord, anEntry, aFirstTag, anIndex, 0);
}

zoCString GetPairValue(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex)
{
    return GetPairText(aRecord, anEntry, aFirstTag, anIndex, 1);
}

} // namespace CDS
