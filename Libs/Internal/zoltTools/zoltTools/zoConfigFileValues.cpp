#include <zoltTools/zoConfigFile.h>

#include <Shared/ASCII.h>
#include <Shared/Append.h>
#include <stdlib.h>
#include <unistd.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMemory.h>

// Values as something other than their texts.

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

// The value of a key if it is a number up to aMaximum; else the default.
static uint32 GetUnsigned(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32 aDefaultValue,
                          uint32 aMaximum)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    uint32 theNumber = 0;
    return theValue && ReadNumber(theValue, &theNumber) && theNumber <= aMaximum ? theNumber : aDefaultValue;
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
    const uint32 theMaximum = static_cast<uint32>(INT32_MAX) + fIsNegative;
    const bool fIsNumber = theValue && ReadNumber(theValue + fIsNegative, &theNumber) && theNumber <= theMaximum;
    if (!fIsNumber) { return aDefaultValue; }
    return static_cast<int32>(fIsNegative ? -static_cast<int64>(theNumber) : static_cast<int64>(theNumber));
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
    if (!theValue) { return aDefaultValue; }
    for (const auto& theWord : kWords)
    {
        if (Shared::EqualsIgnoringCase(std::string_view(theValue), theWord.mWord)) { return theWord.mfIsSet; }
    }
    return aDefaultValue;
}

char* zoStringSubstitution_Replace_HostName(const char* aText)
{
    static const std::string_view kPlaceHolder = "%HOSTNAME%";
    if (!aText) { return nullptr; }
    char theHostName[256] = "";
    if (gethostname(theHostName, sizeof(theHostName) - 1) != 0) { theHostName[0] = '\0'; }
    std::string_view theText = aText;
    zoBuffer* theBuffer = zoBuffer_New(theText.size() + 1);
    for (size_t theFound; (theFound = theText.find(kPlaceHolder)) != theText.npos;)
    {
        Shared::Append(theBuffer, theText.substr(0, theFound));
        Shared::Append(theBuffer, theHostName);
        theText.remove_prefix(theFound + kPlaceHolder.size());
    }
    Shared::Append(theBuffer, theText);
    return Shared::TakeText(theBuffer);
}
