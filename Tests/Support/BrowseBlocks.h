#pragma once

#include <UPnP/Utilities/UPnPDIDL.h>
#include <cstddef>
#include <cstdlib>
#include <vector>

/* The records of all objects of a Browse result, kept while it lives. */
class BrowseBlocks
{
public:
    /* Takes all memory of its own at once, so that the heap of what Read calls can be told from it. */
    explicit BrowseBlocks(size_t aMostBlocks) { mBlocks.reserve(aMostBlocks); }
    ~BrowseBlocks()
    {
        for (char* theBlock : mBlocks)
            free(theBlock);
    }
    BrowseBlocks(const BrowseBlocks&) = delete;
    BrowseBlocks& operator=(const BrowseBlocks&) = delete;

    /* Reads the objects one by one, also those that are inside each other. aText is changed; aBaseURL may be NULL. */
    void Read(const char* aText, const char* aBaseURL)
    {
        UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(aText, aBaseURL);
        for (int theType = kDIDLItemType_Item; theType != kDIDLItemType_None;)
        {
            char* theData = nullptr;
            char* theRes = nullptr;
            UPnPDIDLDocument_NextObject(theDocument, &theData, &theRes, &theType);
            mBlocks.push_back(theData);
            mBlocks.push_back(theRes);
        }
        UPnPDIDLDocument_Delete(theDocument);
    }

private:
    std::vector<char*> mBlocks;
};
