#pragma once

/* Pieces of a document: names, values of attributes and texts of elements are views of the caller's text, which is
 * writable and outlives them. */

#include <Shared/ASCII.h>
#include <Shared/QualifiedName.h>
#include <UPnP/Stack/ILibXML.h>
#include <string_view>

namespace DIDL
{

// Ends a piece of the document with a NUL while it lives, for functions that take no length. The byte that was there
// comes back.
class NulTerminated
{
public:
    explicit NulTerminated(std::string_view aText)
        : mEnd(aText.empty() ? nullptr : const_cast<char*>(aText.data() + aText.size())),
          mText(aText.empty() ? "" : aText.data())
    {
        if (!mEnd) { return; }
        mSaved = *mEnd;
        *mEnd = 0;
    }
    ~NulTerminated()
    {
        if (mEnd) { *mEnd = mSaved; }
    }
    NulTerminated(const NulTerminated&) = delete;
    NulTerminated& operator=(const NulTerminated&) = delete;
    const char* c_str() const { return mText; }

private:
    char* mEnd; // NULL for an empty text
    const char* mText;
    char mSaved = 0;
};

// Not inline: few names have another case than they should.
[[gnu::noinline]] inline bool IsSameButForCase(const char* aLeft, const char* aRight, size_t aLength)
{
    return Shared::EqualsIgnoringCase(aLeft, aRight, aLength);
}

// True if two names are the same, whatever their case. Nearly all are written as they should be, which memcmp tells
// fastest.
inline bool IsSameName(std::string_view aLeft, std::string_view aRight)
{
    if (aLeft.size() != aRight.size()) { return false; }
    return memcmp(aLeft.data(), aRight.data(), aLeft.size()) == 0 ||
           IsSameButForCase(aLeft.data(), aRight.data(), aLeft.size());
}

// True if the local name of a node or an attribute is aName, whatever its prefix and case. Inline, so that a name known
// at compile time makes it a comparison of words.
template <typename Named>
[[gnu::always_inline]] inline bool IsNamed(const Named* aNamed, std::string_view aName)
{
    return aNamed->NameLength == static_cast<int>(aName.size()) && IsSameName({ aNamed->Name, aName.size() }, aName);
}

inline std::string_view ValueAsWritten(const ILibXMLAttribute* anAttribute)
{
    return { anAttribute->Value, static_cast<size_t>(anAttribute->ValueLength) };
}

// The value without quotes inside of the attribute's own: a="'b'" gives b.
inline std::string_view RemoveQuotesFromAttributeValue(const ILibXMLAttribute* anAttribute)
{
    const std::string_view theValue = ValueAsWritten(anAttribute);
    const bool fIsQuoted = theValue.size() >= 2 && (theValue[0] == '"' || theValue[0] == '\'');
    return fIsQuoted ? theValue.substr(1, theValue.size() - 2) : theValue;
}

// The text between an element's tags as written, with its child elements.
inline std::string_view GetInnerXML(ILibXMLNode* aNode)
{
    char* theBegin = nullptr;
    const int theLength = ILibReadInnerXML(aNode, &theBegin);
    return { theBegin, static_cast<size_t>(theLength) };
}

// Sets aValue to the value as written of the first attribute with this prefix and name; false without such an
// attribute.
inline bool GetXMLAttribute(const ILibXMLAttribute* anAttributes, std::string_view aPrefixStr,
                            std::string_view anAttributeStr, std::string_view* aValue)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!IsNamed(theAttribute, anAttributeStr)) { continue; }
        if (!IsSameName(Shared::Prefix(theAttribute), aPrefixStr)) { continue; }
        *aValue = ValueAsWritten(theAttribute);
        return true;
    }
    return false;
}

} // namespace DIDL
