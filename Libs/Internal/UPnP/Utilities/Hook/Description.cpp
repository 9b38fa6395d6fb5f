#include <UPnP/Utilities/Hook/Description.h>

#include <Shared/Append.h>
#include <Shared/Sizes.h>
#include <UPnP/Utilities/Hook/Features.h>
#include <UPnP/Utilities/Hook/ValueLists.h>
#include <stdlib.h>
#include <string.h>

namespace DeviceHook
{

// ---- Names of parts ----

namespace
{

// The names of the parts that a description includes as they are.
class PartNames
{
public:
    void Add(const char* aName) { mNames[mCount++] = aName; }
    bool AreIn(const char* aPartName) const;

private:
    const char* mNames[kUPnPHookFeature_Count + std::size(kRVUPartNames) + 1]; // ":search" is the one
    size_t mCount = 0;
};

bool BeginsWith(const char* aText, const char* aPrefix)
{
    for (; *aPrefix; ++aText, ++aPrefix)
    {
        if (*aText != *aPrefix) { return false; }
    }
    return true;
}

// True if one of the names is in that of a part. They begin with ':', so that they are looked for only there.
bool ContainsOneOf(const char* aPartName, const char* const* aNames, size_t aCount)
{
    for (const char* theText = aPartName; theText && (theText = strchr(theText, ':')); ++theText)
    {
        for (size_t i = 0; i < aCount; ++i)
        {
            if (BeginsWith(theText, aNames[i])) { return true; }
        }
    }
    return false;
}

bool PartNames::AreIn(const char* aPartName) const { return ContainsOneOf(aPartName, mNames, mCount); }

} // namespace

// ---- Splicing ----

namespace
{

constexpr std::string_view kMarker = "%@";

// What replaces a marker; nothing for a dropped part.
struct Insertion
{
    std::string_view mText;
    const char* mMarker; // its place in the template, once that has been searched
};

// One insertion for each part.
struct Insertions
{
    explicit Insertions(const OptionalParts& aParts)
    {
        while (aParts.mTexts && aParts.mTexts[mCount])
            ++mCount;
        mItems = Shared::NewZeroedArray<Insertion>(mCount);
    }
    ~Insertions() { free(mItems); }
    Insertions(const Insertions&) = delete;
    Insertions& operator=(const Insertions&) = delete;

    Insertion* mItems;
    size_t mCount = 0;
};

} // namespace

// Gives the insertions their places. Returns the number of markers, which may differ from that of the insertions.
static size_t PlaceAtMarkers(std::string_view aTemplate, Insertions* anInsertions)
{
    size_t theCount = 0;
    for (size_t i = 0; (i = aTemplate.find(kMarker, i)) != aTemplate.npos; i += kMarker.size())
    {
        if (theCount < anInsertions->mCount) { anInsertions->mItems[theCount].mMarker = aTemplate.data() + i; }
        ++theCount;
    }
    return theCount;
}

// The template with the insertions, which are all of its markers.
static Description SpliceAll(std::string_view aTemplate, const Insertions& anInsertions)
{
    size_t theLength = aTemplate.size() - anInsertions.mCount * kMarker.size();
    for (size_t i = 0; i < anInsertions.mCount; ++i)
        theLength = Shared::AddSizes(theLength, anInsertions.mItems[i].mText.size());
    char* theText = static_cast<char*>(zoMalloc(Shared::AddSizes(theLength, 1)));
    char* theEnd = theText;
    const char* thePosition = aTemplate.data();
    for (size_t i = 0; i < anInsertions.mCount; ++i)
    {
        const Insertion& theInsertion = anInsertions.mItems[i];
        theEnd = Shared::Append(theEnd, { thePosition, static_cast<size_t>(theInsertion.mMarker - thePosition) });
        theEnd = Shared::Append(theEnd, theInsertion.mText);
        thePosition = theInsertion.mMarker + kMarker.size();
    }
    const char* theTemplateEnd = aTemplate.data() + aTemplate.size();
    theEnd = Shared::Append(theEnd, { thePosition, static_cast<size_t>(theTemplateEnd - thePosition) });
    *theEnd = '\0';
    const bool fEndsElement = theLength > 0 && theEnd[-1] == '>';
    return { theText, theLength, fEndsElement ? kTemplate_Good : kTemplate_NoElementAtEnd };
}

static Description Splice(std::string_view aTemplate, Insertions* anInsertions)
{
    const size_t theMarkerCount = PlaceAtMarkers(aTemplate, anInsertions);
    if (theMarkerCount > anInsertions->mCount) { return { nullptr, 0, kTemplate_MarkerWithoutPart }; }
    if (theMarkerCount < anInsertions->mCount) { return { nullptr, 0, kTemplate_NoElementAtEnd }; }
    return SpliceAll(aTemplate, *anInsertions);
}

// ---- Services ----

namespace
{

// The parts of service descriptions that a hook has for a client.
class AvailableParts
{
public:
    AvailableParts(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession);
    ~AvailableParts();
    AvailableParts(const AvailableParts&) = delete;
    AvailableParts& operator=(const AvailableParts&) = delete;

