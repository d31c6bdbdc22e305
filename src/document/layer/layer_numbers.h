// Names and ids of new layers: two process-wide counters.
#pragma once

#include <cstdint>

#include "brushwork/i_string.h"

namespace brushwork {

// 0, 1, 2 ... through the process.
[[nodiscard]] std::int32_t nextLayerId();
// The pattern with the next number in place of its "%d": the first is 0. All kinds of layers count
// together.
[[nodiscard]] znString::IString nextLayerName(const char* pattern);
// For tests: both counters begin anew.
void restartLayerNumbers();

// What a name may have at most before a suffix goes on, in units.
inline constexpr std::size_t longestLayerName = 245;

}  // namespace brushwork
