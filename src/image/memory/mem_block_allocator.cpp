#include "image/memory/mem_block_allocator.h"

#include <cstring>
#include <utility>

#include "image/memory/image_health.h"

namespace brushwork {

BworkMemBlockAllocator::BworkMemBlockAllocator(void* base, std::uint32_t blockSize,
                                               std::uint32_t elementSize)
    : base_(static_cast<std::uint8_t*>(base)), blockSize_(blockSize) {
    if (elementSize != 0) cut(elementSize, nullptr);
}

BworkMemBlockAllocator::~BworkMemBlockAllocator() = default;

void BworkMemBlockAllocator::cut(std::uint32_t elementSize, PageAllocator* owner) {
    BworkMemBlockAllocator::clearFreeList();
    const std::uint32_t least = sizeof(void*);  // room for the link
    elementSize_ = elementSize < least ? least : elementSize;
    elementCount_ = blockSize_ / elementSize_;
    usableBytes_ = elementCount_ * elementSize_;
    elementMask_ = (elementSize_ & (elementSize_ - 1)) == 0 ? elementSize_ - 1 : 0;
    owner_ = owner;
    if (!base_) return;
    // No link is written yet: that would touch every element of memory that may never be used.
    untouchedFrom_ = 0;
    freeCount_ = static_cast<std::int32_t>(elementCount_);
}

void BworkMemBlockAllocator::uncut() {
    BworkMemBlockAllocator::clearFreeList();
    elementSize_ = elementCount_ = usableBytes_ = elementMask_ = untouchedFrom_ = 0;
    formerOwner_ = std::exchange(owner_, nullptr);
    reserved_ = 0;
}

void BworkMemBlockAllocator::clearFreeList() {
    freeHead_ = nullptr;
    untouchedFrom_ = usableBytes_;
    usedCount_ = 0;
    freeCount_ = 0;
}

void BworkMemBlockAllocator::setBase(void* base) {
    base_ = static_cast<std::uint8_t*>(base);
    BworkMemBlockAllocator::clearFreeList();
}

bool BworkMemBlockAllocator::owns(const void* address) const {
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    const auto start = reinterpret_cast<std::uintptr_t>(base_);
    return base_ && place >= start && place - start < blockSize_;
}

bool BworkMemBlockAllocator::isElement(const void* address) const {
    const auto offset =
        reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(base_);
    if (!base_ || offset >= usableBytes_) return false;  // below the base it wraps round
    const auto place = static_cast<std::uint32_t>(offset);
    return (elementMask_ != 0 ? place & elementMask_ : place % elementSize_) == 0;
}

void* BworkMemBlockAllocator::allocate() {
    if (frozen_ != 0 || fixed_ != 0 || freeCount_ == 0) return nullptr;
    void* element = freeHead_;
    if (element) {
        std::memcpy(&freeHead_, element, sizeof freeHead_);
        if (freeHead_ && !isElement(freeHead_)) {
            // Somebody wrote into a free element. What lay behind it in the list is lost.
            noteImageFailure();
            freeHead_ = nullptr;
            const auto untouched = (usableBytes_ - untouchedFrom_) / elementSize_;
            freeCount_ = static_cast<std::int32_t>(untouched) + 1;
        }
    } else {
        element = base_ + untouchedFrom_;
        untouchedFrom_ += elementSize_;
    }
    ++usedCount_;
    --freeCount_;
    return element;
}

bool BworkMemBlockAllocator::release(void* element) {
    if (frozen_ != 0 || usedCount_ <= 0 || !isElement(element)) return false;
    if (element == freeHead_ || static_cast<std::uint8_t*>(element) >= base_ + untouchedFrom_)
        return false;
    std::memcpy(element, &freeHead_, sizeof freeHead_);
    freeHead_ = element;
    --usedCount_;
    ++freeCount_;
    return true;
}

void BworkMemBlockAllocator::freeze() {
    uncut();
    frozen_ = 1;
    usedCount_ = 1;
}

void BworkMemBlockAllocator::thaw() {
    frozen_ = 0;
    tiny_ = 0;
    usedCount_ = 0;
}

}  // namespace brushwork
