#include "RunTool.h"
#include "Support/NetworkNamespace.h"

#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <utility>

namespace
{

// A monitor that runs, and whose lines are read as they come.
class RunningMonitor
{
public:
    explicit RunningMonitor(const char* anOption = nullptr)
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
    RunningMonitor& operator=(RunningMonitor&&) = delete;

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
        kill(mChild, aSignal);
        return End();
    }
    int EndWithoutReader()
    {
        close(std::exchange(mOutput, -1));
        return End();
    }

private:
    int End() const
    {
        int theStatus = 0;
        waitpid(mChild, &theStatus, 0);
        return WIFEXITED(theStatus) ? WEXITSTATUS(theStatus) : -1;
    }

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

// By SIGPIPE, although it has nothing to write.
TEST(ToolMonitorTest, EndsWithItsReader)
{
    RunningMonitor theMonitor;
    theMonitor.ReadTo("addresses: ");
    EXPECT_EQ(-1, theMonitor.EndWithoutReader());
}

TEST(ToolMonitorTest, PrintsTheAddressesThatCount)
{
    RunInNetworkNamespace(
        []
        {
        static const char* const kCases[][2] = {
            // section, fact (NULL: no address)
            { "Local", "address 0: 127.0.0.1" },  { "Others", "address 0: 192.0.2.7" }, { "Excluding", nullptr },
            { "Absent", "address 0: 127.0.0.1" }, { "Absent", "address 1: 192.0.2.7" },
        };
        ASSERT_TRUE(AddAddress("192.0.2.7", "lo:1"));
        const ScratchFile theFile("[Local]\nUPnPLocal=1\n[Others]\nUPnPLocal=2\n[Excluding]\nexclude-if=eth0, lo");
        for (const auto& [theSection, theFact] : kCases)
        {
            const Result theResult =
                RunTool({ "monitor", "--once", "--config", theFile.Path(), "--section", theSection });
            EXPECT_EQ(theFact ? 0 : 1, theResult.mStatus) << theSection << theResult.mError;
            if (theFact) { EXPECT_TRUE(HasLine(theResult, theFact)) << theResult.mOutput; }
            else { EXPECT_EQ("upnputil: no address\n", theResult.mError); }
        }
    });
}

TEST(ToolMonitorTest, PrintsChanges)
{
    RunInNetworkNamespace(
        []
        {
        ASSERT_TRUE(AddAddress("192.0.2.7", "lo:1"));
        RunningMonitor theMonitor, theLines("--json-lines");
        EXPECT_NE(std::string::npos, theMonitor.ReadTo("addresses: ").find("\naddress 1: 192.0.2.7\n"));
        theLines.ReadTo("{\"addresses\"");
        ASSERT_TRUE(SetInterfaceUp("lo:1", false) && AddAddress("192.0.2.8", "lo:2"));
        const std::string theLine = theMonitor.ReadTo("change 0: ");
        EXPECT_NE(std::string::npos, theLine.find("Z, added 192.0.2.8, removed 192.0.2.7\n")) << theLine;
        EXPECT_EQ(0, theMonitor.EndBy(SIGINT));
        const std::string theJSON = theLines.ReadTo("{\"time\":\"20");
        EXPECT_NE(std::string::npos, theJSON.find("Z\",\"added\":[\"192.0.2.8\"],\"removed\":[\"192.0.2.7\"]}\n"));
        EXPECT_EQ(0, theLines.EndBy(SIGINT));
    });
}

TEST(ToolMonitorTest, RefusesBadUsage)
{
    ExpectRefusals({
        { { "monitor", "--config", "/dev/null" }, "--config and --section are needed together" },
        { { "monitor", "--section", "x" }, "--config and --section are needed together" },
        { { "monitor", "--config", "/none", "--section", "x" }, "/none: No such file" },
        { { "monitor", "--once=1" }, "--once" },
        { { "monitor", "x" }, "one argument too many" },
    });
    const Result theHelp = RunTool({ "monitor", "--help" });
    EXPECT_EQ(0u, theHelp.mOutput.find("Usage: upnputil monitor [--config FILE --section NAME] [--once]\n"));
}
