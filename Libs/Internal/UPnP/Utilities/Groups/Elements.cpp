#include <UPnP/Utilities/Groups/Elements.h>

#include <string.h>

namespace Groups
{

Document::Document(const char* aText)
    : mNodes(aText ? ILibParseXML(const_cast<char*>(aText), 0, strlen(aText)) : nullptr), // which only reads it
      mfIsWellFormed(ILibProcessXMLNodeList(mNodes) == kILibProcessXML_NoError)
{}

bool IsStartTag(const ILibXMLNode* aNode, std::string_view aName)
{
    return aNode && aNode->StartTag && Shared::EqualsIgnoringCase(Shared::LocalName(aNode), aName);
}

ILibXMLNode* NextElement(const ILibXMLNode* aRoot, const ILibXMLNode* aNode, std::string_view aName)
{
    ILibXMLNode* theNode = aNode->Next;
    while (theNode && theNode != aRoot->ClosingTag && !IsStartTag(theNode, aName))
        theNode = theNode->Next;
    return theNode != aRoot->ClosingTag ? theNode : nullptr;
}

} // namespace Groups
