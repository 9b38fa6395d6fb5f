#pragma once

#include <UPnP/Utilities/DIDL/ObjectParser.h>

namespace DIDL
{

// Reads an element of the object that is not a resource.
void ParseElement(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes);

} // namespace DIDL
