#include "Support/Catchers.h"
#include "Support/Texts.h"
#include <UPnP/Stack/ILibWebLinkData.h>
#include <UPnP/Utilities/UPnPHook.h>
#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <utility>
#include <vector>

namespace
{

struct Hook
{
    explicit Hook(const std::vector<int>& aFeatures = {})
    {
        for (const int theFeature : aFeatures)
            UPnPHook_SetSupportFeature(mHook, theFeature, 1);
    }
    ~Hook() { UPnPHook_Delete(mHook); }
    Hook& operator=(Hook&&) = delete;

    UPnPHook* mHook = UPnPHook_New();
};

char* Writable(const char* aText) { return const_cast<char*>(aText); }

struct Part
{
    const char* mName;
    const char* mText;
};

// The description for a client; "(null)" when the template doesn't fit. Template and texts lie in heap blocks of
// exactly their size.
std::string Describe(const Hook& aHook, const std::string& aTemplate, const std::vector<Part>& aParts,
                     const char* aUserAgent = nullptr, bool afDevice = false)
{
    std::vector<char*> theTexts, theNames;
    std::vector<size_t> theLengths;
    for (const Part& thePart : aParts)
    {
        theTexts.push_back(Writable(thePart.mText));
        theNames.push_back(Writable(thePart.mName));
        theLengths.push_back(strlen(thePart.mText));
    }
    theTexts.push_back(nullptr);
    char* theBuffer = nullptr;
    size_t theLength = 99;
    if (afDevice)
    {
        UPnPHook_Hook(aHook.mHook, kUPnPHook_GetDeviceDescription, Writable(aUserAgent), theTexts.data(),
                      theNames.data(), theLengths.data(), Writable(aTemplate.c_str()), &theBuffer);
        return Taken(theBuffer);
    }
    ILibWebServer_Session* theSession = ILibWebServerSession_New(aUserAgent);
    const std::vector<char> theTemplate(aTemplate.begin(), aTemplate.end());
    UPnPHook_Hook(aHook.mHook, kUPnPHook_GetServiceDescription, theSession, Writable("AVTransport"),
                  const_cast<char*>(theTemplate.data()), theTemplate.size(), theTexts.data(), theNames.data(),
                  theLengths.data(), &theBuffer, &theLength);
    ILibWebServerSession_Delete(theSession);
    EXPECT_EQ(theBuffer ? strlen(theBuffer) : 0, theLength);
    return Taken(theBuffer);
}

std::string AllowedValues(const std::vector<std::string>& aValues)
{
    std::string theText = "<allowedValueList>";
    for (const std::string& theValue : aValues)
        theText += "<allowedValue>" + theValue + "</allowedValue>";
    return theText + "</allowedValueList>";
}

int Ask(const Hook& aHook, int aHookID, const char* aText)
{
    int theAnswer = -1;
    UPnPHook_Hook(aHook.mHook, aHookID, Writable(aText), &theAnswer);
    return theAnswer;
}

bool Check(const Hook& aHook, int aHookID, const char* aMode)
{
    char theAnswer[3] = { 7, 7, 7 };
    UPnPHook_Hook(aHook.mHook, aHookID, Writable(aMode), &theAnswer[1]);
    EXPECT_TRUE(theAnswer[0] == 7 && theAnswer[2] == 7) << "more than a byte was written";
    return theAnswer[1] != 0;
}

unsigned int Count(const char* aUserAgent, unsigned int aRequested)
{
    const Hook theHook;
    UPnPHook_Hook(theHook.mHook, kUPnPHook_GetRequestedCount, Writable(aUserAgent), &aRequested, Writable("0"));
    return aRequested;
}

std::string ClassFor(const char* aUserAgent, const char* aClass)
{
    const Hook theHook;
    char* theClass = Writable("unset");
    UPnPHook_Hook(theHook.mHook, kUPnPHook_AdjustMediaClassName, Writable(aUserAgent), Writable(aClass), &theClass);
    return theClass ? theClass : "";
}

} // namespace

