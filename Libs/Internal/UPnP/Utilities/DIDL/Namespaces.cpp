#include <UPnP/Utilities/DIDL/Namespaces.h>

namespace DIDL
{

static bool TakeNameFromTable(NamespaceList* aNamespaces, const Slice& aName)
{
    if (!aNamespaces->mTable)
    {
        aNamespaces->mTable = zoCustomHashTable_New_String_String();
        for (const Slice& theName : aNamespaces->mNames)
            zoCustomHashTable_Add(aNamespaces->mTable, NulTerminated(theName).c_str(), "");
    }
    const NulTerminated theName(aName);
    if (zoCustomHashTable_Get(aNamespaces->mTable, theName.c_str())) { return false; }
    zoCustomHashTable_Add(aNamespaces->mTable, theName.c_str(), "");
    return true;
}

// Notes a name; false when it was there already.
static bool TakeName(NamespaceList* aNamespaces, const Slice& aName)
{
    for (size_t i = 0; i < aNamespaces->mCount && i < NamespaceList::kFew; ++i)
    {
        const Slice& theName = aNamespaces->mNames[i];
        if (theName.mLength == aName.mLength && memcmp(theName.mBegin, aName.mBegin, aName.mLength) == 0)
        {
            return false;
        }
    }
    if (aNamespaces->mCount < NamespaceList::kFew) { aNamespaces->mNames[aNamespaces->mCount] = aName; }
    else if (!TakeNameFromTable(aNamespaces, aName)) { return false; }
    ++aNamespaces->mCount;
    return true;
}

static bool Contains(const Slice& aText, char aCharacter)
{
    return aText.mLength > 0 && memchr(aText.mBegin, aCharacter, aText.mLength) != nullptr;
}

// Appends a piece of a declaration: a comma protected, and what would end the value or is no well-formed value escaped.
static void AppendToList(TextBuilder* aBuilder, const Slice& aText)
{
    for (size_t i = 0; i < aText.mLength; ++i)
    {
        switch (aText.mBegin[i])
        {
        case ',': Append(aBuilder, "\\,", 2); break;
        case '"': Append(aBuilder, "&quot;", 6); break;
        case '<': Append(aBuilder, "&lt;", 4); break;
        default: Append(aBuilder, aText.mBegin + i, 1); break;
        }
    }
}

// Whether the document itself has the declaration in the form name="value".
static bool IsWrittenAsStored(const Slice& aName, const Slice& aValue)
{
    const char* theNameEnd = aName.mBegin + aName.mLength;
    return aValue.mBegin == theNameEnd + 2 && memcmp(theNameEnd, "=\"", 2) == 0;
}

void AppendXMLNS(NamespaceList* aNamespaces, const Slice& aName, const Slice& aValue, bool afIsPlain)
{
    if (!TakeName(aNamespaces, aName)) { return; }
    TextBuilder* theList = &aNamespaces->mText;
    if (theList->mLength > 0) { Append(theList, ",", 1); }
    if (afIsPlain && IsWrittenAsStored(aName, aValue))
    {
        Append(theList, aName.mBegin, aName.mLength + 2 + aValue.mLength + 1);
        return;
    }
    AppendToList(theList, aName);
    Append(theList, "=\"", 2);
    AppendToList(theList, aValue);
    Append(theList, "\"", 1);
}

static Slice ValueAsWritten(const ILibXMLAttribute* anAttribute)
{
    return { anAttribute->Value, static_cast<size_t>(anAttribute->ValueLength) };
}

void AddXMLNameSpaces(const ILibXMLAttribute* anAttributes, NamespaceList* aNamespaces)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (theAttribute->PrefixLength == 5 && memcmp(theAttribute->Prefix, "xmlns", 5) == 0)
        {
            AppendXMLNS(aNamespaces, QualifiedName(theAttribute), ValueAsWritten(theAttribute));
        }
    }
}

// Whether all attributes of an element, which end where its text begins, are free of commas and "<".
static bool ArePlain(const ILibXMLAttribute* aFirst, const Slice& anInnerXML)
{
    char* theBegin = QualifiedName(aFirst).mBegin;
    const Slice theAttributes = { theBegin, static_cast<size_t>(anInnerXML.mBegin - theBegin) };
    return !Contains(theAttributes, ',') && !Contains(theAttributes, '<');
}

// Whether "xmlns" begins with the prefix; most are that, or none.
static bool IsPartOfXMLNS(const char* aPrefix, size_t aLength)
{
    if (aLength == 5) { return memcmp(aPrefix, "xmlns", 5) == 0; }
    return aLength == 0 || (aLength < 5 && memcmp(aPrefix, "xmlns", aLength) == 0);
}

void AddRootNameSpaces(ILibXMLNode* aDIDLNode, NamespaceList* aNamespaces)
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aDIDLNode);
    const Slice theText = GetInnerXML(aDIDLNode);
    const bool fArePlain = theAttributes && theText.mBegin && ArePlain(theAttributes, theText);
    for (const ILibXMLAttribute* theAttribute = theAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!IsPartOfXMLNS(theAttribute->Prefix, static_cast<size_t>(theAttribute->PrefixLength))) { continue; }
        AppendXMLNS(aNamespaces, QualifiedName(theAttribute), ValueAsWritten(theAttribute), fArePlain);
    }
    ILibDestructXMLAttributeList(theAttributes);
}

} // namespace DIDL
