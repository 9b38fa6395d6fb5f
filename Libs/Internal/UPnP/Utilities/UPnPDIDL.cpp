#include <UPnP/Utilities/UPnPDIDL.h>

#include <Shared/LogMessage.h>
#include <UPnP/Utilities/DIDL/Elements.h>
#include <UPnP/Utilities/DIDL/Object.h>
#include <UPnP/Utilities/DIDL/ObjectAttributes.h>
#include <UPnP/Utilities/DIDL/ObjectWriter.h>
#include <UPnP/Utilities/DIDL/Repairer.h>
#include <UPnP/Utilities/DIDL/Resources.h>
#include <UPnP/Utilities/DIDL/StrictReader.h>
#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <UPnP/Utilities/DIDL/UploadDocument.h>
#include <UPnP/Utilities/Private/UPnPPlace.h>
#include <UPnP/Utilities/UPnPUtility.h>
#include <new>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoMemory.h>

using namespace DIDL;

// ---- Writing ----

[[gnu::cold]] static void LogNoNamespaces()
{
    Shared::LogMessage(ZOLOGLEVEL_WARNING, ZOLOG_M_DEFAULT, __FILE__, __LINE__, "No XML name space specified\n");
}

[[gnu::cold]] static void LogNotAdded(uint32 aCount)
{
    Shared::LogMessage(ZOLOGLEVEL_INFO, ZOLOG_M_DEFAULT, __FILE__, __LINE__, "UPnPDIDL_Get: %lu resource(s) not added",
                       static_cast<unsigned long>(aCount));
}

// The result is the number of resources that the limit leaves out.
static uint32 WriteRecords(Output anOutput, zoPackedData_t* aMediaData, zoPackedData_t* aResourceInfo,
                           int afIncludeResExtraInfo, const char* aSelectedURI)
{
    const MediaValues theValues(aMediaData, 0);
    const std::string_view theNamespaces = theValues.GetText(kCDSEntryInfo_XMLNS);
    if (anOutput.mRepairer) { anOutput.mRepairer->AppendDeclarations(theNamespaces); }
    else if (theNamespaces.data()) { AppendDeclarations(anOutput.mBuffer, theNamespaces); }
    else { LogNoNamespaces(); }
    AppendLiteral(anOutput.mBuffer, ">");
    AppendMetadata(anOutput, aMediaData, theValues);
    uint32 theLeftCount;
    const bool fIsComplete =
        AppendResources(anOutput, afIncludeResExtraInfo, aResourceInfo, aSelectedURI, &theLeftCount);
    return fIsComplete ? 0 : theLeftCount;
}

[[gnu::cold]] static void WriteEmptyItem(Output anOutput, int afIncludeHeaderFooter)
{
    if (anOutput.mRepairer) { anOutput.mRepairer->AppendDeclarations({}); }
    if (anOutput.mRepairer || afIncludeHeaderFooter) { AppendLiteral(anOutput.mBuffer, ">"); }
    AppendLiteral(anOutput.mBuffer, kDIDL_Item_Start);
}

static uint32 WriteObject(Output anOutput, zoPackedData_t* aMediaData, zoPackedData_t* aResourceInfo,
                          int afIncludeHeaderFooter, int afIncludeResExtraInfo, const char* aSelectedURI)
{
    uint32 theLeftCount = 0;
    if (afIncludeHeaderFooter) { AppendLiteral(anOutput.mBuffer, kMiniDIDL_Header); }
    if (aMediaData)
    {
        theLeftCount = WriteRecords(anOutput, aMediaData, aResourceInfo, afIncludeResExtraInfo, aSelectedURI);
    }
    else { WriteEmptyItem(anOutput, afIncludeHeaderFooter); }
    AppendLiteral(anOutput.mBuffer, kDIDL_Item_End);
    if (afIncludeHeaderFooter) { AppendLiteral(anOutput.mBuffer, kDIDL_Footer); }
    return theLeftCount;
}

char* UPnPDIDL_Get(zoPackedData_t* aMediaData, zoPackedData_t* aResourceInfo, int afIncludeHeaderFooter,
                   int afIncludeResExtraInfo, const char* aSelectedURI)
{
    zoBuffer* theBuffer = zoBuffer_New(GuessTextSize(aMediaData, aResourceInfo));
    const uint32 theLeftCount = WriteObject({ theBuffer, nullptr }, aMediaData, aResourceInfo, afIncludeHeaderFooter,
                                            afIncludeResExtraInfo, aSelectedURI);
    if (theLeftCount > 0) { LogNotAdded(theLeftCount); }
    return Shared::TakeText(theBuffer);
}

