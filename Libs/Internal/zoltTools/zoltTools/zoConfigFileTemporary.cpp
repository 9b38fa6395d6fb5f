#include <zoltTools/Private/zoConfigFileTemporary.h>

#include <Shared/Digits.h>
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoUUID.h>

namespace ConfigFile
{

static const size_t kDigitCount = 16;
static const size_t kPrefixSize = kTemporaryNameSize - kDigitCount;
static const time_t kMaxAgeSeconds = 60; // of a file that may be in use, where locks do not tell

// What the temporary files of a target begin with. The target's name is cut before a character, not in it.
static void MakePrefix(const char* aTargetName, char aPrefix[kPrefixSize])
{
    size_t theLength = strnlen(aTargetName, kMaxTargetLength + 1);
    if (theLength > kMaxTargetLength)
    {
        theLength = kMaxTargetLength;
        while (theLength > 0 && (aTargetName[theLength] & 0xC0) == 0x80)
            --theLength;
    }
    zo_snprintf(aPrefix, kPrefixSize, ".%.*s.zoConfigFile-", static_cast<int>(theLength), aTargetName);
}

static void MakeName(const char* aPrefix, char* aName)
{
    zoUUID theRandomBytes;
    zoUUID_Generate(theRandomBytes);
    char* theEnd = aName + zo_snprintf(aName, kPrefixSize, "%s", aPrefix);
    for (size_t i = 0; i < kDigitCount / 2; ++i)
        theEnd = Shared::WriteHexByte(theEnd, static_cast<char>(theRandomBytes[i]));
    *theEnd = '\0';
}

static bool IsName(const char* aPrefix, const char* aName)
{
    const size_t theLength = strlen(aPrefix);
    return strncmp(aName, aPrefix, theLength) == 0 && strlen(aName + theLength) == kDigitCount &&
           strspn(aName + theLength, Shared::kHexDigits) == kDigitCount;
}

namespace
{

enum class Lock
{
    Ours,
    Others,
    Unknown // files can't be locked here
};

} // namespace

static Lock TryLock(int aDescriptor)
{
    if (flock(aDescriptor, LOCK_EX | LOCK_NB) == 0) { return Lock::Ours; }
    return errno == EWOULDBLOCK ? Lock::Others : Lock::Unknown;
}

// Removes a temporary file unless its writer may still be there. No name is used twice, so it is the same file.
static void RemoveLeftOver(int aFolder, const char* aName, time_t aNow)
{
    const int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    struct stat theStatus;
    if (fstatat(aFolder, aName, &theStatus, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(theStatus.st_mode)) { return; }
    int theDescriptor = openat(aFolder, aName, O_WRONLY | kFlags); // some file systems lock only what may be written
    if (theDescriptor < 0) { theDescriptor = openat(aFolder, aName, O_RDONLY | kFlags); }
    const Lock theLock = theDescriptor >= 0 ? TryLock(theDescriptor) : Lock::Unknown;
    const bool fIsOld = theStatus.st_mtime < aNow - kMaxAgeSeconds;
    if (theLock == Lock::Ours || (theLock == Lock::Unknown && fIsOld)) { unlinkat(aFolder, aName, 0); }
    if (theDescriptor >= 0) { close(theDescriptor); }
}

// Of all but aName. aNow: by the clock of the file system, which may be another computer's.
static void RemoveLeftOvers(int aFolder, const char* aPrefix, const char* aName, time_t aNow)
{
    const int theDescriptor = openat(aFolder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* theFolder = theDescriptor >= 0 ? fdopendir(theDescriptor) : nullptr;
    if (!theFolder)
    {
        if (theDescriptor >= 0) { close(theDescriptor); }
        return;
    }
    while (const struct dirent* theEntry = readdir(theFolder))
    {
        const char* theName = theEntry->d_name;
        if (IsName(aPrefix, theName) && strcmp(theName, aName) != 0) { RemoveLeftOver(aFolder, theName, aNow); }
    }
    closedir(theFolder);
}

// Removes a new temporary file. errno stays.
static void Discard(int aFolder, const char* aName, int aDescriptor)
{
    const int theError = errno;
    unlinkat(aFolder, aName, 0);
    close(aDescriptor);
    errno = theError;
}

int NewTemporary(int aFolder, const char* aTargetName, mode_t aMode, char aName[kTemporaryNameSize])
{
    static const int kMaxTries = 100;
    char thePrefix[kPrefixSize];
    MakePrefix(aTargetName, thePrefix);
    for (int theTries = 0; theTries < kMaxTries; ++theTries)
    {
        struct stat theStatus;
        MakeName(thePrefix, aName);
        const int theDescriptor = openat(aFolder, aName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, aMode);
        if (theDescriptor < 0 && errno != EEXIST) { return -1; }
        if (theDescriptor < 0) { continue; }
        // Until it is locked another program may take it for a left-over.
        const bool fIsOthers = TryLock(theDescriptor) == Lock::Others;
        if (!fIsOthers && fstatat(aFolder, aName, &theStatus, AT_SYMLINK_NOFOLLOW) == 0)
        {
            RemoveLeftOvers(aFolder, thePrefix, aName, theStatus.st_mtime);
            return theDescriptor;
        }
        Discard(aFolder, aName, theDescriptor);
        if (!fIsOthers && errno != ENOENT) { return -1; }
    }
    errno = EBUSY;
    return -1;
}

} // namespace ConfigFile
