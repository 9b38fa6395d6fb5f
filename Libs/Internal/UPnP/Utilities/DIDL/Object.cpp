#include <UPnP/Utilities/DIDL/Object.h>

#include <algorithm>
#include <stdlib.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

// Stores the text of the last element of its kind, "" when there was none.
static void AddLastText(ObjectParser* aParser, uint16 aTag, SingleText aSingleText)
{
    ILibXMLNode* theNode = aParser->mLast[aSingleText];
    if (theNode) { AddResolvedText(aParser, aParser->mEntry, aTag, GetInnerXML(theNode)); }
    else { AddText(aParser->mEntry, aTag, { nullptr, 0 }); }
}

// The same, but with no bytes when there was none.
static void AddLastTextIfAny(ObjectParser* aParser, uint16 aTag, SingleText aSingleText)
{
    if (aParser->mLast[aSingleText]) { AddLastText(aParser, aTag, aSingleText); }
    else { zoPackedData_AddData(aParser->mEntry, aTag, nullptr, 0); }
}

static void AddDate(ObjectParser* aParser)
{
    ILibXMLNode* theNode = aParser->mLast[kSingleText_Date];
    if (!theNode)
    {
        zoPackedData_AddData(aParser->mEntry, kCDSEntryInfo_Date, nullptr, 0);
        return;
    }
    Slice theText = Resolve(&aParser->mScratch, GetInnerXML(theNode));
    int32 theParts[kzoDLNADatePart_Count];
    if (zoConvert_dlnadatestrtodate(NulTerminated(theText).c_str(), theParts) != 0) { theText = { nullptr, 0 }; }
    AddText(aParser->mEntry, kCDSEntryInfo_Date, theText);
}

// Stores a text that was built here.
static void AddBuilt(zoPackedData_t* aRecord, uint16 aTag, TextBuilder* aBuilder)
{
    *Extend(aBuilder, 1) = 0;
    zoPackedData_AddData(aRecord, aTag, aBuilder->mText, aBuilder->mLength);
}

// An empty array has no bytes.
static void AddAlbumArt(zoPackedData_t* anEntry, const zoArray_t* anAlbumArt)
{
    if (anAlbumArt)
    {
        zoPackedData_AddArray(anEntry, kCDSEntryInfo_AlbumArtURI, anAlbumArt, zoStringArray_FlattenerFunc);
    }
    else { zoPackedData_AddData(anEntry, kCDSEntryInfo_AlbumArtURI, nullptr, 0); }
}

void AddFields(ObjectParser* aParser, int afIsItem)
{
    zoPackedData_t* theEntry = aParser->mEntry;
    AddLastText(aParser, kCDSEntryInfo_Title, kSingleText_Title);
    AddLastText(aParser, kCDSEntryInfo_Creator, kSingleText_Creator);
    AddDate(aParser);
    AddLastText(aParser, kCDSEntryInfo_Genre, kSingleText_Genre);
    AddLastText(aParser, kCDSEntryInfo_Album, kSingleText_Album);
    if (aParser->mCreateClass.mLength > 0) { AddBuilt(theEntry, kCDSEntryInfo_CreateClass, &aParser->mCreateClass); }
    else { AddText(theEntry, kCDSEntryInfo_CreateClass, { nullptr, 0 }); }
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_ParentID, aParser->mParentID);
    AddNumber(theEntry, kCDSEntryInfo_IsContainer, static_cast<uint16>(!afIsItem));
    AddNumber(theEntry, kCDSEntryInfo_UpdateID, uint32{ 0 });
    AddNumber(theEntry, kCDSEntryInfo_ChildCount, aParser->mChildCount);
    AddLastText(aParser, kCDSEntryInfo_ItemClassName, kSingleText_Class);
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_ItemID, aParser->mID);
    AddNumber(theEntry, kCDSEntryInfo_ChannelNr, aParser->mChannelNr);
    AddNumber(theEntry, kCDSEntryInfo_Flags, aParser->mFlags);
    AddLastText(aParser, kCDSEntryInfo_BGMURI, kSingleText_BGMURI);
    AddText(theEntry, kCDSEntryInfo_BGMURIProtocolInfo, aParser->mBGMProtocolInfo);
    AddNumber(theEntry, kCDSEntryInfo_DLNAManaged, aParser->mManaged);
    AddResolvedText(aParser, theEntry, kCDSEntryInfo_RefID, aParser->mRefID);
    AddLastTextIfAny(aParser, kCDSEntryInfo_StorageMedium, kSingleText_StorageMedium);
    if (aParser->mNamespaces.mCount > 0) { AddBuilt(theEntry, kCDSEntryInfo_XMLNS, &aParser->mNamespaces.mText); }
    AddAlbumArt(theEntry, aParser->mAlbumArt);
}

void StartObject(ObjectParser* aParser, const char* aBaseURL, ILibXMLNode* aNode, int afIsItem)
{
    const Slice theObject = GetInnerXML(aNode);
    aParser->mBaseURL = aBaseURL;
    if (theObject.mBegin)
    {
        aParser->mScratch.mPlain = FindPlainText(QualifiedName(aNode).mBegin, theObject.mBegin + theObject.mLength);
    }
    aParser->mStoredLimit = std::max(theObject.mLength * kStoredPerText, kStoredAtLeast);
    if (!afIsItem) { aParser->mFlags |= kDIDL_Flags_Searchable; }
    aParser->mEntry = zoPackedData_New(1);
    zoPackedData_AddNewEntry(aParser->mEntry);
    aParser->mResources = zoPackedData_New(0);
}

void FinishObject(ObjectParser* aParser, char** aData, char** aRes)
{
    *aData = zoPackedData_TakeData(aParser->mEntry);
    *aRes = zoPackedData_TakeData(aParser->mResources);
    zoPackedData_Free(aParser->mEntry);
    zoPackedData_Free(aParser->mResources);
    zoArray_Delete(aParser->mAlbumArt);
    free(aParser->mCreateClass.mText);
    free(aParser->mNamespaces.mText.mText);
    zoCustomHashTable_Delete(aParser->mNamespaces.mTable);
    free(aParser->mScratch.mText);
}

bool IsTooLong(ILibXMLNode* aDIDLNode, ILibXMLNode* anObject)
{
    const size_t kMostInherited = 4096;
    const Slice theContent = GetInnerXML(aDIDLNode);
    const size_t theLength = theContent.mBegin ? static_cast<size_t>(theContent.mBegin - aDIDLNode->Name) : 0;
    return theLength > kMostInherited && theLength > (anObject ? GetInnerXML(anObject).mLength : 0);
}

} // namespace DIDL
