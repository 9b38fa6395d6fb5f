#include <zoltTools/zoCStringParser.h>

#include <Shared/Sizes.h>
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

// The tokens follow their list in one block.
static zoCStringParser_TokenList* NewList(size_t aTokenCount)
{
    static_assert(alignof(zoCStringParser_Token) <= alignof(zoCStringParser_TokenList), "a token may follow the list");
    const size_t theTokenBytes = Shared::MultiplySizes(aTokenCount, sizeof(zoCStringParser_Token));
    zoCStringParser_TokenList* theList = static_cast<zoCStringParser_TokenList*>(
        zoMalloc(Shared::AddSizes(sizeof(zoCStringParser_TokenList), theTokenBytes)));
    theList->mFirstToken = static_cast<zoCStringParser_Token*>(static_cast<void*>(theList + 1));
    theList->mLastToken = theList->mFirstToken + (aTokenCount - 1);
    theList->mTokenCount = aTokenCount;
    return theList;
}

static zoCStringParser_TokenList* Split(const Splitter& aSplitter, const char* aText)
{
    zoCStringParser_TokenList* theList = NewList(CountTokens(aSplitter, aText));
    zoCStringParser_Token* theToken = theList->mFirstToken;
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

static zoCStringParser_TokenList* Tokenize(const char* aText, size_t anOffset, size_t aLength, const char* aDelimiter,
                                           size_t aDelimiterLength, const char* anEscape)
{
    const char* theText = aText ? aText + anOffset : "";
    return Split({ theText + (aText ? aLength : 0), aDelimiter, aDelimiterLength, anEscape }, theText);
}

zoCStringParser_TokenList* zoCStringParser_Tokenize(const char* aText, size_t anOffset, size_t aLength,
                                                    const char* aDelimiter, size_t aDelimiterLength)
{
    return Tokenize(aText, anOffset, aLength, aDelimiter, aDelimiterLength, nullptr);
}

zoCStringParser_TokenList* zoCStringParser_TokenizeEscaped(const char* aText, size_t anOffset, size_t aLength,
                                                           const char* aDelimiter, size_t aDelimiterLength,
                                                           char anEscape)
{
    return Tokenize(aText, anOffset, aLength, aDelimiter, aDelimiterLength, &anEscape);
}

int zoCStringParser_ListContains(const char* aList, const char* aSeparator, const char* anItem)
{
    if (!aList || !aSeparator || !anItem || *anItem == '\0') { return 0; }
    const size_t theItemLength = strlen(anItem);
    const Splitter theSplitter = { aList + strlen(aList), aSeparator, strlen(aSeparator), nullptr };
    for (const char* theItem = aList;;)
    {
        const char* theEnd = TokenEnd(theSplitter, theItem);
        const size_t theLength = static_cast<size_t>(theEnd - theItem);
        if (theLength == theItemLength && memcmp(theItem, anItem, theLength) == 0) { return 1; }
        if (theEnd == theSplitter.mEnd) { return 0; }
        theItem = theEnd + theSplitter.mDelimiterLength;
    }
}

void zoCStringParser_Delete(zoCStringParser_TokenList* aList) { free(aList); }
