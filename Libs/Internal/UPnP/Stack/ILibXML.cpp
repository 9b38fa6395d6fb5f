#include <UPnP/Stack/ILibXML.h>

#include <Shared/QualifiedName.h>
#include <UPnP/Stack/XML/AttributeIndex.h>
#include <UPnP/Stack/XML/Reader.h>

ILibXMLNode* ILibParseXML(char* aText, size_t anOffset, size_t aLength)
{
    return ILibParseXMLWithMemory(aText, anOffset, aLength, nullptr, 0);
}

ILibXMLNode* ILibParseXMLWithMemory(char* aText, size_t anOffset, size_t aLength, void* aMemory, size_t aSize)
{
    return aText && aLength > 0 ? XML::Read(aText + anOffset, aLength, aMemory, aSize) : nullptr;
}

int ILibProcessXMLNodeList(ILibXMLNode* aNodeList)
{
    return aNodeList ? static_cast<int>(XML::DocumentOf(aNodeList)->mError) : kILibProcessXML_NoError;
}

void ILibDestructXMLNodeList(ILibXMLNode* aNodeList)
{
    if (aNodeList) { XML::Delete(XML::DocumentOf(aNodeList)); }
}

ILibXMLAttribute* ILibGetXMLAttributes(ILibXMLNode* aNode)
{
    return aNode && aNode->StartTag ? XML::StartTagOf(aNode)->FirstAttribute() : nullptr;
}

ILibXMLAttribute* ILibFindXMLAttribute(ILibXMLAttribute* aList, const char* aPrefix, size_t aPrefixLength,
                                       const char* aName, size_t aNameLength)
{
    if (!aList) { return nullptr; }
    return XML::FindAttribute(XML::StartTagOf(aList->Parent), { aPrefix, aPrefixLength }, { aName, aNameLength });
}

// The attributes are the document's.
void ILibDestructXMLAttributeList(ILibXMLAttribute* /*aList*/) {}

int ILibReadInnerXML(ILibXMLNode* aNode, char** aStart)
{
    *aStart = nullptr;
    if (!aNode || !aNode->StartTag || !aNode->ClosingTag) { return 0; }
    *aStart = XML::StartTagOf(aNode)->mContent;
    if (aNode->EmptyTag) { return 0; }
    const char* theEndTag = Shared::QualifiedName(aNode->ClosingTag).data() - 2; // before the "</"
    return static_cast<int>(theEndTag - *aStart);
}
