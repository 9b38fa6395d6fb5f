#pragma once

/* A growing array of pointers (or of small integers carried in pointers), and arrays of strings in packed form. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A growing array; its elements are counted from 0. */
typedef struct zoArray_t zoArray_t;
/** Releases one element. */
typedef void (*zoArray_FreeFunc_t)(void* aValue);
/** @return the array's bytes in a new block released with free, NULL when there are none; their count through aSize. */
typedef char* (*zoArray_FlattenerFunc_t)(const zoArray_t* anArray, size_t* aSize);
/** @return a new array made from aSize bytes, without a free function yet. */
typedef zoArray_t* (*zoArray_UnFlattenerFunc_t)(const char* aData, size_t aSize);

/** @return a new empty array without a free function, released with zoArray_Delete. */
ZOLTTOOLS_API zoArray_t* zoArray_New(void);
/** The function that releases an element when it is removed or the array is deleted; NULL (at start): none. */
ZOLTTOOLS_API void zoArray_SetFreeFunc(zoArray_t* anArray, zoArray_FreeFunc_t aFreeFunc);
/** Appends a value, amortised O(1). With a free function set the array owns it from now on. */
ZOLTTOOLS_API void zoArray_Append(zoArray_t* anArray, void* aValue);
/** @return the element at anIndex, borrowed; NULL past the end. */
ZOLTTOOLS_API void* zoArray_At(const zoArray_t* anArray, size_t anIndex);
/** @return the number of elements; 0 for NULL. */
ZOLTTOOLS_API size_t zoArray_GetCount(const zoArray_t* anArray);
/** Removes and releases aCount elements from anIndex on, as many as there are. Elements after them move, in linear
 *  time, but not when the first ones are removed. */
ZOLTTOOLS_API void zoArray_RemoveAt(zoArray_t* anArray, size_t anIndex, size_t aCount);
/** Releases the elements with the free function, if one is set, and the array; NULL is ignored. */
ZOLTTOOLS_API void zoArray_Delete(zoArray_t* anArray);

/* Arrays of heap strings. Packed: the strings one after the other, each with its NUL. */

/** Releases one string. */
ZOLTTOOLS_API void zoStringArray_FreeFunc(void* aString);
/** Packs the strings; a NULL element counts as "". */
ZOLTTOOLS_API char* zoStringArray_FlattenerFunc(const zoArray_t* anArray, size_t* aSize);
/**
 * Packs strings as zoStringArray_FlattenerFunc does, without an array of them.
 * @param aStrings   aSize bytes: the strings one after the other, each with its NUL.
 * @param aTarget    out: the packed strings, when they take at most aCapacity bytes; else it is left alone.
 * @return the size of the packed strings.
 */
ZOLTTOOLS_API size_t zoStringArray_Pack(const char* aStrings, size_t aSize, char* aTarget, size_t aCapacity);
/** Unpacks new strings. A last string without its NUL ends with the bytes. */
ZOLTTOOLS_API zoArray_t* zoStringArray_UnFlattenerFunc(const char* aData, size_t aSize);

#ifdef __cplusplus
}
#endif
