#pragma once

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <string_view>

namespace DIDL
{

// A text that grows: in the builder itself first, then on the heap.
class TextBuilder
{
public:
    TextBuilder() {} // leaves mInline as it is
    ~TextBuilder()
    {
        if (mText != mInline) { free(mText); }
    }
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;

    size_t size() const { return mLength; }
    bool empty() const { return mLength == 0; }

    // The text, until more is appended.
    std::string_view Text() const { return { mText, mLength }; }

    // Makes room for aCount further bytes and returns where they go.
    char* Extend(size_t aCount)
    {
        if (aCount > mSize - mLength) { Grow(aCount); }
        char* thePlace = mText + mLength;
        mLength += aCount;
        return thePlace;
    }
    void Append(std::string_view aText)
    {
        if (!aText.empty()) { memcpy(Extend(aText.size()), aText.data(), aText.size()); }
    }
    void Append(char aByte) { *Extend(1) = aByte; }

    // Keeps the first aLength bytes; there are at least that many.
    void CutTo(size_t aLength) { mLength = aLength; }

private:
    __attribute__((noinline)) void Grow(size_t aCount)
    {
        mSize = Shared::GrowCapacity(mSize, Shared::AddSizes(mLength, aCount), kInlineSize);
        if (mText != mInline)
        {
            mText = Shared::ResizeArray(mText, mSize);
            return;
        }
        mText = Shared::NewArray<char>(mSize);
        memcpy(mText, mInline, mLength);
    }

    enum : size_t
    {
        kInlineSize = 512 // the declarations of most documents fit
    };
    char* mText = mInline; // mLength of mSize bytes are written; mInline or owned
    size_t mLength = 0;
    size_t mSize = kInlineSize;
    char mInline[kInlineSize];
};

} // namespace DIDL
