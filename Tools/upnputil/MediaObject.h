#pragma once

#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>

/* One object's record, and the views of it. */
struct MediaObject
{
    /** Takes over both blocks, which the parser gave. */
    MediaObject(char* anEntry, char* aResources)
        : mEntry(zoPackedData_NewData(anEntry)), mResources(aResources, mEntry.mPackedData)
    {}

    CDSEntryInfo mEntry;
    CDSResourceInfo mResources;
};
