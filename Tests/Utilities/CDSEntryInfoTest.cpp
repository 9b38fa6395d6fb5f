#include "Support/Records.h"
#include <UPnP/Utilities/CDSEntryInfo.h>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace
{

// An entry record with the given tags, each with its number as text.
zoPackedData_t* NewRecord(const std::vector<uint16>& aTags)
{
    zoPackedData_t* theRecord = NewEntry();
    for (const uint16 theTag : aTags)
        AddText(theRecord, theTag, std::to_string(theTag));
    return theRecord;
}

} // namespace

TEST(CDSEntryInfoTest, ReadsFields)
{
    zoPackedData_t* theRecord = NewRecord({ kCDSEntryInfo_Title });
    AddNumber<uint16>(theRecord, kCDSEntryInfo_IsContainer, 1);
    AddNumber<uint32>(theRecord, kCDSEntryInfo_ChildCount, 0xFFFFFFFF);
    AddNumber<uint64>(theRecord, kCDSEntryInfo_UpdateID, 0x1234567812345678u);
    zoPackedData_AddData(theRecord, kCDSEntryInfo_Album, "no NUL", 6);
    zoPackedData_AddData(theRecord, kCDSEntryInfo_Date, nullptr, 0);
    AddText(theRecord, kCDSEntryInfo_Genre, "next");
    CDSEntryInfo theInfo(theRecord);
    const std::unique_ptr<CDSEntryInfo> theClone(theInfo.Clone());
    EXPECT_EQ(theInfo.GetMemoryUsage(), theClone->GetMemoryUsage());
    for (CDSEntryInfo* theOne : { &theInfo, theClone.get() })
    {
        EXPECT_TRUE(theOne->IsContainer());
        EXPECT_EQ(0xFFFFFFFF, theOne->GetChildCount());
        EXPECT_EQ(0x12345678u, theOne->GetInfoAsULong(kCDSEntryInfo_UpdateID));
        EXPECT_STREQ("0", theOne->GetInfoAsCString(kCDSEntryInfo_Title).c_str());
        EXPECT_STREQ("no NUL", theOne->GetInfoAsCString(kCDSEntryInfo_Album).c_str());
        EXPECT_EQ(4u, theOne->GetInfoAsCString(kCDSEntryInfo_ChildCount).length()); // a number asked for as text
        EXPECT_TRUE(theOne->GetInfoAsCString(kCDSEntryInfo_Date).IsEmpty());
    }
}

TEST(CDSEntryInfoTest, HasNothingWithoutAnEntry)
{
    CDSEntryInfo theEmpty;
    CDSEntryInfo theNull(nullptr);
    for (CDSEntryInfo* theInfo : { &theEmpty, &theNull })
    {
        EXPECT_FALSE(theInfo->IsContainer());
        EXPECT_EQ(0u, theInfo->GetChildCount() + theInfo->GetExtraInfoCount());
        EXPECT_TRUE(theInfo->GetInfoAsCString(kCDSEntryInfo_Title).IsEmpty());
        EXPECT_TRUE(theInfo->GetExtraInfoName(0).IsEmpty());
        delete theInfo->Clone();
    }
}

TEST(CDSEntryInfoTest, ReadsExtraInfoByPairs)
{
    static const std::pair<std::vector<uint16>, const char*> kCases[] = {
        // tags, the pairs of the indices from -1 to 3
        { { 0, 20 }, "= = = = =" },
        { { 21, 22, 23, 24, 0, 1 }, "= 21=22 23=24 = =" },     // as the parser stores them
        { { 20, 21, 22, 23, 24, 0, 1 }, "= 21=22 23=24 = =" }, // with namespaces: the same
        { { 0, 24, 22, 23, 21 }, "= 21=22 23=24 = =" },        // in whatever order
        { { 21, 22, 23 }, "= 21=22 = = =" },                   // a name without a value
        { { 0, 1, 2, 3, 4, 5, 21, 22, 23 }, "= 21=22 = = =" }, // also where there are tags enough
        { { 0, 1, 2, 21, 23, 24 }, "= 21= = = =" },            // a value is absent below the count
        { { 24, 23, 22, 21, 28, 30 }, "= 21=22 23=24 = =" },   // a name is
    };
    for (const auto& [theTags, theExpected] : kCases)
    {
        CDSEntryInfo theInfo(NewRecord(theTags));
        std::string thePairs, thePairsApart;
        for (int i = -1; i <= 3; ++i)
        {
            zoCString theName("x"), theData("y");
            theInfo.GetExtraInfo(i, theName, theData);
            thePairs += std::string(i < 0 ? "" : " ") + theName.c_str() + '=' + theData.c_str();
            thePairsApart += std::string(i < 0 ? "" : " ") + theInfo.GetExtraInfoName(i).c_str() + '=' +
                             theInfo.GetExtraInfoData(i).c_str();
        }
        EXPECT_EQ(theExpected, thePairs);
        EXPECT_EQ(theExpected, thePairsApart);
    }
    EXPECT_EQ(1, CDSEntryInfo(NewRecord({ 21, 22, 23, 0 })).GetExtraInfoCount());
}

TEST(CDSEntryInfoTest, KeepsTagsWithin16Bits)
{
    std::vector<uint16> theTags;
    for (uint32 theTag = 0; theTag < 0xFFFF; ++theTag)
        theTags.push_back(static_cast<uint16>(theTag + 1)); // 1 to 65535
    CDSEntryInfo theInfo(NewRecord(theTags));
    const int theCount = theInfo.GetExtraInfoCount();
    EXPECT_EQ((65536 - 21) / 2, theCount);
    EXPECT_STREQ("65534", theInfo.GetExtraInfoData(theCount - 1).c_str());
    for (const int theIndex : { theCount, 32767, 32768, (65536 - 21) / 2 + 10, 65536, 0x7FFFFFFF, -0x7FFFFFFF })
        EXPECT_STREQ("", theInfo.GetExtraInfoName(theIndex).c_str()) << theIndex;
}
