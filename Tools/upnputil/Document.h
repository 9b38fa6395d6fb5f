#pragma once

#include "MediaObject.h"
#include "Output.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <memory>
#include <optional>
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

/**
 * A DIDL-Lite document with any number of objects, read one after the other. A document without objects but with a
 * Result element is the response to a Browse or Search action; then the document is the text in that element.
 */
class Document
{
public:
    /** @param aText    ends in a NUL.
     *  @param aName    what messages call it.
     *  @param aBaseURL what relative URIs are resolved against, NULL for nothing; outlives the document. */
    Document(std::vector<char> aText, std::string aName, const char* aBaseURL);

    bool IsWellFormed() const { return mfIsWellFormed; }
    /** @return where the first error is, and what: not well-formed tags, or else an invalid object. */
    std::string DescribeError() const;
    /** @return what is wrong with an invalid object, and where, if it is the first one. */
    std::string DescribeInvalid(size_t anIndex) const;
    /** @return whether there is one more object. */
    bool HasNext() const { return mNext.mType != kDIDLItemType_None; }
    /** @return the next object, when there is one. */
    DocumentObject TakeNext();

private:
    void Open();
    bool TakeResult();
    void ReadNext();

    std::vector<char> mText;
    std::string mName;
    const char* const mBaseURL;
    std::unique_ptr<UPnPDIDLDocument, decltype(&UPnPDIDLDocument_Delete)> mDocument;
    bool mfIsWellFormed = false;
    DocumentObject mNext = {};
    std::optional<size_t> mFirstInvalid;
};

/* Prints what every object has, and remembers the invalid ones. */
class InvalidObjects
{
public:
    /** Prints an object's place in its document, its kind, and what is wrong with it. */
    void PrintHead(const DocumentObject& anObject, Output& anOutput);
    /** Says which object is invalid, if one is, and why. @return kExit_Bad then, otherwise aStatus. */
    int Report(const Document& aDocument, int aStatus) const;

private:
    size_t mFirst = 0;
    size_t mCount = 0;
};
