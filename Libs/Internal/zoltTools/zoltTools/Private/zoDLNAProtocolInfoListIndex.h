#pragma once

/* The index of a list of protocol infos: its elements by what they match. */

#include <algorithm>
#include <atomic>
#include <string_view>
#include <zoOS/zoTypes.h>
#include <zoltTools/Private/zoDLNAProtocolInfoList.h>
#include <zoltTools/Private/zoKeyedHash.h>

namespace ProtocolInfo
{

inline constexpr uint32 kNone = 0xFFFFFFFF;

// An element, told apart from most others without a look at its texts.
struct Entry
{
    const zoDLNAProtocolInfo_t* mInfo;
    uint32 mMimeType;   // hashes; this one is of what a wild card covers, and of the rarest parameter if there are any
    uint32 mProfile;    // 0 without a profile, and only then
    uint32 mProtocol;   // 0 for "*", and only then
    uint32 mNetwork;    // as mProtocol
    uint32 mParameters; // position of the set; kNone without one

    uint64 GetTransport(bool afNetworkFirst) const
    {
        return afNetworkFirst ? uint64{ mNetwork } << 32 | mProtocol : uint64{ mProtocol } << 32 | mNetwork;
    }
};

// An element whose MIME type is a wild card.
struct WildCard
{
    uint32 mType;  // the hash of what it covers
    uint32 mEntry; // a position
};

inline bool IsTypeBefore(const WildCard& aLeft, const WildCard& aRight) { return aLeft.mType < aRight.mType; }

// A bit each for the parameters of a MIME type, some of which share one.
struct Fingerprint
{
    static const uint32 kBits = 256;
    uint64 mBits[kBits / 64];

    void Add(uint32 aParameter) { mBits[aParameter % kBits / 64] |= uint64(1) << (aParameter % 64); }
    bool IsCoveredBy(const Fingerprint& anOther) const
    {
        uint64 theMissing = 0;
        for (size_t i = 0; i < kBits / 64; ++i)
            theMissing |= mBits[i] & ~anOther.mBits[i];
        return theMissing == 0;
    }
};

// The parameters of an element's MIME type by their numbers, in ascending order.
struct ParameterSet
{
    Fingerprint mFingerprint;
    const uint32* mNumbers; // in the array of the index
    uint32 mCount;

    bool Has(uint32 aNumber) const { return std::binary_search(mNumbers, mNumbers + mCount, aNumber); }

    // @return a number that the other one lacks; kNone when it has all. Takes little time when one set is much larger
    // than the other, too.
    uint32 FindMissing(const ParameterSet& anOther) const
    {
        const uint32* theEnd = anOther.mNumbers + anOther.mCount;
        const uint32* thePosition = anOther.mNumbers;
        const uint32* theMissing = std::find_if(mNumbers, mNumbers + mCount,
                                                [&](uint32 aNumber)
                                                {
            thePosition = std::lower_bound(thePosition, theEnd, aNumber);
            return thePosition == theEnd || *thePosition != aNumber;
        });
        return theMissing == mNumbers + mCount ? kNone : *theMissing;
    }
};

// Finds the first element of each hash in an array that is sorted by it. The slots are at most half full.
struct HashTable
{
    uint32* mSlots; // positions; kNone is free
    uint32 mMask;

    // aHashAt tells the hash at a position. @return a position; kNone when no element has the hash.
    template <typename HashAt>
    uint32 Find(uint32 aHash, HashAt aHashAt) const
    {
        uint32 theSlot = aHash & mMask;
        while (mSlots[theSlot] != kNone && aHashAt(mSlots[theSlot]) != aHash)
            theSlot = (theSlot + 1) & mMask;
        return mSlots[theSlot];
    }
};

// What elements are ordered by; those that are alike are in the order of their transports.
enum Order
{
    kByFormat, // MIME type, then profile
    kByMimeType,
    kByProfile,
    kOrderCount
};

// The elements of a list in orders of their hashes, and the parameters of their MIME types by numbers, the rarest
// first. Parameters are compared by hash alone: all 61 bits of it. Everything else that has one hash is compared,
// too.
struct MatchIndex
{
    uint64 mKey;
    Entry* mEntries; // in the order of MIME types, profiles, protocols and networks
    uint32 mCount;
    HashTable mMimeTypes;
    uint32* mOrders[kOrderCount]; // positions in mEntries; NULL for the order that mEntries has
    // As mOrders, one after the other, but by network, then protocol; NULL until asked for.
    mutable std::atomic<uint32*> mNetworkFirst;
    HashTable mProfiles;  // of positions in the order by profile
    WildCard* mWildCards; // in the order of their types
    uint32 mWildCardCount;
    bool mfHasOneTransport; // protocol and network are the same in all elements

