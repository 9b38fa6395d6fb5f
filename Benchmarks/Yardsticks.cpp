#include "Yardsticks.h"

#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#if WITH_PUGIXML
#include <pugixml.hpp>

namespace
{

typedef std::vector<std::pair<std::string, std::string>> Facts;

void CopyAttributes(const pugi::xml_node& aNode, Facts& aFacts)
{
    for (const pugi::xml_attribute& theAttribute : aNode.attributes())
        aFacts.emplace_back(theAttribute.name(), theAttribute.value());
}

} // namespace

std::size_t PugixmlParse(std::string& aText)
{
    pugi::xml_document theDocument;
    theDocument.load_buffer_inplace(aText.data(), aText.size());
    std::size_t theCount = 0;
    for (pugi::xml_node theNode = theDocument.first_child().first_child().first_child(); theNode;
         theNode = theNode.next_sibling())
        theCount += std::strcmp(theNode.name(), "res") == 0;
    return theCount;
}

std::size_t PugixmlCountObjects(std::string& aText)
{
    pugi::xml_document theDocument;
    theDocument.load_buffer_inplace(aText.data(), aText.size());
    const auto theObjects = theDocument.first_child().children();
    return static_cast<std::size_t>(std::distance(theObjects.begin(), theObjects.end()));
}

std::size_t PugixmlParseAndCopy(std::string& aText, std::size_t aReserved)
{
    pugi::xml_document theDocument;
    theDocument.load_buffer_inplace(aText.data(), aText.size());
    Facts theFacts;
    theFacts.reserve(aReserved);
    std::size_t theCount = 0;
    const pugi::xml_node theRoot = theDocument.first_child();
    const pugi::xml_node theObject = theRoot.first_child();
    CopyAttributes(theRoot, theFacts);
    CopyAttributes(theObject, theFacts);
    for (const pugi::xml_node& theNode : theObject.children())
    {
        theFacts.emplace_back(theNode.name(), theNode.child_value());
        CopyAttributes(theNode, theFacts);
        theCount += theFacts.empty() ? 0 : std::strcmp(theNode.name(), "res") == 0;
    }
    return theCount;
}
#endif

#if WITH_LIBXML2
#include <libxml/parser.h>

std::size_t Libxml2Parse(const std::string& aText)
{
    xmlDocPtr theDocument =
        xmlReadMemory(aText.data(), static_cast<int>(aText.size()), nullptr, nullptr, XML_PARSE_NONET);
    if (!theDocument) { return 0; }
    std::size_t theCount = 0;
    for (xmlNodePtr theNode = xmlDocGetRootElement(theDocument)->children->children; theNode; theNode = theNode->next)
        theCount += std::strcmp(reinterpret_cast<const char*>(theNode->name), "res") == 0;
    xmlFreeDoc(theDocument);
    return theCount;
}

std::size_t Libxml2CountObjects(const std::string& aText)
{
    xmlDocPtr theDocument =
        xmlReadMemory(aText.data(), static_cast<int>(aText.size()), nullptr, nullptr, XML_PARSE_NONET);
    if (!theDocument) { return 0; }
    const std::size_t theCount = xmlChildElementCount(xmlDocGetRootElement(theDocument));
    xmlFreeDoc(theDocument);
    return theCount;
}
#endif
