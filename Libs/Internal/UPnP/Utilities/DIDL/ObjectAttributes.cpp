#include <UPnP/Utilities/DIDL/ObjectAttributes.h>

#include <UPnP/Utilities/DIDL/NameIndex.h>
#include <UPnP/Utilities/DIDL/Names.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <zoltTools/zoConvert.h>

namespace DIDL
{

namespace
{

enum SOAPType
{
    kSOAPType_None = 0, // ends the table
    kSOAPType_Str = 1,
    kSOAPType_UInt32 = 2,
    kSOAPType_BitField = 3,
    kSOAPType_UInt32Hex = 4
};

// An attribute of the object and what becomes of it.
struct DIDLParserInfo
{
    std::string_view mIdentifier;
    SOAPType mItemType;
    uint32 mValue; // the bit of a kSOAPType_BitField
};

// Where the value of a row of the table goes. A text is stored as written: its entities are resolved later.
union zoSOAPParserValue
{
    std::string_view* mStr;
    uint32* mUInt32;
    uint32* mBitField;
};

enum
{
    kDIDL_Attribute_ID_Index,
    kDIDL_Attribute_ParentID_Index,
    kDIDL_Attribute_RefID_Index,
    kDIDL_Attribute_ChildCount_Index,
    kDIDL_Attribute_Managed_Index,
    kDIDL_Attribute_Flags1_Index,
    kDIDL_Attribute_Flags2_Index,
    kDIDL_Attribute_Count
};

} // namespace

static constexpr DIDLParserInfo sInfo[] = {
    { kDIDL_Attribute_ID, kSOAPType_Str, 0 },
    { kDIDL_Attribute_ParentID, kSOAPType_Str, 0 },
    { kDIDL_Attribute_RefID, kSOAPType_Str, 0 },
    { kDIDL_Attribute_ChildCount, kSOAPType_UInt32, 0 },
    { kDIDL_Attribute_DLNAManaged, kSOAPType_UInt32Hex, 0 },
    { kDIDL_Attribute_Restricted, kSOAPType_BitField, kDIDL_Flags_Restricted },
    { kDIDL_Attribute_Searchable, kSOAPType_BitField, kDIDL_Flags_Searchable },
    { "", kSOAPType_None, 0 },
};
static_assert(sizeof(sInfo) / sizeof(sInfo[0]) == kDIDL_Attribute_Count + 1, "each row but the last has a target");

static constexpr NameIndex kInfoIndex(sInfo);

static int ParseBitField(const char* aValue, uint32 aBit, uint32* aBitField)
{
    if (UPnPUtil_IsStrTrue(aValue)) { *aBitField |= aBit; }
    else if (UPnPUtil_IsStrFalse(aValue)) { *aBitField &= ~aBit; }
    else { return 0; }
    return 1;
}

static int ParseAttribute(const DIDLParserInfo& anInfo, std::string_view aValue, zoSOAPParserValue aTarget,
                          EntityResolver* aResolver)
{
    if (anInfo.mItemType == kSOAPType_Str)
    {
        *aTarget.mStr = aValue;
        return 1;
    }
    const std::string_view theResolved = aResolver->Resolve(aValue);
    const NulTerminated theValue(theResolved);
    switch (anInfo.mItemType)
    {
    case kSOAPType_UInt32: zoConvert_strntouint32(theValue.c_str(), theResolved.size(), aTarget.mUInt32); return 1;
    case kSOAPType_UInt32Hex: zoConvert_strtouint32_base(theValue.c_str(), aTarget.mUInt32, 16); return 1;
    default: return ParseBitField(theValue.c_str(), anInfo.mValue, aTarget.mBitField);
    }
}

// Fills the targets, in the order of the table, from the attributes that the table names, whatever their prefix.
static int ParseAttributes(const ILibXMLAttribute* anAttributes, const zoSOAPParserValue* aTargets,
                           EntityResolver* aResolver)
{
    int theResult = 1;
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        const DIDLParserInfo* theRow = kInfoIndex.Find(Shared::LocalName(theAttribute));
        if (!theRow) { continue; }
        const std::string_view theValue = RemoveQuotesFromAttributeValue(theAttribute);
        if (!ParseAttribute(*theRow, theValue, aTargets[theRow - sInfo], aResolver)) { theResult = 0; }
    }
    return theResult;
}

int ParseObjectAttributes(ObjectParser* aParser, const ILibXMLAttribute* anAttributes)
{
    zoSOAPParserValue theTargets[kDIDL_Attribute_Count];
    theTargets[kDIDL_Attribute_ID_Index].mStr = &aParser->mFields.mItemID;
    theTargets[kDIDL_Attribute_ParentID_Index].mStr = &aParser->mFields.mParentID;
    theTargets[kDIDL_Attribute_RefID_Index].mStr = &aParser->mFields.mRefID;
    theTargets[kDIDL_Attribute_ChildCount_Index].mUInt32 = &aParser->mFields.mChildCount;
    theTargets[kDIDL_Attribute_Managed_Index].mUInt32 = &aParser->mFields.mManaged;
    theTargets[kDIDL_Attribute_Flags1_Index].mBitField = &aParser->mFields.mFlags;
    theTargets[kDIDL_Attribute_Flags2_Index].mBitField = &aParser->mFields.mFlags;
    return ParseAttributes(anAttributes, theTargets, &aParser->mResolver);
}

[[gnu::cold]] const char* FindInvalidFlag(const ILibXMLAttribute* anAttributes)
{
    EntityResolver theResolver;
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        const std::string_view theName = Shared::LocalName(theAttribute);
        const bool fIsFlag =
            IsSameName(theName, kDIDL_Attribute_Restricted) || IsSameName(theName, kDIDL_Attribute_Searchable);
        const NulTerminated theValue(theResolver.Resolve(RemoveQuotesFromAttributeValue(theAttribute)));
        uint32 theFlags = 0;
        if (fIsFlag && ParseBitField(theValue.c_str(), 1, &theFlags) == 0) { return theAttribute->Value; }
    }
    return nullptr;
}

} // namespace DIDL
