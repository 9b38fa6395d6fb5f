#pragma once

/* Tells its owner when the host's IP addresses change. It is an object of an event chain: it looks every 4 seconds and
 * lives as long as the chain. */

#include <UPnP/Stack/ILibChain.h>
#include <UPnP/Utilities/Export.h>
#include <zoOS/zoSocketPolicy.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Milliseconds from the end of one look at the addresses to the next. */
enum
{
    kIPAddressMonitor_PollInterval = 4000
};

/** Called when the addresses have changed. */
typedef void (*IPChangeCallBackFunc)(void* aUserData);

/**
 * Adds a new monitor to a chain, which takes it over.
 * @param aChangeCallBackFunc             called on the chain's thread, which it must not block, when the addresses
 *                                        differ from those of the last look that succeeded. Not NULL.
 * @param anIPChangeCallBackFuncUserData  passed to the callback.
 * @param aSocketPolicy                   admits the addresses that count; outlives the chain. NULL: all count.
 * @return the monitor, owned by the chain; NULL for a NULL chain, after an assertion.
 */
UPNPUTILITIES_API struct IPAddressMonitor* UPnPIPAddressMonitor_Create(ILibBaseChain* aBaseChain,
                                                                       IPChangeCallBackFunc aChangeCallBackFunc,
                                                                       void* anIPChangeCallBackFuncUserData,
                                                                       zoSocketPolicy* aSocketPolicy);

#ifdef __cplusplus
}
#endif
