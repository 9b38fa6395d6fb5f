#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <zoLog/Log.h>

// The bytes are a groupInfo document.

namespace
{

bool HasQuote(const char* aFriendlyName, const char* anUDN) { return strchr(aFriendlyName, '"') || strchr(anUDN, '"'); }

// Whether a name or a UDN holds a quote, which would be written as it is.
bool HasQuote(UPnPGroupInfo* aGroup)
{
    bool fHas = HasQuote(aGroup->mGroupFriendlyName, aGroup->mGroupUDN) ||
                HasQuote(aGroup->mMasterGroupedFriendlyName, aGroup->mMasterGroupedUDN);
    for (size_t i = 0; !fHas && i < UPnPGroupInfo_GetSlaveCount(aGroup); ++i)
    {
        const UPnPGroupSlave* theSlave = UPnPGroupInfo_GetSlaveAt(aGroup, i);
        fHas = HasQuote(theSlave->mGroupedFriendlyName, theSlave->mGroupedUDN);
    }
    return fHas;
}

void RequireSame(UPnPGroupInfo* aGroup, UPnPGroupInfo* aCopy, const char* aProperty)
{
    Require(aCopy && UPnPGroupInfo_SameAs(aGroup, aCopy), aProperty);
    UPnPGroupInfo_Delete(aCopy);
}

void CheckForms(UPnPGroupInfo* aGroup)
{
    char* theXML = UPnPGroupInfo_GetXML(aGroup);
    if (!HasQuote(aGroup)) { RequireSame(aGroup, UPnPGroupInfo_New("c", theXML), "what is written is read back"); }
    free(theXML);

    zoConfigFile* theFile = zoConfigFile_New(nullptr);
    UPnPGroupInfo_Store(aGroup, theFile);
    size_t theLength = 0;
    char* theText = zoConfigFile_GetText(theFile, &theLength);
    zoConfigFile* theLoadedFile = zoConfigFile_NewFromText(theText, theLength);
    RequireSame(aGroup, UPnPGroupInfo_NewConfig(theFile, "c"), "what is stored is loaded");
    RequireSame(aGroup, UPnPGroupInfo_NewConfig(theLoadedFile, "c"), "what is saved is loaded");
    zoConfigFile_Delete(theLoadedFile);
    free(theText);
    zoConfigFile_Delete(theFile);

    UPnPGroupInfo* theDuplicate = UPnPGroupInfo_Duplicate(aGroup);
    theDuplicate->mGroupUDN = strdup(aGroup->mGroupUDN);
    RequireSame(aGroup, theDuplicate, "a duplicate with the same UDN is the same");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    zoLog_SetSink([](int, int, const char*, int, const char*, void*) {}, nullptr); // bad inputs are many
    char* theText = NewText(aBytes, aSize);
    char* theCopy = strdup(theText);
    UPnPGroupInfo* theGroup = UPnPGroupInfo_New("c", theText);
    Require(strcmp(theText, theCopy) == 0, "the text stays as it is");
    if (UPnPGroupInfo_IsValid(theGroup)) { CheckForms(theGroup); }
    UPnPGroupInfo_Delete(theGroup);
    free(theCopy);
    free(theText);
    return 0;
}
