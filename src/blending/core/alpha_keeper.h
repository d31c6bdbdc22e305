// Locked alpha: the alpha of a run of pixels is kept before a kernel blends them and given back
// afterwards, with the colours fitted to it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork::npc {

// Copies the alpha bytes of `count` pixels of 4 bytes.
void keepAlpha(const std::uint8_t* pixels, std::size_t count, std::uint8_t* kept);

// Premultiplied pixels of 4 bytes. Each colour is scaled by f = kept / alpha, both steps in float,
// and rounded to the nearest whole number, a half upwards, at most 255. A pixel without alpha
// becomes (0, 0, 0, kept).
void restoreAlpha(std::uint8_t* pixels, const std::uint8_t* kept, std::size_t count);
void restoreAlphaScalar(std::uint8_t* pixels, const std::uint8_t* kept, std::size_t count);
void restoreAlphaSse2(std::uint8_t* pixels, const std::uint8_t* kept, std::size_t count);

// Pixels of two planes, as 16-bit values: no colour stays above the kept alpha. Here colours aren't
// scaled. A pixel without any of the 16 bits of alpha becomes (0, 0, 0, kept).
void restoreAlpha16(std::uint8_t* hi, std::uint8_t* lo, const std::uint8_t* keptHi,
                    const std::uint8_t* keptLo, std::size_t count);
void restoreAlpha16Scalar(std::uint8_t* hi, std::uint8_t* lo, const std::uint8_t* keptHi,
                          const std::uint8_t* keptLo, std::size_t count);
void restoreAlpha16Sse2(std::uint8_t* hi, std::uint8_t* lo, const std::uint8_t* keptHi,
                        const std::uint8_t* keptLo, std::size_t count);

}  // namespace brushwork::npc
