#pragma once

/* How the readers of a media object record (UPnPConst.h) read texts and extra info.
 * A text ends at its NUL or, when it has none, with its bytes; an absent one reads as "".
 * Extra info is read by pairs: pair k is there when k is below the number of pairs and its value's tag is present. */

#include <zo/CString.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoPackedData.h>

/** @param aLength out: its length without a NUL. @return the text, borrowed; NULL when it is absent. */
const char* CDSRecord_FindText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, size_t* aLength);
zoCString CDSRecord_GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** Whether the text is there and equals aText. */
bool CDSRecord_HasText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, const char* aText, size_t aLength);

/** @return half the number of the entry's tags from aFirstTag on. */
uint16 CDSRecord_CountPairs(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag);
/** Whether the entry has a value under the tag, be it one without bytes; 65536 is no tag. */
bool CDSRecord_HasTag(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag);
/** @return the name of a pair; "" when the pair is not there. Reading all pairs one by one takes time linear in their
 *          number. */
zoCString CDSRecord_GetPairName(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex);
/** As CDSRecord_GetPairName. */
zoCString CDSRecord_GetPairValue(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex);
