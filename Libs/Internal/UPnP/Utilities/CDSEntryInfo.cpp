#include <UPnP/Utilities/CDSEntryInfo.h>

#include <UPnP/Utilities/CDS/Record.h>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

CDSEntryInfo::CDSEntryInfo() : mPackedData(zoPackedData_New(0)) {}

CDSEntryInfo::CDSEntryInfo(zoPackedData_t* aPackedData) : mPackedData(aPackedData) {}

CDSEntryInfo::~CDSEntryInfo() { zoPackedData_Free(mPackedData); }

size_t CDSEntryInfo::GetMemoryUsage() { return zoPackedData_GetMemoryUsage(mPackedData); }

bool CDSEntryInfo::IsContainer()
{
    return zoPackedData_GetDataAsUInt16(mPackedData, 0, kCDSEntryInfo_IsContainer) != 0;
}

uint32 CDSEntryInfo::GetChildCount() { return zoPackedData_GetDataAsUInt32(mPackedData, 0, kCDSEntryInfo_ChildCount); }

unsigned long CDSEntryInfo::GetInfoAsULong(uint16 aDataInfoID)
{
    return zoPackedData_GetDataAsUInt32(mPackedData, 0, aDataInfoID);
}

zoCString CDSEntryInfo::GetInfoAsCString(uint16 aDataInfoID) { return CDS::GetText(mPackedData, 0, aDataInfoID); }

uint16 CDSEntryInfo::GetExtraInfoCount() { return CDS::CountPairs(mPackedData, 0, kCDSEntryInfo_Count); }

void CDSEntryInfo::GetExtraInfo(int anExtraInfoIndex, zoCString& aName, zoCString& aData)
{
    uint16 theTag = 0;
    const bool fIsPair = CDS::FindPair(mPackedData, 0, kCDSEntryInfo_Count, anExtraInfoIndex, &theTag);
    aName = fIsPair ? CDS::GetText(mPackedData, 0, theTag) : zoCString();
    aData = fIsPair ? CDS::GetPairValue(mPackedData, 0, theTag) : zoCString();
}

zoCString CDSEntryInfo::GetExtraInfoName(int anExtraInfoIndex)
{
    uint16 theTag;
    const bool fIsPair = CDS::FindPair(mPackedData, 0, kCDSEntryInfo_Count, anExtraInfoIndex, &theTag);
    return fIsPair ? CDS::GetText(mPackedData, 0, theTag) : zoCString();
}

zoCString CDSEntryInfo::GetExtraInfoData(int anExtraInfoIndex)
{
    uint16 theTag;
    const bool fIsPair = CDS::FindPair(mPackedData, 0, kCDSEntryInfo_Count, anExtraInfoIndex, &theTag);
    return fIsPair ? CDS::GetPairValue(mPackedData, 0, theTag) : zoCString();
}

void* CDSEntryInfo::operator new(size_t aSize) { return zoMalloc(aSize); }

void CDSEntryInfo::operator delete(void* anObject) { free(anObject); }

CDSEntryInfo* CDSEntryInfo::Clone() const { return new CDSEntryInfo(zoPackedData_Duplicate(mPackedData)); }
