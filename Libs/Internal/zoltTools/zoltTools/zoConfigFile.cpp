#include <zoltTools/zoConfigFile.h>

#include <stdlib.h>
#include <string.h>
#include <zoLog/Log.h>
#include <zoltTools/Private/zoConfigFileStorage.h>
#include <zoltTools/Private/zoConfigFileText.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoCustomHashTable.h>
#include <zoltTools/zoMemory.h>

// A configuration is the list of its lines, as they are written, and beside it the sections with their keys, each of
// which knows the line that it comes from. So a line that nobody changes keeps its bytes.

namespace
{

enum LineEnd : uint8
{
    kLineEnd_None, // of the last line of a text
    kLineEnd_CR,   // of the last line of a text, half a line end
    kLineEnd_LF,
    kLineEnd_CRLF
};

const char kByteOrderMark[] = "\xEF\xBB\xBF";

struct Line
{
    Line* mPrevious;
    Line* mNext;
    const char* mText; // without the line end; a piece of the text that was loaded, or the line's own
    size_t mLength;
    size_t mValueOffset; // of a key's line
    Line* mSameKey;      // the line before this one with the same key
    LineEnd mEnd;
    bool mfOwnsText;
};

// A key's line, the last one if there are several: the one that counts. Its value stands behind the record.
struct Entry
{
    Line* mLine;
};

struct Section
{
    zoCustomHashTable* mEntries; // of Entry
    Line* mLastLine;             // behind which a new key goes; NULL: at the begin
    bool mfHasHeader;
};

} // namespace

struct zoConfigFile
{
    char* mPath; // NULL: in memory only
    char* mText; // what was loaded
    bool mfIsLoaded;
    bool mfHasByteOrderMark;
    LineEnd mLineEnd; // of new lines
    Line* mFirst;
    Line* mLast;
    zoCustomHashTable* mSections; // of Section
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

static const char* ValueOf(const Entry* anEntry) { return reinterpret_cast<const char*>(anEntry + 1); }

// Puts a key's value and line in the place of what it had.
static void PutEntry(Section* aSection, const char* aKey, const char* aValue, Line* aLine)
{
    const size_t theSize = strlen(aValue) + 1;
    const Entry theEntry = { aLine };
    char* theRecord = static_cast<char*>(zoMalloc(sizeof(theEntry) + theSize));
    memcpy(theRecord, &theEntry, sizeof(theEntry));
    memcpy(theRecord + sizeof(theEntry), aValue, theSize);
    zoCustomHashTable_AddValueAllocated(aSection->mEntries, aKey, theRecord);
}

static Section* FindSection(const zoConfigFile* aConfigFile, const char* aSection)
{
    return aConfigFile && aSection ? FindRecord<Section>(aConfigFile->mSections, aSection) : nullptr;
}

static Section* FindOrAddSection(zoConfigFile* aConfigFile, const char* aSection)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    if (theSection) { return theSection; }
    theSection = static_cast<Section*>(zoMallocZeroed(sizeof(Section)));
    theSection->mEntries = zoCustomHashTable_New_String_String();
    zoCustomHashTable_AddValueAllocated(aConfigFile->mSections, aSection, reinterpret_cast<char*>(theSection));
    return theSection;
}

// ---- Lines ----

static void LinkBehind(zoConfigFile* aConfigFile, Line* aPrevious, Line* aLine)
{
    Line* theNext = aPrevious ? aPrevious->mNext : aConfigFile->mFirst;
    aLine->mPrevious = aPrevious;
    aLine->mNext = theNext;
    (aPrevious ? aPrevious->mNext : aConfigFile->mFirst) = aLine;
    (theNext ? theNext->mPrevious : aConfigFile->mLast) = aLine;
}

static void FreeText(Line* aLine)
{
    if (aLine->mfOwnsText) { free(const_cast<char*>(aLine->mText)); }
}

// Takes the text over.
static void SetText(Line* aLine, zoBuffer* aText)
{
    FreeText(aLine);
    zoBuffer_Append(aText, "", 1);
    aLine->mLength = aText->mPos - 1;
    aLine->mText = zoBuffer_TakeOwnership(aText, nullptr, nullptr);
    aLine->mfOwnsText = true;
    zoBuffer_Delete(aText);
}

// A new line of its own behind another; takes the text over.
static Line* AddLine(zoConfigFile* aConfigFile, Line* aPrevious, zoBuffer* aText)
{
    Line* theLine = static_cast<Line*>(zoMallocZeroed(sizeof(Line)));
    theLine->mEnd = aConfigFile->mLineEnd;
    SetText(theLine, aText);
    LinkBehind(aConfigFile, aPrevious, theLine);
    return theLine;
}

