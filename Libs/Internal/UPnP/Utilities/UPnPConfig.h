#pragma once

/* The stack's settings, from the device's configuration file: single values, and the records that the stack's modules
 * are started with, each filled from one section.
 *
 * The caller makes one socket policy, creates a record, fetches it from a section and hands it to the stack:
 *
 *     zoSocketPolicy* thePolicy = UPnPConfig_CreateSocketPolicy(theFile, "Stack");
 *     ILibSSDPConfig* theConfig = UPnPConfig_CreateSSDPConfig();
 *     UPnPConfig_FetchSSDPConfig(theConfig, theFile, "SSDP", thePolicy);
 *     ...
 *     UPnPConfig_FreeSSDPConfig(theConfig);
 *     free(theConfig);
 *
 * Absent keys give defaults, and nothing fails. A NULL file or section counts as one without keys. Nothing is kept
 * between calls; calls are as safe from other threads as the file that they are given. */

#include <UPnP/ControlPoint/Stack/GenericCP.h>
#include <UPnP/Stack/ILibAsyncServerSocket.h>
#include <UPnP/Stack/ILibAsyncSocket.h>
#include <UPnP/Stack/ILibNoSSDPClient.h>
#include <UPnP/Stack/ILibSSDPClient.h>
#include <UPnP/Stack/ILibWebClient.h>
#include <UPnP/Stack/ILibWebServer.h>
#include <UPnP/Utilities/Export.h>
#include <UPnP/Utilities/UPnPHook.h>
#include <zoOS/zoSocketPolicy.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoConfigFile.h>
#include <zoltTools/zoCustomHashTable.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Single values ---- */

/** @return the value, or the default, with the host's name for each "%HOSTNAME%": a new text, released with free. NULL
 *          when the key is absent and the default is NULL. */
UPNPUTILITIES_API char* UPnPConfig_GetStringWithSubstitution(zoConfigFile* aConfigFile, const char* aSection,
                                                             const char* aKey, const char* aDefaultValue);
/** @return a copy of the value, or of the default when the key is absent, released with free; NULL when the key is
 *          absent and the default is NULL. */
UPNPUTILITIES_API char* UPnPConfig_GetString(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                             const char* aDefaultValue);
/** As UPnPConfig_GetString, but an empty value counts as absent, and the default must not be NULL: that is an
 *  assertion, and the result is then NULL where the default would be. */
UPNPUTILITIES_API char* UPnPConfig_GetStringNotEmpty(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                                     const char* aDefaultValue);
/** @return the value as zoConfigFile_GetUInt32 reads it. */
UPNPUTILITIES_API uint32 UPnPConfig_GetUInt32(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                              uint32 aDefaultValue);
/** @return 0 when zoConfigFile_GetUInt32 reads 0, else 1. */
UPNPUTILITIES_API uint32 UPnPConfig_GetBoolAsUInt32(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                                    uint32 aDefaultValue);

/**
 * Stores a copy of a value, or of the default when the key is absent, in a table. When the key is absent and the
 * default is NULL, nothing is stored, and an entry that is there stays. A NULL table is ignored.
 * @param aMaxLength  bytes that are stored at most; a longer value is cut between UTF-8 characters. 0: no limit.
 */
UPNPUTILITIES_API void UPnPConfig_AddToHashTable(zoCustomHashTable* anHashTable, const char* aHashTableKey,
                                                 zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                                 const char* aDefaultValue, size_t aMaxLength);
/** As UPnPConfig_AddToHashTable, but the configuration file is asked without the default, which then replaces a missing
 *  value. */
UPNPUTILITIES_API void UPnPConfig_AddToHashTableIfUnspecified(zoCustomHashTable* anHashTable, const char* aHashTableKey,
                                                              zoConfigFile* aConfigFile, const char* aSection,
                                                              const char* aKey, const char* aDefaultValue,
                                                              size_t aMaxLength);

/* The addresses of the host that are used: 1 the local host only, 2 all but the local host, any other number all. */
#define kKey_Stack_UPnPLocal "UPnPLocal"

