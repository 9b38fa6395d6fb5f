#include "Documents.h"
#include "Objects.h"
#include "Yardsticks.h"

#include <benchmark/benchmark.h>
#include <functional>
#include <list>
#include <zoltTools/zoDLNAProtocolInfoList.h>

// Every document is read from a fresh copy, by us and by the yardsticks, since those change it.

namespace
{

size_t TotalSize()
{
    size_t theSize = 0;
    for (const std::string& theDocument : Documents())
        theSize += theDocument.size();
    return theSize;
}

size_t Parse(std::string& aText) { return static_cast<size_t>(Parsed(aText).mResult == kUPnPError_None); }

size_t ParseAndCount(std::string& aText)
{
    Parsed theObject(aText);
    zoPackedData_t* theResources = zoPackedData_NewData(theObject.mRes);
    theObject.mRes = nullptr;
    const size_t theCount = zoPackedData_GetEntryCount(theResources);
    zoPackedData_Free(theResources);
    return theCount;
}

typedef std::function<size_t(std::string&)> Reader;

void Prove(benchmark::State& aState, const Reader& aReader)
{
    for (const std::string& theDocument : Documents())
    {
        std::string theText = theDocument;
        if (aReader(theText) != CountResources(theDocument)) { aState.SkipWithError("wrong answer"); }
    }
}

// Runs a reader over all documents, after it, or one that does the same and tells, has proved to find their resources.
void OverDocuments(benchmark::State& aState, const Reader& aReader, const Reader& aProof)
{
    Prove(aState, aProof);
    std::string theText;
    for (auto _ : aState)
    {
        for (const std::string& theDocument : Documents())
        {
            theText.assign(theDocument);
            benchmark::DoNotOptimize(aReader(theText));
        }
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * TotalSize()));
    aState.SetItemsProcessed(static_cast<int64_t>(aState.iterations() * Documents().size()));
}

void BM_Parse(benchmark::State& aState) { OverDocuments(aState, Parse, ParseAndCount); }
BENCHMARK(BM_Parse);

void BM_Path(benchmark::State& aState)
{
    zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(SinkList().c_str(), 0);
    const Reader thePath = [theSink](std::string& aText) { return FromTextToChoice(aText, theSink); };
    OverDocuments(aState, thePath, thePath);
    zoDLNAProtocolInfoList_Delete(theSink);
}
BENCHMARK(BM_Path);

std::string Written(const Records& aRecords)
{
    char* theText = UPnPDIDL_Get(aRecords.mEntry, aRecords.mResources, 1, 1, nullptr);
    std::string theCopy(theText);
    free(theText);
    return theCopy;
}

void BM_Write(benchmark::State& aState)
{
    std::list<Records> theRecords;
    for (const std::string& theDocument : Documents())
        theRecords.emplace_back(theDocument);
    size_t theSize = 0;
    for (auto _ : aState)
    {
        for (const Records& theObject : theRecords)
        {
            char* theText = UPnPDIDL_Get(theObject.mEntry, theObject.mResources, 1, 1, nullptr);
            benchmark::DoNotOptimize(theText);
            free(theText);
        }
    }
    for (const Records& theObject : theRecords)
        theSize += Written(theObject).size();
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * theSize));
}
BENCHMARK(BM_Write);

// ---- The choice among many ----

const int kManyResources = 30;
const int kManySinks = 300;

// An object whose resources differ, and a renderer that plays, of hundreds of formats, the one of the last resource.
std::string ObjectOfManyResources()
{
    std::string theText = "<DIDL-Lite><item id=\"1\">";
    for (int i = 0; i < kManyResources; ++i)
    {
        const std::string theNumber = std::to_string(i);
        theText += "<res protocolInfo=\"http-get:*:video/x-type" + theNumber + ":DLNA.ORG_PN=PROFILE_" + theNumber +
                   ";DLNA.ORG_OP=01;DLNA.ORG_CI=0\" size=\"123456789\" duration=\"1:02:03\" resolution=\"1920x1080\">"
                   "http://192.0.2.20:8200/MediaItems/" +
                   theNumber + ".mkv</res>";
    }
    return theText + "</item></DIDL-Lite>";
}

std::string ManySinks()
{
    std::string theText;
    for (int i = kManyResources - 1; i < kManyResources - 1 + kManySinks; ++i)
    {
        const std::string theNumber = std::to_string(i);
        theText += "http-get:*:video/x-type" + theNumber + ":DLNA.ORG_PN=PROFILE_" + theNumber + ",";
    }
    theText.pop_back();
    return theText;
}

void BM_ChooseAmongMany(benchmark::State& aState)
{
    Records theRecords(ObjectOfManyResources());
    zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(ManySinks().c_str(), 0);
    CDSResourceInfo theInfo(zoPackedData_TakeData(theRecords.mResources), theRecords.mEntry);
    int theConfidence = 0;
    for (auto _ : aState)
    {
        const int theIndex = theInfo.GetBestResourceIndex(theSink, &theConfidence, "*", nullptr, 0);
        if (theIndex != kManyResources - 1) { aState.SkipWithError("wrong answer"); }
    }
    zoDLNAProtocolInfoList_Delete(theSink);
}
BENCHMARK(BM_ChooseAmongMany);

