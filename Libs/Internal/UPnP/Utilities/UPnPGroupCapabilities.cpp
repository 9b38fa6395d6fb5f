#include <UPnP/Utilities/UPnPGroupCapabilities.h>

#include <UPnP/Stack/ILibString.h>
#include <UPnP/Stack/ILibXML.h>
#include <initializer_list>
#include <stdlib.h>
#include <string.h>
#include <zoLog/Log.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoMemory.h>

static void Log_Warning(int aLine, const char* aFormat, ...) __attribute__((format(printf, 2, 3)));
static void Log_Warning(int aLine, const char* aFormat, ...)
{
    zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_WARNING, ZOLOG_M_UPNPGROUP);
    if (!theRecord) { return; }
    va_list theArguments;
    va_start(theArguments, aFormat);
    zoLog_SetLocation(theRecord, __FILE__, aLine);
    zoLog_Append_V(theRecord, aFormat, theArguments);
    va_end(theArguments);
    zoLog_End(theRecord);
}

// NULL equals nothing.
static bool AreEqual(const char* aText1, const char* aText2) { return aText1 && aText2 && strcmp(aText1, aText2) == 0; }

// ---- Elements and attributes ----

// Names in arrays, as the look-ups of words want them.
static const char* kGroupCapabilitiesElement[] = { "groupCapabilities", nullptr };
static const char* kGroupCapabilityElement[] = { "groupCapability", nullptr };
static const char* kGroupInfoElement[] = { "groupInfo", nullptr };
static const char* kMasterElement[] = { "master", nullptr };
static const char* kSlaveElement[] = { "slave", nullptr };

static ILibXMLNode* Parse(const char* aText)
{
    return aText ? ILibParseXML(const_cast<char*>(aText), 0, strlen(aText)) : nullptr; // which only reads it
}

static bool IsStartTag(const ILibXMLNode* aNode, const char** aName)
{
    return aNode && aNode->StartTag &&
           ILibString_FindSubStringInArray(aNode->Name, static_cast<size_t>(aNode->NameLength), aName) == 0;
}

// The next element of that name inside aRoot, at any depth; aNode is aRoot or lies inside.
static ILibXMLNode* NextElement(const ILibXMLNode* aRoot, const ILibXMLNode* aNode, const char** aName)
{
    ILibXMLNode* theNode = aNode->Next;
    while (theNode && theNode != aRoot->ClosingTag && !IsStartTag(theNode, aName))
        theNode = theNode->Next;
    return theNode != aRoot->ClosingTag ? theNode : nullptr;
}

static const char* NameOf(const ILibXMLAttribute* anAttribute)
{
    return anAttribute->Prefix ? anAttribute->Prefix : anAttribute->Name;
}

// With its prefix.
static size_t NameLengthOf(const ILibXMLAttribute* anAttribute)
{
    return static_cast<size_t>(anAttribute->Name + anAttribute->NameLength - NameOf(anAttribute));
}

static int FindName(const ILibXMLAttribute* anAttribute, const char** aNames)
{
    return ILibString_FindSubStringInArray(NameOf(anAttribute), NameLengthOf(anAttribute), aNames);
}

static char* NewValue(const ILibXMLAttribute* anAttribute)
{
    return zoStrndup(anAttribute->Value, static_cast<size_t>(anAttribute->ValueLength));
}

// ---- Group capabilities ----

struct UPnPGroupCapabilities
{
    zoArray_t* mArray; // of UPnPGroupCapability*, which it owns
};

namespace
{

enum CapabilityAttribute
{
    kCapability,
    kGroupedUDN,
    kUDN,
    kMode,
    kCapabilityAttribute_Count
};

} // namespace

static const char* kCapabilityAttributes[] = { "capability", "groupedUDN", "UDN", "mode", nullptr };

static void DeleteCapability(void* aCapability)
{
    UPnPGroupCapability* theCapability = static_cast<UPnPGroupCapability*>(aCapability);
    free(theCapability->mName);
    free(theCapability->mGroupedUDN);
    free(theCapability);
}

static bool IsValue(const ILibXMLAttribute* anAttribute, const char* aWord)
{
    const size_t theLength = strlen(aWord);
    return anAttribute && static_cast<size_t>(anAttribute->ValueLength) == theLength &&
           memcmp(anAttribute->Value, aWord, theLength) == 0;
}

// Without the attribute, too.
static int ModeOf(const ILibXMLAttribute* anAttribute)
{
    if (IsValue(anAttribute, "slave")) { return kUPnPGroupMode_Slave; }
    return IsValue(anAttribute, "master") ? kUPnPGroupMode_Master : kUPnPGroupMode_None;
}

static void AddCapability(UPnPGroupCapabilities* aCapabilities, ILibXMLNode* anElement)
{
    const ILibXMLAttribute* theGiven[kCapabilityAttribute_Count] = {};
    ILibXMLAttribute* theList = ILibGetXMLAttributes(anElement);
    for (const ILibXMLAttribute* theAttribute = theList; theAttribute; theAttribute = theAttribute->Next)
    {
        const int theIndex = FindName(theAttribute, kCapabilityAttributes);
        if (theIndex >= 0) { theGiven[theIndex] = theAttribute; }
    }
    if (theGiven[kCapability] && theGiven[kGroupedUDN] && theGiven[kUDN])
    {
        UPnPGroupCapability* theCapability =
            static_cast<UPnPGroupCapability*>(zoMallocZeroed(sizeof(UPnPGroupCapability)));
        theCapability->mName = NewValue(theGiven[kCapability]);
        theCapability->mGroupedUDN = NewValue(theGiven[kGroupedUDN]);
        theCapability->mMode = ModeOf(theGiven[kMode]);
        zoArray_Append(aCapabilities->mArray, theCapability);
    }
    else
    {
        Log_Warning(__LINE__, "UPnPGroupCapabilities: Found an invalid 'groupCapability' description in a device\n");
    }
    ILibDestructXMLAttributeList(theList);
}

