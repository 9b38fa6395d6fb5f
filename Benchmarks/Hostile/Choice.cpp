#include "Shapes.h"

#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/CDSResourceReport.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <zoltTools/zoDLNAProtocolInfoList.h>

// Lists against resources: half of the bytes are the list's, half the resources', unless a shape says otherwise.

namespace
{

typedef std::function<std::string(size_t aSize)> Text;

struct Resource
{
    std::string mURI;
    std::string mProtocolInfo;
};

// A record of the same resource over and over, and its size.
zoPackedData_t* NewRecord(const Resource& aResource, size_t aSize, size_t* aBytes)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    for (size_t i = 0; *aBytes = zoPackedData_GetMemoryUsage(theRecord), i == 0 || *aBytes < aSize; ++i)
    {
        const std::string theNumber = std::to_string(i);
        const auto Add = [&](uint16 aTag, std::string aText)
        {
            const size_t theMark = aText.find('#');
            if (theMark != aText.npos) { aText.replace(theMark, 1, theNumber); }
            zoPackedData_AddData(theRecord, aTag, aText.c_str(), aText.size() + 1);
        };
        zoPackedData_AddNewEntry(theRecord);
        Add(kCDSResourceInfo_URI, aResource.mURI);
        Add(kCDSResourceInfo_ProtocolInfo, aResource.mProtocolInfo);
    }
    return theRecord;
}

std::string Parameters(const char* aName, size_t aCount)
{
    std::string theText;
    for (size_t i = 0; i < aCount; ++i)
        theText += ";" + std::string(aName) + std::to_string(i) + "=1";
    return theText;
}

std::string ListOf(const std::string& anElement, size_t aSize)
{
    std::string theText = Fill(anElement + ",", aSize);
    theText.pop_back();
    return theText;
}

struct Choice
{
    std::string mName;
    Resource mResource;
    Text mList;
    std::string mSchemeOrder;
};

void Choose(const Choice& aChoice, size_t aSize, Meter& aMeter)
{
    size_t theBytes;
    zoPackedData_t* theRecord = NewRecord(aChoice.mResource, aSize / 2, &theBytes);
    const std::string theList = aChoice.mList(aSize / 2);
    const zoCString theOrder(aChoice.mSchemeOrder.c_str());
    aMeter.Run(theBytes + theList.size(),
               [&]
               {
        zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(theList.c_str(), 0);
        int theConfidence;
        CDSResourceInfo::GetBestResourceIndex(theSink, theRecord, &theConfidence, theOrder, nullptr, 0);
        zoDLNAProtocolInfoList_Delete(theSink);
        CDSResourceInfo::GetBestResourceIndexFromStr(theList.c_str(), theRecord, &theConfidence, theOrder, nullptr, 0,
                                                     true);
    });
    zoPackedData_Free(theRecord);
}

// The same choice, explained for each resource.
void Explain(const Choice& aChoice, size_t aSize, Meter& aMeter)
{
    size_t theBytes;
    zoPackedData_t* theRecord = NewRecord(aChoice.mResource, aSize / 2, &theBytes);
    const std::string theList = aChoice.mList(aSize / 2);
    aMeter.Run(theBytes + theList.size(),
               [&]
               {
        zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(theList.c_str(), 0);
        free(CDSResourceInfo_NewReport(theRecord, theSink, kCDSResourceChoice_PreferOriginals,
                                       aChoice.mSchemeOrder.c_str(), nullptr, 0, nullptr));
        zoDLNAProtocolInfoList_Delete(theSink);
    });
    zoPackedData_Free(theRecord);
}

// Texts of eight letters "^" and "~", which differ in one bit: many hashes can't tell them apart.
std::string SimilarTypes(size_t aCount)
{
    std::string theText;
    for (size_t i = 0; i < aCount; ++i)
    {
        theText += i ? "," : "";
        theText += "http-get:*:a/" + std::string(100, 'x');
        for (size_t theBit = 0; theBit < 11; ++theBit)
            theText += (i >> theBit & 1) ? '^' : '~';
        theText += ":*";
    }
    return theText;
}

// Album art and resources against a list of profiles.
void ChooseThumbnail(const Resource& aResource, const std::string& aProfile, bool afIsArt, size_t aSize, Meter& aMeter)
{
    size_t theBytes;
    zoPackedData_t* theRecord = NewRecord(aResource, afIsArt ? 1 : aSize / 2, &theBytes);
    zoPackedData_t* theEntry = zoPackedData_New(1);
    zoPackedData_AddNewEntry(theEntry);
    zoArray_t* theArt = zoArray_New();
    zoArray_SetFreeFunc(theArt, zoStringArray_FreeFunc);
    for (size_t i = 0; afIsArt && i < aSize / 2; i += 40)
    {
        zoArray_Append(theArt, strdup(("http://192.0.2.1/" + std::to_string(i)).c_str()));
        zoArray_Append(theArt, strdup(("PROFILE_" + std::to_string(i)).c_str()));
    }
    zoPackedData_AddArray(theEntry, kCDSEntryInfo_AlbumArtURI, theArt, zoStringArray_FlattenerFunc);
    zoArray_Delete(theArt);
    theBytes += zoPackedData_GetMemoryUsage(theEntry);
    {
        CDSResourceInfo theResources(zoPackedData_Duplicate(theRecord), theEntry);
        const std::string theList = ListOf(aProfile, aSize / 2);
        const zoCString theProfiles(theList.c_str());
        aMeter.Run(theBytes + theList.size(),
                   [&]
                   {
            zoCString theProfile;
            theResources.GetThumbnailURI(theProfiles, &theProfile, nullptr, 0);
            theResources.GetAlbumArtURI(theProfiles, &theProfile, nullptr, 0);
        });
    }
    zoPackedData_Free(theEntry);
    zoPackedData_Free(theRecord);
}

