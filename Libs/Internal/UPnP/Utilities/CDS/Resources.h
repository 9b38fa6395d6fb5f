#pragma once

/* The resources of a record during one choice. */

#include <UPnP/Utilities/CDS/Hosts.h>
#include <string_view>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoDLNAProtocolInfo.h>
#include <zoltTools/zoPackedData.h>

namespace CDS
{

/** Bytes in which ordinary protocol infos are made in place. */
inline constexpr size_t kInfoSize = 160;

/** A resource whose protocol info is read, in place when there is room for it. */
struct Resource
{
    zoDLNAProtocolInfo_t* mInfo; // owned; from the URI when there is no protocol info; NULL without either
    bool mfHasProtocolInfo;
    alignas(void*) char mMemory[kInfoSize];

    bool IsConverted() const { return zoDLNAProtocolInfo_GetConversionIndicator(mInfo) != 0; }
};

/** @return the index of the resource whose protocol info it is. */
inline uint32 IndexOf(const zoDLNAProtocolInfo_t* anInfo)
{
    return static_cast<uint32>(zoDLNAProtocolInfo_GetUserData(anInfo));
}

/** All resources. The first kFew take no memory from the heap. */
class Resources
{
public:
    explicit Resources(const zoPackedData_t* aRecord);
    ~Resources();
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;

    uint32 GetCount() const { return mCount; }
    const Resource& At(uint32 anIndex) const { return mResources[anIndex]; }
    /** @return room for GetCount() protocol infos, for the caller's use. */
    zoDLNAProtocolInfo_t** GetRoom() const { return mRoom; }

    /** @return the DLNA profile of the resource's protocol info, borrowed; NULL without one. */
    const char* GetProfile(uint32 anIndex) const;
    /** @return the weight of the resource's host: 0 for a name, else kIsAddressWeight and the highest locality. */
    uint32 WeighHost(uint32 anIndex, Localities* aLocalities) const;
    /** @return the bytes of the resource's URI; the text may end before them. */
    std::string_view GetURI(uint32 anIndex) const;

private:
    static const uint32 kFew = 8;

    const zoPackedData_t* mRecord;
    uint32 mCount;
    Resource* mResources;         // mFewResources or owned
    zoDLNAProtocolInfo_t** mRoom; // mFewInfos or after the resources
    Resource mFewResources[kFew];
    zoDLNAProtocolInfo_t* mFewInfos[kFew];
};

} // namespace CDS
