#include <UPnP/Utilities/CDSEntryInfo.h>

#include <UPnP/Utilities/CDS/Record.h>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

CDSEntryInfo::CDSEntryInfo() : mPackedData(zoPackedData_New(0)) {}

CDSEntryInfo::CDSEntryInfo(zoPackedData_t* aPackedData) : mPackedData(aPackedData) {}

CDSEntryInfo::~CDSEntryInfo() { zoPackedData_Free(mPackedData); }

size_t CDSEntryInfo::GetMemoryUsage() { return zoPackedData_GetMemoryUsage(mPackedData); }

bool CDSEntryInfo::IsContainer() { return CDSEntryInfo_IsContainer(mPackedData) != 0; }

uint32 CDSEntryInfo::GetChildCount() { return CDSEntryInfo_GetChildCount(mPackedData); }

unsigned long CDSEntryInfo::GetInfoAsULong(uint16 aDataInfoID)
{
    return CDSEntryInfo_GetInfoAsUInt32(mPackedData, aDataInfoID);
}

zoCString CDSEntryInfo::GetInfoAsCString(uint16 aDataInfoID) { return CDS::GetText(mPackedData, 0, aDataInfoID); }

uint16 CDSEntryInfo::GetExtraInfoCount() { return CDSEntryInfo_GetExtraInfoCount(mPackedData); }

// @return the tag of a pair's name.
static uint32 FindPair(const zoPackedData_t* anEntryInfo, int anExtraInfoIndex)
{
    return CDS::FindPair(anEntryInfo, 0, kCDSEntryInfo_Count, anExtraInfoIndex);
}

void CDSEntryInfo::GetExtraInfo(int anExtraInfoIndex, zoCString& aName, zoCString& aData)
{
    const uint32 theTag = FindPair(mPackedData, anExtraInfoIndex);
    aName = CDS::GetText(mPackedData, 0, theTag);
    aData = CDS::GetText(mPackedData, 0, theTag + 1);
}

zoCString CDSEntryInfo::GetExtraInfoName(int anExtraInfoIndex)
{
    return CDS::GetText(mPackedData, 0, FindPair(mPackedData, anExtraInfoIndex));
}

zoCString CDSEntryInfo::GetExtraInfoData(int anExtraInfoIndex)
{
    return CDS::GetText(mPackedData, 0, FindPair(mPackedData, anExtraInfoIndex) + 1);
}

void* CDSEntryInfo::operator new(size_t aSize) { return zoMalloc(aSize); }

void CDSEntryInfo::operator delete(void* anObject) { free(anObject); }

CDSEntryInfo* CDSEntryInfo::Clone() const { return new CDSEntryInfo(zoPackedData_Duplicate(mPackedData)); }

// ---- Functions over a record ----

int CDSEntryInfo_IsContainer(const zoPackedData_t* anEntryInfo)
{
    return zoPackedData_GetDataAsUInt16(anEntryInfo, 0, kCDSEntryInfo_IsContainer) != 0;
}

uint32 CDSEntryInfo_GetChildCount(const zoPackedData_t* anEntryInfo)
{
    return CDSEntryInfo_GetInfoAsUInt32(anEntryInfo, kCDSEntryInfo_ChildCount);
}

uint32 CDSEntryInfo_GetInfoAsUInt32(const zoPackedData_t* anEntryInfo, uint16 aDataInfoID)
{
    return zoPackedData_GetDataAsUInt32(anEntryInfo, 0, aDataInfoID);
}

const char* CDSEntryInfo_GetInfoAsStr(const zoPackedData_t* anEntryInfo, uint16 aDataInfoID)
{
    return CDS::GetStr(anEntryInfo, 0, aDataInfoID);
}

uint16 CDSEntryInfo_GetExtraInfoCount(const zoPackedData_t* anEntryInfo)
{
    return CDS::CountPairs(anEntryInfo, 0, kCDSEntryInfo_Count);
}

const char* CDSEntryInfo_GetExtraInfoName(const zoPackedData_t* anEntryInfo, int anExtraInfoIndex)
{
    return CDS::GetStr(anEntryInfo, 0, FindPair(anEntryInfo, anExtraInfoIndex));
}

const char* CDSEntryInfo_GetExtraInfoData(const zoPackedData_t* anEntryInfo, int anExtraInfoIndex)
{
    return CDS::GetStr(anEntryInfo, 0, FindPair(anEntryInfo, anExtraInfoIndex) + 1);
}
