#pragma once

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

// Runs a test in a process of its own, after what prepares it; skips it where that gives false.
inline void RunInChildProcess(bool (*aPrepare)(), const std::function<void()>& aTest)
{
    static const int kCannot = 200; // and above: the error number is added
    fflush(nullptr);
    const pid_t theChild = fork();
    if (theChild == 0)
    {
        if (!aPrepare()) { _exit(kCannot + (errno < 50 ? errno : 50)); }
        aTest();
        fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int theStatus = 0;
    waitpid(theChild, &theStatus, 0);
    const int theExit = WIFEXITED(theStatus) ? WEXITSTATUS(theStatus) : -1;
    if (theExit >= kCannot) { GTEST_SKIP() << "can't be tried here: " << strerror(theExit - kCannot); }
    EXPECT_EQ(0, theExit) << "in a process of its own";
}
