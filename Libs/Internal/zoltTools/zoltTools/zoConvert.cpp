#include <zoltTools/zoConvert.h>

#include <Shared/ASCII.h>
#include <Shared/Digits.h>
#include <limits>
#include <string.h>

// ---- Numbers ----

// Reads the digits before anEnd, or before the NUL when anEnd is NULL. Reads on after an overflow, because a text that
// is not a number is invalid, however large it begins.
template <typename Number>
static inline int ReadNumber(const char* aText, const char* anEnd, uint32 aBase, Number* aValue)
{
    const char* thePosition = aText;
    const bool fIsNegative = thePosition != anEnd && *thePosition == '-';
    if (fIsNegative) { ++thePosition; }

    const char* const theDigits = thePosition;
    const Number theMaximum = static_cast<Number>(-1);
    const Number theLimit = static_cast<Number>(theMaximum / aBase); // below it any further digit fits
    Number theNumber = 0;
    bool fIsTooLarge = false;
    for (; thePosition != anEnd; ++thePosition)
    {
        const uint32 theDigit = Shared::DigitValue(*thePosition);
        if (theDigit >= aBase) { break; }
        if (theNumber >= theLimit && (theNumber > theLimit || theDigit > theMaximum % aBase)) { fIsTooLarge = true; }
        theNumber = static_cast<Number>(theNumber * aBase + theDigit);
    }

    const bool fIsWhole = anEnd ? thePosition == anEnd : *thePosition == '\0';
    if (!fIsWhole || thePosition == theDigits) { return kzoConvertError_Invalid; }
    if (fIsNegative) { return kzoConvertError_RangeLow; }
    if (fIsTooLarge) { return kzoConvertError_RangeHigh; }
    *aValue = theNumber;
    return kzoConvertError_None;
}

// Reads a decimal number. Nearly all have so few digits that they fit: only longer ones are checked for an overflow.
template <typename Number>
static inline int ReadDecimal(const char* aText, size_t aLength, Number* aValue)
{
    if (!aText) { return kzoConvertError_Invalid; }
    Number theNumber = 0;
    size_t i = 0;
    for (; i < aLength && Shared::IsDigit(aText[i]); ++i)
        theNumber = theNumber * 10 + static_cast<Number>(aText[i] - '0');
    const bool fIsShort = aLength > 0 && aLength <= static_cast<size_t>(std::numeric_limits<Number>::digits10);
    if (i < aLength || !fIsShort) { return ReadNumber(aText, aText + aLength, 10, aValue); }
    *aValue = theNumber;
    return kzoConvertError_None;
}

int zoConvert_strntouint32(const char* aText, size_t aLength, uint32* aValue)
{
    return ReadDecimal(aText, aLength, aValue);
}

int zoConvert_strtouint32(const char* aText, uint32* aValue)
{
    return aText ? ReadNumber(aText, nullptr, 10, aValue) : kzoConvertError_Invalid;
}

int zoConvert_strtouint16(const char* aText, uint16* aValue)
{
    return aText ? ReadNumber(aText, nullptr, 10, aValue) : kzoConvertError_Invalid;
}

int zoConvert_strtouint32_base(const char* aText, uint32* aValue, int aBase)
{
    if (!aText || aBase < 2 || aBase > 36) { return kzoConvertError_Invalid; }
    return ReadNumber(aText, nullptr, static_cast<uint32>(aBase), aValue);
}

int zoConvert_strntoULongLong(const char* aText, size_t aLength, zoULongLong* aValue)
{
    uint64 theNumber = 0;
    const int theResult = ReadDecimal(aText, aLength, &theNumber);
    if (theResult == kzoConvertError_None)
    {
        *aValue = { static_cast<uint32>(theNumber), static_cast<uint32>(theNumber >> 32) };
    }
    return theResult;
}

// ---- Dates: each reader moves aText past what it reads, up to the first byte that does not fit ----

