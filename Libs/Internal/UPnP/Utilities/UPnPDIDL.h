#pragma once

/* DIDL-Lite (UPnP ContentDirectory) of one content-directory object, to and from its media object record (UPnPConst.h).
 * Every text given to a parse function may come from a stranger's device: nothing outside it is read or written, time
 * and memory are linear in it, nothing recurses. No state is kept between calls but in a UPnPDIDLDocument. */

#include <UPnP/Stack/ILibXML.h>
#include <UPnP/Stack/UPnPError.h>
#include <UPnP/Utilities/Export.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoPackedData.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The kind of an object. */
enum
{
    kDIDLItemType_None = 0,
    kDIDLItemType_Item = 1,
    kDIDLItemType_Container = 2
};

/**
 * Writes one object as an item element, for instance the metadata that goes with a URI to be played. Values are escaped
 * and cut at a character: 255 bytes for titles, classes, names, dates, profiles, resolutions and extra attributes, 1024
 * for IDs, URIs, protocol infos and extra elements. Resources come in the order of preference: the selected URI,
 * JPEG_TN and PNG_TN thumbnails, what is not converted, the rest; once the text has passed 15360 bytes no further one
 * is written, and the number of those left out is logged.
 * @param aMediaData             the entry record; NULL writes an empty item without resources.
 * @param aResourceInfo          the resource record, or NULL for no resources.
 * @param afIncludeHeaderFooter  0 leaves out "<DIDL-Lite" and "</DIDL-Lite>", which the caller then puts around the
 *                               text. Of an entry record, the namespaces and the ">" of the start tag are written all
 *                               the same; without one, neither.
 * @param afIncludeResExtraInfo  whether the resources' extra info is written as attributes, "microsoft" and "codec"
 *                               aside.
 * @param aSelectedURI           the URI of the resource to be written first; NULL writes all in the record's order.
 * @return a new NUL-terminated text that the caller releases with free. The records are only read.
 */
UPNPUTILITIES_API char* UPnPDIDL_Get(zoPackedData_t* aMediaData, zoPackedData_t* aResourceInfo,
                                     int afIncludeHeaderFooter, int afIncludeResExtraInfo, const char* aSelectedURI);

/* Metadata that every reader takes. Servers put bytes into titles that are not UTF-8, and control characters; a pair
 * can have a name without a namespace. UPnPDIDL_Get copies all that, and a renderer that reads strictly refuses it.
 *
 * A text is sendable when it is well-formed UTF-8 of characters that XML 1.0 allows and well-formed XML 1.0 with
 * namespaces, each of whose elements is in a namespace. Further it has no DOCTYPE, and its XML declaration names UTF-8
 * or no encoding. Where readers differ, it has what all take: namespaces are URIs (RFC 3986), or relative ones without
 * a colon, that have no escapes, no "&", and no host but a name or an IPv4 address; no attribute is xml:id; and names
 * consist of ASCII characters and of letters that are in names since the first edition of XML 1.0 (Latin, Greek,
 * Cyrillic, Hebrew, Arabic, Devanagari, Thai, kana, Han, Hangul), up to 1024 bytes before and after the colon. */

/* What UPnPDIDL_GetSendable changed. */
typedef struct UPnPDIDLRepairs_t
{
    uint32 mReplaced;            /* the number of U+FFFD that replace something in the text */
    uint32 mPairsLeftOut;        /* of the object, and of the resources that are written */
    uint32 mDeclarationsLeftOut; /* of the namespace list */
    uint32 mDeclarationsAdded;
} UPnPDIDLRepairs_t;

/**
 * Writes one object as UPnPDIDL_Get does, byte for byte, but for what makes a text not sendable:
 *
 * - Of bytes that are not UTF-8, U+FFFD (EF BF BD) replaces each longest run that begins a character but does not end
 *   it, and each other byte, as the Unicode Standard recommends. It also replaces each character that XML forbids:
 *   U+0001 to U+001F but tab, line feed and carriage return, U+FFFE and U+FFFF.
 * - A pair is left out when its name is not a name, declares a namespace, or has a prefix that is declared nowhere. A
 *   pair of a resource is also left out when it is xml:id, when it has no value, or when the resource has the attribute
 *   already: by the same name, or by another prefix of the same namespace.
 * - A declaration is left out when it is not well-formed: the second one of a prefix, one that binds a prefix to
 *   nothing or to what is not a URI, one that binds xmlns or its namespace, one that binds xml to another namespace or
 *   its namespace to another prefix, one with a reference to an entity that XML does not have.
 * - The namespaces of dc, upnp, dlna, av and the elements without a prefix are declared when the text uses them and the
 *   record does not declare them.
 *
 * The limits count what is written: U+FFFD is three bytes.
 * @param aMediaData             as for UPnPDIDL_Get; but for NULL, too, what ends the start tag is always written.
 * @param afIncludeHeaderFooter  0: the text is sendable once "<DIDL-Lite" and "</DIDL-Lite>" are around it.
 * @param aRepairs               out: all 0 when the text is that of UPnPDIDL_Get; NULL when it is not asked for.
 * @return as UPnPDIDL_Get. As that does, it logs how many resources are left out.
 */
