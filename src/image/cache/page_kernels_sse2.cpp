#include <emmintrin.h>

#include "image/cache/page_kernels.h"

namespace brushwork {
namespace {

// Whether a bit is set.
bool any(__m128i bits) {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(bits, _mm_setzero_si128())) != 0xFFFF;
}

__m128i difference(const std::uint8_t* bytes, __m128i pattern) {
    return _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), pattern);
}

// The bits in which eight vectors differ from the pattern.
__m128i differenceOf8(const std::uint8_t* bytes, __m128i pattern) {
    __m128i a = difference(bytes, pattern);
    __m128i b = difference(bytes + 16, pattern);
    a = _mm_or_si128(a, difference(bytes + 32, pattern));
    b = _mm_or_si128(b, difference(bytes + 48, pattern));
    a = _mm_or_si128(a, difference(bytes + 64, pattern));
    b = _mm_or_si128(b, difference(bytes + 80, pattern));
    a = _mm_or_si128(a, difference(bytes + 96, pattern));
    b = _mm_or_si128(b, difference(bytes + 112, pattern));
    return _mm_or_si128(a, b);
}

// Whether whole vectors equal the pattern where `mask` is set. `done` gets the bytes looked at.
bool matches(const std::uint8_t* bytes, std::size_t size, __m128i pattern, __m128i mask,
             std::size_t& done) {
    std::size_t i = 0;
    for (; i + 128 <= size; i += 128)
        if (any(_mm_and_si128(differenceOf8(bytes + i, pattern), mask))) return false;
    for (; i + 16 <= size; i += 16)
        if (any(_mm_and_si128(difference(bytes + i, pattern), mask))) return false;
    done = i;
    return true;
}

const std::uint8_t* bytesOf(const std::uint32_t* pixels) {
    return reinterpret_cast<const std::uint8_t*>(pixels);
}

bool uniform32(const std::uint32_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Sse2);
    if (count == 0) return true;
    const __m128i pattern = _mm_set1_epi32(static_cast<int>(pixels[0]));
    std::size_t done = 0;
    if (!matches(bytesOf(pixels), count * 4, pattern, _mm_set1_epi8(-1), done)) return false;
    for (std::size_t i = done / 4; i < count; ++i)
        if (pixels[i] != pixels[0]) return false;
    return true;
}

bool uniform8(const std::uint8_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Sse2);
    if (count == 0) return true;
    const __m128i pattern = _mm_set1_epi8(static_cast<char>(pixels[0]));
    std::size_t done = 0;
    if (!matches(pixels, count, pattern, _mm_set1_epi8(-1), done)) return false;
    for (std::size_t i = done; i < count; ++i)
        if (pixels[i] != pixels[0]) return false;
    return true;
}

bool alphaIs(const std::uint32_t* pixels, std::size_t count, std::uint8_t alpha) {
    noteKernelForm(VectorLevel::Sse2);
    const __m128i pattern = _mm_set1_epi8(static_cast<char>(alpha));
    const __m128i mask = _mm_slli_epi32(_mm_set1_epi8(-1), 24);
    std::size_t done = 0;
    if (!matches(bytesOf(pixels), count * 4, pattern, mask, done)) return false;
    for (std::size_t i = done / 4; i < count; ++i)
        if (pixels[i] >> 24 != alpha) return false;
    return true;
}

}  // namespace

const PageKernels pageKernelsSse2 = {uniform32, uniform8, alphaIs};

}  // namespace brushwork
