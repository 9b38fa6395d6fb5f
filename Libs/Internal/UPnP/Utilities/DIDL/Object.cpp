#include <UPnP/Utilities/DIDL/Object.h>

#include <algorithm>
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <zoltTools/zoConvert.h>

namespace DIDL
{

static const size_t kMaxBaseURLLength = 1024;
static const uint32 kUnknownChildCount = 0xFFFFFFFF;

// What an object may store, as multiples of its text. A text that is stored once, or whose size is that of what it
// replaces, never gets near; the least sizes are for objects of a few bytes.
static const size_t kStoredPerText = 4;
static const size_t kLeastStored = 4096;
static const size_t kAbsolutePerText = 8;
static const size_t kLeastAbsolute = 4096;
static const size_t kInheritedPerText = 4;
static const size_t kLeastInherited = 256;

// What is read for one kind, as a multiple of what may be stored: long references may stand for few bytes.
static const size_t kReadPerStored = 8;

static size_t Multiple(size_t aSize, size_t aFactor)
{
    return aSize <= SIZE_MAX / aFactor ? aSize * aFactor : SIZE_MAX;
}

std::string_view ObjectParser::ReadText(ILibXMLNode* aNode, RepeatedText aKind)
{
    TextSizes* theSizes = &mSizes[aKind];
    if (theSizes->mStored > mMaxStored || theSizes->mRead > mMaxRead) { return {}; }
    const std::string_view theText = GetInnerXML(aNode);
    const std::string_view theResolved = mResolver.Resolve(theText);
    theSizes->mRead += theText.size();
    theSizes->mStored += theResolved.size();
    return theResolved;
}

void StartObject(ObjectParser* aParser, const ObjectNodes& aNodes, const char* aBaseURL, int afIsItem)
{
    aParser->mNodes = aNodes;
    const std::string_view theText = aNodes.mStartTag ? GetInnerXML(aNodes.mStartTag) : std::string_view();
    aParser->mTextLength = aNodes.TextLength(theText.size());
    aParser->mMaxStored = std::max(Multiple(aParser->mTextLength, kStoredPerText), kLeastStored);
    aParser->mMaxRead = Multiple(aParser->mMaxStored, kReadPerStored);
    aParser->mMaxAbsolute = std::max(Multiple(aParser->mTextLength, kAbsolutePerText), kLeastAbsolute);
    const bool fHasBaseURL = aBaseURL && strnlen(aBaseURL, kMaxBaseURLLength + 1) <= kMaxBaseURLLength;
    aParser->mBaseURL = fHasBaseURL ? aBaseURL : nullptr;

    if (theText.data())
    {
        const char* theBegin = Shared::QualifiedName(aNodes.mStartTag).data();
        aParser->mResolver.SetObject({ theBegin, static_cast<size_t>(theText.data() + theText.size() - theBegin) });
    }
    aParser->mFields.mIsContainer = !afIsItem;
    aParser->mFields.mFlags = kDIDL_Flags_Restricted | (afIsItem ? 0 : kDIDL_Flags_Searchable);
    aParser->mFields.mChildCount = kUnknownChildCount;
}

size_t MaxInheritedSize(const ObjectParser& aParser)
{
    return std::max(Multiple(aParser.mTextLength, kInheritedPerText), kLeastInherited);
}

// ---- The object's fields ----

static bool IsDate(std::string_view aText)
{
    return zoConvert_dlnadatestrtodate(NulTerminated(aText).c_str(), nullptr) == kzoConvertError_None;
}

// The date, resolved; empty without a valid one. The next text that the resolver resolves may overwrite it.
static std::string_view ReadDate(ObjectParser* aParser)
{
    const std::string_view theDate = aParser->mResolver.Resolve(aParser->mTexts[kSingleText_Date]);
    return theDate.empty() || IsDate(theDate) ? theDate : std::string_view();
}

template <typename End>
static void AddFields(const ObjectParser& aParser, std::string_view aDate, End* anEnd)
{
    const EntryFields& theFields = aParser.mFields;
    const std::string_view* theTexts = aParser.mTexts;

    anEnd->AddMarkup(kCDSEntryInfo_Title, theTexts[kSingleText_Title]);
    anEnd->AddMarkup(kCDSEntryInfo_Creator, theTexts[kSingleText_Creator]);
    if (theTexts[kSingleText_Date].data()) { anEnd->AddText(kCDSEntryInfo_Date, aDate); }
    else { anEnd->AddNoBytes(kCDSEntryInfo_Date); }
    anEnd->AddMarkup(kCDSEntryInfo_Genre, theTexts[kSingleText_Genre]);
    anEnd->AddMarkup(kCDSEntryInfo_Album, theTexts[kSingleText_Album]);
    anEnd->AddText(kCDSEntryInfo_CreateClass, aParser.mCreateClass.Text());
    anEnd->AddMarkup(kCDSEntryInfo_ParentID, theFields.mParentID);
    anEnd->AddNumber(kCDSEntryInfo_IsContainer, theFields.mIsContainer);
    anEnd->AddNumber(kCDSEntryInfo_UpdateID, uint32{ 0 });
    anEnd->AddNumber(kCDSEntryInfo_ChildCount, theFields.mChildCount);
    anEnd->AddMarkup(kCDSEntryInfo_ItemClassName, theTexts[kSingleText_Class]);
    anEnd->AddMarkup(kCDSEntryInfo_ItemID, theFields.mItemID);
    anEnd->AddNumber(kCDSEntryInfo_ChannelNr, theFields.mChannelNr);
    anEnd->AddNumber(kCDSEntryInfo_Flags, theFields.mFlags);
    anEnd->AddMarkup(kCDSEntryInfo_BGMURI, theTexts[kSingleText_BGMURI]);
    anEnd->AddText(kCDSEntryInfo_BGMURIProtocolInfo, theFields.mBGMProtocolInfo);
    anEnd->AddNumber(kCDSEntryInfo_DLNAManaged, theFields.mManaged);
    anEnd->AddMarkup(kCDSEntryInfo_RefID, theFields.mRefID);
    if (theTexts[kSingleText_StorageMedium].data())
    {
        anEnd->AddMarkup(kCDSEntryInfo_StorageMedium, theTexts[kSingleText_StorageMedium]);
    }
    else { anEnd->AddNoBytes(kCDSEntryInfo_StorageMedium); }
    if (!aParser.mNamespaces.empty()) { anEnd->AddText(kCDSEntryInfo_XMLNS, aParser.mNamespaces.Text()); }
}

// NULL when there is nothing to resolve. The attributes need not be those of the object's start tag.
static const EntityResolver* ResolverFor(const ObjectParser& aParser)
{
    const EntityResolver* theResolver = &aParser.mResolver;
    const EntryFields& theFields = aParser.mFields;
    const bool fIsPlain = theResolver->IsObjectPlain() && theResolver->IsPlain(theFields.mItemID) &&
                          theResolver->IsPlain(theFields.mParentID) && theResolver->IsPlain(theFields.mRefID);
    return fIsPlain ? nullptr : theResolver;
}

void FinishObject(ObjectParser* aParser, char** aData, char** aRes)
{
    const std::string_view theDate = ReadDate(aParser);
    aParser->mEntry.AddValues(ResolverFor(*aParser), [&](auto* anEnd) { AddFields(*aParser, theDate, anEnd); });
    aParser->mEntry.AddStrings(kCDSEntryInfo_AlbumArtURI, aParser->mAlbumArt.Text());
    aParser->mEntry.EndEntry();
    *aRes = aParser->mResources.NewBlock(); // first: the entry's bytes were written a moment ago, and are slow to read
    *aData = aParser->mEntry.NewBlock();
}

} // namespace DIDL
