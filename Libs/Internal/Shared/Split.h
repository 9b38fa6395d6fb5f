#pragma once

/* Splitting a text at a separator, most often a comma:
 *
 *     std::string_view theItem;
 *     for (std::string_view theRest = aList; NextItem(&theRest, ',', &theItem);)
 *         Use(Trim(theItem, IsBlank));
 *
 * A text without a separator is one item, "" is one empty item, and a view without data has none. */

#include <string.h>
#include <string_view>

namespace Shared
{

/** Takes aLength bytes and the separator after them off the rest, which has no data after the last item. */
inline void TakeItem(std::string_view* aRest, size_t aLength, std::string_view* anItem)
{
    *anItem = { aRest->data(), aLength };
    if (aLength < aRest->size()) { aRest->remove_prefix(aLength + 1); }
    else { *aRest = {}; }
}

/** Takes the next item off the rest. @return false when there was none left. */
inline bool NextItem(std::string_view* aRest, char aSeparator, std::string_view* anItem)
{
    if (!aRest->data()) { return false; }
    const void* theFound = memchr(aRest->data(), aSeparator, aRest->size());
    TakeItem(aRest, theFound ? static_cast<size_t>(static_cast<const char*>(theFound) - aRest->data()) : aRest->size(),
             anItem);
    return true;
}

/** As NextItem, but a separator after anEscape belongs to the item, in which both stay. */
inline bool NextEscapedItem(std::string_view* aRest, char aSeparator, char anEscape, std::string_view* anItem)
{
    if (!aRest->data()) { return false; }
    size_t theLength = aRest->find(aSeparator);
    while (theLength != aRest->npos && theLength > 0 && (*aRest)[theLength - 1] == anEscape)
        theLength = aRest->find(aSeparator, theLength + 1);
    TakeItem(aRest, theLength != aRest->npos ? theLength : aRest->size(), anItem);
    return true;
}

} // namespace Shared
