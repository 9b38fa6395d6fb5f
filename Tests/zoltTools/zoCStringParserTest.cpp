#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include <zoltTools/zoCStringParser.h>

namespace
{

// The tokens, each in brackets, of an exact copy of aText from anOffset on. anEscape '\0': none.
std::string Tokens(const std::string& aText, size_t anOffset, const char* aDelimiter, char anEscape)
{
    const std::vector<char> theCopy(aText.begin(), aText.end());
    const size_t theLength = theCopy.size() - anOffset;
    const size_t theDelimiterLength = strlen(aDelimiter);
    const auto theList =
        anEscape ? zoCStringParser_TokenizeEscaped(theCopy.data(), anOffset, theLength, aDelimiter, theDelimiterLength,
                                                   anEscape)
                 : zoCStringParser_Tokenize(theCopy.data(), anOffset, theLength, aDelimiter, theDelimiterLength);
    std::string theTokens;
    for (const zoCStringParser_Token* theToken = theList->mFirstToken; theToken; theToken = theToken->mNextToken)
        theTokens += '<' + std::string(theToken->mData, theToken->mDataLength) + '>';
    EXPECT_EQ(std::count(theTokens.begin(), theTokens.end(), '<'), static_cast<int>(theList->mTokenCount));
    zoCStringParser_Delete(theList);
    return theTokens;
}

} // namespace

TEST(zoCStringParserTest, SplitsAtDelimiters)
{
    EXPECT_EQ("<>", Tokens("", 0, ",", 0));
    EXPECT_EQ("<a>< b><><c><>", Tokens("a, b,,c,", 0, ",", 0));
    EXPECT_EQ("<b><c>", Tokens("a,b,c", 2, ",", 0));
    EXPECT_EQ("<a><b><:c><>", Tokens("a::b:::c::", 0, "::", 0));
    EXPECT_EQ("<a:>", Tokens("a:", 0, "::", 0));
    EXPECT_EQ("<a,b>", Tokens("a,b", 0, "", 0));
    EXPECT_EQ("<a\\,b><c>", Tokens("a\\,b,c", 0, ",", '\\'));
    EXPECT_EQ("<a\\><b>", Tokens("a\\,b", 0, ",", 0));
    EXPECT_EQ("<><>", Tokens("\\,", 1, ",", '\\')); // the escape is before what is split
    EXPECT_EQ("<a\\:><:b>", Tokens("a\\::::b", 0, "::", '\\'));
}

TEST(zoCStringParserTest, FindsWholeItemsOfAList)
{
    EXPECT_TRUE(zoCStringParser_ListContains("SHUFFLE,REPEAT_ALL", ",", "SHUFFLE"));
    EXPECT_TRUE(zoCStringParser_ListContains("SHUFFLE,REPEAT_ALL", ",", "REPEAT_ALL"));
    EXPECT_TRUE(zoCStringParser_ListContains("a, b", ",", " b"));
    for (const char* theItem : { "REPEAT", "shuffle", "", "SHUFFLE,REPEAT_ALL", "ALL" })
        EXPECT_FALSE(zoCStringParser_ListContains("SHUFFLE,REPEAT_ALL,", ",", theItem)) << theItem;
    EXPECT_FALSE(zoCStringParser_ListContains(nullptr, ",", "a"));
}
