#include "Subcommand.h"

#include <UPnP/Utilities/UPnPCPUtility.h>
#include <stdlib.h>
#include <zoltTools/zoURI.h>

static const Usage kUsage = {
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

static int Unlock(const Arguments& anArguments, Output& anOutput)
{
    const char* thePin = anArguments.Get("--pin");
    if (!thePin) { return anArguments.BadUsage("--pin is needed"); }
    const char* theURI = anArguments.Operand();
    if (!HasLock(theURI)) { return FailToFind(std::string(theURI) + ": no lock argument"); }
    anOutput.Fact("unlocked uri", UPnPCPUtility::GetURIUnlocked(theURI, thePin).c_str());
    return kExit_Done;
}

const Subcommand kUnlock = { "unlock", "unlock a parental-locked URI", &kUsage, Unlock };
