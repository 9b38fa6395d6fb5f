#include <benchmark/benchmark.h>
#include <string>
#include <zoltTools/zoConfigFile.h>

namespace
{

const int kKeys = 10;

std::string SectionName(int64_t anIndex) { return "Section" + std::to_string(anIndex); }
std::string KeyName(int64_t anIndex) { return "Key" + std::to_string(anIndex); }

std::string Text(int64_t aSections)
{
    std::string theText;
    for (int64_t i = 0; i < aSections; ++i)
    {
        theText += "[" + SectionName(i) + "]\n";
        for (int k = 0; k < kKeys; ++k)
            theText += KeyName(k) + "=value " + std::to_string(i * kKeys + k) + "\n";
    }
    return theText;
}

// Sections of ten keys each.
void BM_ConfigLoad(benchmark::State& aState)
{
    const std::string theText = Text(aState.range(0));
    for (auto _ : aState)
    {
        zoConfigFile* theFile = zoConfigFile_NewFromText(theText.data(), theText.size());
        if (zoConfigFile_GetSectionCount(theFile) != static_cast<size_t>(aState.range(0)))
        {
            aState.SkipWithError("wrong answer");
        }
        zoConfigFile_Delete(theFile);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * theText.size()));
    aState.SetComplexityN(aState.range(0));
}
BENCHMARK(BM_ConfigLoad)
    ->Name("BM_Growth/ConfigLoad")
    ->RangeMultiplier(10)
    ->Range(10, 10000)
    ->Complexity(benchmark::oN);

// So many look-ups, all over a file of 10,000 sections.
void BM_ConfigLookUp(benchmark::State& aState)
{
    const int64_t kSections = 10000;
    const std::string theText = Text(kSections);
    zoConfigFile* theFile = zoConfigFile_NewFromText(theText.data(), theText.size());
    for (auto _ : aState)
    {
        for (int64_t i = 0; i < aState.range(0); ++i)
        {
            const std::string theSection = SectionName(i * 7919 % kSections);
            const char* theValue =
                zoConfigFile_GetString(theFile, theSection.c_str(), KeyName(i % kKeys).c_str(), nullptr);
            if (!theValue) { aState.SkipWithError("wrong answer"); }
            benchmark::DoNotOptimize(theValue);
        }
    }
    aState.SetItemsProcessed(aState.iterations() * aState.range(0));
    aState.SetComplexityN(aState.range(0));
    zoConfigFile_Delete(theFile);
}
BENCHMARK(BM_ConfigLookUp)
    ->Name("BM_Growth/ConfigLookUp")
    ->RangeMultiplier(10)
    ->Range(100, 100000)
    ->Complexity(benchmark::oN);

} // namespace
