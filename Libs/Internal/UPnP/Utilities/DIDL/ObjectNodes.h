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

// True if there are objects among the child elements of an element.
inline bool HasInnerObjects(const ILibXMLNode* aStartTag)
{
    if (aStartTag->Next == aStartTag->ClosingTag) { return false; }
    const ILibXMLNode* theChild = aStartTag->Next;
    while (theChild && !IsObject(theChild))
        theChild = theChild->Peer;
    return theChild != nullptr;
}

// The nodes that make an object: those between its start tag and its end tag, with the objects inside or without.
struct ObjectNodes
{
    ILibXMLNode* mStartTag;   // NULL for an object without nodes
    bool mfSkipsInnerObjects; // of which there are some

    // aNode, or the end tag of the object inside that begins there when those are skipped.
    ILibXMLNode* SkipInnerObject(ILibXMLNode* aNode) const
    {
        const bool fIsSkipped = mfSkipsInnerObjects && aNode->StartTag && aNode->Parent == mStartTag && IsObject(aNode);
        return fIsSkipped ? aNode->ClosingTag : aNode;
    }

    // The length of the object's text, given that of its inner XML.
    size_t TextLength(size_t aLength) const
    {
        if (!mfSkipsInnerObjects) { return aLength; }
        for (ILibXMLNode* theChild = mStartTag->Next; theChild; theChild = theChild->Peer)
            if (IsObject(theChild)) { aLength -= GetInnerXML(theChild).size(); }
        return aLength;
    }
};

} // namespace DIDL
