#include "Support/Owned.h"
#include "Support/ProcessorTime.h"
#include "Support/Texts.h"
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>

namespace
{

typedef Owned<zoDLNAProtocolInfo_t, zoDLNAProtocolInfo_Delete> Info;
typedef Owned<zoDLNAProtocolInfoList_t, zoDLNAProtocolInfoList_Delete> List;

List NewList(const std::string& aText) { return zoDLNAProtocolInfoList_New(aText.c_str(), 0); }

// From a heap copy of exactly its size, without a NUL.
zoDLNAProtocolInfo_t* NewInfo(std::string_view aText)
{
    const std::unique_ptr<char[]> theCopy(new char[aText.size()]);
    aText.copy(theCopy.get(), aText.size());
    return zoDLNAProtocolInfo_New(theCopy.get(), aText.size(), 0);
}

} // namespace

TEST(zoDLNAProtocolInfoTest, ReadsTexts)
{
    static const std::tuple<const char*, const char*, const char*, int, int> kCases[] = {
        // text, normalised (NULL: the same), profile, whether converted, whether a thumbnail
        { "http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_TN", nullptr, "JPEG_TN", 0, 1 },
        { "http-get:*:audio/mpeg:DLNA.ORG_OP=01;DLNA.ORG_PN=MP3;DLNA.ORG_CI=1;X=Y", nullptr, "MP3", 1, 0 },
        { " http-get : * : audio/L16;rate=44100 : dlna.org_pn=LPCM ; ; Dlna.Org_Ci=1 ",
          "http-get:*:audio/L16;rate=44100:dlna.org_pn=LPCM;;Dlna.Org_Ci=1", "LPCM", 1, 0 },
        { "a:b:c:DLNA.ORG_PN=A=B:C;DLNA.ORG_PN=D", nullptr, "A=B:C", 0, 0 }, // the first counts, and all of it
        { "a:b:c:DLNA.ORG_PN=;DLNA.ORG_PN=D", nullptr, nullptr, 0, 0 },
        { "a:b:c:DLNA.ORG_PN;DLNA.ORG_PNX=D;X=DLNA.ORG_PN=E;DLNA.ORG_CI=0", nullptr, nullptr, 0, 0 },
        { "a:b:c:DLNA.ORG_PN=jpeg_tn;DLNA.ORG_CI=10", nullptr, "jpeg_tn", 0, 0 },
        { "DLNA.ORG_PN=PNG_TN", nullptr, nullptr, 0, 0 },
        { "http-get:*:*", nullptr, nullptr, 0, 0 },
        { "::", nullptr, nullptr, 0, 0 },
        { "", nullptr, nullptr, 0, 0 },
        { " \r\n\t", "", nullptr, 0, 0 },
    };
    for (const auto& [theText, theNormalised, theExpected, fConverted, fThumbnail] : kCases)
    {
        SCOPED_TRACE(theText);
        const Info theInfo = NewInfo(theText);
        EXPECT_EQ(theNormalised ? theNormalised : theText, Taken(zoDLNAProtocolInfo_GetStr(theInfo)));
        EXPECT_EQ(!theNormalised, zoDLNAProtocolInfo_IsNormal(theText, strlen(theText)));
        EXPECT_STREQ(theExpected, zoDLNAProtocolInfo_GetProfile(theInfo));
        EXPECT_EQ(fConverted, zoDLNAProtocolInfo_GetConversionIndicator(theInfo));
        EXPECT_EQ(fThumbnail, zoDLNAProtocolInfo_IsThumbnail(theInfo));
        EXPECT_EQ(theExpected != nullptr, zoDLNAProtocolInfo_MatchPN(theInfo, theExpected));
        for (const char* theProfile : { "", "JPEG", "JPEG_T", "MP3", theExpected })
        {
            for (const int theIndicator : { -1, 0, 1 })
            {
                const bool fMatches = (!theProfile || zoDLNAProtocolInfo_MatchPN(theInfo, theProfile)) &&
                                      (theIndicator == -1 || theIndicator == fConverted);
                EXPECT_EQ(fMatches, zoDLNAProtocolInfo_MatchText(theText, strlen(theText), theProfile, theIndicator));
            }
        }
    }
}

