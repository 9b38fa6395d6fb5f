#include "NetworkNamespace.h"
#include "RunTool.h"

#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>

namespace
{

// A monitor that runs, and whose lines are read as they come.
class RunningMonitor
{
public:
    explicit RunningMonitor(const char* anOption = "--")
    {
        int theEnds[2];
        EXPECT_EQ(0, pipe(theEnds));
        mChild = fork();
        if (mChild == 0)
        {
            dup2(theEnds[1], STDOUT_FILENO);
            close(theEnds[0]);
            execl(TEST_TOOL, TEST_TOOL, "monitor", anOption, nullptr);
            _exit(127);
        }
        close(theEnds[1]);
        mOutput = theEnds[0];
    }
    ~RunningMonitor() { close(mOutput); }
    RunningMonitor(const RunningMonitor&) = delete;
    RunningMonitor& operator=(const RunningMonitor&) = delete;

    // @return what comes up to the end of a line that begins with aBegin, or, after some seconds, without it.
    std::string ReadTo(const std::string& aBegin)
    {
        static const int kLongest = 15000; // an interval takes 4 seconds, a busy machine its time
        std::string theText = "\n";
        struct pollfd thePoll = { mOutput, POLLIN, 0 };
        for (char theByte; poll(&thePoll, 1, kLongest) == 1 && read(mOutput, &theByte, 1) == 1;)
        {
            theText += theByte;
            if (theByte == '\n' && theText.find("\n" + aBegin) != std::string::npos) { break; }
        }
        return theText;
    }

    // @return the exit status, -1 when the signal killed it.
    int EndBy(int aSignal)
    {
        int theStatus = 0;
        kill(mChild, aSignal);
        waitpid(mChild, &theStatus, 0);
        return WIFEXITED(theStatus) ? WEXITSTATUS(theStatus) : -1;
    }

private:
    pid_t mChild;
    int mOutput;
};

} // namespace

TEST(ToolMonitorTest, EndsCleanlyWhenInterrupted)
{
    for (const int theSignal : { SIGINT, SIGTERM })
    {
        RunningMonitor theMonitor;
        EXPECT_NE(std::string::npos, theMonitor.ReadTo("addresses: ").find("\naddresses: "));
        EXPECT_EQ(0, theMonitor.EndBy(theSignal));
        EXPECT_EQ("\n", theMonitor.ReadTo(" "));
    }
}

TEST(ToolMonitorTest, PrintsTheAddressesThatCount)
{
    const std::string theReason = RunInNetworkNamespace(
        []
        {
        static const struct
        {
            const char* mSection;
            const char* mFact; // NULL: no address
        } kCases[] = {
            { "Local", "address 0: 127.0.0.1" },  { "Others", "address 0: 192.0.2.7" }, { "Excluding", nullptr },
            { "Absent", "address 0: 127.0.0.1" }, { "Absent", "address 1: 192.0.2.7" },
        };
        ASSERT_TRUE(SetInterfaceAddress("lo:1", "192.0.2.7"));
        const ScratchFile theFile("[Local]\nUPnPLocal=1\n[Others]\nUPnPLocal=2\n[Excluding]\nexclude-if=eth0, lo");
        for (const auto& theCase : kCases)
        {
            const Result theResult =
                RunTool({ "monitor", "--once", "--config", theFile.Path(), "--section", theCase.mSection });
            EXPECT_EQ(theCase.mFact ? 0 : 1, theResult.mStatus) << theCase.mSection << theResult.mError;
            if (theCase.mFact) { EXPECT_TRUE(HasLine(theResult, theCase.mFact)) << theResult.mOutput; }
            else { EXPECT_EQ("upnputil: no address\n", theResult.mError); }
        }
    });
    if (!theReason.empty()) { GTEST_SKIP() << theReason; }
}

TEST(ToolMonitorTest, PrintsChanges)
{
    const std::string theReason = RunInNetworkNamespace(
        []
        {
        ASSERT_TRUE(SetInterfaceAddress("lo:1", "192.0.2.7"));
        RunningMonitor theMonitor;
        EXPECT_NE(std::string::npos, theMonitor.ReadTo("addresses: ").find("\naddress 1: 192.0.2.7\n"));
        ASSERT_TRUE(SetInterfaceUp("lo:1", false) && SetInterfaceAddress("lo:2", "192.0.2.8"));
        const std::string theLine = theMonitor.ReadTo("change 0: ");
        EXPECT_NE(std::string::npos, theLine.find("Z, added 192.0.2.8, removed 192.0.2.7\n")) << theLine;
        EXPECT_EQ(0, theMonitor.EndBy(SIGINT));
    });
    if (!theReason.empty()) { GTEST_SKIP() << theReason; }
}

TEST(ToolMonitorTest, Usage)
{
    static const struct
    {
        Words mArguments;
        const char* mError;
    } kCases[] = {
        { { "--config", "/dev/null" }, "--config and --section are needed together" },
        { { "--section", "x" }, "--config and --section are needed together" },
        { { "--config", "/none", "--section", "x" }, "/none: No such file" },
        { { "--once=1" }, "--once" },
        { { "x" }, "one argument too many" },
    };
    for (const auto& theCase : kCases)
    {
        Words theArguments = { "monitor" };
        theArguments.insert(theArguments.end(), theCase.mArguments.begin(), theCase.mArguments.end());
        const Result theResult = RunTool(theArguments);
        EXPECT_EQ(2, theResult.mStatus) << theCase.mError;
        EXPECT_EQ(1u, Lines(theResult.mError).size()) << theResult.mError;
        EXPECT_NE(std::string::npos, theResult.mError.find(theCase.mError)) << theResult.mError;
    }
    const Result theHelp = RunTool({ "monitor", "--help" });
    EXPECT_EQ(0u, theHelp.mOutput.find("Usage: upnputil monitor [--config FILE --section NAME] [--once]\n"));
}
