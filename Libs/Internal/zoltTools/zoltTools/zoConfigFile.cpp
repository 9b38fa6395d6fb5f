#include <zoltTools/zoConfigFile.h>

#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <zoLog/Log.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoConfigFileStorage.h>
#include <zoltTools/zoConvert.h>
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

struct Line
{
    Line* mPrevious;
    Line* mNext;
    const char* mText; // without the line end; a piece of the text that was loaded, or mOwnText
    size_t mLength;
    char* mOwnText;
    size_t mValueOffset; // of a key's line
    Line* mSameKey;      // the line before this one with the same key
    LineEnd mEnd;
};

struct Entry
{
    char* mValue; // owned
    Line* mLine;  // the last one with this key, the one that counts
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

template <typename Record>
static Record* AddRecord(zoCustomHashTable* aTable, const char* aKey)
{
    char* theRecord = static_cast<char*>(zoMallocZeroed(sizeof(Record)));
    zoCustomHashTable_AddValueAllocated(aTable, aKey, theRecord);
    return reinterpret_cast<Record*>(theRecord);
}

static Section* FindSection(const zoConfigFile* aConfigFile, const char* aSection)
{
    return aConfigFile && aSection ? FindRecord<Section>(aConfigFile->mSections, aSection) : nullptr;
}

static Section* FindOrAddSection(zoConfigFile* aConfigFile, const char* aSection)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    if (theSection) { return theSection; }
    theSection = AddRecord<Section>(aConfigFile->mSections, aSection);
    theSection->mEntries = zoCustomHashTable_New_String_String();
    return theSection;
}

// ---- Escapes ----

static bool IsBlank(char aByte) { return aByte == ' ' || aByte == '\t'; }

static int HexValue(char aDigit)
{
    if (aDigit >= '0' && aDigit <= '9') { return aDigit - '0'; }
    const char theLetter = static_cast<char>(aDigit | 0x20);
    return theLetter >= 'a' && theLetter <= 'f' ? theLetter - 'a' + 10 : -1;
}

namespace
{

// Letters behind a backslash, and what they stand for.
struct Escape
{
    char mLetter;
    char mByte;
};

const Escape kEscapes[] = { { '\\', '\\' }, { 'n', '\n' }, { 'r', '\r' }, { 't', '\t' }, { 's', ' ' } };

} // namespace

// The length of the escape that aLength bytes begin with, and the byte that it stands for; 0 when it is none.
static size_t ReadEscape(const char* aText, size_t aLength, bool afIsName, char* aByte)
{
    if (aLength < 2 || aText[0] != '\\') { return 0; }
    for (const Escape& theEscape : kEscapes)
    {
        if (aText[1] != theEscape.mLetter) { continue; }
        *aByte = theEscape.mByte;
        return 2;
    }
    if (!afIsName || aLength < 4 || aText[1] != 'x') { return 0; }
    const int theHigh = HexValue(aText[2]);
    const int theLow = HexValue(aText[3]);
    if (theHigh < 0 || theLow < 0 || (theHigh | theLow) == 0) { return 0; } // a name has no NUL
    *aByte = static_cast<char>(theHigh * 16 + theLow);
    return 4;
}

// What a name or a value that stands in a line means: a new text.
static char* NewUnescaped(const char* aText, size_t aLength, bool afIsName)
{
    char* theText = static_cast<char*>(zoMalloc(aLength + 1));
    char* theTarget = theText;
    for (size_t i = 0; i < aLength; ++theTarget)
    {
        const size_t theEscapeLength = ReadEscape(aText + i, aLength - i, afIsName, theTarget);
        if (theEscapeLength == 0) { *theTarget = aText[i]; }
        i += theEscapeLength > 0 ? theEscapeLength : 1;
    }
    *theTarget = '\0';
    return theText;
}

static bool NeedsHex(const char* aName, const char* aByte)
{
    return *aByte == '=' || *aByte == ']' || (aByte == aName && strchr("[#;\xEF", *aByte));
}

static void AppendHex(zoBuffer* aBuffer, char aByte)
{
    static const char kDigits[] = "0123456789ABCDEF";
    const uint8 theByte = static_cast<uint8>(aByte);
    const char theEscape[] = { '\\', 'x', kDigits[theByte >> 4], kDigits[theByte & 15] };
    zoBuffer_Append(aBuffer, theEscape, sizeof(theEscape));
}

