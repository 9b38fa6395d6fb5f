#include <UPnP/Utilities/DIDL/EntryBuilder.h>

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <zoltTools/zoArray.h>

namespace DIDL
{

EntryBuilder::~EntryBuilder()
{
    if (mBytes != mInlineBytes) { free(mBytes); }
    if (mTags == mInlineTags) { return; }
    free(mTags);
    free(mEnds);
}

// The array with room for aSize bytes, of which aUsed are in use.
[[gnu::cold, gnu::noinline]] static void* MovedArray(void* anArray, const void* anInlineArray, size_t aUsed,
                                                     size_t aSize)
{
    if (anArray != anInlineArray) { return zoRealloc(anArray, aSize); }
    return memcpy(zoMalloc(aSize), anArray, aUsed);
}

template <typename Element>
static Element* Grown(Element* anArray, const Element* anInlineArray, size_t aCount, size_t aCapacity)
{
    return static_cast<Element*>(MovedArray(anArray, anInlineArray, aCount * sizeof(Element),
                                            Shared::MultiplySizes(aCapacity, sizeof(Element))));
}

bool EntryBuilder::Grow(size_t aCount, uint64 aSize)
{
    const uint64 kMaxBlockSize = 0xFFFFFFFF;
    if (aSize >= kMaxBlockSize - mByteCount) { return false; }
    if (aSize > mByteCapacity - mByteCount)
    {
        mByteCapacity = Shared::GrowCapacity(mByteCapacity, mByteCount + static_cast<size_t>(aSize), kInlineBytes);
        mBytes = Grown(mBytes, mInlineBytes, mByteCount, mByteCapacity);
    }
    if (aCount > mRowCapacity - mRowCount)
    {
        mRowCapacity = Shared::GrowCapacity(mRowCapacity, mRowCount + aCount, kInlineRows);
        mTags = Grown(mTags, mInlineTags, mRowCount, mRowCapacity);
        mEnds = Grown(mEnds, mInlineEnds, mRowCount, mRowCapacity);
    }
    return true;
}

// Adds a row of aSize bytes. Returns where they go.
char* EntryBuilder::AddRow(uint16 aTag, size_t aSize)
{
    char* theTarget = mBytes + mByteCount;
    mByteCount += aSize;
    mTags[mRowCount] = aTag;
    mEnds[mRowCount] = static_cast<uint32>(mByteCount);
    ++mRowCount;
    return theTarget;
}

void EntryBuilder::AddStrings(uint16 aTag, std::string_view aStrings)
{
    const auto Pack = [&]
    { return zoStringArray_Pack(aStrings.data(), aStrings.size(), mBytes + mByteCount, mByteCapacity - mByteCount); };
    const size_t theSize = Pack();
    if (!HasRoom(1, theSize))
    {
        if (!Grow(1, theSize)) { return; }
        Pack();
    }
    AddRow(aTag, theSize);
}

void EntryBuilder::GrowAndAddText(uint16 aTag, std::string_view aText)
{
    if (Grow(1, uint64{ aText.size() } + 1)) { AddText(aTag, aText); }
}

// Calls others at the end only, so that nothing is to be kept beyond a call.
void EntryBuilder::AddText(uint16 aTag, std::string_view aText)
{
    if (!HasRoom(1, uint64{ aText.size() } + 1)) { return GrowAndAddText(aTag, aText); }
    CopyText(AddRow(aTag, aText.size() + 1), aText.data(), aText.size());
}

} // namespace DIDL
