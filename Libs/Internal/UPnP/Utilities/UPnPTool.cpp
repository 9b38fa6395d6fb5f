#include <UPnP/Utilities/UPnPTool.h>

bool UPnPTool::HostNameIsIPAddress(const zoCString& aHostName)
{
    size_t theDots = 0;
    for (const char* thePosition = aHostName.c_str(); *thePosition != '\0'; ++thePosition)
    {
        if (*thePosition == '.') { ++theDots; }
        else if (*thePosition < '0' || *thePosition > '9') { return false; }
    }
    return theDots == 3;
}
