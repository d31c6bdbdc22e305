// 16-bit channels in vector registers: what the lane forms of the dual-plane modes are written in.
//
// A lane set L is Sse2DualLanes or Avx2DualLanes. It has two types: L::Bytes, a register of
// L::pixels pixels of one plane, and L::Words, half as many pixels with 16 bits a channel, made by
// joining a high and a low plane. Its operations work on all channels at once, unsigned:
//
//     add, subtract                 modulo 65536
//     addSaturated, subtractSaturated
//     low, high                     the halves of a product of 32 bits
//     smaller, larger, same         `same` gives all ones or all zeros
//     both, either, inverted, choose(mask, yes, no)
//     up8, down8, topBit            shifted by 8 bits; the highest bit as 0 or 1
//     alphaOf                       a pixel's alpha in all four of its channels
//     isEmptyPixel                  all ones where all four channels are 0, else all zeros
//     quotient(a, b)                (a << 16) / b, of words that are the same in all four channels
//
// A byte that stands in the upper half of a word makes an exact factor: high(x, byte << 8) is
// (x * byte) >> 8. Masks and 8-bit sources come in that form.
#pragma once

#include <cstdint>

namespace brushwork::npc {

// (a * b + c * d) >> 16 where the sum stays below 2^32: the carry of the lower halves counts.
template <class L>
[[nodiscard]] inline typename L::Words weighted(typename L::Words a, typename L::Words b,
                                                typename L::Words c, typename L::Words d) {
    const auto first = L::low(a, b);
    const auto second = L::low(c, d);
    const auto carried = L::same(L::add(first, second), L::addSaturated(first, second));
    // 1 with a carry, 0 without: `carried` is -1 where there is none.
    const auto carry = L::add(carried, L::all(1));
    return L::add(L::add(L::high(a, b), L::high(c, d)), carry);
}

// 65535 - x.
template <class L>
[[nodiscard]] inline typename L::Words rest(typename L::Words x) {
    return L::inverted(x);
}

template <class L>
[[nodiscard]] inline typename L::Words isZero(typename L::Words x) {
    return L::same(x, L::all(0));
}

}  // namespace brushwork::npc