TEST(UPnPHookTest, FeaturesComeFromAllParents)
{
    Hook theChild;
    EXPECT_STREQ("Zolt/1.1, UPnP/1.0", UPnPHook_GetProperty(theChild.mHook, kUPnPHookProperty_UserAgent));
    for (int i = 0; i < kUPnPHookFeature_Count; ++i)
        EXPECT_EQ(0, UPnPHook_SupportFeature(theChild.mHook, i)) << i;
    UPnPHook_SetSupportFeature(theChild.mHook, kUPnPHookFeature_HDLnk, 5);
    theChild.mHook = UPnPHook_New_WithParent(UPnPHook_New_WithParent(theChild.mHook));
    UPnPHook_SetSupportFeature(theChild.mHook, kUPnPHookFeature_HDLnk, 0);
    UPnPHook_SetSupportFeature(theChild.mHook, kUPnPHookFeature_SortSpec, 7);
    EXPECT_EQ(1, UPnPHook_SupportFeature(theChild.mHook, kUPnPHookFeature_HDLnk));
    EXPECT_EQ(7, UPnPHook_SupportFeature(theChild.mHook, kUPnPHookFeature_SortSpec));
    int fSortSpec = -1;
    UPnPHook_Hook(theChild.mHook, kUPnPHook_GetSupportSortSpec, &fSortSpec);
    EXPECT_EQ(7, fSortSpec);
    EXPECT_EQ(nullptr, UPnPHook_GetProperty(theChild.mHook, kUPnPHookProperty_UserAgent));

    UPnPHook_SetProperty(theChild.mHook, kUPnPHookProperty_PlayModeList, "SHUFFLE");
    UPnPHook_SetProperty(theChild.mHook, kUPnPHookProperty_PlayModeList,
                         UPnPHook_GetProperty(theChild.mHook, kUPnPHookProperty_PlayModeList) + 4);
    EXPECT_STREQ("FLE", UPnPHook_GetProperty(theChild.mHook, kUPnPHookProperty_PlayModeList));
    UPnPHook_SetProperty(theChild.mHook, kUPnPHookProperty_PlayModeList, nullptr);
    EXPECT_EQ(nullptr, UPnPHook_GetProperty(theChild.mHook, kUPnPHookProperty_PlayModeList));

    // A chain as long as somebody cares to make it.
    for (int i = 0; i < 100000; ++i)
        theChild.mHook = UPnPHook_New_WithParent(theChild.mHook);
    EXPECT_EQ(1, UPnPHook_SupportFeature(theChild.mHook, kUPnPHookFeature_HDLnk));
    EXPECT_EQ(0, UPnPHook_t.mfSupportFeature[0]);
}

TEST(UPnPHookTest, ReportsMisuse)
{
    const std::string kFile = "Libs/Internal/UPnP/Utilities/UPnPHook.cpp: ";
    const AssertionCatcher theCatcher;
    const Hook theHook;
    const auto Reported = [&] { return std::exchange(AssertionCatcher::Text(), ""); };
    EXPECT_EQ(nullptr, UPnPHook_GetProperty(theHook.mHook, kUPnPHookProperty_Count));
    EXPECT_EQ(kFile + "(aPropertyID >= 0) && (aPropertyID < kUPnPHookProperty_Count)", Reported());
    UPnPHook_SetProperty(theHook.mHook, -1, "x");
    EXPECT_EQ(kFile + "(aPropertyID >= 0) && (aPropertyID < kUPnPHookProperty_Count)", Reported());
    UPnPHook_SetSupportFeature(theHook.mHook, kUPnPHookFeature_Count, 1);
    EXPECT_EQ(kFile + "(aFeatureID >= 0) && (aFeatureID < kUPnPHookFeature_Count)", Reported());
    EXPECT_EQ(0, UPnPHook_SupportFeature(theHook.mHook, -1));
    EXPECT_EQ(kFile + "(aFeatureID >= 0) && (aFeatureID < kUPnPHookFeature_Count)", Reported());
    EXPECT_EQ(0, UPnPHook_SupportFeature(nullptr, 0));
    EXPECT_EQ(kFile + "aUPnPHook != NULL", Reported());
    UPnPHook_Hook(nullptr, kUPnPHook_ByteRateIsBitRate);
    EXPECT_EQ(kFile + "aUPnPHook != NULL", Reported());

    for (const int theID : { 0, 7, -1, 18, INT_MAX })
    {
        const LogCatcher theLog;
        UPnPHook_Hook(theHook.mHook, theID);
        EXPECT_EQ("2/1 " + LoggedFrom("Libs/Internal/UPnP/Utilities/UPnPHook.cpp") + "UPnPHook: unknown hook ID '" +
                      std::to_string(theID) + "'\n",
                  theLog.mText);
    }
    UPnPHook_Delete(nullptr);
}

