#pragma once

/* Tags as every reader of XML 1.0 with namespaces takes them; what documents are read with takes more. Functions that
 * read get the text that is left and take from its front what they have read. */

#include <UPnP/Utilities/DIDL/Characters.h>
#include <UPnP/Utilities/DIDL/List.h>
#include <string_view>
#include <zoOS/zoTypes.h>

namespace DIDL
{

struct Attribute
{
    std::string_view mText; // with the blanks before it
    QName mName;
    std::string_view mValue; // as written
};

// True if the text began with it, which then is read.
bool Read(std::string_view* aText, std::string_view aLiteral);
// The number of blanks and line ends that are read.
size_t ReadSpaces(std::string_view* aText);
// Reads attributes with blanks before each, and the blanks after the last.
bool ReadAttributes(std::string_view* aText, List<Attribute>* anAttributes);
// Reads up to aStop: "<" in an element, where the end of the text stops, too, or the quote of a value.
bool ReadCharacters(std::string_view* aText, char aStop);
// True for a URI (RFC 3986), or a relative one without a colon, that has no escapes, no "&", and no host but a name or
// an IPv4 address: of other texts, readers differ. Some check "&" as the reference "&#38;", and its "#" is a second
// one.
bool IsURI(std::string_view aText);
// True if the text has only characters that XML allows.
bool IsAllowed(std::string_view aText);

} // namespace DIDL