#if WITH_LIBXML2
void BM_Libxml2ParseMany(benchmark::State& aState)
{
    const std::string theText = ObjectOfManyResources();
    if (Libxml2Parse(theText) != kManyResources) { aState.SkipWithError("wrong answer"); }
    for (auto _ : aState)
        benchmark::DoNotOptimize(Libxml2Parse(theText));
}
BENCHMARK(BM_Libxml2ParseMany);
#endif

#if WITH_PUGIXML
void BM_PugixmlParse(benchmark::State& aState) { OverDocuments(aState, PugixmlParse, PugixmlParse); }
BENCHMARK(BM_PugixmlParse);

// The number of names and values isn't known beforehand.
void BM_PugixmlParseAndCopy(benchmark::State& aState)
{
    const Reader theReader = [](std::string& aText) { return PugixmlParseAndCopy(aText, 0); };
    OverDocuments(aState, theReader, theReader);
}
BENCHMARK(BM_PugixmlParseAndCopy);

// It is known to be no more than 64.
void BM_PugixmlParseAndCopyReserved(benchmark::State& aState)
{
    const Reader theReader = [](std::string& aText) { return PugixmlParseAndCopy(aText, 64); };
    OverDocuments(aState, theReader, theReader);
}
BENCHMARK(BM_PugixmlParseAndCopyReserved);

// What was written, read again.
void BM_PugixmlParseAndCopyWritten(benchmark::State& aState)
{
    std::vector<std::string> theTexts;
    for (const std::string& theDocument : Documents())
        theTexts.push_back(Written(Records(theDocument)));
    std::string theCopy;
    for (auto _ : aState)
    {
        for (const std::string& theText : theTexts)
        {
            theCopy.assign(theText);
            benchmark::DoNotOptimize(PugixmlParseAndCopy(theCopy, 0));
        }
    }
}
BENCHMARK(BM_PugixmlParseAndCopyWritten);
#endif

#if WITH_LIBXML2
void BM_Libxml2Parse(benchmark::State& aState) { OverDocuments(aState, Libxml2Parse, Libxml2Parse); }
BENCHMARK(BM_Libxml2Parse);
#endif

// ---- The answer to a Browse ----

const size_t kObjects = 1000;

// Runs a reader over it that finds all objects, or as many as it is told.
void OverBrowseResult(benchmark::State& aState, size_t anExpected, const Reader& aReader)
{
    const std::string kText = BrowseResult(kObjects);
    std::string theText = kText;
    if (aReader(theText) != anExpected) { aState.SkipWithError("wrong answer"); }
    for (auto _ : aState)
    {
        theText.assign(kText);
        benchmark::DoNotOptimize(aReader(theText));
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kText.size()));
}

void BM_ParseBrowse(benchmark::State& aState)
{
    OverBrowseResult(aState, kObjects, [](std::string& aText) { return ParseObjects(aText, kObjects + 1); });
}
BENCHMARK(BM_ParseBrowse);

// All tags are read before the first object is parsed.
void BM_ParseFirstOfBrowse(benchmark::State& aState)
{
    OverBrowseResult(aState, 1, [](std::string& aText) { return ParseObjects(aText, 1); });
}
BENCHMARK(BM_ParseFirstOfBrowse);

#if WITH_PUGIXML
void BM_PugixmlParseBrowse(benchmark::State& aState) { OverBrowseResult(aState, kObjects, PugixmlCountObjects); }
BENCHMARK(BM_PugixmlParseBrowse);
#endif

#if WITH_LIBXML2
void BM_Libxml2ParseBrowse(benchmark::State& aState) { OverBrowseResult(aState, kObjects, Libxml2CountObjects); }
BENCHMARK(BM_Libxml2ParseBrowse);
#endif

// ---- How time grows ----

std::string Repeat(const std::string& aText, int64_t aCount)
{
    std::string theText;
    for (int64_t i = 0; i < aCount; ++i)
    {
        const size_t theMark = aText.find('#');
        theText += theMark == std::string::npos
                       ? aText
                       : aText.substr(0, theMark) + std::to_string(i) + aText.substr(theMark + 1);
    }
    return theText;
}

std::string Item(const std::string& aContent)
{
    return "<DIDL-Lite><item id=\"1\">" + aContent + "</item></DIDL-Lite>";
}

// aDocument makes the text of a size; the fit must come out linear.
void Growth(benchmark::State& aState, const std::function<std::string(int64_t)>& aDocument)
{
    const std::string theText = aDocument(aState.range(0));
    if (Parsed(theText).mResult != kUPnPError_None) { aState.SkipWithError("wrong answer"); }
    for (auto _ : aState)
    {
        Parsed theObject(theText);
        benchmark::DoNotOptimize(theObject.mData);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * theText.size()));
    aState.SetComplexityN(aState.range(0));
}

