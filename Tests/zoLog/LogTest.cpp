#include "Support/Texts.h"
#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>
#include <utility>
#include <zoLog/Log.h>
#include <zoltTools/zoMemory.h>

namespace
{

void Log(int aLevel, const char* aFile, const std::string& aText)
{
    zoLogRecord_t* theRecord = zoLog_Begin(aLevel, ZOLOG_M_UPNP);
    zoLog_SetLocation(theRecord, aFile, 12);
    zoLog_Append_F(theRecord, "%s", aText.substr(0, aText.size() / 2).c_str());
    zoLog_Append_F(theRecord, "%s", aText.substr(aText.size() / 2).c_str());
    zoLog_End(theRecord);
}

} // namespace

TEST(LogTest, LogsBelowTheLevelOnly)
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
TEST(LogTest, WritesOneLineAMessage)
{
    int thePipe[2];
    ASSERT_EQ(0, pipe(thePipe));
    const int theStandardError = dup(STDERR_FILENO);
    for (const auto& [theText, theLine] :
         { std::pair("text", "warning [1] Libs/x.cpp:12: text\n"),
           { "ended\n", "warning [1] Libs/x.cpp:12: ended\n" },
           { "forged\nerror\x7F\n\n", "warning [1] Libs/x.cpp:12: forged error  \n" } })
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
