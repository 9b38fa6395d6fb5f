#include <UPnP/Utilities/DIDL/Repairer.h>

#include <Shared/ASCII.h>
#include <UPnP/Utilities/DIDL/Characters.h>
#include <UPnP/Utilities/DIDL/ObjectWriter.h>
#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <algorithm>
#include <string.h>

namespace DIDL
{

// ---- Namespaces that the writer uses itself ----

// The declaration that begins like this in the header of the documents of uploads. With the undefined-behaviour
// sanitizer gcc takes no find of the standard library in a constant expression.
static constexpr std::string_view InHeader(std::string_view aBeginning)
{
    const std::string_view theHeader(kDIDL_Header);
    size_t theBegin = 0;
    while (theHeader.substr(theBegin, aBeginning.size()) != aBeginning)
        ++theBegin;
    size_t theQuote = theBegin + aBeginning.size();
    while (theHeader[theQuote] != '"')
        ++theQuote;
    return theHeader.substr(theBegin, theQuote + 1 - theBegin);
}

namespace
{

struct KnownNamespace
{
    uint32 mBit;
    std::string_view mPrefix;
    std::string_view mDeclaration;
};

constexpr KnownNamespace kKnown[] = {
    { Repairer::kDefault, "", InHeader("xmlns=\"") },
    { Repairer::kUPnP, "upnp", InHeader("xmlns:upnp=\"") },
    { Repairer::kDC, "dc", InHeader("xmlns:dc=\"") },
    { Repairer::kDLNA, "dlna", InHeader("xmlns:dlna=\"") },
    { Repairer::kAV, "av", "xmlns:av=\"urn:schemas-upnp-org:av:av\"" },
};

} // namespace

static uint32 KnownPrefix(std::string_view aPrefix)
{
    for (const KnownNamespace& theNamespace : kKnown)
        if (Shared::Equals(theNamespace.mPrefix, aPrefix)) { return theNamespace.mBit; }
    return 0;
}

static uint32 KnownDeclaration(std::string_view aDeclaration)
{
    for (const KnownNamespace& theNamespace : kKnown)
        if (Shared::Equals(theNamespace.mDeclaration, aDeclaration)) { return theNamespace.mBit; }
    return 0;
}

uint32 Repairer::FindUndeclared() const
{
    uint32 theLacking = 0;
    for (const KnownNamespace& theNamespace : kKnown)
    {
        const bool fIsUsed = (mUsed & ~mDeclared & theNamespace.mBit) != 0;
        if (fIsUsed && !IsDeclared(theNamespace.mPrefix)) { theLacking |= theNamespace.mBit; }
    }
    return theLacking;
}

// True for a prefix of the writer's own, which is declared once the object is written again.
bool Repairer::CanDeclare(std::string_view aPrefix)
{
    const uint32 theKnown = KnownPrefix(aPrefix);
    Use(theKnown);
    return theKnown != 0;
}

// ---- Declarations ----

static bool Contains(const List<std::string_view>& aList, std::string_view aText)
{
    for (const std::string_view theText : aList)
        if (Shared::Equals(theText, aText)) { return true; }
    return false;
}

// True for one of the writer's own declarations, but not for its second one, which IsOrdinary then notes.
inline bool Repairer::IsKnown(std::string_view aDeclaration)
{
    const uint32 theNew = KnownDeclaration(aDeclaration) & ~mDeclared;
    mDeclared |= theNew;
    return theNew != 0;
}

// True for another declaration that is the first of its prefix, one of few, and has nothing out of the ordinary.
bool Repairer::IsOrdinary(std::string_view aDeclaration)
{
    std::string_view theRest = aDeclaration;
    QName theName;
    if (!ReadQName(&theRest, &theName) || !IsDeclaration(theName) || !Read(&theRest, "=\"")) { return false; }
    const std::string_view thePrefix = theName.mPrefix.empty() ? theName.mPrefix : theName.mLocal;
    const bool fIsReserved = Read(&theRest, "http://www.w3.") || (!thePrefix.empty() && thePrefix[0] == 'x');
    const bool fIsFirst = mPrefixes.size() < kFew && !Contains(mPrefixes, thePrefix);
    mPrefixes.Add(thePrefix);
    mDeclaredOtherwise |= KnownPrefix(thePrefix);
    const bool fIsOther = fIsFirst && !fIsReserved && theRest.size() > 1 && theRest.back() == '"';
    return fIsOther && IsURI(theRest.substr(0, theRest.size() - 1));
}

// As DIDL::AppendDeclarations. False when one is not ordinary: what is appended then does not count.
bool Repairer::AppendOrdinary(std::string_view aList)
{
    AppendLiteral(mBuffer, " ");
    Shared::Append(mBuffer, aList);
    char* theBegin = mBuffer->mPtr + mBuffer->mPos - aList.size();
    std::string_view theRest = aList;
    for (;;)
    {
        const size_t theComma = theRest.find(',');
        const std::string_view theDeclaration = theRest.substr(0, theComma);
        if (!IsKnown(theDeclaration) && !IsOrdinary(theDeclaration)) { return false; }
        if (theComma == theRest.npos) { return (mDeclared & mDeclaredOtherwise) == 0; } // else one is declared twice
        theRest.remove_prefix(theComma + 1);
        theBegin[aList.size() - theRest.size() - 1] = ' ';
    }
}

void Repairer::AppendDeclarations(std::string_view aList)
{
    mDeclarationsBegin = mBuffer->mPos;
    if (mNeeded != 0 || !AppendOrdinary(aList)) { RepairDeclarations(aList); }
    mDeclarationsEnd = mBuffer->mPos;
}

bool Repairer::IsDeclared(std::string_view aPrefix) const
{
    if (mfHasScopes) { return !mScopes.NamespaceOf(aPrefix).empty(); }
    return (KnownPrefix(aPrefix) & mDeclared) != 0 || Contains(mPrefixes, aPrefix) || aPrefix == "xml";
}

// ---- Declarations that can't be written as they are ----

// False when the part is more than attributes: nothing of it is used then.
static bool ReadAll(std::string_view aText, List<Attribute>* anAttributes)
{
    return ReadAttributes(&aText, anAttributes) && aText.empty();
}

// Those of the part hold from now on, the first of each prefix.
void Repairer::ReadDeclarations(std::string_view aPart)
{
    List<Attribute> theAttributes;
    if (!ReadAll(aPart, &theAttributes)) { return; }
    for (const Attribute& theAttribute : theAttributes)
    {
        const QName& theName = theAttribute.mName;
        const std::string_view thePrefix = theName.mPrefix.empty() ? theName.mPrefix : theName.mLocal;
        const bool fIsFirst = IsDeclaration(theName) && mScopes.NamespaceOf(thePrefix).empty();
        if (fIsFirst && IsWellFormed(theAttribute)) { mScopes.Declare(theAttribute); }
    }
}

// Appends those of the part that can be written. The declarations of all parts hold.
void Repairer::AppendPart(std::string_view aPart, AttributeNames* aNames)
{
    List<Attribute> theAttributes;
    if (!ReadAll(aPart, &theAttributes))
    {
        ++mRepairs.mDeclarationsLeftOut;
        return;
    }
    for (const Attribute& theAttribute : theAttributes)
    {
        const QName& theName = theAttribute.mName;
        const bool fCanHold = IsDeclaration(theName) ? !theAttribute.mValue.empty() && IsWellFormed(theAttribute)
                                                     : theName.mPrefix.empty() || IsDeclared(theName.mPrefix) ||
                                                           CanDeclare(theName.mPrefix);
        const bool fIsWritten = fCanHold && mScopes.AddName(aNames, theName);
        if (fIsWritten) { Shared::Append(mBuffer, theAttribute.mText); }
        mRepairs.mDeclarationsLeftOut += !fIsWritten;
    }
}

// Appends the declarations of a list as DIDL::AppendDeclarations does, but with a NUL after each.
static void SplitList(std::string_view aList, TextBuilder* aParts)
{
    aParts->Append(' ');
    for (size_t i = 0; i < aList.size(); ++i)
    {
        const bool fIsEscape = aList.substr(i, 2) == "\\,";
        if (aList[i] == ',') { aParts->Append(std::string_view("\0 ", 2)); }
        else { aParts->Append(aList[i += fIsEscape]); }
    }
}

void Repairer::RepairDeclarations(std::string_view aList)
{
    TextBuilder theParts;
    List<Attribute> theAttributes;
    mBuffer->mPos = mDeclarationsBegin;
    if (aList.data()) { DIDL::AppendDeclarations(mBuffer, aList); }
    const std::string_view theWritten(mBuffer->mPtr + mDeclarationsBegin, mBuffer->mPos - mDeclarationsBegin);
    mBuffer->mPos = mDeclarationsBegin;
    if (ReadAll(theWritten, &theAttributes)) { theParts.Append(theWritten); }
    else { SplitList(aList, &theParts); }
    for (const KnownNamespace& theNamespace : kKnown)
    {
        if ((mNeeded & theNamespace.mBit) == 0) { continue; }
        theParts.Append(std::string_view("\0 ", 2));
        theParts.Append(theNamespace.mDeclaration);
        ++mRepairs.mDeclarationsAdded;
    }
    mfHasScopes = true;
    AttributeNames theNames;
    for (const bool fIsWritten : { false, true })
    {
        for (std::string_view theRest = theParts.Text(); !theRest.empty();)
        {
            const std::string_view thePart = theRest.substr(0, theRest.find('\0'));
            theRest.remove_prefix(std::min(thePart.size() + 1, theRest.size()));
            if (fIsWritten) { AppendPart(thePart, &theNames); }
            else { ReadDeclarations(thePart); }
        }
    }
    if (mNeeded != 0 || mRepairs.mDeclarationsLeftOut != 0) { return; }
    mBuffer->mPos = mDeclarationsBegin; // they were sendable, with the blanks at their end, too
    Shared::Append(mBuffer, theParts.Text());
}

// ---- Pairs ----

static bool SplitName(std::string_view aText, QName* aName) { return ReadQName(&aText, aName) && aText.empty(); }

bool Repairer::CountPair(bool afIsWritten)
{
    mRepairs.mPairsLeftOut += !afIsWritten;
    return afIsWritten;
}

bool Repairer::CanWriteElement(std::string_view aName)
{
    QName theName;
    return CountPair(SplitName(aName, &theName) && (IsDeclared(theName.mPrefix) || CanDeclare(theName.mPrefix)));
}

void Repairer::StartAttributes()
{
    mAttributesBegin = mBuffer->mPos;
    mLocalNames.CutTo(0);
    mNames.Clear();
    mfHasNames = false;
}

bool Repairer::CanWriteAttribute(std::string_view aName, bool afHasValue)
{
    QName theName;
    const bool fHasName = afHasValue && SplitName(aName, &theName) && !IsDeclaration(theName) && !IsID(theName);
    const std::string_view thePrefix = theName.mPrefix;
    const bool fIsBound = fHasName && (thePrefix.empty() || IsDeclared(thePrefix) || CanDeclare(thePrefix));
    return CountPair(fIsBound && IsNew(theName));
}

// True for the local name of an attribute that is written from a field.
static bool IsField(std::string_view aLocalName)
{
    static constexpr char kFields[][16] = { "protocolInfo", "bitrate", "colorDepth",      "duration",
                                            "resolution",   "size",    "nrAudioChannels", "ifoFileURI" };
    const size_t theLength = aLocalName.size();
    for (const char* theField : kFields)
    {
        if (*theField != aLocalName[0] || theLength >= sizeof(kFields[0]) || theField[theLength] != 0) { continue; }
        if (memcmp(theField, aLocalName.data(), theLength) == 0) { return true; }
    }
    return false;
}

// Most names differ from others in the local name already.
bool Repairer::IsNew(const QName& anAttribute)
{
    const std::string_view theName = anAttribute.mLocal;
    const bool fMayRepeat = mLocalNames.size() == kFew || Contains(mLocalNames, theName) || IsField(theName);
    if (fMayRepeat || mfHasNames) { return IsNewExactly(anAttribute); }
    mLocalNames.Add(theName);
    return true;
}

bool Repairer::IsNewExactly(const QName& anAttribute)
{
    const char* theText = mBuffer->mPtr;
    if (!mfHasScopes)
    {
        ReadDeclarations({ theText + mDeclarationsBegin, mDeclarationsEnd - mDeclarationsBegin });
        mfHasScopes = true;
    }
    List<Attribute> theAttributes;
    if (!mfHasNames) { ReadAll({ theText + mAttributesBegin, mBuffer->mPos - mAttributesBegin }, &theAttributes); }
    mfHasNames = true;
    for (const Attribute& theAttribute : theAttributes)
        mScopes.AddName(&mNames, theAttribute.mName);
    return mScopes.AddName(&mNames, anAttribute);
}

} // namespace DIDL
