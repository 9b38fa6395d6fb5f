#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/* The documents that the benchmarks run over. */

inline std::string ReadDataFile(const std::string& aPath)
{
    std::ifstream theFile(aPath, std::ios::binary);
    return { std::istreambuf_iterator<char>(theFile), {} };
}

inline const std::vector<std::string>& Documents()
{
    static const std::vector<std::string> sDocuments = []
    {
        std::vector<std::string> thePaths;
        for (const auto& theEntry : std::filesystem::directory_iterator(BENCHMARK_DATA))
        {
            if (theEntry.path().extension() == ".xml") { thePaths.push_back(theEntry.path()); }
        }
        std::sort(thePaths.begin(), thePaths.end());
        std::vector<std::string> theDocuments;
        for (const std::string& thePath : thePaths)
            theDocuments.push_back(ReadDataFile(thePath));
        return theDocuments;
    }();
    return sDocuments;
}

inline std::string SinkList() { return ReadDataFile(std::string(BENCHMARK_DATA) + "/dlna-tv.txt"); }
