#include "FuzzSupport.h"

#include <UPnP/Stack/ILibString.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <cinttypes>
#include <string>
#include <zo/CStringTokenizer.h>
#include <zoltTools/zoBase64.h>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMD5.h>

// The bytes are one text, read as everything that a small text can be: a time, a date, a number, a word, a list, an
// element with a value, a text with entities.

namespace
{

const uint32 kUntouched = 0xA5A5A5A5;

void CheckTime(const char* aText)
{
    const uint32 theTime = UPnPUtil_ParseTimeString(aText);
    if (theTime == kUPnP_UnknownTime) { return; }
    char theText[sizeof("1193046:28:14.9/10")];
    snprintf(theText, sizeof(theText), "%" PRIu32 ":%02" PRIu32 ":%02" PRIu32 ".9/10", theTime / 3600,
             theTime / 60 % 60, theTime % 60);
    Require(UPnPUtil_ParseTimeString(theText) == theTime, "a time is its hours, minutes and seconds");
    char theWritten[sizeof(kUPnP_UnknownTimeString)];
    UPnPUtil_SetTimeString(theWritten, theTime);
    Require(UPnPUtil_ParseTimeString(theWritten) == theTime % (99 * 3600), "what is written reads the same");
}

void CheckDate(const char* aText)
{
    int32 theParts[kzoDLNADatePart_Count];
    memset(theParts, 0xA5, sizeof(theParts));
    const int theResult = zoConvert_dlnadatestrtodate(aText, theParts);
    Require(zoConvert_dlnadatestrtodate(aText, nullptr) == theResult, "a date is one without its parts");
    if (theResult != kzoConvertError_None)
    {
        for (const int32 thePart : theParts)
            Require(static_cast<uint32>(thePart) == kUntouched, "what is not a date changes nothing");
        return;
    }
    const int theZoneHour = theParts[kzoDLNADatePart_TimeZoneHour];
    const int theZoneMinute = theParts[kzoDLNADatePart_TimeZoneMinute];
    char theText[128];
    snprintf(theText, sizeof(theText), "%04d-%02d-%02dT%02d:%02d:%02d.%03d%c%02d:%02d", theParts[0], theParts[1],
             theParts[2], theParts[3], theParts[4], theParts[5], theParts[6],
             theZoneHour < 0 || theZoneMinute < 0 ? '-' : '+', abs(theZoneHour), abs(theZoneMinute));
    int32 theAgain[kzoDLNADatePart_Count];
    Require(zoConvert_dlnadatestrtodate(theText, theAgain) == kzoConvertError_None, "the parts of a date are a date");
    Require(memcmp(theParts, theAgain, sizeof(theParts)) == 0, "the same");
}

void CheckNumbers(const char* aText)
{
    const size_t theLength = strlen(aText);
    uint32 theNumber = kUntouched;
    uint32 theOther = kUntouched;
    const int theResult = zoConvert_strtouint32(aText, &theNumber);
    Require(theResult == kzoConvertError_None || theNumber == kUntouched, "what is not a number changes nothing");
    Require(zoConvert_strntouint32(aText, theLength, &theOther) == theResult && theOther == theNumber,
            "with its length a text reads the same");
    Require(zoConvert_strtouint32_base(aText, &theOther, 10) == theResult && theOther == theNumber,
            "base 10 is what the others read");

    zoULongLong theLong = { 0, 0 };
    const int theLongResult = zoConvert_strntoULongLong(aText, theLength, &theLong);
    const bool fFits = theLongResult == kzoConvertError_None && theLong.mHigh == 0;
    Require(fFits == (theResult == kzoConvertError_None), "a number fits 32 bits when its upper half is 0");
    Require(!fFits || theLong.mLow == theNumber, "and the lower half is the number");
    if (theLongResult == kzoConvertError_None)
    {
        char* theText = zoULongLong_ToString(&theLong);
        zoULongLong theAgain = { 0, 0 };
        zoConvert_strntoULongLong(theText, strlen(theText), &theAgain);
        Require(zoULongLong_ToUInt64(&theAgain) == zoULongLong_ToUInt64(&theLong), "a number comes back from its text");
        free(theText);
    }

    uint16 theShort = 0;
    const bool fIsShort = zoConvert_strtouint16(aText, &theShort) == kzoConvertError_None;
    Require(fIsShort == (fFits && theNumber <= UINT16_MAX) && (!fIsShort || theShort == theNumber), "so with 16 bits");
    Require(UPnPUtil_GetUInt32(aText, kUntouched) == (fFits ? theNumber : kUntouched), "the default is for the rest");
    int32 theSigned = 0;
    const bool fIsSigned = ILibGetLong(aText, theLength, &theSigned) == 0;
    const bool fIsNegative = *aText == '-';
    Require(fIsNegative || fIsSigned == (fFits && theNumber <= INT32_MAX), "a signed number is one of 31 bits");
    Require(!fIsSigned || fIsNegative || static_cast<uint32>(theSigned) == theNumber, "the same");
    Require(!fIsNegative || theLongResult == kzoConvertError_RangeLow || !fIsSigned, "a negative one is out of range");
}

void CheckWords(const char* aText)
{
    const size_t theLength = strlen(aText);
    const int theTrue = UPnPUtil_FindStringInArray(aText, kUPnPUtil_TrueStringList);
    Require(UPnPUtil_FindSubStringInArray(aText, theLength, kUPnPUtil_TrueStringList) == theTrue,
            "with its length, too");
    Require(UPnPUtil_IsStrTrue(aText) == (theTrue >= 0), "true is one of the words");
    Require(!UPnPUtil_IsStrTrue(aText) || !UPnPUtil_IsStrFalse(aText), "nothing is both");
    const bool fIsList =
        UPnPUtil_FindAllCommaSeparatedSubStringInArray(aText, theLength, kUPnPUtil_TrueStringList) == 0;
    zoCStringTokenizer theTokenizer;
    theTokenizer.SetString(aText, ";", kTokenizerMode_Default);
    bool fAreWords = true;
    while (theTokenizer.HasMoreTokens())
        fAreWords = UPnPUtil_IsStrTrue(theTokenizer.GetNextToken().c_str()) && fAreWords;
    Require(fIsList == fAreWords, "a list is of words when all of its tokens are");
}

void CheckTokens(const char* aText, char anEscape)
{
    zoCStringParser_TokenList* theList =
        anEscape ? zoCStringParser_TokenizeEscaped(aText, 0, strlen(aText), ",", 1, anEscape)
                 : zoCStringParser_Tokenize(aText, 0, strlen(aText), "<>", 2);
    std::string theJoined;
    size_t theCount = 0;
    for (const zoCStringParser_Token* theToken = theList->mFirstToken; theToken; theToken = theToken->mNextToken)
    {
        if (theCount++ > 0) { theJoined += anEscape ? "," : "<>"; }
        theJoined.append(theToken->mData, theToken->mDataLength);
    }
    Require(theCount == theList->mTokenCount && theJoined == aText, "the tokens of a text make the text");
    zoCStringParser_Delete(theList);
}

std::string DigestInPieces(const char* aText, size_t aLength, size_t aPieceSize)
{
    uint8 theDigest[16];
    zoMD5Context theContext;
    zoMD5_Init(&theContext);
    for (size_t i = 0; i < aLength; i += aPieceSize)
        zoMD5_Add(&theContext, aText + i, std::min(aPieceSize, aLength - i));
    zoMD5_Get(&theContext, theDigest);
    return { theDigest, theDigest + sizeof(theDigest) };
}

void CheckDigests(const char* aText)
{
    const size_t theLength = strlen(aText);
    char* theBase64 = nullptr;
    const size_t theEncodedLength = zoBase64_Encode(aText, theLength, &theBase64);
    Require(strlen(theBase64) == theEncodedLength && theEncodedLength == (theLength + 2) / 3 * 4, "3 bytes are 4");
    free(theBase64);

    Require(DigestInPieces(aText, theLength, 1) == DigestInPieces(aText, theLength, 64), "pieces make the whole");
}

// Reads the value of each element in the text, which is written to.
void CheckValues(char* aText)
{
    const char* theTable[] = { "a", "", nullptr };
    ILibXMLNode* theNodes = ILibParseXML(aText, 0, strlen(aText));
    for (ILibXMLNode* theNode = theNodes; theNode; theNode = theNode->Next)
    {
        uint32 theNumber = kUntouched;
        int32 theSigned = 1;
        uint32 theTime = kUntouched;
        char* theValue = nullptr;
        const bool fIsNumber = UPnPUtil_GetUInt32Attribute(theNode, &theNumber) != 0;
        const bool fIsSigned = UPnPUtil_GetInt32Attribute(theNode, &theSigned) != 0;
        const bool fHasValue = UPnPUtil_GetStrAttribute(theNode, &theValue) != 0;
        Require(fHasValue == (theValue != nullptr) && (fHasValue || !(fIsNumber || fIsSigned)), "a value has a text");
        Require(fIsNumber || theNumber == kUntouched, "what is not a number changes nothing");
        const int theIndex = UPnPUtil_GetTableAttributeIndex(theNode, theTable);
        const bool fIsKnown = theValue && (*theValue == 0 || strcmp(theValue, "a") == 0);
        Require(theIndex < 0 || fIsKnown, "a word of the table is the text");
        Require((UPnPUtil_GetTimeAttribute(theNode, &theTime, 1) != 0) == fHasValue,
                "a value has a time, or none known");
        Require(fHasValue || theTime == kUntouched, "no value changes nothing");
        free(theValue);
    }
    ILibDestructXMLNodeList(theNodes);
}

void CheckUnEscape(char* aText)
{
    const size_t theLength = strlen(aText);
    const bool fIsPlain = !strchr(aText, '&') && !strstr(aText, "<![CDATA[");
    const std::string theBefore(aText);
    const int theNewLength = ILibInPlaceXmlUnEscape(aText);
    Require(theNewLength >= 0 && static_cast<size_t>(theNewLength) == strlen(aText), "the length is the text's");
    Require(static_cast<size_t>(theNewLength) <= theLength, "a text does not grow");
    Require(!fIsPlain || theBefore == aText, "a plain text stays");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    if (aSize > 1024) { return 0; }
    char* theText = NewText(aBytes, aSize);
    CheckTime(theText);
    CheckDate(theText);
    CheckNumbers(theText);
    CheckWords(theText);
    CheckTokens(theText, '\\');
    CheckTokens(theText, 0);
    CheckDigests(theText);
    CheckUnEscape(theText);
    free(theText);
    theText = NewText(aBytes, aSize);
    CheckValues(theText);
    free(theText);
    return 0;
}
