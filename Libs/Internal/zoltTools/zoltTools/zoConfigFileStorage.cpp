#include <zoltTools/Private/zoConfigFileStorage.h>

#include <Shared/LogMessage.h>
#include <Shared/Sizes.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zoltTools/Private/zoConfigFileTemporary.h>
#include <zoltTools/zoMemory.h>

namespace ConfigFile
{

static const mode_t kNewFileMode = 0644;

// Logs errno. The result is false, so that a caller can give up with it.
static bool Complain(const char* aPath, const char* anOperation)
{
    Shared::LogMessage(ZOLOGLEVEL_ERROR, ZOLOG_M_DEFAULT, __FILE__, __LINE__, "zoConfigFile: '%s' can't be %s: %s\n",
                       aPath, anOperation, strerror(errno));
    return false;
}

// ---- Reading ----

static char* GiveUp(char* aBytes, int anError)
{
    free(aBytes);
    errno = anError;
    return nullptr;
}

// All that the descriptor has left; NULL with errno when reading fails.
static char* ReadAll(int aDescriptor, off_t anExpectedSize, size_t* aLength)
{
    static const off_t kMaxExpected = 1 << 20; // a file that claims more has to show it
    size_t theCapacity = static_cast<size_t>(anExpectedSize < kMaxExpected ? anExpectedSize : kMaxExpected) + 1;
    char* theBytes = static_cast<char*>(zoMalloc(theCapacity));
    for (*aLength = 0;;)
    {
        if (*aLength == theCapacity)
        {
            theCapacity = Shared::GrowCapacity(theCapacity, theCapacity + 1, 4096);
            theBytes = Shared::ResizeArray(theBytes, theCapacity);
        }
        const ssize_t theCount = read(aDescriptor, theBytes + *aLength, theCapacity - *aLength);
        if (theCount > 0) { *aLength += static_cast<size_t>(theCount); }
        else if (theCount == 0) { return theBytes; }
        else if (errno != EINTR) { return GiveUp(theBytes, errno); }
    }
}

// False with errno for a folder, a pipe, a device.
static bool IsRegular(const struct stat& aStatus)
{
    if (S_ISREG(aStatus.st_mode)) { return true; }
    errno = S_ISDIR(aStatus.st_mode) ? EISDIR : EINVAL;
    return false;
}

char* Read(const char* aPath, size_t* aLength)
{
    *aLength = 0;
    const int theDescriptor = open(aPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK); // nothing here waits for a pipe's writer
    if (theDescriptor < 0 && errno == ENOENT) { return static_cast<char*>(zoMallocZeroed(1)); }
    struct stat theStatus;
    const bool fCanRead = theDescriptor >= 0 && fstat(theDescriptor, &theStatus) == 0 && IsRegular(theStatus);
    char* theBytes = fCanRead ? ReadAll(theDescriptor, theStatus.st_size, aLength) : nullptr;
    if (!theBytes) { Complain(aPath, "read"); }
    if (theDescriptor >= 0) { close(theDescriptor); }
    return theBytes;
}

// ---- Replacing ----

// What a symbolic link at aPath holds, as a path to where it leads: a new text.
static char* FollowLink(const char* aPath, const char* aContent)
{
    const char* theSlash = strrchr(aPath, '/');
    if (*aContent == '/' || !theSlash) { return zoStrdup(aContent); }
    return zo_mnprintf("%.*s%s", static_cast<int>(theSlash + 1 - aPath), aPath, aContent);
}

// The path of the file that a path leads to through symbolic links, also of one that is not there yet: a new text. Only
// the links of the last name are followed; those on the way to it are the system's. NULL with errno for too many links.
static char* ResolveLinks(const char* aPath)
{
    static const int kMaxLinks = 40; // as the system's
    char* thePath = zoStrdup(aPath);
    for (int theLinks = 0; theLinks < kMaxLinks; ++theLinks)
    {
        char theContent[PATH_MAX] = "";
        if (readlink(thePath, theContent, sizeof(theContent) - 1) < 0) { return thePath; }
        char* theNext = FollowLink(thePath, theContent);
        free(thePath);
        thePath = theNext;
    }
    return GiveUp(thePath, ELOOP);
}

static bool WriteAll(int aDescriptor, const char* aBytes, size_t aLength)
{
    while (aLength > 0)
    {
        const ssize_t theCount = write(aDescriptor, aBytes, aLength);
        if (theCount < 0 && errno == EINTR) { continue; }
        if (theCount == 0) { errno = EIO; } // no file should; trying again might never end
        if (theCount <= 0) { return false; }
        aBytes += theCount;
        aLength -= static_cast<size_t>(theCount);
    }
    return true;
}

// Calls fsync or syncfs until no signal interrupts it. False with errno when that failed.
static bool Flush(int (*aFlush)(int), int aDescriptor)
{
    int theResult;
    do
        theResult = aFlush(aDescriptor);
    while (theResult != 0 && errno == EINTR);
    return theResult == 0;
}

// Makes the new name of a file last, too. The descriptor of a folder that can't be read flushes nothing: instead, the
// file's flushes its whole file system. False with errno when that failed.
static bool FlushName(int aFolder, int aDescriptor)
{
    if (Flush(fsync, aFolder) || errno == EINVAL) { return true; } // some file systems have nothing to flush there
    return errno == EBADF && Flush(syncfs, aDescriptor);
}

// The mode for a file that can't have its group: the group that it has instead may do what everybody may.
static mode_t ModeForAnyGroup(mode_t aMode) { return (aMode & 0707) | (aMode & 0007) << 3; }

// Whoever the old file keeps out must not open the new one while it is empty. Where modes can't be set, this mode
// stays.
static mode_t ModeToBeginWith(const struct stat* anOld)
{
    return anOld ? 0600 | (ModeForAnyGroup(anOld->st_mode) & kNewFileMode) : kNewFileMode;
}

// The new file gets the mode of the old one, and its owner and group where that may be done. Some file systems have no
// owners or modes; the file is as good without.
static void KeepPermissions(int aDescriptor, const struct stat* anOld)
{
    mode_t theMode = ModeForAnyGroup(anOld->st_mode);
    if (fchown(aDescriptor, anOld->st_uid, anOld->st_gid) == 0) { theMode = anOld->st_mode & 07777; }
    else if (fchown(aDescriptor, static_cast<uid_t>(-1), anOld->st_gid) == 0) { theMode = anOld->st_mode & 0777; }
    (void)!fchmod(aDescriptor, theMode);
}

// Fills a temporary file and gives it the target's name. False with errno when that failed.
static bool Write(int aFolder, const char* aTemporary, const char* aTarget, int aDescriptor, const char* aBytes,
                  size_t aLength)
{
    if (WriteAll(aDescriptor, aBytes, aLength) && Flush(fsync, aDescriptor) &&
        renameat(aFolder, aTemporary, aFolder, aTarget) == 0)
    {
        return true;
    }
    const int theError = errno;
    unlinkat(aFolder, aTemporary, 0);
    errno = theError;
    return false;
}

// Replaces the file of a folder. NULL, or what the file can't be, with errno.
static const char* ReplaceIn(int aFolder, const char* aName, const char* aBytes, size_t aLength)
{
    static const char kWritten[] = "written";

    struct stat theStatus;
    const struct stat* theOld = fstatat(aFolder, aName, &theStatus, AT_SYMLINK_NOFOLLOW) == 0 ? &theStatus : nullptr;
    if (theOld ? !IsRegular(*theOld) : errno != ENOENT) { return kWritten; }
    char theTemporary[kTemporaryNameSize];
    const int theDescriptor = NewTemporary(aFolder, aName, ModeToBeginWith(theOld), theTemporary);
    if (theDescriptor < 0) { return kWritten; }
    if (theOld) { KeepPermissions(theDescriptor, theOld); }
    const char* theFailure = nullptr;
    if (!Write(aFolder, theTemporary, aName, theDescriptor, aBytes, aLength)) { theFailure = kWritten; }
    else if (!FlushName(aFolder, theDescriptor)) { theFailure = "flushed"; }
    const int theError = errno;
    close(theDescriptor);
    errno = theError;
    return theFailure;
}

// The folder that aLength bytes of a path name. One that can't be read can perhaps be written.
static int OpenFolder(const char* aPath, size_t aLength)
{
    char* thePath = aLength > 0 ? zoStrndup(aPath, aLength) : zoStrdup(".");
    int theFolder = open(thePath, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (theFolder < 0 && errno == EACCES) { theFolder = open(thePath, O_PATH | O_DIRECTORY | O_CLOEXEC); }
    const int theError = errno;
    free(thePath);
    errno = theError;
    return theFolder;
}

static bool ReplaceTarget(const char* aTarget, const char* aBytes, size_t aLength)
{
    const char* theSlash = strrchr(aTarget, '/');
    const char* theName = theSlash ? theSlash + 1 : aTarget;
    const int theFolder = OpenFolder(aTarget, static_cast<size_t>(theName - aTarget));
    if (theFolder < 0) { return Complain(aTarget, "written"); }
    const char* theFailure = ReplaceIn(theFolder, theName, aBytes, aLength);
    const bool fIsReplaced = !theFailure || Complain(aTarget, theFailure);
    close(theFolder);
    return fIsReplaced;
}

bool Replace(const char* aPath, const char* aBytes, size_t aLength)
{
    char* theTarget = ResolveLinks(aPath);
    if (!theTarget) { return Complain(aPath, "written"); }
    const bool fIsReplaced = ReplaceTarget(theTarget, aBytes, aLength);
    free(theTarget);
    return fIsReplaced;
}

} // namespace ConfigFile
