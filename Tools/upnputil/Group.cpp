#include "Input.h"
#include "LogReceiver.h"
#include "Subcommand.h"

#include <Shared/ASCII.h>
#include <UPnP/Stack/ILibString.h>
#include <UPnP/Stack/ILibXML.h>
#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <memory>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoConfigFile.h>

static const Usage kShowUsage = {
    "[OPTION...]",
    "FILE",
    "Prints the fields of a groupInfo document, or those of a groupCapabilities document. FILE \"-\" is standard input.\n",
    {},
};

static const Usage kStoreUsage = {
    "[OPTION...]",
    "FILE CAPABILITY CONFIG",
    "Stores the group of a groupInfo document in the configuration file CONFIG, in the section CAPABILITY. FILE \"-\" is\n"
    "standard input. Keys that a larger group has left in the section are removed, other keys stay.\n",
    {},
};

static const Usage kLoadUsage = {
    "[OPTION...]",
    "CONFIG CAPABILITY",
    "Prints the group in the section CAPABILITY of the configuration file CONFIG as a groupInfo document. CONFIG \"-\" is\n"
    "standard input.\n",
    {},
    false,
};

namespace
{

typedef std::unique_ptr<UPnPGroupInfo, decltype(&UPnPGroupInfo_Delete)> Group;
typedef std::unique_ptr<UPnPGroupCapabilities, decltype(&UPnPGroupCapabilities_Delete)> Capabilities;
typedef std::unique_ptr<zoConfigFile, decltype(&zoConfigFile_Delete)> Config;

// Keeps the last message that the library logs, for as long as it lives: it says why an input is refused.
class Reason
{
public:
    bool IsKnown() const { return !mText.empty(); }
    int Fail(const std::string& anInput, const char* anOtherReason) const
    {
        return ::Fail(anInput + ": " + (IsKnown() ? mText : anOtherReason));
    }

private:
    std::string mText;
    LogReceiver mReceiver{ [this](const std::string& aMessage) { mText = aMessage; } };
};

} // namespace

// ---- Reading ----

enum
{
    kRoot_Info,
    kRoot_Capabilities
};

// Says what in a text is not well-formed, and where.
static int FailToRead(const std::vector<char>& aText, const std::string& anInput)
{
    uint32 theLine = 0, theColumn = 0;
    const std::unique_ptr<char, decltype(&free)> theReason(
        UPnPUtil_FindXMLError(aText.data(), aText.size() - 1, &theLine, &theColumn), free);
    return Fail(PlaceText(anInput, theLine, theColumn) + (theReason ? theReason.get() : "not well-formed"));
}

// Reads a document of one of these kinds.
static int ReadDocument(const std::string& aPath, std::vector<char>& aText, int* aRoot)
{
    static const char* kRoots[] = { "groupInfo", "groupCapabilities", nullptr }; // by kRoot_*
    if (!ReadInput(aPath, aText)) { return kExit_Bad; }
    ILibXMLNode* theNodes = ILibParseXML(aText.data(), 0, aText.size() - 1);
    const bool fIsWellFormed = ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError;
    *aRoot = theNodes
                 ? ILibString_FindSubStringInArray(theNodes->Name, static_cast<size_t>(theNodes->NameLength), kRoots)
                 : -1;
    ILibDestructXMLNodeList(theNodes);
    if (!fIsWellFormed) { return FailToRead(aText, InputName(aPath)); }
    if (*aRoot < 0) { return FailToFind(InputName(aPath) + ": neither groupInfo nor groupCapabilities"); }
    return kExit_Done;
}

// ---- Show ----

static void PrintMember(const char* aFriendlyName, const char* aUDN, const zoCustomHashTable* aMetaData,
                        Output& anOutput)
{
    anOutput.Fact("friendly name", aFriendlyName);
    anOutput.Fact("udn", aUDN);
    Output::List thePairs(anOutput, "metadata", "metadata");
    for (size_t i = 0; i < zoCustomHashTable_GetTupleCount(aMetaData); ++i)
    {
        const char* theName = zoCustomHashTable_GetKeyAtIndex(aMetaData, i);
        thePairs.AddPair(theName, zoCustomHashTable_Get(aMetaData, theName));
    }
}

