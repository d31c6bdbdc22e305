#include <emmintrin.h>

#include <cstring>

#include "foundation/services/vector_level.h"
#include "image/filter/blur_steps.h"

namespace brushwork {
namespace {

__m128i load16(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// What 16 lanes gain by one step, as two times eight 16-bit numbers.
struct Gain {
    __m128i low = _mm_setzero_si128();
    __m128i high = _mm_setzero_si128();

    void add(__m128i lead, __m128i trail) {
        const __m128i zero = _mm_setzero_si128();
        low = _mm_add_epi16(
            low, _mm_sub_epi16(_mm_unpacklo_epi8(lead, zero), _mm_unpacklo_epi8(trail, zero)));
        high = _mm_add_epi16(
            high, _mm_sub_epi16(_mm_unpackhi_epi8(lead, zero), _mm_unpackhi_epi8(trail, zero)));
    }
};

__m128i widenLow(__m128i v) {
    return _mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16);
}
__m128i widenHigh(__m128i v) {
    return _mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16);
}

__m128i divide(__m128i sum, __m128 reciprocal) {
    return _mm_cvttps_epi32(_mm_mul_ps(_mm_cvtepi32_ps(sum), reciprocal));
}

__m128i pack(__m128i a, __m128i b, __m128i c, __m128i d) {
    return _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
}

// The sums around the place before the first pixel: window k then holds its first reach[k] pixels.
__m128i sumBeforeFirst(const std::uint8_t* in, const BlurWindows& windows) {
    const __m128i zero = _mm_setzero_si128();
    __m128i prefix = zero;
    __m128i sum = zero;
    std::int32_t p = 0;
    for (int k = 0; k < 4; ++k) {
        for (; p < windows.reach.data()[k]; ++p) {
            int pixel = 0;
            std::memcpy(&pixel, in + static_cast<std::size_t>(p) * 4, 4);
            const __m128i bytes = _mm_cvtsi32_si128(pixel);
            prefix =
                _mm_add_epi32(prefix, _mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero));
        }
        sum = _mm_add_epi32(sum, prefix);
    }
    return sum;
}

void blurLine(const std::uint8_t* in, std::uint8_t* out, const BlurWindows& windows,
              const float* reciprocals) {
    const std::uint8_t* lead[4];
    const std::uint8_t* trail[4];
    for (int k = 0; k < 4; ++k) {
        const std::ptrdiff_t reach = windows.reach.data()[k];
        lead[k] = in + reach * 4;
        trail[k] = in - (reach + 1) * 4;
    }
    __m128i sum = sumBeforeFirst(in, windows);
    const std::ptrdiff_t length = windows.length;
    for (std::ptrdiff_t c = 0; c < length; c += 4) {
        Gain gain;
        for (int k = 0; k < 4; ++k) gain.add(load16(lead[k] + c * 4), load16(trail[k] + c * 4));
        const __m128i sum0 = _mm_add_epi32(sum, widenLow(gain.low));
        const __m128i sum1 = _mm_add_epi32(sum0, widenHigh(gain.low));
        const __m128i sum2 = _mm_add_epi32(sum1, widenLow(gain.high));
        sum = _mm_add_epi32(sum2, widenHigh(gain.high));
        const float* reciprocal = reciprocals + c;
        _mm_storeu_si128(
            reinterpret_cast<__m128i*>(out + c * 4),
            pack(divide(sum0, _mm_set1_ps(reciprocal[0])), divide(sum1, _mm_set1_ps(reciprocal[1])),
                 divide(sum2, _mm_set1_ps(reciprocal[2])),
                 divide(sum, _mm_set1_ps(reciprocal[3]))));
    }
}

void lines(const BlurLines& job) {
    noteKernelForm(VectorLevel::Sse2);
    for (int i = 0; i < 2; ++i) blurLine(job.in[i], job.out[i], *job.windows, job.reciprocals);
}

void columns(const BlurColumns& job) {
    noteKernelForm(VectorLevel::Sse2);
    const __m128 reciprocal = _mm_set1_ps(job.reciprocal);
    for (std::size_t i = 0; i < job.lanes; i += 16) {
        Gain gain;
        for (int k = 0; k < 4; ++k) gain.add(load16(job.lead[k] + i), load16(job.trail[k] + i));
        auto* sums = reinterpret_cast<__m128i*>(job.sums + i);
        const __m128i sum0 = _mm_add_epi32(_mm_loadu_si128(sums), widenLow(gain.low));
        const __m128i sum1 = _mm_add_epi32(_mm_loadu_si128(sums + 1), widenHigh(gain.low));
        const __m128i sum2 = _mm_add_epi32(_mm_loadu_si128(sums + 2), widenLow(gain.high));
        const __m128i sum3 = _mm_add_epi32(_mm_loadu_si128(sums + 3), widenHigh(gain.high));
        _mm_storeu_si128(sums, sum0);
        _mm_storeu_si128(sums + 1, sum1);
        _mm_storeu_si128(sums + 2, sum2);
        _mm_storeu_si128(sums + 3, sum3);
        if (!job.out) continue;
        const __m128i bytes = pack(divide(sum0, reciprocal), divide(sum1, reciprocal),
                                   divide(sum2, reciprocal), divide(sum3, reciprocal));
        if (job.lanes - i >= 16) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(job.out + i), bytes);
        } else {
            std::memcpy(job.out + i, &bytes, job.lanes - i);
        }
    }
}

}  // namespace

const BlurSteps blurStepsSse2 = {lines, columns};

}  // namespace brushwork