UPNPUTILITIES_API char* UPnPDIDL_GetSendable(zoPackedData_t* aMediaData, zoPackedData_t* aResourceInfo,
                                             int afIncludeHeaderFooter, int afIncludeResExtraInfo,
                                             const char* aSelectedURI, UPnPDIDLRepairs_t* aRepairs);

/**
 * Checks any text, whoever wrote it.
 * @param aText  aLength bytes; with a NUL among them it is not sendable. NULL is not, either.
 * @return 1 when the text is sendable as said above, else 0.
 */
UPNPUTILITIES_API int UPnPDIDL_IsSendable(const char* aText, size_t aLength);

/* The documents of an upload (UPnP ContentDirectory, CreateObject; DLNA, upload of content). Texts are escaped and cut
 * as in UPnPDIDL_Get, and NULL counts as "". Each is a new NUL-terminated text that the caller releases with free.
 * Nothing declares the prefix of dtcp:uploadInfo: with DTCP information, strict readers refuse it. */

/**
 * Writes the Elements of a request to create a container.
 * @param aParentID             the ID of the container in which it is to be.
 * @param aDLNAManagedFlags     kDLNAManaged_* bits.
 * @param aCreateClassNameList  the classes that may be created in it, separated by ";". A name may end in a comma and
 *                              one character: any but "0" includes the derived classes. Names are written as they are,
 *                              neither escaped nor cut.
 */
UPNPUTILITIES_API char* UPnPDIDL_GetForCreateContainerRequest(const char* aParentID, const char* aTitle,
                                                              uint32 aDLNAManagedFlags, const char* aClassName,
                                                              const char* aCreateClassNameList);
/**
 * Writes the Elements of a request to create an item whose content is then uploaded.
 * @param aDLNAInfo        the protocol info of the content; none when it is NULL or "".
 * @param aFileLength      the content's size in bytes; 0 when it is not known. A negative one is written as 0.
 * @param aDTCPUploadInfo  kDTCPUploadInfo_* bits; 0xFFFFFFFF for none.
 */
UPNPUTILITIES_API char* UPnPDIDL_GetForCreateItemRequest(const char* aParentID, const char* aTitle,
                                                         uint32 aDLNAManagedFlags, const char* aClassName,
                                                         const char* aDLNAInfo, zoFileOffset aFileLength,
                                                         uint32 aDTCPUploadInfo);
/**
 * Writes the Result of the answer to such a request: the object with its ID and, for an item, where to upload.
 * @param aMediaData            the entry record of the object as requested: its title, class and create classes.
 * @param anImportURI           where the client uploads the content; NULL for a container.
 * @param anImportIFOURI        where it uploads an IFO file; NULL for nowhere.
 * @param aDLNAProtocolInfo     of the resource that is created; NULL for none.
 * @param anID, aParentID       the object's ID, and its parent's.
 * @param afEnableResumeUpload  whether an upload that broke off can go on.
 * @param aDTCPUploadInfo       kDTCPUploadInfo_* bits; 0xFFFFFFFF for none.
 */
UPNPUTILITIES_API char* UPnPDIDL_GetForCreateObjectResponse(zoPackedData_t* aMediaData, const char* anImportURI,
                                                            const char* anImportIFOURI,
                                                            zoDLNAProtocolInfo_t* aDLNAProtocolInfo, const char* anID,
                                                            const char* aParentID, int afEnableResumeUpload,
                                                            uint32 aDTCPUploadInfo);

/* Reading. What an object's records hold of its document is in UPnPConst.h. Elements that every one of counts may be
 * inside each other, and each then stores the text of those inside, too. So that no document is stored once for each of
 * its levels, each of these kinds ends for itself, once what is stored of it has passed four times the length of the
 * object's text (what is between its start tag and its end tag), and 4 KiB:
 *
 *     elements without a field (pairs)   no further pair is stored
 *     upnp:albumArtURI, upnp:createClass no further one is stored
 *     xmlns: elements                    no further one is stored
 *     res                                further resources have the URI ""
 *
 * A document without such nesting never gets there. The last upnp:channelNr that is a number counts, however deep. A
 * kind also ends once eight times as much of the document has been read for it: references can be long for what they
 * stand for. */

/**
 * Parses a document that describes one object, an item or a container. The object inherits all declarations of its
 * root.
 * @param anElements  NUL-terminated and writable: bytes of it are changed while the call runs, and back again. NULL or
 *                    "" counts as a document without an object.
 * @param aData, aRes out: the serialized entry record and resource record; both NULL on failure.
 * @param aDIDLType   out: kDIDLItemType_Item or _Container; _None while no object was accepted.
 * @return kUPnPError_None; kUPnPError_InvalidXML when tags don't match; kUPnPError_InvalidDIDL when there is no object,
 *         a second one, or a flag (restricted, searchable) that is neither true nor false.
 * The blocks are new: release each with free, or give it to zoPackedData_NewData, which takes it over.
 */
UPNPUTILITIES_API int UPnPDIDL_ParseElements(const char* anElements, char** aData, char** aRes, int* aDIDLType);

