#pragma once

/* A small XML reader. A document is read in one pass into a list of nodes, one a tag, whose names and values point into
 * the text: nothing is copied, nothing recurses, time and memory are linear in the text, and nodes and attributes lie
 * in a few blocks. It reads what devices send: a byte-order mark, XML declaration, DOCTYPE, comments, processing
 * instructions, CDATA sections, either quote, blanks and line ends between attributes and around "=", attributes
 * without a blank between them, a stray "&". Entities of a DOCTYPE are not expanded.
 *
 *     struct ILibXMLNode* theNodes = ILibParseXML(theText, 0, theLength);
 *     if (ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError) { ... walk theNodes ... }
 *     ILibDestructXMLNodeList(theNodes);
 *
 * The text must outlive the nodes. It is only read here. */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What can be wrong with a list of nodes. */
enum
{
    kILibProcessXML_NoError = 0,
    kILibProcessXML_IllegalCloseTag = -1,      /* an end tag without a start tag before it */
    kILibProcessXML_IllegalCloseTagOrder = -2, /* an end tag that is not that of the innermost open element */
    kILibProcessXML_IncompleteXML = -3         /* an element without its end tag, or a tag that is none */
};

struct ILibXMLAttribute;

/* One tag. An empty element (<a/>) is two nodes, like <a></a>: its end tag node has the same name and EmptyTag. */
struct ILibXMLNode
{
    char* Name;  /* the local name, NameLength bytes, not NUL-terminated */
    char* NSTag; /* the start of the qualified name, NSLength bytes of prefix; NULL without a prefix */
    int NameLength;
    int NSLength;
    int StartTag;             /* 1 for a start tag, 0 for an end tag */
    int EmptyTag;             /* 1 for both tags of an empty element */
    struct ILibXMLNode* Next; /* in document order, start and end tags alike */

    /* When ILibProcessXMLNodeList finds no error: */
    struct ILibXMLNode* Parent;      /* the element around this one; NULL at the top */
    struct ILibXMLNode* Peer;        /* the next element with the same parent */
    struct ILibXMLNode* ClosingTag;  /* of a start tag: its end tag */
    struct ILibXMLNode* StartingTag; /* of an end tag: its start tag */

    /* For the reader's own use: */
    struct ILibXMLAttribute* Attributes;
    char* TagEnd; /* past the ">" */
};

/* One attribute of a start tag. */
struct ILibXMLAttribute
{
    char* Name;   /* the local name, NameLength bytes, not NUL-terminated */
    char* Prefix; /* PrefixLength bytes before the ":"; NULL without a prefix */
    int NameLength;
    int PrefixLength;
    struct ILibXMLNode* Parent;
    char* Value; /* ValueLength bytes between the quotes, as written, not NUL-terminated */
    int ValueLength;
    struct ILibXMLAttribute* Next; /* NULL after the last */
};

/**
 * Reads aLength bytes of aText from anOffset on.
 * @return the first node of a new list, released with ILibDestructXMLNodeList; NULL when there is no tag. What is no
 *         well-formed tag, or an end tag out of place, ends the list, and ILibProcessXMLNodeList then reports it, as it
 *         does for a text of 2 GiB or more. When nothing comes before it the list is one node without a name.
 */
UPNPSTACK_API struct ILibXMLNode* ILibParseXML(char* aText, size_t anOffset, size_t aLength);
/** Whether the list is in order: every tag well-formed, and start and end tags in pairs. NULL is a list without errors.
 *  @return a kILibProcessXML_*; after an error the links are not complete and not to be used. */
UPNPSTACK_API int ILibProcessXMLNodeList(struct ILibXMLNode* aNodeList);
/** Releases the list, given its first node; NULL is ignored. */
UPNPSTACK_API void ILibDestructXMLNodeList(struct ILibXMLNode* aNodeList);

/** @return the attributes of a start tag in their order, NULL when it has none; released with
 *          ILibDestructXMLAttributeList before the nodes are. They don't change when the text does. */
UPNPSTACK_API struct ILibXMLAttribute* ILibGetXMLAttributes(struct ILibXMLNode* aNode);
/** Releases an attribute list (not the text), given its first attribute; NULL is ignored. */
UPNPSTACK_API void ILibDestructXMLAttributeList(struct ILibXMLAttribute* aList);

/** @param aStart out: the text between a start tag and its end tag, not NUL-terminated; NULL when aNode is none.
 *  @return its length in bytes. */
UPNPSTACK_API int ILibReadInnerXML(struct ILibXMLNode* aNode, char** aStart);

/**
 * Resolves in place the five named entities and numeric character references (as UTF-8), and unwraps CDATA sections,
 * whose content stays as it is. Unknown references stay, and so does one to NUL, to a surrogate or past U+10FFFF.
 * @param aText NUL-terminated; never becomes longer. NULL is ignored.
 * @return the new length.
 */
UPNPSTACK_API int ILibInPlaceXmlUnEscape(char* aText);

/** @return the length of the text that ILibXmlEscape writes, without its NUL; 0 for NULL. */
UPNPSTACK_API size_t ILibXmlEscapeLength(const char* aText);
/** Writes aText and a NUL to aTarget, which has room for ILibXmlEscapeLength(aText) + 1 bytes and lies elsewhere; <, >,
 *  &, " and ' become named entities. NULL counts as "". @return the length. */
UPNPSTACK_API size_t ILibXmlEscape(char* aTarget, const char* aText);

#ifdef __cplusplus
}
#endif
