// References made absolute.

#include <zoltTools/zoURI.h>

#include <string.h>
#include <zoltTools/Private/zoURI.h>
#include <zoltTools/zoMemory.h>

using namespace URI;

// The base's path up to its last "/", what a relative path is put behind.
static Slice DirectoryOf(const Parts& aBase)
{
    if (aBase.mHostName.mText && aBase.mPath.mLength == 0) { return { "/", 1 }; }
    const void* theSlash = memrchr(aBase.mPath.mText, '/', aBase.mPath.mLength);
    if (!theSlash) { return { nullptr, 0 }; }
    return Between(aBase.mPath.mText, static_cast<const char*>(theSlash) + 1);
}

// Gives aTarget, which is the reference, what it takes from the base; true when its path is the base's.
static bool InheritFromBase(const Parts& aBase, Parts& aTarget, Slice& aDirectory)
{
    if (aTarget.mScheme.mText) { return false; }
    aTarget.mScheme = aBase.mScheme;
    if (aTarget.mHostName.mText) { return false; }
    aTarget.mUserInfo = aBase.mUserInfo;
    aTarget.mHostName = aBase.mHostName;
    aTarget.mPort = aBase.mPort;
    if (aTarget.mPath.mLength > 0)
    {
        if (*aTarget.mPath.mText != '/') { aDirectory = DirectoryOf(aBase); }
        return false;
    }
    aTarget.mPath = aBase.mPath;
    if (!aTarget.mQuery.mText) { aTarget.mQuery = aBase.mQuery; }
    return true;
}

static size_t SegmentEnd(const char* aPath, size_t aLength, size_t aBegin)
{
    const void* theSlash = memchr(aPath + aBegin, '/', aLength - aBegin);
    return theSlash ? static_cast<size_t>(static_cast<const char*>(theSlash) - aPath) : aLength;
}

// The number of dots of a segment that is "." or "..", else 0.
static size_t DotsOf(const char* aSegment, size_t aLength)
{
    return aLength > 0 && aLength <= 2 && memcmp(aSegment, "..", aLength) == 0 ? aLength : 0;
}

static size_t WithoutLastSegment(const char* aPath, size_t aLength)
{
    const void* theSlash = memrchr(aPath, '/', aLength);
    return theSlash ? static_cast<size_t>(static_cast<const char*>(theSlash) - aPath) : 0;
}

// Takes "." and ".." out of the path in place. What is written never overtakes what is read, and each byte that ".."
// takes back was written once: linear. @return the new length.
static size_t RemoveDotSegments(char* aPath, size_t aLength)
{
    size_t theRead = 0;
    size_t theWritten = 0;
    while (theRead < aLength && aPath[theRead] != '/') // before the first "/"
    {
        const size_t theEnd = SegmentEnd(aPath, aLength, theRead);
        if (DotsOf(aPath + theRead, theEnd - theRead) == 0)
        {
            memmove(aPath, aPath + theRead, theEnd - theRead);
            theWritten = theEnd - theRead;
            theRead = theEnd;
            break;
        }
        theRead = theEnd < aLength ? theEnd + 1 : theEnd;
    }
    while (theRead < aLength) // at a "/"
    {
        const size_t theEnd = SegmentEnd(aPath, aLength, theRead + 1);
        const size_t theDots = DotsOf(aPath + theRead + 1, theEnd - theRead - 1);
        if (theDots == 0)
        {
            memmove(aPath + theWritten, aPath + theRead, theEnd - theRead);
            theWritten += theEnd - theRead;
        }
        if (theDots == 2) { theWritten = WithoutLastSegment(aPath, theWritten); }
        if (theDots > 0 && theEnd == aLength) { aPath[theWritten++] = '/'; }
        theRead = theEnd;
    }
    return theWritten;
}

static char* AppendPath(char* anEnd, const Parts& aTarget, const Slice& aDirectory, bool afAsItIs)
{
    size_t theLength = static_cast<size_t>(AppendSlice(AppendSlice(anEnd, aDirectory), aTarget.mPath) - anEnd);
    if (!afAsItIs) { theLength = RemoveDotSegments(anEnd, theLength); }
    if (!aTarget.mHostName.mText && theLength > 1 && anEnd[0] == '/' && anEnd[1] == '/')
    {
        memmove(anEnd + 2, anEnd, theLength); // else the path would read as a host
        anEnd[1] = '.';
        theLength += 2;
    }
    return anEnd + theLength;
}

char* zoURI_S_Combine(const char* aBase, const char* aReference)
{
    const char* theReference = aReference ? aReference : "";
    Parts theBase;
    Parts theTarget;
    if (!aBase || !Parse(aBase, theBase) || !theBase.mScheme.mText || !Parse(theReference, theTarget))
    {
        return zoStrdup(theReference);
    }
    Slice theDirectory = {};
    const bool theBasePath = InheritFromBase(theBase, theTarget, theDirectory);
    const size_t theSize = AddSizes(AddSizes(TextSize(theTarget), theDirectory.mLength), sizeof("/."));
    char* theText = static_cast<char*>(zoMalloc(theSize));
    char* thePath = AppendUpToPath(theText, theTarget);
    AppendFromQuery(AppendPath(thePath, theTarget, theDirectory, theBasePath), theTarget);
    return theText;
}
