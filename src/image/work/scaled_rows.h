// The two passes of a scaled read: along a row of the source, then across up to four such rows.
//
// Between the passes a value is a 16-bit number of one of two kinds:
// - linear, if neither axis is bicubic: 8 bits of fraction, without a sign;
// - cubic, else: 6 bits of fraction, signed and negated, since bicubic weights are held negated.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

// Where a column or row of the scaled picture lies on its source.
struct SamplePlace {
    std::int32_t nearest;  // the pixel that holds its middle
    std::int32_t lower;    // the pixel whose middle lies at or before its middle
    std::int32_t step;     // 0..255: how far behind, in 1/256 of a pixel
};

// One pass along a source row. Columns first + 0 .. count - 1 are made.
struct ColumnJob {
    const SamplePlace* places = nullptr;  // one a column
    std::int32_t count = 0;
    const std::uint8_t* row = nullptr;
    std::int32_t width = 0;  // pixels of the row; indexes beyond are clamped
    // Columns whose pixels all lie inside the row, for the widest reach: lower - 1 to lower + 2.
    std::int32_t innerBegin = 0, innerEnd = 0;
    std::int16_t* out = nullptr;  // count * channels values
};
using ColumnPass = void (*)(const ColumnJob& job);

// One pass across rows made so.
struct RowJob {
    const std::int16_t* rows[4] = {};  // those at -1, 0, 1, 2; 0 and 1 for linear, 0 for nearest
    std::int32_t step = 0;
    std::size_t values = 0;
    // What is added before the last shift of a cubic value, in 1/64: one half, less what the pass
    // along the row has cut off on average.
    std::int32_t rounding = 0;
    std::uint8_t* out = nullptr;
};
using RowPass = void (*)(const RowJob& job);
inline constexpr std::int32_t roundingAfterCubic = 30;
inline constexpr std::int32_t roundingAfterOther = 32;

// By SampleMode.
struct ScaledPasses {
    ColumnPass linearFour[2], linearOne[2];
    ColumnPass cubicFour[3], cubicOne[3];
    RowPass linearRows[2];
    RowPass cubicRows[3];
};
[[nodiscard]] const ScaledPasses& scaledPasses(VectorLevel level = vectorLevel());

extern const ScaledPasses scaledPassesScalar;
extern const ScaledPasses scaledPassesSse2;  // null where there is no form of its own
extern const ScaledPasses scaledPassesAvx2;

}  // namespace brushwork
