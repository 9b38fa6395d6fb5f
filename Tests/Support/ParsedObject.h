#pragma once

#include "Records.h"
#include "Texts.h"
#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstring>
#include <string_view>

// A document parsed from a heap copy of exactly its size, so that address sanitizer sees one byte too far.
struct ParsedObject
{
    explicit ParsedObject(std::string_view aText) : mText(strndup(aText.data(), aText.size())) {}
    ~ParsedObject() { free(mText); }

    std::string Write(int afResExtraInfo = 1, const char* aSelectedURI = nullptr) const
    {
        return Taken(UPnPDIDL_Get(mEntry, mResources, 1, afResExtraInfo, aSelectedURI));
    }

    size_t Size() const { return zoPackedData_GetMemoryUsage(mEntry) + zoPackedData_GetMemoryUsage(mResources); }

    char* mText;
    char* mData = nullptr; // belongs to mEntry
    char* mRes = nullptr;  // belongs to mResources
    int mType = -1;
    int mResult = UPnPDIDL_ParseElements(mText, &mData, &mRes, &mType);
    PackedData mEntry = zoPackedData_NewData(mData);
    PackedData mResources = zoPackedData_NewData(mRes);
};
