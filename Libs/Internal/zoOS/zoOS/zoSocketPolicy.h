#pragma once

/* Which of the host's IP addresses the stack's sockets use, and how. All records of the stack share one policy, which
 * is made and configured before the stack runs and only read afterwards. */

#include <zoOS/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Which addresses are used. */
enum
{
    kzoSocketPolicy_IP_Other = 0x00,
    kzoSocketPolicy_IP_All = 0x01,
    kzoSocketPolicy_IP_AllExceptLocalHost = 0x02,
    kzoSocketPolicy_IP_LocalHostOnly = 0x03,
    kzoSocketPolicy_IP_Mask = 0x03 /* the bits of a mode that choose the addresses */
};

/* A policy for the stack's sockets. */
typedef struct zoSocketPolicy zoSocketPolicy;

/** @param aMode   a kzoSocketPolicy_IP_*.
 *  @param aFlags  none are defined: 0.
 *  @return a new policy that excludes no interface, released with zoSocketPolicy_Delete. */
ZOOS_API zoSocketPolicy* zoSocketPolicy_New(int aMode, int aFlags);
/** Releases the policy; NULL is ignored. */
ZOOS_API void zoSocketPolicy_Delete(zoSocketPolicy* aSocketPolicy);
/** @return the mode that the policy was made with; kzoSocketPolicy_IP_All for NULL. */
ZOOS_API int zoSocketPolicy_GetMode(const zoSocketPolicy* aSocketPolicy);

/** @param afDisabled  sockets leave the quality of service of their packets alone; 0 in a new policy. */
ZOOS_API void zoSocketPolicy_SetQOSDisabled(zoSocketPolicy* aSocketPolicy, int afDisabled);
/** @return what zoSocketPolicy_SetQOSDisabled set, 0 or 1; 0 for NULL. */
ZOOS_API int zoSocketPolicy_IsQOSDisabled(const zoSocketPolicy* aSocketPolicy);
/** Excludes interfaces by name or by the label of an address ("eth0:1").
 *  @param aNameList  names separated by commas, blanks around them ignored, empty ones skipped; the policy keeps a
 * copy. NULL excludes none. */
ZOOS_API void zoSocketPolicy_SetExcludedInterfaces(zoSocketPolicy* aSocketPolicy, const char* aNameList);
/** @param anInterfaceName  the name or label; NULL asks for the mode alone.
 *  @param afLoopback       the address is a loopback address.
 *  @return 1 when the policy admits an address of the interface, else 0. A NULL policy admits all. */
ZOOS_API int zoSocketPolicy_Admits(const zoSocketPolicy* aSocketPolicy, const char* anInterfaceName, int afLoopback);

#ifdef __cplusplus
}
#endif
