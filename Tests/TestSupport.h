#pragma once

#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <zoLog/Log.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoPackedData.h>

/* What several tests need. */

// A file of Tests/Data, "" when there is none.
inline std::string ReadTestFile(const std::string& aName)
{
    std::ifstream theFile(std::string(TEST_DATA) + "/" + aName, std::ios::binary);
    return { std::istreambuf_iterator<char>(theFile), {} };
}

// A heap text taken over from the library.
inline std::string Taken(char* aText)
{
    std::string theText(aText ? aText : "(null)");
    free(aText);
    return theText;
}

// A document parsed from a heap copy of exactly its size, so that address sanitizer sees one byte too far.
struct ParsedObject
{
    explicit ParsedObject(std::string_view aText) : mText(strndup(aText.data(), aText.size()))
    {
        mResult = UPnPDIDL_ParseElements(mText, &mData, &mRes, &mType);
        mEntry = zoPackedData_NewData(mData);
        mResources = zoPackedData_NewData(mRes);
    }
    ~ParsedObject()
    {
        zoPackedData_Free(mEntry);
        zoPackedData_Free(mResources);
        free(mText);
    }
    ParsedObject(const ParsedObject&) = delete;
    ParsedObject& operator=(const ParsedObject&) = delete;

    std::string Write(int afResExtraInfo = 1, const char* aSelectedURI = nullptr) const
    {
        return Taken(UPnPDIDL_Get(mEntry, mResources, 1, afResExtraInfo, aSelectedURI));
    }

    char* mText;
    char* mData = nullptr; // belongs to mEntry
    char* mRes = nullptr;  // belongs to mResources
    int mType = -1;
    int mResult = 0;
    zoPackedData_t* mEntry;
    zoPackedData_t* mResources;
};

inline void AddText(zoPackedData_t* aRecord, uint16 aTag, const std::string& aText)
{
    zoPackedData_AddData(aRecord, aTag, aText.c_str(), aText.size() + 1);
}

template <typename Number>
void AddNumber(zoPackedData_t* aRecord, uint16 aTag, Number aNumber)
{
    zoPackedData_AddData(aRecord, aTag, &aNumber, sizeof(aNumber));
}

// A text of a record; "(none)" when the tag is absent or has no bytes.
inline std::string TextOf(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    const char* theText = zoPackedData_GetData(aRecord, anEntry, aTag, nullptr);
    return theText ? theText : "(none)";
}

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
    AssertionCatcher(const AssertionCatcher&) = delete;
    AssertionCatcher& operator=(const AssertionCatcher&) = delete;
    static std::string& Text()
    {
        static std::string sText;
        return sText;
    }

private:
    zoAssertHandler_t mBefore;
};

// Catches log messages below a level while it lives, each as "level/module file: text".
class LogCatcher
{
public:
    explicit LogCatcher(int aLevel = ZOLOGLEVEL_DEBUG) : mLevel(_zoLog_Level)
    {
        _zoLog_Level = aLevel;
        zoLog_SetSink([](int aMessageLevel, int aModule, const char* aFile, int, const char* aText, void* aCatcher)
                      { static_cast<LogCatcher*>(aCatcher)->Add(aMessageLevel, aModule, aFile, aText); },
                      this);
    }
    ~LogCatcher()
    {
        zoLog_SetSink(nullptr, nullptr);
        _zoLog_Level = mLevel;
    }
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    std::string mText;

private:
    void Add(int aLevel, int aModule, const char* aFile, const char* aText)
    {
        mText += std::to_string(aLevel) + "/" + std::to_string(aModule) + " " + aFile + ": " + aText;
    }

    int mLevel;
};
