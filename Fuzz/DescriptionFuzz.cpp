#include "FuzzSupport.h"

#include <UPnP/Utilities/UPnPHook.h>
#include <string>
#include <vector>
#include <zoltTools/zoAssert.h>

// The bytes, cut at line ends, are the features that are on, one a character ("0" and "P" are feature 8), a user agent,
// further play modes, a play mode, play speeds, a template, and then names and texts of parts by turns.

namespace
{

int sAssertionCount = 0;

struct Parts
{
    void Add(const char* aName, const char* aText)
    {
        mTexts.insert(mTexts.end() - 1, const_cast<char*>(aText ? aText : ""));
        mNames.push_back(const_cast<char*>(aName));
        mLengths.push_back(strlen(mTexts.rbegin()[1]));
    }

    std::vector<char*> mTexts{ nullptr };
    std::vector<char*> mNames;
    std::vector<size_t> mLengths;
};

struct Client
{
    // The description, "(null)" for none; how many assertions failed is in sAssertionCount.
    std::string Rewrite(const std::string& aTemplate, Parts& aParts) const
    {
        sAssertionCount = 0;
        char* theBuffer = nullptr;
        size_t theLength = 0;
        std::vector<char> theTemplate(aTemplate.begin(), aTemplate.end());
        if (mfDevice)
        {
            theTemplate.push_back(0);
            UPnPHook_Hook(mHook, kUPnPHook_GetDeviceDescription, const_cast<char*>(mUserAgent), aParts.mTexts.data(),
                          aParts.mNames.data(), aParts.mLengths.data(), theTemplate.data(), &theBuffer);
            theLength = theBuffer ? strlen(theBuffer) : 0;
        }
        else
        {
            UPnPHook_Hook(mHook, kUPnPHook_GetServiceDescription, mSession, static_cast<char*>(nullptr),
                          theTemplate.data(), theTemplate.size(), aParts.mTexts.data(), aParts.mNames.data(),
                          aParts.mLengths.data(), &theBuffer, &theLength);
        }
        Require(theBuffer ? strlen(theBuffer) == theLength : theLength == 0, "the length is the text's");
        const std::string theText = theBuffer ? std::string(theBuffer, theLength) : "(null)";
        free(theBuffer);
        return theText;
    }
    // What stands for a part, found out by itself.
    std::string Choice(const char* aName, const char* aText) const
    {
        Parts thePart;
        thePart.Add(aName, aText);
        const std::string theText = Rewrite("<%@>", thePart);
        Require(sAssertionCount == 0, "a template that fits is not reported");
        const std::string theChoice = theText.substr(1, theText.size() - 2);
        Require(theChoice.empty() || theChoice == aText || (!mfDevice && theChoice.find("<allowedValueList>") == 0),
                "a part is dropped, itself or a list");
        return theChoice;
    }

    UPnPHook* mHook;
    const char* mUserAgent;
    ILibWebServer_Session* mSession;
    bool mfDevice;
};

void CheckSplicing(const Client& aClient, const std::string& aTemplate, Parts& aParts)
{
    std::string theExpected;
    size_t theMarkerCount = 0, thePosition = 0;
    for (size_t theMarker; (theMarker = aTemplate.find("%@", thePosition)) != std::string::npos; ++theMarkerCount)
    {
        theExpected += aTemplate.substr(thePosition, theMarker - thePosition);
        if (theMarkerCount < aParts.mNames.size())
        {
            theExpected += aClient.Choice(aParts.mNames[theMarkerCount], aParts.mTexts[theMarkerCount]);
        }
        thePosition = theMarker + 2;
    }
    theExpected += aTemplate.substr(thePosition);
    const bool fFits = theMarkerCount == aParts.mNames.size();
    const bool fEndsElement = !theExpected.empty() && theExpected.back() == '>';
    const std::string theText = aClient.Rewrite(aTemplate, aParts);
    Require(theText == (fFits ? theExpected : "(null)"), "the parts stand at their markers");
    Require(sAssertionCount == (fFits && fEndsElement ? 0 : 1), "what doesn't fit is reported once");
}

void CheckPlayMode(const Client& aClient, const char* aPlayModes, const char* aPlayMode)
{
    if (strchr(aPlayModes, '<') || strpbrk(aPlayMode, ",<") || !*aPlayMode) { return; }
    char fOK = 2;
    UPnPHook_Hook(aClient.mHook, kUPnPHook_CheckPlayMode, const_cast<char*>(aPlayMode), &fOK);
    const std::string theItem = std::string("<allowedValue>") + aPlayMode + "</allowedValue>";
    const bool fIsListed = aClient.Choice(":playmodelist", "").find(theItem) != std::string::npos;
    Require(fOK == (fIsListed ? 1 : 0), "the play modes that are listed are allowed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aSize)
{
    const zoAssertHandler_t theHandler = zoAssert_SetHandler([](const char*, const char*, int) { ++sAssertionCount; });
    char* theInput = NewText(aBytes, aSize);
    Lines theLines = { theInput };
    UPnPHook* theHook = UPnPHook_New();
    for (const char* theFeature = theLines.Take(); *theFeature; ++theFeature)
        UPnPHook_SetSupportFeature(theHook, static_cast<unsigned char>(*theFeature) % kUPnPHookFeature_Count, 1);
    const char* theUserAgent = theLines.Take();
    const char* thePlayModes = theLines.Take();
    const char* thePlayMode = theLines.Take();
    UPnPHook_SetProperty(theHook, kUPnPHookProperty_PlayModeList, thePlayModes);
    UPnPHook_SetProperty(theHook, kUPnPHookProperty_PlaySpeedList, theLines.Take());
    const char* theTemplate = theLines.Take();
    Parts theParts;
    while (theLines.mNext)
    {
        const char* theName = theLines.Take();
        theParts.Add(theName, theLines.Take());
    }

    ILibWebServer_Session* theSession = ILibWebServerSession_New(theUserAgent);
    for (const bool fDevice : { false, true })
        CheckSplicing({ theHook, theUserAgent, theSession, fDevice }, theTemplate ? theTemplate : "", theParts);
    if (thePlayMode) { CheckPlayMode({ theHook, theUserAgent, theSession, false }, thePlayModes, thePlayMode); }
    ILibWebServerSession_Delete(theSession);
    UPnPHook_Delete(theHook);
    free(theInput);
    zoAssert_SetHandler(theHandler);
    return 0;
}
