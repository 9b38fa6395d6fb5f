#include "Support/Catchers.h"
#include "Support/NetworkNamespace.h"
#include "Support/Records.h"
#include "Support/TestChain.h"
#include <UPnP/Utilities/UPnPIPAddressMonitor.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>
#include <zoltTools/zoIPAddressMonitor.h>
#include <zoltTools/zoMemory.h>

namespace
{

typedef std::vector<std::string> Texts;

// What the monitors are told while there is one of these.
struct FakeAddresses
{
    FakeAddresses()
    {
        sNow = { "10.0.0.1", "fe80::1" };
        sLooks = 0;
        zoIPAddressMonitor_SetSource(Read);
    }
    ~FakeAddresses() { zoIPAddressMonitor_SetSource(nullptr); }
    FakeAddresses& operator=(FakeAddresses&&) = delete;

    static zoArray_t* Read(const zoSocketPolicy*)
    {
        ++sLooks;
        if (sNow == Texts{ "failure" }) { return nullptr; }
        const bool fEndsWithNull = !sNow.empty() && sNow.back() == "null";
        zoArray_t* theArray = NewStringArray({ sNow.begin(), sNow.end() - fEndsWithNull });
        if (fEndsWithNull) { zoArray_Append(theArray, nullptr); }
        return theArray;
    }

    static inline Texts sNow;
    static inline int sLooks;
};

// A monitor on a chain, and the calls that have come from it.
struct Watched : TestChain
{
    int CallsAfter(uint64 aMilliseconds)
    {
        Pass(aMilliseconds);
        return mCalls;
    }

    int mCalls = 0;
    struct IPAddressMonitor* mMonitor = UPnPIPAddressMonitor_Create(
        mChain, [](void* aCalls) { ++*static_cast<int*>(aCalls); }, &mCalls, nullptr);
};

// The addresses that a policy admits, separated by blanks.
std::string AddressesFor(int aMode, const char* anExcluded = nullptr)
{
    zoSocketPolicy* thePolicy = zoSocketPolicy_New(aMode, 0);
    zoSocketPolicy_SetExcludedInterfaces(thePolicy, anExcluded);
    const Owned<zoArray_t, zoArray_Delete> theAddresses = zoIPAddressMonitor_GetAddresses(thePolicy);
    std::string theTexts;
    for (size_t i = 0; i < zoArray_GetCount(theAddresses); ++i)
    {
        const std::string theText = static_cast<const char*>(zoArray_At(theAddresses, i));
        if (theText != "::1") { theTexts += " " + theText; } // not every host has IPv6
    }
    zoSocketPolicy_Delete(thePolicy);
    return theTexts;
}

} // namespace

TEST(UPnPIPAddressMonitorTest, CallsWhenTheSetOfAddressesDiffers)
{
    static const std::pair<Texts, int> kCases[] = {
        // addresses, calls until then
        { { "10.0.0.1", "fe80::1" }, 0 },
        { { "fe80::1", "10.0.0.1", "fe80::1", "null" }, 0 }, // the same set
        { { "failure" }, 0 },                                // the former list stays
        { { "10.0.0.1", "fe80::1" }, 0 },
        { { "10.0.0.1", "fe80::1", "10.0.0.2" }, 1 },
        { { "10.0.0.1", "fe80::1", "10.0.0.2" }, 1 },
        { { "10.0.0.1", "fe80::2", "10.0.0.2" }, 2 },
        { { "10.0.0.1", "fe80::2" }, 3 },
        { {}, 4 },
        { { "failure" }, 4 },
        { { "null" }, 4 },
        { { "10.0.0.1" }, 5 },
    };
    const FakeAddresses theAddresses;
    Watched theWatched;
    int theLooks = 1;
    for (const auto& [theNow, theCalls] : kCases)
    {
        FakeAddresses::sNow = { "back", "and", "forth" };
        theWatched.CallsAfter(3999);
        FakeAddresses::sNow = theNow;
        EXPECT_EQ(theLooks++, FakeAddresses::sLooks);
        EXPECT_EQ(theCalls, theWatched.CallsAfter(1)) << "look " << theLooks;
        EXPECT_EQ(theLooks, FakeAddresses::sLooks);
    }
    theWatched.CallsAfter(60000); // a busy chain makes up for nothing
    EXPECT_EQ(theLooks + 1, FakeAddresses::sLooks);
    FakeAddresses::sNow = { "failure" };
    Watched theBlind;
    FakeAddresses::sNow = { "10.0.0.1" };
    EXPECT_EQ(0, theBlind.CallsAfter(4000)) << "the first look that succeeds";
    FakeAddresses::sNow = {};
    EXPECT_EQ(1, theBlind.CallsAfter(4000));

    FakeAddresses::sNow = { "fe80::1", "10.0.0.2", "fe80::1", "10.0.0.10" };
    EXPECT_EQ(" 10.0.0.10 10.0.0.2 fe80::1", AddressesFor(kzoSocketPolicy_IP_All));
    FakeAddresses::sNow = { "failure" };
    EXPECT_EQ(nullptr, zoIPAddressMonitor_GetAddresses(nullptr));
}

