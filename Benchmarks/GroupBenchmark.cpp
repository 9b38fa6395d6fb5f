#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <benchmark/benchmark.h>
#include <functional>
#include <memory>
#include <stdlib.h>
#include <string>

namespace
{

typedef std::unique_ptr<UPnPGroupInfo, decltype(&UPnPGroupInfo_Delete)> Group;
typedef std::unique_ptr<zoConfigFile, decltype(&zoConfigFile_Delete)> Config;

Group ReadGroup(const std::string& aText) { return { UPnPGroupInfo_New("C", aText.c_str()), UPnPGroupInfo_Delete }; }

// A group with many slaves, or with much metadata, in the forms that it takes.
struct Sample
{
    explicit Sample(const std::string& aText)
        : mText(aText), mGroup(ReadGroup(aText)), mConfig(zoConfigFile_New(nullptr), zoConfigFile_Delete)
    {
        UPnPGroupInfo_Store(mGroup.get(), mConfig.get());
    }

    std::string mText;
    Group mGroup;
    Config mConfig;
};

std::string GroupInfo(const std::string& aMetaData, const std::string& aSlaves)
{
    return "<groupInfo friendlyName=\"Living room\" UDN=\"uuid:group-1\"" + aMetaData +
           ">\n    <master groupedFriendlyName=\"Kitchen\" groupedUDN=\"uuid:grouped\"/>" + aSlaves + "\n</groupInfo>";
}

std::string Slave(int64_t anIndex)
{
    const std::string theIndex = std::to_string(anIndex);
    return "\n    <slave groupedFriendlyName=\"Room " + theIndex + "\" groupedUDN=\"uuid:4d696e69-444c-164e-9d41-" +
           theIndex + "\" volume=\"20\" label=\"Tom &amp; Ann\"/>";
}

Sample Slaves(int64_t aCount)
{
    std::string theSlaves;
    for (int64_t i = 0; i < aCount; ++i)
        theSlaves += Slave(i);
    return Sample(GroupInfo("", theSlaves));
}

Sample SlavesReversed(int64_t aCount)
{
    std::string theSlaves;
    for (int64_t i = aCount; i-- > 0;)
        theSlaves += Slave(i);
    return Sample(GroupInfo("", theSlaves));
}

Sample MetaData(int64_t aCount)
{
    std::string theMetaData;
    for (int64_t i = 0; i < aCount; ++i)
        theMetaData += " entry-" + std::to_string(i) + "=\"a value &lt;of&gt; the entry\"";
    return Sample(GroupInfo(theMetaData, ""));
}

bool Read(const Sample& aSample) { return ReadGroup(aSample.mText) != nullptr; }

bool Write(const Sample& aSample)
{
    char* theText = UPnPGroupInfo_GetXML(aSample.mGroup.get());
    const bool fIsSame = theText == aSample.mText;
    free(theText);
    return fIsSame;
}

bool Store(const Sample& aSample)
{
    const Config theConfig(zoConfigFile_New(nullptr), zoConfigFile_Delete);
    UPnPGroupInfo_Store(aSample.mGroup.get(), theConfig.get());
    return zoConfigFile_GetKeyCount(theConfig.get(), "C") > 4;
}

bool Load(const Sample& aSample)
{
    const Group theGroup(UPnPGroupInfo_NewConfig(aSample.mConfig.get(), "C"), UPnPGroupInfo_Delete);
    return UPnPGroupInfo_GetSlaveCount(theGroup.get()) == UPnPGroupInfo_GetSlaveCount(aSample.mGroup.get()) &&
           UPnPGroupInfo_GetMetaDataCount(theGroup.get(), nullptr) ==
               UPnPGroupInfo_GetMetaDataCount(aSample.mGroup.get(), nullptr);
}

typedef Sample (*Maker)(int64_t aCount);

void Register(const std::string& aName, Maker aMaker, bool (*aFunction)(const Sample&))
{
    benchmark::RegisterBenchmark(("BM_Growth/Group" + aName).c_str(),
                                 [aMaker, aFunction](benchmark::State& aState)
                                 {
        const Sample theSample = aMaker(aState.range(0));
        if (!aFunction(theSample)) { aState.SkipWithError("wrong answer"); }
        for (auto _ : aState)
            benchmark::DoNotOptimize(aFunction(theSample));
        aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * theSample.mText.size()));
        aState.SetComplexityN(aState.range(0));
    })
        ->RangeMultiplier(10)
        ->Range(10, 10000)
        ->Complexity(benchmark::oN);
}

void RegisterSameAs(const std::string& aName, Maker aFirst, Maker aSecond, benchmark::BigO aComplexity)
{
    benchmark::RegisterBenchmark(("BM_Growth/Group" + aName).c_str(),
                                 [aFirst, aSecond](benchmark::State& aState)
                                 {
        const Sample theFirst = aFirst(aState.range(0)), theSecond = aSecond(aState.range(0));
        const auto theCompare = [&] { return UPnPGroupInfo_SameAs(theFirst.mGroup.get(), theSecond.mGroup.get()); };
        if (!theCompare()) { aState.SkipWithError("wrong answer"); }
        for (auto _ : aState)
            benchmark::DoNotOptimize(theCompare());
        aState.SetComplexityN(aState.range(0));
    })
        ->RangeMultiplier(10)
        ->Range(10, 10000)
        ->Complexity(aComplexity);
}

const bool kfRegistered = []
{
    for (const auto& [theName, theMaker] : { std::pair("Slaves", Slaves), std::pair("MetaData", MetaData) })
    {
        Register(std::string(theName) + "Read", theMaker, Read);
        Register(std::string(theName) + "Write", theMaker, Write);
        Register(std::string(theName) + "Store", theMaker, Store);
        Register(std::string(theName) + "Load", theMaker, Load);
        RegisterSameAs(std::string(theName) + "SameAs", theMaker, theMaker, benchmark::oN);
    }
    RegisterSameAs("SlavesSameAsReversed", Slaves, SlavesReversed, benchmark::oNLogN);
    return true;
}();

} // namespace
