#include <UPnP/Utilities/DIDL/UploadDocument.h>

#include <UPnP/Utilities/DIDL/TextWriter.h>
#include <UPnP/Utilities/DIDL/Values.h>
#include <stdlib.h>
#include <zoltTools/zoCStringParser.h>
#include <zoltTools/zoConvert.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

static const uint32 kNoDTCPUploadInfo = 0xFFFFFFFF;

static void AppendText(zoBuffer* aBuffer, const char* aText, size_t aMaxSize)
{
    AppendStr(aBuffer, TextOf(aText), 0, aMaxSize);
}

void AppendCreatedObject(zoBuffer* aBuffer, bool afIsItem, const char* anID, const char* aParentID,
                         uint32 aDLNAManagedFlags)
{
    AppendLiteral(aBuffer, kDIDL_Header);
    zoBuffer_AppendStr(aBuffer, afIsItem ? kDIDL_Item_Start_Part : kDIDL_Container_Start_Part);
    AppendLiteral(aBuffer, " id=\"");
    AppendText(aBuffer, anID, kMaxSize_URI);
    AppendLiteral(aBuffer, "\" parentID=\"");
    AppendText(aBuffer, aParentID, kMaxSize_URI);
    AppendLiteral(aBuffer, "\" restricted=\"0\"");
    AppendLiteral(aBuffer, " dlna:dlnaManaged=\"");
    AppendHexValue(aBuffer, aDLNAManagedFlags);
    AppendLiteral(aBuffer, "\">");
}

void AppendTitleAndClass(zoBuffer* aBuffer, std::string_view aTitle, std::string_view aClassName)
{
    AppendStrIfNotEmpty(aBuffer, kDIDL_Tag_Title_Start, aTitle, kDIDL_Tag_Title_End, kMaxSize_Text, 0);
    AppendStrIfNotEmpty(aBuffer, kDIDL_Tag_Class_Start, aClassName, kDIDL_Tag_Class_End, kMaxSize_Text, 0);
}

// "object.item,1" is a class with those derived from it.
static void AppendCreateClass(zoBuffer* aBuffer, const char* aName, size_t aLength)
{
    const bool fHasSuffix = aLength >= 2 && aName[aLength - 2] == ',';
    const bool fIncludesDerived = fHasSuffix && aName[aLength - 1] != '0';
    const size_t theLength = fHasSuffix ? aLength - 2 : aLength;
    if (theLength == 0) { return; }
    zoBuffer_AppendStr(aBuffer, fIncludesDerived ? kDIDL_Tag_CreateClass_Derived_Start : kDIDL_Tag_CreateClass_Start);
    Shared::Append(aBuffer, aName, theLength);
    AppendLiteral(aBuffer, kDIDL_Tag_CreateClass_End);
}

void AppendCreateClasses(zoBuffer* aBuffer, const char* aCreateClassNameList)
{
    if (zoStrEmpty(aCreateClassNameList)) { return; }
    zoCStringParser_TokenList* theNames =
        zoCStringParser_Tokenize(aCreateClassNameList, 0, strlen(aCreateClassNameList), ";", 1);
    for (const zoCStringParser_Token* theName = theNames->mFirstToken; theName; theName = theName->mNextToken)
        AppendCreateClass(aBuffer, theName->mData, theName->mDataLength);
    zoCStringParser_Delete(theNames);
}

void AppendDTCPUploadInfo(zoBuffer* aBuffer, uint32 aDTCPUploadInfo)
{
    if (aDTCPUploadInfo == kNoDTCPUploadInfo) { return; }
    AppendLiteral(aBuffer, " dtcp:uploadInfo=\"");
    AppendHexValue(aBuffer, aDTCPUploadInfo);
    AppendLiteral(aBuffer, kDIDL_Quote);
}

char* TakeDocument(zoBuffer* aBuffer)
{
    AppendLiteral(aBuffer, kDIDL_Footer);
    return Shared::TakeText(aBuffer);
}

void AppendFileLength(zoBuffer* aBuffer, zoFileOffset aFileLength)
{
    if (aFileLength == 0) { return; }
    zoULongLong theLength;
    zoULongLong_SetFileOffset(&theLength, aFileLength);
    char* theText = zoULongLong_ToString(&theLength);
    AppendLiteral(aBuffer, " size = \"");
    zoBuffer_AppendStr(aBuffer, theText);
    AppendLiteral(aBuffer, kDIDL_Quote);
    free(theText);
}

void AppendImportResource(zoBuffer* aBuffer, const char* anImportURI, const char* anImportIFOURI,
                          const char* aProtocolInfo, int afEnableResumeUpload, uint32 aDTCPUploadInfo)
{
    AppendLiteral(aBuffer, kDIDL_Res_Start);
    if (afEnableResumeUpload) { AppendLiteral(aBuffer, " dlna:resumeUpload=\"1\" dlna:uploadedSize=\"0\""); }
    AppendLiteral(aBuffer, " importUri=\"");
    AppendText(aBuffer, anImportURI, kMaxSize_URI);
    AppendLiteral(aBuffer, kDIDL_Quote);
    AppendProtocolInfo({ aBuffer, nullptr }, TextOf(aProtocolInfo));
    if (anImportIFOURI)
    {
        AppendLiteral(aBuffer, " dlna:ifoFileURI=\"\" dlna:importIfoFileURI=\"");
        AppendText(aBuffer, anImportIFOURI, kMaxSize_URI);
        AppendLiteral(aBuffer, kDIDL_Quote);
    }
    AppendDTCPUploadInfo(aBuffer, aDTCPUploadInfo);
    AppendLiteral(aBuffer, "/>");
}

} // namespace DIDL