TEST(zoDLNAProtocolInfoTest, TakesNoMoreThanItCanCompare)
{
    const List theList(zoDLNAProtocolInfoList_New((Repeated("a:*:b:*,", 2047) + " ,c,d,e").c_str(), 0));
    EXPECT_EQ(2048, zoDLNAProtocolInfoList_GetCount(theList));
    EXPECT_EQ("c", Taken(zoDLNAProtocolInfo_GetStr(zoDLNAProtocolInfoList_GetProtocolInfoAt(theList, 2047))));
}

TEST(zoDLNAProtocolInfoTest, TakesNull)
{
    EXPECT_EQ("", Taken(zoDLNAProtocolInfo_GetStr(nullptr)));
    EXPECT_EQ(0, zoDLNAProtocolInfo_MatchPN(nullptr, nullptr));
    zoDLNAProtocolInfoList_Add(nullptr, NewInfo("a"), 0); // released all the same
    const List theList(zoDLNAProtocolInfoList_New(nullptr, 0));
    EXPECT_EQ(0, zoDLNAProtocolInfoList_GetCount(theList));
    EXPECT_EQ(-1, zoDLNAProtocolInfoList_GetBestIndexForScheme(nullptr, nullptr, nullptr));
    EXPECT_EQ("", Taken(zoDLNAProtocolInfoList_GetSupportedProtocolList(nullptr)));
}

TEST(zoDLNAProtocolInfoTest, GuessesFromURIs)
{
    static const char* const kCases[][2] = {
        { "http://h/a.MP3", "http-get:*:audio/mpeg:*" },
        { "HTTPS://h/a.b/c.jpeg?x=y.png#z.png", "http-get:*:image/jpeg:*" },
        { "rtsp://h/a.ts", "rtsp-rtp-udp:*:video/mpeg:*" },
        { "internal:a.3g2", "internal:*:video/3gpp2:*" },
        { "/a/b.xspf", "*:*:application/xspf+xml:*" },
        { "http://host.mp3", "http-get:*:*:*" }, // no path
        { "http://h/a.mp3/b", "http-get:*:*:*" },
        { "http://h/a.mp", "http-get:*:*:*" },
        { "a.mp3:8080/b.png", "a.mp3:*:image/png:*" }, // a scheme may have dots
        { "1a:b.png", "*:*:image/png:*" },             // but begins with a letter
        { "", "*:*:*:*" },
    };
    for (const auto& [theURI, theText] : kCases)
    {
        const Info theInfo = zoDLNAProtocolInfo_NewFromURI(theURI);
        EXPECT_EQ(theText, Taken(zoDLNAProtocolInfo_GetStr(theInfo))) << theURI;
    }
}

TEST(zoDLNAProtocolInfoListTest, SplitsAtCommas)
{
    const List theList = NewList(" a:b:c:d , ,e\\,f:g\\h,\\,,i\\");
    ASSERT_EQ(4, zoDLNAProtocolInfoList_GetCount(theList));
    static const char* const kTexts[] = { "a:b:c:d", "e,f:g\\h", ",", "i\\" };
    for (int i = 0; i < 4; ++i)
    {
        const zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfoList_GetProtocolInfoAt(theList, i);
        EXPECT_EQ(kTexts[i], Taken(zoDLNAProtocolInfo_GetStr(theInfo)));
    }
    EXPECT_EQ(0, zoDLNAProtocolInfoList_GetCount(NewList(" ,,")));
}

