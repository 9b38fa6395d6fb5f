#pragma once

/* Lists in one text. A token is a run of the text that it came from, not a copy: it lives as long as that text. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One token of a list. */
typedef struct zoCStringParser_Token
{
    const char* mData; /* mDataLength bytes of the text, not NUL-terminated */
    size_t mDataLength;
    struct zoCStringParser_Token* mNextToken; /* NULL after the last */
} zoCStringParser_Token;

/* The tokens of a text in their order. */
typedef struct zoCStringParser_TokenList
{
    zoCStringParser_Token* mFirstToken; /* never NULL: a text without a delimiter is one token, "" too */
    zoCStringParser_Token* mLastToken;
    size_t mTokenCount;
} zoCStringParser_TokenList;

/**
 * Splits aLength bytes of aText, from anOffset on, at each delimiter. Empty tokens count; blanks stay.
 * @param aDelimiter  aDelimiterLength bytes, at least one.
 * @return a new list, released with zoCStringParser_Delete.
 */
ZOLTTOOLS_API zoCStringParser_TokenList* zoCStringParser_Tokenize(const char* aText, size_t anOffset, size_t aLength,
                                                                  const char* aDelimiter, size_t aDelimiterLength);
/** As zoCStringParser_Tokenize, but a delimiter right after anEscape does not split; the escape stays in the token. */
ZOLTTOOLS_API zoCStringParser_TokenList* zoCStringParser_TokenizeEscaped(const char* aText, size_t anOffset,
                                                                         size_t aLength, const char* aDelimiter,
                                                                         size_t aDelimiterLength, char anEscape);
/** @return 1 when anItem is an item of a list whose items are separated by aSeparator, compared byte by byte, blanks
 *          included; else 0, as for an empty item, and for NULL. */
ZOLTTOOLS_API int zoCStringParser_ListContains(const char* aList, const char* aSeparator, const char* anItem);
/** Releases the list; NULL is ignored. */
ZOLTTOOLS_API void zoCStringParser_Delete(zoCStringParser_TokenList* aList);

#ifdef __cplusplus
}
#endif
