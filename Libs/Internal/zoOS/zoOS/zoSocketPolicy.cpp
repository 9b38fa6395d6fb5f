#include <zoOS/zoSocketPolicy.h>

#include <Shared/ASCII.h>
#include <Shared/OutOfMemory.h>
#include <Shared/Split.h>
#include <stdlib.h>
#include <string.h>

struct zoSocketPolicy
{
    int mMode;
    int mfQOSDisabled;
    char* mExcludedInterfaces; // the list as it was given; NULL for none
};

zoSocketPolicy* zoSocketPolicy_New(int aMode, int /*aFlags*/)
{
    void* thePolicy = Shared::NotNull(calloc(1, sizeof(zoSocketPolicy)), sizeof(zoSocketPolicy));
    static_cast<zoSocketPolicy*>(thePolicy)->mMode = aMode;
    return static_cast<zoSocketPolicy*>(thePolicy);
}

void zoSocketPolicy_Delete(zoSocketPolicy* aSocketPolicy)
{
    if (!aSocketPolicy) { return; }
    free(aSocketPolicy->mExcludedInterfaces);
    free(aSocketPolicy);
}

int zoSocketPolicy_GetMode(const zoSocketPolicy* aSocketPolicy)
{
    return aSocketPolicy ? aSocketPolicy->mMode : kzoSocketPolicy_IP_All;
}

void zoSocketPolicy_SetQOSDisabled(zoSocketPolicy* aSocketPolicy, int afDisabled)
{
    if (aSocketPolicy) { aSocketPolicy->mfQOSDisabled = afDisabled != 0; }
}

int zoSocketPolicy_IsQOSDisabled(const zoSocketPolicy* aSocketPolicy)
{
    return aSocketPolicy && aSocketPolicy->mfQOSDisabled;
}

void zoSocketPolicy_SetExcludedInterfaces(zoSocketPolicy* aSocketPolicy, const char* aNameList)
{
    if (!aSocketPolicy) { return; }
    char* theList = aNameList ? Shared::NotNull(strdup(aNameList), strlen(aNameList) + 1) : nullptr;
    free(aSocketPolicy->mExcludedInterfaces);
    aSocketPolicy->mExcludedInterfaces = theList;
}

// True if one of the names between commas is this one.
static bool Lists(const char* aNameList, std::string_view aName)
{
    std::string_view theItem;
    for (std::string_view theRest = aNameList; Shared::NextItem(&theRest, ',', &theItem);)
    {
        if (!aName.empty() && Shared::Trim(theItem, Shared::IsBlank) == aName) { return true; }
    }
    return false;
}

int zoSocketPolicy_Admits(const zoSocketPolicy* aSocketPolicy, const char* anInterfaceName, int afLoopback)
{
    if (!aSocketPolicy) { return 1; }
    const int theMode = aSocketPolicy->mMode & kzoSocketPolicy_IP_Mask;
    if (theMode == kzoSocketPolicy_IP_LocalHostOnly && !afLoopback) { return 0; }
    if (theMode == kzoSocketPolicy_IP_AllExceptLocalHost && afLoopback) { return 0; }
    const char* theExcluded = aSocketPolicy->mExcludedInterfaces;
    return !(theExcluded && anInterfaceName && Lists(theExcluded, anInterfaceName));
}
