#include <UPnP/Utilities/Config/Records.h>

#include <UPnP/Utilities/Config/Readers.h>
#include <UPnP/Utilities/Config/Rows.h>

namespace Config
{

#define FIELD(aField)                                                                                                  \
    Field<decltype(Record::aField)> { #aField, offsetof(Record, aField) }

namespace AsyncSocket
{
using Record = ILibAsyncSocketConfig;
static constexpr UPnPConfigField_t kRows[] = {
    Number<zoConfigFile_GetUInt32>(FIELD(mInitialBufferSize), kKey_AsyncSocket_InitialBufferSize),
    Number<zoConfigFile_GetUInt32>(FIELD(mMaxReadAHeadSize), kKey_AsyncSocket_MaxReadAHeadSize),
    Number<zoConfigFile_GetUInt32>(FIELD(mConnectTimeOut), kKey_AsyncSocket_ConnectTimeOut),
    Number<zoConfigFile_GetUInt32>(FIELD(mDisconnectLingerDuration), kKey_AsyncSocket_DisconnectLingerDuration),
    Number<zoConfigFile_GetUInt32>(FIELD(mDestroyLingerDuration), kKey_AsyncSocket_DestroyLingerDuration),
    Policy(FIELD(mSocketPolicy)),
};
} // namespace AsyncSocket

namespace AsyncServerSocket
{
using Record = ILibAsyncServerSocketConfig;
static constexpr UPnPConfigField_t kRows[] = {
    Number<zoConfigFile_GetUInt32>(FIELD(mMaxConnections), kKey_AsyncServerSocket_MaxConnections),
    Number<zoConfigFile_GetUInt16>(FIELD(mPortNumber), kKey_AsyncServerSocket_PortNumber),
    Number<zoConfigFile_GetUInt16>(FIELD(mfAllowChangePortNumber), kKey_AsyncServerSocket_AllowChangePortNumber),
    Number<UPnPConfig_GetUInt16AsUInt32>(FIELD(mBacklogSize), kKey_AsyncServerSocket_BacklogSize),
    Embedded(FIELD(mAsyncSocketConfig)),
};
} // namespace AsyncServerSocket

namespace SSDP
{
using Record = ILibSSDPConfig;
static constexpr UPnPConfigField_t kRows[] = {
    Policy(FIELD(mSocketPolicy)),
    Address<UPnPConfig_GetAddress>(FIELD(mSSDPMask), kKey_SSDP_Mask),
    Number<zoConfigFile_GetUInt16>(FIELD(mSSDPPort), kKey_SSDP_Port),
    Number<zoConfigFile_GetUInt8>(FIELD(mSSDPTTL), kKey_SSDP_TTL),
    Number<zoConfigFile_GetUInt32>(FIELD(mSSDPSearchRequestCount), kKey_SSDP_SearchRequestCount),
    Number<zoConfigFile_GetUInt32>(FIELD(mSSDPByeByeMessageCount), kKey_SSDP_ByeByeMessageCount),
    Number<zoConfigFile_GetUInt32>(FIELD(mSSDPNotifyCycleSeconds), kKey_SSDP_NotifyCycleSeconds),
    NotRead(FIELD(mMSEARCHInfoCacheDuration)),
    Number<zoConfigFile_OptionIsSet>(FIELD(mfEnableMSEARCHInfoAny), kKey_SSDP_MSEARCHInfoAny),
    Number<zoConfigFile_GetUInt32>(FIELD(mSSDPMaxDevices), kKey_SSDP_MaxDevices),
    Number<zoConfigFile_OptionIsSet>(FIELD(mfSSDPMSEARCHResponseMulti), kKey_SSDP_MSEARCHResponseMulti),
    Number<zoConfigFile_GetUInt32>(FIELD(mUDPSendDelay), kKey_SSDP_UDPSendDelay),
    Number<zoConfigFile_OptionIsSet>(FIELD(mfSSDPMSEARCHPortStrict), kKey_SSDP_MSEARCHPortStrict, 1),
    Number<zoConfigFile_GetUInt32>(FIELD(mSSDPDeviceMX), kKey_SSDP_DeviceMX, kILibSSDP_DeviceMX_Default),
    Number<zoConfigFile_GetUInt32>(FIELD(mSSDPMX), kKey_SSDP_MX, kILibSSDP_MX_Default),
    Number<zoConfigFile_OptionIsSet>(FIELD(mfHandleMSEARCHAsNOTIFY), kKey_SSDP_HandleMSEARCHAsNOTIFY, 1),
    UserAgent(FIELD(mUserAgent), kKey_SSDP_UserAgent, kSSDPStandardUserAgentString),
};
} // namespace SSDP

namespace NoSSDP
{
using Record = ILibNoSSDPConfig;
static constexpr UPnPConfigField_t kRows[] = {
    Policy(FIELD(mSocketPolicy)),
};
} // namespace NoSSDP

namespace WebServer
{
using Record = ILibWebServerConfig;
static constexpr UPnPConfigField_t kRows[] = {
    Number<zoConfigFile_GetUInt32>(FIELD(mSessionIdleTimeOut), kKey_WebServer_SessionIdleTimeOut),
    Argument(FIELD(mUPnPHook)),
    Argument(FIELD(mUPnPPresentationModule)),
    Argument(FIELD(mUPnPPresentationCallback)),
    Embedded(FIELD(mAsyncServerSocketConfig)),
    UserAgent(FIELD(mUserAgent), kKey_WebServer_UserAgent, kWebServerStandardUserAgentString),
    Number<UPnPConfig_GetFlag>(FIELD(mfSupportHTTPStalling), kKey_WebServer_SupportHTTPStalling, 1),
    Number<UPnPConfig_GetFlag>(FIELD(mfHandleReject), kKey_WebServer_HandleReject),
    Number<UPnPConfig_GetFlag>(FIELD(mfSupportHTTP10KeepALive), kKey_WebServer_SupportHTTP10KeepALive, 1),
    Number<UPnPConfig_GetSignedFlag>(FIELD(mfDoNotChunk), kKey_WebServer_DoNotChunk),
};
} // namespace WebServer

namespace WebClient
{
using Record = ILibWebClientConfig;
static constexpr UPnPConfigField_t kRows[] = {
    Number<zoConfigFile_GetUInt32>(FIELD(mSessionIdleTimeOut), kKey_WebClient_SessionIdleTimeOut),
    Number<zoConfigFile_GetUInt32>(FIELD(mMaxIdleSessions), kKey_WebClient_MaxIdleSessions),
    Number<zoConfigFile_GetUInt32>(FIELD(mSessionPoolSize), kKey_WebClient_SessionPoolSize),
    Number<zoConfigFile_GetUInt32>(FIELD(mConnectRetryCount), kKey_WebClient_ConnectRetryCount),
    Embedded(FIELD(mAsyncSocketConfig)),
    Number<UPnPConfig_GetSignedFlag>(FIELD(mfAllowSingleConnection), kKey_WebClient_AllowSingleConnection),
    Number<UPnPConfig_GetSignedFlag>(FIELD(mfDoNotChunk), kKey_WebClient_DoNotChunk),
    Number<UPnPConfig_GetSignedFlag>(FIELD(mfHandleReject), kKey_WebClient_HandleReject),
    NotRead(FIELD(mSingleConnectionSessionIdleTimeOut)),
};
} // namespace WebClient

namespace ControlPoint
{
using Record = UPnPControlPointConfig;
static constexpr UPnPConfigField_t kRows[] = {
    Policy(FIELD(mSocketPolicy)),
    Argument(FIELD(mUPnPHook)),
    UserAgent(FIELD(mUserAgent), kKey_ControlPoint_UserAgent, kControlPointStandardUserAgentString,
              kKey_ControlPoint_DLNAVersion),
    Number<UPnPConfig_GetFlag>(FIELD(mfDisableSSDP), kKey_ControlPoint_DisableSSDP),
    Number<UPnPConfig_GetFlag>(FIELD(mfEnableMSEARCHInfo), kKey_ControlPoint_EnableMSEARCHInfo, 1),
    Number<UPnPConfig_GetInvertedFlag>(FIELD(mfDisableNoSSDP), kKey_ControlPoint_EnableNoSSDP),
    Number<UPnPConfig_GetFlag>(FIELD(mfDetectOnly), kKey_ControlPoint_DetectDeviceOnly),
};
} // namespace ControlPoint

#undef FIELD

const UPnPConfigRecord_t kRecords[] = {
    Table<AsyncSocket::Record, AsyncSocket::kRows>("AsyncSocket"),
    Table<AsyncServerSocket::Record, AsyncServerSocket::kRows>("AsyncServerSocket"),
    Table<SSDP::Record, SSDP::kRows>("SSDP"),
    Table<NoSSDP::Record, NoSSDP::kRows>("NoSSDP"),
    Table<WebServer::Record, WebServer::kRows>("WebServer"),
    Table<WebClient::Record, WebClient::kRows>("WebClient"),
    Table<ControlPoint::Record, ControlPoint::kRows>("ControlPoint"),
};

} // namespace Config
