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

// What is read or written next, across the 4096 bytes at which the processor stops looking ahead.
constexpr std::size_t bytesAhead = 2048;

void prefetch128(const std::uint8_t* p) {
    _mm_prefetch(reinterpret_cast<const char*>(p), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(p + 64), _MM_HINT_T0);
}

// 32 bytes of each plane.
struct FourPlanes {
    explicit FourPlanes(const std::uint8_t* pixels) {
        const __m256i a = gathered(pixels), b = gathered(pixels + 32);
        const __m256i c = gathered(pixels + 64), d = gathered(pixels + 96);
        const __m256i ab02 = _mm256_unpacklo_epi64(a, b), ab13 = _mm256_unpackhi_epi64(a, b);
        const __m256i cd02 = _mm256_unpacklo_epi64(c, d), cd13 = _mm256_unpackhi_epi64(c, d);
        plane[0] = _mm256_permute2x128_si256(ab02, cd02, 0x20);
        plane[1] = _mm256_permute2x128_si256(ab13, cd13, 0x20);
        plane[2] = _mm256_permute2x128_si256(ab02, cd02, 0x31);
        plane[3] = _mm256_permute2x128_si256(ab13, cd13, 0x31);
    }
    __m256i plane[4];
};

void splitPlanes(const std::uint8_t* pixels, std::size_t count, std::uint8_t* planes) {
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const FourPlanes four(pixels + 4 * i);
        for (std::size_t k = 0; k < 4; ++k) store32(planes + k * count + i, four.plane[k]);
    }
    for (; i < count; ++i)
        for (std::size_t plane = 0; plane < 4; ++plane)
            planes[plane * count + i] = pixels[4 * i + plane];
    noteKernelForm(VectorLevel::Avx2);
}

void joinPlanes(const std::uint8_t* planes, std::size_t count, std::uint8_t* pixels) {
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i a = load32(planes + i), b = load32(planes + count + i);
        const __m256i c = load32(planes + 2 * count + i), d = load32(planes + 3 * count + i);
        const __m256i abLow = _mm256_unpacklo_epi8(a, b), abHigh = _mm256_unpackhi_epi8(a, b);
        const __m256i cdLow = _mm256_unpacklo_epi8(c, d), cdHigh = _mm256_unpackhi_epi8(c, d);
        const __m256i first = _mm256_unpacklo_epi16(abLow, cdLow);
        const __m256i second = _mm256_unpackhi_epi16(abLow, cdLow);
        const __m256i third = _mm256_unpacklo_epi16(abHigh, cdHigh);
        const __m256i fourth = _mm256_unpackhi_epi16(abHigh, cdHigh);
        std::uint8_t* to = pixels + 4 * i;
        prefetch128(to + bytesAhead);
        store32(to, _mm256_permute2x128_si256(first, second, 0x20));
        store32(to + 32, _mm256_permute2x128_si256(third, fourth, 0x20));
        store32(to + 64, _mm256_permute2x128_si256(first, second, 0x31));
        store32(to + 96, _mm256_permute2x128_si256(third, fourth, 0x31));
    }
    for (; i < count; ++i)
        for (std::size_t plane = 0; plane < 4; ++plane)
            pixels[4 * i + plane] = planes[plane * count + i];
    noteKernelForm(VectorLevel::Avx2);
}

// The bytes one place further on, the last of `before` in front.
__m256i moved(__m256i before, __m256i bytes) {
    return _mm256_alignr_epi8(bytes, _mm256_permute2x128_si256(before, bytes, 0x21), 15);
}

// Splits and marks in one pass, while the planes are in registers.
std::size_t encodePlanes(const std::uint8_t* pixels, std::size_t n, std::uint8_t* planes,
                         std::uint8_t* packets) {
    const std::size_t count = n / 4;
    if (n > mostMarked || n % 256 != 0 || n == 0) {
        splitPlanes(pixels, count, planes);
        return encode(planes, n, packets);
    }
    std::uint32_t equal[mostMarked / 32];
    __m256i before[4] = {};
    for (std::size_t i = 0; i < count; i += 32) {
        prefetch128(pixels + 4 * i + bytesAhead);
        const FourPlanes four(pixels + 4 * i);
        for (std::size_t k = 0; k < 4; ++k) {
            const __m256i bytes = four.plane[k];
            store32(planes + k * count + i, bytes);
            const __m256i same = _mm256_cmpeq_epi8(bytes, moved(before[k], bytes));
            equal[(k * count + i) / 32] = static_cast<std::uint32_t>(_mm256_movemask_epi8(same));
            before[k] = bytes;
        }
    }
    // The first byte of a plane stands behind the last one of the plane before.
    for (std::size_t k = 0; k < 4; ++k) {
        const std::size_t at = k * count;
        const bool same = k > 0 && planes[at] == planes[at - 1];
        equal[at / 32] = (equal[at / 32] & ~1U) | static_cast<std::uint32_t>(same);
    }
    noteKernelForm(VectorLevel::Avx2);
    return packetsBetween(RepeatEdges<Bytes32>(equal, n), planes, n, packets);
}

}  // namespace

const RunLengthKernels runLengthKernelsAvx2 = {encode, encodePlanes, decode, splitPlanes,
                                               joinPlanes};

}  // namespace brushwork
