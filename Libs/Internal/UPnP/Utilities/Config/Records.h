#pragma once

/* Which key fills which field of the stack's records. */

#include <UPnP/Utilities/UPnPConfig.h>

namespace Config
{

/** By kUPnPConfigRecord_*. */
extern const UPnPConfigRecord_t kRecords[kUPnPConfigRecord_Count];

} // namespace Config
