#include "Support/ParsedObject.h"
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/CDSResourceReport.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <set>
#include <zoOS/zoSocket.h>

namespace
{

typedef Owned<zoDLNAProtocolInfoList_t, zoDLNAProtocolInfoList_Delete> SinkList;

// A resource is a protocol info and a URI; either may be "".
typedef std::pair<std::string, std::string> Resource;

zoPackedData_t* NewRecord(const std::vector<Resource>& aResources)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    for (const auto& [theInfo, theURI] : aResources)
    {
        zoPackedData_AddNewEntry(theRecord);
        AddText(theRecord, kCDSResourceInfo_ProtocolInfo, theInfo);
        AddText(theRecord, kCDSResourceInfo_URI, theURI);
    }
    return theRecord;
}

// What a choice is made for.
struct Question
{
    zoDLNAProtocolInfoList_t* mSinkList;
    const char* mOrder;
    uint32 mTarget;
    int mFlags;
};

typedef std::pair<int, int> Choice; // a resource and its confidence

Choice Choose(zoPackedData_t* aRecord, const Question& aQuestion)
{
    int theConfidence = -1;
    const int theIndex = CDSResourceInfo_ChooseResource(aRecord, aQuestion.mSinkList, aQuestion.mFlags,
                                                        aQuestion.mOrder, &aQuestion.mTarget, 1, &theConfidence);
    return { theIndex, theConfidence };
}

std::vector<CDSResourceReport_t> Reports(zoPackedData_t* aRecord, const Question& aQuestion)
{
    uint32 theCount = 99;
    CDSResourceReport_t* theReports = CDSResourceInfo_NewReport(aRecord, aQuestion.mSinkList, aQuestion.mFlags,
                                                                aQuestion.mOrder, &aQuestion.mTarget, 1, &theCount);
    EXPECT_EQ(zoPackedData_GetEntryCount(aRecord), theCount);
    std::vector<CDSResourceReport_t> theCopy(theReports, theReports + theCount);
    free(theReports);
    return theCopy;
}

zoPackedData_t* NewSelection(zoPackedData_t* aRecord, const std::set<uint32>& aResources)
{
    zoPackedData_t* theSelection = zoPackedData_New(0);
    for (const uint32 theResource : aResources)
        zoPackedData_CopyEntry(aRecord, theResource, theSelection);
    return theSelection;
}

// The choice that the reports tell is the one that is made; a resource on its own gets the confidence of its report,
// and loses against the chosen one alone, too.
void CheckReports(zoPackedData_t* aRecord, const Question& aQuestion)
{
    Choice theReported = { -1, kRendererPlayConfidence_WillNot };
    const std::vector<CDSResourceReport_t> theReports = Reports(aRecord, aQuestion);
    for (size_t i = 0; i < theReports.size(); ++i)
    {
        if (theReports[i].mReason != kCDSResourceReason_Chosen) { continue; }
        EXPECT_EQ(-1, theReported.first);
        theReported = { static_cast<int>(i), theReports[i].mConfidence };
    }
    EXPECT_EQ(theReported, Choose(aRecord, aQuestion));
    if (aQuestion.mFlags == kCDSResourceChoice_Default)
    {
        int theConfidence = -1;
        uint32 theTarget = aQuestion.mTarget;
        const int theBest = CDSResourceInfo::GetBestResourceIndex(aQuestion.mSinkList, aRecord, &theConfidence,
                                                                  aQuestion.mOrder, &theTarget, 1);
        EXPECT_EQ(theReported, Choice(theBest, theConfidence));
    }
    for (uint32 i = 0; i < theReports.size() && theReports.size() < 10; ++i)
    {
        const PackedData theOne = NewSelection(aRecord, { i });
        const bool fIsLeftOut = theReports[i].mReason == kCDSResourceReason_ConvertedLeftOut;
        if (!fIsLeftOut) { EXPECT_EQ(theReports[i].mConfidence, Choose(theOne, aQuestion).second); }
        const uint32 theChosen = static_cast<uint32>(theReported.first);
        if (theReported.first < 0 || i == theChosen) { continue; }
        const PackedData theTwo = NewSelection(aRecord, { i, theChosen });
        EXPECT_EQ(theChosen < i ? 0 : 1, Choose(theTwo, aQuestion).first);
    }
}

