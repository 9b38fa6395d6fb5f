#include "Support/Records.h"
#include <gtest/gtest.h>

TEST(zoArrayTest, KeepsStringsThroughTheRecord)
{
    zoArray_t* theArray = NewStringArray({ "first", "", "third", "fourth" });
    zoArray_RemoveAt(theArray, 2, 1);
    zoArray_RemoveAt(theArray, 9, 1);
    EXPECT_EQ(nullptr, zoArray_At(theArray, 3));
    const PackedData theRecord = NewEntry();
    zoPackedData_AddArray(theRecord, 16, theArray, zoStringArray_FlattenerFunc);
    zoPackedData_AddArray(theRecord, 17, nullptr, zoStringArray_FlattenerFunc);
    zoArray_Delete(theArray);
    EXPECT_EQ("first||fourth|", TextsOf(theRecord, 0, 16));
    EXPECT_EQ("", TextsOf(theRecord, 0, 17));
    EXPECT_EQ("", TextsOf(theRecord, 0, 18));
}

TEST(zoArrayTest, PacksStringsWithoutAnArray)
{
    zoArray_t* theArray = NewStringArray({ "first", "", "third" });
    size_t theSize = 0;
    char* theBytes = zoStringArray_FlattenerFunc(theArray, &theSize);
    std::string theTarget(theSize, 'x');
    EXPECT_EQ(theSize, zoStringArray_Pack("first\0\0third", 13, theTarget.data(), theSize - 1));
    EXPECT_EQ(std::string(theSize, 'x'), theTarget);
    EXPECT_EQ(theSize, zoStringArray_Pack("first\0\0third", 13, theTarget.data(), theSize));
    EXPECT_EQ(std::string(theBytes, theSize), theTarget);
    EXPECT_EQ(0U, zoStringArray_Pack(nullptr, 0, theTarget.data(), theSize));
    zoArray_Delete(theArray);
    free(theBytes);
}

TEST(zoArrayTest, IsAQueue)
{
    static char sBytes[64];
    zoArray_t* theArray = zoArray_New();
    size_t theFirst = 0;
    for (size_t i = 0; i < sizeof(sBytes); ++i)
    {
        zoArray_Append(theArray, &sBytes[i]);
        const size_t theRemoved = i < 40 ? i % 8 / 7 * 3 : i % 3; // grows, then empties
        zoArray_RemoveAt(theArray, 0, theRemoved);
        theFirst = std::min(theFirst + theRemoved, i + 1);
        ASSERT_EQ(i + 1 - theFirst, zoArray_GetCount(theArray));
        for (size_t k = theFirst; k <= i; ++k)
            ASSERT_EQ(&sBytes[k], zoArray_At(theArray, k - theFirst));
    }
    zoArray_Delete(theArray);
}