    std::string_view Choose(const char* aPartName, std::string_view aPart) const;

private:
    PartNames mIncluded;
    struct
    {
        bool mfReplaces; // the parts with its name; they are dropped when it has no text
        char* mText;     // owned; NULL without values
        size_t mLength;
    } mLists[kValueListCount] = {};
};

} // namespace

AvailableParts::AvailableParts(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession)
{
    for (size_t i = 0; i < kUPnPHookFeature_Count; ++i)
    {
        if (!kSimpleSupportedFeatureNames[i]) { continue; }
        const bool fIsOn = UPnPHook_SupportFeature(aUPnPHook, static_cast<int>(i)) != 0;
        if (fIsOn != (kInvertedSupportedFeature[i] != 0)) { mIncluded.Add(kSimpleSupportedFeatureNames[i]); }
    }
    int fSupportSearch = 0;
    UPnPHook_Hook(aUPnPHook, kUPnPHook_GetSupportSearch,
                  const_cast<char*>(ILibWebServerSession_GetServerUserAgent(aSession)), &fSupportSearch);
    if (fSupportSearch != 0) { mIncluded.Add(":search"); }
    if (UPnPHook_SupportFeature(aUPnPHook, kUPnPHookFeature_SupportRVU) != 0)
    {
        for (const char* theName : kRVUPartNames)
            mIncluded.Add(theName);
    }
    for (size_t i = 0; i < kValueListCount; ++i)
    {
        char* theValues = kValueLists[i].mNewValues(aUPnPHook);
        if (!theValues) { continue; }
        char* theText = UPnPHook_GetAllowedValueListStr(theValues);
        mLists[i] = { true, theText, theText ? strlen(theText) : 0 };
        free(theValues);
    }
}

AvailableParts::~AvailableParts()
{
    for (auto& theList : mLists)
        free(theList.mText);
}

// Gives what replaces the part's marker: the part, a list, or nothing. The first rule that applies decides.
std::string_view AvailableParts::Choose(const char* aPartName, std::string_view aPart) const
{
    if (mIncluded.AreIn(aPartName)) { return aPart; }
    for (size_t i = 0; i < kValueListCount; ++i)
    {
        if (mLists[i].mfReplaces && ContainsOneOf(aPartName, &kValueLists[i].mPartName, 1))
        {
            return { mLists[i].mText, mLists[i].mLength };
        }
    }
    return {};
}

Description RewriteService(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession, std::string_view aTemplate,
                           const OptionalParts& aParts)
{
    const AvailableParts theAvailable(aUPnPHook, aSession);
    Insertions theInsertions(aParts);
    for (size_t i = 0; i < theInsertions.mCount; ++i)
    {
        theInsertions.mItems[i].mText = theAvailable.Choose(aParts.mNames[i], { aParts.mTexts[i], aParts.mLengths[i] });
    }
    return Splice(aTemplate, &theInsertions);
}

// ---- Devices ----

Description RewriteDevice(UPnPHook* aUPnPHook, std::string_view aTemplate, const OptionalParts& aParts)
{
    PartNames theIncluded;
    for (size_t i = 0; i < kUPnPHookFeature_Count; ++i)
    {
        if (!kDevicePartNames[i]) { continue; }
        if (UPnPHook_SupportFeature(aUPnPHook, static_cast<int>(i)) != 0) { theIncluded.Add(kDevicePartNames[i]); }
    }
    Insertions theInsertions(aParts);
    for (size_t i = 0; i < theInsertions.mCount; ++i)
    {
        if (!theIncluded.AreIn(aParts.mNames[i])) { continue; }
        theInsertions.mItems[i].mText = { aParts.mTexts[i], aParts.mLengths[i] };
    }
    return Splice(aTemplate, &theInsertions);
}

} // namespace DeviceHook
