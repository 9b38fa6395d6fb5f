#include <UPnP/Utilities/DIDL/Namespaces.h>

#include <Shared/Sizes.h>
#include <Shared/Sort.h>

namespace DIDL
{

// How much of the root's start tag is read for an object: bytes for each byte that it may inherit, and what an
// attribute counts for besides its own bytes. All declarations of prefixes that fit are read: the shortest,
// ,xmlns:a="", takes eleven bytes in the list.
static const size_t kReadPerByte = 4;
static const size_t kReadPerAttribute = 32;

static constexpr std::string_view kXMLNS = "xmlns";

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
    if (aSource == ValueSource::AttributeWithoutAny && IsWrittenAsStored(aName, aValue))
    {
        char* theTarget = mText.Extend(theLeastSize - theBefore);
        if (theBefore > 0) { *theTarget++ = ','; }
        memcpy(theTarget, aName.data(), aName.size() + 2 + aValue.size() + 1);
    }
    else if (!AppendEscapedXMLNS(aName, aValue, aSource, aMaxSize)) { return false; }
    mNames.Add(aName);
    return true;
}

// Appends a declaration whose value has to be looked through. False, with nothing appended, when it does not fit.
bool NamespaceList::AppendEscapedXMLNS(std::string_view aName, std::string_view aValue, ValueSource aSource,
                                       size_t aMaxSize)
{
    const size_t theBefore = mText.size();
    if (theBefore > 0) { mText.Append(','); }
    AppendEscaped(aName, ValueSource::Attribute);
    mText.Append("=\"");
    AppendEscaped(aValue, aSource);
    mText.Append('"');
    if (mText.size() <= aMaxSize) { return true; }
    mText.CutTo(theBefore);
    return false;
}

static bool AppendAttribute(NamespaceList* aList, const ILibXMLAttribute* anAttribute, ValueSource aSource,
                            size_t aMaxSize)
{
    return aList->AppendXMLNS(Shared::QualifiedName(anAttribute), ValueAsWritten(anAttribute), aSource, aMaxSize);
}

// ---- The declarations of the object's elements ----

void NamespaceList::AddXMLNameSpace(const ILibXMLAttribute* anAttribute)
{
    AppendAttribute(this, anAttribute, ValueSource::Attribute, SIZE_MAX);
}

// ---- The declarations of the root ----

// True if an attribute of the root counts as a declaration: its prefix is empty or the start of "xmlns".
static bool IsDeclaration(const ILibXMLAttribute* anAttribute)
{
    const std::string_view thePrefix = Shared::Prefix(anAttribute);
    if (thePrefix.size() == kXMLNS.size()) { return memcmp(thePrefix.data(), kXMLNS.data(), kXMLNS.size()) == 0; }
    return thePrefix.empty() || Shared::Equals(kXMLNS.substr(0, thePrefix.size()), thePrefix);
}

// Tells of all attributes at once whether they can be copied as they are, when they are not much longer than aMaxSize.
// They end where the root's content begins.
static ValueSource SourceOf(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst, size_t aMaxSize)
{
    const char* theBegin = Shared::QualifiedName(aFirst).data();
    const char* theEnd = GetInnerXML(aRoot).data();
    const size_t theLength = theEnd ? static_cast<size_t>(theEnd - theBegin) : 0;
    if (theLength == 0 || theLength / kReadPerByte > aMaxSize) { return ValueSource::Attribute; }
    const bool fHasAny = memchr(theBegin, ',', theLength) || memchr(theBegin, '<', theLength);
    return fHasAny ? ValueSource::Attribute : ValueSource::AttributeWithoutAny;
}

namespace
{

// What may still be read of the root's start tag for an object, in bytes.
class ReadBudget
{
public:
    explicit ReadBudget(size_t aMaxSize)
        : mMaxSize(aMaxSize), mLeft(aMaxSize <= SIZE_MAX / kReadPerByte ? aMaxSize * kReadPerByte : SIZE_MAX)
    {}

    // Takes what may be read of an attribute: nothing of a name or a value that can't fit. False when too little is
    // left.
    bool Take(const ILibXMLAttribute* anAttribute)
    {
        const size_t theName = Shared::QualifiedName(anAttribute).size();
        const size_t theValue = ValueAsWritten(anAttribute).size();
        const size_t theSize =
            kReadPerAttribute + (theName <= mMaxSize ? theName : 0) + (theName + theValue <= mMaxSize ? theValue : 0);
        if (theSize > mLeft) { return false; }
        mLeft -= theSize;
        return true;
    }

private:
    size_t mMaxSize;
    size_t mLeft;
};

} // namespace

