#pragma once

/* How a chain makes its timers. */

#include <UPnP/Stack/ILibLifeTime.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @return a new lifetime without timers: a chain object, which has to be the first of its chain. */
ILibLifeTime* ILibLifeTime_S_New(void);

#ifdef __cplusplus
}
#endif
