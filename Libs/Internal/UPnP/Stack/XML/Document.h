#pragma once

/* The memory of a document: a few blocks from which nodes and attributes are cut. The first node is preceded by the
 * document itself, so that the list is all that a caller holds. */

#include <UPnP/Stack/ILibXML.h>
#include <algorithm>
#include <stddef.h>
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
    Block* mBlocks; // all but the one that the document is in
    long mError;    // a kILibProcessXML_*; where there is one, reading stopped
};

/** A node with what only start tags have. End tags are nodes alone, but for one that begins a list. */
struct StartTag
{
    ILibXMLAttribute* mAttributes;
    char* mContent; // the text after the ">"
    ILibXMLNode mNode;
};

inline StartTag* StartTagOf(ILibXMLNode* aNode)
{
    return reinterpret_cast<StartTag*>(reinterpret_cast<char*>(aNode) - offsetof(StartTag, mNode));
}

inline Document* DocumentOf(ILibXMLNode* aFirst) { return reinterpret_cast<Document*>(StartTagOf(aFirst)) - 1; }

inline void Delete(Document* aDocument)
{
    for (Block* theBlock = aDocument->mBlocks; theBlock;)
    {
        Block* theNext = theBlock->mNext;
        free(theBlock);
        theBlock = theNext;
    }
    free(aDocument);
}

/** Allocates the records of a document while it is read. */
class Memory
{
public:
    /** The first block holds what most documents of one object need; all are an eighth larger than needed at most. */
    explicit Memory(size_t aTextLength)
    {
        const size_t theExpectedSize = aTextLength / 16 * 5 * sizeof(void*);
        mSize = std::clamp(theExpectedSize, kMinBlockSize, kMaxFirstBlockSize);
        char* theMemory = static_cast<char*>(zoMalloc(mSize));
        mDocument = reinterpret_cast<Document*>(theMemory);
        *mDocument = { nullptr, kILibProcessXML_NoError };
        mFree = theMemory + sizeof(Document);
        mFreeEnd = theMemory + mSize;
    }

    Document* GetDocument() { return mDocument; }

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

    __attribute__((noinline)) void AddBlock()
    {
        const size_t theSize = std::max(mSize / 8, kMinBlockSize);
        Block* theBlock = static_cast<Block*>(zoMalloc(theSize));
        theBlock->mNext = mDocument->mBlocks;
        mDocument->mBlocks = theBlock;
        mSize += theSize;
        mFree = reinterpret_cast<char*>(theBlock + 1);
        mFreeEnd = reinterpret_cast<char*>(theBlock) + theSize;
    }

    Document* mDocument;
    char* mFree; // mFree to mFreeEnd: the rest of the newest block
    char* mFreeEnd;
    size_t mSize; // of all blocks
};

static_assert(sizeof(Document) % sizeof(void*) == 0 && sizeof(Block) % sizeof(void*) == 0,
              "records after them are aligned");

} // namespace XML
