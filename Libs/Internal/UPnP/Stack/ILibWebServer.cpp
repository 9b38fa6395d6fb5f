#include <UPnP/Stack/ILibWebServer.h>

#include <UPnP/Stack/Private/ILibConfigBounds.h>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

struct ILibWebServer_Session
{
    char* mUserAgent;
};

ILibWebServer_Session* ILibWebServerSession_New(const char* aServerUserAgent)
{
    auto* theSession = static_cast<ILibWebServer_Session*>(zoMallocZeroed(sizeof(ILibWebServer_Session)));
    theSession->mUserAgent = zoStrdup(aServerUserAgent);
    return theSession;
}

void ILibWebServerSession_Delete(ILibWebServer_Session* aSession)
{
    if (!aSession) { return; }
    free(aSession->mUserAgent);
    free(aSession);
}

const char* ILibWebServerSession_GetServerUserAgent(const ILibWebServer_Session* aSession)
{
    return aSession ? aSession->mUserAgent : nullptr;
}

static const ILibConfigBounds_t kBounds[] = {
    { ILibConfigBounds_Values(ILibWebServerConfig, mSessionIdleTimeOut, kILibWebServer_SessionIdleTimeOut) },
    {},
};

const ILibConfigBounds_t* ILibWebServer_GetBounds(void) { return kBounds; }

void ILibWebServer_ValidateConfiguration(ILibWebServerConfig* aWebServerConfig)
{
    ILibConfigBounds_Apply(kBounds, aWebServerConfig, "ILibWebServerConfig");
}
