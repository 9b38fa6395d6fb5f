#include <zoltTools/zoConfigFile.h>

#include <Shared/ASCII.h>
#include <Shared/Append.h>
#include <Shared/LogMessage.h>
#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoConfigFileLines.h>
#include <zoltTools/Private/zoConfigFileStorage.h>
#include <zoltTools/Private/zoConfigFileText.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoCustomHashTable.h>
#include <zoltTools/zoMemory.h>

using ConfigFile::Line;

// A configuration is the list of its lines, as they are written, and the sections with their keys, each of which knows
// the line that it comes from.

namespace
{

// The last line of a key: the one that counts. The key's value follows the record.
struct Entry
{
    Line* mLine;
};

struct Section
{
    zoCustomHashTable* mEntries; // of Entry; NULL until there is one
    Line* mLastLine;             // after which a new key goes; NULL: at the beginning
    bool mfHasHeader;
};

} // namespace

struct zoConfigFile
{
    char* mPath; // NULL: in memory only
    bool mfIsLoaded;
    ConfigFile::Lines mLines;
    zoCustomHashTable* mSections; // of Section
    size_t mListedSection;        // the index of the one whose name GetSectionAt gave last
};

// ---- Tables of records: a table's values are blocks that it frees ----

template <typename Record>
static Record* RecordAt(const zoCustomHashTable* aTable, size_t anIndex)
{
    return reinterpret_cast<Record*>(const_cast<char*>(zoCustomHashTable_GetValueAtIndex(aTable, anIndex)));
}

template <typename Record>
static Record* FindRecord(const zoCustomHashTable* aTable, const char* aKey)
{
    return reinterpret_cast<Record*>(const_cast<char*>(zoCustomHashTable_Get(aTable, aKey)));
}

static char* ValueOf(Entry* anEntry) { return reinterpret_cast<char*>(anEntry + 1); }

static Entry* NewEntry(Line* aLine, size_t aValueLength)
{
    const size_t theSize = Shared::AddSizes(sizeof(Entry) + 1, aValueLength);
    Entry* theEntry = static_cast<Entry*>(zoMalloc(theSize));
    theEntry->mLine = aLine;
    return theEntry;
}

static Entry* NewEntryWithValue(Line* aLine, const char* aValue)
{
    const size_t theLength = strlen(aValue);
    Entry* theEntry = NewEntry(aLine, theLength);
    memcpy(ValueOf(theEntry), aValue, theLength + 1);
    return theEntry;
}

static Entry* FindEntry(const Section* aSection, const char* aKey)
{
    return aSection && aKey ? FindRecord<Entry>(aSection->mEntries, aKey) : nullptr;
}

// Takes the entry over, and replaces the one that the key had.
static void PutEntry(Section* aSection, const char* aKey, Entry* anEntry)
{
    if (!aSection->mEntries) { aSection->mEntries = zoCustomHashTable_New_String_String(); }
    zoCustomHashTable_AddValueAllocated(aSection->mEntries, aKey, reinterpret_cast<char*>(anEntry));
}

// Whoever lists sections asks for each key of one by the name that was given: it is not read each time.
static Section* FindSection(const zoConfigFile* aConfigFile, const char* aSection)
{
    if (!aConfigFile || !aSection) { return nullptr; }
    const size_t theListed = __atomic_load_n(&aConfigFile->mListedSection, __ATOMIC_RELAXED);
    const bool fIsListed = zoCustomHashTable_GetKeyAtIndex(aConfigFile->mSections, theListed) == aSection;
    return fIsListed ? RecordAt<Section>(aConfigFile->mSections, theListed)
                     : FindRecord<Section>(aConfigFile->mSections, aSection);
}

static Section* FindOrAddSection(zoConfigFile* aConfigFile, const char* aSection)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    if (theSection) { return theSection; }
    theSection = static_cast<Section*>(zoMallocZeroed(sizeof(Section)));
    zoCustomHashTable_AddValueAllocated(aConfigFile->mSections, aSection, reinterpret_cast<char*>(theSection));
    return theSection;
}

// ---- Loading ----

