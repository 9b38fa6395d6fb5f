#pragma once

#include <cstddef>

// What the process takes of the heap: every malloc, calloc, realloc and free of a program with CountedHeap.cpp is
// counted. The sizes are those of the blocks that the allocator gives out.
struct CountedHeap
{
    size_t mAllocations;
    size_t mUsed;
    size_t mPeak; // the most of mUsed; set it to mUsed where an operation begins
};

extern CountedHeap sHeap;
