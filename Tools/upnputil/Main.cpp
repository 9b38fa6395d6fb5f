#include "Subcommand.h"

#include <new>
#include <signal.h>
#include <string.h>
#include <zoLog/Log.h>

static const Subcommand kSubcommands[] = {
    { "config", "print what the stack gets from a configuration file", ShowConfig },
    { "create", "print a document by which an object is created on a media server", Create },
    { "describe", "rewrite a device or service description for a client", Describe },
    { "group", "show, store and load groups of devices", GroupOfDevices },
    { "hook", "print how the stack treats a client", Hook },
    { "monitor", "print the host's IP addresses, and each change of them", Monitor },
    { "select", "choose the resource of an object that a renderer plays best", Select },
    { "show", "print every field of every object of a DIDL-Lite document", Show },
    { "unlock", "unlock a parental-locked URI", Unlock },
};

static int Help(Output& anOutput)
{
    anOutput.Text("Usage: upnputil SUBCOMMAND [ARGUMENT...]\n\nSubcommands:\n");
    for (const Subcommand& theSubcommand : kSubcommands)
        anOutput.Row(theSubcommand.mName, theSubcommand.mSummary);
    anOutput.Text(
        "\nupnputil SUBCOMMAND --help tells more. Facts are printed as lines \"name: value\"; in values, line ends\n"
        "and control characters are written with a backslash, and so is the backslash itself.\n"
        "Exit status: 0 done, 1 nothing found, 2 wrong usage or unusable input.\n");
    return kExit_Done;
}

static int Run(const Arguments& anArguments, Output& anOutput)
{
    if (anArguments.empty()) { return Fail("a subcommand is missing; see upnputil --help"); }
    const char* theName = anArguments.front();
    if (strcmp(theName, "--help") == 0) { return Help(anOutput); }
    if (strcmp(theName, "--version") == 0)
    {
        anOutput.Text("upnputil " UPNPUTIL_VERSION "\n");
        return kExit_Done;
    }
    for (const Subcommand& theSubcommand : kSubcommands)
    {
        if (strcmp(theName, theSubcommand.mName) != 0) { continue; }
        return theSubcommand.mFunction(Arguments(anArguments.begin() + 1, anArguments.end()), anOutput);
    }
    return Fail("no subcommand is called \"" + std::string(theName) + "\"; see upnputil --help");
}

// What the library has to say, its text ending with a line end or not.
static void SayLogged(int, int, const char*, int, const char* aText, void*)
{
    std::string theText = aText;
    while (!theText.empty() && theText.back() == '\n')
        theText.pop_back();
    Say("warning: " + theText);
}

int main(int argc, char** argv)
{
    zoLog_SetSink(SayLogged, nullptr);
    signal(SIGPIPE, SIG_IGN); // a reader that has gone away is a failed write like others
    try
    {
        Output theOutput;
        const int theStatus = Run(Arguments(argv + (argc > 0), argv + argc), theOutput);
        const int theError = theOutput.Finish();
        return theError == 0 ? theStatus : Fail("standard output: " + std::string(strerror(theError)));
    }
    catch (const std::bad_alloc&)
    {
        return Fail("not enough memory");
    }
}
