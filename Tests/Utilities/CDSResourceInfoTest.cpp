#include "Support/Catchers.h"
#include "Support/ProcessorTime.h"
#include "Support/Records.h"
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <sstream>
#include <vector>
#include <zoOS/zoSocket.h>

namespace
{

// Protocol infos by the names that the cases give them.
const char* const kProtocolInfos[][2] = {
    { "-", "" },
    { "MP3", "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3" },
    { "MPEG", "http-get:*:audio/mpeg:*" },
    { "LOW", "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3;DLNA.ORG_CI=1" },
    { "RTSP", "rtsp-rtp-udp:*:audio/mpeg:*" },
    { "JPEG_TN", "http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_TN" },
    { "PNG_TN", "http-get:*:image/png:DLNA.ORG_PN=PNG_TN" },
};

std::string ProtocolInfoOf(const std::string& aName)
{
    for (const auto& [theName, theText] : kProtocolInfos)
        if (aName == theName) { return theText; }
    return aName;
}

std::vector<std::string> Words(const std::string& aText)
{
    std::istringstream theStream(aText);
    return { std::istream_iterator<std::string>(theStream), {} };
}

// Appends a resource given as "MP3@host", for http://host/x; extra tags come first, as the parser stores them, each
// with its number as text.
void AddResource(zoPackedData_t* aRecord, const std::string& aResource, const std::vector<uint16>& anExtraTags = {})
{
    const size_t theAt = aResource.find('@');
    zoPackedData_AddNewEntry(aRecord);
    for (const uint16 theTag : anExtraTags)
        AddText(aRecord, theTag, std::to_string(theTag));
    AddText(aRecord, kCDSResourceInfo_URI, "http://" + aResource.substr(theAt + 1) + "/x");
    AddText(aRecord, kCDSResourceInfo_ProtocolInfo, ProtocolInfoOf(aResource.substr(0, theAt)));
}

typedef std::unique_ptr<CDSResourceInfo> Info;

// The accessor over "MP3@host MPEG@host" with album art "URI=profile URI=profile".
Info NewInfo(const std::string& aResources, const std::string& anAlbumArt = "")
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    for (const std::string& theResource : Words(aResources))
        AddResource(theRecord, theResource);

    std::vector<std::string> theArt; // each URI and each profile
    for (const std::string& theWord : Words(anAlbumArt))
    {
        const size_t theEnd = theWord.find('=');
        theArt.insert(theArt.end(), { theWord.substr(0, theEnd), theWord.substr(theEnd + 1) });
    }
    const PackedData theEntry = NewEntry();
    AddTextArray(theEntry, kCDSEntryInfo_AlbumArtURI, theArt);
    return Info(new CDSResourceInfo(theRecord, theEntry));
}

std::vector<uint32> Addresses(const char* aText)
{
    std::vector<uint32> theAddresses;
    for (const std::string& theWord : Words(aText))
        theAddresses.push_back(zoSocketGetAddressFromDotForm(theWord.c_str()));
    return theAddresses;
}

} // namespace

