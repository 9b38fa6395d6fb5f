#pragma once

/* Texts formatted as by printf. */

#include <Shared/OutOfMemory.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

namespace Shared
{

/** @return a new text of any length, released with free. */
__attribute__((format(printf, 1, 0))) inline char* NewFormattedText(const char* aFormat, va_list anArguments)
{
    char theShortText[200]; // most fit
    va_list theArguments;
    va_copy(theArguments, anArguments);
    const int theLength = vsnprintf(theShortText, sizeof(theShortText), aFormat, theArguments);
    va_end(theArguments);
    if (theLength < 0) { EndWithoutMemory(INT_MAX); } // longer than what printf can tell
    const size_t theSize = static_cast<size_t>(theLength) + 1;
    char* theText = static_cast<char*>(NotNull(malloc(theSize), theSize));
    if (theSize <= sizeof(theShortText)) { memcpy(theText, theShortText, theSize); }
    else { vsnprintf(theText, theSize, aFormat, anArguments); }
    return theText;
}

} // namespace Shared
