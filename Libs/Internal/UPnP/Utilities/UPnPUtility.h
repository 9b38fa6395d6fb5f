#pragma once

/* Small functions that the stack's modules share: times, words for true and false, UUIDs, ending the process, values of
 * event XML, numbers with a default. */

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
/* The size of the text form of a UUID with its NUL. */
#define kUPnP_UUIDSize 37

/* The words that mean true, ended by NULL. Look-ups ignore case. */
extern UPNPUTILITIES_API const char* kUPnPUtil_TrueStringList[];
/* The words that mean false, "" among them, ended by NULL. Look-ups ignore case. */
extern UPNPUTILITIES_API const char* kUPnPUtil_FalseStringList[];

/* What UPnPUtil_IPPart expands to. */
static inline unsigned int UPnPUtil_S_IPPart(uint32 anAddress, unsigned int aPart)
{
    unsigned char theBytes[4];
    memcpy(theBytes, &anAddress, sizeof(theBytes));
    return theBytes[aPart & 3u];
}
/* Byte y (0 to 3) of the IPv4 address x as it is in memory: an unsigned int. */
#define UPnPUtil_IPPart(x, y) UPnPUtil_S_IPPart((x), (unsigned int)(y))
/* The four arguments for "%u.%u.%u.%u" of an IPv4 address in network byte order; x is evaluated four times. */
#define UPnPUtil_IPPrintf(x) UPnPUtil_IPPart(x, 0), UPnPUtil_IPPart(x, 1), UPnPUtil_IPPart(x, 2), UPnPUtil_IPPart(x, 3)

/**
 * Writes a duration as "HH:MM:SS.000". The hours have two digits and wrap at 99: 99 hours are "00".
 * @param aStr   at least sizeof(kUPnP_UnknownTimeString) bytes.
 * @param aTime  seconds; kUPnP_UnknownTime is written as kUPnP_UnknownTimeString.
 */
UPNPUTILITIES_API void UPnPUtil_SetTimeString(char* aStr, uint32 aTime);
/** Reads a duration (see ILibString_ParseTimeString). @return seconds; kUPnP_UnknownTime for NULL and an invalid text.
 */
UPNPUTILITIES_API uint32 UPnPUtil_ParseTimeString(const char* aStr);

/** @return the index of the first entry of the NULL-terminated array that equals aStr, ignoring case; -1 when there is
 *          none, and for NULL. */
UPNPUTILITIES_API int UPnPUtil_FindStringInArray(const char* aStr, const char** aStrArray);
/** As UPnPUtil_FindStringInArray, for the first aStrLen bytes of aStr, which is at least as long. */
UPNPUTILITIES_API int UPnPUtil_FindSubStringInArray(const char* aStr, size_t aStrLen, const char** aStrArray);
/**
 * Checks that every part of a list is a known word: compares each with the words, one by one. Despite the name, ";"
 * separates the parts.
 * @param aStr  a text of at least aStrLen bytes; NULL counts as "". Empty parts are skipped.
 * @return 0 when the NULL-terminated array has all parts, ignoring case, and for a list without parts; else -1.
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

/** Sets the function that UPnPUtil_Exit calls first, one for the process; NULL for none. Not locked: set it before
 *  another thread may call UPnPUtil_Exit. */
UPNPUTILITIES_API void UPnPUtil_SetExitCallBack(void (*aUPnPExitCallBack)(int));
/** Calls that function with the code, then ends the process with exit. */
UPNPUTILITIES_API void UPnPUtil_Exit(int anExitCode) __attribute__((noreturn));

/**
 * Finds what the XML reader refuses in a document: in DIDL-Lite, groupInfo, groupCapabilities, and any other XML that
 * this library reads. It is for messages, once a document has been refused; it takes about as long as reading.
 * @param aText           aLength bytes. They are only read; a NUL among them ends the text. NULL counts as "".
 * @param aLine, aColumn  out: where it is, each counted from 1; 0 without an error. A line ends at LF, CR LF or CR. A
 *                        column is a character of UTF-8: bytes from 0x80 to 0xBF count with the one before them, and a
 *                        tab is one column. A byte-order mark at the beginning does not count.
 * @return the reason in English, without a full stop, such as "end tag </b> where </a> was expected"; NULL when the
 *         reader refuses nothing. A new text that the caller releases with free. It has the first 64 bytes of the
 *         document's names as they are: a program that shows it looks out for control characters.
 */
UPNPUTILITIES_API char* UPnPUtil_FindXMLError(const char* aText, size_t aLength, uint32* aLine, uint32* aColumn);

/* Event XML. The value of an element (<Volume val="12"/>) is its first attribute with the local name "val". Without
 * one, and for a NULL element, these functions leave their outputs unchanged. */

/**
 * Reads a duration.
 * @param aXML   a start tag. A NUL replaces the byte after the value, its closing quote, so that no other thread may
 *               read the document at the same time.
 * @param aTime  out: seconds; anUnknownValue when the value is not a duration.
 * @return 1 when the element has a "val", else 0.
 */
UPNPUTILITIES_API int UPnPUtil_GetTimeAttribute(struct ILibXMLNode* aXML, uint32* aTime, uint32 anUnknownValue);
/** @return 1 when there is a "val" and it is a decimal number that fits; else 0, and *anUInt32 is unchanged. */
UPNPUTILITIES_API int UPnPUtil_GetUInt32Attribute(struct ILibXMLNode* aXML, uint32* anUInt32);
/** As UPnPUtil_GetUInt32Attribute; the number may have a minus sign. */
UPNPUTILITIES_API int UPnPUtil_GetInt32Attribute(struct ILibXMLNode* aXML, int32* anInt32);
/** Changes the document as UPnPUtil_GetTimeAttribute does.
 *  @return the index of the entry of the NULL-terminated table that equals the value exactly; -1 when there is none. */
UPNPUTILITIES_API int UPnPUtil_GetTableAttributeIndex(struct ILibXMLNode* aXML, const char** aTable);
/**
 * @param aStr  in and out: NULL or a heap text, which is released and replaced with the value, its entities resolved;
 *              the caller releases that with free.
 * @return 1 when there is a "val"; else 0, and *aStr is unchanged.
 */
UPNPUTILITIES_API int UPnPUtil_GetStrAttribute(struct ILibXMLNode* aXML, char** aStr);

/** @return the decimal number; aDefaultValue for NULL, an invalid text and a number that does not fit. */
UPNPUTILITIES_API uint32 UPnPUtil_GetUInt32(const char* aStr, uint32 aDefaultValue);
/** As UPnPUtil_GetUInt32. */
UPNPUTILITIES_API uint16 UPnPUtil_GetUInt16(const char* aStr, uint16 aDefaultValue);

/** @return aCurrentValue, or aDefaultValue when that is 0 and neither bound is, raised to aMinValue or lowered to
 *          aMaxValue. */
UPNPUTILITIES_API uint32 UPnPUtil_CheckRange(uint32 aCurrentValue, uint32 aDefaultValue, uint32 aMinValue,
                                             uint32 aMaxValue);

#ifdef __cplusplus
}
#endif
