#include "Names.h"
#include "Subcommand.h"

#include <Shared/Split.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <inttypes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

static const Name kManagedFlags[] = {
    { "None", kDLNAManaged_None },
    { "UploadContent", kDLNAManaged_UploadContent },
    { "CreateChildContainer", kDLNAManaged_CreateChildContainer },
    { "DestroyItem", kDLNAManaged_DestroyItem },
    { "UploadWithDestroy", kDLNAManaged_UploadWithDestroy },
    { "ChangeMetaData", kDLNAManaged_ChangeMetaData },
};

static const Name kUploadFlags[] = {
    { "None", kDTCPUploadInfo_None },
    { "Movable", kDTCPUploadInfo_Movable },
    { "V1SE104", kDTCPUploadInfo_V1SE104 },
    { "CMI", kDTCPUploadInfo_CMI },
};

// Stands for no upload information: the document has no such attribute.
static const uint32 kNoUploadInfo = 0xFFFFFFFF;

static const Option kParent = { "--parent", "ID", false, "ID of the container that the object is created in" };
static const Option kTitle = { "--title", "TEXT", false, "the object's title" };
static const Option kClass = { "--class", "NAME", false, "the object's class" };
static const Option kManaged = { "--flags", "FLAGS", false, "what is to be allowed (dlnaManaged; default: None)" };
static const Option kUploadInfo = { "--dtcp", "FLAGS", false,
                                    "DTCP upload information (default: FFFFFFFF, no attribute)" };

static std::string FlagsHelp(const char* anOption, const Names& aNames)
{
    return std::string("FLAGS of ") + anOption +
           " are hexadecimal numbers or names, separated by commas. The names are\n" + aNames.List() + ".\n";
}

static const Usage kContainerUsage = {
    "[OPTION...]",
    nullptr,
    "Prints the Elements document by which a control point asks a media server to create a container.\n"
    "What is not given is left empty. LIST names the classes of objects that may be created in it, separated by \";\";\n"
    "\",1\" after a class includes those derived from it.\n\n" +
        FlagsHelp("--flags", kManagedFlags),
    { kParent, kTitle, kClass, kManaged, { "--create-classes", "LIST", false, "what may be created in it" } },
    false,
};

static const Usage kItemUsage = {
    "[OPTION...]",
    nullptr,
    "Prints the Elements document by which a control point asks a media server to create an item, whose content it will\n"
    "upload then. What is not given is left empty.\n\n" +
        FlagsHelp("--flags", kManagedFlags) + FlagsHelp("--dtcp", kUploadFlags),
    { kParent,
      kTitle,
      kClass,
      kManaged,
      { "--protocol-info", "TEXT", false, "the content's protocol info" },
      { "--length", "BYTES", false, "the content's length (default: 0, unknown)" },
      kUploadInfo },
    false,
};

static const Usage kResponseUsage = {
    "[OPTION...]",
    nullptr,
    "Prints the Result document by which a media server answers such a request. What is not given is left empty. With\n"
    "--import-uri the object is an item; without, it is a container, which has nothing to be uploaded. LIST is as for\n"
    "create container.\n\n" +
        FlagsHelp("--dtcp", kUploadFlags),
    { { "--id", "ID", false, "the ID that the server gave the object" },
      kParent,
      kTitle,
      kClass,
      { "--create-classes", "LIST", false, "what may be created in it" },
      { "--import-uri", "URI", false, "where the content is to be uploaded" },
      { "--import-ifo-uri", "URI", false, "where its IFO file is to be uploaded" },
      { "--protocol-info", "TEXT", false, "the content's protocol info" },
      { "--resume", nullptr, false, "an upload that broke off can be resumed" },
      kUploadInfo },
    false,
};

// Reads one name or number.
static bool ReadFlag(const std::string& aText, const Names& aNames, uint32* aFlag)
{
    const Name* theName = aNames.Find(aText);
    if (theName)
    {
        *aFlag = theName->mValue;
        return true;
    }
    const bool fHasPrefix = aText.compare(0, 2, "0x") == 0 || aText.compare(0, 2, "0X") == 0;
    return zoConvert_strtouint32_base(aText.c_str() + (fHasPrefix ? 2 : 0), aFlag, 16) == kzoConvertError_None;
}

// Leaves aFlags alone when the option isn't given.
static int ReadFlags(const Arguments& anArguments, const char* anOption, const Names& aNames, uint32* aFlags)
{
    const char* theText = anArguments.Get(anOption);
    if (!theText) { return kExit_Done; }
    *aFlags = 0;
    std::string_view theItem;
    for (std::string_view theRest = theText; Shared::NextItem(&theRest, ',', &theItem);)
    {
        uint32 theFlag = 0;
        if (!ReadFlag(std::string(theItem), aNames, &theFlag))
        {
            return anArguments.BadUsage(std::string(anOption) + ": \"" + std::string(theItem) +
                                        "\" is neither a hexadecimal number of 32 bits nor one of " + aNames.List());
        }
        *aFlags |= theFlag;
    }
    return kExit_Done;
}

