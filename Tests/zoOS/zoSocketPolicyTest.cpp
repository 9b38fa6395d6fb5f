#include "Support/Config.h"
#include <gtest/gtest.h>
#include <zoltTools/zoSocketPolicyConfig.h>

TEST(zoSocketPolicyTest, AdmitsByAddressAndInterface)
{
    const ConfigFile theFile = NewConfig("[s]\nQOSDisabled=yes\nexclude-if= wlan0 ,,eth1\n[t]\nexclude-if=");
    const int kModes[][3] = {
        // mode, whether the loopback interface, whether others
        { kzoSocketPolicy_IP_Other, 1, 1 },
        { kzoSocketPolicy_IP_All, 1, 1 },
        { kzoSocketPolicy_IP_AllExceptLocalHost, 0, 1 },
        { kzoSocketPolicy_IP_LocalHostOnly, 1, 0 },
    };
    for (const auto& [theMode, fLoopback, fOther] : kModes)
    {
        zoSocketPolicy* thePolicy = zoSocketPolicy_New(theMode, 0);
        EXPECT_EQ(theMode, zoSocketPolicy_GetMode(thePolicy));
        EXPECT_EQ(fLoopback, zoSocketPolicy_Admits(thePolicy, "lo", 1));
        EXPECT_EQ(fOther, zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        EXPECT_FALSE(zoSocketPolicy_IsQOSDisabled(thePolicy));
        zoSocketPolicy_Configure(thePolicy, theFile, "s");
        EXPECT_TRUE(zoSocketPolicy_IsQOSDisabled(thePolicy));
        EXPECT_FALSE(zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        EXPECT_FALSE(zoSocketPolicy_Admits(thePolicy, "wlan0", 0));
        EXPECT_EQ(fOther, zoSocketPolicy_Admits(thePolicy, "eth10", 0));
        zoSocketPolicy_Configure(thePolicy, theFile, "absent");
        EXPECT_FALSE(zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        zoSocketPolicy_Configure(thePolicy, theFile, "t");
        EXPECT_EQ(fOther, zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        zoSocketPolicy_Delete(thePolicy);
    }
    EXPECT_TRUE(zoSocketPolicy_Admits(nullptr, "eth0", 0));
}
