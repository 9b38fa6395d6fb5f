// Entries found by a text of theirs.

#include <zoltTools/zoPackedData.h>

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoPackedData.h>

using namespace PackedData;

// The entries that one question is about. The first one is kept until the record is added to: several threads may be
// reading.
struct PackedData::Selection
{
    uint16 mTag;
    size_t mTextLength;
    const char* mText;
    uint32 mCount;
    uint32 mEntries[1]; // mCount of them, then the text
};

static bool IsSelected(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag, const char* aText, size_t aLength)
{
    size_t theSize = 0;
    const char* theValue = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return theValue && memmem(theValue, strnlen(theValue, theSize), aText, aLength);
}

static Selection* NewSelection(const zoPackedData_t* aRecord, uint16 aTag, const char* aText, size_t aLength)
{
    const size_t theEntriesSize = Shared::MultiplySizes(aRecord->mEntryCount, sizeof(uint32));
    const size_t theSize = Shared::AddSizes(sizeof(Selection), Shared::AddSizes(theEntriesSize, aLength));
    Selection* theSelection = static_cast<Selection*>(zoMalloc(theSize));
    uint32* theEntries = theSelection->mEntries;
    uint32 theCount = 0;
    for (uint32 i = 0; i < aRecord->mEntryCount; ++i)
    {
        if (IsSelected(aRecord, i, aTag, aText, aLength)) { theEntries[theCount++] = i; }
    }
    const char* theText = static_cast<char*>(memcpy(theEntries + theCount, aText, aLength));
    theSelection->mTag = aTag;
    theSelection->mTextLength = aLength;
    theSelection->mText = theText;
    theSelection->mCount = theCount;
    return theSelection;
}

static bool IsAbout(const Selection* aSelection, uint16 aTag, const char* aText, size_t aLength)
{
    return aSelection->mTag == aTag && aSelection->mTextLength == aLength &&
           memcmp(aSelection->mText, aText, aLength) == 0;
}

static uint32 EntryOf(const Selection* aSelection, uint32 aNumber, uint32* aCount)
{
    if (aCount) { *aCount = aSelection->mCount; }
    return aNumber < aSelection->mCount ? aSelection->mEntries[aNumber] : kzoPackedData_NoEntry;
}

uint32 zoPackedData_FindEntryWithText(const zoPackedData_t* aRecord, uint16 aTag, const char* aText, uint32 aNumber,
                                      uint32* aCount)
{
    if (aCount) { *aCount = 0; }
    const size_t theLength = aText ? strlen(aText) : 0;
    if (!aRecord || theLength == 0) { return kzoPackedData_NoEntry; }
    zoPackedData_t* theRecord = const_cast<zoPackedData_t*>(aRecord);
    Selection** theKept = &theRecord->mSelection;
    Selection* theSelection = __atomic_load_n(theKept, __ATOMIC_ACQUIRE);
    if (theSelection && IsAbout(theSelection, aTag, aText, theLength))
    {
        return EntryOf(theSelection, aNumber, aCount);
    }
    Selection* theNewSelection = NewSelection(aRecord, aTag, aText, theLength);
    const uint32 theEntry = EntryOf(theNewSelection, aNumber, aCount);
    Selection* theExpected = nullptr;
    const bool fIsKept =
        __atomic_compare_exchange_n(theKept, &theExpected, theNewSelection, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE);
    if (!fIsKept) { free(theNewSelection); }
    else if (aRecord->mfOpen) { theRecord->mCountLimit = 0; } // the next value is added by the way that drops it
    return theEntry;
}