static void FreeLine(Line* aLine)
{
    FreeText(aLine);
    free(aLine);
}

static void RemoveLine(zoConfigFile* aConfigFile, Line* aLine)
{
    (aLine->mPrevious ? aLine->mPrevious->mNext : aConfigFile->mFirst) = aLine->mNext;
    (aLine->mNext ? aLine->mNext->mPrevious : aConfigFile->mLast) = aLine->mPrevious;
    FreeLine(aLine);
}

// ---- Loading ----

// The section whose header the trimmed text of a line is; NULL when it is none.
static Section* ReadHeader(zoConfigFile* aConfigFile, const char* aText, size_t aLength)
{
    const char* theEnd = static_cast<const char*>(memchr(aText, ']', aLength));
    if (!theEnd) { return nullptr; }
    const char* theName = aText + 1;
    size_t theNameLength = static_cast<size_t>(theEnd - theName);
    zoConfigFileText_Trim(&theName, &theNameLength);
    char* theSectionName = zoConfigFileText_NewUnescaped(theName, theNameLength, true);
    Section* theSection = FindOrAddSection(aConfigFile, theSectionName);
    theSection->mfHasHeader = true;
    free(theSectionName);
    return theSection;
}

// Whether the line has a key; it then is one of the section, or of "" for NULL.
static bool ReadKey(zoConfigFile* aConfigFile, Section** aSection, Line* aLine)
{
    const char* theEqualSign = static_cast<const char*>(memchr(aLine->mText, '=', aLine->mLength));
    if (!theEqualSign) { return false; }
    const char* theName = aLine->mText;
    size_t theNameLength = static_cast<size_t>(theEqualSign - theName);
    const char* theValue = theEqualSign + 1;
    size_t theValueLength = static_cast<size_t>(aLine->mText + aLine->mLength - theValue);
    zoConfigFileText_Trim(&theName, &theNameLength);
    zoConfigFileText_Trim(&theValue, &theValueLength);
    aLine->mValueOffset = static_cast<size_t>(theValue - aLine->mText);

    if (!*aSection) { *aSection = FindOrAddSection(aConfigFile, ""); }
    char* theKey = zoConfigFileText_NewUnescaped(theName, theNameLength, true);
    char* theText = zoConfigFileText_NewUnescaped(theValue, theValueLength, false);
    const Entry* theEntry = FindRecord<Entry>((*aSection)->mEntries, theKey);
    aLine->mSameKey = theEntry ? theEntry->mLine : nullptr;
    PutEntry(*aSection, theKey, theText, aLine);
    free(theText);
    free(theKey);
    return true;
}

// Finds out what a line says, in the section that the lines before it are in.
static void ReadLine(zoConfigFile* aConfigFile, Section** aSection, Line* aLine)
{
    const char* theText = aLine->mText;
    size_t theLength = aLine->mLength;
    zoConfigFileText_Trim(&theText, &theLength);
    if (theLength == 0 || *theText == '#' || *theText == ';' || memchr(theText, '\0', theLength)) { return; }
    if (*theText == '[')
    {
        Section* theSection = ReadHeader(aConfigFile, theText, theLength);
        if (!theSection) { return; }
        *aSection = theSection;
    }
    else if (!ReadKey(aConfigFile, aSection, aLine)) { return; }
    (*aSection)->mLastLine = aLine;
}

// Cuts the next line off the text.
static Line* TakeLine(const char** aText, const char* anEnd)
{
    Line* theLine = static_cast<Line*>(zoMallocZeroed(sizeof(Line)));
    const char* theLineFeed = static_cast<const char*>(memchr(*aText, '\n', static_cast<size_t>(anEnd - *aText)));
    theLine->mText = *aText;
    theLine->mLength = static_cast<size_t>((theLineFeed ? theLineFeed : anEnd) - *aText);
    theLine->mEnd = theLineFeed ? kLineEnd_LF : kLineEnd_None;
    *aText = theLineFeed ? theLineFeed + 1 : anEnd;
    if (theLine->mLength > 0 && theLine->mText[theLine->mLength - 1] == '\r')
    {
        --theLine->mLength;
        theLine->mEnd = theLineFeed ? kLineEnd_CRLF : kLineEnd_CR;
    }
    return theLine;
}

static bool BeginsWithMark(const char* aText, size_t aLength)
{
    const size_t theMarkLength = strlen(kByteOrderMark);
    return aLength >= theMarkLength && memcmp(aText, kByteOrderMark, theMarkLength) == 0;
}

