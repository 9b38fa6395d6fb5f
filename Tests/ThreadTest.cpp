#include "Support/ParsedObject.h"
#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPCPUtility.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>
#include <thread>
#include <vector>
#include <zoLog/Log.h>

namespace
{

const int kThreads = 8;
const int kRounds = 4;

// Runs the function on several threads at a time, each with a number of its own.
template <typename Function>
void RunOnThreads(Function aFunction)
{
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i)
        theThreads.emplace_back(aFunction, i);
    for (std::thread& theThread : theThreads)
        theThread.join();
}

std::vector<std::string> ReadDocuments()
{
    std::vector<std::string> theDocuments;
    for (const auto& theFile : std::filesystem::directory_iterator(std::string(TEST_DATA) + "/didl"))
    {
        if (theFile.path().extension() == ".xml")
        {
            theDocuments.push_back(ReadTestFile("didl/" + theFile.path().filename().string()));
        }
    }
    return theDocuments;
}

// A text with all that a control point makes of a document.
std::string ControlPointText(const std::string& aDocument, const std::string& aSink)
{
    const ParsedObject theObject(aDocument);
    CDSEntryInfo theEntry(zoPackedData_Duplicate(theObject.mEntry));
    CDSResourceInfo theResources(zoPackedData_Duplicate(theObject.mResources), theEntry.mPackedData);
    uint32 theTargets[] = { 0x01020A0A };
    int theConfidence = -1;
    const int theBest =
        theResources.GetBestResourceIndexFromStr(aSink.c_str(), &theConfidence, "http-get,*", theTargets, 1, false);
    const zoCString theURI = theResources.GetInfoAsCString(static_cast<uint32>(theBest), kCDSResourceInfo_URI);
    const zoCString theThumbnail = theResources.GetThumbnailURI("", nullptr, theTargets, 1);
    const zoCString theUnlocked = UPnPCPUtility::GetURIUnlocked(theURI + "?lock=", "1234");
    return std::to_string(theBest) + "/" + std::to_string(theConfidence) + " " + theUnlocked.c_str() + " " +
           theThumbnail.c_str() + " " + theEntry.GetInfoAsCString(kCDSEntryInfo_Title).c_str() + "\n" +
           theObject.Write(1, theURI.c_str());
}

} // namespace

TEST(ThreadTest, EachThreadReadsItsOwnDocuments)
{
    const std::string theSink = ReadTestFile("sinks/handmade-dlna-tv.txt");
    const std::vector<std::string> theDocuments = ReadDocuments();
    ASSERT_LT(0u, theDocuments.size());
    std::vector<std::string> theExpected;
    for (const std::string& theDocument : theDocuments)
        theExpected.push_back(ControlPointText(theDocument, theSink));
    RunOnThreads(
        [&](int aThread)
        {
        for (size_t i = 0; i < kRounds * theDocuments.size(); ++i)
        {
            const size_t theIndex = (i + static_cast<size_t>(aThread)) % theDocuments.size();
            EXPECT_EQ(theExpected[theIndex], ControlPointText(theDocuments[theIndex], theSink));
        }
    });
}

// What the headers say that several threads may read.
TEST(ThreadTest, AllThreadsReadOneRecord)
{
    const ParsedObject theObject(ReadTestFile("didl/minidlna-001.xml"));
    const std::string theExpected = theObject.Write();
    CDSEntryInfo theEntry(zoPackedData_Duplicate(theObject.mEntry));
    const std::string theTitle = theEntry.GetInfoAsCString(kCDSEntryInfo_Title).c_str();
    ASSERT_NE("", theTitle);
    // The parameter makes the list have an index.
    zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New("http-get:*:image/jpeg:*,a:one:b/c;d=1:*", 0);
    RunOnThreads(
        [&](int)
        {
        for (int i = 0; i < 100 * kRounds; ++i)
        {
            EXPECT_EQ(theExpected, theObject.Write());
            EXPECT_STREQ(theTitle.c_str(), theEntry.GetInfoAsCString(kCDSEntryInfo_Title).c_str());
            for (const std::string_view theText : { "http-get:*:image/jpeg:*", "*:one:b/c;d=1:*" })
            {
                zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(theText.data(), theText.size(), 0);
                EXPECT_EQ(1, zoDLNAProtocolInfoList_Match(theSink, theInfo, kzoDLNAProtocolInfoMatch_Default));
                zoDLNAProtocolInfo_Delete(theInfo);
            }
        }
    });
    zoDLNAProtocolInfoList_Delete(theSink);
}

TEST(ThreadTest, MessagesAndUUIDsDoNotMix)
{
    static std::atomic<int> sCount;
    sCount = 0;
    zoLog_SetSink([](int, int, const char*, int, const char* aText, void*) { sCount += strcmp(aText, "1 two\n") == 0; },
                  nullptr);
    std::vector<std::string> theUUIDs(kThreads * 100);
    RunOnThreads(
        [&](int aThread)
        {
        for (size_t i = 0; i < 100; ++i)
        {
            zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_ERROR, ZOLOG_M_UPNP);
            zoLog_Append_F(theRecord, "%d ", 1);
            zoLog_Append_F(theRecord, "%s\n", "two");
            zoLog_End(theRecord);
            theUUIDs[static_cast<size_t>(aThread) * 100 + i] = Taken(UPnPUtil_BuildUUID());
        }
    });
    zoLog_SetSink(nullptr, nullptr);
    EXPECT_EQ(kThreads * 100, sCount);
    std::sort(theUUIDs.begin(), theUUIDs.end());
    EXPECT_EQ(theUUIDs.end(), std::adjacent_find(theUUIDs.begin(), theUUIDs.end()));
}
