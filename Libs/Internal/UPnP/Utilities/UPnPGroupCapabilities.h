#pragma once

/* Device groups: what a device says about its part in groups (UPnPGroupCapabilities_*), and groups themselves with
 * master, slaves and metadata (UPnPGroupInfo_*, UPnPGroupMetaData_*), which have two outer forms.
 *
 * As XML, attributes other than those shown being metadata:
 *
 *     <groupInfo friendlyName="Living room" UDN="uuid:group-1" volume="20">
 *         <master groupedFriendlyName="Kitchen" groupedUDN="uuid:grouped-1"/>
 *         <slave groupedFriendlyName="Bedroom" groupedUDN="uuid:grouped-2"/>
 *     </groupInfo>
 *
 * As keys of the configuration file, in the section that is named by the group's capability:
 *
 *     Group.UDN, Group.FriendlyName, Group.MetaData0 ...
 *     Master.GroupedFriendlyName, Master.GroupedUDN, Master.MetaData0 ...
 *     Slave0.GroupedFriendlyName, Slave0.GroupedUDN, Slave0.MetaData0 ... Slave1.GroupedFriendlyName ...
 *
 * each metadata entry as name=value.
 *
 * XML texts may come from strangers' devices: they are read only, nothing recurses, time and memory are linear in the
 * text. Names of elements (their prefix aside) and of attributes are compared without regard to the case of ASCII
 * letters; all other comparisons are exact. A set or a group is used by one thread at a time. Where NULL is not
 * mentioned it is a mistake of the caller's that does nothing: a NULL group counts as none or as one without members, a
 * NULL table as an empty one. */

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

/* One thing that a device can do in groups. */
typedef struct UPnPGroupCapability
{
    char* mName;
    char* mGroupedUDN; /* the UDN that the device uses inside groups of this capability */
    int mMode;         /* kUPnPGroupMode_* */
} UPnPGroupCapability;

/* The capabilities that a device offers. What its operations return belongs to it. */
typedef struct UPnPGroupCapabilities UPnPGroupCapabilities;

/**
 * Reads the groupCapabilities element of a device description. Only the first groupCapability inside is looked at.
 * @return a new set, released with UPnPGroupCapabilities_Delete; empty when there is nothing valid in the text, or for
 *         NULL. A text that is not well-formed and a groupCapability without its attributes are logged.
 */
UPNPUTILITIES_API UPnPGroupCapabilities* UPnPGroupCapabilities_New(const char* anXMLGroupCapability);
/** Releases the set and its capabilities; NULL is ignored. */
UPNPUTILITIES_API void UPnPGroupCapabilities_Delete(UPnPGroupCapabilities* aCapabilities);
/** @return the first capability of that name. NULL when there is none, which is logged; NULL for a NULL set. */
UPNPUTILITIES_API UPnPGroupCapability* UPnPGroupCapabilities_GetGroup(UPnPGroupCapabilities* aCapabilities,
                                                                      const char* aCapability);
/** @return the name of the first capability in which the device is slave or master; "" when there is none, and for a
 *          NULL set. */
UPNPUTILITIES_API const char* UPnPGroupCapabilities_GetActive(UPnPGroupCapabilities* aCapabilities);
/** @return the number of capabilities; 0 for a NULL set. */
UPNPUTILITIES_API size_t UPnPGroupCapabilities_GetCount(UPnPGroupCapabilities* aCapabilities);
/** @return the capability at anIndex; NULL past the end and for a NULL set. */
UPNPUTILITIES_API UPnPGroupCapability* UPnPGroupCapabilities_GetAt(UPnPGroupCapabilities* aCapabilities,
                                                                   size_t anIndex);
/** @return 1 when there is a capability of that name, else 0; 0 for NULL. */
UPNPUTILITIES_API int UPnPGroupCapabilities_Has(UPnPGroupCapabilities* aCapabilities, const char* aCapability);

/* ---- Metadata: the entries of a group, of its master or of a slave, in the order in which they came ---- */

