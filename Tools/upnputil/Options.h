#pragma once

#include <string>
#include <vector>

class Output;

typedef std::vector<const char*> Arguments;

/* One option of a subcommand. Its value, if it has one, is given as "--name VALUE" or "--name=VALUE". */
struct Option
{
    const char* mName;  // with its dashes
    const char* mValue; // what help texts call its value; NULL: it has none
    bool mfRepeats;     // may be given more than once
    const char* mHelp;
};

/* What a subcommand takes, and says about itself. */
struct Usage
{
    const char* mName;
    const char* mSynopsis; // the options that it needs, as help texts show them
    const char* mOperand;  // what its operands are called, with a blank between them; NULL: it has none
    std::string mHelp;     // whole lines
    std::vector<Option> mOptions;
    bool mfPrintsFacts = true; // so that it can print them as JSON, too
};

/* The arguments of a subcommand, taken apart. "--" ends the options; "-" is an operand. */
class Options
{
public:
    explicit Options(const Usage& aUsage) : mUsage(aUsage) {}

    /** @return whether the subcommand is to run. If not, everything is said: help was asked for, or the usage is
     *          wrong. Status() then is how to end. */
    bool Read(const Arguments& anArguments, Output& anOutput);
    int Status() const { return mStatus; }
    /** Says what is wrong with the usage. @return kExit_Bad. */
    int BadUsage(const std::string& aMessage) const;

    /** @return an operand, NULL past the last; all that the usage names are there once Read has said so. */
    const char* Operand(size_t anIndex = 0) const { return anIndex < mOperands.size() ? mOperands[anIndex] : nullptr; }
    /** @return the value of an option, "" for one that has none; NULL when it isn't given. */
    const char* Get(const char* aName) const;
    /** @return the values of an option that may repeat. */
    std::vector<const char*> GetAll(const char* aName) const;

private:
    struct Given
    {
        const Option* mOption;
        const char* mValue;
    };

    void Help(Output& anOutput) const;
    std::vector<std::string> OperandNames() const;
    const Option* Find(const std::string& aName) const;
    bool ReadOption(const Arguments& anArguments, size_t* anIndex);
    bool ReadOperand(const char* anArgument);
    bool Refuse(const std::string& aMessage);
    bool IsJSON(const char* anArgument) const;

    const Usage& mUsage;
    std::vector<Given> mGiven;
    std::vector<const char*> mOperands;
    int mStatus = 0;
    bool mfJSON = false;
};
