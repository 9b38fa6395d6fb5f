#include "Subtitles.h"

#include <Shared/ASCII.h>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

using Shared::EqualsIgnoringCase;

namespace
{

struct Subtitle
{
    std::string mURI;
    std::vector<std::string> mSources = {};
    std::optional<uint32> mResource = std::nullopt;
    std::string mLabel = "";
    std::string mType = "";
};

// The subtitles of an object, in the order in which they are added.
class Subtitles
{
public:
    Subtitle& Add(const std::string& aURI)
    {
        mByURI.emplace(aURI, mAll.size());
        return mAll.emplace_back(Subtitle{ aURI });
    }
    Subtitle& FindOrAdd(const std::string& aURI)
    {
        const auto theFound = mByURI.find(aURI);
        return theFound == mByURI.end() ? Add(aURI) : mAll[theFound->second];
    }
    const std::vector<Subtitle>& GetAll() const { return mAll; }

private:
    std::vector<Subtitle> mAll;
    std::unordered_map<std::string, size_t> mByURI;
};

} // namespace

// MIME types that servers give to subtitles, and how the formats are called.
static const struct
{
    const char* mMimeType;
    const char* mType;
} kMimeTypes[] = {
    { "text/srt", "srt" },
    { "text/x-srt", "srt" },
    { "application/x-subrip", "srt" },
    { "application/x-srt", "srt" },
    { "text/vtt", "vtt" },
    { "application/x-subtitle-vtt", "vtt" },
    { "text/x-ssa", "ssa" },
    { "application/x-ssa", "ssa" },
    { "text/x-ass", "ass" },
    { "application/x-ass", "ass" },
    { "smi/caption", "smi" },
    { "application/x-sami", "smi" },
    { "application/x-subtitle-sami", "smi" },
    { "application/ttml+xml", "ttml" },
    { "text/sub", "sub" },
    { "application/x-subtitle", "" },
};

// Returns the name of the format; NULL for what is not a subtitle's MIME type.
static const char* TypeOf(std::string_view aMimeType)
{
    for (const auto& [theMimeType, theType] : kMimeTypes)
    {
        if (EqualsIgnoringCase(aMimeType, theMimeType)) { return theType; }
    }
    return nullptr;
}

static void AddResources(CDSResourceInfo& aResources, Subtitles& aSubtitles)
{
    const uint32 theCount = aResources.GetResourceCount();
    for (uint32 i = 0; i < theCount; ++i)
    {
        const int theIndex = static_cast<int>(i);
        const bool fIsMarked = aResources.IsSubtitle(theIndex);
        const zoCString theMimeType = aResources.GetMimeTypeForResourceIndex(i);
        const char* theType = TypeOf(theMimeType.c_str());
        if (!fIsMarked && !theType) { continue; }
        Subtitle& theSubtitle = aSubtitles.Add(aResources.GetSubtitleURI(theIndex).c_str());
        theSubtitle.mSources.emplace_back(fIsMarked ? kSubtitleMarker : theMimeType.c_str());
        theSubtitle.mResource = i;
        theSubtitle.mLabel = aResources.GetSubtitleLabel(theIndex).c_str();
        theSubtitle.mType = aResources.GetSubtitleType(theIndex).c_str();
        if (theSubtitle.mType.empty() && theType) { theSubtitle.mType = theType; }
    }
}

// The prefix is the document's choice.
static bool IsLocalName(std::string_view aName, std::string_view aLocalName)
{
    return EqualsIgnoringCase(aName.substr(aName.find(':') + 1), aLocalName);
}

static Subtitle* AddPair(const zoCString& aName, const zoCString& aURI, Subtitles& aSubtitles)
{
    if (aURI.IsEmpty()) { return nullptr; }
    Subtitle& theSubtitle = aSubtitles.FindOrAdd(aURI.c_str());
    std::vector<std::string>& theSources = theSubtitle.mSources;
    if (theSources.empty() || theSources.back() != aName.c_str()) { theSources.emplace_back(aName.c_str()); }
    return &theSubtitle;
}

static void AddPairsOfEntry(CDSEntryInfo& anEntry, Subtitles& aSubtitles)
{
    const int theCount = anEntry.GetExtraInfoCount();
    for (int i = 0; i < theCount; ++i)
    {
        const zoCString theName = anEntry.GetExtraInfoName(i);
        if (!IsLocalName(theName.c_str(), "CaptionInfoEx") && !IsLocalName(theName.c_str(), "CaptionInfo"))
        {
            continue;
        }
        AddPair(theName, anEntry.GetExtraInfoData(i), aSubtitles);
    }
}

static void AddPairsOfResource(CDSResourceInfo& aResources, uint32 aResource, Subtitles& aSubtitles)
{
    Subtitle* theSubtitle = nullptr;
    std::string theType;
    const int theCount = aResources.GetExtraInfoCount(aResource);
    for (int i = 0; i < theCount; ++i)
    {
        const zoCString theName = aResources.GetExtraInfoName(aResource, i);
        const bool fIsType = IsLocalName(theName.c_str(), "subtitleFileType");
        if (!fIsType && !IsLocalName(theName.c_str(), "subtitleFileUri")) { continue; }
        const zoCString theValue = aResources.GetExtraInfoData(aResource, i);
        if (fIsType) { theType = theValue.c_str(); }
        else { theSubtitle = AddPair(theName, theValue, aSubtitles); }
    }
    if (theSubtitle && theSubtitle->mType.empty()) { theSubtitle->mType = theType; }
}

static void PrintSources(const Subtitle& aSubtitle, Output& anOutput)
{
    std::string theText;
    for (const std::string& theSource : aSubtitle.mSources)
        theText += (theText.empty() ? "" : ", ") + theSource;
    anOutput.InText("from", theText);
    Output::List theList(anOutput, "", "from");
    for (const std::string& theSource : aSubtitle.mSources)
        theList.Add(theSource);
}

void PrintSubtitles(MediaObject& anObject, Output& anOutput)
{
    Subtitles theSubtitles;
    AddResources(anObject.mResources, theSubtitles);
    AddPairsOfEntry(anObject.mEntry, theSubtitles);
    const uint32 theCount = anObject.mResources.GetResourceCount();
    for (uint32 i = 0; i < theCount; ++i)
        AddPairsOfResource(anObject.mResources, i, theSubtitles);

    Output::List theList(anOutput, "subtitle", "subtitles");
    for (const Subtitle& theSubtitle : theSubtitles.GetAll())
    {
        theList.Next();
        PrintSources(theSubtitle, anOutput);
        if (theSubtitle.mResource) { anOutput.Number("resource", *theSubtitle.mResource); }
        anOutput.FactIfAny("label", theSubtitle.mLabel);
        anOutput.FactIfAny("type", theSubtitle.mType);
        anOutput.FactIfAny("uri", theSubtitle.mURI);
    }
}
