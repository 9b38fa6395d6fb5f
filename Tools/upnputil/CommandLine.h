#pragma once

#include "Output.h"

#include <string>
#include <vector>

/* What the subcommands take is declared in tables; CLI11 reads the command line by them. */

namespace CLI
{
class App;
}

/* One option of a subcommand. Its value, if it has one, is given as "--name VALUE" or "--name=VALUE". */
struct Option
{
    const char* mName;  // with its dashes
    const char* mValue; // what help texts call its value; NULL: it has no value
    bool mfRepeats;     // may be given more than once
    const char* mHelp;
};

/* What a subcommand takes, and says about itself. */
struct Usage
{
    const char* mSynopsis; // the options that it needs, as help texts show them
    const char* mOperands; // their names, separated by blanks; "[NAME...]" stands for any number; NULL: none
    std::string mHelp;     // whole lines
    std::vector<Option> mOptions = {};
    bool mfPrintsFacts = true; // so that it can print them as JSON, too
};

/* The arguments of a subcommand. All its operands are there, and no option is given twice that may not repeat. */
class Arguments
{
public:
    Arguments(const Usage& aUsage, const CLI::App& anApp) : mUsage(aUsage), mApp(anApp) {}

    /** Says what is wrong with the usage. @return kExit_Bad. */
    int BadUsage(const std::string& aMessage) const;

    /** @return an operand; of operands in any number, the first. */
    const char* Operand(size_t anIndex = 0) const;
    /** @return the value of an option, NULL when it isn't given. Of an option without values only NULL or not counts.
     */
    const char* Get(const char* aName) const;
    /** @return the values of an option that may repeat, or of operands in any number. */
    std::vector<const char*> GetAll(const char* aName) const;

private:
    const Usage& mUsage;
    const CLI::App& mApp;
};

/* A subcommand that does something, or a family of others. */
struct Subcommand
{
    const char* mName;
    const char* mSummary;

    const Usage* mUsage;
    int (*mFunction)(const Arguments& anArguments, Output& anOutput); // returns a kExit_*

    // Of a family, which has no usage:
    const char* mKind = nullptr; // what its members are, with an article
    const char* mHelp = nullptr; // whole lines
    std::vector<const Subcommand*> mMembers = {};
};

/** Reads the command line and does what it asks for.
 *  @param aTool the family of all subcommands.
 *  @return a kExit_*. */
int RunCommandLine(const Subcommand& aTool, int anArgumentCount, const char* const* anArguments, Output& anOutput);

/** Prints the help text of a subcommand.
 *  @param aPath its name after those of the families that it is in; empty for aTool itself.
 *  @return a kExit_*. */
int PrintHelp(const Subcommand& aTool, const std::vector<const char*>& aPath, Output& anOutput);