// Copies the attributes of most roots in one piece: all are declarations, few, of different names, in the form that the
// list has, with one blank between each two. False, with nothing added, for any other root.
bool NamespaceList::CopyAll(const ILibXMLAttribute* aFirst, size_t aMaxSize)
{
    const char* theBegin = Shared::QualifiedName(aFirst).data();
    const char* theEnd = theBegin;
    size_t theCount = 0;
    const ILibXMLAttribute* theAttribute = aFirst;
    for (; theAttribute; theAttribute = theAttribute->Next)
    {
        const std::string_view theName = Shared::QualifiedName(theAttribute);
        const std::string_view theValue = ValueAsWritten(theAttribute);
        const bool fIsNext = theName.data() == theEnd + (theAttribute != aFirst) && IsDeclaration(theAttribute) &&
                             IsWrittenAsStored(theName, theValue) && !Has(theName);
        if (!fIsNext || !mNames.HasRoom()) { break; }
        mNames.Add(theName);
        theEnd = theValue.data() + theValue.size() + 1;
        ++theCount;
    }
    const size_t theSize = static_cast<size_t>(theEnd - theBegin);
    if (theAttribute || theSize > aMaxSize || (theSize + theCount * kReadPerAttribute) / kReadPerByte >= aMaxSize)
    {
        mNames.Clear();
        return false;
    }
    char* theText = mText.Extend(theSize);
    memcpy(theText, theBegin, theSize);
    for (theAttribute = aFirst->Next; theAttribute; theAttribute = theAttribute->Next)
        theText[Shared::QualifiedName(theAttribute).data() - 1 - theBegin] = ',';
    return true;
}

// False when one did not fit, or when there is more than is read.
bool NamespaceList::AddWhileAllFit(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst, size_t aMaxSize)
{
    const ValueSource theSource = SourceOf(aRoot, aFirst, aMaxSize);
    if (theSource == ValueSource::AttributeWithoutAny && CopyAll(aFirst, aMaxSize)) { return true; }
    ReadBudget theBudget(aMaxSize);
    for (const ILibXMLAttribute* theAttribute = aFirst; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!theBudget.Take(theAttribute)) { return false; }
        if (!IsDeclaration(theAttribute)) { continue; }
        if (AppendAttribute(this, theAttribute, theSource, aMaxSize)) { continue; }
        if (!Has(Shared::QualifiedName(theAttribute))) { return false; }
    }
    return true;
}

void NamespaceList::Clear()
{
    mText.CutTo(0);
    mNames.Clear();
}

void NamespaceList::CollectShared(ILibXMLNode* aRoot)
{
    Clear();
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aRoot);
    const bool fFits = theAttributes && AddWhileAllFit(aRoot, theAttributes, kMaxSharedSize);
    ILibDestructXMLAttributeList(theAttributes);
    if (!fFits || !mNames.fIsInline()) { Clear(); }
}

void NamespaceList::AddAllOfRoot(ILibXMLNode* aRoot)
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aRoot);
    if (theAttributes) { AddWhileAllFit(aRoot, theAttributes, SIZE_MAX); }
    ILibDestructXMLAttributeList(theAttributes);
}

namespace
{

// The declarations of the root that an object needs. Few roots are so long that it matters: its code is small.
class NeededDeclarations
{
public:
    explicit NeededDeclarations(ILibXMLAttribute* aFirst) : mFirst(aFirst) { Find({}, kXMLNS); }
    ~NeededDeclarations() { free(mFound); }
    NeededDeclarations(const NeededDeclarations&) = delete;
    NeededDeclarations& operator=(const NeededDeclarations&) = delete;

    [[gnu::cold]] void Find(const ObjectNodes& anObject, const ILibXMLAttribute* anAttributes);

    // The number of declarations, which then are in the root's order.
    [[gnu::cold]] size_t Sort()
    {
        Shared::Sort(mFound, mFound + mCount,
                     [](const ILibXMLAttribute* aLeft, const ILibXMLAttribute* aRight)
                     { return aLeft->Name < aRight->Name; });
        return mCount;
    }
    const ILibXMLAttribute* At(size_t anIndex) const { return mFound[anIndex]; }

