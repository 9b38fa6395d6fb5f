#pragma once

/* Arrays of pointers, and arrays of strings as bytes. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct zoArray_t zoArray_t;
typedef void (*zoArray_FreeFunc_t)(void* aValue);
typedef char* (*zoArray_FlattenerFunc_t)(const zoArray_t* anArray, size_t* aSize);
typedef zoArray_t* (*zoArray_UnFlattenerFunc_t)(const char* aData, size_t aSize);

ZOLTTOOLS_API zoArray_t* zoArray_New(void);
ZOLTTOOLS_API void zoArray_SetFreeFunc(zoArray_t* anArray, zoArray_FreeFunc_t aFreeFunc);
ZOLTTOOLS_API void zoArray_Append(zoArray_t* anArray, void* aValue);
ZOLTTOOLS_API void* zoArray_At(const zoArray_t* anArray, size_t anIndex);
ZOLTTOOLS_API size_t zoArray_GetCount(const zoArray_t* anArray);
ZOLTTOOLS_API void zoArray_RemoveAt(zoArray_t* anArray, size_t anIndex, size_t aCount);
ZOLTTOOLS_API void zoArray_Delete(zoArray_t* anArray);

ZOLTTOOLS_API void zoStringArray_FreeFunc(void* aString);
ZOLTTOOLS_API char* zoStringArray_FlattenerFunc(const zoArray_t* anArray, size_t* aSize);
ZOLTTOOLS_API zoArray_t* zoStringArray_UnFlattenerFunc(const char* aData, size_t aSize);

#ifdef __cplusplus
}
#endif
