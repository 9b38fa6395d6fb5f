#include "Input.h"
#include "LogReceiver.h"
#include "Subcommand.h"
#include "Suggestion.h"

#include <UPnP/Utilities/UPnPConfig.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoSocketPolicyConfig.h>

namespace
{

// Says each warning once: several records have the same part, read from the same keys.
class Warnings
{
public:
    void Add(const std::string& aMessage)
    {
        if (mSaid.insert(aMessage).second) { Say("warning: " + aMessage); }
    }

private:
    std::set<std::string> mSaid;
    LogReceiver mReceiver{ [this](const std::string& aMessage) { Add(aMessage); } };
};

// One section of a configuration file, and what has been found out about it so far.
struct Section
{
    Section(const std::vector<char>& aText, const char* aName)
        : mFile(zoConfigFile_NewFromText(aText.data(), aText.size() - 1)),
          mName(aName),
          mPolicy(UPnPConfig_CreateSocketPolicy(mFile, mName))
    {}
    ~Section()
    {
        zoSocketPolicy_Delete(mPolicy);
        zoConfigFile_Delete(mFile);
    }
    Section(const Section&) = delete;
    Section& operator=(const Section&) = delete;

    bool Exists() const
    {
        for (size_t i = 0; i < zoConfigFile_GetSectionCount(mFile); ++i)
        {
            if (strcmp(zoConfigFile_GetSectionAt(mFile, i), mName) == 0) { return true; }
        }
        return false;
    }
    // The value of a key, NULL without one.
    const char* Get(const char* aKey) const { return zoConfigFile_GetString(mFile, mName, aKey, nullptr); }

    zoConfigFile* mFile;
    const char* mName;
    zoSocketPolicy* mPolicy;
    std::set<std::string> mKeysRead = { kKey_Stack_UPnPLocal, kKey_SocketPolicy_QOSDisabled,
                                        kKey_SocketPolicy_ExcludeIF }; // the policy's
    Warnings mWarnings;
};

typedef std::shared_ptr<const void> Record;

struct RecordKind
{
    int mRecord;                               // kUPnPConfigRecord_*
    const ILibConfigBounds_t* (*mGetBounds)(); // NULL: it has none
    Record (*mFetch)(const Section& aSection);

    const UPnPConfigRecord_t& Description() const { return *UPnPConfig_GetRecord(mRecord); }
};

} // namespace

// ---- The records ----

template <typename Type, typename... Borrowed>
static void Fetch(Type* aConfig, const Section& aSection,
                  void (*aFetch)(Type*, zoConfigFile*, const char*, zoSocketPolicy*, Borrowed...))
{
    aFetch(aConfig, aSection.mFile, aSection.mName, aSection.mPolicy, Borrowed()...);
}

template <typename Type>
static void FreeNothing(Type*)
{}

// A record as its fetch fills it; borrowed arguments such as the hook are NULL.
template <typename Type, Type* (*kCreate)(), auto kFetch, void (*kFree)(Type*) = FreeNothing<Type>>
static Record Fetched(const Section& aSection)
{
    const auto theRelease = [](Type* aConfig)
    {
        kFree(aConfig);
        free(aConfig);
    };
    const std::shared_ptr<Type> theConfig(kCreate(), theRelease);
    Fetch(theConfig.get(), aSection, kFetch);
    return theConfig;
}