char* UPnPDIDL_GetSendable(zoPackedData_t* aMediaData, zoPackedData_t* aResourceInfo, int afIncludeHeaderFooter,
                           int afIncludeResExtraInfo, const char* aSelectedURI, UPnPDIDLRepairs_t* aRepairs)
{
    zoBuffer* theBuffer = zoBuffer_New(GuessTextSize(aMediaData, aResourceInfo));
    uint32 theLeftCount;
    uint32 theNeeded = 0;
    for (uint32 theLacking = ~0u; theLacking != 0; theNeeded |= theLacking)
    {
        theBuffer->mPos = 0;
        Repairer theRepairer(theBuffer, theNeeded);
        theLeftCount = WriteObject({ theBuffer, &theRepairer }, aMediaData, aResourceInfo, afIncludeHeaderFooter,
                                   afIncludeResExtraInfo, aSelectedURI);
        theLacking = theRepairer.FindLacking() & ~theNeeded;
        if (aRepairs) { *aRepairs = theRepairer.GetRepairs(); }
    }
    if (theLeftCount > 0) { LogNotAdded(theLeftCount); }
    return Shared::TakeText(theBuffer);
}

int UPnPDIDL_IsSendable(const char* aText, size_t aLength) { return aText && IsSendable({ aText, aLength }); }

// Documents of uploads are rare: cold functions are compiled for size.

[[gnu::cold]] char* UPnPDIDL_GetForCreateContainerRequest(const char* aParentID, const char* aTitle,
                                                          uint32 aDLNAManagedFlags, const char* aClassName,
                                                          const char* aCreateClassNameList)
{
    zoBuffer* theBuffer = zoBuffer_New(kFirstBufferSize);
    AppendCreatedObject(theBuffer, false, nullptr, aParentID, aDLNAManagedFlags);
    AppendTitleAndClass(theBuffer, TextOf(aTitle), TextOf(aClassName));
    AppendCreateClasses(theBuffer, aCreateClassNameList);
    AppendLiteral(theBuffer, kDIDL_Container_End);
    return TakeDocument(theBuffer);
}

[[gnu::cold]] char* UPnPDIDL_GetForCreateItemRequest(const char* aParentID, const char* aTitle,
                                                     uint32 aDLNAManagedFlags, const char* aClassName,
                                                     const char* aDLNAInfo, zoFileOffset aFileLength,
                                                     uint32 aDTCPUploadInfo)
{
    zoBuffer* theBuffer = zoBuffer_New(kFirstBufferSize);
    AppendCreatedObject(theBuffer, true, nullptr, aParentID, aDLNAManagedFlags);
    AppendTitleAndClass(theBuffer, TextOf(aTitle), TextOf(aClassName));
    AppendLiteral(theBuffer, kDIDL_Res_Start);
    AppendProtocolInfo({ theBuffer, nullptr }, TextOf(aDLNAInfo));
    AppendLiteral(theBuffer, " dlna:resumeUpload=\"1\"");
    AppendFileLength(theBuffer, aFileLength);
    AppendDTCPUploadInfo(theBuffer, aDTCPUploadInfo);
    AppendLiteral(theBuffer, ">");
    AppendLiteral(theBuffer, kDIDL_Res_End);
    AppendLiteral(theBuffer, kDIDL_Item_End);
    return TakeDocument(theBuffer);
}

[[gnu::cold]] char* UPnPDIDL_GetForCreateObjectResponse(zoPackedData_t* aMediaData, const char* anImportURI,
                                                        const char* anImportIFOURI,
                                                        zoDLNAProtocolInfo_t* aDLNAProtocolInfo, const char* anID,
                                                        const char* aParentID, int afEnableResumeUpload,
                                                        uint32 aDTCPUploadInfo)
{
    const bool fIsItem = anImportURI != nullptr;
    const uint32 theFlags =
        fIsItem ? kDLNAManaged_DestroyItem : kDLNAManaged_UploadContent | kDLNAManaged_CreateChildContainer;
    zoBuffer* theBuffer = zoBuffer_New(kFirstBufferSize);
    AppendCreatedObject(theBuffer, fIsItem, anID, aParentID, theFlags);
    AppendTitleAndClass(theBuffer, GetText(aMediaData, 0, kCDSEntryInfo_Title),
                        GetText(aMediaData, 0, kCDSEntryInfo_ItemClassName));
    AppendStrIfNotEmpty(theBuffer, kDIDL_Tag_CreateClass_Derived_Start,
                        GetText(aMediaData, 0, kCDSEntryInfo_CreateClass), kDIDL_Tag_CreateClass_End, kMaxSize_Text, 0);
    if (fIsItem)
    {
        char* theProtocolInfo = aDLNAProtocolInfo ? zoDLNAProtocolInfo_GetStr(aDLNAProtocolInfo) : nullptr;
        AppendImportResource(theBuffer, anImportURI, anImportIFOURI, theProtocolInfo, afEnableResumeUpload,
                             aDTCPUploadInfo);
        free(theProtocolInfo);
    }
    zoBuffer_AppendStr(theBuffer, fIsItem ? kDIDL_Item_End : kDIDL_Container_End);
    return TakeDocument(theBuffer);
}

