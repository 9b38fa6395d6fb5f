#include <UPnP/Stack/ILibChain.h>

#include <Shared/Sizes.h>
#include <UPnP/Stack/Private/ILibLifeTime.h>
#include <algorithm>
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

// Milliseconds between two looks at the descriptors when poll refuses to wait for them.
static const int kRetryWait = 100;
static const size_t kFirstCapacity = 8;

struct ILibChain_PollSet
{
    struct pollfd* mEntries; // mCount of mCapacity entries are in use; the first is the chain's wake-up
    size_t mCount;
    size_t mCapacity;
};

struct ILibBaseChain
{
    zoArray_t* mObjects; // the lifetime first
    ILibLifeTime* mLifeTime;
    ILibChain_PollSet mPollSet;
    zoSocket mWakeUp; // an eventfd, readable once a stop was asked for
    bool mfBusy;      // in a turn, or being deleted
};

size_t ILibChain_PollSet_Add(ILibChain_PollSet* aPollSet, zoSocket aSocket, int anEvents)
{
    if (aPollSet->mCount == aPollSet->mCapacity)
    {
        aPollSet->mCapacity = Shared::GrowCapacity(aPollSet->mCapacity, aPollSet->mCount + 1, kFirstCapacity);
        aPollSet->mEntries = Shared::ResizeArray(aPollSet->mEntries, aPollSet->mCapacity);
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

static void CallSlot(const ILibBaseChain* aChain, Slot aSlot, size_t anIndex)
{
    ILibChain* theObject = ObjectAt(aChain, anIndex);
    if (theObject->*aSlot) { (theObject->*aSlot)(theObject); }
}

static void CallSlots(const ILibBaseChain* aChain, Slot aSlot, size_t aCount)
{
    for (size_t i = 0; i < aCount; ++i)
        CallSlot(aChain, aSlot, i);
}

static void CallPreSelect(ILibBaseChain* aChain, size_t anIndex, int* aMaxWait)
{
    ILibChain* theObject = ObjectAt(aChain, anIndex);
    if (theObject->mPreSelect) { theObject->mPreSelect(theObject, &aChain->mPollSet, aMaxWait); }
}

// Asks the objects what to wait for, those that are added meanwhile included. The timers come last: the others may arm
// some.
static void AskObjects(ILibBaseChain* aChain, int* aMaxWait)
{
    for (size_t i = 1; i < zoArray_GetCount(aChain->mObjects); ++i)
        CallPreSelect(aChain, i, aMaxWait);
    CallPreSelect(aChain, 0, aMaxWait);
}

static void CallPostSelect(const ILibBaseChain* aChain, size_t aCount)
{
    for (size_t i = 0; i < aCount; ++i)
    {
        ILibChain* theObject = ObjectAt(aChain, i);
        if (theObject->mPostSelect) { theObject->mPostSelect(theObject, &aChain->mPollSet); }
    }
}

static void ForgetEvents(ILibChain_PollSet* aPollSet)
{
    for (size_t i = 0; i < aPollSet->mCount; ++i)
        aPollSet->mEntries[i].revents = 0;
}

// Looks each descriptor up by itself, without a wait.
static void LookUpEvents(ILibChain_PollSet* aPollSet)
{
    ForgetEvents(aPollSet);
    for (size_t i = 0; i < aPollSet->mCount; ++i)
        poll(aPollSet->mEntries + i, 1, 0);
}

static void Wait(ILibChain_PollSet* aPollSet, int aMaxWait)
{
    if (poll(aPollSet->mEntries, aPollSet->mCount, aMaxWait) >= 0) { return; }
    if (errno == EINTR) { return ForgetEvents(aPollSet); }
    // There are more descriptors than the process may have open, or the kernel has no memory for them.
    poll(aPollSet->mEntries, 1, std::min(aMaxWait, kRetryWait));
    LookUpEvents(aPollSet);
}

static void Turn(ILibBaseChain* aChain, int aMaxWait)
{
    aChain->mfBusy = true;
    int theWait = aMaxWait < 0 ? INT_MAX : aMaxWait;
    aChain->mPollSet.mCount = 0;
    ILibChain_PollSet_Add(&aChain->mPollSet, aChain->mWakeUp, POLLIN);
    AskObjects(aChain, &theWait);
    const size_t theCount = zoArray_GetCount(aChain->mObjects);
    Wait(&aChain->mPollSet, std::max(theWait, 0));
    CallPostSelect(aChain, theCount);
    CallSlots(aChain, &ILibChain::mLifeTimeCheck, theCount);
    CallSlots(aChain, &ILibChain::mPerform, theCount);
    aChain->mfBusy = false;
}

// True if a stop was asked for, which this consumes.
static bool TakeStop(const ILibBaseChain* aChain)
{
    uint64 theCount = 0;
    ssize_t theSize;
    while ((theSize = read(aChain->mWakeUp, &theCount, sizeof(theCount))) < 0 && errno == EINTR) {}
    return theSize == static_cast<ssize_t>(sizeof(theCount));
}

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
    const int theError = errno; // of what a signal handler interrupts
    const uint64 theOne = 1;
    while (write(aChain->mWakeUp, &theOne, sizeof(theOne)) < 0 && errno == EINTR) {}
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
    {
        for (size_t i = 0; i < zoArray_GetCount(aChain->mObjects); ++i) // slots may add objects
            CallSlot(aChain, theSlot, i);
    }
    FreeObjects(aChain);
    zoArray_Delete(aChain->mObjects);
    free(aChain->mPollSet.mEntries);
    close(aChain->mWakeUp);
    free(aChain);
}
