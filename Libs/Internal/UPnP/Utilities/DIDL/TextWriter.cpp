#include <UPnP/Utilities/DIDL/TextWriter.h>

#include <UPnP/Utilities/Private/UPnPUTF8.h>
#include <algorithm>
#include <stdlib.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

namespace DIDL
{

namespace
{

struct Replacement
{
    char mCharacter;
    uint8 mLength;
    uint8 mDoubleLength;
    const char* mText;
    const char* mDoubleText;
};

constexpr Replacement kReplacements[] = {
    { '"', 6, 10, "&quot;", "&amp;quot;" }, { '\'', 6, 10, "&apos;", "&amp;apos;" }, { '<', 4, 8, "&lt;", "&amp;lt;" },
    { '>', 4, 8, "&gt;", "&amp;gt;" },      { '&', 5, 9, "&amp;", "&amp;amp;" },
};

// For each byte, 1 plus the index of its replacement, 0 when it is copied; the NUL is none of both.
struct ReplacementIndex
{
    uint8 mIndex[256];
    constexpr ReplacementIndex() : mIndex()
    {
        for (size_t i = 0; i < sizeof(kReplacements) / sizeof(kReplacements[0]); ++i)
            mIndex[static_cast<uint8>(kReplacements[i].mCharacter)] = static_cast<uint8>(i + 1);
        mIndex[0] = 0xFF;
    }
};

constexpr ReplacementIndex kReplacementIndex;

} // namespace

void AppendStr(zoBuffer* aBuffer, const char* aStr, int afDoubleEscape, size_t aMaxSize)
{
    const size_t theLimit = aMaxSize > 0 ? std::min(aMaxSize, kMaxSize) : kMaxSize;
    const char* thePosition = aStr;
    size_t theCount = 0;
    for (;;)
    {
        const char* theRun = thePosition;
        const size_t theRoom = theCount < theLimit ? theLimit - theCount : 0;
        size_t theLength = 0;
        while (theLength < theRoom && kReplacementIndex.mIndex[static_cast<uint8>(theRun[theLength])] == 0)
            ++theLength;
        AppendBytes(aBuffer, theRun, theLength);
        thePosition += theLength;
        theCount += theLength;

        const uint8 theIndex = kReplacementIndex.mIndex[static_cast<uint8>(*thePosition)];
        if (*thePosition == 0) { return; }
        if (theIndex == 0)
        {
            aBuffer->mPos -= UPnPUTF8_BrokenSequenceLength(theRun, thePosition);
            return;
        }
        const Replacement& theReplacement = kReplacements[theIndex - 1];
        theLength = afDoubleEscape ? theReplacement.mDoubleLength : theReplacement.mLength;
        if (theCount >= kMaxSize || (aMaxSize > 0 && theCount + theLength > aMaxSize)) { return; }
        AppendBytes(aBuffer, afDoubleEscape ? theReplacement.mDoubleText : theReplacement.mText, theLength);
        theCount += theLength;
        ++thePosition;
    }
}

void AppendStrIfNotEmpty(zoBuffer* aBuffer, const char* aStartStr, const char* aStr, const char* aEndStr, int aMaxSize,
                         int afDoubleEscape)
{
    if (zoStrEmpty(aStr)) { return; }
    zoBuffer_AppendStr(aBuffer, aStartStr);
    AppendStr(aBuffer, aStr, afDoubleEscape, static_cast<size_t>(aMaxSize));
    zoBuffer_AppendStr(aBuffer, aEndStr);
}

// At least aMinDigits digits, of at most 20.
static void AppendDecimal(zoBuffer* aBuffer, uint64 aValue, size_t aMinDigits)
{
    char theDigits[20];
    size_t theBegin = sizeof(theDigits);
    while (aValue > 0 || sizeof(theDigits) - theBegin < aMinDigits)
    {
        theDigits[--theBegin] = static_cast<char>('0' + aValue % 10);
        aValue /= 10;
    }
    AppendBytes(aBuffer, theDigits + theBegin, sizeof(theDigits) - theBegin);
}

void AppendValue64IfNotZero(zoBuffer* aBuffer, const char* aStartStr, uint64 aValue, const char* aEndStr)
{
    if (aValue == 0) { return; }
    zoBuffer_AppendStr(aBuffer, aStartStr);
    AppendDecimal(aBuffer, aValue, 1);
    zoBuffer_AppendStr(aBuffer, aEndStr);
}

void AppendValueIfNotZero(zoBuffer* aBuffer, const char* aStartStr, uint32 aValue, const char* aEndStr)
{
    AppendValue64IfNotZero(aBuffer, aStartStr, aValue, aEndStr);
}

void AppendHexValue(zoBuffer* aBuffer, uint32 aValue)
{
    char theDigits[8];
    for (size_t i = sizeof(theDigits); i-- > 0; aValue >>= 4)
        theDigits[i] = "0123456789ABCDEF"[aValue & 15];
    AppendBytes(aBuffer, theDigits, sizeof(theDigits));
}

void AppendTime(zoBuffer* aBuffer, uint32 aTime)
{
    AppendDecimal(aBuffer, aTime / 3600, 2);
    AppendLiteral(aBuffer, ":");
    AppendDecimal(aBuffer, aTime / 60 % 60, 2);
    AppendLiteral(aBuffer, ":");
    AppendDecimal(aBuffer, aTime % 60, 2);
}

char* NewTextForm(const char* aProtocolInfo, size_t aLength)
{
    zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(aProtocolInfo, aLength, 0);
    char* theText = zoDLNAProtocolInfo_GetStr(theInfo);
    zoDLNAProtocolInfo_Delete(theInfo);
    return theText;
}

void AppendProtocolInfo(zoBuffer* aBuffer, const char* aProtocolInfo)
{
    if (!aProtocolInfo) { return; }
    const size_t theLength = strlen(aProtocolInfo);
    const bool fIsNormal = zoDLNAProtocolInfo_IsNormal(aProtocolInfo, theLength) != 0;
    char* theText = fIsNormal ? nullptr : NewTextForm(aProtocolInfo, theLength);
    AppendStrIfNotEmpty(aBuffer, kDIDL_ResAttribute_ProtocolInfo_Start, fIsNormal ? aProtocolInfo : theText,
                        kDIDL_Quote, kMaxSize_URI, 0);
    free(theText);
}

} // namespace DIDL