// ---- Parsing: one object ----

// The node after aNode, NULL at the object's end tag.
static ILibXMLNode* NextNode(const ILibXMLNode* anObject, ILibXMLNode* aNode)
{
    aNode = aNode->Next;
    if (!zoAssert(aNode != NULL)) { return nullptr; }
    return aNode != anObject->ClosingTag ? aNode : nullptr;
}

static void ParseElementsOf(ObjectParser* aParser)
{
    const ObjectNodes& theNodes = aParser->mNodes;
    ILibXMLNode* theNode = theNodes.mStartTag;
    while (theNode && (theNode = NextNode(theNodes.mStartTag, theNode)) != nullptr)
    {
        if (!theNode->StartTag) { continue; }
        if (theNodes.IsSkipped(theNode))
        {
            theNode = theNode->ClosingTag;
            continue;
        }
        ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
        if (IsResource(theNode)) { ParseResource(aParser, theNode, theAttributes); }
        else { ParseElement(aParser, theNode, theAttributes); }
        ILibDestructXMLAttributeList(theAttributes);
    }
}

namespace
{

// An object to be parsed.
struct Object
{
    ObjectNodes mNodes;
    const ILibXMLAttribute* mAttributes;
    ILibXMLNode* mDIDLNode; // the DIDL-Lite element around it; NULL without one
    const char* mBaseURL;
    int mfIsItem;
    bool mfIsOnlyOne;             // in its document
    const NamespaceList* mShared; // what the objects of mDIDLNode inherit; NULL or empty when it is not known
};

} // namespace

static void InheritNamespaces(NamespaceList* aNamespaces, const Object& anObject, size_t aMaxSize)
{
    const bool fIsShared = anObject.mShared && !anObject.mShared->empty() && aMaxSize >= NamespaceList::kMaxSharedSize;
    if (!anObject.mDIDLNode) { return; }
    if (anObject.mfIsOnlyOne) { aNamespaces->AddAllOfRoot(anObject.mDIDLNode); }
    else if (fIsShared) { aNamespaces->AddShared(*anObject.mShared); }
    else { aNamespaces->AddOfRoot(anObject.mDIDLNode, anObject.mNodes, anObject.mAttributes, aMaxSize); }
}

static int ParseObject(const Object& anObject, char** aData, char** aRes)
{
    ObjectParser theParser;
    StartObject(&theParser, anObject.mNodes, anObject.mBaseURL, anObject.mfIsItem);
    NamespaceList* theNamespaces = &theParser.mNamespaces;
    const int theResult = ParseObjectAttributes(&theParser, anObject.mAttributes);
    InheritNamespaces(theNamespaces, anObject, MaxInheritedSize(theParser));
    theNamespaces->AddXMLNameSpaces(anObject.mAttributes);
    ParseElementsOf(&theParser);
    FinishObject(&theParser, aData, aRes);
    return theResult;
}

int UPnPDIDL_Parse(const char* aBaseURL, ILibXMLNode* aDIDLNode, ILibXMLNode* aNode, ILibXMLAttribute* anAttributes,
                   int afIsItem, char** aData, char** aRes)
{
    return ParseObject({ { aNode, false }, anAttributes, aDIDLNode, aBaseURL, afIsItem, false, nullptr }, aData, aRes);
}

// ---- Parsing: a document of one object ----

namespace
{

// The walk over a document's nodes in search of its one object.
struct DocumentWalk
{
    ILibXMLNode* mDIDLNode; // the DIDL-Lite element met last
    int mDIDLType;
    char* mData;
    char* mRes;
};

} // namespace

