#include <zoltTools/zoConfigFile.h>

#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMemory.h>

// What a value's text is besides a text.

char* zoConfigFile_GetStringWithSubstitution(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                             const char* aDefaultValue, zoStringSubstitution_t aSubstitution)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, aDefaultValue);
    return theValue && aSubstitution ? aSubstitution(theValue) : zoStrdup(theValue);
}

static bool ReadNumber(const char* aText, uint32* aNumber)
{
    const bool fIsHex = aText[0] == '0' && (aText[1] == 'x' || aText[1] == 'X');
    return (fIsHex ? zoConvert_strtouint32_base(aText + 2, aNumber, 16) : zoConvert_strtouint32(aText, aNumber)) ==
           kzoConvertError_None;
}

// The value of a key when it is a number up to aMost; else the default.
static uint32 GetUnsigned(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32 aDefaultValue,
                          uint32 aMost)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    uint32 theNumber = 0;
    return theValue && ReadNumber(theValue, &theNumber) && theNumber <= aMost ? theNumber : aDefaultValue;
}

uint32 zoConfigFile_GetUInt32(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              uint32 aDefaultValue)
{
    return GetUnsigned(aConfigFile, aSection, aKey, aDefaultValue, UINT32_MAX);
}

uint16 zoConfigFile_GetUInt16(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              uint16 aDefaultValue)
{
    return static_cast<uint16>(GetUnsigned(aConfigFile, aSection, aKey, aDefaultValue, UINT16_MAX));
}

uint8 zoConfigFile_GetUInt8(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                            uint8 aDefaultValue)
{
    return static_cast<uint8>(GetUnsigned(aConfigFile, aSection, aKey, aDefaultValue, UINT8_MAX));
}

int32 zoConfigFile_GetInt32(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                            int32 aDefaultValue)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    uint32 theNumber = 0;
    const bool fIsNegative = theValue && *theValue == '-';
    const uint32 theMost = static_cast<uint32>(INT32_MAX) + fIsNegative;
    const bool fIsNumber = theValue && ReadNumber(theValue + fIsNegative, &theNumber) && theNumber <= theMost;
    if (!fIsNumber) { return aDefaultValue; }
    return static_cast<int32>(fIsNegative ? -static_cast<int64>(theNumber) : static_cast<int64>(theNumber));
}

static char ToLower(char aByte) { return aByte >= 'A' && aByte <= 'Z' ? static_cast<char>(aByte | 0x20) : aByte; }

static bool IsWord(const char* aText, const char* aWord)
{
    for (; *aWord && ToLower(*aText) == *aWord; ++aWord)
        ++aText;
    return *aText == '\0' && *aWord == '\0';
}

int zoConfigFile_OptionIsSet(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue)
{
    static const struct
    {
        const char* mWord;
        int mfIsSet;
    } kWords[] = {
        { "1", 1 },     { "true", 1 }, { "yes", 1 }, { "on", 1 }, { "0", 0 },
        { "false", 0 }, { "no", 0 },   { "off", 0 }, { "", 0 },
    };
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    for (const auto& theWord : kWords)
    {
        if (theValue && IsWord(theValue, theWord.mWord)) { return theWord.mfIsSet; }
    }
    return aDefaultValue;
}

char* zoStringSubstitution_Replace_HostName(const char* aText)
{
    static const char kPlaceHolder[] = "%HOSTNAME%";
    if (!aText) { return nullptr; }
    char theHostName[256] = "";
    if (gethostname(theHostName, sizeof(theHostName) - 1) != 0) { theHostName[0] = '\0'; }
    zoBuffer* theBuffer = zoBuffer_New(strlen(aText) + 1);
    const char* theFound;
    for (; (theFound = strstr(aText, kPlaceHolder)) != nullptr; aText = theFound + sizeof(kPlaceHolder) - 1)
    {
        zoBuffer_Append(theBuffer, aText, static_cast<size_t>(theFound - aText));
        zoBuffer_AppendStr(theBuffer, theHostName);
    }
    zoBuffer_Append(theBuffer, aText, strlen(aText) + 1);
    char* theText = zoBuffer_TakeOwnership(theBuffer, nullptr, nullptr);
    zoBuffer_Delete(theBuffer);
    return theText;
}
