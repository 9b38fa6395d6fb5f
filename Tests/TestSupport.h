#pragma once

#include <UPnP/Stack/ILibChain.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <zoLog/Log.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoConfigFile.h>
#include <zoltTools/zoPackedData.h>

/* What several tests need. */

// "" when there is none.
inline std::string ReadFile(const std::string& aPath)
{
    std::ifstream theFile(aPath, std::ios::binary);
    return { std::istreambuf_iterator<char>(theFile), {} };
}

// A file of Tests/Data.
inline std::string ReadTestFile(const std::string& aName) { return ReadFile(std::string(TEST_DATA) + "/" + aName); }

inline std::string Repeated(const std::string& aText, size_t aCount)
{
    std::string theText;
    for (size_t i = 0; i < aCount; ++i)
        theText += aText;
    return theText;
}

// A heap text taken over from the library.
inline std::string Taken(char* aText)
{
    std::string theText(aText ? aText : "(null)");
    free(aText);
    return theText;
}

// A record of the library's, released at the end.
template <typename Type, void (*Delete)(Type*)>
struct Owned
{
    Owned(Type* aRecord) : mRecord(aRecord) {}
    Owned(Owned&& anOther) : mRecord(std::exchange(anOther.mRecord, nullptr)) {}
    ~Owned() { Delete(mRecord); }
    operator Type*() const { return mRecord; }
    Type* operator->() const { return mRecord; }

    Type* mRecord;
};
typedef Owned<zoConfigFile, zoConfigFile_Delete> ConfigFile;
typedef Owned<zoPackedData_t, zoPackedData_Free> PackedData;

inline ConfigFile NewConfig(const std::string& aText) { return zoConfigFile_NewFromText(aText.data(), aText.size()); }

// A record with one entry that is empty.
inline zoPackedData_t* NewEntry()
{
    zoPackedData_t* theRecord = zoPackedData_New(1);
    zoPackedData_AddNewEntry(theRecord);
    return theRecord;
}

inline zoArray_t* NewStringArray(const std::vector<std::string>& aTexts)
{
    zoArray_t* theArray = zoArray_New();
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    for (const std::string& theText : aTexts)
        zoArray_Append(theArray, strdup(theText.c_str()));
    return theArray;
}

// A document parsed from a heap copy of exactly its size, so that address sanitizer sees one byte too far.
struct ParsedObject
{
    explicit ParsedObject(std::string_view aText) : mText(strndup(aText.data(), aText.size())) {}
    ~ParsedObject() { free(mText); }

    std::string Write(int afResExtraInfo = 1, const char* aSelectedURI = nullptr) const
    {
        return Taken(UPnPDIDL_Get(mEntry, mResources, 1, afResExtraInfo, aSelectedURI));
    }

    char* mText;
    char* mData = nullptr; // belongs to mEntry
    char* mRes = nullptr;  // belongs to mResources
    int mType = -1;
    int mResult = UPnPDIDL_ParseElements(mText, &mData, &mRes, &mType);
    PackedData mEntry = zoPackedData_NewData(mData);
    PackedData mResources = zoPackedData_NewData(mRes);
};

// A chain with a clock that stands still.
struct TestChain
{
    TestChain()
    {
        ILibLifeTime_SetClock(
            mLifeTime, [](void* aClock) { return *static_cast<uint64*>(aClock); }, &mClock);
    }
    ~TestChain() { ILibChain_Delete(mChain); }
    TestChain& operator=(TestChain&&) = delete; // nor a copy

    void Add(void* aData, int aMilliseconds, ILibLifeTime_Callback_t aCallback,
             ILibLifeTime_Callback_t aDestroyCallback = nullptr)
    {
        ILibLifeTime_AddEx(mLifeTime, aData, aMilliseconds, aCallback, aDestroyCallback);
    }
    void Pass(uint64 aMilliseconds)
    {
        mClock += aMilliseconds;
        ILibChain_RunOnce(mChain, 0);
    }

    uint64 mClock = 1000000;
    ILibBaseChain* mChain = ILibChain_New();
    ILibLifeTime* mLifeTime = ILibChain_GetLifeTime(mChain);
};

inline void AddText(zoPackedData_t* aRecord, uint16 aTag, const std::string& aText)
{
    zoPackedData_AddData(aRecord, aTag, aText.c_str(), aText.size() + 1);
}

inline void AddTexts(zoPackedData_t* aRecord, const std::vector<std::pair<uint16, const char*>>& aTexts)
{
    for (const auto& [theTag, theText] : aTexts)
        AddText(aRecord, theTag, theText);
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
    AssertionCatcher& operator=(AssertionCatcher&&) = delete;
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
