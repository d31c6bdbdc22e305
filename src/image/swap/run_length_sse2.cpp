#include <emmintrin.h>

#include "image/swap/run_length_walk.h"

namespace brushwork {
namespace {

__m128i load16(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

void store16(std::uint8_t* p, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes);
}

struct Bytes16 {
    static std::uint64_t equalBefore(const std::uint8_t* p) {
        std::uint64_t bits = 0;
        for (int k = 0; k < 64; k += 16) {
            const __m128i equal = _mm_cmpeq_epi8(load16(p + k), load16(p + k - 1));
            bits |= std::uint64_t{static_cast<std::uint16_t>(_mm_movemask_epi8(equal))} << k;
        }
        return bits;
    }
    static void copyUpTo128(const std::uint8_t* from, std::uint8_t* to, std::size_t count) {
        // Most are short, and a branch less is worth more than the second copy.
        store16(to, load16(from));
        store16(to + 16, load16(from + 16));
        for (std::size_t k = 32; k < count; k += 32) {
            store16(to + k, load16(from + k));
            store16(to + k + 16, load16(from + k + 16));
        }
    }
    static void fillUpTo128(std::uint8_t value, std::uint8_t* to, std::size_t count) {
        const __m128i bytes = _mm_set1_epi8(static_cast<char>(value));
        store16(to, bytes);
        store16(to + 16, bytes);
        for (std::size_t k = 32; k < count; k += 32) {
            store16(to + k, bytes);
            store16(to + k + 16, bytes);
        }
    }
};

std::size_t encode(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets) {
    noteKernelForm(VectorLevel::Sse2);
    return encodePackets<Bytes16>(bytes, n, packets);
}

std::size_t decode(const std::uint8_t* packets, std::size_t stored, std::uint8_t* bytes,
                   std::size_t n) {
    const std::size_t done = decodePackets<Bytes16>(packets, stored, bytes, n);
    noteKernelForm(VectorLevel::Sse2);
    return done;
}

// One byte of each of 16 pixels.
template <int Shift>
__m128i planeOf(const __m128i (&pixels)[4]) {
    __m128i words[4];
    for (int k = 0; k < 4; ++k)
        words[k] = _mm_and_si128(_mm_srli_epi32(pixels[k], Shift), _mm_set1_epi32(0xFF));
    return _mm_packus_epi16(_mm_packs_epi32(words[0], words[1]),
                            _mm_packs_epi32(words[2], words[3]));
}

void splitPlanes(const std::uint8_t* pixels, std::size_t count, std::uint8_t* planes) {
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        __m128i four[4];
        for (std::size_t k = 0; k < 4; ++k) four[k] = load16(pixels + 4 * i + 16 * k);
        store16(planes + i, planeOf<0>(four));
        store16(planes + count + i, planeOf<8>(four));
        store16(planes + 2 * count + i, planeOf<16>(four));
        store16(planes + 3 * count + i, planeOf<24>(four));
    }
    for (; i < count; ++i)
        for (std::size_t plane = 0; plane < 4; ++plane)
            planes[plane * count + i] = pixels[4 * i + plane];
    noteKernelForm(VectorLevel::Sse2);
}

void joinPlanes(const std::uint8_t* planes, std::size_t count, std::uint8_t* pixels) {
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m128i a = load16(planes + i);
        const __m128i b = load16(planes + count + i);
        const __m128i c = load16(planes + 2 * count + i);
        const __m128i d = load16(planes + 3 * count + i);
        const __m128i abLow = _mm_unpacklo_epi8(a, b), abHigh = _mm_unpackhi_epi8(a, b);
        const __m128i cdLow = _mm_unpacklo_epi8(c, d), cdHigh = _mm_unpackhi_epi8(c, d);
        std::uint8_t* to = pixels + 4 * i;
        store16(to, _mm_unpacklo_epi16(abLow, cdLow));
        store16(to + 16, _mm_unpackhi_epi16(abLow, cdLow));
        store16(to + 32, _mm_unpacklo_epi16(abHigh, cdHigh));
        store16(to + 48, _mm_unpackhi_epi16(abHigh, cdHigh));
    }
    for (; i < count; ++i)
        for (std::size_t plane = 0; plane < 4; ++plane)
            pixels[4 * i + plane] = planes[plane * count + i];
    noteKernelForm(VectorLevel::Sse2);
}

std::size_t encodePlanes(const std::uint8_t* pixels, std::size_t n, std::uint8_t* planes,
                         std::uint8_t* packets) {
    splitPlanes(pixels, n / 4, planes);
    return encode(planes, n, packets);
}

}  // namespace

const RunLengthKernels runLengthKernelsSse2 = {encode, encodePlanes, decode, splitPlanes,
                                               joinPlanes};

}  // namespace brushwork
