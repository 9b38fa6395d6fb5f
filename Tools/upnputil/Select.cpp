#include "Document.h"
#include "Input.h"
#include "MediaObject.h"
#include "Subcommand.h"

#include <UPnP/Utilities/UPnPCPUtility.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <memory>
#include <stdlib.h>
#include <string.h>
#include <zoOS/zoSocket.h>

static const Usage kUsage = {
    "(--sink TEXT | --sink-file FILE) [OPTION...]",
    "FILE",
    "Chooses the resource of an object that a renderer plays best, and prints what is to be known before it is played.\n"
    "FILE holds DIDL-Lite with one object; \"-\" is standard input.\n",
    {
        { "--sink", "TEXT", false, "the renderer's protocol infos, separated by commas" },
        { "--sink-file", "FILE", false, "a file with them; line ends separate them, too" },
        { "--scheme", "ORDER", false, "transports separated by commas, best first (default: *, any)" },
        { "--target", "IP", true, "IPv4 address of a device that fetches the resource; may repeat" },
        { "--profiles", "LIST", false, "profiles of thumbnails, best first (default: JPEG_TN,PNG_TN)" },
        { "--pin", "CODE", false, "parental code that unlocks the resource's URI" },
    },
};

namespace
{

struct Request
{
    std::string mSink;
    zoCString mScheme;
    std::vector<uint32> mTargets;
    zoCString mProfiles;
    const char* mPin;

    uint32 TargetCount() const { return static_cast<uint32>(mTargets.size()); }
};

} // namespace

static bool ReadSinkFile(const char* aPath, std::string& aSink)
{
    std::vector<char> theText;
    if (!ReadInput(aPath, theText)) { return false; }
    for (char& theCharacter : theText)
    {
        if (theCharacter == '\n' || theCharacter == '\r') { theCharacter = ','; }
    }
    aSink = theText.data();
    return true;
}

static bool ReadTargets(const Arguments& anArguments, std::vector<uint32>& aTargets, int* aStatus)
{
    for (const char* theTarget : anArguments.GetAll("--target"))
    {
        aTargets.push_back(zoSocketGetAddressFromDotForm(theTarget));
        if (aTargets.back() != 0) { continue; }
        *aStatus = anArguments.BadUsage("--target " + std::string(theTarget) + " is no IPv4 address");
        return false;
    }
    return true;
}

static bool ReadRequest(const Arguments& anArguments, Request& aRequest, int* aStatus)
{
    const char* theSink = anArguments.Get("--sink");
    const char* theSinkFile = anArguments.Get("--sink-file");
    if (!theSink == !theSinkFile)
    {
        *aStatus = anArguments.BadUsage("one of --sink and --sink-file is needed");
        return false;
    }
    if (theSinkFile && strcmp(theSinkFile, "-") == 0 && strcmp(anArguments.Operand(), "-") == 0)
    {
        *aStatus = anArguments.BadUsage("standard input can't be both FILE and the sink file");
        return false;
    }
    if (!ReadTargets(anArguments, aRequest.mTargets, aStatus)) { return false; }
    aRequest.mScheme = anArguments.Get("--scheme") ? anArguments.Get("--scheme") : "*";
    aRequest.mProfiles = anArguments.Get("--profiles");
    aRequest.mPin = anArguments.Get("--pin");
    *aStatus = kExit_Bad;
    if (theSink) { aRequest.mSink = theSink; }
    return theSink || ReadSinkFile(theSinkFile, aRequest.mSink);
}

static int FailToParse(const std::string& aName, Document& aDocument, int aResult, int aType)
{
    if (aResult == kUPnPError_InvalidXML) { return Fail(aName + ": " + aDocument.GetFault()); }
    if (aType != kDIDLItemType_None) { return Fail(aName + ": more than one object; upnputil show prints them all"); }
    if (aDocument.GetObjects().empty()) { return FailToFind(aName + ": no object"); }
    return Fail(aName + ": \"restricted\" or \"searchable\" is neither true nor false");
}

static std::unique_ptr<MediaObject> ReadObject(const std::string& aPath, int* aStatus)
{
    std::vector<char> theText;
    *aStatus = kExit_Bad;
    if (!ReadInput(aPath, theText)) { return nullptr; }
    Document theDocument(std::move(theText));
    char* theEntry = nullptr;
    char* theResources = nullptr;
    int theType = kDIDLItemType_None;
    const int theResult = UPnPDIDL_ParseElements(theDocument.GetText(), &theEntry, &theResources, &theType);
    if (theResult == kUPnPError_None) { return std::make_unique<MediaObject>(theEntry, theResources); }
    *aStatus = FailToParse(InputName(aPath), theDocument, theResult, theType);
    return nullptr;
}

