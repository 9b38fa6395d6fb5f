#include <UPnP/Utilities/UPnPUtility.h>

#include <Shared/ASCII.h>
#include <Shared/QualifiedName.h>
#include <Shared/Split.h>
#include <Shared/Text.h>
#include <UPnP/Utilities/Private/UPnPPlace.h>
#include <stdlib.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoUUID.h>

const char* kUPnPUtil_TrueStringList[] = { "1", "true", "yes", nullptr };
const char* kUPnPUtil_FalseStringList[] = { "0", "false", "no", "", nullptr };

// ---- Times ----

void UPnPUtil_SetTimeString(char* aStr, uint32 aTime)
{
    if (aTime == kUPnP_UnknownTime)
    {
        memcpy(aStr, kUPnP_UnknownTimeString, sizeof(kUPnP_UnknownTimeString));
        return;
    }
    const unsigned long theHours = aTime / 3600 % 99; // two digits, of which 99 is never written
    const unsigned long theMinutes = aTime / 60 % 60;
    const unsigned long theSeconds = aTime % 60;
    zo_snprintf(aStr, sizeof("HH:MM:SS.000"), "%02lu:%02lu:%02lu.000", theHours, theMinutes, theSeconds);
}

uint32 UPnPUtil_ParseTimeString(const char* aStr) { return ILibString_ParseTimeString(aStr); }

// ---- Words ----

int UPnPUtil_FindStringInArray(const char* aStr, const char** aStrArray)
{
    return ILibString_FindStringInArray(aStr, aStrArray);
}

int UPnPUtil_FindSubStringInArray(const char* aStr, size_t aStrLen, const char** aStrArray)
{
    return ILibString_FindSubStringInArray(aStr, aStrLen, aStrArray);
}

int UPnPUtil_FindAllCommaSeparatedSubStringInArray(const char* aStr, size_t aStrLen, const char** aStrArray)
{
    std::string_view theRest = Shared::TextOf(aStr, aStrLen);
    std::string_view thePart;
    while (Shared::NextItem(&theRest, ';', &thePart))
    {
        if (thePart.empty()) { continue; }
        if (UPnPUtil_FindSubStringInArray(thePart.data(), thePart.size(), aStrArray) < 0) { return -1; }
    }
    return 0;
}

int UPnPUtil_IsStrTrue(const char* aStr) { return ILibString_FindStringInArray(aStr, kUPnPUtil_TrueStringList) >= 0; }

int UPnPUtil_IsStrFalse(const char* aStr) { return ILibString_FindStringInArray(aStr, kUPnPUtil_FalseStringList) >= 0; }

// ---- UUIDs ----

char* UPnPUtil_BuildUUID(void)
{
    char* theText = static_cast<char*>(zoMalloc(kUPnP_UUIDSize));
    zoUUID u;
    zoUUID_Generate(u);
    zo_snprintf(theText, kUPnP_UUIDSize, "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x", u[0],
                u[1], u[2], u[3], u[4], u[5], u[6], u[7], u[8], u[9], u[10], u[11], u[12], u[13], u[14], u[15]);
    return theText;
}

// ---- Ending the process ----

static void (*sExitCallBack)(int) = nullptr;

void UPnPUtil_SetExitCallBack(void (*aUPnPExitCallBack)(int)) { sExitCallBack = aUPnPExitCallBack; }

void UPnPUtil_Exit(int anExitCode)
{
    if (sExitCallBack) { sExitCallBack(anExitCode); }
    exit(anExitCode);
}

char* UPnPUtil_FindXMLError(const char* aText, size_t aLength, uint32* aLine, uint32* aColumn)
{
    size_t theOffset;
    char* theReason = ILibFindXMLError(aText, aText ? strnlen(aText, aLength) : 0, &theOffset);
    *aLine = 0;
    *aColumn = 0;
    if (theReason) { UPnPPlace_Find(aText, theOffset, aLine, aColumn); }
    return theReason;
}

