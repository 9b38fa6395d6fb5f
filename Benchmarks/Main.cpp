#include "Documents.h"

#include <benchmark/benchmark.h>
#include <map>
#include <zoLog/Log.h>

namespace
{

// What is compared with what in the same run.
struct Ratio
{
    const char* mText;
    const char* mName;
    const char* mYardstick;
};
const Ratio kRatios[] = {
    { "parse / pugixml in place and copied out", "BM_Parse", "BM_PugixmlParseAndCopy" },
    { "parse / pugixml in place and copied out to room made beforehand", "BM_Parse", "BM_PugixmlParseAndCopyReserved" },
    { "parse / pugixml in place", "BM_Parse", "BM_PugixmlParse" },
    { "write / pugixml in place and copied out", "BM_Write", "BM_PugixmlParseAndCopyWritten" },
    { "choice among 30 for 300 sinks / libxml2 tree", "BM_ChooseAmongMany", "BM_Libxml2ParseMany" },
    { "whole path / libxml2 tree", "BM_Path", "BM_Libxml2Parse" },
    { "Browse answer, to the records / pugixml in place", "BM_ParseBrowse", "BM_PugixmlParseBrowse" },
    { "Browse answer, to the first records / pugixml in place", "BM_ParseFirstOfBrowse", "BM_PugixmlParseBrowse" },
    { "Browse answer, to the records / libxml2 tree", "BM_ParseBrowse", "BM_Libxml2ParseBrowse" },
    { "description of 64 KiB with 64 parts / memcpy", "BM_RewriteDescription", "BM_CopyDescription" },
};

// Prints as usual, and the ratios at the end.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    bool ReportContext(const Context& aContext) override { return ConsoleReporter::ReportContext(aContext); }
    void ReportRuns(const std::vector<Run>& aRuns) override
    {
        ConsoleReporter::ReportRuns(aRuns);
        for (const Run& theRun : aRuns)
        {
            const bool fCounts = theRun.run_type == Run::RT_Iteration || theRun.aggregate_name == "median";
            if (fCounts) { mTimes[theRun.run_name.str()] = theRun.GetAdjustedCPUTime(); }
        }
    }
    void Finalize() override
    {
        for (const Ratio& theRatio : kRatios)
            Print(theRatio);
    }

private:
    void Print(const Ratio& aRatio)
    {
        if (mTimes.count(aRatio.mName) == 0 || mTimes.count(aRatio.mYardstick) == 0) { return; }
        GetOutputStream() << "ratio " << aRatio.mText << ": " << mTimes[aRatio.mName] / mTimes[aRatio.mYardstick]
                          << "\n";
    }
    std::map<std::string, double> mTimes;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) { return 2; }
    if (Documents().empty()) { return 2; }
    _zoLog_Level = ZOLOGLEVEL_ERROR; // objects without namespaces are not worth a line each time
    RatioReporter theReporter;
    benchmark::RunSpecifiedBenchmarks(&theReporter);
    return 0;
}
