#pragma once

#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstdlib>
#include <cstring>
#include <string>

/* What the benchmarks do with one object. */

static const char kAnyScheme[] = "*";

/* Parses a text, which it changes. */
struct Parsed
{
    Parsed() = default;
    explicit Parsed(const std::string& aText)
    {
        mResult = UPnPDIDL_ParseElements(aText.c_str(), &mData, &mRes, &mType);
    }
    ~Parsed()
    {
        free(mData);
        free(mRes);
    }
    Parsed(const Parsed&) = delete;
    Parsed& operator=(const Parsed&) = delete;

    char* mData = nullptr;
    char* mRes = nullptr;
    int mType = 0;
    int mResult = 0;
};

/* From the text to the DIDL-Lite that goes with the chosen resource. @return the number of resources. */
inline size_t FromTextToChoice(const std::string& aText, zoDLNAProtocolInfoList_t* aSink)
{
    Parsed theObject(aText);
    zoPackedData_t* theEntry = zoPackedData_NewData(theObject.mData);
    CDSResourceInfo theInfo(theObject.mRes, theEntry);
    theObject.mData = theObject.mRes = nullptr;
    uint32 theTarget;
    memcpy(&theTarget, "\x0A\x4D\x00\x05", sizeof(theTarget));
    int theConfidence = 0;
    const int theIndex = theInfo.GetBestResourceIndex(aSink, &theConfidence, kAnyScheme, &theTarget, 1);
    zoCString theProfile;
    theInfo.GetThumbnailURI(kAnyScheme, &theProfile, &theTarget, 1);
    const zoCString theURI =
        theIndex < 0 ? zoCString() : theInfo.GetInfoAsCString(static_cast<uint32>(theIndex), kCDSResourceInfo_URI);
    free(UPnPDIDL_Get(theEntry, theInfo.mPackedData, 1, 1, theURI.c_str()));
    zoPackedData_Free(theEntry);
    return theInfo.GetResourceCount();
}

inline size_t CountResources(const std::string& aText)
{
    size_t theCount = 0;
    for (size_t thePosition = aText.find("<res "); thePosition != std::string::npos;
         thePosition = aText.find("<res ", thePosition + 1))
        ++theCount;
    return theCount;
}

/* Parses the objects of a text, which it changes, one after the other, at most a given number; their records are
 * released at once. @return the number of objects. */
inline size_t ParseObjects(std::string& aText, size_t aMaxCount)
{
    UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(aText.c_str(), nullptr);
    size_t theCount = 0;
    while (theCount < aMaxCount)
    {
        Parsed theObject;
        UPnPDIDLDocument_NextObject(theDocument, &theObject.mData, &theObject.mRes, &theObject.mType);
        if (theObject.mType == kDIDLItemType_None) { break; }
        ++theCount;
    }
    UPnPDIDLDocument_Delete(theDocument);
    return theCount;
}

/* The records of an object. */
struct Records
{
    explicit Records(const std::string& aText)
    {
        Parsed theObject(aText);
        mEntry = zoPackedData_NewData(theObject.mData);
        mResources = zoPackedData_NewData(theObject.mRes);
        theObject.mData = theObject.mRes = nullptr;
    }
    ~Records()
    {
        zoPackedData_Free(mEntry);
        zoPackedData_Free(mResources);
    }
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;

    zoPackedData_t* mEntry;
    zoPackedData_t* mResources;
};
