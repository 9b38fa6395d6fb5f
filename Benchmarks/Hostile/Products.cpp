#include "Shapes.h"
#include "Support/ParsedObject.h"

#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/CDSResourceReport.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <zoltTools/zoConfigFile.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoMemory.h>

// Pairs of inputs whose sizes a simple implementation multiplies: each shape makes both large.

namespace
{

void Add(Shapes& aShapes, const std::string& aName, const std::function<void(size_t, Meter&)>& aRun)
{
    aShapes.push_back({ aName, kMaxPeakOfObject, kMaxPeakOfObject, aRun });
}

// ---- Records ----

std::string Document(const std::string& anAttributes, const std::string& aContent)
{
    return "<DIDL-Lite" + anAttributes + "><item>" + aContent + "</item></DIDL-Lite>";
}

// Adds pairs to the last entry of a record, whose pairs begin at a tag.
void AddPairs(zoPackedData_t* aRecord, uint32 aFirstTag, uint32 aCount)
{
    const uint32 theEntry = zoPackedData_GetEntryCount(aRecord) - 1;
    uint32 theTag = aFirstTag + zoPackedData_CountTagsFrom(aRecord, theEntry, static_cast<uint16>(aFirstTag));
    for (uint32 i = 0; i < 2 * aCount && theTag < 0xFFFF; ++i)
        AddText(aRecord, static_cast<uint16>(theTag++), "a:b");
}

// Reads each pair of the last resource, counted by its tags and in the order of storage.
void ReadPairs(zoPackedData_t* aResources)
{
    const uint32 theResource = zoPackedData_GetEntryCount(aResources) - 1;
    CDSResourceInfo theResources(zoPackedData_Duplicate(aResources), nullptr);
    zoCString theName, theData;
    for (int i = 0; i < theResources.GetExtraInfoCount(theResource); ++i)
        theResources.GetExtraInfo(theResource, i, theName, theData);
    for (int i = 0; i < CDSResourceInfo_GetExtraInfoCount(aResources, theResource); ++i)
        Use(CDSResourceInfo_GetExtraInfoName(aResources, theResource, i));
}

// A resource of pairs, a value of another field after a part of them.
zoPackedData_t* NewResource(size_t aValueCount, size_t aFieldAfter)
{
    zoPackedData_t* theRecord = zoPackedData_New(1);
    zoPackedData_AddNewEntry(theRecord);
    for (size_t i = 0; i < aValueCount; ++i)
    {
        if (i == aFieldAfter) { zoPackedData_AddData(theRecord, kCDSResourceInfo_URI, nullptr, 0); }
        AddText(theRecord, static_cast<uint16>(kCDSResourceInfo_Count + i), "1234567890");
    }
    return theRecord;
}

void AddRecords(Shapes& aShapes)
{
    for (const uint32 theAdded : { 1u, 100u })
    {
        Add(aShapes, "record: pairs of a resource after " + std::to_string(theAdded) + " were added",
            [theAdded](size_t aSize, Meter& aMeter)
            {
            const ParsedObject theRecords(
                Document("", "<res" + Fill(" abcdefgh:#='12345678'", aSize / 2) + ">u</res>"));
            AddPairs(theRecords.mResources, kCDSResourceInfo_Count, theAdded);
            aMeter.Run(theRecords.Size(), [&] { ReadPairs(theRecords.mResources); });
        });
    }
    for (const size_t thePart : { size_t{ 0 }, size_t{ 1 }, size_t{ 2 } })
    {
        const char* const kPlaces[] = { "before", "after", "among" };
        Add(aShapes, std::string("record: pairs of a resource, a field ") + kPlaces[thePart] + " them",
            [thePart](size_t aSize, Meter& aMeter)
            {
            const size_t theCount = std::min<size_t>(aSize / 16, 0xFFE0);
            zoPackedData_t* theRecord = NewResource(theCount, thePart == 0 ? 0 : theCount / thePart);
            aMeter.Run(zoPackedData_GetMemoryUsage(theRecord), [&] { ReadPairs(theRecord); });
            zoPackedData_Free(theRecord);
        });
    }
    Add(aShapes, "record: subtitles one by one after a pair was added",
        [](size_t aSize, Meter& aMeter)
        {
        const char kSubtitle[] = "<res protocolInfo='http-get:*:text/srt:ZOLT.COM_SUB=1'>u</res>";
        const ParsedObject theRecords(Document("", Fill(kSubtitle, aSize)));
        aMeter.Run(theRecords.Size(),
                   [&]
                   {
            const uint32 theCount = CDSResourceInfo_GetSubtitleCount(theRecords.mResources);
            AddPairs(theRecords.mResources, kCDSResourceInfo_Count, 1);
            for (uint32 i = 0; i < theCount; ++i)
                Use(CDSResourceInfo_GetInfoAsStr(
                    theRecords.mResources,
                    static_cast<uint32>(CDSResourceInfo_GetResourceIndexForSubtitle(theRecords.mResources, i)),
                    kCDSResourceInfo_URI));
        });
    });
}

// ---- Texts that are sent, and errors ----

void AddSent(Shapes& aShapes, const std::string& aName, const std::function<std::string(size_t)>& aMake)
{
    Add(aShapes, "sent: " + aName,
        [aMake](size_t aSize, Meter& aMeter)
        {
        const ParsedObject theRecords(aMake(aSize));
        aMeter.Run(theRecords.Size(),
                   [&]
                   {
            UPnPDIDLRepairs_t theRepairs;
            free(UPnPDIDL_GetSendable(theRecords.mEntry, theRecords.mResources, 1, 1, nullptr, &theRepairs));
        });
    });
}

// A namespace list that no parser makes.
void AddSentList(Shapes& aShapes, const std::string& aDeclaration)
{
    Add(aShapes, "sent: a list of " + aDeclaration + " and pairs",
        [aDeclaration](size_t aSize, Meter& aMeter)
        {
        zoPackedData_t* theEntry = zoPackedData_New(1);
        zoPackedData_AddNewEntry(theEntry);
        AddText(theEntry, kCDSEntryInfo_XMLNS, Fill(aDeclaration, aSize / 2));
        for (uint32 i = 0; i < std::min<size_t>(aSize / 32, 32000); ++i)
        {
            AddText(theEntry, static_cast<uint16>(kCDSEntryInfo_Count + 2 * i), "a" + std::to_string(i) + ":b");
            AddText(theEntry, static_cast<uint16>(kCDSEntryInfo_Count + 2 * i + 1), "c");
        }
        aMeter.Run(zoPackedData_GetMemoryUsage(theEntry),
                   [&] { free(UPnPDIDL_GetSendable(theEntry, nullptr, 1, 1, nullptr, nullptr)); });
        zoPackedData_Free(theEntry);
    });
}

void AddSendables(Shapes& aShapes)
{
    const std::string kTwo = " xmlns:a='urn:u' xmlns:b='urn:u'";
    AddSent(aShapes, "pairs of one undeclared prefix",
            [](size_t aSize) { return Fill("<item>", 1) + Fill("<a:b#/>", aSize) + "</item>"; });
    AddSent(aShapes, "pairs of many undeclared prefixes",
            [](size_t aSize) { return Document("", Fill("<a#:b/>", aSize)); });
    AddSent(aShapes, "pairs of a long undeclared prefix",
            [](size_t aSize)
            {
        const size_t theLength = std::min<size_t>(500, static_cast<size_t>(std::sqrt(static_cast<double>(aSize))));
        return Document(Fill(" xmlns:" + std::string(theLength, 'a') + "#='urn:u'", aSize / 2),
                        Fill("<" + std::string(theLength, 'a') + ":b/>", aSize / 2));
    });
    AddSent(aShapes, "pairs of many declared prefixes",
            [](size_t aSize) { return Document(Fill(" xmlns:a#='urn:u'", aSize / 2), Fill("<a#:b/>", aSize / 2)); });
    AddSent(aShapes, "prefixes of one long namespace",
            [](size_t aSize)
            {
        const std::string theURI(static_cast<size_t>(std::sqrt(static_cast<double>(aSize))), 'u');
        return Document(Fill(" xmlns:a#='urn:" + theURI + "'", aSize), "<res>u</res>");
    });
    AddSent(aShapes, "a resource's attributes of two prefixes of one namespace",
            [=](size_t aSize) { return Document(kTwo, "<res" + Fill(" a:c#='' b:c#=''", aSize) + ">u</res>"); });
    AddSent(aShapes, "a resource's attributes of many prefixes of one namespace",
            [](size_t aSize) {
        return Document(Fill(" xmlns:a#='urn:u'", aSize / 2), "<res" + Fill(" a#:c=''", aSize / 2) + ">u</res>");
    });
    AddSent(aShapes, "a resource's attributes of many undeclared prefixes",
            [](size_t aSize) { return Document("", "<res" + Fill(" a#:c=''", aSize) + ">u</res>"); });
    for (const size_t theShare : { size_t{ 2 }, size_t{ 256 } })
    {
        AddSent(aShapes, "resources of two prefixes of one namespace, list of 1/" + std::to_string(theShare),
                [=](size_t aSize)
                {
            return Document(kTwo + Fill(" xmlns:c#='urn:u'", aSize / theShare),
                            Fill("<res a:c='' b:c=''>u</res>", aSize - aSize / theShare));
        });
    }
    for (const char* theDeclaration :
         { "xmlns:a#=\"urn:u\",", "xmlns:a#=\"urn:u,", "xmlns:a#=\"urn:u\"", "xmlns:a#=\"urn:u\"\\,", ",", "a#=\"\",",
           "xmlns:a=\"urn:u\" xmlns:a#=\"urn:&amp;\"," })
        AddSentList(aShapes, theDeclaration);
}

void AddErrors(Shapes& aShapes)
{
    const auto Find = [&aShapes](const std::string& aName, const std::function<std::string(size_t)>& aMake)
    {
        Add(aShapes, "checked: " + aName,
            [aMake](size_t aSize, Meter& aMeter)
            {
            const std::string theText = aMake(aSize);
            aMeter.Run(theText.size(),
                       [&]
                       {
                uint32 theLine, theColumn;
                free(UPnPUtil_FindXMLError(theText.data(), theText.size(), &theLine, &theColumn));
                free(UPnPDIDL_FindError(theText.data(), theText.size(), &theLine, &theColumn));
                Use(reinterpret_cast<void*>(static_cast<uintptr_t>(theLine + theColumn)));
            });
        });
    };
    Find("an error after many lines", [](size_t aSize) { return "<a>" + std::string(aSize, '\n') + "</b>"; });
    Find("an error after many bytes of UTF-8", [](size_t aSize) { return "<a>" + Fill("\xC3\xA9", aSize) + "</b>"; });
    Find("an error at the depth of the document", [](size_t aSize) { return Fill("<a>", aSize) + "</b>"; });
    Find("an error past its depth",
         [](size_t aSize) { return Fill("<a>", aSize * 3 / 7) + Fill("</a>", aSize * 4 / 7) + "</b>"; });
    Find("an error in the last of many attributes",
         [](size_t aSize) { return "<a" + Fill(" b#='c'", aSize) + " d=e/>"; });
    Find("an invalid flag after many objects",
         [](size_t aSize) { return "<DIDL-Lite>" + Fill("<item/>", aSize) + "<item restricted='x'/></DIDL-Lite>"; });
    Find("an invalid flag at the depth of objects",
         [](size_t aSize)
         {
        const size_t theCount = aSize / 23;
        return Fill("<container>", theCount * 11) + "<item searchable='x'/>" + Fill("</container>", theCount * 12);
    });
    Find("flags of one object", [](size_t aSize) { return "<item" + Fill(" restricted='&#x31;'", aSize) + "/>"; });
    Find("many roots", [](size_t aSize) { return Fill("<DIDL-Lite xmlns:a='u' xmlns:b='v'/>", aSize); });
}

// ---- Choices ----

// Resources, and album art, on many hosts, with more targets than a program has. None shares an octet with them.
void AddTargets(Shapes& aShapes)
{
    const auto AddHosts = [&aShapes](const std::string& aName, bool afIsArt, auto aChoose)
    {
        Add(aShapes, "choice: " + aName,
            [=](size_t aSize, Meter& aMeter)
            {
            zoPackedData_t* theEntry = zoPackedData_New(1);
            zoPackedData_t* theResources = zoPackedData_New(0);
            zoArray_t* theArt = zoArray_New();
            zoArray_SetFreeFunc(theArt, zoStringArray_FreeFunc);
            zoPackedData_AddNewEntry(theEntry);
            for (uint32 i = 0; i < aSize / 40; ++i)
            {
                const std::string theURI =
                    "http://10." + std::to_string(i >> 8 & 0xFF) + '.' + std::to_string(i & 0xFF) + ".1/a";
                zoArray_Append(theArt, zoStrdup(theURI.c_str()));
                zoArray_Append(theArt, zoStrdup("P"));
                if (afIsArt) { continue; }
                zoPackedData_AddNewEntry(theResources);
                AddText(theResources, kCDSResourceInfo_URI, theURI);
                AddText(theResources, kCDSResourceInfo_ProtocolInfo, "http-get:*:image/jpeg:*");
            }
            if (afIsArt)
            {
                zoPackedData_AddArray(theEntry, kCDSEntryInfo_AlbumArtURI, theArt, zoStringArray_FlattenerFunc);
            }
            std::vector<uint32> theTargets(aSize / 8);
            for (size_t i = 0; i < theTargets.size(); ++i)
                theTargets[i] = static_cast<uint32>(i * 2654435761u) | 0x80;
            const size_t theBytes = zoPackedData_GetMemoryUsage(theEntry) + zoPackedData_GetMemoryUsage(theResources);
            aMeter.Run(theBytes + theTargets.size() * sizeof(uint32),
                       [&] { aChoose(theEntry, theResources, theTargets); });
            zoArray_Delete(theArt);
            zoPackedData_Free(theEntry);
            zoPackedData_Free(theResources);
        });
    };
    typedef std::vector<uint32> Targets;
    const auto Count = [](const Targets& aTargets) { return static_cast<uint32>(aTargets.size()); };
    AddHosts("many hosts and targets", false,
             [=](zoPackedData_t*, zoPackedData_t* aResources, const Targets& aTargets)
             {
        CDSResourceInfo_ChooseResource(aResources, nullptr, kCDSResourceChoice_Default, "*", aTargets.data(),
                                       Count(aTargets), nullptr);
    });
    AddHosts("many hosts and targets, explained", false,
             [=](zoPackedData_t*, zoPackedData_t* aResources, const Targets& aTargets)
             {
        free(CDSResourceInfo_NewReport(aResources, nullptr, kCDSResourceChoice_Default, "*", aTargets.data(),
                                       Count(aTargets), nullptr));
    });
    AddHosts("thumbnails on many hosts and targets", false,
             [=](zoPackedData_t* anEntry, zoPackedData_t* aResources, const Targets& aTargets)
             {
        free(CDSResourceInfo_FetchThumbnailURI(aResources, anEntry, "JPEG_TN", aTargets.data(), Count(aTargets),
                                               nullptr));
    });
    AddHosts("album art on many hosts and targets", true,
             [=](zoPackedData_t* anEntry, zoPackedData_t*, const Targets& aTargets) {
        free(CDSResourceInfo_FetchAlbumArtURI(anEntry, "JPEG_TN", aTargets.data(), Count(aTargets), nullptr));
    });
}

// A list whose elements share most parameters, while each has one of the resources' and one that they lack; and
// resources with all but those. aShared grows with the root of the size.
void ChooseByParameters(size_t aLackingPerElement, size_t aSize, Meter& aMeter)
{
    const size_t theCount = static_cast<size_t>(std::sqrt(static_cast<double>(aSize) / 10));
    std::string theShared;
    for (size_t i = 0; i < theCount; ++i)
        theShared += ";c" + std::to_string(i);
    std::string theList, theOwn;
    for (size_t i = 0; i < std::min<size_t>(theCount, 2048); ++i)
    {
        theOwn += ";q" + std::to_string(i);
        theList += ",http-get:*:a/b" + theShared + ";q" + std::to_string(i);
        for (size_t k = 0; k < aLackingPerElement; ++k)
            theList += ";d" + std::to_string(i * aLackingPerElement + k);
        theList += ":*";
    }
    zoPackedData_t* theRecord = zoPackedData_New(0);
    while (zoPackedData_GetMemoryUsage(theRecord) < aSize / 2)
    {
        zoPackedData_AddNewEntry(theRecord);
        AddText(theRecord, kCDSResourceInfo_URI, "u");
        AddText(theRecord, kCDSResourceInfo_ProtocolInfo, "http-get:*:a/b" + theShared + theOwn + ":*");
    }
    aMeter.Run(theList.size() + zoPackedData_GetMemoryUsage(theRecord),
               [&]
               {
        zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(theList.c_str() + 1, 0);
        CDSResourceInfo_ChooseResource(theRecord, theSink, kCDSResourceChoice_Default, "*", nullptr, 0, nullptr);
        zoDLNAProtocolInfoList_Delete(theSink);
    });
    zoPackedData_Free(theRecord);
}

void AddLists(Shapes& aShapes)
{
    for (const size_t theLacking : { size_t{ 1 }, size_t{ 4 } })
    {
        Add(aShapes, "choice: elements that each lack " + std::to_string(theLacking) + " of many parameters",
            [theLacking](size_t aSize, Meter& aMeter) { ChooseByParameters(theLacking, aSize, aMeter); });
    }
    Add(aShapes, "choice: a long list matched in all ways",
        [](size_t aSize, Meter& aMeter)
        {
        const std::string theText = Fill("p#:*:a/b:DLNA.ORG_PN=Q,", 32000);
        const std::string theInfo = "q:*:a/b:DLNA.ORG_PN=Q";
        const size_t theCount = aSize / theInfo.size();
        aMeter.Run(theText.size() + theCount * theInfo.size(),
                   [&]
                   {
            zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(theText.c_str(), 0);
            for (size_t i = 0; i < theCount; ++i)
            {
                zoDLNAProtocolInfo_t* theQuestion = zoDLNAProtocolInfo_New(theInfo.data(), theInfo.size(), 0);
                zoDLNAProtocolInfoList_Match(theSink, theQuestion, static_cast<int>(i % 32));
                zoDLNAProtocolInfo_Delete(theQuestion);
            }
            zoDLNAProtocolInfoList_Delete(theSink);
        });
    });
    for (const bool fIsBackward : { false, true })
    {
        Add(aShapes, std::string("list: drained, each element of another scheme") + (fIsBackward ? ", backward" : ""),
            [fIsBackward](size_t aSize, Meter& aMeter)
            {
            const size_t theCount = 2048;
            std::string theText, theOrder;
            for (size_t i = 0; i < theCount; ++i)
            {
                theText += "s" + std::to_string(i) + ":*:a/b:*,";
                theOrder += "s" + std::to_string(fIsBackward ? theCount - 1 - i : i) + ",";
            }
            theOrder += Fill("t#,", aSize);
            aMeter.Run(theText.size() + theOrder.size(),
                       [&]
                       {
                zoDLNAProtocolInfoList_t* theList = zoDLNAProtocolInfoList_New(theText.c_str(), 0);
                for (int i; (i = zoDLNAProtocolInfoList_GetBestIndexForScheme(theList, theOrder.c_str(), "")) >= 0;)
                    zoDLNAProtocolInfoList_Remove(theList, i);
                zoDLNAProtocolInfoList_Delete(theList);
            });
        });
    }
}

// ---- Long names of what has many parts ----

void AddLongNames(Shapes& aShapes)
{
    Add(aShapes, "configuration: keys of a section with a long name",
        [](size_t aSize, Meter& aMeter)
        {
        const std::string theText = "[" + std::string(aSize / 2, 's') + "]\n" + Fill("k#=v\n", aSize / 2);
        aMeter.Run(theText.size(),
                   [&]
                   {
            zoConfigFile* theFile = zoConfigFile_NewFromText(theText.data(), theText.size());
            const char* theSection = zoConfigFile_GetSectionAt(theFile, 0);
            for (size_t i = 0; i < zoConfigFile_GetKeyCount(theFile, theSection); ++i)
                Use(zoConfigFile_GetString(theFile, theSection, zoConfigFile_GetKeyAt(theFile, theSection, i), ""));
            zoConfigFile_Delete(theFile);
        });
    });
}

} // namespace

void AddProductShapes(Shapes& aShapes)
{
    AddRecords(aShapes);
    AddSendables(aShapes);
    AddErrors(aShapes);
    AddTargets(aShapes);
    AddLists(aShapes);
    AddLongNames(aShapes);
}
