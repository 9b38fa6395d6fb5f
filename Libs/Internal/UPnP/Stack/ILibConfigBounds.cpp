#include <UPnP/Stack/Private/ILibConfigBounds.h>

#include <Shared/Integers.h>
#include <Shared/LogMessage.h>

static void Warn(const char* aRecordName, const ILibConfigBounds_t* aBounds, uint64 aValue, uint32 aStoredValue)
{
    Shared::LogMessage(ZOLOGLEVEL_WARNING, ZOLOG_M_UPNP, __FILE__, __LINE__,
                       "%s: %s %llu is not within %lu to %lu, %lu is taken\n", aRecordName, aBounds->mField,
                       static_cast<unsigned long long>(aValue), static_cast<unsigned long>(aBounds->mMin),
                       static_cast<unsigned long>(aBounds->mMax), static_cast<unsigned long>(aStoredValue));
}

static void ApplyToField(const ILibConfigBounds_t* aBounds, void* aField, const char* aRecordName)
{
    const uint64 theValue = Shared::LoadUnsigned(aField, aBounds->mSize);
    if (theValue == 0 || aBounds->mMax == 0) { return; }
    if (theValue >= aBounds->mMin && theValue <= aBounds->mMax) { return; }
    const uint32 theStored = theValue < aBounds->mMin ? aBounds->mMin : aBounds->mMax;
    Shared::StoreUnsigned(aField, aBounds->mSize, theStored);
    Warn(aRecordName, aBounds, theValue, theStored);
}

void ILibConfigBounds_Apply(const ILibConfigBounds_t* aTable, void* aRecord, const char* aRecordName)
{
    if (!aRecord) { return; }
    for (; aTable->mField; ++aTable)
        ApplyToField(aTable, static_cast<char*>(aRecord) + aTable->mOffset, aRecordName);
}
