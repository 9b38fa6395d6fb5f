#include "LogReceiver.h"
#include "Subcommand.h"

#include <new>
#include <string.h>

static int Help(const Arguments& anArguments, Output& anOutput);

static const Usage kHelpUsage = {
    "",
    "[SUBCOMMAND...]",
    "Prints what the tool or a subcommand does and takes, as upnputil SUBCOMMAND --help does.\n",
    {},
    false,
};
static const Subcommand kHelp = { "help", "print what a subcommand does and takes", &kHelpUsage, Help };

static const Subcommand kTool = {
    "upnputil",
    "",
    nullptr,
    nullptr,
    "a subcommand",
    "Facts are printed as lines \"name: value\"; in values, line ends, control characters and invisible ones are written\n"
    "with a backslash, and so is the backslash itself. -V or --version prints the version.\n"
    "Exit status: 0 done, 1 nothing found, 2 wrong usage or unusable input.\n",
    { &kConfig, &kCreate, &kDescribe, &kGroup, &kHelp, &kHook, &kMonitor, &kSelect, &kShow, &kUnlock },
};

static int Help(const Arguments& anArguments, Output& anOutput)
{
    return PrintHelp(kTool, anArguments.GetAll("SUBCOMMAND"), anOutput);
}

int main(int argc, char** argv)
{
    std::string theWarning; // the last one: that of an object is often that of the next
    const LogReceiver theReceiver(
        [&theWarning](const std::string& aMessage)
        {
        if (aMessage != theWarning) { Say("warning: " + aMessage); }
        theWarning = aMessage;
    });
    try
    {
        Output theOutput;
        const int theStatus = RunCommandLine(kTool, argc, argv, theOutput);
        const int theError = theOutput.Finish();
        return theError == 0 ? theStatus : Fail("standard output: " + std::string(strerror(theError)));
    }
    catch (const std::bad_alloc&)
    {
        return Fail("not enough memory");
    }
}
