#include <UPnP/Utilities/DIDL/NameSet.h>

#include <UPnP/Utilities/DIDL/DocumentText.h>

namespace DIDL
{

bool NameSet::IsInTable(std::string_view aName) const
{
    return zoCustomHashTable_Get(mTable, NulTerminated(aName).c_str()) != nullptr;
}

void NameSet::AddToTable(std::string_view aName)
{
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
