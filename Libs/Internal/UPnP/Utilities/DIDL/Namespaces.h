#pragma once

/* The namespace declarations of an object, collected into one text (kCDSEntryInfo_XMLNS):
 *
 *     xmlns:dc="http://...",xmlns:upnp="urn:..."
 *
 * A comma in a declaration has a backslash before it, and a value can be written between double quotes as it is. The
 * first declaration of a name counts. */

#include <UPnP/Utilities/DIDL/NameSet.h>
#include <UPnP/Utilities/DIDL/ObjectNodes.h>
#include <UPnP/Utilities/DIDL/TextBuilder.h>
#include <stdint.h>

namespace DIDL
{

// Where a declaration's value comes from, which decides what in it becomes an entity.
enum class ValueSource
{
    Attribute,              // as written: " and <; what is an entity already stays one
    AttributeWithoutCommas, // the same, when there is neither a comma nor a < in it
    Element                 // resolved: &, " and <
};

class NamespaceList
{
public:
    bool empty() const { return mText.empty(); }

    // The list, until more is added.
    std::string_view Text() const { return mText.Text(); }

    bool Has(std::string_view aName) const { return (mCopiedRoot && HasCopied(aName)) || mNames.Contains(aName); }

    // Adds a declaration, unless its name is declared already. False, with nothing added, when the list with it would
    // be longer than aMaxSize.
    [[gnu::cold]] bool AppendXMLNS(std::string_view aName, std::string_view aValue, ValueSource aSource,
                                   size_t aMaxSize = SIZE_MAX);

    // Adds the xmlns: attributes of an element inside the object, or of the object itself.
    void AddXMLNameSpaces(const ILibXMLAttribute* anAttributes)
    {
        for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
            if (Shared::Equals(Shared::Prefix(theAttribute), "xmlns")) { AddXMLNameSpace(theAttribute); }
    }

    // Adds the declarations of the root, and each attribute of it that has no prefix.
    void AddAllOfRoot(ILibXMLNode* aRoot);

    // The same, but at most aMaxSize bytes: when not all fit, first those that the names of the object's elements and
    // attributes need, then the others, each while it fits.
    [[gnu::cold]] void AddOfRoot(ILibXMLNode* aRoot, const ObjectNodes& anObject, const ILibXMLAttribute* anAttributes,
                                 size_t aMaxSize);

    // Replaces the list with that of a root, which AddOfRoot adds for each object that may inherit kMaxSharedSize;
    // empty when it depends on the object.
    [[gnu::cold]] void CollectShared(ILibXMLNode* aRoot);

    // Adds such a list to an empty one.
    void AddShared(const NamespaceList& aList)
    {
        mText.Append(aList.Text());
        mNames.AssignInline(aList.mNames);
        mCopiedRoot = aList.mCopiedRoot;
    }

    enum : size_t
    {
        kMaxSharedSize = 512 // of the declarations of nearly all roots
    };

private:
    [[gnu::cold]] void Clear();
    [[gnu::cold]] void AddXMLNameSpace(const ILibXMLAttribute* anAttribute);
    [[gnu::cold]] void AppendEscaped(std::string_view aText, ValueSource aSource);
    [[gnu::cold]] bool AppendEscapedXMLNS(std::string_view aName, std::string_view aValue, ValueSource aSource,
                                          size_t aMaxSize);
    [[gnu::cold]] bool HasCopied(std::string_view aName) const;
    bool CopyAll(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst, std::string_view aText);
    bool AddWhileAllFit(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst, size_t aMaxSize);
    [[gnu::noinline]] bool AddOneByOne(const ILibXMLAttribute* aFirst, ValueSource aSource, size_t aMaxSize);
    [[gnu::cold]] void AddNeededFirst(ILibXMLAttribute* aFirst, const ObjectNodes& anObject,
                                      const ILibXMLAttribute* anAttributes, size_t aMaxSize);

    TextBuilder mText;
    NameSet mNames;                     // of the declarations that were added one by one
    ILibXMLNode* mCopiedRoot = nullptr; // the root whose attributes were copied in one piece; NULL without one
};

// True if an element or an attribute of this qualified name declares a namespace.
inline bool BeginsWithXMLNS(std::string_view aName)
{
    return aName.size() >= 6 && Shared::EqualsIgnoringCase(aName.substr(0, 6), "xmlns:");
}

} // namespace DIDL
