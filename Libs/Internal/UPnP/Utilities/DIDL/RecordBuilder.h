#pragma once

/* A record whose values are collected one by one and made a serialized block at once. */

#include <Shared/Integers.h>
#include <UPnP/Utilities/DIDL/Entities.h>
#include <string.h>
#include <zoltTools/zoPackedData.h>

namespace DIDL
{

// Copies the first and the last Word of a text that has at least one, and at most two.
template <typename Word>
inline void CopyEnds(char* aTarget, const char* aText, size_t aLength)
{
    const size_t theEnd = aLength - sizeof(Word);
    const Word theFirst = Shared::Load<Word>(aText);
    const Word theLast = Shared::Load<Word>(aText + theEnd);
    memcpy(aTarget, &theFirst, sizeof(Word));
    memcpy(aTarget + theEnd, &theLast, sizeof(Word));
}

// Copies a text with a NUL, up to 32 bytes, as most texts have, without a call. Returns the position after that. Not
// inline: an entry has many texts.
[[gnu::noinline]] inline char* CopyText(char* aTarget, const char* aText, size_t aLength)
{
    struct TwoWords
    {
        uint64 mWords[2];
    };
    aTarget[aLength] = 0;
    if (aLength > 32) { memcpy(aTarget, aText, aLength); }
    else if (aLength >= 16) { CopyEnds<TwoWords>(aTarget, aText, aLength); }
    else if (aLength >= 8) { CopyEnds<uint64>(aTarget, aText, aLength); }
    else if (aLength >= 4) { CopyEnds<uint32>(aTarget, aText, aLength); }
    else
    {
        for (size_t i = 0; i < aLength; ++i)
            aTarget[i] = aText[i];
    }
    return aTarget + aLength + 1;
}

// Counts the values that the same calls of EntryEnd add, and their bytes.
class EntrySize
{
public:
    void AddText(uint16 /*aTag*/, std::string_view aText) { Add(uint64{ aText.size() } + 1); }
    void AddMarkup(uint16 /*aTag*/, std::string_view aText) { Add(uint64{ aText.size() } + 1); } // at most
    template <typename Number>
    void AddNumber(uint16 /*aTag*/, Number aNumber)
    {
        Add(sizeof(aNumber));
    }
    void AddNoBytes(uint16 /*aTag*/) { Add(0); }

    size_t GetCount() const { return mCount; }
    uint64 GetSize() const { return mSize; }

private:
    void Add(uint64 aSize)
    {
        ++mCount;
        mSize += aSize;
    }

    size_t mCount = 0;
    uint64 mSize = 0;
};

// The end of an entry, where there is room for the values that are added. A local variable, so that the compiler keeps
// it in registers.
class EntryEnd
{
public:
    // @param aBegin     of the entry's values.
    // @param aResolver  NULL when there is nothing to resolve.
    EntryEnd(const char* aBegin, char* aValue, uint16* aTag, uint32* anEnd, const EntityResolver* aResolver)
        : mBegin(aBegin), mValue(aValue), mTag(aTag), mEnd(anEnd), mResolver(aResolver)
    {}

    // Adds a text with a NUL.
    void AddText(uint16 aTag, std::string_view aText)
    {
        if (aText.empty()) { *mValue++ = 0; }
        else { mValue = CopyText(mValue, aText.data(), aText.size()); }
        AddRow(aTag);
    }
    // The same, with the text's entities resolved.
    void AddMarkup(uint16 aTag, std::string_view aText)
    {
        if (aText.empty()) { *mValue++ = 0; }
        else
        {
            mValue = CopyText(mValue, aText.data(), aText.size());
            if (mResolver) { mValue = mResolver->ResolveStored(aText, mValue); }
        }
        AddRow(aTag);
    }
    template <typename Number>
    void AddNumber(uint16 aTag, Number aNumber)
    {
        memcpy(mValue, &aNumber, sizeof(aNumber));
        mValue += sizeof(aNumber);
        AddRow(aTag);
    }
    void AddNoBytes(uint16 aTag) { AddRow(aTag); }

