#include <UPnP/Stack/ILibHTTP.h>

#include <string.h>

static bool Has(const char* aUserAgent, size_t aLength, const char* aToken, size_t aTokenLength)
{
    return aTokenLength > 0 && memmem(aUserAgent, aLength, aToken, aTokenLength) != nullptr;
}

int ILibUserAgentHas(const char* aUserAgent, const char* aToken, size_t aTokenLength)
{
    return aUserAgent && aToken && Has(aUserAgent, strlen(aUserAgent), aToken, aTokenLength);
}

// Each token of a list is searched for, so that a long user agent would cost the product of both.
static const size_t kMaxSearched = 1024;

int ILibUserAgentHasOneOfThem(const char* aUserAgent, const char* aTokenList)
{
    static const char kBlanks[] = " \t";
    if (!aUserAgent || !aTokenList) { return 0; }
    const size_t theLength = strnlen(aUserAgent, kMaxSearched);
    for (const char* theToken = aTokenList;;)
    {
        const char* theComma = strchrnul(theToken, ',');
        const char* theEnd = theComma;
        theToken += strspn(theToken, kBlanks);
        while (theEnd > theToken && strchr(kBlanks, theEnd[-1]))
            --theEnd;
        if (theEnd > theToken && Has(aUserAgent, theLength, theToken, static_cast<size_t>(theEnd - theToken)))
        {
            return 1;
        }
        if (*theComma == 0) { return 0; }
        theToken = theComma + 1;
    }
}
