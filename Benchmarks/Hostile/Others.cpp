#include "Shapes.h"

#include <UPnP/Stack/ILibXML.h>
#include <UPnP/Utilities/UPnPCPUtility.h>
#include <UPnP/Utilities/UPnPConfig.h>
#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <UPnP/Utilities/UPnPHook.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoConfigFile.h>
#include <zoltTools/zoCustomHashTable.h>
#include <zoltTools/zoURI.h>

// Groups, configuration, URIs, tables, descriptions.

namespace
{

void Add(Shapes& aShapes, const std::string& aName, const std::function<void(size_t, Meter&)>& aRun)
{
    aShapes.push_back({ aName, kMaxPeakOfObject, kMaxPeakOfObject, aRun });
}

// A shape of one text, which the operation may change.
void AddText(Shapes& aShapes, const std::string& aName, const std::function<std::string(size_t)>& aMake,
             void (*anOperation)(std::string& aText))
{
    Add(aShapes, aName,
        [=](size_t aSize, Meter& aMeter)
        {
        std::string theText = aMake(aSize);
        aMeter.Run(theText.size(), [&] { anOperation(theText); });
    });
}

enum Order
{
    kForward,
    kBackward,
    kMixed
};

// Calls aUse with the numbers below aCount, each once.
template <typename Function>
void ForEach(size_t aCount, Order anOrder, Function aUse)
{
    for (size_t i = 0; i < aCount; ++i)
        aUse(anOrder == kForward ? i : anOrder == kBackward ? aCount - 1 - i : i * 7919 % aCount);
}

std::string Key(size_t anIndex) { return "k" + std::to_string(anIndex); }

const size_t kBytesPerKey = 16;

// A count that 7919 is no divisor of.
size_t KeyCount(size_t aSize)
{
    return aSize / kBytesPerKey / 7919 * 7919 == aSize / kBytesPerKey ? aSize / kBytesPerKey - 1 : aSize / kBytesPerKey;
}

void AddGroupShapes(Shapes& aShapes)
{
    const std::string kStart = "<groupInfo friendlyName='g' UDN='g'";
    const std::string kMaster = "<master groupedFriendlyName='m' groupedUDN='m'/>";
    const auto ReadGroup = [](std::string& aText)
    {
        UPnPGroupInfo* theGroup = UPnPGroupInfo_New("c", aText.c_str());
        UPnPGroupInfo* theCopy = UPnPGroupInfo_Duplicate(theGroup);
        if (theGroup) { UPnPGroupInfo_SameAs(theGroup, theCopy); }
        free(UPnPGroupInfo_GetXML(theGroup));
        UPnPGroupInfo_Delete(theCopy);
        UPnPGroupInfo_Delete(theGroup);
    };
    for (const std::string theAttribute : { " a#='b'", " a=''", " a#='&amp;'", " friendlyName=''" })
    {
        AddText(
            aShapes, "group: metadata" + theAttribute,
            [=](size_t aSize) { return kStart + Fill(theAttribute, aSize) + ">" + kMaster + "</groupInfo>"; },
            ReadGroup);
    }
    for (const std::string theSlave :
         { "<slave groupedFriendlyName='#' groupedUDN='s#'/>", "<slave groupedFriendlyName='#' groupedUDN='s'/>",
           "<slave/>", "<slave groupedFriendlyName='a' groupedUDN='#' b='c'/>",
           "<master groupedFriendlyName='m' groupedUDN='m'/>" })
    {
        AddText(
            aShapes, "group: " + theSlave,
            [=](size_t aSize) { return kStart + ">" + kMaster + Fill(theSlave, aSize) + "</groupInfo>"; }, ReadGroup);
    }
    for (const std::string theCapability : { "<groupCapability name='c#' canBeMaster='1' capabilities='x'/>",
                                             "<groupCapability/>", "<groupCapability name='c'><a/></groupCapability>" })
    {
        AddText(
            aShapes, "group: " + theCapability,
            [=](size_t aSize) { return "<groupCapabilities>" + Fill(theCapability, aSize) + "</groupCapabilities>"; },
            [](std::string& aText)
            {
            UPnPGroupCapabilities* theCapabilities = UPnPGroupCapabilities_New(aText.c_str());
            UPnPGroupCapabilities_Has(theCapabilities, "c");
            UPnPGroupCapabilities_GetActive(theCapabilities);
            UPnPGroupCapabilities_Delete(theCapabilities);
            });
    }
    for (const Order theOrder : { kForward, kBackward, kMixed })
    {
        const std::string theName = theOrder == kForward    ? "forward"
                                    : theOrder == kBackward ? "backward"
                                                            : "in any order";
        Add(aShapes, "group: metadata removed one by one, " + theName,
            [theOrder](size_t aSize, Meter& aMeter)
            {
            const size_t theCount = KeyCount(aSize);
            aMeter.Run(theCount * kBytesPerKey,
                       [&]
                       {
                UPnPGroupInfo* theGroup = UPnPGroupInfo_NewEx("c");
                for (size_t i = 0; i < theCount; ++i)
                    UPnPGroupInfo_SetMetaData(theGroup, nullptr, Key(i).c_str(), "v");
                ForEach(theCount, theOrder,
                        [&](size_t i) { UPnPGroupInfo_RemoveMetaData(theGroup, nullptr, Key(i).c_str()); });
                UPnPGroupInfo_Delete(theGroup);
            });
        });
        Add(aShapes, "configuration: keys removed one by one, " + theName,
            [theOrder](size_t aSize, Meter& aMeter)
            {
            const size_t theCount = KeyCount(aSize);
            const std::string theText = "[s]\n" + Fill("k#=value\n", theCount * kBytesPerKey);
            aMeter.Run(theText.size(),
                       [&]
                       {
                zoConfigFile* theFile = zoConfigFile_NewFromText(theText.data(), theText.size());
                ForEach(theCount, theOrder,
                        [&](size_t i) { zoConfigFile_SetString(theFile, "s", Key(i).c_str(), nullptr); });
                zoConfigFile_Delete(theFile);
            });
        });
        Add(aShapes, "table: entries removed one by one, " + theName,
            [theOrder](size_t aSize, Meter& aMeter)
            {
            const size_t theCount = KeyCount(aSize);
            aMeter.Run(theCount * kBytesPerKey,
                       [&]
                       {
                zoCustomHashTable* theTable = zoCustomHashTable_New_String_String();
                for (size_t i = 0; i < theCount; ++i)
                    zoCustomHashTable_Add(theTable, Key(i).c_str(), "value");
                ForEach(theCount, theOrder,
                        [&](size_t i)
                        {
                    zoCustomHashTable_Remove(theTable, Key(i).c_str());
                    Use(zoCustomHashTable_GetKeyAtIndex(theTable, i / 2));
                });
                zoCustomHashTable_Delete(theTable);
            });
        });
    }
}

// Sections with the shortest names there are, each with the shortest key: the most records a byte.
std::string ShortestSections(size_t aSize)
{
    static const size_t kLetters = 0xEF - 0x80;
    std::string theText;
    for (size_t i = 0; theText.size() < aSize; ++i)
    {
        theText += '[';
        for (size_t theNumber = i; theNumber > 0; theNumber /= kLetters)
            theText += static_cast<char>(0x80 + theNumber % kLetters);
        theText += "]\n=\n";
    }
    return theText;
}

void AddConfigurationShapes(Shapes& aShapes)
{
    const auto theUse = [](std::string& aText)
    {
        zoConfigFile* theFile = zoConfigFile_NewFromText(aText.data(), aText.size());
        for (size_t i = 0; i < zoConfigFile_GetSectionCount(theFile); ++i)
            Use(zoConfigFile_GetSectionAt(theFile, i));
        free(zoConfigFile_GetText(theFile, nullptr));
        zoConfigFile_Delete(theFile);
    };
    AddText(aShapes, "configuration: shortest sections and keys", ShortestSections, theUse);
    for (const std::string theLine : { "\n", "#\n", "a\n", "=\n", "[]\n", "[#]\n", "[#]\na=b\n", "a#=b\n", "a=b\n",
                                       "[s]\nk#=v\n[t]\n", "k=\\\\\\\\\n", "\\" })
    {
        std::string theName = theLine;
        for (size_t theEnd; (theEnd = theName.find('\n')) != theName.npos;)
            theName.replace(theEnd, 1, "|");
        AddText(
            aShapes, "configuration: " + theName, [=](size_t aSize) { return Fill(theLine, aSize); }, theUse);
    }
    AddText(
        aShapes, "configuration: %HOSTNAME%", [](size_t aSize) { return Fill("%HOSTNAME%", aSize); },
        [](std::string& aText) { free(zoStringSubstitution_Replace_HostName(aText.c_str())); });
}

void AddURIShapes(Shapes& aShapes)
{
    for (const std::string theText :
         { "&a#=b", "&a=b", "&", "/", "../", "%", "%41", "?", "#", "@", ":", "&lock=a", " " })
    {
        AddText(
            aShapes, "URI: of " + theText,
            [=](size_t aSize) { return "http://192.0.2.1/a?x=y" + Fill(theText, aSize); },
            [](std::string& aText)
            {
            zoURI* theURI = zoURI_NewFromEscapedStr(aText.c_str());
            free(zoURI_GetQueryPart(theURI, "none"));
            zoURI_AddQueryPart(theURI, "a", "b");
            zoURI_Escape(theURI);
            Use(reinterpret_cast<void*>(static_cast<uintptr_t>(zoURI_GetHostIP(theURI))));
            free(zoURI_GetStr(theURI));
            zoURI_Delete(theURI);
            });
        Add(aShapes, "URI: combined, base and reference of " + theText,
            [=](size_t aSize, Meter& aMeter)
            {
            const std::string theBase = "http://h/" + Fill(theText, aSize / 2);
            const std::string theReference = Fill(theText, aSize / 2);
            aMeter.Run(theBase.size() + theReference.size(),
                       [&] { free(zoURI_S_Combine(theBase.c_str(), theReference.c_str())); });
        });
        Add(aShapes, "URI: unlocked, " + theText,
            [=](size_t aSize, Meter& aMeter)
            {
            const std::string theURI = "http://h/a?lock=" + Fill(theText, aSize / 2);
            const std::string theCode = Fill("1", aSize / 2);
            aMeter.Run(theURI.size() + theCode.size(),
                       [&]
                       {
                UPnPCPUtility::IsURIParentalLocked(theURI.c_str());
                Use(UPnPCPUtility::GetURIUnlocked(theURI.c_str(), theCode.c_str()).c_str());
            });
        });
    }
}

void AddHookShapes(Shapes& aShapes)
{
    for (const std::string theRun : { "%", "%@", "<a/>%@" })
    {
        Add(aShapes, "hook: description of " + theRun,
            [=](size_t aSize, Meter& aMeter)
            {
            const std::string theTemplate = Fill(theRun, aSize) + ">";
            size_t theParts = 0;
            for (size_t i = theTemplate.find("%@"); i != theTemplate.npos; i = theTemplate.find("%@", i + 2))
                ++theParts;
            static char sText[] = "x";
            static char sName[] = ":unknown:part";
            std::vector<char*> theTexts(theParts, sText), theNames(theParts, sName);
            theTexts.push_back(nullptr);
            std::vector<size_t> theLengths(theParts, 1);
            UPnPHook* theHook = UPnPHook_New();
            std::string theCopy = theTemplate;
            aMeter.Run(theTemplate.size() + theParts * (2 * sizeof(char*) + sizeof(size_t)),
                       [&]
                       {
                char* theBuffer = nullptr;
                size_t theLength = 0;
                UPnPHook_Hook(theHook, kUPnPHook_GetServiceDescription, static_cast<ILibWebServer_Session*>(nullptr),
                              static_cast<char*>(nullptr), theCopy.data(), theCopy.size(), theTexts.data(),
                              theNames.data(), theLengths.data(), &theBuffer, &theLength);
                free(theBuffer);
            });
            UPnPHook_Delete(theHook);
        });
    }
    for (const std::string theItem : { "a#,", "a,", ",", "aaaaaaab," })
    {
        Add(aShapes, "hook: list of " + theItem + " and an agent",
            [=](size_t aSize, Meter& aMeter)
            {
            const std::string theList = Fill(theItem, aSize / 2);
            const std::string theAgent = Fill("a", aSize / 2);
            UPnPHook* theHook = UPnPHook_New();
            aMeter.Run(theList.size() + theAgent.size(),
                       [&]
                       {
                for (int i = 0; i < kUPnPHookProperty_Count; ++i)
                    UPnPHook_SetProperty(theHook, i, theList.c_str());
                int fIsChunked = 0;
                char fIsOK = 0;
                UPnPHook_Hook(theHook, kUPnPHook_CheckHTTPChunk, const_cast<char*>(theAgent.c_str()), &fIsChunked);
                UPnPHook_Hook(theHook, kUPnPHook_CheckPlayMode, const_cast<char*>(theAgent.c_str()), &fIsOK);
                Use(reinterpret_cast<void*>(
                    static_cast<intptr_t>(zoCStringParser_ListContains(theList.c_str(), ",", theAgent.c_str()))));
            });
            UPnPHook_Delete(theHook);
        });
    }
}

} // namespace

void AddOtherShapes(Shapes& aShapes)
{
    AddGroupShapes(aShapes);
    AddConfigurationShapes(aShapes);
    AddURIShapes(aShapes);
    AddHookShapes(aShapes);
    for (const std::string theText : { "&", "&amp;", "<![CDATA[]]>", "<![CDATA[", "&#", "&#x41;", "<" })
    {
        AddText(
            aShapes, "text: unescaped, " + theText, [=](size_t aSize) { return Fill(theText, aSize); },
            [](std::string& aText) { ILibInPlaceXmlUnEscape(aText.data()); });
    }
}
