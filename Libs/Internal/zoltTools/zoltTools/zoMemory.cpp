#include <zoltTools/zoMemory.h>

#include <Shared/Append.h>
#include <Shared/Digits.h>
#include <Shared/Format.h>
#include <Shared/Sizes.h>
#include <atomic>
#include <iterator>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

// ---- No memory left ----

// Nothing here allocates.
static void WriteToStandardError(size_t aSize)
{
    char theLine[64];
    char theDigits[Shared::kMaxDecimalDigits];
    const char* theFirst = Shared::WriteDecimalBefore(std::end(theDigits), aSize, 1);
    char* theEnd = Shared::Append(theLine, "zoMemory: no memory left for ");
    theEnd = Shared::Append(theEnd, { theFirst, static_cast<size_t>(std::end(theDigits) - theFirst) });
    theEnd = Shared::Append(theEnd, " bytes\n");
    if (write(STDERR_FILENO, theLine, static_cast<size_t>(theEnd - theLine)) < 0) { return; } // nobody is left to tell
}

// Any thread may run out of memory while another installs a handler.
static std::atomic<zoMemory_FailureHandler_t> sFailureHandler{ nullptr };

zoMemory_FailureHandler_t zoMemory_SetFailureHandler(zoMemory_FailureHandler_t aHandler)
{
    return sFailureHandler.exchange(aHandler);
}

void _zoMemory_Failed(size_t aSize)
{
    const zoMemory_FailureHandler_t theHandler = sFailureHandler.load();
    (theHandler ? theHandler : WriteToStandardError)(aSize);
    abort();
}

// ---- Blocks ----

// malloc and realloc may give NULL for 0 bytes.
static size_t AtLeastOne(size_t aSize) { return aSize > 0 ? aSize : 1; }

void* zoMalloc(size_t aSize) { return Shared::NotNull(malloc(AtLeastOne(aSize)), aSize); }

void* zoMallocZeroed(size_t aSize) { return Shared::NotNull(calloc(1, AtLeastOne(aSize)), aSize); }

void* zoRealloc(void* aBlock, size_t aSize) { return Shared::NotNull(realloc(aBlock, AtLeastOne(aSize)), aSize); }

void zoFree(void* aBlock) { free(aBlock); }

// ---- Texts ----

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

    *aTarget = static_cast<char*>(zoRealloc(*aTarget, Shared::AddSizes(theLength + 1, theAddedLength)));
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
    va_list theArguments;
    va_start(theArguments, aFormat);
    char* theText = Shared::NewFormattedText(aFormat, theArguments);
    va_end(theArguments);
    return theText;
}
