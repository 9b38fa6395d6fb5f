#include <zoltTools/zoURI.h>

#include <Shared/ASCII.h>
#include <Shared/Append.h>
#include <Shared/Text.h>
#include <algorithm>
#include <initializer_list>
#include <stdlib.h>
#include <string.h>
#include <zoOS/zoSocket.h>
#include <zoltTools/Private/zoURI.h>
#include <zoltTools/zoMemory.h>

using namespace URI;

// ---- Parsing ----

// @return false when there are other bytes than digits, or the number is above 65535.
static bool ParsePort(Parts* aParts)
{
    uint32 theNumber = 0;
    for (const char theByte : aParts->mPort)
    {
        const uint32 theDigit = Shared::DigitValue(theByte);
        theNumber = theNumber * 10 + theDigit;
        if (theDigit > 9 || theNumber > 0xFFFF) { return false; }
    }
    aParts->mPortNumber = static_cast<uint16>(theNumber);
    return true;
}

// [userinfo@]host[:port]. Of several "@" the last one ends the user info, so that the host is the one that is asked.
static bool ParseAuthority(Parts* aParts, string_view anAuthority)
{
    const void* theAt = memrchr(anAuthority.data(), '@', anAuthority.size());
    if (theAt)
    {
        const size_t theLength = static_cast<size_t>(static_cast<const char*>(theAt) - anAuthority.data());
        aParts->mUserInfo = anAuthority.substr(0, theLength);
        anAuthority.remove_prefix(theLength + 1);
    }

    const bool fIsAddress = !anAuthority.empty() && anAuthority[0] == '[';
    const size_t theFound = anAuthority.find(fIsAddress ? ']' : ':');
    if (fIsAddress && theFound == anAuthority.npos) { return false; }
    aParts->mHostName = anAuthority.substr(0, fIsAddress ? theFound + 1 : theFound);
    anAuthority.remove_prefix(aParts->mHostName.size());
    if (anAuthority.empty()) { return true; }
    if (anAuthority[0] != ':') { return false; }
    aParts->mPort = anAuthority.substr(1);
    return ParsePort(aParts);
}

// @return the length of what may be a scheme, 0 when a text does not begin with one.
static size_t LengthOfScheme(string_view aText)
{
    if (aText.empty() || !Shared::IsLetter(aText[0])) { return 0; }
    size_t theLength = 1;
    while (theLength < aText.size() && kBytes.IsAllowed(aText[theLength], kIn_Scheme))
        ++theLength;
    return theLength < aText.size() && aText[theLength] == ':' ? theLength : 0;
}

static bool EndsPath(char aByte) { return aByte == '?' || aByte == '#'; }

static bool EndsQuery(char aByte) { return aByte == '#'; }

// Takes what is before the first byte that ends it off a text.
template <typename Predicate>
static string_view TakeUpTo(string_view* aText, Predicate afIsEnd)
{
    const auto theEnd = std::find_if(aText->begin(), aText->end(), afIsEnd);
    const string_view theTaken = aText->substr(0, static_cast<size_t>(theEnd - aText->begin()));
    aText->remove_prefix(theTaken.size());
    return theTaken;
}

// Takes what is before the first "/", "?" or "#" off a text.
static string_view TakeAuthority(string_view* aText)
{
    string_view theTaken = aText->substr(0, aText->find('/'));
    for (const char theEnd : { '?', '#' })
        theTaken = theTaken.substr(0, theTaken.find(theEnd));
    aText->remove_prefix(theTaken.size());
    return theTaken;
}

// Reads scheme and authority, and takes them off the text.
static bool ParseUpToPath(string_view* aText, Parts* aParts)
{
    const size_t theLength = LengthOfScheme(*aText);
    if (theLength > 0)
    {
        aParts->mScheme = aText->substr(0, theLength);
        aText->remove_prefix(theLength + 1);
    }
    if (aText->substr(0, 2) != "//") { return true; }
    aText->remove_prefix(2);
    return ParseAuthority(aParts, TakeAuthority(aText));
}

bool URI::Parse(string_view aText, Parts* aParts)
{
    *aParts = {};
    if (!ParseUpToPath(&aText, aParts)) { return false; }
    aParts->mPath = TakeUpTo(&aText, EndsPath);
    if (!aText.empty() && aText[0] == '?') { aParts->mQuery = TakeUpTo(&aText, EndsQuery).substr(1); }
    if (!aText.empty()) { aParts->mFragment = aText.substr(1); }
    return true;
}

// ---- The object ----

static char* StoreText(char*& anEnd, string_view aText)
{
    if (!aText.data()) { return nullptr; }
    char* theText = anEnd;
    anEnd = Shared::Append(anEnd, aText);
    *anEnd++ = '\0';
    return theText;
}

