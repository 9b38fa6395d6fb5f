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

// With the UDN, which a duplicate doesn't get.
UPnPGroupInfo* NewDuplicate(UPnPGroupInfo* aGroup)
{
    UPnPGroupInfo* theDuplicate = UPnPGroupInfo_Duplicate(aGroup);
    theDuplicate->mGroupUDN = strdup(aGroup->mGroupUDN);
    return theDuplicate;
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

    RequireSame(aGroup, NewDuplicate(aGroup), "a duplicate with the same UDN is the same");
}

// Removes the metadata of a member and sets it again, one by one from the last on.
void TurnMetaData(UPnPGroupInfo* aGroup, const char* aUDN)
{
    for (size_t i = UPnPGroupInfo_GetMetaDataCount(aGroup, aUDN); i-- > 0;)
    {
        const char* theName = nullptr;
        const char* theValue = nullptr;
        UPnPGroupInfo_FetchMetaDataAt(aGroup, aUDN, i, &theName, &theValue);
        char* theNameCopy = strdup(theName);
        char* theValueCopy = strdup(theValue);
        UPnPGroupInfo_RemoveMetaData(aGroup, aUDN, theNameCopy);
        Require(UPnPGroupInfo_SetMetaData(aGroup, aUDN, theNameCopy, theValueCopy) == 1, "what was there can be set");
        free(theNameCopy);
        free(theValueCopy);
    }
}

// The first slave becomes the last, with its metadata, unless there is another of its UDN, or the master's.
void TurnSlaves(UPnPGroupInfo* aGroup)
{
    const UPnPGroupSlave* theFirst = UPnPGroupInfo_GetSlaveAt(aGroup, 0);
    if (!theFirst || strcmp(theFirst->mGroupedUDN, aGroup->mMasterGroupedUDN) == 0) { return; }
    for (size_t i = 1; i < UPnPGroupInfo_GetSlaveCount(aGroup); ++i)
    {
        if (strcmp(UPnPGroupInfo_GetSlaveAt(aGroup, i)->mGroupedUDN, theFirst->mGroupedUDN) == 0) { return; }
    }
    zoCustomHashTable* theTable = zoCustomHashTable_Duplicate(theFirst->mMetaData);
    UPnPGroupInfo_AddSlave(aGroup, theFirst->mGroupedUDN, theFirst->mGroupedFriendlyName, nullptr);
    const size_t theLast = UPnPGroupInfo_GetSlaveCount(aGroup) - 1;
    const char* theUDN = UPnPGroupInfo_GetSlaveAt(aGroup, theLast)->mGroupedUDN;
    Require(UPnPGroupInfo_GetSlaveIndexByGroupedUDN(aGroup, theUDN) == theLast, "a slave that is added is the last");
    for (size_t i = zoCustomHashTable_GetTupleCount(theTable); i-- > 0;)
    {
        UPnPGroupInfo_SetMetaData(aGroup, theUDN, zoCustomHashTable_GetKeyAtIndex(theTable, i),
                                  zoCustomHashTable_GetValueAtIndex(theTable, i));
    }
    zoCustomHashTable_Delete(theTable);
}

void CheckOrder(UPnPGroupInfo* aGroup)
{
    UPnPGroupInfo* theOther = NewDuplicate(aGroup);
    TurnMetaData(theOther, nullptr);
    TurnMetaData(theOther, theOther->mMasterGroupedUDN);
    TurnSlaves(theOther);
    Require(UPnPGroupInfo_SameAs(theOther, aGroup), "in no order either is a group another one");
    RequireSame(aGroup, theOther, "nor the other way round");
}

void CheckMembers(UPnPGroupInfo* aGroup)
{
    zoArray_t* theUDNs = UPnPGroupInfo_GetGroupedUDNs(aGroup);
    Require(zoArray_GetCount(theUDNs) == UPnPGroupInfo_GetSlaveCount(aGroup) + 1,
            "the master and the slaves have UDNs");
    for (size_t i = 0; i < zoArray_GetCount(theUDNs); ++i)
    {
        const char* theUDN = static_cast<const char*>(zoArray_At(theUDNs, i));
        char* theName = UPnPGroupInfo_FetchGroupedInfo(aGroup, theUDN);
        Require(UPnPGroupInfo_HasDevice(aGroup, theUDN) && theName, "a UDN of the group is one of a device in it");
        free(theName);
    }
    UPnPGroupInfo* theOther = NewDuplicate(aGroup);
    while (UPnPGroupInfo_GetSlaveCount(theOther) > 0)
    {
        const size_t theCount = UPnPGroupInfo_GetSlaveCount(theOther);
        UPnPGroupInfo_RemoveSlave(theOther, UPnPGroupInfo_GetSlaveAt(theOther, theCount - 1)->mGroupedUDN);
        Require(UPnPGroupInfo_GetSlaveCount(theOther) == theCount - 1, "one slave less");
        Require(!UPnPGroupInfo_SameAs(aGroup, theOther), "which makes it another group");
    }
    UPnPGroupInfo_Delete(theOther);
    zoArray_Delete(theUDNs);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    zoLog_SetSink([](int, int, const char*, int, const char*, void*) {}, nullptr); // bad inputs are many
    char* theText = NewText(aBytes, aSize);
    char* theCopy = strdup(theText);
    const HeapPeak thePeak;
    UPnPGroupInfo* theGroup = UPnPGroupInfo_New("c", theText);
    RequireHeap(thePeak.Bytes(), strlen(theText), 64);
    Require(strcmp(theText, theCopy) == 0, "the text stays as it is");
    if (UPnPGroupInfo_IsValid(theGroup))
    {
        CheckForms(theGroup);
        CheckOrder(theGroup);
        CheckMembers(theGroup);
    }
    UPnPGroupInfo_Delete(theGroup);
    free(theCopy);
    free(theText);
    return 0;
}