// What depends on the client alone, for clients that are out there.
TEST(UPnPHookTest, AnswersByClient)
{
    const std::pair<char, const char*> kClients[] = {
        // x: an Xbox, p: the other player that is emulated, and what says who it is
        { 'x', "Xbox/2.0.4552.0 UPnP/1.0 Xbox/2.0.4552.0" },
        { 'x', "Mozilla/4.0 (compatible; Windows-Media-Player/10.0; Xbox/1)" },
        { 'p', "Windows-Media-Player/11.0.5721.5145" },
        { 'p', "Mozilla/4.0 (compatible; UPnP/1.0; Windows 9x)" },
        { 'p', "Mozilla/4.0 (compatible; UPnP/1.0; Windows NT/5.1)" },
        { ' ', "Microsoft-Windows/6.1 UPnP/1.0 Windows-Media-Player-DMS/12.0.7600.16385 DLNADOC/1.50" },
        { ' ', "Microsoft-Windows/10.0 UPnP/1.0 Microsoft-DLNA DLNADOC/1.50" },
        { ' ', "UPnP/1.0 (NT/5.1)" },
        { ' ', "xbox/360 windows-media-player/12" },
        { ' ', "DLNADOC/1.50 SEC_HHP_[TV] UE46D7000/1.0" },
        { ' ', "Linux/3.10 UPnP/1.0 LGE_DLNA_SDK/1.6.0 DLNADOC/1.50" },
        { ' ', "Xbox Windows 9x NT/5.1 Windows-Media-Player" }, // no token is whole
        { ' ', "Kodi/20.2 (Windows NT 10.0; Win64; x64) App_Bitness/64 Version/20.2" },
        { ' ', "Dalvik/2.1.0 (Linux; U; Android 13; Pixel 6)" },
        { ' ', "" },
        { ' ', nullptr },
    };
    ILibWebLinkData_SetID("id-1");
    for (const auto& [theClient, theUserAgent] : kClients)
    {
        SCOPED_TRACE(theUserAgent ? theUserAgent : "NULL");
        const Hook theHook, theSearchHook({ kUPnPHookFeature_Search });
        const bool fIsXbox = theClient == 'x', fIsEmulated = theClient != ' ';
        EXPECT_EQ(!fIsEmulated, Ask(theHook, kUPnPHook_NeedToCheckSortCriteria, theUserAgent));
        EXPECT_EQ(fIsXbox, Ask(theHook, kUPnPHook_ByteRateIsBitRate, theUserAgent));
        EXPECT_EQ(fIsEmulated, Ask(theHook, kUPnPHook_GetSupportSearch, theUserAgent));
        EXPECT_EQ(1, Ask(theSearchHook, kUPnPHook_GetSupportSearch, theUserAgent));
        EXPECT_EQ(!fIsEmulated, Ask(theHook, kUPnPHook_CDSProvideResSize, theUserAgent));
        EXPECT_EQ(fIsEmulated ? "item.imageItem.photo" : "", ClassFor(theUserAgent, "item.imageItem"));
        EXPECT_EQ(fIsEmulated ? "" : "container.storageFolder", ClassFor(theUserAgent, "container"));
        EXPECT_EQ("", ClassFor(theUserAgent, "container.storageFolder"));
        const unsigned int theMost = fIsEmulated ? 200 : 100;
        EXPECT_EQ(fIsXbox ? 0 : theMost, Count(theUserAgent, 0));
        EXPECT_EQ(fIsXbox ? 201 : theMost, Count(theUserAgent, theMost + 1));
        EXPECT_EQ(theMost, Count(theUserAgent, theMost));
        EXPECT_EQ(1u, Count(theUserAgent, 1));
        char* theState = nullptr;
        UPnPHook_Hook(theHook.mHook, kUPnPHook_GetInfoDescription, Writable(theUserAgent), &theState);
        EXPECT_EQ(fIsXbox ? "<state value=\"nok\"/>" : "<state value=\"ok\">id-1</state>", Taken(theState));
        const std::string theText = Describe(theHook, "<a>%@</a>", { { ":search", "S" } }, theUserAgent);
        EXPECT_EQ(fIsEmulated ? "<a>S</a>" : "<a></a>", theText);
    }
    ILibWebLinkData_SetID(nullptr);
    char* theState = nullptr;
    UPnPHook_Hook(Hook().mHook, kUPnPHook_GetInfoDescription, Writable("VLC"), &theState);
    EXPECT_EQ("<state value=\"nok\"/>", Taken(theState));
}

