#include <zoltTools/zoBuffer.h>

#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

// A buffer grows by half its size, which is enough for appending to be amortised O(1).

zoBuffer* zoBuffer_New(size_t aCapacity)
{
    zoBuffer* theBuffer = static_cast<zoBuffer*>(zoMallocZeroed(sizeof(zoBuffer)));
    theBuffer->mPtr = static_cast<char*>(zoMalloc(aCapacity + 1));
    theBuffer->mSize = aCapacity + 1;
    return theBuffer;
}

void zoBuffer_Append(zoBuffer* aBuffer, const char* aBytes, size_t aCount)
{
    if (aCount == 0) { return; }
    if (aCount > SIZE_MAX / 2 - aBuffer->mPos) { _zoMemory_Failed(SIZE_MAX); }
    if (aBuffer->mPos + aCount > aBuffer->mSize)
    {
        aBuffer->mSize = aBuffer->mPos + aCount + aBuffer->mSize / 2;
        aBuffer->mPtr = static_cast<char*>(zoRealloc(aBuffer->mPtr, aBuffer->mSize));
    }
    memcpy(aBuffer->mPtr + aBuffer->mPos, aBytes, aCount);
    aBuffer->mPos += aCount;
}

void zoBuffer_AppendStr(zoBuffer* aBuffer, const char* aText)
{
    if (aText) { zoBuffer_Append(aBuffer, aText, strlen(aText)); }
}

char* zoBuffer_TakeOwnership(zoBuffer* aBuffer, size_t* aLength, size_t* aCapacity)
{
    char* theBytes = aBuffer->mPtr;
    if (aLength) { *aLength = aBuffer->mPos; }
    if (aCapacity) { *aCapacity = aBuffer->mSize; }
    *aBuffer = {};
    return theBytes;
}

void zoBuffer_Delete(zoBuffer* aBuffer)
{
    if (aBuffer) { free(aBuffer->mPtr); }
    free(aBuffer);
}
