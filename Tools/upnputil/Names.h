#pragma once

#include <string>
#include <vector>
#include <zoOS/zoTypes.h>

/* Constants that are given by name on the command line: the library's, without their prefix. */
struct Name
{
    const char* mName;
    uint32 mValue;
};

class Names
{
public:
    template <size_t kCount>
    constexpr Names(const Name (&aTable)[kCount]) : mBegin(aTable), mEnd(aTable + kCount)
    {}

    /** @return the constant with exactly that name, NULL for another name. */
    const Name* Find(const std::string& aName) const;
    /** @return all names. */
    std::vector<std::string> All() const;
    /** @return all names, separated by commas; a line is broken before the name that would pass aWidth characters. */
    std::string List(size_t aWidth = std::string::npos) const;

private:
    const Name* mBegin;
    const Name* mEnd;
};
