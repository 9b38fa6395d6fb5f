#include <UPnP/Utilities/DIDL/Namespaces.h>

#include <algorithm>

namespace DIDL
{

// How much of the root's start tag is read for one object, unless the object may store more. It bounds what many small
// objects under one long tag cost together.
static const size_t kMaxRootRead = 8192;

static const std::string_view kXMLNS = "xmlns";

// The attributes of the root that are read for an object.
struct RootAttributes
{
    const ILibXMLAttribute* mFirst;
    const char* mReadEnd; // attributes from here on are not read
    ValueSource mSource;
};

// ---- The list ----

// What is written for a byte; empty when it is written itself.
static std::string_view EscapedForm(char aByte, ValueSource aSource)
{
    switch (aByte)
    {
    case ',': return "\\,";
    case '"': return "&quot;";
    case '<': return "&lt;";
    case '&': return aSource == ValueSource::Element ? std::string_view("&amp;") : std::string_view();
    default: return {};
    }
}

void NamespaceList::AppendEscaped(std::string_view aText, ValueSource aSource)
{
    size_t theDone = 0;
    for (size_t i = 0; i < aText.size(); ++i)
    {
        const std::string_view theEscaped = EscapedForm(aText[i], aSource);
        if (theEscaped.empty()) { continue; }
        mText.Append(aText.substr(theDone, i - theDone));
        mText.Append(theEscaped);
        theDone = i + 1;
    }
    mText.Append(aText.substr(theDone));
}

// True if the document has the declaration in the form name="value".
static bool IsWrittenAsStored(std::string_view aName, std::string_view aValue)
{
    const char* theNameEnd = aName.data() + aName.size();
    return aValue.data() == theNameEnd + 2 && memcmp(theNameEnd, "=\"", 2) == 0;
}

bool NamespaceList::AppendXMLNS(std::string_view aName, std::string_view aValue, ValueSource aSource, size_t aMaxSize)
{
    const size_t theBefore = mText.size();
    const size_t theLeastSize = theBefore + (theBefore > 0) + aName.size() + aValue.size() + 3; // with ="" around it
    if (theLeastSize > aMaxSize) { return false; }
    if (mNames.Contains(aName)) { return true; }
    if (theBefore > 0) { mText.Append(','); }
    if (aSource == ValueSource::AttributeWithoutAny && IsWrittenAsStored(aName, aValue))
    {
        mText.Append({ aName.data(), aName.size() + 2 + aValue.size() + 1 });
    }
    else
    {
        AppendEscaped(aName, ValueSource::Attribute);
        mText.Append("=\"");
        AppendEscaped(aValue, aSource);
        mText.Append('"');
    }
    if (mText.size() > aMaxSize)
    {
        mText.CutTo(theBefore);
        return false;
    }
    mNames.Add(aName);
    return true;
}

static bool AppendAttribute(NamespaceList* aList, const ILibXMLAttribute* anAttribute, ValueSource aSource,
                            size_t aMaxSize)
{
    return aList->AppendXMLNS(Shared::QualifiedName(anAttribute), ValueAsWritten(anAttribute), aSource, aMaxSize);
}

// ---- The declarations of the object's elements ----

void NamespaceList::AddXMLNameSpaces(const ILibXMLAttribute* anAttributes)
{
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
    {
        const bool fIsDeclaration = Shared::Equals(Shared::Prefix(theAttribute), kXMLNS);
        if (fIsDeclaration) { AppendAttribute(this, theAttribute, ValueSource::Attribute, SIZE_MAX); }
    }
}

// ---- The declarations of the root ----

// True if an attribute of the root counts as a declaration: its prefix is empty or a beginning of "xmlns".
static bool IsDeclaration(const ILibXMLAttribute* anAttribute)
{
    const std::string_view thePrefix = Shared::Prefix(anAttribute);
    return Shared::Equals(kXMLNS.substr(0, thePrefix.size()), thePrefix);
}

// Tells of all attributes at once whether they can be copied as they are.
static ValueSource SourceOf(const char* aBegin, const char* anEnd)
{
    const size_t theLength = static_cast<size_t>(anEnd - aBegin);
    const bool fHasAny = memchr(aBegin, ',', theLength) || memchr(aBegin, '<', theLength);
    return fHasAny ? ValueSource::Attribute : ValueSource::AttributeWithoutAny;
}

// The attributes end where the root's content begins.
static RootAttributes GetRootAttributes(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst, size_t aMaxRead)
{
    const char* theBegin = Shared::QualifiedName(aFirst).data();
    const char* theEnd = GetInnerXML(aRoot).data();
    if (!theEnd) { return { aFirst, theBegin, ValueSource::Attribute }; }
    const bool fIsTooLong = static_cast<size_t>(theEnd - theBegin) > aMaxRead;
    if (fIsTooLong) { return { aFirst, theBegin + aMaxRead, ValueSource::Attribute }; }
    return { aFirst, theEnd, SourceOf(theBegin, theEnd) };
}

// False when one did not fit, or when there are more attributes than are read.
bool NamespaceList::AddWhileAllFit(const RootAttributes& aRoot, size_t aMaxSize)
{
    for (const ILibXMLAttribute* theAttribute = aRoot.mFirst; theAttribute; theAttribute = theAttribute->Next)
    {
        if (theAttribute->Name >= aRoot.mReadEnd) { return false; }
        if (!IsDeclaration(theAttribute)) { continue; }
        if (AppendAttribute(this, theAttribute, aRoot.mSource, aMaxSize)) { continue; }
        if (!Has(Shared::QualifiedName(theAttribute))) { return false; }
    }
    return true;
}

void NamespaceList::AddAllOfRoot(ILibXMLNode* aRoot)
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aRoot);
    if (theAttributes) { AddWhileAllFit(GetRootAttributes(aRoot, theAttributes, SIZE_MAX), SIZE_MAX); }
    ILibDestructXMLAttributeList(theAttributes);
}

