#include <emmintrin.h>

#include "image/cache/page_kernels_walk.h"

namespace brushwork {
namespace {

struct Vectors16 {
    using Vector = __m128i;
    static constexpr std::size_t bytes = 16;
    static constexpr VectorLevel level = VectorLevel::Sse2;

    static Vector words(std::uint32_t word) { return _mm_set1_epi32(static_cast<int>(word)); }
    static Vector all(std::uint8_t byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
    static Vector top() { return _mm_slli_epi32(_mm_set1_epi8(-1), 24); }
    static Vector load(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const Vector*>(p));
    }
    static Vector exclusive(Vector a, Vector b) { return _mm_xor_si128(a, b); }
    static Vector either(Vector a, Vector b) { return _mm_or_si128(a, b); }
    static Vector both(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static bool any(Vector bits) {
        return _mm_movemask_epi8(_mm_cmpeq_epi8(bits, _mm_setzero_si128())) != 0xFFFF;
    }
};

using Walk = PageKernelWalk<Vectors16>;

}  // namespace

const PageKernels pageKernelsSse2 = {Walk::uniform32, Walk::uniform8, Walk::alphaIs,
                                     Walk::filledCells};

}  // namespace brushwork
