#include "CommandLine.h"

#include "Subcommand.h"
#include "Suggestion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <optional>
#include <sstream>
#include <string.h>

static const char kHelpOption[] = "--help";
static const char kVersionOption[] = "--version";
static const char kJSONOption[] = "--json";
static const char kJSONLinesOption[] = "--json-lines";

// ---- Messages ----

// What is wrong with a command line. aPath: the subcommand's name after its families', "" for the tool.
static int Refuse(const std::string& aPath, const std::string& aMessage)
{
    const std::string theSee = aMessage.back() == '?' ? " See " : "; see ";
    return Fail((aPath.empty() ? "" : aPath + ": ") + aMessage + theSee + "upnputil " +
                (aPath.empty() ? "" : aPath + " ") + kHelpOption);
}

static std::string Quoted(const std::string& aText) { return "\"" + aText + "\""; }

static std::string Joined(const std::string& aPath, const std::string& aName)
{
    return aPath.empty() ? aName : aPath + " " + aName;
}

static std::string PathOf(const CLI::App& anApp)
{
    return anApp.get_parent() ? Joined(PathOf(*anApp.get_parent()), anApp.get_name()) : "";
}

// "a subcommand": "subcommand".
static std::string KindOf(const Subcommand& aFamily) { return strchr(aFamily.mKind, ' ') + 1; }

static std::vector<std::string> MemberNames(const Subcommand& aFamily)
{
    std::vector<std::string> theNames;
    for (const Subcommand* theMember : aFamily.mMembers)
        theNames.emplace_back(theMember->mName);
    return theNames;
}

static const Subcommand* FindMember(const Subcommand& aFamily, const std::string& aName)
{
    for (const Subcommand* theMember : aFamily.mMembers)
    {
        if (aName == theMember->mName) { return theMember; }
    }
    return nullptr;
}

static int RefuseMember(const Subcommand& aFamily, const std::string& aPath, const std::string& aName)
{
    return Refuse(aPath,
                  "no " + KindOf(aFamily) + " is called " + Quoted(aName) + Suggestion(aName, MemberNames(aFamily)));
}

// ---- Help ----

static void PrintFamilyHelp(const Subcommand& aFamily, const std::string& aPath, Output& anOutput)
{
    std::string theKind = KindOf(aFamily);
    std::string theCapitals = theKind;
    for (char& theCharacter : theCapitals)
        theCharacter = static_cast<char>(theCharacter - 'a' + 'A');
    theKind[0] = theCapitals[0];
    const std::string theCommand = aPath.empty() ? "upnputil" : "upnputil " + aPath;
    anOutput.Text("Usage: " + Joined(theCommand, theCapitals) + " [ARGUMENT...]\n\n" + theKind + "s:\n");
    for (const Subcommand* theMember : aFamily.mMembers)
        anOutput.Row(theMember->mName, theMember->mSummary);
    anOutput.Text("\n" + theCommand + " " + theCapitals + " --help tells more.\n" + aFamily.mHelp);
}

static void PrintUsage(const Usage& aUsage, const std::string& aPath, Output& anOutput)
{
    const std::string theOperands = aUsage.mOperands ? std::string(" ") + aUsage.mOperands : "";
    anOutput.Text("Usage: upnputil " + aPath + theOperands + " " + aUsage.mSynopsis + "\n\n" + aUsage.mHelp +
                  "\nOptions:\n");
    for (const Option& theOption : aUsage.mOptions)
    {
        const std::string theValue = theOption.mValue ? std::string(" ") + theOption.mValue : "";
        anOutput.Row(theOption.mName + theValue, theOption.mHelp);
    }
    if (aUsage.mfPrintsFacts)
    {
        anOutput.Row(kJSONOption, "print the facts as one JSON object");
        anOutput.Row(kJSONLinesOption, "the same in one line, or in a line for each object of a document");
    }
    anOutput.Row(kHelpOption, "print this text (-h for short)");
}

static int PrintHelpOf(const Subcommand& aSubcommand, const std::string& aPath, Output& anOutput)
{
    if (aSubcommand.mUsage) { PrintUsage(*aSubcommand.mUsage, aPath, anOutput); }
    else { PrintFamilyHelp(aSubcommand, aPath, anOutput); }
    return kExit_Done;
}

int PrintHelp(const Subcommand& aTool, const std::vector<const char*>& aPath, Output& anOutput)
{
    const Subcommand* theSubcommand = &aTool;
    std::string thePath;
    for (const char* theName : aPath)
    {
        const Subcommand* theMember = FindMember(*theSubcommand, theName);
        if (!theMember && theSubcommand->mUsage) { return Refuse(thePath, Quoted(theName) + " is not a part of it"); }
        if (!theMember) { return RefuseMember(*theSubcommand, thePath, theName); }
        theSubcommand = theMember;
        thePath = Joined(thePath, theName);
    }
    return PrintHelpOf(*theSubcommand, thePath, anOutput);
}

// ---- What CLI11 is told ----

