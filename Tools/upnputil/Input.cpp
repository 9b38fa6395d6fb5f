#include "Input.h"

#include "Output.h"

#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

static const size_t kPieceSize = 65536;

std::string InputName(const std::string& aPath) { return aPath == "-" ? "standard input" : aPath; }

std::string PlaceText(const std::string& anInputName, unsigned aLine, unsigned aColumn)
{
    if (aLine == 0) { return anInputName + ": "; }
    return anInputName + ":" + std::to_string(aLine) + ":" + std::to_string(aColumn) + ": ";
}

static bool Refuse(const std::string& aPath, const std::string& aReason)
{
    Fail(InputName(aPath) + ": " + aReason);
    return false;
}

static bool ReadAll(const std::string& aPath, FILE* aFile, std::vector<char>& aText)
{
    struct stat theState;
    if (fstat(fileno(aFile), &theState) == 0 && S_ISREG(theState.st_mode) && theState.st_size <= INT_MAX)
    {
        aText.reserve(static_cast<size_t>(theState.st_size) + kPieceSize);
    }
    size_t theSize = 0;
    for (size_t theRead = 1; theRead > 0; theSize += theRead)
    {
        aText.resize(theSize + kPieceSize);
        theRead = fread(aText.data() + theSize, 1, kPieceSize, aFile);
        const void* theNUL = memchr(aText.data() + theSize, 0, theRead);
        if (theNUL)
        {
            const auto theOffset = static_cast<const char*>(theNUL) - aText.data();
            return Refuse(aPath, "a NUL byte at offset " + std::to_string(theOffset));
        }
        if (theSize + theRead > INT_MAX) { return Refuse(aPath, "more than 2 GiB"); }
    }
    aText.resize(theSize);
    aText.push_back('\0');
    return !ferror(aFile) || Refuse(aPath, strerror(errno));
}

bool ReadInput(const std::string& aPath, std::vector<char>& aText)
{
    if (aPath == "-") { return ReadAll(aPath, stdin, aText); }
    FILE* theFile = fopen(aPath.c_str(), "rb");
    if (!theFile) { return Refuse(aPath, strerror(errno)); }
    const bool fIsRead = ReadAll(aPath, theFile, aText);
    fclose(theFile);
    return fIsRead;
}
