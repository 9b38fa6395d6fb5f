#pragma once

/* Packed data: records of entries of tagged values, in memory and as one block of bytes that travels between modules.
 *
 * An entry is addressed by its index from 0, a value in it by its tag, which is unique in the entry. The tags of an
 * entry are enumerated in the order in which they were added. The serialized block, its numbers in the machine's byte
 * order and not aligned:
 *
 *     header   magic number, which depends on the other two; total size; number of entries (4 bytes each)
 *     entries  one after the other, each of
 *                values  the bytes of its values in the order in which they were added, one after the other
 *                ends    where each value ends, counted from the entry's begin (2 bytes each; 4 when the values take
 *                        more than 65535 bytes)
 *                tags    2 bytes each
 *                order   in an entry of more than 48 values: their positions in the order of their tags (2 bytes each)
 *                count   the number of values (2 bytes)
 *     table    where each entry ends, counted from the block's begin (4 bytes each)
 *     end      1 byte, 0: a text without its NUL still ends inside the block
 *
 * A block is used where it was made: it is not a file format. It may come from anywhere: sizes, ends, tags and order
 * are checked when a record takes the block over, so that no later read leaves it. A block in which they don't add up,
 * or whose header does not match its magic number, reads as one without entries. That a block is as long as its header
 * says can't be seen from the block: give one that came from outside the process to zoPackedData_NewDataSized. From
 * then on it is private memory of the record: nobody else may write to it.
 *
 * Adding is amortised O(1), a look-up O(log n) in the entry's values, and values are read in place. Several
 * threads may read one record while nobody adds to it. Every operation takes a NULL record: it reads as one without
 * entries, and adding to it does nothing. A block holds less than 4 GiB; a value that would pass that, or an entry's
 * 65536th, is dropped. */

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
 * @param aTag   not yet in the entry: the first value of a tag stays.
 * @param aData  aSize bytes, which may be a value of this record; NULL with aSize 0 stores a value that is present but
 *               has no bytes.
 */
ZOLTTOOLS_API void zoPackedData_AddData(zoPackedData_t* aRecord, uint16 aTag, const void* aData, size_t aSize);
/** Stores the flattened array in the last entry; the array stays the caller's. NULL counts as an empty array. */
ZOLTTOOLS_API void zoPackedData_AddArray(zoPackedData_t* aRecord, uint16 aTag, const zoArray_t* anArray,
                                         zoArray_FlattenerFunc_t aFlattener);

/**
 * @param aSize out, may be NULL: number of bytes, 0 when there are none.
 * @return the value's bytes, borrowed until the record changes; NULL when the tag is absent or has no bytes. A text is
 *         the bytes up to the first NUL or to the value's end: in a block from a stranger the NUL may be missing.
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
/** @return the number of values whose tag is aTag or higher; takes O(log n) for each of the tags below it. */
ZOLTTOOLS_API uint32 zoPackedData_CountTagsFrom(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
/** @return the position of a tag from 0 in the order of adding; the number of values in the entry when it is absent.
 * Takes O(log n). */
ZOLTTOOLS_API uint32 zoPackedData_FindTag(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag);
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

/* What zoPackedData_FindEntryWithText returns when there is no such entry. */
#define kzoPackedData_NoEntry 0xFFFFFFFFu
/**
 * Finds entries whose value of a tag contains a text. The record keeps what it finds for the first tag and text that
 * are asked for until something is added, so asking for one entry after the other takes linear time once and constant
 * time from then on. For another tag or text a question always takes linear time.
 * @param aText    NULL and "" are contained nowhere.
 * @param aNumber  counts these entries from 0.
 * @param aCount   out, may be NULL: their number.
 * @return the index of the entry; kzoPackedData_NoEntry when there are not that many.
 */
ZOLTTOOLS_API uint32 zoPackedData_FindEntryWithText(const zoPackedData_t* aRecord, uint16 aTag, const char* aText,
                                                    uint32 aNumber, uint32* aCount);

/** @return the serialized block of the record, which is empty afterwards; the caller releases the block with free, or
 *          gives it to zoPackedData_NewData. */
ZOLTTOOLS_API char* zoPackedData_TakeData(zoPackedData_t* aRecord);
/**
 * Makes the serialized block of a record whose values are known all at once: the same as that of a record to which each
 * entry was added by zoPackedData_AddNewEntry, and each of its values by zoPackedData_AddData.
 * @param aTags    the tags of all entries, one entry after the other, in the order of adding; no tag comes twice in an
 *                 entry.
 * @param anEnds   where each value ends, counted from the begin of its entry's values; it begins where the one before
 *                 it ends.
 * @param aCounts  the number of values of each of the anEntryCount entries.
 * @param aValues  the bytes of all values, one after the other.
 * @return a new block, released with free.
 */
ZOLTTOOLS_API char* zoPackedData_NewBlock(const uint16* aTags, const uint32* anEnds, const uint16* aCounts,
                                          uint32 anEntryCount, const char* aValues);
/** @return a new record over a block made by zoPackedData_TakeData in this process, at least as long as its header
 *          says. The record takes the block over and frees it; no value is copied. NULL, or a block that doesn't add
 *          up, gives a record without entries. */
ZOLTTOOLS_API zoPackedData_t* zoPackedData_NewData(char* aBlock);
/** As zoPackedData_NewData, for a block from outside the process, which is aSize bytes long: one whose header tells
 *  another size gives a record without entries, too. */
ZOLTTOOLS_API zoPackedData_t* zoPackedData_NewDataSized(char* aBlock, size_t aSize);
/** @return an independent copy, released with zoPackedData_Free. */
ZOLTTOOLS_API zoPackedData_t* zoPackedData_Duplicate(const zoPackedData_t* aRecord);
/** Appends a copy of aSource's entry to a record, which may be aSource; nothing when aSource has no such entry. */
ZOLTTOOLS_API void zoPackedData_CopyEntry(const zoPackedData_t* aSource, uint32 anEntry, zoPackedData_t* aDestination);
/** @return the size in bytes of the record's serialized block. */
ZOLTTOOLS_API uint32 zoPackedData_GetMemoryUsage(const zoPackedData_t* aRecord);
/** Releases the record and its values; NULL is ignored. */
ZOLTTOOLS_API void zoPackedData_Free(zoPackedData_t* aRecord);

#ifdef __cplusplus
}
#endif
