#include <UPnP/Utilities/Groups/Comparison.h>

#include <Shared/Sizes.h>
#include <UPnP/Utilities/Groups/Slave.h>
#include <stdlib.h>
#include <string.h>

namespace Groups
{

namespace
{

struct Entry
{
    const char* mKey;
    const char* mValue;
};

// A slave with its metadata by name, so that slaves that are the same compare equal.
struct OrderedSlave
{
    const UPnPGroupSlave* mSlave;
    Entry* mEntries;
    size_t mEntryCount;
};

} // namespace

static int CompareEntries(const void* aLeft, const void* aRight)
{
    const Entry* theLeft = static_cast<const Entry*>(aLeft);
    const Entry* theRight = static_cast<const Entry*>(aRight);
    const int theOrder = strcmp(theLeft->mKey, theRight->mKey);
    return theOrder != 0 ? theOrder : strcmp(theLeft->mValue, theRight->mValue);
}

// Of valid slaves.
static int CompareSlaves(const void* aLeft, const void* aRight)
{
    const OrderedSlave* theLeft = static_cast<const OrderedSlave*>(aLeft);
    const OrderedSlave* theRight = static_cast<const OrderedSlave*>(aRight);
    int theOrder = strcmp(theLeft->mSlave->mGroupedUDN, theRight->mSlave->mGroupedUDN);
    if (theOrder == 0)
    {
        theOrder = strcmp(theLeft->mSlave->mGroupedFriendlyName, theRight->mSlave->mGroupedFriendlyName);
    }
    if (theOrder == 0)
    {
        theOrder = (theLeft->mEntryCount > theRight->mEntryCount) - (theLeft->mEntryCount < theRight->mEntryCount);
    }
    for (size_t i = 0; i < theLeft->mEntryCount && theOrder == 0; ++i)
        theOrder = CompareEntries(&theLeft->mEntries[i], &theRight->mEntries[i]);
    return theOrder;
}

// The entries are released with free by the caller.
static OrderedSlave NewOrderedSlave(const UPnPGroupSlave* aSlave)
{
    const size_t theCount = zoCustomHashTable_GetTupleCount(aSlave->mMetaData);
    Entry* theEntries = Shared::NewArray<Entry>(theCount);
    for (size_t i = 0; i < theCount; ++i)
    {
        const char* theKey = zoCustomHashTable_GetKeyAtIndex(aSlave->mMetaData, i);
        theEntries[i] = { theKey, zoCustomHashTable_Get(aSlave->mMetaData, theKey) };
    }
    qsort(theEntries, theCount, sizeof(Entry), CompareEntries);
    return { aSlave, theEntries, theCount };
}

// The slaves of a valid group, in order.
class OrderedSlaves
{
public:
    explicit OrderedSlaves(UPnPGroupInfo* aGroupInfo) : mCount(UPnPGroupInfo_GetSlaveCount(aGroupInfo))
    {
        mSlaves = Shared::NewArray<OrderedSlave>(mCount);
        for (size_t i = 0; i < mCount; ++i)
            mSlaves[i] = NewOrderedSlave(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i));
        qsort(mSlaves, mCount, sizeof(OrderedSlave), CompareSlaves);
    }
    ~OrderedSlaves()
    {
        for (size_t i = 0; i < mCount; ++i)
            free(mSlaves[i].mEntries);
        free(mSlaves);
    }
    OrderedSlaves(const OrderedSlaves&) = delete;
    OrderedSlaves& operator=(const OrderedSlaves&) = delete;

    bool Contain(const OrderedSlave* aSlave) const
    {
        return bsearch(aSlave, mSlaves, mCount, sizeof(OrderedSlave), CompareSlaves) != nullptr;
    }

private:
    size_t mCount;
    OrderedSlave* mSlaves;
};

bool HaveSameSlaves(UPnPGroupInfo* aGroupInfo, UPnPGroupInfo* aCompareGroupInfo)
{
    const size_t theCount = UPnPGroupInfo_GetSlaveCount(aGroupInfo);
    size_t theSame = 0; // how many slaves from the start on are the same at the same index; usually all
    while (theSame < theCount && UPnPGroupSlave_S_SameAs(UPnPGroupInfo_GetSlaveAt(aGroupInfo, theSame),
                                                         UPnPGroupInfo_GetSlaveAt(aCompareGroupInfo, theSame)))
        ++theSame;
    if (theSame == theCount) { return true; }

    const OrderedSlaves theOthers(aCompareGroupInfo);
    bool fAreThere = true;
    for (size_t i = theSame; i < theCount && fAreThere; ++i)
    {
        const OrderedSlave theSlave = NewOrderedSlave(UPnPGroupInfo_GetSlaveAt(aGroupInfo, i));
        fAreThere = theOthers.Contain(&theSlave);
        free(theSlave.mEntries);
    }
    return fAreThere;
}

} // namespace Groups
