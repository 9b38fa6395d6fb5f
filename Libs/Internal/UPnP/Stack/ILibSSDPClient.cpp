#include <UPnP/Stack/ILibSSDPClient.h>

#include <UPnP/Stack/Private/ILibConfigBounds.h>

static const ILibConfigBounds_t kBounds[] = {
    { "mSSDPPort", offsetof(ILibSSDPConfig, mSSDPPort), sizeof(uint16), kILibSSDP_Port, 0, 0 },
    { ILibConfigBounds_Values(ILibSSDPConfig, mSSDPTTL, kILibSSDP_TTL) },
    { ILibConfigBounds_Values(ILibSSDPConfig, mSSDPSearchRequestCount, kILibSSDP_SearchRequestCount) },
    { ILibConfigBounds_Values(ILibSSDPConfig, mSSDPByeByeMessageCount, kILibSSDP_ByeByeMessageCount) },
    { ILibConfigBounds_Values(ILibSSDPConfig, mSSDPNotifyCycleSeconds, kILibSSDP_NotifyCycleSeconds) },
    { ILibConfigBounds_Values(ILibSSDPConfig, mMSEARCHInfoCacheDuration, kILibSSDP_MSEARCHInfoCacheDuration) },
    { ILibConfigBounds_Values(ILibSSDPConfig, mUDPSendDelay, kILibSSDP_UDPSendDelay) },
    { ILibConfigBounds_Values(ILibSSDPConfig, mSSDPDeviceMX, kILibSSDP_DeviceMX) },
    { ILibConfigBounds_Values(ILibSSDPConfig, mSSDPMX, kILibSSDP_MX) },
    {},
};

const ILibConfigBounds_t* ILibSSDP_GetBounds(void) { return kBounds; }

void ILibSSDP_ValidateConfiguration(ILibSSDPConfig* aSSDPConfig)
{
    ILibConfigBounds_Apply(kBounds, aSSDPConfig, "ILibSSDPConfig");
}
