#pragma once

/* Reading the tags of a text into a list of nodes. */

#include <UPnP/Stack/ILibXML.h>

namespace XML
{

/** As ILibParseXMLWithMemory. */
ILibXMLNode* Read(char* aText, size_t aLength, void* aMemory, size_t aSize);

} // namespace XML
