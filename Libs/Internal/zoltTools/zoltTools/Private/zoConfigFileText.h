#pragma once

/* How names and values are written in the lines of a configuration file. */

#include <string_view>
#include <zoltTools/zoBuffer.h>

namespace ConfigFile
{

/** Writes the name or value that a piece of a line stands for, and a NUL, to aTarget, which has room for aText.size() +
 * 1 bytes. */
void Unescape(std::string_view aText, bool afIsName, char* aTarget);
/** Appends a name or a value in the form from which reading gives it back. */
void AppendEscaped(zoBuffer* aBuffer, std::string_view aText, bool afIsName);

} // namespace ConfigFile
