#pragma once

/* How the keys of the stack's records are read. */

#include <UPnP/Utilities/UPnPConfig.h>

/* Readers of numbers: as zoConfigFile_GetUInt32, and for the field that their result has the type of. */

/** 1 for a number other than 0, else 0. */
int UPnPConfig_GetFlag(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue);
/** As UPnPConfig_GetFlag, for a number that may have a sign. */
int UPnPConfig_GetSignedFlag(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue);
/** 1 for 0, 0 for any other number. */
int UPnPConfig_GetInvertedFlag(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue);
/** A number of 16 bits for a field of 32. */
uint32 UPnPConfig_GetUInt16AsUInt32(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                    uint32 aDefaultValue);
/** An IPv4 address in dotted-quad form, in network byte order; 0, also with another default, for other texts. */
uint32 UPnPConfig_GetAddress(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32 aDefaultValue);

/** @return an IPv4 address in network byte order; 0 for NULL and for what is not one. */
uint32 UPnPConfig_GetIPAddress(const char* anIPAddress);

/** @return the standard part, a blank, and the value or else "Zolt/1.1": a new text, released with free. */
char* UPnPConfig_GetUserAgent(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              const char* aStandardUserAgentString);
/** As UPnPConfig_GetUserAgent, with " DLNADOC/" and the version, "1.50" when its key is absent, after the standard
 *  part. */
char* UPnPConfig_GetDLNAUserAgent(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                  const char* aStandardUserAgentString, const char* aVersionKey);
