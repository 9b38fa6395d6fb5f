#pragma once

/* Descriptions: templates in which "%@" marks the places of optional parts, and what of these a hook includes. */

#include <UPnP/Utilities/UPnPHook.h>
#include <string_view>

/* The answers to the questions on descriptions. They are in UPnPHook.cpp, since their assertions report that file. */
char* UPnPHook_GetServiceDescription(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession, char* aServiceName,
                                     char* aServiceDescription, size_t aServiceDescriptionLength, char** anOptional,
                                     char** anOptionalName, size_t* anOptionalLength, size_t* aBufferLength);
char* UPnPHook_GetDeviceDescription(UPnPHook* aUPnPHook, char* aUserAgent, char** anOptional, char** anOptionalName,
                                    size_t* anOptionalLength, char* aDeviceDescription);

namespace DeviceHook
{

/* The optional parts of a description as its caller has them; the texts end with NULL. */
struct OptionalParts
{
    char** mTexts;
    char** mNames;
    size_t* mLengths;
};

/* What is wrong with a template. */
enum TemplateError
{
    kTemplate_Good,
    kTemplate_MarkerWithoutPart,
    kTemplate_NoElementAtEnd // also reported for a part without a marker
};

struct Description
{
    char* mText; // new, NUL-terminated; NULL when markers and parts don't match
    size_t mLength;
    TemplateError mError;
};

Description RewriteService(UPnPHook* aUPnPHook, ILibWebServer_Session* aSession, std::string_view aTemplate,
                           const OptionalParts& aParts);
Description RewriteDevice(UPnPHook* aUPnPHook, std::string_view aTemplate, const OptionalParts& aParts);

} // namespace DeviceHook