// The length stays 0 when it isn't given.
static int ReadLength(const Arguments& anArguments, zoFileOffset* aLength)
{
    const char* theText = anArguments.Get("--length");
    if (!theText) { return kExit_Done; }
    zoULongLong theLength = { 0, 0 };
    const bool fIsNumber = zoConvert_strntoULongLong(theText, strlen(theText), &theLength) == kzoConvertError_None;
    if (!fIsNumber || zoULongLong_ToUInt64(&theLength) > INT64_MAX)
    {
        return anArguments.BadUsage("--length \"" + std::string(theText) + "\" is not a number from 0 to " +
                                    std::to_string(INT64_MAX));
    }
    *aLength = static_cast<zoFileOffset>(zoULongLong_ToUInt64(&theLength));
    return kExit_Done;
}

static int PrintDocument(char* aDocument, Output& anOutput)
{
    anOutput.Text(aDocument);
    anOutput.Text("\n");
    free(aDocument);
    return kExit_Done;
}

static int CreateContainer(const Arguments& anArguments, Output& anOutput)
{
    uint32 theFlags = kDLNAManaged_None;
    if (ReadFlags(anArguments, "--flags", kManagedFlags, &theFlags) != kExit_Done) { return kExit_Bad; }
    return PrintDocument(UPnPDIDL_GetForCreateContainerRequest(anArguments.Get("--parent"), anArguments.Get("--title"),
                                                               theFlags, anArguments.Get("--class"),
                                                               anArguments.Get("--create-classes")),
                         anOutput);
}

static int CreateItem(const Arguments& anArguments, Output& anOutput)
{
    uint32 theFlags = kDLNAManaged_None;
    uint32 theUploadInfo = kNoUploadInfo;
    zoFileOffset theLength = 0;
    if (ReadFlags(anArguments, "--flags", kManagedFlags, &theFlags) != kExit_Done ||
        ReadFlags(anArguments, "--dtcp", kUploadFlags, &theUploadInfo) != kExit_Done ||
        ReadLength(anArguments, &theLength) != kExit_Done)
    {
        return kExit_Bad;
    }
    return PrintDocument(UPnPDIDL_GetForCreateItemRequest(anArguments.Get("--parent"), anArguments.Get("--title"),
                                                          theFlags, anArguments.Get("--class"),
                                                          anArguments.Get("--protocol-info"), theLength, theUploadInfo),
                         anOutput);
}

static void AddText(zoPackedData_t* aRecord, uint16 aTag, const char* aText)
{
    if (aText) { zoPackedData_AddData(aRecord, aTag, aText, strlen(aText) + 1); }
}

static int CreateResponse(const Arguments& anArguments, Output& anOutput)
{
    uint32 theUploadInfo = kNoUploadInfo;
    if (ReadFlags(anArguments, "--dtcp", kUploadFlags, &theUploadInfo) != kExit_Done) { return kExit_Bad; }
    zoPackedData_t* theEntry = zoPackedData_New(1);
    zoPackedData_AddNewEntry(theEntry);
    AddText(theEntry, kCDSEntryInfo_Title, anArguments.Get("--title"));
    AddText(theEntry, kCDSEntryInfo_ItemClassName, anArguments.Get("--class"));
    AddText(theEntry, kCDSEntryInfo_CreateClass, anArguments.Get("--create-classes"));
    const char* theInfoText = anArguments.Get("--protocol-info");
    zoDLNAProtocolInfo_t* theInfo = theInfoText ? zoDLNAProtocolInfo_New(theInfoText, strlen(theInfoText), 0) : nullptr;

    char* theDocument = UPnPDIDL_GetForCreateObjectResponse(
        theEntry, anArguments.Get("--import-uri"), anArguments.Get("--import-ifo-uri"), theInfo,
        anArguments.Get("--id"), anArguments.Get("--parent"), anArguments.Get("--resume") != nullptr, theUploadInfo);
    zoDLNAProtocolInfo_Delete(theInfo);
    zoPackedData_Free(theEntry);
    return PrintDocument(theDocument, anOutput);
}

static const Subcommand kDocuments[] = {
    { "container", "the request for a container", &kContainerUsage, CreateContainer },
    { "item", "the request for an item", &kItemUsage, CreateItem },
    { "response", "the answer to either", &kResponseUsage, CreateResponse },
};

const Subcommand kCreate = {
    "create",
    "print a document by which an object is created on a media server",
    nullptr,
    nullptr,
    "a document",
    "",
    { &kDocuments[0], &kDocuments[1], &kDocuments[2] },
};
