#include <immintrin.h>

#include "image/swap/run_length_walk.h"

namespace brushwork {
namespace {

__m256i load32(const std::uint8_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

void store32(std::uint8_t* p, __m256i bytes) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), bytes);
}

struct Bytes32 {
    static std::uint64_t equalBefore(const std::uint8_t* p) {
        std::uint64_t bits = 0;
        for (int k = 0; k < 64; k += 32) {
            const __m256i equal = _mm256_cmpeq_epi8(load32(p + k), load32(p + k - 1));
            bits |= std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(equal))} << k;
        }
        return bits;
    }
    static void copyUpTo128(const std::uint8_t* from, std::uint8_t* to, std::size_t count) {
        store32(to, load32(from));
        store32(to + 32, load32(from + 32));
        if (count <= 64) return;
        store32(to + 64, load32(from + 64));
        store32(to + 96, load32(from + 96));
    }
    static void fillUpTo128(std::uint8_t value, std::uint8_t* to, std::size_t count) {
        const __m256i bytes = _mm256_set1_epi8(static_cast<char>(value));
        store32(to, bytes);
        store32(to + 32, bytes);
        if (count <= 64) return;
        store32(to + 64, bytes);
        store32(to + 96, bytes);
    }
};

std::size_t encode(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets) {
    noteKernelForm(VectorLevel::Avx2);
    return encodePackets<Bytes32>(bytes, n, packets);
}

std::size_t decode(const std::uint8_t* packets, std::size_t stored, std::uint8_t* bytes,
                   std::size_t n) {
    const std::size_t done = decodePackets<Bytes32>(packets, stored, bytes, n);
    noteKernelForm(VectorLevel::Avx2);
    return done;
}

// Eight pixels: the 8 bytes of each channel together, in order.
__m256i gathered(const std::uint8_t* pixels) {
    const __m256i inLane = _mm256_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 0,
                                            4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const __m256i across = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(load32(pixels), inLane), across);
}

void splitPlanes(const std::uint8_t* pixels, std::size_t count, std::uint8_t* planes) {
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const std::uint8_t* from = pixels + 4 * i;
        const __m256i a = gathered(from), b = gathered(from + 32);
        const __m256i c = gathered(from + 64), d = gathered(from + 96);
        const __m256i ab02 = _mm256_unpacklo_epi64(a, b), ab13 = _mm256_unpackhi_epi64(a, b);
        const __m256i cd02 = _mm256_unpacklo_epi64(c, d), cd13 = _mm256_unpackhi_epi64(c, d);
        store32(planes + i, _mm256_permute2x128_si256(ab02, cd02, 0x20));
        store32(planes + count + i, _mm256_permute2x128_si256(ab13, cd13, 0x20));
        store32(planes + 2 * count + i, _mm256_permute2x128_si256(ab02, cd02, 0x31));
        store32(planes + 3 * count + i, _mm256_permute2x128_si256(ab13, cd13, 0x31));
    }
    for (; i < count; ++i)
        for (std::size_t plane = 0; plane < 4; ++plane)
            planes[plane * count + i] = pixels[4 * i + plane];
    noteKernelForm(VectorLevel::Avx2);
}

}  // namespace

const RunLengthKernels runLengthKernelsAvx2 = {encode, decode, splitPlanes, nullptr};

}  // namespace brushwork
