#include <UPnP/Utilities/Fallbacks/Fallbacks.h>

#include <Shared/Format.h>
#include <stdlib.h>
#include <string.h>

#ifdef UPNP_LACKS_zoBuffer_Reserve
// What was appended stays allocated, so going back to mPos makes room. At least as much as there is already is
// appended, which keeps appending amortised O(1).
void zoBuffer_Reserve(zoBuffer* aBuffer, size_t aCount)
{
    static const char kBytes[64] = {};
    const size_t thePosition = aBuffer->mPos;
    while (aBuffer->mSize - thePosition < aCount)
        zoBuffer_Append(aBuffer, kBytes, sizeof(kBytes));
    aBuffer->mPos = thePosition;
}
#endif

#ifdef UPNP_LACKS_zoCustomHashTable_GetValueAtIndex
const char* zoCustomHashTable_GetValueAtIndex(const zoCustomHashTable* aTable, size_t anIndex)
{
    const char* theKey = zoCustomHashTable_GetKeyAtIndex(aTable, anIndex);
    return theKey ? zoCustomHashTable_Get(aTable, theKey) : nullptr;
}
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_IsNormal
int zoDLNAProtocolInfo_IsNormal(const char* aText, size_t /*aLength*/) { return !aText; }
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_MatchText
int zoDLNAProtocolInfo_MatchText(const char* aText, size_t aLength, const char* aProfile, int aConversionIndicator)
{
    zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(aText, aLength, 0);
    const bool fHasProfile = !aProfile || zoDLNAProtocolInfo_MatchPN(theInfo, aProfile);
    const bool fMatches = fHasProfile && (aConversionIndicator == -1 ||
                                          zoDLNAProtocolInfo_GetConversionIndicator(theInfo) == aConversionIndicator);
    zoDLNAProtocolInfo_Delete(theInfo);
    return fMatches;
}
#endif

#ifdef UPNP_LACKS_zoLog_Append_V
void zoLog_Append_V(zoLogRecord_t* aRecord, const char* aFormat, va_list anArguments)
{
    char* theText = Shared::NewFormattedText(aFormat, anArguments);
    zoLog_Append_F(aRecord, "%s", theText);
    free(theText);
}
#endif

#ifdef UPNP_LACKS_zoLog_SetLocation
void zoLog_SetLocation(zoLogRecord_t* /*aRecord*/, const char* /*aFile*/, int /*aLine*/) {}
#endif

#ifdef UPNP_LACKS_zoPackedData_GetValues
uint32 zoPackedData_GetValues(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aFirst, zoPackedData_Value* aValues,
                              uint32 aMaxCount)
{
    const uint32 theTotal = zoPackedData_GetTagCount(aRecord, anEntry);
    uint32 theCount = 0;
    for (; theCount < aMaxCount && aFirst + theCount < theTotal; ++theCount)
    {
        zoPackedData_Value* theValue = &aValues[theCount];
        theValue->mTag = zoPackedData_GetTagAt(aRecord, anEntry, static_cast<uint16>(aFirst + theCount));
        theValue->mData = zoPackedData_GetData(aRecord, anEntry, theValue->mTag, &theValue->mSize);
    }
    return theCount;
}
#endif
