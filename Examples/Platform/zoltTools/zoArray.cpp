#include <zoltTools/zoArray.h>

#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

// The values are in blocks of a fixed size, which never move. As bytes, an array of strings is the number of strings
// and, for each, its length and its bytes: no NUL is stored, and the empty array has bytes, too.

static const size_t kBlockSize = 32;

struct zoArray_t
{
    void*** mBlocks;
    size_t mBlockCount;
    size_t mCount;
    zoArray_FreeFunc_t mFreeFunc;
};

static void** Place(const zoArray_t* anArray, size_t anIndex)
{
    return &anArray->mBlocks[anIndex / kBlockSize][anIndex % kBlockSize];
}

zoArray_t* zoArray_New(void) { return static_cast<zoArray_t*>(zoMallocZeroed(sizeof(zoArray_t))); }

void zoArray_SetFreeFunc(zoArray_t* anArray, zoArray_FreeFunc_t aFreeFunc)
{
    if (anArray) { anArray->mFreeFunc = aFreeFunc; }
}

// The table of blocks is as long as the next power of two.
static void AddBlock(zoArray_t* anArray)
{
    if ((anArray->mBlockCount & (anArray->mBlockCount - 1)) == 0)
    {
        const size_t theCapacity = anArray->mBlockCount > 0 ? anArray->mBlockCount * 2 : 1;
        anArray->mBlocks = static_cast<void***>(zoRealloc(anArray->mBlocks, theCapacity * sizeof(void**)));
    }
    anArray->mBlocks[anArray->mBlockCount++] = static_cast<void**>(zoMalloc(kBlockSize * sizeof(void*)));
}

void zoArray_Append(zoArray_t* anArray, void* aValue)
{
    if (!anArray) { return; }
    if (anArray->mCount == anArray->mBlockCount * kBlockSize) { AddBlock(anArray); }
    *Place(anArray, anArray->mCount++) = aValue;
}

void* zoArray_At(const zoArray_t* anArray, size_t anIndex)
{
    return anIndex < zoArray_GetCount(anArray) ? *Place(anArray, anIndex) : nullptr;
}

size_t zoArray_GetCount(const zoArray_t* anArray) { return anArray ? anArray->mCount : 0; }

void zoArray_RemoveAt(zoArray_t* anArray, size_t anIndex, size_t aCount)
{
    const size_t theTotal = zoArray_GetCount(anArray);
    if (anIndex >= theTotal) { return; }
    const size_t theEnd = aCount < theTotal - anIndex ? anIndex + aCount : theTotal;
    for (size_t i = anIndex; anArray->mFreeFunc && i < theEnd; ++i)
        anArray->mFreeFunc(*Place(anArray, i));
    for (size_t i = theEnd; i < theTotal; ++i)
        *Place(anArray, anIndex + (i - theEnd)) = *Place(anArray, i);
    anArray->mCount -= theEnd - anIndex;
}

void zoArray_Delete(zoArray_t* anArray)
{
    if (!anArray) { return; }
    zoArray_RemoveAt(anArray, 0, anArray->mCount);
    for (size_t i = 0; i < anArray->mBlockCount; ++i)
        free(anArray->mBlocks[i]);
    free(anArray->mBlocks);
    free(anArray);
}

// ---- Strings ----

void zoStringArray_FreeFunc(void* aString) { free(aString); }

static uint32 LengthAt(const zoArray_t* anArray, size_t anIndex)
{
    const char* theString = static_cast<const char*>(zoArray_At(anArray, anIndex));
    return theString ? static_cast<uint32>(strlen(theString)) : 0;
}

char* zoStringArray_FlattenerFunc(const zoArray_t* anArray, size_t* aSize)
{
    const uint32 theCount = static_cast<uint32>(zoArray_GetCount(anArray));
    *aSize = sizeof(theCount);
    for (size_t i = 0; i < theCount; ++i)
        *aSize += sizeof(uint32) + LengthAt(anArray, i);

    char* theBytes = static_cast<char*>(zoMalloc(*aSize));
    char* theEnd = static_cast<char*>(memcpy(theBytes, &theCount, sizeof(theCount))) + sizeof(theCount);
    for (size_t i = 0; i < theCount; ++i)
    {
        const uint32 theLength = LengthAt(anArray, i);
        memcpy(theEnd, &theLength, sizeof(theLength));
        if (theLength > 0) { memcpy(theEnd + sizeof(theLength), zoArray_At(anArray, i), theLength); }
        theEnd += sizeof(theLength) + theLength;
    }
    return theBytes;
}

// Takes a number off the bytes; false when there are not enough.
static bool ReadNumber(const char** aData, size_t* aSize, uint32* aNumber)
{
    if (*aSize < sizeof(*aNumber)) { return false; }
    memcpy(aNumber, *aData, sizeof(*aNumber));
    *aData += sizeof(*aNumber);
    *aSize -= sizeof(*aNumber);
    return true;
}

// The bytes may be a stranger's: a string that is not whole ends the array.
zoArray_t* zoStringArray_UnFlattenerFunc(const char* aData, size_t aSize)
{
    zoArray_t* theArray = zoArray_New();
    uint32 theLength = 0;
    uint32 theCount = 0;
    if (!ReadNumber(&aData, &aSize, &theCount)) { return theArray; }
    for (; theCount > 0 && ReadNumber(&aData, &aSize, &theLength) && theLength <= aSize; --theCount)
    {
        zoArray_Append(theArray, zoStrndup(aData, theLength));
        aData += theLength;
        aSize -= theLength;
    }
    return theArray;
}
