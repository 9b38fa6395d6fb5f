#include <zoltTools/Private/zoConfigFileStorage.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zoLog/Log.h>
#include <zoltTools/zoMemory.h>

static const mode_t kNewFileMode = 0644;

// The result is 0, so that a caller can give up with it.
static int Complain(const char* aPath, const char* anOperation)
{
    const int theError = errno;
    zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_ERROR, ZOLOG_M_DEFAULT);
    if (!theRecord) { return 0; }
    zoLog_SetLocation(theRecord, __FILE__, __LINE__);
    zoLog_Append_F(theRecord, "zoConfigFile: '%s' can't be %s: %s\n", aPath, anOperation, strerror(theError));
    zoLog_End(theRecord);
    return 0;
}

// ---- Reading ----

static char* GiveUp(char* aBytes, int anError)
{
    free(aBytes);
    errno = anError;
    return nullptr;
}

// All that the descriptor has left; NULL with errno when reading fails.
static char* ReadAll(int aDescriptor, size_t* aLength)
{
    size_t theCapacity = 4096;
    char* theBytes = static_cast<char*>(zoMalloc(theCapacity));
    for (*aLength = 0;;)
    {
        if (theCapacity - *aLength < 2)
        {
            if (theCapacity > SIZE_MAX / 2) { return GiveUp(theBytes, EFBIG); }
            theCapacity *= 2;
            theBytes = static_cast<char*>(zoRealloc(theBytes, theCapacity));
        }
        const ssize_t theCount = read(aDescriptor, theBytes + *aLength, theCapacity - *aLength - 1);
        if (theCount > 0) { *aLength += static_cast<size_t>(theCount); }
        else if (theCount == 0) { break; }
        else if (errno != EINTR) { return GiveUp(theBytes, errno); }
    }
    theBytes[*aLength] = '\0';
    return theBytes;
}

static bool IsRegular(int aDescriptor)
{
    struct stat theStatus;
    if (fstat(aDescriptor, &theStatus) != 0) { return false; }
    if (S_ISREG(theStatus.st_mode)) { return true; }
    errno = S_ISDIR(theStatus.st_mode) ? EISDIR : EINVAL;
    return false;
}

char* zoConfigFileStorage_Read(const char* aPath, size_t* aLength)
{
    *aLength = 0;
    const int theDescriptor = open(aPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK); // nothing here waits for a pipe's writer
    if (theDescriptor < 0 && errno == ENOENT) { return static_cast<char*>(zoMallocZeroed(1)); }
    char* theBytes = theDescriptor >= 0 && IsRegular(theDescriptor) ? ReadAll(theDescriptor, aLength) : nullptr;
    if (!theBytes) { Complain(aPath, "read"); }
    if (theDescriptor >= 0) { close(theDescriptor); }
    return theBytes;
}

// ---- Replacing ----

// The file's own path, a new text: what symbolic links lead to. One that leads nowhere is an error.
static char* ResolveLinks(const char* aPath)
{
    struct stat theStatus;
    char* theTarget = realpath(aPath, nullptr);
    if (theTarget || errno != ENOENT) { return theTarget; }
    if (lstat(aPath, &theStatus) == 0)
    {
        errno = ENOENT;
        return nullptr;
    }
    return zoStrdup(aPath);
}

// Keeps other programs from a file until it is closed. True when the path then still names it.
static bool Lock(const char* aPath, int aDescriptor)
{
    while (flock(aDescriptor, LOCK_EX) != 0 && errno == EINTR) {} // where files can't be locked, there is no waiting
    struct stat theFile, theNamed;
    return fstat(aDescriptor, &theFile) == 0 && lstat(aPath, &theNamed) == 0 && theFile.st_dev == theNamed.st_dev &&
           theFile.st_ino == theNamed.st_ino;
}

// Waits until no other program uses the temporary file, and removes it when that was killed. False with errno when it
// can't be removed, or is something else.
static bool RemoveLeftOver(const char* aPath)
{
    const int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int theDescriptor = open(aPath, O_WRONLY | kFlags); // some file systems lock only what may be written
    if (theDescriptor < 0 && errno == EACCES) { theDescriptor = open(aPath, O_RDONLY | kFlags); }
    if (theDescriptor < 0) { return errno == ENOENT; }
    const bool fIsGone = IsRegular(theDescriptor) && (!Lock(aPath, theDescriptor) || unlink(aPath) == 0);
    const int theError = errno;
    close(theDescriptor);
    errno = theError;
    return fIsGone;
}

