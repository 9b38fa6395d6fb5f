#pragma once

/* What is known of an object while its elements are walked. */

#include <UPnP/Utilities/DIDL/Namespaces.h>
#include <UPnP/Utilities/DIDL/Scratch.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <zoltTools/zoArray.h>

namespace DIDL
{

// Elements of which the last one counts; read when all are known.
enum SingleText
{
    kSingleText_Title,
    kSingleText_Creator,
    kSingleText_Date,
    kSingleText_Genre,
    kSingleText_Album,
    kSingleText_Class,
    kSingleText_BGMURI,
    kSingleText_StorageMedium,
    kSingleText_Count
};

// Elements that all count.
enum ManyTexts
{
    kManyTexts_URI,
    kManyTexts_AlbumArt,
    kManyTexts_ChannelNr,
    kManyTexts_CreateClass,
    kManyTexts_ExtraInfo,
    kManyTexts_Count
};

// What is known of the object while its elements are walked.
struct ObjectParser
{
    const char* mBaseURL = nullptr;
    zoPackedData_t* mEntry = nullptr;
    zoPackedData_t* mResources = nullptr;
    Scratch mScratch = { nullptr, 0, { nullptr, nullptr, nullptr, nullptr } };
    NamespaceList mNamespaces;
    zoArray_t* mAlbumArt = nullptr; // NULL while there is none

    // Elements that can be many may stand inside each other, and the text of each holds those inside. What is stored of
    // a kind ends once it has passed a multiple of the object's text, which without nesting it never does.
    size_t mStored[kManyTexts_Count] = {};
    size_t mStoredLimit = 0;

    ILibXMLNode* mLast[kSingleText_Count] = {}; // NULL when there is none
    Slice mBGMProtocolInfo = { nullptr, 0 };
    TextBuilder mCreateClass = { nullptr, 0, 0 }; // the list, without a NUL
    uint32 mChannelNr = 0;
    uint32 mNextExtraTag = kCDSEntryInfo_Count;

    Slice mID = { nullptr, 0 };
    Slice mParentID = { nullptr, 0 };
    Slice mRefID = { nullptr, 0 };
    uint32 mChildCount = 0xFFFFFFFF;
    uint32 mManaged = 0;
    uint32 mFlags = kDIDL_Flags_Restricted;
};

inline constexpr size_t kStoredPerText = 4;
inline constexpr size_t kStoredAtLeast = size_t{ 64 } * 1024;
inline constexpr uint32 kLastExtraTag = 0xFFFE; // of a value: an entry has room for 65535 values

// The element's text as written; false when enough of its kind is stored.
inline bool TakeInnerXML(ObjectParser* aParser, ILibXMLNode* aNode, ManyTexts aKind, Slice* aText)
{
    if (aParser->mStored[aKind] > aParser->mStoredLimit) { return false; }
    *aText = GetInnerXML(aNode);
    aParser->mStored[aKind] += aText->mLength;
    return true;
}

// Stores the text with its entities resolved.
inline void AddResolvedText(ObjectParser* aParser, zoPackedData_t* aRecord, uint16 aTag, const Slice& aText)
{
    AddText(aRecord, aTag, Resolve(&aParser->mScratch, aText));
}

} // namespace DIDL
