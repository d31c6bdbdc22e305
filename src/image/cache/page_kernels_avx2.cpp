// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include "image/cache/page_kernels.h"

namespace brushwork {
namespace {

// Whether a bit is set.
bool any(__m256i bits) {
    return _mm256_testz_si256(bits, bits) == 0;
}

__m256i difference(const std::uint8_t* bytes, __m256i pattern) {
    return _mm256_xor_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes)), pattern);
}

// The bits in which eight vectors differ from the pattern.
__m256i differenceOf8(const std::uint8_t* bytes, __m256i pattern) {
    __m256i a = difference(bytes, pattern);
    __m256i b = difference(bytes + 32, pattern);
    a = _mm256_or_si256(a, difference(bytes + 64, pattern));
    b = _mm256_or_si256(b, difference(bytes + 96, pattern));
    a = _mm256_or_si256(a, difference(bytes + 128, pattern));
    b = _mm256_or_si256(b, difference(bytes + 160, pattern));
    a = _mm256_or_si256(a, difference(bytes + 192, pattern));
    b = _mm256_or_si256(b, difference(bytes + 224, pattern));
    return _mm256_or_si256(a, b);
}

// Whether whole vectors equal the pattern where `mask` is set. `done` gets the bytes looked at.
bool matches(const std::uint8_t* bytes, std::size_t size, __m256i pattern, __m256i mask,
             std::size_t& done) {
    std::size_t i = 0;
    for (; i + 256 <= size; i += 256)
        if (any(_mm256_and_si256(differenceOf8(bytes + i, pattern), mask))) return false;
    for (; i + 32 <= size; i += 32)
        if (any(_mm256_and_si256(difference(bytes + i, pattern), mask))) return false;
    done = i;
    return true;
}

const std::uint8_t* bytesOf(const std::uint32_t* pixels) {
    return reinterpret_cast<const std::uint8_t*>(pixels);
}

bool uniform32(const std::uint32_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Avx2);
    if (count == 0) return true;
    const __m256i pattern = _mm256_set1_epi32(static_cast<int>(pixels[0]));
    std::size_t done = 0;
    if (!matches(bytesOf(pixels), count * 4, pattern, _mm256_set1_epi8(-1), done)) return false;
    for (std::size_t i = done / 4; i < count; ++i)
        if (pixels[i] != pixels[0]) return false;
    return true;
}

bool uniform8(const std::uint8_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Avx2);
    if (count == 0) return true;
    const __m256i pattern = _mm256_set1_epi8(static_cast<char>(pixels[0]));
    std::size_t done = 0;
    if (!matches(pixels, count, pattern, _mm256_set1_epi8(-1), done)) return false;
    for (std::size_t i = done; i < count; ++i)
        if (pixels[i] != pixels[0]) return false;
    return true;
}

bool alphaIs(const std::uint32_t* pixels, std::size_t count, std::uint8_t alpha) {
    noteKernelForm(VectorLevel::Avx2);
    const __m256i pattern = _mm256_set1_epi8(static_cast<char>(alpha));
    const __m256i mask = _mm256_slli_epi32(_mm256_set1_epi8(-1), 24);
    std::size_t done = 0;
    if (!matches(bytesOf(pixels), count * 4, pattern, mask, done)) return false;
    for (std::size_t i = done / 4; i < count; ++i)
        if (pixels[i] >> 24 != alpha) return false;
    return true;
}

}  // namespace

const PageKernels pageKernelsAvx2 = {uniform32, uniform8, alphaIs};

}  // namespace brushwork