TEST(UPnPHookTest, ConvertsObjectIDs)
{
    const char* const kCases[][2] = {
        { "F", "-playlist" },   { "10", "-playlist" },    { "11", "-playlist" },
        { "13", "-playlist" },  { "15", "-videofolder" }, { "16", "-picturefolder" },
        { "7", "-musicalbum" }, { "6", "-musicartist" },  { "4", "-musicall" },
        { "5", "-musicgenre" }, { "1", "-musicartist" },  { "64", "64" },
        { "f", "f" },
    };
    const Hook theHook;
    for (const auto& [theRequested, theNewID] : kCases)
    {
        for (const char* theClient : { "Xbox/2.0", "Windows-Media-Player/11.0", "VLC/3" })
        {
            char* theID = Writable(theRequested);
            char* theFilter = Writable("dc:title");
            const bool fIsEmulated = *theClient != 'V';
            const bool fIsExtended = fIsEmulated && strcmp(theRequested, "1") == 0;
            UPnPHook_Hook(theHook.mHook, kUPnPHook_ConvertObjectID, Writable(theClient), &theID, &theFilter);
            EXPECT_EQ(fIsEmulated ? theNewID : theRequested, Taken(theID));
            EXPECT_EQ(fIsExtended ? "dc:title,res" : "dc:title", Taken(theFilter));
            char* theNoFilter = nullptr;
            for (char** theFilterPointer : { &theNoFilter, static_cast<char**>(nullptr) })
            {
                theID = Writable(theRequested);
                UPnPHook_Hook(theHook.mHook, kUPnPHook_ConvertObjectID, Writable(theClient), &theID, theFilterPointer);
                EXPECT_EQ(fIsEmulated ? theNewID : theRequested, Taken(theID));
            }
            EXPECT_EQ(nullptr, theNoFilter);
        }
    }
}

TEST(UPnPHookTest, AnswersByFeaturesAndProperties)
{
    Hook theHook;
    EXPECT_EQ(1, Ask(theHook, kUPnPHook_SetResExtraInfoInMetadata, nullptr));
    EXPECT_EQ(1, Ask(theHook, kUPnPHook_SetResExtraInfoInMetadata, "Roku, Inc."));
    EXPECT_EQ(0, Ask(theHook, kUPnPHook_SetResExtraInfoInMetadata, "ROKU"));

    EXPECT_EQ(1, Ask(theHook, kUPnPHook_CheckHTTPChunk, "VLC/3"));
    UPnPHook_SetProperty(theHook.mHook, kUPnPHookProperty_DoNotChunkUserAgentList, "Foobar2000, VLC");
    EXPECT_EQ(0, Ask(theHook, kUPnPHook_CheckHTTPChunk, "VLC/3"));
    EXPECT_EQ(1, Ask(theHook, kUPnPHook_CheckHTTPChunk, "Kodi/20"));
    EXPECT_EQ(1, Ask(theHook, kUPnPHook_CheckHTTPChunk, nullptr));

    EXPECT_TRUE(Check(theHook, kUPnPHook_CheckPlayMode, "NORMAL"));
    EXPECT_FALSE(Check(theHook, kUPnPHook_CheckPlayMode, "SHUFFLE"));
    UPnPHook_SetProperty(theHook.mHook, kUPnPHookProperty_PlayModeList, "SHUFFLE,REPEAT_ALL");
    EXPECT_TRUE(Check(theHook, kUPnPHook_CheckPlayMode, "REPEAT_ALL"));
    EXPECT_FALSE(Check(theHook, kUPnPHook_CheckPlayMode, "REPEAT"));
    theHook.mHook = UPnPHook_New_WithParent(theHook.mHook); // has no properties of its own
    EXPECT_FALSE(Check(theHook, kUPnPHook_CheckPlayMode, "SHUFFLE"));
    EXPECT_EQ(1, Ask(theHook, kUPnPHook_CheckHTTPChunk, "VLC/3"));

    const std::pair<const char*, int> kEvents[] = {
        { ":dimmingramp", kUPnPHookFeature_DimmingRamp },
        { ":dimmingstep", kUPnPHookFeature_DimmingStep },
        { ":friendlyinfoiconupdate", kUPnPHookFeature_FriendlyInfoIconUpdate },
        { ":containerupdateids", kUPnPHookFeature_ContainerUpdateIDs },
        { ":hdlnk", kUPnPHookFeature_HDLnk },
        { ":uilistingupdate", kUPnPHookFeature_UIListingUpdate },
    };
    for (const auto& [theEvent, theFeature] : kEvents)
    {
        EXPECT_EQ(0, Ask(Hook(), kUPnPHook_GetSupportEvent, theEvent)) << theEvent;
        EXPECT_EQ(1, Ask(Hook({ theFeature }), kUPnPHook_GetSupportEvent, theEvent)) << theEvent;
        EXPECT_EQ(0, Ask(Hook({ theFeature }), kUPnPHook_GetSupportEvent, ":extra"));
    }
    EXPECT_EQ(1, Ask(theHook, kUPnPHook_GetSupportEvent, ":somethingelse"));
}

