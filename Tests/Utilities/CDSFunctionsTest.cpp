#include "Support/Records.h"
#include "Support/Texts.h"
#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPCPUtility.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <zoOS/zoSocket.h>

/* The functions for C against the members of the classes. */

namespace
{

void ExpectSameEntry(CDSEntryInfo& anInfo)
{
    const zoPackedData_t* theEntry = anInfo.mPackedData;
    EXPECT_EQ(anInfo.IsContainer(), CDSEntryInfo_IsContainer(theEntry) != 0);
    EXPECT_EQ(anInfo.GetChildCount(), CDSEntryInfo_GetChildCount(theEntry));
    for (uint16 theTag = 0; theTag <= kCDSEntryInfo_Count; ++theTag)
    {
        EXPECT_EQ(anInfo.GetInfoAsULong(theTag), CDSEntryInfo_GetInfoAsUInt32(theEntry, theTag));
        if (theTag == kCDSEntryInfo_ChildCount || theTag == kCDSEntryInfo_AlbumArtURI) { continue; } // no texts
        EXPECT_STREQ(anInfo.GetInfoAsCString(theTag).c_str(), CDSEntryInfo_GetInfoAsStr(theEntry, theTag));
    }
    const int theCount = CDSEntryInfo_GetExtraInfoCount(theEntry);
    EXPECT_EQ(anInfo.GetExtraInfoCount(), theCount);
    for (int i = -1; i <= theCount; ++i)
    {
        EXPECT_STREQ(anInfo.GetExtraInfoName(i).c_str(), CDSEntryInfo_GetExtraInfoName(theEntry, i));
        EXPECT_STREQ(anInfo.GetExtraInfoData(i).c_str(), CDSEntryInfo_GetExtraInfoData(theEntry, i));
    }
}

void ExpectSameResource(CDSResourceInfo& anInfo, uint32 anIndex)
{
    const zoPackedData_t* theRecord = anInfo.mPackedData;
    const int theIndex = static_cast<int>(anIndex);
    for (const uint16 theTag : { kCDSResourceInfo_URI, kCDSResourceInfo_ProtocolInfo, kCDSResourceInfo_Resolution })
        EXPECT_STREQ(anInfo.GetInfoAsCString(anIndex, theTag).c_str(),
                     CDSResourceInfo_GetInfoAsStr(theRecord, anIndex, theTag));
    for (const uint16 theTag : { kCDSResourceInfo_Duration, kCDSResourceInfo_Size })
    {
        EXPECT_EQ(anInfo.GetInfoAsULong(anIndex, theTag), CDSResourceInfo_GetInfoAsUInt32(theRecord, anIndex, theTag));
        EXPECT_EQ(anInfo.GetInfoAsUInt64(anIndex, theTag), CDSResourceInfo_GetInfoAsUInt64(theRecord, anIndex, theTag));
    }
    EXPECT_EQ(anInfo.GetMimeTypeForResourceIndex(anIndex).c_str(),
              Taken(CDSResourceInfo_FetchMimeType(theRecord, anIndex)));
    EXPECT_STREQ(anInfo.GetProtocolInfoForResourceIndex(anIndex).c_str(),
                 CDSResourceInfo_GetAdditionalInfo(theRecord, anIndex));
    EXPECT_EQ(anInfo.IsSubtitle(theIndex), CDSResourceInfo_IsSubtitle(theRecord, anIndex) != 0);
    EXPECT_EQ(anInfo.GetResourceIndexForSubtitle(theIndex),
              CDSResourceInfo_GetResourceIndexForSubtitle(theRecord, anIndex));
    EXPECT_STREQ(anInfo.GetSubtitleLabel(theIndex).c_str(), CDSResourceInfo_GetSubtitleLabel(theRecord, anIndex));
    EXPECT_STREQ(anInfo.GetSubtitleType(theIndex).c_str(), CDSResourceInfo_GetSubtitleType(theRecord, anIndex));
    const int theCount = CDSResourceInfo_GetExtraInfoCount(theRecord, anIndex);
    EXPECT_EQ(anInfo.GetExtraInfoCount(anIndex), theCount);
    for (int i = -1; i <= theCount; ++i)
    {
        const char* theName = CDSResourceInfo_GetExtraInfoName(theRecord, anIndex, i);
        const char* theData = CDSResourceInfo_GetExtraInfoData(theRecord, anIndex, i);
        EXPECT_STREQ(anInfo.GetExtraInfoName(anIndex, i).c_str(), theName);
        EXPECT_STREQ(anInfo.GetExtraInfoData(anIndex, i).c_str(), theData);
        EXPECT_STREQ(theData, CDSResourceInfo_GetExtraInfoDataByName(theRecord, anIndex, theName));
    }
}

void ExpectSameChoices(CDSResourceInfo& anInfo, const zoPackedData_t* anEntry, const char* aSinks)
{
    const zoPackedData_t* theRecord = anInfo.mPackedData;
    uint32 theTarget = zoSocketGetAddressFromDotForm("10.77.0.9");
    int theConfidences[2] = { -1, -1 };
    zoDLNAProtocolInfoList_t* theSinks = zoDLNAProtocolInfoList_New(aSinks, 0);
    EXPECT_EQ(anInfo.GetBestResourceIndexFromStr(aSinks, &theConfidences[0], "http", &theTarget, 1, false),
              CDSResourceInfo_ChooseResource(theRecord, theSinks, kCDSResourceChoice_Default, "http", &theTarget, 1,
                                             &theConfidences[1]));
    EXPECT_EQ(theConfidences[0], theConfidences[1]);
    zoDLNAProtocolInfoList_Delete(theSinks);
    EXPECT_EQ(anInfo.GetResourceIndexForThumbnail("JPEG_TN", &theTarget, 1),
              CDSResourceInfo_GetResourceIndexForThumbnail(theRecord, "JPEG_TN", &theTarget, 1));
    zoCString theProfile;
    char* theFetched = nullptr;
    EXPECT_EQ(anInfo.GetThumbnailURI("", &theProfile, &theTarget, 1).c_str(),
              Taken(CDSResourceInfo_FetchThumbnailURI(theRecord, anEntry, nullptr, &theTarget, 1, &theFetched)));
    EXPECT_EQ(theProfile.c_str(), Taken(theFetched));
    EXPECT_EQ(anInfo.GetAlbumArtURI("JPEG_SM", &theProfile, nullptr, 0).c_str(),
              Taken(CDSResourceInfo_FetchAlbumArtURI(anEntry, "JPEG_SM", nullptr, 0, &theFetched)));
    EXPECT_EQ(theProfile.c_str(), Taken(theFetched));
    EXPECT_EQ(anInfo.GetSubtitleCount(), static_cast<int>(CDSResourceInfo_GetSubtitleCount(theRecord)));
    const char* theURI = CDSResourceInfo_GetInfoAsStr(theRecord, 1, kCDSResourceInfo_URI);
    EXPECT_EQ(anInfo.GetResourceIndexOfURI(theURI), CDSResourceInfo_GetResourceIndexOfURI(theRecord, theURI));
}

} // namespace

