#pragma once

/* The timers of an event chain (ILibChain.h), each of which calls back once. Thousands may be pending: arming one,
 * removing it and calling it back cost amortised O(log n), and so much for each when those of one object are removed
 * together.
 *
 * Timers that are due are called back in the order of their times, those of the same time in the order of adding. A
 * timer is gone when its callback begins. Callbacks may arm and remove timers at will: one that is armed there, even
 * for 0 ms, is called back in a later turn of the chain, and one that is removed there isn't called back any more.
 *
 * Everything here belongs to the chain's thread. A NULL lifetime has no timers and takes none. */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoSocket.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The timers of a chain. */
typedef struct ILibLifeTime ILibLifeTime;

/** Is told that a timer's time is over, or that it is gone. */
typedef void (*ILibLifeTime_Callback_t)(void* aData);
/** @return monotonic milliseconds. */
typedef uint64_t (*ILibLifeTime_Clock_t)(void* aUserData);

/**
 * Arms a timer.
 * @param aData             handed to the callbacks, and what the timer is removed by.
 * @param aMilliseconds     from now; below 0 counts as 0.
 * @param aCallback         called once, when the time is over: not before, and as soon after that as the chain
 *                          comes to it.
 * @param aDestroyCallback  called instead when the timer goes before that: when it is removed, or with the chain. NULL:
 *                          nothing is called.
 * @param aSocket           the socket that the timer watches over, kzoSocketInvalid for none; for debuggers only.
 * @param aModuleName       who armed it, a text that outlives the timer; for debuggers only.
 * A chain that has begun to destroy its timers takes no more.
 */
UPNPSTACK_API void ILibLifeTime_AddEx_Debug(ILibLifeTime* aLifeTime, void* aData, int aMilliseconds,
                                            ILibLifeTime_Callback_t aCallback, ILibLifeTime_Callback_t aDestroyCallback,
                                            zoSocket aSocket, const char* aModuleName);
/* Arms a timer that watches over no socket, as ILibLifeTime_AddEx_Debug. */
#define ILibLifeTime_AddEx(aLifeTime, aData, aMilliseconds, aCallback, aDestroyCallback)                               \
    ILibLifeTime_AddEx_Debug(aLifeTime, aData, aMilliseconds, aCallback, aDestroyCallback, kzoSocketInvalid, "")

/** Removes all timers armed with aData, in the order of adding. */
UPNPSTACK_API void ILibLifeTime_Remove(ILibLifeTime* aLifeTime, void* aData);

/**
 * Replaces the clock; NULL is the system's, which a new lifetime has. Pending timers keep the time that they had left.
 * However far a clock jumps ahead, the timers it passes are called back once and in their order; a jump back counts as
 * no time. The chain takes a millisecond of the clock for a real one when it waits.
 */
UPNPSTACK_API void ILibLifeTime_SetClock(ILibLifeTime* aLifeTime, ILibLifeTime_Clock_t aClock, void* aUserData);

#ifdef __cplusplus
}
#endif
