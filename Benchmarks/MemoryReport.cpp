#include "Documents.h"

#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// How often each operation asks for memory, per document: every malloc, calloc and realloc of the process comes here.

static size_t sAllocations = 0;

extern "C" void* __libc_malloc(size_t aSize);
extern "C" void* __libc_calloc(size_t aCount, size_t aSize);
extern "C" void* __libc_realloc(void* aBlock, size_t aSize);

extern "C" void* malloc(size_t aSize)
{
    ++sAllocations;
    return __libc_malloc(aSize);
}

extern "C" void* calloc(size_t aCount, size_t aSize)
{
    ++sAllocations;
    return __libc_calloc(aCount, aSize);
}

extern "C" void* realloc(void* aBlock, size_t aSize)
{
    ++sAllocations;
    return __libc_realloc(aBlock, aSize);
}

namespace
{

struct Total
{
    const char* mName;
    size_t mSum;
    size_t mMost;

    void Add(size_t aCount)
    {
        mSum += aCount;
        mMost = std::max(mMost, aCount);
    }
};

template <typename Operation>
size_t CountAllocations(Operation anOperation)
{
    const size_t theBefore = sAllocations;
    anOperation();
    return sAllocations - theBefore;
}

} // namespace

int main()
{
    Total theParse = { "parse", 0, 0 };
    Total theChoice = { "choose", 0, 0 };
    Total theThumbnail = { "thumbnail", 0, 0 };
    Total theWrite = { "write", 0, 0 };
    const std::string theSinkText = SinkList();
    zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(theSinkText.c_str(), 0);
    for (const std::string& theDocument : Documents())
    {
        char* theData = nullptr;
        char* theRes = nullptr;
        int theType = 0;
        theParse.Add(
            CountAllocations([&] { UPnPDIDL_ParseElements(theDocument.c_str(), &theData, &theRes, &theType); }));
        zoPackedData_t* theEntry = zoPackedData_NewData(theData);
        CDSResourceInfo theInfo(theRes, theEntry);
        int theConfidence = 0;
        theChoice.Add(
            CountAllocations([&] { theInfo.GetBestResourceIndex(theSink, &theConfidence, "*", nullptr, 0); }));
        theThumbnail.Add(CountAllocations([&] { theInfo.GetThumbnailURI("", nullptr, nullptr, 0); }));
        theWrite.Add(CountAllocations([&] { free(UPnPDIDL_Get(theEntry, theInfo.mPackedData, 1, 1, nullptr)); }));
        zoPackedData_Free(theEntry);
    }
    zoDLNAProtocolInfoList_Delete(theSink);

    const double theCount = static_cast<double>(Documents().size());
    printf("%-10s %12s %6s\n", "operation", "allocations", "most");
    for (const Total& theTotal : { theParse, theChoice, theThumbnail, theWrite })
        printf("%-10s %12.1f %6zu\n", theTotal.mName, static_cast<double>(theTotal.mSum) / theCount, theTotal.mMost);
    return theParse.mSum > 0 ? 0 : 1;
}
