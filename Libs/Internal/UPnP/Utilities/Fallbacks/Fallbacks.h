#pragma once

/* Platform functions that a device may lack, because they only save time or memory, or say where a message comes from.
 * Each has its fallback here, over functions that every device has. A build for such a device names what is missing in
 * UPNP_PLATFORM_LACKS; then every source of the library includes this header first, and Fallbacks.cpp is compiled. The
 * contracts are those in the platform's headers of this project.
 *
 * The names are C's and hidden: they are not seen outside the library. */

#include <UPnP/Stack/ILibXML.h>
#include <stdarg.h>
#include <zoLog/Log.h>
#include <zoltTools/zoArray.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoPackedData.h>
#include <zoltTools/zoURI.h>

#pragma GCC visibility push(hidden)
extern "C" {

#ifdef UPNP_LACKS_ILibFindXMLError
char* ILibFindXMLError(const char* aText, size_t aLength, size_t* anOffset);
#endif

#ifdef UPNP_LACKS_ILibFindXMLAttribute
struct ILibXMLAttribute* ILibFindXMLAttribute(struct ILibXMLAttribute* aList, const char* aPrefix, size_t aPrefixLength,
                                              const char* aName, size_t aNameLength);
#endif

#ifdef UPNP_LACKS_ILibParseXMLWithMemory
struct ILibXMLNode* ILibParseXMLWithMemory(char* aText, size_t anOffset, size_t aLength, void* aMemory, size_t aSize);
#endif

#ifdef UPNP_LACKS_zoBuffer_Reserve
void zoBuffer_Reserve(zoBuffer* aBuffer, size_t aCount);
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_IsNormal
int zoDLNAProtocolInfo_IsNormal(const char* aText, size_t aLength);
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_Match
int zoDLNAProtocolInfo_Match(zoDLNAProtocolInfo_t* anElement, const zoDLNAProtocolInfo_t* anInfo, int aFlags);
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_MatchText
int zoDLNAProtocolInfo_MatchText(const char* aText, size_t aLength, const char* aProfile, int aConversionIndicator);
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfo_NewInPlace
zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewInPlace(void* aMemory, size_t aSize, const char* aText, size_t aLength);
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfoList_FindMatch
size_t zoDLNAProtocolInfoList_FindMatch(const zoDLNAProtocolInfoList_t* aList, const zoDLNAProtocolInfo_t* anInfo,
                                        const int* aFlags, size_t aCount);
#endif

#ifdef UPNP_LACKS_zoDLNAProtocolInfoList_RankByScheme
size_t zoDLNAProtocolInfoList_RankByScheme(const zoDLNAProtocolInfoList_t* aSinkList, const char* anOrder,
                                           const char* aSupported, zoDLNAProtocolInfo_t** anInfos, size_t aCount);
#endif

#ifdef UPNP_LACKS_zoLog_Append_V
void zoLog_Append_V(zoLogRecord_t* aRecord, const char* aFormat, va_list anArguments)
    __attribute__((format(printf, 2, 0)));
#endif

#ifdef UPNP_LACKS_zoLog_SetLocation
void zoLog_SetLocation(zoLogRecord_t* aRecord, const char* aFile, int aLine);
#endif

#ifdef UPNP_LACKS_zoPackedData_CountTagsFrom
uint32 zoPackedData_CountTagsFrom(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
#endif

#ifdef UPNP_LACKS_zoPackedData_FindEntryWithText
uint32 zoPackedData_FindEntryWithText(const zoPackedData_t* aRecord, uint16 aTag, const char* aText, uint32 aNumber,
                                      uint32* aCount);
#endif

#ifdef UPNP_LACKS_zoPackedData_FindTag
uint32 zoPackedData_FindTag(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
#endif

#ifdef UPNP_LACKS_zoPackedData_GetValues
typedef struct zoPackedData_Value
{
    const char* mData;
    size_t mSize;
    uint16 mTag;
} zoPackedData_Value;
uint32 zoPackedData_GetValues(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aFirst, zoPackedData_Value* aValues,
                              uint32 aMaxCount);
#endif

#ifdef UPNP_LACKS_zoPackedData_NewBlock
char* zoPackedData_NewBlock(const uint16* aTags, const uint32* anEnds, const uint16* aCounts, uint32 anEntryCount,
                            const char* aValues);
#endif

#ifdef UPNP_LACKS_zoStringArray_Pack
size_t zoStringArray_Pack(const char* aStrings, size_t aSize, char* aTarget, size_t aCapacity);
#endif

#ifdef UPNP_LACKS_zoURI_S_GetHostIP
uint32 zoURI_S_GetHostIP(const char* aText, size_t aLength);
#endif

} // extern "C"
#pragma GCC visibility pop
