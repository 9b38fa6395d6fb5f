#pragma once

/* Writing text: escapes, cuts, numbers. */

#include <Shared/Append.h>
#include <UPnP/Utilities/DIDL/Names.h>
#include <string_view>
#include <zoltTools/zoBuffer.h>

namespace DIDL
{

using Shared::AppendLiteral;

class Repairer;

/** Where an object is written to. */
struct Output
{
    zoBuffer* mBuffer;
    Repairer* mRepairer; // NULL: what the records hold is written as it is
};

/** Appends the text up to its first NUL, escaped and cut to aMaxSize bytes (0: to kMaxSize), between characters and
 *  between entities.
 *  @param afDoubleEscape 1: escapes twice, for text that is embedded in XML a second time; no document here is. */
void AppendStr(zoBuffer* aBuffer, std::string_view aStr, int afDoubleEscape, size_t aMaxSize);
/** As AppendStr, which escapes once, but whatever XML does not allow becomes U+FFFD.
 *  @param aReplaced the number of U+FFFD that replace something is added. */
__attribute__((noinline)) void AppendAllowed(zoBuffer* aBuffer, std::string_view aStr, size_t aMaxSize,
                                             uint32* aReplaced);
/** @return the number of bytes before the first that is escaped, or that does not begin a character that XML allows. */
size_t AllowedLength(std::string_view aText);
/** Appends a number in decimal, with at least aMinDigits digits. */
__attribute__((noinline)) void AppendNumber(zoBuffer* aBuffer, uint64 aValue, size_t aMinDigits);

/* Inline, so that literals are copied by their known length: 9 % of a document's time. */

/** Appends nothing for an empty text, else aStartStr as it is, the text as AppendStr, and aEndStr as it is. */
[[gnu::always_inline]] inline void AppendStrIfNotEmpty(zoBuffer* aBuffer, std::string_view aStartStr,
                                                       std::string_view aStr, std::string_view aEndStr, int aMaxSize,
                                                       int afDoubleEscape)
{
    if (aStr.empty()) { return; }
    Shared::Append(aBuffer, aStartStr);
    AppendStr(aBuffer, aStr, afDoubleEscape, static_cast<size_t>(aMaxSize));
    Shared::Append(aBuffer, aEndStr);
}

/** Appends nothing for 0, else aStartStr, the number in decimal, and aEndStr. */
[[gnu::always_inline]] inline void AppendValue64IfNotZero(zoBuffer* aBuffer, std::string_view aStartStr, uint64 aValue,
                                                          std::string_view aEndStr)
{
    if (aValue == 0) { return; }
    Shared::Append(aBuffer, aStartStr);
    AppendNumber(aBuffer, aValue, 1);
    Shared::Append(aBuffer, aEndStr);
}

/** As AppendValue64IfNotZero. */
[[gnu::always_inline]] inline void AppendValueIfNotZero(zoBuffer* aBuffer, std::string_view aStartStr, uint32 aValue,
                                                        std::string_view aEndStr)
{
    AppendValue64IfNotZero(aBuffer, aStartStr, aValue, aEndStr);
}

/** Appends eight upper-case digits. */
void AppendHexValue(zoBuffer* aBuffer, uint32 aValue);

/** Appends a duration in seconds as hours, minutes and seconds, each with two digits; hours have more from 100 on. */
void AppendTime(zoBuffer* aBuffer, uint32 aTime);

/** As AppendStr, escaped once; sendable when there is a repairer. */
void AppendText(zoBuffer* aBuffer, std::string_view aStr, size_t aMaxSize, Repairer* aRepairer);
inline void AppendText(Output anOutput, std::string_view aStr, size_t aMaxSize)
{
    AppendText(anOutput.mBuffer, aStr, aMaxSize, anOutput.mRepairer);
}

/** Appends the text form of a protocol info as an attribute; nothing when it is empty, or without data. */
void AppendProtocolInfo(Output anOutput, std::string_view aProtocolInfo);

/** @return the text form of a protocol info, released with free. */
char* NewTextForm(const char* aProtocolInfo, size_t aLength);

} // namespace DIDL
