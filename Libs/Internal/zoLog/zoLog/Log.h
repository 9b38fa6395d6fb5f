#pragma once

/* Messages for whoever looks after the device. A message is opened, given its place in the source, filled and closed:
 *
 *     zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_WARNING, ZOLOG_M_DEFAULT);
 *     if (theRecord)
 *     {
 *         zoLog_SetLocation(theRecord, __FILE__, __LINE__);
 *         zoLog_Append_F(theRecord, "%d items\n", theCount);
 *         zoLog_End(theRecord);
 *     }
 *
 * Nothing is formatted for a level that is not logged. Messages of several threads don't mix; the level and the sink
 * are set before threads log. */

#include <stdarg.h>
#include <zoLog/Export.h>
#include <zoLog/LogModules.h>

#ifdef __cplusplus
extern "C" {
#endif

/* How much a message matters: the lower, the more. */
enum
{
    ZOLOGLEVEL_NONE = 0,
    ZOLOGLEVEL_ERROR = 1,
    ZOLOGLEVEL_WARNING = 2,
    ZOLOGLEVEL_INFO = 3,
    ZOLOGLEVEL_DEBUG = 4
};

/* A message of level L is written when L is below this; 3 at start: errors and warnings. */
extern ZOLOG_API int _zoLog_Level;

/* A message in the making. */
typedef struct zoLogRecord_t zoLogRecord_t;

/** Receives each finished message. aFile is "" when the message has no place in the source. Nothing is kept. */
typedef void (*zoLogSink_t)(int aLevel, int aModule, const char* aFile, int aLine, const char* aText, void* aUserData);

/** Installs the receiver of messages; NULL: one line per message on standard error. */
ZOLOG_API void zoLog_SetSink(zoLogSink_t aSink, void* aUserData);

/** @return a new message, closed and released by zoLog_End; NULL when aLevel is not logged. */
ZOLOG_API zoLogRecord_t* zoLog_Begin(int aLevel, int aModule);

/** Says where the message comes from. aFile is not copied and must outlive the message. A NULL record is ignored. */
ZOLOG_API void zoLog_SetLocation(zoLogRecord_t* aRecord, const char* aFile, int aLine);

/** Appends text formatted as by printf, of any length. A NULL record is ignored. */
ZOLOG_API void zoLog_Append_F(zoLogRecord_t* aRecord, const char* aFormat, ...) __attribute__((format(printf, 2, 3)));

/** zoLog_Append_F for a caller that has variable arguments itself. */
ZOLOG_API void zoLog_Append_V(zoLogRecord_t* aRecord, const char* aFormat, va_list anArguments)
    __attribute__((format(printf, 2, 0)));

/** Hands the message to the sink and releases it. A NULL record is ignored. */
ZOLOG_API void zoLog_End(zoLogRecord_t* aRecord);

#ifdef __cplusplus
}
#endif
