#include <UPnP/Utilities/DIDL/EntryBuilder.h>

#include <Shared/Sizes.h>
#include <stdlib.h>

namespace DIDL
{

EntryBuilder::~EntryBuilder()
{
    if (mBytes != mInlineBytes) { free(mBytes); }
    if (mTags == mInlineTags) { return; }
    free(mTags);
    free(mEnds);
}

// The array with room for aCapacity elements, of which aCount are in use.
template <typename Element>
static Element* Grown(Element* anArray, const Element* anInlineArray, size_t aCount, size_t aCapacity)
{
    if (anArray != anInlineArray) { return Shared::ResizeArray(anArray, aCapacity); }
    return static_cast<Element*>(memcpy(Shared::NewArray<Element>(aCapacity), anArray, aCount * sizeof(Element)));
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

// Copies at the end, so that nothing is to be kept beyond the call of memcpy.
void EntryBuilder::AddBytes(uint16 aTag, const char* aBytes, size_t aSize)
{
    if (!Reserve(1, aSize)) { return; }
    char* theTarget = mBytes + mByteCount;
    mByteCount += aSize;
    mTags[mRowCount] = aTag;
    mEnds[mRowCount] = static_cast<uint32>(mByteCount);
    ++mRowCount;
    if (aSize > 0) { memcpy(theTarget, aBytes, aSize); }
}

void EntryBuilder::AddText(uint16 aTag, std::string_view aText)
{
    if (!Reserve(1, uint64{ aText.size() } + 1)) { return; }
    char* theTarget = mBytes + mByteCount;
    theTarget[aText.size()] = 0;
    mByteCount += aText.size() + 1;
    mTags[mRowCount] = aTag;
    mEnds[mRowCount] = static_cast<uint32>(mByteCount);
    ++mRowCount;
    if (!aText.empty()) { memcpy(theTarget, aText.data(), aText.size()); }
}

} // namespace DIDL
