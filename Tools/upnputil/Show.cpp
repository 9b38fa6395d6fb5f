#include "Document.h"
#include "Input.h"
#include "MediaObject.h"
#include "Progress.h"
#include "Subcommand.h"
#include "Subtitles.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <stdio.h>
#include <string.h>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoURI.h>

static const Usage kUsage = {
    "[OPTION...]",
    "FILE",
    "Prints every field of every object of a DIDL-Lite document, or of the response to a Browse action.\n"
    "FILE holds any number of objects; \"-\" is standard input.\n",
    {
        { "--base", "URL", false, "what relative URIs of resources are resolved against" },
    },
};

namespace
{

enum FieldKind
{
    kText,
    kNumber,  // 0: not set
    kCount,   // 0xFFFFFFFF: not set
    kBitRate, // both: not set
    kTime     // 0: not set
};

// A field of the entry record or of the resource record.
struct Field
{
    uint16 mTag;
    FieldKind mKind;
    const char* mName;
};

struct Flag
{
    uint32 mBit;
    const char* mName;
};

} // namespace

static const Field kEntryFields[] = {
    { kCDSEntryInfo_ItemID, kText, "id" },
    { kCDSEntryInfo_ParentID, kText, "parent id" },
    { kCDSEntryInfo_RefID, kText, "ref id" },
    { kCDSEntryInfo_ItemClassName, kText, "class" },
    { kCDSEntryInfo_Title, kText, "title" },
    { kCDSEntryInfo_Creator, kText, "creator" },
    { kCDSEntryInfo_Date, kText, "date" },
    { kCDSEntryInfo_Genre, kText, "genre" },
    { kCDSEntryInfo_Album, kText, "album" },
    { kCDSEntryInfo_ChannelNr, kNumber, "channel number" },
    { kCDSEntryInfo_ChildCount, kCount, "child count" },
    { kCDSEntryInfo_UpdateID, kNumber, "update id" },
    { kCDSEntryInfo_CreateClass, kText, "create class" },
    { kCDSEntryInfo_StorageMedium, kText, "storage medium" },
    { kCDSEntryInfo_BGMURI, kText, "background music uri" },
    { kCDSEntryInfo_BGMURIProtocolInfo, kText, "background music protocol info" },
};

static const Field kResourceFields[] = {
    { kCDSResourceInfo_URI, kText, "uri" },
    { kCDSResourceInfo_ProtocolInfo, kText, "protocol info" },
    { kCDSResourceInfo_Resolution, kText, "resolution" },
    { kCDSResourceInfo_Duration, kTime, "duration" },
    { kCDSResourceInfo_BitRate, kBitRate, "bit rate" },
    { kCDSResourceInfo_ColorDepth, kNumber, "color depth" },
    { kCDSResourceInfo_Size, kNumber, "size" },
    { kCDSResourceInfo_AudioChannelCount, kNumber, "audio channels" },
    { kCDSResourceInfo_TrackTotal, kNumber, "track total" },
    { kCDSResourceInfo_IFOFileURI, kText, "ifo file uri" },
    { kCDSResourceInfo_ImportURI, kText, "import uri" },
    { kCDSResourceInfo_ResumeUpload, kNumber, "resume upload" },
    { kCDSResourceInfo_UploadedSize, kNumber, "uploaded size" },
    { kCDSResourceInfo_LifeTime, kTime, "lifetime" },
    { kCDSResourceInfo_DTCPUploadInfo, kText, "dtcp upload info" },
};

static const Flag kFlags[] = {
    { kDIDL_Flags_Restricted, "restricted" },
    { kDIDL_Flags_Searchable, "searchable" },
};

static const Flag kManagedFlags[] = {
    { kDLNAManaged_UploadContent, "upload content" },   { kDLNAManaged_CreateChildContainer, "create child container" },
    { kDLNAManaged_DestroyItem, "destroy item" },       { kDLNAManaged_UploadWithDestroy, "upload with destroy" },
    { kDLNAManaged_ChangeMetaData, "change metadata" },
};

