#pragma once

/* Writing one object from its records. */

#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoPackedData.h>

namespace DIDL
{

// What nearly every object's text fits in: a value's tags and a record's rows are of about the same size.
size_t GuessTextSize(const zoPackedData_t* aMediaData, const zoPackedData_t* aResourceInfo);

// The list of declarations, each after a blank, and without the backslashes that protect the commas in it.
void AppendDeclarations(zoBuffer* aBuffer, const char* aList);

// From the item's start tag to its last metadata element.
void AppendMetadata(zoBuffer* aBuffer, zoPackedData_t* aMediaData);

// All resources, in the order of preference. False when the text has passed its limit; then *aLeftCount is the number
// of resources that are not written.
bool AppendResources(zoBuffer* aBuffer, int afIncludeResExtraInfo, zoPackedData_t* aResourceInfo,
                     const char* aSelectedURI, uint32* aLeftCount);

// The text of a tag; NULL when there is none.
inline const char* GetText(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    return zoPackedData_GetData(aRecord, anEntry, aTag, nullptr);
}

} // namespace DIDL
