// The 4-channel modes once more, pixel by pixel in wide integers: floor divisions instead of
// shifts, double rounded to float instead of float, and alpha written out for each mode.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/blend_mode_table.h"

namespace brushwork::test {

// Red, green, blue, alpha; 0 to 255.
using Channels = std::array<std::int64_t, 4>;

[[nodiscard]] Channels blendedPlain(BlendModeId mode, const Channels& source,
                                    const Channels& target);
// `opacity` is 0 to 65535.
[[nodiscard]] Channels blendedMasked(BlendModeId mode, const Channels& source,
                                     const Channels& target, std::int64_t mask,
                                     std::int64_t opacity);

}  // namespace brushwork::test