UPnPGroupCapabilities* UPnPGroupCapabilities_New(const char* anXMLGroupCapability)
{
    UPnPGroupCapabilities* theCapabilities =
        static_cast<UPnPGroupCapabilities*>(zoMallocZeroed(sizeof(UPnPGroupCapabilities)));
    theCapabilities->mArray = zoArray_New();
    zoArray_SetFreeFunc(theCapabilities->mArray, DeleteCapability);

    ILibXMLNode* theNodes = Parse(anXMLGroupCapability);
    if (ILibProcessXMLNodeList(theNodes) != kILibProcessXML_NoError)
    {
        Log_Warning(__LINE__, "UPnPGroupCapabilities: Unable to parse XML for 'groupCapabilities' in a device\n");
    }
    else if (IsStartTag(theNodes, kGroupCapabilitiesElement))
    {
        ILibXMLNode* theElement = NextElement(theNodes, theNodes, kGroupCapabilityElement);
        if (theElement) { AddCapability(theCapabilities, theElement); }
    }
    ILibDestructXMLNodeList(theNodes);
    return theCapabilities;
}

void UPnPGroupCapabilities_Delete(UPnPGroupCapabilities* aCapabilities)
{
    if (!aCapabilities) { return; }
    zoArray_Delete(aCapabilities->mArray);
    free(aCapabilities);
}

static UPnPGroupCapability* FindCapability(UPnPGroupCapabilities* aCapabilities, const char* aName)
{
    const size_t theCount = UPnPGroupCapabilities_GetCount(aCapabilities);
    for (size_t i = 0; i < theCount; ++i)
    {
        UPnPGroupCapability* theCapability = UPnPGroupCapabilities_GetAt(aCapabilities, i);
        if (AreEqual(theCapability->mName, aName)) { return theCapability; }
    }
    return nullptr;
}

UPnPGroupCapability* UPnPGroupCapabilities_GetGroup(UPnPGroupCapabilities* aCapabilities, const char* aCapability)
{
    if (!aCapabilities) { return nullptr; }
    UPnPGroupCapability* theCapability = FindCapability(aCapabilities, aCapability);
    if (!theCapability)
    {
        Log_Warning(__LINE__, "UPnPGroupCapabilities: Group for capability '%s' non found\n",
                    aCapability ? aCapability : "NULL");
    }
    return theCapability;
}

const char* UPnPGroupCapabilities_GetActive(UPnPGroupCapabilities* aCapabilities)
{
    const size_t theCount = UPnPGroupCapabilities_GetCount(aCapabilities);
    for (size_t i = 0; i < theCount; ++i)
    {
        const UPnPGroupCapability* theCapability = UPnPGroupCapabilities_GetAt(aCapabilities, i);
        if (theCapability->mMode != kUPnPGroupMode_None) { return theCapability->mName; }
    }
    return "";
}

size_t UPnPGroupCapabilities_GetCount(UPnPGroupCapabilities* aCapabilities)
{
    return aCapabilities ? zoArray_GetCount(aCapabilities->mArray) : 0;
}

UPnPGroupCapability* UPnPGroupCapabilities_GetAt(UPnPGroupCapabilities* aCapabilities, size_t anIndex)
{
    if (anIndex >= UPnPGroupCapabilities_GetCount(aCapabilities)) { return nullptr; }
    return static_cast<UPnPGroupCapability*>(zoArray_At(aCapabilities->mArray, anIndex));
}

int UPnPGroupCapabilities_Has(UPnPGroupCapabilities* aCapabilities, const char* aCapability)
{
    return FindCapability(aCapabilities, aCapability) != nullptr;
}

// ---- Metadata ----

int UPnPGroupMetaData_Set(zoCustomHashTable* aMetaDataHashTable, const char* aKey, const char* aValue)
{
    if (!aMetaDataHashTable || zoStrEmpty(aKey) || !aValue) { return 0; }
    zoCustomHashTable_Add(aMetaDataHashTable, aKey, aValue);
    return 1;
}

void UPnPGroupMetaData_Remove(zoCustomHashTable* aMetaDataHashTable, const char* aKey)
{
    if (!aMetaDataHashTable || zoStrEmpty(aKey)) { return; }
    zoCustomHashTable_Remove(aMetaDataHashTable, aKey);
}

int UPnPGroupMetaData_SameAs(zoCustomHashTable* aMetaDataHashTable1, zoCustomHashTable* aMetaDataHashTable2)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aMetaDataHashTable1);
    if (theCount != zoCustomHashTable_GetTupleCount(aMetaDataHashTable2)) { return 0; }
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theKey = zoCustomHashTable_GetKeyAtIndex(aMetaDataHashTable1, i);
        const char* theValue = zoCustomHashTable_Get(aMetaDataHashTable1, theKey);
        if (!AreEqual(theValue, zoCustomHashTable_Get(aMetaDataHashTable2, theKey))) { return 0; }
    }
    return 1;
}

// ---- Slaves ----

