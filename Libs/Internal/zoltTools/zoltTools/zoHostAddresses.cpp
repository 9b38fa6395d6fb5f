#include <zoltTools/Private/zoHostAddresses.h>

#include <Shared/Sizes.h>
#include <algorithm>
#include <arpa/inet.h>
#include <errno.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zoltTools/zoMemory.h>

// getifaddrs names an IPv4 address by its label, which need not be its interface's name; netlink has both. So the
// kernel is asked twice: for its interfaces, and for their addresses.

namespace
{

struct Interface
{
    int mIndex;
    bool mfIsUp;
    bool mfIsExcluded; // by its name
    char mName[IF_NAMESIZE];
};

struct Interfaces // sorted by index once all are read
{
    Interface* mItems;
    size_t mCount;
    size_t mCapacity;
};

struct Reader
{
    const zoSocketPolicy* mSocketPolicy;
    Interfaces mInterfaces;
    zoArray_t* mAddresses;
};

typedef void (*ReadMessage_t)(Reader* aReader, const struct nlmsghdr* aMessage);

enum class Answer
{
    Whole,
    Interrupted, // by a change of what was asked for: it is not of one moment
    Failed
};

const size_t kAnswerSize = 32768; // the most that the kernel sends at once

} // namespace

// ---- Asking the kernel ----

static bool Ask(int aSocket, uint16 aRequest)
{
    struct
    {
        struct nlmsghdr mHeader;
        struct rtgenmsg mMessage;
    } theRequest = {};
    theRequest.mHeader.nlmsg_len = sizeof(theRequest);
    theRequest.mHeader.nlmsg_type = aRequest;
    theRequest.mHeader.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    theRequest.mHeader.nlmsg_seq = aRequest;
    theRequest.mMessage.rtgen_family = AF_UNSPEC;
    return send(aSocket, &theRequest, sizeof(theRequest), 0) == sizeof(theRequest);
}

// The next part of an answer. 0 when that failed.
static int Receive(int aSocket, char* aBytes)
{
    ssize_t theLength;
    do
        theLength = recv(aSocket, aBytes, kAnswerSize, MSG_TRUNC);
    while (theLength < 0 && errno == EINTR);
    const bool fIsWhole = theLength > 0 && static_cast<size_t>(theLength) <= kAnswerSize;
    return fIsWhole ? static_cast<int>(theLength) : 0;
}

// Reads the messages of an answer up to its end, so that nothing of it comes after the next request.
static Answer ReadAnswer(int aSocket, uint16 aRequest, char* aBytes, ReadMessage_t aReadMessage, Reader* aReader)
{
    bool fIsInterrupted = false;
    int64_t theLength; // NLMSG_NEXT can make it negative
    while ((theLength = Receive(aSocket, aBytes)) > 0)
    {
        const struct nlmsghdr* theMessage = reinterpret_cast<const struct nlmsghdr*>(aBytes);
        for (; NLMSG_OK(theMessage, theLength); theMessage = NLMSG_NEXT(theMessage, theLength))
        {
            if (theMessage->nlmsg_seq != aRequest) { continue; }
            if (theMessage->nlmsg_type == NLMSG_ERROR) { return Answer::Failed; }
            if (theMessage->nlmsg_flags & NLM_F_DUMP_INTR) { fIsInterrupted = true; }
            if (theMessage->nlmsg_type == NLMSG_DONE) { return fIsInterrupted ? Answer::Interrupted : Answer::Whole; }
            aReadMessage(aReader, theMessage);
        }
    }
    return Answer::Failed;
}

// ---- Reading messages ----

// The data of the attribute of a kind; NULL when it is absent or shorter than aSize bytes.
static const void* FindAttribute(const struct nlmsghdr* aMessage, size_t aHeaderSize, uint16 aKind, size_t aSize)
{
    const char* theHeader = static_cast<const char*>(NLMSG_DATA(aMessage));
    if (aMessage->nlmsg_len < NLMSG_LENGTH(aHeaderSize)) { return nullptr; }
    int theLength = static_cast<int>(aMessage->nlmsg_len - NLMSG_LENGTH(aHeaderSize)); // RTA_NEXT can make it negative
    const struct rtattr* theAttribute = reinterpret_cast<const struct rtattr*>(theHeader + NLMSG_ALIGN(aHeaderSize));
    for (; RTA_OK(theAttribute, theLength); theAttribute = RTA_NEXT(theAttribute, theLength))
    {
        if (theAttribute->rta_type == aKind && RTA_PAYLOAD(theAttribute) >= aSize) { return RTA_DATA(theAttribute); }
    }
    return nullptr;
}

// True if a policy excludes an interface by its name: each mode admits loopback addresses, or others, or both.
static bool IsExcluded(const zoSocketPolicy* aSocketPolicy, const char* aName)
{
    return !zoSocketPolicy_Admits(aSocketPolicy, aName, 0) && !zoSocketPolicy_Admits(aSocketPolicy, aName, 1);
}

static void ReadInterface(Reader* aReader, const struct nlmsghdr* aMessage)
{
    const void* theName = FindAttribute(aMessage, sizeof(struct ifinfomsg), IFLA_IFNAME, 1);
    if (aMessage->nlmsg_type != RTM_NEWLINK || !theName) { return; }
    struct ifinfomsg theInfo;
    memcpy(&theInfo, NLMSG_DATA(aMessage), sizeof(theInfo));
    Interfaces& theInterfaces = aReader->mInterfaces;
    if (theInterfaces.mCount == theInterfaces.mCapacity)
    {
        theInterfaces.mCapacity = Shared::GrowCapacity(theInterfaces.mCapacity, theInterfaces.mCount + 1, 8);
        theInterfaces.mItems = Shared::ResizeArray(theInterfaces.mItems, theInterfaces.mCapacity);
    }
    Interface& theInterface = theInterfaces.mItems[theInterfaces.mCount++];
    theInterface.mIndex = theInfo.ifi_index;
    theInterface.mfIsUp = (theInfo.ifi_flags & IFF_UP) != 0;
    zo_snprintf(theInterface.mName, sizeof(theInterface.mName), "%s", static_cast<const char*>(theName));
    theInterface.mfIsExcluded = IsExcluded(aReader->mSocketPolicy, theInterface.mName);
}

