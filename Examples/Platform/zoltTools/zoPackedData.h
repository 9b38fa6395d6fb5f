#pragma once

/* Records of entries of tagged values. A serialized block is a header (magic number, size and number of entries of 4
 * bytes each) and, for each entry, the number of its values (4) and the values: tag (2), size (4) and bytes. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoArray.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct zoPackedData_t zoPackedData_t;

ZOLTTOOLS_API zoPackedData_t* zoPackedData_New(uint32 aCount);
ZOLTTOOLS_API void zoPackedData_AddNewEntry(zoPackedData_t* aRecord);
ZOLTTOOLS_API void zoPackedData_AddData(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize);
ZOLTTOOLS_API void zoPackedData_AddArray(zoPackedData_t* aRecord, uint16 aTag, const zoArray_t* anArray,
                                         zoArray_FlattenerFunc_t aFlattener);

ZOLTTOOLS_API const char* zoPackedData_GetData(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag,
                                               size_t* aSize);
ZOLTTOOLS_API uint16 zoPackedData_GetDataAsUInt16(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
ZOLTTOOLS_API uint32 zoPackedData_GetDataAsUInt32(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
ZOLTTOOLS_API uint64 zoPackedData_GetDataAsUInt64(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
ZOLTTOOLS_API zoArray_t* zoPackedData_GetDataArray(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag,
                                                   zoArray_UnFlattenerFunc_t anUnFlattener);
ZOLTTOOLS_API uint32 zoPackedData_GetEntryCount(const zoPackedData_t* aRecord);
ZOLTTOOLS_API uint16 zoPackedData_GetTagCount(const zoPackedData_t* aRecord, uint32 anEntry);
ZOLTTOOLS_API uint16 zoPackedData_GetTagAt(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aPosition);

ZOLTTOOLS_API char* zoPackedData_TakeData(zoPackedData_t* aRecord);
ZOLTTOOLS_API zoPackedData_t* zoPackedData_NewData(char* aBlock);
ZOLTTOOLS_API zoPackedData_t* zoPackedData_NewDataSized(char* aBlock, size_t aSize);
ZOLTTOOLS_API zoPackedData_t* zoPackedData_Duplicate(const zoPackedData_t* aRecord);
ZOLTTOOLS_API void zoPackedData_CopyEntry(const zoPackedData_t* aSource, uint32 anEntry, zoPackedData_t* aDestination);
ZOLTTOOLS_API uint32 zoPackedData_GetMemoryUsage(const zoPackedData_t* aRecord);
ZOLTTOOLS_API void zoPackedData_Free(zoPackedData_t* aRecord);

#ifdef __cplusplus
}
#endif
