#pragma once

/* The event chain: the loop of one thread over its objects. A chain object is a heap record that begins with an
 * ILibChain header. Each turn of the loop goes through the objects in the order of adding, once for each of these
 * steps, and skips slots that are NULL:
 *
 *     mPreSelect      tells the descriptors that the object waits for, and the longest time that it can wait
 *                     ... the chain waits for an event, for the next timer, or for ILibChain_Stop ...
 *     mPostSelect     looks at the events of its descriptors
 *     mLifeTimeCheck  does what is due by the clock; the chain's timers are called back first
 *     mPerform        does what is left for the end of the turn
 *
 * A chain that is deleted goes through its objects in the same way, so that each can use the others to the end:
 *
 *     mPreDestroy       ends what needs the other objects at work
 *     mDestroy          releases what the object holds, and removes its timers
 *     mPostDestroy      releases what other objects may have needed until now
 *     mLifeTimeDestroy  follows the destruction of the timers that are left
 *     mFree             releases the record, last object first; NULL stands for free
 *
 * Slots may add objects and timers. An object that is added after a turn's wait takes part from the next turn on; one
 * that is added while the chain is deleted takes part from that step on.
 *
 * Everything but ILibChain_Stop belongs to the chain's thread.
 *
 * After a fork the child must neither use nor delete the chain: it shares the wake-up and the objects' descriptors with
 * its parent, and would take the parent's stops and events and end its connections. It calls exec or makes a chain of
 * its own. */

#include <UPnP/Stack/Export.h>
#include <UPnP/Stack/ILibLifeTime.h>
#include <zoOS/zoSocket.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A chain with its objects and timers. */
typedef struct ILibBaseChain ILibBaseChain;
/* The descriptors that a turn waits for, and their events. */
typedef struct ILibChain_PollSet ILibChain_PollSet;

/* What a chain object begins with. anObject is the object itself. */
typedef struct ILibChain
{
    void (*mLifeTimeCheck)(void* anObject);
    void (*mPerform)(void* anObject);
    /* *aMaxWait: the longest wait so far, in milliseconds; may be lowered, to 0 for no wait. */
    void (*mPreSelect)(void* anObject, ILibChain_PollSet* aPollSet, int* aMaxWait);
    void (*mPostSelect)(void* anObject, const ILibChain_PollSet* aPollSet);
    void (*mPreDestroy)(void* anObject);
    void (*mDestroy)(void* anObject);
    void (*mPostDestroy)(void* anObject);
    void (*mLifeTimeDestroy)(void* anObject);
    void (*mFree)(void* anObject);
    ILibBaseChain* mBaseChain; /* filled in by ILibAddToChain */
} ILibChain;

/** Adds a descriptor to those that the turn waits for; called in mPreSelect.
 *  @param anEvents  as for poll: POLLIN, POLLOUT.
 *  @return its place, for ILibChain_PollSet_GetEvents in mPostSelect of the same turn. */
UPNPSTACK_API size_t ILibChain_PollSet_Add(ILibChain_PollSet* aPollSet, zoSocket aSocket, int anEvents);
/** @return the events at a place, as poll gives them, POLLERR, POLLHUP and POLLNVAL included; 0 when there are none,
 * and past the end. */
UPNPSTACK_API int ILibChain_PollSet_GetEvents(const ILibChain_PollSet* aPollSet, size_t aPlace);

/** @return a new chain without objects, released with ILibChain_Delete; NULL when no descriptor is free for its
 *          wake-up. */
UPNPSTACK_API ILibBaseChain* ILibChain_New(void);
/** Adds an object to the chain, which takes it over. A NULL chain or object: an assertion, then nothing.
 *  @param anObject  from malloc, unless it has an mFree. */
UPNPSTACK_API void ILibAddToChain(ILibBaseChain* aChain, void* anObject);
/** @return the chain's timers, owned by the chain; NULL for NULL. */
UPNPSTACK_API ILibLifeTime* ILibChain_GetLifeTime(const ILibBaseChain* aChain);

/** Runs turns until ILibChain_Stop. Can be called again afterwards. NULL: an assertion, then nothing. */
UPNPSTACK_API void ILibChain_Run(ILibBaseChain* aChain);
/** Runs one turn; a signal that is handled ends its wait, too. NULL: an assertion, then nothing.
 *  @param aMaxWaitMilliseconds  the longest wait; below 0: INT_MAX. */
UPNPSTACK_API void ILibChain_RunOnce(ILibBaseChain* aChain, int aMaxWaitMilliseconds);
/** Ends the wait of the present turn, and ILibChain_Run after it. Between turns it ends the wait of the next one: no
 * stop is lost, and several count as one. Any thread and any signal handler may call it while the chain lives. NULL is
 *  ignored. */
UPNPSTACK_API void ILibChain_Stop(ILibBaseChain* aChain);
/** Destroys the chain with its objects and timers. Must not be called in a turn, that is, in a slot or a callback. NULL
 *  is ignored. */
UPNPSTACK_API void ILibChain_Delete(ILibBaseChain* aChain);

#ifdef __cplusplus
}
#endif
