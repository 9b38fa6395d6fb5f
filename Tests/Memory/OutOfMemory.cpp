#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/CDSResourceReport.h>
#include <UPnP/Utilities/UPnPCPUtility.h>
#include <UPnP/Utilities/UPnPConfig.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <UPnP/Utilities/UPnPHook.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <zoLog/Log.h>
#include <zoltTools/zoMemory.h>

// Fails each allocation of each scenario in turn, in a process of its own, which must end in the failure handler, and
// there before anything else is allocated. Every malloc, calloc and realloc of the process comes here.

extern "C" void* __libc_malloc(size_t aSize);
extern "C" void* __libc_calloc(size_t aCount, size_t aSize);
extern "C" void* __libc_realloc(void* aBlock, size_t aSize);

static size_t sAllocations = 0;
static size_t sFailing = SIZE_MAX; // the number of the first allocation that fails; all after it fail, too

static bool HasMemory() { return ++sAllocations < sFailing; }

extern "C" void* malloc(size_t aSize) { return HasMemory() ? __libc_malloc(aSize) : nullptr; }
extern "C" void* calloc(size_t aCount, size_t aSize) { return HasMemory() ? __libc_calloc(aCount, aSize) : nullptr; }
extern "C" void* realloc(void* aBlock, size_t aSize) { return HasMemory() ? __libc_realloc(aBlock, aSize) : nullptr; }

