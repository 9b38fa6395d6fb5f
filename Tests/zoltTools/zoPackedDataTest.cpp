#include "Support/Records.h"
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace
{

typedef std::vector<std::pair<uint16, std::string>> PlainEntry;
typedef std::vector<uint16> Tags;

// All that can be read of a record, through its index of tags and through the order of adding.
void ExpectSame(const std::vector<PlainEntry>& aPlain, const zoPackedData_t* aRecord)
{
    ASSERT_EQ(aPlain.size(), zoPackedData_GetEntryCount(aRecord));
    for (uint32 i = 0; i < aPlain.size(); ++i)
    {
        ASSERT_EQ(aPlain[i].size(), zoPackedData_GetTagCount(aRecord, i));
        for (size_t k = 0; k < aPlain[i].size(); ++k)
        {
            const auto& [theTag, theBytes] = aPlain[i][k];
            ASSERT_EQ(theTag, zoPackedData_GetTagAt(aRecord, i, static_cast<uint16>(k)));
            size_t theSize = 99;
            const char* theData = zoPackedData_GetData(aRecord, i, theTag, &theSize);
            ASSERT_EQ(theBytes.empty(), theData == nullptr);
            ASSERT_EQ(theBytes, std::string(theData ? theData : "", theSize));
            zoPackedData_Value theValues[3] = {};
            const uint32 theLeft = static_cast<uint32>(aPlain[i].size() - k);
            ASSERT_EQ(std::min(3u, theLeft), zoPackedData_GetValues(aRecord, i, static_cast<uint32>(k), theValues, 3));
            ASSERT_EQ(theTag, theValues[0].mTag);
            ASSERT_EQ(theData, theValues[0].mData);
            ASSERT_EQ(theSize, theValues[0].mSize);
        }
    }
}

struct Filled
{
    std::vector<PlainEntry> mPlain;
    PackedData mRecord;
};

// Entries of dense tags, of sparse ones, of many, and none, with a value here and there that is empty.
Filled Fill()
{
    std::mt19937 theRandom(4711);
    Filled theFilled = { {}, zoPackedData_New(2) };
    for (const uint32 theMaxTag : { 20u, 65535u, 300u, 0u, 65535u, 5000u })
    {
        zoPackedData_AddNewEntry(theFilled.mRecord);
        std::map<uint16, bool> theTags;
        PlainEntry theEntry;
        for (uint32 i = 0; i < std::min(theMaxTag, 2000u); ++i)
        {
            const uint16 theTag = static_cast<uint16>(theRandom() % (theMaxTag + 1));
            const std::string theBytes(theRandom() % 20, static_cast<char>(theRandom()));
            zoPackedData_AddData(theFilled.mRecord, theTag, theBytes.data(), theBytes.size());
            if (theTags.emplace(theTag, true).second) { theEntry.emplace_back(theTag, theBytes); }
        }
        theFilled.mPlain.push_back(theEntry);
    }
    return theFilled;
}

} // namespace

TEST(zoPackedDataTest, ReadsWhatWasAddedInEveryForm)
{
    Filled theFilled = Fill();
    ExpectSame(theFilled.mPlain, theFilled.mRecord);
    const PackedData theCopy = zoPackedData_Duplicate(theFilled.mRecord);
    const uint32 theUsage = zoPackedData_GetMemoryUsage(theFilled.mRecord);
    const PackedData theRead = zoPackedData_NewData(zoPackedData_TakeData(theFilled.mRecord));
    EXPECT_EQ(0u, zoPackedData_GetEntryCount(theFilled.mRecord));
    EXPECT_EQ(theUsage, zoPackedData_GetMemoryUsage(theRead));
    ExpectSame(theFilled.mPlain, theRead);
    ExpectSame(theFilled.mPlain, theCopy);

    // A record made from a block takes more, in the last entry and in new ones.
    const PackedData theLonger = zoPackedData_Duplicate(theRead);
    zoPackedData_AddData(theLonger, theFilled.mPlain.back()[0].first, "ignored", 7);
    zoPackedData_AddData(theLonger, 65000, "last", 4);
    zoPackedData_CopyEntry(theRead, 0, theLonger);
    theFilled.mPlain.back().emplace_back(65000, "last");
    theFilled.mPlain.push_back(theFilled.mPlain[0]);
    ExpectSame(theFilled.mPlain, theLonger);

    // A record that was emptied can be filled again, and emptied when it is empty.
    for (zoPackedData_t* theRecord : { theFilled.mRecord.mRecord, theRead.mRecord })
    {
        free(zoPackedData_TakeData(theRecord));
        free(zoPackedData_TakeData(theRecord));
        EXPECT_EQ(13u, zoPackedData_GetMemoryUsage(theRecord));
        zoPackedData_CopyEntry(theLonger, 0, theRecord);
        ExpectSame({ theFilled.mPlain[0] }, theRecord);
    }
}

