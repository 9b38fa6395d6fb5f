#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <zoltTools/zoBuffer.h>

TEST(zoBufferTest, GrowsAndHandsOver)
{
    zoBuffer* theBuffer = zoBuffer_New(0);
    std::string theExpected;
    for (int i = 0; i < 1000; ++i)
    {
        zoBuffer_AppendStr(theBuffer, std::to_string(i).c_str());
        theExpected += std::to_string(i);
    }
    zoBuffer_AppendStr(theBuffer, nullptr);
    EXPECT_LE(theBuffer->mPos, theBuffer->mSize);
    size_t theLength = 0;
    char* theBytes = zoBuffer_TakeOwnership(theBuffer, &theLength, nullptr);
    EXPECT_EQ(theExpected, std::string(theBytes, theLength));
    free(theBytes);
    zoBuffer_AppendStr(theBuffer, "again");
    EXPECT_EQ(5u, theBuffer->mPos);
    zoBuffer_Delete(theBuffer);
}
