#include <UPnP/Utilities/DIDL/Scopes.h>

#include <UPnP/Stack/ILibXML.h>
#include <UPnP/Utilities/DIDL/Characters.h>
#include <UPnP/Utilities/DIDL/Values.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

namespace
{

// A key of a table: a text with a NUL.
class Key
{
public:
    explicit Key(std::string_view aText)
    {
        mText.Append(aText);
        mText.Append('\0');
    }
    Key(std::string_view aText, std::string_view anotherText)
    {
        mText.Append(aText);
        mText.Append(':');
        mText.Append(anotherText);
        mText.Append('\0');
    }
    const char* c_str() const { return mText.Text().data(); }

private:
    TextBuilder mText;
};

} // namespace

static const char* Find(const zoCustomHashTable* aTable, const char* aKey)
{
    return aTable ? zoCustomHashTable_Get(aTable, aKey) : nullptr;
}

static void Add(zoCustomHashTable** aTable, const char* aKey, const char* aValue)
{
    if (!*aTable) { *aTable = zoCustomHashTable_New_String_String(); }
    zoCustomHashTable_Add(*aTable, aKey, aValue);
}

// ---- Names ----

bool AttributeNames::Add(std::string_view aNamespace, std::string_view aLocalName)
{
    const Key theKey(aNamespace, aLocalName);
    if (Find(mTable, theKey.c_str())) { return false; }
    DIDL::Add(&mTable, theKey.c_str(), "");
    return true;
}

bool Scopes::AddName(AttributeNames* aNames, const QName& anAttribute) const
{
    if (IsDeclaration(anAttribute)) { return aNames->Add("xmlns", anAttribute.mLocal); }
    if (anAttribute.mPrefix.empty()) { return aNames->Add({}, anAttribute.mLocal); }
    if (IsID(anAttribute)) { return false; }
    const std::string_view theNamespace = NamespaceOf(anAttribute.mPrefix);
    return !theNamespace.empty() && aNames->Add(theNamespace, anAttribute.mLocal);
}

// ---- Declarations ----

// The URI with its references resolved. Blanks, which readers change, are in no URI.
static char* NewURI(std::string_view aValue)
{
    char* theURI = zoStrndup(aValue.data(), aValue.size());
    ILibInPlaceXmlUnEscape(theURI);
    return theURI;
}

// Empty for the default namespace.
static std::string_view PrefixOf(const Attribute& aDeclaration)
{
    return aDeclaration.mName.mPrefix.empty() ? std::string_view() : aDeclaration.mName.mLocal;
}

bool IsWellFormed(const Attribute& aDeclaration)
{
    const std::string_view thePrefix = PrefixOf(aDeclaration);
    char* theCopy = NewURI(aDeclaration.mValue);
    const std::string_view theURI(theCopy);
    const bool fIsXML = theURI == "http://www.w3.org/XML/1998/namespace";
    const bool fIsOther = !fIsXML && theURI != "http://www.w3.org/2000/xmlns/" && thePrefix != "xmlns" &&
                          (!theURI.empty() || thePrefix.empty()) && IsURI(theURI);
    free(theCopy);
    return thePrefix == "xml" ? fIsXML : fIsOther;
}

Scopes::~Scopes()
{
    if (!mNamespaces) { return; }
    for (const Replaced& theReplaced : mReplaced)
        free(theReplaced.mNamespace);
    zoCustomHashTable_Delete(mNamespaces);
    zoCustomHashTable_Delete(mURIs);
}

void Scopes::Declare(const Attribute& aDeclaration)
{
    char* theURI = NewURI(aDeclaration.mValue);
    if (*theURI && !Find(mURIs, theURI))
    {
        char theNumber[24];
        const size_t theCount = mURIs ? zoCustomHashTable_GetTupleCount(mURIs) : 0;
        zo_snprintf(theNumber, sizeof(theNumber), "%lu", static_cast<unsigned long>(theCount));
        Add(&mURIs, theURI, theNumber);
    }
    const char* theNumber = *theURI ? Find(mURIs, theURI) : "";
    const std::string_view thePrefix = PrefixOf(aDeclaration);
    const Key theKey(thePrefix);
    const char* theReplaced = Find(mNamespaces, theKey.c_str());
    mReplaced.Add({ thePrefix, zoStrdup(theReplaced ? theReplaced : "") });
    Add(&mNamespaces, theKey.c_str(), theNumber);
    free(theURI);
}

void Scopes::CutTo(size_t aCount)
{
    for (size_t i = mReplaced.size(); i-- > aCount;)
    {
        Add(&mNamespaces, Key(mReplaced[i].mPrefix).c_str(), mReplaced[i].mNamespace);
        free(mReplaced[i].mNamespace);
    }
    mReplaced.CutTo(aCount);
}

std::string_view Scopes::NamespaceOf(std::string_view aPrefix) const
{
    return aPrefix == "xml" ? aPrefix : TextOf(Find(mNamespaces, Key(aPrefix).c_str()));
}

} // namespace DIDL
