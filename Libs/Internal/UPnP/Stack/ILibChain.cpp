#include <UPnP/Stack/ILibChain.h>

#include <UPnP/Stack/ILibLifeTimePrivate.h>
#include <atomic>
#include <errno.h>
#include <limits.h>
#include <new>
#include <poll.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <zoltTools/zoArray.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoMemory.h>

// How long the chain waits before it tries again when the system can't wait for its descriptors.
static const int kRetryWait = 100;
static const size_t kFirstCapacity = 8;

struct ILibChain_PollSet
{
    struct pollfd* mEntries; // mCount of mCapacity are in use; the first is the chain's own
    size_t mCount;
    size_t mCapacity;
};

// A stop is a flag, which ends the loop, and a readable descriptor, which ends the wait.
struct ILibBaseChain
{
    zoArray_t* mObjects; // the lifetime first
    ILibLifeTime* mLifeTime;
    ILibChain_PollSet mPollSet;
    zoSocket mWakeUp;
    std::atomic<int> mfStop{ 0 };
    bool mfBusy; // in a turn, or being deleted
};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler sets the flag");

size_t ILibChain_PollSet_Add(ILibChain_PollSet* aPollSet, zoSocket aSocket, int anEvents)
{
    if (aPollSet->mCount == aPollSet->mCapacity)
    {
        aPollSet->mCapacity = aPollSet->mCapacity > 0 ? aPollSet->mCapacity * 2 : kFirstCapacity;
        if (aPollSet->mCapacity > SIZE_MAX / sizeof(struct pollfd)) { abort(); } // more than memory can hold
        aPollSet->mEntries =
            static_cast<struct pollfd*>(zoRealloc(aPollSet->mEntries, aPollSet->mCapacity * sizeof(struct pollfd)));
    }
    aPollSet->mEntries[aPollSet->mCount] = { aSocket, static_cast<short>(anEvents), 0 };
    return aPollSet->mCount++;
}

int ILibChain_PollSet_GetEvents(const ILibChain_PollSet* aPollSet, size_t aPlace)
{
    return aPlace < aPollSet->mCount ? aPollSet->mEntries[aPlace].revents : 0;
}

ILibBaseChain* ILibChain_New(void)
{
    const int theWakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (theWakeUp < 0) { return nullptr; }
    ILibBaseChain* theChain = new (zoMalloc(sizeof(ILibBaseChain))) ILibBaseChain{};
    theChain->mWakeUp = theWakeUp;
    theChain->mObjects = zoArray_New();
    theChain->mLifeTime = ILibLifeTime_S_New();
    ILibAddToChain(theChain, theChain->mLifeTime);
    return theChain;
}

void ILibAddToChain(ILibBaseChain* aChain, void* anObject)
{
    if (!zoAssert(aChain != NULL && anObject != NULL)) { return; }
    static_cast<ILibChain*>(anObject)->mBaseChain = aChain;
    zoArray_Append(aChain->mObjects, anObject);
}

ILibLifeTime* ILibChain_GetLifeTime(const ILibBaseChain* aChain) { return aChain ? aChain->mLifeTime : nullptr; }

static ILibChain* ObjectAt(const ILibBaseChain* aChain, size_t anIndex)
{
    return static_cast<ILibChain*>(zoArray_At(aChain->mObjects, anIndex));
}

typedef void (*ILibChain::*Slot)(void* anObject);

static void CallSlot(const ILibBaseChain* aChain, Slot aSlot, size_t aCount)
{
    for (size_t i = 0; i < aCount; ++i)
    {
        ILibChain* theObject = ObjectAt(aChain, i);
        if (theObject->*aSlot) { (theObject->*aSlot)(theObject); }
    }
}

static void CallPreSelect(ILibBaseChain* aChain, int* aMaxWait)
{
    // An object added in here is asked at once, or the wait would know nothing of it.
    for (size_t i = 0; i < zoArray_GetCount(aChain->mObjects); ++i)
    {
        ILibChain* theObject = ObjectAt(aChain, i);
        if (theObject->mPreSelect) { theObject->mPreSelect(theObject, &aChain->mPollSet, aMaxWait); }
    }
}

