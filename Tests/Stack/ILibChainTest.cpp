#include "Support/Catchers.h"
#include "Support/TestChain.h"
#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <random>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace
{

// What the timers must do, kept in a sorted map; their callbacks check themselves against it, and change it at random.
class TimerModel
{
public:
    TimerModel() { std::fill(std::begin(mKeys), std::end(mKeys), this); }

    void Step()
    {
        const auto theChoice = mRandom() % 10;
        if (theChoice < 6) { Add(); }
        else if (theChoice < 8) { Remove(); }
        else
        {
            const uint64 theTime = mRandom() % 200 ? mRandom() % 50 : 5000;
            mEnd = { mChain.mClock + theTime, mNumber };
            mChain.Pass(theTime);
            EXPECT_TRUE(mPending.empty() || mPending.begin()->first >= mEnd);
        }
    }
    void Destroy()
    {
        mExpectedRemovals += mPending.size();
        ILibChain_Delete(mChain.mChain);
        mChain.mChain = nullptr;
        EXPECT_EQ(mExpectedRemovals, mRemovals);
    }

    size_t mCalls = 0;
    size_t mRemovals = 0;
    size_t mMost = 0;

private:
    typedef TimerModel* Key; // a timer's data is where it lies

    void Add()
    {
        Key* theKey = &mKeys[mRandom() % 2 ? 0 : mRandom() % 200];
        const int theTime = static_cast<int>(mRandom() % 3000) - 100;
        mPending[{ mChain.mClock + static_cast<uint64>(std::max(theTime, 0)), mNumber++ }] = theKey;
        mMost = std::max(mMost, mPending.size());
        mChain.Add(theKey, theTime, Called, [](void* aKey) { ++(*static_cast<Key*>(aKey))->mRemovals; });
    }
    void Remove()
    {
        Key* theKey = &mKeys[mRandom() % 50 ? mRandom() % 200 : 0];
        for (auto theTimer = mPending.begin(); theTimer != mPending.end();)
        {
            const bool fGoes = theTimer->second == theKey;
            mExpectedRemovals += fGoes;
            theTimer = fGoes ? mPending.erase(theTimer) : std::next(theTimer);
        }
        ILibLifeTime_Remove(mChain.mLifeTime, theKey);
        EXPECT_EQ(mExpectedRemovals, mRemovals);
    }
    static void Called(void* aKey)
    {
        TimerModel& theModel = **static_cast<Key*>(aKey);
        ASSERT_FALSE(theModel.mPending.empty());
        const auto theFirst = theModel.mPending.begin();
        EXPECT_EQ(theFirst->second, aKey);
        EXPECT_LT(theFirst->first, theModel.mEnd) << "for a later turn";
        theModel.mPending.erase(theFirst);
        ++theModel.mCalls;
        if (theModel.mRandom() % 3 == 0) { theModel.Add(); }
        if (theModel.mRandom() % 5 == 0) { theModel.Remove(); }
    }

    std::mt19937 mRandom{ 62 };
    std::map<std::pair<uint64, uint64>, Key*> mPending; // by when it is due, and by number
    TestChain mChain;
    uint64 mNumber = 0;
    std::pair<uint64, uint64> mEnd; // of what this turn calls
    size_t mExpectedRemovals = 0;
    Key mKeys[200];
};

// An object that writes down when its slots are called, and may do something in one of them.
struct Tracer
{
    Tracer(std::string* aTrace, char aName) : mTrace(aTrace), mName(aName)
    {
        mChain = { Slot<'l'>, Slot<'f'>, PreSelect, PostSelect, Slot<'x'>, Slot<'y'>, Slot<'z'>, Slot<'t'>, Free, {} };
    }
    template <char kSlot>
    static void Slot(void* aTracer)
    {
        Tracer* theTracer = static_cast<Tracer*>(aTracer);
        *theTracer->mTrace += { theTracer->mName, kSlot, ' ' };
        if (theTracer->mAdded && theTracer->mAddingSlot == kSlot)
        {
            ILibAddToChain(theTracer->mChain.mBaseChain, theTracer->mAdded);
            theTracer->mAdded = nullptr;
        }
    }
    static void PreSelect(void* aTracer, ILibChain_PollSet* aPollSet, int* aMaxWait)
    {
        Tracer* theTracer = static_cast<Tracer*>(aTracer);
        if (theTracer->mSocket != kzoSocketInvalid)
        {
            *aMaxWait = std::min(*aMaxWait, 5000); // the socket is quicker
            theTracer->mPlace = ILibChain_PollSet_Add(aPollSet, theTracer->mSocket, POLLIN);
        }
        Slot<'s'>(aTracer);
    }
    static void PostSelect(void* aTracer, const ILibChain_PollSet* aPollSet)
    {
        Tracer* theTracer = static_cast<Tracer*>(aTracer);
        const int theEvents = ILibChain_PollSet_GetEvents(aPollSet, theTracer->mPlace);
        (theEvents & POLLIN) != 0 ? Slot<'!'>(aTracer) : Slot<'p'>(aTracer);
    }
    static void Free(void* aTracer)
    {
        Slot<'F'>(aTracer);
        delete static_cast<Tracer*>(aTracer);
    }

    ILibChain mChain; // first
    std::string* mTrace;
    char mName;
    char mAddingSlot = '\0';
    Tracer* mAdded = nullptr;
    zoSocket mSocket = kzoSocketInvalid;
    size_t mPlace = SIZE_MAX;
};

void StopChain(void* aChain) { ILibChain_Stop(static_cast<ILibBaseChain*>(aChain)); }

void Count(void* aCount) { ++*static_cast<int*>(aCount); }

} // namespace

