#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPConfig.h>
#include <initializer_list>
#include <zoLog/Log.h>

// The bytes are the text of a configuration file, whose values are read into every record from its first section.

namespace
{

// The records' bytes before and after another look by their validators.
template <typename Record>
void CheckValid(Record* aRecord, void (*aValidate)(Record*))
{
    Record theBefore;
    memcpy(&theBefore, aRecord, sizeof(Record));
    aValidate(aRecord);
    Require(memcmp(&theBefore, aRecord, sizeof(Record)) == 0, "what was fetched is within its bounds");
}

// Reads each field of a description by itself, as it would come with another default.
void CheckFields(int aRecord, zoConfigFile* aFile, const char* aSection)
{
    const UPnPConfigRecord_t* theRecord = UPnPConfig_GetRecord(aRecord);
    for (uint16 i = 0; i < theRecord->mFieldCount; ++i)
    {
        const UPnPConfigField_t& theField = theRecord->mFields[i];
        const uint32 theNumber = UPnPConfig_ReadNumber(&theField, aFile, aSection, 1);
        const bool fIsNumber = theField.mValue == kUPnPConfigValue_Number;
        Require(!fIsNumber || theField.mSize >= 4 || theNumber >> (8 * theField.mSize) == 0, "a number fits its field");
    }
}

void FetchSockets(zoConfigFile* aFile, const char* aSection, zoSocketPolicy* aPolicy)
{
    ILibAsyncSocketConfig* theSocket = UPnPConfig_CreateAsyncSocketConfig();
    UPnPConfig_FetchAsyncSocketConfig(theSocket, aFile, aSection, aPolicy);
    CheckValid(theSocket, ILibAsyncSocket_ValidateConfiguration);
    ILibAsyncSocketConfig* theClone = UPnPConfig_CloneAsyncSocketConfig(theSocket);
    CheckValid(theClone, ILibAsyncSocket_ValidateConfiguration);
    free(theClone);
    free(theSocket);
    ILibAsyncServerSocketConfig* theServerSocket = UPnPConfig_CreateAsyncServerSocketConfig();
    UPnPConfig_FetchAsyncServerSocketConfig(theServerSocket, aFile, aSection, aPolicy);
    CheckValid(theServerSocket, ILibAsyncServerSocket_ValidateConfiguration);
    free(theServerSocket);
}

void FetchDiscovery(zoConfigFile* aFile, const char* aSection, zoSocketPolicy* aPolicy)
{
    ILibSSDPConfig* theSSDP = UPnPConfig_CreateSSDPConfig();
    UPnPConfig_FetchSSDPConfig(theSSDP, aFile, aSection, aPolicy);
    CheckValid(theSSDP, ILibSSDP_ValidateConfiguration);
    UPnPConfig_FreeSSDPConfig(theSSDP);
    free(theSSDP);
    ILibNoSSDPConfig* theNoSSDP = UPnPConfig_CreateNoSSDPConfig();
    UPnPConfig_FetchNoSSDPConfig(theNoSSDP, aFile, aSection, aPolicy);
    CheckValid(theNoSSDP, ILibNoSSDPClient_ValidateConfiguration);
    free(theNoSSDP);
}

void FetchWeb(zoConfigFile* aFile, const char* aSection, zoSocketPolicy* aPolicy, UPnPHook* aHook)
{
    ILibWebServerConfig* theServer = UPnPConfig_CreateWebServerConfig();
    UPnPConfig_FetchWebServerConfig(theServer, aFile, aSection, aPolicy, aHook, nullptr, nullptr);
    CheckValid(theServer, ILibWebServer_ValidateConfiguration);
    ILibWebServerConfig* theClone = UPnPConfig_CloneWebServerConfig(theServer);
    UPnPConfig_FreeWebServerConfig(theClone);
    free(theClone);
    UPnPConfig_FreeWebServerConfig(theServer);
    free(theServer);
    ILibWebClientConfig* theClient = UPnPConfig_CreateWebClientConfig();
    UPnPConfig_FetchWebClientConfig(theClient, aFile, aSection, aPolicy);
    CheckValid(theClient, ILibWebClient_ValidateConfiguration);
    free(theClient);
    UPnPControlPointConfig* thePoint = UPnPConfig_CreateControlPointConfig();
    UPnPConfig_FetchControlPointConfig(thePoint, aFile, aSection, aPolicy, aHook);
    UPnPConfig_FreeControlPointConfig(thePoint);
    free(thePoint);
}

void AddToTable(zoConfigFile* aFile, const char* aSection)
{
    zoCustomHashTable* theTable = zoCustomHashTable_New_String_String();
    for (size_t i = 0; i < zoConfigFile_GetKeyCount(aFile, aSection); ++i)
    {
        const char* theKey = zoConfigFile_GetKeyAt(aFile, aSection, i);
        UPnPConfig_AddToHashTable(theTable, "a", aFile, aSection, theKey, "default", 5);
        UPnPConfig_AddToHashTableIfUnspecified(theTable, "b", aFile, aSection, theKey, "default", 5);
        for (const char* theName : { "a", "b" })
        {
            const char* theText = zoCustomHashTable_Get(theTable, theName);
            Require(!theText || strlen(theText) <= 5, "a text is cut");
        }
    }
    zoCustomHashTable_Delete(theTable);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    _zoLog_Level = ZOLOGLEVEL_NONE;
    zoConfigFile* theFile = zoConfigFile_NewFromText(reinterpret_cast<const char*>(aBytes), aSize);
    const char* theSection = zoConfigFile_GetSectionAt(theFile, 0);
    if (!theSection) { theSection = ""; }
    zoSocketPolicy* thePolicy = UPnPConfig_CreateSocketPolicy(theFile, theSection);
    UPnPHook* theHook = UPnPHook_New();
    for (int i = 0; i < kUPnPConfigRecord_Count; ++i)
        CheckFields(i, theFile, theSection);
    FetchSockets(theFile, theSection, thePolicy);
    FetchDiscovery(theFile, theSection, thePolicy);
    FetchWeb(theFile, theSection, thePolicy, theHook);
    AddToTable(theFile, theSection);
    UPnPHook_Delete(theHook);
    zoSocketPolicy_Delete(thePolicy);
    zoConfigFile_Delete(theFile);
    return 0;
}
