#pragma once

#include "ChildProcess.h"
#include <arpa/inet.h>
#include <cstring>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
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

// Adds an IPv4 address to "lo". A label that is not "lo:" and a number is one that only netlink can give.
inline bool AddAddress(const char* anAddress, const char* aLabel)
{
    struct
    {
        struct nlmsghdr mHeader = { sizeof(*this), RTM_NEWADDR, NLM_F_REQUEST | NLM_F_ACK | NLM_F_CREATE, 0, 0 };
        struct ifaddrmsg mInfo = { AF_INET, 8, 0, 0, if_nametoindex("lo") };
        struct rtattr mLocalHeader = { sizeof(struct rtattr) + sizeof(struct in_addr), IFA_LOCAL };
        struct in_addr mLocal = {};
        struct rtattr mLabelHeader = { sizeof(struct rtattr) + IFNAMSIZ, IFA_LABEL };
        char mLabel[IFNAMSIZ] = "";
    } theRequest;
    struct
    {
        struct nlmsghdr mHeader;
        struct nlmsgerr mError;
    } theAnswer = {};
    inet_pton(AF_INET, anAddress, &theRequest.mLocal);
    snprintf(theRequest.mLabel, sizeof(theRequest.mLabel), "%s", aLabel);
    const int theSocket = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
    const bool fIsAnswered = send(theSocket, &theRequest, sizeof(theRequest), 0) == sizeof(theRequest) &&
                             recv(theSocket, &theAnswer, sizeof(theAnswer), 0) > 0;
    close(theSocket);
    return fIsAnswered && theAnswer.mError.error == 0;
}

// Runs a test in a network of its own, with "lo" up at 127.0.0.1, or skips it where that can't be had.
inline void RunInNetworkNamespace(const std::function<void()>& aTest)
{
    RunInChildProcess(
        []
        {
        const bool fIsAlone = unshare(CLONE_NEWNET) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
        return fIsAlone && AddAddress("127.0.0.1", "lo") && SetInterfaceUp("lo", true);
        },
        aTest);
}
