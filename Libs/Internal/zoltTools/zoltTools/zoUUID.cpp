#include <zoltTools/zoUUID.h>

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>
#include <sys/random.h>
#include <time.h>
#include <unistd.h>
#include <zoltTools/zoMD5.h>

// Does not wait for randomness, which the kernel may still be collecting while a device starts.
static bool AskSystem(uint8* aBytes, size_t aSize)
{
    return getrandom(aBytes, aSize, GRND_NONBLOCK) == static_cast<ssize_t>(aSize);
}

static bool ReadDevice(uint8* aBytes, size_t aSize)
{
    const int theFile = open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    if (theFile < 0) { return false; }
    size_t theSize = 0;
    ssize_t theCount = 1;
    while (theSize < aSize && (theCount > 0 || (theCount < 0 && errno == EINTR)))
    {
        theCount = read(theFile, aBytes + theSize, aSize - theSize);
        if (theCount > 0) { theSize += static_cast<size_t>(theCount); }
    }
    close(theFile);
    return theSize == aSize;
}

// Waits for the clock to move on, so that no two calls of a thread get the same time.
static struct timespec NextTime()
{
    struct timespec theBegin;
    struct timespec theTime;
    clock_gettime(CLOCK_MONOTONIC, &theBegin);
    do
        clock_gettime(CLOCK_MONOTONIC, &theTime);
    while (theTime.tv_sec == theBegin.tv_sec && theTime.tv_nsec == theBegin.tv_nsec);
    return theTime;
}

// The last resort, when the system gives no random numbers and no descriptor is free: a digest of what differs between
// processes (the 16 random bytes that the kernel starts each with, and its ID), threads (the place of their stack) and
// calls (the time).
static void DeriveFromProcess(uint8 aDigest[16])
{
    const struct timespec theTime = NextTime();
    const pid_t theProcess = getpid();
    const void* theThreadStack = &theTime;
    const void* theStartBytes = reinterpret_cast<const void*>(getauxval(AT_RANDOM));
    zoMD5Context theContext;
    zoMD5_Init(&theContext);
    zoMD5_Add(&theContext, theStartBytes, theStartBytes ? 16 : 0);
    zoMD5_Add(&theContext, &theProcess, sizeof(theProcess));
    zoMD5_Add(&theContext, &theThreadStack, sizeof(theThreadStack));
    zoMD5_Add(&theContext, &theTime.tv_sec, sizeof(theTime.tv_sec));
    zoMD5_Add(&theContext, &theTime.tv_nsec, sizeof(theTime.tv_nsec));
    zoMD5_Get(&theContext, aDigest);
}

void zoUUID_Generate(zoUUID aUUID)
{
    if (!AskSystem(aUUID, sizeof(zoUUID)) && !ReadDevice(aUUID, sizeof(zoUUID))) { DeriveFromProcess(aUUID); }
    aUUID[6] = static_cast<uint8>((aUUID[6] & 0x0F) | 0x40); // version 4
    aUUID[8] = static_cast<uint8>((aUUID[8] & 0x3F) | 0x80); // the variant of RFC 4122
}
