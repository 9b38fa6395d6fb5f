#include "FuzzSupport.h"

#include <algorithm>
#include <deque>
#include <string>
#include <vector>
#include <zoltTools/zoDLNAProtocolInfoList.h>

// The bytes, cut at line ends, are a list, a protocol info or URI to compare with it, a scheme order, and the supported
// protocols.

namespace
{

struct List
{
    explicit List(const std::string& aText) : mList(zoDLNAProtocolInfoList_New(aText.c_str(), 0)) {}
    ~List() { zoDLNAProtocolInfoList_Delete(mList); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    int Count() const { return zoDLNAProtocolInfoList_GetCount(mList); }
    zoDLNAProtocolInfo_t* At(int aPosition) const { return zoDLNAProtocolInfoList_GetProtocolInfoAt(mList, aPosition); }

    zoDLNAProtocolInfoList_t* mList;
};

typedef std::vector<std::string> Texts;

std::string TextOf(const zoDLNAProtocolInfo_t* anInfo)
{
    char* theText = zoDLNAProtocolInfo_GetStr(anInfo);
    std::string theResult(theText);
    free(theText);
    return theResult;
}

std::string ProfileOf(const zoDLNAProtocolInfo_t* anInfo)
{
    const char* theProfile = zoDLNAProtocolInfo_GetProfile(anInfo);
    Require(!theProfile || (*theProfile && zoDLNAProtocolInfo_MatchPN(anInfo, theProfile)), "a profile is one");
    return theProfile ? theProfile : "";
}

// The text as an element of a list.
std::string AsElement(const std::string& aText)
{
    std::string theElement;
    for (const char theByte : aText)
    {
        if (theByte == ',') { theElement += '\\'; }
        theElement += theByte;
    }
    return theElement;
}

void CheckText(const zoDLNAProtocolInfo_t* anInfo)
{
    const std::string theText = TextOf(anInfo);
    zoDLNAProtocolInfo_t* theAgain = zoDLNAProtocolInfo_New(theText.data(), theText.size(), 0);
    Require(TextOf(theAgain) == theText, "a text form is its own text form");
    Require(ProfileOf(theAgain) == ProfileOf(anInfo), "the profile is in the text");
    Require(zoDLNAProtocolInfo_IsThumbnail(theAgain) == zoDLNAProtocolInfo_IsThumbnail(anInfo), "so is its kind");
    Require(zoDLNAProtocolInfo_GetConversionIndicator(theAgain) == zoDLNAProtocolInfo_GetConversionIndicator(anInfo),
            "so is the conversion");
    const char* theProfile = zoDLNAProtocolInfo_GetProfile(anInfo);
    const int theIndicator = zoDLNAProtocolInfo_GetConversionIndicator(anInfo);
    Require(zoDLNAProtocolInfo_MatchText(theText.data(), theText.size(), theProfile, theIndicator) &&
                !zoDLNAProtocolInfo_MatchText(theText.data(), theText.size(), theProfile, !theIndicator),
            "the text alone tells both");
    zoDLNAProtocolInfo_Delete(theAgain);
}

// The texts of the elements; checks that they make the same list again.
Texts CheckTexts(const List& aList)
{
    Texts theTexts;
    std::string theJoined;
    bool fEndsInBackslash = false; // which would protect the comma behind it
    for (int i = 0; i < aList.Count(); ++i)
    {
        CheckText(aList.At(i));
        theTexts.push_back(TextOf(aList.At(i)));
        fEndsInBackslash = fEndsInBackslash || theTexts.back().back() == '\\';
        theJoined += AsElement(theTexts.back()) + " ,, ";
    }
    Require(!aList.At(-1) && !aList.At(aList.Count()), "there is nothing outside the list");
    if (fEndsInBackslash) { return theTexts; }
    const List theAgain(theJoined);
    Require(theAgain.Count() == aList.Count(), "the texts of a list make a list of as many");
    for (int i = 0; i < aList.Count(); ++i)
        Require(TextOf(theAgain.At(i)) == theTexts[static_cast<size_t>(i)], "with the same texts");
    return theTexts;
}

// A list matches when one of its elements does; each flag widens what matches, or narrows it.
void CheckMatch(const List& aList, const Texts& aTexts, const zoDLNAProtocolInfo_t* anInfo)
{
    const List theNone("");
    std::deque<List> theSingles;
    for (const std::string& theText : aTexts)
        theSingles.emplace_back(AsElement(theText));
    std::string theRepeated; // so often that the list gets an index; a backslash at an end would protect the comma
    for (size_t i = 0; i < 17 * aTexts.size() && aTexts[i % aTexts.size()].back() != '\\'; ++i)
        theRepeated += AsElement(aTexts[i % aTexts.size()]) + ',';
    const List theLong(theRepeated);
    const bool fIsWhole = theLong.Count() == 17 * static_cast<int>(aTexts.size());
    const int kFlags = 0x20;
    bool fMatches[kFlags] = {};
    int theWays[kFlags] = {};
    for (int theFlags = 0; theFlags < kFlags; ++theFlags)
    {
        theWays[theFlags] = theFlags;
        fMatches[theFlags] = zoDLNAProtocolInfoList_Match(aList.mList, anInfo, theFlags) != 0;
        Require(!zoDLNAProtocolInfoList_Match(theNone.mList, anInfo, theFlags), "an empty list matches nothing");
        const bool fAnyMatches = std::any_of(theSingles.begin(), theSingles.end(),
                                             [=](const List& aSingle) {
            return zoDLNAProtocolInfoList_Match(aSingle.mList, anInfo, theFlags) != 0;
        });
        Require(fMatches[theFlags] == fAnyMatches, "a list matches when one of its elements does");
        Require(!fIsWhole || (zoDLNAProtocolInfoList_Match(theLong.mList, anInfo, theFlags) != 0) == fAnyMatches,
                "so does a long one");
    }
    for (int theFlags = 0; theFlags < kFlags; ++theFlags)
    {
        const size_t theCount = static_cast<size_t>(kFlags - theFlags);
        const size_t theFirst =
            static_cast<size_t>(std::find(fMatches + theFlags, fMatches + kFlags, true) - (fMatches + theFlags));
        Require(!fIsWhole ||
                    zoDLNAProtocolInfoList_FindMatch(theLong.mList, anInfo, theWays + theFlags, theCount) == theFirst,
                "several ways of comparing are tried in their order");
        for (int theFlag = 1; theFlag < kFlags; theFlag <<= 1)
        {
            const bool fNarrows = theFlag == kzoDLNAProtocolInfoMatch_ProfileNotNULL;
            const bool fWithout = fMatches[theFlags & ~theFlag];
            const bool fWith = fMatches[theFlags | theFlag];
            Require(fNarrows ? fWithout || !fWith : fWith || !fWithout, "a flag widens, ProfileNotNULL narrows");
        }
    }
}

// What is asked of the whole list, asked of one element and one item of the order at a time.
int FindBest(const Texts& aTexts, const std::string& anOrder, const char* aSupported)
{
    for (size_t theBegin = 0; theBegin <= anOrder.size();)
    {
        const size_t theEnd = std::min(anOrder.find(',', theBegin), anOrder.size());
        const std::string theItem = anOrder.substr(theBegin, theEnd - theBegin);
        for (size_t i = 0; i < aTexts.size(); ++i)
        {
            const List theSingle(AsElement(aTexts[i]));
            const int theBest =
                zoDLNAProtocolInfoList_GetBestIndexForScheme(theSingle.mList, theItem.c_str(), aSupported);
            Require(theBest == 0 || theBest == -1, "a choice lies in the list");
            if (theBest == 0) { return static_cast<int>(i); }
        }
        theBegin = theEnd + 1;
    }
    return -1;
}

void CheckRanking(const List& aList, Texts aTexts, const char* anOrder, const char* aSupported)
{
    for (;;)
    {
        const int theBest = zoDLNAProtocolInfoList_GetBestIndexForScheme(aList.mList, anOrder, aSupported);
        Require(theBest == FindBest(aTexts, anOrder, aSupported), "the best is the first of the earliest item");
        if (theBest < 0) { return; }
        zoDLNAProtocolInfoList_Remove(aList.mList, theBest);
        aTexts.erase(aTexts.begin() + theBest);
        Require(aList.Count() == static_cast<int>(aTexts.size()), "one was removed");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    char* theText = NewText(aBytes, aSize);
    Lines theLines = { theText };
    const List theList(theLines.Take());
    const char* theOther = theLines.Take();
    const char* theOrder = theLines.Take();
    const char* theSupported = theLines.Take();
    const Texts theTexts = CheckTexts(theList);

    if (theTexts.size() <= 8 && theOther)
    {
        zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(theOther, strlen(theOther), 0);
        CheckText(theInfo);
        CheckMatch(theList, theTexts, theInfo);
        zoDLNAProtocolInfo_Delete(theInfo);
        theInfo = zoDLNAProtocolInfo_NewFromURI(theOther);
        CheckText(theInfo);
        zoDLNAProtocolInfo_Delete(theInfo);
        char* theProtocols = zoDLNAProtocolInfoList_GetSupportedProtocolList(theList.mList);
        if (theOrder && strlen(theOrder) < 64)
        {
            CheckRanking(theList, theTexts, theOrder, theSupported ? theSupported : theProtocols);
        }
        free(theProtocols);
    }
    for (int i = 0; i < theList.Count(); ++i)
        Require(zoDLNAProtocolInfoList_Match(theList.mList, theList.At(i), 0) == 1, "an element matches itself");
    free(theText);
    return 0;
}
