#pragma once

/* Where a text that is too long is cut. */

#include <zoOS/zoTypes.h>

/** @param aPosition where the text is to end; the byte there is still one of it.
 *  @return the number of bytes right before aPosition, and not before aBegin, that begin a UTF-8 sequence which goes on
 *          at aPosition: to be cut off, too. 0 where no sequence is cut, and where there is no proper one. */
static inline size_t UPnPUTF8_BrokenSequenceLength(const char* aBegin, const char* aPosition)
{
    size_t theLength;
    if ((*aPosition & 0xC0) != 0x80) { return 0; }
    for (theLength = 1; theLength <= 3 && (size_t)(aPosition - aBegin) >= theLength; ++theLength)
    {
        const uint8 theByte = (uint8)aPosition[-(ptrdiff_t)theLength];
        const size_t theNeeded = theByte >= 0xF0 ? 4 : theByte >= 0xE0 ? 3 : theByte >= 0xC0 ? 2 : 1;
        if ((theByte & 0xC0) == 0x80) { continue; }
        return theNeeded > theLength ? theLength : 0;
    }
    return 0;
}