TEST(zoPackedDataTest, MakesABlockOfWholeEntries)
{
    std::vector<PlainEntry> thePlain = { {}, { { 7, "small" }, { 3, "" }, { 65535, "x" } }, {}, { { 1, "y" } } };
    for (const size_t theSize : { 0u, 65534u, 65535u, 65536u }) // the last one with wide ends
        thePlain.push_back({ { 7, std::string(theSize, 'w') }, { 9, "" } });
    const std::vector<PlainEntry> theFilled = Fill().mPlain;
    thePlain.insert(thePlain.end(), theFilled.begin(), theFilled.end());
    for (size_t theCount = 0; theCount <= thePlain.size(); ++theCount)
    {
        Tags theTags;
        Tags theCounts;
        std::vector<uint32> theEnds;
        std::string theBytes;
        const PackedData theAdded = zoPackedData_New(0);
        const std::vector<PlainEntry> theEntries(thePlain.begin(), thePlain.begin() + static_cast<long>(theCount));
        for (const PlainEntry& theEntry : theEntries)
        {
            const size_t theBegin = theBytes.size();
            zoPackedData_AddNewEntry(theAdded);
            for (const auto& [theTag, theValue] : theEntry)
            {
                theTags.push_back(theTag);
                theBytes += theValue;
                theEnds.push_back(static_cast<uint32>(theBytes.size() - theBegin));
                zoPackedData_AddData(theAdded, theTag, theValue.data(), theValue.size());
            }
            theCounts.push_back(static_cast<uint16>(theEntry.size()));
        }
        char* theBlock = zoPackedData_NewBlock(theTags.data(), theEnds.data(), theCounts.data(),
                                               static_cast<uint32>(theCount), theBytes.data());
        char* theSame = zoPackedData_TakeData(theAdded);
        const PackedData theRead = zoPackedData_NewData(theSame);
        EXPECT_EQ(0, memcmp(theBlock, theSame, zoPackedData_GetMemoryUsage(theRead))) << theCount;
        ExpectSame(theEntries, PackedData(zoPackedData_NewData(theBlock)));
    }
}

TEST(zoPackedDataTest, ReadsNumbersAtTheirWidth)
{
    PackedData theRecord = zoPackedData_New(0);
    zoPackedData_AddData(theRecord, 1, "no entry yet", 5);
    EXPECT_EQ(0u, zoPackedData_GetEntryCount(theRecord));
    zoPackedData_AddNewEntry(theRecord);
    AddNumber(theRecord, 2, uint16{ 0xFFFE });
    AddNumber(theRecord, 4, uint32{ 0xFFFEFFFD });
    AddNumber(theRecord, 8, uint64{ 0x100000005 });
    zoPackedData_AddData(theRecord, 3, "abc", 3);
    zoPackedData_AddData(theRecord, 0, nullptr, 0);
    for (const bool fIsSerialized : { false, true })
    {
        if (fIsSerialized)
        {
            PackedData theRead = zoPackedData_NewData(zoPackedData_TakeData(theRecord));
            std::swap(theRecord.mRecord, theRead.mRecord);
        }
        EXPECT_EQ(0xFFFEu, zoPackedData_GetDataAsUInt64(theRecord, 0, 2));
        EXPECT_EQ(0xFFFDu, zoPackedData_GetDataAsUInt16(theRecord, 0, 4));
        EXPECT_EQ(0x100000005u, zoPackedData_GetDataAsUInt64(theRecord, 0, 8));
        EXPECT_EQ(5u, zoPackedData_GetDataAsUInt32(theRecord, 0, 8));
        for (const uint16 theTag : Tags{ 0, 3, 77 })
            EXPECT_EQ(0u, zoPackedData_GetDataAsUInt64(theRecord, 0, theTag)) << theTag;
        EXPECT_EQ(0u, zoPackedData_GetDataAsUInt32(theRecord, 1, 4));
        EXPECT_EQ(5u, zoPackedData_GetTagCount(theRecord, 0));
        EXPECT_EQ(0u, zoPackedData_GetTagCount(theRecord, 1));
    }
    EXPECT_EQ(0u, zoPackedData_GetTagCount(nullptr, 0));
    zoPackedData_AddData(nullptr, 0, "x", 1);
}

