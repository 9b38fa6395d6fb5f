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
    aName = GetExtraInfoName(anExtraInfoIndex);
    aData = GetExtraInfoData(anExtraInfoIndex);
}

zoCString CDSEntryInfo::GetExtraInfoName(int anExtraInfoIndex)
{
    return CDS::GetPairName(mPackedData, 0, kCDSEntryInfo_Count, anExtraInfoIndex);
}

zoCString CDSEntryInfo::GetExtraInfoData(int anExtraInfoIndex)
{
    return CDS::GetPairValue(mPackedData, 0, kCDSEntryInfo_Count, anExtraInfoIndex);
}

void* CDSEntryInfo::operator new(size_t aSize) { return zoMalloc(aSize); }

void CDSEntryInfo::operator delete(void* anObject) { free(anObject); }

CDSEntryInfo* CDSEntryInfo::Clone() const { return new CDSEntryInfo(zoPackedData_Duplicate(mPackedData)); }
