#pragma once

#include <UPnP/Utilities/DIDL/Names.h>
#include <UPnP/Utilities/DIDL/ObjectParser.h>

namespace DIDL
{

inline bool IsResource(const ILibXMLNode* aNode) { return IsNamed(aNode, kDIDL_Res); }

// Reads a res element into an entry of the resource record.
void ParseResource(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes);

} // namespace DIDL
