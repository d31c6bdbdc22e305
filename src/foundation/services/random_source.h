// The random numbers of the process: 15 bits at a time, the same sequence on every system.
//
// A seed makes a replay exact. Without one the first use takes the clock. Any thread may ask;
// where results must not depend on timing, one thread asks and hands the values out.
#pragma once

#include <cstdint>

namespace brushwork {

inline constexpr int randomMaximum = 32767;

// The next value, 0..randomMaximum.
[[nodiscard]] int randomValue() noexcept;
// Begins the sequence of this seed.
void seedRandom(std::uint64_t seed) noexcept;
// Begins a sequence of the clock's, as at the start of the process.
void seedRandomFromClock() noexcept;

}  // namespace brushwork