static void AddPrefix(NameSet* aPrefixes, std::string_view aPrefix)
{
    if (!aPrefix.empty() && !aPrefixes->Contains(aPrefix)) { aPrefixes->Add(aPrefix); }
}

static void AddPrefixes(NameSet* aPrefixes, const ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    AddPrefix(aPrefixes, Shared::Prefix(aNode));
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
        AddPrefix(aPrefixes, Shared::Prefix(theAttribute));
}

// The prefixes of the object's elements and attributes.
static void CollectPrefixes(const ObjectNodes& anObject, const ILibXMLAttribute* anAttributes, NameSet* aPrefixes)
{
    if (!anObject.mStartTag) { return; }
    AddPrefixes(aPrefixes, anObject.mStartTag, anAttributes);
    const ILibXMLNode* theEnd = anObject.mStartTag->ClosingTag;
    for (ILibXMLNode* theNode = anObject.mStartTag->Next; theNode && theNode != theEnd; theNode = theNode->Next)
    {
        theNode = anObject.SkipInnerObject(theNode);
        if (!theNode->StartTag) { continue; }
        ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
        AddPrefixes(aPrefixes, theNode, theAttributes);
        ILibDestructXMLAttributeList(theAttributes);
    }
}

// True for the default namespace, and for the declaration of one of the prefixes.
static bool IsNeeded(const ILibXMLAttribute* anAttribute, const NameSet& aPrefixes)
{
    const std::string_view thePrefix = Shared::Prefix(anAttribute);
    const std::string_view theName = Shared::LocalName(anAttribute);
    if (thePrefix.empty()) { return Shared::Equals(theName, kXMLNS); }
    return thePrefix.size() == kXMLNS.size() && aPrefixes.Contains(theName);
}

void NamespaceList::AddOfRoot(ILibXMLNode* aRoot, const ObjectNodes& anObject, const ILibXMLAttribute* anAttributes,
                              size_t aMaxSize)
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aRoot);
    if (!theAttributes) { return; }
    const RootAttributes theRoot = GetRootAttributes(aRoot, theAttributes, std::max(kMaxRootRead, aMaxSize));
    if (!AddWhileAllFit(theRoot, aMaxSize))
    {
        mText.CutTo(0);
        mNames.Clear();
        NameSet thePrefixes;
        CollectPrefixes(anObject, anAttributes, &thePrefixes);
        for (const bool fAddsNeeded : { true, false })
        {
            for (const ILibXMLAttribute* theAttribute = theRoot.mFirst;
                 theAttribute && theAttribute->Name < theRoot.mReadEnd; theAttribute = theAttribute->Next)
            {
                if (!IsDeclaration(theAttribute) || IsNeeded(theAttribute, thePrefixes) != fAddsNeeded) { continue; }
                AppendAttribute(this, theAttribute, theRoot.mSource, aMaxSize);
            }
        }
    }
    ILibDestructXMLAttributeList(theAttributes);
}

} // namespace DIDL