/** Stores a copy of aValue, which may be "", under a copy of aKey. @return 1; 0, and nothing is stored, for an empty or
 *  NULL key and for a NULL value. */
UPNPUTILITIES_API int UPnPGroupMetaData_Set(zoCustomHashTable* aMetaDataHashTable, const char* aKey,
                                            const char* aValue);
/** Removes an entry; nothing for an empty or NULL key, and when there is none. */
UPNPUTILITIES_API void UPnPGroupMetaData_Remove(zoCustomHashTable* aMetaDataHashTable, const char* aKey);
/** @return 1 when both tables hold the same names with the same values, in any order, else 0. */
UPNPUTILITIES_API int UPnPGroupMetaData_SameAs(zoCustomHashTable* aMetaDataHashTable1,
                                               zoCustomHashTable* aMetaDataHashTable2);
/** @return the entries as XML attributes, with a blank before each, released with free; "" when there are none. Values
 *          are escaped, names are written as they are. */
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

/* A group owns what its fields point to. Its names and UDNs are set by replacing the field (zoStrReplace). It is valid
 * when mGroupFriendlyName, mGroupUDN, mMasterGroupedFriendlyName, mMasterGroupedUDN and each slave's
 * mGroupedFriendlyName and mGroupedUDN are neither NULL nor "". */
typedef struct UPnPGroupInfo
{
    zoArray_t* mSlaves; /* of UPnPGroupSlave*, in the order in which they came */
    char* mCapability;
    char* mGroupFriendlyName;
    char* mGroupUDN;
    char* mOriginalGroupUDN; /* of a duplicate: the UDN of the group at the start of the chain of duplicates */
    char* mMasterGroupedFriendlyName;
    char* mMasterGroupedUDN;
    char mfHasMasterSet; /* 1: the master's grouped UDN was read from XML */
    zoCustomHashTable* mMasterMetaData;
    zoCustomHashTable* mGroupMetaData;
} UPnPGroupInfo;

/** @return a new group without a name, a master and slaves, released, like every group, with UPnPGroupInfo_Delete. */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_NewEx(const char* aCapability);
/**
 * Reads a group from its XML. Of several masters the first one counts, of an attribute that comes twice the last one.
 * Elements are found at any depth. Names and UDNs are taken as they stand; metadata values are unescaped.
 * @return a new group. NULL when the text is not well-formed or not a groupInfo; when the group's or the master's name
 *         or UDN is missing or empty, or when a slave lacks one of its two (which are logged). The two of a slave may
 *         be empty: the group is then not valid.
 */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_New(const char* aCapability, const char* aGroupInfo);
/**
 * Reads a group from the section of its capability. Absent names and UDNs read as "". Metadata is read up to the first
 * absent number; an entry without "=" or without a name is skipped. Slaves are read up to the first one that is not
 * valid, and only when the group is valid without them.
 * @return a new group, never NULL; not valid when the section is incomplete.
 */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_NewConfig(zoConfigFile* aConfigFile, const char* aCapability);
/** @return a new group with the same contents but for mGroupUDN and the slaves' mUDN, which are NULL: it is not valid
 *          before it has a UDN of its own. */
UPNPUTILITIES_API UPnPGroupInfo* UPnPGroupInfo_Duplicate(UPnPGroupInfo* aGroupInfo);
/** Releases the group with all that it owns; NULL is ignored. */
UPNPUTILITIES_API void UPnPGroupInfo_Delete(UPnPGroupInfo* aGroupInfo);

/** @return 1 for a valid group, else 0; 0 for NULL. */
UPNPUTILITIES_API int UPnPGroupInfo_IsValid(UPnPGroupInfo* aGroupInfo);
/**
 * Whether both groups are valid and have the same names, UDNs, metadata and number of slaves, and each slave of the
 * first is like some slave of the second. Not compared: mCapability, mOriginalGroupUDN, mfHasMasterSet, the slaves'
 * mUDN and their order.
 * @return 1 or 0. Linear in the groups when their slaves stand in the same order, else n log n.
 */
UPNPUTILITIES_API int UPnPGroupInfo_SameAs(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo);

