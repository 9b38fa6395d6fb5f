#pragma once

/* Messages for those who look after the device. A message is opened, given its place in the source, filled and closed:
 *
 *     zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_WARNING, ZOLOG_M_DEFAULT);
 *     if (theRecord)
 *     {
 *         zoLog_SetLocation(theRecord, __FILE__, __LINE__);
 *         zoLog_Append_F(theRecord, "%d items\n", theCount);
 *         zoLog_End(theRecord);
 *     }
 *
 * Nothing is formatted for a level that is not logged. Several threads may log at a time; each message reaches the sink
 * whole. Level and sink are not locked: set them before a second thread logs. */

#include <stdarg.h>
#include <zoLog/Export.h>
#include <zoLog/LogModules.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The lower the level, the more a message matters. */
enum
{
    ZOLOGLEVEL_NONE = 0,
    ZOLOGLEVEL_ERROR = 1,
    ZOLOGLEVEL_WARNING = 2,
    ZOLOGLEVEL_INFO = 3,
    ZOLOGLEVEL_DEBUG = 4
};

/* Messages of a level below this are logged: errors and warnings with ZOLOGLEVEL_INFO, the value at start. */
extern ZOLOG_API int _zoLog_Level;

/* A message that is being filled. */
typedef struct zoLogRecord_t zoLogRecord_t;

/** Receives each finished message, in the thread that logs it. The texts are valid during the call; aFile is "" when
 * the message was given no place in the source. */
typedef void (*zoLogSink_t)(int aLevel, int aModule, const char* aFile, int aLine, const char* aText, void* aUserData);

/** Installs the receiver of messages; NULL: one line per message on standard error. */
ZOLOG_API void zoLog_SetSink(zoLogSink_t aSink, void* aUserData);

/** @return a new message, closed and released by zoLog_End; NULL when aLevel is not logged or memory has run out. */
ZOLOG_API zoLogRecord_t* zoLog_Begin(int aLevel, int aModule);

/** Gives the message its place in the source. aFile is not copied and must outlive the message. A NULL record is
 *  ignored. */
ZOLOG_API void zoLog_SetLocation(zoLogRecord_t* aRecord, const char* aFile, int aLine);

/** Appends text formatted as by printf, of any length; nothing when memory has run out. A NULL record is ignored. */
ZOLOG_API void zoLog_Append_F(zoLogRecord_t* aRecord, const char* aFormat, ...) __attribute__((format(printf, 2, 3)));

/** As zoLog_Append_F, with the arguments in a list. */
ZOLOG_API void zoLog_Append_V(zoLogRecord_t* aRecord, const char* aFormat, va_list anArguments)
    __attribute__((format(printf, 2, 0)));

/** Hands the message to the sink and releases it. A NULL record is ignored. */
ZOLOG_API void zoLog_End(zoLogRecord_t* aRecord);

#ifdef __cplusplus
}
#endif
