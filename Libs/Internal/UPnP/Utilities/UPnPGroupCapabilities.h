#pragma once

/* Device groups: what a device says about its role in groups (UPnPGroupCapabilities_*), and groups themselves with
 * master, slaves and metadata (UPnPGroupInfo_*, UPnPGroupMetaData_*). Outside the process a group has one of two forms.
 *
 * XML; attributes with other names, such as "volume" here, are metadata:
 *
 *     <groupInfo friendlyName="Living room" UDN="uuid:group-1" volume="20">
 *         <master groupedFriendlyName="Kitchen" groupedUDN="uuid:grouped-1"/>
 *         <slave groupedFriendlyName="Bedroom" groupedUDN="uuid:grouped-2"/>
 *     </groupInfo>
 *
 * Keys of the configuration file, in the section with the name of the group's capability:
 *
 *     Group.UDN, Group.FriendlyName, Group.MetaData0 ...
 *     Master.GroupedFriendlyName, Master.GroupedUDN, Master.MetaData0 ...
 *     Slave0.GroupedFriendlyName, Slave0.GroupedUDN, Slave0.MetaData0 ... Slave1.GroupedFriendlyName ...
 *
 * The value of a metadata key is name=value.
 *
 * XML texts may come from strangers' devices: they are not changed, nothing recurses, time and memory are linear in the
 * text. Comparisons of element names, without their prefix, and of attribute names, with it, ignore the case of ASCII
 * letters; all others are exact. One thread at a time uses a set or a group. A NULL group counts as one without
 * members, a NULL table as an empty one, unless a comment says otherwise. Operations that take a grouped UDN compare it
 * with those of members, each time. */

#include <UPnP/Utilities/Export.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoArray.h>
#include <zoltTools/zoConfigFile.h>
#include <zoltTools/zoCustomHashTable.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Group capabilities ---- */

/* A device's role in the groups of a capability. */
enum
{
    kUPnPGroupMode_None = 0,
    kUPnPGroupMode_Slave = 1,
    kUPnPGroupMode_Master = 2
};

/* A capability: one thing that a device can do in groups. */
typedef struct UPnPGroupCapability
{
    char* mName;
    char* mGroupedUDN; /* the UDN that the device uses inside groups of this capability */
    int mMode;         /* kUPnPGroupMode_* */
} UPnPGroupCapability;

/* The capabilities of a device. The set owns what its operations return. */
typedef struct UPnPGroupCapabilities UPnPGroupCapabilities;

/**
 * Reads the groupCapabilities element of a device description: its first groupCapability, at any depth.
 * @return a new set, released with UPnPGroupCapabilities_Delete; empty for NULL and for a text without a valid
 *         capability. A text that is not well-formed and a capability that lacks a required attribute are logged.
 */
UPNPUTILITIES_API UPnPGroupCapabilities* UPnPGroupCapabilities_New(const char* anXMLGroupCapability);
/** Releases the set and its capabilities; NULL is ignored. */
UPNPUTILITIES_API void UPnPGroupCapabilities_Delete(UPnPGroupCapabilities* aCapabilities);
/** @return the first capability of that name; NULL when there is none, which is logged, and for a NULL set. */
UPNPUTILITIES_API UPnPGroupCapability* UPnPGroupCapabilities_GetGroup(UPnPGroupCapabilities* aCapabilities,
                                                                      const char* aCapability);
/** @return the name of the first capability in whose groups the device is slave or master; "" when there is none, and
 *          for a NULL set. */
UPNPUTILITIES_API const char* UPnPGroupCapabilities_GetActive(UPnPGroupCapabilities* aCapabilities);
/** @return the number of capabilities; 0 for a NULL set. */
UPNPUTILITIES_API size_t UPnPGroupCapabilities_GetCount(UPnPGroupCapabilities* aCapabilities);
/** @return the capability at anIndex; NULL past the end and for a NULL set. */
UPNPUTILITIES_API UPnPGroupCapability* UPnPGroupCapabilities_GetAt(UPnPGroupCapabilities* aCapabilities,
                                                                   size_t anIndex);
/** @return 1 when there is a capability of that name, else 0; 0 for a NULL set. */
UPNPUTILITIES_API int UPnPGroupCapabilities_Has(UPnPGroupCapabilities* aCapabilities, const char* aCapability);

/* ---- Metadata: the entries of a group, of its master or of a slave, in the order in which they were added ---- */

/** Stores a copy of aValue, which may be "", under a copy of aKey, replacing the value of that key. @return 1; 0, and
 *  nothing is stored, for a NULL table, an empty or NULL key, and a NULL value. */
