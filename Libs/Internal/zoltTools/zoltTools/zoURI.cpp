#include <zoltTools/zoURI.h>

#include <Shared/ASCII.h>
#include <initializer_list>
#include <stdlib.h>
#include <string.h>
#include <zoOS/zoSocket.h>
#include <zoltTools/Private/zoURI.h>
#include <zoltTools/zoMemory.h>

using namespace URI;

// ---- Parsing ----

// Digits up to 65535, or no digits at all.
static bool ParsePort(Parts& aParts)
{
    uint32 theNumber = 0;
    for (size_t i = 0; i < aParts.mPort.mLength; ++i)
    {
        const uint32 theDigit = Shared::DigitValue(aParts.mPort.mText[i]);
        theNumber = theNumber * 10 + theDigit;
        if (theDigit > 9 || theNumber > 0xFFFF) { return false; }
    }
    aParts.mPortNumber = static_cast<uint16>(theNumber);
    return true;
}

// [userinfo@]host[:port]. Of several "@" the last one ends the user info, so that the host is the one that is asked.
static bool ParseAuthority(Parts& aParts, const char* aBegin, const char* anEnd)
{
    const char* theHost = aBegin;
    const void* theAt = memrchr(aBegin, '@', static_cast<size_t>(anEnd - aBegin));
    if (theAt)
    {
        aParts.mUserInfo = Between(aBegin, static_cast<const char*>(theAt));
        theHost = static_cast<const char*>(theAt) + 1;
    }

    const bool theAddress = theHost != anEnd && *theHost == '[';
    const void* theFound = memchr(theHost, theAddress ? ']' : ':', static_cast<size_t>(anEnd - theHost));
    if (theAddress && !theFound) { return false; }
    const char* theHostEnd = theFound ? static_cast<const char*>(theFound) + (theAddress ? 1 : 0) : anEnd;
    aParts.mHostName = Between(theHost, theHostEnd);
    if (theHostEnd == anEnd) { return true; }
    if (*theHostEnd != ':') { return false; }
    aParts.mPort = Between(theHostEnd + 1, anEnd);
    return ParsePort(aParts);
}

static const char* SkipScheme(const char* aText)
{
    if (!Shared::IsLetter(*aText)) { return aText; }
    while (kBytes.IsAllowed(*aText, kIn_Scheme))
        ++aText;
    return aText;
}

static const char* SkipAuthority(const char* aText)
{
    while (*aText && *aText != '/' && *aText != '?' && *aText != '#')
        ++aText;
    return aText;
}

static const char* SkipPath(const char* aText)
{
    while (*aText && *aText != '?' && *aText != '#')
        ++aText;
    return aText;
}

bool URI::Parse(const char* aText, Parts& aParts)
{
    aParts = {};
    const char* thePosition = aText;
    const char* theSchemeEnd = SkipScheme(aText);
    if (theSchemeEnd != aText && *theSchemeEnd == ':')
    {
        aParts.mScheme = Between(aText, theSchemeEnd);
        thePosition = theSchemeEnd + 1;
    }
    if (thePosition[0] == '/' && thePosition[1] == '/')
    {
        const char* theAuthority = thePosition + 2;
        thePosition = SkipAuthority(theAuthority);
        if (!ParseAuthority(aParts, theAuthority, thePosition)) { return false; }
    }

    const char* thePathEnd = SkipPath(thePosition);
    aParts.mPath = Between(thePosition, thePathEnd);
    const char* theQueryEnd = thePathEnd;
    if (*thePathEnd == '?')
    {
        theQueryEnd = strchrnul(thePathEnd, '#');
        aParts.mQuery = Between(thePathEnd + 1, theQueryEnd);
    }
    if (*theQueryEnd == '#') { aParts.mFragment = SliceOf(theQueryEnd + 1); }
    return true;
}

// ---- The object ----

static char* StoreSlice(char*& anEnd, const Slice& aSlice)
{
    if (!aSlice.mText) { return nullptr; }
    char* theText = anEnd;
    anEnd = AppendSlice(anEnd, aSlice);
    *anEnd++ = '\0';
    return theText;
}

static size_t SizeToStore(const Slice& aSlice) { return aSlice.mText ? aSlice.mLength + 1 : 0; }

zoURI* zoURI_NewFromEscapedStr(const char* aText)
{
    Parts theParts;
    if (!aText || !Parse(aText, theParts)) { return nullptr; }
    const size_t theTextSize = SizeToStore(theParts.mScheme) + SizeToStore(theParts.mUserInfo) +
                               SizeToStore(theParts.mHostName) + SizeToStore(theParts.mPort) +
                               SizeToStore(theParts.mPath) + SizeToStore(theParts.mQuery) +
                               SizeToStore(theParts.mFragment);
    ParsedURI* theURI = static_cast<ParsedURI*>(zoMalloc(AddSizes(sizeof(ParsedURI), theTextSize)));
    char* theEnd = reinterpret_cast<char*>(theURI + 1);
    theURI->mScheme = StoreSlice(theEnd, theParts.mScheme);
    theURI->mUserInfo = StoreSlice(theEnd, theParts.mUserInfo);
    theURI->mHostName = StoreSlice(theEnd, theParts.mHostName);
    theURI->mPortText = StoreSlice(theEnd, theParts.mPort);
    theURI->mPath = StoreSlice(theEnd, theParts.mPath);
    theURI->mQuery = StoreSlice(theEnd, theParts.mQuery);
    theURI->mFragment = StoreSlice(theEnd, theParts.mFragment);
    theURI->mPort = theParts.mPortNumber;
    theURI->mPortTextNumber = theParts.mPortNumber;
    theURI->mQueryArgs = nullptr;
    theURI->mTextSize = theTextSize;
    return theURI;
}

