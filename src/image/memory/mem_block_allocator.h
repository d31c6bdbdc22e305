// A large block cut into equal elements. No element has a header: the block is found by address,
// and a free element holds the link to the next free one in its first word.
//
//     BworkMemBlockAllocator block(memory, 2097152);
//     block.cut(65536, owner);
//     void* page = block.allocate();
//
// It doesn't own its memory, and takes no lock: the image lock, or that of a tiny allocator, is
// held around each call.
#pragma once

#include <cstdint>

namespace brushwork {

class BlockList;
class PageAllocator;

class BworkMemBlockAllocator {
  public:
    // With an element size (at least 4) it is cut at once; with 0 it has no elements.
    BworkMemBlockAllocator(void* base, std::uint32_t blockSize, std::uint32_t elementSize = 0);
    BworkMemBlockAllocator(const BworkMemBlockAllocator&) = delete;
    BworkMemBlockAllocator& operator=(const BworkMemBlockAllocator&) = delete;
    virtual ~BworkMemBlockAllocator();

    // An element: the one released last, else the lowest one never given out. Null if all are
    // out, and while the block is frozen or fixed.
    [[nodiscard]] virtual void* allocate();
    // False, and nothing changes, if the block is frozen or `element` is none of its used
    // elements, as far as that shows at once.
    virtual bool release(void* element);
    // Free list and counters empty: no element can be had until the block is cut again.
    virtual void clearFreeList();
    [[nodiscard]] virtual bool owns(const void* address) const;

    // Cuts the block anew, all elements free.
    void cut(std::uint32_t elementSize, PageAllocator* owner);
    // Back to no elements and no owner.
    void uncut();

    [[nodiscard]] std::uint8_t* base() const { return base_; }
    [[nodiscard]] std::uint32_t blockSize() const { return blockSize_; }
    [[nodiscard]] std::uint32_t elementSize() const { return elementSize_; }
    [[nodiscard]] std::uint32_t elementCount() const { return elementCount_; }
    [[nodiscard]] std::int32_t usedCount() const { return usedCount_; }
    [[nodiscard]] std::int32_t freeCount() const { return freeCount_; }
    [[nodiscard]] PageAllocator* owner() const { return owner_; }  // null: cut for no pages
    // Whom it was cut for before, if nobody had it since; null otherwise.
    [[nodiscard]] const PageAllocator* formerOwner() const { return formerOwner_; }

    // Given away whole.
    [[nodiscard]] bool isFrozen() const { return frozen_ != 0; }
    void freeze();
    void thaw();
    // Being cleared out: elements come back, none is given out.
    [[nodiscard]] bool isFixed() const { return fixed_ != 0; }
    void setFixed(bool fixed) { fixed_ = fixed ? 1 : 0; }
    // In the reserve of a page allocator.
    [[nodiscard]] bool isReserved() const { return reserved_ != 0; }
    void setReserved(bool reserved) { reserved_ = reserved ? 1 : 0; }
    // Frozen, and cut by a tiny allocator.
    [[nodiscard]] bool isTiny() const { return tiny_ != 0; }
    void setTiny(bool tiny) { tiny_ = tiny ? 1 : 0; }

  protected:
    // Other memory of the same size, or null; without elements until it is cut.
    void setBase(void* base);

  private:
    friend class BlockList;

    [[nodiscard]] bool isElement(const void* address) const;

    std::uint8_t* base_;
    void* freeHead_ = nullptr;
    std::uint32_t elementSize_ = 0;
    std::uint32_t blockSize_;
    std::uint32_t elementCount_ = 0;
    std::uint32_t usableBytes_ = 0;    // of whole elements
    std::uint32_t elementMask_ = 0;    // size - 1 where the size is a power of two
    std::uint32_t untouchedFrom_ = 0;  // byte offset of the elements never given out
    std::int32_t usedCount_ = 0;
    std::int32_t freeCount_ = 0;
    std::uint8_t frozen_ = 0;
    std::uint8_t fixed_ = 0;
    std::uint8_t reserved_ = 0;
    std::uint8_t tiny_ = 0;
    BworkMemBlockAllocator* prev_ = nullptr;
    BworkMemBlockAllocator* next_ = nullptr;
    BlockList* list_ = nullptr;
    PageAllocator* owner_ = nullptr;
    const PageAllocator* formerOwner_ = nullptr;
};

}  // namespace brushwork
