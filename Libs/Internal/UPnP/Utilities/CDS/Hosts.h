#pragma once

/* The hosts that URIs name, and how near they are to the devices that will fetch from them. */

#include <stdlib.h>
#include <string_view>
#include <zoOS/zoTypes.h>

namespace CDS
{

/** Addresses in network byte order. */
struct Targets
{
    Targets(const uint32* anAddresses, uint32 aCount) : mAddresses(anAddresses), mCount(anAddresses ? aCount : 0) {}

    const uint32* mAddresses;
    uint32 mCount;
};

/** Tells how near addresses are to targets. The locality of two addresses is 3, 2 or 1 when they share this many first
 *  octets, else 0. The first question sorts the targets; each takes logarithmic time. */
class Localities
{
public:
    explicit Localities(Targets aTargets) : mTargets(aTargets) {}
    ~Localities() { free(mSorted); }
    Localities(const Localities&) = delete;
    Localities& operator=(const Localities&) = delete;

    /** @param anAddress  in network byte order. @return its highest locality to a target; 0 without targets. */
    uint32 GetHighest(uint32 anAddress);
    /** @param anAddress  in network byte order. @return the sum of its localities to all targets. */
    uint32 GetSum(uint32 anAddress);

private:
    void Sort();
    uint32 CountBelow(uint32 anAddress) const;
    uint32 CountNear(uint32 anAddress, uint32 aMask);

    Targets mTargets;
    uint32* mSorted = nullptr; // owned; in host byte order. NULL before the first question
};

/** What FindHostAddress returns for a URI whose host is a name, or that has no host. */
inline constexpr uint32 kNoAddress = 0xFFFFFFFF;

/** The weight of an IPv4 host; the locality, at most 3, is added to it. */
inline constexpr uint32 kIsAddressWeight = 0x10;

/** @param anURI  ends at its NUL or with its bytes. @return the IPv4 address, in network byte order, that is its host;
 *                kNoAddress when that is not one. */
uint32 FindHostAddress(std::string_view anURI);

/** @return what an URI begins with, up to its third "/", which comes after the host if there is one; empty when it has
 *          fewer. URIs that begin so have the same host. */
std::string_view BeginningWithHost(std::string_view anURI);

} // namespace CDS
