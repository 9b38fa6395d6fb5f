#include <UPnP/Utilities/DIDL/Object.h>

#include <algorithm>
#include <stdint.h>
#include <string.h>
#include <zoltTools/zoConvert.h>

namespace DIDL
{

static const size_t kMaxBaseURLLength = 1024;

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

bool ObjectParser::ReadText(ILibXMLNode* aNode, RepeatedText aKind, std::string_view* aText)
{
    TextSizes* theSizes = &mSizes[aKind];
    if (theSizes->mStored > mMaxStored || theSizes->mRead > mMaxRead) { return false; }
    const std::string_view theText = GetInnerXML(aNode);
    *aText = mResolver.Resolve(theText);
    theSizes->mRead += theText.size();
    theSizes->mStored += aText->size();
    return true;
}

void StartObject(ObjectParser* aParser, const ObjectNodes& aNodes, const char* aBaseURL, int afIsItem)
{
    aParser->mNodes = aNodes;
    aParser->mTextLength = aNodes.TextLength();
    aParser->mMaxStored = std::max(Multiple(aParser->mTextLength, kStoredPerText), kLeastStored);
    aParser->mMaxRead = Multiple(aParser->mMaxStored, kReadPerStored);
    aParser->mMaxAbsolute = std::max(Multiple(aParser->mTextLength, kAbsolutePerText), kLeastAbsolute);
    const bool fHasBaseURL = aBaseURL && strnlen(aBaseURL, kMaxBaseURLLength + 1) <= kMaxBaseURLLength;
    aParser->mBaseURL = fHasBaseURL ? aBaseURL : nullptr;

    const std::string_view theText = GetInnerXML(aNodes.mStartTag);
    if (theText.data())
    {
        const char* theBegin = Shared::QualifiedName(aNodes.mStartTag).data();
        aParser->mResolver.SetObject({ theBegin, static_cast<size_t>(theText.data() + theText.size() - theBegin) });
    }
    if (!afIsItem) { aParser->mFlags |= kDIDL_Flags_Searchable; }
    aParser->mEntry = zoPackedData_New(1);
    zoPackedData_AddNewEntry(aParser->mEntry);
    aParser->mResources = zoPackedData_New(0);
}

size_t MaxInheritedSize(const ObjectParser& aParser)
{
    return std::max(Multiple(aParser.mTextLength, kInheritedPerText), kLeastInherited);
}

// ---- The object's fields ----

// Stores the text of the last element of its kind, "" without one.
static void AddLastText(ObjectParser* aParser, uint16 aTag, SingleText aKind)
{
    AddResolvedText(aParser, aParser->mEntry, aTag, GetInnerXML(aParser->mLast[aKind]));
}

// The same, but a value without bytes when there was no such element.
static void AddLastTextIfAny(ObjectParser* aParser, uint16 aTag, SingleText aKind)
{
    if (aParser->mLast[aKind]) { AddLastText(aParser, aTag, aKind); }
    else { zoPackedData_AddData(aParser->mEntry, aTag, nullptr, 0); }
}

static void AddDate(ObjectParser* aParser)
{
    ILibXMLNode* theNode = aParser->mLast[kSingleText_Date];
    if (!theNode)
    {
        zoPackedData_AddData(aParser->mEntry, kCDSEntryInfo_Date, nullptr, 0);
        return;
    }
    const std::string_view theDate = aParser->mResolver.Resolve(GetInnerXML(theNode));
    int32 theParts[kzoDLNADatePart_Count];
    const bool fIsDate = zoConvert_dlnadatestrtodate(NulTerminated(theDate).c_str(), theParts) == 0;
    AddText(aParser->mEntry, kCDSEntryInfo_Date, fIsDate ? theDate : std::string_view());
}

static void AddNamespaces(ObjectParser* aParser)
{
    if (aParser->mNamespaces.empty()) { return; }
    AddText(aParser->mEntry, kCDSEntryInfo_XMLNS, aParser->mNamespaces.EndText());
}

static void AddFields(ObjectParser* aParser, int afIsItem)
{
    zoPackedData_t* theEntry = aParser->mEntry;
    AddLastText(aParser, kCDSEntryInfo_Title, kSingleText_Title);
    AddLastText(aParser, kCDSEntryInfo_Creator, kSingleText_Creator);
    AddDate(aParser);
    AddLastText(aParser, kCDSEntryInfo_Genre, kSingleText_Genre);
    AddLastText(aParser, kCDSEntryInfo_Album, kSingleText_Album);
    AddText(theEntry, kCDSEntryInfo_CreateClass, aParser->mCreateClass.EndText());
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_ParentID, aParser->mParentID);
    AddNumber(theEntry, kCDSEntryInfo_IsContainer, static_cast<uint16>(!afIsItem));
    AddNumber(theEntry, kCDSEntryInfo_UpdateID, uint32{ 0 });
    AddNumber(theEntry, kCDSEntryInfo_ChildCount, aParser->mChildCount);
    AddLastText(aParser, kCDSEntryInfo_ItemClassName, kSingleText_Class);
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_ItemID, aParser->mID);
    AddNumber(theEntry, kCDSEntryInfo_ChannelNr, aParser->mChannelNr);
    AddNumber(theEntry, kCDSEntryInfo_Flags, aParser->mFlags);
    AddLastText(aParser, kCDSEntryInfo_BGMURI, kSingleText_BGMURI);
    AddText(theEntry, kCDSEntryInfo_BGMURIProtocolInfo, aParser->mBGMProtocolInfo);
    AddNumber(theEntry, kCDSEntryInfo_DLNAManaged, aParser->mManaged);
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_RefID, aParser->mRefID);
    AddLastTextIfAny(aParser, kCDSEntryInfo_StorageMedium, kSingleText_StorageMedium);
    AddNamespaces(aParser);
    zoPackedData_AddArray(theEntry, kCDSEntryInfo_AlbumArtURI, aParser->mAlbumArt, zoStringArray_FlattenerFunc);
}

void FinishObject(ObjectParser* aParser, int afIsItem, char** aData, char** aRes)
{
    AddFields(aParser, afIsItem);
    *aData = zoPackedData_TakeData(aParser->mEntry);
    *aRes = zoPackedData_TakeData(aParser->mResources);
    zoPackedData_Free(aParser->mEntry);
    zoPackedData_Free(aParser->mResources);
}

} // namespace DIDL