// By kUPnPConfigRecord_*.
static const RecordKind kRecordKinds[kUPnPConfigRecord_Count] = {
    { kUPnPConfigRecord_AsyncSocket, ILibAsyncSocket_GetBounds,
      Fetched<ILibAsyncSocketConfig, UPnPConfig_CreateAsyncSocketConfig, UPnPConfig_FetchAsyncSocketConfig> },
    { kUPnPConfigRecord_AsyncServerSocket, ILibAsyncServerSocket_GetBounds,
      Fetched<ILibAsyncServerSocketConfig, UPnPConfig_CreateAsyncServerSocketConfig,
              UPnPConfig_FetchAsyncServerSocketConfig> },
    { kUPnPConfigRecord_SSDP, ILibSSDP_GetBounds,
      Fetched<ILibSSDPConfig, UPnPConfig_CreateSSDPConfig, UPnPConfig_FetchSSDPConfig, UPnPConfig_FreeSSDPConfig> },
    { kUPnPConfigRecord_NoSSDP, nullptr,
      Fetched<ILibNoSSDPConfig, UPnPConfig_CreateNoSSDPConfig, UPnPConfig_FetchNoSSDPConfig> },
    { kUPnPConfigRecord_WebServer, ILibWebServer_GetBounds,
      Fetched<ILibWebServerConfig, UPnPConfig_CreateWebServerConfig, UPnPConfig_FetchWebServerConfig,
              UPnPConfig_FreeWebServerConfig> },
    { kUPnPConfigRecord_WebClient, ILibWebClient_GetBounds,
      Fetched<ILibWebClientConfig, UPnPConfig_CreateWebClientConfig, UPnPConfig_FetchWebClientConfig> },
    { kUPnPConfigRecord_ControlPoint, nullptr,
      Fetched<UPnPControlPointConfig, UPnPConfig_CreateControlPointConfig, UPnPConfig_FetchControlPointConfig,
              UPnPConfig_FreeControlPointConfig> },
};

static const char kPolicyName[] = "SocketPolicy";

static std::vector<std::string> RecordNames()
{
    std::vector<std::string> theNames = { kPolicyName };
    for (const RecordKind& theKind : kRecordKinds)
        theNames.emplace_back(theKind.Description().mName);
    return theNames;
}

static std::string RecordList()
{
    std::string theList;
    for (const std::string& theName : RecordNames())
        theList += (theList.empty() ? "" : ", ") + theName;
    return theList;
}

static const Usage kUsage = {
    "[--record NAME]...",
    "FILE SECTION",
    "Prints what the stack's records get from a section of a configuration file, field by field, each with where its\n"
    "value comes from; a number of 0 that the stack replaces by its own default when it starts is marked so. Warns of\n"
    "keys that none of the records reads, and of values that are not taken as they are. \"-\" is standard input.\n"
    "Records: " +
        RecordList() + ".\n",
    {
        { "--record", "NAME", true, "print this record only; may repeat" },
    },
};

// ---- Where values come from ----

static const char kFromKey[] = "key";
static const char kFromDefault[] = "default";

namespace
{

struct Origin
{
    const char* mWord;
    const char* mKey = nullptr; // the one with kFromKey

    std::string Text() const { return mKey ? mWord + (std::string(" ") + mKey) : mWord; }
};

// What is printed about a field.
struct FieldFacts
{
    enum Form
    {
        kForm_None,
        kForm_Text,
        kForm_Number,
        kForm_Word // of a fixed list
    };

    Form mForm;
    std::string mText;
    uint64 mNumber; // of a number, and of a word
    Origin mOrigin;
    std::optional<Origin> mVersionOrigin = std::nullopt; // of the DLNA version in a user agent
    std::optional<uint64> mStackDefault = std::nullopt;  // which the stack takes for a 0
    const ILibConfigBounds_t* mHeldWithin = nullptr;     // where the key's value is not
};

} // namespace

static const ILibConfigBounds_t* FindBounds(const RecordKind& aKind, const UPnPConfigField_t& aField)
{
    const ILibConfigBounds_t* theBounds = aKind.mGetBounds ? aKind.mGetBounds() : nullptr;
    while (theBounds && theBounds->mField && strcmp(theBounds->mField, aField.mName) != 0)
        ++theBounds;
    return theBounds && theBounds->mField ? theBounds : nullptr;
}

// True if the reader can read the key's value: then the default makes no difference.
static bool IsReadable(const UPnPConfigField_t& aField, const Section& aSection)
{
    const char* theValue = aSection.Get(aField.mKey);
    if (!theValue) { return false; }
    if (aField.mValue == kUPnPConfigValue_Address)
    {
        return UPnPConfig_ReadNumber(&aField, aSection.mFile, aSection.mName, 0) != 0 ||
               strcmp(theValue, "0.0.0.0") == 0;
    }
    return UPnPConfig_ReadNumber(&aField, aSection.mFile, aSection.mName, 0) ==
           UPnPConfig_ReadNumber(&aField, aSection.mFile, aSection.mName, 1);
}

