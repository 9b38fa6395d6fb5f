#include <UPnP/Utilities/CDS/Hosts.h>

#include <Shared/Sizes.h>
#include <algorithm>
#include <zoOS/zoSocket.h>
#include <zoltTools/zoURI.h>

namespace CDS
{

// The first three, two and one octets.
static const uint32 sIPAddressMask[] = { 0xFFFFFF00, 0xFFFF0000, 0xFF000000 };

uint32 FindHostAddress(std::string_view anURI) { return zoURI_S_GetHostIP(anURI.data(), anURI.size()); }

std::string_view BeginningWithHost(std::string_view anURI)
{
    size_t theLength = 0;
    for (int i = 0; i < 3; ++i)
    {
        const size_t theSlash = anURI.find('/', theLength);
        if (theSlash == anURI.npos) { return {}; }
        theLength = theSlash + 1;
    }
    return anURI.substr(0, theLength);
}

static int CompareAddresses(const void* aLeft, const void* aRight)
{
    const uint32 theLeft = *static_cast<const uint32*>(aLeft);
    const uint32 theRight = *static_cast<const uint32*>(aRight);
    return (theLeft > theRight) - (theLeft < theRight);
}

// Compiled for size, as what follows: resources of several hosts are rare.
[[gnu::cold]] void Localities::Sort()
{
    mSorted = Shared::NewArray<uint32>(mTargets.mCount);
    for (uint32 i = 0; i < mTargets.mCount; ++i)
        mSorted[i] = zoSocket_htonl(mTargets.mAddresses[i]);
    qsort(mSorted, mTargets.mCount, sizeof(*mSorted), CompareAddresses);
}

// @return the number of targets below an address in host byte order.
[[gnu::cold]] uint32 Localities::CountBelow(uint32 anAddress) const
{
    return static_cast<uint32>(std::lower_bound(mSorted, mSorted + mTargets.mCount, anAddress) - mSorted);
}

// @return the number of targets whose bits of a mask are those of an address.
[[gnu::cold]] uint32 Localities::CountNear(uint32 anAddress, uint32 aMask)
{
    if (mTargets.mCount == 0) { return 0; }
    if (!mSorted) { Sort(); }
    const uint32 theFirst = zoSocket_htonl(anAddress) & aMask;
    const uint32 theEnd = theFirst - aMask; // 0 when no address is past them
    return (theEnd != 0 ? CountBelow(theEnd) : mTargets.mCount) - CountBelow(theFirst);
}

[[gnu::cold]] uint32 Localities::GetHighest(uint32 anAddress)
{
    for (uint32 i = 0; i < 3; ++i)
        if (CountNear(anAddress, sIPAddressMask[i]) > 0) { return 3 - i; }
    return 0;
}

[[gnu::cold]] uint32 Localities::GetSum(uint32 anAddress)
{
    uint32 theSum = 0;
    for (const uint32 theMask : sIPAddressMask) // targets that share three octets share two and one, too
        theSum += CountNear(anAddress, theMask);
    return theSum;
}

} // namespace CDS
