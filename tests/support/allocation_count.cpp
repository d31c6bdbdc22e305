#include "support/allocation_count.h"

#include <cstdlib>
#include <memory>
#include <new>

namespace {

thread_local std::uint64_t count = 0;

void* take(std::size_t bytes) noexcept {
    ++count;
    return std::malloc(bytes ? bytes : 1);
}

void* takeAligned(std::size_t bytes, std::align_val_t alignment) noexcept {
    ++count;
    const auto step = static_cast<std::size_t>(alignment);
    std::size_t space = bytes + step;
    void* const base = std::malloc(sizeof(void*) + space);
    if (!base) return nullptr;
    void* place = static_cast<char*>(base) + sizeof(void*);
    std::align(step, bytes, place, space);
    static_cast<void**>(place)[-1] = base;
    return place;
}

// Not every C library has aligned blocks that `free` takes back.
void giveAligned(void* memory) noexcept {
    if (memory) std::free(static_cast<void**>(memory)[-1]);
}

void* orThrow(void* memory) {
    if (!memory) throw std::bad_alloc();
    return memory;
}

}  // namespace

std::uint64_t brushwork::test::allocations() {
    return count;
}

// The other forms come down to these.
void* operator new(std::size_t bytes) {
    return orThrow(take(bytes));
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return take(bytes);
}
void* operator new(std::size_t bytes, std::align_val_t alignment) {
    return orThrow(takeAligned(bytes, alignment));
}
void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return takeAligned(bytes, alignment);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    giveAligned(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    giveAligned(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
    giveAligned(memory);
}