    bool Contains(const ILibXMLAttribute* aDeclaration) const
    {
        const std::string_view thePrefix = Shared::Prefix(aDeclaration);
        const std::string_view theName = Shared::LocalName(aDeclaration);
        if (thePrefix.empty()) { return Shared::Equals(theName, kXMLNS); }
        return thePrefix.size() == kXMLNS.size() && mPrefixes.Contains(theName);
    }

private:
    [[gnu::cold]] void Find(std::string_view aPrefix, std::string_view aName);
    [[gnu::cold]] void FindPrefix(std::string_view aPrefix);
    [[gnu::cold]] void FindPrefixes(const ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes);

    ILibXMLAttribute* mFirst; // of the root
    NameSet mPrefixes;        // of the object
    const ILibXMLAttribute** mFound = nullptr;
    size_t mCount = 0;
    size_t mCapacity = 0;
};

} // namespace

void NeededDeclarations::Find(std::string_view aPrefix, std::string_view aName)
{
    const ILibXMLAttribute* theAttribute =
        ILibFindXMLAttribute(mFirst, aPrefix.data(), aPrefix.size(), aName.data(), aName.size());
    if (!theAttribute) { return; }
    if (mCount == mCapacity)
    {
        const size_t kFirstCapacity = 8;
        mCapacity = Shared::GrowCapacity(mCapacity, mCount + 1, kFirstCapacity);
        mFound = Shared::ResizeArray(mFound, mCapacity);
    }
    mFound[mCount++] = theAttribute;
}

void NeededDeclarations::FindPrefix(std::string_view aPrefix)
{
    if (aPrefix.empty() || mPrefixes.Contains(aPrefix)) { return; }
    mPrefixes.Add(aPrefix);
    Find(kXMLNS, aPrefix);
}

void NeededDeclarations::FindPrefixes(const ILibXMLNode* aNode, const ILibXMLAttribute* anAttributes)
{
    FindPrefix(Shared::Prefix(aNode));
    for (const ILibXMLAttribute* theAttribute = anAttributes; theAttribute; theAttribute = theAttribute->Next)
        FindPrefix(Shared::Prefix(theAttribute));
}

// Those of the prefixes of the object's elements and attributes.
void NeededDeclarations::Find(const ObjectNodes& anObject, const ILibXMLAttribute* anAttributes)
{
    if (!anObject.mStartTag) { return; }
    FindPrefixes(anObject.mStartTag, anAttributes);
    const ILibXMLNode* theEnd = anObject.mStartTag->ClosingTag;
    for (ILibXMLNode* theNode = anObject.mStartTag->Next; theNode && theNode != theEnd; theNode = theNode->Next)
    {
        theNode = anObject.SkipInnerObject(theNode);
        if (!theNode->StartTag) { continue; }
        ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
        FindPrefixes(theNode, theAttributes);
        ILibDestructXMLAttributeList(theAttributes);
    }
}

void NamespaceList::AddNeededFirst(ILibXMLAttribute* aFirst, const ObjectNodes& anObject,
                                   const ILibXMLAttribute* anAttributes, size_t aMaxSize)
{
    NeededDeclarations theNeeded(aFirst);
    theNeeded.Find(anObject, anAttributes);
    const size_t theCount = theNeeded.Sort();
    ReadBudget theBudget(aMaxSize);
    for (size_t i = 0; i < theCount && theBudget.Take(theNeeded.At(i)); ++i)
        AppendAttribute(this, theNeeded.At(i), ValueSource::Attribute, aMaxSize);

    for (const ILibXMLAttribute* theAttribute = aFirst; theAttribute && theBudget.Take(theAttribute);
         theAttribute = theAttribute->Next)
    {
        if (!IsDeclaration(theAttribute) || theNeeded.Contains(theAttribute)) { continue; }
        AppendAttribute(this, theAttribute, ValueSource::Attribute, aMaxSize);
    }
}

void NamespaceList::AddOfRoot(ILibXMLNode* aRoot, const ObjectNodes& anObject, const ILibXMLAttribute* anAttributes,
                              size_t aMaxSize)
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aRoot);
    if (theAttributes && !AddWhileAllFit(aRoot, theAttributes, aMaxSize))
    {
        Clear();
        AddNeededFirst(theAttributes, anObject, anAttributes, aMaxSize);
    }
    ILibDestructXMLAttributeList(theAttributes);
}

} // namespace DIDL
