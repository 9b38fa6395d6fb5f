#include <zoltTools/zoULongLong.h>

#include <zoltTools/zoMemory.h>

void zoULongLong_SetFileOffset(zoULongLong* aValue, zoFileOffset anOffset)
{
    const uint64 theOffset = anOffset > 0 ? static_cast<uint64>(anOffset) : 0;
    aValue->mLow = static_cast<uint32>(theOffset);
    aValue->mHigh = static_cast<uint32>(theOffset >> 32);
}

char* zoULongLong_ToString(const zoULongLong* aValue)
{
    return zo_mnprintf("%llu", static_cast<unsigned long long>(zoULongLong_ToUInt64(aValue)));
}
