#include <UPnP/Utilities/DIDL/Elements.h>

#include <Shared/Text.h>
#include <UPnP/Utilities/DIDL/NameIndex.h>
#include <UPnP/Utilities/DIDL/Names.h>
#include <zoltTools/zoConvert.h>

namespace DIDL
{

namespace
{

typedef void (*ElementHandler_t)(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes);

struct Element
{
    std::string_view mIdentifier; // the qualified name
    SingleText mText;             // kSingleText_Count: it is not a single text
    ElementHandler_t mHandler;    // reads what else there is; NULL: nothing
};

} // namespace

[[gnu::cold]] static void ParseBGMURI(ObjectParser* aParser, ILibXMLNode* /*aNode*/,
                                      const ILibXMLAttribute* anAttributes)
{
    GetXMLAttribute(anAttributes, "av", kDIDL_Attribute_DLNAProtocolInfo, &aParser->mFields.mBGMProtocolInfo);
}

// Only an element without child elements can be a number, so no text is read twice.
[[gnu::cold]] static void ParseChannelNr(ObjectParser* aParser, ILibXMLNode* aNode,
                                         const ILibXMLAttribute* /*anAttributes*/)
{
    if (aNode->Next != aNode->ClosingTag) { return; }
    const std::string_view theText = aParser->mResolver.Resolve(GetInnerXML(aNode));
    zoConvert_strntouint32(theText.data(), theText.size(), &aParser->mFields.mChannelNr);
}

[[gnu::cold]] static void ParseAlbumArtURI(ObjectParser* aParser, ILibXMLNode* aNode,
                                           const ILibXMLAttribute* anAttributes)
{
    const std::string_view theURI = aParser->ReadText(aNode, kRepeatedText_AlbumArt);
    if (theURI.empty()) { return; }
    std::string_view theProfile;
    GetXMLAttribute(anAttributes, "dlna", kDIDL_Attribute_DLNAProfileID, &theProfile);
    for (const std::string_view theText : { theURI, theProfile })
    {
        aParser->mAlbumArt.Append(Shared::TextOf(theText.data(), theText.size())); // a NUL would make it two strings
        aParser->mAlbumArt.Append('\0');
    }
}

// The first attribute of that name decides: one character other than "0" includes the derived classes.
static bool IncludesDerived(const ILibXMLAttribute* anAttributes)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!IsNamed(theAttribute, kDIDL_Attribute_IncludeDerived)) { continue; }
        return theAttribute->ValueLength == 1 && *theAttribute->Value != '0';
    }
    return false;
}

[[gnu::cold]] static void ParseCreateClass(ObjectParser* aParser, ILibXMLNode* aNode,
                                           const ILibXMLAttribute* anAttributes)
{
    const std::string_view theClass = aParser->ReadText(aNode, kRepeatedText_CreateClass);
    if (theClass.empty()) { return; }
    TextBuilder* theList = &aParser->mCreateClass;
    if (!theList->empty()) { theList->Append(';'); }
    theList->Append(theClass);
    if (IncludesDerived(anAttributes)) { theList->Append(",1"); }
}

static constexpr Element kElements[] = {
    { kDIDL_Tag_Title, kSingleText_Title, nullptr },
    { kDIDL_Tag_Class, kSingleText_Class, nullptr },
    { kDIDL_Tag_Creator, kSingleText_Creator, nullptr },
    { kDIDL_Tag_Date, kSingleText_Date, nullptr },
    { kDIDL_Tag_Genre, kSingleText_Genre, nullptr },
    { kDIDL_Tag_Album, kSingleText_Album, nullptr },
    { kDIDL_Tag_AlbumArtURI, kSingleText_Count, ParseAlbumArtURI },
    { kDIDL_Tag_ChannelNr, kSingleText_Count, ParseChannelNr },
    { kDIDL_Tag_CreateClass, kSingleText_Count, ParseCreateClass },
    { kDIDL_Tag_StorageMedium, kSingleText_StorageMedium, nullptr },
    { kDIDL_Tag_BGMURI, kSingleText_BGMURI, ParseBGMURI },
};

static constexpr NameIndex kElementIndex(kElements);

[[gnu::cold]] static void ParseDeclaration(ObjectParser* aParser, ILibXMLNode* aNode, std::string_view aName)
{
    if (aParser->mNamespaces.Has(aName)) { return; }
    const std::string_view theText = aParser->ReadText(aNode, kRepeatedText_Namespace);
    if (theText.data()) { aParser->mNamespaces.AppendXMLNS(aName, theText, ValueSource::Element); }
}

static void ParseExtraElement(ObjectParser* aParser, ILibXMLNode* aNode, std::string_view aName)
{
    if (aParser->mNextExtraTag + 1 > kLastExtraTag) { return; }
    const std::string_view theText = aParser->ReadText(aNode, kRepeatedText_ExtraInfo);
    if (!theText.data()) { return; }
    aParser->mEntry.AddText(static_cast<uint16>(aParser->mNextExtraTag), aName);
    aParser->mEntry.AddText(static_cast<uint16>(aParser->mNextExtraTag + 1), theText);
    aParser->mNextExtraTag += 2;
}

static void ParseKnownElement(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes,
                              const Element& anElement)
{
    if (anElement.mText != kSingleText_Count) { aParser->mTexts[anElement.mText] = GetInnerXML(aNode); }
    if (anElement.mHandler) { anElement.mHandler(aParser, aNode, anAttributes); }
}

void ParseElement(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    if (aNode->NSTag)
    {
        const std::string_view theName = Shared::QualifiedName(aNode);
        const Element* theElement = kElementIndex.Find(theName);
        if (theElement) { ParseKnownElement(aParser, aNode, anAttributes, *theElement); }
        else if (BeginsWithXMLNS(theName)) { ParseDeclaration(aParser, aNode, theName); }
        else { ParseExtraElement(aParser, aNode, theName); }
    }
    aParser->mNamespaces.AddXMLNameSpaces(anAttributes);
}

} // namespace DIDL
