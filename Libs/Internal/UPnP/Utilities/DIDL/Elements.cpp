#include <UPnP/Utilities/DIDL/Elements.h>

#include <UPnP/Utilities/DIDL/NameIndex.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

namespace
{

typedef void (*ElementHandler_t)(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes,
                                 int aParameter);

struct Element
{
    const char* mIdentifier;
    size_t mLength;
    ElementHandler_t mHandler;
    int mParameter;
};

} // namespace

static void ParseSingleText(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute*, int aSingleText)
{
    aParser->mLast[aSingleText] = aNode;
}

static void ParseBGMURI(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes, int)
{
    aParser->mLast[kSingleText_BGMURI] = aNode;
    GetXMLAttribute(anAttributes, "av", "protocolInfo", &aParser->mBGMProtocolInfo);
}

static void ParseChannelNr(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute*, int)
{
    Slice theText;
    if (!TakeInnerXML(aParser, aNode, kManyTexts_ChannelNr, &theText)) { return; }
    theText = Resolve(&aParser->mScratch, theText);
    zoConvert_strntouint32(theText.mBegin, theText.mLength, &aParser->mChannelNr);
}

static zoArray_t* NewStringArray()
{
    zoArray_t* theArray = zoArray_New();
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    return theArray;
}

static void ParseAlbumArtURI(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes, int)
{
    Slice theText;
    if (!TakeInnerXML(aParser, aNode, kManyTexts_AlbumArt, &theText)) { return; }
    theText = Resolve(&aParser->mScratch, theText);
    if (theText.mLength == 0) { return; }
    Slice theProfile = { nullptr, 0 };
    GetXMLAttribute(anAttributes, "dlna", "profileID", &theProfile);
    if (!aParser->mAlbumArt) { aParser->mAlbumArt = NewStringArray(); }
    zoArray_Append(aParser->mAlbumArt, zoStrndup(theText.mBegin, theText.mLength));
    zoArray_Append(aParser->mAlbumArt, zoStrndup(theProfile.mBegin ? theProfile.mBegin : "", theProfile.mLength));
}

static bool IncludesDerived(const ILibXMLAttribute* anAttributes)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (IsName(theAttribute->Name, theAttribute->NameLength, "includeDerived"))
        {
            return theAttribute->ValueLength == 1 && *theAttribute->Value != '0';
        }
    }
    return false;
}

static void ParseCreateClass(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes, int)
{
    Slice theText;
    if (!TakeInnerXML(aParser, aNode, kManyTexts_CreateClass, &theText)) { return; }
    theText = Resolve(&aParser->mScratch, theText);
    if (theText.mLength == 0) { return; }
    TextBuilder* theList = &aParser->mCreateClass;
    if (theList->mLength > 0) { Append(theList, ";", 1); }
    Append(theList, theText.mBegin, theText.mLength);
    if (IncludesDerived(anAttributes)) { Append(theList, ",1", 2); }
}

static constexpr Element kElements[] = {
    { "dc:title", 8, ParseSingleText, kSingleText_Title },
    { "upnp:class", 10, ParseSingleText, kSingleText_Class },
    { "dc:creator", 10, ParseSingleText, kSingleText_Creator },
    { "dc:date", 7, ParseSingleText, kSingleText_Date },
    { "upnp:genre", 10, ParseSingleText, kSingleText_Genre },
    { "upnp:album", 10, ParseSingleText, kSingleText_Album },
    { "upnp:albumArtURI", 16, ParseAlbumArtURI, 0 },
    { "upnp:channelNr", 14, ParseChannelNr, 0 },
    { "upnp:createClass", 16, ParseCreateClass, 0 },
    { "upnp:storageMedium", 18, ParseSingleText, kSingleText_StorageMedium },
    { "av:bgmURI", 9, ParseBGMURI, 0 },
};

static constexpr NameIndex kElementIndex(kElements);

// An element that the object has no field for.
static void ParseExtraElement(ObjectParser* aParser, ILibXMLNode* aNode)
{
    const Slice theName = QualifiedName(aNode);
    const bool fIsDeclaration = BeginsWithXMLNS(theName);
    Slice theText;
    if (!fIsDeclaration && aParser->mNextExtraTag + 1 > kLastExtraTag) { return; }
    if (!TakeInnerXML(aParser, aNode, kManyTexts_ExtraInfo, &theText)) { return; }
    if (fIsDeclaration)
    {
        AppendXMLNS(&aParser->mNamespaces, theName, theText); // as written: it is written into a tag again
        return;
    }
    AddText(aParser->mEntry, static_cast<uint16>(aParser->mNextExtraTag), theName);
    AddText(aParser->mEntry, static_cast<uint16>(aParser->mNextExtraTag + 1), Resolve(&aParser->mScratch, theText));
    aParser->mNextExtraTag += 2;
}

void ParseElement(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    if (aNode->NSTag)
    {
        const Slice theName = QualifiedName(aNode);
        const Element* theElement = kElementIndex.Find(theName.mBegin, theName.mLength);
        if (theElement) { theElement->mHandler(aParser, aNode, anAttributes, theElement->mParameter); }
        else { ParseExtraElement(aParser, aNode); }
    }
    AddXMLNameSpaces(anAttributes, &aParser->mNamespaces);
}

} // namespace DIDL
