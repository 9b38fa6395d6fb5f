#include <zoltTools/zoConfigFileStorage.h>

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

// All that the descriptor has left; NULL with errno when reading fails.
static char* ReadAll(int aDescriptor, size_t* aLength)
{
    size_t theCapacity = 4096;
    char* theBytes = static_cast<char*>(zoMalloc(theCapacity));
    for (*aLength = 0;;)
    {
        if (theCapacity - *aLength < 2)
        {
            if (theCapacity > SIZE_MAX / 2) { abort(); } // more than memory can hold
            theCapacity *= 2;
            theBytes = static_cast<char*>(zoRealloc(theBytes, theCapacity));
        }
        const ssize_t theCount = read(aDescriptor, theBytes + *aLength, theCapacity - *aLength - 1);
        if (theCount > 0) { *aLength += static_cast<size_t>(theCount); }
        else if (theCount == 0) { break; }
        else if (errno != EINTR)
        {
            free(theBytes);
            return nullptr;
        }
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

// Whether the path still is the open file, and nobody else's name for another one.
static bool IsOwnFile(const char* aPath, int aDescriptor)
{
    struct stat theFile, theNamed;
    return fstat(aDescriptor, &theFile) == 0 && lstat(aPath, &theNamed) == 0 && theFile.st_dev == theNamed.st_dev &&
           theFile.st_ino == theNamed.st_ino && S_ISREG(theFile.st_mode) && theFile.st_nlink == 1;
}

// Opens the temporary file and keeps other programs from it; -1 with errno when that fails. Another program may just
// have renamed it: then it is opened anew.
static int OpenTemporary(const char* aPath)
{
    for (int theTries = 0; theTries < 1000; ++theTries)
    {
        const int theDescriptor = open(aPath, O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kNewFileMode);
        if (theDescriptor < 0) { return -1; }
        while (flock(theDescriptor, LOCK_EX) != 0 && errno == EINTR) {}
        if (IsOwnFile(aPath, theDescriptor)) { return theDescriptor; }
        close(theDescriptor);
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

// The new file gets the mode of the old one, and its owner where that may be done.
static bool TakePermissions(int aDescriptor, const char* aTarget)
{
    struct stat theStatus;
    if (stat(aTarget, &theStatus) != 0) { return errno == ENOENT; }
    const int theResult = fchown(aDescriptor, theStatus.st_uid, theStatus.st_gid);
    static_cast<void>(theResult);
    return fchmod(aDescriptor, theStatus.st_mode & 07777) == 0;
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
    const int theDescriptor = OpenTemporary(aTemporary);
    if (theDescriptor < 0) { return Complain(aTemporary, "written"); }
    // Nobody may read from the new file what the old one keeps from them: permissions come first.
    const bool fIsReplaced = ftruncate(theDescriptor, 0) == 0 && TakePermissions(theDescriptor, aTarget) &&
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
