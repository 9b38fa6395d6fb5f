#include <zoltTools/zoBuffer.h>

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

static void Grow(zoBuffer* aBuffer, size_t aCount)
{
    aBuffer->mSize = Shared::GrowCapacity(aBuffer->mSize, Shared::AddSizes(aBuffer->mPos, aCount), 0);
    aBuffer->mPtr = static_cast<char*>(zoRealloc(aBuffer->mPtr, aBuffer->mSize));
}

zoBuffer* zoBuffer_New(size_t aCapacity)
{
    zoBuffer* theBuffer = static_cast<zoBuffer*>(zoMalloc(sizeof(zoBuffer)));
    theBuffer->mPtr = aCapacity > 0 ? static_cast<char*>(zoMalloc(aCapacity)) : nullptr;
    theBuffer->mSize = aCapacity;
    theBuffer->mPos = 0;
    return theBuffer;
}

void zoBuffer_Reserve(zoBuffer* aBuffer, size_t aCount)
{
    if (aCount > aBuffer->mSize - aBuffer->mPos) { Grow(aBuffer, aCount); }
}

void zoBuffer_Append(zoBuffer* aBuffer, const char* aBytes, size_t aCount)
{
    if (aCount == 0) { return; }
    zoBuffer_Reserve(aBuffer, aCount);
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
    *aBuffer = { nullptr, 0, 0 };
    return theBytes;
}

void zoBuffer_Delete(zoBuffer* aBuffer)
{
    if (!aBuffer) { return; }
    free(aBuffer->mPtr);
    free(aBuffer);
}
