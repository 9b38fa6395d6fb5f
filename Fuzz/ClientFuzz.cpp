#include "FuzzSupport.h"

#include <UPnP/Stack/ILibWebLinkData.h>
#include <UPnP/Utilities/UPnPHook.h>
#include <initializer_list>

// The bytes, cut at line ends, are the features that are on, one a character, a user agent, an object ID, a filter, a
// class, a manufacturer, an event, a seek mode, the clients that get no chunks, and a web link's ID.

namespace
{

struct Client
{
    int Ask(int aHookID) const { return Ask(aHookID, mUserAgent); }
    int Ask(int aHookID, const char* aText) const
    {
        int theAnswer = -1;
        UPnPHook_Hook(mHook, aHookID, const_cast<char*>(aText), &theAnswer);
        Require(theAnswer == 0 || theAnswer == 1, "an answer is yes or no");
        return theAnswer;
    }

    UPnPHook* mHook;
    const char* mUserAgent;
};

// What depends on whether the client is a Windows Media Player or an Xbox.
void CheckKind(const Client& aClient)
{
    const int fIsXbox = aClient.Ask(kUPnPHook_ByteRateIsBitRate);
    const int fIsOther = aClient.Ask(kUPnPHook_NeedToCheckSortCriteria);
    Require(!(fIsXbox && fIsOther), "an Xbox is one of those whose sort criteria are taken as they come");
    Require(aClient.Ask(kUPnPHook_CDSProvideResSize) == fIsOther, "as are those that get no sizes");
    Require(fIsOther || aClient.Ask(kUPnPHook_GetSupportSearch), "and those that may search");
    for (const unsigned int theAsked : { 0u, 1u, 100u, 101u, 200u, 201u, UINT32_MAX })
    {
        unsigned int theCount = theAsked;
        UPnPHook_Hook(aClient.mHook, kUPnPHook_GetRequestedCount, const_cast<char*>(aClient.mUserAgent), &theCount,
                      static_cast<char*>(nullptr));
        const unsigned int theMost = fIsOther ? 100 : 200;
        const bool fIsLimited = theAsked == 0 || theAsked > theMost;
        Require(theCount == (fIsXbox || !fIsLimited ? theAsked : theMost), "a count has its limit, but for an Xbox");
    }
    char* theState = nullptr;
    UPnPHook_Hook(aClient.mHook, kUPnPHook_GetInfoDescription, const_cast<char*>(aClient.mUserAgent), &theState);
    Require(theState && (strstr(theState, "\"ok\"") == nullptr || !fIsXbox), "an Xbox gets no link");
    free(theState);
}

void CheckObjectID(const Client& aClient, const char* anObjectID, const char* aFilter)
{
    char* theID = const_cast<char*>(anObjectID);
    char* theFilter = const_cast<char*>(aFilter);
    UPnPHook_Hook(aClient.mHook, kUPnPHook_ConvertObjectID, const_cast<char*>(aClient.mUserAgent), &theID, &theFilter);
    Require((theID == nullptr) == (anObjectID == nullptr), "an ID comes back as an ID");
    const bool fIsSame = !theID || strcmp(theID, anObjectID) == 0;
    Require(fIsSame || (*theID == '-' && !aClient.Ask(kUPnPHook_NeedToCheckSortCriteria)), "or as the device's own");
    const size_t theLength = aFilter ? strlen(aFilter) : 0;
    Require(!aFilter || strncmp(theFilter, aFilter, theLength) == 0, "a filter begins as it was");
    Require(!aFilter || theFilter[theLength] == 0 || strcmp(theFilter + theLength, ",res") == 0,
            "and may get one more");
    free(theID);
    free(theFilter);
}

void CheckClass(const Client& aClient, const char* aClass)
{
    char* theClass = const_cast<char*>(aClass);
    UPnPHook_Hook(aClient.mHook, kUPnPHook_AdjustMediaClassName, const_cast<char*>(aClient.mUserAgent),
                  const_cast<char*>(aClass), &theClass);
    Require(!theClass || (aClass && strncmp(theClass, aClass, strlen(aClass)) == 0),
            "a class becomes one derived from it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    char* theInput = NewText(aBytes, aSize);
    Lines theLines = { theInput };
    UPnPHook* theHook = UPnPHook_New();
    for (const char* theFeature = theLines.Take(); *theFeature; ++theFeature)
        UPnPHook_SetSupportFeature(theHook, static_cast<unsigned char>(*theFeature) % kUPnPHookFeature_Count, 1);
    const Client theClient = { theHook, theLines.Take() };
    const char* theObjectID = theLines.Take();
    const char* theFilter = theLines.Take();
    CheckObjectID(theClient, theObjectID, theFilter);
    CheckClass(theClient, theLines.Take());
    theClient.Ask(kUPnPHook_SetResExtraInfoInMetadata, theLines.Take());
    theClient.Ask(kUPnPHook_GetSupportEvent, theLines.Take());
    char fOK = 2;
    UPnPHook_Hook(theHook, kUPnPHook_CheckSeekMode, const_cast<char*>(theLines.Take()), &fOK);
    Require(fOK == 0 || fOK == 1, "a mode is allowed or not");
    UPnPHook_SetProperty(theHook, kUPnPHookProperty_DoNotChunkUserAgentList, theLines.Take());
    theClient.Ask(kUPnPHook_CheckHTTPChunk);
    ILibWebLinkData_SetID(theLines.Take());
    CheckKind(theClient);
    ILibWebLinkData_SetID(nullptr);
    UPnPHook_Delete(theHook);
    free(theInput);
    return 0;
}
