#include "Document.h"
#include "Input.h"
#include "Progress.h"
#include "Subcommand.h"
#include "Subtitles.h"

#include <UPnP/Utilities/CDSResourceReport.h>
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
    "FILE holds DIDL-Lite, or the response to a Browse action; \"-\" is standard input. Of several objects each is looked\n"
    "at. A container without resources gives its metadata.\n",
    {
        { "--object", "N|ID", false, "only this object: its number, from 0 on, or its ID (id=5: the ID \"5\")" },
        { "--sink", "TEXT", false, "the renderer's protocol infos, separated by commas" },
        { "--sink-file", "FILE", false, "a file with them; line ends separate them, too" },
        { "--scheme", "ORDER", false, "transports separated by commas, best first (default: *, any)" },
        { "--target", "IP", true, "IPv4 address of a device that fetches the resource; may repeat" },
        { "--profiles", "LIST", false, "profiles of thumbnails, best first (default: JPEG_TN,PNG_TN)" },
        { "--prefer-original", nullptr, false, "converted resources only when the renderer may play no other" },
        { "--all", nullptr, false, "tell of each resource how well it suits, and why it was not chosen" },
        { "--raw", nullptr, false, "print the metadata as the object has it, too, even if it can't be sent" },
        { "--pin", "CODE", false, "parental code that unlocks the resource's URI" },
    },
};

