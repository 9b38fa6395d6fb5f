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

// A resource's fields as they come from its attributes.
struct Resource
{
    Slice mProtocolInfo;
    Slice mResolution;
    Slice mImportURI;
    Slice mDTCPUploadInfo;
    Slice mIFOFileURI;
    uint32 mDuration;
    uint32 mBitRate;
    uint32 mColorDepth;
    uint32 mAudioChannelCount;
    uint32 mResumeUpload;
    uint32 mTrackTotal;
    uint32 mLifeTime;
    uint64 mSize;
    uint64 mUploadedSize;
    bool mfHasIFOFileURI;
};

typedef void (*ResourceReader_t)(const Slice& aValue, Resource* aResource);

struct ResourceAttribute
{
    const char* mIdentifier;
    size_t mLength;
    const char* mPrefix; // what the attribute's prefix must be a beginning of, and not ""; NULL: any or none
    ResourceReader_t mReader;
};

} // namespace

template <Slice Resource::*Field>
static void ReadText(const Slice& aValue, Resource* aResource)
{
    aResource->*Field = aValue;
}

static void ReadIFOFileURI(const Slice& aValue, Resource* aResource)
{
    aResource->mIFOFileURI = aValue;
    aResource->mfHasIFOFileURI = true;
}

template <uint32 Resource::*Field>
static void ReadUInt32(const Slice& aValue, Resource* aResource)
{
    zoConvert_strntouint32(aValue.mBegin, aValue.mLength, &(aResource->*Field));
}

template <uint64 Resource::*Field>
static void ReadUInt64(const Slice& aValue, Resource* aResource)
{
    zoULongLong theValue = { 0, 0 };
    zoConvert_strntoULongLong(aValue.mBegin, aValue.mLength, &theValue);
    aResource->*Field = zoULongLong_ToUInt64(&theValue);
}

// From bytes per second to bits.
static void ReadBitRate(const Slice& aValue, Resource* aResource)
{
    uint32 theBytes = 0;
    if (zoConvert_strntouint32(aValue.mBegin, aValue.mLength, &theBytes) != kzoConvertError_None) { return; }
    aResource->mBitRate = theBytes <= kBitRate_NotSet / 8 ? theBytes * 8 : kBitRate_NotSet;
}

static void ReadDuration(const Slice& aValue, Resource* aResource)
{
    aResource->mDuration = ILibString_ParseTimeString(NulTerminated(aValue).c_str());
}

static void ReadLifeTime(const Slice& aValue, Resource* aResource)
{
    const uint32 theTime = ILibString_ParseTimeString(NulTerminated(aValue).c_str());
    aResource->mLifeTime = std::min(std::max(theTime, 5u), 15u);
}

static constexpr ResourceAttribute kResourceAttributes[] = {
    { "protocolInfo", 12, nullptr, ReadText<&Resource::mProtocolInfo> },
    { "resolution", 10, nullptr, ReadText<&Resource::mResolution> },
    { "duration", 8, nullptr, ReadDuration },
    { "bitrate", 7, nullptr, ReadBitRate },
    { "colorDepth", 10, nullptr, ReadUInt32<&Resource::mColorDepth> },
    { "nrAudioChannels", 15, nullptr, ReadUInt32<&Resource::mAudioChannelCount> },
    { "size", 4, nullptr, ReadUInt64<&Resource::mSize> },
    { "resumeUpload", 12, "dlna", ReadUInt32<&Resource::mResumeUpload> },
    { "uploadedSize", 12, "dlna", ReadUInt64<&Resource::mUploadedSize> },
    { "trackTotal", 10, "dlna", ReadUInt32<&Resource::mTrackTotal> },
    { "lifetime", 8, "dlna", ReadLifeTime },
    { "ifoFileURI", 10, "dlna", ReadIFOFileURI },
    { "importURI", 9, nullptr, ReadText<&Resource::mImportURI> },
    { "uploadInfo", 10, "dtcp", ReadText<&Resource::mDTCPUploadInfo> },
};

static constexpr NameIndex kResourceAttributeIndex(kResourceAttributes);

// The attribute's row in the table, its prefix considered; NULL when it is none that a resource has a field for.
static const ResourceAttribute* FindResourceAttribute(const ILibXMLAttribute* anAttribute)
{
    const size_t theLength = static_cast<size_t>(anAttribute->NameLength);
    const ResourceAttribute* theRow = kResourceAttributeIndex.Find(anAttribute->Name, theLength);
    if (!theRow || !theRow->mPrefix) { return theRow; }
    const size_t thePrefixLength = static_cast<size_t>(anAttribute->PrefixLength);
    const bool fHasPrefix = thePrefixLength > 0 && thePrefixLength <= 4 &&
                            EqualsIgnoringCase(theRow->mPrefix, anAttribute->Prefix, thePrefixLength);
    return fHasPrefix ? theRow : nullptr;
}

