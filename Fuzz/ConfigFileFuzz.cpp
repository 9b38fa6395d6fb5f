#include "FuzzSupport.h"

#include <string>
#include <zoltTools/zoConfigFile.h>

// The bytes are a configuration file's text; its first three lines are, besides, a section, a key and a value to set.

namespace
{

zoConfigFile* NewCopy(const zoConfigFile* aFile)
{
    size_t theLength = 0;
    char* theText = zoConfigFile_GetText(aFile, &theLength);
    zoConfigFile* theCopy = zoConfigFile_NewFromText(theText, theLength);
    std::free(theText);
    return theCopy;
}

// Whether every value of the one is one of the other.
bool Holds(const zoConfigFile* aFile, const zoConfigFile* anOther)
{
    for (size_t i = 0; i < zoConfigFile_GetSectionCount(anOther); ++i)
    {
        const char* theSection = zoConfigFile_GetSectionAt(anOther, i);
        for (size_t k = 0; k < zoConfigFile_GetKeyCount(anOther, theSection); ++k)
        {
            const char* theKey = zoConfigFile_GetKeyAt(anOther, theSection, k);
            const char* theValue = zoConfigFile_GetString(aFile, theSection, theKey, nullptr);
            const char* theOther = zoConfigFile_GetString(anOther, theSection, theKey, nullptr);
            if (!theOther || !theValue || std::strcmp(theValue, theOther) != 0) { return false; }
        }
    }
    return true;
}

void CheckSame(const zoConfigFile* aFile, const char* aProperty)
{
    zoConfigFile* theCopy = NewCopy(aFile);
    Require(Holds(aFile, theCopy) && Holds(theCopy, aFile), aProperty);
    zoConfigFile_Delete(theCopy);
}

void ReadAll(const zoConfigFile* aFile, const char* aSection, const char* aKey)
{
    const uint32 theNumber = zoConfigFile_GetUInt32(aFile, aSection, aKey, 7);
    Require(theNumber > UINT16_MAX || zoConfigFile_GetUInt16(aFile, aSection, aKey, 7) == theNumber, "16 bits");
    Require(theNumber > UINT8_MAX || zoConfigFile_GetUInt8(aFile, aSection, aKey, 7) == theNumber, "8 bits");
    const int32 theSigned = zoConfigFile_GetInt32(aFile, aSection, aKey, 7);
    const bool fIsUnsigned = theNumber == zoConfigFile_GetUInt32(aFile, aSection, aKey, 8); // "-0" is not
    Require(!fIsUnsigned || theNumber > INT32_MAX || static_cast<uint32>(theSigned) == theNumber, "signed");
    const int theOption = zoConfigFile_OptionIsSet(aFile, aSection, aKey, 7);
    Require(theOption == 0 || theOption == 1 || theOption == 7, "an option is set, or not, or none");
    std::free(zoConfigFile_GetStringWithSubstitution(aFile, aSection, aKey, "", zoStringSubstitution_Replace_HostName));
}

// From the last section on, since one without a key and a header is gone.
void RemoveFirstKeys(zoConfigFile* aFile)
{
    for (size_t i = zoConfigFile_GetSectionCount(aFile); i-- > 0;)
    {
        const char* theSection = zoConfigFile_GetSectionAt(aFile, i);
        const char* theKey = zoConfigFile_GetKeyAt(aFile, theSection, 0);
        if (theKey) { zoConfigFile_SetString(aFile, theSection, theKey, nullptr); }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    const std::string theBytes(reinterpret_cast<const char*>(aBytes), aSize);
    const HeapPeak thePeak;
    zoConfigFile* theFile = zoConfigFile_NewFromText(theBytes.data(), theBytes.size());
    size_t theLength = 0;
    char* theText = zoConfigFile_GetText(theFile, &theLength);
    RequireHeap(thePeak.Bytes(), aSize, 64);
    Require(std::string(theText, theLength) == theBytes, "an untouched text stays");
    std::free(theText);

    char* theWords = NewText(aBytes, aSize);
    Lines theLines = { theWords };
    const char* theSection = theLines.Take();
    const char* theKey = theLines.Take();
    const char* theValue = theLines.Take();
    ReadAll(theFile, theSection, theKey);
    CheckSame(theFile, "what was loaded is what is saved");
    zoConfigFile_SetString(theFile, theSection, theKey, theValue);
    const char* theStored = zoConfigFile_GetString(theFile, theSection, theKey, nullptr);
    Require(!theKey || !theValue || (theStored && std::strcmp(theStored, theValue) == 0), "a value is what was set");
    CheckSame(theFile, "what was set is what is saved");
    zoConfigFile_SetString(theFile, theSection, theKey, nullptr);
    Require(!zoConfigFile_GetString(theFile, theSection, theKey, nullptr), "a removed key is gone");
    CheckSame(theFile, "what was removed is not saved");
    RemoveFirstKeys(theFile);
    CheckSame(theFile, "what other lines come to stand behind stays");
    zoConfigFile_Delete(theFile);
    std::free(theWords);
    return 0;
}
