#include <UPnP/Utilities/Hook/ValueLists.h>

#include <Shared/Append.h>
#include <Shared/Sizes.h>
#include <Shared/Split.h>
#include <UPnP/Utilities/Hook/Features.h>
#include <stdlib.h>
#include <string_view>
#include <zoltTools/zoMemory.h>

namespace
{

constexpr std::string_view kListStart = "<allowedValueList>";
constexpr std::string_view kListEnd = "</allowedValueList>";
constexpr std::string_view kValueStart = "<allowedValue>";
constexpr std::string_view kValueEnd = "</allowedValue>";

} // namespace

// The length of the list as XML; 0 when it has no value.
static size_t MeasureList(std::string_view aValues)
{
    const size_t kPerList = kListStart.size() + kListEnd.size();
    const size_t kPerValue = kValueStart.size() + kValueEnd.size();
    size_t theLength = 0;
    std::string_view theValue;
    while (Shared::NextItem(&aValues, ',', &theValue))
    {
        if (theValue.empty()) { continue; }
        theLength = Shared::AddSizes(theLength, theValue.size() + (theLength == 0 ? kPerList : 0) + kPerValue);
    }
    return theLength;
}

char* UPnPHook_GetAllowedValueListStr(const char* anAllowedValueListStr)
{
    std::string_view theRest = anAllowedValueListStr;
    const size_t theLength = MeasureList(theRest);
    if (theLength == 0) { return nullptr; }
    char* theList = static_cast<char*>(zoMalloc(Shared::AddSizes(theLength, 1)));
    char* theEnd = Shared::Append(theList, kListStart);
    std::string_view theValue;
    while (Shared::NextItem(&theRest, ',', &theValue))
    {
        if (theValue.empty()) { continue; }
        theEnd = Shared::Append(theEnd, kValueStart);
        theEnd = Shared::Append(theEnd, theValue);
        theEnd = Shared::Append(theEnd, kValueEnd);
    }
    theEnd = Shared::Append(theEnd, kListEnd);
    *theEnd = '\0';
    return theList;
}

namespace DeviceHook
{

// The values that are always there, then those of the property.
static char* NewValuesWith(UPnPHook* aUPnPHook, const char* aValues, int aPropertyID)
{
    const char* theProperty = UPnPHook_GetProperty(aUPnPHook, aPropertyID);
    return zoStrEmpty(theProperty) ? zoStrdup(aValues) : zo_mnprintf("%s,%s", aValues, theProperty);
}

static char* NewSeekModes(UPnPHook* aUPnPHook)
{
    zoBuffer* theModes = zoBuffer_New(64);
    for (const SeekMode& theMode : kSeekModes)
    {
        if (!IsAllowed(theMode, aUPnPHook)) { continue; }
        zoBuffer_AppendStr(theModes, theMode.mName);
        zoBuffer_AppendStr(theModes, ",");
    }
    return Shared::TakeText(theModes);
}

static char* NewPlaySpeeds(UPnPHook* aUPnPHook)
{
    const char* theSpeeds = UPnPHook_GetProperty(aUPnPHook, kUPnPHookProperty_PlaySpeedList);
    return zoStrEmpty(theSpeeds) ? nullptr : zoStrdup(theSpeeds);
}

static char* NewTransportStatuses(UPnPHook* aUPnPHook)
{
    return NewValuesWith(aUPnPHook, "OK,ERROR_OCCURRED", kUPnPHookProperty_TransportStatusList);
}

static char* NewPlayModes(UPnPHook* aUPnPHook)
{
    return NewValuesWith(aUPnPHook, kNormalPlayMode, kUPnPHookProperty_PlayModeList);
}

constexpr ValueList kValueLists[kValueListCount] = {
    { ":seekmodelist", NewSeekModes },
    { ":playspeedlist", NewPlaySpeeds },
    { ":transportstatuslist", NewTransportStatuses },
    { ":playmodelist", NewPlayModes },
};

constexpr bool IsComplete()
{
    for (const ValueList& theList : kValueLists)
    {
        if (!theList.mPartName || *theList.mPartName != ':' || !theList.mNewValues) { return false; }
    }
    return true;
}
static_assert(IsComplete(), "each list has a part name, which begins with ':', and values");

} // namespace DeviceHook