namespace
{

struct Loader
{
    zoConfigFile* mConfigFile;
    Section* mSection; // that the lines so far are in; NULL before the first one
    Line* mOthers;     // lines without key and header just before; NULL: there are none
    zoBuffer* mName;   // the last name that was read
};

} // namespace

static std::string_view Trimmed(std::string_view aText) { return Shared::Trim(aText, Shared::IsBlank); }

static const char* ReadName(Loader* aLoader, std::string_view aText)
{
    aLoader->mName->mPos = 0;
    char* theName = Shared::Reserve(aLoader->mName, Shared::AddSizes(aText.size(), 1));
    ConfigFile::Unescape(aText, true, theName);
    return theName;
}

static Line* LoadLine(Loader* aLoader, std::string_view aLine)
{
    aLoader->mOthers = nullptr;
    return ConfigFile::AppendLoadedLine(&aLoader->mConfigFile->mLines, aLine);
}

// Neighbours share one record: there may be as many of them as bytes.
static void LoadOther(Loader* aLoader, std::string_view aLine)
{
    if (aLoader->mOthers) { aLoader->mOthers->mLength += aLine.size(); }
    else { aLoader->mOthers = LoadLine(aLoader, aLine); }
}

static void LoadHeader(Loader* aLoader, std::string_view aName, std::string_view aLine)
{
    aLoader->mSection = FindOrAddSection(aLoader->mConfigFile, ReadName(aLoader, aName));
    aLoader->mSection->mfHasHeader = true;
    aLoader->mSection->mLastLine = LoadLine(aLoader, aLine);
}

static void LoadKey(Loader* aLoader, std::string_view aName, std::string_view aValue, std::string_view aLine)
{
    if (!aLoader->mSection) { aLoader->mSection = FindOrAddSection(aLoader->mConfigFile, ""); }
    Section* theSection = aLoader->mSection;
    const char* theKey = ReadName(aLoader, aName);
    const Entry* theBefore = FindEntry(theSection, theKey);
    Line* theLine = LoadLine(aLoader, aLine);
    theLine->mSameKey = theBefore ? theBefore->mLine : nullptr;
    theSection->mLastLine = theLine;
    Entry* theEntry = NewEntry(theLine, aValue.size());
    ConfigFile::Unescape(aValue, false, ValueOf(theEntry));
    PutEntry(theSection, theKey, theEntry);
}

// Finds out what a line says, in the section that the lines before it are in.
static void ReadLine(Loader* aLoader, std::string_view aLine)
{
    const std::string_view theText = Trimmed(ConfigFile::ContentOf(aLine));
    const char theFirst = theText.empty() ? '#' : theText.front();
    const bool fIsHeader = theFirst == '[';
    const size_t theEnd = theText.find(fIsHeader ? ']' : '=');
    const bool fIsOther = theFirst == '#' || theFirst == ';' || theEnd == theText.npos;
    if (fIsOther || theText.find('\0') != theText.npos) { LoadOther(aLoader, aLine); }
    else if (fIsHeader) { LoadHeader(aLoader, Trimmed(theText.substr(1, theEnd - 1)), aLine); }
    else { LoadKey(aLoader, Trimmed(theText.substr(0, theEnd)), Trimmed(theText.substr(theEnd + 1)), aLine); }
}

// Takes the text over.
static zoConfigFile* New(const char* aPath, char* aText, size_t aLength)
{
    zoConfigFile* theConfigFile = static_cast<zoConfigFile*>(zoMallocZeroed(sizeof(zoConfigFile)));
    theConfigFile->mPath = zoStrdup(aPath);
    theConfigFile->mSections = zoCustomHashTable_New_String_String();
    theConfigFile->mfIsLoaded = aText != nullptr;
    Loader theLoader = { theConfigFile, nullptr, nullptr, zoBuffer_New(64) };
    std::string_view theText = ConfigFile::BeginLines(&theConfigFile->mLines, aText, aLength);
    while (!theText.empty())
        ReadLine(&theLoader, ConfigFile::TakeLine(&theText));
    zoBuffer_Delete(theLoader.mName);
    return theConfigFile;
}

zoConfigFile* zoConfigFile_New(const char* aPath)
{
    size_t theLength = 0;
    char* theText = aPath ? ConfigFile::Read(aPath, &theLength) : zoStrdup("");
    return New(aPath, theText, theLength);
}