TEST(UPnPIPAddressMonitorTest, ADestroyedMonitorIsNoMore)
{
    const FakeAddresses theAddresses;
    const AssertionCatcher theAssertions;
    static const char kAssertion[] = "Libs/Internal/UPnP/Utilities/UPnPIPAddressMonitor.cpp: "
                                     "((theIPAddressMonitor) != NULL) && "
                                     "((theIPAddressMonitor)->_mMagicNumber == (0xC0CAD0DA))";
    Watched theWatched;
    FakeAddresses::sNow.clear();
    ILibChain* theObject = reinterpret_cast<ILibChain*>(theWatched.mMonitor);
    theObject->mDestroy(theObject);
    EXPECT_EQ(0, theWatched.CallsAfter(4000));
    EXPECT_EQ("", AssertionCatcher::Text()) << "the timer is left";
    theObject->mDestroy(theObject);
    EXPECT_EQ(kAssertion, AssertionCatcher::Text());

    // The magic number of another one goes astray. Its timer finds that out, and is not armed again.
    Watched theOther;
    uint32* theMagicNumber = reinterpret_cast<uint32*>(reinterpret_cast<ILibChain*>(theOther.mMonitor) + 1);
    EXPECT_EQ(0xC0CAD0DAu, std::exchange(*theMagicNumber, 0));
    for (const char* theAssertion : { kAssertion, "" })
    {
        AssertionCatcher::Text().clear();
        FakeAddresses::sNow.push_back("10.0.0.2");
        EXPECT_EQ(0, theOther.CallsAfter(4000));
        EXPECT_EQ(theAssertion, AssertionCatcher::Text());
    }
    *theMagicNumber = 0xC0CAD0DA;
}

TEST(UPnPIPAddressMonitorTest, WatchesTheHostsInterfaces)
{
    RunInNetworkNamespace(
        []
        {
        Watched theWatched;
        EXPECT_EQ(0, theWatched.CallsAfter(4000));
        ASSERT_TRUE(AddAddress("192.0.2.7", "lo:1"));
        EXPECT_EQ(1, theWatched.CallsAfter(4000)) << "an address has come";
        EXPECT_EQ(" 127.0.0.1 192.0.2.7", AddressesFor(kzoSocketPolicy_IP_All));
        EXPECT_EQ(" 127.0.0.1", AddressesFor(kzoSocketPolicy_IP_LocalHostOnly));
        EXPECT_EQ(" 192.0.2.7", AddressesFor(kzoSocketPolicy_IP_AllExceptLocalHost));
        ASSERT_TRUE(AddAddress("172.16.0.1", "lox"));
        EXPECT_EQ(" 127.0.0.1 172.16.0.1", AddressesFor(kzoSocketPolicy_IP_All, "lo:1"));
        EXPECT_EQ("", AddressesFor(kzoSocketPolicy_IP_All, "lo")) << "an interface's, whatever their labels";
        EXPECT_EQ(2, theWatched.CallsAfter(4000));
        ASSERT_TRUE(SetInterfaceUp("lo:1", false));
        EXPECT_EQ(3, theWatched.CallsAfter(4000)) << "an address has gone";
        ASSERT_TRUE(SetInterfaceUp("lo", false));
        EXPECT_EQ(4, theWatched.CallsAfter(4000)) << "an interface has gone down";
        EXPECT_EQ("", AddressesFor(kzoSocketPolicy_IP_All));
        EXPECT_EQ(4, theWatched.CallsAfter(4000));
    });
}
