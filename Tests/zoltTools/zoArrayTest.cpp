#include "Support/Records.h"
#include <gtest/gtest.h>

TEST(zoArrayTest, KeepsStringsThroughTheRecord)
{
    zoArray_t* theArray = NewStringArray({ "first", "", "third", "fourth" });
    zoArray_RemoveAt(theArray, 2, 1);
    zoArray_RemoveAt(theArray, 9, 1);
    const PackedData theRecord = NewEntry();
    zoPackedData_AddArray(theRecord, 16, theArray, zoStringArray_FlattenerFunc);
    zoPackedData_AddArray(theRecord, 17, nullptr, zoStringArray_FlattenerFunc);
    zoArray_Delete(theArray);
    for (const uint16 theTag : { uint16{ 16 }, uint16{ 17 }, uint16{ 18 } })
    {
        zoArray_t* theRead = zoPackedData_GetDataArray(theRecord, 0, theTag, zoStringArray_UnFlattenerFunc);
        zoArray_SetFreeFunc(theRead, zoStringArray_FreeFunc);
        std::string theTexts;
        for (size_t i = 0; i < zoArray_GetCount(theRead); ++i)
            theTexts += static_cast<char*>(zoArray_At(theRead, i)) + std::string("|");
        EXPECT_EQ(theTag == 16 ? "first||fourth|" : "", theTexts);
        EXPECT_EQ(nullptr, zoArray_At(theRead, 3));
        zoArray_Delete(theRead);
    }
}