// Each part name with its feature, by number, off and on; the two kinds of description have names of their own.
TEST(UPnPHookTest, IncludesThePartsOfItsFeatures)
{
    const char kServiceParts[] = "0:upload 1:timeseek 2:search 4:byteseek 5:featurelist 6:ffq 13:updateobject "
                                 "15:containerupdateids 17:pfc 17:rvu 21:hdlnk 24:uilifetime 25:basicmanagement "
                                 "26:dlnabm 27:configurationmanagement 28:colorlight 29:whitelight "
                                 "31:friendlyinfoupdate 32:friendlyinfoiconupdate 33:dimmingramp 34:dimmingstep "
                                 "35:animatedlight 36:uilistingupdate 37:cvp2server 38:bcscontrol";
    const char kDeviceParts[] = "7:srs 7:srsext 9:msregistrar 14:groupservice 20:srsext 23:energymanagement "
                                "25:basicmanagement 27:configurationmanagement 28:colorlight 29:whitelight "
                                "31:friendlyinfoupdate 35:animatedlight";
    for (const bool fDevice : { false, true })
    {
        std::istringstream theParts(fDevice ? kDeviceParts : kServiceParts);
        std::string theName;
        for (int theFeature = 0; theParts >> theFeature >> theName;)
        {
            const std::string theNames = "x:" + theName + ":y";
            const std::vector<Part> thePart = { { theNames.c_str(), "<p/>" } };
            EXPECT_EQ("<a></a>", Describe(Hook(), "<a>%@</a>", thePart, "", fDevice)) << theName;
            Hook theHook({ theFeature });
            theHook.mHook = UPnPHook_New_WithParent(theHook.mHook);
            EXPECT_EQ("<a><p/></a>", Describe(theHook, "<a>%@</a>", thePart, "", fDevice)) << theName;
            if (theFeature == kUPnPHookFeature_SRS) { continue; } // ":srsex" has ":srs" in it
            theName.pop_back();
            EXPECT_EQ("<a></a>", Describe(theHook, "<a>%@</a>", { { theName.c_str(), "p" } }, "", fDevice)) << theName;
        }
        EXPECT_TRUE(theParts.eof());
    }
    EXPECT_EQ("<a>n</a>", Describe(Hook(), "<a>%@</a>", { { ":nexturi", "n" } }));
    EXPECT_EQ("<a></a>", Describe(Hook({ kUPnPHookFeature_NoSetNextURI }), "<a>%@</a>", { { ":nexturi", "n" } }));
    for (const char* theName : { ":TIMESEEK", "timeseek", "", ":srs" })
        EXPECT_EQ("<a></a>", Describe(Hook({ kUPnPHookFeature_TimeSeek }), "<a>%@</a>", { { theName, "n" } }));
}