static UPnPGroupSlave* UPnPGroupSlave_S_New(const char* aGroupedFriendlyName, const char* aGroupedUDN, const char* aUDN)
{
    UPnPGroupSlave* theSlave = static_cast<UPnPGroupSlave*>(zoMallocZeroed(sizeof(UPnPGroupSlave)));
    theSlave->mGroupedFriendlyName = zoStrdup(aGroupedFriendlyName);
    theSlave->mGroupedUDN = zoStrdup(aGroupedUDN);
    theSlave->mUDN = zoStrdup(aUDN);
    theSlave->mMetaData = zoCustomHashTable_New_String_String();
    return theSlave;
}

static void UPnPGroupSlave_S_Delete(void* aSlave)
{
    UPnPGroupSlave* theSlave = static_cast<UPnPGroupSlave*>(aSlave);
    free(theSlave->mGroupedFriendlyName);
    free(theSlave->mGroupedUDN);
    free(theSlave->mUDN);
    zoCustomHashTable_Delete(theSlave->mMetaData);
    free(theSlave);
}

static UPnPGroupSlave* UPnPGroupSlave_S_Duplicate(const UPnPGroupSlave* aSlave)
{
    UPnPGroupSlave* theSlave = static_cast<UPnPGroupSlave*>(zoMallocZeroed(sizeof(UPnPGroupSlave)));
    theSlave->mGroupedFriendlyName = zoStrdup(aSlave->mGroupedFriendlyName);
    theSlave->mGroupedUDN = zoStrdup(aSlave->mGroupedUDN);
    theSlave->mMetaData = zoCustomHashTable_Duplicate(aSlave->mMetaData);
    return theSlave;
}

static bool UPnPGroupSlave_S_IsValid(const UPnPGroupSlave* aSlave)
{
    return !zoStrEmpty(aSlave->mGroupedFriendlyName) && !zoStrEmpty(aSlave->mGroupedUDN);
}

static bool UPnPGroupSlave_S_SameAs(const UPnPGroupSlave* aSlave, const UPnPGroupSlave* aCompareSlave)
{
    return UPnPGroupSlave_S_IsValid(aSlave) && UPnPGroupSlave_S_IsValid(aCompareSlave) &&
           AreEqual(aSlave->mGroupedFriendlyName, aCompareSlave->mGroupedFriendlyName) &&
           AreEqual(aSlave->mGroupedUDN, aCompareSlave->mGroupedUDN) &&
           UPnPGroupMetaData_SameAs(aSlave->mMetaData, aCompareSlave->mMetaData);
}

// ---- Groups ----

UPnPGroupInfo* UPnPGroupInfo_NewEx(const char* aCapability)
{
    UPnPGroupInfo* theGroup = static_cast<UPnPGroupInfo*>(zoMallocZeroed(sizeof(UPnPGroupInfo)));
    theGroup->mSlaves = zoArray_New();
    zoArray_SetFreeFunc(theGroup->mSlaves, UPnPGroupSlave_S_Delete);
    theGroup->mCapability = zoStrdup(aCapability);
    theGroup->mMasterMetaData = zoCustomHashTable_New_String_String();
    theGroup->mGroupMetaData = zoCustomHashTable_New_String_String();
    return theGroup;
}

static void ReplaceTable(zoCustomHashTable** aTarget, const zoCustomHashTable* aTable)
{
    zoCustomHashTable_Delete(*aTarget);
    *aTarget = zoCustomHashTable_Duplicate(aTable);
}

UPnPGroupInfo* UPnPGroupInfo_Duplicate(UPnPGroupInfo* aGroupInfo)
{
    if (!aGroupInfo) { return nullptr; }
    UPnPGroupInfo* theGroup = UPnPGroupInfo_NewEx(aGroupInfo->mCapability);
    theGroup->mGroupFriendlyName = zoStrdup(aGroupInfo->mGroupFriendlyName);
    theGroup->mOriginalGroupUDN =
        zoStrdup(aGroupInfo->mOriginalGroupUDN ? aGroupInfo->mOriginalGroupUDN : aGroupInfo->mGroupUDN);
    theGroup->mfHasMasterSet = aGroupInfo->mfHasMasterSet;
    theGroup->mMasterGroupedFriendlyName = zoStrdup(aGroupInfo->mMasterGroupedFriendlyName);
    theGroup->mMasterGroupedUDN = zoStrdup(aGroupInfo->mMasterGroupedUDN);
    ReplaceTable(&theGroup->mMasterMetaData, aGroupInfo->mMasterMetaData);
    ReplaceTable(&theGroup->mGroupMetaData, aGroupInfo->mGroupMetaData);
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
        zoArray_Append(theGroup->mSlaves, UPnPGroupSlave_S_Duplicate(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i)));
    return theGroup;
}

void UPnPGroupInfo_Delete(UPnPGroupInfo* aGroupInfo)
{
    if (!aGroupInfo) { return; }
    zoArray_Delete(aGroupInfo->mSlaves);
    free(aGroupInfo->mCapability);
    free(aGroupInfo->mGroupFriendlyName);
    free(aGroupInfo->mGroupUDN);
    free(aGroupInfo->mOriginalGroupUDN);
    free(aGroupInfo->mMasterGroupedFriendlyName);
    free(aGroupInfo->mMasterGroupedUDN);
    zoCustomHashTable_Delete(aGroupInfo->mMasterMetaData);
    zoCustomHashTable_Delete(aGroupInfo->mGroupMetaData);
    free(aGroupInfo);
}

