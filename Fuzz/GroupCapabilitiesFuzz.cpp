#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <zoLog/Log.h>

// The bytes are a groupCapabilities document.

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    zoLog_SetSink([](int, int, const char*, int, const char*, void*) {}, nullptr); // bad inputs are many
    char* theText = NewText(aBytes, aSize);
    char* theCopy = strdup(theText);
    const HeapPeak thePeak;
    UPnPGroupCapabilities* theSet = UPnPGroupCapabilities_New(theText);
    RequireHeap(thePeak.Bytes(), strlen(theText), 64);
    Require(strcmp(theText, theCopy) == 0, "the text stays as it is");

    const size_t theCount = UPnPGroupCapabilities_GetCount(theSet);
    UPnPGroupCapability* theFirst = UPnPGroupCapabilities_GetAt(theSet, 0);
    Require(theCount <= 1 && (theFirst != nullptr) == (theCount == 1), "at most one capability is read");
    Require(!UPnPGroupCapabilities_GetAt(theSet, theCount), "nothing is past the end");
    const char* theActive = UPnPGroupCapabilities_GetActive(theSet);
    if (theFirst)
    {
        Require(UPnPGroupCapabilities_GetGroup(theSet, theFirst->mName) == theFirst, "a capability is found");
        Require(strstr(theText, theFirst->mName) && strstr(theText, theFirst->mGroupedUDN), "texts are as they stand");
    }
    const bool fIsActive = theFirst && theFirst->mMode != kUPnPGroupMode_None;
    Require(fIsActive ? theActive == theFirst->mName : !*theActive, "the active one has a mode");

    UPnPGroupCapabilities_Delete(theSet);
    free(theCopy);
    free(theText);
    return 0;
}
