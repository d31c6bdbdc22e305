#include "image/work/byte_swizzle.h"

#include <cstring>

namespace brushwork {
namespace {

// Masks and shifts alone: the compiler makes vectors of this loop by itself.
template <std::uint32_t (*Swizzle)(std::uint32_t)>
void swizzleWords(const void* source, void* target, std::size_t count) {
    const auto* from = static_cast<const unsigned char*>(source);
    auto* to = static_cast<unsigned char*>(target);
    for (std::size_t n = 0; n < count; ++n) {
        std::uint32_t word = 0;
        std::memcpy(&word, from + 4 * n, 4);
        word = Swizzle(word);
        std::memcpy(to + 4 * n, &word, 4);
    }
}

}  // namespace

void swapBytes13(const void* source, void* target, std::size_t count) {
    swizzleWords<swapBytes13>(source, target, count);
}
void reverseBytes(const void* source, void* target, std::size_t count) {
    swizzleWords<reverseBytes>(source, target, count);
}
void swapBytes02(const void* source, void* target, std::size_t count) {
    swizzleWords<swapBytes02>(source, target, count);
}

}  // namespace brushwork
