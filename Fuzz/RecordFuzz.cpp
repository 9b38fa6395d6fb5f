#include "FuzzRecords.h"

#include <UPnP/Utilities/CDSEntryInfo.h>
#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/UPnPDIDL.h>
#include <algorithm>
#include <zoLog/Log.h>

// The bytes are a document of one object; else the values of an entry record and a resource record, which no document
// need have made. After a first byte of 0xFE, three more damage a byte of the blocks. The records are then looked at in
// every way, written, and cut down.

namespace
{

// Changes a byte of one of the blocks. aBytes: its position, and what it is changed by.
void Damage(const uint8_t* aBytes, Records* aBlocks)
{
    char** const theBlock = aBytes[2] % 2 != 0 ? &aBlocks->mEntry : &aBlocks->mResources;
    zoPackedData_t* theRecord = zoPackedData_NewData(*theBlock);
    const size_t theSize = zoPackedData_GetMemoryUsage(theRecord);
    *theBlock = zoPackedData_TakeData(theRecord);
    zoPackedData_Free(theRecord);
    (*theBlock)[static_cast<size_t>(aBytes[0] << 8 | aBytes[1]) % theSize] ^= static_cast<char>(aBytes[2]);
}

Records ReadBlocks(const uint8_t* aBytes, size_t aSize)
{
    if (aSize < 4 || aBytes[0] != 0xFE) { return Read(aBytes, aSize); }
    Records theBlocks = Read(aBytes + 4, aSize - 4);
    Damage(aBytes + 1, &theBlocks);
    return theBlocks;
}

// A text of the functions for C is that of the class, but for one without a NUL, which they can't lend.
void RequireSame(const char* aBorrowed, const zoCString& aText)
{
    Require(*aBorrowed == 0 || aText == aBorrowed, "functions and classes give the same");
}

void CheckEntry(CDSEntryInfo& anInfo)
{
    zoCString theName, theData;
    for (int i = -1; i <= anInfo.GetExtraInfoCount(); ++i)
    {
        anInfo.GetExtraInfo(i, theName, theData);
        Require(theName == anInfo.GetExtraInfoName(i) && theData == anInfo.GetExtraInfoData(i), "a pair is its parts");
        const bool fIsThere = i >= 0 && i < anInfo.GetExtraInfoCount();
        Require(fIsThere || (theName.IsEmpty() && theData.IsEmpty()), "past the last pair there is none");
        RequireSame(CDSEntryInfo_GetExtraInfoName(anInfo.mPackedData, i), theName);
        RequireSame(CDSEntryInfo_GetExtraInfoData(anInfo.mPackedData, i), theData);
    }
    Require(!anInfo.IsContainer() || anInfo.GetInfoAsULong(kCDSEntryInfo_IsContainer) != 0, "a container says so");
    CDSEntryInfo* theClone = anInfo.Clone();
    for (uint16 theTag = 0; theTag < kCDSEntryInfo_Count; ++theTag)
    {
        Require(theClone->GetInfoAsCString(theTag) == anInfo.GetInfoAsCString(theTag), "a clone has the same texts");
        RequireSame(CDSEntryInfo_GetInfoAsStr(anInfo.mPackedData, theTag), anInfo.GetInfoAsCString(theTag));
    }
    delete theClone;
}

void CheckResource(CDSResourceInfo& anInfo, uint32 aResource)
{
    const int theCount = anInfo.GetExtraInfoCount(aResource);
    for (int i = 0; i < theCount; ++i)
    {
        const zoCString theName = anInfo.GetExtraInfoName(aResource, i);
        int theFirst = 0;
        while (!(anInfo.GetExtraInfoName(aResource, theFirst) == theName))
            ++theFirst;
        const zoCString theData = anInfo.GetExtraInfoData(aResource, theFirst);
        Require(theName.IsEmpty() || anInfo.GetExtraInfoDataByName(aResource, theName.c_str()) == theData,
                "a name stands for the first pair that has it");
        RequireSame(CDSResourceInfo_GetExtraInfoDataByName(anInfo.mPackedData, aResource, theName.c_str()), theData);
    }
    for (uint16 theTag = 0; theTag < kCDSResourceInfo_Count; ++theTag)
    {
        RequireSame(CDSResourceInfo_GetInfoAsStr(anInfo.mPackedData, aResource, theTag),
                    anInfo.GetInfoAsCString(aResource, theTag));
    }
    RequireSame(CDSResourceInfo_GetAdditionalInfo(anInfo.mPackedData, aResource),
                anInfo.GetProtocolInfoForResourceIndex(aResource));
    const zoCString theURI = anInfo.GetInfoAsCString(aResource, kCDSResourceInfo_URI);
    Require(theURI.IsEmpty() || anInfo.GetResourceIndexOfURI(theURI) <= static_cast<int>(aResource),
            "a URI is found where it comes first");
}

void CheckSubtitles(CDSResourceInfo& anInfo)
{
    const int theCount = anInfo.GetSubtitleCount();
    int theLast = -1;
    for (int i = 0; i < theCount; ++i)
    {
        const int theResource = anInfo.GetResourceIndexForSubtitle(i);
        Require(theResource > theLast && anInfo.IsSubtitle(theResource), "subtitles are resources, in their order");
        Require(anInfo.GetSubtitleURI(theResource) ==
                    anInfo.GetInfoAsCString(static_cast<uint32>(theResource), kCDSResourceInfo_URI),
                "a subtitle is at its resource's URI");
        const uint32 theIndex = static_cast<uint32>(theResource);
        RequireSame(CDSResourceInfo_GetSubtitleLabel(anInfo.mPackedData, theIndex),
                    anInfo.GetSubtitleLabel(theResource));
        RequireSame(CDSResourceInfo_GetSubtitleType(anInfo.mPackedData, theIndex), anInfo.GetSubtitleType(theResource));
        theLast = theResource;
    }
    Require(anInfo.GetResourceIndexForSubtitle(theCount) == -1, "past the last subtitle there is none");
}

// Whether the URI is one of the entry's album art, with the profile unless that is empty.
bool HasAlbumArt(const CDSEntryInfo& anEntry, const zoCString& aURI, const zoCString& aProfile)
{
    zoArray_t* thePairs =
        zoPackedData_GetDataArray(anEntry.mPackedData, 0, kCDSEntryInfo_AlbumArtURI, zoStringArray_UnFlattenerFunc);
    zoArray_SetFreeFunc(thePairs, zoStringArray_FreeFunc);
    bool fHas = false;
    for (size_t i = 0; i + 1 < zoArray_GetCount(thePairs) && !fHas; i += 2)
    {
        const bool fIsURI = aURI == static_cast<const char*>(zoArray_At(thePairs, i));
        fHas = fIsURI && (aProfile.IsEmpty() || aProfile == static_cast<const char*>(zoArray_At(thePairs, i + 1)));
    }
    zoArray_Delete(thePairs);
    return fHas;
}

void CheckPictures(CDSResourceInfo& anInfo, const CDSEntryInfo& anEntry)
{
    uint32 theTargets[] = { 0x01020A0A };
    zoCString theProfile, theArtProfile;
    const zoCString theArt = anInfo.GetAlbumArtURI("JPEG_TN,PNG_SM", &theArtProfile, theTargets, 1);
    Require((theArt.IsEmpty() && theArtProfile.IsEmpty()) || HasAlbumArt(anEntry, theArt, theArtProfile),
            "album art is a pair of the entry's");
    const zoCString theThumbnail = anInfo.GetThumbnailURI("", &theProfile, theTargets, 1);
    Require(theThumbnail.IsEmpty() || theThumbnail == anInfo.GetAlbumArtURI("JPEG_TN,PNG_TN", nullptr, theTargets, 1) ||
                anInfo.GetResourceIndexOfURI(theThumbnail) >= 0,
            "a thumbnail is album art, or a resource");
    char* theText =
        CDSResourceInfo_FetchThumbnailURI(anInfo.mPackedData, anEntry.mPackedData, "", theTargets, 1, nullptr);
    Require(theThumbnail == theText, "functions and classes choose the same picture");
    free(theText);
}

void CheckReduction(CDSResourceInfo& anInfo)
{
    const size_t theSize = anInfo.GetMemoryUsage();
    const uint32 theCount = anInfo.GetResourceCount();
    const zoCString theURI = anInfo.GetInfoAsCString(theCount / 2, kCDSResourceInfo_URI);
    CDSResourceInfo* theClone = anInfo.Clone();
    theClone->ReduceSize(theSize, theURI, true);
    Require(theClone->GetResourceCount() == theCount, "what is small enough stays");
    theClone->ReduceSize(theSize / 2, theURI, true);
    Require(theClone->GetMemoryUsage() <= theSize && theClone->GetResourceCount() <= theCount, "less is left");
    Require(theURI.IsEmpty() || theClone->GetResourceIndexOfURI(theURI) >= 0, "what is to be kept is");
    delete theClone;
}

void CheckResources(CDSResourceInfo& anInfo, const CDSEntryInfo& anEntry)
{
    for (uint32 i = 0; i < anInfo.GetResourceCount(); ++i)
        CheckResource(anInfo, i);
    CheckSubtitles(anInfo);
    CheckPictures(anInfo, anEntry);
    CheckReduction(anInfo);
}

void RequireWellFormed(char* aText)
{
    ILibXMLNode* theNodes = ILibParseXML(aText, 0, strlen(aText));
    Require(ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError, "a document of an upload is one");
    ILibDestructXMLNodeList(theNodes);
    free(aText);
}

void CheckDocuments(CDSEntryInfo& anEntry, CDSResourceInfo& aResources)
{
    const zoCString theTitle = anEntry.GetInfoAsCString(kCDSEntryInfo_Title);
    const zoCString theURI = aResources.GetInfoAsCString(0, kCDSResourceInfo_URI);
    const zoCString theInfoText = aResources.GetInfoAsCString(0, kCDSResourceInfo_ProtocolInfo);
    zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(theInfoText.c_str(), theInfoText.length(), 0);
    free(UPnPDIDL_Get(anEntry.mPackedData, aResources.mPackedData, 1, 1, theURI.c_str()));
    RequireWellFormed(UPnPDIDL_GetForCreateContainerRequest(theURI.c_str(), theTitle.c_str(), 7, theTitle.c_str(), ""));
    RequireWellFormed(UPnPDIDL_GetForCreateItemRequest(theURI.c_str(), theTitle.c_str(), 7, theTitle.c_str(),
                                                       theInfoText.c_str(), INT64_MAX, 0x80000000));
    for (const char* theImport : { static_cast<const char*>(nullptr), theURI.c_str() })
    {
        RequireWellFormed(UPnPDIDL_GetForCreateObjectResponse(anEntry.mPackedData, theImport, theImport, theInfo,
                                                              theTitle.c_str(), nullptr, 1, 0));
    }
    free(UPnPDIDL_GetForCreateContainerRequest(nullptr, nullptr, 0, nullptr, theTitle.c_str())); // classes, as they are
    zoDLNAProtocolInfo_Delete(theInfo);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    if (aSize > 4096) { return 0; } // pairs are looked for by name
    _zoLog_Level = ZOLOGLEVEL_NONE;
    const Records theBlocks = ReadBlocks(aBytes, aSize);
    CDSEntryInfo theEntry(zoPackedData_NewData(theBlocks.mEntry));
    CDSResourceInfo theResources(theBlocks.mResources, theEntry.mPackedData);
    const size_t theSize = theEntry.GetMemoryUsage() + theResources.GetMemoryUsage();
    const HeapPeak thePeak;
    CheckEntry(theEntry);
    CheckResources(theResources, theEntry);
    CheckDocuments(theEntry, theResources);
    RequireHeap(thePeak.Bytes(), theSize, 64);
    return 0;
}
