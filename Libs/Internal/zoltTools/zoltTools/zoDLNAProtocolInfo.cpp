#include <zoltTools/zoDLNAProtocolInfo.h>

#include <Shared/ASCII.h>
#include <Shared/Append.h>
#include <Shared/Sizes.h>
#include <Shared/Split.h>
#include <Shared/Text.h>
#include <algorithm>
#include <new>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfo.h>
#include <zoltTools/zoMemory.h>

using ProtocolInfo::HasBlanks;
using Shared::NextItem;
using Shared::TextOf;
using std::string_view;

namespace
{

// What is looked for in the fourth field; the first parameter of a name counts.
struct Parameters
{
    string_view mProfile;
    string_view mConversion;
};

} // namespace

static string_view TrimSpaces(string_view aText) { return Shared::Trim(aText, Shared::IsSpace); }

// ---- Blanks ----

// @return the smallest byte, found in all bytes, so that the compiler takes many at once.
static uint8 LeastByte(const char* aBytes, size_t aCount)
{
    uint8 theLeast = UINT8_MAX;
    for (size_t i = 0; i < aCount; ++i)
        theLeast = std::min(theLeast, static_cast<uint8>(aBytes[i]));
    return theLeast;
}

bool ProtocolInfo::HasBlanks(string_view aText)
{
    const size_t kBlock = 16;
    if (aText.size() < kBlock) { return LeastByte(aText.data(), aText.size()) <= ' '; }
    const char* theLastBlock = aText.data() + aText.size() - kBlock;
    return std::min(LeastByte(aText.data(), aText.size() / kBlock * kBlock), LeastByte(theLastBlock, kBlock)) <= ' ';
}

static char* MoveTrimmed(char* anEnd, string_view aText)
{
    const string_view theText = TrimSpaces(aText);
    memmove(anEnd, theText.data(), theText.size());
    return anEnd + theText.size();
}

// Removes in place the blanks around fields and parameters. Few texts have any: not inlined, it costs the others
// nothing.
// @return the new length.
[[gnu::noinline]] static size_t RemoveBlanks(char* aText, size_t aLength)
{
    string_view theRest(aText, aLength);
    string_view theItem;
    char* theEnd = aText;
    for (int i = 0; i < 3 && NextItem(&theRest, ':', &theItem); ++i)
    {
        theEnd = MoveTrimmed(theEnd, theItem);
        if (theRest.data()) { *theEnd++ = ':'; }
    }
    while (NextItem(&theRest, ';', &theItem))
    {
        theEnd = MoveTrimmed(theEnd, theItem);
        if (theRest.data()) { *theEnd++ = ';'; }
    }
    return static_cast<size_t>(theEnd - aText);
}

// ---- Reading ----

// Both names are this long, with "DLNA.ORG_" before two letters and "=" after them.
static const size_t kNameLength = sizeof("DLNA.ORG_PN=") - 1;
static const size_t kPrefixLength = sizeof("DLNA.ORG_") - 1;

static bool HasPrefix(string_view aParameter)
{
    return memcmp(aParameter.data(), "DLNA.ORG_", kPrefixLength) == 0 ||
           Shared::EqualsIgnoringCase(aParameter.data(), "DLNA.ORG_", kPrefixLength);
}

// Keeps the value of a parameter if it is looked for and not yet known. The letters tell most parameters apart.
static void ReadParameter(string_view aParameter, Parameters* aParameters)
{
    if (aParameter.size() < kNameLength || aParameter[kNameLength - 1] != '=') { return; }
    const int theFirst = aParameter[kPrefixLength] | 0x20; // in lower case
    const int theSecond = aParameter[kPrefixLength + 1] | 0x20;
    string_view* theTarget = theFirst == 'p' && theSecond == 'n'   ? &aParameters->mProfile
                             : theFirst == 'c' && theSecond == 'i' ? &aParameters->mConversion
                                                                   : nullptr;
    if (theTarget && !theTarget->data() && HasPrefix(aParameter)) { *theTarget = aParameter.substr(kNameLength); }
}

// Reads the first parameter and, up to where both are found or what is left is too short for one, the rest.
static Parameters ReadParameters(string_view aFirst, string_view aRest, bool afHasBlanks)
{
    Parameters theParameters;
    for (string_view theItem = aFirst;;)
    {
        if (afHasBlanks) { theItem = TrimSpaces(theItem); }
        ReadParameter(theItem, &theParameters);
        if (aRest.size() < kNameLength || (theParameters.mProfile.data() && theParameters.mConversion.data()))
        {
            return theParameters;
        }
        NextItem(&aRest, ';', &theItem);
    }
}

