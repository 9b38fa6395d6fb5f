#pragma once

/* A text that grows. */

#include <algorithm>
#include <string.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

inline constexpr size_t kFirstBuilderSize = 512;

// A text that grows: mLength of mSize bytes are written.
struct TextBuilder
{
    char* mText;
    size_t mLength;
    size_t mSize;
};

// Makes room for aCount further bytes and gives their place.
inline char* Extend(TextBuilder* aBuilder, size_t aCount)
{
    if (aCount > aBuilder->mSize - aBuilder->mLength)
    {
        aBuilder->mSize = std::max(aBuilder->mSize * 2, aBuilder->mLength + aCount + kFirstBuilderSize);
        aBuilder->mText = static_cast<char*>(zoRealloc(aBuilder->mText, aBuilder->mSize));
    }
    char* thePlace = aBuilder->mText + aBuilder->mLength;
    aBuilder->mLength += aCount;
    return thePlace;
}

inline void Append(TextBuilder* aBuilder, const char* aBytes, size_t aCount)
{
    memcpy(Extend(aBuilder, aCount), aBytes, aCount);
}

} // namespace DIDL
