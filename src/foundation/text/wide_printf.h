// printf over 16-bit units, the same on every system: what IString::format fills its buffer with.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <span>

namespace brushwork::znString {

// The most units that a formatted text may have, its terminator included.
inline constexpr std::uint64_t mostFormattedUnits = 0x7FFFFFFF;

// Writes the formatted arguments and a terminator into `buffer`, as far as they fit, and answers
// how many units the whole needs, terminator included; more than buffer.size() is an overflow.
// 0 is a failure: "%n", an unknown or unfinished conversion, or more than mostFormattedUnits. The
// conversions are those of IString::format. May throw std::bad_alloc for very long numbers.
[[nodiscard]] std::uint64_t wideVprintf(std::span<char16_t> buffer, const char16_t* pattern,
                                        std::va_list arguments);

}  // namespace brushwork::znString
