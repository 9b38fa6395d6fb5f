#include "CountedHeap.h"

#include <algorithm>
#include <malloc.h>

CountedHeap sHeap = { 0, 0, 0 };

extern "C" void* __libc_malloc(size_t aSize);
extern "C" void* __libc_calloc(size_t aCount, size_t aSize);
extern "C" void* __libc_realloc(void* aBlock, size_t aSize);
extern "C" void __libc_free(void* aBlock);

static void* Count(void* aBlock)
{
    ++sHeap.mAllocations;
    sHeap.mUsed += malloc_usable_size(aBlock);
    sHeap.mPeak = std::max(sHeap.mPeak, sHeap.mUsed);
    return aBlock;
}

extern "C" void* malloc(size_t aSize) { return Count(__libc_malloc(aSize)); }

extern "C" void* calloc(size_t aCount, size_t aSize) { return Count(__libc_calloc(aCount, aSize)); }

extern "C" void* realloc(void* aBlock, size_t aSize)
{
    sHeap.mUsed -= malloc_usable_size(aBlock);
    return Count(__libc_realloc(aBlock, aSize));
}

extern "C" void free(void* aBlock)
{
    sHeap.mUsed -= malloc_usable_size(aBlock);
    __libc_free(aBlock);
}