UPNPUTILITIES_API int UPnPGroupMetaData_Set(zoCustomHashTable* aMetaDataHashTable, const char* aKey,
                                            const char* aValue);
/** Removes the entry with that key, if there is one. Removing all of n entries takes n log n, from either end n. */
UPNPUTILITIES_API void UPnPGroupMetaData_Remove(zoCustomHashTable* aMetaDataHashTable, const char* aKey);
/** @return 1 when both tables hold the same names with the same values, in any order, else 0. */
UPNPUTILITIES_API int UPnPGroupMetaData_SameAs(zoCustomHashTable* aMetaDataHashTable1,
                                               zoCustomHashTable* aMetaDataHashTable2);
/** @return the entries as XML attributes, with a blank before each: a new text, released with free, "" without entries.
 *          Values are escaped, names are written as they are. */
UPNPUTILITIES_API char* UPnPGroupMetaData_GetXML(zoCustomHashTable* aMetaDataHashTable);

/* ---- Groups ---- */

/* A slave of a group. */
typedef struct UPnPGroupSlave
{
    char* mGroupedFriendlyName;
    char* mGroupedUDN;
    char* mUDN; /* the device's own; NULL unless UPnPGroupInfo_AddSlave gave it */
    zoCustomHashTable* mMetaData;
} UPnPGroupSlave;

/* A group, always made by one of the functions below. It owns what its fields point to; its names and UDNs are set by
 * replacing the field (zoStrReplace). It is valid when mGroupFriendlyName, mGroupUDN, mMasterGroupedFriendlyName,
 * mMasterGroupedUDN and each slave's mGroupedFriendlyName and mGroupedUDN are neither NULL nor "". */
typedef struct UPnPGroupInfo
{
    zoArray_t* mSlaves; /* of UPnPGroupSlave*, in the order in which they were added */
    char* mCapability;
    char* mGroupFriendlyName;
    char* mGroupUDN;
    char* mOriginalGroupUDN; /* of a duplicate, also of a duplicate of a duplicate: the UDN of the first group */
    char* mMasterGroupedFriendlyName;
    char* mMasterGroupedUDN;
    char mfHasMasterSet; /* 1 when the master's grouped UDN was read from XML, else 0 */
    zoCustomHashTable* mMasterMetaData;
    zoCustomHashTable* mGroupMetaData;
} UPnPGroupInfo;

/** @return a new group with nothing but a copy of aCapability; released, as every group, with UPnPGroupInfo_Delete. */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_NewEx(const char* aCapability);
/**
 * Reads a group from its XML. Elements are found at any depth. The first of several masters counts, and the last of
 * several attributes of one name. Names and UDNs are taken as they are; metadata values are unescaped.
 * @return a new group; NULL when the text is not well-formed or not a groupInfo. NULL, and a warning is logged, when a
 *         name or a UDN of the group or the master is missing or empty, or when one is missing in a slave. A slave's
 *         name and UDN may be empty; the group is then not valid.
 */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_New(const char* aCapability, const char* aGroupInfo);
/**
 * Reads a group from the section of its capability. Absent names and UDNs read as "". Metadata ends before the first
 * absent number; an entry without "=" or without a name is skipped. Slaves end before the first one that is not valid,
 * and there are none when the rest of the group is not valid.
 * @return a new group, never NULL; not valid when the section is incomplete.
 */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_NewConfig(zoConfigFile* aConfigFile, const char* aCapability);
/** @return a new group with the same contents, except that mGroupUDN and the slaves' mUDN are NULL: it is not valid
 *          before it has a UDN of its own. NULL for NULL. */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_Duplicate(UPnPGroupInfo* aGroupInfo);
/** Releases the group with all that it owns; NULL is ignored. */
UPNPUTILITIES_API void UPnPGroupInfo_Delete(UPnPGroupInfo* aGroupInfo);

/** @return 1 for a valid group, else 0; 0 for NULL. */
UPNPUTILITIES_API int UPnPGroupInfo_IsValid(UPnPGroupInfo* aGroupInfo);
/**
 * Compares groups, but not their mCapability, mOriginalGroupUDN, mfHasMasterSet, their slaves' mUDN and order. Linear
 * when the slaves are in the same order, else n log n.
 * @return 1 when both are valid, have the same names, UDNs, metadata and number of slaves, and each slave of the first
 *         has the names, UDN and metadata of some slave of the second; else 0.
 */
UPNPUTILITIES_API int UPnPGroupInfo_SameAs(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo);

