#pragma once

/* Packed data: records of entries of tagged values, in memory and as one block of bytes that travels between modules.
 *
 * An entry is addressed by its index from 0, a value in it by its tag, which is unique in the entry. The tags of an
 * entry are enumerated in the order in which they were added. The serialized block:
 *
 *     header   magic number, total size, number of entries, number of values (4 bytes each, the machine's byte order)
 *     values   the bytes of all values in the order in which they were added, one after the other
 *     rows     8 bytes a value, entry by entry: offset of its bytes (4), its tag (2), and in row k of an entry of more
 *              than 48 values the position of the value with the k-th smallest tag (2), else 0; the bytes end where the
 *              next row's begin
 *     entries  4 bytes an entry: the index of the row that follows its last
 *     end      4 bytes, 0: a text without its NUL still ends inside the block
 *
 * Rows and entries begin at no particular alignment. A block is used where it was made: it is not a file format.
 *
 * Adding is amortised O(1), a look-up O(log n) in the entry's values, and values are read where they lie. Reading
 * changes nothing, so several threads may read one record. Every operation takes a NULL record: it reads as one
 * without entries, and adding to it does nothing. A block holds less than 4 GiB; a value that would pass that, or an
 * entry's 65536th, is dropped. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoArray.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A record: entries of tagged values. */
typedef struct zoPackedData_t zoPackedData_t;

/** @return a new record without entries, released with zoPackedData_Free; aCount: entries expected, a hint. */
ZOLTTOOLS_API zoPackedData_t* zoPackedData_New(uint32 aCount);
/** Appends an empty entry; later values go into it. */
ZOLTTOOLS_API void zoPackedData_AddNewEntry(zoPackedData_t* aRecord);
/**
 * Stores a copy of the bytes in the last entry; without an entry nothing is stored.
 * @param aTag  not yet in the entry: the first value of a tag stays.
 * @param aData  aSize bytes, anywhere but in the record; NULL with aSize 0 stores a value that is present but has no
 *               bytes.
 */
ZOLTTOOLS_API void zoPackedData_AddData(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize);
/** Stores the flattened array in the last entry; the array stays the caller's. NULL counts as an empty array. */
ZOLTTOOLS_API void zoPackedData_AddArray(zoPackedData_t* aRecord, uint16 aTag, const zoArray_t* anArray,
                                         zoArray_FlattenerFunc_t aFlattener);

/**
 * @param aSize out, may be NULL: number of bytes, 0 when there are none.
 * @return the value's bytes, borrowed until the record changes; NULL when the tag is absent or has no bytes. A text
 *         has its NUL among the bytes.
 */
ZOLTTOOLS_API const char* zoPackedData_GetData(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag,
                                               size_t* aSize);
/** @return the number, taken at its stored width of 2, 4 or 8 bytes and converted; 0 for anything else. */
ZOLTTOOLS_API uint16 zoPackedData_GetDataAsUInt16(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** As zoPackedData_GetDataAsUInt16. */
ZOLTTOOLS_API uint32 zoPackedData_GetDataAsUInt32(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** As zoPackedData_GetDataAsUInt16. */
ZOLTTOOLS_API uint64 zoPackedData_GetDataAsUInt64(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** @return a new array of the value's elements, empty when the tag is absent; the caller sets its free function and
 *          deletes it. */
ZOLTTOOLS_API zoArray_t* zoPackedData_GetDataArray(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag,
                                                   zoArray_UnFlattenerFunc_t anUnFlattener);

/** @return the number of entries. */
ZOLTTOOLS_API uint32 zoPackedData_GetEntryCount(const zoPackedData_t* aRecord);
/** @return the number of values in the entry; 0 past the last entry. */
ZOLTTOOLS_API uint16 zoPackedData_GetTagCount(const zoPackedData_t* aRecord, uint32 anEntry);
/** @return the tag at a position from 0 in the order of adding; 0 past the last. */
ZOLTTOOLS_API uint16 zoPackedData_GetTagAt(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aPosition);

/* A value of an entry. */
typedef struct zoPackedData_Value
{
    const char* mData; /* mSize bytes, borrowed until the record changes; NULL when there are none */
    size_t mSize;
    uint16 mTag;
} zoPackedData_Value;
/**
 * Reads many values of an entry in one pass, in the order of adding.
 * @param aFirst  the position of the first one, from 0.
 * @param aValues out: room for aMaxCount values.
 * @return the number of values written, fewer than aMaxCount when the entry has no more.
 */
ZOLTTOOLS_API uint32 zoPackedData_GetValues(const zoPackedData_t* aRecord, uint32 anEntry, uint32 aFirst,
                                            zoPackedData_Value* aValues, uint32 aMaxCount);

/** @return the serialized block of the record, which is empty afterwards; the caller releases the block with free, or
 *          gives it to zoPackedData_NewData. */
ZOLTTOOLS_API char* zoPackedData_TakeData(zoPackedData_t* aRecord);
/** @return a new record over a block made by zoPackedData_TakeData. The record takes the block over and frees it. NULL,
 *          or a block whose sizes and offsets don't add up, gives a record without entries. */
ZOLTTOOLS_API zoPackedData_t* zoPackedData_NewData(char* aBlock);
/** @return an independent copy, released with zoPackedData_Free. */
ZOLTTOOLS_API zoPackedData_t* zoPackedData_Duplicate(const zoPackedData_t* aRecord);
/** Appends a copy of aSource's entry to another record; nothing when aSource has no such entry. */
ZOLTTOOLS_API void zoPackedData_CopyEntry(const zoPackedData_t* aSource, uint32 anEntry, zoPackedData_t* aDestination);
/** @return the size in bytes of the record's serialized block. */
ZOLTTOOLS_API uint32 zoPackedData_GetMemoryUsage(const zoPackedData_t* aRecord);
/** Releases the record and its values; NULL is ignored. */
ZOLTTOOLS_API void zoPackedData_Free(zoPackedData_t* aRecord);

#ifdef __cplusplus
}
#endif