// ---- The value of event XML ----

// True if the element has a "val", which is then given as bytes of the document.
static bool FindVal(struct ILibXMLNode* aXML, char** aValue, size_t* aLength)
{
    struct ILibXMLAttribute* theList = aXML ? ILibGetXMLAttributes(aXML) : nullptr;
    const struct ILibXMLAttribute* theAttribute = theList;
    while (theAttribute && !Shared::Equals(Shared::LocalName(theAttribute), "val"))
        theAttribute = theAttribute->Next;
    if (theAttribute)
    {
        *aValue = theAttribute->Value;
        *aLength = static_cast<size_t>(theAttribute->ValueLength);
    }
    ILibDestructXMLAttributeList(theList);
    return theAttribute != nullptr;
}

int UPnPUtil_GetTimeAttribute(struct ILibXMLNode* aXML, uint32* aTime, uint32 anUnknownValue)
{
    char* theValue;
    size_t theLength;
    if (!FindVal(aXML, &theValue, &theLength)) { return 0; }
    theValue[theLength] = '\0';
    const uint32 theTime = UPnPUtil_ParseTimeString(theValue);
    *aTime = theTime != kUPnP_UnknownTime ? theTime : anUnknownValue;
    return 1;
}

int UPnPUtil_GetUInt32Attribute(struct ILibXMLNode* aXML, uint32* anUInt32)
{
    char* theValue;
    size_t theLength;
    uint32 theNumber;
    if (!FindVal(aXML, &theValue, &theLength)) { return 0; }
    if (zoConvert_strntouint32(theValue, theLength, &theNumber) != kzoConvertError_None) { return 0; }
    *anUInt32 = theNumber;
    return 1;
}

int UPnPUtil_GetInt32Attribute(struct ILibXMLNode* aXML, int32* anInt32)
{
    char* theValue;
    size_t theLength;
    int32 theNumber;
    if (!FindVal(aXML, &theValue, &theLength)) { return 0; }
    if (ILibGetLong(theValue, theLength, &theNumber) != 0) { return 0; }
    *anInt32 = theNumber;
    return 1;
}

int UPnPUtil_GetTableAttributeIndex(struct ILibXMLNode* aXML, const char** aTable)
{
    char* theValue;
    size_t theLength;
    if (!FindVal(aXML, &theValue, &theLength)) { return -1; }
    theValue[theLength] = '\0';
    return ILibFindEntryInTable(theValue, aTable);
}

int UPnPUtil_GetStrAttribute(struct ILibXMLNode* aXML, char** aStr)
{
    char* theValue;
    size_t theLength;
    if (!FindVal(aXML, &theValue, &theLength)) { return 0; }
    char* theText = zoStrndup(theValue, theLength);
    ILibInPlaceXmlUnEscape(theText);
    free(*aStr);
    *aStr = theText;
    return 1;
}

// ---- Numbers ----

uint32 UPnPUtil_GetUInt32(const char* aStr, uint32 aDefaultValue)
{
    uint32 theValue;
    return zoConvert_strtouint32(aStr, &theValue) == kzoConvertError_None ? theValue : aDefaultValue;
}

uint16 UPnPUtil_GetUInt16(const char* aStr, uint16 aDefaultValue)
{
    uint16 theValue;
    return zoConvert_strtouint16(aStr, &theValue) == kzoConvertError_None ? theValue : aDefaultValue;
}

uint32 UPnPUtil_CheckRange(uint32 aCurrentValue, uint32 aDefaultValue, uint32 aMinValue, uint32 aMaxValue)
{
    const bool fIsUnset = aCurrentValue == 0 && aMinValue != 0 && aMaxValue != 0;
    const uint32 theValue = fIsUnset ? aDefaultValue : aCurrentValue;
    if (theValue < aMinValue) { return aMinValue; }
    return theValue > aMaxValue ? aMaxValue : theValue;
}
