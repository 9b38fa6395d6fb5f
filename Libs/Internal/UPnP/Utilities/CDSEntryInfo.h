#pragma once

#include <UPnP/Utilities/Export.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zo/CString.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoPackedData.h>

/**
 * A view of the entry record of one content-directory object (UPnPConst.h): title, class, identifiers and the like, and
 * its extra info, the elements that have no tag of their own. Made from what UPnPDIDL_ParseElements returns:
 *
 *     CDSEntryInfo theEntry(zoPackedData_NewData(theData));
 *     theEntry.GetInfoAsCString(kCDSEntryInfo_Title);
 *
 * Every value is read by its tag and as what it is stored as; an absent one reads as "" or 0. Texts are returned as
 * copies. Nothing changes the record, so several threads may read one object.
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
    /** @return kCDSEntryInfo_ChildCount; 0xFFFFFFFF when it is unknown. */
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
