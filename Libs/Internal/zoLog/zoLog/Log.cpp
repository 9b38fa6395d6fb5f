#include <zoLog/Log.h>

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static const size_t kFirstCapacity = 200; // holds most messages, which then take one allocation

// Logging never ends the process: without memory, a message is dropped or cut.
struct zoLogRecord_t
{
    int mLevel;
    int mModule;
    int mLine;
    const char* mFile; // borrowed
    char* mText;       // mFirst, or a larger block, which is owned; mLength bytes and a NUL of mCapacity
    size_t mLength;
    size_t mCapacity;
    char mFirst[kFirstCapacity];
};

int _zoLog_Level = ZOLOGLEVEL_INFO;

static const char* LevelName(int aLevel)
{
    static const char* const kNames[] = { "none", "error", "warning", "info", "debug" };
    return aLevel >= ZOLOGLEVEL_NONE && aLevel <= ZOLOGLEVEL_DEBUG ? kNames[aLevel] : "level?";
}

// Messages quote texts of other devices, which must not forge lines.
static void BlankControls(char* aText, int aLength)
{
    for (int i = 0; i < aLength; ++i)
    {
        const unsigned char theByte = static_cast<unsigned char>(aText[i]);
        if (theByte < 0x20 || theByte == 0x7F) { aText[i] = ' '; }
    }
}

static void WriteToStandardError(int aLevel, int aModule, const char* aFile, int aLine, const char* aText, void*)
{
    size_t theTextLength = strlen(aText);
    if (theTextLength > 0 && aText[theTextLength - 1] == '\n') { --theTextLength; }

    char* theLine = nullptr;
    const int theShownLength = static_cast<int>(theTextLength);
    const int theLength =
        *aFile ? asprintf(&theLine, "%s [%d] %s:%d: %.*s\n", LevelName(aLevel), aModule, aFile, aLine, theShownLength,
                          aText)
               : asprintf(&theLine, "%s [%d]: %.*s\n", LevelName(aLevel), aModule, theShownLength, aText);
    if (theLength <= 0) { return; }
    BlankControls(theLine, theLength - 1);

    ssize_t theWritten = 0;
    do
        theWritten = write(STDERR_FILENO, theLine, static_cast<size_t>(theLength));
    while (theWritten < 0 && errno == EINTR);
    free(theLine);
}

static zoLogSink_t sSink = WriteToStandardError;
static void* sSinkUserData = nullptr;

void zoLog_SetSink(zoLogSink_t aSink, void* aUserData)
{
    sSink = aSink ? aSink : WriteToStandardError;
    sSinkUserData = aUserData;
}

zoLogRecord_t* zoLog_Begin(int aLevel, int aModule)
{
    if (aLevel >= _zoLog_Level) { return nullptr; }
    zoLogRecord_t* theRecord = static_cast<zoLogRecord_t*>(malloc(sizeof(zoLogRecord_t)));
    if (!theRecord) { return nullptr; }
    theRecord->mLevel = aLevel;
    theRecord->mModule = aModule;
    theRecord->mLine = 0;
    theRecord->mFile = "";
    theRecord->mText = theRecord->mFirst;
    theRecord->mLength = 0;
    theRecord->mCapacity = kFirstCapacity;
    theRecord->mFirst[0] = '\0';
    return theRecord;
}

void zoLog_SetLocation(zoLogRecord_t* aRecord, const char* aFile, int aLine)
{
    if (!aRecord) { return; }
    aRecord->mFile = aFile ? aFile : "";
    aRecord->mLine = aLine;
}

static bool MakeRoom(zoLogRecord_t* aRecord, size_t aCount)
{
    const size_t theNeeded = aRecord->mLength + aCount + 1;
    const size_t theCapacity = theNeeded > aRecord->mCapacity * 2 ? theNeeded : aRecord->mCapacity * 2;
    const bool fIsFirst = aRecord->mText == aRecord->mFirst;
    char* theText = static_cast<char*>(realloc(fIsFirst ? nullptr : aRecord->mText, theCapacity));
    if (!theText) { return false; }
    if (fIsFirst) { memcpy(theText, aRecord->mFirst, aRecord->mLength); }
    aRecord->mText = theText;
    aRecord->mCapacity = theCapacity;
    return true;
}

void zoLog_Append_F(zoLogRecord_t* aRecord, const char* aFormat, ...)
{
    va_list theArguments;
    va_start(theArguments, aFormat);
    zoLog_Append_V(aRecord, aFormat, theArguments);
    va_end(theArguments);
}

void zoLog_Append_V(zoLogRecord_t* aRecord, const char* aFormat, va_list anArguments)
{
    if (!aRecord) { return; }
    va_list theArguments;
    va_copy(theArguments, anArguments);
    const size_t theRoom = aRecord->mCapacity - aRecord->mLength;
    int theLength = vsnprintf(aRecord->mText + aRecord->mLength, theRoom, aFormat, theArguments);
    va_end(theArguments);
    if (theLength >= 0 && static_cast<size_t>(theLength) >= theRoom)
    {
        const size_t theCount = static_cast<size_t>(theLength);
        theLength = MakeRoom(aRecord, theCount)
                        ? vsnprintf(aRecord->mText + aRecord->mLength, theCount + 1, aFormat, anArguments)
                        : -1;
    }
    if (theLength > 0) { aRecord->mLength += static_cast<size_t>(theLength); }
    aRecord->mText[aRecord->mLength] = '\0';
}

void zoLog_End(zoLogRecord_t* aRecord)
{
    if (!aRecord) { return; }
    sSink(aRecord->mLevel, aRecord->mModule, aRecord->mFile, aRecord->mLine, aRecord->mText, sSinkUserData);
    if (aRecord->mText != aRecord->mFirst) { free(aRecord->mText); }
    free(aRecord);
}
