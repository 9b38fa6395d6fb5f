#include <UPnP/Stack/ILibLifeTime.h>

#include <Shared/Sizes.h>
#include <UPnP/Stack/ILibChain.h>
#include <UPnP/Stack/Private/ILibLifeTime.h>
#include <limits.h>
#include <stdlib.h>
#include <time.h>
#include <zoltTools/zoMemory.h>

// Each timer is in a heap, whose top is the next one due, and in the ring of the timers with the same data. A hash
// table finds the rings.

namespace
{

struct Timer
{
    void* mData;
    ILibLifeTime_Callback_t mCallback;
    ILibLifeTime_Callback_t mDestroyCallback;
    const char* mModuleName;
    zoSocket mSocket;
    size_t mPlace;    // in the heap
    Timer* mNext;     // in the ring, in the order of adding
    Timer* mPrevious; // in the ring
    Timer* mNextRing; // in the same bucket; only of the first timer of a ring
};

struct Entry
{
    uint64 mDue;
    uint64 mNumber; // in the order of adding: of two that are due together, the lower one goes first
    Timer* mTimer;
};

const size_t kFirstCapacity = 16;
const int kFirstBucketBits = 4;
const uint64 kMaxTimeLeft = uint64{ INT_MAX } + 1; // milliseconds: of a new timer

} // namespace

struct ILibLifeTime
{
    ILibChain mChain;

    Entry* mHeap; // no entry goes before its parent; mCount of mCapacity entries are in use
    size_t mCount;
    size_t mCapacity;
    Timer** mBuckets; // 1 << mBucketBits of them, each the first timer of its first ring
    int mBucketBits;
    size_t mRingCount;

    ILibLifeTime_Clock_t mClock;
    void* mClockUserData;
    uint64 mClockReading; // the last one
    uint64 mNow;          // the sum of the steps that all clocks have made
    uint64 mNextNumber;
    bool mfDestroyed; // ignores new timers
};

// ---- Heap ----

static bool GoesBefore(const Entry& aFirst, const Entry& aSecond)
{
    return aFirst.mDue != aSecond.mDue ? aFirst.mDue < aSecond.mDue : aFirst.mNumber < aSecond.mNumber;
}

static void Put(ILibLifeTime* aLifeTime, size_t aPlace, const Entry& anEntry)
{
    aLifeTime->mHeap[aPlace] = anEntry;
    anEntry.mTimer->mPlace = aPlace;
}

// Puts anEntry at aPlace, which is free, or above it; the ancestors that it goes before move down.
static void PutUpwards(ILibLifeTime* aLifeTime, size_t aPlace, const Entry& anEntry)
{
    for (size_t theParent; aPlace > 0; aPlace = theParent)
    {
        theParent = (aPlace - 1) / 2;
        if (!GoesBefore(anEntry, aLifeTime->mHeap[theParent])) { break; }
        Put(aLifeTime, aPlace, aLifeTime->mHeap[theParent]);
    }
    Put(aLifeTime, aPlace, anEntry);
}

// Moves descendants of aPlace, which is free, up while they go before anEntry. The result is the place free then.
static size_t MakePlaceBelow(ILibLifeTime* aLifeTime, size_t aPlace, const Entry& anEntry)
{
    for (size_t theChild; (theChild = 2 * aPlace + 1) < aLifeTime->mCount; aPlace = theChild)
    {
        const Entry* theHeap = aLifeTime->mHeap;
        if (theChild + 1 < aLifeTime->mCount && GoesBefore(theHeap[theChild + 1], theHeap[theChild])) { ++theChild; }
        if (!GoesBefore(theHeap[theChild], anEntry)) { break; }
        Put(aLifeTime, aPlace, theHeap[theChild]);
    }
    return aPlace;
}

static void SetCapacity(ILibLifeTime* aLifeTime, size_t aCapacity)
{
    aLifeTime->mCapacity = aCapacity;
    aLifeTime->mHeap = Shared::ResizeArray(aLifeTime->mHeap, aCapacity);
}