    uint64* mParameterHashes;  // of all elements, each once
    uint32* mParameterNumbers; // of each hash: the fewer elements have it, the lower
    uint32 mParameterHashCount;
    ParameterSet* mSets;
    uint32 mSetCount;
    uint32* mNumbers; // of all sets
};

// ---- What elements and protocol infos are found by ----

inline bool IsWildCard(std::string_view aMimeType)
{
    const size_t theLength = aMimeType.size();
    if (theLength == 0 || aMimeType[theLength - 1] != '*') { return false; }
    return theLength == 1 || aMimeType[theLength - 2] == '/';
}

/** @return what a MIME type that the wild card covers begins with, a "/" at its end included; "" when it covers all. */
inline std::string_view TypeOf(std::string_view aWildCard)
{
    const std::string_view theType = aWildCard.substr(0, aWildCard.size() - 1);
    return theType == "*/" ? std::string_view() : theType;
}

/** @return a short hash of a long one; not 0. */
inline uint32 Shorten(uint64 aHash)
{
    const uint32 theHash = static_cast<uint32>(aHash);
    return theHash != 0 ? theHash : 1;
}

template <bool afIsExact = false>
inline uint32 HashOf(uint64 aKey, std::string_view aText)
{
    return Shorten(KeyedHash::Hash<afIsExact>(aKey, aText));
}

/** Takes what is before the next slash off the rest of a MIME type, and adds it to the hash of what was before it.
 *  @return false when there is no slash. */
inline bool AddToBeginning(uint64 aKey, std::string_view* aRest, uint64* aHash)
{
    const size_t theSlash = aRest->find('/');
    if (theSlash == std::string_view::npos) { return false; }
    *aHash = KeyedHash::Hash(aKey, aRest->substr(0, theSlash), *aHash);
    aRest->remove_prefix(theSlash + 1);
    return true;
}

/** The hash of what a wild card covers. */
uint32 HashOfWildCard(uint64 aKey, std::string_view aMimeType);

/** The hash of a MIME type; wild cards are found by what they cover. */
inline uint32 HashOfMimeType(uint64 aKey, std::string_view aMimeType)
{
    return IsWildCard(aMimeType) ? HashOfWildCard(aKey, aMimeType) : HashOf(aKey, aMimeType);
}

inline uint32 HashOfField(uint64 aKey, std::string_view aField) { return IsAny(aField) ? 0 : HashOf(aKey, aField); }

inline uint32 HashOfProfile(uint64 aKey, std::string_view aProfile)
{
    return aProfile.empty() ? 0 : HashOf<true>(aKey, aProfile);
}

/** The hash of a MIME type and a parameter by its number. */
inline uint32 WithParameter(uint32 aMimeType, uint32 aParameter) { return aMimeType ^ (aParameter + 1) * 0x9E3779B1u; }

inline auto MimeTypeAt(const MatchIndex* anIndex)
{
    return [theEntries = anIndex->mEntries](uint32 aPosition) { return theEntries[aPosition].mMimeType; };
}

inline auto ProfileAt(const MatchIndex* anIndex)
{
    return [theEntries = anIndex->mEntries, theOrder = anIndex->mOrders[kByProfile]](uint32 aPosition)
    { return theEntries[theOrder[aPosition]].mProfile; };
}

/** Counts those that are not empty. */
uint32 CountParameters(std::string_view aParameters);

/** Reads parameters into a set, for whose numbers there is room. Those that no element has are left out. */
ParameterSet ReadSet(const MatchIndex* anIndex, std::string_view aParameters, uint32* aNumbers);

/** @return the index of a list, made by the first of the threads that ask for it and kept by the list; NULL when the
 *          list does not need one. */
const MatchIndex* FindMatchIndex(const zoDLNAProtocolInfoList_t* aList);

/** @return the mNetworkFirst of an index, made by the first of the threads that ask for it. */
const uint32* FindNetworkFirst(const MatchIndex* anIndex);

} // namespace ProtocolInfo
