#pragma once

/* The records of an object. */

#include <UPnP/Utilities/DIDL/ObjectParser.h>

namespace DIDL
{

void StartObject(ObjectParser* aParser, const char* aBaseURL, ILibXMLNode* aNode, int afIsItem);

// Adds the object's fields to its record, after its pairs.
void AddFields(ObjectParser* aParser, int afIsItem);

void FinishObject(ObjectParser* aParser, char** aData, char** aRes);

// Whether the root's start tag is longer than each of many objects could afford to go through.
bool IsTooLong(ILibXMLNode* aDIDLNode, ILibXMLNode* anObject);

} // namespace DIDL
