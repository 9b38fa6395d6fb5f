#include "Shapes.h"
#include "Support/ParsedObject.h"

#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstdlib>

// The loops that programs write over records, and records that no parser makes.

namespace
{

void Add(Shapes& aShapes, const std::string& aName, const std::function<void(size_t, Meter&)>& aRun)
{
    aShapes.push_back({ "record: " + aName, kMaxPeakOfObject, kMaxPeakOfObject, aRun });
}

typedef std::function<void(CDSEntryInfo& anEntry, CDSResourceInfo& aResources)> Loop;

void AddLoop(Shapes& aShapes, const std::string& aName, const std::string& anAttributes, const std::string& aContent,
             const Loop& aLoop)
{
    Add(aShapes, aName,
        [=](size_t aSize, Meter& aMeter)
        {
        const std::string theContent =
            aContent.empty() ? "<res" + Fill(anAttributes, aSize) + ">u</res>" : Fill(aContent, aSize);
        ParsedObject theRecords("<DIDL-Lite><item>" + theContent + "</item></DIDL-Lite>");
        const size_t theBytes = theRecords.Size();
        CDSResourceInfo theResources(std::exchange(theRecords.mResources.mRecord, nullptr), theRecords.mEntry);
        CDSEntryInfo theEntry(std::exchange(theRecords.mEntry.mRecord, nullptr));
        aMeter.Run(theBytes, [&] { aLoop(theEntry, theResources); });
    });
}

// Reads everything that there is in records.
void Consume(zoPackedData_t* anEntry, zoPackedData_t* aResources)
{
    for (const char* theURI : { static_cast<const char*>(nullptr), "u" })
    {
        free(UPnPDIDL_Get(anEntry, aResources, 1, 1, theURI));
        free(UPnPDIDL_GetSendable(anEntry, aResources, 1, 1, theURI, nullptr));
    }
    free(UPnPDIDL_GetForCreateObjectResponse(anEntry, "u", nullptr, nullptr, "1", "0", 0, 0));
    CDSEntryInfo theEntry(zoPackedData_Duplicate(anEntry));
    for (uint16 theTag = 0; theTag < kCDSEntryInfo_Count; ++theTag)
        theEntry.GetInfoAsCString(theTag);
    zoCString theName, theData;
    for (int i = 0; i < theEntry.GetExtraInfoCount(); ++i)
        theEntry.GetExtraInfo(i, theName, theData);
    CDSResourceInfo theResources(zoPackedData_Duplicate(aResources), anEntry);
    free(CDSResourceInfo_FetchThumbnailURI(aResources, anEntry, "", nullptr, 0, nullptr));
    free(CDSResourceInfo_FetchAlbumArtURI(anEntry, "", nullptr, 0, nullptr));
    int theConfidence;
    theResources.GetBestResourceIndex(nullptr, &theConfidence, "", nullptr, 0);
    theResources.GetThumbnailURI("", &theName, nullptr, 0);
    theResources.GetAlbumArtURI("", &theName, nullptr, 0);
    theResources.GetSubtitleCount();
    theResources.GetResourceIndexOfURI("u");
    theResources.ReduceSize(theResources.GetMemoryUsage() / 2, "u", true);
    delete theResources.Clone();
    delete theEntry.Clone();
}

// A record of like entries, each with like values under the tags from a first one on.
zoPackedData_t* NewRecord(size_t anEntryCount, uint32 aFirstTag, size_t aTagCount, const std::string& aValue)
{
    zoPackedData_t* theRecord = zoPackedData_New(0);
    for (size_t i = 0; i < anEntryCount; ++i)
    {
        zoPackedData_AddNewEntry(theRecord);
        for (size_t k = 0; k < aTagCount && aFirstTag + k <= 0xFFFF; ++k)
        {
            zoPackedData_AddData(theRecord, static_cast<uint16>(aFirstTag + k),
                                 aValue.empty() ? nullptr : aValue.data(), aValue.size());
        }
    }
    return theRecord;
}

void AddBlocks(Shapes& aShapes, const std::string& aName, size_t aTagsPerEntry, uint32 aFirstTag,
               const std::string& aValue)
{
    Add(aShapes, aName,
        [=](size_t aSize, Meter& aMeter)
        {
        const size_t theCount = aSize / 2 / (8 + aValue.size()); // values
        zoPackedData_t* theEntry = NewRecord(1, aFirstTag, std::min<size_t>(theCount, 65000), aValue);
        zoPackedData_t* theResources =
            NewRecord(aTagsPerEntry ? theCount / aTagsPerEntry : 1, aFirstTag,
                      aTagsPerEntry ? aTagsPerEntry : std::min<size_t>(theCount, 65000), aValue);
        const size_t theSize = zoPackedData_GetMemoryUsage(theEntry) + zoPackedData_GetMemoryUsage(theResources);
        char* theBlocks[] = { zoPackedData_TakeData(theEntry), zoPackedData_TakeData(theResources) };
        zoPackedData_Free(theEntry);
        zoPackedData_Free(theResources);
        aMeter.Run(theSize,
                   [&]
                   {
            zoPackedData_t* theRead[] = { zoPackedData_NewData(theBlocks[0]), zoPackedData_NewData(theBlocks[1]) };
            Consume(theRead[0], theRead[1]);
            zoPackedData_Free(theRead[0]);
            zoPackedData_Free(theRead[1]);
        });
    });
}

} // namespace

