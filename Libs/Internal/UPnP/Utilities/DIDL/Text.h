#pragma once

/* Pieces of a document, and names. */

#include <UPnP/Stack/ILibXML.h>
#include <string.h>
#include <zoltTools/zoPackedData.h>

namespace DIDL
{

// Bytes of the document, or of a copy. When mLength is above 0 the byte behind them may be written.
struct Slice
{
    char* mBegin;
    size_t mLength;
};

// Ends a slice with a NUL while it lives: what stands there in the document comes back.
class NulTerminated
{
public:
    explicit NulTerminated(const Slice& aSlice) : mEnd(aSlice.mLength > 0 ? aSlice.mBegin + aSlice.mLength : nullptr)
    {
        mText = mEnd ? aSlice.mBegin : "";
        if (mEnd)
        {
            mSaved = *mEnd;
            *mEnd = 0;
        }
    }
    ~NulTerminated()
    {
        if (mEnd) { *mEnd = mSaved; }
    }
    NulTerminated(const NulTerminated&) = delete;
    NulTerminated& operator=(const NulTerminated&) = delete;
    const char* c_str() const { return mText; }

private:
    char* mEnd;
    const char* mText;
    char mSaved = 0;
};

template <typename Word>
bool HaveSameEnds(const char* aLeft, const char* aRight, size_t aLength)
{
    Word theWords[4];
    memcpy(&theWords[0], aLeft, sizeof(Word));
    memcpy(&theWords[1], aRight, sizeof(Word));
    memcpy(&theWords[2], aLeft + aLength - sizeof(Word), sizeof(Word));
    memcpy(&theWords[3], aRight + aLength - sizeof(Word), sizeof(Word));
    return theWords[0] == theWords[1] && theWords[2] == theWords[3];
}

// ASCII letters alone have a case. Names of up to 16 bytes that are written as they should be take two comparisons.
inline bool EqualsIgnoringCase(const char* aLeft, const char* aRight, size_t aLength)
{
    if (aLength >= 8 && aLength <= 16 && HaveSameEnds<uint64>(aLeft, aRight, aLength)) { return true; }
    if (aLength >= 4 && aLength < 8 && HaveSameEnds<uint32>(aLeft, aRight, aLength)) { return true; }
    for (size_t i = 0; i < aLength; ++i)
    {
        const int theDifference = aLeft[i] ^ aRight[i];
        if (theDifference == 0) { continue; }
        const char theLetter = static_cast<char>(aLeft[i] | 0x20);
        if (theDifference != 0x20 || theLetter < 'a' || theLetter > 'z') { return false; }
    }
    return true;
}

// Whether aLength bytes are the name, a text whose length is known when compiling.
template <size_t Size>
bool IsName(const char* aBytes, int aLength, const char (&aName)[Size])
{
    return aLength == static_cast<int>(Size - 1) && EqualsIgnoringCase(aBytes, aName, Size - 1);
}

// Prefix, colon and local name, or the local name alone.
inline Slice QualifiedName(const ILibXMLNode* aNode)
{
    char* theBegin = aNode->NSTag ? aNode->NSTag : aNode->Name;
    return { theBegin, static_cast<size_t>(aNode->Name + aNode->NameLength - theBegin) };
}

inline Slice QualifiedName(const ILibXMLAttribute* anAttribute)
{
    char* theBegin = anAttribute->Prefix ? anAttribute->Prefix : anAttribute->Name;
    return { theBegin, static_cast<size_t>(anAttribute->Name + anAttribute->NameLength - theBegin) };
}

inline Slice RemoveQuotesFromAttributeValue(const ILibXMLAttribute* anAttribute)
{
    Slice theValue = { anAttribute->Value, static_cast<size_t>(anAttribute->ValueLength) };
    const bool fIsQuoted = theValue.mLength >= 2 && (*theValue.mBegin == '"' || *theValue.mBegin == '\'');
    return fIsQuoted ? Slice{ theValue.mBegin + 1, theValue.mLength - 2 } : theValue;
}

// The text between an element's tags as it is written, child elements and all; none for NULL.
inline Slice GetInnerXML(ILibXMLNode* aNode)
{
    if (!aNode) { return { nullptr, 0 }; }
    char* theBegin = nullptr;
    const int theLength = ILibReadInnerXML(aNode, &theBegin);
    return { theBegin, static_cast<size_t>(theLength) };
}

// The value as written of the first attribute with the prefix and the name; false when there is none.
template <size_t PrefixSize, size_t NameSize>
bool GetXMLAttribute(const ILibXMLAttribute* anAttributes, const char (&aPrefixStr)[PrefixSize],
                     const char (&anAttributeStr)[NameSize], Slice* aValue)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!IsName(theAttribute->Prefix, theAttribute->PrefixLength, aPrefixStr)) { continue; }
        if (!IsName(theAttribute->Name, theAttribute->NameLength, anAttributeStr)) { continue; }
        *aValue = { theAttribute->Value, static_cast<size_t>(theAttribute->ValueLength) };
        return true;
    }
    return false;
}

// Stores the text as it is, with a NUL.
inline void AddText(zoPackedData_t* aRecord, uint16 aTag, const Slice& aText)
{
    if (aText.mLength == 0)
    {
        zoPackedData_AddData(aRecord, aTag, "", 1);
        return;
    }
    const NulTerminated theText(aText);
    zoPackedData_AddData(aRecord, aTag, aText.mBegin, aText.mLength + 1);
}

template <typename Number>
void AddNumber(zoPackedData_t* aRecord, uint16 aTag, Number aNumber)
{
    zoPackedData_AddData(aRecord, aTag, &aNumber, sizeof(aNumber));
}

} // namespace DIDL
