#pragma once

/* Writing text: escapes, cuts, numbers. */

#include <UPnP/Utilities/DIDL/Names.h>
#include <string.h>
#include <zoltTools/zoBuffer.h>
#include <zoltTools/zoMemory.h>

namespace DIDL
{

inline void AppendBytes(zoBuffer* aBuffer, const char* aBytes, size_t aCount)
{
    if (aCount > aBuffer->mSize - aBuffer->mPos) { zoBuffer_Reserve(aBuffer, aCount); }
    memcpy(aBuffer->mPtr + aBuffer->mPos, aBytes, aCount);
    aBuffer->mPos += aCount;
}

// A text whose length is known when compiling.
template <size_t Size>
void AppendLiteral(zoBuffer* aBuffer, const char (&aLiteral)[Size])
{
    AppendBytes(aBuffer, aLiteral, Size - 1);
}

// Appends the text escaped, once or twice over, and cut to aMaxSize bytes (0: to kMaxSize only). A cut falls between
// characters, and between entities.
void AppendStr(zoBuffer* aBuffer, const char* aStr, int afDoubleEscape, size_t aMaxSize);
void AppendStrIfNotEmpty(zoBuffer* aBuffer, const char* aStartStr, const char* aStr, const char* aEndStr, int aMaxSize,
                         int afDoubleEscape);

void AppendValue64IfNotZero(zoBuffer* aBuffer, const char* aStartStr, uint64 aValue, const char* aEndStr);
void AppendValueIfNotZero(zoBuffer* aBuffer, const char* aStartStr, uint32 aValue, const char* aEndStr);

// Eight digits.
void AppendHexValue(zoBuffer* aBuffer, uint32 aValue);

// Hours, minutes and seconds; as many digits of hours as it takes, two at least.
void AppendTime(zoBuffer* aBuffer, uint32 aTime);

// The text form of a protocol info, new.
char* NewTextForm(const char* aProtocolInfo, size_t aLength);

void AppendProtocolInfo(zoBuffer* aBuffer, const char* aProtocolInfo);

} // namespace DIDL
