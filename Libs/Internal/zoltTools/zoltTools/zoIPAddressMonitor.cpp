#include <zoltTools/zoIPAddressMonitor.h>

#include <Shared/Sizes.h>
#include <algorithm>
#include <atomic>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoHostAddresses.h>
#include <zoltTools/zoMemory.h>

namespace
{

// The texts of addresses in the platform's form of an array, sorted and without repeats: equal sets have equal bytes.
struct AddressSet
{
    char* mTexts; // owned
    size_t mSize;
};

} // namespace

struct zoIPAddressMonitor
{
    const zoSocketPolicy* mSocketPolicy;
    bool mfIsKnown; // false until a look succeeds
    AddressSet mAddresses;
};

static std::atomic<zoIPAddressMonitor_Source_t> sSource{ zoHostAddresses_Read };

void zoIPAddressMonitor_SetSource(zoIPAddressMonitor_Source_t aSource)
{
    sSource = aSource ? aSource : zoHostAddresses_Read;
}

// ---- Sets ----

static AddressSet MakeSet(const zoArray_t* anArray)
{
    const size_t theCount = zoArray_GetCount(anArray);
    const char** theTexts = Shared::NewArray<const char*>(theCount);
    for (size_t i = 0; i < theCount; ++i)
        theTexts[i] = static_cast<const char*>(zoArray_At(anArray, i));
    const char** const theEnd = std::remove(theTexts, theTexts + theCount, nullptr);
    std::sort(theTexts, theEnd, [](const char* aFirst, const char* aSecond) { return strcmp(aFirst, aSecond) < 0; });

    zoArray_t* theSorted = zoArray_New();
    for (const char** theText = theTexts; theText != theEnd; ++theText)
    {
        if (theText != theTexts && strcmp(theText[-1], *theText) == 0) { continue; }
        zoArray_Append(theSorted, const_cast<char*>(*theText));
    }
    AddressSet theSet = {};
    theSet.mTexts = zoStringArray_FlattenerFunc(theSorted, &theSet.mSize);
    zoArray_Delete(theSorted);
    free(theTexts);
    return theSet;
}

// Reads the addresses of now. False when they can't be found out.
static bool ReadSet(const zoSocketPolicy* aSocketPolicy, AddressSet* aSet)
{
    *aSet = {};
    zoArray_t* theArray = sSource.load()(aSocketPolicy);
    if (!theArray) { return false; }
    *aSet = MakeSet(theArray);
    zoArray_Delete(theArray);
    return true;
}

static bool AreEqual(const AddressSet& aFirst, const AddressSet& aSecond)
{
    return aFirst.mSize == aSecond.mSize &&
           (aFirst.mSize == 0 || memcmp(aFirst.mTexts, aSecond.mTexts, aFirst.mSize) == 0);
}

zoArray_t* zoIPAddressMonitor_GetAddresses(const zoSocketPolicy* aSocketPolicy)
{
    AddressSet theSet;
    if (!ReadSet(aSocketPolicy, &theSet)) { return nullptr; }
    zoArray_t* theArray = zoStringArray_UnFlattenerFunc(theSet.mTexts, theSet.mSize);
    zoArray_SetFreeFunc(theArray, zoStringArray_FreeFunc);
    free(theSet.mTexts);
    return theArray;
}

// ---- Monitor ----

zoIPAddressMonitor* zoIPAddressMonitor_New(const zoSocketPolicy* aSocketPolicy)
{
    zoIPAddressMonitor* theMonitor = static_cast<zoIPAddressMonitor*>(zoMallocZeroed(sizeof(zoIPAddressMonitor)));
    theMonitor->mSocketPolicy = aSocketPolicy;
    theMonitor->mfIsKnown = ReadSet(aSocketPolicy, &theMonitor->mAddresses);
    return theMonitor;
}

int zoIPAddressMonitor_IPAddressChanged(zoIPAddressMonitor* aMonitor)
{
    AddressSet theSet;
    if (!aMonitor || !ReadSet(aMonitor->mSocketPolicy, &theSet)) { return 0; }
    const bool fIsChanged = aMonitor->mfIsKnown && !AreEqual(theSet, aMonitor->mAddresses);
    aMonitor->mfIsKnown = true;
    std::swap(aMonitor->mAddresses, theSet);
    free(theSet.mTexts);
    return fIsChanged;
}

void zoIPAddressMonitor_Delete(zoIPAddressMonitor* aMonitor)
{
    if (!aMonitor) { return; }
    free(aMonitor->mAddresses.mTexts);
    free(aMonitor);
}