static bool ReadByte(const char*& aText, char aByte)
{
    if (*aText != aByte) { return false; }
    ++aText;
    return true;
}

static bool ReadDigits(const char*& aText, int aCount, int32* aNumber)
{
    *aNumber = 0;
    for (; aCount > 0; --aCount, ++aText)
    {
        if (!Shared::IsDigit(*aText)) { return false; }
        *aNumber = *aNumber * 10 + (*aText - '0');
    }
    return true;
}

static bool ReadTwoDigits(const char*& aText, int32 aMaximum, int32* aNumber)
{
    return ReadDigits(aText, 2, aNumber) && *aNumber <= aMaximum;
}

static int32 DaysOfMonth(int32 aYear, int32 aMonth)
{
    static const uint8 kDays[] = { 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 };
    const bool fIsLeapYear = aYear % 4 == 0 && (aYear % 100 != 0 || aYear % 400 == 0);
    return kDays[aMonth - 1] + (aMonth == 2 && fIsLeapYear ? 1 : 0);
}

static bool ReadDate(const char*& aText, int32* aParts)
{
    int32* theYear = &aParts[kzoDLNADatePart_Year];
    int32* theMonth = &aParts[kzoDLNADatePart_Month];
    int32* theDay = &aParts[kzoDLNADatePart_Day];
    return ReadDigits(aText, 4, theYear) && ReadByte(aText, '-') && ReadTwoDigits(aText, 12, theMonth) &&
           *theMonth > 0 && ReadByte(aText, '-') && ReadTwoDigits(aText, DaysOfMonth(*theYear, *theMonth), theDay) &&
           *theDay > 0;
}

static bool ReadFraction(const char*& aText, int32* aMilliseconds)
{
    if (!Shared::IsDigit(*aText)) { return false; }
    int32 theUnit = 100;
    for (; Shared::IsDigit(*aText); ++aText, theUnit /= 10)
        *aMilliseconds += theUnit * (*aText - '0');
    return true;
}

static bool ReadTime(const char*& aText, int32* aParts)
{
    return ReadTwoDigits(aText, 23, &aParts[kzoDLNADatePart_Hour]) && ReadByte(aText, ':') &&
           ReadTwoDigits(aText, 59, &aParts[kzoDLNADatePart_Minute]) && ReadByte(aText, ':') &&
           ReadTwoDigits(aText, 59, &aParts[kzoDLNADatePart_Second]) &&
           (!ReadByte(aText, '.') || ReadFraction(aText, &aParts[kzoDLNADatePart_Millisecond]));
}

static bool ReadTimeZone(const char*& aText, int32* aParts)
{
    if (*aText == '\0' || ReadByte(aText, 'Z')) { return true; }
    const int32 theSign = *aText == '-' ? -1 : 1;
    int32* theHour = &aParts[kzoDLNADatePart_TimeZoneHour];
    int32* theMinute = &aParts[kzoDLNADatePart_TimeZoneMinute];
    if (!ReadByte(aText, '+') && !ReadByte(aText, '-')) { return false; }
    if (!ReadTwoDigits(aText, 23, theHour) || !ReadByte(aText, ':') || !ReadTwoDigits(aText, 59, theMinute))
    {
        return false;
    }
    *theHour *= theSign;
    *theMinute *= theSign;
    return true;
}

int zoConvert_dlnadatestrtodate(const char* aText, int32* aParts)
{
    int32 theParts[kzoDLNADatePart_Count] = {};
    const char* thePosition = aText ? aText : "";
    bool fIsValid = ReadDate(thePosition, theParts);
    if (fIsValid && ReadByte(thePosition, 'T'))
    {
        fIsValid = ReadTime(thePosition, theParts) && ReadTimeZone(thePosition, theParts);
    }
    if (!fIsValid || *thePosition != '\0') { return kzoConvertError_Invalid; }
    if (aParts) { memcpy(aParts, theParts, sizeof(theParts)); }
    return kzoConvertError_None;
}
