#pragma once

/* How a chain makes its timers. */

#include <UPnP/Stack/ILibLifeTime.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @return a new lifetime without timers. It is a chain object, to be the first one of its chain. */
ILibLifeTime* ILibLifeTime_S_New(void);

#ifdef __cplusplus
}
#endif