void AddRecordShapes(Shapes& aShapes)
{
    const auto ReadPairs = [](auto aRead) -> Loop
    {
        return [aRead](CDSEntryInfo& anEntry, CDSResourceInfo& aResources)
        {
            for (int i = 0; i < anEntry.GetExtraInfoCount(); ++i)
                aRead(anEntry, i);
            for (uint32 r = 0; r < aResources.GetResourceCount(); ++r)
            {
                for (int i = 0; i < aResources.GetExtraInfoCount(r); ++i)
                    Use(aResources.GetExtraInfoName(r, i).c_str());
            }
            };
    };
    const Loop kNames = ReadPairs([](CDSEntryInfo& anEntry, int i) { Use(anEntry.GetExtraInfoName(i).c_str()); });
    const Loop kPairs = ReadPairs(
        [](CDSEntryInfo& anEntry, int i)
        {
        zoCString theName, theData;
        anEntry.GetExtraInfo(i, theName, theData);
        Use(theName.c_str());
    });
    AddLoop(aShapes, "pairs of an entry, by the functions for C", "", "<a:b>c</a:b>",
            [](CDSEntryInfo& anEntry, CDSResourceInfo&)
            {
        for (int i = 0; i < CDSEntryInfo_GetExtraInfoCount(anEntry.mPackedData); ++i)
        {
            Use(CDSEntryInfo_GetExtraInfoName(anEntry.mPackedData, i));
            Use(CDSEntryInfo_GetExtraInfoData(anEntry.mPackedData, i));
        }
    });
    AddLoop(aShapes, "fields and subtitles of each resource, by the functions for C", "",
            "<res size='1' protocolInfo='http-get:*:text/srt:ZOLT.COM_SUB=1'>u</res>",
            [](CDSEntryInfo&, CDSResourceInfo& aResources)
            {
        zoPackedData_t* theRecord = aResources.mPackedData;
        for (uint32 i = 0; i < CDSResourceInfo_GetResourceCount(theRecord); ++i)
        {
            Use(CDSResourceInfo_GetInfoAsStr(theRecord, i, kCDSResourceInfo_URI));
            Use(CDSResourceInfo_GetAdditionalInfo(theRecord, i));
            free(CDSResourceInfo_FetchMimeType(theRecord, i));
            const int theSubtitle = CDSResourceInfo_GetResourceIndexForSubtitle(theRecord, i);
            Use(CDSResourceInfo_GetSubtitleLabel(theRecord, static_cast<uint32>(theSubtitle)));
        }
    });
    AddLoop(aShapes, "names of an entry's pairs", "", "<a:b>c</a:b>", kNames);
    AddLoop(aShapes, "pairs of an entry", "", "<a:b/>", kPairs);
    AddLoop(aShapes, "names of a resource's pairs", " a:#='b'", "", kNames);
    AddLoop(aShapes, "data of a resource's pairs", " a:#='b'", "",
            [](CDSEntryInfo&, CDSResourceInfo& aResources)
            {
        for (int i = 0; i < aResources.GetExtraInfoCount(0); ++i)
            Use(aResources.GetExtraInfoData(0, i).c_str());
    });
    AddLoop(aShapes, "a pair by name of each resource", "", "<res a='b' c='d'>u</res>",
            [](CDSEntryInfo&, CDSResourceInfo& aResources)
            {
        for (uint32 i = 0; i < aResources.GetResourceCount(); ++i)
            Use(aResources.GetExtraInfoDataByName(i, "c").c_str());
    });
    const char kSubtitle[] = "<res protocolInfo='http-get:*:text/srt:ZOLT.COM_SUB=1'>u</res>";
    for (const std::string& theContent : { std::string(kSubtitle), "<res>u</res>" + std::string(kSubtitle) })
    {
        AddLoop(aShapes,
                "subtitles one by one" +
                    std::string(theContent == kSubtitle ? ", after adding" : ", every second resource"),
                "", theContent,
                [fIsAddedTo = theContent == kSubtitle](CDSEntryInfo&, CDSResourceInfo& aResources)
                {
            if (fIsAddedTo)
            {
                aResources.GetSubtitleCount();
                zoPackedData_AddData(aResources.mPackedData, 1000, "a", 2);
            }
            for (int i = 0; i < aResources.GetSubtitleCount(); ++i)
            {
                const int theIndex = aResources.GetResourceIndexForSubtitle(i);
                Use(aResources.GetSubtitleLabel(theIndex).c_str());
                Use(aResources.GetSubtitleURI(theIndex).c_str());
            }
        });
    }
    AddLoop(aShapes, "fields of each resource", "", "<res size='1'>u</res>",
            [](CDSEntryInfo&, CDSResourceInfo& aResources)
            {
        for (uint32 i = 0; i < aResources.GetResourceCount(); ++i)
        {
            Use(aResources.GetInfoAsCString(i, kCDSResourceInfo_URI).c_str());
            Use(aResources.GetMimeTypeForResourceIndex(i).c_str());
        }
    });
    for (const char* theContent :
         { "<res>u</res>", "<res a='&quot;'>u</res>", "<a:b>c</a:b>", "<upnp:createClass>a</upnp:createClass>",
           "<upnp:albumArtURI>a</upnp:albumArtURI>", "<xmlns:a#>u</xmlns:a#>" })
    {
        AddLoop(aShapes, std::string("written and cloned: ") + theContent, "", theContent,
                [](CDSEntryInfo& anEntry, CDSResourceInfo& aResources)
                {
            free(UPnPDIDL_Get(anEntry.mPackedData, aResources.mPackedData, 1, 1, "u"));
            free(UPnPDIDL_GetForCreateObjectResponse(anEntry.mPackedData, "u", nullptr, nullptr, "1", "0", 0, 0));
            delete anEntry.Clone();
            delete aResources.Clone();
        });
    }
    AddLoop(aShapes, "reduced to half its size", "", "<res>u</res>",
            [](CDSEntryInfo&, CDSResourceInfo& aResources)
            { aResources.ReduceSize(aResources.GetMemoryUsage() / 2, "u", true); });
    for (const bool fIsMixed : { false, true })
    {
        Add(aShapes, std::string("tags added ") + (fIsMixed ? "in any order" : "backward"),
            [=](size_t aSize, Meter& aMeter)
            {
            const uint32 theCount = 8000; // tags of an entry
            aMeter.Run(aSize,
                       [&]
                       {
                zoPackedData_t* theRecord = zoPackedData_New(0);
                for (size_t theLeft = aSize / 8; theLeft >= theCount; theLeft -= theCount)
                {
                    zoPackedData_AddNewEntry(theRecord);
                    for (uint32 i = 0; i < theCount; ++i)
                    {
                        const uint32 theTag = fIsMixed ? i * 7919 % theCount : theCount - i;
                        zoPackedData_AddData(theRecord, static_cast<uint16>(theTag), "abcdef", 6);
                    }
                }
                for (uint32 i = 0; i < theCount; ++i)
                    Use(zoPackedData_GetData(theRecord, 0, static_cast<uint16>(i), nullptr));
                for (uint32 i = zoPackedData_GetEntryCount(theRecord); i > 0; --i)
                    zoPackedData_CopyEntry(theRecord, i - 1, theRecord);
                zoPackedData_Free(theRecord);
            });
        });
    }
    Add(aShapes, "entries searched for a text",
        [](size_t aSize, Meter& aMeter)
        {
        zoPackedData_t* theRecord = NewRecord(aSize / 2 / 60, 1, 1, std::string(50, 'a'));
        const std::string theText = Fill("a", 20) + "b";
        const size_t theSize = zoPackedData_GetMemoryUsage(theRecord);
        aMeter.Run(theSize,
                   [&]
                   {
            for (uint32 i = 0; i < zoPackedData_GetEntryCount(theRecord); ++i)
                zoPackedData_FindEntryWithText(theRecord, 1, theText.c_str(), i, nullptr);
        });
        zoPackedData_Free(theRecord);
    });
    for (const size_t theTags : { size_t{ 0 }, size_t{ 1 }, size_t{ 15 }, size_t{ 40 } })
    {
        for (const uint32 theFirst : { 0u, 15u, 20u, 21u })
        {
            for (const std::string& theValue :
                 { std::string(), std::string("a"), std::string("a,"), std::string(50, '"'), std::string(200, 'x') })
            {
                AddBlocks(aShapes,
                          (theTags ? std::to_string(theTags) : "all") + " tags an entry from " +
                              std::to_string(theFirst) + ", " + std::to_string(theValue.size()) + " bytes " +
                              theValue.substr(0, 2),
                          theTags, theFirst, theValue);
            }
        }
    }
}
