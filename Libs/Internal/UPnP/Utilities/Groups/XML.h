#pragma once

/* The XML form of groups. */

#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <zoltTools/zoBuffer.h>

namespace Groups
{

enum GroupError
{
    kGroup_Good,
    kGroup_NotAGroup, // not well-formed, or another element
    kGroup_Incomplete,
    kGroup_IncompleteSlave
};

/** Reads a document into a new group; after an error it is partly filled. */
GroupError ReadGroup(const char* aText, UPnPGroupInfo* aGroupInfo);

/** @param aGroupInfo a valid group. @return a new text. */
char* WriteGroup(UPnPGroupInfo* aGroupInfo);

/** Appends the entries as attributes, with a blank before each. */
void AppendMetaData(zoBuffer* aBuffer, zoCustomHashTable* aTable);

} // namespace Groups