TEST(CDSResourceInfoTest, ReadsFields)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    for (const char* theResource : { "http-get:*:audio/mpeg:DLNA.ORG_PN=MP3;A=b:c@h", "http-get:*:*:*@h", "a:b:c@i" })
        AddResource(theRecord, theResource);
    zoPackedData_AddNewEntry(theRecord);
    AddNumber<uint64>(theRecord, kCDSResourceInfo_Size, 0x1122334455667788u);
    char* theBlock = zoPackedData_TakeData(theRecord);
    zoPackedData_Free(theRecord);
    CDSResourceInfo theInfo(theBlock, nullptr);
    ASSERT_EQ(4u, theInfo.GetResourceCount());
    EXPECT_EQ(0x1122334455667788u, theInfo.GetInfoAsUInt64(3, kCDSResourceInfo_Size));
    EXPECT_EQ(0x55667788u, theInfo.GetInfoAsULong(3, kCDSResourceInfo_Size));
    EXPECT_EQ(8u, theInfo.GetInfoAsCString(3, kCDSResourceInfo_Size).length()); // it has no NUL
    static const char* const kTypes[] = { "audio/mpeg|DLNA.ORG_PN=MP3;A=b:c", "|*", "c|", "|", "|" };
    for (uint32 i = 0; i < std::size(kTypes); ++i)
    {
        const std::string theType = theInfo.GetMimeTypeForResourceIndex(i).c_str();
        EXPECT_EQ(kTypes[i], theType + '|' + theInfo.GetProtocolInfoForResourceIndex(i).c_str()) << i;
    }
    EXPECT_EQ(0, theInfo.GetResourceIndexOfURI("http://h/x"));
    EXPECT_EQ(2, theInfo.GetResourceIndexOfURI("http://i/x"));
    for (const char* theURI : { "http://h/xy", "http://h/", "" })
        EXPECT_EQ(-1, theInfo.GetResourceIndexOfURI(theURI)) << theURI;
}

TEST(CDSResourceInfoTest, ReportsAMissingRecord)
{
    const AssertionCatcher theCatcher;
    CDSResourceInfo theBlockless(static_cast<char*>(nullptr), nullptr);
    EXPECT_EQ("Libs/Internal/UPnP/Utilities/CDSResourceInfo.cpp: aResourceInfoData != NULL", theCatcher.Text());
    theCatcher.Text().clear();
    CDSResourceInfo theRecordless(static_cast<zoPackedData_t*>(nullptr), nullptr);
    EXPECT_NE("", theCatcher.Text());
    CDSResourceInfo theEmpty;
    for (CDSResourceInfo* theInfo : { &theBlockless, &theRecordless, &theEmpty })
    {
        int theConfidence = 99;
        zoCString theProfile("x");
        EXPECT_EQ(0u, theInfo->GetResourceCount());
        EXPECT_EQ(-1, theInfo->GetBestResourceIndex(nullptr, &theConfidence, "", nullptr, 1));
        EXPECT_EQ(kRendererPlayConfidence_WillNot, theConfidence);
        EXPECT_TRUE(theInfo->GetThumbnailURI("", &theProfile, nullptr, 0).IsEmpty());
        EXPECT_TRUE(theProfile.IsEmpty());
        theInfo->ReduceSize(0, "", true);
        delete theInfo->Clone();
    }
}

TEST(CDSResourceInfoTest, ReadsExtraInfoByPairs)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    AddResource(theRecord, "MP3@h", { 15, 16, 17, 18 });
    AddResource(theRecord, "MP3@h", { 15, 16, 17 }); // a name without a value
    AddResource(theRecord, "MP3@h");
    AddResource(theRecord, "MP3@h", { 17, 18, 15, 16 }); // counted in the order of storing
    AddResource(theRecord, "MP3@h", { 65535, 15, 16 });  // 65536 is not the URI's tag
    AddResource(theRecord, "MP3@h", { 15, 20, 3, 18, 19, 16, 21 });
    AddResource(theRecord, "MP3@h", { 15, 3, 17, 4, 19 }); // more names than pairs
    const std::vector<uint16> theTags = { 15, 16, 17, 18 };
    for (auto theMiddle = theTags.begin(); theMiddle < theTags.begin() + 3; ++theMiddle) // some are added to the fields
    {
        AddResource(theRecord, "MP3@h", { theTags.begin(), theMiddle });
        for (auto theTag = theMiddle; theTag < theTags.end(); ++theTag)
            AddText(theRecord, *theTag, std::to_string(*theTag));
    }
    const Info theInfo(new CDSResourceInfo(theRecord, nullptr));
    static const char* const kPairs[] = { "=,15=16,17=18,=,=,", "=,15=16,=,=,=,",     "=,=,=,=,=,",
                                          "=,17=18,15=16,=,=,", "=,65535=,=,=,=,",    "=,15=16,18=19,16=,=,",
                                          "=,15=,=,=,=,",       "=,15=16,17=18,=,=,", "=,15=16,16=17,=,=,",
                                          "=,15=16,17=18,=,=,", "=,=,=,=,=," };
    for (uint32 i = 0; i < std::size(kPairs); ++i)
    {
        std::string thePairs;
        for (const int theIndex : { -1, 0, 1, 2, 65536 })
        {
            zoCString theName("x"), theData("y");
            theInfo->GetExtraInfo(i, theIndex, theName, theData);
            thePairs += std::string(theName.c_str()) + '=' + theData.c_str() + ',';
        }
        EXPECT_EQ(kPairs[i], thePairs) << i;
    }
    EXPECT_EQ(1, theInfo->GetExtraInfoCount(1));
    EXPECT_STREQ("17=18", (theInfo->GetExtraInfoName(0, 1) + '=' + theInfo->GetExtraInfoData(0, 1)).c_str());
    EXPECT_STREQ("18", theInfo->GetExtraInfoDataByName(0, "17").c_str());
    EXPECT_STREQ("", theInfo->GetExtraInfoDataByName(1, "17").c_str());
    for (const char* theName : { "1", "18", "170", "", static_cast<const char*>(nullptr) })
        EXPECT_STREQ("", theInfo->GetExtraInfoDataByName(0, theName).c_str());
}

