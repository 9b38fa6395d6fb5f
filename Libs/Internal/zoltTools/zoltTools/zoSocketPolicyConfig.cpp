#include <zoltTools/zoSocketPolicyConfig.h>

void zoSocketPolicy_Configure(zoSocketPolicy* aSocketPolicy, const zoConfigFile* aConfigFile, const char* aSection)
{
    zoSocketPolicy_SetQOSDisabled(aSocketPolicy,
                                  zoConfigFile_OptionIsSet(aConfigFile, aSection, kKey_SocketPolicy_QOSDisabled,
                                                           zoSocketPolicy_IsQOSDisabled(aSocketPolicy)));
    const char* theExcluded = zoConfigFile_GetString(aConfigFile, aSection, kKey_SocketPolicy_ExcludeIF, nullptr);
    if (theExcluded) { zoSocketPolicy_SetExcludedInterfaces(aSocketPolicy, theExcluded); }
}
