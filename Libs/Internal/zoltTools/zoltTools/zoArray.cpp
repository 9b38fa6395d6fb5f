#include <zoltTools/zoArray.h>

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

static const size_t kFewValues = 4;

struct zoArray_t
{
    void** mBlock;  // mFewValues, or owned
    void** mValues; // in the block, past what was removed from its front
    size_t mCount;
    size_t mCapacity; // values from mValues to the block's end
    zoArray_FreeFunc_t mFreeFunc;
    void* mFewValues[kFewValues];
};

zoArray_t* zoArray_New(void)
{
    zoArray_t* theArray = static_cast<zoArray_t*>(zoMalloc(sizeof(zoArray_t)));
    theArray->mBlock = theArray->mValues = theArray->mFewValues;
    theArray->mCount = 0;
    theArray->mCapacity = kFewValues;
    theArray->mFreeFunc = nullptr;
    return theArray;
}

// Makes room for another value: at the front, when more than half of the block was removed there.
static void Grow(zoArray_t* anArray)
{
    const size_t theGap = static_cast<size_t>(anArray->mValues - anArray->mBlock);
    if (theGap > 0)
    {
        memmove(anArray->mBlock, anArray->mValues, anArray->mCount * sizeof(void*));
        anArray->mValues = anArray->mBlock;
        anArray->mCapacity += theGap;
        if (theGap > anArray->mCount) { return; }
    }
    const bool fWereFew = anArray->mBlock == anArray->mFewValues;
    anArray->mCapacity = Shared::GrowCapacity(anArray->mCapacity, 0, 0);
    void** theBlock = Shared::ResizeArray(fWereFew ? nullptr : anArray->mBlock, anArray->mCapacity);
    if (fWereFew) { memcpy(theBlock, anArray->mFewValues, sizeof(anArray->mFewValues)); }
    anArray->mBlock = anArray->mValues = theBlock;
}

void zoArray_SetFreeFunc(zoArray_t* anArray, zoArray_FreeFunc_t aFreeFunc)
{
    if (anArray) { anArray->mFreeFunc = aFreeFunc; }
}

void zoArray_Append(zoArray_t* anArray, void* aValue)
{
    if (!anArray) { return; }
    if (anArray->mCount == anArray->mCapacity) { Grow(anArray); }
    anArray->mValues[anArray->mCount++] = aValue;
}

void* zoArray_At(const zoArray_t* anArray, size_t anIndex)
{
    return anIndex < zoArray_GetCount(anArray) ? anArray->mValues[anIndex] : nullptr;
}

size_t zoArray_GetCount(const zoArray_t* anArray) { return anArray ? anArray->mCount : 0; }

void zoArray_RemoveAt(zoArray_t* anArray, size_t anIndex, size_t aCount)
{
    const size_t theTotal = zoArray_GetCount(anArray);
    if (anIndex >= theTotal) { return; }
    const size_t theCount = aCount < theTotal - anIndex ? aCount : theTotal - anIndex;
    if (anArray->mFreeFunc)
    {
        for (size_t i = anIndex; i < anIndex + theCount; ++i)
            anArray->mFreeFunc(anArray->mValues[i]);
    }
    anArray->mCount -= theCount;
    if (anIndex == 0)
    {
        anArray->mValues += theCount;
        anArray->mCapacity -= theCount;
        return;
    }
    memmove(anArray->mValues + anIndex, anArray->mValues + anIndex + theCount,
            (anArray->mCount - anIndex) * sizeof(void*));
}

void zoArray_Delete(zoArray_t* anArray)
{
    if (!anArray) { return; }
    zoArray_RemoveAt(anArray, 0, anArray->mCount);
    if (anArray->mBlock != anArray->mFewValues) { free(anArray->mBlock); }
    free(anArray);
}

void zoStringArray_FreeFunc(void* aString) { free(aString); }

static const char* StringAt(const zoArray_t* anArray, size_t anIndex)
{
    const char* theString = static_cast<const char*>(zoArray_At(anArray, anIndex));
    return theString ? theString : "";
}

char* zoStringArray_FlattenerFunc(const zoArray_t* anArray, size_t* aSize)
{
    size_t theSize = 0;
    for (size_t i = 0; i < zoArray_GetCount(anArray); ++i)
        theSize += strlen(StringAt(anArray, i)) + 1;

    *aSize = theSize;
    if (theSize == 0) { return nullptr; }
    char* theBytes = static_cast<char*>(zoMalloc(theSize));
    char* theEnd = theBytes;
    for (size_t i = 0; i < zoArray_GetCount(anArray); ++i)
    {
        const size_t theLength = strlen(StringAt(anArray, i)) + 1;
        memcpy(theEnd, StringAt(anArray, i), theLength);
        theEnd += theLength;
    }
    return theBytes;
}

size_t zoStringArray_Pack(const char* aStrings, size_t aSize, char* aTarget, size_t aCapacity)
{
    if (aSize > 0 && aSize <= aCapacity) { memcpy(aTarget, aStrings, aSize); }
    return aSize;
}

zoArray_t* zoStringArray_UnFlattenerFunc(const char* aData, size_t aSize)
{
    zoArray_t* theArray = zoArray_New();
    for (size_t thePosition = 0; thePosition < aSize;)
    {
        const size_t theLength = strnlen(aData + thePosition, aSize - thePosition);
        zoArray_Append(theArray, zoStrndup(aData + thePosition, theLength));
        thePosition += theLength + 1;
    }
    return theArray;
}