const char kResource[] = "<res protocolInfo=\"http-get:*:audio/mpeg:DLNA.ORG_PN=MP3;DLNA.ORG_OP=01\" size=\"1234567\" "
                         "duration=\"0:03:35.000\">http://192.0.2.20:8200/MediaItems/#.mp3</res>";

std::string Resources(int64_t aCount) { return Item(Repeat(kResource, aCount)); }

std::string ExtraInfo(int64_t aCount) { return Item(Repeat("<sec:info>value of the element</sec:info>", aCount)); }

std::string ResourceExtraInfo(int64_t aCount)
{
    return Item("<res protocolInfo=\"http-get:*:a/b:*\" " + Repeat("sec:info#=\"value\" ", aCount) + ">u</res>");
}

std::string AlbumArt(int64_t aCount)
{
    return Item(
        Repeat("<upnp:albumArtURI dlna:profileID=\"JPEG_TN\">http://192.0.2.20/#.jpg</upnp:albumArtURI>", aCount));
}

std::string Namespaces(int64_t aCount)
{
    return "<DIDL-Lite" + Repeat(" xmlns:n#=\"urn:schemas-example-com:n\"", aCount) + "><item/></DIDL-Lite>";
}

std::string LongText(int64_t aCount)
{
    return Item("<dc:title>" + Repeat("A title &amp; more. ", aCount / 20) + "</dc:title>");
}

std::function<std::string(int64_t)> Nested(const std::string& aName)
{
    return [aName](int64_t aCount)
    { return Item(Repeat("<" + aName + ">", aCount) + "deep" + Repeat("</" + aName + ">", aCount)); };
}

void Register(const std::string& aName, const std::function<std::string(int64_t)>& aDocument, int64_t aFrom,
              int64_t aTo)
{
    benchmark::RegisterBenchmark(("BM_Growth/" + aName).c_str(),
                                 [aDocument](benchmark::State& aState) { Growth(aState, aDocument); })
        ->RangeMultiplier(10)
        ->Range(aFrom, aTo)
        ->Complexity(benchmark::oN);
}

// All objects of a browse result, one beside the other.
void BM_GrowthOfBrowseResult(benchmark::State& aState)
{
    const std::string theText =
        "<DIDL-Lite xmlns:dc=\"http://purl.org/dc/elements/1.1/\">" +
        Repeat("<item id=\"#\"><dc:title>A &amp; B</dc:title>" + std::string(kResource) + "</item>", aState.range(0)) +
        "</DIDL-Lite>";
    for (auto _ : aState)
    {
        int64_t theCount = 0;
        ILibXMLNode* theNodes = ILibParseXML(const_cast<char*>(theText.c_str()), 0, theText.size());
        ILibProcessXMLNodeList(theNodes);
        for (ILibXMLNode* theNode = theNodes; theNode; theNode = theNode->Next)
        {
            if (!theNode->StartTag || strncmp(theNode->Name, "item", 4) != 0) { continue; }
            char* theData = nullptr;
            char* theRes = nullptr;
            ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
            theCount += UPnPDIDL_Parse("", theNodes, theNode, theAttributes, 1, &theData, &theRes);
            ILibDestructXMLAttributeList(theAttributes);
            free(theData);
            free(theRes);
        }
        ILibDestructXMLNodeList(theNodes);
        if (theCount != aState.range(0)) { aState.SkipWithError("wrong answer"); }
    }
    aState.SetComplexityN(aState.range(0));
}
BENCHMARK(BM_GrowthOfBrowseResult)->RangeMultiplier(10)->Range(10, 10000)->Complexity(benchmark::oN);

// The whole path over many resources, from the text to the written choice.
void BM_PathOfResources(benchmark::State& aState)
{
    zoDLNAProtocolInfoList_t* theSink = zoDLNAProtocolInfoList_New(SinkList().c_str(), 0);
    const std::string theText = Resources(aState.range(0));
    for (auto _ : aState)
        benchmark::DoNotOptimize(FromTextToChoice(theText, theSink));
    aState.SetComplexityN(aState.range(0));
    zoDLNAProtocolInfoList_Delete(theSink);
}
BENCHMARK(BM_PathOfResources)->RangeMultiplier(10)->Range(10, 10000)->Complexity(benchmark::oN);

const bool kfRegistered = []
{
    Register("Resources", Resources, 10, 10000);
    Register("ExtraInfo", ExtraInfo, 10, 10000);
    Register("ResourceExtraInfo", ResourceExtraInfo, 10, 10000);
    Register("AlbumArt", AlbumArt, 10, 10000);
    Register("Namespaces", Namespaces, 10, 10000);
    Register("TextBytes", LongText, 10000, 10000000);
    Register("NestedPlain", Nested("plain"), 100, 100000);
    Register("NestedStored", Nested("x:stored"), 100, 100000);
    Register("NestedTitle", Nested("dc:title"), 100, 100000);
    return true;
}();

} // namespace
