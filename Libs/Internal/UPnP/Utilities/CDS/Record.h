#pragma once

/* Reading the texts and the extra info of a media object record (UPnPConst.h).
 * A text ends at its NUL or, when it has none, with its bytes. Pairs are the extra info: a name under an odd offset
 * from the record's first extra tag, its value under the next tag. */

#include <string_view>
#include <zo/CString.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoPackedData.h>

namespace CDS
{

/** @return the text, borrowed; without data when it is absent. */
std::string_view FindText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** @return a copy of the text; "" when it is absent. */
zoCString GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** True if the text is present and equals aText. */
bool HasText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, std::string_view aText);

/** @return half the number of the entry's tags from aFirstTag on. */
uint16 CountPairs(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag);
/** True if the entry has the tag, also for an empty value; false for numbers above 65535. */
bool HasTag(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag);
/** @return the name of a pair; "" when there is no such pair. */
zoCString GetPairName(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex);
/** @return the value of a pair; "" when there is no such pair. */
zoCString GetPairValue(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex);

} // namespace CDS
