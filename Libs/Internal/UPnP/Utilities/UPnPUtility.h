#pragma once

/* Small functions that the stack's modules share: times, words that mean true or false, UUIDs, values of event XML. */

#include <UPnP/Stack/ILibString.h>
#include <UPnP/Stack/ILibXML.h>
#include <UPnP/Utilities/Export.h>
#include <string.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* How the unknown time (kUPnP_UnknownTime) is written; with its NUL the longest time text. */
#define kUPnP_UnknownTimeString "NOT_IMPLEMENTED"
/* The size of a UUID's text with its NUL. */
#define kUPnP_UUIDSize 37

/* The words that mean true, ended by NULL. Look-ups ignore case. */
extern UPNPUTILITIES_API const char* kUPnPUtil_TrueStringList[];
/* The words that mean false, "" among them, ended by NULL. Look-ups ignore case. */
extern UPNPUTILITIES_API const char* kUPnPUtil_FalseStringList[];

/* For UPnPUtil_IPPart. */
static inline unsigned int UPnPUtil_S_IPPart(uint32 anAddress, unsigned int aPart)
{
    unsigned char theBytes[4];
    memcpy(theBytes, &anAddress, sizeof(theBytes));
    return theBytes[aPart & 3u];
}
/* Byte y (0 to 3) of the IPv4 address x as it lies in memory, an unsigned int. */
#define UPnPUtil_IPPart(x, y) UPnPUtil_S_IPPart((x), (unsigned int)(y))
/* The four arguments for "%u.%u.%u.%u" of an IPv4 address in network byte order. */
#define UPnPUtil_IPPrintf(x) UPnPUtil_IPPart(x, 0), UPnPUtil_IPPart(x, 1), UPnPUtil_IPPart(x, 2), UPnPUtil_IPPart(x, 3)

/**
 * Writes a duration as "HH:MM:SS.000". The hours have two digits and wrap at 99: 99 hours are "00".
 * @param aStr   at least sizeof(kUPnP_UnknownTimeString) bytes.
 * @param aTime  seconds; kUPnP_UnknownTime is written as kUPnP_UnknownTimeString.
 */
UPNPUTILITIES_API void UPnPUtil_SetTimeString(char* aStr, uint32 aTime);
/** Reads a duration (see ILibString_ParseTimeString). @return seconds; kUPnP_UnknownTime for what is no duration.
 */
UPNPUTILITIES_API uint32 UPnPUtil_ParseTimeString(const char* aStr);

/** @return the index in the NULL-terminated array of the entry that equals aStr, ignoring case; -1 without one. */
UPNPUTILITIES_API int UPnPUtil_FindStringInArray(const char* aStr, const char** aStrArray);
/** As UPnPUtil_FindStringInArray, for the first aStrLen bytes of aStr, which has as many. */
UPNPUTILITIES_API int UPnPUtil_FindSubStringInArray(const char* aStr, size_t aStrLen, const char** aStrArray);
/**
 * Checks that every part of a list is a known word. In spite of the name the parts are separated by ";".
 * @param aStr  its first aStrLen bytes are looked at; empty parts are passed over.
 * @return 0 when all parts are in the NULL-terminated array, ignoring case, also when there is none; else -1.
 */
UPNPUTILITIES_API int UPnPUtil_FindAllCommaSeparatedSubStringInArray(const char* aStr, size_t aStrLen,
                                                                     const char** aStrArray);
/** @return 1 when the text is in kUPnPUtil_TrueStringList, else 0; 0 for NULL. */
UPNPUTILITIES_API int UPnPUtil_IsStrTrue(const char* aStr);
/** @return 1 when the text is in kUPnPUtil_FalseStringList, else 0; 0 for NULL. */
UPNPUTILITIES_API int UPnPUtil_IsStrFalse(const char* aStr);

/** @return the text of a new random UUID, kUPnP_UUIDSize bytes, released with free:
 *          "0d9c2ae4-4d1f-4c7e-9f0b-1f6d0a8f3b52". */
UPNPUTILITIES_API char* UPnPUtil_BuildUUID(void);

/** Sets the function that UPnPUtil_Exit calls first; NULL: none. To be set before another thread may exit. */
UPNPUTILITIES_API void UPnPUtil_SetExitCallBack(void (*aUPnPExitCallBack)(int));
/** Calls the exit callback with the code, and ends the process with exit. */
UPNPUTILITIES_API void UPnPUtil_Exit(int anExitCode) __attribute__((noreturn));

/* The value of an element of event XML (<Volume val="12"/>): its first attribute of the local name "val". All of
 * them leave the outputs as they are when there is none. */

/**
 * @param aXML            a start tag. The byte after the value, its closing quote, is overwritten with a NUL, so no
 *                        other thread may read the document.
 * @param aTime out:      seconds; anUnknownValue when the value is no duration.
 * @return 1 when the element has a "val", else 0.
 */
UPNPUTILITIES_API int UPnPUtil_GetTimeAttribute(struct ILibXMLNode* aXML, uint32* aTime, uint32 anUnknownValue);
/** @return 1 when there is a "val" and it is a decimal number that fits, else 0, and *anUInt32 keeps its value. */
UPNPUTILITIES_API int UPnPUtil_GetUInt32Attribute(struct ILibXMLNode* aXML, uint32* anUInt32);
/** As UPnPUtil_GetUInt32Attribute; the number may have a minus sign. */
UPNPUTILITIES_API int UPnPUtil_GetInt32Attribute(struct ILibXMLNode* aXML, int32* anInt32);
/** Changes the document as UPnPUtil_GetTimeAttribute does.
 *  @return the index in the NULL-terminated table of the entry that equals the value exactly; -1 without one. */
UPNPUTILITIES_API int UPnPUtil_GetTableAttributeIndex(struct ILibXMLNode* aXML, const char** aTable);
/**
 * @param aStr in and out: a heap text or NULL; it is released and replaced by the value with its entities resolved,
 * which the caller releases with free.
 * @return 1 when there is a "val"; else 0, and *aStr stays.
 */
UPNPUTILITIES_API int UPnPUtil_GetStrAttribute(struct ILibXMLNode* aXML, char** aStr);

/** @return the decimal number; aDefaultValue for NULL, for what is no number and for what doesn't fit. */
UPNPUTILITIES_API uint32 UPnPUtil_GetUInt32(const char* aStr, uint32 aDefaultValue);
/** As UPnPUtil_GetUInt32. */
UPNPUTILITIES_API uint16 UPnPUtil_GetUInt16(const char* aStr, uint16 aDefaultValue);

/** @return the value, held within aMinValue and aMaxValue. A value of 0 stands for the default where 0 is no limit;
 * the default is held within them, too. */
UPNPUTILITIES_API uint32 UPnPUtil_CheckRange(uint32 aCurrentValue, uint32 aDefaultValue, uint32 aMinValue,
                                             uint32 aMaxValue);

#ifdef __cplusplus
}
#endif
