#pragma once

/* Numbers and dates from text. The whole text is the number: digits of the base, with nothing before, between or after
 * them. On failure the target is unchanged. NULL and "" are invalid. */

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
    kzoConvertError_Invalid = -3    /* not a number, or not a date */
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
/** Reads a number in base 2 to 36, with letters of either case and without a prefix such as "0x"; any other base is
 *  invalid. @return a kzoConvertError_*. */
ZOLTTOOLS_API int zoConvert_strtouint32_base(const char* aText, uint32* aValue, int aBase);
/** Reads a decimal number of aLength bytes, which fits 64 bits. @return a kzoConvertError_*. */
ZOLTTOOLS_API int zoConvert_strntoULongLong(const char* aText, size_t aLength, zoULongLong* aValue);

/**
 * Reads a date of the DLNA guidelines (ISO 8601): YYYY-MM-DD, optionally followed by Thh:mm:ss, an optional fraction
 * (".5", any number of digits) and an optional "Z", "+hh:mm" or "-hh:mm". The calendar is checked, with leap years.
 * @param aParts out, kzoDLNADatePart_Count numbers, 0 for parts that the text leaves out; unchanged on failure. NULL:
 *               the date is only checked.
 * @return kzoConvertError_None or kzoConvertError_Invalid.
 */
ZOLTTOOLS_API int zoConvert_dlnadatestrtodate(const char* aText, int32* aParts);

#ifdef __cplusplus
}
#endif
