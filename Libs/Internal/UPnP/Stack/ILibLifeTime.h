#pragma once

/* The timers of an event chain (ILibChain.h), each of which calls back once. Thousands may be pending: arming, removing
 * and calling back a timer take amortised O(log n) each, also when all timers of one object are removed together.
 *
 * Timers that are due are called back in the order of their times, those of the same time in the order of adding. A
 * timer is gone when its callback begins. A callback may arm and remove timers. One that it arms, even for 0 ms, is
 * called back in a later turn of the chain; one that it removes is not called back.
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

/** Called when a timer is due, or when it is removed. aData: what the timer was armed with. */
typedef void (*ILibLifeTime_Callback_t)(void* aData);
/** @return monotonic milliseconds. */
typedef uint64_t (*ILibLifeTime_Clock_t)(void* aUserData);

/**
 * Arms a timer.
 * @param aData             passed to the callbacks; ILibLifeTime_Remove finds the timer by it.
 * @param aMilliseconds     from now; below 0 counts as 0.
 * @param aCallback         called once, never early, in the first turn of the chain after the time has passed.
 * @param aDestroyCallback  called instead when the timer is removed or destroyed with the chain; NULL: nothing is
 * called.
 * @param aSocket           the socket that the timer belongs to, or kzoSocketInvalid; only debuggers see it.
 * @param aModuleName       who armed it, a text that outlives the timer; only debuggers see it.
 * A chain that has begun to destroy its timers ignores new ones.
 */
UPNPSTACK_API void ILibLifeTime_AddEx_Debug(ILibLifeTime* aLifeTime, void* aData, int aMilliseconds,
                                            ILibLifeTime_Callback_t aCallback, ILibLifeTime_Callback_t aDestroyCallback,
                                            zoSocket aSocket, const char* aModuleName);
/* As ILibLifeTime_AddEx_Debug, for a timer without a socket. */
#define ILibLifeTime_AddEx(aLifeTime, aData, aMilliseconds, aCallback, aDestroyCallback)                               \
    ILibLifeTime_AddEx_Debug(aLifeTime, aData, aMilliseconds, aCallback, aDestroyCallback, kzoSocketInvalid, "")

/** Removes all timers that were armed with aData, in the order of adding. */
UPNPSTACK_API void ILibLifeTime_Remove(ILibLifeTime* aLifeTime, void* aData);

/**
 * Replaces the clock, for tests. Pending timers keep the time that they have left. When the clock jumps ahead, the
 * timers that it passes are called back once and in their order; a jump back counts as no time. While the chain waits,
 * a millisecond of the clock is a real one.
 * @param aClock  NULL: the system's, which a new lifetime has.
 */
UPNPSTACK_API void ILibLifeTime_SetClock(ILibLifeTime* aLifeTime, ILibLifeTime_Clock_t aClock, void* aUserData);

#ifdef __cplusplus
}
#endif
