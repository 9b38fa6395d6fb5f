#pragma once

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <string_view>

namespace DIDL
{

// A text that grows.
class TextBuilder
{
public:
    TextBuilder() = default;
    ~TextBuilder() { free(mText); }
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;

    size_t size() const { return mLength; }
    bool empty() const { return mLength == 0; }

    // The text, which nothing is appended to after this. The byte after it is writable; without text there is none.
    std::string_view EndText()
    {
        if (mLength == 0) { return {}; }
        const size_t theLength = mLength;
        Extend(1);
        return { mText, theLength };
    }

    // Makes room for aCount further bytes and returns where they go.
    char* Extend(size_t aCount)
    {
        if (aCount > mSize - mLength)
        {
            mSize = Shared::GrowCapacity(mSize, Shared::AddSizes(mLength, aCount), kFirstSize);
            mText = Shared::ResizeArray(mText, mSize);
        }
        char* thePlace = mText + mLength;
        mLength += aCount;
        return thePlace;
    }
    void Append(std::string_view aText)
    {
        if (!aText.empty()) { memcpy(Extend(aText.size()), aText.data(), aText.size()); }
    }
    void Append(char aByte) { *Extend(1) = aByte; }

    // Drops what is past the first aLength bytes, of at least as many.
    void CutTo(size_t aLength) { mLength = aLength; }

private:
    enum : size_t
    {
        kFirstSize = 512 // the declarations of most documents fit
    };
    char* mText = nullptr; // mLength of mSize bytes are written
    size_t mLength = 0;
    size_t mSize = 0;
};

} // namespace DIDL
