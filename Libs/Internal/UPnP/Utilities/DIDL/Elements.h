#pragma once

/* The elements of an object but its resources. */

#include <UPnP/Utilities/DIDL/ObjectParser.h>

namespace DIDL
{

void ParseElement(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes);

} // namespace DIDL
