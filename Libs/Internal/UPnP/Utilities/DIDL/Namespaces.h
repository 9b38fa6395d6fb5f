#pragma once

/* The namespace declarations of an object. */

#include <UPnP/Utilities/DIDL/Text.h>
#include <UPnP/Utilities/DIDL/TextBuilder.h>
#include <zoltTools/zoCustomHashTable.h>

namespace DIDL
{

// The declarations met so far, in the form of kCDSEntryInfo_XMLNS, and their names: the first ones in an array, once
// there are more than that in a table.
struct NamespaceList
{
    enum : size_t
    {
        kFew = 16
    };
    TextBuilder mText = { nullptr, 0, 0 };
    size_t mCount = 0;
    zoCustomHashTable* mTable = nullptr; // NULL while there are few
    Slice mNames[kFew];                  // the first mCount of them, or all, are set
};

// Adds a declaration, unless one of that name is there: the first one counts. Plain ones have no comma and no "<".
void AppendXMLNS(NamespaceList* aNamespaces, const Slice& aName, const Slice& aValue, bool afIsPlain = false);

// The xmlns: declarations of an element inside the object, or of the object itself.
void AddXMLNameSpaces(const ILibXMLAttribute* anAttributes, NamespaceList* aNamespaces);

// The declarations of the root: its attributes without a prefix, or with one that "xmlns" begins with.
void AddRootNameSpaces(ILibXMLNode* aDIDLNode, NamespaceList* aNamespaces);

inline bool BeginsWithXMLNS(const Slice& aName)
{
    return aName.mLength >= 6 && EqualsIgnoringCase(aName.mBegin, "xmlns:", 6);
}

} // namespace DIDL
