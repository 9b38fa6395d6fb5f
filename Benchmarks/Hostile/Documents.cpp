#include "Shapes.h"
#include "Support/BrowseBlocks.h"

#include <UPnP/Utilities/UPnPDIDL.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <cmath>
#include <cstdlib>
#include <strings.h>
#include <utility>

// Documents of one object, and Browse results.

namespace
{

const char kRootEnd[] = "</DIDL-Lite>";

// Parses a document of one object, whatever comes out.
void ParseElements(std::string aText, Meter& aMeter)
{
    char* theData = nullptr;
    char* theRes = nullptr;
    int theType = 0;
    aMeter.Run(aText.size(), [&] { UPnPDIDL_ParseElements(aText.c_str(), &theData, &theRes, &theType); });
    free(theData);
    free(theRes);
}

// Looks for what is wrong with a document, and whether strict readers take it.
void CheckText(const std::string& aText, Meter& aMeter)
{
    aMeter.Run(aText.size(),
               [&]
               {
        uint32 theLine, theColumn;
        free(UPnPUtil_FindXMLError(aText.data(), aText.size(), &theLine, &theColumn));
        free(UPnPDIDL_FindError(aText.data(), aText.size(), &theLine, &theColumn));
        UPnPDIDL_IsSendable(aText.data(), aText.size());
    });
}

// Writes the records of a document for strict readers. Both count as input: the records may be next to nothing.
void WriteSendable(const std::string& aText, Meter& aMeter)
{
    char* theData = nullptr;
    char* theRes = nullptr;
    int theType = 0;
    UPnPDIDL_ParseElements(aText.c_str(), &theData, &theRes, &theType);
    zoPackedData_t* theRecords[] = { zoPackedData_NewData(theData), zoPackedData_NewData(theRes) };
    aMeter.Run(aText.size() + zoPackedData_GetMemoryUsage(theRecords[0]) + zoPackedData_GetMemoryUsage(theRecords[1]),
               [&]
               {
        UPnPDIDLRepairs_t theRepairs;
        free(UPnPDIDL_GetSendable(theRecords[0], theRecords[1], 1, 1, nullptr, &theRepairs));
    });
    for (zoPackedData_t* theRecord : theRecords)
        zoPackedData_Free(theRecord);
}

// Parses each object of a Browse result and keeps the records.
void ParseObjects(std::string aText, const std::string& aBaseURL, Meter& aMeter)
{
    std::vector<char*> theBlocks;
    theBlocks.reserve(aText.size() / 2); // an object has four bytes at least
    aMeter.Run(aText.size() + aBaseURL.size(),
               [&]
               {
        ILibXMLNode* theNodes = ILibParseXML(aText.data(), 0, aText.size());
        ILibXMLNode* theNode = ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError ? theNodes : nullptr;
        for (; theNode; theNode = theNode->Next)
        {
            if (!theNode->StartTag || theNode->NameLength != 4 || strncasecmp(theNode->Name, "item", 4) != 0)
            {
                continue;
            }
            char* theData = nullptr;
            char* theRes = nullptr;
            ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
            UPnPDIDL_Parse(aBaseURL.empty() ? nullptr : aBaseURL.c_str(), theNodes, theNode, theAttributes, 1, &theData,
                           &theRes);
            ILibDestructXMLAttributeList(theAttributes);
            theBlocks.push_back(theData);
            theBlocks.push_back(theRes);
        }
        ILibDestructXMLNodeList(theNodes);
    });
    for (char* theBlock : theBlocks)
        free(theBlock);
}

// Reads the objects of a document, also those that are inside each other.
void ReadDocument(const std::string& aText, const std::string& aBaseURL, Meter& aMeter)
{
    BrowseBlocks theBlocks(aText.size() / 2);
    aMeter.Run(aText.size() + aBaseURL.size(),
               [&] { theBlocks.Read(aText.c_str(), aBaseURL.empty() ? nullptr : aBaseURL.c_str()); });
}

std::string Item(const std::string& aContent) { return "<item>" + aContent + "</item>"; }

std::string Nested(const std::string& aStart, const std::string& anEnd, size_t aSize)
{
    const size_t theCount = aSize / (aStart.size() + anEnd.size());
    std::string theText;
    for (size_t i = 0; i < theCount; ++i)
        theText += aStart;
    for (size_t i = 0; i < theCount; ++i)
        theText += anEnd;
    return theText;
}

void AddObject(Shapes& aShapes, const std::string& aName, const std::function<std::string(size_t)>& aMake)
{
    aShapes.push_back({ "object: " + aName, kMaxPeakOfObject, kMaxPeakOfObject,
                        [aMake](size_t aSize, Meter& aMeter) { ParseElements(aMake(aSize), aMeter); } });
    aShapes.push_back({ "checked: " + aName, kMaxPeakOfObject, kMaxPeakOfObject,
                        [aMake](size_t aSize, Meter& aMeter) { CheckText(aMake(aSize), aMeter); } });
    aShapes.push_back({ "sent: " + aName, kMaxPeakOfObject, kMaxPeakOfObject,
                        [aMake](size_t aSize, Meter& aMeter) { WriteSendable(aMake(aSize), aMeter); } });
}

void AddBrowse(Shapes& aShapes, const std::string& aName,
               const std::function<std::pair<std::string, std::string>(size_t)>& aMake)
{
    aShapes.push_back({ "Browse: " + aName, kMaxPeakOfBrowseResult, kMaxKeptOfBrowseResult,
                        [aMake](size_t aSize, Meter& aMeter)
                        {
        const auto [theText, theBaseURL] = aMake(aSize);
        ParseObjects(theText, theBaseURL, aMeter);
                       } });
}

// A document of objects inside each other, each with the content, with a base URL and declarations of the root.
void AddDocument(Shapes& aShapes, const std::string& aContent, const std::string& anEnd, size_t aBaseLength,
                 const char* aDeclaration)
{
    const std::string theName = "document: <container>" + aContent + anEnd + " inside each other" +
                                (aBaseLength ? ", base URL of " + std::to_string(aBaseLength) + " bytes" : "") +
                                (*aDeclaration ? ", root of" + std::string(aDeclaration) : "");
    aShapes.push_back({ theName, kMaxPeakOfBrowseResult, kMaxKeptOfBrowseResult,
                        [=](size_t aSize, Meter& aMeter)
                        {
        const std::string theStart = "<DIDL-Lite" + (*aDeclaration ? Fill(aDeclaration, aSize / 2) : "") + ">";
        const std::string theText =
            theStart + Nested("<container>" + aContent, anEnd + "</container>", aSize - theStart.size()) + kRootEnd;
        ReadDocument(theText, aBaseLength ? "http://h/" + Fill("b/", aBaseLength - 9) : "", aMeter);
                       } });
}

// Contents of an item over and over, and whether each stands for itself.
const char* const kContents[] = {
    "<res/>",
    "<res>a</res>",
    "<res protocolInfo=''/>",
    "<res protocolInfo=':::'>a</res>",
    "<res protocolInfo=' : : : ;;'>a</res>",
    "<res a=''/>",
    "<a/>",
    "<a></a>",
    "<a b=''/>",
    "<a:b/>",
    "<a:b>&#1;</a:b>",
    "<a:#/>",
    "<dc:title/>",
    "<dc:date>2001-01-01</dc:date>",
    "<upnp:albumArtURI/>",
    "<upnp:albumArtURI>a</upnp:albumArtURI>",
    "<upnp:createClass>a</upnp:createClass>",
    "<upnp:channelNr>1</upnp:channelNr>",
    "<xmlns:#/>",
    "<xmlns:a/>",
    "<xmlns:#>,</xmlns:#>",
    "<a xmlns:#=''/>",
    "<res xmlns:#=''/>",
    "<!---->",
    "<![CDATA[]]>",
    "<!DOCTYPE>",
    "<?a?>",
};

// Tags whose names are repeated inside each other.
const char* const kNested[] = { "a",       "a:b",           "res", "dc:title", "upnp:albumArtURI", "upnp:createClass",
                                "xmlns:a", "upnp:channelNr" };

// Texts of one element.
const char* const kTexts[] = { "&amp;", "&#65;", "&",  "&#0;",     "<![CDATA[]]>",
                               "]]>",   ",",     "\"", "\xC3\xA9", "&#x000000000041;" };

// Attributes of one start tag.
const char* const kAttributes[] = {
    " a=''", " a#=''", " xmlns:#=''", " xmlns:#=','", " id=''", " a:b=''", " xmlns=''"
};

// What no document ends with.
const char* const kUnclosed[] = { "<",   "<!--", "<![CDATA[",       "<!", "<?",   "<a", "<a b='",
                                  "<a>", "</a>", "<!DOCTYPE [<!--", "&",  "<a b=" };

} // namespace

