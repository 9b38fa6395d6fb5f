#include "Input.h"
#include "Subcommand.h"

#include <UPnP/Stack/ILibChain.h>
#include <UPnP/Utilities/UPnPConfig.h>
#include <UPnP/Utilities/UPnPIPAddressMonitor.h>
#include <algorithm>
#include <atomic>
#include <iterator>
#include <memory>
#include <optional>
#include <signal.h>
#include <time.h>
#include <unistd.h>
#include <zoltTools/zoIPAddressMonitor.h>

static const Usage kUsage = {
    "[--config FILE --section NAME] [--once]",
    nullptr,
    "Prints the host's IP addresses, and then a line with the time for each change of them, until it is interrupted\n"
    "(Ctrl-C). It looks every 4 seconds. With --json-lines the addresses are one line, and each change is one.\n",
    {
        { "--config", "FILE", false, "a configuration file that says which addresses count; \"-\" is standard input" },
        { "--section", "NAME", false, "its section with the keys \"UPnPLocal\" and \"exclude-if\"" },
        { "--once", nullptr, false, "print the addresses now, and end" },
    },
};

static const int kRetryInterval = 1000; // milliseconds, when the addresses can't be read

namespace
{

typedef std::vector<std::string> Texts;
typedef std::unique_ptr<zoSocketPolicy, decltype(&zoSocketPolicy_Delete)> Policy;
typedef std::unique_ptr<ILibBaseChain, decltype(&ILibChain_Delete)> Chain;

// What is printed, and what has been printed so far.
struct Watch
{
    Output& mOutput;
    const zoSocketPolicy* mPolicy;
    ILibBaseChain* mChain;
    Texts mAddresses;                     // sorted
    std::optional<Output::List> mChanges; // once the addresses are printed
};

// Lets Ctrl-C and a request to terminate stop a chain, for as long as it lives.
class Interruption
{
public:
    explicit Interruption(ILibBaseChain* aChain)
    {
        sChain = aChain;
        struct sigaction theAction = {};
        theAction.sa_handler = [](int) { ILibChain_Stop(sChain); };
        for (size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &theAction, &mBefore[i]);
    }
    ~Interruption()
    {
        for (size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &mBefore[i], nullptr);
    }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

private:
    static constexpr int kSignals[] = { SIGINT, SIGTERM };
    static inline std::atomic<ILibBaseChain*> sChain{ nullptr };
    struct sigaction mBefore[std::size(kSignals)];
};

// On the chain: ends the program, as a write would, when nobody reads its output any more.
struct ReaderWatch
{
    ILibChain mChain = {};
    size_t mPlace = 0;
};

} // namespace

static void WatchForReader(void* aWatch, ILibChain_PollSet* aPollSet, int*)
{
    static_cast<ReaderWatch*>(aWatch)->mPlace = ILibChain_PollSet_Add(aPollSet, STDOUT_FILENO, 0);
}

static void EndWithoutReader(void* aWatch, const ILibChain_PollSet* aPollSet)
{
    const ReaderWatch& theWatch = *static_cast<ReaderWatch*>(aWatch);
    if (ILibChain_PollSet_GetEvents(aPollSet, theWatch.mPlace) == 0) { return; }
    raise(SIGPIPE);
    ILibChain_Stop(theWatch.mChain.mBaseChain); // SIGPIPE is ignored
}

static void AddReaderWatch(ILibBaseChain* aChain)
{
    auto* theWatch = new ReaderWatch;
    theWatch->mChain.mPreSelect = WatchForReader;
    theWatch->mChain.mPostSelect = EndWithoutReader;
    theWatch->mChain.mFree = [](void* aWatch) { delete static_cast<ReaderWatch*>(aWatch); };
    ILibAddToChain(aChain, theWatch);
}

// Reads the policy that the configuration asks for. Without a configuration all addresses count, without a policy.
static bool ReadPolicy(const Arguments& anArguments, Policy& aPolicy, int* aStatus)
{
    const char* thePath = anArguments.Get("--config");
    const char* theSection = anArguments.Get("--section");
    if (!thePath != !theSection)
    {
        *aStatus = anArguments.BadUsage("--config and --section are needed together");
        return false;
    }
    if (!thePath) { return true; }
    std::vector<char> theText;
    *aStatus = kExit_Bad;
    if (!ReadInput(thePath, theText)) { return false; }
    zoConfigFile* theFile = zoConfigFile_NewFromText(theText.data(), theText.size() - 1);
    aPolicy.reset(UPnPConfig_CreateSocketPolicy(theFile, theSection));
    zoConfigFile_Delete(theFile);
    return true;
}

static bool ReadAddresses(const zoSocketPolicy* aPolicy, Texts& anAddresses)
{
    zoArray_t* theArray = zoIPAddressMonitor_GetAddresses(aPolicy);
    if (!theArray) { return false; }
    anAddresses.clear();
    for (size_t i = 0; i < zoArray_GetCount(theArray); ++i)
        anAddresses.emplace_back(static_cast<const char*>(zoArray_At(theArray, i)));
    zoArray_Delete(theArray);
    return true;
}