static void PrintTime(const char* aName, uint32 aSeconds, Output& anOutput)
{
    char theText[sizeof(kUPnP_UnknownTimeString)];
    UPnPUtil_SetTimeString(theText, aSeconds);
    const bool fIsKnown = aSeconds != kUPnP_UnknownTime;
    anOutput.Fact(aName, theText + (fIsKnown ? " (" + std::to_string(aSeconds) + " s)" : ""), theText);
    if (fIsKnown) { anOutput.InJSON(aName + std::string(" seconds"), aSeconds); }
}

static bool IsSet(FieldKind aKind, uint64 aValue)
{
    if ((aKind == kCount || aKind == kBitRate) && aValue == 0xFFFFFFFFu) { return false; }
    return aKind == kCount || aValue != 0;
}

static void PrintField(const Field& aField, const zoPackedData_t* aRecord, uint32 anEntry, Output& anOutput)
{
    if (aField.mKind == kText)
    {
        const char* theText = zoPackedData_GetData(aRecord, anEntry, aField.mTag, nullptr);
        anOutput.FactIfAny(aField.mName, theText ? theText : "");
        return;
    }
    const uint64 theValue = zoPackedData_GetDataAsUInt64(aRecord, anEntry, aField.mTag);
    if (!IsSet(aField.mKind, theValue)) { return; }
    if (aField.mKind == kTime) { PrintTime(aField.mName, static_cast<uint32>(theValue), anOutput); }
    else { anOutput.Number(aField.mName, theValue); }
}

template <size_t kSize>
static std::string FlagWords(const Flag (&aTable)[kSize], uint32 aFlags)
{
    std::string theWords;
    for (const Flag& theFlag : aTable)
    {
        if (aFlags & theFlag.mBit) { (theWords += theWords.empty() ? "" : ", ") += theFlag.mName; }
    }
    return theWords.empty() ? "none" : theWords;
}

// In JSON, flags are an object with a member for each, and their number.
template <size_t kSize>
static void PrintFlagsOf(const char* aName, const Flag (&aTable)[kSize], uint32 aFlags, const std::string& aNumberText,
                         Output& anOutput)
{
    anOutput.InText(aName, FlagWords(aTable, aFlags) + " (" + aNumberText + ")");
    {
        const Output::Part thePart(anOutput, aName);
        for (const Flag& theFlag : aTable)
            anOutput.InJSON(theFlag.mName, (aFlags & theFlag.mBit) != 0);
    }
    anOutput.InJSON(aName + std::string(" number"), aFlags);
}

static void PrintFlags(CDSEntryInfo& anEntry, Output& anOutput)
{
    const uint32 theFlags = static_cast<uint32>(anEntry.GetInfoAsULong(kCDSEntryInfo_Flags));
    PrintFlagsOf("flags", kFlags, theFlags, std::to_string(theFlags), anOutput);
    const uint32 theManaged = static_cast<uint32>(anEntry.GetInfoAsULong(kCDSEntryInfo_DLNAManaged));
    if (theManaged == 0) { return; }
    char theNumber[sizeof("0x00000000")];
    snprintf(theNumber, sizeof theNumber, "0x%08X", static_cast<unsigned>(theManaged));
    PrintFlagsOf("dlna managed", kManagedFlags, theManaged, theNumber, anOutput);
}

static void PrintAlbumArt(CDSEntryInfo& anEntry, Output& anOutput)
{
    zoArray_t* thePairs =
        zoPackedData_GetDataArray(anEntry.mPackedData, 0, kCDSEntryInfo_AlbumArtURI, zoStringArray_UnFlattenerFunc);
    zoArray_SetFreeFunc(thePairs, zoStringArray_FreeFunc);
    Output::List theList(anOutput, "album art", "albumArts");
    for (size_t i = 0; i + 1 < zoArray_GetCount(thePairs); i += 2)
    {
        theList.Next();
        anOutput.Fact("uri", static_cast<const char*>(zoArray_At(thePairs, i)));
        anOutput.FactIfAny("profile", static_cast<const char*>(zoArray_At(thePairs, i + 1)));
    }
    zoArray_Delete(thePairs);
}

// A declaration as it was in the document: the list protects commas with a backslash.
static std::string Declaration(std::string_view aText)
{
    std::string theText;
    for (size_t i = 0; i < aText.size(); ++i)
    {
        if (aText.substr(i, 2) != "\\,") { theText += aText[i]; }
    }
    return theText;
}

