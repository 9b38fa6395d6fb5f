#pragma once

#include <UPnP/Stack/ILibXML.h>
#include <string>
#include <vector>

/* An item or a container of a document. */
struct DocumentObject
{
    ILibXMLNode* mNode; // its start tag
    ILibXMLNode* mDIDL; // the start tag of the DIDL-Lite element around it; NULL without one
    bool mfIsItem;
    ILibXMLNode* mBefore; // the tag before an object that lies in another one; else NULL
};

/**
 * A DIDL-Lite document with any number of objects. Objects are the items and containers at the top, in a DIDL-Lite
 * element or in another container; an element in a desc only looks like one. The nodes of an object that lies in a
 * container are taken out of the container's, so that neither has fields of the other, and each node is read once,
 * however deeply containers are nested. A document without objects but with a Result element is the response to a
 * Browse or Search action; then the document is the text in that element.
 */
class Document
{
public:
    /** @param aText with a NUL behind it. */
    explicit Document(std::vector<char> aText);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    /** @return what is not well-formed, and where; "" when all is. */
    const std::string& GetFault() const { return mFault; }
    /** @return the objects in the document's order. */
    const std::vector<DocumentObject>& GetObjects() const { return mObjects; }
    /** @return the text, NUL-terminated, for the library to write to. */
    char* GetText() { return mText.data(); }

private:
    void Parse();
    bool TakeResult();
    void FindObjects();

    std::vector<char> mText;
    ILibXMLNode* mNodes = nullptr;
    std::string mFault;
    std::vector<DocumentObject> mObjects;
};
