#pragma once

#include <string>
#include <vector>

/** @return what messages call an input. */
std::string InputName(const std::string& aPath);

/**
 * Reads a file, or standard input for "-". A file with a NUL byte is refused: no text has one.
 * @param aText out: the bytes and a NUL behind them.
 * @return false when that fails; why is said on standard error.
 */
bool ReadInput(const std::string& aPath, std::vector<char>& aText);
