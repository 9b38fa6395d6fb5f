#include "FuzzSupport.h"
#include "Support/BrowseBlocks.h"

#include <string>
#include <zoLog/Log.h>

// The bytes, cut at line ends, are a base URL, the attributes of a root, and objects, each repeated until it is long:
// what costs little once costs much then.

namespace
{

const size_t kLength = 12 * 1024;

std::string Repeated(const std::string& aText, size_t aLength)
{
    std::string theText = aText;
    while (!aText.empty() && theText.size() < aLength)
        theText += aText;
    return theText;
}

// "#" stands for a number, another one each time.
std::string Numbered(const std::string& aText)
{
    std::string theText;
    size_t theNumber = 0;
    for (const char theByte : aText)
        theText += theByte == '#' ? std::to_string(theNumber++) : std::string(1, theByte);
    return theText;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    if (aSize < 3 || aSize > 1024) { return 0; }
    _zoLog_Level = ZOLOGLEVEL_NONE;
    char* theInput = NewText(aBytes + 1, aSize - 1);
    Lines theLines = { theInput };
    const char* theBase = theLines.Take();
    const char* theAttributes = theLines.Take();
    const size_t theRootLength = kLength / 16 * (aBytes[0] % 16); // and the rest is the objects'
    std::string theText = "<DIDL-Lite " + Numbered(Repeated(theAttributes ? theAttributes : "", theRootLength)) + ">" +
                          Numbered(Repeated(theLines.mNext ? theLines.mNext : "", kLength - theRootLength)) +
                          "</DIDL-Lite>";
    const std::string theBaseURL = Repeated(theBase ? theBase : "", aBytes[0] / 16 * 512);
    const size_t theSize = theText.size() + theBaseURL.size();

    BrowseBlocks theBlocks(theSize);
    const HeapPeak thePeak;
    theBlocks.Read(theText.data(), theBaseURL.c_str());
    RequireHeap(thePeak.Bytes(), theSize, 128);
    RequireHeap(thePeak.BytesKept(), theSize, 100);
    free(theInput);
    return 0;
}
