#include <zo/CStringTokenizer.h>

#include <string.h>

static size_t SkipDelimiters(const zoCString& aText, size_t aPosition, const zoCString& aDelimiters)
{
    return aPosition + strspn(aText.c_str() + aPosition, aDelimiters.c_str());
}

void zoCStringTokenizer::SetString(const zoCString& aText, const zoCString& aDelimiters, zoCStringTokenizerMode)
{
    mText = aText;
    mDelimiters = aDelimiters;
    mPosition = SkipDelimiters(mText, 0, mDelimiters);
}

bool zoCStringTokenizer::HasMoreTokens() const { return mPosition < mText.length(); }

zoCString zoCStringTokenizer::GetNextToken()
{
    const char* theToken = mText.c_str() + mPosition;
    const size_t theLength = strcspn(theToken, mDelimiters.c_str());
    mPosition = SkipDelimiters(mText, mPosition + theLength, mDelimiters);
    return { theToken, theLength };
}
