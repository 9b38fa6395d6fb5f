#pragma once

/* One call for one log message. */

#include <stdarg.h>
#include <zoLog/Log.h>

namespace Shared
{

/** Logs a message formatted as by printf; nothing is formatted for a level that is not logged.
 *  @param aFile, aLine the caller's __FILE__ and __LINE__. */
__attribute__((format(printf, 5, 6))) inline void LogMessage(int aLevel, int aModule, const char* aFile, int aLine,
                                                             const char* aFormat, ...)
{
    zoLogRecord_t* theRecord = zoLog_Begin(aLevel, aModule);
    if (!theRecord) { return; }
    va_list theArguments;
    va_start(theArguments, aFormat);
    zoLog_SetLocation(theRecord, aFile, aLine);
    zoLog_Append_V(theRecord, aFormat, theArguments);
    va_end(theArguments);
    zoLog_End(theRecord);
}

} // namespace Shared
