// The failure flag of the image layer, and the signatures that records carry. Any thread.
//
// A consistency check that fails sets the flag and carries on. While it is set, further checks and
// the page cache's size operations are skipped: nothing is thrown away on the word of a record
// that may be damaged.
#pragma once

#include <cstdint>

namespace brushwork {

constexpr std::uint32_t liveSignature = 0xF00DFACE;
constexpr std::uint32_t deadSignature = 0xDEADBEEF;

// 0: no failure so far.
[[nodiscard]] std::int32_t imageFailure() noexcept;
// Sets the flag, not 0, unless it is set already.
void noteImageFailure(std::int32_t value = 1) noexcept;
// For tests.
void clearImageFailure() noexcept;

}  // namespace brushwork