static void PrintSlaves(UPnPGroupInfo* aGroup, Output& anOutput)
{
    Output::List theSlaves(anOutput, "slave", "slaves");
    for (size_t i = 0; i < UPnPGroupInfo_GetSlaveCount(aGroup); ++i)
    {
        const UPnPGroupSlave* theSlave = UPnPGroupInfo_GetSlaveAt(aGroup, i);
        theSlaves.Next();
        PrintMember(theSlave->mGroupedFriendlyName, theSlave->mGroupedUDN, theSlave->mMetaData, anOutput);
    }
}

static int PrintGroup(const char* aText, const std::string& anInput, Output& anOutput)
{
    const Reason theReason;
    const Group theGroup(UPnPGroupInfo_New("", aText), UPnPGroupInfo_Delete);
    if (!theGroup) { return theReason.Fail(anInput, "no group"); }
    PrintMember(theGroup->mGroupFriendlyName, theGroup->mGroupUDN, theGroup->mGroupMetaData, anOutput);
    {
        const Output::Part theMaster(anOutput, "master");
        PrintMember(theGroup->mMasterGroupedFriendlyName, theGroup->mMasterGroupedUDN, theGroup->mMasterMetaData,
                    anOutput);
    }
    PrintSlaves(theGroup.get(), anOutput);
    anOutput.InText("slaves", std::to_string(UPnPGroupInfo_GetSlaveCount(theGroup.get())));
    anOutput.YesOrNo("valid", UPnPGroupInfo_IsValid(theGroup.get()) != 0);
    return kExit_Done;
}

static void PrintCapability(const UPnPGroupCapability& aCapability, Output& anOutput)
{
    static const char* const kModes[] = { "none", "slave", "master" };
    anOutput.Fact("name", aCapability.mName);
    anOutput.Fact("grouped udn", aCapability.mGroupedUDN);
    anOutput.Word("mode", kModes[aCapability.mMode], static_cast<uint64>(aCapability.mMode));
}

static int PrintCapabilities(const char* aText, const std::string& anInput, Output& anOutput)
{
    const Reason theReason;
    const Capabilities theSet(UPnPGroupCapabilities_New(aText), UPnPGroupCapabilities_Delete);
    const size_t theCount = UPnPGroupCapabilities_GetCount(theSet.get());
    if (theCount == 0 && !theReason.IsKnown()) { return FailToFind(anInput + ": no groupCapability"); }
    if (theCount == 0) { return theReason.Fail(anInput, ""); }
    {
        Output::List theCapabilities(anOutput, "capability", "capabilities");
        for (size_t i = 0; i < theCount; ++i)
        {
            theCapabilities.Next();
            PrintCapability(*UPnPGroupCapabilities_GetAt(theSet.get(), i), anOutput);
        }
    }
    anOutput.FactIfAny("active", UPnPGroupCapabilities_GetActive(theSet.get()));
    anOutput.InText("capabilities", std::to_string(theCount));
    return kExit_Done;
}

static int ShowGroup(const Arguments& anArguments, Output& anOutput)
{
    std::vector<char> theText;
    int theRoot = -1;
    const int theStatus = ReadDocument(anArguments.Operand(), theText, &theRoot);
    if (theStatus != kExit_Done) { return theStatus; }
    const std::string theInput = InputName(anArguments.Operand());
    return (theRoot == kRoot_Info ? PrintGroup : PrintCapabilities)(theText.data(), theInput, anOutput);
}

// ---- Store and load ----

static bool StartsWith(const std::string& aText, const char* aStart) { return aText.rfind(aStart, 0) == 0; }

static bool IsGroupKey(const std::string& aKey)
{
    const bool fIsOfSlave = StartsWith(aKey, "Slave") && Shared::IsDigit(aKey[5]);
    return fIsOfSlave || StartsWith(aKey, "Group.") || StartsWith(aKey, "Master.");
}

