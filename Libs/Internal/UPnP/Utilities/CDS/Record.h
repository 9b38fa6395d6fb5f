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

/** @return the text, borrowed; without data when it is absent. */
std::string_view FindText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** @return a copy of the text; "" when it is absent. */
zoCString GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** True if the text is present and equals aText. */
bool HasText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, std::string_view aText);

/** @return the number of pairs. */
uint16 CountPairs(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag);

/** Finds the tag of a pair's name, pairs being counted by their tags.
 *  @return false for an index outside 0 to CountPairs() - 1, and when the tag would be above 65535. */
bool FindPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex, uint16* aNameTag);
/** As FindPair, pairs being counted in the order of storage: an extra tag is a name's, and the value next to it is
 *  passed over. Takes logarithmic time when extra tags are stored first, as the parser does, else linear time. */
bool FindStoredPair(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aFirstTag, int anIndex, uint16* aNameTag);
/** @return the value of a pair whose name has the tag. */
zoCString GetPairValue(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aNameTag);

} // namespace CDS