TEST(ILibLifeTimeTest, DoesWhatASortedMapDoes)
{
    TimerModel theModel;
    for (int i = 0; i < 40000; ++i)
        theModel.Step();
    theModel.Destroy();
    EXPECT_GT(theModel.mCalls, 1000u);
    EXPECT_GT(theModel.mRemovals, 1000u);
    EXPECT_GT(theModel.mMost, 200u);
}

TEST(ILibLifeTimeTest, SurvivesAClockThatJumps)
{
    TestChain theChain;
    int theNear = 0;
    int theFar = 0;
    theChain.Add(&theFar, INT32_MAX, Count);
    theChain.Add(&theNear, 4000, Count);
    theChain.Pass(3999);
    theChain.mClock = 5; // back
    theChain.Pass(0);
    EXPECT_EQ(0, theNear);
    theChain.Pass(1);
    EXPECT_EQ(1, theNear);
    for (int i = 1; i <= 3; ++i) // ahead, and to and fro
    {
        theChain.Pass(0 - theChain.mClock);
        theChain.Pass(UINT64_MAX);
        EXPECT_EQ(i, theFar);
        theChain.Add(&theFar, INT32_MAX, Count);
    }
    theChain.Pass(0 - theChain.mClock);
    theChain.Add(&theNear, 20, Count);
    ILibLifeTime_SetClock(
        theChain.mLifeTime, [](void*) { return UINT64_MAX; }, nullptr);
    theChain.Pass(0);
    EXPECT_EQ(1, theNear) << "20 ms are left with any clock";
    ILibLifeTime_SetClock(theChain.mLifeTime, nullptr, nullptr);
    ILibChain_Stop(theChain.mChain);
    theChain.Pass(0);
    ILibChain_RunOnce(theChain.mChain, -1); // waits for it, and no longer
    EXPECT_EQ(2, theNear);
    EXPECT_EQ(3, theFar);
}

