#pragma once

/* Tells its owner when the host's IP addresses change. An object on an event chain: it looks every 4 seconds and lives
 * as long as the chain. */

#include <UPnP/Stack/ILibChain.h>
#include <UPnP/Utilities/Export.h>
#include <zoOS/zoSocketPolicy.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Time between two looks at the addresses, from the end of the one to the next, in milliseconds. */
enum
{
    kIPAddressMonitor_PollInterval = 4000
};

/** Is told that the addresses have changed. */
typedef void (*IPChangeCallBackFunc)(void* aUserData);

/**
 * Puts a new monitor on a chain, which owns it from now on.
 * @param aChangeCallBackFunc             not NULL; called on the chain's thread, which it must not block, with
 * @param anIPChangeCallBackFuncUserData  unchanged, when the addresses differ from those of the look before.
 * @param aSocketPolicy                   which addresses count; outlives the chain. NULL: all.
 * @return the monitor, borrowed; NULL, after an assertion, for a NULL chain.
 */
UPNPUTILITIES_API struct IPAddressMonitor* UPnPIPAddressMonitor_Create(ILibBaseChain* aBaseChain,
                                                                       IPChangeCallBackFunc aChangeCallBackFunc,
                                                                       void* anIPChangeCallBackFuncUserData,
                                                                       zoSocketPolicy* aSocketPolicy);

#ifdef __cplusplus
}
#endif
