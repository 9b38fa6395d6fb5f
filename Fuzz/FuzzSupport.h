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

/* What the sanitizers' allocator tells; without it budgets are not checked. */
extern "C" __attribute__((weak)) int __sanitizer_install_malloc_and_free_hooks(
    void (*aMalloc)(const volatile void* aBlock, size_t aSize), void (*aFree)(const volatile void* aBlock));
extern "C" __attribute__((weak)) size_t __sanitizer_get_allocated_size(const volatile void* aBlock);

/* The heap that is used at most while it lives, beyond what was used before. */
class HeapPeak
{
public:
    HeapPeak()
    {
        static const bool kfIsCounted = __sanitizer_install_malloc_and_free_hooks &&
                                        __sanitizer_install_malloc_and_free_hooks(CountMalloc, CountFree) != 0;
        sUsed = 0;
        sPeak = 0;
        sfIsCounted = kfIsCounted;
    }
    ~HeapPeak() { sfIsCounted = false; }
    HeapPeak(const HeapPeak&) = delete;
    HeapPeak& operator=(const HeapPeak&) = delete;

    size_t Bytes() const { return static_cast<size_t>(sPeak); }
    size_t BytesKept() const { return sUsed > 0 ? static_cast<size_t>(sUsed) : 0; }

private:
    static void CountMalloc(const volatile void* /*aBlock*/, size_t aSize)
    {
        if (!sfIsCounted) { return; }
        sUsed += static_cast<ptrdiff_t>(aSize);
        if (sUsed > sPeak) { sPeak = sUsed; }
    }
    static void CountFree(const volatile void* aBlock)
    {
        if (sfIsCounted && aBlock) { sUsed -= static_cast<ptrdiff_t>(__sanitizer_get_allocated_size(aBlock)); }
    }

    inline static bool sfIsCounted = false;
    inline static ptrdiff_t sUsed = 0; // below 0 when what was there before is released
    inline static ptrdiff_t sPeak = 0;
};

/* A budget: so much a byte of input, and what an input of any size may need. The most is for a record that is added to,
 * whose tags are far apart: 16 KiB while the table of their pages grows to its full 8 KiB. The rest is for blocks whose
 * first size does not depend on the input: a record has 1 KiB, a text begins with 1 KiB. */
const size_t kHeapOfSmallInputs = 20 * 1024;
inline void RequireHeap(size_t aBytes, size_t anInputSize, size_t aFactor)
{
    Require(aBytes <= kHeapOfSmallInputs + aFactor * anInputSize, "the heap used is within its budget");
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
