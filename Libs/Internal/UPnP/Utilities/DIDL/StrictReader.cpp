#include <UPnP/Utilities/DIDL/StrictReader.h>

#include <Shared/ASCII.h>
#include <UPnP/Utilities/DIDL/Scopes.h>

namespace DIDL
{

namespace
{

class StrictReader
{
public:
    explicit StrictReader(std::string_view aText) : mRest(aText) {}
    bool ReadDocument();

private:
    struct Element
    {
        std::string_view mName;
        size_t mScope; // of mScopes, before it
    };

    bool ReadMarkup(bool* afHasRoot);
    bool ReadStartTag();
    bool ReadEndTag();
    bool CheckNames(const QName& anElement, const List<Attribute>& anAttributes);
    bool ReadPast(std::string_view aTerminator);
    bool ReadComment();
    bool ReadInstruction();

    std::string_view mRest;
    Scopes mScopes;
    List<Element> mOpen;
};

} // namespace

// ---- What is not an element ----

// The next word's value, when it has this name; without data when it has another.
static std::string_view TakeWord(const List<Attribute>& aWords, size_t* anIndex, std::string_view aName)
{
    const bool fIsNext = *anIndex < aWords.size() && aWords[*anIndex].mName.Whole() == aName;
    return fIsNext ? aWords[(*anIndex)++].mValue : std::string_view();
}

// After "<?xml".
static bool ReadDeclaration(std::string_view* aText)
{
    List<Attribute> theWords;
    if (!ReadAttributes(aText, &theWords) || !Read(aText, "?>")) { return false; }
    size_t theIndex = 0;
    const std::string_view theVersion = TakeWord(theWords, &theIndex, "version");
    const std::string_view theEncoding = TakeWord(theWords, &theIndex, "encoding");
    const std::string_view theStandalone = TakeWord(theWords, &theIndex, "standalone");
    const bool fIsUTF8 = !theEncoding.data() || Shared::EqualsIgnoringCase(theEncoding, "utf-8");
    const bool fIsKnown = !theStandalone.data() || theStandalone == "yes" || theStandalone == "no";
    return theIndex == theWords.size() && theVersion == "1.0" && fIsUTF8 && fIsKnown;
}

bool StrictReader::ReadPast(std::string_view aTerminator)
{
    const size_t theEnd = mRest.find(aTerminator);
    if (theEnd == mRest.npos || !IsAllowed(mRest.substr(0, theEnd))) { return false; }
    mRest.remove_prefix(theEnd + aTerminator.size());
    return true;
}

// After "<!--".
bool StrictReader::ReadComment() { return ReadPast("--") && Read(&mRest, ">"); }

// After "<?".
bool StrictReader::ReadInstruction()
{
    QName theTarget;
    if (!ReadQName(&mRest, &theTarget) || !theTarget.mPrefix.empty()) { return false; }
    if (Shared::EqualsIgnoringCase(theTarget.mLocal, "xml")) { return false; }
    return mRest.substr(0, 2) == "?>" ? Read(&mRest, "?>") : ReadSpaces(&mRest) > 0 && ReadPast("?>");
}

// ---- Elements ----

bool StrictReader::CheckNames(const QName& anElement, const List<Attribute>& anAttributes)
{
    for (const Attribute& theAttribute : anAttributes)
    {
        if (!IsDeclaration(theAttribute.mName)) { continue; }
        if (!IsWellFormed(theAttribute)) { return false; }
        mScopes.Declare(theAttribute);
    }
    AttributeNames theNames;
    for (const Attribute& theAttribute : anAttributes)
        if (!mScopes.AddName(&theNames, theAttribute.mName)) { return false; }
    return !mScopes.NamespaceOf(anElement.mPrefix).empty();
}

// After "<".
bool StrictReader::ReadStartTag()
{
    QName theName;
    List<Attribute> theAttributes;
    const size_t theScope = mScopes.size();
    if (!ReadQName(&mRest, &theName) || !ReadAttributes(&mRest, &theAttributes)) { return false; }
    if (!CheckNames(theName, theAttributes)) { return false; }
    if (Read(&mRest, "/>"))
    {
        mScopes.CutTo(theScope);
        return true;
    }
    mOpen.Add({ theName.Whole(), theScope });
    return Read(&mRest, ">");
}

// After "</".
bool StrictReader::ReadEndTag()
{
    if (mOpen.size() == 0) { return false; }
    const Element& theElement = mOpen[mOpen.size() - 1];
    if (!Read(&mRest, theElement.mName)) { return false; }
    mScopes.CutTo(theElement.mScope);
    mOpen.CutTo(mOpen.size() - 1);
    ReadSpaces(&mRest);
    return Read(&mRest, ">");
}

bool StrictReader::ReadMarkup(bool* afHasRoot)
{
    const bool fIsInside = mOpen.size() > 0;
    if (Read(&mRest, "</")) { return ReadEndTag(); }
    if (Read(&mRest, "<!--")) { return ReadComment(); }
    if (Read(&mRest, "<?")) { return ReadInstruction(); }
    if (fIsInside && Read(&mRest, "<![CDATA[")) { return ReadPast("]]>"); }
    const bool fMayBegin = fIsInside || !*afHasRoot;
    *afHasRoot = true;
    return fMayBegin && Read(&mRest, "<") && ReadStartTag();
}

bool StrictReader::ReadDocument()
{
    Read(&mRest, "\xEF\xBB\xBF");
    const bool fHasDeclaration = mRest.size() > 5 && Shared::IsSpace(mRest[5]) && Read(&mRest, "<?xml");
    if (fHasDeclaration && !ReadDeclaration(&mRest)) { return false; }
    bool fHasRoot = false;
    for (;;)
    {
        if (mOpen.size() == 0) { ReadSpaces(&mRest); }
        else if (!ReadCharacters(&mRest, '<')) { return false; }
        if (mRest.empty()) { return fHasRoot && mOpen.size() == 0; }
        if (!ReadMarkup(&fHasRoot)) { return false; }
    }
}

bool IsSendable(std::string_view aText) { return StrictReader(aText).ReadDocument(); }

} // namespace DIDL
