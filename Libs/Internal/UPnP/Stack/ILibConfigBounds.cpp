#include <UPnP/Stack/Private/ILibConfigBounds.h>

#include <string.h>
#include <zoLog/Log.h>

template <typename Number>
static uint64 Load(const void* aField)
{
    Number theNumber;
    memcpy(&theNumber, aField, sizeof(theNumber));
    return theNumber;
}

template <typename Number>
static void Store(void* aField, uint32 aValue)
{
    const Number theNumber = static_cast<Number>(aValue);
    memcpy(aField, &theNumber, sizeof(theNumber));
}

static uint64 LoadNumber(const void* aField, size_t aSize)
{
    switch (aSize)
    {
    case 1: return Load<uint8>(aField);
    case 2: return Load<uint16>(aField);
    case 4: return Load<uint32>(aField);
    default: return Load<uint64>(aField);
    }
}

static void StoreNumber(void* aField, size_t aSize, uint32 aValue)
{
    switch (aSize)
    {
    case 1: Store<uint8>(aField, aValue); break;
    case 2: Store<uint16>(aField, aValue); break;
    case 4: Store<uint32>(aField, aValue); break;
    default: Store<uint64>(aField, aValue); break;
    }
}

static void Warn(const char* aRecordName, const ILibConfigBounds_t* aBounds, uint64 aValue, uint32 aTakenValue)
{
    zoLogRecord_t* theRecord = zoLog_Begin(ZOLOGLEVEL_WARNING, ZOLOG_M_UPNP);
    if (!theRecord) { return; }
    zoLog_SetLocation(theRecord, __FILE__, __LINE__);
    zoLog_Append_F(theRecord, "%s: %s %llu is not within %lu to %lu, %lu is taken\n", aRecordName, aBounds->mField,
                   static_cast<unsigned long long>(aValue), static_cast<unsigned long>(aBounds->mMin),
                   static_cast<unsigned long>(aBounds->mMax), static_cast<unsigned long>(aTakenValue));
    zoLog_End(theRecord);
}

static void ApplyToField(const ILibConfigBounds_t* aBounds, void* aField, const char* aRecordName)
{
    const uint64 theValue = LoadNumber(aField, aBounds->mSize);
    if (theValue == 0 || aBounds->mMax == 0) { return; }
    if (theValue >= aBounds->mMin && theValue <= aBounds->mMax) { return; }
    const uint32 theTaken = theValue < aBounds->mMin ? aBounds->mMin : aBounds->mMax;
    StoreNumber(aField, aBounds->mSize, theTaken);
    Warn(aRecordName, aBounds, theValue, theTaken);
}

void ILibConfigBounds_Apply(const ILibConfigBounds_t* aTable, void* aRecord, const char* aRecordName)
{
    if (!aRecord) { return; }
    for (; aTable->mField; ++aTable)
        ApplyToField(aTable, static_cast<char*>(aRecord) + aTable->mOffset, aRecordName);
}