// Returns where the number of a field comes from, and notes that its key is known.
static Origin OriginOfNumber(const UPnPConfigField_t& aField, Section& aSection)
{
    aSection.mKeysRead.insert(aField.mKey);
    if (IsReadable(aField, aSection)) { return { kFromKey, aField.mKey }; }
    const char* theValue = aSection.Get(aField.mKey);
    const bool fIsEmptyAddress = aField.mValue == kUPnPConfigValue_Address && zoStrEmpty(theValue);
    if (theValue && !fIsEmptyAddress)
    {
        aSection.mWarnings.Add(std::string(aField.mKey) + "=" + theValue + " can't be read, the default is taken");
    }
    return { kFromDefault };
}

static Origin OriginOfText(const char* aKey, Section& aSection, bool afEmptyCounts)
{
    aSection.mKeysRead.insert(aKey);
    const char* theValue = aSection.Get(aKey);
    const bool fIsGiven = theValue && (afEmptyCounts || *theValue);
    return fIsGiven ? Origin{ kFromKey, aKey } : Origin{ kFromDefault };
}

static Origin OriginOfField(const UPnPConfigField_t& aField, Section& aSection)
{
    switch (aField.mValue)
    {
    case kUPnPConfigValue_None: return { "not read" };
    case kUPnPConfigValue_UserAgent: return OriginOfText(aField.mKey, aSection, false);
    case kUPnPConfigValue_Policy: return { kPolicyName };
    case kUPnPConfigValue_Argument: return { "argument" };
    default: return OriginOfNumber(aField, aSection);
    }
}

// ---- Printing ----

static std::string OriginText(const FieldFacts& aFacts)
{
    std::string theText = aFacts.mOrigin.Text();
    if (aFacts.mVersionOrigin) { theText += ", DLNA version: " + aFacts.mVersionOrigin->Text(); }
    if (aFacts.mStackDefault) { theText += ", the stack takes " + std::to_string(*aFacts.mStackDefault); }
    if (!aFacts.mHeldWithin) { return theText; }
    return theText + ", held within " + std::to_string(aFacts.mHeldWithin->mMin) + " to " +
           std::to_string(aFacts.mHeldWithin->mMax);
}

static void PrintOriginInJSON(const std::string& aName, const std::string& aKeyName, const Origin& anOrigin,
                              Output& anOutput)
{
    anOutput.InJSON(aName, anOrigin.mWord);
    if (anOrigin.mKey) { anOutput.InJSON(aKeyName, anOrigin.mKey); }
}

static JSONValue JSONOf(const FieldFacts& aFacts)
{
    switch (aFacts.mForm)
    {
    case FieldFacts::kForm_None: return nullptr;
    case FieldFacts::kForm_Number: return aFacts.mNumber;
    default: return aFacts.mText;
    }
}

// In JSON, a field is an object with its value and where that comes from.
static void PrintField(const std::string& aName, const std::string& aKey, const FieldFacts& aFacts, Output& anOutput)
{
    anOutput.InText(aName, aFacts.mText);
    anOutput.InText(aName + " from", OriginText(aFacts));
    const Output::Part thePart(anOutput, "", aKey);
    anOutput.InJSON("value", JSONOf(aFacts));
    if (aFacts.mForm == FieldFacts::kForm_Word) { anOutput.InJSON("value number", aFacts.mNumber); }
    PrintOriginInJSON("from", "key", aFacts.mOrigin, anOutput);
    if (aFacts.mVersionOrigin) { PrintOriginInJSON("version from", "version key", *aFacts.mVersionOrigin, anOutput); }
    if (aFacts.mStackDefault) { anOutput.InJSON("stack default", *aFacts.mStackDefault); }
    if (!aFacts.mHeldWithin) { return; }
    anOutput.InJSON("min", aFacts.mHeldWithin->mMin);
    anOutput.InJSON("max", aFacts.mHeldWithin->mMax);
}

