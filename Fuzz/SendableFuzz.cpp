#include "FuzzRecords.h"

#include <string>
#include <zoLog/Log.h>
#ifdef UPNP_STRICT_READERS
#include <expat.h>
#include <libxml/parser.h>
#endif

// Records as in RecordFuzz: what is written of them so that it can be sent is read by strict readers. So is every text
// that is said to be sendable: the bytes themselves.

namespace
{

#ifdef UPNP_STRICT_READERS
bool CanExpatRead(const std::string& aText)
{
    XML_Parser theParser = XML_ParserCreateNS(nullptr, '\n');
    const bool fIsRead = XML_Parse(theParser, aText.data(), static_cast<int>(aText.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(theParser);
    return fIsRead;
}

// Warnings, that a namespace is a relative URI for instance, refuse nothing.
void NoteError(void* aUserData, xmlErrorPtr anError)
{
    if (anError->level >= XML_ERR_ERROR) { *static_cast<bool*>(aUserData) = false; }
}

// aFlags: XML_PARSE_HUGE for texts of any depth.
bool CanLibXML2Read(const std::string& aText, int aFlags)
{
    bool fIsRead = true;
    xmlSetStructuredErrorFunc(&fIsRead, NoteError);
    xmlFreeDoc(xmlReadMemory(aText.data(), static_cast<int>(aText.size()), nullptr, nullptr, XML_PARSE_NONET | aFlags));
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    return fIsRead;
}

void RequireReadable(const std::string& aText, int aFlags)
{
    Require(CanExpatRead(aText), "expat reads what is sendable");
    Require(CanLibXML2Read(aText, aFlags), "libxml2 reads what is sendable");
}

const int kAnyDepth = XML_PARSE_HUGE;
#else
void RequireReadable(const std::string&, int) {}

const int kAnyDepth = 0;
#endif

bool IsSendable(const std::string& aText) { return UPnPDIDL_IsSendable(aText.data(), aText.size()) != 0; }

std::string TakeText(char* aText)
{
    std::string theText(aText);
    free(aText);
    return theText;
}

void CheckRecords(zoPackedData_t* anEntry, zoPackedData_t* aResources)
{
    UPnPDIDLRepairs_t theRepairs;
    const std::string theAsItIs = TakeText(UPnPDIDL_Get(anEntry, aResources, 1, 1, nullptr));
    const std::string theText = TakeText(UPnPDIDL_GetSendable(anEntry, aResources, 1, 1, nullptr, &theRepairs));
    const std::string theInner = TakeText(UPnPDIDL_GetSendable(anEntry, aResources, 0, 1, nullptr, nullptr));
    Require(IsSendable(theText), "what is written to be sent is sendable");
    RequireReadable(theText, 0);
    const bool fIsRepaired = theRepairs.mReplaced > 0 || theRepairs.mPairsLeftOut > 0 ||
                             theRepairs.mDeclarationsLeftOut > 0 || theRepairs.mDeclarationsAdded > 0;
    Require(fIsRepaired || theText == theAsItIs, "without repairs it is the text of the records as they are");
    Require(!IsSendable(theAsItIs) || theRepairs.mPairsLeftOut > 0 || theText == theAsItIs, "what is sendable stays");
    Require("<DIDL-Lite" + theInner + "</DIDL-Lite>" == theText || theText.size() > 15360,
            "the header is around the rest, unless it leaves out resources");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    _zoLog_Level = ZOLOGLEVEL_NONE;
    const std::string theBytes(reinterpret_cast<const char*>(aBytes), aSize);
    if (IsSendable(theBytes)) { RequireReadable(theBytes, kAnyDepth); }

    const Records theBlocks = Read(aBytes, aSize);
    zoPackedData_t* theEntry = zoPackedData_NewData(theBlocks.mEntry);
    zoPackedData_t* theResources = zoPackedData_NewData(theBlocks.mResources);
    CheckRecords(theEntry, theResources);
    zoPackedData_Free(theEntry);
    zoPackedData_Free(theResources);
    return 0;
}
