#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/* The documents that the benchmarks run over: those of the tests and those that have no expected facts. */

inline std::string ReadDataFile(const std::string& aPath)
{
    std::ifstream theFile(aPath, std::ios::binary);
    return { std::istreambuf_iterator<char>(theFile), {} };
}

inline const std::vector<std::string>& Documents()
{
    static const std::vector<std::string> sDocuments = []
    {
        std::vector<std::filesystem::path> thePaths;
        for (const char* theFolder : { BENCHMARK_DATA, TEST_DATA "/didl" })
        {
            for (const auto& theEntry : std::filesystem::directory_iterator(theFolder))
            {
                if (theEntry.path().extension() == ".xml") { thePaths.push_back(theEntry.path()); }
            }
        }
        std::sort(thePaths.begin(), thePaths.end(),
                  [](const auto& aLeft, const auto& aRight) { return aLeft.filename() < aRight.filename(); });
        std::vector<std::string> theDocuments;
        for (const std::filesystem::path& thePath : thePaths)
            theDocuments.push_back(ReadDataFile(thePath));
        return theDocuments;
    }();
    return sDocuments;
}

inline std::string SinkList() { return ReadDataFile(TEST_DATA "/sinks/handmade-dlna-tv.txt"); }