TEST(zoPackedDataTest, HoldsAsManyTagsAsThereAre)
{
    const PackedData theRecord = NewEntry();
    for (uint32 i = 0; i <= 0xFFFF; ++i)
        AddNumber(theRecord, static_cast<uint16>(0xFFFF - i), i);
    EXPECT_EQ(0xFFFFu, zoPackedData_GetTagCount(theRecord, 0)); // the last one finds no place
    EXPECT_EQ(nullptr, zoPackedData_GetData(theRecord, 0, 0, nullptr));
    const PackedData theRead = zoPackedData_NewData(zoPackedData_TakeData(theRecord));
    for (uint32 i = 0; i < 0xFFFF; ++i)
        ASSERT_EQ(i, zoPackedData_GetDataAsUInt32(theRead, 0, static_cast<uint16>(0xFFFF - i)));
}

namespace
{

// Reads every byte of every value, and finds each value by its tag.
size_t CheckedSize(const zoPackedData_t* aRecord)
{
    size_t theTotal = 0;
    for (uint32 i = 0; i < zoPackedData_GetEntryCount(aRecord); ++i)
    {
        std::vector<zoPackedData_Value> theValues(zoPackedData_GetTagCount(aRecord, i));
        zoPackedData_GetValues(aRecord, i, 0, theValues.data(), 0xFFFF);
        for (const zoPackedData_Value& theValue : theValues)
        {
            theTotal += std::string(theValue.mData ? theValue.mData : "", theValue.mSize).size();
            EXPECT_EQ(theValue.mData, zoPackedData_GetData(aRecord, i, theValue.mTag, nullptr));
        }
    }
    return theTotal;
}

struct Shape
{
    uint32 mEntries, mValues;
    size_t mValueSize;
    size_t mNoticed; // damage to any of the last mNoticed bytes is noticed
};

std::string NewBlock(const Shape& aShape)
{
    const PackedData theRecord = zoPackedData_New(0);
    const std::string theBytes(aShape.mValueSize, 'v');
    for (uint32 i = 0; i < aShape.mEntries; ++i)
    {
        zoPackedData_AddNewEntry(theRecord);
        for (uint32 k = 0; k < aShape.mValues; ++k)
            zoPackedData_AddData(theRecord, static_cast<uint16>(100 - k), theBytes.data(), theBytes.size());
    }
    const uint32 theSize = zoPackedData_GetMemoryUsage(theRecord);
    char* theBlock = zoPackedData_TakeData(theRecord);
    const std::string theBytesOfBlock(theBlock, theSize);
    free(theBlock);
    return theBytesOfBlock;
}

// The block is a heap copy of exactly its size, so that the sanitizers see each byte too far.
PackedData Read(const std::string& aBlock, size_t aSize)
{
    return zoPackedData_NewDataSized(static_cast<char*>(memcpy(malloc(aBlock.size()), aBlock.data(), aBlock.size())),
                                     aSize);
}

} // namespace