// Takes protocol and network off a text.
static void TakeTransport(string_view* aText, string_view* aProtocol, string_view* aNetwork)
{
    static constexpr string_view kMostCommon = "http-get:*:";
    if (aText->size() > kMostCommon.size() && memcmp(aText->data(), kMostCommon.data(), kMostCommon.size()) == 0)
    {
        *aProtocol = kMostCommon.substr(0, 8); // its address tells that two of them are equal
        *aNetwork = kMostCommon.substr(9, 1);
        aText->remove_prefix(kMostCommon.size());
        return;
    }
    NextItem(aText, ':', aProtocol);
    NextItem(aText, ':', aNetwork);
}

// A text from the MIME type on.
struct Format
{
    string_view mMimeType;
    string_view mMimeParameters;
    string_view mFirstParameter; // of the fourth field
    string_view mRest;           // of the parameters
};

static Format SplitFormatWithMimeParameters(string_view aText)
{
    Format theFormat;
    NextItem(&aText, ':', &theFormat.mMimeParameters);
    NextItem(&theFormat.mMimeParameters, ';', &theFormat.mMimeType);
    theFormat.mMimeType = TrimSpaces(theFormat.mMimeType);
    NextItem(&aText, ';', &theFormat.mFirstParameter);
    theFormat.mRest = aText;
    return theFormat;
}

// One search for a ";" tells whether the MIME type has parameters and where the first one of the fourth field ends.
static Format SplitFormat(string_view aText)
{
    if (aText.empty()) { return {}; }
    const char* theEnd = aText.data() + aText.size();
    const char* theSemicolon = static_cast<const char*>(memchr(aText.data(), ';', aText.size()));
    const char* theLast = theSemicolon ? theSemicolon : theEnd;
    const char* theColon =
        static_cast<const char*>(memchr(aText.data(), ':', static_cast<size_t>(theLast - aText.data())));
    if (!theColon) { return theSemicolon ? SplitFormatWithMimeParameters(aText) : Format{ aText, {}, {}, {} }; }
    const char* theFourth = theColon + 1;
    return { { aText.data(), static_cast<size_t>(theColon - aText.data()) },
             {},
             { theFourth, static_cast<size_t>(theLast - theFourth) },
             theSemicolon ? string_view(theSemicolon + 1, static_cast<size_t>(theEnd - theSemicolon - 1))
                          : string_view() };
}

// Reads a normalised text. The profile has no NUL yet.
static zoDLNAProtocolInfo_t Read(string_view aText)
{
    string_view theRest = aText;
    string_view theProtocol;
    string_view theNetwork;
    TakeTransport(&theRest, &theProtocol, &theNetwork);
    const Format theFormat = SplitFormat(theRest);
    const Parameters theFound = ReadParameters(theFormat.mFirstParameter, theFormat.mRest, false);
    return { aText,
             theProtocol,
             theNetwork,
             theFormat.mMimeType,
             theFormat.mMimeParameters,
             theFound.mProfile,
             0,
             theFound.mConversion == "1",
             false,
             false };
}

void ProtocolInfo::Init(zoDLNAProtocolInfo_t* anInfo, char* aText, size_t aLength, bool afMayHaveBlanks)
{
    const size_t theLength = afMayHaveBlanks ? RemoveBlanks(aText, aLength) : aLength;
    aText[theLength] = '\0';
    new (anInfo) zoDLNAProtocolInfo_t(Read({ aText, theLength }));
    if (anInfo->mProfile.empty()) { return; }
    char* theProfileEnd = aText + (anInfo->mProfile.data() + anInfo->mProfile.size() - aText);
    anInfo->mfIsCut = *theProfileEnd != '\0';
    *theProfileEnd = '\0';
}

// ---- Making ----

// A new object with room for a text after it.
static zoDLNAProtocolInfo_t* NewBlock(size_t aTextLength)
{
    return static_cast<zoDLNAProtocolInfo_t*>(
        zoMalloc(Shared::AddSizes(sizeof(zoDLNAProtocolInfo_t) + 1, aTextLength)));
}

static zoDLNAProtocolInfo_t* InitBlock(zoDLNAProtocolInfo_t* anInfo, size_t aTextLength)
{
    char* theText = reinterpret_cast<char*>(anInfo + 1);
    ProtocolInfo::Init(anInfo, theText, aTextLength, HasBlanks({ theText, aTextLength }));
    anInfo->mfIsOwnBlock = true;
    return anInfo;
}

zoDLNAProtocolInfo_t* ProtocolInfo::NewFromFields(const string_view* aFields)
{
    size_t theLength = 3; // colons
    for (int i = 0; i < 4; ++i)
        theLength = Shared::AddSizes(theLength, aFields[i].size());
    zoDLNAProtocolInfo_t* theInfo = NewBlock(theLength);
    char* theEnd = reinterpret_cast<char*>(theInfo + 1);
    for (int i = 0; i < 4; ++i)
    {
        if (i > 0) { *theEnd++ = ':'; }
        theEnd = Shared::Append(theEnd, aFields[i]);
    }
    return InitBlock(theInfo, theLength);
}

