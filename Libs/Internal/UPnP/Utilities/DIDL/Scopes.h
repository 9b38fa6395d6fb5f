#pragma once

/* Which namespace a prefix stands for, at each place of a document. */

#include <UPnP/Utilities/DIDL/Markup.h>
#include <UPnP/Utilities/DIDL/TextBuilder.h>
#include <zoltTools/zoCustomHashTable.h>

namespace DIDL
{

inline bool IsDeclaration(const QName& aName)
{
    return aName.mPrefix.empty() ? aName.mLocal == "xmlns" : aName.mPrefix == "xmlns";
}

// True for xml:id, whose value some readers check: it has to be a name, and unique in the document.
inline bool IsID(const QName& aName) { return aName.mPrefix == "xml" && aName.mLocal == "id"; }

// The names of a tag's attributes, so that none comes twice.
class AttributeNames
{
public:
    AttributeNames() = default;
    ~AttributeNames() { Clear(); }
    AttributeNames(const AttributeNames&) = delete;
    AttributeNames& operator=(const AttributeNames&) = delete;

    // False when the tag has the local name in that namespace already.
    bool Add(std::string_view aNamespace, std::string_view aLocalName);
    void Clear()
    {
        if (mTable) { zoCustomHashTable_Delete(mTable); }
        mTable = nullptr;
    }

private:
    zoCustomHashTable* mTable = nullptr;
};

// False when a declaration binds what must not be bound so (xml and xmlns, their namespaces, a prefix to nothing), or
// to what is not a URI: readers refuse that, each in its own way.
bool IsWellFormed(const Attribute& aDeclaration);

class Scopes
{
public:
    Scopes() = default;
    ~Scopes();
    Scopes(const Scopes&) = delete;
    Scopes& operator=(const Scopes&) = delete;

    // A declaration that is well-formed holds from now on. Its prefix is kept as it is, in the caller's text, until
    // CutTo has gone back.
    void Declare(const Attribute& aDeclaration);
    // How many hold; and going back to that many, after an element.
    size_t size() const { return mReplaced.size(); }
    void CutTo(size_t aCount);

    // A text that is the same for the same namespace; empty for none.
    std::string_view NamespaceOf(std::string_view aPrefix) const;
    // False when the attribute has a prefix that is not declared, is an ID, or when the tag has it already.
    bool AddName(AttributeNames* aNames, const QName& anAttribute) const;

private:
    struct Replaced
    {
        std::string_view mPrefix;
        char* mNamespace; // owned
    };
    zoCustomHashTable* mNamespaces = nullptr; // numbers, by the prefix; "" for none
    zoCustomHashTable* mURIs = nullptr;       // numbers, by the URI
    List<Replaced> mReplaced;                 // what each declaration replaced
};

} // namespace DIDL
