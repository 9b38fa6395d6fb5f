#include <UPnP/Utilities/DIDL/TextWriter.h>

#include <UPnP/Utilities/DIDL/Characters.h>
#include <UPnP/Utilities/DIDL/Repairer.h>
#include <UPnP/Utilities/DIDL/Values.h>
#include <UPnP/Utilities/Private/UPnPUTF8.h>
#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

namespace DIDL
{

namespace
{

struct Replacement
{
    std::string_view mText;
    std::string_view mDoubleText;
};

// In the order of ByteClasses::kEscaped.
constexpr Replacement kReplacements[] = {
    { "&quot;", "&amp;quot;" }, { "&apos;", "&amp;apos;" }, { "&lt;", "&amp;lt;" },
    { "&gt;", "&amp;gt;" },     { "&amp;", "&amp;amp;" },
};

// 1 plus the index of the byte's replacement; 0 when it has none.
size_t ReplacementOf(char aByte) { return kByteClasses[aByte] & ByteClasses::kEscapedMask; }

// Which bytes are copied without a look at the next: all but the five characters and NUL, or of those the ones that are
// characters of every XML text.
enum class Copied
{
    AnyByte,
    PrintableASCII
};

// True if a byte of the word may end what is copied: the masks leave the five characters, and "#". Subtracting sets the
// top bit of a byte that was less; it is also set in those of 0x80 and above.
template <Copied Which>
bool MayEndRun(Word aWord)
{
    static_assert(('"' & 0xFA) == 0x22 && ('&' & 0xFA) == 0x22 && ('\'' & 0xFA) == 0x22, "0 after the first mask");
    static_assert(('<' & 0xFD) == 0x3C && ('>' & 0xFD) == 0x3C, "0 after the second");
    const Word theFirst = ((aWord & (kEveryByte * 0xFA)) ^ (kEveryByte * 0x22)) - kEveryByte;
    const Word theSecond = ((aWord & (kEveryByte * 0xFD)) ^ (kEveryByte * 0x3C)) - kEveryByte;
    if (Which == Copied::PrintableASCII)
    {
        return ((theFirst | theSecond | (aWord - kEveryByte * ' ') | aWord) & (kEveryByte * 0x80)) != 0;
    }
    return ((theFirst | theSecond | (aWord - kEveryByte)) & ~aWord & (kEveryByte * 0x80)) != 0;
}

template <Copied Which>
bool IsCopied(char aByte)
{
    const uint8 theEnd = Which == Copied::PrintableASCII ? ByteClasses::kNotPrintable : ByteClasses::kNUL;
    return (kByteClasses[aByte] & (ByteClasses::kEscapedMask | theEnd)) == 0;
}

// The number of bytes that are copied before kMaxSize or the caller's limit ends a text.
size_t LimitOf(size_t aMaxSize) { return aMaxSize > 0 ? std::min(aMaxSize, kMaxSize) : kMaxSize; }

// The number of bytes up to the first that is not copied, word by word where there is none: 13 % of a
// document's time.
template <Copied Which>
[[gnu::always_inline]] inline size_t CopiedLength(std::string_view aText)
{
    size_t theLength = 0;
    for (Word theWord; aText.size() - theLength >= sizeof(theWord); theLength += sizeof(theWord))
    {
        memcpy(&theWord, aText.data() + theLength, sizeof(theWord));
        if (MayEndRun<Which>(theWord)) { break; }
    }
    while (theLength < aText.size() && IsCopied<Which>(aText[theLength]))
        ++theLength;
    return theLength;
}

} // namespace

// Goes on at a character that is replaced, or at the limit; as many bytes have been written as come before it.
static void AppendRest(zoBuffer* aBuffer, std::string_view aStr, size_t aPosition, int afDoubleEscape, size_t aMaxSize)
{
    size_t thePosition = aPosition;
    size_t theCount = aPosition;
    while (thePosition < aStr.size())
    {
        const size_t theIndex = ReplacementOf(aStr[thePosition]);
        if (theIndex == 0) // a NUL, or the limit
        {
            aBuffer->mPos -= UPnPUTF8_BrokenSequenceLength(aStr.data(), aStr.data() + thePosition);
            return;
        }
        const Replacement& theReplacement = kReplacements[theIndex - 1];
        const std::string_view theText = afDoubleEscape ? theReplacement.mDoubleText : theReplacement.mText;
        if (theCount >= kMaxSize || (aMaxSize > 0 && theCount + theText.size() > aMaxSize)) { return; }
        Shared::Append(aBuffer, theText);
        theCount += theText.size();
        ++thePosition;

        const size_t theLimit = LimitOf(aMaxSize);
        const size_t theRoom = theCount < theLimit ? theLimit - theCount : 0;
        const size_t theLength = CopiedLength<Copied::AnyByte>(aStr.substr(thePosition, theRoom));
        Shared::Append(aBuffer, aStr.substr(thePosition, theLength));
        theCount += theLength;
        thePosition += theLength;
    }
}

void AppendStr(zoBuffer* aBuffer, std::string_view aStr, int afDoubleEscape, size_t aMaxSize)
{
    const size_t theLength = CopiedLength<Copied::AnyByte>(aStr.substr(0, LimitOf(aMaxSize)));
    Shared::Append(aBuffer, aStr.substr(0, theLength));
    if (theLength < aStr.size()) { AppendRest(aBuffer, aStr, theLength, afDoubleEscape, aMaxSize); }
}

size_t AllowedLength(std::string_view aText)
{
    size_t theLength = 0;
    for (;;)
    {
        theLength += CopiedLength<Copied::PrintableASCII>(aText.substr(theLength));
        if (theLength == aText.size() || ReplacementOf(aText[theLength]) > 0) { return theLength; }
        const Character theCharacter = CharacterAt(aText.substr(theLength));
        if (!theCharacter.mfIsAllowed) { return theLength; }
        theLength += theCharacter.mLength;
    }
}

// Goes on at a character that is not printable ASCII or is replaced, or at the limit.
[[gnu::noinline]] static void AppendAllowedRest(zoBuffer* aBuffer, std::string_view aRest, size_t aRoom,
                                                uint32* aReplaced)
{
    std::string_view theRest = aRest;
    size_t theRoom = aRoom;
    while (!theRest.empty() && theRest[0] != 0)
    {
        const size_t theIndex = ReplacementOf(theRest[0]);
        const Character theCharacter = theIndex > 0 ? Character{ 1, 0, true } : CharacterAt(theRest);
        const std::string_view theText = !theCharacter.mfIsAllowed ? kReplacementCharacter
                                         : theIndex > 0            ? kReplacements[theIndex - 1].mText
                                                                   : theRest.substr(0, theCharacter.mLength);
        if (theText.size() > theRoom) { break; }
        Shared::Append(aBuffer, theText);
        theRest.remove_prefix(theCharacter.mLength);
        theRoom -= theText.size();
        *aReplaced += !theCharacter.mfIsAllowed;

        const size_t theLength = AllowedLength(theRest.substr(0, theRoom));
        Shared::Append(aBuffer, theRest.substr(0, theLength));
        theRest.remove_prefix(theLength);
        theRoom -= theLength;
    }
}

void AppendAllowed(zoBuffer* aBuffer, std::string_view aStr, size_t aMaxSize, uint32* aReplaced)
{
    const size_t theLimit = LimitOf(aMaxSize);
    const size_t theLength = CopiedLength<Copied::PrintableASCII>(aStr.substr(0, theLimit));
    Shared::Append(aBuffer, aStr.substr(0, theLength));
    if (theLength < aStr.size())
    {
        AppendAllowedRest(aBuffer, aStr.substr(theLength), theLimit - theLength, aReplaced);
    }
}

void AppendNumber(zoBuffer* aBuffer, uint64 aValue, size_t aMinDigits)
{
    Shared::AppendDecimal(aBuffer, aValue, aMinDigits);
}

void AppendHexValue(zoBuffer* aBuffer, uint32 aValue) { Shared::AppendHex32(aBuffer, aValue); }

void AppendTime(zoBuffer* aBuffer, uint32 aTime)
{
    AppendNumber(aBuffer, aTime / 3600, 2);
    AppendLiteral(aBuffer, ":");
    AppendNumber(aBuffer, aTime / 60 % 60, 2);
    AppendLiteral(aBuffer, ":");
    AppendNumber(aBuffer, aTime % 60, 2);
}

char* NewTextForm(const char* aProtocolInfo, size_t aLength)
{
    zoDLNAProtocolInfo_t* theInfo = zoDLNAProtocolInfo_New(aProtocolInfo, aLength, 0);
    char* theText = zoDLNAProtocolInfo_GetStr(theInfo);
    zoDLNAProtocolInfo_Delete(theInfo);
    return theText;
}

// The arguments are where AppendStr has them.
void AppendText(zoBuffer* aBuffer, std::string_view aStr, size_t aMaxSize, Repairer* aRepairer)
{
    if (aRepairer) { aRepairer->AppendText(aStr, aMaxSize); }
    else { AppendStr(aBuffer, aStr, 0, aMaxSize); }
}

void AppendProtocolInfo(Output anOutput, std::string_view aProtocolInfo)
{
    if (!aProtocolInfo.data()) { return; }
    const bool fIsNormal = zoDLNAProtocolInfo_IsNormal(aProtocolInfo.data(), aProtocolInfo.size()) != 0;
    char* theText = fIsNormal ? nullptr : NewTextForm(aProtocolInfo.data(), aProtocolInfo.size());
    const std::string_view theForm = fIsNormal ? aProtocolInfo : TextOf(theText);
    if (!theForm.empty())
    {
        AppendLiteral(anOutput.mBuffer, kDIDL_ResAttribute_ProtocolInfo_Start);
        AppendText(anOutput, theForm, kMaxSize_URI);
        AppendLiteral(anOutput.mBuffer, kDIDL_Quote);
    }
    free(theText);
}

} // namespace DIDL
