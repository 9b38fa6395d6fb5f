#pragma once

/* The resources of an object. */

#include <UPnP/Utilities/DIDL/ObjectParser.h>

namespace DIDL
{

inline bool IsResource(const ILibXMLNode* aNode) { return IsName(aNode->Name, aNode->NameLength, "res"); }

void ParseResource(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes);

} // namespace DIDL
