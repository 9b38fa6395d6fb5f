#pragma once

/* The event chain: the loop of one thread over the objects that stand on it. A chain object is a heap record that
 * begins with an ILibChain header. Each turn of the loop goes through the objects in the order of adding, once for
 * each of these steps, and skips slots that are NULL:
 *
 *     mPreSelect      says which descriptors the object waits for, and how long at most
 *                     ... the chain waits for the first of them, for the next timer, or for ILibChain_Stop ...
 *     mPostSelect     sees what has come
 *     mLifeTimeCheck  does what is due by the clock; the chain's timers are called back here, before the objects' slots
 *     mPerform        does what the others have left over for the end of the turn
 *
 * A chain that is deleted goes through its objects in the same way, so that each can use the others to the end:
 *
 *     mPreDestroy       says farewell while every object still works
 *     mDestroy          gives back what the object holds; its timers are removed here
 *     mPostDestroy      gives back what other objects might have needed until now
 *     mLifeTimeDestroy  comes when the timers that are left have been destroyed
 *     mFree             releases the record, last object first; a NULL slot stands for free
 *
 * Slots may add objects and timers. An object that is added after a turn's wait takes part from the next turn on; one
 * that is added while the chain is deleted, from the step on in which it is added. Everything but ILibChain_Stop
 * belongs to the chain's thread. */

#include <UPnP/Stack/Export.h>
#include <UPnP/Stack/ILibLifeTime.h>
#include <zoOS/zoSocket.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A chain with its objects and timers. */
typedef struct ILibBaseChain ILibBaseChain;
/* The descriptors that a turn waits for. */
typedef struct ILibChain_PollSet ILibChain_PollSet;

/* What a chain object begins with. anObject is the object itself. */
typedef struct ILibChain
{
    void (*mLifeTimeCheck)(void* anObject);
    void (*mPerform)(void* anObject);
    /* *aMaxWait: milliseconds that the chain will wait at most; may be lowered, to 0 for no wait. */
    void (*mPreSelect)(void* anObject, ILibChain_PollSet* aPollSet, int* aMaxWait);
    void (*mPostSelect)(void* anObject, const ILibChain_PollSet* aPollSet);
    void (*mPreDestroy)(void* anObject);
    void (*mDestroy)(void* anObject);
    void (*mPostDestroy)(void* anObject);
    void (*mLifeTimeDestroy)(void* anObject);
    void (*mFree)(void* anObject);
    ILibBaseChain* mBaseChain; /* filled in by ILibAddToChain */
} ILibChain;

/** Asks for a descriptor, in mPreSelect.
 *  @param anEvents  as for poll: POLLIN, POLLOUT.
 *  @return the place to look at in mPostSelect of the same turn. */
UPNPSTACK_API size_t ILibChain_PollSet_Add(ILibChain_PollSet* aPollSet, zoSocket aSocket, int anEvents);
/** @return the events that have come at a place, as poll gives them: also POLLERR, POLLHUP, POLLNVAL. 0 for none, and
 *          past the end. */
UPNPSTACK_API int ILibChain_PollSet_GetEvents(const ILibChain_PollSet* aPollSet, size_t aPlace);

/** @return a new chain without objects, ended with ILibChain_Delete; NULL when the system gives no descriptor for
 *          waking it. */
UPNPSTACK_API ILibBaseChain* ILibChain_New(void);
/** Puts an object, which came from malloc unless it has an mFree, on the chain, which owns it from now on. */
UPNPSTACK_API void ILibAddToChain(ILibBaseChain* aChain, void* anObject);
/** @return the chain's timers, which live as long as it; NULL for NULL. */
UPNPSTACK_API ILibLifeTime* ILibChain_GetLifeTime(const ILibBaseChain* aChain);

/** Turns until ILibChain_Stop; can be called again then. */
UPNPSTACK_API void ILibChain_Run(ILibBaseChain* aChain);
/** Turns once: what ends the wait is done when it returns. aMaxWaitMilliseconds below 0: no limit but INT_MAX. A signal
 * that is handled ends the wait, too. */
UPNPSTACK_API void ILibChain_RunOnce(ILibBaseChain* aChain, int aMaxWaitMilliseconds);
/** Ends the wait of the present turn, and ILibChain_Run after it. When no turn is going on, the next one is without a
 * wait: no stop is lost, and several count as one. May be called by any thread and in a signal handler; the chain lives
 * until it has returned. NULL is ignored. */
UPNPSTACK_API void ILibChain_Stop(ILibBaseChain* aChain);
/** Destroys the chain with its objects and timers. Not from within a turn, that is, from a slot or a callback; NULL is
 *  ignored. */
UPNPSTACK_API void ILibChain_Delete(ILibBaseChain* aChain);

#ifdef __cplusplus
}
#endif