static const char* PolicyText(int aMode)
{
    switch (aMode)
    {
    case kzoSocketPolicy_IP_LocalHostOnly: return "local host only";
    case kzoSocketPolicy_IP_AllExceptLocalHost: return "all but the local host";
    default: return "all addresses";
    }
}

static FieldFacts PolicyFacts(const Section& aSection, const Origin& anOrigin)
{
    const int theMode = zoSocketPolicy_GetMode(aSection.mPolicy);
    return { FieldFacts::kForm_Word, PolicyText(theMode), static_cast<uint64>(theMode), anOrigin };
}

static FieldFacts NumberFacts(uint64 aNumber, const Origin& anOrigin)
{
    return { FieldFacts::kForm_Number, std::to_string(aNumber), aNumber, anOrigin };
}

static uint32 ReadOption(zoConfigFile* aFile, const char* aSection, const char* aKey, uint32 aDefault)
{
    return static_cast<uint32>(zoConfigFile_OptionIsSet(aFile, aSection, aKey, static_cast<int>(aDefault)));
}

static void PrintPolicy(Section& aSection, Output& anOutput)
{
    const Output::Part thePart(anOutput, kPolicyName, kPolicyName);
    UPnPConfigField_t theMode = {};
    theMode.mKey = kKey_Stack_UPnPLocal;
    theMode.mRead = UPnPConfig_GetUInt32;
    UPnPConfigField_t theQOS = {};
    theQOS.mKey = kKey_SocketPolicy_QOSDisabled;
    theQOS.mRead = ReadOption;
    const char* theExcluded = aSection.Get(kKey_SocketPolicy_ExcludeIF);
    PrintField("mode", "mode", PolicyFacts(aSection, OriginOfNumber(theMode, aSection)), anOutput);
    PrintField("QOS disabled", "qosDisabled",
               NumberFacts(static_cast<uint64>(zoSocketPolicy_IsQOSDisabled(aSection.mPolicy)),
                           OriginOfNumber(theQOS, aSection)),
               anOutput);
    PrintField("excluded interfaces", "excludedInterfaces",
               { FieldFacts::kForm_Text, theExcluded ? theExcluded : "", 0,
                 OriginOfText(kKey_SocketPolicy_ExcludeIF, aSection, true) },
               anOutput);
}

template <typename Value>
static Value Load(const void* aField)
{
    Value theValue;
    memcpy(&theValue, aField, sizeof(theValue));
    return theValue;
}

static uint64 LoadNumber(const UPnPConfigField_t& aField, const void* aValue)
{
    switch (aField.mSize)
    {
    case 1: return Load<uint8>(aValue);
    case 2: return Load<uint16>(aValue);
    case 4: return Load<uint32>(aValue);
    default: return Load<uint64>(aValue);
    }
}

static FieldFacts UserAgentFacts(const UPnPConfigField_t& aField, const void* aValue, const Origin& anOrigin,
                                 Section& aSection)
{
    FieldFacts theFacts = { FieldFacts::kForm_Text, Load<const char*>(aValue), 0, anOrigin };
    if (aField.mVersionKey) { theFacts.mVersionOrigin = OriginOfText(aField.mVersionKey, aSection, true); }
    return theFacts;
}

static FieldFacts FactsOf(const UPnPConfigField_t& aField, const void* aValue, Section& aSection)
{
    const Origin theOrigin = OriginOfField(aField, aSection);
    switch (aField.mValue)
    {
    case kUPnPConfigValue_Address:
    {
        char theText[sizeof("255.255.255.255")];
        zo_snprintf(theText, sizeof(theText), "%u.%u.%u.%u", UPnPUtil_IPPrintf(Load<uint32>(aValue)));
        return { FieldFacts::kForm_Text, theText, 0, theOrigin };
    }
    case kUPnPConfigValue_UserAgent: return UserAgentFacts(aField, aValue, theOrigin, aSection);
    case kUPnPConfigValue_Policy: return PolicyFacts(aSection, theOrigin);
    case kUPnPConfigValue_Argument: return { FieldFacts::kForm_None, "none", 0, theOrigin };
    default: return NumberFacts(LoadNumber(aField, aValue), theOrigin);
    }
}