static void PrintPictures(MediaObject& anObject, Request& aRequest, Output& anOutput)
{
    zoCString theProfile;
    zoCString theURI = anObject.mResources.GetThumbnailURI(aRequest.mProfiles, &theProfile, aRequest.mTargets.data(),
                                                           aRequest.TargetCount());
    anOutput.FactIfAny("thumbnail", theURI.c_str());
    anOutput.FactIfAny("thumbnail profile", theProfile.c_str());
    theURI = anObject.mResources.GetAlbumArtURI(aRequest.mProfiles, &theProfile, aRequest.mTargets.data(),
                                                aRequest.TargetCount());
    anOutput.FactIfAny("album art", theURI.c_str());
    anOutput.FactIfAny("album art profile", theProfile.c_str());
}

static void PrintSubtitles(CDSResourceInfo& aResources, Output& anOutput)
{
    int theSubtitle = 0;
    const int theCount = static_cast<int>(aResources.GetResourceCount());
    for (int i = 0; i < theCount; ++i)
    {
        if (!aResources.IsSubtitle(i)) { continue; }
        anOutput.SetSubject("subtitle " + std::to_string(theSubtitle++) + " ");
        anOutput.FactIfAny("label", aResources.GetSubtitleLabel(i).c_str());
        anOutput.FactIfAny("type", aResources.GetSubtitleType(i).c_str());
        anOutput.FactIfAny("uri", aResources.GetSubtitleURI(i).c_str());
    }
    anOutput.SetSubject("");
}

static void PrintLock(const zoCString& aURI, const char* aPin, Output& anOutput)
{
    anOutput.Fact("parental lock", UPnPCPUtility::IsURIParentalLocked(aURI) ? "yes" : "no");
    if (!aPin) { return; }
    const zoCString theUnlocked = UPnPCPUtility::GetURIUnlocked(aURI, aPin);
    if (theUnlocked != aURI) { anOutput.Fact("unlocked uri", theUnlocked.c_str()); }
}

static void PrintChoice(CDSResourceInfo& aResources, int aChoice, int aConfidence, Output& anOutput)
{
    static const char* const kConfidences[] = { "will not", "should not", "may", "should" };
    anOutput.Fact("choice", aChoice < 0 ? "none" : std::to_string(aChoice));
    anOutput.Fact("confidence", std::string(kConfidences[aConfidence]) + " (" + std::to_string(aConfidence) + ")");
    if (aChoice < 0) { return; }
    const uint32 theIndex = static_cast<uint32>(aChoice);
    anOutput.FactIfAny("uri", aResources.GetInfoAsCString(theIndex, kCDSResourceInfo_URI).c_str());
    anOutput.FactIfAny("mime type", aResources.GetMimeTypeForResourceIndex(theIndex).c_str());
    anOutput.FactIfAny("protocol info", aResources.GetInfoAsCString(theIndex, kCDSResourceInfo_ProtocolInfo).c_str());
}

static void PrintMetadata(MediaObject& anObject, const zoCString& aURI, Output& anOutput)
{
    char* theText = UPnPDIDL_Get(anObject.mEntry.mPackedData, anObject.mResources.mPackedData, 1, 1, aURI.c_str());
    anOutput.Fact("didl-lite", theText);
    free(theText);
}

static int PrintSelection(MediaObject& anObject, Request& aRequest, Output& anOutput)
{
    anOutput.Fact("kind", anObject.GetKind());
    anOutput.FactIfAny("id", anObject.mEntry.GetInfoAsCString(kCDSEntryInfo_ItemID).c_str());
    anOutput.FactIfAny("class", anObject.mEntry.GetInfoAsCString(kCDSEntryInfo_ItemClassName).c_str());
    anOutput.FactIfAny("title", anObject.mEntry.GetInfoAsCString(kCDSEntryInfo_Title).c_str());

    int theConfidence = kRendererPlayConfidence_WillNot;
    const int theChoice =
        anObject.mResources.GetBestResourceIndexFromStr(aRequest.mSink.c_str(), &theConfidence, aRequest.mScheme,
                                                        aRequest.mTargets.data(), aRequest.TargetCount(), false);
    PrintChoice(anObject.mResources, theChoice, theConfidence, anOutput);
    PrintPictures(anObject, aRequest, anOutput);
    PrintSubtitles(anObject.mResources, anOutput);
    if (theChoice < 0) { return kExit_NotFound; }

    const zoCString theURI = anObject.mResources.GetInfoAsCString(static_cast<uint32>(theChoice), kCDSResourceInfo_URI);
    PrintLock(theURI, aRequest.mPin, anOutput);
    PrintMetadata(anObject, theURI, anOutput);
    return kExit_Done;
}

static int Select(const Arguments& anArguments, Output& anOutput)
{
    Request theRequest;
    int theStatus = kExit_Done;
    if (!ReadRequest(anArguments, theRequest, &theStatus)) { return theStatus; }
    const std::unique_ptr<MediaObject> theObject = ReadObject(anArguments.Operand(), &theStatus);
    return theObject ? PrintSelection(*theObject, theRequest, anOutput) : theStatus;
}

const Subcommand kSelect = { "select", "choose the resource of an object that a renderer plays best", &kUsage, Select };