static void PrintList(const char* aName, const char* aKey, const Texts& aTexts, Output& anOutput)
{
    Output::List theList(anOutput, aName, aKey);
    for (const std::string& theText : aTexts)
        theList.Add(theText);
}

static void PrintAddresses(const Texts& anAddresses, Output& anOutput)
{
    PrintList("address", "addresses", anAddresses, anOutput);
    anOutput.InText("addresses", std::to_string(anAddresses.size()));
}

static std::string TimeNow()
{
    const time_t theTime = time(nullptr);
    struct tm theParts = {};
    char theText[sizeof("-2147481748-12-31T23:59:59Z")] = "";
    gmtime_r(&theTime, &theParts);
    strftime(theText, sizeof(theText), "%Y-%m-%dT%H:%M:%SZ", &theParts);
    return theText;
}

// What is in one set of addresses and not in the other.
static Texts Difference(const Texts& aWith, const Texts& aWithout)
{
    Texts theAddresses;
    std::set_difference(aWith.begin(), aWith.end(), aWithout.begin(), aWithout.end(), std::back_inserter(theAddresses));
    return theAddresses;
}

static std::string TextOf(const char* aWord, const Texts& anAddresses)
{
    std::string theText;
    for (const std::string& theAddress : anAddresses)
        theText += std::string(", ") + aWord + " " + theAddress;
    return theText;
}

static void PrintDifference(Watch& aWatch, const Texts& anAdded, const Texts& aRemoved)
{
    Output& theOutput = aWatch.mOutput;
    const std::string theTime = TimeNow();
    theOutput.InText("change " + std::to_string(aWatch.mChanges->GetCount()),
                     theTime + TextOf("added", anAdded) + TextOf("removed", aRemoved));
    aWatch.mChanges->Next();
    theOutput.InJSON("time", theTime);
    PrintList("", "added", anAdded, theOutput);
    PrintList("", "removed", aRemoved, theOutput);
    aWatch.mChanges->End();
}

static void FlushOrStop(Watch& aWatch)
{
    if (aWatch.mOutput.Flush() != 0) { ILibChain_Stop(aWatch.mChain); } // nobody reads any more
}

static void PrintChange(void* aWatch)
{
    Watch& theWatch = *static_cast<Watch*>(aWatch);
    Texts theAddresses;
    if (!ReadAddresses(theWatch.mPolicy, theAddresses))
    {
        ILibLifeTime_AddEx(ILibChain_GetLifeTime(theWatch.mChain), aWatch, kRetryInterval, PrintChange, nullptr);
        return;
    }
    // A change right after the monitor has looked, now or at the start, may be printed already.
    if (theAddresses == theWatch.mAddresses) { return; }
    PrintDifference(theWatch, Difference(theAddresses, theWatch.mAddresses),
                    Difference(theWatch.mAddresses, theAddresses));
    theWatch.mAddresses = std::move(theAddresses);
    FlushOrStop(theWatch);
}

static int Watching(zoSocketPolicy* aPolicy, Output& anOutput)
{
    const Chain theChain(ILibChain_New(), &ILibChain_Delete);
    if (!theChain) { return Fail("no event chain can be made: too many open files"); }
    const Interruption theInterruption(theChain.get());
    Watch theWatch = { anOutput, aPolicy, theChain.get(), {}, std::nullopt };
    // The monitor looks before the list is read, so that no change is missed between the two.
    UPnPIPAddressMonitor_Create(theChain.get(), PrintChange, &theWatch, aPolicy);
    if (!ReadAddresses(aPolicy, theWatch.mAddresses)) { return Fail("the host's addresses can't be read"); }
    PrintAddresses(theWatch.mAddresses, anOutput);
    theWatch.mChanges.emplace(anOutput, "", "changes", Output::List::kForm_Lines);
    FlushOrStop(theWatch);
    AddReaderWatch(theChain.get());
    ILibChain_Run(theChain.get());
    return kExit_Done;
}

static int Once(const zoSocketPolicy* aPolicy, Output& anOutput)
{
    Texts theAddresses;
    if (!ReadAddresses(aPolicy, theAddresses)) { return Fail("the host's addresses can't be read"); }
    if (theAddresses.empty()) { return FailToFind("no address"); }
    PrintAddresses(theAddresses, anOutput);
    return kExit_Done;
}

static int Monitor(const Arguments& anArguments, Output& anOutput)
{
    Policy thePolicy(nullptr, &zoSocketPolicy_Delete);
    int theStatus = kExit_Done;
    if (!ReadPolicy(anArguments, thePolicy, &theStatus)) { return theStatus; }
    return anArguments.Get("--once") ? Once(thePolicy.get(), anOutput) : Watching(thePolicy.get(), anOutput);
}

const Subcommand kMonitor = { "monitor", "print the host's IP addresses, and each change of them", &kUsage, Monitor };