TEST(CDSFunctionsTest, SayOfEveryDocumentWhatTheMembersSay)
{
    const std::string theSinks = ReadTestFile("sinks/handmade-dlna-tv.txt");
    int theObjects = 0;
    for (const auto& theFile : std::filesystem::recursive_directory_iterator(TEST_DATA))
    {
        if (theFile.path().extension() != ".xml") { continue; }
        SCOPED_TRACE(theFile.path().filename().string());
        std::string theText = ReadFile(theFile.path().string());
        UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(theText.data(), nullptr);
        for (;; ++theObjects)
        {
            char *theData, *theRes;
            int theType;
            UPnPDIDLDocument_NextObject(theDocument, &theData, &theRes, &theType);
            if (theType == kDIDLItemType_None) { break; }
            CDSEntryInfo theEntry(zoPackedData_NewData(theData));
            CDSResourceInfo theResources(zoPackedData_NewData(theRes), theEntry.mPackedData);
            ExpectSameEntry(theEntry);
            for (uint32 i = 0; i <= theResources.GetResourceCount(); ++i) // and past the last
                ExpectSameResource(theResources, i);
            ExpectSameChoices(theResources, theEntry.mPackedData, theSinks.c_str());
        }
        UPnPDIDLDocument_Delete(theDocument);
    }
    EXPECT_LT(25, theObjects);
}

TEST(CDSFunctionsTest, TakeNULLAndTextsWithoutTheirNUL)
{
    const PackedData theRecord = NewEntry();
    zoPackedData_AddData(theRecord, kCDSResourceInfo_ProtocolInfo, "a:b:c:d", 7);
    zoPackedData_AddData(theRecord, kCDSResourceInfo_Count, "name", 5);
    zoPackedData_AddData(theRecord, kCDSResourceInfo_Count + 1, "value", 5);
    EXPECT_STREQ("", CDSResourceInfo_GetAdditionalInfo(theRecord, 0));
    EXPECT_EQ("", Taken(CDSResourceInfo_FetchMimeType(theRecord, 0)));
    EXPECT_STREQ("", CDSResourceInfo_GetExtraInfoDataByName(theRecord, 0, "name"));

    EXPECT_STREQ("", CDSEntryInfo_GetInfoAsStr(nullptr, kCDSEntryInfo_Title));
    EXPECT_STREQ("", CDSEntryInfo_GetExtraInfoData(nullptr, 0));
    EXPECT_STREQ("", CDSResourceInfo_GetExtraInfoDataByName(theRecord, 0, nullptr));
    EXPECT_EQ(0u, CDSEntryInfo_GetChildCount(nullptr) + CDSResourceInfo_GetSubtitleCount(nullptr));
    EXPECT_EQ(-1, CDSResourceInfo_GetResourceIndexOfURI(theRecord, nullptr));
    EXPECT_EQ(-1, CDSResourceInfo_GetResourceIndexForSubtitle(nullptr, 0xFFFFFFFF));
    EXPECT_EQ(-1, CDSResourceInfo_GetResourceIndexForThumbnail(theRecord, nullptr, nullptr, 0));
    EXPECT_EQ("", Taken(CDSResourceInfo_FetchMimeType(nullptr, 0)));
    EXPECT_EQ("", Taken(CDSResourceInfo_FetchThumbnailURI(nullptr, nullptr, nullptr, nullptr, 1, nullptr)));
    EXPECT_EQ(nullptr, CDSResourceInfo_ReduceSize(nullptr, 0, nullptr, 0));
    EXPECT_EQ(0u, zoPackedData_GetEntryCount(
                      PackedData(CDSResourceInfo_ReduceSize(zoPackedData_Duplicate(theRecord), 0, nullptr, 1))));
    EXPECT_EQ(0, UPnPCPUtility_IsURIParentalLocked(nullptr));
    EXPECT_EQ("", Taken(UPnPCPUtility_FetchURIUnlocked(nullptr, nullptr)));
}