static zoDLNAProtocolInfo_t* NewFromText(string_view aText)
{
    zoDLNAProtocolInfo_t* theInfo = NewBlock(aText.size());
    memcpy(theInfo + 1, aText.data(), aText.size());
    return InitBlock(theInfo, aText.size());
}

zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_New(const char* aText, size_t aLength, int /*aFlags*/)
{
    return NewFromText(TextOf(aText ? aText : "", aLength));
}

zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewInPlace(void* aMemory, size_t aSize, const char* aText, size_t aLength)
{
    const bool fHasNUL = aLength > 0 && aText[aLength - 1] == '\0';
    const string_view theText(aText, fHasNUL ? aLength - 1 : aLength);
    if (aSize < sizeof(zoDLNAProtocolInfo_t) || !aText || HasBlanks(theText)) // a NUL would count as one
    {
        return zoDLNAProtocolInfo_New(aText, aLength, 0);
    }
    zoDLNAProtocolInfo_t* theInfo = new (aMemory) zoDLNAProtocolInfo_t(Read(theText));
    const string_view theProfile = theInfo->mProfile;
    if (theProfile.empty()) { return theInfo; }
    if (theProfile.size() >= aSize - sizeof(zoDLNAProtocolInfo_t)) { return NewFromText(theText); }
    char* theCopy = reinterpret_cast<char*>(theInfo + 1);
    *Shared::Append(theCopy, theProfile) = '\0';
    theInfo->mProfile = { theCopy, theProfile.size() };
    return theInfo;
}

void zoDLNAProtocolInfo_Delete(zoDLNAProtocolInfo_t* anInfo)
{
    if (anInfo && anInfo->mfIsOwnBlock) { free(anInfo); }
}

// ---- Asking ----

int zoDLNAProtocolInfo_IsNormal(const char* aText, size_t aLength) { return !aText || !HasBlanks({ aText, aLength }); }

int zoDLNAProtocolInfo_MatchText(const char* aText, size_t aLength, const char* aProfile, int aConversionIndicator)
{
    string_view theRest = TextOf(aText ? aText : "", aLength);
    string_view theField;
    const bool fHasBlanks = HasBlanks(theRest);
    for (int i = 0; i < 3; ++i)
        NextItem(&theRest, ':', &theField);
    const Parameters theFound = ReadParameters("", theRest, fHasBlanks);
    const bool fHasProfile = !aProfile || (!theFound.mProfile.empty() && theFound.mProfile == aProfile);
    return fHasProfile && (aConversionIndicator == -1 || (theFound.mConversion == "1") == (aConversionIndicator != 0));
}

char* zoDLNAProtocolInfo_GetStr(const zoDLNAProtocolInfo_t* anInfo)
{
    const string_view theText = anInfo ? anInfo->mText : string_view();
    char* theCopy = static_cast<char*>(zoMalloc(theText.size() + 1));
    *Shared::Append(theCopy, theText) = '\0';
    if (anInfo && anInfo->mfIsCut)
    {
        theCopy[anInfo->mProfile.data() + anInfo->mProfile.size() - theText.data()] = ';';
    }
    return theCopy;
}

const char* zoDLNAProtocolInfo_GetProfile(const zoDLNAProtocolInfo_t* anInfo)
{
    return anInfo && !anInfo->mProfile.empty() ? anInfo->mProfile.data() : nullptr;
}

int zoDLNAProtocolInfo_MatchPN(const zoDLNAProtocolInfo_t* anInfo, const char* aProfile)
{
    return Shared::AreEqual(zoDLNAProtocolInfo_GetProfile(anInfo), aProfile);
}

int zoDLNAProtocolInfo_IsThumbnail(const zoDLNAProtocolInfo_t* anInfo)
{
    return anInfo && (anInfo->mProfile == "JPEG_TN" || anInfo->mProfile == "PNG_TN");
}

int zoDLNAProtocolInfo_GetConversionIndicator(const zoDLNAProtocolInfo_t* anInfo)
{
    return anInfo && anInfo->mfIsConverted ? 1 : 0;
}

void zoDLNAProtocolInfo_SetUserData(zoDLNAProtocolInfo_t* anInfo, int aUserData)
{
    if (anInfo) { anInfo->mUserData = aUserData; }
}

int zoDLNAProtocolInfo_GetUserData(const zoDLNAProtocolInfo_t* anInfo) { return anInfo ? anInfo->mUserData : 0; }
