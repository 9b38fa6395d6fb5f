#include <UPnP/Utilities/DIDL/Resources.h>

#include <UPnP/Stack/ILibString.h>
#include <UPnP/Utilities/DIDL/NameIndex.h>
#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <algorithm>
#include <stdlib.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoURI.h>

namespace DIDL
{

namespace
{

// A resource's fields. Texts are as written, without data when the attribute is missing.
struct Resource
{
    std::string_view mProtocolInfo;
    std::string_view mResolution;
    std::string_view mIFOFileURI;
    std::string_view mImportURI;
    std::string_view mDTCPUploadInfo;
    uint64 mSize;
    uint64 mUploadedSize;
    uint32 mDuration;
    uint32 mBitRate;
    uint32 mColorDepth;
    uint32 mResumeUpload;
    uint32 mAudioChannelCount;
    uint32 mTrackTotal;
    uint32 mLifeTime;
};

typedef void (*ResourceReader_t)(std::string_view aValue, Resource* aResource);

struct ResourceAttribute
{
    std::string_view mIdentifier;
    std::string_view mPrefix; // an attribute needs a prefix that it starts with; "" for any prefix or none
    ResourceReader_t mReader;
};

} // namespace

template <std::string_view Resource::*Field>
static void ReadText(std::string_view aValue, Resource* aResource)
{
    aResource->*Field = aValue;
}

template <uint32 Resource::*Field>
static void ReadUInt32(std::string_view aValue, Resource* aResource)
{
    zoConvert_strntouint32(aValue.data(), aValue.size(), &(aResource->*Field));
}

template <uint64 Resource::*Field>
static void ReadUInt64(std::string_view aValue, Resource* aResource)
{
    zoULongLong theValue = { 0, 0 };
    zoConvert_strntoULongLong(aValue.data(), aValue.size(), &theValue);
    aResource->*Field = zoULongLong_ToUInt64(&theValue);
}

// From bytes per second to bits.
static void ReadBitRate(std::string_view aValue, Resource* aResource)
{
    uint32 theBytes = 0;
    if (zoConvert_strntouint32(aValue.data(), aValue.size(), &theBytes) != kzoConvertError_None) { return; }
    aResource->mBitRate = theBytes <= kBitRate_NotSet / 8 ? theBytes * 8 : kBitRate_NotSet;
}

static void ReadDuration(std::string_view aValue, Resource* aResource)
{
    aResource->mDuration = ILibString_ParseTimeString(NulTerminated(aValue).c_str());
}

static void ReadLifeTime(std::string_view aValue, Resource* aResource)
{
    const uint32 theTime = ILibString_ParseTimeString(NulTerminated(aValue).c_str());
    aResource->mLifeTime = std::min(std::max(theTime, 5u), 15u);
}

static constexpr ResourceAttribute kResourceAttributes[] = {
    { kDIDL_ResAttribute_ProtocolInfo, "", ReadText<&Resource::mProtocolInfo> },
    { kDIDL_ResAttribute_Resolution, "", ReadText<&Resource::mResolution> },
    { kDIDL_ResAttribute_Duration, "", ReadDuration },
    { kDIDL_ResAttribute_BitRate, "", ReadBitRate },
    { kDIDL_ResAttribute_ColorDepth, "", ReadUInt32<&Resource::mColorDepth> },
    { kDIDL_ResAttribute_AudioChannelCount, "", ReadUInt32<&Resource::mAudioChannelCount> },
    { kDIDL_ResAttribute_Size, "", ReadUInt64<&Resource::mSize> },
    { kDIDL_ResAttribute_ResumeUpload, kDIDL_ResAttribute_ResumeUploadPrefix, ReadUInt32<&Resource::mResumeUpload> },
    { kDIDL_ResAttribute_UploadedSize, kDIDL_ResAttribute_UploadedSizePrefix, ReadUInt64<&Resource::mUploadedSize> },
    { kDIDL_ResAttribute_TrackTotal, kDIDL_ResAttribute_TrackTotalPrefix, ReadUInt32<&Resource::mTrackTotal> },
    { kDIDL_ResAttribute_Lifetime, kDIDL_ResAttribute_LifetimePrefix, ReadLifeTime },
    { kDIDL_ResAttribute_IFOFileURI, kDIDL_ResAttribute_IFOFileURIPrefix, ReadText<&Resource::mIFOFileURI> },
    { kDIDL_ResAttribute_ImportURI, "", ReadText<&Resource::mImportURI> },
    { kDIDL_ResAttribute_DTCPUploadInfo, kDIDL_ResAttribute_DTCPUploadInfoPrefix,
      ReadText<&Resource::mDTCPUploadInfo> },
};

static constexpr NameIndex kResourceAttributeIndex(kResourceAttributes);

// The attribute's row in the table; NULL when a resource has no field for it.
static const ResourceAttribute* FindResourceAttribute(const ILibXMLAttribute* anAttribute)
{
    const ResourceAttribute* theRow = kResourceAttributeIndex.Find(Shared::LocalName(anAttribute));
    if (!theRow || theRow->mPrefix.empty()) { return theRow; }
    const std::string_view thePrefix = Shared::Prefix(anAttribute);
    const bool fHasPrefix =
        !thePrefix.empty() && Shared::EqualsIgnoringCase(theRow->mPrefix.substr(0, thePrefix.size()), thePrefix);
    return fHasPrefix ? theRow : nullptr;
}

static void ParseExtraAttribute(ObjectParser* aParser, const ILibXMLAttribute* anAttribute, uint32* aNextTag)
{
    const std::string_view theName = Shared::QualifiedName(anAttribute);
    const std::string_view theValue = RemoveQuotesFromAttributeValue(anAttribute);
    if (BeginsWithXMLNS(theName))
    {
        aParser->mNamespaces.AppendXMLNS(theName, theValue, ValueSource::Attribute);
        return;
    }
    if (*aNextTag + 1 > kLastExtraTag) { return; }
    aParser->mResources.AddText(static_cast<uint16>(*aNextTag), theName);
    aParser->mResources.AddText(static_cast<uint16>(*aNextTag + 1), theValue);
    *aNextTag += 2;
}

static void ParseResourceAttributes(ObjectParser* aParser, const ILibXMLAttribute* anAttributes, Resource* aResource)
{
    uint32 theNextTag = kCDSResourceInfo_Count;
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        const ResourceAttribute* theRow = FindResourceAttribute(theAttribute);
        if (theRow) { theRow->mReader(RemoveQuotesFromAttributeValue(theAttribute), aResource); }
        else { ParseExtraAttribute(aParser, theAttribute, &theNextTag); }
    }
}

