#pragma once

/* Texts that come as bytes and their number, and end at a NUL among them, too. */

#include <string.h>
#include <string_view>

namespace Shared
{

/** @return the bytes up to the first NUL or their end; without data for NULL. */
inline std::string_view TextOf(const char* aText, size_t aLength)
{
    return { aText, aText ? strnlen(aText, aLength) : 0 };
}

} // namespace Shared
