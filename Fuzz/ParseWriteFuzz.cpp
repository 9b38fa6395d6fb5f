#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <string>
#include <zoLog/Log.h>

// A document of one object: parsed, written, parsed and written again.

namespace
{

struct Object
{
    explicit Object(const char* aText)
    {
        char* theData = nullptr;
        char* theRes = nullptr;
        const HeapPeak thePeak;
        mResult = UPnPDIDL_ParseElements(aText, &theData, &theRes, &mType);
        RequireHeap(thePeak.Bytes(), strlen(aText), 64);
        Require((mResult == kUPnPError_None) == (theData && theRes), "blocks are there when there is no error");
        mEntry = zoPackedData_NewData(theData);
        mResources = zoPackedData_NewData(theRes);
    }
    ~Object()
    {
        zoPackedData_Free(mEntry);
        zoPackedData_Free(mResources);
    }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    char* Write() const { return UPnPDIDL_Get(mEntry, mResources, 1, 1, nullptr); }

    int mResult;
    int mType;
    zoPackedData_t* mEntry;
    zoPackedData_t* mResources;
};

// Extra elements come from any depth, and are written right below the item: one that is called like an object makes the
// document have two.
bool HasObjectAsExtraInfo(const zoPackedData_t* anEntry)
{
    for (uint32 theTag = kCDSEntryInfo_Count; theTag < 0xFFFF; theTag += 2)
    {
        const char* theName = zoPackedData_GetData(anEntry, 0, static_cast<uint16>(theTag), nullptr);
        if (!theName) { return false; }
        std::string theLocalName(strchr(theName, ':') + 1);
        for (char& theLetter : theLocalName)
            theLetter = static_cast<char>(theLetter >= 'A' && theLetter <= 'Z' ? theLetter + 32 : theLetter);
        if (theLocalName == "item" || theLocalName == "container") { return true; }
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    _zoLog_Level = ZOLOGLEVEL_NONE;
    char* theText = NewText(aBytes, aSize);
    char* theCopy = strdup(theText);
    const Object theFirst(theText);
    Require(strcmp(theText, theCopy) == 0, "the text is as it was");
    free(theCopy);
    free(theText);
    if (theFirst.mResult != kUPnPError_None || HasObjectAsExtraInfo(theFirst.mEntry)) { return 0; }

    Require(zoPackedData_GetEntryCount(theFirst.mEntry) == 1, "an object has one entry");
    char* theWritten = theFirst.Write();
    const Object theSecond(theWritten);
    Require(theSecond.mResult == kUPnPError_None, "what is written can be read");
    for (const uint16 theTag : { kCDSEntryInfo_Title, kCDSEntryInfo_ItemID, kCDSEntryInfo_ItemClassName })
    {
        const char* theBefore = zoPackedData_GetData(theFirst.mEntry, 0, theTag, nullptr);
        const char* theAfter = zoPackedData_GetData(theSecond.mEntry, 0, theTag, nullptr);
        Require(strncmp(theBefore, theAfter, strlen(theAfter)) == 0, "a text comes back, or its beginning");
    }
    free(theWritten);
    return 0;
}
