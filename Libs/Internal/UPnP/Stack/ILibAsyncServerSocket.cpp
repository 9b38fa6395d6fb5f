#include <UPnP/Stack/ILibAsyncServerSocket.h>

#include <UPnP/Stack/Private/ILibConfigBounds.h>

static const ILibConfigBounds_t kBounds[] = {
    { ILibConfigBounds_Values(ILibAsyncServerSocketConfig, mMaxConnections, kILibAsyncSocket_MaxConnections) },
    {},
};

const ILibConfigBounds_t* ILibAsyncServerSocket_GetBounds(void) { return kBounds; }

void ILibAsyncServerSocket_ValidateConfiguration(ILibAsyncServerSocketConfig* anAsyncServerSocketConfig)
{
    ILibConfigBounds_Apply(kBounds, anAsyncServerSocketConfig, "ILibAsyncServerSocketConfig");
}
