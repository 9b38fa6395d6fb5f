#pragma once

/* The heaviest of several resources. */

#include <UPnP/Utilities/CDS/Resources.h>
#include <string_view>

namespace CDS
{

/** Keeps of the resources that are added the first one that no other outweighs: by its first weight, then by its host,
 *  then by its last weight. Hosts are weighed only where they differ and nothing else decides. */
class Best
{
public:
    Best(const Resources& aResources, Targets aTargets) : mResources(aResources), mLocalities(aTargets) {}

    /** @return the resource's index; -1 when none was added. */
    int GetIndex() const { return mIndex; }
    void Add(uint32 anIndex, uint32 aFirstWeight, uint32 aLastWeight);
    void Clear() { mIndex = -1; }

private:
    bool MayHaveOtherHost(uint32 anIndex);
    int CompareHost(uint32 anIndex);

    const Resources& mResources;
    Localities mLocalities;
    int mIndex = -1;
    uint32 mFirstWeight = 0;
    uint32 mLastWeight = 0;
    uint32 mHostWeight = 0;
    bool mfHasHostWeight = false; // as mfHasBeginning: what another one was compared with
    bool mfHasBeginning = false;
    std::string_view mBeginning; // of the URI, with the host
};

} // namespace CDS