int UPnPGroupInfo_IsValid(UPnPGroupInfo* aGroupInfo)
{
    if (!aGroupInfo) { return 0; }
    for (const char* theText : { aGroupInfo->mGroupFriendlyName, aGroupInfo->mGroupUDN,
                                 aGroupInfo->mMasterGroupedFriendlyName, aGroupInfo->mMasterGroupedUDN })
    {
        if (zoStrEmpty(theText)) { return 0; }
    }
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        if (!UPnPGroupSlave_S_IsValid(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i))) { return 0; }
    }
    return 1;
}

// ---- Slaves in an order of their own ----

namespace
{

struct Pair
{
    const char* mKey;
    const char* mValue;
};

// A slave with the pairs of its table by key, so that slaves that are the same compare equal.
struct OrderedSlave
{
    const UPnPGroupSlave* mSlave;
    Pair* mPairs;
    size_t mPairCount;
};

} // namespace

static int ComparePairs(const void* aLeft, const void* aRight)
{
    const Pair* theLeft = static_cast<const Pair*>(aLeft);
    const Pair* theRight = static_cast<const Pair*>(aRight);
    const int theOrder = strcmp(theLeft->mKey, theRight->mKey);
    return theOrder != 0 ? theOrder : strcmp(theLeft->mValue, theRight->mValue);
}

// Of valid slaves.
static int CompareSlaves(const void* aLeft, const void* aRight)
{
    const OrderedSlave* theLeft = static_cast<const OrderedSlave*>(aLeft);
    const OrderedSlave* theRight = static_cast<const OrderedSlave*>(aRight);
    int theOrder = strcmp(theLeft->mSlave->mGroupedUDN, theRight->mSlave->mGroupedUDN);
    if (theOrder == 0)
    {
        theOrder = strcmp(theLeft->mSlave->mGroupedFriendlyName, theRight->mSlave->mGroupedFriendlyName);
    }
    if (theOrder == 0)
    {
        theOrder = (theLeft->mPairCount > theRight->mPairCount) - (theLeft->mPairCount < theRight->mPairCount);
    }
    for (size_t i = 0; i < theLeft->mPairCount && theOrder == 0; ++i)
        theOrder = ComparePairs(&theLeft->mPairs[i], &theRight->mPairs[i]);
    return theOrder;
}

// The pairs are the caller's.
static OrderedSlave NewOrderedSlave(const UPnPGroupSlave* aSlave)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aSlave->mMetaData);
    Pair* thePairs = static_cast<Pair*>(zoMalloc(theCount * sizeof(Pair)));
    for (size_t i = 0; i < theCount; ++i)
    {
        thePairs[i] = { zoCustomHashTable_GetKeyAtIndex(aSlave->mMetaData, i),
                        zoCustomHashTable_GetValueAtIndex(aSlave->mMetaData, i) };
    }
    qsort(thePairs, theCount, sizeof(Pair), ComparePairs);
    return { aSlave, thePairs, theCount };
}

// The slaves of a group, ordered.
class OrderedSlaves
{
public:
    explicit OrderedSlaves(UPnPGroupInfo* aGroupInfo) : mCount(UPnPGroupInfo_GetSlaveCount(aGroupInfo))
    {
        mSlaves = static_cast<OrderedSlave*>(zoMalloc(mCount * sizeof(OrderedSlave)));
        for (size_t i = 0; i < mCount; ++i)
            mSlaves[i] = NewOrderedSlave(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i));
        qsort(mSlaves, mCount, sizeof(OrderedSlave), CompareSlaves);
    }
    ~OrderedSlaves()
    {
        for (size_t i = 0; i < mCount; ++i)
            free(mSlaves[i].mPairs);
        free(mSlaves);
    }
    OrderedSlaves(const OrderedSlaves&) = delete;
    OrderedSlaves& operator=(const OrderedSlaves&) = delete;

    bool Contain(const OrderedSlave* aSlave) const
    {
        return bsearch(aSlave, mSlaves, mCount, sizeof(OrderedSlave), CompareSlaves) != nullptr;
    }

private:
    size_t mCount;
    OrderedSlave* mSlaves;
};

// Of valid groups with as many slaves. Several slaves of the first may find the same slave of the second.
static bool HaveSameSlaves(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo)
{
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    size_t theSame = 0; // as many stand at the same index, mostly all
    while (theSame < theCount && UPnPGroupSlave_S_SameAs(UPnPGroupInfo_GetSlaveAt(aGroupInfo, theSame),
                                                         UPnPGroupInfo_GetSlaveAt(aCompareGroupInfo, theSame)))
        ++theSame;
    if (theSame == theCount) { return true; }

    const OrderedSlaves theOthers(aCompareGroupInfo);
    bool fAreThere = true;
    for (size_t i = theSame; i < theCount && fAreThere; ++i)
    {
        const OrderedSlave theSlave = NewOrderedSlave(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i));
        fAreThere = theOthers.Contain(&theSlave);
        free(theSlave.mPairs);
    }
    return fAreThere;
}

int UPnPGroupInfo_SameAs(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo)
{
    return UPnPGroupInfo_GetSlaveCount(aGroupInfo) == UPnPGroupInfo_GetSlaveCount(aCompareGroupInfo) &&
           UPnPGroupInfo_IsValid(aGroupInfo) && UPnPGroupInfo_IsValid(aCompareGroupInfo) &&
           AreEqual(aGroupInfo->mGroupUDN, aCompareGroupInfo->mGroupUDN) &&
           AreEqual(aGroupInfo->mGroupFriendlyName, aCompareGroupInfo->mGroupFriendlyName) &&
           AreEqual(aGroupInfo->mMasterGroupedFriendlyName, aCompareGroupInfo->mMasterGroupedFriendlyName) &&
           AreEqual(aGroupInfo->mMasterGroupedUDN, aCompareGroupInfo->mMasterGroupedUDN) &&
           UPnPGroupMetaData_SameAs(aGroupInfo->mGroupMetaData, aCompareGroupInfo->mGroupMetaData) &&
           UPnPGroupMetaData_SameAs(aGroupInfo->mMasterMetaData, aCompareGroupInfo->mMasterMetaData) &&
           HaveSameSlaves(aGroupInfo, aCompareGroupInfo);
}

