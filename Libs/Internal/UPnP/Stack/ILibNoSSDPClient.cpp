#include <UPnP/Stack/ILibNoSSDPClient.h>

void ILibNoSSDPClient_ValidateConfiguration(ILibNoSSDPConfig*) {}