TEST(UPnPHookTest, ListsWhatAnAVTransportAllows)
{
    const std::vector<Part> kLists = { { ":seekmodelist", "seek" },
                                       { ":playmodelist", "mode" },
                                       { ":transportstatuslist", "status" } };
    const char* const kModes[] = { "TRACK_NR", "ABS_TIME", "FRAME", "X_DLNA_REL_BYTE", "REL_TIME" };
    for (int i = 0; i < 8; ++i) // each combination of seek features
    {
        Hook theHook;
        UPnPHook_SetSupportFeature(theHook.mHook, kUPnPHookFeature_SupportRVU, i & 4);
        UPnPHook_SetSupportFeature(theHook.mHook, kUPnPHookFeature_ByteSeek, i & 2);
        UPnPHook_SetSupportFeature(theHook.mHook, kUPnPHookFeature_TimeSeek, i & 1);
        std::vector<std::string> theModes;
        for (const char* theMode : kModes)
        {
            const bool fIsOn = *theMode == 'T' || (*theMode == 'X' ? i & 2 : *theMode == 'R' ? i & 1 : i & 4);
            if (fIsOn) { theModes.emplace_back(theMode); }
            EXPECT_EQ(fIsOn, Check(theHook, kUPnPHook_CheckSeekMode, theMode));
        }
        EXPECT_EQ("<a>" + AllowedValues(theModes) + "<b/>" + AllowedValues({ "NORMAL" }) +
                      AllowedValues({ "OK", "ERROR_OCCURRED" }) + "</a>",
                  Describe(theHook, "<a>%@<b/>%@%@</a>", kLists));
    }

    Hook theHook;
    UPnPHook_SetProperty(theHook.mHook, kUPnPHookProperty_PlayModeList, "SHUFFLE,,REPEAT_ALL");
    UPnPHook_SetProperty(theHook.mHook, kUPnPHookProperty_TransportStatusList, "X_BUSY");
    UPnPHook_SetProperty(theHook.mHook, kUPnPHookProperty_PlaySpeedList, "-1,1/2,1");
    EXPECT_EQ(AllowedValues({ "NORMAL", "SHUFFLE", "REPEAT_ALL" }) + AllowedValues({ "-1", "1/2", "1" }) +
                  AllowedValues({ "OK", "ERROR_OCCURRED", "X_BUSY" }),
              Describe(theHook, "%@%@%@",
                       { { ":playmodelist", "" }, { ":playspeedlist", "" }, { ":transportstatuslist", "" } }));
    const std::vector<Part> kSpeeds = { { ":playspeedlist", "own" } };
    UPnPHook_SetProperty(theHook.mHook, kUPnPHookProperty_PlaySpeedList, ",");
    EXPECT_EQ("<a></a>", Describe(theHook, "<a>%@</a>", kSpeeds));
    const std::vector<Part> kTwoLists = { { ":playmodelist:playspeedlist", "own" } };
    EXPECT_EQ("<a></a>", Describe(theHook, "<a>%@</a>", kTwoLists));
    UPnPHook_SetProperty(theHook.mHook, kUPnPHookProperty_PlaySpeedList, "");
    EXPECT_EQ("<a></a>", Describe(theHook, "<a>%@</a>", kSpeeds));
    EXPECT_EQ("<a>" + AllowedValues({ "NORMAL" }) + "</a>", Describe(Hook(), "<a>%@</a>", kTwoLists));
    // Of several names the first rule decides.
    EXPECT_EQ("<a>own</a>",
              Describe(Hook({ kUPnPHookFeature_TimeSeek }), "<a>%@</a>", { { ":seekmodelist:timeseek", "own" } }));
}

TEST(UPnPHookTest, SplicesOrReports)
{
    const std::vector<Part> kTwo = { { ":nexturi", "1" }, { ":nexturi", "<2/>" } };
    const Hook theHook;
    for (const char* theText : { "<a/>", "%<100%>", "<%%%>", "<a>%&#64;</a>" })
    {
        EXPECT_EQ(theText, Describe(theHook, theText, {}));
        EXPECT_EQ(theText, Describe(theHook, theText, {}, nullptr, true));
    }
    EXPECT_EQ("1<2/>", Describe(theHook, "%@%@", kTwo));
    EXPECT_EQ("%1<a>%<2/>>", Describe(theHook, "%%@<a>%%@>", kTwo));

    const std::string kFile = "Libs/Internal/UPnP/Utilities/UPnPHook.cpp: ";
    const std::tuple<const char*, long, const char*, bool> kCases[] = {
        // template, number of parts, what comes out all the same, whether the parts are too few
        { "<a>%@%@%@</a>", 2, "(null)", true }, { "%@", 0, "(null)", true }, { "<a>%@</a>", 2, "(null)", false },
        { "<a/>", 1, "(null)", false },         { "", 0, "", false },        { "<a/>\n", 0, "<a/>\n", false },
        { "<a/>%", 0, "<a/>%", false },
    };
    for (const auto& [theTemplate, theCount, theText, fTooFew] : kCases)
    {
        for (const bool fDevice : { false, true })
        {
            const AssertionCatcher theCatcher;
            EXPECT_EQ(theText,
                      Describe(theHook, theTemplate, { kTwo.begin(), kTwo.begin() + theCount }, nullptr, fDevice));
            EXPECT_EQ(kFile + (fTooFew   ? "theOptionalIndex < theOptionalCount"
                               : fDevice ? "theBuffer[theTotalDeviceDescriptionLength - 1] == '>'"
                                         : "theBuffer[theBufferLength - 1] == '>'"),
                      AssertionCatcher::Text())
                << theTemplate;
        }
    }
}
