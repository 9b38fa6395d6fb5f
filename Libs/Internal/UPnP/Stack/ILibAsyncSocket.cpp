#include <UPnP/Stack/ILibAsyncSocket.h>

#include <UPnP/Stack/Private/ILibConfigBounds.h>

static const ILibConfigBounds_t kBounds[] = {
    { ILibConfigBounds_Values(ILibAsyncSocketConfig, mInitialBufferSize, kILibAsyncSocket_InitialBufferSize) },
    { ILibConfigBounds_Values(ILibAsyncSocketConfig, mMaxReadAHeadSize, kILibAsyncSocket_MaxReadAHeadSize) },
    { ILibConfigBounds_Values(ILibAsyncSocketConfig, mConnectTimeOut, kILibAsyncSocket_ConnectTimeOut) },
    { ILibConfigBounds_Values(ILibAsyncSocketConfig, mDisconnectLingerDuration, kILibAsyncSocket_DisconnectLinger) },
    { ILibConfigBounds_Values(ILibAsyncSocketConfig, mDestroyLingerDuration, kILibAsyncSocket_DestroyLinger) },
    {},
};

const ILibConfigBounds_t* ILibAsyncSocket_GetBounds(void) { return kBounds; }

void ILibAsyncSocket_ValidateConfiguration(ILibAsyncSocketConfig* anAsyncSocketConfig)
{
    ILibConfigBounds_Apply(kBounds, anAsyncSocketConfig, "ILibAsyncSocketConfig");
}
