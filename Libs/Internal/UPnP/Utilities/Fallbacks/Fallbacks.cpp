#include <UPnP/Utilities/Fallbacks/Fallbacks.h>

#include <Shared/ASCII.h>
#include <Shared/Format.h>
#include <Shared/QualifiedName.h>
#include <Shared/Sizes.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

#ifdef UPNP_LACKS_ILibFindXMLAttribute
ILibXMLAttribute* ILibFindXMLAttribute(ILibXMLAttribute* aList, const char* aPrefix, size_t aPrefixLength,
                                       const char* aName, size_t aNameLength)
{
    for (ILibXMLAttribute* theAttribute = aList; theAttribute; theAttribute = theAttribute->Next)
    {
        if (Shared::Equals(Shared::LocalName(theAttribute), { aName, aNameLength }) &&
            Shared::Equals(Shared::Prefix(theAttribute), { aPrefix, aPrefixLength }))
        {
            return theAttribute;
        }
    }
    return nullptr;
}
#endif

#ifdef UPNP_LACKS_ILibParseXMLWithMemory
ILibXMLNode* ILibParseXMLWithMemory(char* aText, size_t anOffset, size_t aLength, void* /*aMemory*/, size_t /*aSize*/)
{
    return ILibParseXML(aText, anOffset, aLength);
}
#endif

#ifdef UPNP_LACKS_ILibFindXMLError
// The list ends with the tag where the reader stopped, or with the one before it. A node may have no name at all.
char* ILibFindXMLError(const char* aText, size_t aLength, size_t* anOffset)
{
    *anOffset = 0;
    if (!aText) { return nullptr; }
    char* theText = zoStrndup(aText, aLength);
    ILibXMLNode* theNodes = ILibParseXML(theText, 0, strlen(theText));
    const bool fIsRefused = ILibProcessXMLNodeList(theNodes) != kILibProcessXML_NoError;
    for (const ILibXMLNode* theNode = theNodes; fIsRefused && theNode; theNode = theNode->Next)
        if (theNode->Name) { *anOffset = static_cast<size_t>(Shared::QualifiedName(theNode).data() - theText); }
    ILibDestructXMLNodeList(theNodes);
    free(theText);
    return fIsRefused ? zoStrdup("this tag, or the one after it, is not well-formed") : nullptr;
}
#endif

#ifdef UPNP_LACKS_zoBuffer_Reserve
// What was appended stays allocated, so going back to mPos makes room. When there is too little, at least as much as
// there is already is appended at once: a buffer that grows exactly is amortised O(1), too.
void zoBuffer_Reserve(zoBuffer* aBuffer, size_t aCount)
{
    const size_t thePosition = aBuffer->mPos;
    if (aBuffer->mSize - thePosition >= aCount) { return; }
    const size_t theNeeded = std::max(aCount, thePosition);
    char* theBytes = static_cast<char*>(zoMallocZeroed(theNeeded));
    zoBuffer_Append(aBuffer, theBytes, theNeeded);
    free(theBytes);
    aBuffer->mPos = thePosition;
}
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_IsNormal
int zoDLNAProtocolInfo_IsNormal(const char* aText, size_t /*aLength*/) { return !aText; }
#endif