static size_t SizeToStore(string_view aText) { return aText.data() ? aText.size() + 1 : 0; }

zoURI* zoURI_NewFromEscapedStr(const char* aText)
{
    Parts theParts;
    if (!aText || !Parse(aText, &theParts)) { return nullptr; }
    const size_t theTextSize = SizeToStore(theParts.mScheme) + SizeToStore(theParts.mUserInfo) +
                               SizeToStore(theParts.mHostName) + SizeToStore(theParts.mPort) +
                               SizeToStore(theParts.mPath) + SizeToStore(theParts.mQuery) +
                               SizeToStore(theParts.mFragment);
    ParsedURI* theURI = static_cast<ParsedURI*>(zoMalloc(AddSizes(sizeof(ParsedURI), theTextSize)));
    char* theEnd = reinterpret_cast<char*>(theURI + 1);
    theURI->mScheme = StoreText(theEnd, theParts.mScheme);
    theURI->mUserInfo = StoreText(theEnd, theParts.mUserInfo);
    theURI->mHostName = StoreText(theEnd, theParts.mHostName);
    theURI->mPortText = StoreText(theEnd, theParts.mPort);
    theURI->mPath = StoreText(theEnd, theParts.mPath);
    theURI->mQuery = StoreText(theEnd, theParts.mQuery);
    theURI->mFragment = StoreText(theEnd, theParts.mFragment);
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

// Appends a component, if the URI has it, between its delimiters.
static char* AppendComponent(char* anEnd, string_view aPrefix, string_view aComponent, string_view aSuffix)
{
    if (!aComponent.data()) { return anEnd; }
    anEnd = Shared::Append(anEnd, aPrefix);
    anEnd = Shared::Append(anEnd, aComponent);
    return Shared::Append(anEnd, aSuffix);
}

size_t URI::TextSize(const Parts& aParts)
{
    size_t theSize = sizeof("://@:?#");
    for (const string_view& theComponent : { aParts.mScheme, aParts.mUserInfo, aParts.mHostName, aParts.mPort,
                                             aParts.mPath, aParts.mQuery, aParts.mFragment })
        theSize = AddSizes(theSize, theComponent.size());
    return theSize;
}

char* URI::AppendUpToPath(char* anEnd, const Parts& aParts)
{
    anEnd = AppendComponent(anEnd, "", aParts.mScheme, ":");
    if (!aParts.mHostName.data()) { return anEnd; }
    anEnd = Shared::Append(anEnd, "//");
    anEnd = AppendComponent(anEnd, "", aParts.mUserInfo, "@");
    anEnd = Shared::Append(anEnd, aParts.mHostName);
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
    string_view thePort = ViewOf(theURI->mPortText);
    if (aURI->mPort != theURI->mPortTextNumber) // set by somebody else
    {
        zo_snprintf(theDigits, sizeof(theDigits), "%u", static_cast<unsigned>(aURI->mPort));
        thePort = ViewOf(aURI->mPort != 0 ? theDigits : nullptr);
    }
    const Parts theParts = { ViewOf(aURI->mScheme), ViewOf(aURI->mUserInfo), ViewOf(aURI->mHostName), thePort,
                             ViewOf(aURI->mPath),   ViewOf(aURI->mQuery),    ViewOf(aURI->mFragment), 0 };
    char* theText = static_cast<char*>(zoMalloc(TextSize(theParts)));
    AppendFromQuery(Shared::Append(AppendUpToPath(theText, theParts), theParts.mPath), theParts);
    return theText;
}

static uint32 AddressOf(string_view aHost)
{
    char theHost[sizeof("255.255.255.255")];
    if (aHost.empty() || aHost.size() >= sizeof(theHost) || !Shared::IsDigit(aHost[0])) { return UINT32_MAX; }
    *Shared::Append(theHost, aHost) = '\0';
    const uint32 theAddress = zoSocketGetAddressFromDotForm(theHost);
    if (theAddress != 0 || aHost.back() != '0') { return theAddress != 0 ? theAddress : UINT32_MAX; }
    // 0.0.0.0 reads as an invalid address does; with its last digit changed it doesn't.
    theHost[aHost.size() - 1] = '1';
    return zoSocketGetAddressFromDotForm(theHost) != 0 ? 0 : UINT32_MAX;
}

uint32 zoURI_GetHostIP(const zoURI* aURI) { return AddressOf(ViewOf(aURI ? aURI->mHostName : nullptr)); }

uint32 zoURI_S_GetHostIP(const char* aText, size_t aLength)
{
    Parts theParts = {};
    string_view theText = Shared::TextOf(aText ? aText : "", aLength);
    return ParseUpToPath(&theText, &theParts) ? AddressOf(theParts.mHostName) : UINT32_MAX;
}