zoConfigFile* zoConfigFile_NewFromText(const char* aText, size_t aLength)
{
    const size_t theLength = aText ? aLength : 0;
    char* theText = static_cast<char*>(zoMalloc(theLength));
    if (theLength > 0) { memcpy(theText, aText, theLength); }
    return New(nullptr, theText, theLength);
}

int zoConfigFile_IsLoaded(const zoConfigFile* aConfigFile) { return aConfigFile && aConfigFile->mfIsLoaded; }

void zoConfigFile_Delete(zoConfigFile* aConfigFile)
{
    if (!aConfigFile) { return; }
    for (size_t i = 0; i < zoCustomHashTable_GetTupleCount(aConfigFile->mSections); ++i)
        zoCustomHashTable_Delete(RecordAt<Section>(aConfigFile->mSections, i)->mEntries);
    zoCustomHashTable_Delete(aConfigFile->mSections);
    ConfigFile::FreeLines(&aConfigFile->mLines);
    free(aConfigFile->mPath);
    free(aConfigFile);
}

// ---- Saving ----

char* zoConfigFile_GetText(const zoConfigFile* aConfigFile, size_t* aLength)
{
    static const ConfigFile::Lines kNone = {};
    size_t theLength = 0;
    char* theText = ConfigFile::NewTextOf(aConfigFile ? &aConfigFile->mLines : &kNone, &theLength);
    if (aLength) { *aLength = theLength; }
    return theText;
}

static int LogNotLoaded(const char* aPath)
{
    Shared::LogMessage(ZOLOGLEVEL_ERROR, ZOLOG_M_DEFAULT, __FILE__, __LINE__,
                       "zoConfigFile: '%s' could not be read and is not replaced\n", aPath);
    return 0;
}

int zoConfigFile_Save(zoConfigFile* aConfigFile)
{
    if (!aConfigFile) { return 0; }
    if (!aConfigFile->mPath) { return 1; }
    if (!aConfigFile->mfIsLoaded) { return LogNotLoaded(aConfigFile->mPath); }
    size_t theLength = 0;
    char* theText = zoConfigFile_GetText(aConfigFile, &theLength);
    const bool fIsSaved = ConfigFile::Replace(aConfigFile->mPath, theText, theLength);
    free(theText);
    return fIsSaved;
}

// ---- Asking ----

const char* zoConfigFile_GetString(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                   const char* aDefaultValue)
{
    Entry* theEntry = FindEntry(FindSection(aConfigFile, aSection), aKey);
    return theEntry ? ValueOf(theEntry) : aDefaultValue;
}

size_t zoConfigFile_GetSectionCount(const zoConfigFile* aConfigFile)
{
    return aConfigFile ? zoCustomHashTable_GetTupleCount(aConfigFile->mSections) : 0;
}

const char* zoConfigFile_GetSectionAt(const zoConfigFile* aConfigFile, size_t anIndex)
{
    if (!aConfigFile) { return nullptr; }
    __atomic_store_n(&const_cast<zoConfigFile*>(aConfigFile)->mListedSection, anIndex,
                     __ATOMIC_RELAXED); // several read
    return zoCustomHashTable_GetKeyAtIndex(aConfigFile->mSections, anIndex);
}

size_t zoConfigFile_GetKeyCount(const zoConfigFile* aConfigFile, const char* aSection)
{
    const Section* theSection = FindSection(aConfigFile, aSection);
    return theSection ? zoCustomHashTable_GetTupleCount(theSection->mEntries) : 0;
}

const char* zoConfigFile_GetKeyAt(const zoConfigFile* aConfigFile, const char* aSection, size_t anIndex)
{
    const Section* theSection = FindSection(aConfigFile, aSection);
    return theSection ? zoCustomHashTable_GetKeyAtIndex(theSection->mEntries, anIndex) : nullptr;
}

// ---- Setting ----