static void CallPostSelect(const ILibBaseChain* aChain, size_t aCount)
{
    for (size_t i = 0; i < aCount; ++i)
    {
        ILibChain* theObject = ObjectAt(aChain, i);
        if (theObject->mPostSelect) { theObject->mPostSelect(theObject, &aChain->mPollSet); }
    }
}

static void Wait(ILibBaseChain* aChain, int aMaxWait)
{
    ILibChain_PollSet& theSet = aChain->mPollSet;
    if (poll(theSet.mEntries, theSet.mCount, aMaxWait) < 0)
    {
        const bool fInterrupted = errno == EINTR;
        for (size_t i = 0; i < theSet.mCount; ++i)
            theSet.mEntries[i].revents = 0;
        if (!fInterrupted) { poll(theSet.mEntries, 1, aMaxWait < kRetryWait ? aMaxWait : kRetryWait); }
    }
    if (theSet.mEntries[0].revents == 0) { return; }
    uint64 theCount = 0;
    while (read(aChain->mWakeUp, &theCount, sizeof(theCount)) < 0 && errno == EINTR)
        ;
}

static void Turn(ILibBaseChain* aChain, int aMaxWait)
{
    aChain->mfBusy = true;
    int theWait = aMaxWait < 0 ? INT_MAX : aMaxWait;
    aChain->mPollSet.mCount = 0;
    ILibChain_PollSet_Add(&aChain->mPollSet, aChain->mWakeUp, POLLIN);
    CallPreSelect(aChain, &theWait);
    const size_t theCount = zoArray_GetCount(aChain->mObjects);
    Wait(aChain, theWait < 0 ? 0 : theWait);
    CallPostSelect(aChain, theCount);
    CallSlot(aChain, &ILibChain::mLifeTimeCheck, theCount);
    CallSlot(aChain, &ILibChain::mPerform, theCount);
    aChain->mfBusy = false;
}

// Whether a stop was asked for, which is thereby done with. Should its descriptor be readable still, or only now become
// so, then the next run has one wait that ends early.
static bool TakeStop(ILibBaseChain* aChain) { return aChain->mfStop.exchange(0) != 0; }

void ILibChain_Run(ILibBaseChain* aChain)
{
    if (!zoAssert(aChain != NULL && !aChain->mfBusy)) { return; }
    do
        Turn(aChain, -1);
    while (!TakeStop(aChain));
}

void ILibChain_RunOnce(ILibBaseChain* aChain, int aMaxWaitMilliseconds)
{
    if (!zoAssert(aChain != NULL && !aChain->mfBusy)) { return; }
    Turn(aChain, aMaxWaitMilliseconds);
    TakeStop(aChain);
}

void ILibChain_Stop(ILibBaseChain* aChain)
{
    if (!aChain) { return; }
    const int theError = errno; // whom a signal interrupts must not notice
    aChain->mfStop = 1;
    const uint64 theOne = 1;
    while (write(aChain->mWakeUp, &theOne, sizeof(theOne)) < 0 && errno == EINTR)
        ;
    errno = theError;
}

static void FreeObjects(ILibBaseChain* aChain)
{
    for (size_t theCount; (theCount = zoArray_GetCount(aChain->mObjects)) > 0;)
    {
        ILibChain* theObject = ObjectAt(aChain, theCount - 1);
        zoArray_RemoveAt(aChain->mObjects, theCount - 1, 1);
        (theObject->mFree ? theObject->mFree : free)(theObject);
    }
}

void ILibChain_Delete(ILibBaseChain* aChain)
{
    static const Slot kSlots[] = { &ILibChain::mPreDestroy, &ILibChain::mDestroy, &ILibChain::mPostDestroy,
                                   &ILibChain::mLifeTimeDestroy };
    if (!aChain || !zoAssert(!aChain->mfBusy)) { return; }
    aChain->mfBusy = true;
    for (const Slot theSlot : kSlots)
        CallSlot(aChain, theSlot, zoArray_GetCount(aChain->mObjects));
    FreeObjects(aChain);
    zoArray_Delete(aChain->mObjects);
    free(aChain->mPollSet.mEntries);
    close(aChain->mWakeUp);
    free(aChain);
}
