#include "Documents.h"
#include "Objects.h"
#include "Yardsticks.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <valgrind/callgrind.h>

// One pass of a stage over all documents, for callgrind, which counts what is between StartCounting and StopCounting.
// Each stage runs twice: the first pass fills the allocator's free lists, the second one is counted.

namespace
{

bool fsIsCounted = false;

void StartCounting()
{
    if (fsIsCounted) { CALLGRIND_TOGGLE_COLLECT; }
}

void StopCounting()
{
    if (fsIsCounted) { CALLGRIND_TOGGLE_COLLECT; }
}

template <typename Operation>
auto Counted(Operation anOperation)
{
    StartCounting();
    const auto theResult = anOperation();
    StopCounting();
    return theResult;
}

struct Sink
{
    std::string mText = SinkList();
    zoDLNAProtocolInfoList_t* mList = zoDLNAProtocolInfoList_New(mText.c_str(), 0);

    ~Sink() { zoDLNAProtocolInfoList_Delete(mList); }
};

const Sink& Television()
{
    static const Sink kTelevision;
    return kTelevision;
}

bool WriteFirst(const std::string& aDocument, bool afSelected)
{
    const Records theRecords(aDocument);
    const char* theURI =
        afSelected ? zoPackedData_GetData(theRecords.mResources, 0, kCDSResourceInfo_URI, nullptr) : nullptr;
    char* theText = Counted([&] { return UPnPDIDL_Get(theRecords.mEntry, theRecords.mResources, 1, 1, theURI); });
    const bool fIsWritten = strstr(theText, "</DIDL-Lite>") != nullptr;
    free(theText);
    return fIsWritten;
}

bool Choose(const std::string& aDocument)
{
    Records theRecords(aDocument);
    CDSResourceInfo theResources(zoPackedData_TakeData(theRecords.mResources), theRecords.mEntry);
    int theConfidence = 0;
    const auto theChoice = [&]
    { return theResources.GetBestResourceIndex(Television().mList, &theConfidence, kAnyScheme, nullptr, 0); };
    return Counted(theChoice) >= -1;
}

bool ChooseThumbnail(const std::string& aDocument)
{
    Records theRecords(aDocument);
    CDSResourceInfo theResources(zoPackedData_TakeData(theRecords.mResources), theRecords.mEntry);
    zoCString theProfile;
    return Counted([&] { return theResources.GetThumbnailURI(kAnyScheme, &theProfile, nullptr, 0).length() + 1; }) > 0;
}

bool MakeList(const std::string& /*aDocument*/)
{
    zoDLNAProtocolInfoList_t* theList =
        Counted([] { return zoDLNAProtocolInfoList_New(Television().mText.c_str(), 0); });
    zoDLNAProtocolInfoList_Delete(theList);
    return theList != nullptr;
}

struct Stage
{
    const char* mName;
    bool (*mRun)(const std::string& aDocument); // false when it did not do its work
};

const Stage kStages[] = {
#if WITH_PUGIXML
    { "pugixml",
      [](const std::string& aDocument)
      {
          std::string theText = aDocument;
          return Counted([&] { return PugixmlParse(theText); }) == CountResources(aDocument);
      } },
#endif
    { "parse",
      [](const std::string& aDocument)
      {
          const std::string theText = aDocument;
          return Counted([&] { return Parsed(theText).mResult; }) == kUPnPError_None;
      } },
    { "write", [](const std::string& aDocument) { return WriteFirst(aDocument, false); } },
    { "selected", [](const std::string& aDocument) { return WriteFirst(aDocument, true); } },
    { "choose", Choose },
    { "thumbnail", ChooseThumbnail },
    { "path",
      [](const std::string& aDocument)
      {
          const std::string theText = aDocument;
          return Counted([&] { return FromTextToChoice(theText, Television().mList); }) == CountResources(aDocument);
      } },
    { "list", MakeList },
#if WITH_LIBXML2
    { "libxml2", [](const std::string& aDocument)
      { return Counted([&] { return Libxml2Parse(aDocument); }) == CountResources(aDocument); } },
#endif
};

bool RunOverDocuments(const Stage& aStage)
{
    for (const std::string& theDocument : Documents())
    {
        if (aStage.mRun(theDocument)) { continue; }
        fprintf(stderr, "%s: wrong answer\n", aStage.mName);
        return false;
    }
    return true;
}

bool CountStage(const Stage& aStage)
{
    fsIsCounted = false;
    bool fIsRight = RunOverDocuments(aStage);
    CALLGRIND_ZERO_STATS;
    fsIsCounted = true;
    fIsRight = fIsRight && RunOverDocuments(aStage);
    CALLGRIND_DUMP_STATS_AT(aStage.mName);
    return fIsRight;
}

} // namespace

// The stages named, all of them without arguments. Each one's counts are one dump, whose trigger is the stage's name.
int main(int argc, char** argv)
{
    bool fAreRight = true;
    for (const Stage& theStage : kStages)
    {
        const auto fIsNamed = [&](const char* aName) { return strcmp(aName, theStage.mName) == 0; };
        if (argc > 1 && !std::any_of(argv + 1, argv + argc, fIsNamed)) { continue; }
        fAreRight = CountStage(theStage) && fAreRight;
    }
    return fAreRight && !Documents().empty() ? 0 : 1;
}
