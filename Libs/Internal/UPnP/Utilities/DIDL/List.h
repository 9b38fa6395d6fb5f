#pragma once

#include <Shared/Sizes.h>
#include <stdlib.h>
#include <string.h>
#include <type_traits>

namespace DIDL
{

// Moves records to an array of twice as many. anInline is where they are at first.
void* GrowList(void* anItems, const void* anInline, size_t aCount, size_t aItemSize);

// Records in an array that grows: in the list itself first, then on the heap.
template <typename Item>
class List
{
public:
    List() {} // leaves mInline as it is
    ~List()
    {
        if (mItems != InlineItems()) { free(mItems); }
    }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    size_t size() const { return mCount; }
    const Item* begin() const { return mItems; }
    const Item* end() const { return mItems + mCount; }
    const Item& operator[](size_t anIndex) const { return mItems[anIndex]; }

    void Add(const Item& anItem)
    {
        if (mCount == mSize)
        {
            mItems = static_cast<Item*>(GrowList(mItems, mInline, mCount, sizeof(Item)));
            mSize = 2 * mCount;
        }
        mItems[mCount++] = anItem;
    }
    void CutTo(size_t aCount) { mCount = aCount; }

private:
    static_assert(std::is_trivially_copyable_v<Item>, "items are moved as bytes");

    Item* InlineItems() { return reinterpret_cast<Item*>(mInline); }

    enum : size_t
    {
        kInlineCount = 8 // the declarations of most documents fit
    };
    Item* mItems = InlineItems(); // mCount of mSize are in use; mInline or owned
    size_t mCount = 0;
    size_t mSize = kInlineCount;
    alignas(Item) char mInline[kInlineCount * sizeof(Item)];
};

} // namespace DIDL
