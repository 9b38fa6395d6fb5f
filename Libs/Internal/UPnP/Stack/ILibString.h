#pragma once

/* Look-ups of words in tables, and numbers and times from text. */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The unknown time. */
#define kUPnP_UnknownTime 0xFFFFFFFFu

/**
 * Reads a duration of UPnP AV: H+:MM:SS, also MM:SS and SS, each with an optional fraction ".F+" or ".F0/F1" (F0 below
 * F1), which is dropped. Minutes and seconds are one or two digits below 60 where a larger unit stands before them.
 * @return seconds; kUPnP_UnknownTime for anything else, for a time that doesn't fit, and for NULL.
 */
UPNPSTACK_API uint32 ILibString_ParseTimeString(const char* aText);

/** @return the index of the first entry of the NULL-terminated array that equals aText, ignoring the case of ASCII
 *          letters; -1 when there is none, or for NULL. */
UPNPSTACK_API int ILibString_FindStringInArray(const char* aText, const char** anArray);
/** As ILibString_FindStringInArray, for the first aLength bytes of aText. */
UPNPSTACK_API int ILibString_FindSubStringInArray(const char* aText, size_t aLength, const char** anArray);
/** @return the index of the entry of the NULL-terminated table that equals aText exactly; -1 when there is none, or for
 *          NULL. */
UPNPSTACK_API int ILibFindEntryInTable(const char* aText, const char** aTable);

/** Reads a decimal number of aLength bytes, with an optional minus sign; a number that doesn't fit 32 bits is refused.
 *  @return 0 on success; else -1, and *aValue keeps its value. */
UPNPSTACK_API int ILibGetLong(const char* aText, size_t aLength, int32* aValue);

#ifdef __cplusplus
}
#endif
