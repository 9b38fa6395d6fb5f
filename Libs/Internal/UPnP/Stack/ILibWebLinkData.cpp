#include <UPnP/Stack/ILibWebLinkData.h>

#include <stdlib.h>
#include <zoltTools/zoMemory.h>

static char* sID = nullptr;

char* ILibWebLinkData_GetID() { return zoStrdup(sID); }

void ILibWebLinkData_SetID(const char* anID)
{
    char* theID = zoStrdup(anID);
    free(sID);
    sID = theID;
}