// Removes the keys that another group has left, and returns their number.
static size_t RemoveStaleKeys(UPnPGroupInfo* aGroup, zoConfigFile* aConfig)
{
    const char* theSection = aGroup->mCapability;
    const Config theNew(zoConfigFile_New(nullptr), zoConfigFile_Delete);
    UPnPGroupInfo_Store(aGroup, theNew.get());
    size_t theCount = 0;
    for (size_t i = zoConfigFile_GetKeyCount(aConfig, theSection); i-- > 0;)
    {
        const std::string theKey = zoConfigFile_GetKeyAt(aConfig, theSection, i);
        if (!IsGroupKey(theKey) || zoConfigFile_GetString(theNew.get(), theSection, theKey.c_str(), nullptr))
        {
            continue;
        }
        zoConfigFile_SetString(aConfig, theSection, theKey.c_str(), nullptr);
        ++theCount;
    }
    return theCount;
}

static int StoreGroup(const Arguments& anArguments, Output& anOutput)
{
    const char* theSection = anArguments.Operand(1);
    const char* thePath = anArguments.Operand(2);
    if (strcmp(thePath, "-") == 0) { return anArguments.BadUsage("CONFIG has to be a file"); }
    const Reason theReason;
    const std::string theInput = InputName(anArguments.Operand(0));
    std::vector<char> theText;
    int theRoot = -1;
    const int theStatus = ReadDocument(anArguments.Operand(0), theText, &theRoot);
    if (theStatus != kExit_Done) { return theStatus; }
    if (theRoot != kRoot_Info) { return FailToFind(theInput + ": no groupInfo"); }
    const Group theGroup(UPnPGroupInfo_New(theSection, theText.data()), UPnPGroupInfo_Delete);
    if (!theGroup) { return theReason.Fail(theInput, "no group"); }

    const Config theConfig(zoConfigFile_New(thePath), zoConfigFile_Delete);
    if (!zoConfigFile_IsLoaded(theConfig.get())) { return theReason.Fail(thePath, "can't be read"); }
    const size_t theRemovedCount = RemoveStaleKeys(theGroup.get(), theConfig.get());
    UPnPGroupInfo_Store(theGroup.get(), theConfig.get());
    if (!zoConfigFile_Save(theConfig.get())) { return theReason.Fail(thePath, "can't be written"); }
    anOutput.Fact("section", theSection);
    const size_t theSlaveCount = UPnPGroupInfo_GetSlaveCount(theGroup.get());
    anOutput.InText("slaves", std::to_string(theSlaveCount));
    anOutput.InJSON("slave count", theSlaveCount);
    anOutput.Number("keys removed", theRemovedCount);
    return kExit_Done;
}

static int LoadGroup(const Arguments& anArguments, Output& anOutput)
{
    const char* theSection = anArguments.Operand(1);
    std::vector<char> theText;
    if (!ReadInput(anArguments.Operand(0), theText)) { return kExit_Bad; }
    const Config theConfig(zoConfigFile_NewFromText(theText.data(), theText.size() - 1), zoConfigFile_Delete);
    const Group theGroup(UPnPGroupInfo_NewConfig(theConfig.get(), theSection), UPnPGroupInfo_Delete);
    const std::unique_ptr<char, decltype(&free)> theXML(UPnPGroupInfo_GetXML(theGroup.get()), free);
    if (!theXML)
    {
        return FailToFind(InputName(anArguments.Operand(0)) + ": no complete group in section \"" + theSection + "\"");
    }
    anOutput.Text(theXML.get() + std::string("\n"));
    return kExit_Done;
}

// ---- The subcommand ----

static const Subcommand kActions[] = {
    { "show", "print the fields of a group, or of group capabilities", &kShowUsage, ShowGroup },
    { "store", "store a group in a configuration file", &kStoreUsage, StoreGroup },
    { "load", "print a stored group as XML", &kLoadUsage, LoadGroup },
};

const Subcommand kGroup = {
    "group", "show, store and load groups of devices",     nullptr, nullptr, "an action",
    "",      { &kActions[0], &kActions[1], &kActions[2] },
};