TEST(zoDLNAProtocolInfoListTest, MatchesByTheFlagsGiven)
{
    enum
    {
        kAny = kzoDLNAProtocolInfoMatch_AnyProfile,
        kNoMime = kzoDLNAProtocolInfoMatch_NoMimeTypeCheck,
        kNoProfile = kzoDLNAProtocolInfoMatch_NoProfileCheck,
        kNotNull = kzoDLNAProtocolInfoMatch_ProfileNotNULL,
        kWild = kzoDLNAProtocolInfoMatch_WildCardMimeTypeCheck
    };
    static const std::tuple<const char*, const char*, int, int> kCases[] = {
        { "", "a:*:b/c:*", kNoMime | kNoProfile, 0 },
        { "x:*:b/c:*,HTTP-get:*:Audio/MPEG:*", "http-get:net:audio/mpeg:*", 0, 1 },
        { "http-get:one:b/c:*", "http-get:two:b/c:*", 0, 0 },
        { "*:one:b/c:*", "http-get:*:b/c:*", 0, 1 },
        { "a:one:b/c:*", "*:ONE:b/c:*", 0, 1 }, // any protocol: the network decides
        { "a:one:b/c:*", "*:two:b/c:*", 0, 0 },
        { "a:one:b/c:DLNA.ORG_PN=P", "*:one:b/c:DLNA.ORG_PN=P", 0, 1 },
        { "a:one:b/c:DLNA.ORG_PN=P", "*:one:x/y:DLNA.ORG_PN=P", kNotNull | kNoMime, 1 },
        { "a:*:b/*:*", "*:one:b/c:*", kWild, 1 },
        { "http-get:*:b/c:*", "http:*:b/c:*", 0, 0 },
        { "a:*:b/c", "a:*:b/c:*", 0, 1 },
        { "a:*:b/c:*", "a:*:b/cd:*", kNoMime, 1 },
        { "a:*:*:*", "a:*:b/c:*", 0, 0 },
        { "a:*:*:*", "a:*:b/c:*", kWild, 1 },
        { "a:*:B/*:*", "a:*:b/c:*", kWild, 1 },
        { "a:*:b/*:*", "a:*:bb/c:*", kWild, 0 },
        { "a:*:*/*:*", "a:*:b:*", kWild, 1 },
        { "a:*:b/c/*:*", "a:*:B/C/d:*", kWild, 1 },
        { "a:*:b/c/*:*", "a:*:b/d/c:*", kWild, 0 },
        { "a:*:b/c:*", "a:*:b/*:*", kWild, 0 }, // only the list's wild cards count
        { "a:*:audio/L16;rate=44100:*", "a:*:audio/L16; channels=2 ;Rate=44100:*", 0, 1 },
        { "a:*:audio/L16;rate=44100;channels=2:*", "a:*:audio/L16;rate=44100:*", 0, 0 },
        { "a:*:b/c;:*", "a:*:b/c:*", 0, 1 },
        { "a:*:audio/L16:*", "a:*:audio/L16;rate=44100:*", 0, 1 },
        { "a:*:audio/*;rate=44100:*", "a:*:audio/L16;rate=48000:*", kWild, 0 },
        { "a:*:b/c:DLNA.ORG_PN=P", "a:*:b/c:DLNA.ORG_PN=P", 0, 1 },
        { "a:*:b/c:DLNA.ORG_PN=P", "a:*:b/c:DLNA.ORG_PN=p", 0, 0 },
        { "a:*:b/c:DLNA.ORG_PN=P", "a:*:b/c:*", 0, 0 },
        { "a:*:b/c:DLNA.ORG_PN=P", "a:*:b/c:*", kAny, 1 },
        { "a:*:b/c:*", "a:*:b/c:DLNA.ORG_PN=P", kAny, 1 },
        { "a:*:b/c:DLNA.ORG_PN=P", "a:*:b/c:DLNA.ORG_PN=Q", kAny, 0 },
        { "a:*:b/c:DLNA.ORG_PN=P", "a:*:b/c:DLNA.ORG_PN=Q", kNoProfile | kNotNull, 1 },
        { "a:*:b/c:*", "a:*:b/c:*", kNotNull, 0 },
        { "a:*:b/c:*,a:*:b/c:DLNA.ORG_PN=P", "a:*:x/y:DLNA.ORG_PN=P", kNotNull | kNoMime, 1 },
        { "a:*:b/c:*", "a:*:x/y:DLNA.ORG_PN=P", kNotNull | kNoMime | kAny, 0 },
    };
    std::string theOthers; // that make the list long enough for an index, twice each, and of many transports
    for (int i = 0; i < 40; ++i)
    {
        const std::string theNumber = std::to_string(i / 2);
        theOthers += ",none:none:none/n" + theNumber + ";n=" + theNumber + ":DLNA.ORG_PN=N";
        for (const char* theFormat : { "b/c:*", "b/c:DLNA.ORG_PN=P", "*:*", "audio/L16;rate=44100:*" })
            theOthers += ",none" + theNumber + ":n" + theNumber + ':' + theFormat;
    }
    for (const auto& [theList, theText, theFlags, fMatches] : kCases)
    {
        alignas(void*) char theMemory[160];
        const Info theInfo = zoDLNAProtocolInfo_NewInPlace(theMemory, sizeof(theMemory), theText, strlen(theText));
        const List theElements = NewList(theList);
        const List theLongList = NewList(theList + theOthers);
        EXPECT_EQ(fMatches, zoDLNAProtocolInfoList_Match(theElements, theInfo, theFlags)) << theList << '/' << theText;
        EXPECT_EQ(fMatches, zoDLNAProtocolInfoList_Match(theLongList, theInfo, theFlags)) << theList << '/' << theText;
        for (int i = 0; i < 0x400; ++i) // what one way of comparing finds out is kept for the next
        {
            const int theWays[] = { i & 0x1F, i >> 5 };
            size_t theFirst = 0;
            while (theFirst < 2 && !zoDLNAProtocolInfoList_Match(theLongList, theInfo, theWays[theFirst]))
                ++theFirst;
            EXPECT_EQ(theFirst, zoDLNAProtocolInfoList_FindMatch(theLongList, theInfo, theWays, 2)) << theList << i;
        }
        if (zoDLNAProtocolInfoList_GetCount(theElements) != 1) { continue; }
        zoDLNAProtocolInfo_t* theElement = zoDLNAProtocolInfoList_GetProtocolInfoAt(theElements, 0);
        EXPECT_EQ(fMatches, zoDLNAProtocolInfo_Match(theElement, theInfo, theFlags)) << theList;
    }
}