static void AddToHeap(ILibLifeTime* aLifeTime, const Entry& anEntry)
{
    if (aLifeTime->mCount == aLifeTime->mCapacity) { SetCapacity(aLifeTime, aLifeTime->mCapacity * 2); }
    PutUpwards(aLifeTime, aLifeTime->mCount++, anEntry);
}

static void TakeFromHeap(ILibLifeTime* aLifeTime, size_t aPlace)
{
    const Entry theLast = aLifeTime->mHeap[--aLifeTime->mCount];
    if (aPlace < aLifeTime->mCount) { PutUpwards(aLifeTime, MakePlaceBelow(aLifeTime, aPlace, theLast), theLast); }
    if (aLifeTime->mCapacity > kFirstCapacity && aLifeTime->mCount < aLifeTime->mCapacity / 4)
    {
        SetCapacity(aLifeTime, aLifeTime->mCapacity / 2);
    }
}

// ---- Rings by data ----

static Timer** BucketOf(const ILibLifeTime* aLifeTime, const void* aData)
{
    const uint64 theHash = static_cast<uint64>(reinterpret_cast<uintptr_t>(aData)) * 0x9E3779B97F4A7C15u;
    return &aLifeTime->mBuckets[static_cast<size_t>(theHash >> (64 - aLifeTime->mBucketBits))];
}

// The pointer to the first timer with aData; NULL is in it when there is none, and a new one belongs there.
static Timer** LinkOf(const ILibLifeTime* aLifeTime, const void* aData)
{
    Timer** theLink = BucketOf(aLifeTime, aData);
    while (*theLink && (*theLink)->mData != aData)
        theLink = &(*theLink)->mNextRing;
    return theLink;
}

static void SetBucketBits(ILibLifeTime* aLifeTime, int aBits)
{
    Timer** const theOld = aLifeTime->mBuckets;
    const size_t theOldCount = theOld ? static_cast<size_t>(1) << aLifeTime->mBucketBits : 0;
    aLifeTime->mBucketBits = aBits;
    aLifeTime->mBuckets = Shared::NewZeroedArray<Timer*>(static_cast<size_t>(1) << aBits);
    for (size_t i = 0; i < theOldCount; ++i)
    {
        for (Timer *theRing = theOld[i], *theNext; theRing; theRing = theNext)
        {
            theNext = theRing->mNextRing;
            Timer** theBucket = BucketOf(aLifeTime, theRing->mData);
            theRing->mNextRing = *theBucket;
            *theBucket = theRing;
        }
    }
    free(theOld);
}

// Keeps the number of buckets between half and four times that of the rings, but at least 1 << kFirstBucketBits.
static void FitBuckets(ILibLifeTime* aLifeTime)
{
    const int theBits = aLifeTime->mBucketBits;
    if (aLifeTime->mRingCount >> theBits > 1) { SetBucketBits(aLifeTime, theBits + 1); }
    else if (theBits > kFirstBucketBits && aLifeTime->mRingCount < static_cast<size_t>(1) << (theBits - 2))
    {
        SetBucketBits(aLifeTime, theBits - 1);
    }
}

static void AddToRing(ILibLifeTime* aLifeTime, Timer* aTimer)
{
    Timer** theLink = LinkOf(aLifeTime, aTimer->mData);
    if (Timer* theFirst = *theLink)
    {
        aTimer->mNext = theFirst;
        aTimer->mPrevious = theFirst->mPrevious;
        aTimer->mPrevious->mNext = theFirst->mPrevious = aTimer;
        return;
    }
    aTimer->mNext = aTimer->mPrevious = *theLink = aTimer;
    ++aLifeTime->mRingCount;
    FitBuckets(aLifeTime);
}

