#pragma once

/* Results of the UPnP stack's operations. */
enum
{
    kUPnPError_None = 0,
    kUPnPError_InvalidXML = -5, /* "Invalid XML" */
    kUPnPError_InvalidDIDL = -6 /* "Invalid media description" */
};
