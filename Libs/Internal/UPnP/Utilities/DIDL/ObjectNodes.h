#pragma once

#include <UPnP/Utilities/DIDL/DocumentText.h>
#include <UPnP/Utilities/UPnPDIDL.h>

namespace DIDL
{

// Not inline: few elements have a name of that length.
[[gnu::noinline]] inline int TypeOfName(const ILibXMLNode* aNode)
{
    if (IsNamed(aNode, "item")) { return kDIDLItemType_Item; }
    return IsNamed(aNode, "container") ? kDIDLItemType_Container : kDIDLItemType_None;
}

// kDIDLItemType_None for an element that is not an object.
inline int TypeOf(const ILibXMLNode* aNode)
{
    const bool fHasLength = aNode->NameLength == 4 || aNode->NameLength == 9;
    return fHasLength ? TypeOfName(aNode) : kDIDLItemType_None;
}

inline bool IsObject(const ILibXMLNode* aNode) { return TypeOf(aNode) != kDIDLItemType_None; }

// The nodes that make an object: those between its start tag and its end tag, with the objects inside or without.
struct ObjectNodes
{
    ILibXMLNode* mStartTag; // NULL for an object without nodes
    bool mfSkipsInnerObjects;

    // aNode, or the end tag of the object inside that begins there when those are skipped.
    ILibXMLNode* SkipInnerObject(ILibXMLNode* aNode) const
    {
        const bool fIsSkipped = mfSkipsInnerObjects && aNode->StartTag && aNode->Parent == mStartTag && IsObject(aNode);
        return fIsSkipped ? aNode->ClosingTag : aNode;
    }

    // The length of the object's text.
    size_t TextLength() const
    {
        size_t theLength = GetInnerXML(mStartTag).size();
        if (!mfSkipsInnerObjects || theLength == 0 || mStartTag->Next == mStartTag->ClosingTag) { return theLength; }
        for (ILibXMLNode* theChild = mStartTag->Next; theChild; theChild = theChild->Peer)
            if (IsObject(theChild)) { theLength -= GetInnerXML(theChild).size(); }
        return theLength;
    }
};

} // namespace DIDL
