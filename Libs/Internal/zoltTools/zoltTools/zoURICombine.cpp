// References made absolute.

#include <zoltTools/zoURI.h>

#include <Shared/Append.h>
#include <string.h>
#include <zoltTools/Private/zoURI.h>
#include <zoltTools/zoMemory.h>

using namespace URI;

// @return the base's path up to its last "/", which a relative path follows.
static string_view DirectoryOf(const Parts& aBase)
{
    if (aBase.mHostName.data() && aBase.mPath.empty()) { return "/"; }
    return aBase.mPath.substr(0, aBase.mPath.rfind('/') + 1);
}

// Gives aTarget, which is the reference, what it inherits from the base. @return true if that includes the path.
static bool InheritFromBase(const Parts& aBase, Parts* aTarget, string_view* aDirectory)
{
    if (aTarget->mScheme.data()) { return false; }
    aTarget->mScheme = aBase.mScheme;
    if (aTarget->mHostName.data()) { return false; }
    aTarget->mUserInfo = aBase.mUserInfo;
    aTarget->mHostName = aBase.mHostName;
    aTarget->mPort = aBase.mPort;
    if (!aTarget->mPath.empty())
    {
        if (aTarget->mPath[0] != '/') { *aDirectory = DirectoryOf(aBase); }
        return false;
    }
    aTarget->mPath = aBase.mPath;
    if (!aTarget->mQuery.data()) { aTarget->mQuery = aBase.mQuery; }
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

// Removes "." and ".." from the path in place. What is written never overtakes what is read, and ".." removes each byte
// once at most, so the time is linear. @return the new length.
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

static char* AppendPath(char* anEnd, const Parts& aTarget, string_view aDirectory, bool afAsItIs)
{
    size_t theLength = static_cast<size_t>(Shared::Append(Shared::Append(anEnd, aDirectory), aTarget.mPath) - anEnd);
    if (!afAsItIs) { theLength = RemoveDotSegments(anEnd, theLength); }
    if (!aTarget.mHostName.data() && theLength > 1 && anEnd[0] == '/' && anEnd[1] == '/')
    {
        memmove(anEnd + 2, anEnd, theLength); // or the path would read as a host
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
    if (!aBase || !Parse(aBase, &theBase) || !theBase.mScheme.data() || !Parse(theReference, &theTarget))
    {
        return zoStrdup(theReference);
    }
    string_view theDirectory;
    const bool fIsBasePath = InheritFromBase(theBase, &theTarget, &theDirectory);
    const size_t theSize = AddSizes(AddSizes(TextSize(theTarget), theDirectory.size()), sizeof("/."));
    char* theText = static_cast<char*>(zoMalloc(theSize));
    char* thePath = AppendUpToPath(theText, theTarget);
    AppendFromQuery(AppendPath(thePath, theTarget, theDirectory, fIsBasePath), theTarget);
    return theText;
}
