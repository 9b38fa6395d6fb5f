#include <UPnP/Utilities/UPnPHook.h>
#include <benchmark/benchmark.h>
#include <memory>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <vector>

// A service description rewritten by a hook that has every feature on, so that each name is looked through for all of
// them.

namespace
{

// A template, its parts, and what comes out.
struct Description
{
    Description(int64_t aPartCount, const std::string& aRun)
    {
        static char sText[] = "<action><name>X_Optional</name></action>";
        // The last of the features, the first, none, one that is inverted, and one of the client's.
        static char sNames[][16] = { ":bcscontrol", ":upload", ":unknown:part", ":nexturi", ":search" };
        for (int64_t i = 0; i < aPartCount; ++i)
        {
            char* theName = sNames[i % 5];
            const bool fIsDropped = theName == sNames[2] || theName == sNames[3];
            mTemplate += aRun + "%@";
            mExpected += aRun + (fIsDropped ? "" : sText);
            mTexts.push_back(sText);
            mNames.push_back(theName);
            mLengths.push_back(strlen(sText));
        }
        mTexts.push_back(nullptr);
        mTemplate += ">";
        mExpected += ">";
        for (int i = 0; i < kUPnPHookFeature_Count; ++i)
            UPnPHook_SetSupportFeature(mHook.get(), i, 1);
    }

    // The description, and its length.
    char* Rewrite(size_t* aLength)
    {
        char* theBuffer = nullptr;
        UPnPHook_Hook(mHook.get(), kUPnPHook_GetServiceDescription, static_cast<ILibWebServer_Session*>(nullptr),
                      static_cast<char*>(nullptr), mTemplate.data(), mTemplate.size(), mTexts.data(), mNames.data(),
                      mLengths.data(), &theBuffer, aLength);
        return theBuffer;
    }
    bool IsRight()
    {
        size_t theLength = 0;
        char* theText = Rewrite(&theLength);
        const bool fIsRight = theText && std::string(theText, theLength) == mExpected;
        free(theText);
        return fIsRight;
    }

    std::unique_ptr<UPnPHook, decltype(&UPnPHook_Delete)> mHook{ UPnPHook_New(), UPnPHook_Delete };
    std::string mTemplate;
    std::string mExpected;
    std::vector<char*> mTexts;
    std::vector<char*> mNames;
    std::vector<size_t> mLengths;
};

// 64 KiB with 64 parts.
Description Large()
{
    const std::string kLine = "<argument><name>InstanceID</name><direction>in</direction></argument>\n";
    std::string theRun;
    while (theRun.size() < 1024)
        theRun += kLine;
    theRun.resize(1022);
    return Description(64, theRun);
}

void Rewrite(benchmark::State& aState, Description&& aDescription)
{
    if (!aDescription.IsRight()) { aState.SkipWithError("wrong answer"); }
    for (auto _ : aState)
    {
        size_t theLength = 0;
        char* theText = aDescription.Rewrite(&theLength);
        benchmark::DoNotOptimize(theText);
        free(theText);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * aDescription.mExpected.size()));
}

void BM_RewriteDescription(benchmark::State& aState) { Rewrite(aState, Large()); }
BENCHMARK(BM_RewriteDescription);

// The same result copied to room made beforehand.
void BM_CopyDescription(benchmark::State& aState)
{
    const std::string theText = Large().mExpected;
    std::vector<char> theCopy(theText.size());
    for (auto _ : aState)
    {
        memcpy(theCopy.data(), theText.data(), theText.size());
        benchmark::DoNotOptimize(theCopy.data());
        benchmark::ClobberMemory();
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * theText.size()));
}
BENCHMARK(BM_CopyDescription);

void Register(const char* aName, Description (*aMake)(int64_t aCount))
{
    benchmark::RegisterBenchmark(aName,
                                 [aMake](benchmark::State& aState)
                                 {
        Rewrite(aState, aMake(aState.range(0)));
        aState.SetComplexityN(aState.range(0));
    })
        ->RangeMultiplier(10)
        ->Range(10, 100000)
        ->Complexity(benchmark::oN);
}

const bool kfRegistered = []
{
    Register("BM_Growth/DescriptionParts", [](int64_t aCount) { return Description(aCount, "<a/>"); });
    Register("BM_Growth/DescriptionPercents",
             [](int64_t aCount) { return Description(1, std::string(static_cast<size_t>(aCount), '%')); });
    return true;
}();

} // namespace
