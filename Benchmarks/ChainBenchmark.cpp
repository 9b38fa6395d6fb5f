#include <UPnP/Stack/ILibChain.h>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <random>
#include <string>
#include <vector>

// Timers of a chain whose clock is moved by hand. Each benchmark does one thing to N timers in a random order;
// with O(log n) for each of them, the fit comes out as n log n.

namespace
{

struct Timers
{
    explicit Timers(size_t aCount) : mCalls(aCount), mTimes(aCount)
    {
        ILibLifeTime_SetClock(
            mLifeTime, [](void* aClock) { return *static_cast<uint64*>(aClock); }, &mClock);
        std::mt19937 theRandom(62);
        for (int& theTime : mTimes)
            theTime = static_cast<int>(theRandom() % kLongest) + 1;
    }
    ~Timers() { ILibChain_Delete(mChain); }
    Timers(const Timers&) = delete;
    Timers& operator=(const Timers&) = delete;

    void ArmAll()
    {
        for (size_t i = 0; i < mTimes.size(); ++i)
            ILibLifeTime_AddEx(mLifeTime, &mCalls[i], mTimes[i], Count, Count);
    }
    void RemoveAll()
    {
        for (int& theCalls : mCalls)
            ILibLifeTime_Remove(mLifeTime, &theCalls);
    }
    void FireAll()
    {
        mClock += kLongest;
        ILibChain_RunOnce(mChain, 0);
    }
    bool AreAllCalled(int aCalls) const
    {
        return std::count(mCalls.begin(), mCalls.end(), aCalls) == static_cast<ptrdiff_t>(mCalls.size());
    }

    static const int kLongest = 1000000;
    static void Count(void* aCalls) { ++*static_cast<int*>(aCalls); }

    uint64 mClock = 0;
    ILibBaseChain* mChain = ILibChain_New();
    ILibLifeTime* mLifeTime = ILibChain_GetLifeTime(mChain);
    std::vector<int> mCalls;
    std::vector<int> mTimes;
};

enum Deed
{
    kArm,
    kRemove,
    kFire
};

// Arms all timers and gets rid of them again, and measures one of the two.
void OverTimers(benchmark::State& aState, Deed aDeed)
{
    Timers theTimers(static_cast<size_t>(aState.range(0)));
    int theRounds = 0;
    const auto MeasureOnlyIf = [&aState](bool afMeasured)
    { afMeasured ? aState.ResumeTiming() : aState.PauseTiming(); };
    for (auto _ : aState)
    {
        if (aDeed != kArm) { aState.PauseTiming(); }
        theTimers.ArmAll();
        MeasureOnlyIf(aDeed != kArm);
        aDeed == kFire ? theTimers.FireAll() : theTimers.RemoveAll();
        if (aDeed == kArm) { aState.ResumeTiming(); }
        ++theRounds;
    }
    if (!theTimers.AreAllCalled(theRounds)) { aState.SkipWithError("wrong answer"); }
    aState.SetItemsProcessed(static_cast<int64_t>(aState.iterations()) * aState.range(0));
    aState.SetComplexityN(aState.range(0));
}

// One timer of an object goes and comes again while N others are pending.
void BM_RearmTimer(benchmark::State& aState)
{
    Timers theTimers(static_cast<size_t>(aState.range(0)));
    theTimers.ArmAll();
    size_t theNext = 0;
    for (auto _ : aState)
    {
        ILibLifeTime_Remove(theTimers.mLifeTime, &theTimers.mCalls[theNext]);
        ILibLifeTime_AddEx(theTimers.mLifeTime, &theTimers.mCalls[theNext], theTimers.mTimes[theNext], Timers::Count,
                           Timers::Count);
        theNext = (theNext + 1) % theTimers.mCalls.size();
    }
    aState.SetComplexityN(aState.range(0));
}
BENCHMARK(BM_RearmTimer)->RangeMultiplier(10)->Range(10, 100000)->Complexity(benchmark::oLogN);

void Register(const std::string& aName, Deed aDeed)
{
    benchmark::RegisterBenchmark(("BM_Growth/" + aName).c_str(),
                                 [aDeed](benchmark::State& aState) { OverTimers(aState, aDeed); })
        ->RangeMultiplier(10)
        ->Range(100, 100000)
        ->Complexity(benchmark::oNLogN);
}

const bool kfRegistered = []
{
    Register("TimersArmed", kArm);
    Register("TimersRemoved", kRemove);
    Register("TimersFired", kFire);
    return true;
}();

} // namespace
