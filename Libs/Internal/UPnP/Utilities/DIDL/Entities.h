#pragma once

/* Texts with their entities resolved and their CDATA sections unwrapped. The document itself stays as it is, since an
 * element's text is also part of the text of the elements around it. */

#include <stddef.h>
#include <string_view>

namespace DIDL
{

// The parts of an object's text in which there is nothing to resolve: most of it, or all.
struct PlainText
{
    const char* mBegin = nullptr; // of the object's text
    const char* mFirst = nullptr; // the first "&" or "!", or a position before it
    const char* mLast = nullptr;  // past the last one
    const char* mEnd = nullptr;

    bool Contains(std::string_view aText) const
    {
        const char* theEnd = aText.data() + aText.size();
        return (aText.data() >= mBegin && theEnd <= mFirst) || (aText.data() >= mLast && theEnd <= mEnd);
    }
};

class EntityResolver
{
public:
    EntityResolver() = default;
    ~EntityResolver();
    EntityResolver(const EntityResolver&) = delete;
    EntityResolver& operator=(const EntityResolver&) = delete;

    // Looks through an object's text once, so that its texts need not be looked through one by one.
    void SetObject(std::string_view anObject);

    // The text resolved: itself when nothing is to be resolved in it, else a copy, valid until the next call. The byte
    // after it is writable.
    std::string_view Resolve(std::string_view aText) { return IsPlain(aText) ? aText : ResolveCopy(aText); }

    // True if there is nothing to resolve, which is known without a look at the text.
    bool IsPlain(std::string_view aText) const { return aText.empty() || mPlain.Contains(aText); }

    // True if it is known that there is nothing to resolve in the object.
    bool IsObjectPlain() const { return mPlain.mBegin && mPlain.mFirst == mPlain.mEnd; }

    // Resolves a copy of aText that ends with the NUL before anEnd. Returns the position after its NUL then.
    char* ResolveStored(std::string_view aText, char* anEnd) const;

private:
    std::string_view ResolveCopy(std::string_view aText);

    enum : size_t
    {
        kInlineSize = 256 // titles and URIs fit, so that most objects need no memory from the heap
    };
    PlainText mPlain;
    char* mCopy = mInline; // mInline, or owned
    size_t mCopySize = kInlineSize;
    char mInline[kInlineSize];
};

} // namespace DIDL
