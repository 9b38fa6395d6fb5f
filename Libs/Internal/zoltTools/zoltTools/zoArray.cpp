#include <zoltTools/zoArray.h>

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

static const size_t kFewValues = 4;

struct zoArray_t
{
    void** mValues; // mFewValues, or owned; mCount of mCapacity are in use
    size_t mCount;
    size_t mCapacity;
    zoArray_FreeFunc_t mFreeFunc;
    void* mFewValues[kFewValues];
};

zoArray_t* zoArray_New(void)
{
    zoArray_t* theArray = static_cast<zoArray_t*>(zoMalloc(sizeof(zoArray_t)));
    theArray->mValues = theArray->mFewValues;
    theArray->mCount = 0;
    theArray->mCapacity = kFewValues;
    theArray->mFreeFunc = nullptr;
    return theArray;
}

static void Grow(zoArray_t* anArray)
{
    const bool fWereFew = anArray->mValues == anArray->mFewValues;
    anArray->mCapacity = Shared::GrowCapacity(anArray->mCapacity, 0, 0);
    void** theValues = Shared::ResizeArray(fWereFew ? nullptr : anArray->mValues, anArray->mCapacity);
    if (fWereFew) { memcpy(theValues, anArray->mFewValues, sizeof(anArray->mFewValues)); }
    anArray->mValues = theValues;
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
    memmove(anArray->mValues + anIndex, anArray->mValues + anIndex + theCount,
            (theTotal - anIndex - theCount) * sizeof(void*));
    anArray->mCount -= theCount;
}

void zoArray_Delete(zoArray_t* anArray)
{
    if (!anArray) { return; }
    zoArray_RemoveAt(anArray, 0, anArray->mCount);
    if (anArray->mValues != anArray->mFewValues) { free(anArray->mValues); }
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