// Takes the text over.
static void Load(zoConfigFile* aConfigFile, char* aText, size_t aLength)
{
    const char* theText = aText;
    const char* theEnd = aText + aLength;
    aConfigFile->mText = aText;
    aConfigFile->mfHasByteOrderMark = BeginsWithMark(aText, aLength);
    if (aConfigFile->mfHasByteOrderMark) { theText += strlen(kByteOrderMark); }
    Section* theSection = nullptr;
    while (theText < theEnd)
    {
        Line* theLine = TakeLine(&theText, theEnd);
        LinkBehind(aConfigFile, aConfigFile->mLast, theLine);
        ReadLine(aConfigFile, &theSection, theLine);
    }
    const bool fIsCRLF = aConfigFile->mFirst && aConfigFile->mFirst->mEnd == kLineEnd_CRLF;
    aConfigFile->mLineEnd = fIsCRLF ? kLineEnd_CRLF : kLineEnd_LF;
}

static zoConfigFile* New(const char* aPath, char* aText, size_t aLength)
{
    zoConfigFile* theConfigFile = static_cast<zoConfigFile*>(zoMallocZeroed(sizeof(zoConfigFile)));
    theConfigFile->mPath = zoStrdup(aPath);
    theConfigFile->mSections = zoCustomHashTable_New_String_String();
    theConfigFile->mfIsLoaded = aText != nullptr;
    Load(theConfigFile, aText ? aText : zoStrdup(""), aLength);
    return theConfigFile;
}

zoConfigFile* zoConfigFile_New(const char* aPath)
{
    size_t theLength = 0;
    char* theText = aPath ? zoConfigFileStorage_Read(aPath, &theLength) : zoStrdup("");
    return New(aPath, theText, theLength);
}

zoConfigFile* zoConfigFile_NewFromText(const char* aText, size_t aLength)
{
    const size_t theLength = aText ? aLength : 0;
    char* theText = static_cast<char*>(zoMalloc(theLength + 1));
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
    for (Line* theLine = aConfigFile->mFirst; theLine;)
    {
        Line* theNext = theLine->mNext;
        FreeLine(theLine);
        theLine = theNext;
    }
    free(aConfigFile->mText);
    free(aConfigFile->mPath);
    free(aConfigFile);
}

// ---- Saving ----

// How a line ends that another one follows, even if it was the last one before.
static LineEnd WholeEnd(const zoConfigFile* aConfigFile, const Line* aLine)
{
    switch (aLine->mEnd)
    {
    case kLineEnd_None: return aConfigFile->mLineEnd;
    case kLineEnd_CR: return kLineEnd_CRLF;
    default: return aLine->mEnd;
    }
}

// A mark of a line that has become the first is part of what the line says: one more is skipped in its place.
static bool NeedsByteOrderMark(const zoConfigFile* aConfigFile)
{
    const Line* theFirst = aConfigFile->mFirst;
    return aConfigFile->mfHasByteOrderMark || (theFirst && BeginsWithMark(theFirst->mText, theFirst->mLength));
}

char* zoConfigFile_GetText(const zoConfigFile* aConfigFile, size_t* aLength)
{
    static const char* const kLineEnds[] = { "", "\r", "\n", "\r\n" };
    zoBuffer* theBuffer = zoBuffer_New(1024);
    if (aConfigFile && NeedsByteOrderMark(aConfigFile)) { zoBuffer_AppendStr(theBuffer, kByteOrderMark); }
    for (const Line* theLine = aConfigFile ? aConfigFile->mFirst : nullptr; theLine; theLine = theLine->mNext)
    {
        zoBuffer_Append(theBuffer, theLine->mText, theLine->mLength);
        zoBuffer_AppendStr(theBuffer, kLineEnds[theLine->mNext ? WholeEnd(aConfigFile, theLine) : theLine->mEnd]);
    }
    if (aLength) { *aLength = theBuffer->mPos; }
    zoBuffer_Append(theBuffer, "", 1);
    char* theText = zoBuffer_TakeOwnership(theBuffer, nullptr, nullptr);
    zoBuffer_Delete(theBuffer);
    return theText;
}

static void LogNotLoaded(const char* aPath)
{
    zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_ERROR, ZOLOG_M_DEFAULT);
    if (!theRecord) { return; }
    zoLog_SetLocation(theRecord, __FILE__, __LINE__);
    zoLog_Append_F(theRecord, "zoConfigFile: '%s' could not be read and is not replaced\n", aPath);
    zoLog_End(theRecord);
}

