#include <zoltTools/zoMemory.h>

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void* EndWithoutMemory(void* aBlock)
{
    if (!aBlock) { abort(); }
    return aBlock;
}

// malloc and realloc may give NULL for 0 bytes.
static size_t AtLeastOne(size_t aSize) { return aSize > 0 ? aSize : 1; }

void* zoMalloc(size_t aSize) { return EndWithoutMemory(malloc(AtLeastOne(aSize))); }

void* zoMallocZeroed(size_t aSize) { return EndWithoutMemory(calloc(1, AtLeastOne(aSize))); }

void* zoRealloc(void* aBlock, size_t aSize) { return EndWithoutMemory(realloc(aBlock, AtLeastOne(aSize))); }

void zoFree(void* aBlock) { free(aBlock); }

static char* NewText(const char* aText, size_t aLength)
{
    char* theText = static_cast<char*>(zoMalloc(aLength + 1));
    memcpy(theText, aText, aLength);
    theText[aLength] = '\0';
    return theText;
}

char* zoStrdup(const char* aText) { return aText ? NewText(aText, strlen(aText)) : nullptr; }

char* zoStrndup(const char* aText, size_t aLength) { return aText ? NewText(aText, strnlen(aText, aLength)) : nullptr; }

void zoStrReplace(char** aTarget, const char* aText)
{
    char* theText = zoStrdup(aText);
    free(*aTarget);
    *aTarget = theText;
}

void zoStrnReplace(char** aTarget, const char* aText, size_t aLength)
{
    char* theText = zoStrndup(aText, aLength);
    free(*aTarget);
    *aTarget = theText;
}

void zoStrcatReplace(char** aTarget, const char* aText)
{
    const size_t theLength = *aTarget ? strlen(*aTarget) : 0;
    const size_t theAddedLength = aText ? strlen(aText) : 0;
    const size_t theOffset = reinterpret_cast<uintptr_t>(aText) - reinterpret_cast<uintptr_t>(*aTarget);
    const bool theOwnText = *aTarget && aText && theOffset <= theLength;

    *aTarget = static_cast<char*>(zoRealloc(*aTarget, theLength + theAddedLength + 1));
    if (theAddedLength > 0) { memcpy(*aTarget + theLength, theOwnText ? *aTarget + theOffset : aText, theAddedLength); }
    (*aTarget)[theLength + theAddedLength] = '\0';
}

int zoStrEmpty(const char* aText) { return !aText || !*aText; }

int zo_snprintf(char* aBuffer, size_t aSize, const char* aFormat, ...)
{
    if (aSize == 0) { return 0; }
    va_list theArguments;
    va_start(theArguments, aFormat);
    const int theLength = vsnprintf(aBuffer, aSize, aFormat, theArguments);
    va_end(theArguments);
    if (theLength < 0)
    {
        aBuffer[0] = '\0';
        return 0;
    }
    return static_cast<size_t>(theLength) < aSize ? theLength : static_cast<int>(aSize - 1);
}

char* zo_mnprintf(const char* aFormat, ...)
{
    char* theText = nullptr;
    va_list theArguments;
    va_start(theArguments, aFormat);
    const int theLength = vasprintf(&theText, aFormat, theArguments);
    va_end(theArguments);
    if (theLength < 0) { abort(); }
    return theText;
}