// ---- Members of a group ----

size_t UPnPGroupInfo_GetSlaveCount(UPnPGroupInfo* aGroupInfo)
{
    return aGroupInfo ? zoArray_GetCount(aGroupInfo->mSlaves) : 0;
}

UPnPGroupSlave* UPnPGroupInfo_GetSlaveAt(UPnPGroupInfo* aGroupInfo, size_t anIndex)
{
    if (anIndex >= UPnPGroupInfo_GetSlaveCount(aGroupInfo)) { return nullptr; }
    return static_cast<UPnPGroupSlave*>(zoArray_At(aGroupInfo->mSlaves, anIndex));
}

size_t UPnPGroupInfo_GetSlaveIndexByGroupedUDN(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN)
{
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        if (AreEqual(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i)->mGroupedUDN, aSlaveGroupedUDN)) { return i; }
    }
    return static_cast<size_t>(-1);
}

static UPnPGroupSlave* FindSlave(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    return UPnPGroupInfo_GetSlaveAt(aGroupInfo, UPnPGroupInfo_GetSlaveIndexByGroupedUDN(aGroupInfo, aGroupedUDN));
}

static bool IsMaster(const UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    return aGroupInfo && AreEqual(aGroupInfo->mMasterGroupedUDN, aGroupedUDN);
}

int UPnPGroupInfo_HasDevice(UPnPGroupInfo* aGroupInfo, const char* aDeviceUDN)
{
    return IsMaster(aGroupInfo, aDeviceUDN) || FindSlave(aGroupInfo, aDeviceUDN) != nullptr;
}

int UPnPGroupInfo_RemoveSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN)
{
    const size_t theIndex = UPnPGroupInfo_GetSlaveIndexByGroupedUDN(aGroupInfo, aSlaveGroupedUDN);
    if (theIndex == static_cast<size_t>(-1)) { return 0; }
    zoArray_RemoveAt(aGroupInfo->mSlaves, theIndex, 1);
    return 1;
}

void UPnPGroupInfo_AddSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN, const char* aSlaveFriendlyName,
                            const char* aSlaveUDN)
{
    if (!aGroupInfo) { return; }
    UPnPGroupSlave* theSlave = UPnPGroupSlave_S_New(aSlaveFriendlyName, aSlaveGroupedUDN, aSlaveUDN);
    UPnPGroupInfo_RemoveSlave(aGroupInfo, theSlave->mGroupedUDN); // the texts given may be those of that slave
    zoArray_Append(aGroupInfo->mSlaves, theSlave);
}

char* UPnPGroupInfo_FetchGroupedInfo(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    if (IsMaster(aGroupInfo, aGroupedUDN)) { return zoStrdup(aGroupInfo->mMasterGroupedFriendlyName); }
    const UPnPGroupSlave* theSlave = FindSlave(aGroupInfo, aGroupedUDN);
    return theSlave ? zoStrdup(theSlave->mGroupedFriendlyName) : nullptr;
}

zoArray_t* UPnPGroupInfo_GetGroupedUDNs(UPnPGroupInfo* aGroupInfo)
{
    zoArray_t* theUDNs = zoArray_New();
    zoArray_SetFreeFunc(theUDNs, zoStringArray_FreeFunc);
    if (aGroupInfo && !zoStrEmpty(aGroupInfo->mMasterGroupedUDN))
    {
        zoArray_Append(theUDNs, zoStrdup(aGroupInfo->mMasterGroupedUDN));
    }
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theUDN = UPnPGroupInfo_GetSlaveAt(aGroupInfo, i)->mGroupedUDN;
        zoArray_Append(theUDNs, zoStrdup(theUDN ? theUDN : ""));
    }
    return theUDNs;
}

// ---- Metadata of a member ----

// The table of the group, for NULL, of the master or of a slave; NULL when there is no such member.
static zoCustomHashTable* FindMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    if (!aGroupInfo) { return nullptr; }
    if (!aGroupedUDN) { return aGroupInfo->mGroupMetaData; }
    if (IsMaster(aGroupInfo, aGroupedUDN)) { return aGroupInfo->mMasterMetaData; }
    const UPnPGroupSlave* theSlave = FindSlave(aGroupInfo, aGroupedUDN);
    return theSlave ? theSlave->mMetaData : nullptr;
}

int UPnPGroupInfo_SetMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, const char* aMetaDataName,
                              const char* aMetaDataValue)
{
    zoCustomHashTable* theTable = FindMetaData(aGroupInfo, aGroupedUDN);
    if (!theTable) { return 0; }
    const bool fIsSlave = theTable != aGroupInfo->mGroupMetaData && theTable != aGroupInfo->mMasterMetaData;
    return UPnPGroupMetaData_Set(theTable, aMetaDataName, aMetaDataValue) || fIsSlave;
}

void UPnPGroupInfo_RemoveMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, const char* aMetaDataName)
{
    UPnPGroupMetaData_Remove(FindMetaData(aGroupInfo, aGroupedUDN), aMetaDataName);
}