static void PrintNamespaces(CDSEntryInfo& anEntry, Output& anOutput)
{
    Output::List theList(anOutput, "namespace", "namespaces");
    const zoCString theText = anEntry.GetInfoAsCString(kCDSEntryInfo_XMLNS);
    if (theText.IsEmpty()) { return; }
    zoCStringParser_TokenList* theTokens =
        zoCStringParser_TokenizeEscaped(theText.c_str(), 0, theText.length(), ",", 1, '\\');
    for (const zoCStringParser_Token* theToken = theTokens->mFirstToken; theToken; theToken = theToken->mNextToken)
        theList.Add(Declaration({ theToken->mData, theToken->mDataLength }));
    zoCStringParser_Delete(theTokens);
}

static void PrintEntry(CDSEntryInfo& anEntry, Output& anOutput)
{
    for (const Field& theField : kEntryFields)
        PrintField(theField, anEntry.mPackedData, 0, anOutput);
    PrintFlags(anEntry, anOutput);
    PrintAlbumArt(anEntry, anOutput);
    PrintNamespaces(anEntry, anOutput);
    Output::List thePairs(anOutput, "extra", "extras");
    const int theCount = anEntry.GetExtraInfoCount();
    for (int i = 0; i < theCount; ++i)
        thePairs.AddPair(anEntry.GetExtraInfoName(i).c_str(), anEntry.GetExtraInfoData(i).c_str());
}

static void PrintResource(CDSResourceInfo& aResources, uint32 anIndex, Output& anOutput)
{
    for (const Field& theField : kResourceFields)
        PrintField(theField, aResources.mPackedData, anIndex, anOutput);
    Output::List thePairs(anOutput, "extra", "extras");
    const int theCount = aResources.GetExtraInfoCount(anIndex);
    for (int i = 0; i < theCount; ++i)
    {
        thePairs.AddPair(aResources.GetExtraInfoName(anIndex, i).c_str(),
                         aResources.GetExtraInfoData(anIndex, i).c_str());
    }
}

static void PrintResources(CDSResourceInfo& aResources, Output& anOutput)
{
    const uint32 theCount = aResources.GetResourceCount();
    anOutput.InText("resources", std::to_string(theCount));
    Output::List theList(anOutput, "resource", "resources");
    for (uint32 i = 0; i < theCount; ++i)
    {
        theList.Next();
        PrintResource(aResources, i, anOutput);
    }
}

static void PrintObject(MediaObject& anObject, Output& anOutput)
{
    PrintEntry(anObject.mEntry, anOutput);
    PrintResources(anObject.mResources, anOutput);
    PrintSubtitles(anObject, anOutput);
}

static bool IsAbsoluteURL(const char* aURL)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(aURL);
    const bool fIsAbsolute = theURI && theURI->mScheme && *theURI->mScheme;
    zoURI_Delete(theURI);
    return fIsAbsolute;
}

static int Show(const Arguments& anArguments, Output& anOutput)
{
    const char* theBaseURL = anArguments.Get("--base");
    if (theBaseURL && !IsAbsoluteURL(theBaseURL)) { return anArguments.BadUsage("--base needs an absolute URL"); }

    std::vector<char> theText;
    if (!ReadInput(anArguments.Operand(), theText)) { return kExit_Bad; }
    const std::string theName = InputName(anArguments.Operand());
    Document theDocument(std::move(theText), theName, theBaseURL);
    if (!theDocument.IsWellFormed()) { return Fail(theDocument.DescribeError()); }
    Progress theProgress("objects");
    InvalidObjects theInvalid;
    size_t theCount = 0;
    {
        Output::List theObjects(anOutput, "object", "objects", Output::List::kForm_Lines);
        while (theDocument.HasNext())
        {
            const DocumentObject theObject = theDocument.TakeNext();
            theObjects.Next();
            theInvalid.PrintHead(theObject, anOutput);
            if (theObject.mRecords) { PrintObject(*theObject.mRecords, anOutput); }
            theProgress.Step();
        }
        theCount = theObjects.GetCount();
    }
    if (theCount == 0) { return FailToFind(theName + ": no object"); }
    anOutput.InText("objects", std::to_string(theCount));
    return theInvalid.Report(theDocument, kExit_Done);
}

const Subcommand kShow = { "show", "print every field of every object of a DIDL-Lite document", &kUsage, Show };
