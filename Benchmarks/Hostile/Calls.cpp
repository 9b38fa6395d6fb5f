#include "Shapes.h"

#include <UPnP/Stack/ILibChain.h>
#include <UPnP/Stack/ILibHTTP.h>
#include <UPnP/Stack/ILibXML.h>
#include <UPnP/Utilities/UPnPConfig.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <UPnP/Utilities/UPnPHook.h>
#include <UPnP/Utilities/UPnPTool.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoConfigFile.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoIPAddressMonitor.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoURI.h>

// Calls that the other files do not make: uploads, lists that change, groups and records of a configuration, all
// questions to a hook, addresses, timers, words and numbers.

namespace
{

void Add(Shapes& aShapes, const std::string& aName, const std::function<void(size_t, Meter&)>& aRun)
{
    aShapes.push_back({ aName, kMaxPeakOfObject, kMaxPeakOfObject, aRun });
}

// A shape of two texts, each half of the bytes.
void AddPair(Shapes& aShapes, const std::string& aName, const std::string& aFirst, const std::string& aSecond,
             void (*anOperation)(const std::string& aFirst, const std::string& aSecond))
{
    Add(aShapes, aName,
        [=](size_t aSize, Meter& aMeter)
        {
        const std::string theFirst = Fill(aFirst, aSize / 2);
        const std::string theSecond = Fill(aSecond, aSize / 2);
        aMeter.Run(theFirst.size() + theSecond.size(), [&] { anOperation(theFirst, theSecond); });
    });
}

void UseNumber(uint64 aNumber) { Use(reinterpret_cast<const void*>(static_cast<uintptr_t>(aNumber))); }

// ---- Uploads ----

void AddUploads(Shapes& aShapes)
{
    for (const std::string theText : { "&", "\xC3\xA9", ";", "a;", "a,1;", ",;" })
    {
        AddPair(aShapes, "upload: requests and answer of " + theText, theText, theText,
                [](const std::string& aFirst, const std::string& aSecond)
                {
            const char* const theFirst = aFirst.c_str();
            const char* const theSecond = aSecond.c_str();
            free(UPnPDIDL_GetForCreateContainerRequest(theFirst, theFirst, 1, theFirst, theSecond));
            free(UPnPDIDL_GetForCreateItemRequest(theFirst, theFirst, 1, theFirst, theSecond, 1, 1));
            zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(aSecond.data(), aSecond.size(), 0);
            free(UPnPDIDL_GetForCreateObjectResponse(nullptr, theFirst, theSecond, theInfo, theFirst, theSecond, 1, 1));
            zoDLNAProtocolInfo_Delete(theInfo);
        });
    }
}

// ---- Protocol infos ----

void AddProtocolInfos(Shapes& aShapes)
{
    for (const std::string theParameter : { ";a#=1", ";a", ";", " ;", ";DLNA.ORG_PN=" })
    {
        AddPair(aShapes, "protocol: two with parameters " + theParameter, theParameter, theParameter,
                [](const std::string& aFirst, const std::string& aSecond)
                {
            const std::string theFirst = "http-get:*:a/b" + aFirst + ":" + aSecond;
            const std::string theSecond = "http-get:*:a/b" + aSecond + ":" + aFirst;
            zoDLNAProtocolInfo_t* theInfos[] = { zoDLNAProtocolInfo_New(theFirst.data(), theFirst.size(), 0),
                                                 zoDLNAProtocolInfo_New(theSecond.data(), theSecond.size(), 0) };
            UseNumber(static_cast<uint64>(zoDLNAProtocolInfo_Match(theInfos[0], theInfos[1], 0)));
            UseNumber(static_cast<uint64>(zoDLNAProtocolInfo_MatchText(theFirst.data(), theFirst.size(), "a", 1)));
            free(zoDLNAProtocolInfo_GetStr(theInfos[0]));
            for (zoDLNAProtocolInfo_t* theInfo : theInfos)
                zoDLNAProtocolInfo_Delete(theInfo);
        });
    }
    for (const std::string thePart : { ".", "/", "a.mp3/", "%" })
    {
        AddPair(aShapes, "protocol: info of a URI of " + thePart, thePart, "a",
                [](const std::string& aFirst, const std::string& aSecond)
                { zoDLNAProtocolInfo_Delete(zoDLNAProtocolInfo_NewFromURI((aSecond + ":" + aFirst).c_str())); });
    }
    for (const bool fIsBackward : { false, true })
    {
        Add(aShapes, std::string("list: filled and drained") + (fIsBackward ? " from its end" : " in order of schemes"),
            [fIsBackward](size_t aSize, Meter& aMeter)
            {
            const char kInfo[] = "http-get:*:a/b:*";
            const size_t theCount = aSize / sizeof(kInfo);
            aMeter.Run(theCount * sizeof(kInfo),
                       [&]
                       {
                zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New("", 0);
                for (size_t i = 0; i < theCount; ++i)
                {
                    zoDLNAProtocolInfoList_Add(theList, zoDLNAProtocolInfo_New(kInfo, sizeof(kInfo) - 1, 0),
                                               fIsBackward ? 0 : -1);
                }
                for (int i; (i = zoDLNAProtocolInfoList_GetCount(theList)) > 0;)
                {
                    const int theBest = zoDLNAProtocolInfoList_GetBestIndexForScheme(theList, "rtsp,http", "");
                    zoDLNAProtocolInfoList_Remove(theList, fIsBackward ? i - 1 : theBest);
                }
                zoDLNAProtocolInfoList_Delete(theList);
            });
        });
    }
}

// ---- Groups ----

const char kSlave[] = "<slave groupedFriendlyName='n' groupedUDN='uuid:s#'/>";

UPnPGroupInfo* NewGroupOfSlaves(size_t aSize)
{
    const std::string theText = "<groupInfo friendlyName='g' UDN='g'><master groupedFriendlyName='m' groupedUDN='m'/>" +
                                Fill(kSlave, aSize) + "</groupInfo>";
    return UPnPGroupInfo_New("c", theText.c_str());
}

typedef void (*GroupLoop_t)(UPnPGroupInfo* aGroup, size_t aCount);

void AddGroupLoop(Shapes& aShapes, const std::string& aName, GroupLoop_t aLoop)
{
    Add(aShapes, "group: " + aName,
        [aLoop](size_t aSize, Meter& aMeter)
        {
        UPnPGroupInfo* theGroup = NewGroupOfSlaves(aSize);
        aMeter.Run(aSize, [&] { aLoop(theGroup, UPnPGroupInfo_GetSlaveCount(theGroup)); });
        UPnPGroupInfo_Delete(theGroup);
    });
}

void AddGroups(Shapes& aShapes)
{
    AddGroupLoop(aShapes, "slaves removed from the first on",
                 [](UPnPGroupInfo* aGroup, size_t aCount)
                 {
        for (size_t i = 0; i < aCount; ++i)
            UPnPGroupInfo_RemoveSlave(aGroup, UPnPGroupInfo_GetSlaveAt(aGroup, 0)->mGroupedUDN);
    });
    AddGroupLoop(aShapes, "metadata of each slave",
                 [](UPnPGroupInfo* aGroup, size_t aCount)
                 {
        for (size_t i = 0; i < aCount; ++i)
        {
            UPnPGroupSlave* theSlave = UPnPGroupInfo_GetSlaveAt(aGroup, i);
            UPnPGroupMetaData_Set(theSlave->mMetaData, "volume", "1");
            free(UPnPGroupMetaData_GetXML(theSlave->mMetaData));
        }
        zoArray_Delete(UPnPGroupInfo_GetGroupedUDNs(aGroup));
    });
    AddGroupLoop(aShapes, "compared with one whose slaves are in another order",
                 [](UPnPGroupInfo* aGroup, size_t aCount)
                 {
        UPnPGroupInfo* theOther = UPnPGroupInfo_Duplicate(aGroup);
        zoStrReplace(&theOther->mGroupUDN, aGroup->mGroupUDN);
        for (size_t i = 0; i < aCount / 2; ++i)
            std::swap(UPnPGroupInfo_GetSlaveAt(theOther, i)->mGroupedUDN,
                      UPnPGroupInfo_GetSlaveAt(theOther, aCount - 1 - i)->mGroupedUDN);
        UseNumber(static_cast<uint64>(UPnPGroupInfo_SameAs(aGroup, theOther)));
        UPnPGroupInfo_Delete(theOther);
    });
    AddGroupLoop(aShapes, "stored and read back",
                 [](UPnPGroupInfo* aGroup, size_t)
                 {
        zoConfigFile* theFile = zoConfigFile_New(nullptr);
        UPnPGroupInfo_Store(aGroup, theFile);
        UPnPGroupInfo_Delete(UPnPGroupInfo_NewConfig(theFile, "c"));
        zoConfigFile_Delete(theFile);
    });
    Add(aShapes, "group: read from a configuration, metadata of the group",
        [](size_t aSize, Meter& aMeter)
        {
        const std::string theText = "[c]\nGroup.UDN=g\n" + Fill("Group.MetaData#=a#=b\n", aSize);
        aMeter.Run(theText.size(),
                   [&]
                   {
            zoConfigFile* theFile = zoConfigFile_NewFromText(theText.data(), theText.size());
            UPnPGroupInfo* theGroup = UPnPGroupInfo_NewConfig(theFile, "c");
            UPnPGroupInfo* theCopy = UPnPGroupInfo_Duplicate(theGroup);
            UseNumber(static_cast<uint64>(UPnPGroupMetaData_SameAs(theGroup->mGroupMetaData, theCopy->mGroupMetaData)));
            UPnPGroupInfo_Delete(theCopy);
            UPnPGroupInfo_Delete(theGroup);
            zoConfigFile_Delete(theFile);
        });
    });
}

// ---- Configuration ----

void FetchAll(zoConfigFile* aFile, UPnPHook* aHook)
{
    zoSocketPolicy* thePolicy = UPnPConfig_CreateSocketPolicy(aFile, "s");
    ILibWebServerConfig* theServer = UPnPConfig_CreateWebServerConfig();
    UPnPConfig_FetchWebServerConfig(theServer, aFile, "s", thePolicy, aHook, nullptr, nullptr);
    ILibWebServerConfig* theCopy = UPnPConfig_CloneWebServerConfig(theServer);
    UPnPControlPointConfig* theControlPoint = UPnPConfig_CreateControlPointConfig();
    UPnPConfig_FetchControlPointConfig(theControlPoint, aFile, "s", thePolicy, aHook);
    ILibSSDPConfig* theSSDP = UPnPConfig_CreateSSDPConfig();
    UPnPConfig_FetchSSDPConfig(theSSDP, aFile, "s", thePolicy);
    UPnPConfig_FreeWebServerConfig(theServer);
    UPnPConfig_FreeWebServerConfig(theCopy);
    UPnPConfig_FreeControlPointConfig(theControlPoint);
    UPnPConfig_FreeSSDPConfig(theSSDP);
    for (void* theRecord : { static_cast<void*>(theServer), static_cast<void*>(theCopy),
                             static_cast<void*>(theControlPoint), static_cast<void*>(theSSDP) })
        free(theRecord);
    zoArray_Delete(zoIPAddressMonitor_GetAddresses(thePolicy));
    zoSocketPolicy_Delete(thePolicy);
}

void AddConfigurations(Shapes& aShapes)
{
    for (const std::string theValue : { "a", ",", "eth#,", "%HOSTNAME%", "1" })
    {
        Add(aShapes, "configuration: records with values of " + theValue,
            [=](size_t aSize, Meter& aMeter)
            {
            std::string theText = "[s]\n";
            const char* const kKeys[] = { "UserAgent", "exclude-if", "SessionIdleTimeOut", "DoNotChunk", "UPnPLocal" };
            for (const char* theKey : kKeys)
                theText += std::string(theKey) + "=" + Fill(theValue, aSize / std::size(kKeys)) + "\n";
            UPnPHook* theHook = UPnPHook_New();
            aMeter.Run(theText.size(),
                       [&]
                       {
                zoConfigFile* theFile = zoConfigFile_NewFromText(theText.data(), theText.size());
                FetchAll(theFile, theHook);
                free(UPnPConfig_GetStringWithSubstitution(theFile, "s", "UserAgent", ""));
                zoConfigFile_Delete(theFile);
            });
            UPnPHook_Delete(theHook);
        });
    }
    AddPair(aShapes, "configuration: keys set, listed and copied to a table", "a", "b",
            [](const std::string& aFirst, const std::string&)
            {
        zoConfigFile* theFile = zoConfigFile_New(nullptr);
        zoCustomHashTable* theTable = zoCustomHashTable_New_String_String();
        for (size_t i = 0; i < aFirst.size() / 8; ++i)
            zoConfigFile_SetString(theFile, "s", std::to_string(i).c_str(), "v");
        for (size_t i = 0; i < zoConfigFile_GetKeyCount(theFile, "s"); ++i)
        {
            const char* theKey = zoConfigFile_GetKeyAt(theFile, "s", i);
            UPnPConfig_AddToHashTable(theTable, theKey, theFile, "s", theKey, nullptr, 0);
        }
        zoCustomHashTable_Delete(zoCustomHashTable_Duplicate(theTable));
        zoCustomHashTable_Delete(theTable);
        zoConfigFile_Delete(theFile);
    });
}

// ---- Hooks ----

void AskAll(UPnPHook* aHook, const std::string& anAgent, const std::string& aText)
{
    char* const theAgent = const_cast<char*>(anAgent.c_str());
    char* const theText = const_cast<char*>(aText.c_str());
    for (const int theID : { kUPnPHook_NeedToCheckSortCriteria, kUPnPHook_ByteRateIsBitRate,
                             kUPnPHook_SetResExtraInfoInMetadata, kUPnPHook_GetSupportSearch, kUPnPHook_CheckHTTPChunk,
                             kUPnPHook_GetSupportEvent, kUPnPHook_CDSProvideResSize })
    {
        int theAnswer = 0;
        UPnPHook_Hook(aHook, theID, theAgent, &theAnswer);
    }
    for (const int theID : { kUPnPHook_CheckPlayMode, kUPnPHook_CheckSeekMode })
    {
        char fIsOK = 0;
        UPnPHook_Hook(aHook, theID, theText, &fIsOK);
    }
    char* theID = theText;
    char* theFilter = theText;
    UPnPHook_Hook(aHook, kUPnPHook_ConvertObjectID, theAgent, &theID, &theFilter);
    free(theID);
    free(theFilter);
    char* theClass = nullptr;
    UPnPHook_Hook(aHook, kUPnPHook_AdjustMediaClassName, theAgent, theText, &theClass);
    char* theState = nullptr;
    UPnPHook_Hook(aHook, kUPnPHook_GetInfoDescription, theAgent, &theState);
    free(theState);
    unsigned int theCount = 0;
    UPnPHook_Hook(aHook, kUPnPHook_GetRequestedCount, theAgent, &theCount, theText);
}

// Describes a service whose parts have the name.
void Describe(UPnPHook* aHook, size_t aPartCount, const std::string& aName, size_t aSize, Meter& aMeter)
{
    static char sText[] = "x";
    std::string theTemplate = Fill("%@", 2 * aPartCount) + ">";
    std::vector<char*> theTexts(aPartCount, sText), theNames(aPartCount, const_cast<char*>(aName.c_str()));
    theTexts.push_back(nullptr);
    std::vector<size_t> theLengths(aPartCount, 1);
    aMeter.Run(aSize,
               [&]
               {
        char* theBuffer = nullptr;
        size_t theLength = 0;
        UPnPHook_Hook(aHook, kUPnPHook_GetServiceDescription, static_cast<ILibWebServer_Session*>(nullptr),
                      static_cast<char*>(nullptr), theTemplate.data(), theTemplate.size(), theTexts.data(),
                      theNames.data(), theLengths.data(), &theBuffer, &theLength);
        free(theBuffer);
        UPnPHook_Hook(aHook, kUPnPHook_GetDeviceDescription, static_cast<char*>(nullptr), theTexts.data(),
                      theNames.data(), theLengths.data(), theTemplate.data(), &theBuffer);
        free(theBuffer);
    });
}

void AddHooks(Shapes& aShapes)
{
    for (const std::string theAgent : { "a", "Windows", "Xbox", "9x", "NT/5.1" })
    {
        AddPair(aShapes, "hook: all questions, agent of " + theAgent, theAgent, "a,",
                [](const std::string& aFirst, const std::string& aSecond)
                {
            UPnPHook* theHook = UPnPHook_New();
            AskAll(theHook, aFirst, aSecond);
            AskAll(theHook, "Xbox/ Windows 9x)", aSecond);
            UPnPHook_Delete(theHook);
        });
    }
    AddPair(aShapes, "hook: an agent and one token", "aaaaaaab", "a",
            [](const std::string& aFirst, const std::string& aSecond)
            { UseNumber(static_cast<uint64>(ILibUserAgentHas(aFirst.c_str(), aSecond.c_str(), aSecond.size()))); });
    Add(aShapes, "hook: parts with many names",
        [](size_t aSize, Meter& aMeter)
        {
        UPnPHook* theHook = UPnPHook_New();
        for (int i = 0; i < kUPnPHookFeature_Count; ++i)
            UPnPHook_SetSupportFeature(theHook, i, 1);
        Describe(theHook, 1, Fill(":", aSize), aSize, aMeter);
        UPnPHook_Delete(theHook);
    });
    Add(aShapes, "hook: parents and parts",
        [](size_t aSize, Meter& aMeter)
        {
        UPnPHook* theHook = UPnPHook_New();
        for (size_t i = 0; i < aSize / 2 / sizeof(UPnPHook); ++i)
            theHook = UPnPHook_New_WithParent(theHook);
        Describe(theHook, aSize / 2 / (2 + 3 * sizeof(char*)), ":none", aSize, aMeter);
        UPnPHook_Delete(theHook);
    });
}

// ---- Addresses and timers ----

size_t sAddressCount;

zoArray_t* MakeAddresses(const zoSocketPolicy*)
{
    zoArray_t* theArray = zoArray_New();
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    for (size_t i = 0; i < sAddressCount; ++i)
        zoArray_Append(theArray, zoStrdup(("10." + std::to_string(i * 7919 % sAddressCount)).c_str()));
    return theArray;
}

void AddAddressesAndTimers(Shapes& aShapes)
{
    Add(aShapes, "host: addresses",
        [](size_t aSize, Meter& aMeter)
        {
        sAddressCount = aSize / 16;
        zoIPAddressMonitor_SetSource(MakeAddresses);
        aMeter.Run(aSize,
                   []
                   {
            zoIPAddressMonitor* theMonitor = zoIPAddressMonitor_New(nullptr);
            UseNumber(static_cast<uint64>(zoIPAddressMonitor_IPAddressChanged(theMonitor)));
            zoIPAddressMonitor_Delete(theMonitor);
        });
        zoIPAddressMonitor_SetSource(nullptr);
    });
    Add(aShapes, "host: timers armed, removed and called back",
        [](size_t aSize, Meter& aMeter)
        {
        const size_t theCount = aSize / 64;
        std::vector<char> theData(theCount);
        ILibBaseChain* theChain = ILibChain_New();
        aMeter.Run(theCount * 64,
                   [&]
                   {
            ILibLifeTime* theTimers = ILibChain_GetLifeTime(theChain);
            for (size_t i = 0; i < theCount; ++i)
                ILibLifeTime_AddEx(
                    theTimers, &theData[i], i % 2 == 0 ? 0 : 1000, [](void*) {}, nullptr);
            ILibChain_RunOnce(theChain, 0);
            for (size_t i = 0; i < theCount; ++i)
                ILibLifeTime_Remove(theTimers, &theData[i]);
        });
        ILibChain_Delete(theChain);
    });
}

// ---- Texts ----

void AddTexts(Shapes& aShapes)
{
    AddPair(aShapes, "text: list and separator", "aab", "a",
            [](const std::string& aFirst, const std::string& aSecond)
            {
        UseNumber(static_cast<uint64>(zoCStringParser_ListContains(aFirst.c_str(), aSecond.c_str(), "item")));
        zoCStringParser_Delete(
            zoCStringParser_Tokenize(aFirst.data(), 0, aFirst.size(), aSecond.data(), aSecond.size()));
    });
    for (const std::string theText : { ",", "\\,", "a," })
    {
        AddPair(aShapes, "text: tokens of " + theText, theText, theText,
                [](const std::string& aFirst, const std::string& aSecond)
                {
            zoCStringParser_Delete(zoCStringParser_Tokenize(aFirst.data(), 0, aFirst.size(), ",", 1));
            zoCStringParser_Delete(zoCStringParser_TokenizeEscaped(aSecond.data(), 0, aSecond.size(), ",", 1, '\\'));
            UseNumber(static_cast<uint64>(UPnPUtil_FindAllCommaSeparatedSubStringInArray(aFirst.data(), aFirst.size(),
                                                                                         kUPnPUtil_TrueStringList)));
        });
    }
    for (const std::string theText : { "0", "9", "1:", "1.", ".", "-", "true;" })
    {
        AddPair(aShapes, "text: words and numbers of " + theText, theText, theText,
                [](const std::string& aFirst, const std::string& aSecond)
                {
            int32 theParts[kzoDLNADatePart_Count] = {};
            UseNumber(UPnPUtil_ParseTimeString(aFirst.c_str()));
            UseNumber(UPnPUtil_ParseTimeString(("1." + aFirst + "/1" + aSecond).c_str()));
            UseNumber(UPnPUtil_GetUInt32(aFirst.c_str(), 0));
            UseNumber(static_cast<uint64>(UPnPUtil_IsStrTrue(aFirst.c_str()) + UPnPUtil_IsStrFalse(aFirst.c_str())));
            UseNumber(static_cast<uint64>(UPnPUtil_FindAllCommaSeparatedSubStringInArray(aSecond.data(), aSecond.size(),
                                                                                         kUPnPUtil_TrueStringList)));
            UseNumber(
                static_cast<uint64>(zoConvert_dlnadatestrtodate(("2001-01-01T00:00:00." + aFirst).c_str(), theParts)));
            UseNumber(UPnPTool::HostNameIsIPAddress(aFirst.c_str()));
            UseNumber(zoURI_S_GetHostIP(aFirst.data(), aFirst.size()));
        });
    }
    for (const std::string theAttribute : { " a#='1'", " val=''", " a:val='&amp;'" })
    {
        AddPair(aShapes, "text: event attributes" + theAttribute, theAttribute, theAttribute,
                [](const std::string& aFirst, const std::string& aSecond)
                {
            std::string theText = "<e" + aFirst + "><f" + aSecond + "/></e>";
            ILibXMLNode* theNodes = ILibParseXML(theText.data(), 0, theText.size());
            uint32 theNumber = 0;
            char* theValue = nullptr;
            for (ILibXMLNode* theNode : { theNodes, theNodes->Next })
            {
                UPnPUtil_GetUInt32Attribute(theNode, &theNumber);
                UPnPUtil_GetStrAttribute(theNode, &theValue);
                UPnPUtil_GetTimeAttribute(theNode, &theNumber, 0);
                UPnPUtil_GetTableAttributeIndex(theNode, kUPnPUtil_TrueStringList);
            }
            free(theValue);
            ILibDestructXMLNodeList(theNodes);
        });
    }
    AddPair(aShapes, "text: inner text of each element", "<a>", "</a>",
            [](const std::string& aFirst, const std::string& aSecond)
            {
        std::string theText = aFirst + aSecond;
        ILibXMLNode* theNodes = ILibParseXML(theText.data(), 0, theText.size());
        ILibProcessXMLNodeList(theNodes);
        for (ILibXMLNode* theNode = theNodes; theNode; theNode = theNode->Next)
        {
            char* theStart = nullptr;
            UseNumber(static_cast<uint64>(ILibReadInnerXML(theNode, &theStart)));
        }
        ILibDestructXMLNodeList(theNodes);
    });
    AddPair(aShapes, "text: escaped", "'", "&",
            [](const std::string& aFirst, const std::string& aSecond)
            {
        for (const std::string* theText : { &aFirst, &aSecond })
        {
            char* theTarget = static_cast<char*>(malloc(ILibXmlEscapeLength(theText->c_str()) + 1));
            ILibXmlEscape(theTarget, theText->c_str());
            free(theTarget);
        }
    });
}

} // namespace

void AddCallShapes(Shapes& aShapes)
{
    AddUploads(aShapes);
    AddProtocolInfos(aShapes);
    AddGroups(aShapes);
    AddConfigurations(aShapes);
    AddHooks(aShapes);
    AddAddressesAndTimers(aShapes);
    AddTexts(aShapes);
}
