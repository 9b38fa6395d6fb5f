#include <UPnP/Utilities/Groups/XML.h>

#include <Shared/Append.h>
#include <Shared/Sizes.h>
#include <UPnP/Utilities/Groups/Elements.h>
#include <UPnP/Utilities/Groups/Slave.h>
#include <iterator>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

namespace Groups
{

// ---- Writing ----

static void AppendEscaped(zoBuffer* aBuffer, const char* aText)
{
    const size_t theLength = ILibXmlEscapeLength(aText);
    ILibXmlEscape(Shared::Reserve(aBuffer, Shared::AddSizes(theLength, 1)), aText); // with a NUL
    aBuffer->mPos += theLength;
}

void AppendMetaData(zoBuffer* aBuffer, zoCustomHashTable* aTable)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aTable);
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theKey = zoCustomHashTable_GetKeyAtIndex(aTable, i);
        Shared::AppendLiteral(aBuffer, " ");
        zoBuffer_AppendStr(aBuffer, theKey);
        Shared::AppendLiteral(aBuffer, "=\"");
        AppendEscaped(aBuffer, zoCustomHashTable_Get(aTable, theKey));
        Shared::AppendLiteral(aBuffer, "\"");
    }
}

static void AppendMember(zoBuffer* aBuffer, const char* aStart, const char* aGroupedFriendlyName,
                         const char* aGroupedUDN, zoCustomHashTable* aMetaData)
{
    zoBuffer_AppendStr(aBuffer, aStart);
    Shared::AppendLiteral(aBuffer, " groupedFriendlyName=\"");
    zoBuffer_AppendStr(aBuffer, aGroupedFriendlyName);
    Shared::AppendLiteral(aBuffer, "\" groupedUDN=\"");
    zoBuffer_AppendStr(aBuffer, aGroupedUDN);
    Shared::AppendLiteral(aBuffer, "\"");
    AppendMetaData(aBuffer, aMetaData);
    Shared::AppendLiteral(aBuffer, "/>");
}

char* WriteGroup(UPnPGroupInfo* aGroupInfo)
{
    zoBuffer* theBuffer = zoBuffer_New(512);
    Shared::AppendLiteral(theBuffer, "<groupInfo friendlyName=\"");
    zoBuffer_AppendStr(theBuffer, aGroupInfo->mGroupFriendlyName);
    Shared::AppendLiteral(theBuffer, "\" UDN=\"");
    zoBuffer_AppendStr(theBuffer, aGroupInfo->mGroupUDN);
    Shared::AppendLiteral(theBuffer, "\"");
    AppendMetaData(theBuffer, aGroupInfo->mGroupMetaData);
    Shared::AppendLiteral(theBuffer, ">");
    AppendMember(theBuffer, "\n    <master", aGroupInfo->mMasterGroupedFriendlyName, aGroupInfo->mMasterGroupedUDN,
                 aGroupInfo->mMasterMetaData);
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        const UPnPGroupSlave* theSlave = UPnPGroupInfo_GetSlaveAt(aGroupInfo, i);
        AppendMember(theBuffer, "\n    <slave", theSlave->mGroupedFriendlyName, theSlave->mGroupedUDN,
                     theSlave->mMetaData);
    }
    Shared::AppendLiteral(theBuffer, "\n</groupInfo>");
    return Shared::TakeText(theBuffer);
}

// ---- Reading ----

// The attributes that are fields; all others are metadata.
static constexpr std::string_view kGroupAttributes[] = { "friendlyName", "UDN" };
static constexpr std::string_view kMemberAttributes[] = { "groupedFriendlyName", "groupedUDN" };

static void AddMetaData(zoCustomHashTable* aTable, const ILibXMLAttribute* anAttribute)
{
    const std::string_view theName = Shared::QualifiedName(anAttribute);
    const std::string_view theValue = ValueOf(anAttribute);
    char* theKey = zoStrndup(theName.data(), theName.size());
    char* theUnescaped = zoStrndup(theValue.data(), theValue.size());
    ILibInPlaceXmlUnEscape(theUnescaped);
    zoCustomHashTable_AddValueAllocated(aTable, theKey, theUnescaped);
    free(theKey);
}

// The two attributes that are named go to the fields as they are, all others to the table.
static void ReadAttributes(ILibXMLNode* anElement, const std::string_view (&aNames)[2], char** aFriendlyName,
                           char** aUDN, zoCustomHashTable* aMetaData)
{
    char** const theFields[] = { aFriendlyName, aUDN };
    const Attributes theAttributes(anElement);
    for (const ILibXMLAttribute* theAttribute = theAttributes.mFirst; theAttribute; theAttribute = theAttribute->Next)
    {
        const size_t theIndex = FindName(theAttribute, aNames);
        const std::string_view theValue = ValueOf(theAttribute);
        if (theIndex < std::size(theFields)) { zoStrnReplace(theFields[theIndex], theValue.data(), theValue.size()); }
        else { AddMetaData(aMetaData, theAttribute); }
    }
}

static void ReadMaster(UPnPGroupInfo* aGroupInfo, const ILibXMLNode* aRoot)
{
    ILibXMLNode* theMaster = NextElement(aRoot, aRoot, "master");
    if (!theMaster) { return; }
    ReadAttributes(theMaster, kMemberAttributes, &aGroupInfo->mMasterGroupedFriendlyName,
                   &aGroupInfo->mMasterGroupedUDN, aGroupInfo->mMasterMetaData);
    aGroupInfo->mfHasMasterSet = aGroupInfo->mMasterGroupedUDN ? 1 : 0;
}

// NULL when one of the slave's two attributes is absent.
static UPnPGroupSlave* NewSlave(ILibXMLNode* anElement)
{
    UPnPGroupSlave* theSlave = UPnPGroupSlave_S_New(nullptr, nullptr, nullptr);
    ReadAttributes(anElement, kMemberAttributes, &theSlave->mGroupedFriendlyName, &theSlave->mGroupedUDN,
                   theSlave->mMetaData);
    if (theSlave->mGroupedFriendlyName && theSlave->mGroupedUDN) { return theSlave; }
    UPnPGroupSlave_S_Delete(theSlave);
    return nullptr;
}

// Returns false at the first slave that is not complete.
static bool ReadSlaves(UPnPGroupInfo* aGroupInfo, const ILibXMLNode* aRoot)
{
    for (ILibXMLNode* theElement = NextElement(aRoot, aRoot, "slave"); theElement;
         theElement = NextElement(aRoot, theElement, "slave"))
    {
        UPnPGroupSlave* theSlave = NewSlave(theElement);
        if (!theSlave) { return false; }
        zoArray_Append(aGroupInfo->mSlaves, theSlave);
    }
    return true;
}

GroupError ReadGroup(const char* aText, UPnPGroupInfo* aGroupInfo)
{
    const Document theDocument(aText);
    ILibXMLNode* theRoot = theDocument.mNodes;
    if (!theDocument.mfIsWellFormed || !IsStartTag(theRoot, "groupInfo")) { return kGroup_NotAGroup; }
    ReadAttributes(theRoot, kGroupAttributes, &aGroupInfo->mGroupFriendlyName, &aGroupInfo->mGroupUDN,
                   aGroupInfo->mGroupMetaData);
    ReadMaster(aGroupInfo, theRoot);
    if (!UPnPGroupInfo_IsValid(aGroupInfo)) { return kGroup_Incomplete; }
    return ReadSlaves(aGroupInfo, theRoot) ? kGroup_Good : kGroup_IncompleteSlave;
}

} // namespace Groups