size_t UPnPGroupInfo_GetMetaDataCount(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN)
{
    return zoCustomHashTable_GetTupleCount(FindMetaData(aGroupInfo, aGroupedUDN));
}

static const char* FetchKeyAt(zoCustomHashTable* aMetaDataHashTable, size_t anIndex)
{
    if (!zoAssert(anIndex < zoCustomHashTable_GetTupleCount(aMetaDataHashTable))) { return nullptr; }
    return zoCustomHashTable_GetKeyAtIndex(aMetaDataHashTable, anIndex);
}

void UPnPGroupInfo_FetchMetaDataAt(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, size_t anIndex,
                                   const char** aMetaDataName, const char** aMetaDataValue)
{
    if (aMetaDataName) { *aMetaDataName = nullptr; }
    if (aMetaDataValue) { *aMetaDataValue = nullptr; }
    if (!aGroupInfo) { return; }
    zoCustomHashTable* theTable = FindMetaData(aGroupInfo, aGroupedUDN);
    if (!theTable)
    {
        _zoAssert("theIndex != (size_t) -1", __FILE__, __LINE__);
        return;
    }
    const char* theKey = FetchKeyAt(theTable, anIndex);
    if (!theKey) { return; }
    if (aMetaDataName) { *aMetaDataName = theKey; }
    if (aMetaDataValue) { *aMetaDataValue = zoCustomHashTable_Get(theTable, theKey); }
}

// ---- Groups as XML ----

static const char* kGroupAttributes[] = { "friendlyName", "UDN", nullptr };
static const char* kMemberAttributes[] = { "groupedFriendlyName", "groupedUDN", nullptr };

static void AppendEscaped(zoBuffer* aBuffer, const char* aText)
{
    const size_t theLength = ILibXmlEscapeLength(aText);
    zoBuffer_Reserve(aBuffer, theLength + 1);
    ILibXmlEscape(aBuffer->mPtr + aBuffer->mPos, aText);
    aBuffer->mPos += theLength;
}

static void AppendMetaData(zoBuffer* aBuffer, zoCustomHashTable* aTable)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aTable);
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theKey = zoCustomHashTable_GetKeyAtIndex(aTable, i);
        zoBuffer_AppendStr(aBuffer, " ");
        zoBuffer_AppendStr(aBuffer, theKey);
        zoBuffer_AppendStr(aBuffer, "=\"");
        AppendEscaped(aBuffer, zoCustomHashTable_Get(aTable, theKey));
        zoBuffer_AppendStr(aBuffer, "\"");
    }
}

static void AppendMember(zoBuffer* aBuffer, const char* aStart, const char* aGroupedFriendlyName,
                         const char* aGroupedUDN, zoCustomHashTable* aMetaData)
{
    zoBuffer_AppendStr(aBuffer, aStart);
    zoBuffer_AppendStr(aBuffer, " groupedFriendlyName=\"");
    zoBuffer_AppendStr(aBuffer, aGroupedFriendlyName);
    zoBuffer_AppendStr(aBuffer, "\" groupedUDN=\"");
    zoBuffer_AppendStr(aBuffer, aGroupedUDN);
    zoBuffer_AppendStr(aBuffer, "\"");
    AppendMetaData(aBuffer, aMetaData);
    zoBuffer_AppendStr(aBuffer, "/>");
}

// Ends the text and releases the buffer around it.
static char* TakeText(zoBuffer* aBuffer)
{
    zoBuffer_Append(aBuffer, "", 1);
    char* theText = zoBuffer_TakeOwnership(aBuffer, nullptr, nullptr);
    zoBuffer_Delete(aBuffer);
    return theText;
}

char* UPnPGroupMetaData_GetXML(zoCustomHashTable* aMetaDataHashTable)
{
    zoBuffer* theBuffer = zoBuffer_New(0);
    AppendMetaData(theBuffer, aMetaDataHashTable);
    return TakeText(theBuffer);
}

char* UPnPGroupInfo_GetXML(UPnPGroupInfo* aGroupInfo)
{
    if (!UPnPGroupInfo_IsValid(aGroupInfo)) { return nullptr; }
    zoBuffer* theBuffer = zoBuffer_New(512);
    zoBuffer_AppendStr(theBuffer, "<groupInfo friendlyName=\"");
    zoBuffer_AppendStr(theBuffer, aGroupInfo->mGroupFriendlyName);
    zoBuffer_AppendStr(theBuffer, "\" UDN=\"");
    zoBuffer_AppendStr(theBuffer, aGroupInfo->mGroupUDN);
    zoBuffer_AppendStr(theBuffer, "\"");
    AppendMetaData(theBuffer, aGroupInfo->mGroupMetaData);
    zoBuffer_AppendStr(theBuffer, ">");
    AppendMember(theBuffer, "\n    <master", aGroupInfo->mMasterGroupedFriendlyName, aGroupInfo->mMasterGroupedUDN,
                 aGroupInfo->mMasterMetaData);
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
    {
        const UPnPGroupSlave* theSlave = UPnPGroupInfo_GetSlaveAt(aGroupInfo, i);
        AppendMember(theBuffer, "\n    <slave", theSlave->mGroupedFriendlyName, theSlave->mGroupedUDN,
                     theSlave->mMetaData);
    }
    zoBuffer_AppendStr(theBuffer, "\n</groupInfo>");
    return TakeText(theBuffer);
}

