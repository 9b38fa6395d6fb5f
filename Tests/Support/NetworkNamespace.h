#pragma once

#include <arpa/inet.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

/* A network of one's own: a child process in a new network namespace, in which there is only the interface "lo", down
 * and without addresses. "lo:1", "lo:2" and so on are its further IPv4 addresses. */

// Makes a request about an interface.
inline bool AskInterface(unsigned long aRequest, const std::string& aName, struct ifreq& anInterface)
{
    const int theSocket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    snprintf(anInterface.ifr_name, sizeof(anInterface.ifr_name), "%s", aName.c_str());
    const bool fDone = ioctl(theSocket, aRequest, &anInterface) == 0;
    close(theSocket);
    return fDone;
}

// Takes an interface up, or down; "lo:1" that goes down is an address that goes.
inline bool SetInterfaceUp(const std::string& aName, bool afUp)
{
    struct ifreq theInterface = {};
    if (!AskInterface(SIOCGIFFLAGS, aName, theInterface)) { return false; }
    theInterface.ifr_flags =
        static_cast<short>(afUp ? theInterface.ifr_flags | IFF_UP : theInterface.ifr_flags & ~IFF_UP);
    return AskInterface(SIOCSIFFLAGS, aName, theInterface);
}

inline bool SetInterfaceAddress(const std::string& aName, const char* anAddress)
{
    struct ifreq theInterface = {};
    struct sockaddr_in theAddress = {};
    theAddress.sin_family = AF_INET;
    inet_pton(AF_INET, anAddress, &theAddress.sin_addr);
    memcpy(&theInterface.ifr_addr, &theAddress, sizeof(theAddress));
    return AskInterface(SIOCSIFADDR, aName, theInterface);
}

// Runs a test in a network of its own, with "lo" up at 127.0.0.1, or skips it where that can't be had.
inline void RunInNetworkNamespace(const std::function<void()>& aTest)
{
    static const int kCannot = 200; // and above: the error number is added
    fflush(nullptr);
    const pid_t theChild = fork();
    if (theChild == 0)
    {
        const bool fIsAlone = unshare(CLONE_NEWNET) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
        if (!fIsAlone || !SetInterfaceAddress("lo", "127.0.0.1") || !SetInterfaceUp("lo", true))
        {
            _exit(kCannot + (errno < 50 ? errno : 50));
        }
        aTest();
        fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int theStatus = 0;
    waitpid(theChild, &theStatus, 0);
    const int theExit = WIFEXITED(theStatus) ? WEXITSTATUS(theStatus) : -1;
    if (theExit >= kCannot) { GTEST_SKIP() << "no network namespace here: " << strerror(theExit - kCannot); }
    EXPECT_EQ(0, theExit) << "in the network namespace";
}