static void SortInterfaces(Interfaces* anInterfaces)
{
    std::sort(anInterfaces->mItems, anInterfaces->mItems + anInterfaces->mCount,
              [](const Interface& aLeft, const Interface& aRight) { return aLeft.mIndex < aRight.mIndex; });
}

static const Interface* FindInterface(const Interfaces& anInterfaces, int anIndex)
{
    const Interface* theEnd = anInterfaces.mItems + anInterfaces.mCount;
    const Interface* theInterface =
        std::lower_bound(static_cast<const Interface*>(anInterfaces.mItems), theEnd, anIndex,
                         [](const Interface& aLeft, int aRight) { return aLeft.mIndex < aRight; });
    return theInterface != theEnd && theInterface->mIndex == anIndex ? theInterface : nullptr;
}

// Of 127.0.0.0/8, or ::1.
static bool IsLoopback(int aFamily, const void* anAddress)
{
    if (aFamily == AF_INET6) { return memcmp(anAddress, &in6addr_loopback, sizeof(in6addr_loopback)) == 0; }
    return *static_cast<const uint8*>(anAddress) == 127;
}

static void ReadAddress(Reader* aReader, const struct nlmsghdr* aMessage)
{
    struct ifaddrmsg theInfo;
    if (aMessage->nlmsg_type != RTM_NEWADDR || aMessage->nlmsg_len < NLMSG_LENGTH(sizeof(theInfo))) { return; }
    memcpy(&theInfo, NLMSG_DATA(aMessage), sizeof(theInfo));
    if (theInfo.ifa_family != AF_INET && theInfo.ifa_family != AF_INET6) { return; }
    const size_t theSize = theInfo.ifa_family == AF_INET ? sizeof(struct in_addr) : sizeof(struct in6_addr);
    const void* theAddress = FindAttribute(aMessage, sizeof(theInfo), IFA_LOCAL, theSize); // where a peer has the other
    if (!theAddress) { theAddress = FindAttribute(aMessage, sizeof(theInfo), IFA_ADDRESS, theSize); }
    const Interface* theInterface = FindInterface(aReader->mInterfaces, static_cast<int>(theInfo.ifa_index));
    if (!theAddress || !theInterface || !theInterface->mfIsUp || theInterface->mfIsExcluded) { return; }

    const char* theLabel = static_cast<const char*>(FindAttribute(aMessage, sizeof(theInfo), IFA_LABEL, 1));
    if (theLabel && strcmp(theLabel, theInterface->mName) == 0) { theLabel = nullptr; } // asked for already
    if (!zoSocketPolicy_Admits(aReader->mSocketPolicy, theLabel, IsLoopback(theInfo.ifa_family, theAddress)))
    {
        return;
    }
    char theText[INET6_ADDRSTRLEN];
    if (!inet_ntop(theInfo.ifa_family, theAddress, theText, sizeof(theText))) { return; }
    zoArray_Append(aReader->mAddresses, zoStrdup(theText));
}

// ---- All of it ----

static Answer AskAndRead(int aSocket, uint16 aRequest, char* aBytes, ReadMessage_t aReadMessage, Reader* aReader)
{
    return Ask(aSocket, aRequest) ? ReadAnswer(aSocket, aRequest, aBytes, aReadMessage, aReader) : Answer::Failed;
}

static Answer ReadOnce(int aSocket, char* aBytes, Reader* aReader)
{
    aReader->mInterfaces.mCount = 0;
    zoArray_RemoveAt(aReader->mAddresses, 0, zoArray_GetCount(aReader->mAddresses));
    const Answer theAnswer = AskAndRead(aSocket, RTM_GETLINK, aBytes, ReadInterface, aReader);
    if (theAnswer != Answer::Whole) { return theAnswer; }
    SortInterfaces(&aReader->mInterfaces);
    return AskAndRead(aSocket, RTM_GETADDR, aBytes, ReadAddress, aReader);
}

static bool ReadAll(int aSocket, char* aBytes, Reader* aReader)
{
    static const int kMaxTries = 4;
    Answer theAnswer = Answer::Interrupted;
    for (int theTries = 0; theTries < kMaxTries && theAnswer == Answer::Interrupted; ++theTries)
        theAnswer = ReadOnce(aSocket, aBytes, aReader);
    return theAnswer == Answer::Whole;
}

zoArray_t* zoHostAddresses_Read(const zoSocketPolicy* aSocketPolicy)
{
    const int theSocket = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
    if (theSocket < 0) { return nullptr; }
    Reader theReader = { aSocketPolicy, {}, zoArray_New() };
    zoArray_SetFreeFunc(theReader.mAddresses, zoStringArray_FreeFunc);
    char* theBytes = static_cast<char*>(zoMalloc(kAnswerSize));
    const bool fIsRead = ReadAll(theSocket, theBytes, &theReader);
    close(theSocket);
    free(theBytes);
    free(theReader.mInterfaces.mItems);
    if (fIsRead) { return theReader.mAddresses; }
    zoArray_Delete(theReader.mAddresses);
    return nullptr;
}