TEST(CDSResourceInfoTest, FindsSubtitles)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    for (const char* theResource :
         { "http-get:*:video/mp4:zolt.com_sub=1@h", "a:b:c:ZOLT.COM_SUB=1@h", "MP3@ZOLT.COM_SUB" })
        AddResource(theRecord, theResource);
    zoPackedData_AddNewEntry(theRecord);
    uint16 theTag = kCDSResourceInfo_Count;
    for (const char* theText : { "subtitleLabel", "English", "subtitleType", "srt" })
        AddText(theRecord, theTag++, theText);
    AddText(theRecord, kCDSResourceInfo_URI, "c");
    AddText(theRecord, kCDSResourceInfo_ProtocolInfo, "http-get:*:text/srt:X=Y;ZOLT.COM_SUB");
    CDSResourceInfo theInfo(theRecord, nullptr);
    EXPECT_EQ(2, theInfo.GetSubtitleCount());
    static const int kIndices[][2] = { { -1, -1 }, { 0, 1 }, { 1, 3 }, { 2, -1 } };
    for (const auto& [theSubtitle, theResource] : kIndices)
        EXPECT_EQ(theResource, theInfo.GetResourceIndexForSubtitle(theSubtitle)) << theSubtitle;
    EXPECT_FALSE(theInfo.IsSubtitle(-1));
    EXPECT_STREQ("English", theInfo.GetSubtitleLabel(3).c_str());
    EXPECT_STREQ("srt", theInfo.GetSubtitleType(3).c_str());
    EXPECT_STREQ("c", theInfo.GetSubtitleURI(3).c_str());
    EXPECT_STREQ("", theInfo.GetSubtitleLabel(1).c_str());
}

