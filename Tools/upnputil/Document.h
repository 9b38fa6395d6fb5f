#pragma once

#include <UPnP/Stack/ILibXML.h>
#include <string>
#include <vector>

/* An item or a container of a document. */
struct DocumentObject
{
    std::string mText;  // from its start tag to its end tag, without objects in it
    ILibXMLNode* mDIDL; // the start tag of the DIDL-Lite element around it; NULL without one
    bool mfIsItem;
};

/**
 * A DIDL-Lite document with any number of objects. Objects are the items and containers at the top, in a DIDL-Lite
 * element or in another container; an element in a desc only looks like one. Each piece of the text belongs to the
 * innermost object around it alone, so that no object has fields of another, and each is read once, however deeply
 * containers are nested. A document without objects but with a Result element is the response to a Browse or Search
 * action; then the document is the text in that element.
 */
class Document
{
public:
    /** @param aText ends in a NUL. */
    explicit Document(std::vector<char> aText);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    /** @return what is not well-formed, and where; "" when all is. */
    const std::string& GetFault() const { return mFault; }
    /** @return the objects in the document's order. */
    std::vector<DocumentObject>& GetObjects() { return mObjects; }
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
