#include "Options.h"

#include "Output.h"
#include "Subcommand.h"

#include <iterator>
#include <sstream>
#include <string.h>

int Options::BadUsage(const std::string& aMessage) const
{
    return Fail(std::string(mUsage.mName) + ": " + aMessage + "; see upnputil " + mUsage.mName + " --help");
}

bool Options::Refuse(const std::string& aMessage)
{
    mStatus = BadUsage(aMessage);
    return false;
}

void Options::Help(Output& anOutput) const
{
    const std::string theOperand = mUsage.mOperand ? std::string(" ") + mUsage.mOperand : "";
    anOutput.Text(std::string("Usage: upnputil ") + mUsage.mName + theOperand + " " + mUsage.mSynopsis + "\n\n" +
                  mUsage.mHelp + "\nOptions:\n");
    for (const Option& theOption : mUsage.mOptions)
    {
        const std::string theValue = theOption.mValue ? std::string(" ") + theOption.mValue : "";
        anOutput.Row(theOption.mName + theValue, theOption.mHelp);
    }
    if (mUsage.mfPrintsFacts) { anOutput.Row("--json", "print the facts as one JSON object"); }
    anOutput.Row("--help", "print this text");
}

const Option* Options::Find(const std::string& aName) const
{
    for (const Option& theOption : mUsage.mOptions)
    {
        if (aName == theOption.mName) { return &theOption; }
    }
    return nullptr;
}

bool Options::ReadOption(const Arguments& anArguments, size_t* anIndex)
{
    const char* theArgument = anArguments[*anIndex];
    const char* theEqualSign = strchr(theArgument, '=');
    const std::string theName(theArgument,
                              theEqualSign ? static_cast<size_t>(theEqualSign - theArgument) : strlen(theArgument));
    const Option* theOption = Find(theName);
    if (!theOption) { return Refuse("no option is called \"" + theName + "\""); }
    if (!theOption->mfRepeats && Get(theOption->mName)) { return Refuse(theName + " is given twice"); }
    if (!theOption->mValue)
    {
        mGiven.push_back({ theOption, "" });
        return !theEqualSign || Refuse(theName + " has no value");
    }
    if (!theEqualSign && ++*anIndex == anArguments.size())
    {
        return Refuse(theName + " needs a value (" + theOption->mValue + ")");
    }
    mGiven.push_back({ theOption, theEqualSign ? theEqualSign + 1 : anArguments[*anIndex] });
    return true;
}

std::vector<std::string> Options::OperandNames() const
{
    std::istringstream theText(mUsage.mOperand ? mUsage.mOperand : "");
    return { std::istream_iterator<std::string>(theText), {} };
}

bool Options::ReadOperand(const char* anArgument)
{
    if (mOperands.size() == OperandNames().size())
    {
        return Refuse("\"" + std::string(anArgument) + "\" is one argument too many");
    }
    mOperands.push_back(anArgument);
    return true;
}

bool Options::IsJSON(const char* anArgument) const { return mUsage.mfPrintsFacts && strcmp(anArgument, "--json") == 0; }

bool Options::Read(const Arguments& anArguments, Output& anOutput)
{
    bool fOptionsEnded = false;
    for (size_t i = 0; i < anArguments.size(); ++i)
    {
        const char* theArgument = anArguments[i];
        const bool fIsOperand = fOptionsEnded || theArgument[0] != '-' || theArgument[1] == '\0';
        if (!fIsOperand && strcmp(theArgument, "--help") == 0)
        {
            Help(anOutput);
            return false;
        }
        if (!fIsOperand && strcmp(theArgument, "--") == 0) { fOptionsEnded = true; }
        else if (!fIsOperand && IsJSON(theArgument)) { mfJSON = true; }
        else if (!(fIsOperand ? ReadOperand(theArgument) : ReadOption(anArguments, &i))) { return false; }
    }
    const std::vector<std::string> theOperandNames = OperandNames();
    if (mOperands.size() < theOperandNames.size()) { return Refuse(theOperandNames[mOperands.size()] + " is missing"); }
    if (mfJSON) { anOutput.UseJSON(); }
    return true;
}

const char* Options::Get(const char* aName) const
{
    const std::vector<const char*> theValues = GetAll(aName);
    return theValues.empty() ? nullptr : theValues.front();
}

std::vector<const char*> Options::GetAll(const char* aName) const
{
    std::vector<const char*> theValues;
    for (const Given& theGiven : mGiven)
    {
        if (strcmp(theGiven.mOption->mName, aName) == 0) { theValues.push_back(theGiven.mValue); }
    }
    return theValues;
}
