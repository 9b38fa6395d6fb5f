#pragma once

#include "Owned.h"
#include <cstring>
#include <string>
#include <utility>
#include <vector>
#include <zoltTools/zoPackedData.h>

/* Records and string arrays made by hand, and what they hold. */

typedef Owned<zoPackedData_t, zoPackedData_Free> PackedData;

// A record with one entry that is empty.
inline zoPackedData_t* NewEntry()
{
    zoPackedData_t* theRecord = zoPackedData_New(1);
    zoPackedData_AddNewEntry(theRecord);
    return theRecord;
}

inline void AddText(zoPackedData_t* aRecord, uint16 aTag, const std::string& aText)
{
    zoPackedData_AddData(aRecord, aTag, aText.c_str(), aText.size() + 1);
}

inline void AddTexts(zoPackedData_t* aRecord, const std::vector<std::pair<uint16, const char*>>& aTexts)
{
    for (const auto& [theTag, theText] : aTexts)
        AddText(aRecord, theTag, theText);
}

template <typename Number>
void AddNumber(zoPackedData_t* aRecord, uint16 aTag, Number aNumber)
{
    zoPackedData_AddData(aRecord, aTag, &aNumber, sizeof(aNumber));
}

// A text of a record; "(none)" when the tag is absent or has no bytes.
inline std::string TextOf(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    size_t theSize = 0;
    const char* theText = zoPackedData_GetData(aRecord, anEntry, aTag, &theSize);
    return theText ? std::string(theText, strnlen(theText, theSize)) : "(none)";
}

// The texts of an array of a record, each with a "|" after it.
inline std::string TextsOf(const zoPackedData_t* aRecord, uint32 anEntry, uint16 aTag)
{
    zoArray_t* theArray = zoPackedData_GetDataArray(aRecord, anEntry, aTag, zoStringArray_UnFlattenerFunc);
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    std::string theTexts;
    for (size_t i = 0; i < zoArray_GetCount(theArray); ++i)
        theTexts += static_cast<char*>(zoArray_At(theArray, i)) + std::string("|");
    zoArray_Delete(theArray);
    return theTexts;
}

inline zoArray_t* NewStringArray(const std::vector<std::string>& aTexts)
{
    zoArray_t* theArray = zoArray_New();
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    for (const std::string& theText : aTexts)
        zoArray_Append(theArray, strdup(theText.c_str()));
    return theArray;
}

inline void AddTextArray(zoPackedData_t* aRecord, uint16 aTag, const std::vector<std::string>& aTexts)
{
    zoArray_t* theArray = NewStringArray(aTexts);
    zoPackedData_AddArray(aRecord, aTag, theArray, zoStringArray_FlattenerFunc);
    zoArray_Delete(theArray);
}
