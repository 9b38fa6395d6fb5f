#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize);

/* A property that holds for any bytes. */
inline void Require(bool afHolds, const char* aProperty)
{
    if (afHolds) { return; }
    std::fprintf(stderr, "property does not hold: %s\n", aProperty);
    std::abort();
}

/* The bytes up to their first NUL as a heap text of exactly that size. */
inline char* NewText(const uint8_t* aBytes, size_t aSize)
{
    char* theText = static_cast<char*>(std::malloc(aSize + 1));
    std::memcpy(theText, aBytes, aSize);
    theText[aSize] = 0;
    return static_cast<char*>(std::realloc(theText, std::strlen(theText) + 1));
}

/* A text cut at its line ends, line by line; NULL after the last. */
struct Lines
{
    char* mNext;

    const char* Take()
    {
        char* theLine = mNext;
        if (!theLine) { return nullptr; }
        char* theEnd = std::strchr(theLine, '\n');
        mNext = theEnd ? theEnd + 1 : nullptr;
        if (theEnd) { *theEnd = 0; }
        return theLine;
    }
};
