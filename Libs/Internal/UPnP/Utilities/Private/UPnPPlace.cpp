#include <UPnP/Utilities/Private/UPnPPlace.h>

#include <string.h>

void UPnPPlace_Find(const char* aText, size_t anOffset, uint32* aLine, uint32* aColumn)
{
    const bool fHasMark = anOffset >= 3 && memcmp(aText, "\xEF\xBB\xBF", 3) == 0;
    *aLine = 1;
    *aColumn = 1;
    for (size_t i = fHasMark ? 3 : 0; i < anOffset; ++i)
    {
        const bool fIsBeforeLF = i + 1 < anOffset && aText[i + 1] == '\n';
        if (aText[i] == '\n' || (aText[i] == '\r' && !fIsBeforeLF))
        {
            ++*aLine;
            *aColumn = 1;
        }
        else if ((aText[i] & 0xC0) != 0x80) { ++*aColumn; }
    }
}
