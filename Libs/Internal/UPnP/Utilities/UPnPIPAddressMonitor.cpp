#include <UPnP/Utilities/UPnPIPAddressMonitor.h>

#include <zoltTools/zoIPAddressMonitor.h>
#include <zoltTools/zoMagicNumber.h>
#include <zoltTools/zoMemory.h>

// A macro, so that a failed assertion shows its number: devices' logs are searched for this text.
#define kUPnPIPAddressMonitor_Magic 0xC0CAD0DA

struct IPAddressMonitor
{
    ILibChain mChain;
    uint32 _mMagicNumber;
    IPChangeCallBackFunc mIPChangeCallBackFunc;
    void* mIPChangeCallBackUserData;
    zoIPAddressMonitor* mIPAddressMonitor;
};

static void IPAddressMonitorCallBack(void* aMonitor);

static void RestartIPAddressMonitor(struct IPAddressMonitor* aMonitor)
{
    ILibLifeTime_AddEx(ILibChain_GetLifeTime(aMonitor->mChain.mBaseChain), aMonitor, kIPAddressMonitor_PollInterval,
                       IPAddressMonitorCallBack, nullptr);
}

static void IPAddressMonitorCallBack(void* aMonitor)
{
    struct IPAddressMonitor* theIPAddressMonitor = static_cast<struct IPAddressMonitor*>(aMonitor);
    if (!zoAssertMagicNumber(theIPAddressMonitor, kUPnPIPAddressMonitor_Magic)) { return; }
    if (zoIPAddressMonitor_IPAddressChanged(theIPAddressMonitor->mIPAddressMonitor))
    {
        theIPAddressMonitor->mIPChangeCallBackFunc(theIPAddressMonitor->mIPChangeCallBackUserData);
    }
    RestartIPAddressMonitor(theIPAddressMonitor);
}

static void UPnPIPAddressMonitor_Destroy(void* aMonitor)
{
    struct IPAddressMonitor* theIPAddressMonitor = static_cast<struct IPAddressMonitor*>(aMonitor);
    if (!zoAssertMagicNumber(theIPAddressMonitor, kUPnPIPAddressMonitor_Magic)) { return; }
    theIPAddressMonitor->_mMagicNumber = 0;
    ILibLifeTime_Remove(ILibChain_GetLifeTime(theIPAddressMonitor->mChain.mBaseChain), theIPAddressMonitor);
    zoIPAddressMonitor_Delete(theIPAddressMonitor->mIPAddressMonitor);
}

struct IPAddressMonitor* UPnPIPAddressMonitor_Create(ILibBaseChain* aBaseChain,
                                                     IPChangeCallBackFunc aChangeCallBackFunc,
                                                     void* anIPChangeCallBackFuncUserData,
                                                     zoSocketPolicy* aSocketPolicy)
{
    if (!zoAssert(aBaseChain != NULL)) { return nullptr; }
    struct IPAddressMonitor* theMonitor =
        static_cast<struct IPAddressMonitor*>(zoMallocZeroed(sizeof(struct IPAddressMonitor)));
    theMonitor->_mMagicNumber = kUPnPIPAddressMonitor_Magic;
    theMonitor->mChain.mDestroy = UPnPIPAddressMonitor_Destroy;
    theMonitor->mIPChangeCallBackFunc = aChangeCallBackFunc;
    theMonitor->mIPChangeCallBackUserData = anIPChangeCallBackFuncUserData;
    theMonitor->mIPAddressMonitor = zoIPAddressMonitor_New(aSocketPolicy);
    ILibAddToChain(aBaseChain, theMonitor);
    RestartIPAddressMonitor(theMonitor);
    return theMonitor;
}
