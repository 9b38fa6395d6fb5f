#pragma once

/* Heap memory and heap strings. Everything given out here is released with free. When the system has no memory left
 * the process ends, after a handler was told: no caller gets NULL for lack of memory. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Is told how many bytes can't be had; SIZE_MAX stands for a size that no memory can hold. It must not allocate. The
 *  process aborts when it returns. */
typedef void (*zoMemory_FailureHandler_t)(size_t aSize);

/** Installs a handler, at any time and from any thread; NULL: the default, which writes a line to standard error.
 *  @return the handler before, NULL when it was the default. */
ZOLTTOOLS_API zoMemory_FailureHandler_t zoMemory_SetFailureHandler(zoMemory_FailureHandler_t aHandler);
/** Tells the handler that aSize bytes can't be had, and aborts. */
ZOLTTOOLS_API void _zoMemory_Failed(size_t aSize);

/** @return aSize bytes, at least one. */
ZOLTTOOLS_API void* zoMalloc(size_t aSize);
/** @return aSize bytes, at least one, all 0. */
ZOLTTOOLS_API void* zoMallocZeroed(size_t aSize);
/** @return aBlock moved to aSize bytes, at least one; NULL aBlock: a new block. */
ZOLTTOOLS_API void* zoRealloc(void* aBlock, size_t aSize);
/** Releases a block; NULL is ignored. The same as free. */
ZOLTTOOLS_API void zoFree(void* aBlock);

/** @return a new copy of aText; NULL for NULL. */
ZOLTTOOLS_API char* zoStrdup(const char* aText);
/** @return a new copy of at most aLength bytes of aText, which ends there or at its NUL; NULL for NULL. */
ZOLTTOOLS_API char* zoStrndup(const char* aText, size_t aLength);
/** Releases *aTarget and puts a new copy of aText there, NULL for NULL. aText may lie in *aTarget. */
ZOLTTOOLS_API void zoStrReplace(char** aTarget, const char* aText);
/** Releases *aTarget and puts a new copy of at most aLength bytes of aText there, NULL for NULL. aText may lie in
 *  *aTarget. */
ZOLTTOOLS_API void zoStrnReplace(char** aTarget, const char* aText, size_t aLength);
/** Appends aText to the heap string *aTarget, which moves; NULL *aTarget counts as "", NULL aText too. aText may lie in
 *  *aTarget. */
ZOLTTOOLS_API void zoStrcatReplace(char** aTarget, const char* aText);
/** @return 1 for NULL and for "", else 0. */
ZOLTTOOLS_API int zoStrEmpty(const char* aText);

/** Formats as printf into aBuffer, of aSize bytes: cut to fit, and always NUL-terminated unless aSize is 0.
 *  @return the length of the text in aBuffer. */
ZOLTTOOLS_API int zo_snprintf(char* aBuffer, size_t aSize, const char* aFormat, ...)
    __attribute__((format(printf, 3, 4)));
/** @return a new text formatted as printf, of any length. */
ZOLTTOOLS_API char* zo_mnprintf(const char* aFormat, ...) __attribute__((format(printf, 1, 2)));

#ifdef __cplusplus
}
#endif
