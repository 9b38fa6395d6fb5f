#include "TestSupport.h"
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>
#include <vector>
#include <zoLog/Log.h>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoMemory.h>

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

void Log(int aLevel, const char* aFile, const std::string& aText)
{
    zoLogRecord_t* theRecord = zoLog_Begin(aLevel, ZOLOG_M_UPNP);
    zoLog_SetLocation(theRecord, aFile, 12);
    zoLog_Append_F(theRecord, "%s", aText.substr(0, aText.size() / 2).c_str());
    zoLog_Append_F(theRecord, "%s", aText.substr(aText.size() / 2).c_str());
    zoLog_End(theRecord);
}

} // namespace

TEST(zoTextTest, SplitsAtDelimiters)
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

TEST(zoTextTest, HeapTextsAreMadeOfTheirOwnParts)
{
    char* theText = nullptr;
    zoStrcatReplace(&theText, nullptr);
    zoStrcatReplace(&theText, "abc");
    zoStrcatReplace(&theText, theText + 1);
    EXPECT_STREQ("abcbc", theText);
    zoStrcatReplace(&theText, theText);
    EXPECT_STREQ("abcbcabcbc", theText);
    zoStrnReplace(&theText, theText + 3, 4);
    EXPECT_STREQ("bcab", theText);
    zoStrnReplace(&theText, nullptr, 1);
    EXPECT_EQ(nullptr, theText);
    const char kUnended[] = { 'a', 'b' };
    EXPECT_EQ("ab", Taken(zoStrndup(kUnended, 2)));
    EXPECT_EQ("ab", Taken(zoStrndup("ab", SIZE_MAX)));
    EXPECT_EQ(std::string(5000, 'x') + "7", Taken(zo_mnprintf("%s%d", std::string(5000, 'x').c_str(), 7)));

    for (size_t theSize = 0; theSize < 8; ++theSize)
    {
        std::vector<char> theBuffer(theSize + 1, '#');
        const std::string theExpected = std::string("1234").substr(0, theSize > 0 ? theSize - 1 : 0);
        EXPECT_EQ(static_cast<int>(theExpected.size()), zo_snprintf(theBuffer.data(), theSize, "%d", 1234));
        if (theSize > 0) { EXPECT_STREQ(theExpected.c_str(), theBuffer.data()); }
        EXPECT_EQ('#', theBuffer[theSize]);
    }
}

TEST(zoTextTest, FailedAssertionsAreReportedAndReturn)
{
    {
        AssertionCatcher theCatcher;
        const uint64 theHighBit = UINT64_C(1) << 40; // does not get lost on its way to an int
        EXPECT_TRUE(zoAssert(theHighBit));
        EXPECT_EQ("", theCatcher.Text());
        EXPECT_FALSE(zoAssert(theCatcher.Text() == "x"));
        EXPECT_NE(std::string::npos, theCatcher.Text().find("zoTextTest.cpp: theCatcher.Text() == \"x\""));
    }
    EXPECT_EQ(nullptr, zoAssert_SetHandler(nullptr));
    EXPECT_EXIT(_zoAssert("a == b", "Libs/x.cpp", 7), testing::KilledBySignal(SIGABRT), "Libs/x.cpp:7: .*a == b");
}

TEST(zoTextTest, LogsBelowTheLevelOnly)
{
    std::string theMessages;
    const zoLogSink_t theSink =
        [](int aLevel, int aModule, const char* aFile, int aLine, const char* aText, void* aTarget) {
        *static_cast<std::string*>(aTarget) +=
            Taken(zo_mnprintf("%d/%d/%s:%d/%s|", aLevel, aModule, aFile, aLine, aText));
    };
    zoLog_SetSink(theSink, &theMessages);
    const std::string theLong(3001, 'x');
    Log(ZOLOGLEVEL_WARNING, "Libs/y.cpp", theLong + '\n');
    Log(ZOLOGLEVEL_INFO, "Libs/y.cpp", "not logged");
    _zoLog_Level = ZOLOGLEVEL_DEBUG;
    Log(ZOLOGLEVEL_INFO, "", "");
    _zoLog_Level = ZOLOGLEVEL_INFO;
    zoLog_SetSink(nullptr, nullptr);
    EXPECT_EQ("2/1/Libs/y.cpp:12/" + theLong + "\n|3/1/:12/|", theMessages);
}

// A read gets what one write brought.
TEST(zoTextTest, LogWritesOneLineAMessage)
{
    int thePipe[2];
    ASSERT_EQ(0, pipe(thePipe));
    const int theStandardError = dup(STDERR_FILENO);
    for (const auto& [theText, theLine] : { std::pair("text", "warning [1] Libs/x.cpp:12: text\n"),
                                            { "ended\n", "warning [1] Libs/x.cpp:12: ended\n" },
                                            { "forged\nerror\n\n", "warning [1] Libs/x.cpp:12: forged error \n" } })
    {
        char theBytes[100] = {};
        dup2(thePipe[1], STDERR_FILENO);
        Log(ZOLOGLEVEL_WARNING, "Libs/x.cpp", theText);
        dup2(theStandardError, STDERR_FILENO);
        EXPECT_EQ(static_cast<ssize_t>(strlen(theLine)), read(thePipe[0], theBytes, sizeof(theBytes) - 1));
        EXPECT_STREQ(theLine, theBytes);
    }
    for (const int theFile : { theStandardError, thePipe[0], thePipe[1] })
        close(theFile);
}
