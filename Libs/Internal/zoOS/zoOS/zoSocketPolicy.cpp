#include <zoOS/zoSocketPolicy.h>

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
    zoSocketPolicy* thePolicy = static_cast<zoSocketPolicy*>(calloc(1, sizeof(zoSocketPolicy)));
    if (!thePolicy) { abort(); }
    thePolicy->mMode = aMode;
    return thePolicy;
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
    char* theList = aNameList ? strdup(aNameList) : nullptr;
    if (aNameList && !theList) { abort(); }
    free(aSocketPolicy->mExcludedInterfaces);
    aSocketPolicy->mExcludedInterfaces = theList;
}

// Whether a list of names has this one.
static bool Lists(const char* aNameList, const char* aName)
{
    static const char kBlanks[] = " \t";
    const size_t theLength = strlen(aName);
    for (const char* theItem = aNameList;;)
    {
        const char* theComma = strchrnul(theItem, ',');
        theItem += strspn(theItem, kBlanks);
        const char* theEnd = theComma;
        while (theEnd > theItem && strchr(kBlanks, theEnd[-1]))
            --theEnd;
        const bool fIsSame = theEnd > theItem && static_cast<size_t>(theEnd - theItem) == theLength &&
                             memcmp(theItem, aName, theLength) == 0;
        if (fIsSame) { return true; }
        if (*theComma == '\0') { return false; }
        theItem = theComma + 1;
    }
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