static int ParseOnlyObject(DocumentWalk* aWalk, ILibXMLNode* aNode, int aDIDLType)
{
    if (aWalk->mDIDLType != kDIDLItemType_None) { return kUPnPError_InvalidDIDL; }
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(aNode);
    const int fIsItem = aDIDLType == kDIDLItemType_Item;
    const Object theObject = { { aNode, false }, theAttributes, aWalk->mDIDLNode, nullptr, fIsItem, true, nullptr };
    const int fIsValid = ParseObject(theObject, &aWalk->mData, &aWalk->mRes);
    ILibDestructXMLAttributeList(theAttributes);
    if (!fIsValid) { return kUPnPError_InvalidDIDL; }
    aWalk->mDIDLType = aDIDLType;
    return kUPnPError_None;
}

// Where the walk goes on after an element that is not entered. It passes peers that can't be an object or DIDL-Lite,
// but for the last one.
static ILibXMLNode* SkipElement(const ILibXMLNode* aNode)
{
    ILibXMLNode* thePeer = aNode->Peer;
    while (thePeer && !HasObjectLength(thePeer) && thePeer->Peer)
        thePeer = thePeer->Peer;
    if (thePeer) { return thePeer; }
    return aNode->Parent ? aNode->Parent->Peer : aNode->Next;
}

// aNode or the node after it where the walk finds an object; NULL without one.
static ILibXMLNode* FindObject(ILibXMLNode* aNode, ILibXMLNode** aDIDLNode)
{
    ILibXMLNode* theNode = aNode;
    while (theNode)
    {
        const bool fIsDIDL = theNode->StartTag && IsNamed(theNode, "DIDL-Lite");
        if (fIsDIDL) { *aDIDLNode = theNode; }
        if (fIsDIDL || !theNode->StartTag) { theNode = theNode->Next; }
        else if (IsObject(theNode)) { break; }
        else { theNode = SkipElement(theNode); }
    }
    return theNode;
}

static int WalkDocument(DocumentWalk* aWalk, ILibXMLNode* aNodeList)
{
    ILibXMLNode* theNode = aNodeList;
    while ((theNode = FindObject(theNode, &aWalk->mDIDLNode)) != nullptr)
    {
        const int theResult = ParseOnlyObject(aWalk, theNode, TypeOf(theNode));
        if (theResult != kUPnPError_None) { return theResult; }
        theNode = theNode->Next;
    }
    return aWalk->mDIDLType == kDIDLItemType_None ? kUPnPError_InvalidDIDL : kUPnPError_None;
}

int UPnPDIDL_ParseElements(const char* anElements, char** aData, char** aRes, int* aDIDLType)
{
    *aData = nullptr;
    *aRes = nullptr;
    *aDIDLType = kDIDLItemType_None;
    if (zoStrEmpty(anElements)) { return kUPnPError_InvalidDIDL; }

    DocumentWalk theWalk = { nullptr, kDIDLItemType_None, nullptr, nullptr };
    void* theMemory[512]; // holds the nodes and attributes of 50 of the 51 documents that are measured
    ILibXMLNode* theNodes =
        ILibParseXMLWithMemory(const_cast<char*>(anElements), 0, strlen(anElements), theMemory, sizeof(theMemory));
    const bool fIsWellFormed = ILibProcessXMLNodeList(theNodes) == kILibProcessXML_NoError;
    const int theResult = fIsWellFormed ? WalkDocument(&theWalk, theNodes) : kUPnPError_InvalidXML;
    ILibDestructXMLNodeList(theNodes);

    *aDIDLType = theWalk.mDIDLType;
    if (theResult == kUPnPError_None)
    {
        *aData = theWalk.mData;
        *aRes = theWalk.mRes;
        return theResult;
    }
    free(theWalk.mData);
    free(theWalk.mRes);
    return theResult;
}

// ---- Parsing: a document of many objects ----

struct UPnPDIDLDocument
{
    const char* mBaseURL;
    ILibXMLNode* mNodes;
    ILibXMLNode* mNext;     // the next node of the walk, which enters roots and objects only; NULL at the end
    ILibXMLNode* mDIDLNode; // the DIDL-Lite element met last
    size_t mOpenObjects;    // around mNext
    NamespaceList mShared;  // what the objects of mDIDLNode inherit; empty when it depends on the object
};

// Functions that are called once for many objects are cold, too.

[[gnu::cold]] UPnPDIDLDocument* UPnPDIDLDocument_New(const char* aText, const char* aBaseURL)
{
    ILibXMLNode* theNodes = ILibParseXML(const_cast<char*>(aText), 0, aText ? strlen(aText) : 0);
    if (ILibProcessXMLNodeList(theNodes) != kILibProcessXML_NoError)
    {
        ILibDestructXMLNodeList(theNodes);
        return nullptr;
    }
    return new (zoMalloc(sizeof(UPnPDIDLDocument))) UPnPDIDLDocument{ aBaseURL, theNodes, theNodes, nullptr, 0, {} };
}

