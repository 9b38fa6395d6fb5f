#include <gtest/gtest.h>
#include <zoltTools/zoSocketPolicyConfig.h>

TEST(zoSocketPolicyTest, AdmitsByAddressAndInterface)
{
    const char kText[] = "[s]\nQOSDisabled=yes\nexclude-if= wlan0 ,,eth1\n[t]\nexclude-if=";
    zoConfigFile* theFile = zoConfigFile_NewFromText(kText, sizeof(kText) - 1);
    const struct
    {
        int mMode;
        int mfLoopback;
        int mfOther;
    } kModes[] = {
        { kzoSocketPolicy_IP_Other, 1, 1 },
        { kzoSocketPolicy_IP_All, 1, 1 },
        { kzoSocketPolicy_IP_AllExceptLocalHost, 0, 1 },
        { kzoSocketPolicy_IP_LocalHostOnly, 1, 0 },
    };
    for (const auto& theMode : kModes)
    {
        zoSocketPolicy* thePolicy = zoSocketPolicy_New(theMode.mMode, 0);
        EXPECT_EQ(theMode.mMode, zoSocketPolicy_GetMode(thePolicy));
        EXPECT_EQ(theMode.mfLoopback, zoSocketPolicy_Admits(thePolicy, "lo", 1));
        EXPECT_EQ(theMode.mfOther, zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        EXPECT_FALSE(zoSocketPolicy_IsQOSDisabled(thePolicy));
        zoSocketPolicy_Configure(thePolicy, theFile, "s");
        EXPECT_TRUE(zoSocketPolicy_IsQOSDisabled(thePolicy));
        EXPECT_FALSE(zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        EXPECT_FALSE(zoSocketPolicy_Admits(thePolicy, "wlan0", 0));
        EXPECT_EQ(theMode.mfOther, zoSocketPolicy_Admits(thePolicy, "eth10", 0));
        zoSocketPolicy_Configure(thePolicy, theFile, "absent");
        EXPECT_FALSE(zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        zoSocketPolicy_Configure(thePolicy, theFile, "t");
        EXPECT_EQ(theMode.mfOther, zoSocketPolicy_Admits(thePolicy, "eth1", 0));
        zoSocketPolicy_Delete(thePolicy);
    }
    EXPECT_TRUE(zoSocketPolicy_Admits(nullptr, "eth0", 0));
    zoConfigFile_Delete(theFile);
}
