#include <UPnP/Utilities/DIDL/NameSet.h>

#include <UPnP/Utilities/DIDL/DocumentText.h>
#include <algorithm>

namespace DIDL
{

bool NameSet::Find(std::string_view aName) const
{
    for (size_t i = 0; i < mCount; ++i)
        if (Shared::Equals({ mInline[i].mData, mInline[i].mSize }, aName)) { return true; }
    return mTable && aName.size() <= mLongest && zoCustomHashTable_Get(mTable, NulTerminated(aName).c_str()) != nullptr;
}

void NameSet::AddToTable(std::string_view aName)
{
    if (!mTable) { mTable = zoCustomHashTable_New_String_String(); }
    zoCustomHashTable_Add(mTable, NulTerminated(aName).c_str(), "");
    mLongest = std::max(mLongest, aName.size());
}

void NameSet::Clear()
{
    zoCustomHashTable_Delete(mTable);
    mTable = nullptr;
    mLongest = 0;
    mSlots = 0;
    mCount = 0;
}

} // namespace DIDL
