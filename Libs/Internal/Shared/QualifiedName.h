#pragma once

/* Names of XML nodes and attributes as the document has them. */

#include <UPnP/Stack/ILibXML.h>
#include <stddef.h>
#include <string_view>

namespace Shared
{

/** @return the name without its prefix. */
inline std::string_view LocalName(const ILibXMLNode* aNode)
{
    return { aNode->Name, static_cast<size_t>(aNode->NameLength) };
}

inline std::string_view LocalName(const ILibXMLAttribute* anAttribute)
{
    return { anAttribute->Name, static_cast<size_t>(anAttribute->NameLength) };
}

/** @return the prefix without its colon, empty when there is none. */
inline std::string_view Prefix(const ILibXMLNode* aNode)
{
    return { aNode->NSTag, aNode->NSTag ? static_cast<size_t>(aNode->NSLength) : 0 };
}

inline std::string_view Prefix(const ILibXMLAttribute* anAttribute)
{
    return { anAttribute->Prefix, anAttribute->Prefix ? static_cast<size_t>(anAttribute->PrefixLength) : 0 };
}

/** @return prefix, colon and local name, or the local name alone. */
inline std::string_view QualifiedName(const ILibXMLNode* aNode)
{
    const char* theBegin = aNode->NSTag ? aNode->NSTag : aNode->Name;
    return { theBegin, static_cast<size_t>(aNode->Name + aNode->NameLength - theBegin) };
}

inline std::string_view QualifiedName(const ILibXMLAttribute* anAttribute)
{
    const char* theBegin = anAttribute->Prefix ? anAttribute->Prefix : anAttribute->Name;
    return { theBegin, static_cast<size_t>(anAttribute->Name + anAttribute->NameLength - theBegin) };
}

} // namespace Shared
