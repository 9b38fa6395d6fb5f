#include "Names.h"

const Name* Names::Find(const std::string& aName) const
{
    for (const Name* theName = mBegin; theName != mEnd; ++theName)
    {
        if (aName == theName->mName) { return theName; }
    }
    return nullptr;
}

std::vector<std::string> Names::All() const
{
    std::vector<std::string> theNames;
    for (const Name* theName = mBegin; theName != mEnd; ++theName)
        theNames.emplace_back(theName->mName);
    return theNames;
}

std::string Names::List(size_t aWidth) const
{
    std::string theList;
    size_t theLineBegin = 0;
    for (const Name* theName = mBegin; theName != mEnd; ++theName)
    {
        const std::string theItem = std::string(theName->mName) + (theName + 1 == mEnd ? "" : ",");
        const bool fStartsLine = theList.size() - theLineBegin + theItem.size() >= aWidth;
        if (theName != mBegin) { theList += fStartsLine ? '\n' : ' '; }
        if (fStartsLine) { theLineBegin = theList.size(); }
        theList += theItem;
    }
    return theList;
}
