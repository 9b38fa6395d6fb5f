#include <UPnP/Utilities/DIDL/EntryBuilder.h>

#include <Shared/Sizes.h>
#include <stdlib.h>

namespace DIDL
{

char* CopyText(char* aTarget, std::string_view aText)
{
    memcpy(aTarget, aText.data(), aText.size());
    char* theEnd = aTarget + aText.size();
    *theEnd = 0;
    return theEnd + 1;
}

char* CopyMarkup(char* aTarget, std::string_view aText, const EntityResolver& aResolver)
{
    char* theEnd = CopyText(aTarget, aText);
    return aResolver.IsPlain(aText) ? theEnd : aTarget + EntityResolver::ResolveInPlace(aTarget, aText.size()) + 1;
}

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

void EntryBuilder::AddText(uint16 aTag, std::string_view aText)
{
    AddValues(1, uint64{ aText.size() } + 1, [=](EntryEnd* anEnd) { anEnd->AddText(aTag, aText); });
}

} // namespace DIDL
