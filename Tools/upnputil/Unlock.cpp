#include "Subcommand.h"

#include <UPnP/Utilities/UPnPCPUtility.h>
#include <stdlib.h>
#include <zoltTools/zoURI.h>

static const Usage kUsage = {
    "unlock",
    "--pin CODE",
    "URI",
    "Prints the unlocked form of a parental-locked URI, one with a query argument \"lock\".\n",
    {
        { "--pin", "CODE", false, "the parental code" },
    },
};

static bool HasLock(const char* aURI)
{
    zoURI* theURI = zoURI_NewFromEscapedStr(aURI);
    char* theLock = zoURI_GetQueryPart(theURI, "lock");
    const bool fHasLock = theLock != nullptr;
    free(theLock);
    zoURI_Delete(theURI);
    return fHasLock;
}

int Unlock(const Arguments& anArguments, Output& anOutput)
{
    Options theOptions(kUsage);
    if (!theOptions.Read(anArguments, anOutput)) { return theOptions.Status(); }
    const char* thePin = theOptions.Get("--pin");
    if (!thePin) { return theOptions.BadUsage("--pin is needed"); }
    const char* theURI = theOptions.Operand();
    if (!HasLock(theURI)) { return FailToFind(std::string(theURI) + ": no lock argument"); }
    anOutput.Fact("unlocked uri", UPnPCPUtility::GetURIUnlocked(theURI, thePin).c_str());
    return kExit_Done;
}
