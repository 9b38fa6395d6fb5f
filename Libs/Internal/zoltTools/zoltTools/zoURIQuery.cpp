// The escapes of a URI and the arguments of its query.

#include <zoltTools/zoURI.h>

#include <Shared/Append.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoURI.h>
#include <zoltTools/zoMemory.h>

using namespace URI;

// ---- Escapes ----

static bool IsEscape(const char* aText) { return *aText == '%' && Shared::HexByteValue(aText + 1) >= 0; }

// True if the byte at aText must be written as an escape. In an argument that is not yet escaped, "%" is such a byte.
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
    for (; *aText; ++aText)
    {
        if (!NeedsEscape(aText, aPlace))
        {
            *anEnd++ = *aText;
            continue;
        }
        *anEnd++ = '%';
        anEnd = Shared::WriteHexByte(anEnd, *aText);
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
    const bool fIsAddress = aURI->mHostName && aURI->mHostName[0] == '[';
    EscapeComponent(aURI, &aURI->mUserInfo, kIn_UserInfo);
    EscapeComponent(aURI, &aURI->mHostName, fIsAddress ? kIn_Address : kIn_HostName);
    EscapeComponent(aURI, &aURI->mPath, kIn_Path);
    EscapeComponent(aURI, &aURI->mQuery, kIn_Query);
    EscapeComponent(aURI, &aURI->mFragment, kIn_Query);
}

// ---- Query arguments ----

// @return the byte at aText, decoded; moves aText past it. The escape of a NUL, which would end the text, is not
// decoded.
static char DecodeByte(const char*& aText)
{
    const int theByte = *aText == '%' ? Shared::HexByteValue(aText + 1) : -1;
    if (theByte <= 0) { return *aText++; }
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
    bool fIsFirst = true;
    bool fIsWritten = false;
    for (const char* thePosition = aQuery; thePosition;)
    {
        const QueryArgument theArgument(thePosition);
        const bool fIsNamed = theArgument.IsNamed(aName);
        if (!fIsNamed || !fIsWritten)
        {
            if (!fIsFirst) { *anEnd++ = '&'; }
            anEnd = fIsNamed
                        ? AppendArgument(anEnd, aName, aValue)
                        : Shared::Append(anEnd, { thePosition, static_cast<size_t>(theArgument.mEnd - thePosition) });
            fIsFirst = false;
            fIsWritten = fIsWritten || fIsNamed;
        }
        thePosition = *theArgument.mEnd ? theArgument.mEnd + 1 : nullptr;
    }
    if (fIsWritten) { return anEnd; }
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