int zoConfigFile_Save(zoConfigFile* aConfigFile)
{
    if (!aConfigFile) { return 0; }
    if (!aConfigFile->mPath) { return 1; }
    if (!aConfigFile->mfIsLoaded)
    {
        LogNotLoaded(aConfigFile->mPath);
        return 0;
    }
    size_t theLength = 0;
    char* theText = zoConfigFile_GetText(aConfigFile, &theLength);
    const int theResult = zoConfigFileStorage_Replace(aConfigFile->mPath, theText, theLength);
    free(theText);
    return theResult;
}

// ---- Asking ----

const char* zoConfigFile_GetString(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                   const char* aDefaultValue)
{
    const Section* theSection = FindSection(aConfigFile, aSection);
    const Entry* theEntry = theSection && aKey ? FindRecord<Entry>(theSection->mEntries, aKey) : nullptr;
    return theEntry ? ValueOf(theEntry) : aDefaultValue;
}

size_t zoConfigFile_GetSectionCount(const zoConfigFile* aConfigFile)
{
    return aConfigFile ? zoCustomHashTable_GetTupleCount(aConfigFile->mSections) : 0;
}

const char* zoConfigFile_GetSectionAt(const zoConfigFile* aConfigFile, size_t anIndex)
{
    return aConfigFile ? zoCustomHashTable_GetKeyAtIndex(aConfigFile->mSections, anIndex) : nullptr;
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

// A section that is new to the file stands at its end, behind an empty line.
static Section* FindOrWriteSection(zoConfigFile* aConfigFile, const char* aSection)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    if (theSection) { return theSection; }
    theSection = FindOrAddSection(aConfigFile, aSection);
    if (*aSection == '\0') { return theSection; }
    if (aConfigFile->mLast && aConfigFile->mLast->mLength > 0)
    {
        AddLine(aConfigFile, aConfigFile->mLast, zoBuffer_New(1));
    }
    zoBuffer* theHeader = zoBuffer_New(strlen(aSection) + 8);
    zoBuffer_AppendStr(theHeader, "[");
    zoConfigFileText_AppendEscaped(theHeader, aSection, true);
    zoBuffer_AppendStr(theHeader, "]");
    theSection->mLastLine = AddLine(aConfigFile, aConfigFile->mLast, theHeader);
    theSection->mfHasHeader = true;
    return theSection;
}

static void AddKey(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, const char* aValue)
{
    Section* theSection = FindOrWriteSection(aConfigFile, aSection);
    zoBuffer* theText = zoBuffer_New(strlen(aKey) + strlen(aValue) + 8);
    zoConfigFileText_AppendEscaped(theText, aKey, true);
    zoBuffer_AppendStr(theText, "=");
    const size_t theValueOffset = theText->mPos;
    zoConfigFileText_AppendEscaped(theText, aValue, false);
    Line* theLine = AddLine(aConfigFile, theSection->mLastLine, theText);
    theLine->mValueOffset = theValueOffset;
    theSection->mLastLine = theLine;
    PutEntry(theSection, aKey, aValue, theLine);
}

// What stands before the value in its line stays.
static void ChangeKey(Section* aSection, const char* aKey, const char* aValue, Line* aLine)
{
    zoBuffer* theText = zoBuffer_New(aLine->mValueOffset + strlen(aValue) + 8);
    zoBuffer_Append(theText, aLine->mText, aLine->mValueOffset);
    zoConfigFileText_AppendEscaped(theText, aValue, false);
    SetText(aLine, theText);
    PutEntry(aSection, aKey, aValue, aLine);
}

// Removes all lines of the key; new keys of its section go where they were.
static void RemoveKey(zoConfigFile* aConfigFile, const char* aSection, const char* aKey)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    const Entry* theEntry = FindRecord<Entry>(theSection->mEntries, aKey);
    for (Line* theLine = theEntry->mLine; theLine;)
    {
        Line* theSameKey = theLine->mSameKey;
        if (theSection->mLastLine == theLine) { theSection->mLastLine = theLine->mPrevious; }
        RemoveLine(aConfigFile, theLine);
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
    const Entry* theEntry = theSection ? FindRecord<Entry>(theSection->mEntries, aKey) : nullptr;
    if (!aValue)
    {
        if (theEntry) { RemoveKey(aConfigFile, aSection, aKey); }
        return;
    }
    if (!theEntry) { AddKey(aConfigFile, aSection, aKey, aValue); }
    else if (strcmp(ValueOf(theEntry), aValue) != 0) { ChangeKey(theSection, aKey, aValue, theEntry->mLine); }
}
