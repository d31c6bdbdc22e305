#include <emmintrin.h>

#include <cstring>

#include "image/work/sampling_kernels.h"
#include "image/work/sampling_weights.h"

namespace brushwork {
namespace {

// Pixels around a place: rows `stride` bytes apart, from the picture itself or, at an edge, from a
// clamped copy.
template <int Reach, int Channels>
struct Taps {
    const std::uint8_t* first;
    std::ptrdiff_t stride;
    std::uint8_t block[Reach * Reach * Channels];

    void around(const SampleSource& source, std::int32_t x, std::int32_t y) {
        const std::int32_t left = (x >> 16) - (Reach / 2 - 1);
        const std::int32_t bottom = (y >> 16) - (Reach / 2 - 1);
        if (left >= 0 && left <= source.width - Reach && bottom >= 0 &&
            bottom <= source.height - Reach) {
            first = source.pixels + bottom * source.rowBytes +
                    static_cast<std::ptrdiff_t>(left) * Channels;
            stride = source.rowBytes;
        } else {
            copyClamped(source, left, bottom, Reach, Channels, block);
            first = block;
            stride = Reach * Channels;
        }
    }
};

__m128i load16(const void* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}
__m128i load8(const void* p) {
    return _mm_loadl_epi64(static_cast<const __m128i*>(p));
}
__m128i load4(const void* p) {
    int word = 0;
    std::memcpy(&word, p, 4);
    return _mm_cvtsi32_si128(word);
}
void store4(std::uint8_t* p, __m128i v) {
    const int word = _mm_cvtsi128_si32(v);
    std::memcpy(p, &word, 4);
}

int stepOf(std::int32_t place) {
    return (place >> 8) & 0xFF;
}

// Bytes as 16-bit numbers, shifted up for the first bicubic pass.
__m128i lowShifted(__m128i v) {
    return _mm_srli_epi16(_mm_unpacklo_epi8(_mm_setzero_si128(), v), 8 - cubicByteShift);
}
__m128i highShifted(__m128i v) {
    return _mm_srli_epi16(_mm_unpackhi_epi8(_mm_setzero_si128(), v), 8 - cubicByteShift);
}

// The 4 channels of one bicubic sample, 32 bits each, not yet clamped.
__m128i cubicPixel(const Taps<4, 4>& taps, const std::int32_t* rowWeights,
                   const std::int16_t* columnWeights) {
    __m128i left = _mm_setzero_si128();   // columns 0 and 1
    __m128i right = _mm_setzero_si128();  // columns 2 and 3
    for (int row = 0; row < 4; ++row) {
        const __m128i pixels = load16(taps.first + row * taps.stride);
        const __m128i weight = _mm_set1_epi32(rowWeights[row]);
        left = _mm_add_epi16(left, _mm_mulhi_epi16(lowShifted(pixels), weight));
        right = _mm_add_epi16(right, _mm_mulhi_epi16(highShifted(pixels), weight));
    }
    left = _mm_unpacklo_epi16(left, _mm_srli_si128(left, 8));
    right = _mm_unpacklo_epi16(right, _mm_srli_si128(right, 8));
    const __m128i weights = load8(columnWeights);
    const __m128i total = _mm_add_epi32(_mm_madd_epi16(left, _mm_shuffle_epi32(weights, 0x00)),
                                        _mm_madd_epi16(right, _mm_shuffle_epi32(weights, 0x55)));
    return _mm_srai_epi32(_mm_add_epi32(total, _mm_set1_epi32(cubicRounding)), cubicTotalShift);
}

void bicubicFour(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
                 std::size_t count, std::uint8_t* out) {
    noteKernelForm(VectorLevel::Sse2);
    const SamplingWeights& weights = samplingWeights();
    Taps<4, 4> taps;
    for (std::size_t n = 0; n < count; ++n, out += 4) {
        taps.around(source, x[n], y[n]);
        const __m128i words =
            cubicPixel(taps, weights.doubled[stepOf(y[n])], weights.four[stepOf(x[n])]);
        const __m128i shorts = _mm_packs_epi32(words, words);
        store4(out, _mm_packus_epi16(shorts, shorts));
    }
}

void bicubicOne(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
                std::size_t count, std::uint8_t* out) {
    noteKernelForm(VectorLevel::Sse2);
    const SamplingWeights& weights = samplingWeights();
    Taps<4, 1> taps;
    for (std::size_t n = 0; n < count; ++n) {
        taps.around(source, x[n], y[n]);
        const std::uint8_t* p = taps.first;
        const std::ptrdiff_t s = taps.stride;
        const __m128i block =
            _mm_unpacklo_epi64(_mm_unpacklo_epi32(load4(p), load4(p + s)),
                               _mm_unpacklo_epi32(load4(p + 2 * s), load4(p + 3 * s)));
        const __m128i rowWeights = load8(weights.four[stepOf(y[n])]);
        const __m128i twice = _mm_unpacklo_epi16(rowWeights, rowWeights);
        __m128i sums =
            _mm_add_epi16(_mm_mulhi_epi16(lowShifted(block), _mm_shuffle_epi32(twice, 0x50)),
                          _mm_mulhi_epi16(highShifted(block), _mm_shuffle_epi32(twice, 0xFA)));
        sums = _mm_add_epi16(sums, _mm_srli_si128(sums, 8));
        __m128i total = _mm_madd_epi16(sums, load8(weights.four[stepOf(x[n])]));
        total = _mm_add_epi32(total, _mm_shuffle_epi32(total, 0x55));
        const int value = (_mm_cvtsi128_si32(total) + cubicRounding) >> cubicTotalShift;
        out[n] = static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    }
}

void bilinearFour(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
                  std::size_t count, std::uint8_t* out) {
    noteKernelForm(VectorLevel::Sse2);
    const SamplingWeights& weights = samplingWeights();
    const __m128i zero = _mm_setzero_si128();
    const __m128i middle = _mm_set1_epi16(-32768);
    Taps<2, 4> taps;
    for (std::size_t n = 0; n < count; ++n, out += 4) {
        taps.around(source, x[n], y[n]);
        const int fx = stepOf(x[n]);
        const __m128i rowWeights = load16(weights.linear[stepOf(y[n])]);
        const __m128i lower = _mm_unpacklo_epi8(load8(taps.first), zero);
        const __m128i upper = _mm_unpacklo_epi8(load8(taps.first + taps.stride), zero);
        // Both columns, up to 65280. Less 32768 they are signed, as multiply-add wants them; the
        // weights of a row sum to 256, which brings the 2^23 back.
        __m128i sums =
            _mm_add_epi16(_mm_mullo_epi16(lower, _mm_unpacklo_epi64(rowWeights, rowWeights)),
                          _mm_mullo_epi16(upper, _mm_unpackhi_epi64(rowWeights, rowWeights)));
        sums = _mm_xor_si128(sums, middle);
        sums = _mm_unpacklo_epi16(sums, _mm_srli_si128(sums, 8));
        const __m128i total = _mm_madd_epi16(sums, _mm_set1_epi32((fx << 16) | (256 - fx)));
        const __m128i words = _mm_srli_epi32(_mm_add_epi32(total, _mm_set1_epi32(1 << 23)), 16);
        const __m128i shorts = _mm_packs_epi32(words, words);
        store4(out, _mm_packus_epi16(shorts, shorts));
    }
}

}  // namespace

// Single pixels and two-by-two bytes have nothing to gain from 128 bits.
const SamplingKernels samplingKernelsSse2 = {{nullptr, bilinearFour, bicubicFour},
                                             {nullptr, nullptr, bicubicOne}};

}  // namespace brushwork