/** @return the number of slaves. */
UPNPUTILITIES_API size_t UPnPGroupInfo_GetSlaveCount(UPnPGroupInfo* aGroupInfo);
/** @return the slave at anIndex, which belongs to the group; NULL past the end. */
UPNPUTILITIES_API UPnPGroupSlave* UPnPGroupInfo_GetSlaveAt(UPnPGroupInfo* aGroupInfo, size_t anIndex);
/** Searches the slaves, whose fields callers may set, from the first on. The operations below look first at the slave
 *  that the last search found: after giving an earlier slave the same grouped UDN, search again to make them find that.
 *  @return the index of the first slave with that grouped UDN; (size_t) -1 when there is none. */
UPNPUTILITIES_API size_t UPnPGroupInfo_GetSlaveIndexByGroupedUDN(UPnPGroupInfo* aGroupInfo,
                                                                 const char* aSlaveGroupedUDN);
/** @return 1 when the master or a slave has that grouped UDN, else 0. */
UPNPUTILITIES_API int UPnPGroupInfo_HasDevice(UPnPGroupInfo* aGroupInfo, const char* aDeviceUDN);
/** Removes the first slave with that grouped UDN, which may be the slave's own text. @return 1; 0 when there is none.
 */
UPNPUTILITIES_API int UPnPGroupInfo_RemoveSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN);
/**
 * Removes the first slave with that grouped UDN, if there is one, and appends a new slave of copies, without metadata.
 * The texts may be those of the slave that is removed. NULL stays NULL: without a grouped UDN and a name for each slave
 * a group is not valid. Nothing is done for a NULL group. Each call searches the slaves: adding many takes the square
 * of their number.
 */
UPNPUTILITIES_API void UPnPGroupInfo_AddSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN,
                                              const char* aSlaveFriendlyName, const char* aSlaveUDN);

/* Operations on metadata. aGroupedUDN selects the member: NULL the group itself; any other value the master with that
 * grouped UDN, else the first slave with it. Each call may search the slaves: to visit all of them take
 * UPnPGroupInfo_GetSlaveAt and the slave's mMetaData. */

/** As UPnPGroupMetaData_Set, but returns 1 for every slave; 0 when there is no such member. */
UPNPUTILITIES_API int UPnPGroupInfo_SetMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN,
                                                const char* aMetaDataName, const char* aMetaDataValue);
/** As UPnPGroupMetaData_Remove; nothing when there is no such member. */
UPNPUTILITIES_API void UPnPGroupInfo_RemoveMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN,
                                                    const char* aMetaDataName);
/** @return the number of entries; 0 when there is no such member. */
UPNPUTILITIES_API size_t UPnPGroupInfo_GetMetaDataCount(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN);
/**
 * Gives an entry of a member. A member that is not there and an index past the end are reported as assertions.
 * @param aMetaDataName, aMetaDataValue  out, either may be NULL: the entry's texts, which belong to the group; NULL for
 *                 a NULL group and after a failed assertion.
 */
UPNPUTILITIES_API void UPnPGroupInfo_FetchMetaDataAt(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, size_t anIndex,
                                                     const char** aMetaDataName, const char** aMetaDataValue);

/** @return a copy of the grouped friendly name of the member with that grouped UDN, released with free; NULL
 *          without such a member, for a NULL UDN, and when it has no name. */
UPNPUTILITIES_API char* UPnPGroupInfo_FetchGroupedInfo(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN);
/** @return a new array of copies, released with zoArray_Delete: the master's grouped UDN unless it is empty, then those
 *          of the slaves, "" for one without. Empty for a NULL group. */
UPNPUTILITIES_API zoArray_t* UPnPGroupInfo_GetGroupedUDNs(UPnPGroupInfo* aGroupInfo);

/** Sets the keys of the group, valid or not, in the section of its capability, and removes those of fields that are
 * NULL. Other keys stay: slaves and metadata of a larger group that was stored there before are read back. A metadata
 * name must not contain "=": the rest of it is read back as part of the value. Nothing is done for a NULL group. */
UPNPUTILITIES_API void UPnPGroupInfo_Store(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile);
/** @return the XML form: a new text, released with free; NULL for a group that is NULL or not valid. Values of metadata
 *          are escaped. Names and UDNs are written as they are: UPnPGroupInfo_New reads them back the same unless they
 *          contain a double quote, other XML readers unless they contain <, & or a double quote. A metadata name must
 *          be an XML name. One that equals a field's attribute of its member (friendlyName and UDN of the group,
 *          groupedFriendlyName and groupedUDN of master and slaves), in any case, is read back into that field. */
UPNPUTILITIES_API char* UPnPGroupInfo_GetXML(UPnPGroupInfo* aGroupInfo);

#ifdef __cplusplus
}
#endif
