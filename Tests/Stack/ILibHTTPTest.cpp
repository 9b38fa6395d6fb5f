#include <UPnP/Stack/ILibHTTP.h>
#include <gtest/gtest.h>
#include <string>

TEST(ILibHTTPTest, FindsTokensOfUserAgents)
{
    const char kAgent[] = "VLC/3.0.20 LibVLC/3.0.20";
    EXPECT_TRUE(ILibUserAgentHas(kAgent, "LibVLC/junk", 7));
    EXPECT_FALSE(ILibUserAgentHas(kAgent, "libvlc/", 7));
    EXPECT_FALSE(ILibUserAgentHas(kAgent, "", 0));
    EXPECT_FALSE(ILibUserAgentHas(nullptr, "x", 1));

    EXPECT_TRUE(ILibUserAgentHasOneOfThem(kAgent, " ,\tFoobar2000 , VLC/3 "));
    EXPECT_TRUE(ILibUserAgentHasOneOfThem(kAgent, "20 LibVLC"));
    for (const char* theList : { "", " , ,", "vlc",
                                 "VLC/3.0.20 LibVLC/3.0.20 "
                                 "x",
                                 "VLC/4;VLC/3" })
        EXPECT_FALSE(ILibUserAgentHasOneOfThem(kAgent, theList)) << theList;
    EXPECT_TRUE(ILibUserAgentHasOneOfThem((std::string(1021, ' ') + "VLC").c_str(), "VLC"));
    EXPECT_FALSE(ILibUserAgentHasOneOfThem((std::string(1022, ' ') + "VLC").c_str(), "VLC")); // only 1024 bytes count
    EXPECT_FALSE(ILibUserAgentHasOneOfThem(kAgent, nullptr));
    EXPECT_FALSE(ILibUserAgentHasOneOfThem(nullptr, "VLC"));
}