/** @return a new socket policy from kKey_Stack_UPnPLocal and the policy's own keys (zoSocketPolicyConfig.h), released
 * with zoSocketPolicy_Delete after all records that were fetched with it. */
UPNPUTILITIES_API zoSocketPolicy* UPnPConfig_CreateSocketPolicy(zoConfigFile* aConfigFile, const char* aSection);

/* ---- The stack's records ----
 *
 * Create gives a new record, all 0, released with free.
 *
 * Fetch overwrites the whole record; a user agent that it holds has to be freed before. It stores the borrowed
 * arguments, reads the keys (kKey_* of the record's header) from the section, also those of embedded records, and calls
 * the stack's validator, which clamps numbers other than 0 to their bounds. A NULL record is ignored.
 *
 * Clone gives a copy with its own user agent, which shares policy, hook and presentation module; NULL for NULL.
 *
 * Free releases the user agent, the only thing that a record owns, but not the record. NULL is ignored. */

UPNPUTILITIES_API ILibAsyncSocketConfig* UPnPConfig_CreateAsyncSocketConfig(void);
UPNPUTILITIES_API void UPnPConfig_FetchAsyncSocketConfig(ILibAsyncSocketConfig* anAsyncSocketConfig,
                                                         zoConfigFile* aConfigFile, const char* aSection,
                                                         zoSocketPolicy* aSocketPolicy);
UPNPUTILITIES_API ILibAsyncSocketConfig* UPnPConfig_CloneAsyncSocketConfig(
    const ILibAsyncSocketConfig* anAsyncSocketConfig);

UPNPUTILITIES_API ILibAsyncServerSocketConfig* UPnPConfig_CreateAsyncServerSocketConfig(void);
UPNPUTILITIES_API void UPnPConfig_FetchAsyncServerSocketConfig(ILibAsyncServerSocketConfig* anAsyncServerSocketConfig,
                                                               zoConfigFile* aConfigFile, const char* aSection,
                                                               zoSocketPolicy* aSocketPolicy);
UPNPUTILITIES_API ILibAsyncServerSocketConfig* UPnPConfig_CloneAsyncServerSocketConfig(
    const ILibAsyncServerSocketConfig* anAsyncServerSocketConfig);

UPNPUTILITIES_API ILibSSDPConfig* UPnPConfig_CreateSSDPConfig(void);
UPNPUTILITIES_API void UPnPConfig_FetchSSDPConfig(ILibSSDPConfig* aSSDPConfig, zoConfigFile* aConfigFile,
                                                  const char* aSection, zoSocketPolicy* aSocketPolicy);
UPNPUTILITIES_API void UPnPConfig_FreeSSDPConfig(ILibSSDPConfig* aSSDPConfig);

UPNPUTILITIES_API ILibNoSSDPConfig* UPnPConfig_CreateNoSSDPConfig(void);
UPNPUTILITIES_API void UPnPConfig_FetchNoSSDPConfig(ILibNoSSDPConfig* aNoSSDPConfig, zoConfigFile* aConfigFile,
                                                    const char* aSection, zoSocketPolicy* aSocketPolicy);

UPNPUTILITIES_API ILibWebServerConfig* UPnPConfig_CreateWebServerConfig(void);
UPNPUTILITIES_API void UPnPConfig_FetchWebServerConfig(ILibWebServerConfig* aWebServerConfig, zoConfigFile* aConfigFile,
                                                       const char* aSection, zoSocketPolicy* aSocketPolicy,
                                                       UPnPHook* aUPnPHook, void* aUPnPPresentationModule,
                                                       ILibWebServer_OnPresentation aUPnPPresentationCallback);
UPNPUTILITIES_API ILibWebServerConfig* UPnPConfig_CloneWebServerConfig(
    const ILibWebServerConfig* anILibWebServerConfig);
UPNPUTILITIES_API void UPnPConfig_FreeWebServerConfig(ILibWebServerConfig* aWebServerConfig);

