#include <zoltTools/zoIPAddressMonitor.h>

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoMemory.h>

namespace
{

// Address texts one after the other, each with its NUL, sorted and without repeats: the same set, the same bytes.
struct AddressSet
{
    char* mTexts; // NULL: none
    size_t mSize;
};

} // namespace

struct zoIPAddressMonitor
{
    const zoSocketPolicy* mSocketPolicy;
    AddressSet mAddresses;
};

// ---- The host's interfaces ----

static bool IsLoopback(const struct in_addr& anAddress)
{
    uint8 theFirst = 0; // in network order: 127.0.0.0/8
    memcpy(&theFirst, &anAddress, sizeof(theFirst));
    return theFirst == 127;
}

static bool IsLoopback(const struct in6_addr& anAddress)
{
    return memcmp(&anAddress, &in6addr_loopback, sizeof(anAddress)) == 0;
}

// anAddressName: "eth0", or "eth0:1" for a further address of "eth0"; no interface's own name has a colon.
static bool IsAdmitted(const zoSocketPolicy* aSocketPolicy, const char* anAddressName, bool afLoopback)
{
    if (!zoSocketPolicy_Admits(aSocketPolicy, anAddressName, afLoopback)) { return false; }
    const char* const theColon = strchr(anAddressName, ':');
    if (!theColon) { return true; }
    char* theInterfaceName = zoStrndup(anAddressName, static_cast<size_t>(theColon - anAddressName));
    const bool fAdmitted = zoSocketPolicy_Admits(aSocketPolicy, theInterfaceName, afLoopback) != 0;
    free(theInterfaceName);
    return fAdmitted;
}

// aField: where an Address, an in_addr or an in6_addr, lies in a socket address.
template <typename Address>
static void AppendAddress(zoArray_t* anArray, const zoSocketPolicy* aSocketPolicy, const struct ifaddrs& anInterface,
                          size_t aField)
{
    Address theAddress;
    char theText[INET6_ADDRSTRLEN];
    memcpy(&theAddress, reinterpret_cast<const char*>(anInterface.ifa_addr) + aField, sizeof(theAddress));
    if (!IsAdmitted(aSocketPolicy, anInterface.ifa_name, IsLoopback(theAddress))) { return; }
    if (!inet_ntop(anInterface.ifa_addr->sa_family, &theAddress, theText, sizeof(theText))) { return; }
    zoArray_Append(anArray, zoStrdup(theText));
}

static void AppendInterface(zoArray_t* anArray, const zoSocketPolicy* aSocketPolicy, const struct ifaddrs& anInterface)
{
    if (!anInterface.ifa_addr || (anInterface.ifa_flags & IFF_UP) == 0) { return; }
    switch (anInterface.ifa_addr->sa_family)
    {
    case AF_INET: AppendAddress<in_addr>(anArray, aSocketPolicy, anInterface, offsetof(sockaddr_in, sin_addr)); break;
    case AF_INET6:
        AppendAddress<in6_addr>(anArray, aSocketPolicy, anInterface, offsetof(sockaddr_in6, sin6_addr));
        break;
    default: break;
    }
}

static zoArray_t* ReadInterfaces(const zoSocketPolicy* aSocketPolicy)
{
    struct ifaddrs* theInterfaces = nullptr;
    if (getifaddrs(&theInterfaces) != 0) { return nullptr; }
    zoArray_t* theArray = zoArray_New();
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    for (const struct ifaddrs* theInterface = theInterfaces; theInterface; theInterface = theInterface->ifa_next)
        AppendInterface(theArray, aSocketPolicy, *theInterface);
    freeifaddrs(theInterfaces);
    return theArray;
}

static std::atomic<zoIPAddressMonitor_Source_t> sSource{ ReadInterfaces };

void zoIPAddressMonitor_SetSource(zoIPAddressMonitor_Source_t aSource) { sSource = aSource ? aSource : ReadInterfaces; }

// ---- Sets ----

static AddressSet MakeSet(const zoArray_t* anArray)
{
    const size_t theCount = zoArray_GetCount(anArray);
    const char** theTexts = static_cast<const char**>(zoMalloc(theCount * sizeof(const char*)));
    for (size_t i = 0; i < theCount; ++i)
        theTexts[i] = static_cast<const char*>(zoArray_At(anArray, i));
    const char** const theEnd = std::remove(theTexts, theTexts + theCount, nullptr);
    std::sort(theTexts, theEnd, [](const char* aFirst, const char* aSecond) { return strcmp(aFirst, aSecond) < 0; });

    zoArray_t* theSorted = zoArray_New();
    for (const char** theText = theTexts; theText != theEnd; ++theText)
    {
        if (theText != theTexts && strcmp(theText[-1], *theText) == 0) { continue; }
        zoArray_Append(theSorted, const_cast<char*>(*theText));
    }
    AddressSet theSet = {};
    theSet.mTexts = zoStringArray_FlattenerFunc(theSorted, &theSet.mSize);
    zoArray_Delete(theSorted);
    free(theTexts);
    return theSet;
}

// The addresses now. @return false when they can't be found out.
static bool ReadSet(const zoSocketPolicy* aSocketPolicy, AddressSet* aSet)
{
    *aSet = {};
    zoArray_t* theArray = sSource.load()(aSocketPolicy);
    if (!theArray) { return false; }
    *aSet = MakeSet(theArray);
    zoArray_Delete(theArray);
    return true;
}

static bool AreEqual(const AddressSet& aFirst, const AddressSet& aSecond)
{
    return aFirst.mSize == aSecond.mSize &&
           (aFirst.mSize == 0 || memcmp(aFirst.mTexts, aSecond.mTexts, aFirst.mSize) == 0);
}

zoArray_t* zoIPAddressMonitor_GetAddresses(const zoSocketPolicy* aSocketPolicy)
{
    AddressSet theSet;
    if (!ReadSet(aSocketPolicy, &theSet)) { return nullptr; }
    zoArray_t* theArray = zoStringArray_UnFlattenerFunc(theSet.mTexts, theSet.mSize);
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    free(theSet.mTexts);
    return theArray;
}

// ---- Monitor ----

zoIPAddressMonitor* zoIPAddressMonitor_New(const zoSocketPolicy* aSocketPolicy)
{
    zoIPAddressMonitor* theMonitor = static_cast<zoIPAddressMonitor*>(zoMallocZeroed(sizeof(zoIPAddressMonitor)));
    theMonitor->mSocketPolicy = aSocketPolicy;
    ReadSet(aSocketPolicy, &theMonitor->mAddresses);
    return theMonitor;
}

int zoIPAddressMonitor_IPAddressChanged(zoIPAddressMonitor* aMonitor)
{
    AddressSet theSet;
    if (!aMonitor || !ReadSet(aMonitor->mSocketPolicy, &theSet)) { return 0; }
    const bool fChanged = !AreEqual(theSet, aMonitor->mAddresses);
    std::swap(aMonitor->mAddresses, theSet);
    free(theSet.mTexts);
    return fChanged;
}

void zoIPAddressMonitor_Delete(zoIPAddressMonitor* aMonitor)
{
    if (!aMonitor) { return; }
    free(aMonitor->mAddresses.mTexts);
    free(aMonitor);
}
