#pragma once

#include <string>
#include <vector>

/** @return what messages call an input. */
std::string InputName(const std::string& aPath);

/** @return what a message begins with that is about a place in an input: "file.xml:3:17: ", without a line "file.xml:
 * ". Lines and columns are counted from 1. */
std::string PlaceText(const std::string& anInputName, unsigned aLine, unsigned aColumn);

/**
 * Reads a file, or standard input for "-". A file with a NUL byte is refused, since texts end there.
 * @param aText out: the bytes, ended by a NUL.
 * @return false when that fails; the reason is on standard error then.
 */
bool ReadInput(const std::string& aPath, std::vector<char>& aText);
