#include <UPnP/Utilities/UPnPVersion.h>

const char* UPnPUtilities_GetVersion(void) { return kUPnPUtilities_Version; }
