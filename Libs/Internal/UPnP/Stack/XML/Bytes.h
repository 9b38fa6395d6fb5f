#pragma once

/* Classes of bytes, and searching. */

#include <initializer_list>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace XML
{

enum : uint8_t
{
    kBlank = 1,
    kInName = 2, // without the colon
    kColon = 4,
    kStartsName = 8,
};

struct ByteClasses
{
    uint8_t mClass[256];

    constexpr ByteClasses() : mClass()
    {
        for (const char theBlank : { ' ', '\t', '\r', '\n' })
            mClass[static_cast<uint8_t>(theBlank)] = kBlank;
        for (unsigned theByte = '0'; theByte <= '9'; ++theByte)
            mClass[theByte] = kInName;
        for (const char theMark : { '-', '.' })
            mClass[static_cast<uint8_t>(theMark)] = kInName;
        for (unsigned theByte = 0; theByte < sizeof(mClass); ++theByte)
        {
            const bool fIsLetter = (theByte >= 'A' && theByte <= 'Z') || (theByte >= 'a' && theByte <= 'z');
            if (fIsLetter || theByte == '_' || theByte >= 0x80) { mClass[theByte] = kInName | kStartsName; }
        }
        mClass[static_cast<uint8_t>(':')] = kColon | kStartsName;
    }
};

inline constexpr ByteClasses kBytes;

inline bool Is(char aByte, uint8_t aClasses) { return (kBytes.mClass[static_cast<uint8_t>(aByte)] & aClasses) != 0; }

/** @return the first byte that is not of the classes. The caller knows that there is one. */
inline char* SkipAll(char* aPosition, uint8_t aClasses)
{
    for (;; aPosition += 4) // names take half as long as byte by byte
    {
        if (!Is(aPosition[0], aClasses)) { return aPosition; }
        if (!Is(aPosition[1], aClasses)) { return aPosition + 1; }
        if (!Is(aPosition[2], aClasses)) { return aPosition + 2; }
        if (!Is(aPosition[3], aClasses)) { return aPosition + 3; }
    }
}

/** @return the first aByte; NULL when there is none. */
inline char* Find(char* aPosition, const char* anEnd, char aByte)
{
    return static_cast<char*>(memchr(aPosition, aByte, static_cast<size_t>(anEnd - aPosition)));
}

inline constexpr size_t kNear = 12; // bytes; most attribute values are shorter

/** As Find, and quicker for most values: while branches are guessed the processor reads on, but the result of memchr it
 *  waits for. kNear bytes can be read. */
inline char* FindNear(char* aPosition, const char* anEnd, char aByte)
{
    size_t theLength = 0;
    while (theLength < kNear && aPosition[theLength] != aByte)
        ++theLength;
    return theLength < kNear ? aPosition + theLength : Find(aPosition + kNear, anEnd, aByte);
}

template <size_t Size>
bool StartsWith(const char* aPosition, const char* anEnd, const char (&aLiteral)[Size])
{
    return static_cast<size_t>(anEnd - aPosition) >= Size - 1 && memcmp(aPosition, aLiteral, Size - 1) == 0;
}

/** @return the position after the first terminator ("-->", "?>" or "]]>"); NULL when there is none. */
template <size_t Size>
char* FindPast(char* aPosition, const char* anEnd, const char (&aTerminator)[Size])
{
    const size_t kBeforeLast = Size - 2;
    for (char* theSearch = aPosition; (theSearch = Find(theSearch, anEnd, '>')) != nullptr; ++theSearch)
    {
        const bool fHasRoom = static_cast<size_t>(theSearch - aPosition) >= kBeforeLast;
        if (fHasRoom && memcmp(theSearch - kBeforeLast, aTerminator, kBeforeLast) == 0) { return theSearch + 1; }
    }
    return nullptr;
}

} // namespace XML
