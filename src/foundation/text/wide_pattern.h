// One "%..." of a wide format pattern, taken apart.
#pragma once

#include <cstdint>

namespace brushwork::znString {

enum class LengthModifier : std::uint8_t {
    None,
    Char,        // hh
    Short,       // h; narrow for text
    Long,        // l; wide for text
    LongLong,    // ll, I64
    LongDouble,  // L
    Size,        // z
    Difference,  // t, I
    Max,         // j
    Int32,       // I32
    Wide,        // w, for text alone
};

inline constexpr int notGiven = -1;
inline constexpr int fromArguments = -2;  // "*"

struct Conversion16 {
    bool minus = false, plus = false, space = false, zero = false, alternate = false;
    int width = notGiven;
    int precision = notGiven;
    LengthModifier modifier = LengthModifier::None;
    char letter = 0;
};

// Parses what follows a "%" and moves `at` behind it. False for anything but a whole, known
// conversion: those are d i u o x X c C s S p f F e E g G a A n and %.
[[nodiscard]] bool parseConversion(const char16_t*& at, Conversion16& result) noexcept;

}  // namespace brushwork::znString