TEST(ILibChainTest, CallsItsSlotsInOrder)
{
    static const std::pair<char, const char*> kCases[] = {
        // the slot in which "b" adds "c", what is called
        { '\0', "as bs ap bp al bl af bf as bs ap bp al bl af bf ax bx ay by az bz at bt bF aF " },
        { 's', "as bs cs ap bp cp al bl cl af bf cf as bs cs ap bp cp al bl cl af bf cf "
               "ax bx cx ay by cy az bz cz at bt ct cF bF aF " },
        { 'p', "as bs ap bp al bl af bf as bs cs ap bp cp al bl cl af bf cf "
               "ax bx cx ay by cy az bz cz at bt ct cF bF aF " },
        { 'y', "as bs ap bp al bl af bf as bs ap bp al bl af bf ax bx ay by cy az bz cz at bt ct cF bF aF " },
        { 'F', "as bs ap bp al bl af bf as bs ap bp al bl af bf ax bx ay by az bz at bt bF cF aF " },
    };
    const int theDescriptor = dup(STDERR_FILENO);
    close(theDescriptor);
    for (const auto& [theAddingSlot, theExpected] : kCases)
    {
        std::string theTrace;
        ILibBaseChain* theChain = ILibChain_New();
        Tracer* theSecond = new Tracer(&theTrace, 'b');
        theSecond->mAddingSlot = theAddingSlot;
        if (theAddingSlot) { theSecond->mAdded = new Tracer(&theTrace, 'c'); }
        ILibAddToChain(theChain, new Tracer(&theTrace, 'a'));
        ILibAddToChain(theChain, theSecond);
        ILibAddToChain(theChain, calloc(1, sizeof(ILibChain))); // no slots: skipped, and freed
        ILibChain_RunOnce(theChain, 0);
        ILibChain_RunOnce(theChain, 0);
        ILibChain_Delete(theChain);
        EXPECT_EQ(theExpected, theTrace);
    }
    EXPECT_EQ(theDescriptor, dup(STDERR_FILENO)) << "a chain has left one open";
    close(theDescriptor);
}

TEST(ILibChainTest, WaitsForDescriptors)
{
    std::string theTrace;
    ILibBaseChain* theChain = ILibChain_New();
    int theEnds[2];
    ASSERT_EQ(0, pipe(theEnds));
    Tracer* theFirst = nullptr;
    for (char theName = 'a'; theName <= 'z'; ++theName)
    {
        Tracer* theTracer = new Tracer(&theTrace, theName);
        if (theName == 'd' || theName == 'x') { theTracer->mSocket = theEnds[0]; }
        if (theName == 'd') { theFirst = theTracer; }
        ILibAddToChain(theChain, theTracer);
    }
    for (int i = 0; i < 3; ++i)
    {
        ILibChain_RunOnce(theChain, 0);
        EXPECT_EQ(1u, theFirst->mPlace);
    }
    struct rlimit theLimit, theFewerFiles;
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &theLimit));
    theFewerFiles = theLimit;
    theFewerFiles.rlim_cur = 2; // fewer than are waited for
    setrlimit(RLIMIT_NOFILE, &theFewerFiles);
    EXPECT_EQ(1, write(theEnds[1], "", 1));
    ILibChain_RunOnce(theChain, 10);
    setrlimit(RLIMIT_NOFILE, &theLimit);
    EXPECT_NE(std::string::npos, theTrace.find("wp x! yp ")) << theTrace;
    theTrace.clear();
    char theByte;
    EXPECT_EQ(1, read(theEnds[0], &theByte, 1));

    std::thread theWriter([theEnd = theEnds[1]] { EXPECT_EQ(1, write(theEnd, "", 1)); });
    ILibChain_RunOnce(theChain, -1);
    theWriter.join();
    EXPECT_NE(std::string::npos, theTrace.find("cp d! ep ")) << theTrace;
    EXPECT_NE(std::string::npos, theTrace.find("wp x! yp ")) << theTrace;
    ILibChain_Delete(theChain);
    close(theEnds[0]);
    close(theEnds[1]);
}

TEST(ILibChainTest, StopsForThreadsAndBeforehand)
{
    TestChain theChain;
    for (int i = 0; i < 500; ++i)
    {
        std::thread theThread(StopChain, theChain.mChain);
        i % 2 ? ILibChain_Run(theChain.mChain) : ILibChain_RunOnce(theChain.mChain, -1);
        theThread.join();
    }
    int theCalls = 0;
    theChain.Add(&theCalls, 0, Count);
    ILibChain_Stop(theChain.mChain);
    ILibChain_Stop(theChain.mChain);
    ILibChain_Run(theChain.mChain);
    EXPECT_EQ(1, theCalls);
    for (int i = 2; i < 5; ++i)
    {
        theChain.Add(&theCalls, 0, Count);
        theChain.Add(theChain.mChain, 0, StopChain);
        ILibChain_Run(theChain.mChain);
        EXPECT_EQ(i, theCalls);
    }
    const auto theBegin = std::chrono::steady_clock::now();
    ILibChain_RunOnce(theChain.mChain, 20); // the last stop has been done with
    EXPECT_LE(std::chrono::milliseconds(20), std::chrono::steady_clock::now() - theBegin);
    ILibChain_Stop(nullptr);
}

