#include "FuzzSupport.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// Runs a fuzz target over files, and over all files of folders; fails when there was none.

static size_t Replay(const std::filesystem::path& aPath)
{
    if (std::filesystem::is_directory(aPath))
    {
        size_t theCount = 0;
        for (const auto& theEntry : std::filesystem::directory_iterator(aPath))
            theCount += Replay(theEntry.path());
        return theCount;
    }
    std::ifstream theFile(aPath, std::ios::binary);
    const std::string theBytes{ std::istreambuf_iterator<char>(theFile), {} };
    std::printf("%s\n", aPath.c_str()); // the last one before a failure is the culprit
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(theBytes.data()), theBytes.size());
    return 1;
}

int main(int argc, char** argv)
{
    size_t theCount = 0;
    for (int i = 1; i < argc; ++i)
    {
        if (std::filesystem::exists(argv[i])) { theCount += Replay(argv[i]); }
    }
    std::printf("%zu files\n", theCount);
    return theCount > 0 ? 0 : 1;
}
