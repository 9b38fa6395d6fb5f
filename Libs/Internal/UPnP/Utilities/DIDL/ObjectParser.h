#pragma once

#include <UPnP/Utilities/DIDL/Entities.h>
#include <UPnP/Utilities/DIDL/Namespaces.h>
#include <UPnP/Utilities/DIDL/RecordBuilder.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <stddef.h>

namespace DIDL
{

// Elements of which the last one counts.
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

// Elements of which every one counts. They may be inside each other, and the text of each then holds those inside.
enum RepeatedText
{
    kRepeatedText_URI,
    kRepeatedText_AlbumArt,
    kRepeatedText_CreateClass,
    kRepeatedText_ExtraInfo,
    kRepeatedText_Namespace,
    kRepeatedText_Count
};

// What was stored of one kind, and read for it, in bytes.
struct TextSizes
{
    size_t mStored = 0;
    size_t mRead = 0;
};

// Fields of the entry record that come from attributes, and numbers. Texts are as written: their entities are resolved
// when they are stored.
struct EntryFields
{
    std::string_view mItemID;
    std::string_view mParentID;
    std::string_view mRefID;
    std::string_view mBGMProtocolInfo;
    uint32 mChildCount;
    uint32 mChannelNr;
    uint32 mFlags;
    uint32 mManaged;
    uint16 mIsContainer;
};

// What is known of an object while its elements are walked.
struct ObjectParser
{
    ObjectNodes mNodes = { nullptr, false };
    const char* mBaseURL = nullptr; // NULL when URIs stay as they are
    size_t mTextLength = 0;         // of the object
    EntityResolver mResolver;
    NamespaceList mNamespaces;

    TextSizes mSizes[kRepeatedText_Count];
    size_t mMaxStored = 0; // of each kind
    size_t mMaxRead = 0;
    size_t mAbsoluteLength = 0; // of the URIs that were made absolute
    size_t mMaxAbsolute = 0;

    std::string_view mTexts[kSingleText_Count]; // as written, without data when there is no such element
    TextBuilder mAlbumArt;                      // URI and profile of each, with a NUL after either
    TextBuilder mCreateClass;
    RecordBuilder mEntry;
    RecordBuilder mResources; // an entry for each res
    uint32 mNextExtraTag = kCDSEntryInfo_Count;
    EntryFields mFields = {};

    // Where the records are collected; most fit.
    char mEntryBytes[1024];
    char mResourceBytes[4096];

    ObjectParser() // leaves those bytes as they are
        : mEntry(mEntryBytes, sizeof(mEntryBytes)), mResources(mResourceBytes, sizeof(mResourceBytes))
    {}
    ObjectParser(const ObjectParser&) = delete;
    ObjectParser& operator=(const ObjectParser&) = delete;

    // Reads the text of an element, resolved. Without data when enough of its kind is stored.
    std::string_view ReadText(ILibXMLNode* aNode, RepeatedText aKind);
};

// The last tag that a pair's value may have: a tag is 16 bits wide, and an entry holds 65535 values.
inline constexpr uint32 kLastExtraTag = 0xFFFE;

} // namespace DIDL
