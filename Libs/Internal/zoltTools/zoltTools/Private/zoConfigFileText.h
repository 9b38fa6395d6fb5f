#pragma once

/* How names and values stand in the lines of a configuration file. */

#include <zoOS/zoTypes.h>
#include <zoltTools/zoBuffer.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Takes the blanks at its ends off a text. */
void zoConfigFileText_Trim(const char** aText, size_t* aLength);
/** @return what aLength bytes of a line mean as a name or a value: a new text, released with free. */
char* zoConfigFileText_NewUnescaped(const char* aText, size_t aLength, int afIsName);
/** Appends a name or a value so that it is read as what it is. */
void zoConfigFileText_AppendEscaped(zoBuffer* aBuffer, const char* aText, int afIsName);

#ifdef __cplusplus
}
#endif