/**
 * Says why a document was refused by UPnPDIDL_ParseElements, UPnPDIDLDocument_New or UPnPDIDLDocument_NextObject: what
 * is wrong with its tags (see UPnPUtil_FindXMLError), or else with what they mean: no object at all, or the first flag
 * (restricted, searchable) that is neither true nor false, of objects inside others, too. That there are several
 * objects is not an error here, and UPnPDIDLDocument_NextObject alone finds none in a root of another name than
 * DIDL-Lite.
 * @param aText           aLength bytes. They are only read; a NUL among them ends the text. NULL counts as "".
 * @param aLine, aColumn  out: where it is, as for UPnPUtil_FindXMLError; 0 without an error.
 * @return the reason in English, such as "end tag </b> where </a> was expected"; NULL when nothing is wrong. A new text
 *         that the caller releases with free, with names of the document as they are.
 */
UPNPUTILITIES_API char* UPnPDIDL_FindError(const char* aText, size_t aLength, uint32* aLine, uint32* aColumn);

/**
 * Parses one object of a document that the caller has read with ILibParseXML and checked with ILibProcessXMLNodeList.
 * The text must be writable, as for UPnPDIDL_ParseElements, and outlive the call; it can be parsed again. Objects
 * inside the object are read as parts of it: when each of many that are inside each other is parsed, that takes the
 * product of their number and their length. UPnPDIDLDocument reads each without those inside.
 *
 * The declarations of the root are inherited while they take at most four times the length of the object's text, or 256
 * bytes if that is more, in the form in which they are stored. When they take more, first the default namespace and the
 * prefixes of the object's elements and attributes are inherited, in the root's order, then the others, each that fits.
 * At most four times the bytes that may be inherited are read of a long start tag, of which each attribute counts for
 * 32 more than it has: what is past that is inherited only when it is needed.
 * @param aBaseURL      what relative resource URIs are made absolute against; NULL leaves them as they are. So does one
 *                      of more than 1 KiB; and a URI that would bring the object's absolute URIs past eight times the
 *                      length of its text and past 4 KiB stays as it is.
 * @param aDIDLNode     the start tag of the DIDL-Lite element around the object, for its declarations; NULL for none.
 * @param aNode         the object's start tag.
 * @param anAttributes  the attribute list of aNode, which stays the caller's; NULL for none.
 * @param afIsItem      1 for an item, 0 for a container.
 * @param aData, aRes   out: as for UPnPDIDL_ParseElements, but always set, also on failure.
 * @return 1; 0 when a flag (restricted, searchable) is neither true nor false.
 */
UPNPUTILITIES_API int UPnPDIDL_Parse(const char* aBaseURL, struct ILibXMLNode* aDIDLNode, struct ILibXMLNode* aNode,
                                     struct ILibXMLAttribute* anAttributes, int afIsItem, char** aData, char** aRes);

/**
 * A document that describes many objects, the Result of a Browse for instance, read object by object in time linear in
 * the document, also when containers hold their objects:
 *
 *     UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(theText, theBaseURL);
 *     for (;;)
 *     {
 *         char *theData, *theRes;
 *         int theType;
 *         const int theResult = UPnPDIDLDocument_NextObject(theDocument, &theData, &theRes, &theType);
 *         if (theType == kDIDLItemType_None) { break; }
 *         if (theResult == kUPnPError_None) { ... use the records ... }
 *     }
 *     UPnPDIDLDocument_Delete(theDocument);
 */
typedef struct UPnPDIDLDocument UPnPDIDLDocument;

/**
 * Reads the document's tags.
 * @param aText     NUL-terminated and writable, as for UPnPDIDL_ParseElements; it outlives the document. NULL and ""
 * are documents without objects.
 * @param aBaseURL  as for UPnPDIDL_Parse; it outlives the document.
 * @return a new document, released with UPnPDIDLDocument_Delete; NULL when tags don't match.
 */
UPNPUTILITIES_API UPnPDIDLDocument* UPnPDIDLDocument_New(const char* aText, const char* aBaseURL);
/**
 * Parses the next object in the order of start tags: an item or a container that is in no other elements than objects
 * and, around those, DIDL-Lite. It is read as by UPnPDIDL_Parse, but without the objects inside it, which come as
 * objects of their own.
 * @param aData, aRes out: the serialized records, as for UPnPDIDL_ParseElements; both NULL when there is no object left
 *                    and when it is invalid.
 * @param aDIDLType   out: kDIDLItemType_Item or _Container; _None when there is no object left.
 * @return kUPnPError_None; kUPnPError_InvalidDIDL for an object with a flag (restricted, searchable) that is neither
 * true nor false: the next call goes on after its start tag. A NULL document has no objects.
 */
UPNPUTILITIES_API int UPnPDIDLDocument_NextObject(UPnPDIDLDocument* aDocument, char** aData, char** aRes,
                                                  int* aDIDLType);
/** Releases the document, but neither its text nor what was parsed; NULL is ignored. */
UPNPUTILITIES_API void UPnPDIDLDocument_Delete(UPnPDIDLDocument* aDocument);

#ifdef __cplusplus
}
#endif