// Adds what the stack makes of a number: its own default of 0, the nearer bound of one outside the bounds.
static void AddBounds(const RecordKind& aKind, const UPnPConfigField_t& aField, const void* aValue,
                      const Section& aSection, FieldFacts& aFacts)
{
    const ILibConfigBounds_t* theBounds = FindBounds(aKind, aField);
    if (!theBounds) { return; }
    const uint64 theValue = LoadNumber(aField, aValue);
    if (theValue == 0) { aFacts.mStackDefault = theBounds->mDefault; }
    else if (theValue != UPnPConfig_ReadNumber(&aField, aSection.mFile, aSection.mName, aField.mDefault))
    {
        aFacts.mHeldWithin = theBounds;
    }
}

static void PrintRecord(const RecordKind& aKind, const void* aRecord, const std::string& aPrefix, Section& aSection,
                        Output& anOutput)
{
    const UPnPConfigRecord_t& theDescription = aKind.Description();
    for (size_t i = 0; i < theDescription.mFieldCount; ++i)
    {
        const UPnPConfigField_t& theField = theDescription.mFields[i];
        const void* theValue = static_cast<const char*>(aRecord) + theField.mOffset;
        const std::string theName = aPrefix + theField.mName;
        if (theField.mValue == kUPnPConfigValue_Record)
        {
            const Output::Part thePart(anOutput, "", theField.mName);
            PrintRecord(kRecordKinds[theField.mRecord], theValue, theName + ".", aSection, anOutput);
            continue;
        }
        FieldFacts theFacts = FactsOf(theField, theValue, aSection);
        AddBounds(aKind, theField, theValue, aSection, theFacts);
        PrintField(theName, theField.mName, theFacts, anOutput);
    }
}

static void WarnOfUnreadKeys(Section& aSection)
{
    for (size_t i = 0; i < zoConfigFile_GetKeyCount(aSection.mFile, aSection.mName); ++i)
    {
        const char* theKey = zoConfigFile_GetKeyAt(aSection.mFile, aSection.mName, i);
        if (aSection.mKeysRead.count(theKey) == 0)
        {
            aSection.mWarnings.Add(std::string(theKey) + " is not read by any of the records");
        }
    }
}

// True for the records that are named, and for all when none is.
static bool IsWanted(const std::vector<const char*>& aNames, const char* aName)
{
    for (const char* theName : aNames)
    {
        if (strcmp(theName, aName) == 0) { return true; }
    }
    return aNames.empty();
}

static int CheckNames(const Arguments& anArguments)
{
    const std::vector<std::string> theKnown = RecordNames();
    for (const std::string theName : anArguments.GetAll("--record"))
    {
        if (std::find(theKnown.begin(), theKnown.end(), theName) != theKnown.end()) { continue; }
        return anArguments.BadUsage("no record is called \"" + theName + "\"; there are " + RecordList() +
                                    Suggestion(theName, theKnown));
    }
    return kExit_Done;
}

static int ShowConfig(const Arguments& anArguments, Output& anOutput)
{
    if (CheckNames(anArguments) != kExit_Done) { return kExit_Bad; }
    std::vector<char> theText;
    if (!ReadInput(anArguments.Operand(), theText)) { return kExit_Bad; }
    Section theSection(theText, anArguments.Operand(1));
    if (!theSection.Exists())
    {
        return FailToFind(InputName(anArguments.Operand()) + ": no section \"" + theSection.mName + "\"");
    }

    const std::vector<const char*> theNames = anArguments.GetAll("--record");
    const Output::Part theRecords(anOutput, "", "records");
    if (IsWanted(theNames, kPolicyName)) { PrintPolicy(theSection, anOutput); }
    for (const RecordKind& theKind : kRecordKinds)
    {
        const char* theName = theKind.Description().mName;
        if (!IsWanted(theNames, theName)) { continue; }
        const Output::Part thePart(anOutput, theName, theName);
        PrintRecord(theKind, theKind.mFetch(theSection).get(), "", theSection, anOutput);
    }
    WarnOfUnreadKeys(theSection);
    return kExit_Done;
}

const Subcommand kConfig = { "config", "print what the stack gets from a configuration file", &kUsage, ShowConfig };