namespace
{

const int kHandled = 42;

void ParseWriteAndChoose()
{
    char theDocument[] =
        "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
        "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\"><item id=\"1\" parentID=\"0\" restricted=\"1\">"
        "<dc:title>Caf&#xE9; &amp; more</dc:title><upnp:class>object.item.imageItem.photo</upnp:class><dc:x>y</dc:x>"
        "<upnp:albumArtURI dlna:profileID=\"JPEG_TN\">http://192.0.2.1/a.jpg</upnp:albumArtURI>"
        "<res protocolInfo=\"http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_LRG\" size=\"9\" a:b=\"c\">http://192.0.2.1/p?lock</res>"
        "<res protocolInfo=\"http-get:*: image/png :*\">http://192.0.2.1/p.png</res></item></DIDL-Lite>";
    char* theEntryBlock = nullptr;
    char* theResourceBlock = nullptr;
    int theType = 0;
    UPnPDIDL_ParseElements(theDocument, &theEntryBlock, &theResourceBlock, &theType);
    zoPackedData_t* theEntryRecord = zoPackedData_NewData(theEntryBlock);
    CDSEntryInfo theEntry(theEntryRecord);
    CDSResourceInfo theResources(theResourceBlock, theEntryRecord);
    delete theEntry.Clone();
    delete theResources.Clone();
    free(UPnPDIDL_Get(theEntryRecord, theResources.mPackedData, 1, 1, nullptr));
    free(UPnPDIDL_GetForCreateItemRequest("1", "t", 0, "object.item", "http-get:*:image/png:*", 1, 0xFFFFFFFF));

    zoDLNAProtocolInfoList_t* theList =
        zoDLNAProtocolInfoList_New("http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_LRG,*:*:*:*", 0);
    int theConfidence = 0;
    uint32 theHost = 1;
    theResources.GetBestResourceIndex(theList, &theConfidence, "http", &theHost, 1);
    zoCString theProfile;
    theResources.GetThumbnailURI("JPEG_TN", &theProfile, nullptr, 0);
    UPnPCPUtility::GetURIUnlocked(theResources.GetInfoAsCString(0, kCDSResourceInfo_URI), "1234");
    zoDLNAProtocolInfoList_Delete(theList);
}

// A text of pieces with growing numbers.
std::string Repeat(const char* aBegin, const char* anEnd, int aCount)
{
    std::string theText;
    for (int i = 0; i < aCount; ++i)
        theText += aBegin + std::to_string(i) + anEnd;
    return theText;
}

// More than fits the memory that records, lists and sets begin with. The texts are made once: making them may not fail.
void ReadLargeObjects()
{
    static const std::string kResource = "<res protocolInfo=\"http-get:*:a/b;p=1:*ZOLT.COM_SUB\" " +
                                         Repeat(" a:x", "=\"&lt;\" b:x=\"\"", 20) + ">" + std::string(2000, 'u') +
                                         "</res>";
    static const std::string kDocument =
        "<DIDL-Lite xmlns:b=\"u\" xmlns:a=\"u\"" + Repeat(" xmlns:n", "=\",&#x41;\"", 40) + "><container><item>" +
        Repeat("<a:b>&amp;", "</a:b>", 60) + kResource + kResource + Repeat("<res>", "</res>", 10) +
        Repeat("<upnp:createClass>", "</upnp:createClass>", 3) + "</item></container></DIDL-Lite>";
    static const std::string kList = Repeat("http-get:*:a/b;p=", ":DLNA.ORG_PN=X,", 20) + "*:*:a/*:*";
    UPnPDIDLDocument* theObjects = UPnPDIDLDocument_New(kDocument.c_str(), "http://192.0.2.1/");
    for (int theType = kDIDLItemType_Item; theType != kDIDLItemType_None;)
    {
        char* theBlocks[2];
        UPnPDIDLDocument_NextObject(theObjects, &theBlocks[0], &theBlocks[1], &theType);
        zoPackedData_t* theEntry = zoPackedData_NewData(theBlocks[0]);
        zoPackedData_t* theResources = zoPackedData_NewData(theBlocks[1]);
        free(UPnPDIDL_GetSendable(theEntry, theResources, 1, 1, nullptr, nullptr));
        free(UPnPDIDL_GetForCreateObjectResponse(theEntry, "u", "i", nullptr, "1", "0", 1, 1));
        CDSResourceInfo_GetResourceIndexForSubtitle(theResources, 1);
        zoPackedData_AddData(theResources, 0x1000, "value", 6);
        zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(kList.c_str(), 0);
        free(CDSResourceInfo_NewReport(theResources, theSink, kCDSResourceChoice_PreferOriginals, "rtsp,http,*",
                                       nullptr, 0, nullptr));
        free(CDSResourceInfo_FetchThumbnailURI(theResources, theEntry, "JPEG_SM,PNG_TN", nullptr, 0, nullptr));
        zoDLNAProtocolInfoList_Delete(theSink);
        theResources = CDSResourceInfo_ReduceSize(theResources, 1000, "u", 1);
        zoPackedData_Free(theResources);
        zoPackedData_Free(theEntry);
    }
    UPnPDIDLDocument_Delete(theObjects);
}

void FindErrors()
{
    static const std::string kDeep = Repeat("<a b", "=\"&#65;\" xmlns:a=\"u\"><c></c>", 20);
    uint32 theLine, theColumn;
    free(UPnPUtil_FindXMLError(kDeep.data(), kDeep.size(), &theLine, &theColumn));
    const char kBadFlag[] = "<item restricted=\"x\"/>";
    free(UPnPDIDL_FindError(kBadFlag, strlen(kBadFlag), &theLine, &theColumn));
    UPnPDIDL_IsSendable(kDeep.data(), kDeep.size());
}

void AskTheHook()
{
    char theServiceName[] = "AVTransport";
    char theTemplate[] = "<scpd>%@%@</scpd>";
    char theFirst[] = "<first/>";
    char theSecond[] = "<second/>";
    char theFirstName[] = ":seekmodelist";
    char theSecondName[] = "";
    char* theParts[] = { theFirst, theSecond, nullptr };
    char* theNames[] = { theFirstName, theSecondName };
    size_t theLengths[] = { strlen(theFirst), strlen(theSecond) };
    char* theDescription = nullptr;
    size_t theLength = 0;
    UPnPHook* theHook = UPnPHook_New_WithParent(UPnPHook_New());
    UPnPHook_SetProperty(theHook, kUPnPHookProperty_PlayModeList, "SHUFFLE");
    ILibWebServer_Session* theSession = ILibWebServerSession_New("Xbox/2.0");
    UPnPHook_Hook(theHook, kUPnPHook_GetServiceDescription, theSession, theServiceName, theTemplate,
                  strlen(theTemplate), theParts, theNames, theLengths, &theDescription, &theLength);
    free(theDescription);
    ILibWebServerSession_Delete(theSession);
    UPnPHook_Delete(theHook);
}

void KeepAGroup()
{
    zoConfigFile* theFile = zoConfigFile_New(nullptr);
    UPnPGroupInfo* theGroup = UPnPGroupInfo_New(
        "MultiRoom", "<groupInfo friendlyName=\"a&amp;b\" UDN=\"u\" volume=\"20\"><master groupedFriendlyName=\"m\" "
                     "groupedUDN=\"g\"/><slave groupedFriendlyName=\"s\" groupedUDN=\"h\" x=\"y\"/></groupInfo>");
    UPnPGroupInfo_Store(theGroup, theFile);
    free(UPnPGroupInfo_GetXML(theGroup));
    zoArray_Delete(UPnPGroupInfo_GetGroupedUDNs(theGroup));
    UPnPGroupInfo_Delete(theGroup);
    UPnPGroupInfo_Delete(UPnPGroupInfo_NewConfig(theFile, "MultiRoom"));
    UPnPGroupCapabilities_Delete(
        UPnPGroupCapabilities_New("<groupCapabilities><a mode=\"master\"/></groupCapabilities>"));
    zoConfigFile_Delete(theFile);
}

void Configure()
{
    zoConfigFile* theFile = zoConfigFile_New(nullptr);
    zoConfigFile_SetString(theFile, "Stack", "IP", "a,b");
    zoConfigFile_SetString(theFile, "WebServer", kKey_WebServer_DoNotChunk, "%HOSTNAME%, x");
    zoSocketPolicy* thePolicy = UPnPConfig_CreateSocketPolicy(theFile, "Stack");
    ILibSSDPConfig* theSSDP = UPnPConfig_CreateSSDPConfig();
    UPnPConfig_FetchSSDPConfig(theSSDP, theFile, "SSDP", thePolicy);
    UPnPConfig_FreeSSDPConfig(theSSDP);
    free(theSSDP);
    ILibWebServerConfig* theServer = UPnPConfig_CreateWebServerConfig();
    UPnPConfig_FetchWebServerConfig(theServer, theFile, "WebServer", thePolicy, nullptr, nullptr, nullptr);
    UPnPConfig_FreeWebServerConfig(theServer);
    free(theServer);
    zoConfigFile_Delete(theFile);
}

const struct
{
    const char* mName;
    void (*mRun)();
} kScenarios[] = {
    { "parse, write and choose", ParseWriteAndChoose },
    { "large objects", ReadLargeObjects },
    { "errors", FindErrors },
    { "hook", AskTheHook },
    { "group", KeepAGroup },
    { "configuration", Configure },
};

void EndHandled(size_t) { _exit(sAllocations == sFailing ? kHandled : EXIT_FAILURE); }

// Whether the process ends in the handler when the allocation fails that has this number in the scenario.
bool EndsInHandler(void (*aRun)(), size_t aNumber)
{
    const pid_t theChild = fork();
    if (theChild == 0)
    {
        zoMemory_SetFailureHandler(EndHandled);
        sFailing = sAllocations + aNumber;
        aRun();
        _exit(EXIT_SUCCESS);
    }
    int theStatus = 0;
    return waitpid(theChild, &theStatus, 0) == theChild && WIFEXITED(theStatus) && WEXITSTATUS(theStatus) == kHandled;
}

} // namespace

int main()
{
    _zoLog_Level = ZOLOGLEVEL_NONE; // a message for which there is no memory is dropped
    int theResult = EXIT_SUCCESS;
    for (const auto& theScenario : kScenarios)
    {
        theScenario.mRun(); // what the C library keeps from the first time on is there
        const size_t theBefore = sAllocations;
        theScenario.mRun();
        const size_t theCount = sAllocations - theBefore;
        printf("%s: %zu allocations\n", theScenario.mName, theCount);
        if (theCount < 5) { theResult = EXIT_FAILURE; }
        for (size_t i = 1; i <= theCount; ++i)
        {
            if (EndsInHandler(theScenario.mRun, i)) { continue; }
            printf("  number %zu does not end in the failure handler\n", i);
            theResult = EXIT_FAILURE;
        }
    }
    return theResult;
}
