#pragma once

/* Where something is in a text, for people. */

#include <stddef.h>
#include <zoOS/zoTypes.h>

/** Counts lines and columns up to a byte of a text, as UPnPUtil_FindXMLError tells them. */
void UPnPPlace_Find(const char* aText, size_t anOffset, uint32* aLine, uint32* aColumn);
