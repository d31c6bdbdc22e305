#include "geometry/allocation_count.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

void* countedOrNull(std::size_t size) noexcept {
    ++allocations;
    return std::malloc(size > 0 ? size : 1);
}

void* counted(std::size_t size) {
    void* const memory = countedOrNull(size);
    if (!memory) throw std::bad_alloc();
    return memory;
}

}  // namespace

void* operator new(std::size_t size) {
    return counted(size);
}
void* operator new[](std::size_t size) {
    return counted(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return countedOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return countedOrNull(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace brushwork::test {

std::size_t AllocationCount::total() {
    return allocations;
}

}  // namespace brushwork::test
