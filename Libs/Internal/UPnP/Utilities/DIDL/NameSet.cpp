#include <UPnP/Utilities/DIDL/NameSet.h>

#include <Shared/ASCII.h>
#include <UPnP/Utilities/DIDL/DocumentText.h>

namespace DIDL
{

bool NameSet::Contains(std::string_view aName) const
{
    for (size_t i = 0; i < mCount; ++i)
        if (Shared::Equals(mInline[i], aName)) { return true; }
    return mTable && zoCustomHashTable_Get(mTable, NulTerminated(aName).c_str());
}

void NameSet::Add(std::string_view aName)
{
    if (mCount < kInline)
    {
        mInline[mCount++] = aName;
        return;
    }
    if (!mTable) { mTable = zoCustomHashTable_New_String_String(); }
    zoCustomHashTable_Add(mTable, NulTerminated(aName).c_str(), "");
}

void NameSet::Clear()
{
    zoCustomHashTable_Delete(mTable);
    mTable = nullptr;
    mCount = 0;
}

} // namespace DIDL
