#include <UPnP/Utilities/UPnPTool.h>

#include <Shared/ASCII.h>

bool UPnPTool::HostNameIsIPAddress(const zoCString& aHostName)
{
    size_t theDots = 0;
    for (const char theByte : std::string_view(aHostName.c_str(), aHostName.length()))
    {
        if (theByte == '.') { ++theDots; }
        else if (!Shared::IsDigit(theByte)) { return false; }
    }
    return theDots == 3;
}
