#pragma once

/* Writing one object from its records. */

#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <UPnP/Utilities/DIDL/Values.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zoltTools/zoBuffer.h>

namespace DIDL
{

typedef EntryValues<kCDSEntryInfo_Count> MediaValues;
typedef EntryValues<kCDSResourceInfo_Count> ResourceValues;

/** @return the size of a buffer that nearly every object's text fits in. */
size_t GuessTextSize(const zoPackedData_t* aMediaData, const zoPackedData_t* aResourceInfo);

/** Appends the declarations of a namespace list, each after a blank, without the backslashes before their commas. */
void AppendDeclarations(zoBuffer* aBuffer, std::string_view aList);

/** Appends the object from its start tag to its last metadata element.
 *  @param aMediaData  the entry record, from which the album art is read; aValues: its values. */
void AppendMetadata(Output anOutput, const zoPackedData_t* aMediaData, const MediaValues& aValues);

/** Appends the resources in the order of preference.
 *  @param aLeftCount out: the number of resources that are not written, when the result is false.
 *  @return false when the text has passed its limit. */
bool AppendResources(Output anOutput, int afIncludeResExtraInfo, const zoPackedData_t* aResourceInfo,
                     const char* aSelectedURI, uint32* aLeftCount);

} // namespace DIDL