static void AddMetaData(zoCustomHashTable* aTable, const ILibXMLAttribute* anAttribute)
{
    char* theName = zoStrndup(NameOf(anAttribute), NameLengthOf(anAttribute));
    char* theValue = NewValue(anAttribute);
    ILibInPlaceXmlUnEscape(theValue);
    zoCustomHashTable_AddValueAllocated(aTable, theName, theValue);
    free(theName);
}

// The two attributes that aNames names go to the fields as they stand, all others to the table.
static void ReadAttributes(ILibXMLNode* anElement, const char** aNames, char** aFriendlyName, char** aUDN,
                           zoCustomHashTable* aMetaData)
{
    char** const theFields[] = { aFriendlyName, aUDN };
    ILibXMLAttribute* theList = ILibGetXMLAttributes(anElement);
    for (const ILibXMLAttribute* theAttribute = theList; theAttribute; theAttribute = theAttribute->Next)
    {
        const int theIndex = FindName(theAttribute, aNames);
        if (theIndex < 0) { AddMetaData(aMetaData, theAttribute); }
        else
        {
            zoStrnReplace(theFields[theIndex], theAttribute->Value, static_cast<size_t>(theAttribute->ValueLength));
        }
    }
    ILibDestructXMLAttributeList(theList);
}

static void ReadMaster(UPnPGroupInfo* aGroupInfo, const ILibXMLNode* aRoot)
{
    ILibXMLNode* theMaster = NextElement(aRoot, aRoot, kMasterElement);
    if (!theMaster) { return; }
    ReadAttributes(theMaster, kMemberAttributes, &aGroupInfo->mMasterGroupedFriendlyName,
                   &aGroupInfo->mMasterGroupedUDN, aGroupInfo->mMasterMetaData);
    aGroupInfo->mfHasMasterSet = aGroupInfo->mMasterGroupedUDN ? 1 : 0;
}

// The result is NULL when one of the slave's two attributes is absent.
static UPnPGroupSlave* ReadSlave(ILibXMLNode* anElement)
{
    UPnPGroupSlave* theSlave = UPnPGroupSlave_S_New(nullptr, nullptr, nullptr);
    ReadAttributes(anElement, kMemberAttributes, &theSlave->mGroupedFriendlyName, &theSlave->mGroupedUDN,
                   theSlave->mMetaData);
    if (theSlave->mGroupedFriendlyName && theSlave->mGroupedUDN) { return theSlave; }
    UPnPGroupSlave_S_Delete(theSlave);
    return nullptr;
}

static bool ReadSlaves(UPnPGroupInfo* aGroupInfo, const ILibXMLNode* aRoot)
{
    for (ILibXMLNode* theElement = NextElement(aRoot, aRoot, kSlaveElement); theElement;
         theElement = NextElement(aRoot, theElement, kSlaveElement))
    {
        UPnPGroupSlave* theSlave = ReadSlave(theElement);
        if (!theSlave)
        {
            Log_Warning(__LINE__, "UPnPGroupSlave: Invalid slave description in XML attributes\n");
            return false;
        }
        zoArray_Append(aGroupInfo->mSlaves, theSlave);
    }
    return true;
}

static bool ReadGroup(UPnPGroupInfo* aGroupInfo, ILibXMLNode* aRoot)
{
    ReadAttributes(aRoot, kGroupAttributes, &aGroupInfo->mGroupFriendlyName, &aGroupInfo->mGroupUDN,
                   aGroupInfo->mGroupMetaData);
    ReadMaster(aGroupInfo, aRoot);
    if (!UPnPGroupInfo_IsValid(aGroupInfo))
    {
        Log_Warning(__LINE__, "UPnPGroupSlave: Invalid group description in XML\n");
        return false;
    }
    return ReadSlaves(aGroupInfo, aRoot);
}

UPnPGroupInfo* UPnPGroupInfo_New(const char* aCapability, const char* aGroupInfo)
{
    UPnPGroupInfo* theGroup = UPnPGroupInfo_NewEx(aCapability);
    ILibXMLNode* theNodes = Parse(aGroupInfo);
    const bool fIsRead = ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError &&
                         IsStartTag(theNodes, kGroupInfoElement) && ReadGroup(theGroup, theNodes);
    ILibDestructXMLNodeList(theNodes);
    if (fIsRead) { return theGroup; }
    UPnPGroupInfo_Delete(theGroup);
    return nullptr;
}

// ---- Groups in the configuration file ----

static const uint32 kNoIndex = static_cast<uint32>(-1);

// Takes over the key.
static void SetString(zoConfigFile* aConfigFile, const char* aSection, char* aKey, const char* aValue)
{
    zoConfigFile_SetString(aConfigFile, aSection, aKey, aValue);
    free(aKey);
}

// Takes over the key; the value belongs to the file.
static const char* GetString(zoConfigFile* aConfigFile, const char* aSection, char* aKey, const char* aDefaultValue)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, aDefaultValue);
    free(aKey);
    return theValue;
}

static char* NewMetaDataKey(const char* aPrefix, uint32 anIndex, size_t anEntry)
{
    char theIndex[sizeof("4294967295")] = "";
    if (anIndex != kNoIndex) { zo_snprintf(theIndex, sizeof(theIndex), "%lu", static_cast<unsigned long>(anIndex)); }
    return zo_mnprintf("%s%s.MetaData%lu", aPrefix, theIndex, static_cast<unsigned long>(anEntry));
}

