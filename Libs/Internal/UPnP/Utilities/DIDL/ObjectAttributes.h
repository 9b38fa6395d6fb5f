#pragma once

#include <UPnP/Utilities/DIDL/ObjectParser.h>

namespace DIDL
{

// Reads the attributes of the object's start tag. The result is 0 when a flag is neither true nor false; the other
// attributes are read all the same.
int ParseObjectAttributes(ObjectParser* aParser, const ILibXMLAttribute* anAttributes);

// The value of the first flag that is neither true nor false; NULL when there is none.
const char* FindInvalidFlag(const ILibXMLAttribute* anAttributes);

} // namespace DIDL
