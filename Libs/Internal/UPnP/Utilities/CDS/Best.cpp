#include <UPnP/Utilities/CDS/Best.h>

namespace CDS
{

bool Best::MayHaveOtherHost(uint32 anIndex)
{
    if (!mfHasBeginning) { mBeginning = BeginningWithHost(mResources.GetURI(static_cast<uint32>(mIndex))); }
    mfHasBeginning = true;
    return mBeginning.empty() || mResources.GetURI(anIndex).substr(0, mBeginning.size()) != mBeginning;
}

// @return above 0 when a resource's host outweighs that of the best one, below 0 when it is the other way round. The
// weight of the heavier one is kept.
int Best::CompareHost(uint32 anIndex)
{
    if (!MayHaveOtherHost(anIndex)) { return 0; }
    if (!mfHasHostWeight) { mHostWeight = mResources.WeighHost(static_cast<uint32>(mIndex), &mLocalities); }
    mfHasHostWeight = true;
    const uint32 theWeight = mResources.WeighHost(anIndex, &mLocalities);
    if (theWeight == mHostWeight) { return 0; }
    if (theWeight < mHostWeight) { return -1; }
    mHostWeight = theWeight;
    return 1;
}

void Best::Add(uint32 anIndex, uint32 aFirstWeight, uint32 aLastWeight)
{
    if (mIndex < 0 || aFirstWeight > mFirstWeight) { mfHasHostWeight = false; }
    else
    {
        const int theOrder = aFirstWeight < mFirstWeight ? -1 : CompareHost(anIndex);
        if (theOrder < 0 || (theOrder == 0 && aLastWeight <= mLastWeight)) { return; }
    }
    mIndex = static_cast<int>(anIndex);
    mFirstWeight = aFirstWeight;
    mLastWeight = aLastWeight;
    mfHasBeginning = false;
}

} // namespace CDS
