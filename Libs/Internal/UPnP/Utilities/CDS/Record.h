#pragma once

/* Reading the texts and the extra info of a media object record (UPnPConst.h).
 *
 * A text ends at its NUL or with its bytes. Extra info is pairs of a name and a value: the name has an even offset from
 * the record's first extra tag, the value the next tag. There are half as many pairs as extra tags. A pair below that
 * count is read as it is, whatever of it is absent as ""; at or above the count there is none. */

#include <string_view>
#include <zo/CString.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoPackedData.h>

namespace CDS
{

/** A tag above all tags, of a pair that is not there: its text, and that of the tag after it, is absent. */
inline constexpr uint32 kNoTag = 0x10000;

/** @return the text, borrowed; without data when it is absent. */
std::string_view FindText(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag);
/** @return a copy of the text; "" when it is absent. */
zoCString GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag);
/** @return the text with its NUL, borrowed; "" when it is absent or has none. */
const char* GetStr(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aTag);
/** True if the text is present and equals aText. */
bool HasText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, std::string_view aText);

/** @return the number of pairs. */
uint16 CountPairs(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag);

/* Each gives the tag of a pair's name, after which comes that of its value; kNoTag when there is no such pair. */

/** Pairs are counted by their tags. A negative index is above all others. */
uint32 FindPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex);
/** Pairs are counted in the order of storage: an extra tag is a name's, and the value next to it is passed over. Takes
 *  logarithmic time. */
uint32 FindStoredPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex);
/** The first pair, counted by tags, of exactly that name. Takes linear time. */
uint32 FindPairNamed(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, std::string_view aName);

} // namespace CDS