namespace
{

struct Request
{
    std::unique_ptr<zoDLNAProtocolInfoList_t, decltype(&zoDLNAProtocolInfoList_Delete)> mSinks{
        nullptr, zoDLNAProtocolInfoList_Delete
    };
    const char* mScheme;
    std::vector<uint32> mTargets;
    zoCString mProfiles;
    const char* mPin;
    int mFlags; // kCDSResourceChoice_*
    bool mfAll;
    bool mfRaw;

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
        *aStatus = anArguments.BadUsage("--target " + std::string(theTarget) + " is not an IPv4 address");
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
        *aStatus = anArguments.BadUsage("exactly one of --sink and --sink-file is needed");
        return false;
    }
    if (theSinkFile && strcmp(theSinkFile, "-") == 0 && strcmp(anArguments.Operand(), "-") == 0)
    {
        *aStatus = anArguments.BadUsage("standard input can't be both FILE and the sink file");
        return false;
    }
    if (!ReadTargets(anArguments, aRequest.mTargets, aStatus)) { return false; }
    aRequest.mScheme = anArguments.Get("--scheme");
    aRequest.mProfiles = anArguments.Get("--profiles");
    aRequest.mPin = anArguments.Get("--pin");
    aRequest.mFlags =
        anArguments.Get("--prefer-original") ? kCDSResourceChoice_PreferOriginals : kCDSResourceChoice_Default;
    aRequest.mfAll = anArguments.Get("--all") != nullptr;
    aRequest.mfRaw = anArguments.Get("--raw") != nullptr;
    *aStatus = kExit_Bad;
    std::string theText = theSink ? theSink : "";
    if (theSinkFile && !ReadSinkFile(theSinkFile, theText)) { return false; }
    aRequest.mSinks.reset(zoDLNAProtocolInfoList_New(theText.c_str(), 0));
    return true;
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

static void PrintLock(const zoCString& aURI, const char* aPin, Output& anOutput)
{
    anOutput.YesOrNo("parental lock", UPnPCPUtility::IsURIParentalLocked(aURI));
    if (!aPin) { return; }
    const zoCString theUnlocked = UPnPCPUtility::GetURIUnlocked(aURI, aPin);
    if (theUnlocked != aURI) { anOutput.Fact("unlocked uri", theUnlocked.c_str()); }
}

static const char* ConfidenceText(int aConfidence)
{
    static const char* const kTexts[] = { "will not", "should not", "may", "should" };
    return kTexts[aConfidence];
}

static std::string WithNumber(const char* aText, int aNumber) { return aText + (" (" + std::to_string(aNumber) + ")"); }

static void PrintChoice(CDSResourceInfo& aResources, int aChoice, int aConfidence, Output& anOutput)
{
    if (aChoice < 0) { anOutput.Fact("choice", "none", nullptr); }
    else { anOutput.Number("choice", static_cast<uint64>(aChoice)); }
    const char* theText = ConfidenceText(aConfidence);
    anOutput.Word("confidence", WithNumber(theText, aConfidence), theText, static_cast<uint64>(aConfidence));
    if (aChoice < 0) { return; }
    const uint32 theIndex = static_cast<uint32>(aChoice);
    anOutput.FactIfAny("uri", aResources.GetInfoAsCString(theIndex, kCDSResourceInfo_URI).c_str());
    anOutput.FactIfAny("mime type", aResources.GetMimeTypeForResourceIndex(theIndex).c_str());
    anOutput.FactIfAny("protocol info", aResources.GetInfoAsCString(theIndex, kCDSResourceInfo_ProtocolInfo).c_str());
}

static std::string CountText(uint32 aCount, const char* aThing, const char* aWhat)
{
    if (aCount == 0) { return ""; }
    return ", " + std::to_string(aCount) + " " + aThing + (aCount == 1 ? " " : "s ") + aWhat;
}

static std::string RepairsText(const UPnPDIDLRepairs_t& aRepairs)
{
    std::string theText = CountText(aRepairs.mReplaced, "character", "replaced") +
                          CountText(aRepairs.mPairsLeftOut, "pair", "left out") +
                          CountText(aRepairs.mDeclarationsLeftOut, "declaration", "left out") +
                          CountText(aRepairs.mDeclarationsAdded, "declaration", "added");
    return theText.empty() ? "yes" : "no" + theText;
}

static void PrintRepairs(const UPnPDIDLRepairs_t& aRepairs, Output& anOutput)
{
    const std::string theText = RepairsText(aRepairs);
    anOutput.Fact("sendable", theText, theText == "yes");
    anOutput.InJSON("characters replaced", aRepairs.mReplaced);
    anOutput.InJSON("pairs left out", aRepairs.mPairsLeftOut);
    anOutput.InJSON("declarations left out", aRepairs.mDeclarationsLeftOut);
    anOutput.InJSON("declarations added", aRepairs.mDeclarationsAdded);
}

// Prints what can be sent, and on request what the records say.
static void PrintMetadata(MediaObject& anObject, const zoCString& aURI, const Request& aRequest, Output& anOutput)
{
    typedef std::unique_ptr<char, decltype(&free)> Text;
    zoPackedData_t* theEntry = anObject.mEntry.mPackedData;
    zoPackedData_t* theResources = anObject.mResources.mPackedData;
    UPnPDIDLRepairs_t theRepairs;
    const Text theText(UPnPDIDL_GetSendable(theEntry, theResources, 1, 1, aURI.c_str(), &theRepairs), free);
    PrintRepairs(theRepairs, anOutput);
    anOutput.Fact("didl-lite", theText.get());
    if (!aRequest.mfRaw) { return; }
    const Text theRawText(UPnPDIDL_Get(theEntry, theResources, 1, 1, aURI.c_str()), free);
    anOutput.Fact("raw didl-lite", theRawText.get());
}

static std::string HostText(const CDSResourceReport_t& aReport, bool afHasTargets)
{
    if (aReport.mLocality < 0) { return "host is a name"; }
    if (!afHasTargets) { return "host is an address"; }
    if (aReport.mLocality == 0) { return "far host"; }
    return "near host (" + std::to_string(aReport.mLocality) + " of 4 octets)";
}

// All that is known about how a resource suits, in one line.
static std::string ReportText(const CDSResourceReport_t& aReport, bool afHasTargets)
{
    const bool fIsChosen = aReport.mReason == kCDSResourceReason_Chosen;
    std::string theOutcome =
        fIsChosen ? "chosen" : std::string("not chosen: ") + CDSResourceInfo_GetReasonText(aReport.mReason);
    if (aReport.mStage == kCDSResourceStage_None) { return theOutcome; }
    const std::string theStage = aReport.mfHasProtocolInfo
                                     ? std::string("matches by ") + CDSResourceInfo_GetStageText(aReport.mStage)
                                     : "has no protocol info";
    return theStage + ", " + WithNumber(ConfidenceText(aReport.mConfidence), aReport.mConfidence) +
           (aReport.mfIsConverted ? ", converted, " : ", original, ") + HostText(aReport, afHasTargets) + "; " +
           theOutcome;
}

static void PrintReportInJSON(const CDSResourceReport_t& aReport, bool afHasTargets, Output& anOutput)
{
    anOutput.InJSON("reason", CDSResourceInfo_GetReasonText(aReport.mReason));
    anOutput.InJSON("reason number", static_cast<uint64>(aReport.mReason));
    anOutput.InJSON("stage", CDSResourceInfo_GetStageText(aReport.mStage));
    anOutput.InJSON("stage number", static_cast<uint64>(aReport.mStage));
    anOutput.InJSON("confidence", ConfidenceText(aReport.mConfidence));
    anOutput.InJSON("confidence number", static_cast<uint64>(aReport.mConfidence));
    anOutput.InJSON("converted", aReport.mfIsConverted != 0);
    anOutput.InJSON("has protocol info", aReport.mfHasProtocolInfo != 0);
    anOutput.InJSON("host is address", aReport.mLocality >= 0);
    if (afHasTargets && aReport.mLocality >= 0)
    {
        anOutput.InJSON("octets shared", static_cast<uint64>(aReport.mLocality));
    }
}

static void PrintReports(CDSResourceInfo& aResources, const Request& aRequest, Output& anOutput)
{
    uint32 theCount = 0;
    const std::unique_ptr<CDSResourceReport_t, decltype(&free)> theReports(
        CDSResourceInfo_NewReport(aResources.mPackedData, aRequest.mSinks.get(), aRequest.mFlags, aRequest.mScheme,
                                  aRequest.mTargets.data(), aRequest.TargetCount(), &theCount),
        free);
    const bool fHasTargets = !aRequest.mTargets.empty();
    Output::List theList(anOutput, "", "resources");
    for (uint32 i = 0; i < theCount; ++i)
    {
        const CDSResourceReport_t& theReport = theReports.get()[i];
        anOutput.InText("resource " + std::to_string(i), ReportText(theReport, fHasTargets));
        theList.Next();
        PrintReportInJSON(theReport, fHasTargets, anOutput);
    }
}

// Returns whether something can be done with the object: a resource can be played, or a container browsed.
static bool PrintSelection(const DocumentObject& anObject, Request& aRequest, Output& anOutput)
{
    MediaObject& theRecords = *anObject.mRecords;
    anOutput.FactIfAny("id", theRecords.mEntry.GetInfoAsCString(kCDSEntryInfo_ItemID).c_str());
    anOutput.FactIfAny("class", theRecords.mEntry.GetInfoAsCString(kCDSEntryInfo_ItemClassName).c_str());
    anOutput.FactIfAny("title", theRecords.mEntry.GetInfoAsCString(kCDSEntryInfo_Title).c_str());

    int theConfidence = kRendererPlayConfidence_WillNot;
    const int theChoice = CDSResourceInfo_ChooseResource(theRecords.mResources.mPackedData, aRequest.mSinks.get(),
                                                         aRequest.mFlags, aRequest.mScheme, aRequest.mTargets.data(),
                                                         aRequest.TargetCount(), &theConfidence);
    PrintChoice(theRecords.mResources, theChoice, theConfidence, anOutput);
    if (aRequest.mfAll) { PrintReports(theRecords.mResources, aRequest, anOutput); }
    PrintPictures(theRecords, aRequest, anOutput);
    PrintSubtitles(theRecords, anOutput);
    if (theChoice >= 0)
    {
        const zoCString theURI =
            theRecords.mResources.GetInfoAsCString(static_cast<uint32>(theChoice), kCDSResourceInfo_URI);
        PrintLock(theURI, aRequest.mPin, anOutput);
        PrintMetadata(theRecords, theURI, aRequest, anOutput);
        return true;
    }
    const bool fHasMetadataOnly = anObject.IsContainer() && theRecords.mResources.GetResourceCount() == 0;
    if (fHasMetadataOnly) { PrintMetadata(theRecords, "", aRequest, anOutput); }
    return fHasMetadataOnly;
}

// True if an option asks for the object: by its number in the document, or else by its ID.
static bool IsWanted(const DocumentObject& anObject, const std::string& aWanted)
{
    static const std::string kIDPrefix = "id=";
    const bool fIsNumber = !aWanted.empty() && aWanted.find_first_not_of("0123456789") == std::string::npos;
    if (fIsNumber) { return std::to_string(anObject.mIndex) == aWanted; }
    const bool fHasPrefix = aWanted.compare(0, kIDPrefix.size(), kIDPrefix) == 0;
    return anObject.mRecords && anObject.mRecords->mEntry.GetInfoAsCString(kCDSEntryInfo_ItemID) ==
                                    aWanted.c_str() + (fHasPrefix ? kIDPrefix.size() : 0);
}

// Prints the objects that are asked for, all without aWanted.
static int PrintObjects(Document& aDocument, const char* aWanted, const std::string& aName, Request& aRequest,
                        Output& anOutput)
{
    Progress theProgress("objects");
    InvalidObjects theInvalid;
    bool fIsOneUseful = false;
    DocumentObject theObject = {};
    if (aDocument.HasNext()) { theObject = aDocument.TakeNext(); }
    const bool fIsOne = aWanted || !aDocument.HasNext();
    Output::List theObjects(anOutput, fIsOne ? "" : "object", "objects", Output::List::kForm_Lines);
    while (theObject.mType != kDIDLItemType_None)
    {
        const bool fIsWanted = !aWanted || IsWanted(theObject, aWanted);
        if (fIsWanted)
        {
            theObjects.Next();
            theInvalid.PrintHead(theObject, anOutput);
            fIsOneUseful |= theObject.mRecords && PrintSelection(theObject, aRequest, anOutput);
        }
        if (!aDocument.HasNext() || (aWanted && fIsWanted)) { break; }
        theObject = aDocument.TakeNext();
        theProgress.Step();
    }
    if (theObjects.GetCount() == 0)
    {
        return FailToFind(aName + ": no object" + (aWanted ? " \"" + std::string(aWanted) + "\"" : ""));
    }
    return theInvalid.Report(aDocument, fIsOneUseful ? kExit_Done : kExit_NotFound);
}

static int Select(const Arguments& anArguments, Output& anOutput)
{
    Request theRequest;
    int theStatus = kExit_Done;
    if (!ReadRequest(anArguments, theRequest, &theStatus)) { return theStatus; }
    std::vector<char> theText;
    if (!ReadInput(anArguments.Operand(), theText)) { return kExit_Bad; }
    const std::string theName = InputName(anArguments.Operand());
    Document theDocument(std::move(theText), theName, nullptr);
    if (!theDocument.IsWellFormed()) { return Fail(theDocument.DescribeError()); }
    return PrintObjects(theDocument, anArguments.Get("--object"), theName, theRequest, anOutput);
}

const Subcommand kSelect = { "select", "choose the resource of each object that a renderer plays best", &kUsage,
                             Select };