TEST(zoDLNAProtocolInfoListTest, ListsProtocolsOnce)
{
    EXPECT_EQ("http-get,rtsp-rtp-udp", Taken(zoDLNAProtocolInfoList_GetSupportedProtocolList(
                                           NewList("http-get:*,:*,rtsp-rtp-udp:*,HTTP-GET:x"))));
    std::string theText;
    std::string theExpected;
    for (int i = 0; i < 100; ++i)
    {
        theText += "P" + std::to_string(i % 40) + ":*,p" + std::to_string(i % 40) + ":*,"; // more than a few
        if (i < 40) { theExpected += (i > 0 ? ",P" : "P") + std::to_string(i); }
    }
    EXPECT_EQ(theExpected, Taken(zoDLNAProtocolInfoList_GetSupportedProtocolList(NewList(theText))));
}

TEST(zoDLNAProtocolInfoListTest, RanksByTransport)
{
    static const char* const kCases[][3] = {
        // order, supported, the elements in the order of draining
        { "*", "", "0123456" },
        { "*", "rtsp-rtp-udp,HTTP-GET", "0135" }, // an element's "*" (4) is a name like others
        { "*", "http-get,*", "0123456" },
        { "http", "", "1356" },
        { "rtsp , http,*", "", "0135624" },
        { "http-post,RTSP-rtp-udp", "", "60" },
        { "rtsp-rtp,htt", "", "" }, // the first part is what comes before the first hyphen
        { " ,, http-post,http-post", "http-post", "6" },
        { "", "", "" },
    };
    for (const auto& [theOrder, theSupported, theDrained] : kCases)
    {
        List theList = NewList("rtsp-rtp-udp,http-get,internal,HTTP-get,*,http-get,http-post");
        for (int i = 0; i < 7; ++i)
            zoDLNAProtocolInfo_SetUserData(zoDLNAProtocolInfoList_GetProtocolInfoAt(theList, i), '0' + i);
        std::string theResult;
        std::string theRanked;
        zoDLNAProtocolInfo_t* theInfos[7];
        for (int i = 0; i < 7; ++i)
            theInfos[i] = zoDLNAProtocolInfoList_GetProtocolInfoAt(theList, i);
        const size_t theCount = zoDLNAProtocolInfoList_RankByScheme(nullptr, theOrder, theSupported, theInfos, 7);
        for (size_t i = 0; i < theCount; ++i)
            theRanked += static_cast<char>(zoDLNAProtocolInfo_GetUserData(theInfos[i]));
        EXPECT_EQ(theDrained, theRanked) << theOrder << " / " << theSupported;
        for (;;)
        {
            const int theIndex = zoDLNAProtocolInfoList_GetBestIndexForScheme(theList, theOrder, theSupported);
            EXPECT_EQ(theIndex, zoDLNAProtocolInfoList_GetBestIndexForScheme(theList, theOrder, theSupported));
            if (theIndex < 0) { break; }
            theResult += static_cast<char>(
                zoDLNAProtocolInfo_GetUserData(zoDLNAProtocolInfoList_GetProtocolInfoAt(theList, theIndex)));
            zoDLNAProtocolInfoList_Remove(theList, theIndex);
        }
        EXPECT_EQ(theDrained, theResult) << theOrder << " / " << theSupported;
    }
}

