#pragma once

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

/* Texts from files and from the library. */

// "" when there is no such file.
inline std::string ReadFile(const std::string& aPath)
{
    std::ifstream theFile(aPath, std::ios::binary);
    return { std::istreambuf_iterator<char>(theFile), {} };
}

// A file of Tests/Data.
inline std::string ReadTestFile(const std::string& aName) { return ReadFile(std::string(TEST_DATA) + "/" + aName); }

inline std::string Repeated(const std::string& aText, size_t aCount)
{
    std::string theText;
    for (size_t i = 0; i < aCount; ++i)
        theText += aText;
    return theText;
}

// Takes over a heap text of the library's; "(null)" for NULL.
inline std::string Taken(char* aText)
{
    std::string theText(aText ? aText : "(null)");
    free(aText);
    return theText;
}
