#pragma once

/* The keys of a configuration file that a socket policy reads itself. */

#include <zoOS/zoSocketPolicy.h>
#include <zoltTools/Export.h>
#include <zoltTools/zoConfigFile.h>

#ifdef __cplusplus
extern "C" {
#endif

#define kKey_SocketPolicy_QOSDisabled "QOSDisabled"
#define kKey_SocketPolicy_ExcludeIF "exclude-if"

/** Reads the policy's own keys from a section: "QOSDisabled", an option, and "exclude-if", a list of interfaces. An
 *  absent key leaves the policy as it is. */
ZOLTTOOLS_API void zoSocketPolicy_Configure(zoSocketPolicy* aSocketPolicy, const zoConfigFile* aConfigFile,
                                            const char* aSection);

#ifdef __cplusplus
}
#endif
