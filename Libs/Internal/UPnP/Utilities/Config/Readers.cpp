#include <UPnP/Utilities/Config/Readers.h>

#include <stdlib.h>
#include <zoOS/zoSocket.h>
#include <zoltTools/zoMemory.h>

static const char kProductToken[] = "Zolt/1.1";
static const char kDLNAVersion[] = "1.50";

int UPnPConfig_GetFlag(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue)
{
    return zoConfigFile_GetUInt32(aConfigFile, aSection, aKey, static_cast<uint32>(aDefaultValue)) != 0;
}

int UPnPConfig_GetSignedFlag(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue)
{
    return zoConfigFile_GetInt32(aConfigFile, aSection, aKey, aDefaultValue) != 0;
}

int UPnPConfig_GetInvertedFlag(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, int aDefaultValue)
{
    return !UPnPConfig_GetFlag(aConfigFile, aSection, aKey, aDefaultValue);
}

uint32 UPnPConfig_GetUInt16AsUInt32(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                    uint32 aDefaultValue)
{
    return zoConfigFile_GetUInt16(aConfigFile, aSection, aKey, static_cast<uint16>(aDefaultValue));
}

uint32 UPnPConfig_GetAddress(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32)
{
    return UPnPConfig_GetIPAddress(zoConfigFile_GetString(aConfigFile, aSection, aKey, ""));
}

uint32 UPnPConfig_GetIPAddress(const char* anIPAddress)
{
    return zoStrEmpty(anIPAddress) ? 0 : zoSocketGetAddressFromDotForm(anIPAddress);
}

char* UPnPConfig_GetUserAgent(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              const char* aStandardUserAgentString)
{
    char* theProduct = UPnPConfig_GetStringNotEmpty(aConfigFile, aSection, aKey, kProductToken);
    char* theUserAgent = zo_mnprintf("%s %s", aStandardUserAgentString, theProduct);
    free(theProduct);
    return theUserAgent;
}

char* UPnPConfig_GetDLNAUserAgent(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                  const char* aStandardUserAgentString, const char* aVersionKey)
{
    const char* theVersion = zoConfigFile_GetString(aConfigFile, aSection, aVersionKey, kDLNAVersion);
    char* theStandardPart = zo_mnprintf("%s DLNADOC/%s", aStandardUserAgentString, theVersion);
    char* theUserAgent = UPnPConfig_GetUserAgent(aConfigFile, aSection, aKey, theStandardPart);
    free(theStandardPart);
    return theUserAgent;
}