UPNPUTILITIES_API ILibWebClientConfig* UPnPConfig_CreateWebClientConfig(void);
UPNPUTILITIES_API void UPnPConfig_FetchWebClientConfig(ILibWebClientConfig* aWebClientConfig, zoConfigFile* aConfigFile,
                                                       const char* aSection, zoSocketPolicy* aSocketPolicy);
UPNPUTILITIES_API ILibWebClientConfig* UPnPConfig_CloneWebClientConfig(const ILibWebClientConfig* aWebClientConfig);

UPNPUTILITIES_API UPnPControlPointConfig* UPnPConfig_CreateControlPointConfig(void);
UPNPUTILITIES_API void UPnPConfig_FetchControlPointConfig(UPnPControlPointConfig* aControlPointConfig,
                                                          zoConfigFile* aConfigFile, const char* aSection,
                                                          zoSocketPolicy* aSocketPolicy, UPnPHook* aUPnPHook);
UPNPUTILITIES_API void UPnPConfig_FreeControlPointConfig(UPnPControlPointConfig* aControlPointConfig);

/* ---- What the fetches read, for programs that show or edit configuration files ---- */

enum
{
    kUPnPConfigRecord_AsyncSocket = 0,
    kUPnPConfigRecord_AsyncServerSocket = 1,
    kUPnPConfigRecord_SSDP = 2,
    kUPnPConfigRecord_NoSSDP = 3,
    kUPnPConfigRecord_WebServer = 4,
    kUPnPConfigRecord_WebClient = 5,
    kUPnPConfigRecord_ControlPoint = 6,
    kUPnPConfigRecord_Count = 7
};

/* What a field holds. */
enum
{
    kUPnPConfigValue_None = 0, /* nothing is read, and it stays 0 */
    kUPnPConfigValue_Number = 1,
    kUPnPConfigValue_Address = 2,   /* an IPv4 address as a number in network byte order */
    kUPnPConfigValue_UserAgent = 3, /* char*: the standard part, with " DLNADOC/" and the DLNA version after it where
                                       the field has a key for it, a blank, and the value or else "Zolt/1.1" */
    kUPnPConfigValue_Policy = 4,
    kUPnPConfigValue_Argument = 5, /* a pointer that the fetch is given: hook, presentation module or callback */
    kUPnPConfigValue_Record = 6    /* an embedded record */
};

/** Reads a key as its field stores it; an absent or unreadable value gives what the default gives. */
typedef uint32 (*UPnPConfig_NumberReader_t)(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                            uint32 aDefaultValue);

/* A field of a record, and how it is filled. */
typedef struct UPnPConfigField_t
{
    const char* mName;
    uint16 mOffset;
    uint8 mSize;                     /* of a number: 1, 2, 4 or 8; of no use for other values */
    uint8 mValue;                    /* a kUPnPConfigValue_* */
    uint8 mRecord;                   /* of an embedded record: a kUPnPConfigRecord_* */
    uint32 mDefault;                 /* of a number */
    const char* mKey;                /* NULL: none */
    UPnPConfig_NumberReader_t mRead; /* of a number or an address, which always has the default 0; else NULL */
    const char* mStandardPart;       /* of a user agent, else NULL */
    const char* mVersionKey;         /* of a user agent that has the DLNA version, else NULL */
} UPnPConfigField_t;

/* A record and its fields. */
typedef struct UPnPConfigRecord_t
{
    const char* mName; /* as in UPnPConfig_Fetch...Config */
    const UPnPConfigField_t* mFields;
    uint16 mFieldCount;
    uint16 mSize;
} UPnPConfigRecord_t;

/** @return the description of a kUPnPConfigRecord_*, its fields in their order; NULL for any other number. */
UPNPUTILITIES_API const UPnPConfigRecord_t* UPnPConfig_GetRecord(int aRecord);
/** @return what the fetch would store in a number's field, before its validator looks at it, if the field had the
 * default aDefaultValue; 0 for NULL and for a field that is neither a number nor an address. */
UPNPUTILITIES_API uint32 UPnPConfig_ReadNumber(const UPnPConfigField_t* aField, zoConfigFile* aConfigFile,
                                               const char* aSection, uint32 aDefaultValue);

#ifdef __cplusplus
}
#endif