// A section that is new to the file goes to its end, after an empty line.
static Section* FindOrWriteSection(zoConfigFile* aConfigFile, const char* aSection)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    if (theSection) { return theSection; }
    theSection = FindOrAddSection(aConfigFile, aSection);
    if (*aSection == '\0') { return theSection; }
    ConfigFile::Lines* theLines = &aConfigFile->mLines;
    if (!ConfigFile::EndsWithEmptyLine(theLines)) { ConfigFile::InsertLine(theLines, theLines->mLast, ""); }
    zoBuffer* theHeader = zoBuffer_New(strlen(aSection) + 8);
    Shared::AppendLiteral(theHeader, "[");
    ConfigFile::AppendEscaped(theHeader, aSection, true);
    Shared::AppendLiteral(theHeader, "]");
    theSection->mLastLine = ConfigFile::InsertLine(theLines, theLines->mLast, { theHeader->mPtr, theHeader->mPos });
    theSection->mfHasHeader = true;
    zoBuffer_Delete(theHeader);
    return theSection;
}

static void AddKey(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, const char* aValue)
{
    Section* theSection = FindOrWriteSection(aConfigFile, aSection);
    zoBuffer* theText = zoBuffer_New(strlen(aKey) + strlen(aValue) + 8);
    ConfigFile::AppendEscaped(theText, aKey, true);
    Shared::AppendLiteral(theText, "=");
    ConfigFile::AppendEscaped(theText, aValue, false);
    theSection->mLastLine =
        ConfigFile::InsertLine(&aConfigFile->mLines, theSection->mLastLine, { theText->mPtr, theText->mPos });
    PutEntry(theSection, aKey, NewEntryWithValue(theSection->mLastLine, aValue));
    zoBuffer_Delete(theText);
}

// What a key's line has before its value: name, equal sign and blanks.
static std::string_view BeforeValue(const Line* aLine)
{
    const std::string_view theContent = ConfigFile::ContentOf(aLine);
    const size_t theAfterName = theContent.find('=') + 1;
    const std::string_view theValue = Trimmed(theContent.substr(theAfterName));
    return theContent.substr(0, static_cast<size_t>(theValue.data() - theContent.data()));
}

static void ChangeKey(zoConfigFile* aConfigFile, Section* aSection, const char* aKey, const char* aValue)
{
    Line* theLine = FindEntry(aSection, aKey)->mLine;
    const std::string_view theBeginning = BeforeValue(theLine);
    zoBuffer* theText = zoBuffer_New(theBeginning.size() + strlen(aValue) + 8);
    Shared::Append(theText, theBeginning);
    ConfigFile::AppendEscaped(theText, aValue, false);
    Line* theChanged = ConfigFile::ReplaceLine(&aConfigFile->mLines, theLine, { theText->mPtr, theText->mPos });
    if (aSection->mLastLine == theLine) { aSection->mLastLine = theChanged; }
    PutEntry(aSection, aKey, NewEntryWithValue(theChanged, aValue));
    zoBuffer_Delete(theText);
}

// Removes all lines of the key; new keys of its section go where they were.
static void RemoveKey(zoConfigFile* aConfigFile, const char* aSection, const char* aKey)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    for (Line* theLine = FindEntry(theSection, aKey)->mLine; theLine;)
    {
        Line* theSameKey = theLine->mSameKey;
        if (theSection->mLastLine == theLine) { theSection->mLastLine = theLine->mPrevious; }
        ConfigFile::RemoveLine(&aConfigFile->mLines, theLine);
        theLine = theSameKey;
    }
    zoCustomHashTable_Remove(theSection->mEntries, aKey);
    if (theSection->mfHasHeader || zoCustomHashTable_GetTupleCount(theSection->mEntries) > 0) { return; }
    zoCustomHashTable_Delete(theSection->mEntries);
    zoCustomHashTable_Remove(aConfigFile->mSections, aSection);
}

void zoConfigFile_SetString(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, const char* aValue)
{
    if (!aConfigFile || !aSection || !aKey) { return; }
    Section* theSection = FindSection(aConfigFile, aSection);
    Entry* theEntry = FindEntry(theSection, aKey);
    if (!theEntry && aValue) { AddKey(aConfigFile, aSection, aKey, aValue); }
    else if (theEntry && !aValue) { RemoveKey(aConfigFile, aSection, aKey); }
    else if (theEntry && strcmp(ValueOf(theEntry), aValue) != 0) { ChangeKey(aConfigFile, theSection, aKey, aValue); }
}
