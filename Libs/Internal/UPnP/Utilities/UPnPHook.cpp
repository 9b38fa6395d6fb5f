#include <UPnP/Utilities/UPnPHook.h>

#include <Shared/LogMessage.h>
#include <UPnP/Utilities/Hook/Answers.h>
#include <UPnP/Utilities/Hook/Description.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoAssert.h>
#include <zoltTools/zoMemory.h>

struct UPnPHook_t UPnPHook_t = {};

// ---- The hook object ----

UPnPHook* UPnPHook_New()
{
    UPnPHook* theHook = UPnPHook_New_WithParent(nullptr);
    UPnPHook_SetProperty(theHook, kUPnPHookProperty_UserAgent, "Zolt/1.1, UPnP/1.0");
    return theHook;
}

UPnPHook* UPnPHook_New_WithParent(UPnPHook* aParentHook)
{
    UPnPHook* theHook = static_cast<UPnPHook*>(zoMallocZeroed(sizeof(UPnPHook)));
    theHook->mParentHook = aParentHook;
    return theHook;
}

void UPnPHook_Delete(UPnPHook* aUPnPHook)
{
    for (UPnPHook* theHook = aUPnPHook; theHook;)
    {
        UPnPHook* theParentHook = theHook->mParentHook;
        for (char* theProperty : theHook->mProperty)
            free(theProperty);
        free(theHook);
        theHook = theParentHook;
    }
}

void UPnPHook_SetProperty(UPnPHook* aUPnPHook, int aPropertyID, const char* aValue)
{
    if (!zoAssert(aUPnPHook != NULL)) { return; }
    if (!zoAssert((aPropertyID >= 0) && (aPropertyID < kUPnPHookProperty_Count))) { return; }
    char* theValue = zoStrdup(aValue);
    free(aUPnPHook->mProperty[aPropertyID]);
    aUPnPHook->mProperty[aPropertyID] = theValue;
}

const char* UPnPHook_GetProperty(UPnPHook* aUPnPHook, int aPropertyID)
{
    if (!zoAssert(aUPnPHook != NULL)) { return nullptr; }
    if (!zoAssert((aPropertyID >= 0) && (aPropertyID < kUPnPHookProperty_Count))) { return nullptr; }
    return aUPnPHook->mProperty[aPropertyID];
}

void UPnPHook_SetSupportFeature(UPnPHook* aUPnPHook, int aFeatureID, int afSupport)
{
    if (!zoAssert(aUPnPHook != NULL)) { return; }
    if (!zoAssert((aFeatureID >= 0) && (aFeatureID < kUPnPHookFeature_Count))) { return; }
    aUPnPHook->mfSupportFeature[aFeatureID] = afSupport;
}

int UPnPHook_SupportFeature(UPnPHook* aUPnPHook, int aFeatureID)
{
    if (!zoAssert(aUPnPHook != NULL)) { return 0; }
    if (!zoAssert((aFeatureID >= 0) && (aFeatureID < kUPnPHookFeature_Count))) { return 0; }
    for (const UPnPHook* theHook = aUPnPHook->mParentHook; theHook; theHook = theHook->mParentHook)
    {
        if (theHook->mfSupportFeature[aFeatureID] != 0) { return 1; }
    }
    return aUPnPHook->mfSupportFeature[aFeatureID];
}

// ---- Descriptions ----

// Reports what is wrong with a template. Devices' logs are searched for these texts, whatever the variables are called
// today.
static void ReportTemplateError(DeviceHook::TemplateError anError, const char* anEndCondition, int aLine)
{
    switch (anError)
    {
    case DeviceHook::kTemplate_Good: return;
    case DeviceHook::kTemplate_MarkerWithoutPart:
        _zoAssert("theOptionalIndex < theOptionalCount", __FILE__, aLine);
        return;
    case DeviceHook::kTemplate_NoElementAtEnd: _zoAssert(anEndCondition, __FILE__, aLine); return;
    }
}

char* UPnPHook_GetServiceDescription(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession, char* /*aServiceName*/,
                                     char* aServiceDescription, size_t aServiceDescriptionLength, char** anOptional,
                                     char** anOptionalName, size_t* anOptionalLength, size_t* aBufferLength)
{
    const DeviceHook::Description theDescription =
        DeviceHook::RewriteService(aUPnPHook, aSession, { aServiceDescription, aServiceDescriptionLength },
                                   { anOptional, anOptionalName, anOptionalLength });
    ReportTemplateError(theDescription.mError, "theBuffer[theBufferLength - 1] == '>'", __LINE__);
    *aBufferLength = theDescription.mLength;
    return theDescription.mText;
}

char* UPnPHook_GetDeviceDescription(UPnPHook* aUPnPHook, char* /*aUserAgent*/, char** anOptional, char** anOptionalName,
                                    size_t* anOptionalLength, char* aDeviceDescription)
{
    const size_t theLength = aDeviceDescription ? strlen(aDeviceDescription) : 0;
    const DeviceHook::Description theDescription = DeviceHook::RewriteDevice(
        aUPnPHook, { aDeviceDescription, theLength }, { anOptional, anOptionalName, anOptionalLength });
    ReportTemplateError(theDescription.mError, "theBuffer[theTotalDeviceDescriptionLength - 1] == '>'", __LINE__);
    return theDescription.mText;
}

// ---- Questions ----

void UPnPHook_Hook(UPnPHook* aUPnPHook, int aHookID, ...)
{
    if (!zoAssert(aUPnPHook != NULL)) { return; }
    DeviceHook::VariableArguments theArguments;
    va_start(theArguments.mList, aHookID);
    const bool fIsAnswered = DeviceHook::Answer(aUPnPHook, aHookID, &theArguments);
    va_end(theArguments.mList);
    if (fIsAnswered) { return; }
    Shared::LogMessage(ZOLOGLEVEL_WARNING, ZOLOG_M_UPNP, __FILE__, __LINE__, "UPnPHook: unknown hook ID '%d'\n",
                       aHookID);
}
