#pragma once

#include <chrono>
#include <stddef.h>

/* Says on standard error how far a long work has got, once it takes more than a second: every second a line, on a
 * terminal always the same one. */
class Progress
{
public:
    /** @param aThings what is done in each step. */
    explicit Progress(const char* aThings);
    /** Ends the terminal's line, if there is one. */
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** One more step is done. */
    void Step();

private:
    void Print();

    const char* const mThings;
    size_t mDone = 0;
    bool mfPrinted = false;
    bool mfTerminal;
    std::chrono::steady_clock::time_point mNext;
};