void Add(Shapes& aShapes, const std::string& aName, const std::function<void(size_t, Meter&)>& aRun)
{
    aShapes.push_back({ "choice: " + aName, kMaxPeakOfObject, kMaxPeakOfObject, aRun });
}

// A resource with a long URI and a long profile before many with short ones, and as many profiles to look for.
void ChooseBesideLongTexts(size_t aSize, Meter& aMeter)
{
    size_t theBytes;
    const std::string theURI = "http://" + std::string(aSize / 4, 'h');
    const std::string theInfo = "http-get:*:image/jpeg:DLNA.ORG_PN=P5" + std::string(aSize / 4, '0');
    const std::string theProfiles = ListOf("Q#", aSize / 4);
    zoPackedData_t* theOthers =
        NewRecord({ "http://h/#", "http-get:*:image/jpeg:DLNA.ORG_PN=P#" }, aSize / 4, &theBytes);
    zoPackedData_t* theRecord = zoPackedData_New(0);
    zoPackedData_AddNewEntry(theRecord);
    zoPackedData_AddData(theRecord, kCDSResourceInfo_URI, theURI.c_str(), theURI.size() + 1);
    zoPackedData_AddData(theRecord, kCDSResourceInfo_ProtocolInfo, theInfo.c_str(), theInfo.size() + 1);
    for (uint32 i = 0; i < zoPackedData_GetEntryCount(theOthers); ++i)
        zoPackedData_CopyEntry(theOthers, i, theRecord);
    aMeter.Run(zoPackedData_GetMemoryUsage(theRecord) + theProfiles.size(),
               [&]
               {
        CDSResourceInfo_ChooseResource(theRecord, nullptr, kCDSResourceChoice_Default, "*", nullptr, 0, nullptr);
        CDSResourceInfo_GetResourceIndexOfURI(theRecord, (theURI + "/").c_str());
        free(CDSResourceInfo_FetchThumbnailURI(theRecord, nullptr, theProfiles.c_str(), nullptr, 0, nullptr));
    });
    zoPackedData_Free(theOthers);
    zoPackedData_Free(theRecord);
}

// A scheme order of many items, and a list of as many transport protocols.
void ChooseByScheme(const std::string& anItem, const std::string& anElement, size_t aSize, Meter& aMeter)
{
    size_t theBytes;
    zoPackedData_t* theRecord = NewRecord({ "http://10.1.1.2/a", anElement }, aSize / 3, &theBytes);
    const std::string theText = ListOf(anElement, aSize / 3);
    const std::string theOrderText = ListOf(anItem, aSize / 3);
    const zoCString theOrder(theOrderText.c_str());
    aMeter.Run(theBytes + theText.size() + theOrderText.size(),
               [&]
               {
        zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New(theText.c_str(), 0);
        int theConfidence;
        CDSResourceInfo::GetBestResourceIndex(theList, theRecord, &theConfidence, theOrder, nullptr, 0);
        free(zoDLNAProtocolInfoList_GetSupportedProtocolList(theList));
        zoDLNAProtocolInfoList_Delete(theList);
    });
    zoPackedData_Free(theRecord);
}

} // namespace

