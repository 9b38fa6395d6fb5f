#pragma once

/* Numbers and dates from text. The whole text is the number: digits of the base, nothing before, between or after.
 * On failure the target keeps its value. NULL and "" are invalid. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoULongLong.h>

#ifdef __cplusplus
extern "C" {
#endif

enum
{
    kzoConvertError_None = 0,
    kzoConvertError_RangeHigh = -1, /* too large for the target */
    kzoConvertError_RangeLow = -2,  /* a negative number for an unsigned target */
    kzoConvertError_Invalid = -3    /* no number, or no date */
};

/* The parts of a DLNA date, in the order in which zoConvert_dlnadatestrtodate fills them. */
enum
{
    kzoDLNADatePart_Year = 0,
    kzoDLNADatePart_Month = 1, /* 1 to 12 */
    kzoDLNADatePart_Day = 2,   /* 1 to 31 */
    kzoDLNADatePart_Hour = 3,
    kzoDLNADatePart_Minute = 4,
    kzoDLNADatePart_Second = 5,
    kzoDLNADatePart_Millisecond = 6,
    kzoDLNADatePart_TimeZoneHour = 7,   /* -23 to 23 */
    kzoDLNADatePart_TimeZoneMinute = 8, /* with the sign of the hour */
    kzoDLNADatePart_Count = 9
};

/** Reads a decimal number of aLength bytes. @return a kzoConvertError_*. */
ZOLTTOOLS_API int zoConvert_strntouint32(const char* aText, size_t aLength, uint32* aValue);
/** Reads a decimal number. @return a kzoConvertError_*. */
ZOLTTOOLS_API int zoConvert_strtouint32(const char* aText, uint32* aValue);
/** Reads a decimal number. @return a kzoConvertError_*. */
ZOLTTOOLS_API int zoConvert_strtouint16(const char* aText, uint16* aValue);
/** Reads a number in base 2 to 36, letters in either case, without a prefix such as "0x". @return a kzoConvertError_*.
 */
ZOLTTOOLS_API int zoConvert_strtouint32_base(const char* aText, uint32* aValue, int aBase);
/** Reads a decimal number of aLength bytes into two halves. @return a kzoConvertError_*. */
ZOLTTOOLS_API int zoConvert_strntoULongLong(const char* aText, size_t aLength, zoULongLong* aValue);

/**
 * Reads a date of the DLNA guidelines (ISO 8601): YYYY-MM-DD, optionally followed by Thh:mm:ss, an optional fraction
 * (".5", any number of digits) and an optional "Z" or "+hh:mm" or "-hh:mm". The calendar is checked, leap years too.
 * @param aParts out, kzoDLNADatePart_Count numbers, 0 where the text says nothing; untouched on failure. May be NULL.
 * @return kzoConvertError_None or kzoConvertError_Invalid.
 */
ZOLTTOOLS_API int zoConvert_dlnadatestrtodate(const char* aText, int32* aParts);

#ifdef __cplusplus
}
#endif