// Makes the temporary file and locks it; -1 with errno when that fails. It is always a new file, which nobody else has
// open. Another program may take it for a left-over before it is locked: then there is another try.
static int NewTemporary(const char* aPath, mode_t aMode)
{
    for (int theTries = 0; theTries < 1000; ++theTries)
    {
        const int theDescriptor = open(aPath, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, aMode);
        if (theDescriptor >= 0 && Lock(aPath, theDescriptor)) { return theDescriptor; }
        if (theDescriptor >= 0) { close(theDescriptor); }
        else if (errno != EEXIST || !RemoveLeftOver(aPath)) { return -1; }
    }
    errno = EBUSY;
    return -1;
}

static bool WriteAll(int aDescriptor, const char* aBytes, size_t aLength)
{
    while (aLength > 0)
    {
        const ssize_t theCount = write(aDescriptor, aBytes, aLength);
        if (theCount < 0 && errno != EINTR) { return false; }
        if (theCount > 0)
        {
            aBytes += theCount;
            aLength -= static_cast<size_t>(theCount);
        }
    }
    return true;
}

// The new file gets the mode of the old one, and its owner and group where that may be done. Without its group, the
// group that it has instead may do what everybody may.
static bool TakePermissions(int aDescriptor, const struct stat* anOld)
{
    const mode_t theMode = anOld->st_mode & 07777;
    if (fchown(aDescriptor, anOld->st_uid, anOld->st_gid) == 0) { return fchmod(aDescriptor, theMode) == 0; }
    if (fchown(aDescriptor, static_cast<uid_t>(-1), anOld->st_gid) == 0)
    {
        return fchmod(aDescriptor, theMode & 0777) == 0;
    }
    return fchmod(aDescriptor, (theMode & 0707) | (theMode & 0007) << 3) == 0;
}

// Flushes the folder of a file, so that its new name lasts; some file systems have nothing to flush there.
static bool FlushFolder(const char* aPath)
{
    const char* theSlash = strrchr(aPath, '/');
    char* theFolder = theSlash ? zoStrndup(aPath, static_cast<size_t>(theSlash + 1 - aPath)) : zoStrdup(".");
    const int theDescriptor = open(theFolder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    free(theFolder);
    if (theDescriptor < 0) { return false; }
    const bool fIsFlushed = fsync(theDescriptor) == 0 || errno == EINVAL;
    close(theDescriptor);
    return fIsFlushed;
}

static int ReplaceThrough(const char* aTemporary, const char* aTarget, const char* aBytes, size_t aLength)
{
    struct stat theOld;
    const bool fIsThere = stat(aTarget, &theOld) == 0;
    if (!fIsThere && errno != ENOENT) { return Complain(aTarget, "written"); }
    // Nobody may read from the new file what the old one keeps from them: permissions come first.
    const int theDescriptor = NewTemporary(aTemporary, fIsThere ? 0600 : kNewFileMode);
    if (theDescriptor < 0) { return Complain(aTemporary, "written"); }
    const bool fIsReplaced = (!fIsThere || TakePermissions(theDescriptor, &theOld)) &&
                             WriteAll(theDescriptor, aBytes, aLength) && fsync(theDescriptor) == 0 &&
                             rename(aTemporary, aTarget) == 0;
    if (!fIsReplaced)
    {
        Complain(aTarget, "written");
        unlink(aTemporary);
    }
    close(theDescriptor);
    return fIsReplaced && (FlushFolder(aTarget) || Complain(aTarget, "flushed"));
}

int zoConfigFileStorage_Replace(const char* aPath, const char* aBytes, size_t aLength)
{
    char* theTarget = ResolveLinks(aPath);
    if (!theTarget) { return Complain(aPath, "written"); }
    char* theTemporary = zo_mnprintf("%s.new", theTarget);
    const int theResult = ReplaceThrough(theTemporary, theTarget, aBytes, aLength);
    free(theTemporary);
    free(theTarget);
    return theResult;
}
