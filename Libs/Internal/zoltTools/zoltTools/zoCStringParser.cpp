#include <zoltTools/zoCStringParser.h>

#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

namespace
{

struct Splitter
{
    const char* mEnd;
    const char* mDelimiter;
    size_t mDelimiterLength;
    const char* mEscape; // the escape byte; NULL: none
};

} // namespace

static const char* FindDelimiter(const Splitter& aSplitter, const char* aFrom)
{
    if (aSplitter.mDelimiterLength == 0) { return nullptr; }
    const size_t theLength = static_cast<size_t>(aSplitter.mEnd - aFrom);
    const void* theFound = aSplitter.mDelimiterLength == 1
                               ? memchr(aFrom, *aSplitter.mDelimiter, theLength)
                               : memmem(aFrom, theLength, aSplitter.mDelimiter, aSplitter.mDelimiterLength);
    return static_cast<const char*>(theFound);
}

// Where the token ends that begins at aToken: at a delimiter that splits, or at the end of the text.
static const char* TokenEnd(const Splitter& aSplitter, const char* aToken)
{
    const char* theFound = FindDelimiter(aSplitter, aToken);
    while (theFound && aSplitter.mEscape && theFound > aToken && theFound[-1] == *aSplitter.mEscape)
        theFound = FindDelimiter(aSplitter, theFound + 1);
    return theFound ? theFound : aSplitter.mEnd;
}

static size_t CountTokens(const Splitter& aSplitter, const char* aText)
{
    size_t theCount = 1;
    for (const char* theEnd = TokenEnd(aSplitter, aText); theEnd != aSplitter.mEnd; ++theCount)
        theEnd = TokenEnd(aSplitter, theEnd + aSplitter.mDelimiterLength);
    return theCount;
}

// The tokens stand behind their list, in one block.
static zoCStringParserTokenList* NewList(size_t aTokenCount)
{
    static_assert(alignof(zoCStringParserToken) <= alignof(zoCStringParserTokenList), "a token may follow the list");
    if (aTokenCount > SIZE_MAX / sizeof(zoCStringParserToken) - 1) { abort(); } // more than memory can hold
    zoCStringParserTokenList* theList = static_cast<zoCStringParserTokenList*>(
        zoMalloc(sizeof(zoCStringParserTokenList) + aTokenCount * sizeof(zoCStringParserToken)));
    theList->mFirstToken = static_cast<zoCStringParserToken*>(static_cast<void*>(theList + 1));
    theList->mTokenCount = aTokenCount;
    return theList;
}

static zoCStringParserTokenList* Split(const Splitter& aSplitter, const char* aText)
{
    zoCStringParserTokenList* theList = NewList(CountTokens(aSplitter, aText));
    zoCStringParserToken* theToken = theList->mFirstToken;
    const char* theBegin = aText;
    for (const char* theEnd = TokenEnd(aSplitter, theBegin); theEnd != aSplitter.mEnd; ++theToken)
    {
        *theToken = { theBegin, static_cast<size_t>(theEnd - theBegin), theToken + 1 };
        theBegin = theEnd + aSplitter.mDelimiterLength;
        theEnd = TokenEnd(aSplitter, theBegin);
    }
    *theToken = { theBegin, static_cast<size_t>(aSplitter.mEnd - theBegin), nullptr };
    return theList;
}

static zoCStringParserTokenList* Tokenize(const char* aText, size_t anOffset, size_t aLength, const char* aDelimiter,
                                          size_t aDelimiterLength, const char* anEscape)
{
    const char* theText = aText ? aText + anOffset : "";
    return Split({ theText + (aText ? aLength : 0), aDelimiter, aDelimiterLength, anEscape }, theText);
}

zoCStringParserTokenList* zoCStringParser_Tokenize(const char* aText, size_t anOffset, size_t aLength,
                                                   const char* aDelimiter, size_t aDelimiterLength)
{
    return Tokenize(aText, anOffset, aLength, aDelimiter, aDelimiterLength, nullptr);
}

zoCStringParserTokenList* zoCStringParser_TokenizeEscaped(const char* aText, size_t anOffset, size_t aLength,
                                                          const char* aDelimiter, size_t aDelimiterLength,
                                                          char anEscape)
{
    return Tokenize(aText, anOffset, aLength, aDelimiter, aDelimiterLength, &anEscape);
}

void zoCStringParser_Delete(zoCStringParserTokenList* aList) { free(aList); }
