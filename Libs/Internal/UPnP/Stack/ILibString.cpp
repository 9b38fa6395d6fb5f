#include <UPnP/Stack/ILibString.h>

#include <Shared/ASCII.h>
#include <string.h>

using Shared::IsDigit;

static const char* SkipDigits(const char* aText)
{
    while (IsDigit(*aText))
        ++aText;
    return aText;
}

// ---- Times ----

// Compares two numbers of any length.
static bool IsLess(const char* aLeft, const char* aLeftEnd, const char* aRight, const char* aRightEnd)
{
    while (aLeft < aLeftEnd && *aLeft == '0')
        ++aLeft;
    while (aRight < aRightEnd && *aRight == '0')
        ++aRight;
    const size_t theLength = static_cast<size_t>(aLeftEnd - aLeft);
    if (theLength != static_cast<size_t>(aRightEnd - aRight)) { return aLeftEnd - aLeft < aRightEnd - aRight; }
    return memcmp(aLeft, aRight, theLength) < 0;
}

// True if the text is empty, or a fraction that nothing follows.
static bool IsFractionOrEnd(const char* aText)
{
    if (*aText == '\0') { return true; }
    if (*aText != '.') { return false; }
    const char* theNumerator = aText + 1;
    const char* theNumeratorEnd = SkipDigits(theNumerator);
    if (theNumeratorEnd == theNumerator) { return false; }
    if (*theNumeratorEnd != '/') { return *theNumeratorEnd == '\0'; }
    const char* theDenominator = theNumeratorEnd + 1;
    const char* theDenominatorEnd = SkipDigits(theDenominator);
    return *theDenominatorEnd == '\0' && IsLess(theNumerator, theNumeratorEnd, theDenominator, theDenominatorEnd);
}

// Reads a number past its last digit; false without a digit. What is above 32 bits stays above.
static bool ReadNumber(const char** aText, uint64* aNumber)
{
    const char* thePosition = *aText;
    uint64 theNumber = 0;
    for (; IsDigit(*thePosition); ++thePosition)
        if (theNumber <= UINT32_MAX) { theNumber = theNumber * 10 + static_cast<uint64>(*thePosition - '0'); }
    const bool fHasDigits = thePosition != *aText;
    *aText = thePosition;
    *aNumber = theNumber;
    return fHasDigits;
}

// Reads minutes or seconds, one or two digits below 60, past the last one.
static bool ReadSixtieths(const char** aText, uint64* aNumber)
{
    const char* theText = *aText;
    if (!IsDigit(theText[0])) { return false; }
    const bool fHasTwo = IsDigit(theText[1]);
    const int theFirst = theText[0] - '0';
    const int theNumber = fHasTwo ? theFirst * 10 + theText[1] - '0' : theFirst;
    *aText = theText + 1 + fHasTwo;
    *aNumber = static_cast<uint64>(theNumber);
    return theNumber < 60 && !IsDigit(**aText);
}

uint32 ILibString_ParseTimeString(const char* aText)
{
    const char* thePosition = aText ? aText : "";
    uint64 theSeconds;
    if (!ReadNumber(&thePosition, &theSeconds) || theSeconds > UINT32_MAX) { return kUPnP_UnknownTime; }
    for (int i = 0; i < 2 && *thePosition == ':'; ++i)
    {
        uint64 theNumber;
        ++thePosition;
        if (!ReadSixtieths(&thePosition, &theNumber)) { return kUPnP_UnknownTime; }
        theSeconds = theSeconds * 60 + theNumber;
    }
    const bool fIsValid = theSeconds < kUPnP_UnknownTime && IsFractionOrEnd(thePosition);
    return fIsValid ? static_cast<uint32>(theSeconds) : kUPnP_UnknownTime;
}

// ---- Words ----

// True if two bytes are the same but for the case of a letter.
static bool AreSame(char aLeft, char aRight) { return Shared::EqualsIgnoringCase(&aLeft, &aRight, 1); }

// True if aWord is the text, which may have a NUL in it. Most words differ at their first letter.
static bool IsWord(const char* aText, size_t aLength, const char* aWord)
{
    for (size_t i = 0; i < aLength; ++i)
        if (aWord[i] == 0 || !AreSame(aText[i], aWord[i])) { return false; }
    return aWord[aLength] == 0;
}

static bool IsWord(const char* aText, const char* aWord)
{
    for (; AreSame(*aText, *aWord); ++aText, ++aWord)
        if (*aWord == 0) { return true; }
    return false;
}

int ILibString_FindSubStringInArray(const char* aText, size_t aLength, const char** anArray)
{
    if (!aText || !anArray) { return -1; }
    for (int i = 0; anArray[i]; ++i)
    {
        if (IsWord(aText, aLength, anArray[i])) { return i; }
    }
    return -1;
}

int ILibString_FindStringInArray(const char* aText, const char** anArray)
{
    if (!aText || !anArray) { return -1; }
    for (int i = 0; anArray[i]; ++i)
    {
        if (IsWord(aText, anArray[i])) { return i; }
    }
    return -1;
}

int ILibFindEntryInTable(const char* aText, const char** aTable)
{
    if (!aText || !aTable) { return -1; }
    for (int i = 0; aTable[i]; ++i)
    {
        if (strcmp(aText, aTable[i]) == 0) { return i; }
    }
    return -1;
}

// ---- Numbers ----

int ILibGetLong(const char* aText, size_t aLength, int32* aValue)
{
    const bool fIsNegative = aText && aLength > 0 && aText[0] == '-';
    const int64 theLimit = fIsNegative ? -static_cast<int64>(INT32_MIN) : INT32_MAX;
    const size_t theBegin = fIsNegative ? 1 : 0;
    if (!aText || aLength == theBegin) { return -1; }
    int64 theNumber = 0;
    for (size_t i = theBegin; i < aLength; ++i)
    {
        if (!IsDigit(aText[i])) { return -1; }
        theNumber = theNumber * 10 + (aText[i] - '0');
        if (theNumber > theLimit) { return -1; }
    }
    *aValue = static_cast<int32>(fIsNegative ? -theNumber : theNumber);
    return 0;
}
