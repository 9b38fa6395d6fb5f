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
