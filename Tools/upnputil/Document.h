#pragma once

#include "MediaObject.h"
#include "Output.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <memory>
#include <string>
#include <vector>

/* An item or a container of a document. */
struct DocumentObject
{
    size_t mIndex;                         // in the document, from 0 on
    int mType;                             // kDIDLItemType_*
    std::unique_ptr<MediaObject> mRecords; // NULL for an object with an invalid flag

    bool IsContainer() const { return mType == kDIDLItemType_Container; }
};

/* Prints what every object has, and remembers the invalid ones. */
class InvalidObjects
{
public:
    /** Prints an object's place in its document, its kind, and what is wrong with it. */
    void PrintHead(const DocumentObject& anObject, Output& anOutput);
    /** Says which object is invalid, if one is. @return kExit_Bad then, otherwise aStatus. */
    int Report(const std::string& aName, int aStatus) const;

private:
    size_t mFirst = 0;
    size_t mCount = 0;
};

/**
 * A DIDL-Lite document with any number of objects, read one after the other. A document without objects but with a
 * Result element is the response to a Browse or Search action; then the document is the text in that element.
 */
class Document
{
public:
    /** @param aText    ends in a NUL.
     *  @param aBaseURL what relative URIs are resolved against, NULL for nothing; outlives the document. */
    Document(std::vector<char> aText, const char* aBaseURL);

    /** @return what is not well-formed, and where; "" when all is. */
    const std::string& GetFault() const { return mFault; }
    /** @return whether there is one more object. */
    bool HasNext() const { return mNext.mType != kDIDLItemType_None; }
    /** @return the next object, when there is one. */
    DocumentObject TakeNext();

private:
    bool Open();
    bool TakeResult();
    void ReadNext();

    std::vector<char> mText;
    const char* const mBaseURL;
    std::unique_ptr<UPnPDIDLDocument, decltype(&UPnPDIDLDocument_Delete)> mDocument;
    std::string mFault;
    DocumentObject mNext = {};
};
