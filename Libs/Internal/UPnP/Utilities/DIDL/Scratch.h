#pragma once

/* Entities resolved. */

#include <UPnP/Utilities/DIDL/Text.h>

namespace DIDL
{

// Where the object's text has nothing to resolve: most of it, or all.
struct PlainText
{
    const char* mBegin; // the object's first byte
    const char* mFirst; // "&" and "!" are met from here on
    const char* mLast;  // up to here
    const char* mEnd;   // past the object's last byte

    bool Holds(const char* aBegin, const char* anEnd) const
    {
        return (aBegin >= mBegin && anEnd <= mFirst) || (aBegin >= mLast && anEnd <= mEnd);
    }
};

// Memory for a text whose entities are resolved: the document itself stays as it is, since an element's text is also
// part of the text of the elements around it.
struct Scratch
{
    char* mText;
    size_t mSize;
    PlainText mPlain; // what needs no copy
};

// Looks once at the object's text for what texts would otherwise be looked through for one by one. Not at all of a long
// one: it may hold other objects, which are looked at themselves.
PlainText FindPlainText(const char* aBegin, const char* anEnd);

Slice ResolveCopy(Scratch* aScratch, const Slice& aText);

// The text with its entities resolved: itself when it has none, else a copy that lasts until the next one.
inline Slice Resolve(Scratch* aScratch, const Slice& aText)
{
    const bool fIsPlain = aScratch->mPlain.Holds(aText.mBegin, aText.mBegin + aText.mLength);
    return fIsPlain ? aText : ResolveCopy(aScratch, aText);
}

} // namespace DIDL
