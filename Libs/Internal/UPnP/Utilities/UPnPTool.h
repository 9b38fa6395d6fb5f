#pragma once

#include <UPnP/Utilities/Export.h>
#include <zo/CString.h>

/** What a text looks like. Nothing is kept; any thread may call. */
class UPNPUTILITIES_API UPnPTool
{
public:
    /** @return whether the text is made of digits and exactly three dots. The numbers are not checked: "1..2.3" is. */
    static bool HostNameIsIPAddress(const zoCString& aHostName);
};