    const char* GetValue() const { return mValue; }
    const uint16* GetTag() const { return mTag; }

private:
    void AddRow(uint16 aTag)
    {
        *mTag++ = aTag;
        *mEnd++ = static_cast<uint32>(mValue - mBegin);
    }

    const char* mBegin;
    char* mValue;
    uint16* mTag;
    uint32* mEnd;
    const EntityResolver* mResolver;
};

// A record to be made. Values go into the open entry, which EndEntry ends; another one is open then.
class RecordBuilder
{
public:
    // @param aBytes  room for aSize bytes, in which small records are collected; it outlives the builder.
    RecordBuilder(char* aBytes, size_t aSize) : mBytes(aBytes), mByteCapacity(aSize) {}
    ~RecordBuilder()
    {
        if (mRecord) { FreeRecord(); }
    }
    RecordBuilder(const RecordBuilder&) = delete;
    RecordBuilder& operator=(const RecordBuilder&) = delete;

    // Adds a text with a NUL, unless a block can't hold it.
    void AddText(uint16 aTag, std::string_view aText);

    // The same for an array of strings.
    // @param aStrings  one after the other, each with its NUL.
    void AddStrings(uint16 aTag, std::string_view aStrings);

    // Adds several values, unless a block can't hold them all.
    // @param aAdd       adds them, kMaxRows at most, to its argument: first an EntrySize*, which tells the room that
    //                   they need, then an EntryEnd*.
    // @param aResolver  NULL when there is nothing to resolve in them.
    template <typename Add>
    void AddValues(const EntityResolver* aResolver, Add aAdd)
    {
        EntrySize theSize;
        aAdd(&theSize);
        if (!Reserve(theSize.GetCount(), theSize.GetSize())) { return; }
        EntryEnd theEnd(mBytes + mEntryBegin, mBytes + mByteCount, mTags + mRowCount, mEnds + mRowCount, aResolver);
        aAdd(&theEnd);
        mByteCount = static_cast<size_t>(theEnd.GetValue() - mBytes);
        mRowCount = static_cast<size_t>(theEnd.GetTag() - mTags);
    }

    void EndEntry()
    {
        if (mEntryCount == kMaxEntries) { MoveAll(); }
        mCounts[mEntryCount++] = static_cast<uint16>(mRowCount - mFirstRow);
        mFirstRow = mRowCount;
        mEntryBegin = mByteCount;
    }

    // Called once, when all entries are ended. The block is the caller's, released with free.
    char* NewBlock();

private:
    bool HasRoom(size_t aCount, uint64 aSize) const
    {
        return mByteCount + aSize <= mByteCapacity && mRowCount + aCount <= kMaxRows;
    }
    bool Reserve(size_t aCount, uint64 aSize) { return HasRoom(aCount, aSize) || MakeRoom(aSize); }
    [[gnu::cold]] bool MakeRoom(uint64 aSize);
    [[gnu::cold, gnu::noinline]] void MakeRoomAndAddText(uint16 aTag, std::string_view aText);
    [[gnu::cold]] void MoveEntries(uint32 aCount);
    [[gnu::cold]] void MoveAll();
    [[gnu::cold]] char* TakeRecord();
    [[gnu::cold]] void FreeRecord();
    char* AddRow(uint16 aTag, size_t aSize);

    enum : size_t
    {
        kMaxRows = 128,
        kMaxEntries = 10
    };
    char* mBytes; // the values that are not yet in mRecord; the caller's or mOwnBytes
    size_t mByteCapacity;
    size_t mByteCount = 0;
    size_t mEntryBegin = 0; // of the open entry's values
    size_t mRowCount = 0;
    size_t mFirstRow = 0; // of the open entry
    uint32 mEntryCount = 0;
    uint16 mCounts[kMaxEntries + 1]; // the open entry's is written when it is moved
    uint16 mTags[kMaxRows];
    uint32 mEnds[kMaxRows]; // counted from the entry's begin

    // What has become too large for the arrays.
    zoPackedData_t* mRecord = nullptr; // owned; NULL while nothing has
    char* mOwnBytes = nullptr;         // for large values
    bool mfIsContinued = false;        // the first entry here has its first values in mRecord
};

} // namespace DIDL
