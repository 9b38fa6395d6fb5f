#pragma once

/* The choice of the resource that suits a renderer best. */

#include <Shared/Sizes.h>
#include <UPnP/Utilities/CDS/Hosts.h>
#include <stdlib.h>
#include <zo/CString.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoPackedData.h>

namespace CDS
{

/** @return the resource's protocol info, new; NULL when it has none. */
zoDLNAProtocolInfo_t* NewProtocolInfo(const zoPackedData_t* aRecord, uint32 aResource);

struct Resource
{
    zoDLNAProtocolInfo_t* mInfo; // owned; NULL while it is not read or belongs to a candidate list
    bool mfHasProtocolInfo;
    bool mfHasProfile;
};

// The resources of a record during one choice. Their protocol infos are read once, unless a stage used them up in vain.
class Resources
{
public:
    explicit Resources(const zoPackedData_t* aRecord) : mRecord(aRecord), mCount(zoPackedData_GetEntryCount(aRecord))
    {
        mResources = Shared::NewZeroedArray<Resource>(mCount);
    }
    ~Resources()
    {
        for (uint32 i = 0; i < mCount; ++i)
            zoDLNAProtocolInfo_Delete(mResources[i].mInfo);
        free(mResources);
    }
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;

    uint32 GetCount() const { return mCount; }
    const zoPackedData_t* GetRecord() const { return mRecord; }
    bool HasProfile(uint32 aResource) const { return mResources[aResource].mfHasProfile; }

    // The resource with its protocol info, for want of one that of its URI; NULL when it has neither.
    const Resource* Read(uint32 aResource);
    zoDLNAProtocolInfo_t* TakeInfo(uint32 aResource)
    {
        zoDLNAProtocolInfo_t* theInfo = mResources[aResource].mInfo;
        mResources[aResource].mInfo = nullptr;
        return theInfo;
    }

private:
    const zoPackedData_t* mRecord;
    uint32 mCount;
    Resource* mResources;
};

// What a choice is made for.
struct Renderer
{
    const zoDLNAProtocolInfoList_t* mSinkList; // NULL when it is unknown
    const zoCString& mSupportedProtocols;
    const zoCString& mSchemeOrder;
    Targets mTargets;
    bool mfSearchingThumbnail;
};

struct Choice
{
    int mResource; // -1 when there is none
    int mConfidence;
};

/** @return the choice of the first stage that makes one with the least confidence or more. */
Choice Choose(Resources* aResources, const Renderer& aRenderer, int aLeastConfidence);

/** @return the transport protocols of the list. */
zoCString GetSupportedProtocols(const zoDLNAProtocolInfoList_t* aList);

} // namespace CDS