void AddDocumentShapes(Shapes& aShapes)
{
    for (const char* theContent : kContents)
    {
        AddObject(aShapes, std::string(theContent) + " over and over",
                  [theContent](size_t aSize) { return Item(Fill(theContent, aSize)); });
    }
    for (const std::string theName : kNested)
    {
        AddObject(aShapes, "<" + theName + "> inside each other",
                  [theName](size_t aSize) { return Item(Nested("<" + theName + ">", "</" + theName + ">", aSize)); });
        AddObject(aShapes, "<" + theName + "> inside each other, with text",
                  [theName](size_t aSize)
                  { return Item(Nested("<" + theName + ">a&amp;", "</" + theName + ">", aSize)); });
    }
    for (const std::string theText : kTexts)
    {
        for (const std::string theName :
             { "dc:title", "a:b", "res", "upnp:albumArtURI", "xmlns:a", "upnp:createClass" })
        {
            AddObject(aShapes, "<" + theName + "> of " + theText,
                      [theName, theText](size_t aSize)
                      { return Item("<" + theName + ">" + Fill(theText, aSize) + "</" + theName + ">"); });
        }
    }
    for (const std::string theAttributes : kAttributes)
    {
        for (const std::string theTag : { "item", "res", "a:b" })
        {
            AddObject(aShapes, "<" + theTag + theAttributes + " ...>",
                      [theTag, theAttributes](size_t aSize)
                      {
                return "<DIDL-Lite><item" +
                       (theTag == "item" ? Fill(theAttributes, aSize) + ">"
                                         : "><" + theTag + Fill(theAttributes, aSize) + "/>") +
                       "</item>" + kRootEnd;
            });
        }
        AddObject(aShapes, "<DIDL-Lite" + theAttributes + " ...>",
                  [theAttributes](size_t aSize)
                  { return "<DIDL-Lite" + Fill(theAttributes, aSize) + "><item/>" + kRootEnd; });
    }
    for (const char* theText : kUnclosed)
        AddObject(aShapes, std::string("unclosed: ") + theText,
                  [theText](size_t aSize) { return Fill(theText, aSize); });
    for (const std::string theText : { ";", " ;", ":", "a;", "DLNA.ORG_PN=;", " " })
    {
        AddObject(aShapes, "protocol info of \"" + theText + "\"",
                  [theText](size_t aSize)
                  { return Item("<res protocolInfo=\"http-get:*:*:" + Fill(theText, aSize) + "\">a</res>"); });
    }

    for (const std::string theContent :
         { "", "<res>a</res>", "<a:b/>", "<dc:title>a</dc:title>", "<item/>", "<a>", "<xmlns:a>u</xmlns:a>" })
    {
        const std::string theEnd = theContent == "<a>" ? "</a>" : "";
        AddDocument(aShapes, theContent, theEnd, 0, "");
        AddDocument(aShapes, theContent, theEnd, 0, " xmlns:a#='u'");
        if (theContent == "<res>a</res>") { AddDocument(aShapes, theContent, theEnd, 1000, ""); }
    }

    AddBrowse(aShapes, "<item/> over and over",
              [](size_t aSize) { return std::pair("<DIDL-Lite>" + Fill("<item/>", aSize) + kRootEnd, ""); });
    for (const char* theAttribute : { " xmlns:#='u'", " xmlns:#=''", " a#=''", " xmlns=''" })
    {
        for (const size_t theShare : { size_t{ 2 }, size_t{ 16 }, size_t{ 256 } })
        {
            AddBrowse(aShapes, std::string("root of") + theAttribute + ", 1/" + std::to_string(theShare),
                      [theAttribute, theShare](size_t aSize)
                      {
                return std::pair("<DIDL-Lite" + Fill(theAttribute, aSize / theShare) + ">" +
                                     Fill("<item/>", aSize - aSize / theShare) + kRootEnd,
                                 "");
            });
        }
    }
    for (const std::string theAttribute : { " a=\"\"", " a#=\"\"", " xmlns:a#=\"\"", " xmlns:a#=\",\"" })
    {
        for (const size_t theLength : { size_t{ 250 }, size_t{ 1000 }, size_t{ 2000 } })
        {
            const std::string theName = "root of " + std::to_string(theLength) + " bytes of" + theAttribute;
            const auto Make = [=](size_t aSize)
            { return "<DIDL-Lite" + Fill(theAttribute, theLength) + ">" + Fill("<item/>", aSize) + kRootEnd; };
            AddBrowse(aShapes, theName, [Make](size_t aSize) { return std::pair(Make(aSize), ""); });
            aShapes.push_back({ "document: " + theName, kMaxPeakOfBrowseResult, kMaxKeptOfBrowseResult,
                                [Make](size_t aSize, Meter& aMeter) { ReadDocument(Make(aSize), "", aMeter); } });
        }
    }
    for (const char theByte : { '"', ',', '<', 'a', '&' })
    {
        for (const size_t theLength : { size_t{ 200 }, size_t{ 1000 }, size_t{ 4000 }, size_t{ 9000 } })
        {
            AddBrowse(aShapes, "root with one value of " + std::to_string(theLength) + " " + theByte,
                      [theByte, theLength](size_t aSize)
                      {
                return std::pair("<DIDL-Lite xmlns:a='" + std::string(theLength, theByte) + "'>" +
                                     Fill("<item/>", aSize - theLength) + kRootEnd,
                                 "");
            });
        }
    }
    AddBrowse(aShapes, "each object uses the root's declarations",
              [](size_t aSize)
              {
        return std::pair("<DIDL-Lite" + Fill(" xmlns:a#='u'", aSize / 2) + ">" +
                             Fill("<item><a#:a/></item>", aSize / 2) + kRootEnd,
                         "");
    });
    AddBrowse(aShapes, "root with many names and one of half the size",
              [](size_t aSize)
              {
        return std::pair("<DIDL-Lite" + Fill(" a#=''", 400) + " " + std::string(aSize / 2, 'n') + "=''>" +
                             Fill("<item/>", aSize / 2) + kRootEnd,
                         "");
    });
    AddBrowse(aShapes, "root with values that are too long once escaped",
              [](size_t aSize)
              {
        const size_t theLength = static_cast<size_t>(std::sqrt(static_cast<double>(aSize)));
        const std::string theAttribute = " a#='" + std::string(theLength, '"') + "'";
        const std::string theObject = "<item>" + std::string(theLength * 2, ' ') + "</item>";
        return std::pair("<DIDL-Lite" + Fill(theAttribute.c_str(), aSize / 2) + ">" +
                             Fill(theObject.c_str(), aSize / 2) + kRootEnd,
                         "");
    });
    for (const size_t theLength : { size_t{ 400 }, size_t{ 1000 }, size_t{ 4096 }, size_t{ 0 } }) // 0: half the input
    {
        for (const char* theObject : { "<item><res>a</res></item>", "<item><res>../a</res><res>b</res></item>" })
        {
            AddBrowse(aShapes,
                      std::string(theObject) + ", base URL of " +
                          (theLength ? std::to_string(theLength) + " bytes" : "half the input"),
                      [theLength, theObject](size_t aSize)
                      {
                const size_t theBaseLength = theLength ? theLength : aSize / 2;
                return std::pair("<DIDL-Lite>" + Fill(theObject, aSize - theBaseLength) + kRootEnd,
                                 "http://h/" + Fill("b/", theBaseLength - 9));
            });
        }
    }
    AddBrowse(aShapes, "base URL of ../, relative URIs",
              [](size_t aSize)
              {
        return std::pair("<DIDL-Lite>" + Item(Fill("<res>../../../../../../../../../../../../a</res>", aSize)) +
                             kRootEnd,
                         "http://h/" + Fill("a/", 900));
    });
}
