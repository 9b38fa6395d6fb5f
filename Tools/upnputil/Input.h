#pragma once

#include <string>
#include <vector>

/** @return what messages call an input. */
std::string InputName(const std::string& aPath);

/**
 * Reads a file, or standard input for "-". A file with a NUL byte is refused, since texts end there.
 * @param aText out: the bytes, ended by a NUL.
 * @return false when that fails; the reason is on standard error then.
 */
bool ReadInput(const std::string& aPath, std::vector<char>& aText);
