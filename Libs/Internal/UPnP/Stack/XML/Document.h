#pragma once

/* The memory of a document: the caller's, and a few blocks, from which nodes and attributes are cut. The first node is
 * preceded by the document itself, so that the list is all that a caller holds. */

#include <UPnP/Stack/ILibXML.h>
#include <algorithm>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <zoltTools/zoMemory.h>

namespace XML
{

struct Block
{
    Block* mNext;
};

struct Document
{
    ILibXMLNode* mFirst; // NULL while there is none
    Block* mBlocks;
    size_t mSize; // of all its memory, the caller's included
    long mError;  // a kILibProcessXML_*; where there is one, reading stopped
};

/** The attributes of a start tag that has many; pointers to them follow, in the order of their names. */
struct AttributeIndex
{
    ILibXMLAttribute* mFirst;
    size_t mCount;
};

inline ILibXMLAttribute** SortedAttributes(AttributeIndex* anIndex)
{
    return reinterpret_cast<ILibXMLAttribute**>(anIndex + 1);
}

/** A node with what only start tags have. End tags are nodes alone, but for one that begins a list. */
struct StartTag
{
    ILibXMLAttribute* mAttributes; // the first; with an index the index's address and 1: no record is at an odd one
    char* mContent;                // the text after the ">"
    ILibXMLNode mNode;

    /** @return NULL without an index. */
    AttributeIndex* GetIndex() const
    {
        const bool fHasIndex = (reinterpret_cast<uintptr_t>(mAttributes) & 1) != 0;
        return fHasIndex ? reinterpret_cast<AttributeIndex*>(reinterpret_cast<char*>(mAttributes) - 1) : nullptr;
    }
    void SetIndex(AttributeIndex* anIndex)
    {
        mAttributes = reinterpret_cast<ILibXMLAttribute*>(reinterpret_cast<char*>(anIndex) + 1);
    }
    ILibXMLAttribute* FirstAttribute() const
    {
        const AttributeIndex* theIndex = GetIndex();
        return theIndex ? theIndex->mFirst : mAttributes;
    }
};

inline StartTag* StartTagOf(ILibXMLNode* aNode)
{
    return reinterpret_cast<StartTag*>(reinterpret_cast<char*>(aNode) - offsetof(StartTag, mNode));
}

inline Document* DocumentOf(ILibXMLNode* aFirst) { return reinterpret_cast<Document*>(StartTagOf(aFirst)) - 1; }

inline void Delete(Document* aDocument)
{
    for (Block* theBlock = aDocument->mBlocks; theBlock;) // the document may be in the last one
    {
        Block* theNext = theBlock->mNext;
        free(theBlock);
        theBlock = theNext;
    }
}

/** @return memory of this size, released with the document. */
inline char* AllocateBlock(Document* aDocument, size_t aSize)
{
    Block* theBlock = static_cast<Block*>(zoMalloc(sizeof(Block) + aSize));
    theBlock->mNext = aDocument->mBlocks;
    aDocument->mBlocks = theBlock;
    aDocument->mSize += sizeof(Block) + aSize;
    return reinterpret_cast<char*>(theBlock + 1);
}

/** Allocates the records of a document while it is read. */
class Memory
{
public:
    /** With aSize bytes of the caller to be used first. */
    Memory(size_t aTextLength, void* aMemory, size_t aSize) : mTextLength(aTextLength)
    {
        Document theDocument = { nullptr, nullptr, aSize, kILibProcessXML_NoError };
        mDocument = &theDocument;
        mFree = static_cast<char*>(aMemory);
        mFreeEnd = mFree + aSize;
        Document* theMemory = &Allocate<Beginning>()->mDocument;
        mFree -= sizeof(StartTag);
        *theMemory = theDocument;
        mDocument = theMemory;
    }

    Document* GetDocument() const { return mDocument; }

    /** @return memory for a record, not initialized. */
    template <typename Record>
    Record* Allocate()
    {
        static_assert(sizeof(Record) % sizeof(void*) == 0 && alignof(Record) <= alignof(void*), "all are aligned");
        if (static_cast<size_t>(mFreeEnd - mFree) < sizeof(Record)) { AddBlock(); }
        char* theMemory = mFree;
        mFree += sizeof(Record);
        return reinterpret_cast<Record*>(theMemory);
    }

private:
    static constexpr size_t kMinBlockSize = 1008; // the largest that malloc keeps at hand, with its own header
    static constexpr size_t kMaxFirstBlockSize = 16 * kMinBlockSize;

    struct Beginning
    {
        Document mDocument;
        StartTag mFirst;
    };

    /** The first block holds what most documents of one object need; all are an eighth larger than needed at most. */
    size_t NextBlockSize() const
    {
        if (mDocument->mBlocks) { return std::max(mDocument->mSize / 8, kMinBlockSize); }
        const size_t theExpectedSize = mTextLength / 16 * 5 * sizeof(void*);
        return std::clamp(theExpectedSize - std::min(theExpectedSize, mDocument->mSize), kMinBlockSize,
                          kMaxFirstBlockSize);
    }

    void AddBlock()
    {
        const size_t theSize = NextBlockSize() - sizeof(Block);
        mFree = AllocateBlock(mDocument, theSize);
        mFreeEnd = mFree + theSize;
    }

    Document* mDocument;
    char* mFree; // mFree to mFreeEnd: the rest of the newest block
    char* mFreeEnd;
    size_t mTextLength;
};

static_assert(sizeof(Document) % sizeof(void*) == 0 && sizeof(Block) % sizeof(void*) == 0,
              "records after them are aligned");

} // namespace XML
