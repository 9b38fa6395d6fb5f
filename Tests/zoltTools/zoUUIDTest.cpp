#include <gtest/gtest.h>
#include <set>
#include <string>
#include <zoltTools/zoUUID.h>

TEST(zoUUIDTest, AllBitsButTheVersionAreRandom)
{
    std::set<std::string> theDifferent;
    std::string theSeen(sizeof(zoUUID), '\0'); // the bits that were ever set
    for (int i = 0; i < 200; ++i)
    {
        zoUUID theUUID = {};
        zoUUID_Generate(theUUID);
        EXPECT_EQ(0x40, theUUID[6] & 0xF0);
        EXPECT_EQ(0x80, theUUID[8] & 0xC0);
        theDifferent.emplace(reinterpret_cast<const char*>(theUUID), sizeof(theUUID));
        for (size_t k = 0; k < sizeof(theUUID); ++k)
            theSeen[k] = static_cast<char>(theSeen[k] | theUUID[k]);
    }
    EXPECT_EQ(200u, theDifferent.size());
    EXPECT_EQ("\xFF\xFF\xFF\xFF\xFF\xFF\x4F\xFF\xBF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", theSeen);
}