static void TakeFirst(ILibLifeTime* aLifeTime, Timer** aLink)
{
    Timer* theFirst = *aLink;
    if (theFirst->mNext != theFirst)
    {
        *aLink = theFirst->mNext;
        (*aLink)->mNextRing = theFirst->mNextRing;
        return;
    }
    *aLink = theFirst->mNextRing;
    --aLifeTime->mRingCount;
    FitBuckets(aLifeTime);
}

static void TakeFromRing(ILibLifeTime* aLifeTime, Timer* aTimer)
{
    Timer** theLink = LinkOf(aLifeTime, aTimer->mData);
    if (*theLink == aTimer) { TakeFirst(aLifeTime, theLink); }
    aTimer->mPrevious->mNext = aTimer->mNext;
    aTimer->mNext->mPrevious = aTimer->mPrevious;
}

// Takes the whole ring of aData out. The result is its first timer: mNext leads through them in the order of adding, up
// to NULL. NULL when there are none.
static Timer* TakeRing(ILibLifeTime* aLifeTime, const void* aData)
{
    Timer** theLink = LinkOf(aLifeTime, aData);
    Timer* theFirst = *theLink;
    if (!theFirst) { return nullptr; }
    theFirst->mPrevious->mNext = nullptr;
    *theLink = theFirst->mNextRing;
    --aLifeTime->mRingCount;
    FitBuckets(aLifeTime);
    return theFirst;
}

// ---- Clock ----

static uint64 SystemClock(void*)
{
    struct timespec theTime = {};
    clock_gettime(CLOCK_MONOTONIC, &theTime);
    return static_cast<uint64>(theTime.tv_sec) * 1000 + static_cast<uint64>(theTime.tv_nsec) / 1000000;
}

static uint64 Now(ILibLifeTime* aLifeTime)
{
    const uint64 theReading = aLifeTime->mClock(aLifeTime->mClockUserData);
    const uint64 theElapsed = theReading > aLifeTime->mClockReading ? theReading - aLifeTime->mClockReading : 0;
    aLifeTime->mClockReading = theReading;
    // A longer step would be the same to all timers, and a clock that jumps back and forth could make the sum wrap.
    aLifeTime->mNow += theElapsed < kMaxTimeLeft ? theElapsed : kMaxTimeLeft;
    return aLifeTime->mNow;
}

void ILibLifeTime_SetClock(ILibLifeTime* aLifeTime, ILibLifeTime_Clock_t aClock, void* aUserData)
{
    if (!aLifeTime) { return; }
    Now(aLifeTime);
    aLifeTime->mClock = aClock ? aClock : SystemClock;
    aLifeTime->mClockUserData = aUserData;
    aLifeTime->mClockReading = aLifeTime->mClock(aUserData);
}

// ---- Timers ----

void ILibLifeTime_AddEx_Debug(ILibLifeTime* aLifeTime, void* aData, int aMilliseconds,
                              ILibLifeTime_Callback_t aCallback, ILibLifeTime_Callback_t aDestroyCallback,
                              zoSocket aSocket, const char* aModuleName)
{
    if (!aLifeTime || aLifeTime->mfDestroyed) { return; }
    Timer* theTimer = static_cast<Timer*>(zoMallocZeroed(sizeof(Timer)));
    theTimer->mData = aData;
    theTimer->mCallback = aCallback;
    theTimer->mDestroyCallback = aDestroyCallback;
    theTimer->mModuleName = aModuleName;
    theTimer->mSocket = aSocket;
    const uint64 theTime = static_cast<uint64>(aMilliseconds > 0 ? aMilliseconds : 0);
    // The system's clock is cut to milliseconds: nearly all of the present one may have passed.
    const bool fIsBegun = theTime > 0 && aLifeTime->mClock == SystemClock;
    const uint64 theDue = Now(aLifeTime) + theTime + fIsBegun;
    AddToHeap(aLifeTime, { theDue, aLifeTime->mNextNumber++, theTimer });
    AddToRing(aLifeTime, theTimer);
}