const char* const kOrders[] = { "*", "", "http", "rtsp,http-get", "internal,*", "rtsp" };

void CheckAllQuestions(zoPackedData_t* aRecord, zoDLNAProtocolInfoList_t* aSinkList)
{
    const uint32 theTarget = zoSocketGetAddressFromDotForm("192.168.1.50");
    for (const char* theOrder : kOrders)
        for (int theFlags = 0; theFlags < 4; ++theFlags)
            CheckReports(aRecord, { aSinkList, theOrder, theTarget, theFlags });
}

} // namespace

TEST(CDSResourceReportTest, TellsWhyAResourceLost)
{
    const std::string kMP3 = "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3";
    const std::string kConverted = kMP3 + ";DLNA.ORG_CI=1";
    const std::string kMPEG = "http-get:*:audio/mpeg:*";
    const std::string kRTSP = "rtsp-rtp-udp:*:audio/mpeg:*";
    const std::string kFLAC = "http-get:*:audio/flac:*";
    const std::string kThumbnail = "http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_TN";
    const std::string kNamed = "http://h/";
    const std::string kNear = "http://192.168.1.7/", kFar = "http://10.0.0.1/";
    const int kOriginals = kCDSResourceChoice_PreferOriginals, kThumbnails = kCDSResourceChoice_WithThumbnails;
    const struct
    {
        const char* mSink; // NULL: not known
        const char* mOrder;
        int mFlags;
        std::vector<Resource> mResources;
        const char* mReports; // stage, locality and reason of each
    } kCases[] = {
        { "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3",
          "*",
          0,
          { { kMPEG, kNear }, { kMP3, kNamed } },
          "2 3 matches at a later stage|1 -1 chosen|" },
        { "http-get:*:audio/mpeg:DLNA.ORG_PN=X,http-get:*:image/*:*",
          "*",
          kThumbnails,
          { { kMP3, kNear }, { kThumbnail, kFar }, { kFLAC, kNear } },
          "4 3 matches at a later stage|3 0 chosen|5 3 matches at a later stage|" },
        { "*:*:audio/mpeg:DLNA.ORG_PN=MP3",
          "http",
          0,
          { { "", "" }, { kThumbnail, kNear }, { kRTSP, kNear }, { kMP3, kFar }, { "", kNear }, { kMP3, kNamed } },
          "0 -1 neither protocol info nor URI|0 3 thumbnail|0 3 transport protocol not in the scheme order|1 0 chosen|"
          "1 3 no DLNA profile|1 -1 host is a name|" },
        { "http-get:*:audio/mpeg:*",
          "*",
          0,
          { { kRTSP, kNear }, { kConverted, kNear }, { kMPEG, kFar }, { kMPEG, kNear }, { kMPEG, kNear } },
          "0 3 transport protocol not supported|2 3 converted|2 0 host is farther|2 3 chosen|"
          "2 3 later in the document|" },
        { "*:*:audio/mpeg:*",
          "rtsp,http",
          0,
          { { kMPEG, kNear }, { kConverted, kNear }, { kRTSP, kNear } },
          "2 3 worse in the scheme order|2 3 worse in the scheme order|2 3 chosen|" },
        { "", "*", 0, { { kConverted, kNear }, { kMP3, kNear } }, "5 3 chosen|5 3 later in the document|" },
        { nullptr, nullptr, 0, { { kConverted, kNear }, { kMP3, kNear } }, "1 3 chosen|1 3 later in the document|" },
        { "http-get:*:audio/flac:*,http-get:*:audio/mpeg:DLNA.ORG_PN=MP3",
          "*",
          0,
          { { kFLAC, kNear }, { kConverted, kNear } },
          "2 3 matches at a later stage|1 3 chosen|" },
        { "http-get:*:audio/flac:*,http-get:*:audio/mpeg:DLNA.ORG_PN=MP3",
          "*",
          kOriginals,
          { { kFLAC, kNear }, { kConverted, kNear } },
          "2 3 chosen|0 3 converted, originals are preferred|" },
        { "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3",
          "*",
          kOriginals,
          { { kFLAC, kNear }, { kConverted, kNear } },
          "5 3 matches at a later stage|1 3 chosen|" }, // the original can't be played
        { "",
          "*",
          kOriginals,
          { { kConverted, kNear }, { kMP3, kNear } },
          "0 3 converted, originals are preferred|5 3 chosen|" },
    };
    for (const auto& theCase : kCases)
    {
        const PackedData theRecord = NewRecord(theCase.mResources);
        const SinkList theSinkList = theCase.mSink ? zoDLNAProtocolInfoList_New(theCase.mSink, 0) : nullptr;
        std::string theText;
        for (const CDSResourceReport_t& theReport :
             Reports(theRecord,
                     { theSinkList, theCase.mOrder, zoSocketGetAddressFromDotForm("192.168.1.50"), theCase.mFlags }))
        {
            theText += std::to_string(theReport.mStage) + ' ' + std::to_string(theReport.mLocality) + ' ' +
                       CDSResourceInfo_GetReasonText(theReport.mReason) + '|';
        }
        EXPECT_EQ(theCase.mReports, theText);
    }
    EXPECT_STREQ("DLNA profile", CDSResourceInfo_GetStageText(kCDSResourceStage_Profile));
    for (const int theOutside : { -1, static_cast<int>(kCDSResourceReason_Count) })
        EXPECT_STREQ("", CDSResourceInfo_GetReasonText(theOutside));
    EXPECT_EQ(nullptr, CDSResourceInfo_NewReport(nullptr, nullptr, 0, nullptr, nullptr, 1, nullptr));
    EXPECT_EQ(-1, CDSResourceInfo_ChooseResource(nullptr, nullptr, 0, nullptr, nullptr, 1, nullptr));
}