static void StoreMetaData(zoCustomHashTable* aTable, zoConfigFile* aConfigFile, const char* aSection,
                          const char* aPrefix, uint32 anIndex)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aTable);
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theName = zoCustomHashTable_GetKeyAtIndex(aTable, i);
        char* theEntry = zo_mnprintf("%s=%s", theName, zoCustomHashTable_Get(aTable, theName));
        SetString(aConfigFile, aSection, NewMetaDataKey(aPrefix, anIndex, i), theEntry);
        free(theEntry);
    }
}

static void StoreSlave(const UPnPGroupSlave* aSlave, zoConfigFile* aConfigFile, const char* aSection, uint32 anIndex)
{
    const unsigned long theIndex = anIndex;
    SetString(aConfigFile, aSection, zo_mnprintf("Slave%lu.GroupedFriendlyName", theIndex),
              aSlave->mGroupedFriendlyName);
    SetString(aConfigFile, aSection, zo_mnprintf("Slave%lu.GroupedUDN", theIndex), aSlave->mGroupedUDN);
    StoreMetaData(aSlave->mMetaData, aConfigFile, aSection, "Slave", anIndex);
}

void UPnPGroupInfo_Store(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile)
{
    if (!aGroupInfo) { return; }
    const char* theSection = aGroupInfo->mCapability;
    zoConfigFile_SetString(aConfigFile, theSection, "Group.UDN", aGroupInfo->mGroupUDN);
    zoConfigFile_SetString(aConfigFile, theSection, "Group.FriendlyName", aGroupInfo->mGroupFriendlyName);
    StoreMetaData(aGroupInfo->mGroupMetaData, aConfigFile, theSection, "Group", kNoIndex);
    zoConfigFile_SetString(aConfigFile, theSection, "Master.GroupedFriendlyName",
                           aGroupInfo->mMasterGroupedFriendlyName);
    zoConfigFile_SetString(aConfigFile, theSection, "Master.GroupedUDN", aGroupInfo->mMasterGroupedUDN);
    StoreMetaData(aGroupInfo->mMasterMetaData, aConfigFile, theSection, "Master", kNoIndex);
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    for (size_t i = 0; i < theCount; ++i)
        StoreSlave(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i), aConfigFile, theSection, static_cast<uint32>(i));
}

// An entry without "=" or without a name is none.
static void AddStoredEntry(zoCustomHashTable* aTable, const char* anEntry)
{
    const char* theEqualSign = strchr(anEntry, '=');
    if (!theEqualSign) { return; }
    char* theName = zoStrndup(anEntry, static_cast<size_t>(theEqualSign - anEntry));
    UPnPGroupMetaData_Set(aTable, theName, theEqualSign + 1);
    free(theName);
}

static void LoadMetaData(zoCustomHashTable* aTable, zoConfigFile* aConfigFile, const char* aSection,
                         const char* aPrefix)
{
    for (size_t i = 0;; ++i)
    {
        const char* theEntry = GetString(aConfigFile, aSection, NewMetaDataKey(aPrefix, kNoIndex, i), nullptr);
        if (!theEntry) { return; }
        AddStoredEntry(aTable, theEntry);
    }
}

// The result is NULL when the slave is not valid.
static UPnPGroupSlave* LoadSlave(zoConfigFile* aConfigFile, const char* aSection, const char* aSlaveKey)
{
    UPnPGroupSlave* theSlave =
        UPnPGroupSlave_S_New(GetString(aConfigFile, aSection, zo_mnprintf("%s.GroupedFriendlyName", aSlaveKey), ""),
                             GetString(aConfigFile, aSection, zo_mnprintf("%s.GroupedUDN", aSlaveKey), ""), nullptr);
    LoadMetaData(theSlave->mMetaData, aConfigFile, aSection, aSlaveKey);
    if (UPnPGroupSlave_S_IsValid(theSlave)) { return theSlave; }
    UPnPGroupSlave_S_Delete(theSlave);
    return nullptr;
}

static void LoadSlaves(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile, const char* aSection)
{
    for (unsigned long i = 0;; ++i)
    {
        char* theSlaveKey = zo_mnprintf("Slave%lu", i);
        UPnPGroupSlave* theSlave = LoadSlave(aConfigFile, aSection, theSlaveKey);
        free(theSlaveKey);
        if (!theSlave) { return; }
        zoArray_Append(aGroupInfo->mSlaves, theSlave);
    }
}

UPnPGroupInfo* UPnPGroupInfo_NewConfig(zoConfigFile* aConfigFile, const char* aCapability)
{
    UPnPGroupInfo* theGroup = UPnPGroupInfo_NewEx(aCapability);
    zoStrReplace(&theGroup->mGroupUDN, zoConfigFile_GetString(aConfigFile, aCapability, "Group.UDN", ""));
    zoStrReplace(&theGroup->mGroupFriendlyName,
                 zoConfigFile_GetString(aConfigFile, aCapability, "Group.FriendlyName", ""));
    LoadMetaData(theGroup->mGroupMetaData, aConfigFile, aCapability, "Group");
    zoStrReplace(&theGroup->mMasterGroupedFriendlyName,
                 zoConfigFile_GetString(aConfigFile, aCapability, "Master.GroupedFriendlyName", ""));
    zoStrReplace(&theGroup->mMasterGroupedUDN,
                 zoConfigFile_GetString(aConfigFile, aCapability, "Master.GroupedUDN", ""));
    LoadMetaData(theGroup->mMasterMetaData, aConfigFile, aCapability, "Master");
    if (UPnPGroupInfo_IsValid(theGroup)) { LoadSlaves(theGroup, aConfigFile, aCapability); }
    return theGroup;
}