TEST(CDSResourceInfoTest, ReducesSize)
{
    const char* const kResources = "MP3@0 JPEG_TN@1 MP3@k MP3@3 PNG_TN@4 MP3@k";
    const size_t theAll = NewInfo(kResources)->GetMemoryUsage();
    const size_t theKept = NewInfo("MP3@k MP3@k")->GetMemoryUsage();
    const std::tuple<size_t, const char*, bool, const char*> kCases[] = {
        { theAll, "", false, "01k34k" },     // not above the target: untouched
        { theAll - 1, "", false, "01k34k" }, // the last one may pass it
        { theAll - 1, "", true, "140k3k" },     { 0, "", false, "" },
        { 0, "http://k/x", true, "1k4k" }, // whatever the target
        { theKept, "http://k/x", false, "kk" }, { theKept + 1, "http://k/x", false, "kk0" },
        { 1, "http://k/", false, "0" },
    };
    for (const auto& [theTarget, theURIToKeep, fThumbnails, theExpected] : kCases)
    {
        const Info theInfo = NewInfo(kResources, "art=X");
        const Info theClone(theInfo->Clone());
        theInfo->ReduceSize(theTarget, theURIToKeep, fThumbnails);
        std::string theLeft;
        for (uint32 i = 0; i < theInfo->GetResourceCount(); ++i)
            theLeft += theInfo->GetInfoAsCString(i, kCDSResourceInfo_URI).c_str()[strlen("http://")];
        EXPECT_EQ(theExpected, theLeft) << theTarget << theURIToKeep;
        EXPECT_EQ(theAll, theClone->GetMemoryUsage());
        EXPECT_STREQ("art", theInfo->GetAlbumArtURI("", nullptr, nullptr, 0).c_str());
        EXPECT_STREQ("art", theClone->GetAlbumArtURI("", nullptr, nullptr, 0).c_str());
    }
}

TEST(CDSResourceInfoTest, ChoosesAResource)
{
    enum
    {
        kShould = kRendererPlayConfidence_Should,
        kMay = kRendererPlayConfidence_May,
        kShouldNot = kRendererPlayConfidence_ShouldNot
    };
    static const struct
    {
        const char* mWhat;
        const char* mResources;
        const char* mSink; // NULL: not known
        const char* mOrder;
        const char* mTargets;
        int mBest;
        int mConfidence;
    } kCases[] = {
        { "the profile before the MIME type", "MPEG@h MP3@h", "MP3", "", "", 1, kShould },
        { "whatever its MIME type", "http-get:*:x/y:DLNA.ORG_PN=MP3@h", "MP3", "", "", 0, kShould },
        { "the MIME type, the profile not said", "MPEG@h", "MP3", "", "", 0, kMay },
        { "a wild card", "MPEG@h", "http-get:*:audio/*:*", "", "", 0, kMay },
        { "another profile", "http-get:*:x/y:*@h MP3@h", "http-get:*:audio/mpeg:DLNA.ORG_PN=X", "", "", 1, kShouldNot },
        { "nothing that matches", "JPEG_TN@h MPEG@h", "http-get:*:x/y:*", "", "", 1, kShouldNot },
        { "a sink without anything", "MPEG@h", "", "", "", 0, kShouldNot },
        { "a sink that isn't known", "MPEG@h", nullptr, "", "", 0, kShould },
        { "thumbnails only", "JPEG_TN@h", "JPEG_TN", "", "", -1, 0 },
        { "the URI without a protocol info", "-@h", "MP3", "http", "", 0, kShould },
        { "which counts less than a profile", "-@1.2.3.4 MP3@h", "MP3", "", "", 1, kShould },
        { "an address before a name", "MP3@h MP3@1.2.3.4", "MP3", "", "", 1, kShould },
        { "the nearer one", "MP3@10.0.0.5 MP3@192.168.1.20", "MP3", "", "192.168.1.50", 1, kShould },
        { "wherever it stands", "MP3@192.168.1.20 MP3@10.0.0.5", "MP3", "", "192.168.1.50", 0, kShould },
        { "by octets", "MP3@10.9.9.9 MP3@10.0.9.9 MP3@10.0.9.8", "MP3", "", "172.16.0.1 10.0.0.1", 1, kShould },
        { "no sum", "MP3@10.0.0.5 MP3@172.16.0.5", "MP3", "", "10.0.9.9 10.0.8.8 172.16.0.9", 1, kShould },
        { "the first of equals", "MP3@10.0.0.5 MP3@192.168.1.20", "MP3", "", "", 0, kShould },
        { "what is not converted", "LOW@h MP3@h", "MP3", "", "", 1, kShould },
        { "but not for a sink that isn't known", "LOW@h MP3@h", nullptr, "", "", 0, kShould },
        { "the better transport", "RTSP@h MPEG@h", "*:*:audio/mpeg:*", "http,rtsp", "", 1, kMay },
        { "no other transports", "RTSP@h", "*:*:audio/mpeg:*", "http", "", -1, 0 },
        { "those of the sink only", "RTSP@h", "MPEG", "", "", -1, 0 },
        { "a later stage for the transport", "rtsp:*:x/y:DLNA.ORG_PN=MP3@h MPEG@h", "*:*:audio/mpeg:DLNA.ORG_PN=MP3",
          "http", "", 1, kMay },
    };
    for (const auto& theCase : kCases)
    {
        SCOPED_TRACE(theCase.mWhat);
        const Info theInfo = NewInfo(theCase.mResources);
        std::vector<uint32> theTargets = Addresses(theCase.mTargets);
        const uint32 theCount = static_cast<uint32>(theTargets.size());
        const std::string theSink = theCase.mSink ? ProtocolInfoOf(theCase.mSink) : "";
        zoDLNAProtocolInfoList_t* theList = theCase.mSink ? zoDLNAProtocolInfoList_New(theSink.c_str(), 0) : nullptr;
        int theConfidence = 99;
        EXPECT_EQ(theCase.mBest,
                  theInfo->GetBestResourceIndex(theList, &theConfidence, theCase.mOrder, theTargets.data(), theCount));
        EXPECT_EQ(theCase.mConfidence, theConfidence);
        zoDLNAProtocolInfoList_Delete(theList);
        if (!theCase.mSink) { continue; }
        EXPECT_EQ(theCase.mBest, theInfo->GetBestResourceIndexFromStr(theSink.c_str(), nullptr, theCase.mOrder,
                                                                      theTargets.data(), theCount, false));
    }

    zoPackedData_t* theRecord = NewEntry();
    AddText(theRecord, kCDSResourceInfo_URI, "");
    CDSResourceInfo theEmpty(theRecord, nullptr); // neither URI nor protocol info
    EXPECT_EQ(-1, theEmpty.GetBestResourceIndex(nullptr, nullptr, "", nullptr, 0));
}

