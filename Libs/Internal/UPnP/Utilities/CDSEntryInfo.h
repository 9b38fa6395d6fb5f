#pragma once

/* Views of the entry record of one content-directory object (UPnPConst.h): title, class, identifiers and the like, and
 * its extra info, the elements that have no tag of their own. For C as functions over the record; for C++ also as a
 * class that owns it. Every value is read by its tag and as what it is stored as; an absent one reads as "" or 0.
 * Nothing changes the record, so several threads may read one object. */

#include <UPnP/Utilities/Export.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoPackedData.h>

#ifdef __cplusplus
#include <zo/CString.h>

extern "C" {
#endif

/* Functions over an entry record, made by zoPackedData_NewData of what UPnPDIDL_ParseElements gives out; it stays the
 * caller's. NULL counts as a record without an entry.
 *
 *     zoPackedData_t* theEntry = zoPackedData_NewData(theData);
 *     printf("%s\n", CDSEntryInfo_GetInfoAsStr(theEntry, kCDSEntryInfo_Title));
 *     zoPackedData_Free(theEntry);
 *
 * A text is borrowed: it is in the record, until that changes or is released. It is never NULL. It is "" when it has no
 * NUL in the record, which can be so in a block that a stranger made; the class gives that one, too. */

/** @return 1 for a container, else 0. */
UPNPUTILITIES_API int CDSEntryInfo_IsContainer(const zoPackedData_t* anEntryInfo);
/** @return kCDSEntryInfo_ChildCount; 0xFFFFFFFF when the document has none, 0 without a record. */
UPNPUTILITIES_API uint32 CDSEntryInfo_GetChildCount(const zoPackedData_t* anEntryInfo);
/** @param aDataInfoID  the kCDSEntryInfo_* tag of a number. @return its lower 32 bits. */
UPNPUTILITIES_API uint32 CDSEntryInfo_GetInfoAsUInt32(const zoPackedData_t* anEntryInfo, uint16 aDataInfoID);
/** @param aDataInfoID  the kCDSEntryInfo_* tag of a text. */
UPNPUTILITIES_API const char* CDSEntryInfo_GetInfoAsStr(const zoPackedData_t* anEntryInfo, uint16 aDataInfoID);

/** @return the number of pairs of extra info: half the number of its tags. Takes logarithmic time. */
UPNPUTILITIES_API uint16 CDSEntryInfo_GetExtraInfoCount(const zoPackedData_t* anEntryInfo);
/**
 * @param anExtraInfoIndex  from 0; outside 0 to CDSEntryInfo_GetExtraInfoCount() - 1 the text is "".
 * @return the qualified name of the pair's element ("upnp:artist"). Takes no longer than the count and a look-up.
 */
UPNPUTILITIES_API const char* CDSEntryInfo_GetExtraInfoName(const zoPackedData_t* anEntryInfo, int anExtraInfoIndex);
/** As CDSEntryInfo_GetExtraInfoName. @return the element's inner text. */
UPNPUTILITIES_API const char* CDSEntryInfo_GetExtraInfoData(const zoPackedData_t* anEntryInfo, int anExtraInfoIndex);

#ifdef __cplusplus
} /* extern "C" */

/**
 * An entry record and its view. Made from what UPnPDIDL_ParseElements returns:
 *
 *     CDSEntryInfo theEntry(zoPackedData_NewData(theData));
 *     theEntry.GetInfoAsCString(kCDSEntryInfo_Title);
 *
 * Texts are returned as copies.
 */
class UPNPUTILITIES_API CDSEntryInfo
{
public:
    /** An object without an entry: everything reads as "" or 0. */
    CDSEntryInfo();
    /** Takes the entry record over; NULL counts as a record without an entry. */
    explicit CDSEntryInfo(zoPackedData_t* aPackedData);
    ~CDSEntryInfo();
    /** Memory as zoMemory.h gives it: a handler is told when there is none left. */
    static void* operator new(size_t aSize);
    /** Gives that memory back. */
    static void operator delete(void* anObject);
    CDSEntryInfo(const CDSEntryInfo&) = delete;
    CDSEntryInfo& operator=(const CDSEntryInfo&) = delete;

    /** @return the record's size in bytes. */
    size_t GetMemoryUsage();

    /** @return kCDSEntryInfo_IsContainer. */
    bool IsContainer();
    /** @return kCDSEntryInfo_ChildCount; 0xFFFFFFFF when the document has none, 0 without a record. */
    uint32 GetChildCount();
    /** @param aDataInfoID  the kCDSEntryInfo_* tag of a number. @return its lower 32 bits. */
    unsigned long GetInfoAsULong(uint16 aDataInfoID);
    /** @param aDataInfoID  the kCDSEntryInfo_* tag of a text. */
    zoCString GetInfoAsCString(uint16 aDataInfoID);

    /** @return the number of pairs of extra info: half the number of its tags. Takes logarithmic time. */
    uint16 GetExtraInfoCount();
    /**
     * Reads a pair of extra info; what is absent of it is "". Takes no longer than GetExtraInfoCount and a look-up.
     * @param anExtraInfoIndex  from 0; outside 0 to GetExtraInfoCount() - 1 both are "".
     * @param aName, aData out: the qualified name of the element ("upnp:artist") and its inner text.
     */
    void GetExtraInfo(int anExtraInfoIndex, zoCString& aName, zoCString& aData);
    /** The name of GetExtraInfo. */
    zoCString GetExtraInfoName(int anExtraInfoIndex);
    /** The data of GetExtraInfo. */
    zoCString GetExtraInfoData(int anExtraInfoIndex);

    /** @return an independent copy, released with delete. */
    CDSEntryInfo* Clone() const;

    zoPackedData_t* mPackedData; // owned
};
#endif
