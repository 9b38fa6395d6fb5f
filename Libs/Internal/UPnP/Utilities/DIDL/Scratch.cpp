#include <UPnP/Utilities/DIDL/Scratch.h>

#include <algorithm>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

// Whether there is anything to resolve: a reference, or perhaps a CDATA section.
static bool HasMarkup(const Slice& aText)
{
    return memchr(aText.mBegin, '&', aText.mLength) != nullptr || memchr(aText.mBegin, '!', aText.mLength) != nullptr;
}

PlainText FindPlainText(const char* aBegin, const char* anEnd)
{
    const size_t kMostLookedAt = 16384;
    const size_t theLength = std::min(static_cast<size_t>(anEnd - aBegin), kMostLookedAt);
    const char* theLookedAt = aBegin + theLength;
    PlainText thePlain = { aBegin, theLookedAt, theLookedAt == anEnd ? aBegin : anEnd, anEnd };
    for (const char theMark : { '&', '!' })
    {
        const void* theFirst = memchr(aBegin, theMark, theLength);
        if (!theFirst) { continue; }
        const void* theLast = memrchr(aBegin, theMark, theLength);
        thePlain.mFirst = std::min(thePlain.mFirst, static_cast<const char*>(theFirst));
        thePlain.mLast = std::max(thePlain.mLast, static_cast<const char*>(theLast) + 1);
    }
    return thePlain;
}

Slice ResolveCopy(Scratch* aScratch, const Slice& aText)
{
    if (aText.mLength == 0 || !HasMarkup(aText)) { return aText; }
    if (aScratch->mSize <= aText.mLength)
    {
        aScratch->mSize = std::max(aText.mLength + 1, aScratch->mSize * 2);
        free(aScratch->mText);
        aScratch->mText = static_cast<char*>(zoMalloc(aScratch->mSize));
    }
    memcpy(aScratch->mText, aText.mBegin, aText.mLength);
    aScratch->mText[aText.mLength] = 0;
    return { aScratch->mText, static_cast<size_t>(ILibInPlaceXmlUnEscape(aScratch->mText)) };
}

} // namespace DIDL
