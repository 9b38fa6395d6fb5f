#pragma once

/* A reader of XML that allocates each node by itself and reads attributes when they are asked for. */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

enum
{
    kILibProcessXML_NoError = 0,
    kILibProcessXML_IllegalCloseTag = -1,
    kILibProcessXML_IllegalCloseTagOrder = -2,
    kILibProcessXML_IncompleteXML = -3
};

struct ILibXMLNode
{
    struct ILibXMLNode* Next;
    struct ILibXMLNode* Parent;
    struct ILibXMLNode* Peer;
    struct ILibXMLNode* ClosingTag;
    struct ILibXMLNode* StartingTag;
    char* NSTag;
    char* Name;
    int NSLength;
    int NameLength;
    int StartTag;
    int EmptyTag;
    char* TagBegin;   /* at the "<" */
    char* Attributes; /* after the name */
    char* TagEnd;     /* after the ">" */
    int Error;        /* what ends the list here */
};

struct ILibXMLAttribute
{
    struct ILibXMLAttribute* Next;
    struct ILibXMLNode* Parent;
    char* Prefix;
    char* Name;
    char* Value;
    int PrefixLength;
    int NameLength;
    int ValueLength;
};

UPNPSTACK_API struct ILibXMLNode* ILibParseXML(char* aText, size_t anOffset, size_t aLength);
UPNPSTACK_API int ILibProcessXMLNodeList(struct ILibXMLNode* aNodeList);
UPNPSTACK_API void ILibDestructXMLNodeList(struct ILibXMLNode* aNodeList);
UPNPSTACK_API struct ILibXMLAttribute* ILibGetXMLAttributes(struct ILibXMLNode* aNode);
UPNPSTACK_API void ILibDestructXMLAttributeList(struct ILibXMLAttribute* aList);
UPNPSTACK_API int ILibReadInnerXML(struct ILibXMLNode* aNode, char** aStart);

/* From the project's own library: ILibXMLEntities.cpp. */
UPNPSTACK_API int ILibInPlaceXmlUnEscape(char* aText);
UPNPSTACK_API size_t ILibXmlEscapeLength(const char* aText);
UPNPSTACK_API size_t ILibXmlEscape(char* aTarget, const char* aText);

#ifdef __cplusplus
}
#endif
