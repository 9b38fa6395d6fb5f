#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPCPUtility.h>
#include <string>
#include <zoltTools/zoURI.h>

// The bytes, cut at line ends, are a base, a reference, and the name and the value of a query argument.

namespace
{

std::string Taken(char* aText)
{
    Require(aText != nullptr, "there is a text");
    std::string theText(aText);
    free(aText);
    return theText;
}

std::string TextOf(const zoURI* aURI) { return Taken(zoURI_GetStr(aURI)); }

std::string Escaped(const char* aText)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(aText);
    if (!theURI) { return aText; }
    Require(TextOf(theURI) == aText, "the text of an untouched URI is the text");
    zoURI_Escape(theURI);
    std::string theEscaped = TextOf(theURI);
    zoURI_Delete(theURI);

    theURI = zoURI_NewFromEscapedStr(theEscaped.c_str());
    Require(theURI != nullptr, "an escaped URI is a URI");
    zoURI_Escape(theURI);
    Require(TextOf(theURI) == theEscaped, "what is escaped stays");
    zoURI_GetHostIP(theURI);
    zoURI_Delete(theURI);
    return theEscaped;
}

bool HasQueryPart(zoURI* aURI, const char* aName, const char* aValue)
{
    char* theValue = zoURI_GetQueryPart(aURI, aName);
    const bool fIsEqual = aValue ? theValue && strcmp(theValue, aValue) == 0 : !theValue;
    free(theValue);
    return fIsEqual;
}

void CheckQuery(const char* aText, const char* aName, const char* aValue)
{
    static const char kOther[] = "id";
    zoURI* theURI = zoURI_NewFromEscapedStr(aText);
    char* theOther = zoURI_GetQueryPart(theURI, kOther);
    zoURI_AddQueryPart(theURI, aName, aValue);
    const std::string theText = TextOf(theURI);
    Require(!theURI || HasQueryPart(theURI, aName, aValue), "an argument that was set is there");
    Require(strcmp(aName, kOther) == 0 || HasQueryPart(theURI, kOther, theOther), "the others are as they were");
    zoURI_AddQueryPart(theURI, aName, aValue);
    Require(TextOf(theURI) == theText, "setting an argument again changes nothing");
    free(theOther);
    zoURI_Delete(theURI);
}

void CheckCombined(const char* aBase, const char* aReference)
{
    zoURI* theBase = zoURI_NewFromEscapedStr(aBase);
    zoURI* theReference = zoURI_NewFromEscapedStr(aReference);
    const bool fCanCombine = theBase && theBase->mScheme && theReference;
    zoURI_Delete(theBase);
    zoURI_Delete(theReference);
    const std::string theText = Taken(zoURI_S_Combine(aBase, aReference));
    if (!fCanCombine)
    {
        Require(theText == aReference, "what can't be combined is the reference");
        return;
    }
    zoURI* theURI = zoURI_NewFromEscapedStr(theText.c_str());
    Require(theURI && theURI->mScheme, "combined texts are an absolute URI");
    zoURI_Delete(theURI);
    Require(Taken(zoURI_S_Combine(theText.c_str(), "")) == theText.substr(0, theText.find('#')),
            "the empty reference is the base without its fragment");
    const std::string theAgain = Taken(zoURI_S_Combine(aBase, theText.c_str()));
    Require(Taken(zoURI_S_Combine(aBase, theAgain.c_str())) == theAgain, "an absolute reference stands for itself");
}

void CheckLock(const zoCString& aURI, const zoCString& aCode)
{
    const zoCString theUnlocked = UPnPCPUtility::GetURIUnlocked(aURI, aCode);
    Require(!UPnPCPUtility::IsURIParentalLocked(theUnlocked), "an unlocked URI is not locked");
    const zoCString theEscaped(Escaped(theUnlocked.c_str()).c_str());
    const zoCString theAgain = UPnPCPUtility::GetURIUnlocked(theEscaped, aCode);
    Require(UPnPCPUtility::GetURIUnlocked(theAgain, aCode) == theAgain, "the digest does not hang on the lock");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    char* theText = NewText(aBytes, aSize);
    Lines theLines = { theText };
    const std::string theBase(theLines.Take());
    const char* theReference = theLines.Take();
    const char* theName = theLines.Take();
    const char* theValue = theLines.Take();
    if (!theReference) { theReference = ""; }
    if (!theName) { theName = "lock"; }
    if (!theValue) { theValue = ""; }

    CheckCombined(theBase.c_str(), theReference);
    for (const char* theURI : { theBase.c_str(), theReference })
    {
        CheckQuery(theURI, theName, theValue);
        CheckQuery(Escaped(theURI).c_str(), theName, theValue);
        CheckLock(theURI, theValue);
    }
    free(theText);
    return 0;
}