#if defined(UPNP_LACKS_zoDLNAProtocolInfo_Match) || defined(UPNP_LACKS_zoDLNAProtocolInfoList_RankByScheme)
// Appends a copy, whose user data is aUserData.
static void AddCopy(zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo, int aUserData)
{
    char* theText = zoDLNAProtocolInfo_GetStr(anInfo);
    zoDLNAProtocolInfo_t* theCopy = zoDLNAProtocolInfo_New(theText, strlen(theText), 0);
    zoDLNAProtocolInfo_SetUserData(theCopy, aUserData);
    zoDLNAProtocolInfoList_Add(aList, theCopy, -1);
    free(theText);
}
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_Match
int zoDLNAProtocolInfo_Match(zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags)
{
    zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New("", 0);
    if (anElement) { AddCopy(theList, anElement, 0); }
    const int fMatches = zoDLNAProtocolInfoList_Match(theList, anInfo, aFlags);
    zoDLNAProtocolInfoList_Delete(theList);
    return fMatches;
}
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

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_NewInPlace
// The length may count the NUL of a stored text, which New need not take.
zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewInPlace(void* /*aMemory*/, size_t /*aSize*/, const char* aText,
                                                    size_t aLength)
{
    return zoDLNAProtocolInfo_New(aText, strnlen(aText, aLength), 0);
}
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfoList_FindMatch
size_t zoDLNAProtocolInfoList_FindMatch(const zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo,
                                        const int* aFlags, size_t aCount)
{
    size_t thePosition = 0;
    while (thePosition < aCount && !zoDLNAProtocolInfoList_Match(aList, anInfo, aFlags[thePosition]))
        ++thePosition;
    return thePosition;
}
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfoList_RankByScheme
// Drains a list of copies.
size_t zoDLNAProtocolInfoList_RankByScheme(const zoDLNAProtocolInfoList_t* aSinkList, const char* anOrder,
                                           const char* aSupported, zoDLNAProtocolInfo_t** anInfos, size_t aCount)
{
    char* theSupported = aSupported ? zoStrdup(aSupported) : zoDLNAProtocolInfoList_GetSupportedProtocolList(aSinkList);
    zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New("", 0);
    zoDLNAProtocolInfo_t** theInfos = Shared::NewArray<zoDLNAProtocolInfo_t*>(aCount);
    for (size_t i = 0; i < aCount; ++i)
    {
        theInfos[i] = anInfos[i];
        AddCopy(theList, anInfos[i], static_cast<int>(i));
    }
    size_t theCount = 0;
    int theBest;
    while ((theBest = zoDLNAProtocolInfoList_GetBestIndexForScheme(theList, anOrder, theSupported)) >= 0)
    {
        const zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfoList_GetProtocolInfoAt(theList, theBest);
        anInfos[theCount++] = theInfos[zoDLNAProtocolInfo_GetUserData(theInfo)];
        zoDLNAProtocolInfoList_Remove(theList, theBest);
    }
    zoDLNAProtocolInfoList_Delete(theList);
    free(theInfos);
    free(theSupported);
    return theCount;
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

#ifdef UPNP_LACKS_zoPackedData_CountTagsFrom
uint32 zoPackedData_CountTagsFrom(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    const uint16 theTotal = zoPackedData_GetTagCount(aRecord, anEntry);
    uint32 theCount = 0;
    for (uint16 i = 0; i < theTotal; ++i)
        theCount += zoPackedData_GetTagAt(aRecord, anEntry, i) >= aTag;
    return theCount;
}
#endif

#ifdef UPNP_LACKS_zoPackedData_FindEntryWithText
uint32 zoPackedData_FindEntryWithText(const zoPackedData_t* aRecord, uint16 aTag, const char* aText, uint32 aNumber,
                                      uint32* aCount)
{
    uint32 theFound = 0xFFFFFFFF;
    uint32 theCount = 0;
    const size_t theLength = aText ? strlen(aText) : 0;
    for (uint32 i = 0; theLength > 0 && i < zoPackedData_GetEntryCount(aRecord); ++i)
    {
        size_t theSize = 0;
        const char* theValue = zoPackedData_GetData(aRecord, i, aTag, &theSize);
        if (!theValue || !memmem(theValue, strnlen(theValue, theSize), aText, theLength)) { continue; }
        if (theCount++ == aNumber) { theFound = i; }
    }
    if (aCount) { *aCount = theCount; }
    return theFound;
}
#endif

#ifdef UPNP_LACKS_zoPackedData_FindTag
uint32 zoPackedData_FindTag(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    const uint16 theTotal = zoPackedData_GetTagCount(aRecord, anEntry);
    uint16 thePosition = 0;
    while (thePosition < theTotal && zoPackedData_GetTagAt(aRecord, anEntry, thePosition) != aTag)
        ++thePosition;
    return thePosition;
}
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
        theValue->mSize = 0;
        theValue->mData = zoPackedData_GetData(aRecord, anEntry, theValue->mTag, &theValue->mSize);
    }
    return theCount;
}
#endif

#ifdef UPNP_LACKS_zoPackedData_NewBlock
char* zoPackedData_NewBlock(const uint16* aTags, const uint32* anEnds, const uint16* aCounts, uint32 anEntryCount,
                            const char* aValues)
{
    zoPackedData_t* theRecord = zoPackedData_New(anEntryCount);
    for (uint32 i = 0; i < anEntryCount; ++i)
    {
        zoPackedData_AddNewEntry(theRecord);
        uint32 theBegin = 0;
        for (const uint16* theLast = aTags + aCounts[i]; aTags < theLast; ++aTags, ++anEnds)
        {
            const uint32 theSize = *anEnds - theBegin;
            zoPackedData_AddData(theRecord, *aTags, theSize > 0 ? aValues : nullptr, theSize);
            aValues += theSize;
            theBegin = *anEnds;
        }
    }
    char* theBlock = zoPackedData_TakeData(theRecord);
    zoPackedData_Free(theRecord);
    return theBlock;
}
#endif

#ifdef UPNP_LACKS_zoStringArray_Pack
size_t zoStringArray_Pack(const char* aStrings, size_t aSize, char* aTarget, size_t aCapacity)
{
    zoArray_t* theArray = zoArray_New();
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    for (size_t thePosition = 0; thePosition < aSize; thePosition += strlen(aStrings + thePosition) + 1)
        zoArray_Append(theArray, zoStrdup(aStrings + thePosition));
    size_t theSize = 0;
    char* theBytes = zoStringArray_FlattenerFunc(theArray, &theSize);
    if (theSize > 0 && theSize <= aCapacity) { memcpy(aTarget, theBytes, theSize); }
    free(theBytes);
    zoArray_Delete(theArray);
    return theSize;
}
#endif

#ifdef UPNP_LACKS_zoURI_S_GetHostIP
uint32 zoURI_S_GetHostIP(const char* aText, size_t aLength)
{
    char* theText = zoStrndup(aText ? aText : "", aText ? aLength : 0);
    zoURI* theURI = zoURI_NewFromEscapedStr(theText);
    const uint32 theAddress = theURI ? zoURI_GetHostIP(theURI) : 0xFFFFFFFF;
    zoURI_Delete(theURI);
    free(theText);
    return theAddress;
}
#endif
