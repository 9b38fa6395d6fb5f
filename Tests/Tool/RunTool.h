#pragma once

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/* The tool is run as a program, as its users do. */

typedef std::vector<std::string> Words;

struct Result
{
    int mStatus; // -1 when it didn't end by itself
    std::string mOutput;
    std::string mError;
};

// A file without a name, closed at the end.
struct ScratchFile
{
    explicit ScratchFile(const std::string& aText = "") : mFile(tmpfile())
    {
        fwrite(aText.data(), 1, aText.size(), mFile);
        rewind(mFile);
    }
    ~ScratchFile() { fclose(mFile); }
    ScratchFile& operator=(ScratchFile&&) = delete;

    std::string Read() const
    {
        std::string theText;
        rewind(mFile);
        for (int theByte; (theByte = fgetc(mFile)) != EOF;)
            theText += static_cast<char>(theByte);
        return theText;
    }
    std::string Path() const { return "/proc/self/fd/" + std::to_string(Descriptor()); }
    int Descriptor() const { return fileno(mFile); }

    FILE* mFile;
};

inline Result RunTool(const Words& anArguments, const std::string& anInput = "", int anOutput = -1)
{
    const ScratchFile theInput(anInput), theOutput, theError;
    const pid_t theChild = fork();
    if (theChild == 0)
    {
        std::vector<char*> theArguments = { const_cast<char*>(TEST_TOOL) };
        for (const std::string& theArgument : anArguments)
            theArguments.push_back(const_cast<char*>(theArgument.c_str()));
        theArguments.push_back(nullptr);
        dup2(theInput.Descriptor(), STDIN_FILENO);
        dup2(anOutput >= 0 ? anOutput : theOutput.Descriptor(), STDOUT_FILENO);
        dup2(theError.Descriptor(), STDERR_FILENO);
        execv(TEST_TOOL, theArguments.data());
        _exit(127);
    }
    int theStatus = 0;
    waitpid(theChild, &theStatus, 0);
    return { WIFEXITED(theStatus) ? WEXITSTATUS(theStatus) : -1, theOutput.Read(), theError.Read() };
}

inline Words Lines(const std::string& aText)
{
    Words theLines;
    for (size_t theBegin = 0, theEnd; (theEnd = aText.find('\n', theBegin)) != std::string::npos; theBegin = theEnd + 1)
        theLines.push_back(aText.substr(theBegin, theEnd - theBegin));
    return theLines;
}

inline Words Joined(Words aLeft, const Words& aRight)
{
    aLeft.insert(aLeft.end(), aRight.begin(), aRight.end());
    return aLeft;
}

inline bool HasLine(const Result& aResult, const std::string& aLine)
{
    const Words theLines = Lines(aResult.mOutput);
    return std::find(theLines.begin(), theLines.end(), aLine) != theLines.end();
}

inline void ExpectLines(const Words& aLines, const Result& aResult)
{
    for (const std::string& theLine : aLines)
        EXPECT_TRUE(HasLine(aResult, theLine)) << theLine << '\n' << aResult.mOutput << aResult.mError;
}

struct Refusal
{
    Words mArguments;
    const char* mReason; // is in the one line that the tool says
    std::string mInput = "";
    int mStatus = 2;
};

inline void ExpectRefusals(const std::vector<Refusal>& aRefusals)
{
    for (const Refusal& theRefusal : aRefusals)
    {
        const Result theResult = RunTool(theRefusal.mArguments, theRefusal.mInput);
        EXPECT_EQ(theRefusal.mStatus, theResult.mStatus) << theRefusal.mReason;
        EXPECT_EQ("", theResult.mOutput) << theRefusal.mReason;
        EXPECT_NE(std::string::npos, theResult.mError.find(theRefusal.mReason)) << theResult.mError;
        EXPECT_EQ(1u, Lines(theResult.mError).size()) << theResult.mError;
    }
}
