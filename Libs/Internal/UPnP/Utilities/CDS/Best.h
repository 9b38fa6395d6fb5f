#pragma once

/* The heaviest of several resources. */

#include <zoOS/zoTypes.h>

namespace CDS
{

/** Keeps of the resources that are added the first one that no other outweighs. Only one of several is weighed. */
template <typename Weigher>
class Best
{
public:
    /** @param aWeigher  gives the weight of the resource with an index. */
    explicit Best(Weigher aWeigher) : mWeigher(aWeigher) {}

    /** @return the resource's index; -1 when none was added. */
    int GetIndex() const { return mIndex; }

    void Add(uint32 anIndex)
    {
        if (mIndex < 0)
        {
            mIndex = static_cast<int>(anIndex);
            return;
        }
        if (!mfIsWeighed) { mWeight = mWeigher(static_cast<uint32>(mIndex)); }
        mfIsWeighed = true;
        const uint32 theWeight = mWeigher(anIndex);
        if (theWeight <= mWeight) { return; }
        mIndex = static_cast<int>(anIndex);
        mWeight = theWeight;
    }

private:
    Weigher mWeigher;
    int mIndex = -1;
    bool mfIsWeighed = false;
    uint32 mWeight = 0;
};

} // namespace CDS
