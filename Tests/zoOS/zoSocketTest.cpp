#include <cstring>
#include <gtest/gtest.h>
#include <utility>
#include <zoOS/zoSocket.h>

TEST(zoSocketTest, ReadsDottedQuadsInNetworkOrder)
{
    static const std::pair<const char*, uint32> kQuads[] = {
        { "192.168.1.20", 0xC0A80114 },
        { "010.001.1.1", 0x0A010101 }, // decimal all the same
        { "255.255.255.254", 0xFFFFFFFE },
    };
    for (const auto& [theText, theAddress] : kQuads)
        EXPECT_EQ(zoSocket_htonl(theAddress), zoSocketGetAddressFromDotForm(theText)) << theText;
    for (const char* theText : { "", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.0004", "1.2.3.", "1..2.3", "1.2.3.4x",
                                 " 1.2.3.4", "-1.2.3.4", "1.2.3.4.", "host" })
        EXPECT_EQ(0u, zoSocketGetAddressFromDotForm(theText)) << theText;
    EXPECT_EQ(0u, zoSocketGetAddressFromDotForm(nullptr));
    const uint32 theValue = zoSocket_htonl(0x01020304);
    EXPECT_EQ(0, memcmp(&theValue, "\1\2\3\4", 4));
}