/** @return the number of slaves. */
UPNPUTILITIES_API size_t UPnPGroupInfo_GetSlaveCount(UPnPGroupInfo* aGroupInfo);
/** @param anIndex below the count; NULL is returned for any other. @return the slave, which belongs to the group. */
UPNPUTILITIES_API UPnPGroupSlave* UPnPGroupInfo_GetSlaveAt(UPnPGroupInfo* aGroupInfo, size_t anIndex);
/** @return the index of the first slave with that grouped UDN; (size_t) -1 when there is none. */
UPNPUTILITIES_API size_t UPnPGroupInfo_GetSlaveIndexByGroupedUDN(UPnPGroupInfo* aGroupInfo,
                                                                 const char* aSlaveGroupedUDN);
/** @return 1 when the master or a slave has that grouped UDN, else 0. */
UPNPUTILITIES_API int UPnPGroupInfo_HasDevice(UPnPGroupInfo* aGroupInfo, const char* aDeviceUDN);
/** Removes the first slave with that grouped UDN, which may be the slave's own text. @return 1; 0 when there is none.
 */
UPNPUTILITIES_API int UPnPGroupInfo_RemoveSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN);
/** Removes the first slave with the same grouped UDN, whose texts may be given here, and appends a new one without
 *  metadata, made of copies. */
UPNPUTILITIES_API void UPnPGroupInfo_AddSlave(UPnPGroupInfo* aGroupInfo, const char* aSlaveGroupedUDN,
                                              const char* aSlaveFriendlyName, const char* aSlaveUDN);

/* Whose metadata: aGroupedUDN is NULL for the group's own, else the master's or a slave's grouped UDN. */

/** As UPnPGroupMetaData_Set, but 1 whenever the member is a slave; 0 when there is no such member. */
UPNPUTILITIES_API int UPnPGroupInfo_SetMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN,
                                                const char* aMetaDataName, const char* aMetaDataValue);
/** As UPnPGroupMetaData_Remove; nothing when there is no such member. */
UPNPUTILITIES_API void UPnPGroupInfo_RemoveMetaData(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN,
                                                    const char* aMetaDataName);
/** @return the number of entries; 0 for a NULL group and when there is no such member. */
UPNPUTILITIES_API size_t UPnPGroupInfo_GetMetaDataCount(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN);
/**
 * @param anIndex  below the count of a member that is there; both are asserted.
 * @param aMetaDataName, aMetaDataValue  out, either may be NULL: the entry's texts, which belong to the group; NULL for
 *                 a NULL group and after a failed assertion.
 */
UPNPUTILITIES_API void UPnPGroupInfo_FetchMetaDataAt(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN, size_t anIndex,
                                                     const char** aMetaDataName, const char** aMetaDataValue);

/** @return a copy of the grouped friendly name of the member with that grouped UDN, released with free; NULL when there
 *          is none. */
UPNPUTILITIES_API char* UPnPGroupInfo_FetchGroupedInfo(UPnPGroupInfo* aGroupInfo, const char* aGroupedUDN);
/** @return a new array of copies, released with zoArray_Delete: the master's grouped UDN unless it is empty, then those
 *          of the slaves, "" for one without. Empty for a NULL group. */
UPNPUTILITIES_API zoArray_t* UPnPGroupInfo_GetGroupedUDNs(UPnPGroupInfo* aGroupInfo);

/** Sets the group's keys, valid or not, in the section of its capability; the key of a field that is NULL is removed.
 *  No other key is: what a larger group has left there is read back. */
UPNPUTILITIES_API void UPnPGroupInfo_Store(UPnPGroupInfo* aGroupInfo, zoConfigFile* aConfigFile);
/** @return the XML form, released with free; NULL for a group that is NULL or not valid. Names, UDNs and names of
 *          metadata are written as they are, not escaped: they are read back when they hold nothing that has a meaning
 *          in XML, and metadata when its name is none of the attributes above. */
UPNPUTILITIES_API char* UPnPGroupInfo_GetXML(UPnPGroupInfo* aGroupInfo);

#ifdef __cplusplus
}
#endif