TEST(CDSResourceInfoTest, ChoosesAThumbnail)
{
    const Info theInfo = NewInfo("http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_LRG@h JPEG_TN@h JPEG_TN@h "
                                 "rtsp-rtp-udp:*:image/jpeg:DLNA.ORG_PN=JPEG_TN@1.2.3.4 http-get:*:image/png:*@h");
    EXPECT_EQ(1, theInfo->GetResourceIndexForThumbnail("JPEG_TN", nullptr, 0));
    EXPECT_EQ(4, theInfo->GetResourceIndexForThumbnail("PNG_TN", nullptr, 0));
    EXPECT_EQ(-1, theInfo->GetResourceIndexForThumbnail("GIF_LRG", nullptr, 0)); // JPEGs of other profiles
    EXPECT_EQ(-1, theInfo->GetResourceIndexForThumbnail(nullptr, nullptr, 0));
}

TEST(CDSResourceInfoTest, ChoosesAPicture)
{
    const char* const kThumbnail = "http://t/x=JPEG_TN"; // the one thumbnail resource
    const char* const kTwo = "http://10.1.1.1/A=JPEG_TN http://10.2.2.2/B=JPEG_TN";
    const char* const kCases[][5] = {
        // profiles, album art, targets, the choice of album art, that of a thumbnail (NULL: the same)
        { "", "", "", "=", kThumbnail },
        { "", "A=JPEG_SM B=PNG_TN", "", "B=PNG_TN", nullptr }, // equal before the same family
        { "", "A=JPEG_SM", "", "A=JPEG_SM", kThumbnail },      // a thumbnail before the same family
        { "PNG_TN,JPEG_TN", "A=JPEG_TN B=PNG_TN", "", "B=PNG_TN", nullptr },
        { "PNG_TN,JPEG_TN", "A=JPEG_SM B=PNG_LRG", "", "B=PNG_LRG", kThumbnail }, // families in the list's order
        { "PNG_TN", "A=PNG_LRG", "", "A=PNG_LRG", nullptr },
        { "GIF", "A=PNG_LRG", "", "A=", "=" },
        { "GIF_LRG", "A=PNG_LRG B=X", "", "B=", nullptr }, // no match: the last
        { "", "A=", "", "A=", kThumbnail },
        { "1,2,3,4,5,6,7,,JPEG_TN", "A=JPEG_SM B=JPEG_TN", "", "B=JPEG_TN", nullptr },
        { "1,2,3,4,5,6,7,8,JPEG_TN", "A=JPEG_TN B=JPEG_TN", "", "B=", kThumbnail }, // eight count
        { "", "A=JPEG_TN http://1.2.3.4/B=JPEG_TN", "", "http://1.2.3.4/B=JPEG_TN", nullptr },
        { "", "http://1.2.3.4/A=X B=JPEG_X", "", "B=JPEG_X", kThumbnail },
        { "", kTwo, "10.1.1.9 10.2.9.9", "http://10.1.1.1/A=JPEG_TN", nullptr },
        { "", kTwo, "10.1.1.9 10.2.9.9 10.2.2.8", "http://10.2.2.2/B=JPEG_TN", nullptr }, // near to all of them
    };
    for (const auto& [theProfiles, theArt, theAddresses, theArtChoice, theThumbnailChoice] : kCases)
    {
        SCOPED_TRACE(std::string(theProfiles) + " / " + theArt + " / " + theAddresses);
        const Info theInfo = NewInfo("JPEG_TN@t", theArt);
        std::vector<uint32> theTargets = Addresses(theAddresses);
        const uint32 theCount = static_cast<uint32>(theTargets.size());
        zoCString theProfile("x");
        std::string theURI = theInfo->GetAlbumArtURI(theProfiles, &theProfile, theTargets.data(), theCount).c_str();
        EXPECT_EQ(theArtChoice, theURI + '=' + theProfile.c_str());
        theURI = theInfo->GetThumbnailURI(theProfiles, &theProfile, theTargets.data(), theCount).c_str();
        EXPECT_EQ(theThumbnailChoice ? theThumbnailChoice : theArtChoice, theURI + '=' + theProfile.c_str());
        EXPECT_EQ(theURI, theInfo->GetThumbnailURI(theProfiles, nullptr, theTargets.data(), theCount).c_str());
    }
}