// Bits are flipped in turn: what comes out is empty or inside the block. It is empty for the header, the table and the
// order of a large entry, and when the size is not the block's.
TEST(zoPackedDataTest, SurvivesDamagedBlocks)
{
    for (const Shape& theShape : { Shape{ 3, 3, 6, 13 }, Shape{ 1, 60, 1, 127 }, Shape{ 1, 2, 40000, 5 } })
    {
        const std::string theBlock = NewBlock(theShape);
        EXPECT_EQ(theShape.mEntries * theShape.mValues * theShape.mValueSize,
                  CheckedSize(Read(theBlock, theBlock.size())));
        for (const size_t theSize : { size_t{ 0 }, size_t{ 11 }, theBlock.size() - 1, theBlock.size() + 1 })
            EXPECT_EQ(0u, zoPackedData_GetEntryCount(Read(theBlock, theSize))) << theSize;
        for (size_t i = 0; i < theBlock.size(); ++i)
        {
            if (i > 100 && i + 200 < theBlock.size()) { continue; } // values
            for (int theBit = 0; theBit < 8; ++theBit)
            {
                std::string theDamaged = theBlock;
                theDamaged[i] = static_cast<char>(theDamaged[i] ^ (1 << theBit));
                const PackedData theRecord = Read(theDamaged, theDamaged.size());
                EXPECT_LE(CheckedSize(theRecord), theBlock.size());
                const bool fIsNoticed = i < 12 || i + theShape.mNoticed >= theBlock.size();
                EXPECT_FALSE(fIsNoticed && zoPackedData_GetEntryCount(theRecord) > 0) << i << " of " << theBlock.size();
            }
        }
    }
}

// A tag that comes twice would be found once and then lost.
TEST(zoPackedDataTest, RefusesRepeatedTags)
{
    for (const uint16 theTag : Tags{ 7, 700 })
    {
        std::string theBlock = NewBlock({ 1, 2, 1, 0 });
        for (const size_t theOffset : { 18u, 20u }) // after the header, two values of a byte and their ends
            memcpy(&theBlock[theOffset], &theTag, sizeof(theTag));
        EXPECT_EQ(0u, zoPackedData_GetEntryCount(Read(theBlock, theBlock.size())));
    }
}

TEST(zoPackedDataTest, TakesItsOwnValuesAndEntries)
{
    const PackedData theRecord = NewEntry();
    zoPackedData_AddData(theRecord, 0, "no NUL", 6);
    for (uint16 i = 1; i < 200; ++i)
    {
        size_t theSize = 0;
        const char* theValue = zoPackedData_GetData(theRecord, 0, static_cast<uint16>(i - 1), &theSize);
        zoPackedData_AddData(theRecord, i, theValue, theSize);
    }
    for (uint32 i = 0; i < 5; ++i)
        zoPackedData_CopyEntry(theRecord, i, theRecord);
    EXPECT_EQ(6u * 200 * 6, CheckedSize(theRecord));
    for (uint16 i = 0; i < 200; ++i)
        ASSERT_EQ(0, memcmp("no NUL", zoPackedData_GetData(theRecord, 5, i, nullptr), 6));

    const PackedData theRead = zoPackedData_NewData(zoPackedData_TakeData(theRecord));
    zoPackedData_AddData(theRead, 0, "ignored", 7);
    EXPECT_STREQ("no NUL", zoPackedData_GetData(theRead, 5, 199, nullptr)); // no directory follows it any more
}

TEST(zoPackedDataTest, FindsEntriesByTheirText)
{
    const PackedData theRecord = zoPackedData_New(0);
    std::string theFound;
    for (const char* theText : { "a-mark-", "mar", "mark", "", "b", "mark" })
    {
        zoPackedData_AddNewEntry(theRecord);
        uint32 theCount = 9;
        zoPackedData_FindEntryWithText(theRecord, 5, "mark", 0, nullptr); // what this finds is not kept
        AddText(theRecord, 5, theText);
        const uint32 theEntry = zoPackedData_FindEntryWithText(theRecord, 5, "mark", 1, &theCount);
        theFound += std::to_string(theCount) + (theEntry == kzoPackedData_NoEntry ? "-" : std::to_string(theEntry));
        EXPECT_EQ(0u, zoPackedData_FindEntryWithText(theRecord, 5, "a", 0, nullptr));
    }
    EXPECT_EQ("1-1-22222232", theFound);
    EXPECT_EQ(kzoPackedData_NoEntry, zoPackedData_FindEntryWithText(theRecord, 5, "", 0, nullptr));
    zoPackedData_CopyEntry(theRecord, 2, theRecord);
    EXPECT_EQ(6u, zoPackedData_FindEntryWithText(theRecord, 5, "mark", 3, nullptr));
}
