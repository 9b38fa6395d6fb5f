#pragma once

/* Programming errors. An assertion is on in every build and reports to a handler; the default handler prints the
 * condition with its place and aborts. A handler may return, so code must then leave what the assertion guards:
 *
 *     if (!zoAssert(aHook != NULL)) { return; }
 */

#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Receives a condition that does not hold, and its place in the source. It may return. */
typedef void (*zoAssertHandler_t)(const char* aCondition, const char* aFile, int aLine);

/** Installs a handler, NULL for the default. @return the handler before, NULL when it was the default. */
ZOLTTOOLS_API zoAssertHandler_t zoAssert_SetHandler(zoAssertHandler_t aHandler);

/** Reports a failed condition to the handler: its text, the source file's path (from "Libs/" on) and the line. */
ZOLTTOOLS_API void _zoAssert(const char* aCondition, const char* aFile, int aLine);

/* What zoAssert expands to. */
static inline int zoAssert_Check(int afCondition, const char* aCondition, const char* aFile, int aLine)
{
    if (!afCondition) { _zoAssert(aCondition, aFile, aLine); }
    return afCondition;
}

/* 1 when the condition holds; else 0, and it is reported. */
#define zoAssert(aCondition) zoAssert_Check(!!(aCondition), #aCondition, __FILE__, __LINE__)

#ifdef __cplusplus
}
#endif
