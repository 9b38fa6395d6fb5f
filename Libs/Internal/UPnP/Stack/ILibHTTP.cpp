#include <UPnP/Stack/ILibHTTP.h>

#include <Shared/ASCII.h>
#include <Shared/Split.h>
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
    if (!aUserAgent || !aTokenList) { return 0; }
    const size_t theLength = strnlen(aUserAgent, kMaxSearched);
    std::string_view theToken;
    for (std::string_view theRest = aTokenList; Shared::NextItem(&theRest, ',', &theToken);)
    {
        theToken = Shared::Trim(theToken, Shared::IsBlank);
        if (Has(aUserAgent, theLength, theToken.data(), theToken.size())) { return 1; }
    }
    return 0;
}
