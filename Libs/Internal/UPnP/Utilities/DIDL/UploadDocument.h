#pragma once

/* The documents of an upload. */

#include <string_view>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoBuffer.h>

namespace DIDL
{

// The document's header and the object's start tag.
void AppendCreatedObject(zoBuffer* aBuffer, bool afIsItem, const char* anID, const char* aParentID,
                         uint32 aDLNAManagedFlags);
void AppendTitleAndClass(zoBuffer* aBuffer, std::string_view aTitle, std::string_view aClassName);
void AppendCreateClasses(zoBuffer* aBuffer, const char* aCreateClassNameList);
void AppendDTCPUploadInfo(zoBuffer* aBuffer, uint32 aDTCPUploadInfo);
void AppendFileLength(zoBuffer* aBuffer, zoFileOffset aFileLength);

// The resource to which the content is uploaded.
void AppendImportResource(zoBuffer* aBuffer, const char* anImportURI, const char* anImportIFOURI,
                          const char* aProtocolInfo, int afEnableResumeUpload, uint32 aDTCPUploadInfo);

// Ends the document and gives it away; the buffer is deleted.
char* TakeDocument(zoBuffer* aBuffer);

} // namespace DIDL
