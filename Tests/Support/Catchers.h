#pragma once

#include <string>
#include <zoLog/Log.h>
#include <zoltTools/zoAssert.h>

/* What the library reports while a test runs. */

// Catches failed assertions while it lives; the last one's condition and file are in mText.
class AssertionCatcher
{
public:
    AssertionCatcher()
    {
        Text().clear();
        mBefore = zoAssert_SetHandler([](const char* aCondition, const char* aFile, int)
                                      { Text() = std::string(aFile) + ": " + aCondition; });
    }
    ~AssertionCatcher() { zoAssert_SetHandler(mBefore); }
    AssertionCatcher& operator=(AssertionCatcher&&) = delete;
    static std::string& Text()
    {
        static std::string sText;
        return sText;
    }

private:
    zoAssertHandler_t mBefore;
};

// A source file and ": ", as LogCatcher writes it: without the file where the platform's log does not take it.
inline std::string LoggedFrom(const char* aFile)
{
#ifdef UPNP_LACKS_zoLog_SetLocation
    aFile = "";
#endif
    return std::string(aFile) + ": ";
}

// Catches log messages below a level while it lives, each as "level/module file: text".
class LogCatcher
{
public:
    explicit LogCatcher(int aLevel = ZOLOGLEVEL_DEBUG) : mLevel(_zoLog_Level)
    {
        _zoLog_Level = aLevel;
        zoLog_SetSink(Add, this);
    }
    ~LogCatcher()
    {
        zoLog_SetSink(nullptr, nullptr);
        _zoLog_Level = mLevel;
    }
    LogCatcher& operator=(LogCatcher&&) = delete;

    std::string mText;

private:
    static void Add(int aLevel, int aModule, const char* aFile, int, const char* aText, void* aCatcher)
    {
        static_cast<LogCatcher*>(aCatcher)->mText +=
            std::to_string(aLevel) + "/" + std::to_string(aModule) + " " + aFile + ": " + aText;
    }

    int mLevel;
};
