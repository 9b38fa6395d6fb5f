#include <UPnP/Stack/ILibWebClient.h>

#include <UPnP/Stack/Private/ILibConfigBounds.h>

static const ILibConfigBounds_t kBounds[] = {
    { ILibConfigBounds_Values(ILibWebClientConfig, mSessionIdleTimeOut, kILibWebClient_SessionIdleTimeOut) },
    { ILibConfigBounds_Values(ILibWebClientConfig, mMaxIdleSessions, kILibWebClient_MaxIdleSessions) },
    { ILibConfigBounds_Values(ILibWebClientConfig, mSessionPoolSize, kILibWebClient_SessionPoolSize) },
    { ILibConfigBounds_Values(ILibWebClientConfig, mConnectRetryCount, kILibWebClient_ConnectRetryCount) },
    {},
};

const ILibConfigBounds_t* ILibWebClient_GetBounds(void) { return kBounds; }

void ILibWebClient_ValidateConfiguration(ILibWebClientConfig* aWebClientConfig)
{
    ILibConfigBounds_Apply(kBounds, aWebClientConfig, "ILibWebClientConfig");
}
