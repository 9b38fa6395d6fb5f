#pragma once

#include <UPnP/Utilities/DIDL/ObjectParser.h>

namespace DIDL
{

// Sets the bounds and the start values of an object. What aNodes and aBaseURL point to outlives the parser.
void StartObject(ObjectParser* aParser, const ObjectNodes& aNodes, const char* aBaseURL, int afIsItem);

// How many bytes of the root's declarations one of many objects inherits.
size_t MaxInheritedSize(const ObjectParser& aParser);

// Adds the object's fields to the entry record, after its pairs, and hands over both records in serialized form.
void FinishObject(ObjectParser* aParser, char** aData, char** aRes);

} // namespace DIDL
