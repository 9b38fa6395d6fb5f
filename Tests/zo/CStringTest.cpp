#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <zo/CString.h>
#include <zo/CStringTokenizer.h>

TEST(CStringTest, CopiesAreIndependentAndMovesLeaveNothing)
{
    zoCString theText("one");
    zoCString theCopy(theText);
    theText = "another, longer one";
    EXPECT_STREQ("one", theCopy.c_str());
    zoCString theMoved(std::move(theText));
    theCopy = std::move(theMoved);

    zoCString& theSame = theCopy;
    theCopy = theSame;
    theCopy = std::move(theSame);
    EXPECT_STREQ("another, longer one", theCopy.c_str());
    theCopy = theCopy.c_str() + 9; // a part of its own text
    EXPECT_STREQ("longer one", theCopy.c_str());
    theCopy.Format("%s, %s and %d", theCopy.c_str(), std::string(500, 'x').c_str(), 7);
    EXPECT_EQ("longer one, " + std::string(500, 'x') + " and 7", theCopy.c_str());

    for (const size_t theLength : { 0u, 1u, 15u, 16u, 100u }) // in the object, and not
    {
        const std::string theBytes(theLength, 'x');
        zoCString theString(theBytes.c_str());
        theCopy = theString;
        theMoved = zoCString(std::move(theString));
        EXPECT_EQ(theBytes, theCopy.c_str());
        EXPECT_TRUE(theMoved == zoCString(theCopy) && theMoved.length() == theLength);
        EXPECT_STREQ("", theString.c_str()); // NOLINT(bugprone-use-after-move): promised
    }
}

TEST(CStringTest, NothingIsTheEmptyText)
{
    zoCString theText("something");
    theText.FromAllocatedString(strdup(""));
    for (const zoCString& theEmpty : { zoCString(nullptr), zoCString(nullptr, 3), zoCString("", 5), zoCString("\0x", 2),
                                       zoCString("x", 0), zoCString("x").AfterFirst('x'), theText })
    {
        EXPECT_STREQ("", theEmpty.c_str());
        EXPECT_TRUE(theEmpty == zoCString() && theEmpty.IsEmpty());
    }
    theText.FromAllocatedString(strdup("taken"));
    EXPECT_STREQ("taken!", (zoCString() + theText + '!').c_str());
    theText.FromAllocatedString(nullptr);
    EXPECT_STREQ("", theText.c_str());
    EXPECT_STREQ("ab", zoCString("ab\0def", 6).c_str());
    EXPECT_STREQ("b:c", zoCString("a:b:c").AfterFirst(':').c_str());
    EXPECT_STREQ("a", zoCString("a:b:c").BeforeFirst(':').c_str());
    EXPECT_STREQ("abc", zoCString("abc").BeforeFirst(':').c_str());
}

TEST(CStringTest, FindsAndSortsByBytes)
{
    EXPECT_EQ(8, zoCString("http-get:*:*").Find(":", 8));
    EXPECT_EQ(10, zoCString("http-get:*:*").Find(":", 9));
    EXPECT_EQ(1, zoCString("aaab").Find("aab"));
    for (const char* theNeedle : { "", "B", "abcd", "ca" })
        EXPECT_FALSE(zoCString("abc").Contains(theNeedle)) << theNeedle;
    EXPECT_EQ(zoNotFound, zoCString("abc").Find("c", 3));
    EXPECT_EQ(zoNotFound, zoCString("abc").Find("c", 99));
    EXPECT_EQ(zoNotFound, zoCString().Find(""));

    static const char* const kSorted[] = { "", "A", "a", "aa", "ab", "b", "\xC3\xA4" };
    for (size_t i = 0; i < std::size(kSorted); ++i)
    {
        for (size_t k = 0; k < std::size(kSorted); ++k)
        {
            const int theOrder = zoCString(kSorted[i]).Compare(kSorted[k]);
            EXPECT_EQ((i > k) - (i < k), (theOrder > 0) - (theOrder < 0)) << kSorted[i] << " / " << kSorted[k];
            EXPECT_EQ(i != k, zoCString(kSorted[i]) != zoCString(kSorted[k]));
        }
    }
}

TEST(CStringTest, TokenizerSkipsEmptyTokens)
{
    zoCStringTokenizer theTokenizer;
    for (const auto& [theText, theExpected] :
         { std::pair(",,a b,;c;", "<a b><c>"), { "", "" }, { ",;", "" }, { "abc", "<abc>" } })
    {
        theTokenizer.SetString(theText, ",;", kTokenizerMode_Default);
        std::string theTokens;
        while (theTokenizer.HasMoreTokens())
            theTokens += '<' + std::string(theTokenizer.GetNextToken().c_str()) + '>';
        EXPECT_EQ(theExpected, theTokens) << theText;
        EXPECT_TRUE(theTokenizer.GetNextToken().IsEmpty());
    }
}