[[gnu::cold]] void UPnPDIDLDocument_Delete(UPnPDIDLDocument* aDocument)
{
    if (!aDocument) { return; }
    ILibDestructXMLNodeList(aDocument->mNodes);
    aDocument->~UPnPDIDLDocument();
    free(aDocument);
}

// Walks to the next object's start tag and goes past it; NULL without a further object.
static ILibXMLNode* TakeObject(UPnPDIDLDocument* aDocument)
{
    while (ILibXMLNode* theNode = aDocument->mNext)
    {
        aDocument->mNext = theNode->Next;
        if (!theNode->StartTag) { aDocument->mOpenObjects -= IsObject(theNode); }
        else if (IsObject(theNode))
        {
            ++aDocument->mOpenObjects;
            return theNode;
        }
        else if (aDocument->mOpenObjects == 0 && IsNamed(theNode, "DIDL-Lite"))
        {
            aDocument->mDIDLNode = theNode;
            aDocument->mShared.CollectShared(theNode);
        }
        else { aDocument->mNext = theNode->ClosingTag->Next; }
    }
    return nullptr;
}

int UPnPDIDLDocument_NextObject(UPnPDIDLDocument* aDocument, char** aData, char** aRes, int* aDIDLType)
{
    *aData = nullptr;
    *aRes = nullptr;
    *aDIDLType = kDIDLItemType_None;
    ILibXMLNode* theNode = aDocument ? TakeObject(aDocument) : nullptr;
    if (!theNode) { return kUPnPError_None; }
    *aDIDLType = TypeOf(theNode);
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
    const bool fHasInnerObjects = HasInnerObjects(theNode);
    if (!fHasInnerObjects) { aDocument->mNext = theNode->ClosingTag; }
    const Object theObject = {
        { theNode, fHasInnerObjects },    theAttributes, aDocument->mDIDLNode, aDocument->mBaseURL,
        *aDIDLType == kDIDLItemType_Item, false,         &aDocument->mShared
    };
    const int fIsValid = ParseObject(theObject, aData, aRes);
    ILibDestructXMLAttributeList(theAttributes);
    if (fIsValid) { return kUPnPError_None; }
    free(*aData);
    free(*aRes);
    *aData = nullptr;
    *aRes = nullptr;
    return kUPnPError_InvalidDIDL;
}

// ---- Errors ----

// The value of a flag of the object that is neither true nor false; NULL without one.
static const char* FindInvalidFlagOf(ILibXMLNode* anObject)
{
    ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(anObject);
    const char* theValue = FindInvalidFlag(theAttributes);
    ILibDestructXMLAttributeList(theAttributes);
    return theValue;
}

// The reason why an object is invalid; it begins at the byte of the value that makes it so. UPnPDIDL_ParseElements also
// finds one in a root of another name.
static const char* FindInvalidObject(char* aText, const char** aPlace)
{
    UPnPDIDLDocument* theDocument = UPnPDIDLDocument_New(aText, nullptr);
    ILibXMLNode* theObject = TakeObject(theDocument);
    if (!theObject) { theObject = FindObject(theDocument->mNodes, &theDocument->mDIDLNode); }
    const char* theReason = theObject ? nullptr : "there is no item and no container";
    *aPlace = aText;
    for (; theObject && !theReason; theObject = TakeObject(theDocument))
    {
        const char* theValue = FindInvalidFlagOf(theObject);
        if (!theValue) { continue; }
        *aPlace = theValue;
        theReason = "a flag is neither true nor false";
    }
    UPnPDIDLDocument_Delete(theDocument);
    return theReason;
}

[[gnu::cold]] char* UPnPDIDL_FindError(const char* aText, size_t aLength, uint32* aLine, uint32* aColumn)
{
    char* theReason = UPnPUtil_FindXMLError(aText, aLength, aLine, aColumn);
    if (theReason) { return theReason; }
    char* theCopy = zoStrndup(aText ? aText : "", aText ? aLength : 0);
    const char* thePlace;
    const char* theInvalid = FindInvalidObject(theCopy, &thePlace);
    if (theInvalid)
    {
        theReason = zoStrdup(theInvalid);
        UPnPPlace_Find(theCopy, static_cast<size_t>(thePlace - theCopy), aLine, aColumn);
    }
    free(theCopy);
    return theReason;
}
