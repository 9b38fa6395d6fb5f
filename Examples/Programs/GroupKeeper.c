/* GroupKeeper FILE: keeps a group of speakers in a configuration file, and adds a speaker each time it runs. */

#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <stdio.h>
#include <stdlib.h>
#include <zoltTools/zoConfigFile.h>

static const char kCapability[] = "MultiRoom";

static UPnPGroupInfo* NewGroup(void)
{
    return UPnPGroupInfo_New(kCapability,
                             "<groupInfo friendlyName=\"Downstairs\" UDN=\"uuid:group-1\" volume=\"20\">"
                             "<master groupedFriendlyName=\"Kitchen\" groupedUDN=\"uuid:grouped-0\"/></groupInfo>");
}

int main(int argc, char** argv)
{
    zoConfigFile* theFile;
    UPnPGroupInfo* theGroup;
    char theUDN[40];
    char theName[40];
    char* theXML;
    unsigned long theNumber;
    int fIsSaved;

    if (argc != 2)
    {
        fprintf(stderr, "usage: %s FILE\n", argv[0]);
        return 2;
    }
    theFile = zoConfigFile_New(argv[1]);
    theGroup = UPnPGroupInfo_NewConfig(theFile, kCapability);
    if (!UPnPGroupInfo_IsValid(theGroup)) /* the first time there is none in the file */
    {
        UPnPGroupInfo_Delete(theGroup);
        theGroup = NewGroup();
    }
    theNumber = (unsigned long)UPnPGroupInfo_GetSlaveCount(theGroup) + 1;
    snprintf(theUDN, sizeof(theUDN), "uuid:grouped-%lu", theNumber);
    snprintf(theName, sizeof(theName), "Speaker %lu", theNumber);
    UPnPGroupInfo_AddSlave(theGroup, theUDN, theName, NULL);
    UPnPGroupInfo_SetMetaData(theGroup, theUDN, "volume", "15");

    UPnPGroupInfo_Store(theGroup, theFile);
    fIsSaved = zoConfigFile_Save(theFile);
    theXML = UPnPGroupInfo_GetXML(theGroup);
    printf("%s\n", theXML);
    free(theXML);
    UPnPGroupInfo_Delete(theGroup);
    zoConfigFile_Delete(theFile);
    return fIsSaved ? 0 : 1;
}
