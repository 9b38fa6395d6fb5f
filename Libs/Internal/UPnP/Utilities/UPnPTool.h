#pragma once

#include <UPnP/Utilities/Export.h>
#include <zo/CString.h>

/** Tests of texts. Keeps no state; any thread may call. */
class UPNPUTILITIES_API UPnPTool
{
public:
    /** @return true for digits and exactly three dots. The numbers are not checked: "1..2.3" gives true. */
    static bool HostNameIsIPAddress(const zoCString& aHostName);
};
