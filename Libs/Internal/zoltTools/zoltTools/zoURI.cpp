#include <zoltTools/zoURI.h>

#include <initializer_list>
#include <stdlib.h>
#include <string.h>
#include <zoOS/zoSocket.h>
#include <zoltTools/zoMemory.h>

namespace
{

// A run of a text; mText is NULL when there is none at all.
struct Slice
{
    const char* mText;
    size_t mLength;
};

// The components of a text as they are written.
struct Parts
{
    Slice mScheme;
    Slice mUserInfo;
    Slice mHostName;
    Slice mPort; // digits, or none
    Slice mPath; // always there
    Slice mQuery;
    Slice mFragment;
    uint16 mPortNumber;
};

// What zoURI_NewFromEscapedStr gives out: this record and its components' texts in one block. A component that was
// changed since is a block of its own.
struct ParsedURI : zoURI
{
    size_t mTextSize;       // of the texts that follow the record
    const char* mPortText;  // the port as it was written; NULL: none
    uint16 mPortTextNumber; // the number that it stands for
};

// Which components a byte may stand in without an escape: a bit each.
enum
{
    kIn_Scheme = 0x01,
    kIn_UserInfo = 0x02,
    kIn_HostName = 0x04,
    kIn_Address = 0x08, // a host name in brackets
    kIn_Path = 0x10,
    kIn_Query = 0x20, // the fragment, too
    kIn_Argument = 0x40
};

struct ByteTable
{
    uint8 mPlaces[256];

    constexpr ByteTable() : mPlaces()
    {
        Allow("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", 0x7F);
        Allow("-.", 0x7F);
        Allow("_~", 0x7F & ~kIn_Scheme);
        Allow("+", kIn_Scheme);
        Allow("!$&'()*+,;=", kIn_UserInfo | kIn_HostName | kIn_Address | kIn_Path | kIn_Query);
        Allow(":", kIn_UserInfo | kIn_Address | kIn_Path | kIn_Query);
        Allow("[]", kIn_Address);
        Allow("@/", kIn_Path | kIn_Query);
        Allow("?", kIn_Query);
    }
    constexpr void Allow(const char* aBytes, int aPlaces)
    {
        for (; *aBytes; ++aBytes)
        {
            uint8& thePlaces = mPlaces[static_cast<unsigned char>(*aBytes)];
            thePlaces = static_cast<uint8>(thePlaces | aPlaces);
        }
    }
    bool IsAllowed(char aByte, int aPlace) const { return (mPlaces[static_cast<unsigned char>(aByte)] & aPlace) != 0; }
};

constexpr ByteTable kBytes;

} // namespace

// Sizes that pass what memory can hold end the process, as running out of memory does.
static size_t AddSizes(size_t aSize, size_t anotherSize)
{
    if (aSize > SIZE_MAX - anotherSize) { abort(); }
    return aSize + anotherSize;
}

static char* AppendBytes(char* anEnd, const char* aBytes, size_t aCount)
{
    if (aCount > 0) { memcpy(anEnd, aBytes, aCount); }
    return anEnd + aCount;
}

static char* AppendSlice(char* anEnd, const Slice& aSlice) { return AppendBytes(anEnd, aSlice.mText, aSlice.mLength); }

static Slice Between(const char* aBegin, const char* anEnd) { return { aBegin, static_cast<size_t>(anEnd - aBegin) }; }

static Slice SliceOf(const char* aText) { return { aText, aText ? strlen(aText) : 0 }; }

// Parsing

static bool IsLetter(char aByte) { return (aByte >= 'a' && aByte <= 'z') || (aByte >= 'A' && aByte <= 'Z'); }

static uint32 HexDigit(char aByte)
{
    const uint32 theDecimal = static_cast<uint32>(static_cast<unsigned char>(aByte)) - '0';
    if (theDecimal < 10) { return theDecimal; }
    const uint32 theLetter = (static_cast<uint32>(static_cast<unsigned char>(aByte)) | 0x20) - 'a';
    return theLetter < 6 ? theLetter + 10 : 16;
}