static void ParseExtraAttribute(ObjectParser* aParser, const ILibXMLAttribute* anAttribute, uint32* aNextTag)
{
    const Slice theName = QualifiedName(anAttribute);
    const Slice theValue = RemoveQuotesFromAttributeValue(anAttribute);
    if (BeginsWithXMLNS(theName))
    {
        AppendXMLNS(&aParser->mNamespaces, theName, theValue);
        return;
    }
    if (*aNextTag + 1 > kLastExtraTag) { return; }
    AddText(aParser->mResources, static_cast<uint16>(*aNextTag), theName);
    AddText(aParser->mResources, static_cast<uint16>(*aNextTag + 1), theValue);
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

// The absolute form of a URI without a scheme, new; NULL for one that has a scheme.
static char* MakeAbsolute(const char* aBaseURL, const char* aURI)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(aURI);
    const bool fIsRelative = !theURI || zoStrEmpty(theURI->mScheme);
    zoURI_Delete(theURI);
    return fIsRelative ? zoURI_S_Combine(aBaseURL, aURI) : nullptr;
}

static void AddURI(ObjectParser* aParser, ILibXMLNode* aNode)
{
    Slice theText = { nullptr, 0 };
    if (TakeInnerXML(aParser, aNode, kManyTexts_URI, &theText)) { theText = Resolve(&aParser->mScratch, theText); }
    char* theAbsolute = nullptr;
    if (aParser->mBaseURL && theText.mLength > 0)
    {
        theAbsolute = MakeAbsolute(aParser->mBaseURL, NulTerminated(theText).c_str());
    }
    if (theAbsolute)
    {
        theText = { theAbsolute, strlen(theAbsolute) };
        aParser->mStored[kManyTexts_URI] += theText.mLength;
    }
    AddText(aParser->mResources, kCDSResourceInfo_URI, theText);
    free(theAbsolute);
}

static void AddProtocolInfo(ObjectParser* aParser, const Slice& aProtocolInfo)
{
    const Slice theText = Resolve(&aParser->mScratch, aProtocolInfo);
    if (zoDLNAProtocolInfo_IsNormal(theText.mBegin, theText.mLength))
    {
        AddText(aParser->mResources, kCDSResourceInfo_ProtocolInfo, theText);
        return;
    }
    char* theTextForm = NewTextForm(theText.mBegin, theText.mLength);
    zoPackedData_AddData(aParser->mResources, kCDSResourceInfo_ProtocolInfo, theTextForm, strlen(theTextForm) + 1);
    free(theTextForm);
}

void ParseResource(ObjectParser* aParser, ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    zoPackedData_t* theRecord = aParser->mResources;
    Resource theResource = {};
    zoPackedData_AddNewEntry(theRecord);
    ParseResourceAttributes(aParser, anAttributes, &theResource);

    AddURI(aParser, aNode);
    AddProtocolInfo(aParser, theResource.mProtocolInfo);
    AddText(theRecord, kCDSResourceInfo_Resolution, theResource.mResolution);
    AddNumber(theRecord, kCDSResourceInfo_Duration, theResource.mDuration);
    AddNumber(theRecord, kCDSResourceInfo_BitRate, theResource.mBitRate);
    AddNumber(theRecord, kCDSResourceInfo_ColorDepth, theResource.mColorDepth);
    AddNumber(theRecord, kCDSResourceInfo_Size, theResource.mSize);
    AddNumber(theRecord, kCDSResourceInfo_ResumeUpload, theResource.mResumeUpload);
    if (theResource.mfHasIFOFileURI)
    {
        AddResolvedText(aParser, theRecord, kCDSResourceInfo_IFOFileURI, theResource.mIFOFileURI);
    }
    AddResolvedText(aParser, theRecord, kCDSResourceInfo_ImportURI, theResource.mImportURI);
    AddResolvedText(aParser, theRecord, kCDSResourceInfo_DTCPUploadInfo, theResource.mDTCPUploadInfo);
    AddNumber(theRecord, kCDSResourceInfo_UploadedSize, theResource.mUploadedSize);
    AddNumber(theRecord, kCDSResourceInfo_AudioChannelCount, theResource.mAudioChannelCount);
    if (theResource.mTrackTotal != 0) { AddNumber(theRecord, kCDSResourceInfo_TrackTotal, theResource.mTrackTotal); }
    if (theResource.mLifeTime != 0) { AddNumber(theRecord, kCDSResourceInfo_LifeTime, theResource.mLifeTime); }
}

} // namespace DIDL
