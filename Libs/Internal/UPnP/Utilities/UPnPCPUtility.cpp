#include <UPnP/Utilities/UPnPCPUtility.h>

#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoBase64.h>
#include <zoltTools/zoMD5.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoURI.h>

static const char kLockArgument[] = "lock";

// The value of "lock" that opens the path: a new text, NULL on failure.
static char* NewLockValue(const char* aPath, const char* aPinCode)
{
    zoMD5Context theContext;
    uint8 theDigest[16];
    zoMD5_Init(&theContext);
    zoMD5_Add(&theContext, aPath, aPath ? strlen(aPath) : 0);
    zoMD5_Add(&theContext, aPinCode, aPinCode ? strlen(aPinCode) : 0);
    zoMD5_Get(&theContext, theDigest);
    char* theText = nullptr;
    zoBase64_Encode(theDigest, sizeof(theDigest), &theText);
    return theText;
}

int UPnPCPUtility_IsURIParentalLocked(const char* anURI)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(anURI);
    char* theLock = zoURI_GetQueryPart(theURI, kLockArgument);
    const bool fIsLocked = theLock && theLock[0] == '\0';
    free(theLock);
    zoURI_Delete(theURI);
    return fIsLocked;
}

char* UPnPCPUtility_FetchURIUnlocked(const char* anURI, const char* aPinCode)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(anURI);
    char* theLock = zoURI_GetQueryPart(theURI, kLockArgument);
    char* theResult = nullptr;
    if (theLock)
    {
        char* theValue = NewLockValue(theURI->mPath, aPinCode);
        if (theValue) { zoURI_AddQueryPart(theURI, kLockArgument, theValue); }
        free(theValue);
        zoURI_Escape(theURI);
        theResult = zoURI_GetStr(theURI);
    }
    free(theLock);
    zoURI_Delete(theURI);
    return theResult ? theResult : zoStrdup(anURI ? anURI : "");
}

bool UPnPCPUtility::IsURIParentalLocked(const zoCString& anURI)
{
    return UPnPCPUtility_IsURIParentalLocked(anURI.c_str()) != 0;
}

zoCString UPnPCPUtility::GetURIUnlocked(const zoCString& anURI, const zoCString& aPinCode)
{
    zoCString theResult;
    theResult.FromAllocatedString(UPnPCPUtility_FetchURIUnlocked(anURI.c_str(), aPinCode.c_str()));
    return theResult;
}
