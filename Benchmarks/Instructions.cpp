#include "Documents.h"
#include "Objects.h"
#include "Yardsticks.h"

#include <cstdio>
#include <cstring>

// Runs one stage over all documents, twice: the first pass fills the allocator's free lists, the second goes through
// CountedCall, for callgrind to count what is in it (--toggle-collect=CountedCall).

static volatile unsigned sCallCount = 0;

extern "C" void CountedCall(void (*aFunction)(void*), void* anArgument)
{
    aFunction(anArgument);
    sCallCount = sCallCount + 1; // callgrind takes a tail call for the function's end
}

namespace
{

void (*volatile const kCountedCall)(void (*)(void*), void*) = CountedCall; // volatile: not inlined
bool fsIsCounted = false;

template <typename Operation>
auto Counted(Operation anOperation)
{
    struct Call
    {
        Operation& mOperation;
        decltype(anOperation()) mResult;
    } theCall = { anOperation, {} };
    const auto theFunction = [](void* aCall)
    { static_cast<Call*>(aCall)->mResult = static_cast<Call*>(aCall)->mOperation(); };
    fsIsCounted ? kCountedCall(theFunction, &theCall) : theFunction(&theCall);
    return theCall.mResult;
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

bool WriteSendable(const std::string& aDocument)
{
    const Records theRecords(aDocument);
    char* theText =
        Counted([&] { return UPnPDIDL_GetSendable(theRecords.mEntry, theRecords.mResources, 1, 1, nullptr, nullptr); });
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
    bool (*mRunOnce)() = nullptr;               // in its place, when it is not to be run for each document
};

const size_t kObjects = 1000;

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
    { "sendable", WriteSendable },
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
#if WITH_PUGIXML
    { "pugixml-browse", nullptr,
      []
      {
          std::string theText = BrowseResult(kObjects);
          return Counted([&] { return PugixmlCountObjects(theText); }) == kObjects;
      } },
#endif
    { "browse", nullptr,
      []
      {
          std::string theText = BrowseResult(kObjects);
          return Counted([&] { return ParseObjects(theText, kObjects + 1); }) == kObjects;
      } },
#if WITH_LIBXML2
    { "libxml2", [](const std::string& aDocument)
      { return Counted([&] { return Libxml2Parse(aDocument); }) == CountResources(aDocument); } },
#endif
};

bool RunOverDocuments(const Stage& aStage)
{
    if (aStage.mRunOnce) { return aStage.mRunOnce(); }
    for (const std::string& theDocument : Documents())
    {
        if (aStage.mRun(theDocument)) { continue; }
        fprintf(stderr, "%s: wrong answer\n", aStage.mName);
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    for (const Stage& theStage : kStages)
    {
        if (argc != 2 || strcmp(argv[1], theStage.mName) != 0) { continue; }
        const bool fIsRight = !Documents().empty() && RunOverDocuments(theStage);
        fsIsCounted = true;
        return fIsRight && RunOverDocuments(theStage) ? 0 : 1;
    }
    return 2;
}