static std::vector<std::string> OperandNames(const Usage& aUsage)
{
    std::istringstream theText(aUsage.mOperands ? aUsage.mOperands : "");
    return { std::istream_iterator<std::string>(theText), {} };
}

// The names of operands in any number are in brackets.
static bool IsAnyNumber(const std::string& anOperandName) { return anOperandName[0] == '['; }

// Options keep all their values: those that are given once too often are told apart from words too many.
static void Declare(CLI::App& anApp, const Usage& aUsage)
{
    for (const std::string& theName : OperandNames(aUsage))
    {
        if (IsAnyNumber(theName))
        {
            anApp.add_option(theName.substr(1, theName.find('.') - 1))->expected(0, -1)->allow_extra_args();
        }
        else { anApp.add_option(theName); }
    }
    for (const Option& theOption : aUsage.mOptions)
    {
        CLI::Option* theDeclared = theOption.mValue ? anApp.add_option(theOption.mName)->type_name(theOption.mValue)
                                                    : anApp.add_flag(theOption.mName)->disable_flag_override();
        theDeclared->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    if (!aUsage.mfPrintsFacts) { return; }
    anApp.add_flag(kJSONOption)->disable_flag_override();
    anApp.add_flag(kJSONLinesOption)->disable_flag_override();
}

// Words that nothing takes are kept, for a message in our own words.
static void Declare(CLI::App& anApp, const Subcommand& aSubcommand)
{
    anApp.allow_extras();
    if (aSubcommand.mUsage)
    {
        Declare(anApp, *aSubcommand.mUsage);
        return;
    }
    anApp.require_subcommand(0, 1);
    for (const Subcommand* theMember : aSubcommand.mMembers)
        Declare(*anApp.add_subcommand(theMember->mName), *theMember);
}

// The words in the order that CLI11 wants, the last one first. It would take the next word for the value that is
// missing in "--name=".
static std::vector<std::string> WordsFromTheLast(int anArgumentCount, const char* const* anArguments)
{
    std::vector<std::string> theWords;
    bool fOptionsEnded = false;
    for (int i = 1; i < anArgumentCount; ++i)
    {
        const std::string theWord = anArguments[i];
        fOptionsEnded = fOptionsEnded || theWord == "--";
        const bool fHasEmptyValue =
            !fOptionsEnded && theWord.compare(0, 2, "--") == 0 && theWord.find('=') == theWord.size() - 1;
        theWords.push_back(fHasEmptyValue ? theWord.substr(0, theWord.size() - 1) : theWord);
        if (fHasEmptyValue) { theWords.emplace_back(); }
    }
    return { theWords.rbegin(), theWords.rend() };
}

// ---- What CLI11 has read ----

namespace
{

enum Asked
{
    kAsked_Run,
    kAsked_Help,
    kAsked_Version,
    kAsked_Wrong
};

// How a command line reads.
struct Reading
{
    const CLI::App* mApp; // of the innermost subcommand that is named
    const Subcommand* mSubcommand;
    Asked mAsked;
    std::string mFault; // by CLI11

    std::string Path() const { return PathOf(*mApp); }
};

} // namespace

static Reading Read(CLI::App& anApp, const Subcommand& aTool, std::vector<std::string> aWords)
{
    Reading theReading = { &anApp, &aTool, kAsked_Run, "" };
    try
    {
        anApp.parse(std::move(aWords));
    }
    catch (const CLI::CallForHelp&)
    {
        theReading.mAsked = kAsked_Help;
    }
    catch (const CLI::CallForVersion&)
    {
        theReading.mAsked = kAsked_Version;
    }
    catch (const CLI::ParseError& theError)
    {
        theReading.mAsked = kAsked_Wrong;
        theReading.mFault = theError.what();
    }
    while (!theReading.mApp->get_subcommands().empty())
    {
        theReading.mApp = theReading.mApp->get_subcommands().front();
        theReading.mSubcommand = FindMember(*theReading.mSubcommand, theReading.mApp->get_name());
    }
    return theReading;
}

// A word that no option and no operand takes.
struct Extra
{
    const CLI::App* mApp; // that of the subcommand that met it
    std::string mWord;
};

static std::optional<Extra> FindExtra(const CLI::App& anApp)
{
    for (const std::string& theWord : anApp.remaining())
    {
        if (theWord != "--") { return Extra{ &anApp, theWord }; }
    }
    if (anApp.get_subcommands().empty()) { return std::nullopt; }
    return FindExtra(*anApp.get_subcommands().front());
}

static std::vector<std::string> OptionNames(const CLI::App& anApp)
{
    std::vector<std::string> theNames;
    for (const CLI::Option* theOption : anApp.get_options())
    {
        if (theOption->nonpositional()) { theNames.push_back("--" + theOption->get_lnames().front()); }
    }
    return theNames;
}

static int RefuseExtra(const Reading& aReading, const Extra& anExtra)
{
    if (anExtra.mWord.size() > 1 && anExtra.mWord[0] == '-')
    {
        const std::string theName = anExtra.mWord.substr(0, anExtra.mWord.find('='));
        return Refuse(PathOf(*anExtra.mApp),
                      "no option is called " + Quoted(theName) + Suggestion(theName, OptionNames(*anExtra.mApp)));
    }
    if (!aReading.mSubcommand->mUsage) { return RefuseMember(*aReading.mSubcommand, aReading.Path(), anExtra.mWord); }
    return Refuse(aReading.Path(), Quoted(anExtra.mWord) + " is one argument too many");
}

// What CLI11 refuses begins with the option's name, with dashes or without; there are two things wrong with its value.
static int RefuseValue(const Reading& aReading)
{
    const std::string& theFault = aReading.mFault;
    const std::string theName = "--" + theFault.substr(std::min(theFault.find_first_not_of('-'), theFault.size()));
    const CLI::Option* theOption = aReading.mApp->get_option_no_throw(theName.substr(0, theName.find_first_of(": ")));
    if (!theOption) { return Refuse(aReading.Path(), theFault); }
    const bool fNeedsValue = theOption->get_items_expected_max() > 0;
    return Refuse(aReading.Path(),
                  theOption->get_name() +
                      (fNeedsValue ? " needs a value (" + theOption->get_type_name() + ")" : " has no value"));
}

static int CheckCounts(const Reading& aReading)
{
    const Usage& theUsage = *aReading.mSubcommand->mUsage;
    for (const std::string& theName : OperandNames(theUsage))
    {
        if (IsAnyNumber(theName) || aReading.mApp->count(theName) > 0) { continue; }
        return Refuse(aReading.Path(), theName + " is missing");
    }
    for (const Option& theOption : theUsage.mOptions)
    {
        if (theOption.mfRepeats || aReading.mApp->count(theOption.mName) < 2) { continue; }
        return Refuse(aReading.Path(), theOption.mName + std::string(" is given twice"));
    }
    return kExit_Done;
}

static int RefuseFamily(const Reading& aReading)
{
    const Subcommand& theFamily = *aReading.mSubcommand;
    std::string theNames;
    for (const std::string& theName : MemberNames(theFamily))
        theNames += (theNames.empty() ? ": " : theName == theFamily.mMembers.back()->mName ? " or " : ", ") + theName;
    return Refuse(aReading.Path(), theFamily.mKind + std::string(" is missing") + theNames);
}

static int Run(const Reading& aReading, Output& anOutput)
{
    const Usage& theUsage = *aReading.mSubcommand->mUsage;
    const bool fInLines = theUsage.mfPrintsFacts && aReading.mApp->count(kJSONLinesOption) > 0;
    if (fInLines || (theUsage.mfPrintsFacts && aReading.mApp->count(kJSONOption) > 0)) { anOutput.UseJSON(fInLines); }
    return aReading.mSubcommand->mFunction(Arguments(theUsage, *aReading.mApp), anOutput);
}

int RunCommandLine(const Subcommand& aTool, int anArgumentCount, const char* const* anArguments, Output& anOutput)
{
    CLI::App theApp;
    theApp.set_help_flag(std::string("-h,") + kHelpOption);
    theApp.set_version_flag(std::string("-V,") + kVersionOption, UPNPUTIL_VERSION);
    Declare(theApp, aTool);
    const Reading theReading = Read(theApp, aTool, WordsFromTheLast(anArgumentCount, anArguments));

    if (theReading.mAsked == kAsked_Version)
    {
        anOutput.Text("upnputil " UPNPUTIL_VERSION "\n");
        return kExit_Done;
    }
    const std::optional<Extra> theExtra = FindExtra(theApp);
    if (theExtra && !theReading.mSubcommand->mUsage) { return RefuseExtra(theReading, *theExtra); }
    if (theReading.mAsked == kAsked_Help) { return PrintHelpOf(*theReading.mSubcommand, theReading.Path(), anOutput); }
    if (!theReading.mSubcommand->mUsage) { return RefuseFamily(theReading); }
    if (theReading.mAsked == kAsked_Wrong) { return RefuseValue(theReading); }
    if (theExtra) { return RefuseExtra(theReading, *theExtra); }
    const int theStatus = CheckCounts(theReading);
    return theStatus == kExit_Done ? Run(theReading, anOutput) : theStatus;
}

// ---- What subcommands ask for ----

int Arguments::BadUsage(const std::string& aMessage) const { return Refuse(PathOf(mApp), aMessage); }

const char* Arguments::Operand(size_t anIndex) const
{
    return mApp.get_option(OperandNames(mUsage)[anIndex])->results().front().c_str();
}

const char* Arguments::Get(const char* aName) const
{
    const std::vector<const char*> theValues = GetAll(aName);
    return theValues.empty() ? nullptr : theValues.front();
}

std::vector<const char*> Arguments::GetAll(const char* aName) const
{
    std::vector<const char*> theValues;
    for (const std::string& theValue : mApp.get_option(aName)->results())
        theValues.push_back(theValue.c_str());
    return theValues;
}
