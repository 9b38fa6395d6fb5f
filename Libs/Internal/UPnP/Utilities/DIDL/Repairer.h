#pragma once

/* What makes the text of one object sendable while it is written. */

#include <UPnP/Utilities/DIDL/Scopes.h>
#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <zoltTools/zoBuffer.h>

namespace DIDL
{

class Repairer
{
public:
    // The namespaces that the writer itself uses, as bits.
    enum : uint32
    {
        kDefault = 1,
        kDC = 2,
        kUPnP = 4,
        kDLNA = 8,
        kUPnPAndDLNA = kUPnP | kDLNA,
        kAV = 16
    };

    // aNeeded: what FindLacking gave when the object was written before; 0 at first.
    Repairer(zoBuffer* aBuffer, uint32 aNeeded) : mBuffer(aBuffer), mNeeded(aNeeded) {}
    Repairer(const Repairer&) = delete;
    Repairer& operator=(const Repairer&) = delete;

    // Appends the declarations of a namespace list that can be written, and those that are needed. The list outlives
    // the repairer; it has no data when the record has none.
    void AppendDeclarations(std::string_view aList);
    // As AppendAllowed; replacements are counted.
    void AppendText(std::string_view aStr, size_t aMaxSize)
    {
        AppendAllowed(mBuffer, aStr, aMaxSize, &mRepairs.mReplaced);
    }
    // The text uses these namespaces.
    void Use(uint32 aNamespaces) { mUsed |= aNamespaces; }
    // True if the list declares them as the writer would: they need no Use.
    bool HasDeclared(uint32 aNamespaces) const { return (~mDeclared & aNamespaces) == 0; }

    // True if the pair can be written as an element; else it is counted.
    bool CanWriteElement(std::string_view aName);
    // The attributes of a resource: first those from fields are written, from now on; then pairs.
    void StartAttributes();
    bool CanWriteAttribute(std::string_view aName, bool afHasValue);

    // The namespaces that the text uses and does not declare: with them it is to be written once more. 0 for none.
    uint32 FindLacking() const { return HasDeclared(mUsed) ? 0 : FindUndeclared(); }
    const UPnPDIDLRepairs_t& GetRepairs() const { return mRepairs; }

private:
    [[gnu::cold]] uint32 FindUndeclared() const;
    bool IsKnown(std::string_view aDeclaration);
    [[gnu::cold]] bool IsOrdinary(std::string_view aDeclaration);
    bool AppendOrdinary(std::string_view aList);
    bool IsDeclared(std::string_view aPrefix) const;
    [[gnu::cold]] bool CanDeclare(std::string_view aPrefix);
    bool CountPair(bool afIsWritten);
    bool IsNew(const QName& anAttribute);
    [[gnu::cold]] bool IsNewExactly(const QName& anAttribute);
    [[gnu::cold]] void ReadDeclarations(std::string_view aPart);
    [[gnu::cold]] void AppendPart(std::string_view aPart, AttributeNames* aNames);
    [[gnu::cold]] void RepairDeclarations(std::string_view aList);

    enum : size_t
    {
        kFew = 8 // most texts have less
    };

    zoBuffer* mBuffer;
    UPnPDIDLRepairs_t mRepairs = {};
    uint32 mNeeded;
    uint32 mUsed = kDefault;

    // What is declared, unless mScopes knows: as the writer itself would, and otherwise.
    uint32 mDeclared = 0;
    uint32 mDeclaredOtherwise = 0;
    List<std::string_view> mPrefixes;
    Scopes mScopes;
    bool mfHasScopes = false;
    size_t mDeclarationsBegin = 0; // in the buffer, as is the next
    size_t mDeclarationsEnd = 0;

    size_t mAttributesBegin = 0;        // of a resource, in the buffer
    List<std::string_view> mLocalNames; // of its pairs, unless mNames has all
    AttributeNames mNames;
    bool mfHasNames = false;
};

} // namespace DIDL
