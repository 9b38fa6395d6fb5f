#include <zoltTools/zoAssert.h>

#include <atomic>
#include <stdio.h>
#include <stdlib.h>

static void PrintAndAbort(const char* aCondition, const char* aFile, int aLine)
{
    fprintf(stderr, "%s:%d: assertion failed: %s\n", aFile, aLine, aCondition);
    abort();
}

// Any thread may fail an assertion while another installs a handler.
static std::atomic<zoAssertHandler_t> sHandler{ nullptr };

zoAssertHandler_t zoAssert_SetHandler(zoAssertHandler_t aHandler) { return sHandler.exchange(aHandler); }

void _zoAssert(const char* aCondition, const char* aFile, int aLine)
{
    const zoAssertHandler_t theHandler = sHandler.load();
    (theHandler ? theHandler : PrintAndAbort)(aCondition, aFile, aLine);
}