static void FreeAndCall(Timer* aTimer, ILibLifeTime_Callback_t aCallback)
{
    void* const theData = aTimer->mData;
    free(aTimer);
    if (aCallback) { aCallback(theData); }
}

void ILibLifeTime_Remove(ILibLifeTime* aLifeTime, void* aData)
{
    // All are out before the first callback, which may arm and remove timers.
    Timer* theNext = aLifeTime ? TakeRing(aLifeTime, aData) : nullptr;
    for (const Timer* theTimer = theNext; theTimer; theTimer = theTimer->mNext)
        TakeFromHeap(aLifeTime, theTimer->mPlace);
    while (Timer* theTimer = theNext)
    {
        theNext = theTimer->mNext;
        FreeAndCall(theTimer, theTimer->mDestroyCallback);
    }
}

static Timer* TakeNext(ILibLifeTime* aLifeTime)
{
    Timer* theTimer = aLifeTime->mHeap[0].mTimer;
    TakeFromHeap(aLifeTime, 0);
    TakeFromRing(aLifeTime, theTimer);
    return theTimer;
}

// ---- The lifetime as a chain object ----

static void LimitWait(void* anObject, ILibChain_PollSet*, int* aMaxWait)
{
    ILibLifeTime* theLifeTime = static_cast<ILibLifeTime*>(anObject);
    if (theLifeTime->mCount == 0) { return; }
    const uint64 theDue = theLifeTime->mHeap[0].mDue;
    const uint64 theNow = Now(theLifeTime);
    const uint64 theWait = theDue > theNow ? theDue - theNow : 0;
    if (*aMaxWait > 0 && theWait < static_cast<uint64>(*aMaxWait)) { *aMaxWait = static_cast<int>(theWait); }
}

static void CallWhatIsDue(void* anObject)
{
    ILibLifeTime* theLifeTime = static_cast<ILibLifeTime*>(anObject);
    const uint64 theNow = Now(theLifeTime);
    // Timers that the callbacks arm have higher numbers: they go after theEnd.
    const Entry theEnd = { theNow, theLifeTime->mNextNumber, nullptr };
    while (theLifeTime->mCount > 0 && GoesBefore(theLifeTime->mHeap[0], theEnd))
    {
        Timer* theTimer = TakeNext(theLifeTime);
        FreeAndCall(theTimer, theTimer->mCallback);
    }
}

static void DestroyTimers(void* anObject)
{
    ILibLifeTime* theLifeTime = static_cast<ILibLifeTime*>(anObject);
    theLifeTime->mfDestroyed = true;
    while (theLifeTime->mCount > 0)
    {
        Timer* theTimer = TakeNext(theLifeTime);
        FreeAndCall(theTimer, theTimer->mDestroyCallback);
    }
}

static void FreeLifeTime(void* anObject)
{
    ILibLifeTime* theLifeTime = static_cast<ILibLifeTime*>(anObject);
    free(theLifeTime->mHeap);
    free(theLifeTime->mBuckets);
    free(theLifeTime);
}

ILibLifeTime* ILibLifeTime_S_New(void)
{
    ILibLifeTime* theLifeTime = static_cast<ILibLifeTime*>(zoMallocZeroed(sizeof(ILibLifeTime)));
    theLifeTime->mChain.mPreSelect = LimitWait;
    theLifeTime->mChain.mLifeTimeCheck = CallWhatIsDue;
    theLifeTime->mChain.mLifeTimeDestroy = DestroyTimers;
    theLifeTime->mChain.mFree = FreeLifeTime;
    SetCapacity(theLifeTime, kFirstCapacity);
    SetBucketBits(theLifeTime, kFirstBucketBits);
    theLifeTime->mClock = SystemClock;
    theLifeTime->mClockReading = SystemClock(nullptr);
    return theLifeTime;
}