static bool HasScheme(const char* aURI)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(aURI);
    const bool fHasScheme = theURI && !zoStrEmpty(theURI->mScheme);
    zoURI_Delete(theURI);
    return fHasScheme;
}

// The absolute form of a relative URI, new; NULL when the URI is stored as written.
[[gnu::noinline]] static char* NewAbsoluteURI(ObjectParser* aParser, std::string_view aURI)
{
    const NulTerminated theURI(aURI);
    if (aURI.empty() || HasScheme(theURI.c_str())) { return nullptr; }
    char* theAbsolute = zoURI_S_Combine(aParser->mBaseURL, theURI.c_str());
    const size_t theLength = strlen(theAbsolute);
    if (theLength > aParser->mMaxAbsolute - aParser->mAbsoluteLength)
    {
        free(theAbsolute);
        return nullptr;
    }
    aParser->mAbsoluteLength += theLength;
    return theAbsolute;
}

static void AddURI(ObjectParser* aParser, ILibXMLNode* aNode)
{
    // "" when enough is stored: each resource has an entry.
    const std::string_view theURI = aParser->ReadText(aNode, kRepeatedText_URI);
    char* theAbsolute = aParser->mBaseURL ? NewAbsoluteURI(aParser, theURI) : nullptr;
    aParser->mResources.AddText(kCDSResourceInfo_URI, theAbsolute ? std::string_view(theAbsolute) : theURI);
    free(theAbsolute);
}

static void AddProtocolInfo(ObjectParser* aParser, std::string_view aProtocolInfo)
{
    const std::string_view theText = aParser->mResolver.Resolve(aProtocolInfo);
    const bool fIsNormal = zoDLNAProtocolInfo_IsNormal(theText.data(), theText.size());
    char* theTextForm = fIsNormal ? nullptr : NewTextForm(theText.data(), theText.size());
    aParser->mResources.AddText(kCDSResourceInfo_ProtocolInfo, fIsNormal ? theText : std::string_view(theTextForm));
    free(theTextForm);
}

// The fields after those.
template <typename End>
static void AddFields(const Resource& aResource, End* anEnd)
{
    anEnd->AddText(kCDSResourceInfo_Resolution, aResource.mResolution);
    anEnd->AddNumber(kCDSResourceInfo_Duration, aResource.mDuration);
    anEnd->AddNumber(kCDSResourceInfo_BitRate, aResource.mBitRate);
    anEnd->AddNumber(kCDSResourceInfo_ColorDepth, aResource.mColorDepth);
    anEnd->AddNumber(kCDSResourceInfo_Size, aResource.mSize);
    anEnd->AddNumber(kCDSResourceInfo_ResumeUpload, aResource.mResumeUpload);
    if (aResource.mIFOFileURI.data()) { anEnd->AddMarkup(kCDSResourceInfo_IFOFileURI, aResource.mIFOFileURI); }
    anEnd->AddMarkup(kCDSResourceInfo_ImportURI, aResource.mImportURI);
    anEnd->AddMarkup(kCDSResourceInfo_DTCPUploadInfo, aResource.mDTCPUploadInfo);
    anEnd->AddNumber(kCDSResourceInfo_UploadedSize, aResource.mUploadedSize);
    anEnd->AddNumber(kCDSResourceInfo_AudioChannelCount, aResource.mAudioChannelCount);
    if (aResource.mTrackTotal != 0) { anEnd->AddNumber(kCDSResourceInfo_TrackTotal, aResource.mTrackTotal); }
    if (aResource.mLifeTime != 0) { anEnd->AddNumber(kCDSResourceInfo_LifeTime, aResource.mLifeTime); }
}

void ParseResource(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    Resource theResource = {};
    ParseResourceAttributes(aParser, anAttributes, &theResource);
    AddURI(aParser, aNode);
    AddProtocolInfo(aParser, theResource.mProtocolInfo);
    const EntityResolver* theResolver = aParser->mResolver.IsObjectPlain() ? nullptr : &aParser->mResolver;
    aParser->mResources.AddValues(theResolver, [&theResource](auto* anEnd) { AddFields(theResource, anEnd); });
    aParser->mResources.EndEntry();
}

} // namespace DIDL
