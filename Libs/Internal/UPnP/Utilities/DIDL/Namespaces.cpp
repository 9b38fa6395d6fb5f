#include <UPnP/Utilities/DIDL/Namespaces.h>

#include <Shared/Sizes.h>
#include <Shared/Sort.h>
#include <algorithm>

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
    if (Has(aName)) { return true; }
    if (aSource == ValueSource::AttributeWithoutCommas && IsWrittenAsStored(aName, aValue))
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

// The text of the attributes, from the first name up to the root's content; empty when it is not known.
static std::string_view TextOfAttributes(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst)
{
    const char* theBegin = Shared::QualifiedName(aFirst).data();
    const char* theEnd = GetInnerXML(aRoot).data();
    return { theBegin, theEnd ? static_cast<size_t>(theEnd - theBegin) : 0 };
}

// Tells of all attributes at once whether they can be copied as they are, when they are not much longer than aMaxSize.
static ValueSource SourceOf(std::string_view aText, size_t aMaxSize)
{
    if (aText.empty() || aText.size() / kReadPerByte > aMaxSize) { return ValueSource::Attribute; }
    const bool fHasAny = memchr(aText.data(), ',', aText.size()) || memchr(aText.data(), '<', aText.size());
    return fHasAny ? ValueSource::Attribute : ValueSource::AttributeWithoutCommas;
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

// True if an attribute declares a namespace and is written as it is stored.
static bool IsCopyable(const ILibXMLAttribute* anAttribute, std::string_view aName)
{
    const int theLength = anAttribute->Prefix ? anAttribute->PrefixLength : anAttribute->NameLength;
    return theLength == static_cast<int>(kXMLNS.size()) && memcmp(aName.data(), kXMLNS.data(), kXMLNS.size()) == 0 &&
           IsWrittenAsStored(aName, ValueAsWritten(anAttribute));
}

// A bit that differs for the names of most roots, and is the same for the same name.
static uint64 SlotOf(const ILibXMLAttribute* anAttribute, std::string_view aName)
{
    const size_t theFirst = static_cast<uint8>(*anAttribute->Name); // of the local name
    const size_t theLast = static_cast<uint8>(aName.data()[aName.size() - 1]);
    return uint64{ 1 } << ((theFirst * 8 + theLast + aName.size() * 5) % 64);
}

// Copies the attributes of most roots in one piece: all declare namespaces by names with different slots, in the form
// that the list has, with one blank between each two. False, with nothing added, for any other root. Those that fit are
// always few enough for a ReadBudget.
bool NamespaceList::CopyAll(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst, std::string_view aText)
{
    char* theCopy = mText.Extend(aText.size());
    memcpy(theCopy, aText.data(), aText.size());
    const char* theNext = aText.data();
    uint64 theSlots = 0;
    const ILibXMLAttribute* theAttribute = aFirst;
    for (; theAttribute; theAttribute = theAttribute->Next)
    {
        const std::string_view theName = Shared::QualifiedName(theAttribute);
        if (theName.data() != theNext || !IsCopyable(theAttribute, theName)) { break; }
        const uint64 theSlot = SlotOf(theAttribute, theName);
        if ((theSlots & theSlot) != 0) { break; }
        theSlots |= theSlot;
        const char* theEnd = theAttribute->Value + theAttribute->ValueLength + 1; // after the quote
        theCopy[theEnd - aText.data()] = ',';
        theNext = theEnd + 1;
    }
    mText.CutTo(theAttribute ? 0 : static_cast<size_t>(theNext - 1 - aText.data()));
    mCopiedRoot = theAttribute ? nullptr : aRoot;
    return !theAttribute;
}

// Only short roots are copied, so it costs little to read one again for each question.
bool NamespaceList::HasCopied(std::string_view aName) const
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(mCopiedRoot);
    const ILibXMLAttribute* theAttribute = theAttributes;
    while (theAttribute && !Shared::Equals(Shared::QualifiedName(theAttribute), aName))
        theAttribute = theAttribute->Next;
    ILibDestructXMLAttributeList(theAttributes);
    return theAttribute != nullptr;
}

// False when one did not fit, or when there is more than is read.
bool NamespaceList::AddWhileAllFit(ILibXMLNode* aRoot, const ILibXMLAttribute* aFirst, size_t aMaxSize)
{
    const std::string_view theText = TextOfAttributes(aRoot, aFirst);
    const ValueSource theSource = SourceOf(theText, aMaxSize);
    const bool fIsShort = theText.size() <= std::min<size_t>(aMaxSize, kMaxSharedSize);
    const bool fIsCopied =
        fIsShort && theSource == ValueSource::AttributeWithoutCommas && CopyAll(aRoot, aFirst, theText);
    return fIsCopied || AddOneByOne(aFirst, theSource, aMaxSize);
}

bool NamespaceList::AddOneByOne(const ILibXMLAttribute* aFirst, ValueSource aSource, size_t aMaxSize)
{
    ReadBudget theBudget(aMaxSize);
    for (const ILibXMLAttribute* theAttribute = aFirst; theAttribute; theAttribute = theAttribute->Next)
    {
        if (!theBudget.Take(theAttribute)) { return false; }
        if (!IsDeclaration(theAttribute)) { continue; }
        if (AppendAttribute(this, theAttribute, aSource, aMaxSize)) { continue; }
        if (!Has(Shared::QualifiedName(theAttribute))) { return false; }
    }
    return true;
}

void NamespaceList::Clear()
{
    mText.CutTo(0);
    mNames.Clear();
    mCopiedRoot = nullptr;
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
        if (!theNode->StartTag) { continue; }
        if (anObject.IsSkipped(theNode))
        {
            theNode = theNode->ClosingTag;
            continue;
        }
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