TEST(ILibChainTest, StopsForASignal)
{
    static ILibBaseChain* sChain;
    sChain = ILibChain_New();
    struct sigaction theAction = {}, theActionBefore = {};
    theAction.sa_handler = [](int) { ILibChain_Stop(sChain); };
    sigaction(SIGALRM, &theAction, &theActionBefore);
    for (int i = 0; i < 5; ++i)
    {
        struct itimerval theTime = {};
        theTime.it_value.tv_usec = 1 + i * 2000; // before the wait and in it
        setitimer(ITIMER_REAL, &theTime, nullptr);
        ILibChain_Run(sChain);
    }
    sigaction(SIGALRM, &theActionBefore, nullptr);
    ILibChain_Delete(sChain);
}

TEST(ILibLifeTimeTest, TakesNoTimersFromTheDying)
{
    TestChain theChain;
    theChain.Add(theChain.mLifeTime, 0, nullptr,
                 [](void* aLifeTime)
                 {
        ILibLifeTime* theLifeTime = static_cast<ILibLifeTime*>(aLifeTime);
        ILibLifeTime_AddEx(theLifeTime, theLifeTime, 0, nullptr, free);
        ILibLifeTime_Remove(theLifeTime, theLifeTime);
    });
}

TEST(ILibChainTest, WaitsForTimersThatSlotsArm)
{
    struct Armer
    {
        ILibChain mChain; // first
        int* mCalls;
    };
    for (int i = 0; i < 20; ++i)
    {
        int theCalls = 0;
        ILibBaseChain* theChain = ILibChain_New();
        Armer* theArmer = static_cast<Armer*>(calloc(1, sizeof(Armer)));
        theArmer->mCalls = &theCalls;
        theArmer->mChain.mPreSelect = [](void* anObject, ILibChain_PollSet*, int*)
        {
            ILibLifeTime* theLifeTime = ILibChain_GetLifeTime(static_cast<ILibChain*>(anObject)->mBaseChain);
            ILibLifeTime_AddEx(theLifeTime, static_cast<Armer*>(anObject)->mCalls, 3, Count, nullptr);
        };
        ILibAddToChain(theChain, theArmer);
        const auto theBegin = std::chrono::steady_clock::now();
        ILibChain_RunOnce(theChain, -1);
        EXPECT_LE(std::chrono::milliseconds(3), std::chrono::steady_clock::now() - theBegin) << "not before its time";
        EXPECT_EQ(1, theCalls);
        ILibChain_Delete(theChain);
    }
}

TEST(ILibChainTest, ReportsMisuse)
{
    const AssertionCatcher theAssertions;
    TestChain theChain;
    static const ILibLifeTime_Callback_t kMisuses[] = {
        [](void* aChain) { ILibChain_Delete(static_cast<ILibBaseChain*>(aChain)); },
        [](void* aChain) { ILibChain_Run(static_cast<ILibBaseChain*>(aChain)); },
        [](void* aChain) { ILibChain_RunOnce(static_cast<ILibBaseChain*>(aChain), 0); },
        [](void* aChain) { ILibAddToChain(static_cast<ILibBaseChain*>(aChain), nullptr); },
    };
    for (const ILibLifeTime_Callback_t theMisuse : kMisuses)
    {
        AssertionCatcher::Text().clear();
        theChain.Add(theChain.mChain, 0, theMisuse);
        theChain.Pass(0);
        EXPECT_EQ(0u, AssertionCatcher::Text().find("Libs/Internal/UPnP/Stack/ILibChain.cpp: "));
    }
    ILibLifeTime_Remove(ILibChain_GetLifeTime(nullptr), nullptr);
    ILibChain_Delete(nullptr);
}