// Ten thousand steps against a vector; the best index against the plain search.
TEST(zoDLNAProtocolInfoListTest, BehavesAsAVector)
{
    static const char* const kProtocols[] = { "http-get", "rtsp-rtp-udp", "internal" };
    static const char* const kOrders[] = { "http,rtsp", "internal,http,rtsp", "rtsp" };
    static const std::vector<int> kItems[] = { { 0, 1 }, { 2, 0, 1 }, { 1 } }; // the protocols that their items cover
    std::mt19937 theRandom(815);
    List theList = NewList("");
    std::vector<int> thePlain;
    for (int i = 0; i < 10000; ++i)
    {
        const int theCount = static_cast<int>(thePlain.size());
        const int thePosition = static_cast<int>(theRandom() % static_cast<uint32>(theCount + 2)) - 1;
        const bool fIsInside = thePosition >= 0 && thePosition < theCount;
        if (theRandom() % 1000 < 500u + (i / 1000 % 2 == 0 ? 100u : 0u)) // grows and shrinks
        {
            zoDLNAProtocolInfo_t* theInfo = NewInfo(kProtocols[i % 3]);
            zoDLNAProtocolInfo_SetUserData(theInfo, i);
            zoDLNAProtocolInfoList_Add(theList, theInfo, thePosition);
            thePlain.insert(fIsInside ? thePlain.begin() + thePosition : thePlain.end(), i);
        }
        else
        {
            zoDLNAProtocolInfoList_Remove(theList, thePosition);
            if (fIsInside) { thePlain.erase(thePlain.begin() + thePosition); }
        }
        const size_t theOrder = theRandom() % 64 == 0 ? theRandom() % 3 : 0;
        auto theFound = thePlain.end();
        for (size_t k = 0; k < kItems[theOrder].size() && theFound == thePlain.end(); ++k)
        {
            theFound = std::find_if(thePlain.begin(), thePlain.end(),
                                    [=](int aValue) { return aValue % 3 == kItems[theOrder][k]; });
        }
        const int theBest = theFound == thePlain.end() ? -1 : static_cast<int>(theFound - thePlain.begin());
        ASSERT_EQ(theBest, zoDLNAProtocolInfoList_GetBestIndexForScheme(theList, kOrders[theOrder], "")) << i;
        ASSERT_EQ(static_cast<int>(thePlain.size()), zoDLNAProtocolInfoList_GetCount(theList));
        if (i % 50 != 0) { continue; }
        for (int k = 0; k < static_cast<int>(thePlain.size()); ++k)
        {
            ASSERT_EQ(thePlain[static_cast<size_t>(k)],
                      zoDLNAProtocolInfo_GetUserData(zoDLNAProtocolInfoList_GetProtocolInfoAt(theList, k)));
        }
    }
}

// Mixed insertions and appendings, many protocols, and draining: four times as many must not take sixteen times as
// long.
TEST(zoDLNAProtocolInfoListTest, TakesLinearTime)
{
    const auto theTimeOf = [](int aCount)
    {
        return LeastProcessorTime(
            [aCount]
            {
            List theList = NewList("");
            for (int i = 0; i < aCount; ++i)
            {
                const std::string theText = (i % 3 ? "http-get" : "p" + std::to_string(i)) + ":*:*:*";
                zoDLNAProtocolInfoList_Add(theList, NewInfo(theText), i % 2 ? i / 2 : -1);
            }
            EXPECT_NE("", Taken(zoDLNAProtocolInfoList_GetSupportedProtocolList(theList)));
            int theIndex;
            while ((theIndex = zoDLNAProtocolInfoList_GetBestIndexForScheme(theList, "http,*", "")) >= 0)
                zoDLNAProtocolInfoList_Remove(theList, theIndex);
            EXPECT_EQ(0, zoDLNAProtocolInfoList_GetCount(theList));
        });
    };
    const int64_t theSmall = theTimeOf(10000);
    EXPECT_LT(theTimeOf(40000), 10 * theSmall);
}
