#include <UPnP/Utilities/DIDL/Entities.h>

#include <Shared/Sizes.h>
#include <UPnP/Stack/ILibXML.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>

namespace DIDL
{

// How much of an object is looked through at once. A longer one may be a container around other objects, which are
// looked through themselves.
static const size_t kMaxLookedThrough = 16384;

static bool HasMarkup(std::string_view aText)
{
    return memchr(aText.data(), '&', aText.size()) || memchr(aText.data(), '!', aText.size());
}

EntityResolver::~EntityResolver()
{
    if (mCopy != mInline) { free(mCopy); }
}

void EntityResolver::SetObject(std::string_view anObject)
{
    const char* theBegin = anObject.data();
    const char* theEnd = theBegin + anObject.size();
    const size_t theLength = std::min(anObject.size(), kMaxLookedThrough);
    const char* theLookedThrough = theBegin + theLength;
    mPlain = { theBegin, theLookedThrough, theLookedThrough == theEnd ? theBegin : theEnd, theEnd };
    for (const char theMark : { '&', '!' })
    {
        const void* theFirst = memchr(theBegin, theMark, theLength);
        if (!theFirst) { continue; }
        const void* theLast = memrchr(theBegin, theMark, theLength);
        mPlain.mFirst = std::min(mPlain.mFirst, static_cast<const char*>(theFirst));
        mPlain.mLast = std::max(mPlain.mLast, static_cast<const char*>(theLast) + 1);
    }
}

// Looks at the document's text and not at the copy: bytes that were written a moment ago are slow to read.
char* EntityResolver::ResolveStored(std::string_view aText, char* anEnd) const
{
    if (IsPlain(aText) || !HasMarkup(aText)) { return anEnd; }
    char* theCopy = anEnd - 1 - aText.size();
    return theCopy + ILibInPlaceXmlUnEscape(theCopy) + 1;
}

std::string_view EntityResolver::ResolveCopy(std::string_view aText)
{
    if (!HasMarkup(aText)) { return aText; }
    if (mCopySize <= aText.size())
    {
        mCopySize = Shared::GrowCapacity(mCopySize, aText.size() + 1, kInlineSize);
        if (mCopy != mInline) { free(mCopy); }
        mCopy = Shared::NewArray<char>(mCopySize);
    }
    memcpy(mCopy, aText.data(), aText.size());
    mCopy[aText.size()] = 0;
    return { mCopy, static_cast<size_t>(ILibInPlaceXmlUnEscape(mCopy)) };
}

} // namespace DIDL