TEST(CDSResourceReportTest, ReportsTheChoiceForRealDocuments)
{
    std::vector<std::string> theSinks = { "" };
    for (const auto& theFile : std::filesystem::directory_iterator(TEST_DATA "/sinks"))
        theSinks.push_back(ReadFile(theFile.path()));
    for (const auto& theFile : std::filesystem::directory_iterator(TEST_DATA "/didl"))
    {
        SCOPED_TRACE(theFile.path());
        if (theFile.path().extension() != ".xml") { continue; }
        const ParsedObject theObject(ReadFile(theFile.path()));
        CheckAllQuestions(theObject.mResources, nullptr);
        for (const std::string& theSink : theSinks)
            CheckAllQuestions(theObject.mResources, SinkList(zoDLNAProtocolInfoList_New(theSink.c_str(), 0)));
    }
}

TEST(CDSResourceReportTest, ReportsTheChoiceForRandomRecords)
{
    std::mt19937 theRandom(1);
    const auto fTake = [&theRandom](const std::vector<std::string>& aTexts)
    { return aTexts[theRandom() % aTexts.size()]; };
    const auto fTakeInfo = [&]
    {
        return fTake({ "http-get", "rtsp-rtp-udp", "internal", "*" }) +
               ":*:" + fTake({ "audio/mpeg", "audio/L16;rate=44100", "audio/*", "*", "image/jpeg" }) + ':' +
               fTake({ "*", "DLNA.ORG_PN=MP3", "DLNA.ORG_PN=LPCM", "DLNA.ORG_PN=JPEG_TN" }) +
               fTake({ "", "", ";DLNA.ORG_CI=1" });
    };
    for (int i = 0; i < 300; ++i)
    {
        SCOPED_TRACE(i);
        std::string theSink;
        for (uint32 theCount = theRandom() % 4; theCount > 0; --theCount)
            theSink += fTakeInfo() + ',';
        std::vector<Resource> theResources(theRandom() % 6);
        for (Resource& theResource : theResources)
            theResource = { theRandom() % 8 == 0 ? "" : fTakeInfo(),
                            fTake({ "", "http://h/x.mp3", "http://192.168.1.7/", "http://10.0.0.1/", "rtsp://h/" }) };
        CheckAllQuestions(PackedData(NewRecord(theResources)),
                          SinkList(zoDLNAProtocolInfoList_New(theSink.c_str(), 0)));
    }
}
