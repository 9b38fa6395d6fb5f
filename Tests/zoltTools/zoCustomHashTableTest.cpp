#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <vector>
#include <zoltTools/zoCustomHashTable.h>

namespace
{

// A table beside the plain thing that it must be like.
struct ComparedTable
{
    ~ComparedTable() { zoCustomHashTable_Delete(mTable); }

    void Set(const std::string& aKey, const std::string& aValue, bool afAllocated)
    {
        if (mValues.insert_or_assign(aKey, aValue).second) { mOrder.push_back(aKey); }
        if (!afAllocated) { zoCustomHashTable_Add(mTable, aKey.c_str(), aValue.c_str()); }
        else { zoCustomHashTable_AddValueAllocated(mTable, aKey.c_str(), strdup(aValue.c_str())); }
    }
    void Remove(const std::string& aKey)
    {
        zoCustomHashTable_Remove(mTable, aKey.c_str());
        if (mValues.erase(aKey) > 0) { mOrder.erase(std::find(mOrder.begin(), mOrder.end(), aKey)); }
    }
    void Check() const
    {
        ASSERT_EQ(mOrder.size(), zoCustomHashTable_GetTupleCount(mTable));
        for (size_t i = 0; i < mOrder.size(); ++i)
        {
            ASSERT_STREQ(mOrder[i].c_str(), zoCustomHashTable_GetKeyAtIndex(mTable, i));
            ASSERT_EQ(mValues.at(mOrder[i]), zoCustomHashTable_GetValueAtIndex(mTable, i));
            ASSERT_EQ(mValues.at(mOrder[i]), zoCustomHashTable_Get(mTable, mOrder[i].c_str()));
        }
        ASSERT_EQ(nullptr, zoCustomHashTable_GetKeyAtIndex(mTable, mOrder.size()));
        ASSERT_EQ(nullptr, zoCustomHashTable_GetValueAtIndex(mTable, mOrder.size()));
    }

    std::map<std::string, std::string> mValues;
    std::vector<std::string> mOrder;
    zoCustomHashTable* mTable = zoCustomHashTable_New_String_String();
};

} // namespace

// Few keys, then many, then a table that shrinks to nothing, and again.
TEST(zoCustomHashTableTest, IsLikeAMapThatKeepsItsOrder)
{
    std::mt19937 theRandom(20091130);
    ComparedTable theTable;
    size_t theLargest = 0;
    for (uint32 i = 0; i < 10000; ++i)
    {
        const bool theShrinking = i % 4000 > 2800 && !theTable.mOrder.empty();
        const uint32 theKeyCount = i % 4000 < 1000 ? 8 : 600;
        const std::string theKey = std::to_string(theRandom() % theKeyCount) + std::string(theRandom() % 12, 'k');
        const uint32 theChoice = theRandom() % 8;
        const size_t theIndexes[] = { 0, theTable.mOrder.size() - 1, theRandom() % (theTable.mOrder.size() + 1) / 2 };
        if (theShrinking) { theTable.Remove(theTable.mOrder[theIndexes[i / 4000]]); } // at either end, in the middle
        else if (theChoice < 2) { theTable.Remove(theKey); }
        else { theTable.Set(theKey, std::to_string(i), theChoice < 5); }
        theLargest = std::max(theLargest, theTable.mOrder.size());
        if (i % 50 == 0 || theTable.mOrder.size() < 10) { theTable.Check(); }
        const bool theFound = zoCustomHashTable_Get(theTable.mTable, theKey.c_str()) != nullptr;
        ASSERT_EQ(theTable.mValues.count(theKey) > 0, theFound);
    }
    EXPECT_GT(theLargest, 300u);

    zoCustomHashTable* theCopy = zoCustomHashTable_Duplicate(theTable.mTable);
    std::swap(theCopy, theTable.mTable);
    zoCustomHashTable_Delete(theCopy);
    theTable.Check();
}

TEST(zoCustomHashTableTest, TakesItsOwnTexts)
{
    zoCustomHashTable* theTable = zoCustomHashTable_New_String_String();
    zoCustomHashTable_Add(theTable, "", "empty key");
    zoCustomHashTable_Add(theTable, "key", "value");
    zoCustomHashTable_Add(theTable, "key", zoCustomHashTable_Get(theTable, "key"));
    EXPECT_STREQ("value", zoCustomHashTable_Get(theTable, "key"));
    zoCustomHashTable_Remove(theTable, zoCustomHashTable_GetKeyAtIndex(theTable, 0));
    EXPECT_STREQ("key", zoCustomHashTable_GetKeyAtIndex(theTable, 0));
    zoCustomHashTable_Delete(theTable);
    EXPECT_EQ(0u, zoCustomHashTable_GetTupleCount(nullptr));
    EXPECT_EQ(nullptr, zoCustomHashTable_Duplicate(nullptr));
}
