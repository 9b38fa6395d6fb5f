#pragma once

/* The memory of a document: a few blocks from which nodes and attributes are cut. The first node is preceded by the
 * document itself, so that the list is all that a caller holds. */

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
    size_t mSize; // of all its memory
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
    for (Block* theBlock = aDocument->mBlocks; theBlock;) // the document is in the last one
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
    /** The first block holds what most documents of one object need; all are an eighth larger than needed at most. */
    explicit Memory(size_t aTextLength)
    {
        const size_t theExpectedSize = aTextLength / 16 * 5 * sizeof(void*);
        const size_t theSize = std::clamp(theExpectedSize, kMinBlockSize, kMaxFirstBlockSize) - sizeof(Block);
        Document theDocument = { nullptr, nullptr, 0, kILibProcessXML_NoError };
        mFree = AllocateBlock(&theDocument, theSize);
        mFreeEnd = mFree + theSize;
        mDocument = Allocate<Document>();
        *mDocument = theDocument;
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

    void AddBlock()
    {
        const size_t theSize = std::max(mDocument->mSize / 8, kMinBlockSize) - sizeof(Block);
        mFree = AllocateBlock(mDocument, theSize);
        mFreeEnd = mFree + theSize;
    }

    Document* mDocument;
    char* mFree; // mFree to mFreeEnd: the rest of the newest block
    char* mFreeEnd;
};

static_assert(sizeof(Document) % sizeof(void*) == 0 && sizeof(Block) % sizeof(void*) == 0,
              "records after them are aligned");

} // namespace XML
