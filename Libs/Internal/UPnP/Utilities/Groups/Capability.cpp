#include <UPnP/Utilities/Groups/Capability.h>

#include <UPnP/Utilities/Groups/Elements.h>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

namespace Groups
{

namespace
{

enum CapabilityAttribute
{
    kCapability,
    kGroupedUDN,
    kUDN,
    kMode,
    kCapabilityAttribute_Count
};

constexpr std::string_view kCapabilityAttributes[kCapabilityAttribute_Count] = { "capability", "groupedUDN", "UDN",
                                                                                 "mode" };
static_assert(!kCapabilityAttributes[kCapabilityAttribute_Count - 1].empty());

} // namespace

// NULL for an absent attribute.
static int ModeOf(const ILibXMLAttribute* anAttribute)
{
    if (!anAttribute) { return kUPnPGroupMode_None; }
    if (Shared::Equals(ValueOf(anAttribute), "slave")) { return kUPnPGroupMode_Slave; }
    return Shared::Equals(ValueOf(anAttribute), "master") ? kUPnPGroupMode_Master : kUPnPGroupMode_None;
}

static char* NewValue(const ILibXMLAttribute* anAttribute)
{
    const std::string_view theValue = ValueOf(anAttribute);
    return zoStrndup(theValue.data(), theValue.size());
}

// NULL when one of the required attributes is absent. The last one of a name counts.
static UPnPGroupCapability* NewCapability(ILibXMLNode* anElement)
{
    const ILibXMLAttribute* theGiven[kCapabilityAttribute_Count + 1] = {}; // the last one: of any other name
    const Attributes theAttributes(anElement);
    for (const ILibXMLAttribute* theAttribute = theAttributes.mFirst; theAttribute; theAttribute = theAttribute->Next)
        theGiven[FindName(theAttribute, kCapabilityAttributes)] = theAttribute;
    if (!theGiven[kCapability] || !theGiven[kGroupedUDN] || !theGiven[kUDN]) { return nullptr; }
    UPnPGroupCapability* theCapability = static_cast<UPnPGroupCapability*>(zoMallocZeroed(sizeof(UPnPGroupCapability)));
    theCapability->mName = NewValue(theGiven[kCapability]);
    theCapability->mGroupedUDN = NewValue(theGiven[kGroupedUDN]);
    theCapability->mMode = ModeOf(theGiven[kMode]);
    return theCapability;
}

CapabilityError ReadCapability(const char* aText, UPnPGroupCapability** aCapability)
{
    *aCapability = nullptr;
    const Document theDocument(aText);
    if (!theDocument.mfIsWellFormed) { return kCapability_NotWellFormed; }
    const ILibXMLNode* theRoot = theDocument.mNodes;
    if (!IsStartTag(theRoot, "groupCapabilities")) { return kCapability_Good; }
    ILibXMLNode* theElement = NextElement(theRoot, theRoot, "groupCapability");
    if (!theElement) { return kCapability_Good; }
    *aCapability = NewCapability(theElement);
    return *aCapability ? kCapability_Good : kCapability_Incomplete;
}

void DeleteCapability(void* aCapability)
{
    UPnPGroupCapability* theCapability = static_cast<UPnPGroupCapability*>(aCapability);
    free(theCapability->mName);
    free(theCapability->mGroupedUDN);
    free(theCapability);
}

} // namespace Groups
