#include <UPnP/Utilities/DIDL/ObjectAttributes.h>

#include <UPnP/Utilities/DIDL/NameIndex.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <zoltTools/zoConvert.h>

namespace DIDL
{

namespace
{

enum SOAPType
{
    kSOAPType_Str = 1,
    kSOAPType_UInt32 = 2,
    kSOAPType_BitField = 3,
    kSOAPType_UInt32Hex = 4
};

// An attribute of the object and what becomes of it.
struct DIDLParserInfo
{
    const char* mIdentifier;
    size_t mLength;
    SOAPType mItemType;
    uint32 mValue; // the bit of a kSOAPType_BitField
};

// Where the value of a row of the table goes; a text is a piece of the document, its entities not resolved yet.
union zoSOAPParserValue
{
    Slice* mStr;
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

static constexpr DIDLParserInfo sInfo[kDIDL_Attribute_Count] = {
    { "id", 2, kSOAPType_Str, 0 },
    { "parentID", 8, kSOAPType_Str, 0 },
    { "refID", 5, kSOAPType_Str, 0 },
    { "childCount", 10, kSOAPType_UInt32, 0 },
    { "dlnaManaged", 11, kSOAPType_UInt32Hex, 0 },
    { "restricted", 10, kSOAPType_BitField, kDIDL_Flags_Restricted },
    { "searchable", 10, kSOAPType_BitField, kDIDL_Flags_Searchable },
};

static constexpr NameIndex kInfoIndex(sInfo);

static int ParseAttribute(const DIDLParserInfo& anInfo, const Slice& aValue, zoSOAPParserValue aTarget,
                          Scratch* aScratch)
{
    if (anInfo.mItemType == kSOAPType_Str)
    {
        *aTarget.mStr = aValue;
        return 1;
    }
    const Slice theResolved = Resolve(aScratch, aValue);
    const NulTerminated theValue(theResolved);
    switch (anInfo.mItemType)
    {
    case kSOAPType_UInt32: zoConvert_strntouint32(theValue.c_str(), theResolved.mLength, aTarget.mUInt32); return 1;
    case kSOAPType_UInt32Hex: zoConvert_strtouint32_base(theValue.c_str(), aTarget.mUInt32, 16); return 1;
    case kSOAPType_BitField:
        if (UPnPUtil_IsStrTrue(theValue.c_str())) { *aTarget.mBitField |= anInfo.mValue; }
        else if (UPnPUtil_IsStrFalse(theValue.c_str())) { *aTarget.mBitField &= ~anInfo.mValue; }
        else { return 0; }
        return 1;
    default: return 1;
    }
}

// Fills the targets, in the order of the table, from the attributes that the table knows under any prefix. The result
// is 0 when a flag is neither true nor false; the other attributes are read all the same.
static int ParseAttributes(const ILibXMLAttribute* anAttributes, const zoSOAPParserValue* aTargets, Scratch* aScratch)
{
    int theResult = 1;
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        const DIDLParserInfo* theRow =
            kInfoIndex.Find(theAttribute->Name, static_cast<size_t>(theAttribute->NameLength));
        if (!theRow) { continue; }
        const Slice theValue = RemoveQuotesFromAttributeValue(theAttribute);
        if (!ParseAttribute(*theRow, theValue, aTargets[theRow - sInfo], aScratch)) { theResult = 0; }
    }
    return theResult;
}

int ParseObjectAttributes(ObjectParser* aParser, const ILibXMLAttribute* anAttributes)
{
    zoSOAPParserValue theTargets[kDIDL_Attribute_Count];
    theTargets[kDIDL_Attribute_ID_Index].mStr = &aParser->mID;
    theTargets[kDIDL_Attribute_ParentID_Index].mStr = &aParser->mParentID;
    theTargets[kDIDL_Attribute_RefID_Index].mStr = &aParser->mRefID;
    theTargets[kDIDL_Attribute_ChildCount_Index].mUInt32 = &aParser->mChildCount;
    theTargets[kDIDL_Attribute_Managed_Index].mUInt32 = &aParser->mManaged;
    theTargets[kDIDL_Attribute_Flags1_Index].mBitField = &aParser->mFlags;
    theTargets[kDIDL_Attribute_Flags2_Index].mBitField = &aParser->mFlags;
    return ParseAttributes(anAttributes, theTargets, &aParser->mScratch);
}

} // namespace DIDL
