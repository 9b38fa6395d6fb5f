#pragma once

#include <zo/CString.h>
#include <zo/Export.h>

/* How a text is taken apart. */
enum zoCStringTokenizerMode
{
    kTokenizerMode_Default = 0 // empty tokens are skipped
};

/** Takes a text apart at delimiters. The tokenizer keeps its own copy of the text and of the delimiters. */
class ZO_API zoCStringTokenizer
{
public:
    /** Starts over with aText; each byte of aDelimiters separates tokens. */
    void SetString(const zoCString& aText, const zoCString& aDelimiters, zoCStringTokenizerMode aMode);
    /** @return whether there is a next token. */
    bool HasMoreTokens() const;
    /** @return the next token, blanks and all; "" when there is none left. */
    zoCString GetNextToken();

private:
    zoCString mText;
    zoCString mDelimiters;
    size_t mPosition = 0; // start of the next token, past leading delimiters; the text's length at the end
};