// Digits up to 65535, or no digits at all.
static bool ParsePort(Parts& aParts)
{
    uint32 theNumber = 0;
    for (size_t i = 0; i < aParts.mPort.mLength; ++i)
    {
        const uint32 theDigit = HexDigit(aParts.mPort.mText[i]);
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
    if (!IsLetter(*aText)) { return aText; }
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

static bool Parse(const char* aText, Parts& aParts)
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

// The object

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

static void ReplaceComponent(const zoURI* aURI, char** aComponent, char* aText)
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

static size_t TextSize(const Parts& aParts)
{
    size_t theSize = sizeof("://@:?#");
    for (const Slice* theSlice : { &aParts.mScheme, &aParts.mUserInfo, &aParts.mHostName, &aParts.mPort, &aParts.mPath,
                                   &aParts.mQuery, &aParts.mFragment })
        theSize = AddSizes(theSize, theSlice->mLength);
    return theSize;
}

static char* AppendUpToPath(char* anEnd, const Parts& aParts)
{
    anEnd = AppendComponent(anEnd, "", aParts.mScheme, ":");
    if (!aParts.mHostName.mText) { return anEnd; }
    anEnd = AppendBytes(anEnd, "//", 2);
    anEnd = AppendComponent(anEnd, "", aParts.mUserInfo, "@");
    anEnd = AppendSlice(anEnd, aParts.mHostName);
    return AppendComponent(anEnd, ":", aParts.mPort, "");
}

static void AppendFromQuery(char* anEnd, const Parts& aParts)
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

// Escapes

static bool IsEscape(const char* aText)
{
    return aText[0] == '%' && HexDigit(aText[1]) < 16 && HexDigit(aText[2]) < 16;
}

// Whether the byte at aText must be written as an escape. An argument's "%" is one of its own bytes.
static bool NeedsEscape(const char* aText, int aPlace)
{
    return !kBytes.IsAllowed(*aText, aPlace) && (aPlace == kIn_Argument || !IsEscape(aText));
}

static size_t EscapedLength(const char* aText, int aPlace)
{
    size_t theLength = 0;
    for (; *aText; ++aText)
        theLength = AddSizes(theLength, NeedsEscape(aText, aPlace) ? 3 : 1);
    return theLength;
}

static char* AppendEscaped(char* anEnd, const char* aText, int aPlace)
{
    static const char kHexDigits[] = "0123456789ABCDEF";
    for (; *aText; ++aText)
    {
        if (!NeedsEscape(aText, aPlace))
        {
            *anEnd++ = *aText;
            continue;
        }
        const unsigned char theByte = static_cast<unsigned char>(*aText);
        *anEnd++ = '%';
        *anEnd++ = kHexDigits[theByte >> 4];
        *anEnd++ = kHexDigits[theByte & 15];
    }
    return anEnd;
}

static void EscapeComponent(const zoURI* aURI, char** aComponent, int aPlace)
{
    if (!*aComponent) { return; }
    const size_t theLength = EscapedLength(*aComponent, aPlace);
    if (theLength == strlen(*aComponent)) { return; }
    char* theText = static_cast<char*>(zoMalloc(AddSizes(theLength, 1)));
    *AppendEscaped(theText, *aComponent, aPlace) = '\0';
    ReplaceComponent(aURI, aComponent, theText);
}

void zoURI_Escape(zoURI* aURI)
{
    if (!aURI) { return; }
    const bool theAddress = aURI->mHostName && aURI->mHostName[0] == '[';
    EscapeComponent(aURI, &aURI->mUserInfo, kIn_UserInfo);
    EscapeComponent(aURI, &aURI->mHostName, theAddress ? kIn_Address : kIn_HostName);
    EscapeComponent(aURI, &aURI->mPath, kIn_Path);
    EscapeComponent(aURI, &aURI->mQuery, kIn_Query);
    EscapeComponent(aURI, &aURI->mFragment, kIn_Query);
}

// Query arguments

// The byte at aText, decoded; moves aText past it. The escape of a NUL stays as it is written: it would end the text.
static char DecodeByte(const char*& aText)
{
    if (!IsEscape(aText) || (aText[1] == '0' && aText[2] == '0')) { return *aText++; }
    const uint32 theByte = HexDigit(aText[1]) << 4 | HexDigit(aText[2]);
    aText += 3;
    return static_cast<char>(theByte);
}

namespace
{

// The argument at a position of a query.
struct QueryArgument
{
    explicit QueryArgument(const char* aText)
        : mEnd(strchrnul(aText, '&')),
          mNameEnd(aText + strcspn(aText, "=&")),
          mName(aText),
          mValue(*mNameEnd == '=' ? mNameEnd + 1 : mNameEnd)
    {}
    bool IsNamed(const char* aName) const
    {
        const char* thePosition = mName;
        while (thePosition < mNameEnd && *aName && DecodeByte(thePosition) == *aName)
            ++aName;
        return thePosition == mNameEnd && *aName == '\0' && mName != mEnd;
    }

    const char* mEnd;
    const char* mNameEnd;
    const char* mName;
    const char* mValue;
};

} // namespace

char* zoURI_GetQueryPart(zoURI* aURI, const char* aName)
{
    if (!aURI || !aURI->mQuery || !aName) { return nullptr; }
    QueryArgument theArgument(aURI->mQuery);
    while (!theArgument.IsNamed(aName))
    {
        if (*theArgument.mEnd == '\0') { return nullptr; }
        theArgument = QueryArgument(theArgument.mEnd + 1);
    }

    char* theValue = static_cast<char*>(zoMalloc(static_cast<size_t>(theArgument.mEnd - theArgument.mValue) + 1));
    char* theEnd = theValue;
    for (const char* thePosition = theArgument.mValue; thePosition < theArgument.mEnd;)
        *theEnd++ = DecodeByte(thePosition);
    *theEnd = '\0';
    return theValue;
}

static char* AppendArgument(char* anEnd, const char* aName, const char* aValue)
{
    anEnd = AppendEscaped(anEnd, aName, kIn_Argument);
    *anEnd++ = '=';
    return AppendEscaped(anEnd, aValue, kIn_Argument);
}

// Writes the query with the argument set; anEnd has room for the query, the new argument and an "&".
static char* AppendQueryWith(char* anEnd, const char* aQuery, const char* aName, const char* aValue)
{
    const char* const theBegin = anEnd;
    bool theFirst = true;
    bool theWritten = false;
    for (const char* thePosition = aQuery; thePosition;)
    {
        const QueryArgument theArgument(thePosition);
        const bool theNamed = theArgument.IsNamed(aName);
        if (!theNamed || !theWritten)
        {
            if (!theFirst) { *anEnd++ = '&'; }
            anEnd = theNamed ? AppendArgument(anEnd, aName, aValue)
                             : AppendSlice(anEnd, Between(thePosition, theArgument.mEnd));
            theFirst = false;
            theWritten = theWritten || theNamed;
        }
        thePosition = *theArgument.mEnd ? theArgument.mEnd + 1 : nullptr;
    }
    if (theWritten) { return anEnd; }
    if (anEnd != theBegin && anEnd[-1] != '&') { *anEnd++ = '&'; }
    return AppendArgument(anEnd, aName, aValue);
}

void zoURI_AddQueryPart(zoURI* aURI, const char* aName, const char* aValue)
{
    if (!aURI || !aName) { return; }
    const char* theValue = aValue ? aValue : "";
    const char* theOldQuery = aURI->mQuery ? aURI->mQuery : "";
    size_t theSize = AddSizes(strlen(theOldQuery), sizeof("&="));
    theSize = AddSizes(theSize, EscapedLength(aName, kIn_Argument));
    theSize = AddSizes(theSize, EscapedLength(theValue, kIn_Argument));
    char* theQuery = static_cast<char*>(zoMalloc(theSize));
    *AppendQueryWith(theQuery, theOldQuery, aName, theValue) = '\0';
    ReplaceComponent(aURI, &aURI->mQuery, theQuery);
}

// Combining

// The base's path up to its last "/", what a relative path is put behind.
static Slice DirectoryOf(const Parts& aBase)
{
    if (aBase.mHostName.mText && aBase.mPath.mLength == 0) { return { "/", 1 }; }
    const void* theSlash = memrchr(aBase.mPath.mText, '/', aBase.mPath.mLength);
    if (!theSlash) { return { nullptr, 0 }; }
    return Between(aBase.mPath.mText, static_cast<const char*>(theSlash) + 1);
}

// Gives aTarget, which is the reference, what it takes from the base; true when its path is the base's.
static bool InheritFromBase(const Parts& aBase, Parts& aTarget, Slice& aDirectory)
{
    if (aTarget.mScheme.mText) { return false; }
    aTarget.mScheme = aBase.mScheme;
    if (aTarget.mHostName.mText) { return false; }
    aTarget.mUserInfo = aBase.mUserInfo;
    aTarget.mHostName = aBase.mHostName;
    aTarget.mPort = aBase.mPort;
    if (aTarget.mPath.mLength > 0)
    {
        if (*aTarget.mPath.mText != '/') { aDirectory = DirectoryOf(aBase); }
        return false;
    }
    aTarget.mPath = aBase.mPath;
    if (!aTarget.mQuery.mText) { aTarget.mQuery = aBase.mQuery; }
    return true;
}

static size_t SegmentEnd(const char* aPath, size_t aLength, size_t aBegin)
{
    const void* theSlash = memchr(aPath + aBegin, '/', aLength - aBegin);
    return theSlash ? static_cast<size_t>(static_cast<const char*>(theSlash) - aPath) : aLength;
}

// The number of dots of a segment that is "." or "..", else 0.
static size_t DotsOf(const char* aSegment, size_t aLength)
{
    return aLength > 0 && aLength <= 2 && memcmp(aSegment, "..", aLength) == 0 ? aLength : 0;
}

static size_t WithoutLastSegment(const char* aPath, size_t aLength)
{
    const void* theSlash = memrchr(aPath, '/', aLength);
    return theSlash ? static_cast<size_t>(static_cast<const char*>(theSlash) - aPath) : 0;
}

// Takes "." and ".." out of the path in place. What is written never overtakes what is read, and each byte that ".."
// takes back was written once: linear. @return the new length.
static size_t RemoveDotSegments(char* aPath, size_t aLength)
{
    size_t theRead = 0;
    size_t theWritten = 0;
    while (theRead < aLength && aPath[theRead] != '/') // before the first "/"
    {
        const size_t theEnd = SegmentEnd(aPath, aLength, theRead);
        if (DotsOf(aPath + theRead, theEnd - theRead) == 0)
        {
            memmove(aPath, aPath + theRead, theEnd - theRead);
            theWritten = theEnd - theRead;
            theRead = theEnd;
            break;
        }
        theRead = theEnd < aLength ? theEnd + 1 : theEnd;
    }
    while (theRead < aLength) // at a "/"
    {
        const size_t theEnd = SegmentEnd(aPath, aLength, theRead + 1);
        const size_t theDots = DotsOf(aPath + theRead + 1, theEnd - theRead - 1);
        if (theDots == 0)
        {
            memmove(aPath + theWritten, aPath + theRead, theEnd - theRead);
            theWritten += theEnd - theRead;
        }
        if (theDots == 2) { theWritten = WithoutLastSegment(aPath, theWritten); }
        if (theDots > 0 && theEnd == aLength) { aPath[theWritten++] = '/'; }
        theRead = theEnd;
    }
    return theWritten;
}

static char* AppendPath(char* anEnd, const Parts& aTarget, const Slice& aDirectory, bool afAsItIs)
{
    size_t theLength = static_cast<size_t>(AppendSlice(AppendSlice(anEnd, aDirectory), aTarget.mPath) - anEnd);
    if (!afAsItIs) { theLength = RemoveDotSegments(anEnd, theLength); }
    if (!aTarget.mHostName.mText && theLength > 1 && anEnd[0] == '/' && anEnd[1] == '/')
    {
        memmove(anEnd + 2, anEnd, theLength); // else the path would read as a host
        anEnd[1] = '.';
        theLength += 2;
    }
    return anEnd + theLength;
}

char* zoURI_S_Combine(const char* aBase, const char* aReference)
{
    const char* theReference = aReference ? aReference : "";
    Parts theBase;
    Parts theTarget;
    if (!aBase || !Parse(aBase, theBase) || !theBase.mScheme.mText || !Parse(theReference, theTarget))
    {
        return zoStrdup(theReference);
    }
    Slice theDirectory = {};
    const bool theBasePath = InheritFromBase(theBase, theTarget, theDirectory);
    const size_t theSize = AddSizes(AddSizes(TextSize(theTarget), theDirectory.mLength), sizeof("/."));
    char* theText = static_cast<char*>(zoMalloc(theSize));
    char* thePath = AppendUpToPath(theText, theTarget);
    AppendFromQuery(AppendPath(thePath, theTarget, theDirectory, theBasePath), theTarget);
    return theText;
}