// A component in the URI's own block goes with it.
static void FreeComponent(const zoURI* aURI, char* aComponent)
{
    const ParsedURI* theURI = static_cast<const ParsedURI*>(aURI);
    const uintptr_t theTexts = reinterpret_cast<uintptr_t>(theURI + 1);
    if (reinterpret_cast<uintptr_t>(aComponent) - theTexts >= theURI->mTextSize) { free(aComponent); }
}

void URI::ReplaceComponent(const zoURI* aURI, char** aComponent, char* aText)
{
    FreeComponent(aURI, *aComponent);
    *aComponent = aText;
}

void zoURI_Delete(zoURI* aURI)
{
    if (!aURI) { return; }
    for (char* theComponent :
         { aURI->mScheme, aURI->mUserInfo, aURI->mHostName, aURI->mPath, aURI->mQuery, aURI->mFragment })
        FreeComponent(aURI, theComponent);
    free(aURI);
}

// A component with what stands before it, when it is there.
static char* AppendComponent(char* anEnd, const char* aPrefix, const Slice& aSlice, const char* aSuffix)
{
    if (!aSlice.mText) { return anEnd; }
    anEnd = AppendBytes(anEnd, aPrefix, strlen(aPrefix));
    anEnd = AppendSlice(anEnd, aSlice);
    return AppendBytes(anEnd, aSuffix, strlen(aSuffix));
}

size_t URI::TextSize(const Parts& aParts)
{
    size_t theSize = sizeof("://@:?#");
    for (const Slice* theSlice : { &aParts.mScheme, &aParts.mUserInfo, &aParts.mHostName, &aParts.mPort, &aParts.mPath,
                                   &aParts.mQuery, &aParts.mFragment })
        theSize = AddSizes(theSize, theSlice->mLength);
    return theSize;
}

char* URI::AppendUpToPath(char* anEnd, const Parts& aParts)
{
    anEnd = AppendComponent(anEnd, "", aParts.mScheme, ":");
    if (!aParts.mHostName.mText) { return anEnd; }
    anEnd = AppendBytes(anEnd, "//", 2);
    anEnd = AppendComponent(anEnd, "", aParts.mUserInfo, "@");
    anEnd = AppendSlice(anEnd, aParts.mHostName);
    return AppendComponent(anEnd, ":", aParts.mPort, "");
}

void URI::AppendFromQuery(char* anEnd, const Parts& aParts)
{
    anEnd = AppendComponent(anEnd, "?", aParts.mQuery, "");
    anEnd = AppendComponent(anEnd, "#", aParts.mFragment, "");
    *anEnd = '\0';
}

char* zoURI_GetStr(const zoURI* aURI)
{
    if (!aURI) { return zoStrdup(""); }
    const ParsedURI* theURI = static_cast<const ParsedURI*>(aURI);
    char theDigits[sizeof("65535")];
    Slice thePort = SliceOf(theURI->mPortText);
    if (aURI->mPort != theURI->mPortTextNumber) // set by somebody else
    {
        zo_snprintf(theDigits, sizeof(theDigits), "%u", static_cast<unsigned>(aURI->mPort));
        thePort = SliceOf(aURI->mPort != 0 ? theDigits : nullptr);
    }
    const Parts theParts = { SliceOf(aURI->mScheme), SliceOf(aURI->mUserInfo), SliceOf(aURI->mHostName), thePort,
                             SliceOf(aURI->mPath),   SliceOf(aURI->mQuery),    SliceOf(aURI->mFragment), 0 };
    char* theText = static_cast<char*>(zoMalloc(TextSize(theParts)));
    AppendFromQuery(AppendSlice(AppendUpToPath(theText, theParts), theParts.mPath), theParts);
    return theText;
}

uint32 zoURI_GetHostIP(const zoURI* aURI)
{
    const char* theHost = aURI && aURI->mHostName ? aURI->mHostName : "";
    const uint32 theAddress = zoSocketGetAddressFromDotForm(theHost);
    if (theAddress != 0) { return theAddress; }

    // 0.0.0.0 reads as no address does; with its last digit changed it doesn't.
    char theOther[sizeof("255.255.255.255")];
    const size_t theLength = strlen(theHost);
    if (theLength == 0 || theLength >= sizeof(theOther) || theHost[theLength - 1] != '0') { return UINT32_MAX; }
    memcpy(theOther, theHost, theLength + 1);
    theOther[theLength - 1] = '1';
    return zoSocketGetAddressFromDotForm(theOther) != 0 ? 0 : UINT32_MAX;
}
