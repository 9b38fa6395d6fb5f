#pragma once

/* The configuration of the client that finds devices without SSDP. */

#include <UPnP/Stack/Export.h>
#include <zoOS/zoSocketPolicy.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What finding devices without SSDP is configured with. */
typedef struct ILibNoSSDPConfig
{
    zoSocketPolicy* mSocketPolicy; /* borrowed */
} ILibNoSSDPConfig;

/** Does nothing: the record has no numbers, so any record is valid. */
UPNPSTACK_API void ILibNoSSDPClient_ValidateConfiguration(ILibNoSSDPConfig* aNoSSDPConfig);

#ifdef __cplusplus
}
#endif
