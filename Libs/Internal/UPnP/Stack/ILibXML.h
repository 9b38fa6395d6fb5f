#pragma once

/* A small XML reader. A document is read in one pass into a list of nodes, one for each tag, whose names and values
 * point into the text. Nothing is copied and nothing recurses; time and memory are linear in the text, and nodes and
 * attributes are allocated in a few blocks. It reads what devices send: a byte-order mark, XML declaration, DOCTYPE,
 * comments, processing instructions, CDATA sections, either quote, blanks and line ends between attributes and around
 * "=", attributes without a blank between them, a stray "&", several roots. Entities of a DOCTYPE are not expanded.
 *
 * A name begins with a letter, "_", ":" or a byte of 0x80 and above, and goes on with those, digits, "-" and ".". A tag
 * is not well-formed when it has another name or attributes without quotes or value. What is in texts, values,
 * comments, processing instructions and declarations is not checked, its UTF-8 neither; an attribute may be repeated.
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
    kILibProcessXML_IncompleteXML = -3         /* an element without its end tag, or a tag that is not well-formed */
};

struct ILibXMLAttribute;

/* NOLINTBEGIN(readability-identifier-naming): the fields are the stack's, by these names. */

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
    struct ILibXMLNode* Parent; /* the element around this one; NULL at the top */
    struct ILibXMLNode* Peer;   /* of a start tag: the next element with the same parent */
    union
    {
        struct ILibXMLNode* ClosingTag;  /* of a start tag: its end tag */
        struct ILibXMLNode* StartingTag; /* of an end tag: its start tag */
    };
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

/* NOLINTEND(readability-identifier-naming) */

/**
 * Reads aLength bytes of aText from anOffset on.
 * @return the first node of a new list, released with ILibDestructXMLNodeList; NULL when there is no tag. A tag that is
 *         not well-formed, or an end tag out of place, ends the list, and ILibProcessXMLNodeList then reports it, as it
 *         does for a text of 2 GiB or more. When nothing comes before it the list is one node without a name. A tag
 *         takes 64 to 80 bytes and an attribute 56, on a 32-bit system 40 to 48 and 32; in a tag with more than 32
 *         attributes each of them takes a pointer more.
 */
UPNPSTACK_API struct ILibXMLNode* ILibParseXML(char* aText, size_t anOffset, size_t aLength);
/** As ILibParseXML, but what fits of the nodes and attributes is put into memory of the caller, and only the rest is
 *  allocated.
 *  @param aMemory aSize bytes, aligned as a pointer is, not initialized; they must outlive the nodes, too. NULL with 0,
 *                 and less than a tag takes, is as ILibParseXML. */
UPNPSTACK_API struct ILibXMLNode* ILibParseXMLWithMemory(char* aText, size_t anOffset, size_t aLength, void* aMemory,
                                                         size_t aSize);
/** Checks that every tag is well-formed, attributes included, and that start and end tags are in pairs.
 *  @return a kILibProcessXML_*, NoError for NULL; after an error the links are not complete and not to be used. */
UPNPSTACK_API int ILibProcessXMLNodeList(struct ILibXMLNode* aNodeList);
/**
 * Finds what is wrong with a text whose list has an error, for a message.
 * @param aText     aLength bytes. They are only read. NULL has no error.
 * @param anOffset  out: the byte where it is; 0 without an error.
 * @return the reason in English, such as "end tag </b> where </a> was expected", with the first 64 bytes of the names
 *         that it tells: a new text, released with free. NULL when ILibProcessXMLNodeList finds no error.
 */
UPNPSTACK_API char* ILibFindXMLError(const char* aText, size_t aLength, size_t* anOffset);
/** Releases the list, given its first node; NULL is ignored. */
UPNPSTACK_API void ILibDestructXMLNodeList(struct ILibXMLNode* aNodeList);

/** @return the attributes of a start tag in their order, NULL when it has none or aNode is NULL; released with
 *          ILibDestructXMLAttributeList before the nodes are. They are read with the tags: a later change of the text
 *          changes the bytes that they point to, not where they point. */
UPNPSTACK_API struct ILibXMLAttribute* ILibGetXMLAttributes(struct ILibXMLNode* aNode);
/** Finds an attribute in time that hardly depends on how many there are.
 *  @param aList          the first attribute of a start tag; NULL is an empty list.
 *  @param aPrefix, aName compared exactly, without the colon; a prefix of length 0 means no prefix.
 *  @return the first attribute of that name, which belongs to the list; NULL without one. */
UPNPSTACK_API struct ILibXMLAttribute* ILibFindXMLAttribute(struct ILibXMLAttribute* aList, const char* aPrefix,
                                                            size_t aPrefixLength, const char* aName,
                                                            size_t aNameLength);
/** Releases an attribute list (not the text), given its first attribute; NULL is ignored. */
UPNPSTACK_API void ILibDestructXMLAttributeList(struct ILibXMLAttribute* aList);

/** @param aStart out: the text between a start tag and its end tag, not NUL-terminated; NULL when aNode is not a start
 *                tag.
 *  @return its length in bytes. */
UPNPSTACK_API int ILibReadInnerXML(struct ILibXMLNode* aNode, char** aStart);

/**
 * Resolves in place the five named entities and numeric character references ("&#65;", "&#x41;", written as UTF-8), and
 * unwraps CDATA sections, whose content is not resolved. Other references stay as written, also one to NUL, to a
 * surrogate or past U+10FFFF.
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