// Four times as many pairs must not take sixteen times as long to read.
TEST(CDSResourceInfoTest, ReadsPairsInLinearTime)
{
#ifdef UPNP_LACKS_zoPackedData_CountTagsFrom
    GTEST_SKIP() << "counting pairs looks at each tag on this platform";
#endif
    const auto theTimeOf = [](uint32 aCount)
    {
        std::vector<uint16> theTags(aCount);
        std::iota(theTags.begin(), theTags.end(), static_cast<uint16>(kCDSResourceInfo_Count));
        zoPackedData_t* theRecord = zoPackedData_New(0);
        AddResource(theRecord, "MP3@h", theTags);
        AddText(theRecord, static_cast<uint16>(kCDSResourceInfo_Count + aCount), "added later");
        CDSResourceInfo theInfo(theRecord, nullptr);
        return LeastProcessorTime(
            [&]
            {
            EXPECT_STREQ("", theInfo.GetExtraInfoDataByName(0, "none").c_str());
            zoCString theName, theData;
            for (int i = 0; i < static_cast<int>(aCount / 2); ++i)
            {
                theInfo.GetExtraInfo(0, i, theName, theData);
                EXPECT_STREQ(theName.c_str(), theInfo.GetExtraInfoName(0, i).c_str());
            }
        });
    };
    const int64_t theSmall = theTimeOf(15000);
    EXPECT_LT(theTimeOf(60000), 10 * theSmall);
}
