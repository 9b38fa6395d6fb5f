#pragma once

/* Finding one of many attributes. Start tags with more than kMaxUnindexed of them get an index, so that a long root tag
 * need not be read again for each object under it. */

#include <UPnP/Stack/XML/Document.h>
#include <string_view>

namespace XML
{

constexpr size_t kMaxUnindexed = 32;

/** Makes the index of a start tag of aCount attributes. */
void IndexAttributes(Document* aDocument, StartTag* aTag, size_t aCount);

/** @return the first attribute of a start tag with this prefix, "" for none, and name; NULL without one. */
ILibXMLAttribute* FindAttribute(const StartTag* aTag, std::string_view aPrefix, std::string_view aName);

} // namespace XML
