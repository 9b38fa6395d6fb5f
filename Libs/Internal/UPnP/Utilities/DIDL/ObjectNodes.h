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

// True if the name of an element is as long as that of an object or of DIDL-Lite.
inline bool HasObjectLength(const ILibXMLNode* aNode) { return aNode->NameLength == 4 || aNode->NameLength == 9; }

// kDIDLItemType_None for an element that is not an object.
inline int TypeOf(const ILibXMLNode* aNode) { return HasObjectLength(aNode) ? TypeOfName(aNode) : kDIDLItemType_None; }

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

    // True if an element is one of the objects inside, which are skipped.
    bool IsSkipped(const ILibXMLNode* aStartTag) const { return mfSkipsInnerObjects && IsInnerObject(aStartTag); }

    [[gnu::cold, gnu::noinline]] bool IsInnerObject(const ILibXMLNode* aStartTag) const
    {
        return aStartTag->Parent == mStartTag && IsObject(aStartTag);
    }

    // The length of the object's text, given that of its inner XML.
    size_t TextLength(size_t aLength) const
    {
        if (!mStartTag || !mfSkipsInnerObjects) { return aLength; }
        for (ILibXMLNode* theChild = mStartTag->Next; theChild; theChild = theChild->Peer)
            if (IsObject(theChild)) { aLength -= GetInnerXML(theChild).size(); }
        return aLength;
    }
};

} // namespace DIDL
