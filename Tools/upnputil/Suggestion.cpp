#include "Suggestion.h"

#include <Shared/ASCII.h>
#include <algorithm>

using Shared::ToLower;

static const size_t kMaxLength = 64; // of a word that is compared; no known one is as long

// How many characters have to be added, removed, replaced or swapped with the next; the case makes no difference.
static size_t Distance(const std::string& aLeft, const std::string& aRight)
{
    std::vector<size_t> theBefore, theRow, theNext(aRight.size() + 1);
    for (size_t j = 0; j <= aRight.size(); ++j)
        theNext[j] = j;
    for (size_t i = 1; i <= aLeft.size(); ++i)
    {
        theBefore.swap(theRow);
        theRow.swap(theNext);
        theNext.assign(aRight.size() + 1, i);
        for (size_t j = 1; j <= aRight.size(); ++j)
        {
            const bool fIsSame = ToLower(aLeft[i - 1]) == ToLower(aRight[j - 1]);
            theNext[j] = std::min({ theRow[j] + 1, theNext[j - 1] + 1, theRow[j - 1] + (fIsSame ? 0 : 1) });
            const bool fIsSwapped = i > 1 && j > 1 && ToLower(aLeft[i - 1]) == ToLower(aRight[j - 2]) &&
                                    ToLower(aLeft[i - 2]) == ToLower(aRight[j - 1]);
            if (fIsSwapped) { theNext[j] = std::min(theNext[j], theBefore[j - 2] + 1); }
        }
    }
    return theNext.back();
}

std::string Suggestion(const std::string& aWord, const std::vector<std::string>& aKnownWords)
{
    if (aWord.size() > kMaxLength) { return ""; }
    size_t theLimit = std::max<size_t>(1, aWord.size() / 3); // a third of the characters may be wrong
    std::string theSuggestion;
    for (const std::string& theWord : aKnownWords)
    {
        const size_t theDistance = Distance(aWord, theWord);
        if (theDistance > theLimit) { continue; }
        theLimit = theDistance == 0 ? 0 : theDistance - 1;
        theSuggestion = ", did you mean \"" + theWord + "\"?";
        if (theDistance == 0) { break; }
    }
    return theSuggestion;
}
