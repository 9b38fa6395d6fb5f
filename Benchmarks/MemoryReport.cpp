#include "CountedHeap.h"
#include "Documents.h"
#include "Objects.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>

// How often each operation asks for memory, and how much of it the operation has at most at one time beyond what was
// there before, per document.

namespace
{

// What an operation took, over all documents.
class Row
{
public:
    explicit Row(const char* aName) : mName(aName) {}

    template <typename Operation>
    void Measure(Operation anOperation)
    {
        const size_t theAllocations = sHeap.mAllocations;
        const size_t theUsed = sHeap.mUsed;
        sHeap.mPeak = sHeap.mUsed;
        anOperation();
        mAllocations.push_back(sHeap.mAllocations - theAllocations);
        mPeaks.push_back(sHeap.mPeak - theUsed);
    }

    void Print()
    {
        printf("%-10s", mName);
        for (std::vector<size_t>* theFigures : { &mAllocations, &mPeaks })
        {
            std::sort(theFigures->begin(), theFigures->end());
            const size_t theSum = std::accumulate(theFigures->begin(), theFigures->end(), size_t{ 0 });
            printf("  %10.1f %8zu %8zu", static_cast<double>(theSum) / static_cast<double>(theFigures->size()),
                   theFigures->at(theFigures->size() / 2), theFigures->back());
        }
        printf("\n");
    }

private:
    const char* mName;
    std::vector<size_t> mAllocations;
    std::vector<size_t> mPeaks; // bytes
};

} // namespace

int main()
{
    Row theParse("parse");
    Row theChoice("choose");
    Row theThumbnail("thumbnail");
    Row theWrite("write");
    Row theSelectedWrite("write 2"); // with a selected URI: the other resources come in four more passes
    const std::string theSinkText = SinkList();
    zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(theSinkText.c_str(), 0);
    for (const std::string& theDocument : Documents())
    {
        char* theData = nullptr;
        char* theRes = nullptr;
        int theType = 0;
        theParse.Measure([&] { UPnPDIDL_ParseElements(theDocument.c_str(), &theData, &theRes, &theType); });
        zoPackedData_t* theEntry = zoPackedData_NewData(theData);
        CDSResourceInfo theInfo(theRes, theEntry);
        int theConfidence = 0;
        theChoice.Measure([&] { theInfo.GetBestResourceIndex(theSink, &theConfidence, "*", nullptr, 0); });
        theThumbnail.Measure([&] { theInfo.GetThumbnailURI("", nullptr, nullptr, 0); });
        theWrite.Measure([&] { free(UPnPDIDL_Get(theEntry, theInfo.mPackedData, 1, 1, nullptr)); });
        const char* theURI = zoPackedData_GetData(theInfo.mPackedData, 0, kCDSResourceInfo_URI, nullptr);
        theSelectedWrite.Measure([&]
                                 { free(UPnPDIDL_Get(theEntry, theInfo.mPackedData, 1, 1, theURI ? theURI : "")); });
        zoPackedData_Free(theEntry);
    }
    zoDLNAProtocolInfoList_Delete(theSink);
    Row theBrowse("Browse"); // of 1,000 objects, whose records are released one after the other
    std::string theBrowseText = BrowseResult(1000);
    theBrowse.Measure([&] { ParseObjects(theBrowseText, 1000); });

    printf("%-10s  %10s %8s %8s  %10s %8s %8s\n", "operation", "allocations", "median", "most", "peak bytes", "median",
           "most");
    for (Row* theRow : { &theParse, &theChoice, &theThumbnail, &theWrite, &theSelectedWrite, &theBrowse })
        theRow->Print();
    const size_t theSize = std::accumulate(Documents().begin(), Documents().end(), size_t{ 0 },
                                           [](size_t aSum, const std::string& aText) { return aSum + aText.size(); });
    printf("of %zu documents of %zu bytes each on average, and a Browse answer of %zu bytes\n", Documents().size(),
           theSize / Documents().size(), theBrowseText.size());
    return 0;
}
