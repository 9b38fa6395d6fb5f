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

/* The objects of the documents, over and over, as the answer to a Browse. */
inline std::string BrowseResult(size_t aCount)
{
    std::string theText = "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\""
                          " xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
                          " xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\""
                          " xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\" xmlns:sec=\"http://www.sec.co.kr/\""
                          " xmlns:pv=\"http://www.pv.com/pvns/\">";
    const std::string kEnd = "</DIDL-Lite>";
    for (size_t i = 0; i < aCount; ++i)
    {
        const std::string& theDocument = Documents()[i % Documents().size()];
        const size_t theBegin = theDocument.find('>', theDocument.find("<DIDL-Lite")) + 1;
        theText += theDocument.substr(theBegin, theDocument.find(kEnd) - theBegin);
    }
    return theText + kEnd;
}
