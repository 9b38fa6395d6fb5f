#include "Support/Catchers.h"
#include <csignal>
#include <gtest/gtest.h>
#include <zoOS/zoTypes.h>

TEST(zoAssertTest, FailedAssertionsAreReportedAndReturn)
{
    {
        AssertionCatcher theCatcher;
        const uint64 theHighBit = UINT64_C(1) << 40; // does not get lost on its way to an int
        EXPECT_TRUE(zoAssert(theHighBit));
        EXPECT_EQ("", theCatcher.Text());
        EXPECT_FALSE(zoAssert(theCatcher.Text() == "x"));
        EXPECT_NE(std::string::npos, theCatcher.Text().find("zoAssertTest.cpp: theCatcher.Text() == \"x\""));
    }
    EXPECT_EQ(nullptr, zoAssert_SetHandler(nullptr));
    EXPECT_EXIT(_zoAssert("a == b", "Libs/x.cpp", 7), testing::KilledBySignal(SIGABRT), "Libs/x.cpp:7: .*a == b");
}
