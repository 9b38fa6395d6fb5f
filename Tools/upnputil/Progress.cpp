#include "Progress.h"

#include <stdio.h>
#include <unistd.h>

static const std::chrono::seconds kInterval(1);
static const size_t kStepsPerLook = 64; // at the clock

Progress::Progress(const char* aThings)
    : mThings(aThings), mfTerminal(isatty(STDERR_FILENO) != 0), mNext(std::chrono::steady_clock::now() + kInterval)
{}

Progress::~Progress()
{
    if (mfPrinted && mfTerminal) { fputc('\n', stderr); }
}

void Progress::Step()
{
    if (++mDone % kStepsPerLook != 0 || std::chrono::steady_clock::now() < mNext) { return; }
    Print();
    mNext = std::chrono::steady_clock::now() + kInterval;
}

void Progress::Print()
{
    fprintf(stderr, "%supnputil: %zu %s so far%s", mfTerminal ? "\r" : "", mDone, mThings, mfTerminal ? "" : "\n");
    fflush(stderr);
    mfPrinted = true;
}
