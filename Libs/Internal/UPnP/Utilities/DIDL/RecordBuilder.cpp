#include <UPnP/Utilities/DIDL/RecordBuilder.h>

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <zoltTools/zoArray.h>

namespace DIDL
{

// Adds a row of aSize bytes. Returns where they go.
char* RecordBuilder::AddRow(uint16 aTag, size_t aSize)
{
    char* theTarget = mBytes + mByteCount;
    mByteCount += aSize;
    mTags[mRowCount] = aTag;
    mEnds[mRowCount] = static_cast<uint32>(mByteCount - mEntryBegin);
    ++mRowCount;
    return theTarget;
}

void RecordBuilder::AddStrings(uint16 aTag, std::string_view aStrings)
{
    char* theTarget = mBytes + mByteCount;
    const size_t theSize = zoStringArray_Pack(aStrings.data(), aStrings.size(), theTarget, mByteCapacity - mByteCount);
    if (HasRoom(1, theSize)) { AddRow(aTag, theSize); }
    else if (MakeRoom(theSize)) { AddStrings(aTag, aStrings); } // now they fit
}

void RecordBuilder::MakeRoomAndAddText(uint16 aTag, std::string_view aText)
{
    if (MakeRoom(uint64{ aText.size() } + 1)) { AddText(aTag, aText); }
}

// Its calls are the last that it does, so that it saves no registers.
void RecordBuilder::AddText(uint16 aTag, std::string_view aText)
{
    if (!HasRoom(1, uint64{ aText.size() } + 1)) { return MakeRoomAndAddText(aTag, aText); }
    CopyText(AddRow(aTag, aText.size() + 1), aText.data(), aText.size());
}

char* RecordBuilder::NewBlock()
{
    return mRecord ? TakeRecord() : zoPackedData_NewBlock(mTags, mEnds, mCounts, mEntryCount, mBytes);
}

// ---- Large records ----

// Moves the first entries into the record.
void RecordBuilder::MoveEntries(uint32 aCount)
{
    if (!mRecord) { mRecord = zoPackedData_New(0); }
    const uint16* theTag = mTags;
    const uint32* theEnd = mEnds;
    const char* theValue = mBytes;
    for (uint32 i = 0; i < aCount; ++i)
    {
        if (i > 0 || !mfIsContinued) { zoPackedData_AddNewEntry(mRecord); }
        uint32 theBegin = 0;
        for (const uint16* theLast = theTag + mCounts[i]; theTag < theLast; ++theTag, ++theEnd)
        {
            const uint32 theSize = *theEnd - theBegin;
            zoPackedData_AddData(mRecord, *theTag, theValue, theSize);
            theValue += theSize;
            theBegin = *theEnd;
        }
    }
}

// Moves all entries into the record. The open one goes on there.
void RecordBuilder::MoveAll()
{
    mCounts[mEntryCount] = static_cast<uint16>(mRowCount - mFirstRow);
    MoveEntries(mEntryCount + 1);
    mfIsContinued = true;
    mByteCount = 0;
    mEntryBegin = 0;
    mRowCount = 0;
    mFirstRow = 0;
    mEntryCount = 0;
}

bool RecordBuilder::MakeRoom(uint64 aSize)
{
    const uint64 kMaxBlockSize = 0xFFFFFFFF;
    if (aSize >= kMaxBlockSize) { return false; }
    MoveAll();
    if (aSize > mByteCapacity)
    {
        free(mOwnBytes);
        mByteCapacity = static_cast<size_t>(aSize);
        mOwnBytes = Shared::NewArray<char>(mByteCapacity);
        mBytes = mOwnBytes;
    }
    return true;
}

char* RecordBuilder::TakeRecord()
{
    MoveEntries(mEntryCount);
    return zoPackedData_TakeData(mRecord);
}

void RecordBuilder::FreeRecord()
{
    zoPackedData_Free(mRecord);
    free(mOwnBytes);
}

} // namespace DIDL
