#pragma once

#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <algorithm>

/* The records of a document of one object; else values of an entry record and a resource record, which no document need
 * have made. */

struct Records
{
    char* mEntry = nullptr; // blocks, as they go from module to module
    char* mResources = nullptr;
};

// Values, each a tag of a byte and a size of one before its bytes. The tag 0xFF begins a resource.
inline Records FromValues(const uint8_t* aBytes, size_t aSize)
{
    zoPackedData_t* theRecords[] = { zoPackedData_New(1), zoPackedData_New(0) };
    zoPackedData_AddNewEntry(theRecords[0]);
    for (size_t i = 0; i + 2 <= aSize;)
    {
        const bool fIsInResource = zoPackedData_GetEntryCount(theRecords[1]) > 0;
        const size_t theSize = std::min<size_t>(aBytes[i + 1], aSize - i - 2);
        if (aBytes[i] == 0xFF) { zoPackedData_AddNewEntry(theRecords[1]); }
        else { zoPackedData_AddData(theRecords[fIsInResource], aBytes[i], aBytes + i + 2, theSize); }
        i += aBytes[i] == 0xFF ? 1 : 2 + theSize;
    }
    const Records theBlocks = { zoPackedData_TakeData(theRecords[0]), zoPackedData_TakeData(theRecords[1]) };
    for (zoPackedData_t* theRecord : theRecords)
        zoPackedData_Free(theRecord);
    return theBlocks;
}

inline Records Read(const uint8_t* aBytes, size_t aSize)
{
    Records theBlocks;
    int theType = 0;
    char* theText = NewText(aBytes, aSize);
    UPnPDIDL_ParseElements(theText, &theBlocks.mEntry, &theBlocks.mResources, &theType);
    free(theText);
    return theBlocks.mEntry ? theBlocks : FromValues(aBytes, aSize);
}
