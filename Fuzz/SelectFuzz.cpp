#include "FuzzSupport.h"

#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/CDSResourceReport.h>
#include <UPnP/Utilities/UPnPCPUtility.h>

// The bytes, cut at line ends, are a sink list, a scheme order, and then lines of protocol info and URI by turns.

namespace
{

void AddText(zoPackedData_t* aRecord, uint16 aTag, const char* aText)
{
    if (aText) { zoPackedData_AddData(aRecord, aTag, aText, strlen(aText) + 1); }
}

void CheckLock(const zoCString& aURI)
{
    const zoCString theUnlocked = UPnPCPUtility::GetURIUnlocked(aURI, "1234");
    if (!UPnPCPUtility::IsURIParentalLocked(aURI)) { return; }
    Require(!UPnPCPUtility::IsURIParentalLocked(theUnlocked), "an unlocked URI is not locked");
}

// The choice explained: it has a reason for each resource, Chosen for the choice alone.
void CheckReport(const zoPackedData_t* aRecord, const zoCString& aSink, const zoCString& anOrder, int aFlags)
{
    const uint32 theTarget = 0x01020A0A;
    zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(aSink.c_str(), 0);
    int theConfidence = -1;
    const int theBest =
        CDSResourceInfo_ChooseResource(aRecord, theSink, aFlags, anOrder.c_str(), &theTarget, 1, &theConfidence);
    uint32 theCount = 0;
    CDSResourceReport_t* theReport =
        CDSResourceInfo_NewReport(aRecord, theSink, aFlags, anOrder.c_str(), &theTarget, 1, &theCount);
    Require(theCount == zoPackedData_GetEntryCount(aRecord), "each resource has a report");
    for (uint32 i = 0; i < theCount; ++i)
    {
        const bool fIsChosen = static_cast<int>(i) == theBest;
        Require((theReport[i].mReason == kCDSResourceReason_Chosen) == fIsChosen, "the choice is reported");
        Require(!fIsChosen || theReport[i].mConfidence == theConfidence, "and its confidence");
        Require(*CDSResourceInfo_GetReasonText(theReport[i].mReason) != 0, "a reason has words");
        Require(*CDSResourceInfo_GetStageText(theReport[i].mStage) != 0, "a stage has words");
    }
    free(theReport);
    zoDLNAProtocolInfoList_Delete(theSink);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    char* theText = NewText(aBytes, aSize);
    Lines theLines = { theText };
    const zoCString theSink(theLines.Take());
    const zoCString theOrder(theLines.Take());
    zoPackedData_t* theRecord = zoPackedData_New(0);
    while (theLines.mNext)
    {
        zoPackedData_AddNewEntry(theRecord);
        AddText(theRecord, kCDSResourceInfo_ProtocolInfo, theLines.Take());
        AddText(theRecord, kCDSResourceInfo_URI, theLines.Take());
    }

    const size_t theRecordSize = zoPackedData_GetMemoryUsage(theRecord);
    CDSResourceInfo theInfo(theRecord, nullptr);
    const HeapPeak thePeak;
    uint32 theTargets[] = { 0x01020A0A, 0xFFFFFFFF };
    int theConfidence = -1;
    const int theBest = theInfo.GetBestResourceIndexFromStr(theSink, &theConfidence, theOrder, theTargets, 2, false);
    Require((theBest == -1) == (theConfidence == kRendererPlayConfidence_WillNot), "no choice, no confidence");
    Require(theBest < static_cast<int>(theInfo.GetResourceCount()), "the choice is a resource");
    Require(theInfo.GetResourceIndexForThumbnail("JPEG_TN", theTargets, 2) <
                static_cast<int>(theInfo.GetResourceCount()),
            "the thumbnail is a resource");
    for (uint32 i = 0; i < theInfo.GetResourceCount(); ++i)
    {
        theInfo.GetMimeTypeForResourceIndex(i);
        theInfo.GetProtocolInfoForResourceIndex(i);
        CheckLock(theInfo.GetInfoAsCString(i, kCDSResourceInfo_URI));
    }
    for (int theFlags = 0; theFlags < 4; ++theFlags)
        CheckReport(theInfo.mPackedData, theSink, theOrder, theFlags);
    RequireHeap(thePeak.Bytes(), aSize + theRecordSize, 64);
    free(theText);
    return 0;
}
