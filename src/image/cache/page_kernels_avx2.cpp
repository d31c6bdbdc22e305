// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include "image/cache/page_kernels_walk.h"

namespace brushwork {
namespace {

struct Vectors32 {
    using Vector = __m256i;
    static constexpr std::size_t bytes = 32;
    static constexpr VectorLevel level = VectorLevel::Avx2;

    static Vector words(std::uint32_t word) { return _mm256_set1_epi32(static_cast<int>(word)); }
    static Vector all(std::uint8_t byte) { return _mm256_set1_epi8(static_cast<char>(byte)); }
    static Vector top() { return _mm256_slli_epi32(_mm256_set1_epi8(-1), 24); }
    static Vector load(const std::uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const Vector*>(p));
    }
    static Vector exclusive(Vector a, Vector b) { return _mm256_xor_si256(a, b); }
    static Vector either(Vector a, Vector b) { return _mm256_or_si256(a, b); }
    static Vector both(Vector a, Vector b) { return _mm256_and_si256(a, b); }
    static bool any(Vector bits) { return _mm256_testz_si256(bits, bits) == 0; }
};

using Walk = PageKernelWalk<Vectors32>;

}  // namespace

const PageKernels pageKernelsAvx2 = {Walk::uniform32, Walk::uniform8, Walk::alphaIs,
                                     Walk::filledCells};

}  // namespace brushwork