void AddChoiceShapes(Shapes& aShapes)
{
    const auto Repeat = [](const std::string& anElement)
    { return [anElement](size_t aSize) { return ListOf(anElement, aSize); }; };
    std::vector<Choice> theChoices;
    for (const size_t theCount : { size_t{ 14 }, size_t{ 100 }, size_t{ 1000 } })
    {
        const std::string theElement = "http-get:*:a/b" + Parameters("p", theCount);
        theChoices.push_back({ "list with " + std::to_string(theCount) + " parameters, the last missing",
                               { "u#", theElement + ":*" },
                               Repeat(theElement + ";q=1:*"),
                               "" });
        theChoices.push_back({ "list with " + std::to_string(theCount) + " other parameters",
                               { "u#", "http-get:*:a/b" + Parameters("r", theCount) + ":*" },
                               Repeat(theElement + ":*"),
                               "" });
    }
    for (const char* theParameters : { ";p#=1", ";p=#", ";p=#;q=1", ";q=1;p#=1;r=2" })
    {
        for (const char* theOther : { ";p=x", ";p1=1;q=1;r=2", ";P#=1" })
        {
            theChoices.push_back(
                { std::string("list of one MIME type with") + theParameters + ", resources with" + theOther,
                  { "u#", std::string("http-get:*:a/b") + theOther + ":*" },
                  Repeat(std::string("http-get:*:a/b") + theParameters + ":*"),
                  "" });
        }
    }
    theChoices.push_back({ "list of one MIME type with one of a resource's 500 parameters and another",
                           { "u#", "http-get:*:a/b" + Parameters("p", 500) + ":*" },
                           Repeat("http-get:*:a/b;p#=1;other#=1:*"),
                           "" });
    theChoices.push_back({ "similar MIME types",
                           { "u#", "http-get:*:a/" + std::string(100, 'x') + "^~^~^~^~^~^:*" },
                           [](size_t aSize) { return SimilarTypes(std::min<size_t>(2048, aSize / 130)); },
                           "" });
    theChoices.push_back({ "many MIME types", { "u#", "http-get:*:a/#:*" }, Repeat("http-get:*:a/#:*"), "" });
    theChoices.push_back(
        { "many profiles", { "u#", "http-get:*:a/b:DLNA.ORG_PN=P#" }, Repeat("http-get:*:a/b:DLNA.ORG_PN=Q#"), "" });
    theChoices.push_back({ "many networks", { "u#", "http-get:n#:a/b:*" }, Repeat("http-get:m#:a/b:*"), "" });
    theChoices.push_back({ "many profiles of other networks",
                           { "u#", "http-get:n:a/b:DLNA.ORG_PN=P#" },
                           Repeat("http-get:k:a/b:DLNA.ORG_PN=Q#,http-get:m:a/b:DLNA.ORG_PN=Q#"),
                           "" });
    theChoices.push_back(
        { "any of many transport protocols", { "u#", "*:n#:a/b:*" }, Repeat("*:n:c/d:*,p#:m#:a/b:*"), "" });
    theChoices.push_back({ "any of many transport protocols and a profile",
                           { "", "*:n:a/b:DLNA.ORG_PN=P" },
                           [](size_t aSize) { return "*:m:c/d:*," + ListOf("p#:m:a/b:DLNA.ORG_PN=P", aSize); },
                           "" });
    theChoices.push_back({ "many transport protocols", { "u#", "p#:*:a/b:*" }, Repeat("q#:*:a/b:*"), "q0" });
    theChoices.push_back(
        { "wildcards", { "u#", "http-get:*:a/b:DLNA.ORG_PN=P#" }, Repeat("*:*:c/*:DLNA.ORG_PN=Q#"), "" });
    theChoices.push_back({ "wildcards with two slashes", { "u#", "http-get:*:a/b/d#:*" }, Repeat("*:*:c/d#/*:*"), "" });
    theChoices.push_back(
        { "empty elements", { "u#", "http-get:*:a/b:*" }, [](size_t aSize) { return std::string(aSize, ','); }, "" });
    theChoices.push_back({ "empty protocol infos", { "http://h/u#.mp3", "" }, Repeat("http-get:*:a/b:*"), "" });
    theChoices.push_back(
        { "escaped commas", { "u#", "http-get:*:a/b:*" }, [](size_t aSize) { return Fill("\\,", aSize); }, "" });
    for (const Choice& theChoice : theChoices)
    {
        Add(aShapes, theChoice.mName, [theChoice](size_t aSize, Meter& aMeter) { Choose(theChoice, aSize, aMeter); });
        Add(aShapes, theChoice.mName + ", explained",
            [theChoice](size_t aSize, Meter& aMeter) { Explain(theChoice, aSize, aMeter); });
    }

    const Resource kThumbnail = { "http://192.0.2.1/#", "http-get:*:image/jpeg:DLNA.ORG_PN=P#" };
    for (const char* theProfile : { "Q#", "Q_#", "P#", "JPEG_TN", "P", "" })
    {
        for (const bool fIsArt : { false, true })
        {
            Add(aShapes, std::string(fIsArt ? "album art" : "thumbnails") + ", profiles " + theProfile,
                [=](size_t aSize, Meter& aMeter) { ChooseThumbnail(kThumbnail, theProfile, fIsArt, aSize, aMeter); });
        }
    }
    Add(aShapes, "a long URI and a long profile among short ones", ChooseBesideLongTexts);
    for (const auto& [theItem, theElement] : { std::pair("s#", "p#:*:a/b:*"), std::pair("p#", "p#:*:a/b:*"),
                                               std::pair("http", "http-#:*:a/b:*"), std::pair("a", "b:*:a/b:*") })
    {
        Add(aShapes, std::string("scheme order of ") + theItem + ", list of " + theElement,
            [theItem = theItem, theElement = theElement](size_t aSize, Meter& aMeter)
            { ChooseByScheme(theItem, theElement, aSize, aMeter); });
    }
}