// Appends a name or a value so that it is read as what it is.
static void AppendEscaped(zoBuffer* aBuffer, const char* aText, bool afIsName)
{
    for (const char* theByte = aText; *theByte; ++theByte)
    {
        const Escape* theEscape = nullptr;
        const bool fIsAtEnd = theByte == aText || theByte[1] == '\0';
        for (const Escape& theCandidate : kEscapes)
        {
            if (*theByte == theCandidate.mByte && (*theByte != ' ' || fIsAtEnd)) { theEscape = &theCandidate; }
        }
        const char thePair[] = { '\\', theEscape ? theEscape->mLetter : '\0' };
        if (theEscape) { zoBuffer_Append(aBuffer, thePair, sizeof(thePair)); }
        else if (afIsName && NeedsHex(aText, theByte)) { AppendHex(aBuffer, *theByte); }
        else { zoBuffer_Append(aBuffer, theByte, 1); }
    }
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

static void SetOwnText(Line* aLine, zoBuffer* aBuffer)
{
    free(aLine->mOwnText);
    aLine->mLength = aBuffer->mPos;
    zoBuffer_Append(aBuffer, "", 1);
    aLine->mOwnText = zoBuffer_TakeOwnership(aBuffer, nullptr, nullptr);
    aLine->mText = aLine->mOwnText;
    zoBuffer_Delete(aBuffer);
}

// A new line of its own behind another; takes the text over.
static Line* AddLine(zoConfigFile* aConfigFile, Line* aPrevious, zoBuffer* aText)
{
    Line* theLine = static_cast<Line*>(zoMallocZeroed(sizeof(Line)));
    theLine->mEnd = aConfigFile->mLineEnd;
    SetOwnText(theLine, aText);
    LinkBehind(aConfigFile, aPrevious, theLine);
    return theLine;
}

static void FreeLine(Line* aLine)
{
    free(aLine->mOwnText);
    free(aLine);
}

static void RemoveLine(zoConfigFile* aConfigFile, Line* aLine)
{
    (aLine->mPrevious ? aLine->mPrevious->mNext : aConfigFile->mFirst) = aLine->mNext;
    (aLine->mNext ? aLine->mNext->mPrevious : aConfigFile->mLast) = aLine->mPrevious;
    FreeLine(aLine);
}

// ---- Loading ----

// Takes the blanks at its ends off a text.
static void Trim(const char** aText, size_t* aLength)
{
    for (; *aLength > 0 && IsBlank(**aText); --*aLength)
        ++*aText;
    while (*aLength > 0 && IsBlank((*aText)[*aLength - 1]))
        --*aLength;
}

// The section whose header the trimmed text of a line is; NULL when it is none.
static Section* ReadHeader(zoConfigFile* aConfigFile, const char* aText, size_t aLength)
{
    const char* theEnd = static_cast<const char*>(memchr(aText, ']', aLength));
    if (!theEnd) { return nullptr; }
    const char* theName = aText + 1;
    size_t theNameLength = static_cast<size_t>(theEnd - theName);
    Trim(&theName, &theNameLength);
    char* theSectionName = NewUnescaped(theName, theNameLength, true);
    Section* theSection = FindOrAddSection(aConfigFile, theSectionName);
    theSection->mfHasHeader = true;
    free(theSectionName);
    return theSection;
}

static void SetEntry(Entry* anEntry, char* aValue, Line* aLine)
{
    free(anEntry->mValue);
    anEntry->mValue = aValue;
    anEntry->mLine = aLine;
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
    Trim(&theName, &theNameLength);
    Trim(&theValue, &theValueLength);
    aLine->mValueOffset = static_cast<size_t>(theValue - aLine->mText);

    if (!*aSection) { *aSection = FindOrAddSection(aConfigFile, ""); }
    char* theKey = NewUnescaped(theName, theNameLength, true);
    Entry* theEntry = FindRecord<Entry>((*aSection)->mEntries, theKey);
    if (!theEntry) { theEntry = AddRecord<Entry>((*aSection)->mEntries, theKey); }
    aLine->mSameKey = theEntry->mLine;
    SetEntry(theEntry, NewUnescaped(theValue, theValueLength, false), aLine);
    free(theKey);
    return true;
}

// Finds out what a line says, in the section that the lines before it are in.
static void ReadLine(zoConfigFile* aConfigFile, Section** aSection, Line* aLine)
{
    const char* theText = aLine->mText;
    size_t theLength = aLine->mLength;
    Trim(&theText, &theLength);
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

// Takes the text over.
static void Load(zoConfigFile* aConfigFile, char* aText, size_t aLength)
{
    static const char kByteOrderMark[] = "\xEF\xBB\xBF";
    const char* theText = aText;
    const char* theEnd = aText + aLength;
    aConfigFile->mText = aText;
    aConfigFile->mfHasByteOrderMark = aLength >= 3 && memcmp(aText, kByteOrderMark, 3) == 0;
    if (aConfigFile->mfHasByteOrderMark) { theText += 3; }
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

static void FreeSection(Section* aSection)
{
    for (size_t i = 0; i < zoCustomHashTable_GetTupleCount(aSection->mEntries); ++i)
        free(RecordAt<Entry>(aSection->mEntries, i)->mValue);
    zoCustomHashTable_Delete(aSection->mEntries);
}

void zoConfigFile_Delete(zoConfigFile* aConfigFile)
{
    if (!aConfigFile) { return; }
    for (size_t i = 0; i < zoCustomHashTable_GetTupleCount(aConfigFile->mSections); ++i)
        FreeSection(RecordAt<Section>(aConfigFile->mSections, i));
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

char* zoConfigFile_GetText(const zoConfigFile* aConfigFile, size_t* aLength)
{
    static const char* const kLineEnds[] = { "", "\r", "\n", "\r\n" };
    zoBuffer* theBuffer = zoBuffer_New(1024);
    if (aConfigFile && aConfigFile->mfHasByteOrderMark) { zoBuffer_AppendStr(theBuffer, "\xEF\xBB\xBF"); }
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
    return theEntry ? theEntry->mValue : aDefaultValue;
}

char* zoConfigFile_GetStringWithSubstitution(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                             const char* aDefaultValue, zoStringSubstitution_t aSubstitution)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, aDefaultValue);
    return theValue && aSubstitution ? aSubstitution(theValue) : zoStrdup(theValue);
}

static bool ReadNumber(const char* aText, uint32* aNumber)
{
    const bool fIsHex = aText[0] == '0' && (aText[1] == 'x' || aText[1] == 'X');
    return (fIsHex ? zoConvert_strtouint32_base(aText + 2, aNumber, 16) : zoConvert_strtouint32(aText, aNumber)) ==
           kzoConvertError_None;
}

// The value of a key when it is a number up to aMost; else the default.
static uint32 GetUnsigned(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32 aDefaultValue,
                          uint32 aMost)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    uint32 theNumber = 0;
    return theValue && ReadNumber(theValue, &theNumber) && theNumber <= aMost ? theNumber : aDefaultValue;
}

uint32 zoConfigFile_GetUInt32(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              uint32 aDefaultValue)
{
    return GetUnsigned(aConfigFile, aSection, aKey, aDefaultValue, UINT32_MAX);
}

uint16 zoConfigFile_GetUInt16(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              uint16 aDefaultValue)
{
    return static_cast<uint16>(GetUnsigned(aConfigFile, aSection, aKey, aDefaultValue, UINT16_MAX));
}

uint8 zoConfigFile_GetUInt8(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                            uint8 aDefaultValue)
{
    return static_cast<uint8>(GetUnsigned(aConfigFile, aSection, aKey, aDefaultValue, UINT8_MAX));
}

int32 zoConfigFile_GetInt32(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                            int32 aDefaultValue)
{
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    uint32 theNumber = 0;
    const bool fIsNegative = theValue && *theValue == '-';
    const uint32 theMost = static_cast<uint32>(INT32_MAX) + fIsNegative;
    const bool fIsNumber = theValue && ReadNumber(theValue + fIsNegative, &theNumber) && theNumber <= theMost;
    if (!fIsNumber) { return aDefaultValue; }
    return static_cast<int32>(fIsNegative ? -static_cast<int64>(theNumber) : static_cast<int64>(theNumber));
}

static char ToLower(char aByte) { return aByte >= 'A' && aByte <= 'Z' ? static_cast<char>(aByte | 0x20) : aByte; }

static bool IsWord(const char* aText, const char* aWord)
{
    for (; *aWord && ToLower(*aText) == *aWord; ++aWord)
        ++aText;
    return *aText == '\0' && *aWord == '\0';
}

int zoConfigFile_OptionIsSet(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue)
{
    static const struct
    {
        const char* mWord;
        int mfIsSet;
    } kWords[] = {
        { "1", 1 },     { "true", 1 }, { "yes", 1 }, { "on", 1 }, { "0", 0 },
        { "false", 0 }, { "no", 0 },   { "off", 0 }, { "", 0 },
    };
    const char* theValue = zoConfigFile_GetString(aConfigFile, aSection, aKey, nullptr);
    for (const auto& theWord : kWords)
    {
        if (theValue && IsWord(theValue, theWord.mWord)) { return theWord.mfIsSet; }
    }
    return aDefaultValue;
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
    AppendEscaped(theHeader, aSection, true);
    zoBuffer_AppendStr(theHeader, "]");
    theSection->mLastLine = AddLine(aConfigFile, aConfigFile->mLast, theHeader);
    theSection->mfHasHeader = true;
    return theSection;
}

// Takes the value over.
static void AddKey(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, char* aValue)
{
    Section* theSection = FindOrWriteSection(aConfigFile, aSection);
    zoBuffer* theText = zoBuffer_New(strlen(aKey) + strlen(aValue) + 8);
    AppendEscaped(theText, aKey, true);
    zoBuffer_AppendStr(theText, "=");
    const size_t theValueOffset = theText->mPos;
    AppendEscaped(theText, aValue, false);
    Line* theLine = AddLine(aConfigFile, theSection->mLastLine, theText);
    theLine->mValueOffset = theValueOffset;
    theSection->mLastLine = theLine;
    SetEntry(AddRecord<Entry>(theSection->mEntries, aKey), aValue, theLine);
}

// Takes the value over. What stands before the value in its line stays.
static void ChangeKey(Entry* anEntry, char* aValue)
{
    Line* theLine = anEntry->mLine;
    zoBuffer* theText = zoBuffer_New(theLine->mValueOffset + strlen(aValue) + 8);
    zoBuffer_Append(theText, theLine->mText, theLine->mValueOffset);
    AppendEscaped(theText, aValue, false);
    SetOwnText(theLine, theText);
    SetEntry(anEntry, aValue, theLine);
}

// Removes all lines of the key; new keys of its section go where they were.
static void RemoveKey(zoConfigFile* aConfigFile, const char* aSection, const char* aKey)
{
    Section* theSection = FindSection(aConfigFile, aSection);
    Entry* theEntry = FindRecord<Entry>(theSection->mEntries, aKey);
    for (Line* theLine = theEntry->mLine; theLine;)
    {
        Line* theSameKey = theLine->mSameKey;
        if (theSection->mLastLine == theLine) { theSection->mLastLine = theLine->mPrevious; }
        RemoveLine(aConfigFile, theLine);
        theLine = theSameKey;
    }
    free(theEntry->mValue);
    zoCustomHashTable_Remove(theSection->mEntries, aKey);
    if (theSection->mfHasHeader || zoCustomHashTable_GetTupleCount(theSection->mEntries) > 0) { return; }
    FreeSection(theSection);
    zoCustomHashTable_Remove(aConfigFile->mSections, aSection);
}

void zoConfigFile_SetString(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, const char* aValue)
{
    if (!aConfigFile || !aSection || !aKey) { return; }
    const Section* theSection = FindSection(aConfigFile, aSection);
    Entry* theEntry = theSection ? FindRecord<Entry>(theSection->mEntries, aKey) : nullptr;
    if (!aValue)
    {
        if (theEntry) { RemoveKey(aConfigFile, aSection, aKey); }
        return;
    }
    if (!theEntry) { AddKey(aConfigFile, aSection, aKey, zoStrdup(aValue)); }
    else if (strcmp(theEntry->mValue, aValue) != 0) { ChangeKey(theEntry, zoStrdup(aValue)); }
}

// ---- Substitution ----

char* zoStringSubstitution_Replace_HostName(const char* aText)
{
    static const char kPlaceHolder[] = "%HOSTNAME%";
    if (!aText) { return nullptr; }
    char theHostName[256] = "";
    if (gethostname(theHostName, sizeof(theHostName) - 1) != 0) { theHostName[0] = '\0'; }
    zoBuffer* theBuffer = zoBuffer_New(strlen(aText) + 1);
    const char* theFound;
    for (; (theFound = strstr(aText, kPlaceHolder)) != nullptr; aText = theFound + sizeof(kPlaceHolder) - 1)
    {
        zoBuffer_Append(theBuffer, aText, static_cast<size_t>(theFound - aText));
        zoBuffer_AppendStr(theBuffer, theHostName);
    }
    zoBuffer_Append(theBuffer, aText, strlen(aText) + 1);
    char* theText = zoBuffer_TakeOwnership(theBuffer, nullptr, nullptr);
    zoBuffer_Delete(theBuffer);
    return theText;
}
